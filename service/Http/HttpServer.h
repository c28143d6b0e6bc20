// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <memory>

namespace murvo::service {

class Router;

/// The HTTP server on the loopback interface: sockets, limits, the checks of Access, security headers.
///
/// Answers on a pool of threads of its own; borrows the router, which must not change after the start. The
/// only class that serves by the HTTP library. The destructor lets running requests finish and then stops.
class HttpServer {
  public:
    /// Listens on a free port of 127.0.0.1. Null when there is none. Very large bodies are put into files in
    /// that folder while they are dealt with.
    [[nodiscard]] static std::unique_ptr<HttpServer> start(const Router &router, const QString &folder);

    ~HttpServer();
    HttpServer(const HttpServer &) = delete;
    HttpServer &operator=(const HttpServer &) = delete;

    [[nodiscard]] QString baseUrl() const;

  private:
    struct Impl;
    explicit HttpServer(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> _impl;
};

} // namespace murvo::service
