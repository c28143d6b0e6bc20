// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/SavedWords.h"
#include "service/ServiceFixture.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMap>

#include <condition_variable>
#include <mutex>
#include <thread>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

namespace {

/// A flashcard program as its add-on answers: decks, note types and notes that must fit together, over HTTP.
class Flashcards {
  public:
    Flashcards() {
        _server.Post("/", [this](const httplib::Request &from, httplib::Response &to) {
            const std::lock_guard lock(_mutex);
            ++_requests;
            const QJsonObject asked = QJsonDocument::fromJson(QByteArray::fromStdString(from.body)).object();
            QString error;
            const QJsonValue result =
                asked["version"_L1].toInt() != 6
                    ? QJsonValue()
                    : answer(asked["action"_L1].toString(), asked["params"_L1].toObject(), error);
            const QJsonObject reply{{u"result"_s, error.isEmpty() ? result : QJsonValue::Null},
                                    {u"error"_s, error.isEmpty() ? QJsonValue(QJsonValue::Null) : error}};
            to.set_content(QJsonDocument(reply).toJson().toStdString(), "application/json");
        });
        _server.set_keep_alive_max_count(1);
        _port = freePort();
    }
    ~Flashcards() { stop(); }
    Flashcards(const Flashcards &) = delete;
    Flashcards &operator=(const Flashcards &) = delete;

    void start() {
        if (!_server.bind_to_port("127.0.0.1", _port))
            throw std::runtime_error("the port is taken");
        _thread = std::thread([this] { _server.listen_after_bind(); });
        while (!_server.is_running())
            std::this_thread::yield();
    }
    void stop() {
        _server.stop();
        if (_thread.joinable())
            _thread.join();
    }

    [[nodiscard]] int port() const { return _port; }
    [[nodiscard]] int requests() {
        const std::lock_guard lock(_mutex);
        return _requests;
    }
    /// The fields of the note of that word; empty when there is not exactly one.
    [[nodiscard]] QJsonObject note(const QString &word) {
        const std::lock_guard lock(_mutex);
        QJsonObject found;
        int count = 0;
        for (const QJsonObject &fields : _notes) {
            if (fields["Word"_L1].toString() == word) {
                found = fields;
                ++count;
            }
        }
        return count == 1 ? found : QJsonObject();
    }
    [[nodiscard]] QByteArray file(const QString &name) {
        const std::lock_guard lock(_mutex);
        return _files.value(name);
    }
    void forget(const QString &word) {
        const std::lock_guard lock(_mutex);
        for (const qint64 id : _notes.keys()) {
            if (_notes[id]["Word"_L1].toString() == word)
                _notes.remove(id);
        }
    }

  private:
    QJsonValue answer(const QString &action, const QJsonObject &parameters, QString &error) {
        if (action == "version"_L1)
            return 6;
        if (action == "modelNames"_L1)
            return QJsonArray::fromStringList(_types.keys());
        if (action == "createDeck"_L1) {
            _decks.insert(parameters["deck"_L1].toString(), 1);
            return 1;
        }
        if (action == "createModel"_L1) {
            QStringList &fields = _types[parameters["modelName"_L1].toString()];
            if (!fields.isEmpty())
                error = u"Model name already exists"_s;
            for (const QJsonValue field : parameters["inOrderFields"_L1].toArray())
                fields.append(field.toString());
            return parameters;
        }
        if (action == "storeMediaFile"_L1) {
            const QByteArray data = parameters["data"_L1].toString().toLatin1();
            _files.insert(parameters["filename"_L1].toString(), QByteArray::fromBase64(data));
            return parameters["filename"_L1];
        }
        if (action == "addNotes"_L1)
            return QJsonArray{add(parameters["notes"_L1][0].toObject())};
        if (action == "updateNoteFields"_L1)
            return update(parameters["note"_L1].toObject(), error);
        if (action == "findNotes"_L1)
            return find(parameters["query"_L1].toString());
        error = u"unsupported action"_s;
        return {};
    }

    QJsonValue add(const QJsonObject &note) {
        const QJsonObject fields = note["fields"_L1].toObject();
        const QString word = fields["Word"_L1].toString();
        const QStringList names = _types.value(note["modelName"_L1].toString());
        const bool fits = _decks.contains(note["deckName"_L1].toString()) && !names.isEmpty() &&
                          names == fieldNames(names, fields);
        const bool isThere = std::any_of(_notes.begin(), _notes.end(), [&word](const QJsonObject &other) {
            return other["Word"_L1].toString() == word;
        });
        if (!fits || isThere || word.contains("refuse"_L1))
            return QJsonValue::Null;
        _notes.insert(++_lastId, fields);
        return _lastId;
    }

    static QStringList fieldNames(const QStringList &order, const QJsonObject &fields) {
        QStringList names;
        for (const QString &name : order) {
            if (fields.contains(name))
                names.append(name);
        }
        return names;
    }

    QJsonValue update(const QJsonObject &note, QString &error) {
        const qint64 id = note["id"_L1].toInteger();
        if (!_notes.contains(id))
            error = u"Note was not found: %1"_s.arg(id);
        else
            _notes[id] = note["fields"_L1].toObject();
        return QJsonValue::Null;
    }

