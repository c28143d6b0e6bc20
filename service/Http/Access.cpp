// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Access.h"

#include <QRandomGenerator>

#include <algorithm>
#include <array>

namespace murvo::service {

namespace {

constexpr auto scheme = "http://";
// What the player fetches by itself, and whose addresses it may write into its log.
constexpr std::array downloadPaths{"Api/Subtitles/File", "Api/Speech/Sound", "Api/Lines/Sound"};

QByteArray randomToken() {
    std::array<quint32, 8> words{};
    QRandomGenerator::system()->fillRange(words.data(), static_cast<qsizetype>(words.size()));
    return QByteArray(reinterpret_cast<const char *>(words.data()), sizeof(words)).toHex();
}

bool equalInConstantTime(QByteArrayView a, QByteArrayView b) {
    if (a.size() != b.size())
        return false;
    unsigned difference = 0;
    for (qsizetype i = 0; i < a.size(); ++i)
        difference |=
            static_cast<unsigned char>(a[i]) ^ static_cast<unsigned>(static_cast<unsigned char>(b[i]));
    return difference == 0;
}

// Empty for a path that has none.
QByteArrayView tokenOf(const QByteArray &path) {
    const qsizetype end = path.indexOf('/', 1);
    return end < 0 ? QByteArrayView() : QByteArrayView(path).sliced(1, end - 1);
}

} // namespace

Access::Access(quint16 port)
    : _host("127.0.0.1:" + QByteArray::number(port))
    , _token(randomToken())
    , _downloadToken(randomToken())
    , _downloadKey(randomToken()) {}

QString Access::baseUrl() const {
    return QString::fromLatin1(scheme + _host + '/' + _token + '/');
}

QString Access::downloadBaseUrl() const {
    return QString::fromLatin1(scheme + _host + '/' + _downloadToken + '/');
}

bool Access::headersAllowed(const QByteArrayList &hosts, const QByteArrayList &origins) const {
    if (hosts.size() != 1 || hosts.first() != _host)
        return false;
    return origins.isEmpty() || (origins.size() == 1 && origins.first() == scheme + _host);
}

bool Access::isByDownloadToken(const QByteArray &path) const {
    return equalInConstantTime(tokenOf(path), _downloadToken);
}

std::optional<QString> Access::pathBelowToken(const QByteArray &path) const {
    const qsizetype end = path.indexOf('/', 1);
    if (!path.startsWith('/') || end < 0)
        return std::nullopt;
    const QByteArrayView token = tokenOf(path);
    const QByteArray rest = path.mid(end + 1);
    const bool opensAll = equalInConstantTime(token, _token);
    const bool opensDownloads = equalInConstantTime(token, _downloadToken);
    const bool isDownload = std::any_of(downloadPaths.begin(), downloadPaths.end(),
                                        [&rest](const char *download) { return rest == download; });
    if (!opensAll && !(opensDownloads && isDownload))
        return std::nullopt;
    return QString::fromUtf8(rest);
}

} // namespace murvo::service
