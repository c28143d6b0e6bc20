// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWebEngineView>

#include <functional>

class QMimeData;

namespace murvo {

/// The web view of the home page and of the player page. It takes a single dropped file when drops are
/// allowed; the page sees that one comes over it and goes again ("dragenter", "dragleave"), but neither its
/// name nor the drop. It lets no key press that the page leaves over go further. Main thread only.
class MDragReceiverWebView : public QWebEngineView {
    Q_OBJECT

  public:
    using DropHandler = std::function<void(const QString &path)>;

    explicit MDragReceiverWebView(QWidget *parent = nullptr);

    /// Allows or refuses drops, for all views of the process together. Allowed at first.
    static void isDraggable(bool isAllowed);

    /// Called after an accepted drop, once the drag has ended.
    void setDropHandler(DropHandler handler);

  protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

  private:
    [[nodiscard]] static bool performDragOperation(const QMimeData *mimeData);
    void concludeDragOperation(const QMimeData *mimeData);

    static inline bool _isDraggable = true;
    DropHandler _dropHandler;
};

} // namespace murvo
