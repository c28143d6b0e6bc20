// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace murvo {

/// The one configuration value of the player: where its service is. Set once, before the first window.
class MConstants {
  public:
    /// The service's base URL; ends in "/". Every service address is this text followed by a relative path.
    [[nodiscard]] static QString murvoBaseUrl();
    static void setMurvoBaseUrl(const QString &url);

    /// The service's address of path, which does not begin with "/".
    [[nodiscard]] static QString serviceAddress(const QString &path);

    /// Where people report films that would not play.
    static const QString supportAddress;
};

} // namespace murvo
