// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/SavedWords.h"
#include "service/ServiceFixture.h"

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QSet>

#include <SQLiteCpp/SQLiteCpp.h>

#include <thread>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

namespace {

/// Runs a program to its end; what it wrote.
QString run(const QString &program, const QStringList &arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(30'000) || process.exitCode() != 0)
        throw std::runtime_error(
            (program + u": "_s + QString::fromUtf8(process.readAllStandardError())).toStdString());
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

/// A package as other programs unpack it.
class UnpackedPackage {
  public:
    explicit UnpackedPackage(const QByteArray &package) {
        QFile file(path(u"words.apkg"_s));
        if (!file.open(QIODevice::WriteOnly) || file.write(package) != package.size())
            throw std::runtime_error("no place for the package");
        file.close();
        run(u"unzip"_s, {u"-q"_s, file.fileName(), u"-d"_s, _folder.path()});
        collection = std::make_unique<SQLite::Database>(path(u"collection.anki2"_s).toStdString());
    }

    [[nodiscard]] QString path(const QString &name) const { return _folder.filePath(name); }
    [[nodiscard]] QString text(const QString &query) const {
        return QString::fromStdString(collection->execAndGet(query.toStdString()).getString());
    }
    [[nodiscard]] QJsonObject object(const QString &query) const {
        return QJsonDocument::fromJson(text(query).toUtf8()).object();
    }
    [[nodiscard]] QStringList fields(const QString &word) const {
        return text(u"SELECT flds FROM notes WHERE sfld = '%1'"_s.arg(word)).split(QChar(0x1F));
    }
    /// The names of the files, by their real ones.
    [[nodiscard]] QMap<QString, QString> media() const {
        QFile file(path(u"media"_s));
        if (!file.open(QIODevice::ReadOnly))
            throw std::runtime_error("no media");
        QMap<QString, QString> names;
        const QJsonObject told = QJsonDocument::fromJson(file.readAll()).object();
        for (const QString &number : told.keys())
            names.insert(told[number].toString(), path(number));
        return names;
    }

    std::unique_ptr<SQLite::Database> collection;

  private:
    QTemporaryDir _folder;
};

class ExportTest : public ServiceFixture {
  protected:
    [[nodiscard]] QJsonObject waitForPackage(const QString &query = {}) {
        QJsonObject state = post(route + query, {}, "text/plain").json();
        QElapsedTimer clock;
        clock.start();
        while (state["stage"_L1].toString() == "running"_L1 && !clock.hasExpired(60'000))
            state = get(route).json();
        return state;
    }
    [[nodiscard]] UnpackedPackage package(const QString &query = {}) {
        EXPECT_EQ(waitForPackage(query)["stage"_L1].toString(), u"done"_s);
        return UnpackedPackage(get(route + u"/File"_s).body);
    }
    /// The film of two seconds in the store, as the player has it known.
    [[nodiscard]] int filmId(const QString &path, quint64 hash = 0xabc) {
        return lookUp(path, hash).json()["videoId"_L1].toInt();
    }

    const QString route = u"Api/Words/Anki"_s;
    SavedWordsStore store{dataFolder.filePath(u"murvo.sqlite"_s)};
};

TEST_F(ExportTest, APackageHasEveryFieldOfEveryWordThatIsBeingLearned) {
    store.add({.lemma = u"give up"_s,
               .form = u"gave  up"_s,
               .gloss = u"abandonner <laisser>"_s,
               .line = u"You give me hope. [SOUND:a.mp3] [sobs]\n- \"Tom & I\" gave up."_s});
    store.add({.lemma = u"up"_s, .form = u"up"_s, .line = u"Cups up!"_s, .translation = u"Debout !"_s});
    store.add({.lemma = u"known"_s, .status = u"known"_s});
    store.add({.lemma = u"tom"_s, .status = u"ignored"_s});
    const UnpackedPackage made = package();
    EXPECT_EQ(made.text(u"PRAGMA integrity_check"_s), u"ok"_s);
    EXPECT_EQ(made.text(u"SELECT group_concat(sfld, ';') FROM notes ORDER BY id"_s), u"give up;up"_s);
    const QStringList first = made.fields(u"give up"_s);
    EXPECT_EQ(
        first,
        (QStringList{u"give up"_s,
                     u"ˈɡɪv ˈʌp"_s,
                     u"abandonner &lt;laisser&gt;"_s,
                     u"You give me hope. &#91;SOUND:a.mp3] [sobs]<br>- &quot;Tom &amp; I&quot; gave up."_s,
                     {},
                     {},
                     {},
                     {}}));
    const QStringList second = made.fields(u"up"_s);
    EXPECT_EQ(second[3], u"Cups <b>up</b>!"_s) << "the word, not a part of another";
    EXPECT_EQ(second[4], u"Debout !"_s);
    EXPECT_FALSE(second[2].isEmpty()) << "what the dictionary says";
    const QJsonObject type = made.object(u"SELECT models FROM col"_s).begin().value().toObject();
    EXPECT_EQ(type["flds"_L1].toArray().size(), first.size());
    EXPECT_EQ(made.text(u"SELECT count(*) FROM cards JOIN notes ON notes.id = cards.nid WHERE did = "
                        "(SELECT json_extract(value, '$.id') FROM col, json_each(decks) "
                        "WHERE json_extract(value, '$.name') = 'Murvo') AND mid = (SELECT key FROM col, "
                        "json_each(models))"_s),
              u"2"_s);
    const QByteArray digest = QCryptographicHash::hash("give up", QCryptographicHash::Sha1).toHex().left(8);
    EXPECT_EQ(made.text(u"SELECT csum FROM notes WHERE sfld = 'give up'"_s).toLongLong(),
              digest.toLongLong(nullptr, 16));
    EXPECT_TRUE(made.media().isEmpty());
    for (const QLatin1String face : {"qfmt"_L1, "afmt"_L1}) { // they name only fields that there are
        QString text = type["tmpls"_L1][0][face].toString().remove(u"{{FrontSide}}"_s);
        for (const QJsonValue field : type["flds"_L1].toArray()) {
            const QString name = field["name"_L1].toString();
            for (const char *kind : {"{{%1}}", "{{#%1}}", "{{/%1}}"})
                text.remove(QString::fromLatin1(kind).arg(name));
        }
        EXPECT_FALSE(text.contains(u"{{"_s)) << text.toStdString();
    }
}

TEST_F(ExportTest, PicturesAndSoundsOfTheLinesAreInThePackage) {
    // Red and 500 Hz for the first second, blue and 2 kHz from then on; twice as wide as its picture's dots
    // tell.
    const QString path =
        makeFilm(u"Tones.mkv"_s,
                 u"-f lavfi -i "
                 u"\"color=red:s=640x480:d=1,setsar=2[a];color=blue:s=640x480:d=5,setsar=2[b];[a][b]concat\" "
                 "-f lavfi -i \"aevalsrc='0.4*sin(2*PI*t*if(lt(t,1),500,2000))':d=6:s=48000\" "_s,
                 u"-map -0 -map 1 -map 2 -g 250 -c:a aac -metadata:s:a:0 language=eng"_s);
    const int film = filmId(path);
    store.add({.lemma = u"red"_s, .line = u"Red"_s, .filmId = film, .startMs = 200, .endMs = 800});
    store.add({.lemma = u"blue"_s, .line = u"Blue"_s, .filmId = film, .startMs = 4000, .endMs = 5000});
    store.add({.lemma = u"again"_s, .line = u"Blue"_s, .filmId = film, .startMs = 4000, .endMs = 5000});
    store.add({.lemma = u"late"_s, .line = u"Late"_s, .filmId = film, .startMs = 90'000, .endMs = 91'000});
    store.add({.lemma = u"lost"_s, .line = u"Lost"_s, .startMs = 200, .endMs = 800});
    const UnpackedPackage made = package();
    EXPECT_EQ(get(route).json()["clipCount"_L1].toInt(), 3);
    const auto media = made.media();
    EXPECT_EQ(media.size(), 4) << "two words of one line share its files";
    const auto fileOf = [&](const QString &word, qsizetype field) {
        const QString text = made.fields(word)[field];
        EXPECT_TRUE(text.startsWith(field == 6 ? u"<img src=\"murvo-"_s : u"[sound:murvo-"_s))
            << text.toStdString();
        return media.value(text.section(field == 6 ? u'"' : u':', 1, 1).remove(u']'));
    };
    const auto colourOf = [&](const QString &word) {
        const QString size =
            run(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-show_entries"_s, u"stream=codec_name,width,height"_s,
                               u"-of"_s, u"csv=p=0"_s, fileOf(word, 6)});
        EXPECT_EQ(size, u"mjpeg,480,180"_s);
        QProcess ffmpeg;
        ffmpeg.start(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, fileOf(word, 6), u"-vf"_s, u"scale=1:1"_s,
                                   u"-f"_s, u"rawvideo"_s, u"-pix_fmt"_s, u"rgb24"_s, u"-"_s});
        ffmpeg.waitForFinished();
        const QByteArray dot = ffmpeg.readAllStandardOutput();
        return dot.size() != 3        ? u"none"_s
               : quint8(dot[0]) > 200 ? u"red"_s
               : quint8(dot[2]) > 200 ? u"blue"_s
                                      : u"other"_s;
    };
    EXPECT_EQ(colourOf(u"red"_s), u"red"_s);
    EXPECT_EQ(colourOf(u"blue"_s), u"blue"_s);
    EXPECT_EQ(made.fields(u"again"_s)[6], made.fields(u"blue"_s)[6]);
    for (const auto &[word, seconds, pitch] :
         {std::tuple(u"red"_s, 0.2 + 0.6 + 0.35, 500.0), std::tuple(u"blue"_s, 0.25 + 1.0 + 0.35, 2000.0)}) {
        const Tone heard = toneOf(fileOf(word, 7));
        EXPECT_NEAR(heard.seconds, seconds, 0.1) << word.toStdString();
        EXPECT_NEAR(heard.hertz, pitch, 0.1 * pitch) << word.toStdString();
    }
    for (const QString &without : {u"late"_s, u"lost"_s})
        EXPECT_EQ(made.fields(without).sliced(6), (QStringList{{}, {}})) << without.toStdString();
    EXPECT_TRUE(package(u"?clips=false"_s).media().isEmpty());
}

TEST_F(ExportTest, AWordWithoutAGlossHasWhatTheDictionarySaysInTheLearnersLanguage) {
    store.add({.lemma = u"child"_s});
    store.add({.lemma = u"xyzzyx"_s});
    EXPECT_TRUE(package().fields(u"child"_s)[2].startsWith(u"enfant"_s));
    (void)put(u"Api/Settings"_s, {{u"nativeLanguage"_s, u"vie"_s}}); // without a dictionary: in English
    EXPECT_TRUE(package().fields(u"child"_s)[2].contains(u"young person"_s))
        << package().fields(u"child"_s)[2].toStdString();
    EXPECT_EQ(package().fields(u"xyzzyx"_s)[2], QString());
}

TEST_F(ExportTest, ASecondPackageBringsTheFirstUpToDate) {
    store.add({.lemma = u"house"_s, .gloss = u"maisn"_s, .line = u"A house."_s});
    const UnpackedPackage before = package();
    restart();
    store.setGloss(u"house"_s, u"maison"_s);
    const UnpackedPackage after = package();
    for (const QString &same : {u"SELECT guid FROM notes"_s, u"SELECT mid FROM notes"_s,
                                u"SELECT did FROM cards"_s, u"SELECT csum FROM notes"_s})
        EXPECT_EQ(before.text(same), after.text(same)) << same.toStdString();
    EXPECT_GE(after.text(u"SELECT mod FROM notes"_s).toLongLong(),
              before.text(u"SELECT mod FROM notes"_s).toLongLong());
    EXPECT_EQ(after.fields(u"house"_s)[2], u"maison"_s);
}

TEST_F(ExportTest, DamagedFilmsCostAPackageItsClipsOnly) {
    const QString whole = makeFilm(u"Whole.mkv"_s);
    QFile file(whole);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray bytes = file.readAll();
    for (qsizetype at = bytes.size() / 3; at < bytes.size(); at += 7)
        bytes[at] = static_cast<char>(bytes[at] ^ 0x5A);
    const QString folder = films.filePath(u"Folder.mkv"_s);
    QDir().mkdir(folder);
    quint64 hash = 1;
    for (const QString &path :
         {writeFile(u"Noise.mkv"_s, bytes), writeFile(u"Cut.mkv"_s, bytes.first(900)),
          writeFile(u"Empty.mp4"_s, {}), writeFile(u"Text.avi"_s, "#EXTM3U\nhttp://127.0.0.1/x.ts\n"), folder,
          films.filePath(u"Gone.mkv"_s)}) {
        const int film = filmId(path, hash++);
        store.add({.lemma = path.section(u'/', -1),
                   .line = u"Line"_s,
                   .filmId = film,
                   .startMs = 500,
                   .endMs = 900});
    }
    EXPECT_EQ(package().text(u"SELECT count(*) FROM notes"_s), u"6"_s);
}

TEST_F(ExportTest, AnExportCanBeEndedAndHasNoFileBeforeItIsDone) {
    EXPECT_EQ(get(route + u"/File"_s).errorCode(), u"notFinished"_s);
    const int film = filmId(makeFilm(u"Film.mkv"_s));
    for (int i = 0; i < 300; ++i)
        store.add({.lemma = u"word%1"_s.arg(i), .filmId = film, .startMs = 2 * i, .endMs = 2 * i + 900});
    EXPECT_EQ(post(route, {}, "text/plain").json()["stage"_L1].toString(), u"running"_s);
    EXPECT_EQ(get(route + u"/File"_s).errorCode(), u"notFinished"_s);
    EXPECT_EQ(ask("DELETE", route).json()["stage"_L1].toString(), u"none"_s);
    EXPECT_EQ(waitForPackage(u"?clips=false"_s)["wordCount"_L1].toInt(), 300);
    const Reply file = get(route + u"/File"_s);
    EXPECT_EQ(file.header("Content-Disposition"), "attachment; filename=\"murvo.apkg\"");
    EXPECT_EQ(file.body.size(), get(route).json()["bytes"_L1].toInt());
    (void)post(route, {}, "text/plain"); // and a service that stops does not wait for it
    QElapsedTimer clock;
    clock.start();
    service.reset();
    EXPECT_LT(clock.elapsed(), 10'000);
}

TEST_F(ExportTest, ExportsThatAreBegunAndEndedAtOnceLeaveOneThatIsTrue) {
    store.add({.lemma = u"word"_s});
    std::vector<std::thread> pages;
    for (int page = 0; page < 4; ++page)
        pages.emplace_back([&, page] {
            for (int i = 0; i < 40; ++i) {
                (void)(page == 3 ? ask("DELETE", route) : post(route + u"?clips=false"_s, {}, "text/plain"));
                const int status = get(route + u"/File"_s).status;
                EXPECT_TRUE(status == 200 || status == 409) << status;
            }
        });
    for (std::thread &page : pages)
        page.join();
    EXPECT_EQ(waitForPackage(u"?clips=false"_s)["stage"_L1], u"done"_s);
}

/// What a spreadsheet makes of a file: rows of fields.
QList<QStringList> readCsv(const QString &text) {
    QList<QStringList> rows{{}};
    QString field;
    bool isQuoted = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isQuote = text[i] == u'"';
        if (isQuote && isQuoted && i + 1 < text.size() && text[i + 1] == u'"')
            field += text[++i];
        else if (isQuote)
            isQuoted = !isQuoted;
        else if (!isQuoted && (text[i] == u',' || text[i] == u'\r')) {
            rows.last().append(field);
            field.clear();
        } else if (!isQuoted && text[i] == u'\n')
            rows.append(QStringList());
        else
            field += text[i];
    }
    rows.removeLast();
    return rows;
}

TEST_F(ExportTest, ListsHaveAllWordsAndNoFormula) {
    const int film = filmId(writeFile(u"=cmd|' \"x\", y.mkv"_s, "no film"));
    const QStringList evil{u"=1+1"_s, u"+1"_s, u"-1"_s, u"@SUM(A1)"_s, u" \t=1"_s, u"＝1"_s, u"\n=1"_s};
    for (const QString &gloss : evil)
        store.add({.lemma = u"w"_s + gloss, .gloss = gloss});
    store.add({.lemma = u"tom"_s, .status = u"ignored"_s});
    store.add({.lemma = u"café"_s,
               .status = u"learning4"_s,
               .gloss = u"a \"b\", c"_s,
               .line = u"one\ntwo\tthree"_s,
               .filmId = film,
               .startMs = 3'723'000,
               .endMs = 3'724'000});
    const Reply csv = get(u"Api/Words/List?format=csv"_s);
    ASSERT_TRUE(csv.body.startsWith("\xEF\xBB\xBF\"Word\""));
    const QList<QStringList> rows = readCsv(QString::fromUtf8(csv.body.sliced(3)));
    ASSERT_EQ(rows.size(), evil.size() + 3);
    for (qsizetype i = 1; i <= evil.size(); ++i)
        EXPECT_EQ(rows[i][2], u'\'' + evil[i - 1].trimmed());
    EXPECT_EQ(rows.last(), (QStringList{u"café"_s,
                                        u"kæˈfeɪ"_s,
                                        u"a \"b\", c"_s,
                                        u"one\ntwo\tthree"_s,
                                        {},
                                        u"'=cmd|' \"x\", y.mkv"_s,
                                        u"1:02:03"_s,
                                        u"learning4"_s}));
    const QByteArray tsv = get(u"Api/Words/List?format=tsv"_s).body;
    const QStringList lines = QString::fromUtf8(tsv).split(u'\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines.size(), evil.size() + 3);
    EXPECT_EQ(lines.last().split(u'\t').value(3), u"one two three"_s);
    EXPECT_EQ(get(u"Api/Words/List?format=xls"_s).errorCode(), u"badParameter"_s);
    EXPECT_EQ(post(route + u"?clips=1"_s, {}, "text/plain").errorCode(), u"badParameter"_s);
}

} // namespace

} // namespace murvo::service::test
