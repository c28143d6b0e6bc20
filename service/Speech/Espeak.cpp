// SPDX-License-Identifier: GPL-3.0-or-later
#include "Speech/Espeak.h"

#include "Log.h"
#include "Speech/StressMarks.h"

#include <QRegularExpression>
#include <QStringList>
#include <QtEndian>

#include <espeak-ng/speak_lib.h>

#include <mutex>

namespace murvo::service::Espeak {

namespace {

// Chosen by the length of what came out: a line of 13 words takes 3.3 s at the normal pace and 6.4 s at the
// slow one, the word "children" 0.6 s and 0.9 s.
struct Speed {
    int wordsPerMinute;
    int wordGap; ///< of 10 ms each at the library's usual speed, longer at slower ones
};
constexpr Speed normalSpeed{160, 0};
constexpr Speed slowSpeed{110, 4};

constexpr int asIpa = espeakPHONEMES_IPA;

struct Recording {
    QByteArray samples;
    const std::atomic<bool> &isGivenUp;
};

// The library calls this while it speaks, at the end without samples. 1 puts an end to it.
int record(short *samples, int count, espeak_EVENT *events) noexcept {
    auto *recording = static_cast<Recording *>(events->user_data);
    try {
        if (samples != nullptr)
            recording->samples.append(reinterpret_cast<const char *>(samples),
                                      static_cast<qsizetype>(count) * 2);
        return recording->isGivenUp ? 1 : 0;
    } catch (...) {
        return 1;
    }
}

/// The library's turn, taken for the length of a call. It must never be closed and opened again: that can
/// lock up for ever.
class Turn {
  public:
    Turn()
        : _lock(mutex()) {
        static const int madeReadyRate = makeReady();
        _sampleRate = madeReadyRate;
    }

    [[nodiscard]] int sampleRate() const { return _sampleRate; }
    [[nodiscard]] bool choose(const char *voice) const {
        return _sampleRate > 0 && espeak_SetVoiceByName(voice) == EE_OK;
    }

  private:
    static std::mutex &mutex() {
        static std::mutex ofProcess;
        return ofProcess;
    }

    static int makeReady() {
        const int rate = espeak_Initialize(AUDIO_OUTPUT_SYNCHRONOUS, 0, nullptr, espeakINITIALIZE_DONT_EXIT);
        if (rate > 0)
            espeak_SetSynthCallback(&record);
        else
            qCWarning(serviceLog) << "The speech synthesizer cannot be used; is espeak-ng-data installed?";
        return rate;
    }

    std::lock_guard<std::mutex> _lock;
    int _sampleRate = 0;
};

template<typename Number>
void put(QByteArray &bytes, Number number) {
    const Number little = qToLittleEndian(number);
    bytes.append(reinterpret_cast<const char *>(&little), sizeof(little));
}

QByteArray wavFile(const QByteArray &samples, int sampleRate) {
    constexpr quint32 restOfHeader = 36;
    constexpr quint16 bytesPerSample = 2;
    const auto rate = static_cast<quint32>(sampleRate);
    const auto length = static_cast<quint32>(samples.size());
    QByteArray file("RIFF");
    put<quint32>(file, restOfHeader + length);
    file += "WAVEfmt ";
    put<quint32>(file, 16);
    put<quint16>(file, 1); // plain samples
    put<quint16>(file, 1); // channels
    put<quint32>(file, rate);
    put<quint32>(file, rate * bytesPerSample);
    put<quint16>(file, bytesPerSample);
    put<quint16>(file, 8 * bytesPerSample);
    file += "data";
    put<quint32>(file, length);
    return file + samples;
}

bool isEnglish(const char *voice) {
    const QByteArrayView name(voice);
    return name == "en" || name.startsWith("en-");
}

} // namespace

std::optional<QByteArray> sound(const QString &text, const char *voice, Pace pace,
                                const std::atomic<bool> &isGivenUp) {
    const QByteArray utf8 = text.toUtf8();
    const Speed speed = pace == Pace::Slow ? slowSpeed : normalSpeed;
    Recording recording{{}, isGivenUp};
    const Turn turn;
    if (isGivenUp || !turn.choose(voice))
        return std::nullopt;
    espeak_SetParameter(espeakRATE, speed.wordsPerMinute, 0);
    espeak_SetParameter(espeakWORDGAP, speed.wordGap, 0);
    const auto size = static_cast<size_t>(utf8.size()) + 1; // with the 0 at the end
    if (espeak_Synth(utf8.constData(), size, 0, POS_CHARACTER, 0, espeakCHARS_UTF8, nullptr, &recording) !=
            EE_OK ||
        espeak_Synchronize() != EE_OK || isGivenUp)
        return std::nullopt;
    return wavFile(recording.samples, turn.sampleRate());
}

std::optional<QString> pronunciation(const QString &text, const char *voice) {
    // Where a word is of another language the library says so: "(en)", and "(ja)" behind it.
    static const QRegularExpression languageMark(QStringLiteral("\\([a-z-]+\\)"));
    const QByteArray utf8 = text.toUtf8();
    QStringList sentences;
    const Turn turn;
    if (!turn.choose(voice))
        return std::nullopt;
    for (const void *rest = utf8.constData(); rest != nullptr;) {
        const char *ipa = espeak_TextToPhonemes(&rest, espeakCHARS_UTF8, asIpa);
        if (ipa != nullptr)
            sentences.append(QString::fromUtf8(ipa).remove(languageMark).simplified());
    }
    sentences.removeAll(QString());
    const QString all = sentences.join(u' ');
    return isEnglish(voice) ? stressBeforeSyllables(all) : all;
}

} // namespace murvo::service::Espeak
