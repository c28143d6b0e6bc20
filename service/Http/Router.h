// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/Message.h"

#include <QHash>
#include <QString>

#include <functional>

namespace murvo::service {

/// The table of everything that the service answers: a method and a path below the token, exactly.
///
/// Filled before the server starts and only read afterwards, from any thread of the pool. It knows no HTTP
/// library and no socket. No exception leaves answer(): a RouteError becomes its response, any other a 500.
class Router {
  public:
    using Handler = std::function<Response(const Request &)>;

    void add(const QByteArray &method, const QString &path, const Handler &handler);

    [[nodiscard]] Response answer(const Request &request) const noexcept;

  private:
    QHash<QString, QHash<QByteArray, Handler>> _routes;
};

} // namespace murvo::service
