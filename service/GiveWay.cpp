// SPDX-License-Identifier: GPL-3.0-or-later
#include "GiveWay.h"

#include <tuple>

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace murvo::service {

void giveWayToOthers() {
    constexpr int ofThread = 1;                     // IOPRIO_WHO_PROCESS: this thread
    constexpr int lowestOfBestEffort = 2 << 13 | 7; // class 2 of three, last of its eight levels
    constexpr int nicer = 10;
    std::ignore = ::syscall(SYS_ioprio_set, ofThread, 0, lowestOfBestEffort);
    std::ignore = ::setpriority(PRIO_PROCESS, static_cast<id_t>(::syscall(SYS_gettid)), nicer);
}

} // namespace murvo::service
