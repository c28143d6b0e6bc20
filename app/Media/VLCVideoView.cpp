// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Media/VLCVideoView.h"

namespace murvo {

VLCVideoView::VLCVideoView(QWidget *parent)
    : QWidget(parent) {
    setAttribute(Qt::WA_NativeWindow);
    setAttribute(Qt::WA_DontCreateNativeAncestors);
    setAutoFillBackground(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void VLCVideoView::setBackColor(const QColor &color) {
    QPalette colors = palette();
    colors.setColor(QPalette::Window, color);
    setPalette(colors);
}

WId VLCVideoView::nativeWindow() const {
    return winId();
}

} // namespace murvo
