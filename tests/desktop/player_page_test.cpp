// SPDX-License-Identifier: GPL-3.0-or-later
// The player's page in each of its states: looked over for accessibility, and walked by keys and mouse.

#include "desktop/LearnerFixture.h"

#include "app/AppDelegate.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/WebViewController.h"
#include "support/PageChecker.h"
#include "support/SoundRecorder.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>

#include <algorithm>

namespace murvo::test {

using namespace std::chrono_literals;

namespace {

constexpr auto english =
    "1\n00:00:00,500 --> 00:00:08,000\nI was looking forward to it.\n\n"
    "2\n00:00:08,500 --> 00:00:12,000\nThe harbour was <i>empty</i>,\nand the gulls cried.\n\n"
    "3\n00:00:12,500 --> 00:00:15,000\nYou look at the harbour.\n\n"
    "4\n00:00:15,500 --> 00:00:18,000\nWe go home.\n\n";
constexpr auto french = "1\n00:00:00,500 --> 00:00:08,000\nJ'avais hâte d'y être.\n\n"
                        "2\n00:00:08,500 --> 00:00:12,000\nLe port était vide,\net les mouettes criaient.\n\n"
                        "3\n00:00:12,500 --> 00:00:15,000\nTu regardes le port.\n\n"
                        "4\n00:00:15,500 --> 00:00:18,000\nNous rentrons.\n\n";

constexpr auto cardIsRead =
    "String(document.getElementById('word-card').getAttribute('aria-busy') === 'false')";
constexpr auto cardIsGone = "String(document.getElementById('word-card').hidden)";

} // namespace

/// A film with sentences in two languages. MURVO_GALLERY_FILM names another one, for pictures.
class PlayerPage : public Learner {
  protected:
    void playWithLines() {
        if (const QString own = qEnvironmentVariable("MURVO_GALLERY_FILM"); !own.isEmpty()) {
            ASSERT_NO_FATAL_FAILURE(bringFilm(own));
        } else {
            writeBeside(QStringLiteral(".en.srt"), english);
            writeBeside(QStringLiteral(".fr.srt"), french);
        }
        ASSERT_NO_FATAL_FAILURE(play());
        ASSERT_TRUE(waitInPage("String(document.querySelectorAll('#learned .word').length > 2)"));
    }
    void press(const char *key) const { pressKey(QString::fromLatin1(key)); }
    void waitForCard(const char *word = "") const {
        ASSERT_TRUE(waitInPage(cardIsRead));
        const QByteArray wanted(word);
        if (wanted.isEmpty())
            return;
        ASSERT_TRUE(waitInPage(
            ("String(document.getElementById('card-word').textContent === '" + wanted + "')").constData()))
            << word << ", not " << inPage("document.getElementById('card-word').textContent").toStdString();
    }
    /// Opens a panel by its key and waits until it shows.
    void openPanel(const char *key, const char *id) const {
        press(key);
        ASSERT_TRUE(
            waitInPage(("String(!document.getElementById('" + QByteArray(id) + "').hidden)").constData()))
            << id;
    }
    void look(const char *state) const {
        EXPECT_EQ(faultsOf(*delegate->playerWebViewController()).join(u'\n').toStdString(), "") << state;
        photograph(QString::fromLatin1(state), delegate->window().contentScreenRect());
    }
    [[nodiscard]] QJsonObject ask(const char *path) const {
        std::ignore = inPage(("window.told = ''; fetch('../Api/" + QByteArray(path) +
                              "').then((r) => r.text()).then((t) => { told = t; }); 1")
                                 .constData());
        QString told;
        EXPECT_TRUE(waitUntil([&] { return !(told = inPage("window.told")).isEmpty(); })) << path;
        return QJsonDocument::fromJson(told.toUtf8()).object();
    }
};

TEST_F(PlayerPage, HasNoSeriousFaultInAnyState) {
    ASSERT_NO_FATAL_FAILURE(playWithLines());
    look("player-lines");
    // The words have their marks, and this line has one that is not known.
    ASSERT_TRUE(waitUntil(
        [this] {
            return inPage("String(!!document.querySelector('#learned .unknown'))") == QLatin1String("true");
        },
        20s));
    press("n");
    ASSERT_NO_FATAL_FAILURE(waitForCard());
    expectPaused(true);
    look("player-word");
    press("n");
    ASSERT_NO_FATAL_FAILURE(waitForCard());
    press("shift+Right");
    ASSERT_TRUE(waitInPage("String(document.querySelectorAll('#learned .picked').length === 2)"));
    ASSERT_NO_FATAL_FAILURE(waitForCard());
    look("player-phrase");
    press("x");
    ASSERT_TRUE(waitInPage(cardIsGone));
    press("space"); // the bar stays
    expectPaused(true);
    struct Panel {
        const char *key, *id, *state;
    };
    for (const Panel &panel :
         {Panel{"ctrl+b", "transcript-panel", "player-transcript"},
          Panel{"t", "subtitles-panel", "player-subtitles"},
          Panel{"ctrl+comma", "settings-panel", "player-settings"}, Panel{"F1", "key-sheet", "player-keys"},
          Panel{"p", "practice-panel", "player-practice"}}) {
        ASSERT_NO_FATAL_FAILURE(openPanel(panel.key, panel.id));
        look(panel.state);
        press(panel.key);
        ASSERT_TRUE(waitInPage(
            ("String(document.getElementById('" + QByteArray(panel.id) + "').hidden)").constData()))
            << panel.key << " closes it again";
    }
    ASSERT_NO_FATAL_FAILURE(openPanel("ctrl+f", "transcript-panel"));
    typeInstead(QStringLiteral("the"));
    ASSERT_TRUE(waitInPage("String(document.querySelectorAll('#transcript-panel mark').length > 0)"));
    look("player-search");

    ASSERT_NO_FATAL_FAILURE(openPanel("ctrl+comma", "settings-panel"));
    std::ignore = inPage("document.querySelector('#settings-panel input[value=de]').click(); 1");
    EXPECT_TRUE(
        waitInPage("String(document.querySelector('#bar [data-action=home]').ariaLabel === 'Startseite')"))
        << "all of the page speaks another language, whatever was open before";
}

TEST_F(PlayerPage, OffersToGoOnDrillsAndTellsAtTheEndWhatWasMet) {
    ASSERT_NO_FATAL_FAILURE(playWithLines());
    const QString before =
        QString::number(ask("MovieFile/Watching?videoId=1")[QLatin1String("watchedAtMs")].toDouble());
    delegate->loadHomeScreen();
    // The page that goes keeps its place; only then another one can be told.
    ASSERT_TRUE(waitInHome(("fetch('../Api/MovieFile/Watching?videoId=1').then((r) => r.json())"
                            ".then(({watchedAtMs}) => { window.kept = Number(watchedAtMs); });"
                            "String(window.kept > " +
                            before.toUtf8() + ")")
                               .constData()));
    std::ignore = inHome("fetch('../Api/MovieFile/Watching?videoId=1', {method: 'PUT', body:"
                         " '{\"positionMs\":41000,\"durationMs\":100000,\"isFinished\":false}'}).then(() =>"
                         " fetch('../Api/Films/Open', {method: 'POST', body: '{\"videoId\":1}'})); 1");
    ASSERT_TRUE(waitUntil([this] { return player() && player()->isPlaying(); }, 20s));
    ASSERT_TRUE(waitInPage("String(document.getElementById('resume')?.hidden === false)"));
    look("player-resume");
    std::ignore = inPage("document.querySelector('#resume button:last-child').click(); 1");
    EXPECT_TRUE(waitInPage("String(document.getElementById('resume').hidden)"));

    ASSERT_TRUE(waitInPage("String(document.querySelectorAll('#learned .word').length > 2)"));
    press("r");
    ASSERT_TRUE(waitInPage("String(!!document.querySelector('#practice-marks .running'))"));
    EXPECT_TRUE(waitUntil([this] { return player()->rate() < 0.8F; })) << "slow at first";
    look("player-drill");
    press("r");
    EXPECT_TRUE(waitUntil([this] { return qFuzzyCompare(player()->rate(), 1.0F); }));

    EXPECT_TRUE(waitUntil(
        [this] {
            press("Prior"); // a minute on: as far as the film goes
            return waitUntil(
                [this] {
                    return inPage("String(!document.getElementById('end').hidden)") == QLatin1String("true");
                },
                4s);
        },
        30s));
    look("player-end");
    EXPECT_THAT(inPage("document.getElementById('end').textContent").toStdString(),
                testing::Not(testing::IsEmpty()));
}

TEST_F(PlayerPage, TellsWhatAWordMeansAndKeepsIt) {
    ASSERT_NO_FATAL_FAILURE(playWithLines());
    ASSERT_TRUE(waitUntil([this] { return line("learned").contains(QLatin1String("harbour")); }));
    clickAt(middleOf(R"(#learned [data-word="1"])"));
    ASSERT_NO_FATAL_FAILURE(waitForCard("harbour"));
    expectPaused(true);
    EXPECT_THAT(inPage("document.querySelector('#word-card .meanings').textContent").toStdString(),
                testing::HasSubstr("port"));
    EXPECT_THAT(inPage("document.querySelector('#word-card .elsewhere').textContent").toStdString(),
                testing::HasSubstr("You look at the harbour"));
    letPass(800ms); // past the end of the line: what is being read stays
    EXPECT_THAT(line("learned").toStdString(), testing::HasSubstr("harbour"));

    ASSERT_TRUE(waitInPage("String(document.querySelector('#word-card .ipa').textContent.length > 3)"));
    SoundRecorder recorder;
    double loudest = 0;
    press("w");
    EXPECT_TRUE(waitUntil([&] {
        double sum = 0;
        for (int hertz = 80; hertz <= 600; hertz += 10)
            sum += recorder.amplitudeOf(hertz);
        loudest = std::max(loudest, sum);
        return sum > 0.05;
    })) << "the word is heard: "
        << loudest;

    press("2");
    EXPECT_TRUE(waitInPage(
        "String(document.querySelector('#learned [data-word=\"1\"]').classList.contains('learning'))"));
    const QJsonObject word = ask("Words/Word?lemma=harbour");
    EXPECT_EQ(word[QLatin1String("status")].toString(), QStringLiteral("learning2"));
    const QJsonObject sighting = word[QLatin1String("sightings")].toArray().first().toObject();
    EXPECT_EQ(sighting[QLatin1String("line")].toString(),
              QStringLiteral("The harbour was empty,\nand the gulls cried."));
    EXPECT_EQ(sighting[QLatin1String("translation")].toString(),
              QStringLiteral("Le port était vide,\net les mouettes criaient."));
    EXPECT_EQ(sighting[QLatin1String("startMs")].toInt(), 8500);

    press("x");
    EXPECT_TRUE(waitInPage(cardIsGone));
    expectPaused(false);
}

TEST_F(PlayerPage, TakesAPhraseByDraggingAndGoesOnOnlyIfItPlayedBefore) {
    ASSERT_NO_FATAL_FAILURE(playWithLines());
    press("space");
    expectPaused(true);
    const auto at = [this](const char *word) {
        return middleOf((R"(#learned [data-word=")" + QByteArray(word) + R"("])").constData());
    };
    const QPoint from = at("2");
    const QPoint to = at("4");
    run(QStringLiteral("xdotool"), QStringLiteral("mousemove %1 %2 mousedown 1 mousemove %3 %4 mouseup 1")
                                       .arg(from.x())
                                       .arg(from.y())
                                       .arg(to.x())
                                       .arg(to.y())
                                       .split(u' '));
    ASSERT_NO_FATAL_FAILURE(waitForCard("look forward"));
    press("3");
    press("e");
    EXPECT_TRUE(waitInPage("String(document.querySelector('#word-card .save').ariaPressed === 'true')"));
    EXPECT_TRUE(
        waitInPage("String(document.querySelector('#word-card .step.learning3').ariaPressed === 'true')"))
        << "who saves what was graded loses no grade";
    clickAt(middleOf("#word-card .save"));
    EXPECT_TRUE(waitInPage("String(document.querySelector('#word-card .save').ariaPressed === 'false')"));
    clickAt(middleOf("#word-card .close"), 2);
    EXPECT_TRUE(waitInPage(cardIsGone));
    letPass(300ms);
    EXPECT_FALSE(player()->isPlaying());
    EXPECT_FALSE(delegate->window().isFullScreen()) << "two presses on a card are two presses";
}

TEST_F(PlayerPage, PausesOnlyAfterLinesWithAWordToLearnWhenThatIsWanted) {
    ASSERT_NO_FATAL_FAILURE(playWithLines());
    ASSERT_NO_FATAL_FAILURE(openPanel("p", "practice-panel"));
    std::ignore = inPage("document.querySelectorAll('#practice-panel [role=switch]')"
                         ".forEach((each, i) => { each.id = `switch-${i}`; }); 1");
    clickAt(middleOf("#switch-0"));
    clickAt(middleOf("#switch-1"));
    ASSERT_TRUE(waitInPage("String(['switch-0', 'switch-1'].every((id) => (e => e.checked ||"
                           " e.ariaChecked === 'true')(document.getElementById(id))))"));
    press("p");
    // The first line, until 8 s, is known; the second has a harbour and gulls.
    EXPECT_TRUE(waitUntil([this] { return !player()->isPlaying(); }, 20s));
    EXPECT_NEAR(static_cast<double>(time()), 12'000, 500) << "a report of the time is up to 0.3 s old";
    EXPECT_THAT(line("learned").toStdString(), testing::HasSubstr("harbour"));
}

TEST_F(PlayerPage, JumpsToALineOfTheTranscript) {
    ASSERT_NO_FATAL_FAILURE(playWithLines());
    ASSERT_NO_FATAL_FAILURE(openPanel("ctrl+b", "transcript-panel"));
    ASSERT_TRUE(
        waitInPage("String([...document.querySelectorAll('#transcript-panel [role=option]')].length >= 4)"));
    std::ignore = inPage("document.getElementById('transcript-3').scrollIntoView({block: 'center'}); 1");
    clickAt(middleOf("#transcript-3"));
    EXPECT_TRUE(waitUntil([this] { return time() >= 15000; }, 5s));
    EXPECT_TRUE(waitUntil([this] { return line("learned") == QLatin1String("We go home."); }));
}

TEST_F(PlayerPage, IsWalkedByTabInTheOrderInWhichItIsSeen) {
    ASSERT_NO_FATAL_FAILURE(playWithLines());
    press("space");
    std::ignore = inPage(
        "document.activeElement.blur(); window.walked = [];"
        "document.addEventListener('focusin', (event) => { const r = event.target.getBoundingClientRect();"
        " walked.push([event.target.ariaLabel || event.target.textContent.trim(), Math.round(r.x), "
        "Math.round(r.y),"
        " getComputedStyle(event.target).outlineStyle]); }); 1");
    const int wanted =
        inPage("String([...document.querySelectorAll('#bar button, #bar input')]"
               ".filter((e) => !e.disabled && e.tabIndex >= 0 && e.getClientRects().length > 0).length)")
            .toInt();
    ASSERT_GT(wanted, 8);
    for (int i = 0; i < wanted; ++i)
        press("Tab");
    ASSERT_TRUE(waitInPage(("String(walked.length === " + QByteArray::number(wanted) + ")").constData()))
        << inPage("JSON.stringify(walked)").toStdString();
    const QJsonArray walked = QJsonDocument::fromJson(inPage("JSON.stringify(walked)").toUtf8()).array();
    for (qsizetype i = 0; i < walked.size(); ++i) {
        EXPECT_FALSE(walked[i][0].toString().isEmpty()) << i << ": has no name";
        EXPECT_NE(walked[i][3].toString(), QStringLiteral("none"))
            << walked[i][0].toString().toStdString() << ": is not seen";
        if (i == 0)
            continue;
        const bool isBelow = walked[i][2].toInt() > walked[i - 1][2].toInt() + 10;
        EXPECT_TRUE(isBelow || walked[i][1].toInt() > walked[i - 1][1].toInt())
            << walked[i][0].toString().toStdString();
    }
}

} // namespace murvo::test
