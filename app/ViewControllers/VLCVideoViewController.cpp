// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ViewControllers/VLCVideoViewController.h"

#include "app/Media/VLCMediaPlayer.h"
#include "app/Media/VLCVideoView.h"

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
    delete _view;
}

VLCVideoView *VLCVideoViewController::view() const {
    return _view;
}

VLCMediaPlayer &VLCVideoViewController::player() const {
    return *_player;
}

WebViewController &VLCVideoViewController::webViewController() const {
    return _webViewController;
}

} // namespace murvo
