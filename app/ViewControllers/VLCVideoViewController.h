// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QPointer>

#include <memory>

namespace murvo {

class VLCInstance;
class VLCMediaPlayer;
class VLCPictureView;
class VLCVideoView;
class WebViewController;

/// Owns the player and the view that it draws into, and knows the page that belongs to the film. Lives from
/// the first film to the end of the program. Main thread only.
class VLCVideoViewController : public QObject {
    Q_OBJECT

  public:
    /// All are borrowed and must outlive the controller; parentView is the video window's content.
    VLCVideoViewController(const VLCInstance &instance, WebViewController &page, QWidget *parentView);
    ~VLCVideoViewController() override;

    [[nodiscard]] VLCVideoView *view() const;
    /// Null unless pictures are shown within the page's window.
    [[nodiscard]] VLCPictureView *pictureView() const;
    /// Shows the films that follow within the page's window, beneath the page, in place of the video window.
    /// Cannot be called while a film plays.
    void setPictureBeneathPage(bool isBeneathPage);
    [[nodiscard]] VLCMediaPlayer &player() const;
    [[nodiscard]] WebViewController &webViewController() const;

  private:
    QPointer<VLCVideoView> _view;
    QPointer<VLCPictureView> _pictureView;
    std::unique_ptr<VLCMediaPlayer> _player; // before the view goes
    WebViewController &_webViewController;
};

} // namespace murvo
