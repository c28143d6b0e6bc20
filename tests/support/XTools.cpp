// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/XTools.h"

#include <QProcess>
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

QString xId(const QWidget &window) {
    return QStringLiteral("0x%1").arg(window.winId(), 0, 16);
}

QString property(const QWidget &window, const QString &name) {
    return run(QStringLiteral("xprop"), {QStringLiteral("-id"), xId(window), name}).trimmed();
}

QStringList stacking() {
    const QString line =
        run(QStringLiteral("xprop"), {QStringLiteral("-root"), QStringLiteral("_NET_CLIENT_LIST_STACKING")});
    QStringList ids = line.section(u'#', 1).trimmed().split(QStringLiteral(", "), Qt::SkipEmptyParts);
    for (QString &id : ids)
        id = id.trimmed();
    return ids;
}

} // namespace murvo::test
