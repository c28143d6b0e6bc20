// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ViewControllers/LoaderViewController.h"

#include "app/ViewControllers/Spinner.h"

#include <QLabel>
#include <QVBoxLayout>

namespace murvo {

LoaderViewController::LoaderViewController(QWidget *parentView)
    : QObject(parentView)
    , _view(new QWidget(parentView))
    , spinningWheel(new Spinner)
    , loaderLabel(new QLabel) {
    QPalette colors = _view->palette();
    colors.setColor(QPalette::Window, QColor(0x14, 0x17, 0x1c));
    colors.setColor(QPalette::WindowText, QColor(0xd7, 0xdc, 0xe4));
    _view->setPalette(colors);
    _view->setAutoFillBackground(true);
    loaderLabel->setAlignment(Qt::AlignCenter);
    QFont font = loaderLabel->font();
    font.setPointSizeF(font.pointSizeF() * 1.15);
    loaderLabel->setFont(font);
    loaderLabel->hide();

    auto *layout = new QVBoxLayout(_view);
    layout->addStretch(1);
    layout->addWidget(spinningWheel, 0, Qt::AlignHCenter);
    layout->addSpacing(14);
    layout->addWidget(loaderLabel, 0, Qt::AlignHCenter);
    layout->addStretch(1);
    _view->lower();
}

QWidget *LoaderViewController::view() const {
    return _view;
}

void LoaderViewController::showLoader(const QString &text) {
    spinningWheel->start();
    if (!text.isNull()) {
        loaderLabel->setText(text);
        loaderLabel->setAccessibleName(text);
        loaderLabel->show();
    }
    _view->raise();
}

void LoaderViewController::hideLoader() {
    spinningWheel->stop();
    loaderLabel->hide();
    _view->lower();
}

QString LoaderViewController::labelText() const {
    return loaderLabel->text();
}

bool LoaderViewController::isLabelHidden() const {
    return loaderLabel->isHidden();
}

} // namespace murvo
