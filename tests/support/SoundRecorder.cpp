// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/SoundRecorder.h"

#include <QDataStream>
#include <QtEndian>

#include <cmath>
#include <numbers>

namespace murvo::test {

namespace {
constexpr int rateHz = 16000;
constexpr double fullScale = 32768;
} // namespace

SoundRecorder::SoundRecorder() {
    _parec.start(QStringLiteral("parec"),
                 {QStringLiteral("--device=@DEFAULT_MONITOR@"), QStringLiteral("--rate=%1").arg(rateHz),
                  QStringLiteral("--channels=1"), QStringLiteral("--format=s16le"),
                  QStringLiteral("--latency-msec=50")});
    if (!_parec.waitForStarted())
        qFatal("parec cannot be run");
}

SoundRecorder::~SoundRecorder() {
    _parec.kill();
    _parec.waitForFinished();
}

double SoundRecorder::amplitudeOf(double frequencyHz) {
    _samples += _parec.readAllStandardOutput();
    constexpr qsizetype count = rateHz / 2;
    if (_samples.size() < 2 * count)
        return 0;
    _samples = _samples.right(2 * count + _samples.size() % 2);
    double real = 0;
    double imaginary = 0;
    for (qsizetype i = 0; i < count; ++i) {
        const double sample = qFromLittleEndian<qint16>(_samples.constData() + 2 * i) / fullScale;
        const double angle = 2 * std::numbers::pi * frequencyHz * static_cast<double>(i) / rateHz;
        real += sample * std::cos(angle);
        imaginary += sample * std::sin(angle);
    }
    return 2 * std::hypot(real, imaginary) / count;
}

QByteArray toneFile(double frequencyHz, double seconds) {
    const auto count = static_cast<quint32>(seconds * rateHz);
    QByteArray file;
    QDataStream stream(&file, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.writeRawData("RIFF", 4);
    stream << quint32(36 + 2 * count);
    stream.writeRawData("WAVEfmt ", 8);
    stream << quint32(16) << quint16(1) << quint16(1) << quint32(rateHz) << quint32(2 * rateHz) << quint16(2)
           << quint16(16);
    stream.writeRawData("data", 4);
    stream << quint32(2 * count);
    for (quint32 i = 0; i < count; ++i)
        stream << qint16(0.3 * fullScale * std::sin(2 * std::numbers::pi * frequencyHz * i / rateHz));
    return file;
}

} // namespace murvo::test
