// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Media/VLCPictureBuffer.h"

#include <QOpenGLTextureBlitter>
#include <QOpenGLWidget>

#include <memory>

class QOpenGLTexture;

namespace murvo {

/// Shows the film's pictures within the window of the page, beneath the page, as large as fits with the
/// picture's shape kept; black elsewhere. For desktops that cannot let one window shine through another. Main
/// thread only.
class VLCPictureView : public QOpenGLWidget {
    Q_OBJECT

  public:
    explicit VLCPictureView(QWidget *parent = nullptr);
    ~VLCPictureView() override;

    /// Where the pictures come from.
    [[nodiscard]] VLCPictureBuffer &pictures() { return _pictures; }
    /// Black until the next picture.
    void clear();

  protected:
    void initializeGL() override;
    void paintGL() override;

  private:
    void upload(const QImage &picture);
    void releaseGL();

    VLCPictureBuffer _pictures;
    QOpenGLTextureBlitter _blitter;
    std::unique_ptr<QOpenGLTexture> _texture;
};

} // namespace murvo
