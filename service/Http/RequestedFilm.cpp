// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/RequestedFilm.h"

namespace murvo::service {

Film filmNumbered(qint32 filmId, FilmTable &films) {
    const auto film = films.find(filmId);
    if (!film)
        throw RouteError(404, QStringLiteral("unknownFilm"), QStringLiteral("No film has this number."));
    return *film;
}

Film requestedFilm(const Request &request, FilmTable &films) {
    return filmNumbered(request.positiveId(QStringLiteral("videoId")), films);
}

Response pictureResponse(const QByteArray &jpeg) {
    if (jpeg.isEmpty())
        throw RouteError(404, QStringLiteral("noPicture"),
                         QStringLiteral("The film has no picture there, or no longer lies where it did."));
    return {200, QByteArrayLiteral("image/jpeg"), jpeg};
}

} // namespace murvo::service
