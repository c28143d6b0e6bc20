// SPDX-License-Identifier: GPL-3.0-or-later
#include "conformance/Program.h"

#include "support/Wait.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSettings>

#include <gtest/gtest.h>

#include <algorithm>

namespace murvo::test {

using namespace std::chrono_literals;

Program::Program() {
    for (const char *name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME",
                             "XDG_RUNTIME_DIR"}) {
        const QString folder = path(QString::fromLatin1(name).toLower());
        QDir().mkpath(folder);
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        setVariable(name, folder);
    }
    QObject::connect(&_process, &QProcess::readyReadStandardError, &_process,
                     [this] { _log += QString::fromUtf8(_process.readAllStandardError()); });
}

Program::~Program() {
    _process.disconnect();
    _process.kill();
    _process.waitForFinished();
}

void Program::setVariable(const char *name, const QString &value) {
    _environment.insert(QString::fromLatin1(name), value);
}

void Program::removeVariable(const char *name) {
    _environment.remove(QString::fromLatin1(name));
}

void Program::installBrowser() {
    QFile browser(path(QStringLiteral("xdg-open")));
    ASSERT_TRUE(browser.open(QIODevice::WriteOnly));
    browser.write(
        "#!/bin/sh\necho \"$1\" >\"${0%/*}/opened.new\" && mv \"${0%/*}/opened.new\" \"${0%/*}/opened\"\n");
    browser.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    setVariable("PATH", path(QStringLiteral(".")) + u':' + qEnvironmentVariable("PATH"));
}

QString Program::takeOpenedAddress() const {
    QFile opened(path(QStringLiteral("opened")));
    if (!opened.open(QIODevice::ReadOnly))
        return {};
    const QString address = QString::fromUtf8(opened.readAll()).trimmed();
    opened.remove();
    return address;
}

void Program::setPreference(const QString &key, const QString &value) const {
    QSettings(path(QStringLiteral("xdg_config_home/Murvo/Murvo.conf")), QSettings::IniFormat)
        .setValue(key, value);
}

void Program::start(const QStringList &arguments, const QString &baseUrl) {
    removeVariable("MURVO_BASE_URL");
    if (!baseUrl.isNull())
        setVariable("MURVO_BASE_URL", baseUrl);
    run(QStringLiteral(MURVO_PROGRAM), arguments);
}

void Program::startBy(const QString &other, const QStringList &othersArguments,
                      const QStringList &arguments) {
    run(other, othersArguments + QStringList{QStringLiteral(MURVO_PROGRAM)} + arguments);
}

void Program::run(const QString &program, const QStringList &arguments) {
    _log.clear();
    _process.setProcessEnvironment(_environment);
    _process.start(program, arguments);
    ASSERT_TRUE(_process.waitForStarted()) << program.toStdString();
}

int Program::startAgain(const QStringList &arguments, const QString &workingFolder) const {
    QProcess second;
    second.setProcessEnvironment(_environment);
    second.setWorkingDirectory(workingFolder);
    second.start(QStringLiteral(MURVO_PROGRAM), arguments);
    const bool hasEnded = waitUntil([&] { return second.state() == QProcess::NotRunning; }, 20s);
    return hasEnded && second.exitStatus() == QProcess::NormalExit ? second.exitCode() : -1;
}

bool Program::waitForEnd(std::chrono::milliseconds limit) const {
    return waitUntil([this] { return !isRunning(); }, limit);
}

int Program::exitStatus() const {
    return _process.exitStatus() == QProcess::NormalExit ? _process.exitCode() : -1;
}

QStringList Program::logLines() const {
    return _log.split(u'\n', Qt::SkipEmptyParts);
}

QStringList Program::logged(const QStringList &beginnings) const {
    static const QRegularExpression head(QStringLiteral("^[-\\d]+ [:.\\d]+ [a-z]+ [\\w.-]+: "));
    QStringList found;
    const QStringList lines = logLines();
    for (QString line : lines) {
        line.remove(head);
        if (std::any_of(beginnings.begin(), beginnings.end(),
                        [&](const QString &beginning) { return line.startsWith(beginning); }))
            found.append(line);
    }
    return found;
}

QStringList Program::logged(const char *beginning) const {
    return logged(QStringList{QString::fromLatin1(beginning)});
}

void Program::expectOnlyLogLines() const {
    static const QRegularExpression own(QStringLiteral(
        "^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} (debug|info|warning|critical) [\\w.-]+: "));
    static const QRegularExpression engine(QStringLiteral("^\\[\\d+:\\d+:\\d+/\\d+\\.\\d+:[A-Z]+:.*\\] "));
    const QStringList lines = logLines();
    for (const QString &line : lines)
        EXPECT_TRUE(line.contains(own) || line.contains(engine)) << line.toStdString();
}

QList<qint64> Program::pageProcesses() const {
    const auto read = [](qint64 process, const char *name) {
        QFile file(QStringLiteral("/proc/%1/%2").arg(process).arg(QLatin1String(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const auto isOurs = [&](qint64 process) {
        while (process > 1 && process != _process.processId()) {
            const QByteArray status = read(process, "stat");
            process = status.mid(status.lastIndexOf(')') + 1).split(' ').value(2).toLongLong(); // the parent
        }
        return process > 1;
    };
    QList<qint64> found;
    const QStringList all = QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs);
    for (const QString &each : all) {
        const qint64 process = each.toLongLong();
        if (read(process, "cmdline").contains("--type=renderer") && isOurs(process))
            found.append(process);
    }
    return found;
}

XWindow Program::mainWindow() const {
    const QList<XWindow> all = windows();
    const auto found = std::find_if(all.begin(), all.end(), [](const XWindow &window) {
        return !window.isDialog() && !window.transientFor().exists();
    });
    return found == all.end() ? XWindow() : *found;
}

XWindow Program::childOf(const XWindow &window) const {
    const QList<XWindow> all = windows();
    const auto found = std::find_if(all.begin(), all.end(), [&](const XWindow &child) {
        return window.exists() && !child.isDialog() && child.transientFor() == window;
    });
    return found == all.end() ? XWindow() : *found;
}

XWindow Program::videoWindow() const {
    return childOf(mainWindow());
}

XWindow Program::pageWindow() const {
    return childOf(videoWindow());
}

XWindow Program::dialog() const {
    const QList<XWindow> all = windows();
    const auto found =
        std::find_if(all.rbegin(), all.rend(), [](const XWindow &window) { return window.isDialog(); });
    return found == all.rend() ? XWindow() : *found;
}

} // namespace murvo::test
