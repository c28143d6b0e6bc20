// SPDX-License-Identifier: GPL-3.0-or-later
// For sanitizer builds only: libraries stay loaded to the end, so that reports name them instead of
// "unknown module". It takes the place of the C library's function in the program that it is linked to.

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the C library's header is not wanted
// here
extern "C" int dlclose(void *) {
    return 0;
}
