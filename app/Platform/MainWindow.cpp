// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Platform/MainWindow.h"

#include "app/Platform/X11WindowManager.h"

#include <QCloseEvent>
#include <QMenuBar>
#include <QScreen>
#include <QWindow>

#include <chrono>

namespace murvo {

namespace {

// What a window manager takes at the most to give a new window its frame, or to put it back after full
// screen.
constexpr std::chrono::seconds frameTime{3};

} // namespace

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
    , _content(new QWidget(this)) {
    setWindowTitle(QStringLiteral("Murvo"));
    _content->setAutoFillBackground(true);
    _content->setMinimumSize(1, 1);
    setCentralWidget(_content);
    _content->installEventFilter(this);
}

QWidget *MainWindow::contentView() const {
    return _content;
}

QRect MainWindow::contentScreenRect() const {
    return {_content->mapToGlobal(QPoint()), _content->size()};
}

int MainWindow::menuBarHeight() const {
    const QMenuBar *bar = menuBar();
    return bar->isVisibleTo(this) && !bar->isNativeMenuBar() ? bar->sizeHint().height() : 0;
}

QSize MainWindow::outerSize(const QSizeF &contentSize) const {
    return {qRound(contentSize.width()), qRound(contentSize.height()) + menuBarHeight()};
}

void MainWindow::setContentSize(const QSizeF &size) {
    if (isFullScreen()) {
        _sizeAfterFullScreen = size;
        return;
    }
    if (isMaximized())
        showNormal();
    resize(outerSize(size));
    _askedSize = size;
    _isAskedToCenter = false;
    _sinceAsked.start();
}

void MainWindow::setContentAspectRatio(const QSize &ratio) {
    _aspectRatio = ratio;
    _isAspectKept = true;
    applyAspectHint();
}

QSize MainWindow::contentAspectRatio() const {
    return _aspectRatio;
}

void MainWindow::liftContentAspectRatio() {
    _isAspectKept = false;
    applyAspectHint();
}

void MainWindow::applyAspectHint() const {
    if (windowHandle())
        setContentAspectHint(*windowHandle(), _isAspectKept ? _aspectRatio : QSize(), {0, menuBarHeight()});
}

void MainWindow::center() {
    moveToCenter();
    _isAskedToCenter = true;
    _sinceAsked.start();
}

void MainWindow::moveToCenter() {
    const QScreen *screen = this->screen();
    if (!screen)
        return;
    QRect frame = frameGeometry();
    frame.moveCenter(screen->geometry().center());
    move(frame.topLeft());
}

void MainWindow::frameChanged() {
    // Size and place were asked for with the frame of before.
    if (!_sinceAsked.isValid() || _sinceAsked.hasExpired(std::chrono::milliseconds(frameTime).count())) {
        _askedSize = {};
        _isAskedToCenter = false;
    }
    if (isFullScreen() || isMaximized())
        return;
    if (_askedSize.isValid())
        resize(outerSize(_askedSize));
    if (_isAskedToCenter)
        moveToCenter();
}

void MainWindow::toggleFullScreen() {
    if (!isFullScreen()) { // on the way back the window takes its place of now
        _askedSize = {};
        _isAskedToCenter = false;
    }
    setWindowState(windowState() ^ Qt::WindowFullScreen); // a maximised window is so again afterwards
    activateWindow(); // window managers lift the player's windows over a full-screen one only with the focus
}

void MainWindow::setShouldClose(std::function<bool()> shouldClose) {
    _shouldClose = std::move(shouldClose);
}

void MainWindow::moveEvent(QMoveEvent *event) {
    QMainWindow::moveEvent(event);
    Q_EMIT didMove();
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event) {
    // The content also changes when the window does not: the menu bar comes and goes above it.
    if (watched == _content && event->type() == QEvent::Resize)
        Q_EMIT didResize();
    if (watched == _content && event->type() == QEvent::Move)
        Q_EMIT didMove();
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::changeEvent(QEvent *event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        Q_EMIT didBecomeKey();
    if (event->type() != QEvent::WindowStateChange)
        return;
    const bool wasFullScreen =
        static_cast<QWindowStateChangeEvent *>(event)->oldState().testFlag(Qt::WindowFullScreen);
    if (wasFullScreen == isFullScreen())
        return;
    menuBar()->setVisible(!isFullScreen());
    if (isFullScreen()) {
        Q_EMIT didEnterFullScreen();
        return;
    }
    if (const QSizeF size = std::exchange(_sizeAfterFullScreen, {}); size.isValid()) {
        setContentSize(size);
        center();
    }
    Q_EMIT didExitFullScreen();
}

void MainWindow::closeEvent(QCloseEvent *event) {
    event->setAccepted(!_shouldClose || _shouldClose());
}

bool MainWindow::nativeEvent(const QByteArray &, void *message, qintptr *) {
    if (windowHandle() && isSizeHintsChange(*windowHandle(), message))
        applyAspectHint(); // Qt has written the hints, without the aspect
    if (windowHandle() && isFrameChange(*windowHandle(), message))
        QMetaObject::invokeMethod(this, &MainWindow::frameChanged, Qt::QueuedConnection); // once Qt knows it
    return false;
}

} // namespace murvo
