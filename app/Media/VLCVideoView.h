// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QWidget>

namespace murvo {

/// The native window in which the media library draws the picture, as large as fits with the picture's shape
/// kept. Where no picture is, the background colour shows. Main thread only.
class VLCVideoView : public QWidget {
    Q_OBJECT

  public:
    explicit VLCVideoView(QWidget *parent = nullptr);

    void setBackColor(const QColor &color);

    /// X11 window identifier; stays the same for the view's life.
    [[nodiscard]] WId nativeWindow() const;
};

} // namespace murvo
