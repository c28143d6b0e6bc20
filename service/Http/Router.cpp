// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Router.h"

#include "Log.h"
#include "Store/DiskFull.h"

namespace murvo::service {

void Router::add(const QByteArray &method, const QString &path, const Handler &handler) {
    _routes[path].insert(method, handler);
}

Response Router::answer(const Request &request) const noexcept {
    try {
        const auto route = _routes.constFind(request.path);
        if (route == _routes.constEnd())
            return errorResponse(404, QStringLiteral("notFound"), QStringLiteral("There is nothing here."));
        const auto handler = route->constFind(request.method);
        if (handler == route->constEnd())
            return errorResponse(405, QStringLiteral("methodNotAllowed"),
                                 QStringLiteral("This address does not take that method."));
        return (*handler)(request);
    } catch (const RouteError &error) {
        return errorResponse(error.status(), error.code(), error.message());
    } catch (const DiskFull &) {
        qCWarning(serviceLog) << "Request" << request.method << request.path << "found the disk full";
        return diskFullResponse();
    } catch (const std::exception &error) {
        qCWarning(serviceLog) << "Request" << request.method << request.path << "failed:" << error.what();
    } catch (...) {
        qCWarning(serviceLog) << "Request" << request.method << request.path << "failed";
    }
    return errorResponse(500, QStringLiteral("internal"),
                         QStringLiteral("The service could not do this; its log says why."));
}

} // namespace murvo::service
