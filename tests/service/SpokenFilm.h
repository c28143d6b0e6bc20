// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/Cues.h"
#include "Timing/Timing.h"

#include <QDir>
#include <QList>
#include <QStringList>

#include <random>

namespace murvo::service::test {

/// Chance that comes out the same in every run.
class Chance {
  public:
    explicit Chance(unsigned seed)
        : _engine(seed) {}

    [[nodiscard]] double between(double low, double high) {
        // Not std::uniform_real_distribution, which differs between libraries.
        return low + (high - low) * static_cast<double>(_engine()) / 4294967296.0;
    }
    [[nodiscard]] qint64 msBetween(double low, double high) {
        return static_cast<qint64>(between(low, high));
    }
    [[nodiscard]] bool happens(double share) { return between(0, 1) < share; }

  private:
    std::mt19937 _engine;
};

/// The lines of a film that nobody has to watch: when something is said, with pauses as in dialogue.
[[nodiscard]] QList<Cue> dialogue(Chance &chance, qint64 lengthMs);

/// Puts lengthMs between the lines from that one on and those before.
void insertPause(QList<Cue> &lines, qsizetype beforeLine, qint64 lengthMs);

/// What somebody else's subtitles of the same lines look like: some left out, joined or split, starts and
/// ends a little elsewhere, by up to jitterMs.
[[nodiscard]] QList<Cue> retold(Chance &chance, const QList<Cue> &lines, double jitterMs);

/// A track that becomes the film's lines by that timing. With a cut the lines that the film has from
/// cutFilmMs on lie behind it.
struct Track {
    QList<Cue> cues;
    QList<qint64> filmStartsMs; ///< where each belongs
};
[[nodiscard]] Track trackOf(const QList<Cue> &lines, const Timing &timing, qint64 cutFilmMs = 0);

/// How far the worst of the track's cues is from where it belongs.
[[nodiscard]] qint64 worstErrorMs(const Track &track, const Timing &timing);

enum class Bed { Silence, Noise, Music, NoiseAndMusic };

struct SpokenFilm {
    QString path;
    QList<Cue> lines; ///< when somebody speaks what a subtitle would show
    qint64 cutFilmMs = 0;
};

/// What is asked of a film that somebody speaks in.
struct FilmRecipe {
    QString fileName;   ///< its ending chooses the container
    QStringList codec;  ///< ffmpeg's words for the sound
    QStringList voices; ///< espeak-ng's names
    int wordsPerMinute = 160;
    Bed bed = Bed::Silence;
    qint64 lengthMs = 360'000;
    qint64 insertedMs = 0; ///< a scene that the track does not know, from the middle on
};

/// Spoken by espeak-ng and mixed by ffmpeg into the folder.
[[nodiscard]] SpokenFilm makeSpokenFilm(const QDir &folder, const FilmRecipe &recipe, unsigned seed);

/// Nobody speaks in it.
[[nodiscard]] QString makeMusicFilm(const QDir &folder, qint64 lengthMs);

/// 20 s of two sounds and a picture: stream 0 is silent, stream 1, the default, beeps from 0.5 to 0.7 of each
/// second.
[[nodiscard]] QString makeTwoSoundFilm(const QDir &folder);

} // namespace murvo::service::test
