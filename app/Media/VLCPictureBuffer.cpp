// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Media/VLCPictureBuffer.h"

#include <cstdlib>
#include <cstring>
#include <utility>

namespace murvo {

namespace {

// What the library's fast converters like: rows and columns of whole blocks.
constexpr int block = 32;

int wholeBlocks(int size) {
    return (size + block - 1) / block * block;
}

QSize memorySize(const QSize &pixels) {
    constexpr int bytesPerPixel = 4;
    return {wholeBlocks(pixels.width() * bytesPerPixel), wholeBlocks(pixels.height())};
}

QImage blank(const QSize &pixels) {
    const QSize memory = memorySize(pixels);
    const auto bytes = static_cast<size_t>(memory.width()) * static_cast<size_t>(memory.height());
    auto *bits = static_cast<uchar *>(std::aligned_alloc(block, bytes));
    if (!bits)
        return {};
    std::memset(bits, 0, bytes);
    return {bits, pixels.width(), pixels.height(), memory.width(), QImage::Format_RGB32, std::free, bits};
}

} // namespace

QSize VLCPictureBuffer::begin(const QSize &pixels) {
    _written = blank(pixels);
    const QMutexLocker lock(&_mutex);
    _waiting = blank(pixels);
    _isWaiting = false;
    return _written.isNull() || _waiting.isNull() ? QSize() : memorySize(pixels);
}

uchar *VLCPictureBuffer::writable() {
    return _written.bits();
}

void VLCPictureBuffer::publish(const QSizeF &shape) {
    {
        const QMutexLocker lock(&_mutex);
        // The picture that comes back is the one shown last: null at first, later perhaps of another size.
        const QSize size = _written.size();
        if (_waiting.size() != size)
            _waiting = blank(size);
        if (_waiting.isNull())
            return; // no memory: the picture is written once more
        std::swap(_written, _waiting);
        _shape = shape.isEmpty() ? QSizeF(size) : shape;
        _isWaiting = true;
    }
    Q_EMIT published();
}

const QImage &VLCPictureBuffer::current(bool &isNew) {
    const QMutexLocker lock(&_mutex);
    isNew = std::exchange(_isWaiting, false);
    if (isNew)
        std::swap(_shown, _waiting);
    return _shown;
}

QSizeF VLCPictureBuffer::shape() const {
    const QMutexLocker lock(&_mutex);
    return _shape;
}

void VLCPictureBuffer::clear() {
    const QMutexLocker lock(&_mutex);
    _isWaiting = false;
    _shown = {};
}

} // namespace murvo
