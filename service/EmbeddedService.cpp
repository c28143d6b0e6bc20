// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/EmbeddedService.h"

#include "ChangeCounts.h"
#include "Dictionary/Dictionaries.h"
#include "Dictionary/English.h"
#include "Dictionary/WordLookup.h"
#include "Dictionary/WordNet.h"
#include "Export/AnkiSender.h"
#include "Export/FilmStills.h"
#include "Export/PackageExport.h"
#include "Export/ShortMeaning.h"
#include "FilmHandover.h"
#include "Http/ClipRoutes.h"
#include "Http/DictionaryRoutes.h"
#include "Http/ExportRoutes.h"
#include "Http/FilmRoutes.h"
#include "Http/FilmWordRoutes.h"
#include "Http/HomeRoutes.h"
#include "Http/HttpServer.h"
#include "Http/LearnerRoutes.h"
#include "Http/PageRoutes.h"
#include "Http/ReviewRoutes.h"
#include "Http/Router.h"
#include "Http/SettingsRoutes.h"
#include "Http/ShelfRoutes.h"
#include "Http/SpeechRoutes.h"
#include "Http/SubtitleRoutes.h"
#include "Http/WatchingRoutes.h"
#include "Http/WordRoutes.h"
#include "Log.h"
#include "Sources/FilmPaths.h"
#include "Sources/InsideSubtitles.h"
#include "Sources/SubtitleLookup.h"
#include "Speech/Speaker.h"
#include "Speech/Voices.h"
#include "Store/AnkiTable.h"
#include "Store/ChoiceTable.h"
#include "Store/Database.h"
#include "Store/FilmTable.h"
#include "Store/GlossTable.h"
#include "Store/LearnerFile.h"
#include "Store/LineTable.h"
#include "Store/PageSettings.h"
#include "Store/ReviewTable.h"
#include "Store/SavedFiles.h"
#include "Store/SettingsTable.h"
#include "Store/StillTable.h"
#include "Store/SubtitleTable.h"
#include "Store/TimingTable.h"
#include "Store/WatchingTable.h"
#include "Store/WordTable.h"
#include "Subtitles/FilmLines.h"
#include "Timing/TrackSync.h"
#include "Vocabulary/FilmWords.h"
#include "Vocabulary/Lexicon.h"
#include "Vocabulary/LineIndex.h"
#include "Vocabulary/Review.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <atomic>

extern "C" {
#include <libavutil/log.h>
}

namespace murvo::service {

namespace {

// Where the packages of the dictionaries put them.
const QString installedWordNet = QStringLiteral("/usr/share/wordnet");
const QString installedDictionaries = QStringLiteral("/usr/share/dictd");

bool makePrivateFolder(const QString &folder) {
    return QDir().mkpath(folder) &&
           QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

} // namespace

/// Everything in the order in which it is built on: the server comes last and so stops first.
struct EmbeddedService::Impl {
    Impl(const QString &databasePath, const OpenFilm &openFilm)
        : handover(openFilm)
        , database(databasePath, Database::builtInSteps())
        , learnerFile(database, databasePath, Database::builtInSteps())
        , savedFiles(QFileInfo(databasePath).path()) {
        learnerFile.removeLeftovers();
        addPageRoutes(router);
        addHomeRoutes(router, pendingFilms);
        addSettingsRoutes(router, settings, dictionaries, [this] { ankiSender.tryNow(); });
        addPageSettingsRoutes(router, pageSettings);
        addFilmRoutes(router,
                      {films, subtitles, choices, timings, settings, lookup, inside, lines, filmChanges});
        addWatchingRoutes(router, films, watching);
        addShelfRoutes(router, {films, watching, filmWords, stills, handover});
        addSubtitleRoutes(router, {films, subtitles, timings, lines, sync, filmChanges});
        addWordRoutes(router, vocabulary);
        addClipRoutes(router, films, isEnding);
        addReviewRoutes(router, vocabulary, review);
        addFilmWordRoutes(router, vocabulary);
        addLearnerRoutes(router, learnerRouteParts());
        addDictionaryRoutes(router, wordLookup, vocabulary);
        addSpeechRoutes(router, speaker);
        addExportRoutes(router, {words, settings, package, ankiSender, wordFacts()});
        prepareDictionaries();
    }

    /// Those that the learner will need.
    void prepareDictionaries() {
        dictionaries.prepare([this] { return settings.nativeLanguage(); });
    }

    /// What works by itself on the store ends before another takes its place.
    [[nodiscard]] LearnerRouteParts learnerRouteParts() {
        return {learnerFile,
                savedFiles,
                {[this](SQLite::Database &other) {
                     settings.copyThoseOfThisComputer(other);
                     LineTable::remakeIndex(other);
                 },
                 [this] {
                     inside.stop();
                     sync.stop();
                     package.cancel();
                 }},
                [this] {
                    contentChanges.announce();
                    ankiSender.tryNow();
                }};
    }

