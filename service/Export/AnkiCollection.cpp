// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/AnkiCollection.h"

#include "Export/AnkiNoteType.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace murvo::service {

namespace {

// Marks that the row was never sent to Anki's server.
constexpr int neverSynced = -1;
constexpr int formatVersion = 11;
constexpr QChar fieldSeparator(0x1F);

// Names and types of columns are Anki's.
constexpr auto schema = R"(
CREATE TABLE col (
    id INTEGER PRIMARY KEY, crt INTEGER NOT NULL, mod INTEGER NOT NULL, scm INTEGER NOT NULL,
    ver INTEGER NOT NULL, dty INTEGER NOT NULL, usn INTEGER NOT NULL, ls INTEGER NOT NULL,
    conf TEXT NOT NULL, models TEXT NOT NULL, decks TEXT NOT NULL, dconf TEXT NOT NULL, tags TEXT NOT NULL
);
CREATE TABLE notes (
    id INTEGER PRIMARY KEY, guid TEXT NOT NULL, mid INTEGER NOT NULL, mod INTEGER NOT NULL,
    usn INTEGER NOT NULL, tags TEXT NOT NULL, flds TEXT NOT NULL, sfld INTEGER NOT NULL,
    csum INTEGER NOT NULL, flags INTEGER NOT NULL, data TEXT NOT NULL
);
CREATE TABLE cards (
    id INTEGER PRIMARY KEY, nid INTEGER NOT NULL, did INTEGER NOT NULL, ord INTEGER NOT NULL,
    mod INTEGER NOT NULL, usn INTEGER NOT NULL, type INTEGER NOT NULL, queue INTEGER NOT NULL,
    due INTEGER NOT NULL, ivl INTEGER NOT NULL, factor INTEGER NOT NULL, reps INTEGER NOT NULL,
    lapses INTEGER NOT NULL, left INTEGER NOT NULL, odue INTEGER NOT NULL, odid INTEGER NOT NULL,
    flags INTEGER NOT NULL, data TEXT NOT NULL
);
CREATE TABLE revlog (
    id INTEGER PRIMARY KEY, cid INTEGER NOT NULL, usn INTEGER NOT NULL, ease INTEGER NOT NULL,
    ivl INTEGER NOT NULL, lastIvl INTEGER NOT NULL, factor INTEGER NOT NULL, time INTEGER NOT NULL,
    type INTEGER NOT NULL
);
CREATE TABLE graves (usn INTEGER NOT NULL, oid INTEGER NOT NULL, type INTEGER NOT NULL);
CREATE INDEX ix_notes_usn ON notes (usn);
CREATE INDEX ix_notes_csum ON notes (csum);
CREATE INDEX ix_cards_usn ON cards (usn);
CREATE INDEX ix_cards_nid ON cards (nid);
CREATE INDEX ix_cards_sched ON cards (did, queue, due);
CREATE INDEX ix_revlog_usn ON revlog (usn);
CREATE INDEX ix_revlog_cid ON revlog (cid);
)";

std::string toText(const QJsonObject &object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

QJsonObject fromText(const char *text) {
    return QJsonDocument::fromJson(text).object();
}

QJsonObject noteType(qint64 nowSeconds) {
    QJsonArray fields;
    for (const QLatin1String name : ankiFields) {
        QJsonObject field =
            fromText(R"({"sticky": false, "rtl": false, "font": "Arial", "size": 20, "media": []})");
        field.insert(QStringLiteral("name"), name);
        field.insert(QStringLiteral("ord"), fields.size());
        fields.append(field);
    }
    QJsonObject card = fromText(R"({"name": "Word", "ord": 0, "did": null, "bqfmt": "", "bafmt": ""})");
    card.insert(QStringLiteral("qfmt"), ankiFront());
    card.insert(QStringLiteral("afmt"), ankiBack());
    // Of the fields of the front the first is always there.
    QJsonObject type = fromText(R"({"type": 0, "usn": -1, "sortf": 0, "tags": [], "vers": [],
        "req": [[0, "any", [0]]], "latexsvg": false, "latexPost": "\\end{document}",
        "latexPre": "\\documentclass[12pt]{article}\n\\pagestyle{empty}\n\\begin{document}\n"})");
    type.insert(QStringLiteral("id"), ankiNoteTypeId);
    type.insert(QStringLiteral("did"), ankiDeckId);
    type.insert(QStringLiteral("name"), ankiNoteTypeName);
    type.insert(QStringLiteral("mod"), nowSeconds);
    type.insert(QStringLiteral("flds"), fields);
    type.insert(QStringLiteral("tmpls"), QJsonArray{card});
    type.insert(QStringLiteral("css"), ankiStyle());
    return {{QString::number(ankiNoteTypeId), type}};
}

QJsonObject deck(qint64 id, QLatin1String name, qint64 nowSeconds) {
    QJsonObject deck = fromText(R"({"usn": -1, "desc": "", "dyn": 0, "conf": 1, "collapsed": false,
        "browserCollapsed": false, "extendNew": 0, "extendRev": 0,
        "lrnToday": [0, 0], "revToday": [0, 0], "newToday": [0, 0], "timeToday": [0, 0]})");
    deck.insert(QStringLiteral("id"), id);
    deck.insert(QStringLiteral("name"), name);
    deck.insert(QStringLiteral("mod"), nowSeconds);
    return deck;
}

