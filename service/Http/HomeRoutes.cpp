// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/HomeRoutes.h"

#include "Http/Router.h"
#include "Sources/PendingFilms.h"

namespace murvo::service {

namespace {

// The page asks again at once. A page that has gone holds a thread of the pool for so long.
constexpr std::chrono::seconds longestWait{20};

Response pendingFilms(const Request &request, PendingFilms &films) {
    const QString name = QStringLiteral("after");
    const int count = request.parameters.contains(name)
                          ? films.waitForOtherThan(request.wholeNumber(name, 0), longestWait)
                          : films.count();
    return jsonResponse({{QStringLiteral("pendingFilms"), count}});
}

} // namespace

void addHomeRoutes(Router &router, PendingFilms &films) {
    router.add("GET", QStringLiteral("Api/Home/PendingFilms"),
               [&films](const Request &request) { return pendingFilms(request, films); });
}

} // namespace murvo::service
