// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/SavedWords.h"

#include <QProcess>
#include <QStringList>
#include <QtEndian>

#include <SQLiteCpp/VariadicBind.h>

namespace murvo::service::test {

SavedWordsStore::SavedWordsStore(const QString &path)
    : _connection(path.toStdString(), SQLite::OPEN_READWRITE, 5000) {
    _connection.exec("INSERT INTO settings VALUES ('nativeLanguage', 'fra') ON CONFLICT DO NOTHING");
}

void SavedWordsStore::add(const WordRow &word) {
    const auto run = [this](const char *statement, const auto &...values) {
        SQLite::Statement insert(_connection, statement);
        SQLite::bind(insert, values...);
        insert.exec();
    };
    const int64_t nowMs = 1'700'000'000'000 + ++_count;
    const std::string lemma = word.lemma.toStdString();
    run("INSERT INTO words (lemma, guid, status, added_ms, changed_ms) VALUES (?, ?, ?, ?, ?)", lemma,
        "guid-" + lemma, word.status.toStdString(), nowMs, nowMs);
    if (!word.gloss.isEmpty())
        setGloss(word.lemma, word.gloss);
    if (word.line.isEmpty() && word.endMs == 0)
        return;
    run("INSERT INTO sightings (lemma, form, line, translation, film_id, start_ms, end_ms, saved_ms) "
        "VALUES (?, ?, ?, ?, NULLIF(?, 0), ?, ?, ?)",
        lemma, word.form.toStdString(), word.line.toStdString(), word.translation.toStdString(), word.filmId,
        static_cast<int64_t>(word.startMs), static_cast<int64_t>(word.endMs), nowMs);
}

void SavedWordsStore::setGloss(const QString &lemma, const QString &gloss) {
    SQLite::Statement insert(_connection, "INSERT OR REPLACE INTO glosses VALUES (?, 'fra', ?, 1)");
    SQLite::bind(insert, lemma.toStdString(), gloss.toStdString());
    insert.exec();
}

Tone toneOf(const QString &path) {
    constexpr int rate = 44'100;
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"),
                 {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"), path,
                  QStringLiteral("-f"), QStringLiteral("s16le"), QStringLiteral("-ac"), QStringLiteral("1"),
                  QStringLiteral("-ar"), QString::number(rate), QStringLiteral("-")});
    ffmpeg.waitForFinished();
    const QByteArray samples = ffmpeg.readAllStandardOutput();
    const qsizetype count = samples.size() / 2;
    const auto sample = [&samples](qsizetype at) {
        return qFromLittleEndian<qint16>(samples.constData() + 2 * at);
    };
    // The middle of the sound, where there is no other tone.
    qsizetype risings = 0;
    const qsizetype from = count * 4 / 10;
    const qsizetype to = count * 6 / 10;
    for (qsizetype at = from; at + 1 < to; ++at)
        risings += sample(at) < 0 && sample(at + 1) >= 0 ? 1 : 0;
    if (to <= from)
        return {};
    return {static_cast<double>(count) / rate,
            static_cast<double>(risings) * rate / static_cast<double>(to - from)};
}

} // namespace murvo::service::test
