// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/MKeyableWindow.h"

#include "app/Classes/LenientNumber.h"
#include "app/Classes/MDragReceiverWebView.h"
#include "app/Classes/PageScripts.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/WebViewController.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWindow>

namespace murvo {

MKeyableWindow::MKeyableWindow(MainWindow &mainWindow, WebViewController &page, QWidget *parent)
    : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint)
    , _mainWindow(mainWindow)
    , _page(page) {
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowTitle(mainWindow.windowTitle());
}

void MKeyableWindow::makeKeyWindow() {
    if (!isVisible())
        return;
    activateWindow();
    _page.view()->setFocus();
}

bool MKeyableWindow::event(QEvent *event) {
    // The window's own events pass here before Qt hands them to the widget under the pointer. The web view
    // makes Qt create the native window anew.
    if ((event->type() == QEvent::Show || event->type() == QEvent::WinIdChange) && windowHandle())
        windowHandle()->installEventFilter(this);
    return QWidget::event(event);
}

bool MKeyableWindow::eventFilter(QObject *watched, QEvent *event) {
    return watched == windowHandle() && event != _handedOn && sendEvent(event);
}

bool MKeyableWindow::sendEvent(QEvent *event) {
    switch (event->type()) {
    case QEvent::MouseButtonDblClick: {
        const auto *click = static_cast<QMouseEvent *>(event);
        if (click->button() != Qt::LeftButton || click->modifiers().testFlag(Qt::ControlModifier))
            return false;
        handleDoubleClick(*click);
        return true;
    }
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
        if (static_cast<QKeyEvent *>(event)->key() != Qt::Key_Escape)
            return false;
        if (event->type() == QEvent::KeyPress && _mainWindow.isFullScreen())
            _mainWindow.toggleFullScreen();
        event->accept();
        return true;
    default:
        return false;
    }
}

void MKeyableWindow::handleDoubleClick(const QMouseEvent &click) {
    // While the page answers Qt may write other positions into the event: it shares its points with those
    // that follow.
    const QPointF position = click.position();
    const QPointF globalPosition = click.globalPosition();
    const QString answer = _page.evaluate(PageScripts::nextSubtitleTop());
    if (!isVisible()) // the film has ended while the page answered
        return;
    double top = 0;
    const bool isAnswered = scanDouble(answer, top);
    const double distanceFromBottom = height() - position.y();
    const double frameHeight = _mainWindow.frameGeometry().height();
    if (isAnswered && (top == 0 || distanceFromBottom > frameHeight - top)) {
        _mainWindow.toggleFullScreen();
        return;
    }
    QMouseEvent copy(click.type(), position, position, globalPosition, click.button(), click.buttons(),
                     click.modifiers(), click.source(), click.pointingDevice());
    copy.setTimestamp(click.timestamp());
    _handedOn = &copy;
    QCoreApplication::sendEvent(windowHandle(), &copy);
    _handedOn = nullptr;
}

void MKeyableWindow::keyPressEvent(QKeyEvent *event) {
    event->accept();
}

void MKeyableWindow::closeEvent(QCloseEvent *event) {
    // A close wished by the window manager (Alt+F4 while the page has the keys) is meant for the main window.
    event->ignore();
    QMetaObject::invokeMethod(&_mainWindow, &QWidget::close, Qt::QueuedConnection);
}

} // namespace murvo
