// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "conformance/Program.h"
#include "conformance/RemotePage.h"
#include "support/StubService.h"

#include <QColor>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>

// So that failures can be read.
inline void PrintTo(const QString &text, std::ostream *stream) {
    *stream << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QByteArray &text, std::ostream *stream) {
    *stream << '"' << text.toStdString() << '"';
}

namespace murvo::test {

/// A running program with a stub of the service, whose two pages are driven from here. All that is known of
/// the program comes from outside: the wire, the pages, the windows, the screen, the log.
class Session {
  public:
    Session();

    /// What the service answers unless a test wants it otherwise: both pages, a lookup with nothing to fetch.
    void answerAsUsual();

    void start(const QStringList &arguments = {}) { program.start(arguments, stub.baseUrl()); }
    /// Starts it and waits until the home page is on the screen and ready.
    void startAtHome();
    /// By File > Open URL..., which takes what was copied. The player page's events begin anew.
    void openUrl(const QString &address);
    /// Drops the film on the home page, or on that of the film before, and waits until it plays.
    void playFilm(const QString &path);
    /// Whatever shows, by the way that a person has.
    void goHome();
    /// Asks it to end, and expects that it does in order.
    void end();

    /// The home page is what is drawn, with nothing over it.
    [[nodiscard]] bool isHomeShown() const;
    /// The windows of a film are on the screen, and its page, opened since its events were forgotten, hears
    /// of its time.
    [[nodiscard]] bool isFilmPlaying() const;
    [[nodiscard]] bool isFilmShown() const { return program.pageWindow().isViewable(); }
    [[nodiscard]] bool showsLoader(const QString &text) const;
    /// Where the main window's content lies on the screen, below the menu bar.
    [[nodiscard]] QRect content() const;
    /// Answers an alert by its key; the home screen follows.
    void expectWarning(const QString &message, const QString &informativeText);
    /// All that the player page has sent before has been done once this returns.
    void settle();

    [[nodiscard]] QList<RecordedRequest> lookups() const { return stub.requestsTo(lookupPath); }
    [[nodiscard]] QList<RecordedRequest> uploads() const { return stub.requestsTo(uploadPath); }
    [[nodiscard]] QList<RecordedRequest> playerPages() const { return stub.requestsTo("Player/Play"); }

    static inline const QByteArray lookupPath = "Api/MovieFile/GetSubtitlesToDownload";
    static inline const QByteArray uploadPath = "Api/Subtitles/UploadGzippedFiles";
    static inline const QByteArray homeBody =
        "<style>body{background:#1c4a6e}</style>"
        "<div id='selectedLanguage'><span class='flag small fra'></span></div>"
        "<script>ask('app:///Execute/EnableDraggableHomeScreen')</script>";
    /// The lowest 60 pixels are the page's own.
    static inline const QByteArray playerBody =
        "<div id='next-sub' "
        "style='position:fixed;bottom:0;left:0;right:0;height:60px;background:#0008'></div>";

    StubService stub;
    RemotePage home;
    RemotePage player;
    Program program; // ends first
};

/// Tests on one session.
class SessionTest : public testing::Test {
  protected:
    explicit SessionTest(Session &session_)
        : session(session_) {}

    Session &session;
    StubService &stub = session.stub;
    RemotePage &home = session.home;
    RemotePage &player = session.player;
    Program &program = session.program;
};

/// Tests that share one running program: each begins on the home screen, with the usual answers and nothing
/// recorded.
class Running : public SessionTest {
  protected:
    Running()
        : SessionTest(*_shared) {}

    static void SetUpTestSuite();
    static void TearDownTestSuite();
    void SetUp() override;

  private:
    static inline std::unique_ptr<Session> _shared;
};

/// Tests that start the program themselves.
class Starting : public SessionTest {
  protected:
    Starting()
        : Starting(std::make_unique<Session>()) {}

  private:
    explicit Starting(std::unique_ptr<Session> own)
        : SessionTest(*own)
        , _own(std::move(own)) {}

    std::unique_ptr<Session> _own;
};

} // namespace murvo::test
