// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QString>

namespace murvo {

/// Tells a page the audio tracks (name by identifier) and the one that plays, in the form pages of the
/// service know: {audioTracks:{'1':English, '2':French, }, audioTrack:2}. It is not JSON: names stand bare.
[[nodiscard]] QString audioTrackText(const QMap<int, QString> &nameByIndex, int currentIndex);

} // namespace murvo
