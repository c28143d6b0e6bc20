// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestFilms.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringList>

namespace murvo::test {

namespace {

QString made(const QString &name, const QStringList &arguments) {
    // A folder for each way of making, so that none is kept from an earlier one.
    const QByteArray way =
        QCryptographicHash::hash(arguments.join(u' ').toUtf8(), QCryptographicHash::Sha256);
    const QDir folder(QStringLiteral(MURVO_TEST_FILMS) + u'/' + QString::fromLatin1(way.toHex().left(8)));
    QString path = folder.filePath(name);
    if (QFile::exists(path))
        return path;
    folder.mkpath(QStringLiteral("."));
    // Made under another name first: test programs may run side by side.
    const QString draft = folder.filePath(QString::number(QCoreApplication::applicationPid()) + u'-' + name);
    const QStringList all = QStringList{QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y")} +
                            arguments + QStringList{draft};
    if (QProcess::execute(QStringLiteral("ffmpeg"), all) != 0)
        qFatal("ffmpeg could not make %s", qPrintable(name));
    QFile::rename(draft, path);
    QFile::remove(draft); // when another program was faster
    return path;
}

QStringList words(const char *text) {
    return QString::fromLatin1(text).split(u' ');
}

} // namespace

QString filmWithTwoAudioTracks() {
    return made(QStringLiteral("two-tracks.mkv"),
                words("-f lavfi -i testsrc2=s=640x360:r=25:d=20 -f lavfi -i sine=f=220:d=20 -f lavfi -i "
                      "sine=f=880:d=20 "
                      "-map 0 -map 1 -map 2 -c:v libx264 -preset ultrafast -g 25 -c:a aac "
                      "-metadata:s:a:0 title=Low -metadata:s:a:0 language=und "
                      "-metadata:s:a:1 title=High -metadata:s:a:1 language=und"));
}

QString anamorphicFilm() {
    return made(QStringLiteral("anamorphic.ts"),
                words("-f lavfi -i testsrc2=s=640x360:r=25:d=20 -vf setsar=2/1 -c:v libx264 "
                      "-preset ultrafast -g 25"));
}

QString largeFilm() {
    return made(QStringLiteral("large.mkv"),
                words("-f lavfi -i testsrc2=s=1600x900:r=5:d=4 -c:v libx264 -preset ultrafast"));
}

QString shortFilm() {
    return made(QStringLiteral("short.mkv"),
                words("-f lavfi -i testsrc2=s=320x240:r=25:d=4.9 -f lavfi -i sine=f=440:d=4.9 "
                      "-c:v libx264 -preset ultrafast -g 25 -c:a aac"));
}

QString filmWithLateIndex() {
    return made(QStringLiteral("late-index.mp4"),
                words("-f lavfi -i testsrc2=s=320x240:r=25:d=4 -f lavfi -i sine=f=440:d=4 "
                      "-c:v libx264 -preset ultrafast -c:a aac"));
}

QString soundOnly() {
    return made(QStringLiteral("sound.mka"), words("-f lavfi -i sine=f=440:d=4 -c:a aac"));
}

QString silentFilm() {
    return made(QStringLiteral("silent.mkv"),
                words("-f lavfi -i testsrc2=s=320x240:r=25:d=4 -c:v libx264 -preset ultrafast"));
}

QString filmWithFrameNumbers(int seconds) {
    // A picture of one pixel for each digit, made large.
    const QString picture =
        QStringLiteral(
            "color=black:s=%1x2:r=%2:d=%3,format=gray,geq=lum='10+235*mod(floor(N/pow(2\\,%1-1-X))\\,2)',"
            "scale=640:360:flags=neighbor,format=yuv420p")
            .arg(frameBars)
            .arg(1000 / frameMs)
            .arg(seconds);
    return made(QStringLiteral("frame-numbers.mkv"),
                {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"), picture,
                 QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                 QStringLiteral("sine=f=440:d=%1").arg(seconds), QStringLiteral("-c:v"),
                 QStringLiteral("libx264"), QStringLiteral("-preset"), QStringLiteral("ultrafast"),
                 QStringLiteral("-g"), QStringLiteral("50"), QStringLiteral("-c:a"), QStringLiteral("aac")});
}

} // namespace murvo::test
