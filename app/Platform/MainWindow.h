// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QMainWindow>
#include <QSizeF>

#include <functional>

namespace murvo {

/// The one ordinary window: title bar, menu bar and a content area that holds the home screen and, during a
/// film, lies beneath the two windows of the player. It reports what happens to it and decides nothing.
/// Sizes are in device-independent pixels. Main thread only.
class MainWindow : public QMainWindow {
    Q_OBJECT

  public:
    explicit MainWindow(QWidget *parent = nullptr);

    /// The area beneath the menu bar; views are its children and fill it.
    [[nodiscard]] QWidget *contentView() const;
    /// The content area on the screen.
    [[nodiscard]] QRect contentScreenRect() const;

    /// Leaves a maximised state first; in full screen it holds from its end on. The frame and the menu bar
    /// come on top of the size.
    void setContentSize(const QSizeF &size);
    /// Keeps the content's shape while the user resizes.
    void setContentAspectRatio(const QSize &ratio);
    /// Empty until one is set.
    [[nodiscard]] QSize contentAspectRatio() const;
    /// Any size again.
    void liftContentAspectRatio();
    /// Puts the frame into the middle of its screen.
    void center();
    void toggleFullScreen();

    /// Asked when the user closes the window; a refused close leaves it open.
    void setShouldClose(std::function<bool()> shouldClose);

    bool eventFilter(QObject *watched, QEvent *event) override;

  Q_SIGNALS:
    /// The content area has another size, or another place on the screen.
    void didResize();
    void didMove();
    void didBecomeKey();
    void didEnterFullScreen();
    void didExitFullScreen();

  protected:
    void moveEvent(QMoveEvent *event) override;
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    bool nativeEvent(const QByteArray &eventType, void *message, qintptr *result) override;

  private:
    [[nodiscard]] int menuBarHeight() const;
    [[nodiscard]] QSize outerSize(const QSizeF &contentSize) const;
    void frameChanged();
    void moveToCenter();
    void applyAspectHint() const;

    QWidget *_content;
    QSizeF _sizeAfterFullScreen; // content size to take on leaving it; invalid when none was asked for
    // The last wishes: fulfilled anew when the window manager changes the frame soon after them.
    QElapsedTimer _sinceAsked;
    QSizeF _askedSize;
    bool _isAskedToCenter = false;
    QSize _aspectRatio;
    bool _isAspectKept = false;
    std::function<bool()> _shouldClose;
};

} // namespace murvo
