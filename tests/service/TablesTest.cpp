// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/NoMoreRoom.h"
#include "service/SavedWords.h"
#include "service/ServiceFixture.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>

#include <SQLiteCpp/SQLiteCpp.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

namespace {

/// The rows of each table of the document, as their cells, by the heading above it.
using Tables = QMap<QString, QList<QStringList>>;

Tables documentedTables() {
    QFile document(QStringLiteral(MURVO_SERVICE_API_DOCUMENT));
    if (!document.open(QIODevice::ReadOnly))
        throw std::runtime_error("the document cannot be opened");
    Tables tables;
    QString heading;
    for (const QString &line : QString::fromUtf8(document.readAll()).split(u'\n')) {
        if (line.startsWith(u'#'))
            heading = line.section(u' ', 1);
        else if (line.startsWith("|--"_L1))
            tables[heading].clear(); // what came before are the columns' names
        else if (line.startsWith(u'|'))
            tables[heading].append(line.sliced(2).chopped(2).split(u" | "_s));
    }
    return tables;
}

QString nameIn(const QString &cell) {
    return cell.section(u'`', 1, 1);
}

QStringList toldFields(const Tables &tables, const QString &heading, const QString &before);

// A track that has cues has no error.
QStringList toldTrack(const Tables &tables, const QString &before, bool withCues) {
    QStringList told = toldFields(tables, u"Track"_s, before);
    if (withCues) {
        const QString error = before + "error"_L1;
        told.removeIf(
            [&error](const QString &field) { return field.startsWith(error) && !field.endsWith("null"_L1); });
        told += toldFields(tables, u"Track with cues"_s, before);
    }
    return told;
}

// Of a marked word only the film of a sighting may be null, and the time of review.
QStringList toldWord(const Tables &tables, const QString &before, bool isMarked) {
    QStringList told = toldFields(tables, u"Word"_s, before);
    if (isMarked)
        told.removeIf([](const QString &field) {
            return field.endsWith(" null"_L1) && !field.endsWith("videoId null"_L1) &&
                   !field.endsWith("dueAtMs null"_L1);
        });
    return told;
}

// What a field of that type is found to be, and what is in it. The fields of a timing are looked at in
// tracks.
QStringList toldType(const Tables &tables, const QString &type, const QString &field) {
    const bool isTrack = type.startsWith("track"_L1);
    const bool isTiming = type == "timing"_L1;
    const bool isWord = type == "marked word"_L1;
    const bool isLine = type == "shown line"_L1;
    const bool isSighting = type == "sighting"_L1;
    const bool isObject =
        isTrack || isTiming || isWord || isLine || isSighting || type.startsWith("object"_L1);
    QStringList told{field + u' ' + (isObject ? u"object"_s : type)};
    if (isWord)
        told += toldWord(tables, field + u'.', true);
    if (isLine)
        told += toldFields(tables, u"Shown line"_s, field + u'.');
    if (isSighting)
        told += toldFields(tables, u"Sighting"_s, field + u'.');
    if (isTrack)
        told += toldTrack(tables, field + u'.', type.contains("with cues"_L1));
    if (isTiming && !field.contains("Sync"_L1))
        told += toldFields(tables, u"Timing"_s, field + u'.');
    return told;
}

// Fields are told and found in one form: "GET ...: tracks[].forced boolean".
QStringList toldFields(const Tables &tables, const QString &heading, const QString &before) {
    QStringList told;
    for (const QStringList &row : tables[heading]) {
        QString field = before + nameIn(row[0]);
        QString types = row[1];
        if (types.startsWith("array of "_L1)) {
            told.append(field + " array"_L1);
            field += "[]"_L1;
            types = types.section(u' ', 2);
        }
        for (const QString &type : types.remove(u',').split(u" or "_s))
            told += toldType(tables, type, field);
    }
    return told;
}

QStringList foundFields(const QJsonValue &value, const QString &field) {
    const bool isWhole = value.toDouble() == static_cast<double>(value.toInteger());
    const QString type = value.isDouble()   ? (isWhole ? u"integer"_s : u"fraction"_s)
                         : value.isString() ? u"text"_s
                         : value.isBool()   ? u"boolean"_s
                         : value.isArray()  ? u"array"_s
                         : value.isObject() ? u"object"_s
                                            : u"null"_s;
    const bool isReply = field.isEmpty() || field.endsWith(": "_L1);
    QStringList found;
    if (!isReply)
        found.append(field + u' ' + type);
    for (const QJsonValue element : value.toArray())
        found += foundFields(element, field + "[]"_L1);
    for (const QString &key : value.toObject().keys())
        found += foundFields(value[key], field + (isReply ? key : u'.' + key));
    return found;
}

/// Everything that the document tells, each row after its heading: "Errors: 404 notFound".
QStringList toldRows(const Tables &tables) {
    const QString cues = u"GET Api/Subtitles/Cues?subtitleId=N: "_s; // a whole track with cues
    QStringList told = toldTrack(tables, cues, true) +
                       toldWord(tables, u"GET, PUT, DELETE Api/Words/Word: "_s, false) +
                       toldWord(tables, u"POST Api/Words/Save: "_s, true);
    for (const QString &heading : tables.keys()) {
        const QString before = heading + ": "_L1;
        if (heading.contains("Api/"_L1))
            told += toldFields(tables, heading, before);
        else if (heading == "Errors"_L1)
            for (const QStringList &row : tables[heading])
                told.append(before + row[0] + u' ' + nameIn(row[1]));
        else if (!heading.startsWith("Track"_L1) && heading != "Timing"_L1 && heading != "Word"_L1 &&
                 heading != "Shown line"_L1 && heading != "Sighting"_L1)
            for (const QStringList &row : tables[heading])
                told.append(before + nameIn(row[0]));
    }
    return told;
}

/// A film whose subtitles are at every stage: "en" and "fr" uploaded, "de" looked up and gone, "it" pictures,
/// and a track inside it that "en" comes three seconds after.
class TablesTest : public ServiceFixture {
  protected:
    void SetUp() override {
        openFilm = [](const QString &, const std::function<bool()> &take) { (void)take(); };
        restart();
        atFirst = get(settings).json();
        writeFile(u"inside.srt"_s, longSrt());
        const QString film =
            makeFilm(u"Film.mkv"_s, u"-f lavfi -i sine=d=2 -i inside.srt"_s, u"-map 1 -map 2 -c:s srt"_s);
        for (const char *language : {"en", "fr", "de"})
            writeFile(u"Film.%1.srt"_s.arg(QLatin1String(language)), srt("Hello"));
        writeFile(u"Film.it.sub"_s, pictures);
        lookup = lookUp(film);
        videoId = lookup.json()["videoId"_L1].toInt();
        EXPECT_TRUE(waitUntilRead(videoId));
        for (const QJsonValue offer : lookup.json()["subsToDownload"_L1].toArray())
            ids[offer["subFileName"_L1].toString().section(u'.', 1, 1)] = offer["subtitleId"_L1].toInt();
        (void)upload({{ids[u"en"_s], longSrt(3000)}, {ids[u"fr"_s], srt("<i>Bonjour</i>, garçon")}});
        QFile::remove(films.filePath(u"Film.de.srt"_s));
    }

