// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPoint>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace murvo {
class AppDelegate;
class VLCMediaPlayer;
namespace service {
class EmbeddedService;
}
} // namespace murvo

namespace murvo::test {

/// The player with its own service and pages, as installed, and a film in a folder of its own. Main thread.
class Learner : public testing::Test {
  public:
    ~Learner() override;
    Learner(const Learner &) = delete;
    Learner &operator=(const Learner &) = delete;

  protected:
    Learner();

    /// Plays a copy of that film instead of the one with two sound tracks.
    void useFilm(const QString &path) const;
    void writeBeside(const QString &suffix, const QByteArray &text) const;
    void play();

    [[nodiscard]] VLCMediaPlayer *player() const;
    [[nodiscard]] qint64 time() const;
    [[nodiscard]] QString inPage(const char *script) const;
    [[nodiscard]] QString line(const char *id) const;
    /// 3 while "english 3" shows, 0 between lines.
    [[nodiscard]] int lineNumber() const { return line("learned").section(u' ', 1).toInt(); }
    /// Screen position of the middle of the page's element.
    [[nodiscard]] QPoint middleOf(const char *selector) const;
    void expectPaused(bool isPaused) const;

  private:
    QTemporaryDir _data; // first, so that it goes after those who use it

  protected:
    QString film;
    std::unique_ptr<service::EmbeddedService> service;
    std::unique_ptr<AppDelegate> delegate;
};

} // namespace murvo::test
