// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/XWindow.h"

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <chrono>

namespace murvo::test {

/// The program as a process, with a home, data, settings and a runtime folder of its own, all empty at first.
/// It is known by what it logs, by its windows and by its exit status only. Killed when this ends.
class Program {
  public:
    Program();
    ~Program();
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    // Before the start
    void setVariable(const char *name, const QString &value);
    void removeVariable(const char *name);
    /// Gives the user a browser, which only tells what it opens.
    void installBrowser();
    /// What the browser has been told to open, once; empty before.
    [[nodiscard]] QString takeOpenedAddress() const;
    /// What the user's settings hold.
    void setPreference(const QString &key, const QString &value) const;

    /// Starts it with the arguments; without a base URL it uses its own service.
    void start(const QStringList &arguments, const QString &baseUrl = {});
    /// Starts it by way of another program, which gets its path and the arguments after its own.
    void startBy(const QString &other, const QStringList &othersArguments, const QStringList &arguments);

    /// Starts it once more beside itself, in that folder, and waits until this second one ends. Its exit
    /// status; -1 after a crash or when it does not end.
    int startAgain(const QStringList &arguments, const QString &workingFolder = {}) const;

    void terminate() { _process.terminate(); }
    void kill() { _process.kill(); }
    [[nodiscard]] bool isRunning() const { return _process.state() != QProcess::NotRunning; }
    /// Whether it has ended within the limit.
    [[nodiscard]] bool waitForEnd(std::chrono::milliseconds limit = std::chrono::seconds(20)) const;
    /// Its exit status; -1 after a crash.
    [[nodiscard]] int exitStatus() const;
    [[nodiscard]] QByteArray standardOutput() { return _process.readAllStandardOutput(); }

    /// Everything on stderr so far.
    [[nodiscard]] QString log() const { return _log; }
    [[nodiscard]] QStringList logLines() const;
    /// The texts, without time and category, of the lines that begin with one of these.
    [[nodiscard]] QStringList logged(const QStringList &beginnings) const;
    [[nodiscard]] QStringList logged(const char *beginning) const;
    void forgetLog() { _log.clear(); }
    /// Fails the test for each line that is neither the program's own nor the web engine's.
    void expectOnlyLogLines() const;

    [[nodiscard]] QString path(const QString &name) const { return _folder.filePath(name); }
    /// Identifiers of the processes that show its pages.
    [[nodiscard]] QList<qint64> pageProcesses() const;

    // Its windows; one that is not there does not exist().
    [[nodiscard]] QList<XWindow> windows() const { return XWindow::ofProcess(_process.processId()); }
    [[nodiscard]] XWindow mainWindow() const;
    [[nodiscard]] XWindow videoWindow() const; ///< lies over the main window
    [[nodiscard]] XWindow pageWindow() const;  ///< lies over the video's
    [[nodiscard]] XWindow dialog() const;      ///< the topmost

  private:
    void run(const QString &program, const QStringList &arguments);
    [[nodiscard]] XWindow childOf(const XWindow &window) const;

    QTemporaryDir _folder; // before the process that uses it
    QProcessEnvironment _environment = QProcessEnvironment::systemEnvironment();
    QProcess _process;
    QString _log;
};

} // namespace murvo::test