    [[nodiscard]] QString ofSubtitle(const QString &route, const QString &language) {
        return u"Api/Subtitles/%1?subtitleId=%2"_s.arg(route).arg(ids[language]);
    }
    [[nodiscard]] QString ofFilm(const QString &route) const {
        return u"Api/MovieFile/%1?videoId=%2"_s.arg(route).arg(videoId);
    }

    [[nodiscard]] Reply german(const QString &route) { return get(ofSubtitle(route, u"de"_s)); }
    [[nodiscard]] Reply germanCues(const QByteArray &content) {
        (void)upload({{ids[u"de"_s], content}});
        return german(u"Cues"_s);
    }

    [[nodiscard]] QList<Reply> errors();
    [[nodiscard]] QStringList seenFields();
    [[nodiscard]] QStringList seenShelf();
    [[nodiscard]] QStringList seenFitting();
    [[nodiscard]] QStringList seenWords();
    [[nodiscard]] QStringList seenReview();
    [[nodiscard]] QStringList seenFilmWords();
    [[nodiscard]] QList<Reply> learnerFileErrors();
    [[nodiscard]] QStringList seenExport();
    [[nodiscard]] Reply nothingLeftToUndo();
    [[nodiscard]] Reply refusedInAFlood(const QString &path);
    [[nodiscard]] QStringList seenRows();
    void checkSetting(const QString &name, const QString &range, const QString &first);

