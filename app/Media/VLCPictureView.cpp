// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Media/VLCPictureView.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QOpenGLPixelTransferOptions>
#include <QOpenGLTexture>

namespace murvo {

VLCPictureView::VLCPictureView(QWidget *parent)
    : QOpenGLWidget(parent) {
    connect(&_pictures, &VLCPictureBuffer::published, this, qOverload<>(&QWidget::update),
            Qt::QueuedConnection);
}

VLCPictureView::~VLCPictureView() {
    releaseGL();
    if (context())
        context()->disconnect(this); // it goes after this part of the widget
}

void VLCPictureView::clear() {
    _pictures.clear();
    update();
}

void VLCPictureView::initializeGL() {
    // Comes again when the window is given another context.
    connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, &VLCPictureView::releaseGL,
            Qt::UniqueConnection);
    _blitter.create();
}

void VLCPictureView::releaseGL() {
    if (!context())
        return;
    makeCurrent();
    _texture.reset();
    _blitter.destroy();
    doneCurrent();
}

void VLCPictureView::upload(const QImage &picture) {
    if (!_texture || _texture->width() != picture.width() || _texture->height() != picture.height()) {
        _texture = std::make_unique<QOpenGLTexture>(QOpenGLTexture::Target2D);
        _texture->setFormat(QOpenGLTexture::RGBA8_UNorm);
        _texture->setSize(picture.width(), picture.height());
        _texture->setMinMagFilters(QOpenGLTexture::Linear, QOpenGLTexture::Linear);
        _texture->setWrapMode(QOpenGLTexture::ClampToEdge);
        _texture->allocateStorage(QOpenGLTexture::RGBA, QOpenGLTexture::UInt8);
    }
    constexpr int bytesPerPixel = 4;
    QOpenGLPixelTransferOptions layout;
    layout.setRowLength(static_cast<int>(picture.bytesPerLine()) / bytesPerPixel);
    _texture->setData(QOpenGLTexture::RGBA, QOpenGLTexture::UInt8, picture.constBits(), &layout);
}

void VLCPictureView::paintGL() {
    QOpenGLFunctions *gl = context()->functions();
    gl->glClearColor(0, 0, 0, 1);
    gl->glClear(GL_COLOR_BUFFER_BIT);
    bool isNew = false;
    const QImage &picture = _pictures.current(isNew);
    if (picture.isNull())
        return;
    if (isNew || !_texture)
        upload(picture);
    const QRectF whole(QPointF(), QSizeF(size()) * devicePixelRatioF());
    QRectF place(QPointF(), _pictures.shape().scaled(whole.size(), Qt::KeepAspectRatio));
    place.moveCenter(whole.center());
    gl->glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE); // the fourth byte of a pixel says nothing
    _blitter.bind();
    _blitter.setRedBlueSwizzle(true); // the bytes lie as B, G, R
    _blitter.blit(_texture->textureId(), QOpenGLTextureBlitter::targetTransform(place, whole.toAlignedRect()),
                  QOpenGLTextureBlitter::OriginTopLeft);
    _blitter.release();
    gl->glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

} // namespace murvo
