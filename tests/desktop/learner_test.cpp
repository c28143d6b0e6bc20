// SPDX-License-Identifier: GPL-3.0-or-later
// What a learner gets from an installed Murvo: the player with its own service and pages, nothing else.

#include "desktop/LearnerFixture.h"

#include "app/AppDelegate.h"
#include "app/Classes/MDragReceiverWebView.h"
#include "app/Classes/MKeyableWindow.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Platform/MainWindow.h"
#include "app/Platform/TaskQueue.h"
#include "app/ViewControllers/WebViewController.h"
#include "support/SoundRecorder.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTimer>

#include <gmock/gmock.h>

#include <algorithm>

namespace murvo::test {

using namespace std::chrono_literals;

TEST_F(Learner, SeesBothLinesWithinAFrameOfTheirTime) {
    writeBeside(QStringLiteral(".en.srt"), subtitles("english", 9));
    writeBeside(QStringLiteral(".fra.srt"), subtitles("français", 9));
    ASSERT_NO_FATAL_FAILURE(play());
    // What the page shows and what the player reports, both on the page's own clock.
    std::ignore =
        inPage("window.shown = []; window.reports = [];"
               "new MutationObserver(() => { const e = document.getElementById('learned');"
               "  shown.push([e.hidden ? '' : e.textContent, performance.now()]); })"
               "  .observe(document.getElementById('lines'), {subtree: true, childList: true, characterData: "
               "true, attributes: true});"
               "$(window).on('timeUpdate', (event, time) => reports.push([time, performance.now()])); 1");
    ASSERT_TRUE(waitUntil([this] { return line("learned") == QLatin1String("english 6"); }, 20s));
    EXPECT_EQ(line("native"), QStringLiteral("français 6"));
    ASSERT_TRUE(waitUntil([this] { return time() > 12500; }));

    const auto list = [this](const char *name) {
        return QJsonDocument::fromJson(inPage(name).toUtf8()).array();
    };
    const QJsonArray reports = list("JSON.stringify(reports)");
    const QJsonArray shown = list("JSON.stringify(shown)");
    // Film time at a moment of the page's clock: reports come late, never early, so the earliest line counts.
    double offset = 1e18;
    for (const QJsonValue report : reports)
        offset = std::min(offset, report[1].toDouble() - report[0].toDouble());
    std::vector<double> errors;
    QString last;
    for (const QJsonValue change : shown) {
        const QString text = change[0].toString();
        if (text != last && text.startsWith(QLatin1String("english")))
            errors.push_back(
                std::abs(change[1].toDouble() - offset - 1000.0 * (2 * text.mid(8).toInt() - 1)));
        last = text;
    }
    ASSERT_GE(errors.size(), 4U);
    std::sort(errors.begin(), errors.end());
    RecordProperty("medianErrorMs", std::to_string(errors[errors.size() / 2]));
    EXPECT_LT(errors[errors.size() / 2], 40) << "one frame of this film";
}

TEST_F(Learner, ChoosesTheirLanguageByKeyboard) {
    ASSERT_NO_FATAL_FAILURE(goHome());
    const auto isOpen = [&] {
        return inHome("document.getElementById('languages').hidden") == QLatin1String("false");
    };
    std::ignore = inHome("document.getElementById('selectedLanguage').focus(); 1");
    const QString before = inHome("document.getElementById('selected-name').textContent");
    for (const char *closing : {"Return", "Escape"}) {
        pressKey(QStringLiteral("Return"));
        EXPECT_TRUE(waitUntil(isOpen)) << closing;
        pressKey(QStringLiteral("Down"));
        pressKey(QString::fromLatin1(closing));
        EXPECT_TRUE(waitUntil([&] { return !isOpen(); })) << closing;
    }
    EXPECT_NE(inHome("document.getElementById('selected-name').textContent"), before);
    letPass(200ms);
    EXPECT_FALSE(isOpen()) << "the key that closes does not open again";
}

TEST_F(Learner, ReviewsAWordAndGoesOnWithTheFilmFromHome) {
    ASSERT_NO_FATAL_FAILURE(play());
    std::ignore = inPage(
        "const send = (path, method, what) => fetch('../Api/' + path, {method, body: JSON.stringify(what)});"
        "Promise.all([send('Pages/Settings', 'PUT', {tour: {seen: true}}),"
        "  send('Words/Save', 'POST', {form: 'boats', line: 'The boats come home.'}),"
        "  send('MovieFile/Watching' + location.search, 'PUT', {positionMs: 3000, durationMs: 20000})])"
        "  .then((replies) => { window.kept = replies.every((reply) => reply.ok); }); 1");
    ASSERT_TRUE(waitUntil([this] { return inPage("String(window.kept)") == QLatin1String("true"); }));
    const QString videoId = inPage("location.search");
    delegate->loadHomeScreen();
    const auto home = [this](const char *script) {
        return delegate->homeWebViewController()->evaluate(QString::fromUtf8(script));
    };
    const auto shows = [&](const char *selector) {
        const QByteArray script =
            "String(Boolean(document.querySelector('" + QByteArray(selector) + "')?.offsetParent))";
        return waitUntil([&] { return home(script.constData()) == QLatin1String("true"); });
    };
    ASSERT_TRUE(shows("#due")) << "without a reload";
    ASSERT_TRUE(waitUntil([this] { return delegate->window().isActiveWindow(); }));
    delegate->homeWebViewController()->view()->setFocus();
    pressKey(QStringLiteral("2"));
    ASSERT_TRUE(shows("#review .card"));
    EXPECT_EQ(home("document.querySelector('#review mark').textContent"), QStringLiteral("boats"));
    pressKey(QStringLiteral("space"));
    ASSERT_TRUE(shows("#review .back"));
    pressKey(QStringLiteral("3"));
    ASSERT_TRUE(shows("#review .end"));
    EXPECT_TRUE(home("document.querySelector('#review .end h3 + p').textContent").contains(u'1'))
        << "the next word in a day";
    pressKey(QStringLiteral("u"));
    EXPECT_TRUE(shows("#review .card")) << "taken back";

    pressKey(QStringLiteral("alt+1"));
    ASSERT_TRUE(shows("#shelf .film-open"));
    std::ignore = home("document.querySelector('#shelf .film-open').focus(); 1");
    pressKey(QStringLiteral("Return"));
    EXPECT_TRUE(waitUntil([this] { return player() && player()->isPlaying(); }, 20s));
    EXPECT_TRUE(waitUntil([&] { return inPage("location.search") == videoId; }));
}

TEST_F(Learner, HearsALineSpokenByTheService) {
    SoundRecorder recorder;
    const auto loudness = [&recorder] { // of a voice: its lowest tones are never all still
        double sum = 0;
        for (int hertz = 80; hertz <= 600; hertz += 10)
            sum += recorder.amplitudeOf(hertz);
        return sum;
    };
    delegate->applicationDidFinishLaunching();
    ASSERT_TRUE(waitUntil([this] { return delegate->session().homeScreenLoaded; }));
    EXPECT_LT(loudness(), 0.05);
    std::ignore = delegate->homeWebViewController()->evaluate(QStringLiteral(
        "fetch(new URL('../Api/Speech/Pronunciation?text=' + encodeURIComponent('Rock & roll? 100 % yes,' +"
        " ' we were in there for a long long time.'), location)).then(reply => reply.json()).then(told =>"
        " { location = 'app:///Execute/PlayAudio?audioUrl=' + encodeURIComponent(told.soundUrl); }); 1"));
    EXPECT_TRUE(waitUntil([&] { return loudness() > 0.2; }));
    EXPECT_TRUE(waitUntil([&] { return loudness() < 0.01; })) << "it ends";
}

TEST_F(Learner, CommandsTheFilmByKeys) {
    writeBeside(QStringLiteral(".en.srt"), subtitles("english", 9));
    ASSERT_NO_FATAL_FAILURE(play());
    SoundRecorder recorder;
    ASSERT_TRUE(waitUntil([this] { return line("learned").startsWith(QLatin1String("english")); }));
    // A line begins at each odd second; one that has only just begun would not be the one that is meant.
    ASSERT_TRUE(waitUntil([this] { return time() % 2000 >= 1200 && time() % 2000 < 1500; }));
    pressKey(QStringLiteral("space"));
    expectPaused(true);
    const auto before = static_cast<int>((time() + 1000) / 2000);
    pressKey(QStringLiteral("d"));
    pressKey(QStringLiteral("d"));
    ASSERT_TRUE(waitUntil([&] { return lineNumber() == before + 2; }));
    pressKey(QStringLiteral("a"));
    ASSERT_TRUE(waitUntil([&] { return lineNumber() == before + 1; }));
    pressKey(QStringLiteral("space"));
    expectPaused(false);
    const qint64 begin = time();
    ASSERT_TRUE(waitUntil([&] { return time() > begin + 400; }));
    pressKey(QStringLiteral("s"));
    EXPECT_TRUE(waitUntil([&] { return time() < begin + 400; })) << "the line again";
    const qint64 here = time();
    pressKey(QStringLiteral("Right"));
    EXPECT_TRUE(waitUntil([&] { return time() >= here + 4000; }));
    pressKey(QStringLiteral("Left"));
    EXPECT_TRUE(waitUntil([&] { return time() < here + 3000; }));
    ASSERT_TRUE(waitUntil([&] { return recorder.amplitudeOf(220) > 0.005; }));
    pressKey(QStringLiteral("m"));
    EXPECT_TRUE(waitUntil([&] { return recorder.amplitudeOf(220) < 0.001; }));
    pressKey(QStringLiteral("m"));
    EXPECT_TRUE(waitUntil([&] { return recorder.amplitudeOf(220) > 0.005; }));
    const int volume = player()->volume();
    pressKey(QStringLiteral("Up"));
    EXPECT_TRUE(waitUntil([&] { return player()->volume() > volume; }));
    pressKey(QStringLiteral("bracketright"));
    EXPECT_TRUE(waitUntil([this] { return player()->rate() > 1.0F; }));
    pressKey(QStringLiteral("BackSpace"));
    EXPECT_TRUE(waitUntil([this] { return qFuzzyCompare(player()->rate(), 1.0F); }));
}

TEST_F(Learner, CommandsTheFilmByMouse) {
    ASSERT_NO_FATAL_FAILURE(play());
    SoundRecorder recorder;
    const QPoint picture = delegate->window().contentScreenRect().center() - QPoint(0, 80);
    // Two clicks are a double-click unless this much lies between them.
    const std::chrono::milliseconds apart(QApplication::doubleClickInterval() + 50);
    clickAt(picture);
    expectPaused(true);
    letPass(apart);
    clickAt(picture);
    expectPaused(false);

    letPass(apart);
    clickAt(picture, 2);
    ASSERT_TRUE(waitUntil([this] { return delegate->window().isFullScreen(); }));
    letPass(600ms); // longer than the page waits for a second click
    EXPECT_TRUE(player()->isPlaying()) << "a double-click changes the screen and nothing else";
    pressKey(QStringLiteral("Escape"));
    ASSERT_TRUE(waitUntil([this] { return delegate->window().contentView()->size() == QSize(640, 360); }));
    ASSERT_TRUE(
        waitUntil([this] { return inPage("innerWidth + 'x' + innerHeight") == QLatin1String("640x360"); }));
    // With its frame back, and on the screen as in our own books: until then clicks come out elsewhere.
    ASSERT_TRUE(waitUntil([this] {
        const MainWindow &window = delegate->window();
        const QRect content = window.contentScreenRect();
        return window.frameGeometry().height() > window.height() &&
               screenRect(window).bottomRight() == content.bottomRight() &&
               screenRect(*delegate->playerWebViewWindow()) == content;
    }));

    ASSERT_TRUE(waitUntil(
        [this] { return inPage("document.getElementById('audio').hidden") == QLatin1String("false"); }));
    clickAt(middleOf("#audio"));
    ASSERT_TRUE(waitUntil(
        [this] { return inPage("document.getElementById('audio-menu').hidden") == QLatin1String("false"); }));
    clickAt(middleOf("#audio-menu button:last-child"));
    EXPECT_TRUE(waitUntil([this] {
        return inPage("document.querySelector('#audio-menu button:last-child').ariaChecked") ==
               QLatin1String("true");
    })) << "the click has reached the second one";
    EXPECT_TRUE(waitUntil([&] { return recorder.amplitudeOf(880) > 0.005; })) << "the second sound track";

    clickAt(middleOf("[data-action=home]:not(#end button)"));
    EXPECT_TRUE(waitUntil([this] { return !delegate->playerWebViewWindow()->isVisible(); }));
}

TEST_F(Learner, OpensAndClosesTheListOfSoundTracksByKeyboard) {
    ASSERT_NO_FATAL_FAILURE(play());
    SoundRecorder recorder;
    const auto waitForList = [this](bool isOpen) {
        return waitUntil([&] {
            return inPage("document.getElementById('audio-menu').hidden") ==
                   (isOpen ? QLatin1String("false") : QLatin1String("true"));
        });
    };
    const auto waitForFocus = [this](const char *selector) {
        const QByteArray script = "document.activeElement.matches('" + QByteArray(selector) + "')";
        return waitUntil([&] { return inPage(script.constData()) == QLatin1String("true"); });
    };
    const auto openList = [&] {
        std::ignore = inPage("document.getElementById('audio').focus(); 1");
        pressKey(QStringLiteral("Return"));
        return waitForList(true) && waitForFocus("#audio-menu [aria-checked=true]");
    };
    ASSERT_TRUE(waitUntil(
        [this] { return inPage("document.getElementById('audio').hidden") == QLatin1String("false"); }));

    ASSERT_TRUE(openList());
    pressKey(QStringLiteral("shift+Tab"));
    ASSERT_TRUE(waitForFocus("#audio"));
    pressKey(QStringLiteral("Return"));
    EXPECT_TRUE(waitForList(false)) << "the key that opened it";

    ASSERT_TRUE(openList());
    pressKey(QStringLiteral("Tab"));
    ASSERT_TRUE(waitForFocus("#audio-menu button:last-child"));
    pressKey(QStringLiteral("Tab"));
    EXPECT_TRUE(waitForList(false)) << "the focus has left it";

    ASSERT_TRUE(openList());
    clickAt(delegate->window().contentScreenRect().center() - QPoint(0, 80));
    EXPECT_TRUE(waitForList(false)) << "a click elsewhere";
    letPass(600ms); // longer than the page waits for a second click
    EXPECT_TRUE(player()->isPlaying());

    const int volume = player()->volume();
    ASSERT_TRUE(openList());
    pressKey(QStringLiteral("Down"));
    ASSERT_TRUE(waitForFocus("#audio-menu button:last-child"));
    pressKey(QStringLiteral("Return"));
    EXPECT_TRUE(waitForList(false));
    EXPECT_TRUE(waitForFocus("#audio"));
    EXPECT_TRUE(waitUntil([&] { return recorder.amplitudeOf(880) > 0.005; })) << "the second sound track";
    EXPECT_EQ(player()->volume(), volume);
}

/// With the panel of subtitles, opened by its key.
class LearnerWithSubtitles : public Learner {
  protected:
    void playWithPanel() {
        writeBeside(QStringLiteral(".en.srt"), subtitles("english", 9));
        writeBeside(QStringLiteral(".fr.srt"), subtitles("français", 9));
        ASSERT_NO_FATAL_FAILURE(play());
        openPanel();
    }
    void openPanel() {
        ASSERT_TRUE(waitUntil([this] { return line("learned").contains(u' '); })) << "the lines are there";
        pressKey(QStringLiteral("t"));
        ASSERT_TRUE(waitUntil([this] {
            return inPage("document.querySelectorAll('#subtitles-panel:not([hidden]) tbody tr').length") ==
                   QLatin1String("3");
        }));
    }
    /// Clicks what may lie outside of what can be seen of the panel.
    void clickIn(const char *selector) {
        std::ignore = inPage(
            ("document.querySelector('" + QByteArray(selector) + "').scrollIntoView({block: 'center'}); 1")
                .constData());
        clickAt(middleOf(selector));
    }
    [[nodiscard]] bool waitForLine(const char *id, const QString &word) const {
        return waitUntil(
            [&] { return line(id).startsWith(word) && (!word.isEmpty() || line(id).isEmpty()); });
    }
    /// What there is for a line beside its timing. card: a selector of its card in the panel.
    void openRarelyUsed(const QByteArray &card) {
        clickIn((card + " summary").constData());
        ASSERT_TRUE(waitUntil(
            [&] { return isInPage("document.querySelectorAll('" + card + " [open] option').length > 40"); }));
    }
    /// By keyboard: E, N goes past other languages with an E.
    void chooseEnglish(const QByteArray &card) {
        ASSERT_NO_FATAL_FAILURE(openRarelyUsed(card));
        std::ignore = inPage(("document.querySelector('" + card + " select.language').focus()").constData());
        pressKey(QStringLiteral("e"));
        pressKey(QStringLiteral("n"));
        ASSERT_TRUE(waitUntil([&] {
            return isInPage("document.querySelector('" + card + " select.language').value === 'eng'");
        }));
    }
    [[nodiscard]] bool isInPage(const QByteArray &condition) const {
        return inPage(condition.constData()) == QLatin1String("true");
    }
    [[nodiscard]] bool waitForOffset(const char *text) const {
        return waitUntil([&] {
            return inPage("document.querySelector('.timing-card .offset').textContent") ==
                   QLatin1String(text);
        });
    }
};

TEST_F(LearnerWithSubtitles, ChoosesWhichIsWhichLineAndFindsItSoTheNextTime) {
    ASSERT_NO_FATAL_FAILURE(playWithPanel());
    clickIn("#native-0");
    EXPECT_TRUE(waitForLine("native", QString()));
    clickIn("#learned-2");
    EXPECT_TRUE(waitForLine("learned", QStringLiteral("français")));
    for (int i = 0; i < 5; ++i)
        pressKey(QStringLiteral("z"));
    EXPECT_TRUE(waitForOffset("0.5 s earlier"));
    pressKey(QStringLiteral("shift+z"));
    EXPECT_TRUE(waitForOffset("0.4 s earlier"));
    std::ignore = inPage("document.querySelector('.timing-card').scrollIntoView(); 1");
    clickAt(middleOf("[aria-label=\"0.1 s later\"]"), 2);
    EXPECT_TRUE(waitForOffset("0.2 s earlier")) << "two quick presses are two";
    EXPECT_FALSE(delegate->window().isFullScreen());
    pressKey(QStringLiteral("t"));
    for (const bool isPaused : {true, false}) {
        pressKey(QStringLiteral("space"));
        expectPaused(isPaused);
    }
    std::ignore = inPage("document.body.id = 'old'; location.reload(); 1");
    ASSERT_TRUE(waitUntil(
        [this] { return inPage("document.body ? document.body.id : 'old'") != QLatin1String("old"); }));
    ASSERT_NO_FATAL_FAILURE(openPanel());
    EXPECT_TRUE(waitForLine("learned", QStringLiteral("français")));
    EXPECT_EQ(line("native"), QString());
    EXPECT_TRUE(waitForOffset("0.2 s earlier"));
}

TEST_F(LearnerWithSubtitles, PicksTheLineThatIsSaidWhileTheFilmWaits) {
    ASSERT_NO_FATAL_FAILURE(playWithPanel());
    clickIn(".timing-card .pick");
    expectPaused(true);
    const double before = static_cast<double>(time());
    clickIn(".timing-card .picker button.line:nth-of-type(3)");
    expectPaused(false);
    // The third line begins at 5 s by itself, and now at the click: the film has run on until it paused.
    const QString moved = inPage("document.querySelector('.timing-card .offset').textContent");
    const double offset =
        moved.section(u' ', 0, 0).toDouble() * (moved.endsWith(QLatin1String("earlier")) ? -1 : 1);
    EXPECT_LE(5000 + 1000 * offset, before + 400) << "reports of the time are up to 0.3 s old";
    EXPECT_GE(5000 + 1000 * offset, before - 1500) << "the lines are two seconds apart";
}

TEST_F(LearnerWithSubtitles, ReadsAFileInTheLettersThatTheyChoose) {
    const QString text = QStringLiteral("Où êtes-vous, mon garçon ? Près du théâtre, déjà");
    writeBeside(QStringLiteral(".en.srt"), subtitles("english", 9));
    writeBeside(QStringLiteral(".fr.srt"), subtitles(text.toLatin1(), 9));
    ASSERT_NO_FATAL_FAILURE(play());
    ASSERT_NO_FATAL_FAILURE(openPanel());
    ASSERT_TRUE(waitForLine("native", text));
    ASSERT_NO_FATAL_FAILURE(openRarelyUsed(".timing-card:last-child"));
    const auto choose = [this](const char *guess) {
        clickIn(".timing-card:last-child .wrong-letters");
        ASSERT_TRUE(waitUntil([this] {
            return inPage("document.querySelectorAll('.timing-card:last-child .letters:not([hidden]) "
                          "button').length > 1") == QLatin1String("true");
        }));
        clickIn(guess);
    };
    ASSERT_NO_FATAL_FAILURE(choose(".timing-card:last-child .letters [aria-pressed=false]"));
    EXPECT_TRUE(waitUntil([this] {
        const QString shown = line("native");
        return !shown.isEmpty() && !shown.contains(QStringLiteral("êtes"));
    }));
    ASSERT_NO_FATAL_FAILURE(choose(".timing-card:last-child .letters button"));
    EXPECT_TRUE(waitForLine("native", text)) << "the first guess was right";
}

TEST_F(LearnerWithSubtitles, AddsAFileByTheProgramsChooserAndTakesItOut) {
    const QTemporaryDir elsewhere;
    QFile file(elsewhere.filePath(QStringLiteral("mine.srt")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(subtitles("mine", 9));
    file.close();
    ASSERT_NO_FATAL_FAILURE(playWithPanel());
    // The chooser runs the event loop itself, within the click.
    QTimer atChooser;
    QObject::connect(&atChooser, &QTimer::timeout, [&] {
        if (const QWidget *chooser = QApplication::activeModalWidget();
            !chooser || !chooser->isActiveWindow())
            return;
        atChooser.stop();
        typeInstead(file.fileName());
        pressKey(QStringLiteral("Return"));
    });
    atChooser.start(50ms);
    clickIn(".adder button");
    EXPECT_TRUE(waitForLine("native", QStringLiteral("mine"))) << "its language is not known";
    const auto waitForRows = [this](const char *count) {
        return waitUntil([this, count] {
            return inPage("document.querySelectorAll('tbody tr').length") == QLatin1String(count);
        });
    };
    EXPECT_TRUE(waitForRows("4"));
    ASSERT_NO_FATAL_FAILURE(chooseEnglish(".timing-card:last-child"));
    EXPECT_TRUE(waitUntil([this] {
        return isInPage("document.querySelector('.timing-card:last-child h3').textContent === 'English'");
    }));

    clickIn("#subtitles-panel .remove");
    EXPECT_TRUE(waitForRows("3"));
    EXPECT_TRUE(waitUntil([this] { return line("native") != QLatin1String("mine"); }));
    EXPECT_TRUE(isInPage("document.querySelector('.taken button') !== document.activeElement"))
        << "the space bar is the film's still";
    std::ignore = inPage("document.querySelector('.taken button').focus()");
    pressKey(QStringLiteral("Return"));
    EXPECT_TRUE(waitForLine("native", QStringLiteral("mine"))) << "as it was";
    EXPECT_TRUE(waitForRows("4"));
    EXPECT_TRUE(waitUntil([this] { return isInPage("document.activeElement.matches('.remove')"); }))
        << "the keyboard is where it was before";
}

TEST_F(LearnerWithSubtitles, SaysThatAFileIsEnglishAndHasItsWords) {
    writeBeside(QStringLiteral(".srt"), subtitles("harbour", 9)); // too little to tell a language by
    ASSERT_NO_FATAL_FAILURE(play());
    ASSERT_TRUE(waitForLine("learned", QStringLiteral("harbour")));
    const auto isMarked = [this] { return isInPage("!!document.querySelector('#learned .word.unknown')"); };
    pressKey(QStringLiteral("t"));
    ASSERT_TRUE(waitUntil([this] { return isInPage("!document.getElementById('subtitles-panel').hidden"); }));
    EXPECT_FALSE(isMarked());
    ASSERT_NO_FATAL_FAILURE(chooseEnglish(".timing-card"));
    clickIn("#subtitles-panel .close"); // before the choice has rested
    EXPECT_TRUE(waitUntil(isMarked));
}

} // namespace murvo::test
