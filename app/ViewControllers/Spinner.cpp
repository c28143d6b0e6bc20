// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ViewControllers/Spinner.h"

#include <QPainter>

#include <chrono>

namespace murvo {

namespace {
constexpr int spokes = 12;
constexpr std::chrono::milliseconds stepTime{1000 / spokes};
constexpr int sidePx = 44;
} // namespace

Spinner::Spinner(QWidget *parent)
    : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    _timer.setInterval(stepTime);
    connect(&_timer, &QTimer::timeout, this, [this] {
        _step = (_step + 1) % spokes;
        update();
    });
}

void Spinner::start() {
    _timer.start();
    update();
}

void Spinner::stop() {
    _timer.stop();
    update();
}

bool Spinner::isSpinning() const {
    return _timer.isActive();
}

QSize Spinner::sizeHint() const {
    return {sidePx, sidePx};
}

void Spinner::paintEvent(QPaintEvent *) {
    if (!isSpinning())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect().center());
    const double radius = qMin(width(), height()) / 2.0 - 2;
    QColor color = palette().color(QPalette::WindowText);
    painter.rotate(360.0 / spokes * _step);
    for (int spoke = 0; spoke < spokes; ++spoke) {
        color.setAlphaF(0.12F + 0.88F * static_cast<float>(spoke) / spokes);
        painter.setPen(QPen(color, radius / 6, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(0, -radius * 0.55), QPointF(0, -radius * 0.95));
        painter.rotate(360.0 / spokes);
    }
}

} // namespace murvo