    const QString settings = u"Api/Settings"_s;
    const QByteArray pictures{"\0\0\x01\xBA", 4};
    QJsonObject atFirst; ///< the settings of a new store
    Reply lookup;
    int videoId = 0;
    QMap<QString, int> ids; ///< of the subtitles, by the language in the file's name
};

// The last ones change the store.
QList<Reply> TablesTest::errors() {
    const QString lookupRoute = u"Api/MovieFile/GetSubtitlesToDownload"_s;
    const QString uploadRoute = u"Api/Subtitles/UploadGzippedFiles"_s;
    const QString word = u"Api/Words/Word"_s;
    const int movedFilm = lookUp(films.filePath(u"Moved.mkv"_s), 3).json()["videoId"_L1].toInt();
    const QByteArray moved = "{\"videoId\":" + QByteArray::number(movedFilm) + "}";
    QList<Reply> replies{ask("GET", settings, {{"Range", "all"}}),
                         get(u"Api/MovieFile/Lines?videoId=0"_s),
                         post(lookupRoute, "fileSize=1", "text/plain"),
                         post(uploadRoute, "x", "multipart/form-data"),
                         ask("PUT", settings, {}, "[]"),
                         put(settings, {{u"volumePercent"_s, u"1"_s}}),
                         put(ofFilm(u"Choice"_s), {{u"learned"_s, 999}}),
                         put(ofSubtitle(u"Timing"_s, u"en"_s), {{u"offsetMs"_s, 1}}),
                         put(ofSubtitle(u"Encoding"_s, u"en"_s), {{u"encoding"_s, u"UTF-7"_s}}),
                         put(ofSubtitle(u"Language"_s, u"en"_s), {{u"language"_s, u"en"_s}}),
                         post(ofSubtitle(u"Removed"_s, u"en"_s), "", "text/plain"),
                         ask("GET", settings, {{"Origin", "null"}}),
                         get(u"Api/Nothing"_s),
                         get(u"Api/MovieFile/Lines?videoId=12345"_s),
                         post(u"Api/Films/Open"_s, moved, "text/plain"),
                         get(u"Api/Films/Still?videoId=%1"_s.arg(movedFilm)),
                         get(u"Api/Lines/Sound?startMs=0&endMs=1&videoId=%1"_s.arg(movedFilm)),
                         get(u"Api/Subtitles/File?subtitleId=999"_s),
                         german(u"File"_s),
                         ask("DELETE", settings),
                         german(u"Cues"_s),
                         put(word, {{u"lemma"_s, u"1"_s}}),
                         put(word, {{u"lemma"_s, u"a"_s}, {u"status"_s, 1}}),
                         post(u"Api/Words/Save"_s, "{\"form\":\"a\"}", "text/plain"),
                         post(u"Api/Review/Grade"_s, "{\"lemma\":\"bad\",\"grade\":1}", "text/plain"),
                         post(u"Api/Review/Grade"_s, "{\"lemma\":\"ox\",\"grade\":\"good\"}", "text/plain"),
                         nothingLeftToUndo(),
                         get(u"Api/Words/Anki/File"_s),
                         get(u"Api/Speech/Sound?text=..."_s),
                         get(u"Api/Speech/Sound?text="_s + QString(301, u'a')),
                         refusedInAFlood(u"Api/Speech/Sound?speed=slow&text="_s + QString(300, u'x')),
                         refusedInAFlood(u"Api/Lines/Picture?startMs=1&endMs=1900&videoId=%1"_s.arg(videoId)),
                         post(lookupRoute, QByteArray(9000, 'x'), "application/x-www-form-urlencoded"),
                         get(QString(9000, u'a')),
                         ask("POST", uploadRoute, {{"Content-Encoding", "gzip"}}),
                         germanCues(pictures),
                         germanCues("this is no subtitle"),
                         germanCues("1\n00:00:01,000 --> 00:00:02,000\n\n")};
    replies += learnerFileErrors();
    SQLite::Database(dataFolder.filePath(u"murvo.sqlite"_s).toStdString(), SQLite::OPEN_READWRITE)
        .exec("DROP TABLE settings"); // a store that another program has damaged
    return replies << get(settings);
}

QList<Reply> TablesTest::learnerFileErrors() {
    const QString route = u"Api/Learner/File"_s;
    const QByteArray good = get(route).body;
    QByteArray newer = good;
    newer[60 + 3] = 99; // the file format's place for the number of the schema
    QList<Reply> replies{post(u"Api/Learner/Saved"_s, R"({"id":"none"})", "text/plain"),
                         post(route, "x", "text/plain"), post(route, newer, "text/plain"),
                         post(route, good.chopped(good.size() / 2), "text/plain")};
    const NoMoreRoom atAll(4096);
    return replies << put(settings, {{u"volumePercent"_s, 7}});
}

QStringList TablesTest::seenFields() {
    QStringList fields = foundFields(lookup.json(), u"POST Api/MovieFile/GetSubtitlesToDownload: "_s) +
                         foundFields(upload({{ids[u"en"_s], longSrt(3000)}, {999, "x"}}).json(),
                                     u"POST Api/Subtitles/UploadGzippedFiles: "_s) +
                         foundFields(put(settings, {}).json(), u"GET Api/Settings, PUT Api/Settings: "_s);
    EXPECT_EQ(foundFields(atFirst, {}), foundFields(put(settings, {}).json(), {}));
    const auto see = [&fields](const QString &heading, const Reply &reply) {
        fields += foundFields(reply.json(), heading + ": "_L1);
    };
    const QJsonObject cut{{u"atMs"_s, 1000}, {u"offsetMs"_s, -5}};
    const QJsonObject timing{
        {u"offsetMs"_s, 7}, {u"rateNumerator"_s, 25}, {u"rateDenominator"_s, 24}, {u"cut"_s, cut}};
    EXPECT_EQ(put(ofSubtitle(u"Timing"_s, u"fr"_s), timing).json(), timing);
    for (const QJsonValue &wanted : {QJsonValue(ids[u"en"_s]), QJsonValue(QJsonValue::Null)}) {
        const QString choice = u"PUT Api/MovieFile/Choice?videoId=N"_s;
        see(choice, put(ofFilm(u"Choice"_s), {{u"learned"_s, wanted}, {u"native"_s, wanted}}));
        // Each line shows a moved track, an unmoved one, and none.
        for (const int id : {ids[u"en"_s], ids[u"fr"_s], 0}) {
            (void)put(ofFilm(u"Choice"_s), {{u"learned"_s, id}, {u"native"_s, id}});
            see(u"GET Api/MovieFile/Lines?videoId=N"_s, get(ofFilm(u"Lines"_s)));
        }
        (void)put(ofFilm(u"Choice"_s), {{u"learned"_s, wanted}, {u"native"_s, wanted}});
    }
    for (const QString &language : {u"en"_s, u"fr"_s})
        see(u"GET Api/Subtitles/Cues?subtitleId=N"_s, get(ofSubtitle(u"Cues"_s, language)));
    see(u"GET Api/MovieFile/Changes?videoId=N&after=N"_s, get(ofFilm(u"Changes"_s) + u"&after=0"_s));
    see(u"GET Api/MovieFile/AudioTracks?videoId=N"_s, get(ofFilm(u"AudioTracks"_s)));
    const QString watching = u"GET, PUT Api/MovieFile/Watching?videoId=N"_s;
    see(watching, get(ofFilm(u"Watching"_s)));
    see(watching, put(ofFilm(u"Watching"_s), {{u"positionMs"_s, 1}, {u"audioTrackId"_s, 2}}));
    see(u"GET, PUT Api/Pages/Settings"_s, get(u"Api/Pages/Settings"_s));
    see(u"GET, PUT Api/Subtitles/Encoding?subtitleId=N"_s, get(ofSubtitle(u"Encoding"_s, u"fr"_s)));
    see(u"GET, PUT Api/Subtitles/Language?subtitleId=N"_s, get(ofSubtitle(u"Language"_s, u"fr"_s)));
    const Reply added =
        post(u"Api/MovieFile/AddSubtitle?fileName=own.srt&"_s + ofFilm(u""_s).section(u'?', 1),
             "1\n00:00:01,000 --> 00:00:02,000\nOwn\n", "text/plain");
    see(u"POST, DELETE Api/Subtitles/Removed?subtitleId=N"_s,
        post(u"Api/Subtitles/Removed?subtitleId=%1"_s.arg(added.json()["subtitleId"_L1].toInt()), "",
             "text/plain"));
    see(u"GET Api/Settings/Languages"_s, get(u"Api/Settings/Languages"_s));
    see(u"GET Api/Home/PendingFilms?after=N"_s, get(u"Api/Home/PendingFilms?after=9"_s));
    (void)put(settings, {{u"nativeLanguage"_s, u"deu"_s}});
    (void)put(u"Api/Words/Word"_s, {{u"lemma"_s, u"bad"_s}, {u"status"_s, u"known"_s}});
    for (const QString &text : {u"bad child"_s, u"a child"_s, u"Chidl"_s})
        see(u"GET Api/Dictionary/Word?text=TEXT&at=N"_s, get(u"Api/Dictionary/Word?at=2&text="_s + text));
    see(u"GET Api/Speech/Pronunciation?text=TEXT"_s, get(u"Api/Speech/Pronunciation?text=hello"_s));
    EXPECT_EQ(get(u"Api/Speech/Sound?text=hello&speed=slow&language=eng&accent=gb"_s).status, 200);
    EXPECT_EQ(get(u"Api/Words/List?format=tsv"_s).status, 200);
    fields += seenShelf() + seenFitting() + seenWords() + seenReview() + seenFilmWords() + seenExport();
    return fields;
}

QStringList TablesTest::seenWords() {
    QStringList rows;
    const auto see = [&rows](const QString &heading, const Reply &reply) {
        EXPECT_EQ(reply.status, 200) << reply.body.toStdString();
        rows += foundFields(reply.json(), heading + ": "_L1);
    };
    const QString word = u"GET, PUT, DELETE Api/Words/Word"_s;
    for (const char *status :
         {"learning1", "learning2", "learning3", "learning4", "known", "ignored", "new"}) {
        const Reply marked =
            put(u"Api/Words/Word"_s, {{u"lemma"_s, u"stone"_s}, {u"status"_s, QLatin1String(status)}});
        rows.append("Statuses: "_L1 + marked.json()["status"_L1].toString());
    }
    for (const QJsonValue &film : {QJsonValue(videoId), QJsonValue(0)}) {
        const QString status = film == 0 ? u"known"_s : u"new"_s; // due for review, or not
        const QJsonObject body{
            {u"form"_s, u"stones"_s}, {u"line"_s, u"Stones!"_s}, {u"videoId"_s, film}, {u"status"_s, status}};
        see(u"POST Api/Words/Save"_s, post(u"Api/Words/Save"_s, QJsonDocument(body).toJson(), "text/plain"));
        see(u"GET Api/Words?status=STATUSES&videoId=N&text=TEXT&order=ORDER&offset=N&count=N"_s,
            get(u"Api/Words"_s));
    }
    see(u"GET Api/Words?status=STATUSES&videoId=N&text=TEXT&order=ORDER&offset=N&count=N"_s,
        get(u"Api/Words?status=known&text=ST&order=due&offset=0&count=5&videoId=%1"_s.arg(videoId)));
    see(word, put(u"Api/Words/Word"_s, {{u"lemma"_s, u"stone"_s}, {u"status"_s, u"new"_s}}));
    see(word, ask("DELETE", u"Api/Words/Word?lemma=stone"_s));
    see(u"PUT Api/Words/Statuses"_s, put(u"Api/Words/Statuses"_s, {{u"words"_s, QJsonArray()}}));
    see(u"POST Api/Words/Import"_s, post(u"Api/Words/Import"_s, "cat\n-", "text/plain"));
    see(u"GET, POST Api/Learner/File"_s,
        post(u"Api/Learner/File"_s, get(u"Api/Learner/File"_s).body, "application/vnd.sqlite3"));
    see(u"GET, POST Api/Learner/Saved"_s, get(u"Api/Learner/Saved"_s)); // what was there before
    return rows;
}

// Words with a line of a film, with another line, and with none.
QStringList TablesTest::seenReview() {
    QStringList rows;
    const auto send = [this](const QString &route, const QJsonObject &body) {
        return post(route, QJsonDocument(body).toJson(), "text/plain");
    };
    const auto see = [&rows](const QString &heading, const Reply &reply) {
        EXPECT_EQ(reply.status, 200) << reply.body.toStdString();
        rows += foundFields(reply.json(), heading + ": "_L1);
    };
    (void)send(u"Api/Words/Save"_s, {{u"form"_s, u"elk"_s}, {u"line"_s, u"a"_s}, {u"videoId"_s, videoId}});
    (void)send(u"Api/Words/Save"_s, {{u"form"_s, u"elm"_s}, {u"line"_s, u"a"_s}});
    (void)put(u"Api/Words/Word"_s, {{u"lemma"_s, u"eel"_s}, {u"status"_s, u"new"_s}});
    see(u"GET Api/Review?count=N"_s, get(u"Api/Review?count=100"_s));
    for (const QString &lemma : {u"elk"_s, u"elm"_s}) {
        for (const QString &grade : {u"again"_s, u"hard"_s, u"good"_s, u"easy"_s, u"easy"_s, u"again"_s}) {
            see(u"POST Api/Review/Grade"_s,
                send(u"Api/Review/Grade"_s, {{u"lemma"_s, lemma}, {u"grade"_s, grade}}));
            rows.append("Grades: "_L1 + grade);
        }
        for (const char *const status : {"known", "learning4"}) {
            const Reply undone = send(u"Api/Review/Undo"_s, {});
            EXPECT_EQ(undone.json()["word"_L1]["status"_L1], QLatin1String(status));
            see(u"POST Api/Review/Undo"_s, undone);
        }
    }
    see(u"GET Api/Review?count=N"_s, get(u"Api/Review"_s));
    return rows;
}

QStringList TablesTest::seenFilmWords() {
    QStringList rows;
    const auto see = [&rows](const QString &heading, const Reply &reply) {
        EXPECT_EQ(reply.status, 200) << reply.body.toStdString();
        rows += foundFields(reply.json(), heading + ": "_L1);
    };
    const QString ofWords = u"GET Api/MovieFile/Words?videoId=N"_s;
    (void)put(settings, {{u"startLevel"_s, u"A1"_s}});
    (void)put(u"Api/Words/Word"_s, {{u"lemma"_s, u"cliff"_s}, {u"status"_s, u"new"_s}});
    writeFile(u"Second.en.srt"_s, srt("The lantern on the cliff"));
    const Reply second = lookUp(writeFile(u"Second.mkv"_s, "x"), 2);
    see(ofWords, get(u"Api/MovieFile/Words?videoId=%1"_s.arg(second.json()["videoId"_L1].toInt())));
    fetchAndUpload(second);
    see(ofWords, get(u"Api/MovieFile/Words?videoId=%1"_s.arg(second.json()["videoId"_L1].toInt())));
    see(u"GET Api/Home/Level"_s, get(u"Api/Home/Level"_s));
    (void)put(settings, {{u"startLevel"_s, u"C2"_s}});
    see(u"GET Api/Home/Level"_s, get(u"Api/Home/Level"_s));
    (void)get(ofFilm(u"Words"_s));                          // its lines are made by now
    for (const QString &text : {u"line"_s, u"line%2060"_s}) // pages full and not
        see(u"GET Api/Lines/Search?text=TEXT&language=CODE&wholeWord=BOOLEAN&below=N&count=N"_s,
            get(u"Api/Lines/Search?language=eng&wholeWord=true&below=2000000000&count=5&text="_s + text));
    return rows;
}

QStringList TablesTest::seenShelf() {
    const QString shelf = u"Api/Films"_s;
    const int plain = lookUp(writeFile(u"Plain.mkv"_s, "x"), 4).json()["videoId"_L1].toInt();
    (void)put(u"Api/MovieFile/Watching?videoId=%1"_s.arg(plain), {{u"positionMs"_s, 1}});
    (void)get(ofFilm(u"Words"_s)); // counts them
    const QByteArray film = "{\"videoId\":" + QByteArray::number(videoId) + "}";
    QStringList fields =
        foundFields(post(shelf + "/Open"_L1, film, "text/plain").json(), u"POST Api/Films/Open: "_s);
    fields += foundFields(get(shelf + "?offset=0&count=5"_L1).json(), u"GET Api/Films?offset=N&count=N: "_s);
    fields += foundFields(ask("DELETE", shelf + u"?videoId=%1"_s.arg(plain)).json(),
                          u"DELETE Api/Films?videoId=N: "_s);
    return fields;
}

QStringList TablesTest::seenFitting() {
    const QString heading = u"POST, GET, DELETE Api/Subtitles/Sync?subtitleId=N: "_s;
    const QString path = ofSubtitle(u"Sync"_s, u"en"_s);
    QStringList fields = foundFields(get(path).json(), heading);
    EXPECT_EQ(get(path).json()["stage"_L1].toString(), u"none"_s);
    EXPECT_EQ(post(path, {}, "text/plain").json()["stage"_L1].toString(), u"running"_s);
    QJsonObject state;
    QElapsedTimer clock;
    clock.start();
    while (state["stage"_L1].toString() != "done"_L1 && !clock.hasExpired(60'000))
        state = get(path).json();
    EXPECT_TRUE(state["isSure"_L1].toBool() && state["isAgainstTrack"_L1].toBool())
        << QJsonDocument(state).toJson().toStdString();
    EXPECT_NEAR(state["timing"_L1]["offsetMs"_L1].toInt(), -3000, 20);
    state["timing"_L1] = QJsonObject(); // its fields are looked at in tracks
    fields += foundFields(state, heading);
    EXPECT_EQ(ask("DELETE", path).json()["stage"_L1].toString(), u"none"_s);
    return fields;
}

QStringList TablesTest::seenExport() {
    const QString package = u"Api/Words/Anki"_s;
    const QString connect = u"Api/Words/AnkiConnect"_s;
    QStringList fields = foundFields(get(connect).json(), u"GET, POST Api/Words/AnkiConnect: "_s) +
                         foundFields(post(package + u"?clips=false"_s, {}, "text/plain").json(),
                                     u"POST, GET, DELETE Api/Words/Anki: "_s);
    QElapsedTimer clock;
    clock.start();
    while (get(package).json()["stage"_L1].toString() != "done"_L1 && !clock.hasExpired(60'000))
        std::this_thread::yield();
    EXPECT_EQ(get(u"Api/Words/Anki/File"_s).status, 200);
    EXPECT_EQ(ask("DELETE", package).json()["stage"_L1].toString(), u"none"_s);
    SavedWordsStore(dataFolder.filePath(u"murvo.sqlite"_s)).add({.lemma = u"word"_s});
    SavedWordsStore(dataFolder.filePath(u"murvo.sqlite"_s)).add({.lemma = u"refused"_s});
    SQLite::Database(dataFolder.filePath(u"murvo.sqlite"_s).toStdString(), SQLite::OPEN_READWRITE, 5000)
        .exec("INSERT INTO anki_notes VALUES ('guid-refused', 0, x'00', 'Not today.')");
    (void)put(settings, {{u"sendsToAnki"_s, true}, {u"ankiConnectPort"_s, freePort()}});
    QJsonObject state;
    while (!state["problem"_L1].isObject() && !clock.hasExpired(60'000))
        state = get(connect).json();
    (void)put(settings, {{u"sendsToAnki"_s, false}});
    return fields + foundFields(state, u"GET, POST Api/Words/AnkiConnect: "_s);
}

Reply TablesTest::nothingLeftToUndo() {
    restart(); // which forgets the grades
    return post(u"Api/Review/Undo"_s, {}, "text/plain");
}

/// Asks for more of it at once than is taken, until something is refused.
Reply TablesTest::refusedInAFlood(const QString &path) {
    Reply refused;
    std::mutex mutex;
    std::atomic<bool> isSeen = false;
    QElapsedTimer clock;
    clock.start();
    std::vector<std::thread> clients;
    clients.reserve(20);
    for (int i = 0; i < 20; ++i)
        clients.emplace_back([&] {
            while (!isSeen && !clock.hasExpired(30'000)) {
                const Reply reply = get(path);
                const std::lock_guard lock(mutex);
                if (reply.status >= 400 && !isSeen) {
                    refused = reply;
                    isSeen = true;
                }
            }
        });
    for (std::thread &client : clients)
        client.join();
    return refused;
}

/// What the service was seen to do, in the form of the document's rows.
QStringList TablesTest::seenRows() {
    QStringList rows = seenFields();
    for (const QString &page :
         {u"Player/Home"_s, u"Player/Play?videoId=N"_s, u"Account/Register"_s, u"Web/..."_s}) {
        if (get(QString(page).replace("..."_L1, "play/play.mjs"_L1)).status == 200)
            rows.append("Pages: "_L1 + page);
    }
    const int id = ids[u"en"_s];
    for (const auto &part : QList<QPair<int, QByteArray>>{
             {-1, "x"}, {id, "\x1f\x8b\x08 cut"}, {id, QByteArray(9 * 1024 * 1024, 'x')}, {999, "x"}})
        rows.append("Refused parts: "_L1 + upload({part}).json()["refused"_L1][0]["code"_L1].toString());
    for (const Reply &reply : errors()) {
        rows.append(u"Errors: %1 %2"_s.arg(reply.status).arg(reply.errorCode()));
        EXPECT_EQ(foundFields(reply.json(), {}).join(u' '),
                  u"error object error.code text error.message text"_s);
        EXPECT_TRUE(reply.json()["error"_L1]["message"_L1].toString().endsWith(u'.'));
    }
    rows.removeDuplicates();
    return rows;
}

void TablesTest::checkSetting(const QString &name, const QString &range, const QString &first) {
    QJsonArray good;
    QJsonArray bad{u"eng"_s, u"fr"_s};
    QJsonValue expected = nameIn(first);
    if (const QStringList ends = range.section(u',', 0, 0).split(u" to "_s); ends.size() == 2) {
        good = {ends[0].toInt(), ends[1].toInt()};
        bad = {ends[0].toInt() - 1, ends[1].toInt() + 1};
        expected = first.toInt();
    } else if (range == "a code of the list above"_L1) {
        for (const QJsonValue each : get(u"Api/Settings/Languages"_s).json()["languages"_L1].toArray()) {
            good.append(each["code"_L1]);
            if (QLocale::system().name().section(u'_', 0, 0) == each["languageTag"_L1].toString())
                expected = each["code"_L1];
        }
    } else if (range.startsWith("one of "_L1)) {
        good = QJsonArray::fromStringList(range.section(u':', 0, 0).mid(7).split(u' '));
    } else if (range.startsWith("at most "_L1)) {
        const auto most = range.section(u' ', 2, 2).toInt();
        good = {QString(most, u'x'), QString()};
        bad = {QString(most + 1, u'x'), 1};
        expected = QString();
    } else if (range == "true or false"_L1) { // and off again
        good = {true, false};
        bad = {0, u"true"_s};
        expected = first == "true"_L1;
    }
    EXPECT_FALSE(good.isEmpty()) << "This test cannot read the range of " << name.toStdString();
    EXPECT_EQ(atFirst[name], expected) << name.toStdString();
    for (const QJsonValue value : good)
        EXPECT_EQ(put(settings, {{name, value}}).json()[name], value);
    for (const QJsonValue value : bad)
        EXPECT_EQ(put(settings, {{name, value}}).errorCode(), u"badSetting"_s) << name.toStdString();
}

TEST_F(TablesTest, TheServiceDoesWhatEveryRowTellsAndNothingElse) {
    const Tables tables = documentedTables();
    for (const QStringList &row : tables[u"GET Api/Settings, PUT Api/Settings"_s])
        checkSetting(nameIn(row[0]), row[2], row[3]);
    (void)put(settings, {{u"nativeLanguage"_s, u"fra"_s}});
    const QStringList told = toldRows(tables);
    const QStringList seen = seenRows();
    for (const QString &row : told)
        EXPECT_TRUE(seen.contains(row)) << "The service was not seen to do this: " << row.toStdString();
    for (const QString &row : seen)
        EXPECT_TRUE(told.contains(row)) << "The document has no row for this: " << row.toStdString();
}

} // namespace

} // namespace murvo::service::test
