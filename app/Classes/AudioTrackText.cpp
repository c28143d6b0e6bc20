// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/AudioTrackText.h"

namespace murvo {

QString audioTrackText(const QMap<int, QString> &nameByIndex, int currentIndex) {
    QString list = QStringLiteral("{");
    for (auto track = nameByIndex.cbegin(); track != nameByIndex.cend(); ++track)
        list += u'\'' + QString::number(track.key()) + QStringLiteral("':") + track.value() +
                QStringLiteral(", ");
    list += u'}';
    return QStringLiteral("{audioTracks:") + list + QStringLiteral(", audioTrack:") +
           QString::number(currentIndex) + u'}';
}

} // namespace murvo
