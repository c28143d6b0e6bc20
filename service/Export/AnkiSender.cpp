// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/AnkiSender.h"

#include "Export/AnkiNote.h"
#include "Export/ClipMaker.h"
#include "GiveWay.h"
#include "Log.h"
#include "Store/SettingsTable.h"
#include "Store/WordTable.h"

#include <QCryptographicHash>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace murvo::service {

namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

constexpr milliseconds pauseBetweenLooks = 5s; // for new words, which costs next to nothing
constexpr milliseconds firstPause = 5s;        // doubled with each failure
constexpr milliseconds longestPause = 5min;

/// Of all in which a change is worth sending.
QByteArray sha256Of(const SavedWord &word) {
    const QStringList parts{word.lemma,
                            word.form,
                            word.gloss,
                            word.line,
                            word.translation,
                            word.filmName,
                            QString::number(word.startMs),
                            QString::number(word.endMs)};
    return QCryptographicHash::hash(parts.join(QChar(0x1F)).toUtf8(), QCryptographicHash::Sha256);
}

} // namespace

AnkiSender::AnkiSender(Database &database, WordTable &words, AnkiTable &table, SettingsTable &settings,
                       WordFacts facts)
    : _database(database)
    , _words(words)
    , _table(table)
    , _settings(settings)
    , _facts(std::move(facts))
    , _thread([this] { run(); }) {}

AnkiSender::~AnkiSender() {
    {
        std::unique_lock lock(_mutex);
        _isEnding = true;
        _changed.notify_all();
        while (!_hasEnded) { // it may just have begun to connect, and be deaf to the first call
            if (_talking != nullptr)
                _talking->stop();
            _changed.wait_for(lock, 50ms);
        }
    }
    _thread.join();
}

void AnkiSender::tryNow() {
    const std::lock_guard lock(_mutex);
    _isAsked = true;
    _changed.notify_all();
}

void AnkiSender::tryAllNow() {
    _table.forgetRefusals();
    tryNow();
}

AnkiSenderState AnkiSender::state() {
    AnkiSenderState state;
    state.isOn = _settings.all().sendsToAnki;
    const auto sent = _table.all();
    for (const SentNote &note : sent) {
        state.sentCount += note.noteId > 0 ? 1 : 0;
        if (!note.problem.isEmpty())
            state.refused.append(note);
    }
    std::sort(state.refused.begin(), state.refused.end(),
              [](const SentNote &one, const SentNote &other) { return one.lemma < other.lemma; });
    state.waitingCount = static_cast<int>(waiting().size());
    const std::lock_guard lock(_mutex);
    if (!state.isOn)
        return state;
    state.problem = _problem;
    const auto left = std::chrono::ceil<milliseconds>(_nextTry - std::chrono::steady_clock::now());
    state.nextTry = _isTryPlanned ? std::max(left, 0ms) : 0ms;
    return state;
}

QList<AnkiSender::Waiting> AnkiSender::waiting() {
    const auto sent = _table.all();
    QList<Waiting> waiting;
    for (const SavedWord &word : _words.learned(_settings.nativeLanguage())) {
        const QByteArray sha256 = sha256Of(word);
        const SentNote before = sent.value(word.guid);
        if (before.sha256 != sha256 && before.noteId != SentNote::deleted)
            waiting.append({word, sha256, before.noteId});
    }
    return waiting;
}

milliseconds AnkiSender::pauseAfter(const AnkiProblem &problem) {
    if (problem.code.isEmpty()) {
        _failures = 0;
        return pauseBetweenLooks;
    }
    constexpr int enoughDoublings = 10;
    _failures = std::min(_failures + 1, enoughDoublings);
    return std::min(firstPause * (1 << (_failures - 1)), longestPause);
}

void AnkiSender::run() noexcept {
    giveWayToOthers(); // it cuts clips out of the film that plays
    std::unique_lock lock(_mutex);
    while (!_isEnding) {
        if (std::exchange(_isAsked, false)) { // a wish begins anew
            _failures = 0;
            _seen.reset();
        }
        _isTryPlanned = false;
        lock.unlock();
        bool isOn = false;
        AnkiProblem problem;
        try {
            isOn = _settings.all().sendsToAnki;
            problem = isOn ? send() : AnkiProblem();
        } catch (const AnkiFailure &failure) {
            problem = failure.problem();
        } catch (const std::exception &error) {
            qCWarning(serviceLog) << "Sending words to Anki failed:" << error.what();
            problem = {QStringLiteral("internal"), QStringLiteral("The words could not be read.")};
        }
        lock.lock();
        _problem = problem;
        const auto isWoken = [this] { return _isEnding || _isAsked; };
        if (isOn) {
            _nextTry = std::chrono::steady_clock::now() + pauseAfter(problem);
            _isTryPlanned = !problem.code.isEmpty();
            _changed.wait_until(lock, _nextTry, isWoken);
        } else {
            _changed.wait(lock, isWoken);
        }
    }
    _hasEnded = true;
    _changed.notify_all();
}

AnkiProblem AnkiSender::send() {
    const Database::Generation generation = _database.generation();
    if (generation == _seen)
        return {};
    const QList<Waiting> waitingNow = waiting();
    if (waitingNow.isEmpty()) {
        _seen = generation;
        return {};
    }
    const Settings settings = _settings.all();
    AnkiConnect anki(settings.ankiConnectPort, settings.ankiConnectKey);
    const auto talk = [this](AnkiConnect *with) {
        const std::lock_guard lock(_mutex);
        _talking = _isEnding ? nullptr : with; // what ends must not be left a pointer to
        return !_isEnding;
    };
    if (!talk(&anki))
        return {};
    try {
        sendAll(anki, waitingNow);
    } catch (...) {
        talk(nullptr);
        throw;
    }
    talk(nullptr);
    return {};
}

void AnkiSender::sendAll(AnkiConnect &anki, const QList<Waiting> &waitingNow) {
    anki.prepare();
    ClipMaker clips(_isEnding);
    for (const Waiting &next : waitingNow) {
        if (_isEnding || !_settings.all().sendsToAnki)
            return;
        const WordCard card = cardsOf({next.word}, _facts, _isEnding).value(0);
        if (_isEnding)
            return;
        const AnkiNote note = ankiNote(card, clips.clip(card));
        if (_isEnding)
            return;
        for (const AnkiMedia &file : note.media)
            anki.storeMedia(file);
        const AnkiConnect::Outcome outcome =
            next.noteId > 0 ? anki.update(next.noteId, note) : anki.add(note);
        _table.note(next.word.guid, {{}, outcome.noteId, next.sha256, outcome.refusal});
    }
}

} // namespace murvo::service
