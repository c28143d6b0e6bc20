// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/SpokenFilm.h"

#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

namespace murvo::service::test {

namespace {

constexpr int sampleRate = 22'050; // espeak-ng's
using Sound = std::vector<qint16>;

const QStringList words{QStringLiteral("marina"), QStringLiteral("tomato"),    QStringLiteral("sal"),
                        QStringLiteral("pero"),   QStringLiteral("kilometer"), QStringLiteral("radio"),
                        QStringLiteral("no"),     QStringLiteral("musica"),    QStringLiteral("telefon"),
                        QStringLiteral("da"),     QStringLiteral("banana"),    QStringLiteral("tu")};

std::size_t samplesOf(qint64 ms) {
    return static_cast<std::size_t>(ms * sampleRate / 1000);
}

void run(const QString &program, const QStringList &arguments, const QProcessEnvironment &environment) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    if (!process.waitForFinished(60'000) || process.exitCode() != 0)
        qFatal("%s failed", qPrintable(program));
}

void ffmpeg(const QStringList &arguments) {
    const QStringList quiet{QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-nostdin"),
                            QStringLiteral("-y")};
    run(QStringLiteral("ffmpeg"), quiet + arguments, QProcessEnvironment::systemEnvironment());
}

/// One utterance without the silence around it.
Sound speak(const QDir &folder, const QString &voice, int wordsPerMinute, const QString &text) {
    // The sound library that espeak-ng opens even to write a file would leave folders behind elsewhere.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PULSE_RUNTIME_PATH"), folder.path());
    environment.insert(QStringLiteral("PULSE_STATE_PATH"), folder.path());
    environment.insert(QStringLiteral("PULSE_COOKIE"), folder.filePath(QStringLiteral("cookie")));
    const QString path = folder.filePath(QStringLiteral("line.wav"));
    run(QStringLiteral("espeak-ng"),
        {QStringLiteral("-v"), voice, QStringLiteral("-s"), QString::number(wordsPerMinute),
         QStringLiteral("-w"), path, QStringLiteral("--"), text},
        environment);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("espeak-ng wrote nothing");
    constexpr qsizetype headerBytes = 44;
    const QByteArray bytes = file.readAll().mid(headerBytes);
    Sound sound(static_cast<std::size_t>(bytes.size()) / sizeof(qint16));
    std::copy_n(bytes.constData(), sound.size() * sizeof(qint16), reinterpret_cast<char *>(sound.data()));
    const auto isHeard = [](qint16 sample) { return std::abs(sample) > 500; };
    sound.erase(std::find_if(sound.rbegin(), sound.rend(), isHeard).base(), sound.end());
    sound.erase(sound.begin(), std::find_if(sound.begin(), sound.end(), isHeard));
    return sound;
}

/// Enough different utterances to fill a film with.
std::vector<Sound> utterances(const QDir &folder, const FilmRecipe &recipe, Chance &chance) {
    std::vector<Sound> sounds;
    for (int i = 0; i < 16; ++i) {
        QStringList text;
        for (qint64 left = chance.msBetween(1, 11); left > 0; --left)
            text.append(words[chance.msBetween(0, static_cast<double>(words.size()))]);
        const int wordsPerMinute = recipe.wordsPerMinute + static_cast<int>(chance.msBetween(-20, 20));
        sounds.push_back(speak(folder, recipe.voices[i % recipe.voices.size()], wordsPerMinute,
                               text.join(QStringLiteral(" "))));
    }
    return sounds;
}

void lay(Sound &film, const Sound &sound, qint64 atMs, double volume) {
    const std::size_t start = samplesOf(atMs);
    for (std::size_t i = 0; i < sound.size() && start + i < film.size(); ++i)
        film[start + i] =
            static_cast<qint16>(std::clamp(film[start + i] + volume * sound[i], -32'000.0, 32'000.0));
}

qint64 lengthMs(const Sound &sound) {
    return static_cast<qint64>(sound.size()) * 1000 / sampleRate;
}

qint64 pauseMs(Chance &chance) {
    const double kind = chance.between(0, 1);
    return kind < 0.55   ? chance.msBetween(120, 900)
           : kind < 0.93 ? chance.msBetween(900, 6'000)
                         : chance.msBetween(6'000, 20'000);
}

/// Lines of one or two utterances; some speech that no subtitle shows.
Sound speakFilm(const QDir &folder, const FilmRecipe &recipe, Chance &chance, SpokenFilm &made) {
    const std::vector<Sound> sounds = utterances(folder, recipe, chance);
    const auto any = [&]() -> const Sound & {
        return sounds[static_cast<std::size_t>(chance.between(0, static_cast<double>(sounds.size())))];
    };
    Sound film(samplesOf(recipe.lengthMs), 0);
    qint64 nowMs = 3'000;
    bool isInserted = recipe.insertedMs == 0;
    while (nowMs < recipe.lengthMs - 12'000) {
        nowMs += pauseMs(chance);
        if (!isInserted && nowMs > recipe.lengthMs / 2) {
            made.cutFilmMs = nowMs + recipe.insertedMs / 2;
            lay(film, any(), nowMs + recipe.insertedMs / 3,
                0.7); // the scene that the track lacks speaks, too
            nowMs += recipe.insertedMs;
            isInserted = true;
        }
        const double volume = chance.between(0.4, 1);
        const qint64 startMs = nowMs;
        const bool isShown = !chance.happens(0.05);
        for (int part = chance.happens(0.25) ? 2 : 1; part > 0; --part) {
            const Sound &sound = any();
            lay(film, sound, nowMs, volume);
            nowMs += lengthMs(sound) + (part > 1 ? 350 : 0);
        }
        if (isShown)
            made.lines.append({startMs, nowMs, {QStringLiteral("line")}});
    }
    return film;
}

/// A bass and a melody, two notes a second, half a minute of it.
QString musicFile(const QDir &folder) {
    QString path = folder.filePath(QStringLiteral("music.wav"));
    if (!QFile::exists(path))
        ffmpeg({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                QStringLiteral(
                    "aevalsrc=0.25*sin(2*PI*t*220*pow(2\\,floor(mod(t*7.1\\,12))/12))*exp(-3*mod(t\\,0.5))"
                    "+0.25*sin(2*PI*t*(82+20*floor(mod(t\\,4))))*exp(-1.5*mod(t\\,1)):s=8000:d=31"),
                path});
    return path;
}

QStringList noiseInput() {
    return {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
            QStringLiteral("anoisesrc=color=pink:amplitude=0.05:seed=3:r=22050")};
}

} // namespace

QList<Cue> dialogue(Chance &chance, qint64 filmLengthMs) {
    QList<Cue> lines;
    qint64 nowMs = 3'000;
    while (true) {
        nowMs += pauseMs(chance);
        const qint64 endMs = nowMs + chance.msBetween(800, 4'500);
        if (endMs > filmLengthMs)
            return lines;
        lines.append({nowMs, endMs, {QStringLiteral("line")}});
        nowMs = endMs;
    }
}

void insertPause(QList<Cue> &lines, qsizetype beforeLine, qint64 pauseLengthMs) {
    for (qsizetype i = beforeLine; i < lines.size(); ++i) {
        lines[i].startMs += pauseLengthMs;
        lines[i].endMs += pauseLengthMs;
    }
}

QList<Cue> retold(Chance &chance, const QList<Cue> &lines, double jitterMs) {
    QList<Cue> told;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        Cue cue = lines[i];
        const bool isNextNear = i + 1 < lines.size() && lines[i + 1].startMs - cue.endMs < 1'500;
        const double fate = chance.between(0, 1);
        if (fate < 0.08)
            continue;
        if (fate < 0.20 && isNextNear) {
            cue.endMs = lines[++i].endMs;
        } else if (fate < 0.30 && cue.endMs - cue.startMs > 2'500) {
            const qint64 middleMs = (cue.startMs + cue.endMs) / 2;
            told.append({cue.startMs, middleMs - 40, cue.lines});
            cue.startMs = middleMs + 40;
        }
        told.append(cue);
    }
    for (Cue &cue : told) {
        cue.startMs = std::max<qint64>(0, cue.startMs + chance.msBetween(-jitterMs, jitterMs));
        cue.endMs = std::max(cue.startMs + 300, cue.endMs + chance.msBetween(-jitterMs, 2 * jitterMs));
    }
    return inOrder(told);
}

Track trackOf(const QList<Cue> &lines, const Timing &timing, qint64 cutFilmMs) {
    Track track;
    const double rate = static_cast<double>(timing.rateNumerator) / timing.rateDenominator;
    for (const Cue &line : lines) {
        const bool isBehindCut = timing.cut && line.startMs >= cutFilmMs;
        const qint64 offsetMs = timing.offsetMs + (isBehindCut ? timing.cut->offsetMs : 0);
        const auto trackMs = [&](qint64 ms) { return static_cast<double>(ms - offsetMs) / rate; };
        if (trackMs(line.startMs) < 0)
            continue;
        track.cues.append({qRound64(trackMs(line.startMs)), qRound64(trackMs(line.endMs)), line.lines});
        track.filmStartsMs.append(line.startMs);
    }
    return track;
}

qint64 worstErrorMs(const Track &track, const Timing &timing) {
    qint64 worst = 0;
    for (qsizetype i = 0; i < track.cues.size(); ++i)
        worst = std::max(worst, std::abs(filmTimeMs(track.cues[i].startMs, timing) - track.filmStartsMs[i]));
    return worst;
}

SpokenFilm makeSpokenFilm(const QDir &folder, const FilmRecipe &recipe, unsigned seed) {
    Chance chance(seed);
    SpokenFilm made;
    made.path = folder.filePath(recipe.fileName);
    const Sound sound = speakFilm(folder, recipe, chance, made);
    QFile raw(folder.filePath(QStringLiteral("voice.raw")));
    if (!raw.open(QIODevice::WriteOnly))
        qFatal("no place for the voice");
    raw.write(reinterpret_cast<const char *>(sound.data()), static_cast<qint64>(sound.size()) * 2);
    raw.close();

    QStringList arguments{QStringLiteral("-f"),        QStringLiteral("s16le"), QStringLiteral("-ar"),
                          QString::number(sampleRate), QStringLiteral("-ac"),   QStringLiteral("1"),
                          QStringLiteral("-i"),        raw.fileName()};
    int inputs = 1;
    if (recipe.bed == Bed::Noise || recipe.bed == Bed::NoiseAndMusic) {
        arguments += noiseInput();
        ++inputs;
    }
    if (recipe.bed == Bed::Music || recipe.bed == Bed::NoiseAndMusic) {
        arguments +=
            {QStringLiteral("-stream_loop"), QStringLiteral("-1"), QStringLiteral("-i"), musicFile(folder)};
        ++inputs;
    }
    arguments += {QStringLiteral("-filter_complex"),
                  QStringLiteral("amix=inputs=%1:duration=first:normalize=0").arg(inputs)};
    ffmpeg(arguments + recipe.codec + QStringList{made.path});
    return made;
}

QString makeMusicFilm(const QDir &folder, qint64 filmLengthMs) {
    QString path = folder.filePath(QStringLiteral("music.mka"));
    ffmpeg(QStringList{QStringLiteral("-stream_loop"), QStringLiteral("-1"), QStringLiteral("-i"),
                       musicFile(folder)} +
           noiseInput() +
           QStringList{QStringLiteral("-filter_complex"), QStringLiteral("amix=inputs=2:normalize=0"),
                       QStringLiteral("-t"), QString::number(filmLengthMs / 1000), QStringLiteral("-c:a"),
                       QStringLiteral("aac"), path});
    return path;
}

QString makeTwoSoundFilm(const QDir &folder) {
    QString path = folder.filePath(QStringLiteral("two.mkv"));
    ffmpeg(QStringLiteral(
               "-f lavfi -i anullsrc=r=48000:d=20 "
               "-f lavfi -i aevalsrc=0.3*between(mod(t\\,1)\\,0.5\\,0.7)*(sin(2200*t)+sin(9000*t)):d=20 "
               "-f lavfi -i testsrc2=s=64x36:r=5:d=20 -map 0 -map 1 -map 2 -c:a flac -c:v mjpeg "
               "-disposition:a:0 0 -disposition:a:1 default")
               .split(u' ') +
           QStringList{path});
    return path;
}

} // namespace murvo::service::test
