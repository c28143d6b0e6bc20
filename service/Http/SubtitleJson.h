// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/SubtitleTable.h"
#include "Subtitles/Cues.h"

#include <QJsonArray>
#include <QJsonObject>

namespace murvo::service {

/// How subtitles and their lines look in the service's replies.
[[nodiscard]] QJsonObject subtitleJson(const Subtitle &subtitle);
[[nodiscard]] QJsonArray cuesJson(const QList<Cue> &cues);

/// {"code":..., "message":...}: the inner object of an error, for a subtitle that cannot be used. null for
/// the empty code.
[[nodiscard]] QJsonValue problemJson(const QString &code);

} // namespace murvo::service
