// SPDX-License-Identifier: GPL-3.0-or-later
// The home page in each of its states: looked over for accessibility, and walked by keys and mouse.

#include "desktop/LearnerFixture.h"

#include "app/AppDelegate.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/WebViewController.h"
#include "service/EmbeddedService.h"
#include "support/DesktopEnvironment.h"
#include "support/PageChecker.h"
#include "support/SaveChooser.h"
#include "support/SoundRecorder.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTimer>

#include <gmock/gmock.h>

namespace murvo::test {

using namespace std::chrono_literals;

class HomePage : public Learner {
  protected:
    void press(const char *key) const { pressKey(QString::fromLatin1(key)); }
    void look(const char *state) const {
        EXPECT_EQ(faultsOf(*delegate->homeWebViewController()).join(u'\n').toStdString(), "") << state;
        photograph(QString::fromLatin1(state), delegate->window().contentScreenRect());
    }
    void waitFor(const char *script) const { ASSERT_TRUE(waitInHome(script)) << script; }
    void click(const char *selector) const { std::ignore = inHome(clicking(selector).constData()); }
    void endTour() const {
        ASSERT_NO_FATAL_FAILURE(waitFor("String(!document.getElementById('tour').hidden)"));
        click("#tour-skip");
        ASSERT_NO_FATAL_FAILURE(waitFor("String(document.getElementById('tour').hidden)"));
    }
    /// A request to the service, as the page makes them; its status must be 200.
    void send(const char *method, const QByteArray &path, const QByteArray &body) const {
        std::ignore = inHome(("window.sent = ''; fetch('../Api/" + path + "', {method: '" + method +
                              "', body: '" + body + "'}).then((r) => { sent = String(r.status); }); 1")
                                 .constData());
        ASSERT_NO_FATAL_FAILURE(waitFor("String(window.sent !== '')"));
        ASSERT_EQ(inHome("window.sent"), QStringLiteral("200")) << path.constData();
    }
    /// A film that was left in the middle, with two words of it saved.
    void comeBackFromAFilm() {
        if (const QString own = qEnvironmentVariable("MURVO_GALLERY_FILM"); !own.isEmpty()) {
            ASSERT_NO_FATAL_FAILURE(bringFilm(own));
        } else {
            writeBeside(QStringLiteral(".en.srt"), subtitles("the waves", 9));
        }
        ASSERT_NO_FATAL_FAILURE(play());
        ASSERT_TRUE(waitUntil([this] { return !line("learned").isEmpty(); }, 20s));
        std::ignore =
            inPage("fetch('../Api/Pages/Settings', {method: 'PUT', body: '{\"tour\":{\"seen\":true}}'})"
                   ".then(() => { window.isSeen = true; }); 1");
        ASSERT_TRUE(waitInPage("String(window.isSeen === true)"));
        delegate->loadHomeScreen();
        ASSERT_TRUE(waitUntil([this] { return delegate->window().isActiveWindow(); }));
        ASSERT_NO_FATAL_FAILURE(
            send("PUT", "MovieFile/Watching?videoId=1", R"({"positionMs":9000,"durationMs":20000})"));
        ASSERT_NO_FATAL_FAILURE(
            send("POST", "Words/Save",
                 R"({"form":"ahead","line":"My dog Milo always runs ahead of me.",)"
                 R"("translation":"Mon chien Milo court toujours devant moi.","videoId":1,)"
                 R"("startMs":15740,"endMs":18461})"));
        ASSERT_NO_FATAL_FAILURE(
            send("POST", "Words/Save",
                 R"({"form":"coming up","lemma":"come up","gloss":"se lever","videoId":1,)"
                 R"("line":"The air is cold, but the sun is already coming up.",)"
                 R"("translation":"L’air est frais, mais le soleil se lève déjà.",)"
                 R"("startMs":10689,"endMs":14089})"));
        std::ignore = inHome("$(window).trigger('refreshLevel'); 1");
        ASSERT_NO_FATAL_FAILURE(waitFor("String(document.getElementById('due-count').textContent === '2')"));
    }

