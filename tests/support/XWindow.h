// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QMargins>
#include <QRect>
#include <QString>

namespace murvo::test {

/// A window of any program, as the X server and the window manager know it at this moment. It may be gone at
/// any time: everything is empty then.
class XWindow {
  public:
    explicit XWindow(quint32 id = 0)
        : _id(id) {}

    /// Those that the window manager lists for the process, bottom to top.
    [[nodiscard]] static QList<XWindow> ofProcess(qint64 pid);
    /// The window that has the keys.
    [[nodiscard]] static XWindow active();

    [[nodiscard]] quint32 id() const { return _id; }
    [[nodiscard]] bool exists() const { return _id != 0; }
    [[nodiscard]] QString title() const;
    /// On the screen, without the frame.
    [[nodiscard]] QRect geometry() const;
    /// What the window manager puts around it.
    [[nodiscard]] QMargins frame() const;
    [[nodiscard]] bool isViewable() const;
    [[nodiscard]] bool isDialog() const;
    [[nodiscard]] bool hasState(const char *atomName) const;
    [[nodiscard]] XWindow transientFor() const;
    /// From the size hints: width and height of the shape that it keeps; empty without one.
    [[nodiscard]] QSize aspect() const;

    /// As the window manager's close button and task bar do.
    void close() const;
    void activate() const;
    void minimise() const;
    void moveTo(const QPoint &position) const;
    void resize(const QSize &size) const;

    friend bool operator==(const XWindow &a, const XWindow &b) { return a._id == b._id; }

  private:
    [[nodiscard]] QList<quint32> values(const char *property) const;

    quint32 _id;
};

} // namespace murvo::test
