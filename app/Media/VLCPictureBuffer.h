// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QMutex>
#include <QObject>
#include <QSizeF>

namespace murvo {

/// The pictures of a film on their way from the media library's thread, which writes them, to the main
/// thread, which shows them. It holds three: one is written, one waits, one is shown, so neither side waits
/// for the other. A picture that is not fetched in time is replaced by the next.
class VLCPictureBuffer : public QObject {
    Q_OBJECT

  public:
    // Library's thread:

    /// Begins a film, or goes over to pictures of another size. Returns the size of the memory of each: bytes
    /// in a row, and rows; empty when there is not enough of it.
    [[nodiscard]] QSize begin(const QSize &pixels);
    /// Memory of the picture to be written, 32-bit words 0xXXRRGGBB.
    [[nodiscard]] uchar *writable();
    /// It is written, and its time has come. shape is how wide and high it is meant to look, in any unit;
    /// that of its pixels when empty.
    void publish(const QSizeF &shape);

    // Main thread:

    /// The picture to show, null when there is none; stays valid until the next call. isNew is whether it is
    /// another than that of the call before.
    [[nodiscard]] const QImage &current(bool &isNew);
    [[nodiscard]] QSizeF shape() const;
    /// Nothing to show any more.
    void clear();

  Q_SIGNALS:
    /// A picture waits; emitted on the library's thread.
    void published();

  private:
    mutable QMutex _mutex; // guards all that follow but _written
    QImage _written;       // the library's own between begin() and publish()
    QImage _waiting;
    QImage _shown;
    QSizeF _shape;
    bool _isWaiting = false;
};

} // namespace murvo