// Anki's own way to begin, which it asks every package for.
QJsonObject deckOptions() {
    return fromText(R"({"1": {"id": 1, "mod": 0, "usn": 0, "name": "Default", "maxTaken": 60,
        "autoplay": true, "timer": 0, "replayq": true, "dyn": false,
        "new": {"bury": true, "delays": [1, 10], "initialFactor": 2500, "ints": [1, 4, 7], "order": 1,
                "perDay": 20, "separate": true},
        "rev": {"bury": true, "ease4": 1.3, "fuzz": 0.05, "ivlFct": 1, "maxIvl": 36500, "minSpace": 1,
                "perDay": 200},
        "lapse": {"delays": [10], "leechAction": 0, "leechFails": 8, "minInt": 1, "mult": 0}}})");
}

QJsonObject configuration(qsizetype noteCount) {
    QJsonObject conf = fromText(R"({"activeDecks": [1], "addToCur": true, "collapseTime": 1200, "curDeck": 1,
        "dueCounts": true, "estTimes": true, "newBury": true, "newSpread": 0, "sortBackwards": false,
        "sortType": "noteFld", "timeLim": 0})");
    conf.insert(QStringLiteral("curModel"), QString::number(ankiNoteTypeId));
    conf.insert(QStringLiteral("nextPos"), noteCount + 1);
    return conf;
}

void addCollection(SQLite::Database &database, qsizetype noteCount, qint64 nowMs) {
    const qint64 nowSeconds = nowMs / 1000;
    QJsonObject decks{{QStringLiteral("1"), deck(1, QLatin1String("Default"), 0)}};
    decks.insert(QString::number(ankiDeckId), deck(ankiDeckId, ankiDeckName, nowSeconds));
    SQLite::Statement add(database, "INSERT INTO col VALUES (1, ?, ?, ?, ?, 0, 0, 0, ?, ?, ?, ?, '{}')");
    add.bind(1, static_cast<int64_t>(nowSeconds));
    add.bind(2, static_cast<int64_t>(nowMs));
    add.bind(3, static_cast<int64_t>(nowMs));
    add.bind(4, formatVersion);
    add.bind(5, toText(configuration(noteCount)));
    add.bind(6, toText(noteType(nowSeconds)));
    add.bind(7, toText(decks));
    add.bind(8, toText(deckOptions()));
    add.exec();
}

int64_t checksum(const QString &text) {
    constexpr qsizetype digits = 8;
    const QByteArray digest = QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha1).toHex();
    return digest.left(digits).toLongLong(nullptr, 16);
}

void addNotes(SQLite::Database &database, const QList<AnkiNote> &notes, qint64 nowMs) {
    SQLite::Statement addNote(database,
                              "INSERT INTO notes VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, 0, '')");
    SQLite::Statement addCard(
        database, "INSERT INTO cards VALUES (?1, ?1, ?2, 0, ?3, ?4, 0, 0, ?5, 0, 0, 0, 0, 0, 0, 0, 0, '')");
    const std::string tags = ' ' + std::string(ankiTag.data()) + ' ';
    const auto nowSeconds = static_cast<int64_t>(nowMs / 1000);
    int64_t lastId = 0;
    int position = 0;
    for (const AnkiNote &note : notes) {
        // Numbers are times in Anki: when the word was saved, each a little later than the one before.
        lastId = std::max<int64_t>(lastId + 1, note.savedAtMs);
        const QStringList fields(note.fields.begin(), note.fields.end());
        addNote.bind(1, lastId);
        addNote.bind(2, note.guid.toStdString());
        addNote.bind(3, static_cast<int64_t>(ankiNoteTypeId));
        addNote.bind(4, nowSeconds);
        addNote.bind(5, neverSynced);
        addNote.bind(6, tags);
        addNote.bind(7, fields.join(fieldSeparator).toStdString());
        addNote.bind(8, note.word.toStdString());
        addNote.bind(9, checksum(note.word));
        addNote.exec();
        addNote.reset();
        addCard.bind(1, lastId);
        addCard.bind(2, static_cast<int64_t>(ankiDeckId));
        addCard.bind(3, nowSeconds);
        addCard.bind(4, neverSynced);
        addCard.bind(5, ++position);
        addCard.exec();
        addCard.reset();
    }
}

struct SqliteFree {
    void operator()(unsigned char *memory) const { sqlite3_free(memory); }
};

} // namespace

QByteArray ankiCollection(const QList<AnkiNote> &notes, qint64 nowMs) {
    SQLite::Database database(":memory:", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    database.exec("PRAGMA page_size = 4096");
    database.exec(schema);
    SQLite::Transaction transaction(database);
    addCollection(database, notes.size(), nowMs);
    addNotes(database, notes, nowMs);
    transaction.commit();
    sqlite3_int64 size = 0;
    const std::unique_ptr<unsigned char, SqliteFree> bytes(
        sqlite3_serialize(database.getHandle(), "main", &size, 0));
    if (!bytes)
        throw std::runtime_error("no memory for the collection");
    return {reinterpret_cast<const char *>(bytes.get()), static_cast<qsizetype>(size)};
}

} // namespace murvo::service
