// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Export/AnkiConnect.h"
#include "Export/WordCards.h"
#include "Vocabulary/SavedWord.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace murvo::service {

class AnkiTable;
class Database;
class SettingsTable;

/// How the sending of words stands.
struct AnkiSenderState {
    bool isOn = false;
    int waitingCount = 0;
    int sentCount = 0;
    int refusedCount = 0;
    std::chrono::milliseconds nextTry{0}; ///< until then; 0 when none is planned, or it runs
    AnkiProblem problem;                  ///< the last one, none once everything was sent
};

/// Sends the words that are being learned to the Anki that runs on this computer, and their changes.
///
/// Off until the learner switches it on: until then not one byte is sent. The queue is the difference between
/// the words and what the store says was sent, so that nothing is lost and nothing sent twice, whenever this
/// ends. While Anki is not there it tries ever more rarely. One thread of its own; the calls belong to any.
class AnkiSender {
  public:
    AnkiSender(Database &database, AnkiTable &table, SettingsTable &settings, WordFacts facts);
    ~AnkiSender();
    AnkiSender(const AnkiSender &) = delete;
    AnkiSender &operator=(const AnkiSender &) = delete;

    /// To be called when the settings have changed, and when the learner wants it now. Returns at once.
    void tryNow();

    [[nodiscard]] AnkiSenderState state();

  private:
    struct Waiting {
        SavedWord word;
        QByteArray sha256;
        qint64 noteId; ///< 0 when Anki has none
    };

    void run() noexcept;
    /// Sends what waits; the problem when something is left.
    [[nodiscard]] AnkiProblem send();
    void sendAll(AnkiConnect &anki, const QList<Waiting> &waiting);
    [[nodiscard]] QList<Waiting> waiting();
    [[nodiscard]] std::chrono::milliseconds pauseAfter(const AnkiProblem &problem);

    Database &_database;
    AnkiTable &_table;
    SettingsTable &_settings;
    WordFacts _facts;
    std::atomic<bool> _isEnding{false};
    int _seenChanges = -1; // of the store, when nothing waited last; the thread's own
    int _failures = 0;     // in a row; the thread's own

    std::mutex _mutex; // guards the rest
    std::condition_variable _changed;
    bool _isAsked = true;
    AnkiProblem _problem;
    std::chrono::steady_clock::time_point _nextTry;
    bool _isTryPlanned = false;
    AnkiConnect *_talking = nullptr; // on the thread's stack while it talks
    std::thread _thread;             // last: it uses all of these
};

} // namespace murvo::service
