// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/PackageExport.h"

#include "Export/AnkiPackage.h"
#include "Export/ClipMaker.h"
#include "Log.h"
#include "Store/SettingsTable.h"
#include "Store/WordTable.h"

#include <QDateTime>
#include <QFileInfo>

#include <algorithm>
#include <chrono>
#include <numeric>
#include <tuple>
#include <utility>
#include <vector>

namespace murvo::service {

namespace {

using namespace std::chrono_literals;

// A film in full HD whose key pictures are ten seconds apart takes 0.8 s a clip: enough for a thousand words.
constexpr auto timeForClips = 15min;
// All are in memory until the package is written. A clip has some 60 KB.
constexpr qsizetype mostClipBytes = 256 * 1024 * 1024;

/// The places of the cards, film by film and each in its order.
std::vector<qsizetype> byFilm(const QList<WordCard> &cards) {
    std::vector<qsizetype> order(static_cast<std::size_t>(cards.size()));
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [&cards](qsizetype one, qsizetype other) {
        const auto key = [](const WordCard &card) {
            return std::tie(card.filmPath, card.startMs, card.endMs);
        };
        return key(cards[one]) < key(cards[other]);
    });
    return order;
}

} // namespace

PackageExport::PackageExport(WordTable &words, SettingsTable &settings, WordFacts facts, QString path)
    : _words(words)
    , _settings(settings)
    , _facts(std::move(facts))
    , _path(std::move(path)) {}

void PackageExport::begin(bool withClips) {
    auto job = std::make_shared<Job>();
    job->withClips = withClips;
    job->state.stage = PackageState::Stage::Running;
    const std::lock_guard lock(_mutex);
    _job = job;
    _worker.start([this, job](const std::atomic<bool> &isCancelled) {
        try {
            run(*job, isCancelled);
        } catch (const std::exception &error) {
            qCWarning(serviceLog) << "The words could not be exported:" << error.what();
        }
        const std::lock_guard atEnd(_mutex);
        job->state.stage = job->package ? PackageState::Stage::Done : PackageState::Stage::Failed;
    });
}

void PackageExport::cancel() {
    {
        const std::lock_guard lock(_mutex);
        _job = nullptr;
        _worker.cancel();
    }
    _worker.waitUntilIdle();
}

PackageState PackageExport::state() const {
    const std::lock_guard lock(_mutex);
    return _job ? _job->state : PackageState();
}

std::shared_ptr<QFile> PackageExport::package() const {
    const std::lock_guard lock(_mutex);
    if (!_job || _job->state.stage != PackageState::Stage::Done)
        return nullptr;
    auto file = std::make_shared<QFile>(_job->package->fileName());
    return file->open(QIODevice::ReadOnly) ? file : nullptr;
}

void PackageExport::run(Job &job, const std::atomic<bool> &isCancelled) {
    const QList<WordCard> cards = cardsOf(_words.learned(_settings.nativeLanguage()), _facts, isCancelled);
    {
        const std::lock_guard lock(_mutex);
        job.state.wordCount = static_cast<int>(cards.size());
    }
    const QList<AnkiNote> notes = notesOf(job, cards, isCancelled);
    if (isCancelled)
        return; // nobody has this job any more
    auto package = std::make_unique<QTemporaryFile>(_path);
    if (!package->open())
        throw std::runtime_error("no file can be made");
    writeAnkiPackage(package->fileName(), notes, QDateTime::currentMSecsSinceEpoch());
    const std::lock_guard lock(_mutex);
    job.state.percent = 100;
    job.state.bytes = QFileInfo(package->fileName()).size();
    job.package = std::move(package);
}

QList<AnkiNote> PackageExport::notesOf(Job &job, const QList<WordCard> &cards,
                                       const std::atomic<bool> &isCancelled) {
    QList<AnkiNote> notes(cards.size());
    ClipMaker clips(isCancelled);
    const auto deadline = std::chrono::steady_clock::now() + timeForClips;
    qsizetype clipBytes = 0;
    qsizetype done = 0;
    for (const qsizetype place : byFilm(cards)) {
        if (isCancelled)
            return {};
        const bool isToBeCut =
            job.withClips && clipBytes < mostClipBytes && std::chrono::steady_clock::now() < deadline;
        const WordClip clip = isToBeCut ? clips.clip(cards[place]) : WordClip();
        clipBytes += clip.jpeg.size() + clip.mp3.size();
        notes[place] = ankiNote(cards[place], clip);
        ++done;
        const std::lock_guard lock(_mutex);
        job.state.clipCount += notes[place].media.isEmpty() ? 0 : 1;
        job.state.percent = static_cast<int>(done * 99 / cards.size());
    }
    return notes;
}

} // namespace murvo::service
