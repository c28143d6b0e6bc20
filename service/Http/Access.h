// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

#include <optional>

namespace murvo::service {

/// Who may speak to the service: a client that knows the token, under the service's own address, and no page
/// of another origin. Made once the port is known, then only read, from any thread.
class Access {
  public:
    /// Draws a new token.
    explicit Access(quint16 port);

    /// "http://127.0.0.1:PORT/TOKEN/".
    [[nodiscard]] QString baseUrl() const;

    /// The same with a token that opens nothing but what the player fetches by itself: subtitle files,
    /// spoken texts and lines. It writes these addresses into its log, where others may read them.
    [[nodiscard]] QString downloadBaseUrl() const;

    /// True when the one Host header is ours and an Origin header, if there is one, is ours too.
    [[nodiscard]] bool headersAllowed(const QByteArrayList &hosts, const QByteArrayList &origins) const;

    /// The path below the token; none when the token is missing, wrong, or does not open the path. Takes the
    /// same time for every wrong token of the right length.
    [[nodiscard]] std::optional<QString> pathBelowToken(const QByteArray &path) const;

    /// Signs what one such address may open of many; another at each start.
    [[nodiscard]] const QByteArray &downloadKey() const { return _downloadKey; }

    /// Whether the path begins with that token.
    [[nodiscard]] bool isByDownloadToken(const QByteArray &path) const;

  private:
    QByteArray _host;
    QByteArray _token;
    QByteArray _downloadToken;
    QByteArray _downloadKey;
};

} // namespace murvo::service
