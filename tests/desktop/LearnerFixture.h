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

/// An SRT file: cues of a second each, one every two seconds from the first, numbered after the word.
[[nodiscard]] QByteArray subtitles(const QByteArray &word, int count);

/// A learner before an installed Murvo: the player with its own service and pages, on the virtual desktop,
/// with a film in a folder of its own. Main thread.
class Learner : public testing::Test {
  public:
    ~Learner() override;
    Learner(const Learner &) = delete;
    Learner &operator=(const Learner &) = delete;

  protected:
    Learner();

    /// Puts a copy of the film at the path in the place of the one that is there.
    void useFilm(const QString &path) const;
    /// Plays a copy of the film at the path, under its own name, with the subtitles that lie beside it.
    void bringFilm(const QString &path);
    /// Puts a file beside the film: its name with the suffix (".en.srt").
    void writeBeside(const QString &suffix, const QByteArray &text) const;

    /// Starts the player with the film and waits until it plays under its page.
    void play();
    /// Starts the player without one and waits for the home page.
    void goHome();

    [[nodiscard]] VLCMediaPlayer *player() const;
    /// The player's report of the film's time, ms; up to 0.3 s old.
    [[nodiscard]] qint64 time() const;
    /// The result of a script in the player's page, or in the home page, as text; empty when there is none.
    [[nodiscard]] QString inPage(const char *script) const;
    [[nodiscard]] QString inHome(const char *script) const;
    /// Text of the line ("learned" or "native") that is shown.
    [[nodiscard]] QString line(const char *id) const;
    /// 3 while "english 3" shows, 0 between lines.
    [[nodiscard]] int lineNumber() const;
    /// Screen position of the middle of an element of the page.
    [[nodiscard]] QPoint middleOf(const char *selector) const;
    void expectPaused(bool isPaused) const;
    /// Waits until the script's result in the player's page is "true".
    [[nodiscard]] bool waitInPage(const char *script) const;
    [[nodiscard]] bool waitInHome(const char *script) const;

  private:
    QTemporaryDir _data; // first, so that it goes after those who use it

  protected:
    QString film; ///< may be set to another before play()
    std::unique_ptr<service::EmbeddedService> service;
    std::unique_ptr<AppDelegate> delegate;
};

} // namespace murvo::test
