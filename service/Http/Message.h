// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QFile>
#include <QHash>
#include <QJsonObject>
#include <QString>

#include <exception>
#include <memory>
#include <optional>
#include <utility>

namespace murvo::service {

/// A request as the routes see it: past all checks, its body whole and within its limit.
struct Request {
    QByteArray method;
    QString path; ///< below the token, percent-decoded: "Player/Home"
    QHash<QString, QString> parameters;
    QByteArray contentType; ///< as the client sent it
    QByteArray body;
    QString bodyFile; ///< path of a file with the body, for a route that takes very large ones; body is empty
                      ///< then
    QString downloadBaseUrl;      ///< for addresses that the player fetches; ends in "/"
    QByteArray downloadKey;       ///< of this run, to sign such addresses
    bool byDownloadToken = false; ///< it came to such an address

    /// A parameter that must be a whole number and not below smallest, which is not negative; throws
    /// RouteError when it is not.
    [[nodiscard]] qint32 wholeNumber(const QString &name, qint32 smallest) const;
    /// A whole number above 0.
    [[nodiscard]] qint32 positiveId(const QString &name) const;
};

struct Response {
    int status = 200;
    QByteArray contentType;
    QByteArray body;
    QByteArray fileName = {};         ///< under which a browser keeps it, ASCII; empty for what it shows
    std::shared_ptr<QFile> file = {}; ///< open; sent in place of the body
};

/// What a route throws when it cannot answer: the status, a code for programs and a sentence for people.
class RouteError : public std::exception {
  public:
    RouteError(int status, QString code, QString message)
        : _status(status)
        , _code(std::move(code))
        , _message(std::move(message)) {}

    [[nodiscard]] const char *what() const noexcept override { return "route error"; }
    [[nodiscard]] int status() const { return _status; }
    [[nodiscard]] const QString &code() const { return _code; }
    [[nodiscard]] const QString &message() const { return _message; }

  private:
    int _status;
    QString _code;
    QString _message;
};

[[nodiscard]] Response jsonResponse(const QJsonObject &object);

/// The one form of every error: {"error":{"code":..., "message":...}}.
[[nodiscard]] Response errorResponse(int status, const QString &code, const QString &message);

/// What is answered when something could not be kept for want of room.
[[nodiscard]] Response diskFullResponse();

/// The body as a JSON object; throws RouteError when it is not one.
[[nodiscard]] QJsonObject jsonBody(const Request &request);

} // namespace murvo::service
