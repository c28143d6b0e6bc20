// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace murvo {

/// A film is given as a text that is either a URL (it has a scheme and a host) or a local path. A file URL
/// with an empty host is a path, and so is a text that does not parse as a URL.
[[nodiscard]] bool isUrlText(const QString &text);

/// "/a/b.mkv" and "/a/b.mkv/" give "b.mkv".
[[nodiscard]] QString lastPathComponent(const QString &path);

/// What the shell hands over, made into a film's text: a file URL and a path relative to folder become
/// absolute paths, other URLs stay as they are.
[[nodiscard]] QString videoSourceFromShell(const QString &argument, const QString &folder);

} // namespace murvo
