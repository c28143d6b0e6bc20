// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "service/EmbeddedService.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QPair>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <memory>
#include <optional>
#include <ostream>
#include <string>

/// Lets a failed expectation show text as text.
inline void PrintTo(const QString &text, std::ostream *out) {
    *out << '"' << text.toStdString() << '"';
}

namespace murvo::service::test {

struct Reply {
    int status = 0; ///< 0: no reply at all
    QByteArray body;
    httplib::Headers headers;

    [[nodiscard]] QJsonObject json() const;
    [[nodiscard]] QString errorCode() const;
    [[nodiscard]] std::string header(const char *name) const; ///< empty when there is none
};

[[nodiscard]] Reply replyOf(const httplib::Result &result);

/// A started service with a store and a folder of films of its own, and a client that knows the token.
class ServiceFixture : public testing::Test {
  protected:
    ServiceFixture();

    void restart();

    /// Sends a request with any method and headers to a path below the token.
    [[nodiscard]] Reply ask(const char *method, const QString &path, const httplib::Headers &headers = {},
                            const QByteArray &body = {});
    [[nodiscard]] Reply get(const QString &path);
    /// Fetches a file by the address that a lookup gave.
    [[nodiscard]] Reply download(const QString &url);
    [[nodiscard]] Reply post(const QString &path, const QByteArray &body, const QByteArray &contentType);
    [[nodiscard]] Reply put(const QString &path, const QJsonObject &body);

    /// A client for requests that are wrong on purpose, and the path of the token: "/TOKEN/".
    [[nodiscard]] httplib::Client client() const;
    [[nodiscard]] std::string tokenPath() const;
    [[nodiscard]] int port() const;

    QString writeFile(const QString &name, const QByteArray &content);

    /// A real film of two seconds made by ffmpeg: 30 frames a second, an English and a French sound track.
    QString makeFilm(const QString &name);

    /// A film of two seconds with what else ffmpeg is told to put into it.
    QString makeFilm(const QString &name, const QString &inputs, const QString &options);

    /// Waits until the film's own tracks have been read; false when that does not end.
    [[nodiscard]] bool waitUntilRead(int videoId);

    /// Announces the film and looks it up, as the player does; where it is not said otherwise as a file of
    /// the size that it has, or of 1000 bytes where there is none.
    [[nodiscard]] Reply lookUp(const QString &filmPath, quint64 hash = 0xabc,
                               std::optional<quint64> sizeBytes = std::nullopt);

    /// Fetches everything that the lookup marks and uploads it; returns the upload's reply.
    Reply fetchAndUpload(const Reply &lookup);

    /// The player's upload body, byte for byte.
    [[nodiscard]] static QByteArray uploadBody(const QByteArray &boundary,
                                               const QList<QPair<int, QByteArray>> &parts);

    [[nodiscard]] Reply upload(const QList<QPair<int, QByteArray>> &parts);

    QTemporaryDir dataFolder;
    QTemporaryDir films;
    EmbeddedService::OpenFilm openFilm; ///< for the next start
    std::unique_ptr<EmbeddedService> service;
};

/// A port on which nobody listens.
[[nodiscard]] int freePort();

[[nodiscard]] QByteArray srt(const QByteArray &text);

/// Sixty lines in four minutes, at times that no other place is like; the first is slanted.
[[nodiscard]] QByteArray longSrt(int laterMs = 0);

} // namespace murvo::service::test
