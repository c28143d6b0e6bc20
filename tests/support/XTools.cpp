// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/XTools.h"

#include "support/XWindow.h"

#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QProcess>
#include <QRect>
#include <QScreen>
#include <QWidget>

#include <gtest/gtest.h>

namespace murvo::test {

QString run(const QString &program, const QStringList &arguments) {
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(10000)) << program.toStdString();
    EXPECT_EQ(process.exitCode(), 0) << program.toStdString() << ' ' << arguments.join(u' ').toStdString()
                                     << '\n'
                                     << process.readAllStandardError().toStdString();
    return QString::fromUtf8(process.readAllStandardOutput());
}

namespace {

void xdotool(const QString &words) {
    run(QStringLiteral("xdotool"), words.split(u' '));
}

QString moveTo(const QPoint &position) {
    return QStringLiteral("mousemove %1 %2 ").arg(position.x()).arg(position.y());
}

} // namespace

void clickAt(const QPoint &position, int times) {
    xdotool(moveTo(position) + QStringLiteral("click --repeat %1 --delay 60 1").arg(times));
}

void controlDoubleClickAt(const QPoint &position) {
    xdotool(moveTo(position) + QStringLiteral("keydown ctrl click --repeat 2 --delay 60 1 keyup ctrl"));
}

void pressKey(const QString &key) {
    xdotool(QStringLiteral("key ") + key);
}

QColor screenColor(const QPoint &position) {
    const QPixmap pixel =
        QGuiApplication::primaryScreen()->grabWindow(0, position.x(), position.y(), 1, 1); // of the root
    return pixel.isNull() ? QColor() : pixel.toImage().pixelColor(0, 0);
}

void typeInstead(const QString &text) {
    pressKey(QStringLiteral("ctrl+a"));
    run(QStringLiteral("xdotool"),
        {QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("4"), text});
}

QRect screenRect(const QWidget &window) {
    return XWindow(static_cast<quint32>(window.winId())).geometry();
}

} // namespace murvo::test
