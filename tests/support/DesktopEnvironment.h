// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWebEngineProfile;

namespace murvo {
class VLCInstance;
}

namespace murvo::test::DesktopEnvironment {

/// Shared by all tests of a program; they live from the start of its main() to its end.
[[nodiscard]] QWebEngineProfile &profile();
[[nodiscard]] const VLCInstance &vlc();

} // namespace murvo::test::DesktopEnvironment
