// SPDX-License-Identifier: GPL-3.0-or-later
#include "conformance/Screen.h"

#include "support/Wait.h"
#include "support/XTools.h"

#include <QDrag>
#include <QGuiApplication>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QSet>
#include <QTimer>
#include <QWindow>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace murvo::test::Screen {

using namespace std::chrono_literals;

namespace {

bool isAt(const QImage &piece, const QImage &whole, int x, int y) {
    const auto width = static_cast<std::size_t>(piece.width()) * sizeof(QRgb);
    for (int row = 0; row < piece.height(); ++row) {
        const auto *line = reinterpret_cast<const QRgb *>(whole.constScanLine(y + row));
        if (std::memcmp(line + x, piece.constScanLine(row), width) != 0)
            return false;
    }
    return true;
}

/// A place to drag from, which no window manager moves or gives the keys to.
class DragSource : public QWidget {
  public:
    explicit DragSource(const QList<QUrl> &urls)
        : QWidget(nullptr, Qt::X11BypassWindowManagerHint)
        , _urls(urls) {
        setGeometry(QRect(QPoint(0, screen()->geometry().bottom() - 40), QSize(60, 40)));
    }

    [[nodiscard]] bool isPressed() const { return _isPressed; }

    /// Runs until the button is up again.
    [[nodiscard]] bool dragTo(const QPoint &place) {
        auto *drag = new QDrag(this); // deleted by Qt when all is done
        auto *dragged = new QMimeData;
        dragged->setUrls(_urls);
        drag->setMimeData(dragged);
        bool isWelcome = false;
        connect(drag, &QDrag::actionChanged, this,
                [&](Qt::DropAction action) { isWelcome = action == Qt::CopyAction; });
        // The pointer never rests over the place: each move asks anew whether it may drop there.
        int moves = 0;
        QTimer mover;
        connect(&mover, &QTimer::timeout, this, [&] {
            constexpr int patience = 25;
            if (isWelcome || moves == patience) {
                mover.stop();
                run(QStringLiteral("xdotool"), {QStringLiteral("mouseup"), QStringLiteral("1")});
                return;
            }
            ++moves;
            run(QStringLiteral("xdotool"),
                {QStringLiteral("mousemove"), QString::number(place.x() + moves % 3),
                 QString::number(place.y())});
        });
        mover.start(20ms);
        const QPointer<QDrag> unfinished(drag);
        const bool isTaken = drag->exec(Qt::CopyAction) == Qt::CopyAction;
        EXPECT_TRUE(waitUntil([&] { return !unfinished; })) << "the other program fetches what was dropped";
        return isTaken;
    }

  protected:
    void mousePressEvent(QMouseEvent *) override { _isPressed = true; }

  private:
    QList<QUrl> _urls;
    bool _isPressed = false;
};

} // namespace

QImage picture(const QRect &area) {
    return QGuiApplication::primaryScreen()
        ->grabWindow(0, area.x(), area.y(), area.width(), area.height()) // of the root
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

qsizetype colorCount(const QRect &area) {
    const QImage seen = picture(area);
    QSet<QRgb> colors;
    for (int y = 0; y < seen.height(); ++y) {
        for (int x = 0; x < seen.width(); ++x)
            colors.insert(seen.pixel(x, y));
    }
    return colors.size();
}

bool shows(const QImage &piece, const QRect &area) {
    const QImage whole = picture(area);
    for (int y = 0; y <= whole.height() - piece.height(); ++y) {
        for (int x = 0; x <= whole.width() - piece.width(); ++x) {
            if (isAt(piece, whole, x, y))
                return true;
        }
    }
    return false;
}

QImage loaderText(const QString &text) {
    QLabel label(text);
    QPalette colors = label.palette();
    colors.setColor(QPalette::Window, QColor(0x14, 0x17, 0x1c));
    colors.setColor(QPalette::WindowText, QColor(0xd7, 0xdc, 0xe4));
    label.setPalette(colors);
    QFont font = label.font();
    font.setPointSizeF(font.pointSizeF() * 1.15);
    label.setFont(font);
    label.setAlignment(Qt::AlignCenter); // shifts letters by less than a pixel
    label.adjustSize();
    return label.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

QImage dialogText(const QString &text) {
    QLabel label(text);
    label.adjustSize();
    return label.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

bool isWarning(const XWindow &window, const QString &message, const QString &informativeText) {
    QMessageBox expected(QMessageBox::Warning, QStringLiteral("Murvo"), message, QMessageBox::Ok);
    expected.setInformativeText(informativeText);
    expected.setAttribute(Qt::WA_DontShowOnScreen);
    expected.show();
    if (!window.isDialog() || window.geometry().size() != expected.size())
        return false;
    const QList<QLabel *> labels = expected.findChildren<QLabel *>(); // the icon is one
    return std::all_of(labels.begin(), labels.end(), [&](QLabel *label) {
        return shows(label->grab().toImage().convertToFormat(QImage::Format_RGB32), window.geometry());
    });
}

bool drop(const QList<QUrl> &urls, const QPoint &place) {
    DragSource source(urls);
    source.show();
    EXPECT_TRUE(waitUntil([&] { return source.windowHandle()->isExposed(); }));
    const QPoint start = source.geometry().center();
    run(QStringLiteral("xdotool"),
        {QStringLiteral("mousemove"), QString::number(start.x()), QString::number(start.y()),
         QStringLiteral("mousedown"), QStringLiteral("1")});
    EXPECT_TRUE(waitUntil([&] { return source.isPressed(); }));
    return source.dragTo(place);
}

} // namespace murvo::test::Screen