    void openLists() const {
        click("#tab-words");
        ASSERT_NO_FATAL_FAILURE(
            waitFor("String(document.querySelectorAll('#word-list .gloss').length === 2)"));
        click("#words .count-row button");
        ASSERT_NO_FATAL_FAILURE(waitFor("String(document.getElementById('lists').open)"));
    }
    /// Clicks a link to a file and has it saved at the path; what the program suggested.
    [[nodiscard]] QString saveBy(const char *link, const QString &path) const {
        QString suggested;
        QTimer atChooser;
        QObject::connect(&atChooser, &QTimer::timeout, &atChooser, [&] {
            if (const auto told = answerSaveChooser(path)) {
                atChooser.stop();
                suggested = *told;
            }
        });
        atChooser.start(50ms);
        const QStringList place =
            inHome(("(e => { e.scrollIntoView({block: 'center'}); const r = e.getBoundingClientRect();"
                    "return Math.round(r.x + r.width / 2) + ' ' + Math.round(r.y + r.height / 2); })"
                    "(document.querySelector('" +
                    QByteArray(link) + "'))")
                       .constData())
                .split(u' ');
        clickAt(delegate->window().contentScreenRect().topLeft() +
                QPoint(place.value(0).toInt(), place.value(1).toInt()));
        EXPECT_TRUE(waitUntil([&] { return !suggested.isEmpty(); })) << "no chooser";
        return suggested;
    }

