// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <httplib.h>

#include <string>

namespace murvo::bench {

/// Asks the service as pages do: paths below "Api/". Nothing is said of requests that fail: they answer with
/// nothing.
class ServiceClient {
  public:
    explicit ServiceClient(const QUrl &base)
        : _client("127.0.0.1", base.port())
        , _path(base.path().toStdString() + "Api/") {
        _client.set_read_timeout(60);
    }

    QByteArray get(const std::string &route) { return bytes(_client.Get(_path + route)); }
    QByteArray post(const std::string &route, const std::string &body = {}) {
        return bytes(_client.Post(_path + route, body, "text/plain"));
    }
    void put(const std::string &route, const std::string &body) {
        (void)_client.Put(_path + route, body, "text/plain");
    }

    QJsonObject getJson(const std::string &route) { return QJsonDocument::fromJson(get(route)).object(); }
    QJsonObject postJson(const std::string &route, const std::string &body) {
        return QJsonDocument::fromJson(post(route, body)).object();
    }

  private:
    static QByteArray bytes(const httplib::Result &result) {
        return result ? QByteArray::fromStdString(result->body) : QByteArray();
    }

    httplib::Client _client;
    std::string _path;
};

} // namespace murvo::bench
