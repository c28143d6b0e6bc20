// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Export/AnkiNote.h"
#include "Export/WordCards.h"
#include "NewestOnly.h"

#include <QTemporaryFile>

#include <memory>
#include <mutex>

namespace murvo::service {

class SettingsTable;
class WordTable;

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
/// Any thread; borrows everything. The finished package is a temporary file until it is dropped or the next
/// is begun. Clips are made as long as time and memory allow; words after that go without.
class PackageExport {
  public:
    /// path: of the temporary files, with "XXXXXX" for what tells them apart.
    PackageExport(WordTable &words, SettingsTable &settings, WordFacts facts, QString path);

    void begin(bool withClips);
    /// Ends what runs, drops what is finished, and returns when it has ended.
    void cancel();

    [[nodiscard]] PackageState state() const;
    /// Opened, and readable for as long as it is held; null when there is none.
    [[nodiscard]] std::shared_ptr<QFile> package() const;

  private:
    struct Job {
        bool withClips = false;
        PackageState state;
        std::unique_ptr<QTemporaryFile> package;
    };

    void run(Job &job, const std::atomic<bool> &isCancelled);
    [[nodiscard]] QList<AnkiNote> notesOf(Job &job, const QList<WordCard> &cards,
                                          const std::atomic<bool> &isCancelled);

    WordTable &_words;
    SettingsTable &_settings;
    WordFacts _facts;
    QString _path;
    mutable std::mutex _mutex; // guards _job and what is in it
    std::shared_ptr<Job> _job; // null when none was begun, or it was cancelled
    NewestOnly _worker;        // last: its thread uses all of these
};

} // namespace murvo::service
