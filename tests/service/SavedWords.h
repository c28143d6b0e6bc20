// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <SQLiteCpp/SQLiteCpp.h>

namespace murvo::service::test {

/// A word as the learner saves it; without a line when that is empty.
struct WordRow {
    QString lemma{};
    QString form{};
    QString status = QStringLiteral("learning1");
    QString gloss{};
    QString line{};
    QString translation{};
    int filmId = 0;
    qint64 startMs = 0;
    qint64 endMs = 0;
};

/// Puts words into a service's store from outside, so that what reads them is tested alone.
class SavedWordsStore {
  public:
    explicit SavedWordsStore(const QString &path);
    void add(const WordRow &word);
    /// In French, the language of the tests' learner.
    void setGloss(const QString &lemma, const QString &gloss);

  private:
    SQLite::Database _connection;
    int _count = 0;
};

struct Tone {
    double seconds = 0;
    double hertz = 0;
};

/// The length of a sound file and the pitch of the tone in it, as ffmpeg hears them.
[[nodiscard]] Tone toneOf(const QString &path);

} // namespace murvo::service::test
