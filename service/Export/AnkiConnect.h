// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Export/AnkiNote.h"

#include <QJsonObject>
#include <QJsonValue>

#include <exception>
#include <memory>
#include <utility>

namespace murvo::service {

/// What went wrong at Anki: a code for programs, empty when nothing did, and a sentence for people.
struct AnkiProblem {
    QString code;
    QString message;
};

/// Anki could not be asked, or is not what it should be: nothing more can be sent now.
class AnkiFailure : public std::exception {
  public:
    explicit AnkiFailure(AnkiProblem problem)
        : _problem(std::move(problem)) {}
    [[nodiscard]] const char *what() const noexcept override { return "Anki cannot be reached"; }
    [[nodiscard]] const AnkiProblem &problem() const { return _problem; }

  private:
    AnkiProblem _problem;
};

/// Speaks with the add-on of Anki that takes notes from other programs over HTTP, version 6 of its interface.
///
/// Only ever with 127.0.0.1. Calls block, some seconds at most, and belong to one thread; stop() may be
/// called from any other and ends them. Every call throws AnkiFailure.
class AnkiConnect {
  public:
    explicit AnkiConnect(int port);
    ~AnkiConnect();
    AnkiConnect(const AnkiConnect &) = delete;
    AnkiConnect &operator=(const AnkiConnect &) = delete;

    void stop();

    /// Makes sure that it is there and has our deck and note type.
    void prepare();
    void storeMedia(const AnkiMedia &file);

    /// What came of a note: its number, or 0 and why it was refused.
    struct Outcome {
        qint64 noteId = 0;
        QString refusal;
    };

    /// A note of the same word that Anki has already is brought up to date instead.
    [[nodiscard]] Outcome add(const AnkiNote &note);
    /// Number 0 without refusal: the learner has deleted it in Anki.
    [[nodiscard]] Outcome update(qint64 noteId, const AnkiNote &note);

  private:
    struct Answer {
        QJsonValue result;
        QString error;
    };

    [[nodiscard]] Answer ask(const char *action, const QJsonObject &parameters = {});
    /// For what can only go wrong as a whole.
    QJsonValue demand(const char *action, const QJsonObject &parameters = {});
    [[nodiscard]] qint64 find(const QString &query);
    [[nodiscard]] Answer sendFields(qint64 noteId, const AnkiNote &note);

    struct Connection;
    std::unique_ptr<Connection> _connection;
};

} // namespace murvo::service
