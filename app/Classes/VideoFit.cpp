// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/VideoFit.h"

namespace murvo {

QSizeF fitVideo(const QSizeF &video, const QSizeF &screen) {
    const QSizeF bounds = screen * 0.8;
    QSizeF fitted = video;
    if (video.height() > bounds.height())
        fitted = {bounds.height() * video.width() / video.height(), bounds.height()};
    if (fitted.width() > bounds.width())
        fitted = {bounds.width(), video.height() * bounds.width() / video.width()};
    return fitted;
}

} // namespace murvo
