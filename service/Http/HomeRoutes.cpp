// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/HomeRoutes.h"

#include "Http/LongPoll.h"
#include "Http/Router.h"

namespace murvo::service {

namespace {

Response countOf(const Request &request, ChangeCounts &pendingFilms) {
    return jsonResponse({{QStringLiteral("pendingFilms"), countAfter(request, pendingFilms)}});
}

} // namespace

void addHomeRoutes(Router &router, ChangeCounts &pendingFilms) {
    router.add("GET", QStringLiteral("Api/Home/PendingFilms"),
               [&pendingFilms](const Request &request) { return countOf(request, pendingFilms); });
}

} // namespace murvo::service
