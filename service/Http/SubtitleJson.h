// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/SubtitleTable.h"
#include "Subtitles/CueReader.h"

#include <QJsonArray>
#include <QJsonObject>

namespace murvo::service {

/// How subtitles and their lines look in the service's replies.
[[nodiscard]] QJsonObject subtitleJson(const Subtitle &subtitle);
[[nodiscard]] QJsonArray cuesJson(const QList<Cue> &cues);

/// {"code":..., "message":...}: the inner object of an error, for a subtitle that cannot be used.
[[nodiscard]] QJsonObject problemJson(CueProblem problem);

} // namespace murvo::service
