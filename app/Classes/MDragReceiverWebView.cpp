// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/MDragReceiverWebView.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>

namespace murvo {

namespace {

QStringList droppedPaths(const QMimeData *mimeData) {
    QStringList paths;
    const QList<QUrl> urls = mimeData->urls();
    for (const QUrl &url : urls) {
        if (url.isLocalFile())
            paths.append(url.toLocalFile());
    }
    return paths;
}

} // namespace

MDragReceiverWebView::MDragReceiverWebView(QWidget *parent)
    : QWebEngineView(parent) {
    setAcceptDrops(true);
}

void MDragReceiverWebView::isDraggable(bool isAllowed) {
    _isDraggable = isAllowed;
}

void MDragReceiverWebView::setDropHandler(DropHandler handler) {
    _dropHandler = std::move(handler);
}

bool MDragReceiverWebView::performDragOperation(const QMimeData *mimeData) {
    return _isDraggable && mimeData->urls().size() == 1 && droppedPaths(mimeData).size() == 1;
}

void MDragReceiverWebView::concludeDragOperation(const QMimeData *mimeData) {
    if (!_dropHandler)
        return;
    // The program that drags waits for the answer to the drop: the film is taken in after it.
    QMetaObject::invokeMethod(
        this, [this, path = droppedPaths(mimeData).first()] { _dropHandler(path); }, Qt::QueuedConnection);
}

void MDragReceiverWebView::dragEnterEvent(QDragEnterEvent *event) {
    if (!performDragOperation(event->mimeData())) {
        event->ignore();
        return;
    }
    // The page learns that something hangs over it, and nothing of what it is; moves are kept from it, as the
    // engine waits for the page's answer to each.
    QWebEngineView::dragEnterEvent(event);
    event->acceptProposedAction();
}

void MDragReceiverWebView::dragMoveEvent(QDragMoveEvent *event) {
    if (performDragOperation(event->mimeData()))
        event->acceptProposedAction();
    else
        event->ignore();
}

void MDragReceiverWebView::dropEvent(QDropEvent *event) {
    if (!performDragOperation(event->mimeData())) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    QDragLeaveEvent leave; // for the page, to which the drop is none
    dragLeaveEvent(&leave);
    concludeDragOperation(event->mimeData());
}

void MDragReceiverWebView::keyPressEvent(QKeyEvent *event) {
    event->accept();
}

void MDragReceiverWebView::contextMenuEvent(QContextMenuEvent *event) {
    event->accept();
}

} // namespace murvo
