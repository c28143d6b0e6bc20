// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QString>
#include <QUrl>

#include <optional>

namespace murvo {

/// What a page asks for by navigating to a URL such as app:///Execute/SeekTo?position=42.
struct PageRequest {
    using Arguments = QHash<QString, QString>;

    enum class Kind { Execute, Request, Unknown };

    Kind kind = Kind::Unknown;
    QString name; ///< last path component
    /// By name, as they stand in the query: not percent-decoded, but for letters, digits, - . _ ~ and { } | ^
    /// \ ` which a URL class writes in one form only.
    Arguments arguments;

    /// Nothing when the URL's scheme is not "app". A path without components gives the unknown kind.
    [[nodiscard]] static std::optional<PageRequest> fromUrl(const QUrl &url);
};

/// Last non-empty component of the URL's path, percent-decoded; empty when there is none.
[[nodiscard]] QString lastUrlComponent(const QUrl &url);

} // namespace murvo
