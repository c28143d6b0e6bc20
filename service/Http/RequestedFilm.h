// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/Message.h"
#include "Store/FilmTable.h"

namespace murvo::service {

/// The film with this number; throws RouteError when there is none.
[[nodiscard]] Film filmNumbered(qint32 filmId, FilmTable &films);

/// The film of the parameter "videoId".
[[nodiscard]] Film requestedFilm(const Request &request, FilmTable &films);

/// A JPEG of a film; throws RouteError for an empty one.
[[nodiscard]] Response pictureResponse(const QByteArray &jpeg);

} // namespace murvo::service
