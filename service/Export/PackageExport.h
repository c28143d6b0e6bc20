// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Export/AnkiNote.h"
#include "Export/WordCards.h"
#include "NewestOnly.h"

#include <memory>
#include <mutex>

namespace murvo::service {

class Database;
class SettingsTable;

/// How the making of a package stands.
struct PackageState {
    enum class Stage { None, Running, Done, Failed };

    Stage stage = Stage::None;
    int percent = 0;
    int wordCount = 0;
    int clipCount = 0;   ///< words that have a picture or a sound
    qsizetype bytes = 0; ///< of the finished package
};

/// Makes the Anki package of the words that are being learned, on a thread of its own; the newest wins.
///
/// Any thread; borrows everything. The finished package is kept in memory until it is dropped or the next is
/// begun. Clips are made as long as time and memory allow; words after that go without.
class PackageExport {
  public:
    PackageExport(Database &database, SettingsTable &settings, WordFacts facts);

    void begin(bool withClips);
    /// Ends what runs, and drops what is finished.
    void cancel();

    [[nodiscard]] PackageState state() const;
    /// Empty when there is none.
    [[nodiscard]] QByteArray package() const;

  private:
    struct Job {
        bool withClips = false;
        PackageState state;
        QByteArray package;
    };

    void run(Job &job, const std::atomic<bool> &isCancelled);
    [[nodiscard]] QList<AnkiNote> notesOf(Job &job, const QList<WordCard> &cards,
                                          const std::atomic<bool> &isCancelled);

    Database &_database;
    SettingsTable &_settings;
    WordFacts _facts;
    mutable std::mutex _mutex; // guards _job and what is in it
    std::shared_ptr<Job> _job; // null when none was begun, or it was cancelled
    NewestOnly _worker;        // last: its thread uses all of these
};

} // namespace murvo::service
