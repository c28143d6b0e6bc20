// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSizeF>

namespace murvo {

/// The size of a window's content for a video: the video's own size, made smaller with its shape kept where
/// it would take more than four fifths of the screen in height or width. Nothing is rounded.
[[nodiscard]] QSizeF fitVideo(const QSizeF &video, const QSizeF &screen);

} // namespace murvo