  private:
    [[nodiscard]] static QByteArray clicking(const char *selector) {
        return "document.querySelector('" + QByteArray(selector) + "').click(); 1";
    }
};

TEST_F(HomePage, ShowsTheTourOnceAndHasNoSeriousFaultInIt) {
    ASSERT_NO_FATAL_FAILURE(goHome());
    for (int step = 1; step <= 3; ++step) {
        ASSERT_NO_FATAL_FAILURE(waitFor("String(!document.getElementById('tour').hidden)"));
        look(QByteArray("home-tour-" + QByteArray::number(step)).constData());
        click("#tour-next");
    }
    ASSERT_NO_FATAL_FAILURE(waitFor("String(document.getElementById('tour').hidden)"));
    look("home-empty");
    ASSERT_NO_FATAL_FAILURE(waitFor("fetch('../Api/Pages/Settings').then((r) => r.json())"
                                    ".then(({settings}) => { window.seen = String(settings.tour?.seen); });"
                                    "String(window.seen === 'true')"));
    std::ignore = inHome("document.body.id = 'old'; location.reload(); 1");
    ASSERT_NO_FATAL_FAILURE(waitFor(
        "String(!!document.body && document.body.id !== 'old' && !!document.querySelector('#films') &&"
        " document.getElementById('selected-name').textContent !== '')"));
    letPass(500ms);
    EXPECT_EQ(inHome("String(document.getElementById('tour').hidden)"), QStringLiteral("true"));
}

TEST_F(HomePage, HasNoSeriousFaultInAnyState) {
    ASSERT_NO_FATAL_FAILURE(comeBackFromAFilm());
    ASSERT_NO_FATAL_FAILURE(waitFor("String(document.querySelectorAll('#shelf .film-open').length === 1)"));
    look("home-shelf");
    click("#tab-review");
    ASSERT_NO_FATAL_FAILURE(waitFor("String(!!document.querySelector('#review .front'))"));
    look("home-review");
    click("#review .turn button");
    ASSERT_NO_FATAL_FAILURE(waitFor("String(!!document.querySelector('#review .meaning'))"));
    look("home-review-turned");
    click("#tab-words");
    ASSERT_NO_FATAL_FAILURE(waitFor("String(document.querySelectorAll('#word-list .gloss').length === 2)"));
    look("home-words");
    click("#words .count-row button");
    ASSERT_NO_FATAL_FAILURE(waitFor("String(document.getElementById('lists').open)"));
    look("home-lists");
    click("#lists .close");
    click("#tab-search");
    std::ignore = inHome("(f => { f.value = 'the'; f.dispatchEvent(new Event('input', {bubbles: true})); })"
                         "(document.querySelector('#search input[type=search]')); 1");
    ASSERT_NO_FATAL_FAILURE(waitFor("String(document.querySelectorAll('#results mark').length > 2)"));
    look("home-search");
    click("#selectedLanguage");
    ASSERT_NO_FATAL_FAILURE(waitFor("String(!document.getElementById('languages').hidden)"));
    look("home-languages");
    click("#selectedLanguage");
    click("#level");
    ASSERT_NO_FATAL_FAILURE(waitFor("String(!document.getElementById('level-panel').hidden)"));
    look("home-level");
    click("#help-button");
    ASSERT_NO_FATAL_FAILURE(waitFor("String(document.getElementById('help').open)"));
    look("home-help");
}

TEST_F(HomePage, ReviewsByKeysAndPlaysTheLine) {
    ASSERT_NO_FATAL_FAILURE(comeBackFromAFilm());
    click("#tab-review");
    ASSERT_NO_FATAL_FAILURE(waitFor("String(!!document.querySelector('#review .front'))"));
    SoundRecorder recorder;
    EXPECT_TRUE(waitUntil([&] { // the recorder, too, takes its time to begin
        press("s");
        return waitUntil([&] { return recorder.amplitudeOf(220) > 0.005; }, 3s);
    })) << "the film's own sound";
    for (int i = 0; i < 2; ++i) {
        press("space");
        ASSERT_NO_FATAL_FAILURE(waitFor("String(!!document.querySelector('#review .grades'))"));
        press("3"); // good
        ASSERT_NO_FATAL_FAILURE(waitFor("String(!document.querySelector('#review .grades'))"));
    }
    ASSERT_NO_FATAL_FAILURE(waitFor("String(!!document.querySelector('#review .end'))"));
    look("home-review-done");
    EXPECT_EQ(inHome("String(document.getElementById('due-count').hidden)"), QStringLiteral("true"));
    press("u");
    ASSERT_NO_FATAL_FAILURE(waitFor("String(document.getElementById('due-count').textContent === '1')"));
}

TEST_F(HomePage, SavesTheWordsWhereTheLearnerWantsThem) {
    ASSERT_NO_FATAL_FAILURE(comeBackFromAFilm());
    ASSERT_NO_FATAL_FAILURE(openLists());
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("words.csv"));
    const QString suggested = saveBy("#lists a[download]", path);
    const auto saved = [&path] {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    EXPECT_TRUE(waitUntil([&] { return saved().contains("se lever"); })) << saved().toStdString();
    EXPECT_EQ(QFileInfo(suggested).suffix(), QStringLiteral("csv"));
}

TEST_F(HomePage, BringsBackAllThatWasSaved) {
    ASSERT_NO_FATAL_FAILURE(comeBackFromAFilm());
    ASSERT_NO_FATAL_FAILURE(openLists());
    const QString path = QDir::home().filePath(QStringLiteral("Downloads/murvo-2026-11-23.sqlite"));
    const auto goes = qScopeGuard([&path] { QFile::remove(path); });
    std::ignore = saveBy("#lists section:last-child a[download]", path);
    ASSERT_TRUE(waitUntil([&path] { return QFileInfo(path).size() > 0; }));
    ASSERT_NO_FATAL_FAILURE(send("PUT", "Words/Word", R"({"lemma":"sea","status":"known"})"));
    click("#lists .close");
    const auto openAtFiles = [this] {
        ASSERT_NO_FATAL_FAILURE(openLists());
        ASSERT_NO_FATAL_FAILURE(waitFor("String(!!document.querySelector('.saved-files button'))"));
    };
    const auto bringBack = [this] {
        click(".saved-files button");
        ASSERT_NO_FATAL_FAILURE(waitFor("String(!!document.querySelector('.saved-files .main'))"));
        std::ignore = inHome("document.body.id = 'old';"
                             "document.querySelector('.saved-files').scrollIntoView({block: 'center'}); 1");
        look("home-saved-files");
        click(".saved-files .main");
        ASSERT_NO_FATAL_FAILURE(waitFor("String(!!document.body && document.body.id !== 'old' &&"
                                        " document.getElementById('due-count')?.textContent === '2' &&"
                                        " !document.getElementById('hint').hidden)"));
    };
    const auto knows = [this](const char *status) {
        return waitInHome(("fetch('../Api/Words/Word?lemma=sea').then((r) => r.json())"
                           ".then(({status}) => { window.sea = String(status); });"
                           "String(window.sea === '" +
                           QByteArray(status) + "')")
                              .constData());
    };
    ASSERT_NO_FATAL_FAILURE(openAtFiles());
    ASSERT_NO_FATAL_FAILURE(bringBack());
    EXPECT_TRUE(knows("null")) << "as it was when the file was saved";
    QFile::remove(path);
    ASSERT_NO_FATAL_FAILURE(openAtFiles());
    ASSERT_NO_FATAL_FAILURE(bringBack());
    EXPECT_TRUE(knows("known")) << "and what was there before is not lost";
}

TEST_F(HomePage, GoesOnWithAFilmOfTheShelfOrSaysThatItHasMoved) {
    ASSERT_NO_FATAL_FAILURE(comeBackFromAFilm());
    ASSERT_NO_FATAL_FAILURE(waitFor("String(document.querySelectorAll('#shelf .film-open').length === 1)"));
    // The page of the film has kept its own place meanwhile.
    ASSERT_NO_FATAL_FAILURE(
        send("PUT", "MovieFile/Watching?videoId=1", R"({"positionMs":9000,"durationMs":20000})"));
    std::ignore = inHome("$(window).trigger('refreshLevel'); 1");
    ASSERT_NO_FATAL_FAILURE(
        waitFor("String(document.querySelector('#shelf .way span').style.width === '45%')"));
    click("#shelf .film-open");
    EXPECT_TRUE(waitUntil([this] { return player() && player()->isPlaying(); }, 20s));
    EXPECT_EQ(delegate->session().videoSourcePath, film);
    EXPECT_TRUE(waitUntil([this] { return time() >= 9000; }, 5s)) << "where it was left";
    delegate->loadHomeScreen();
    // From a line that was found, the film begins there.
    click("#tab-search");
    std::ignore = inHome("(f => { f.value = 'waves'; f.dispatchEvent(new Event('input')); })"
                         "(document.querySelector('#search .field')); 1");
    ASSERT_NO_FATAL_FAILURE(waitFor("String(document.querySelectorAll('#results .watch').length > 1)"));
    const int startsAtS =
        inHome(
            "document.querySelector('#results li:last-child .watch').textContent.split(':').reduce((m, s) => "
            "60 * m + Number(s), 0)")
            .toInt();
    ASSERT_GT(startsAtS, 0);
    click("#results li:last-child .watch");
    EXPECT_TRUE(
        waitUntil([&] { return player() && player()->isPlaying() && time() >= startsAtS * 1000; }, 20s));
    EXPECT_LT(time(), startsAtS * 1000 + 5000);
    delegate->loadHomeScreen();
    click("#tab-films");
    const QString elsewhere = film + QStringLiteral(".moved");
    ASSERT_TRUE(QFile::rename(film, elsewhere));
    std::ignore = inHome("$(window).trigger('refreshLevel'); 1");
    EXPECT_TRUE(waitInHome("String(!!document.querySelector('#shelf .gone'))"));
    look("home-moved");
}

TEST_F(HomePage, SpeaksTheLearnersLanguageAtOnceAndIsWalkedByTab) {
    ASSERT_NO_FATAL_FAILURE(goHome());
    ASSERT_NO_FATAL_FAILURE(endTour());
    click("#selectedLanguage");
    std::ignore = inHome("document.querySelector('#language-list input[value=ara]').click(); 1");
    ASSERT_NO_FATAL_FAILURE(waitFor("String(document.documentElement.dir === 'rtl')"));
    look("home-arabic");
    std::ignore = inHome("document.querySelector('#language-list input[value=deu]').click(); 1");
    ASSERT_NO_FATAL_FAILURE(waitFor("String(document.documentElement.lang === 'de')"));
    std::ignore = inHome("document.activeElement.blur(); window.walked = [];"
                         "document.addEventListener('focusin', ({target}) => walked.push(target.id)); 1");
    EXPECT_TRUE(waitUntil([this] { // one at a time: a key may come before the page has the keyboard
        press("Tab");
        return inHome("String(walked.length >= 4)") == QLatin1String("true");
    }));
    EXPECT_EQ(inHome("walked.slice(0, 4).join(' ')").toStdString(),
              "tab-films help-button level selectedLanguage");
}

TEST_F(HomePage, SaysOnAPageOfItsOwnThatNoAccountIsNeeded) {
    WebViewController account(DesktopEnvironment::profile());
    account.loadUrl(service->baseUrl() + QStringLiteral("Account/Register"));
    ASSERT_TRUE(waitUntil([&] {
        return account.evaluate(QStringLiteral("String(document.body.textContent.trim().length > 40)")) ==
               QLatin1String("true");
    }));
    EXPECT_EQ(faultsOf(account).join(u'\n').toStdString(), "");
}

} // namespace murvo::test
