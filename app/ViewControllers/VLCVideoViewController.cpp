// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ViewControllers/VLCVideoViewController.h"

#include "app/Classes/MDragReceiverWebView.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Media/VLCPictureView.h"
#include "app/Media/VLCVideoView.h"
#include "app/ViewControllers/WebViewController.h"

#include <QLayout>

namespace murvo {

VLCVideoViewController::VLCVideoViewController(const VLCInstance &instance, WebViewController &page,
                                               QWidget *parentView)
    : _view(new VLCVideoView(parentView))
    , _webViewController(page) {
    _view->setBackColor(QColor::fromRgbF(0.93F, 0.93F, 0.93F));
    _player = std::make_unique<VLCMediaPlayer>(instance, _view);
}

VLCVideoViewController::~VLCVideoViewController() {
    _player.reset();
    delete _pictureView;
    delete _view;
}

VLCVideoView *VLCVideoViewController::view() const {
    return _view;
}

VLCPictureView *VLCVideoViewController::pictureView() const {
    return _pictureView;
}

void VLCVideoViewController::setPictureBeneathPage(bool isBeneathPage) {
    if (!isBeneathPage) {
        _player->setPictureBuffer(nullptr);
        delete _pictureView;
        return;
    }
    if (!_pictureView) {
        QWidget *page = _webViewController.view();
        _pictureView = new VLCPictureView(page->parentWidget());
        page->parentWidget()->layout()->addWidget(_pictureView);
        page->raise();
    }
    _pictureView->clear();
    _player->setPictureBuffer(&_pictureView->pictures());
}

VLCMediaPlayer &VLCVideoViewController::player() const {
    return *_player;
}

WebViewController &VLCVideoViewController::webViewController() const {
    return _webViewController;
}

} // namespace murvo