    /// What cards show of a word beside what the learner has saved.
    [[nodiscard]] WordFacts wordFacts() {
        return {[this](const QString &lemma) {
                    return shortMeaning(wordLookup.lookUp(lemma, 0, settings.nativeLanguage()));
                },
                [this](const QString &lemma) { return pronunciation(lemma); }};
    }

    /// Throws at the end of the service, lest a card be made without it for good.
    [[nodiscard]] QString pronunciation(const QString &lemma) {
        const auto spoken = speaker.pronunciation(lemma, voiceOf(u"eng", u"us"), Speaker::Patience::Patient);
        if (spoken.problem == SpeechProblem::Ending)
            throw std::runtime_error("the service stops");
        return spoken.result;
    }

    std::atomic<bool> isEnding{false}; // ends what is being cut out of films
    FilmHandover handover;
    Database database;
    LearnerFile learnerFile;
    SavedFiles savedFiles;
    ChangeCounts contentChanges;
    FilmTable films{database};
    SubtitleTable subtitles{database, &contentChanges};
    ChoiceTable choices{database};
    TimingTable timings{database};
    SettingsTable settings{database};
    PageSettings pageSettings{database};
    WatchingTable watching{database};
    StillTable stillTable{database};
    FilmStills stills{watching, stillTable, isEnding};
    FilmPaths paths;
    ChangeCounts pendingFilms;
    ChangeCounts filmChanges;
    InsideSubtitles inside{films, subtitles, filmChanges};
    SubtitleLookup lookup{films, subtitles, paths, inside};
    FilmLines lines{subtitles, choices, inside};
    TrackSync sync{subtitles, timings, lines};
    WordNet wordNet{installedWordNet};
    English english{wordNet, WordRank::ofProgram()};
    Dictionaries dictionaries{installedDictionaries};
    WordLookup wordLookup{english, wordNet, dictionaries};
    Lexicon lexicon{english, [this](const QString &lemma) { return english.rank(lemma); }};
    WordTable words{database};
    GlossTable glosses{database};
    LineTable lineTable{database};
    LineIndex lineIndex{films, subtitles, lineTable, lines, lexicon, contentChanges};
    LineParts lineParts{films, subtitles, choices, timings, settings, lineTable};
    FilmWords filmWords{lineParts, lineIndex, words, lexicon};
    VocabularyParts vocabulary{lineParts, words, glosses, filmWords, lexicon};
    ReviewTable reviews{database};
    Review review{reviews};
    Speaker speaker;
    AnkiTable ankiNotes{database};
    PackageExport package{words, settings, wordFacts(), learnerFile.temporaryPath()};
    AnkiSender ankiSender{database, words, ankiNotes, settings, wordFacts()};
    Router router;
    std::unique_ptr<HttpServer> server;
};

std::unique_ptr<EmbeddedService> EmbeddedService::start(const QString &dataFolder, QString &error,
                                                        const OpenFilm &openFilm) {
    if (!makePrivateFolder(dataFolder)) {
        error = QStringLiteral("The folder %1 for your data cannot be made or written to.").arg(dataFolder);
        return nullptr;
    }
    // Damaged films and subtitles are answered as such; the library's own words on them help nobody.
    av_log_set_level(AV_LOG_QUIET);
    const QString databasePath = QDir(dataFolder).filePath(QStringLiteral("murvo.sqlite"));
    try {
        auto impl = std::make_unique<Impl>(databasePath, openFilm);
        impl->server = HttpServer::start(impl->router, dataFolder);
        if (!impl->server) {
            error = QStringLiteral("No port could be opened on this computer for the subtitle service.");
            return nullptr;
        }
        return std::unique_ptr<EmbeddedService>(new EmbeddedService(std::move(impl)));
    } catch (const std::exception &failure) {
        error = QStringLiteral("Your data in %1 cannot be opened: %2.")
                    .arg(databasePath, QString::fromUtf8(failure.what()));
        return nullptr;
    }
}

EmbeddedService::EmbeddedService(std::unique_ptr<Impl> impl)
    : _impl(std::move(impl)) {}

EmbeddedService::~EmbeddedService() {
    // The server waits for the requests that wait for something.
    _impl->pendingFilms.close();
    _impl->filmChanges.close();
    _impl->speaker.close();
    _impl->handover.close();
    _impl->isEnding = true;
}

QString EmbeddedService::baseUrl() const {
    return _impl->server->baseUrl();
}

void EmbeddedService::filmIdentified(const QString &path, quint64 movieHash, quint64 fileSize) {
    _impl->paths.announce(path, movieHash, fileSize);
    _impl->prepareDictionaries();
}

void EmbeddedService::filmPending() {
    _impl->pendingFilms.announce();
}

} // namespace murvo::service