    QJsonArray find(const QString &query) {
        QJsonArray found;
        for (const qint64 id : _notes.keys()) {
            const QString word = _notes[id]["Word"_L1].toString();
            if (query == u"nid:%1"_s.arg(id) || query == u"\"note:Murvo word\" \"Word:%1\""_s.arg(word))
                found.append(id);
        }
        return found;
    }

    httplib::Server _server;
    std::thread _thread;
    int _port = 0;
    std::mutex _mutex; // guards the rest
    int _requests = 0;
    qint64 _lastId = 1'700'000'000'000;
    QMap<QString, int> _decks;
    QMap<QString, QStringList> _types;
    QMap<qint64, QJsonObject> _notes;
    QMap<QString, QByteArray> _files;
};

class AnkiConnectTest : public ServiceFixture {
  protected:
    void switchOn(bool isOn = true) {
        EXPECT_EQ(
            put(u"Api/Settings"_s, {{u"sendsToAnki"_s, isOn}, {u"ankiConnectPort"_s, anki.port()}}).status,
            200);
    }
    [[nodiscard]] QJsonObject state() { return get(u"Api/Words/AnkiConnect"_s).json(); }
    void tryNow() { EXPECT_EQ(post(u"Api/Words/AnkiConnect"_s, {}, "text/plain").status, 200); }
    /// Waits until the state has that value; what it was last.
    [[nodiscard]] QJsonObject waitFor(const QString &field, const QJsonValue &value) {
        QJsonObject last;
        QElapsedTimer clock;
        clock.start();
        do
            last = state();
        while (last[field] != value && !clock.hasExpired(20'000));
        EXPECT_EQ(last[field], value) << QJsonDocument(last).toJson().toStdString();
        return last;
    }
    [[nodiscard]] QJsonObject waitForProblem(const QString &code) {
        QJsonObject last;
        QElapsedTimer clock;
        clock.start();
        do
            last = state();
        while (last["problem"_L1]["code"_L1].toString() != code && !clock.hasExpired(20'000));
        return last;
    }

    Flashcards anki;
    SavedWordsStore store{dataFolder.filePath(u"murvo.sqlite"_s)};
};

TEST_F(AnkiConnectTest, NothingIsSentBeforeItIsSwitchedOnAndAllOfItThen) {
    anki.start();
    const QString film = makeFilm(u"Film.mkv"_s);
    const int id = lookUp(film).json()["videoId"_L1].toInt();
    store.add({.lemma = u"house"_s, .form = u"houses"_s, .gloss = u"maison"_s, .line = u"Two <houses>."_s});
    store.add({.lemma = u"film"_s, .line = u"A film."_s, .filmId = id, .startMs = 500, .endMs = 1000});
    store.add({.lemma = u"known"_s, .status = u"known"_s});
    EXPECT_EQ(state()["isOn"_L1], false);
    tryNow();
    EXPECT_EQ(state()["waitingCount"_L1], 2);
    EXPECT_EQ(anki.requests(), 0);
    switchOn();
    EXPECT_EQ(waitFor(u"sentCount"_s, 2)["waitingCount"_L1], 0);
    EXPECT_EQ(anki.note(u"house"_s)["Line"_L1].toString(), u"Two &lt;<b>houses</b>&gt;."_s);
    EXPECT_EQ(anki.note(u"house"_s)["Meaning"_L1].toString(), u"maison"_s);
    EXPECT_TRUE(anki.note(u"known"_s).isEmpty());
    const QString picture = anki.note(u"film"_s)["Picture"_L1].toString().section(u'"', 1, 1);
    EXPECT_TRUE(anki.file(picture).startsWith("\xFF\xD8")) << picture.toStdString();
    const QString sound = anki.note(u"film"_s)["Sound"_L1].toString().section(u':', 1, 1).remove(u']');
    EXPECT_GT(anki.file(sound).size(), 2000) << sound.toStdString();
}

TEST_F(AnkiConnectTest, WhatWaitsOutlivesTheServiceAndGoesOnceAnkiIsThere) {
    store.add({.lemma = u"early"_s});
    switchOn();
    const QJsonObject waiting = waitForProblem(u"ankiUnreachable"_s);
    EXPECT_EQ(waiting["waitingCount"_L1], 1);
    EXPECT_GT(waiting["nextTryMs"_L1].toInt(), 0);
    EXPECT_LE(waiting["nextTryMs"_L1].toInt(), 5000);
    service.reset();
    store.add({.lemma = u"late"_s});
    restart();
    EXPECT_EQ(waitForProblem(u"ankiUnreachable"_s)["waitingCount"_L1], 2);
    anki.start();
    tryNow();
    const QJsonObject sent = waitFor(u"sentCount"_s, 2);
    EXPECT_FALSE(anki.note(u"early"_s).isEmpty() || anki.note(u"late"_s).isEmpty());
    EXPECT_TRUE(waitFor(u"problem"_s, QJsonValue::Null)["waitingCount"_L1] == 0 && sent["isOn"_L1] == true);
}

TEST_F(AnkiConnectTest, ChangesAreSentAndWhatTheLearnerDeletedIsNotSentAgain) {
    anki.start();
    store.add({.lemma = u"kept"_s});
    store.add({.lemma = u"deleted"_s});
    switchOn();
    (void)waitFor(u"sentCount"_s, 2);
    anki.forget(u"deleted"_s);
    store.setGloss(u"kept"_s, u"gardé"_s);
    store.setGloss(u"deleted"_s, u"effacé"_s);
    tryNow();
    (void)waitFor(u"waitingCount"_s, 0);
    EXPECT_EQ(anki.note(u"kept"_s)["Meaning"_L1].toString(), u"gardé"_s);
    EXPECT_TRUE(anki.note(u"deleted"_s).isEmpty());
    const int before = anki.requests();
    restart();
    store.add({.lemma = u"new"_s});
    tryNow();
    (void)waitFor(u"waitingCount"_s, 0);
    EXPECT_LE(anki.requests() - before, 5) << "the new one only";
    EXPECT_FALSE(anki.note(u"new"_s).isEmpty());
}

TEST_F(AnkiConnectTest, ANoteThatAnkiHasAlreadyIsTakenUpAndOneThatItRefusesHoldsUpNoOther) {
    anki.start();
    store.add({.lemma = u"it's \"so\""_s});
    switchOn();
    (void)waitFor(u"sentCount"_s, 1);
    SQLite::Database(dataFolder.filePath(u"murvo.sqlite"_s).toStdString(), SQLite::OPEN_READWRITE, 5000)
        .exec("DELETE FROM anki_notes"); // as if killed between Anki's answer and the note of it
    store.setGloss(u"it's \"so\""_s, u"c'est"_s);
    store.add({.lemma = u"refuse me"_s});
    store.add({.lemma = u"after"_s});
    tryNow();
    const QJsonObject sent = waitFor(u"waitingCount"_s, 0);
    EXPECT_EQ(sent["sentCount"_L1], 2);
    EXPECT_EQ(sent["refusedCount"_L1], 1);
    EXPECT_FALSE(anki.note(u"after"_s).isEmpty());
}

TEST_F(AnkiConnectTest, StrangersAtThePortAreToldApartAndSwitchingOffEndsIt) {
    store.add({.lemma = u"word"_s});
    const int usual = anki.port();
    httplib::Server stranger; // some other program that took the port
    stranger.Post(
        "/", [](const httplib::Request &, httplib::Response &to) { to.set_content("<html>", "text/html"); });
    const int port = stranger.bind_to_any_port("127.0.0.1");
    std::thread listener([&stranger] { stranger.listen_after_bind(); });
    switchOn();
    EXPECT_EQ(put(u"Api/Settings"_s, {{u"ankiConnectPort"_s, port}}).status, 200);
    EXPECT_EQ(waitForProblem(u"ankiStrange"_s)["waitingCount"_L1], 1);
    stranger.stop();
    listener.join();
    switchOn(false);
    EXPECT_EQ(waitFor(u"problem"_s, QJsonValue::Null)["waitingCount"_L1], 1);
    anki.start();
    tryNow();
    EXPECT_EQ(put(u"Api/Settings"_s, {{u"ankiConnectPort"_s, usual}}).json()["sendsToAnki"_L1], false);
    EXPECT_EQ(state()["sentCount"_L1], 0);
    EXPECT_EQ(anki.requests(), 0);
}

TEST_F(AnkiConnectTest, AnAnkiThatHangsDoesNotHoldUpTheEndOfTheService) {
    store.add({.lemma = u"word"_s});
    std::mutex mutex;
    std::condition_variable changed;
    bool isAsked = false;
    bool isReleased = false;
    httplib::Server hanging; // busy with a question of its own, as Anki is while a window of it waits
    hanging.Post("/", [&](const httplib::Request &, httplib::Response &) {
        std::unique_lock lock(mutex);
        isAsked = true;
        changed.notify_all();
        changed.wait(lock, [&] { return isReleased; });
    });
    const int port = hanging.bind_to_any_port("127.0.0.1");
    std::thread listener([&hanging] { hanging.listen_after_bind(); });
    EXPECT_EQ(put(u"Api/Settings"_s, {{u"sendsToAnki"_s, true}, {u"ankiConnectPort"_s, port}}).status, 200);
    {
        std::unique_lock lock(mutex);
        EXPECT_TRUE(changed.wait_for(lock, std::chrono::seconds(20), [&] { return isAsked; }));
    }
    EXPECT_EQ(state()["waitingCount"_L1], 1) << "it answers others";
    QElapsedTimer clock;
    clock.start();
    service.reset();
    EXPECT_LT(clock.elapsed(), 6000) << "below its patience with an answer";
    {
        const std::lock_guard lock(mutex);
        isReleased = true;
        changed.notify_all();
    }
    hanging.stop();
    listener.join();
}

} // namespace

} // namespace murvo::service::test
