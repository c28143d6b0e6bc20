// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/CueReader.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace murvo::service::test {

/// A subtitle file and what a reader must make of it.
struct SubtitleFile {
    QString name;
    QByteArray bytes;
    QList<Cue> expected;
    FrameRate filmRate;
};

/// A cue in the short notation of the tables: "|" breaks a line, "_" begins and ends italics.
[[nodiscard]] Cue cueOf(qint64 startMs, qint64 endMs, const QString &notation);

/// The lines of a conversation in a language (its two letters, or "zh-Hant"), at times of whole steps.
[[nodiscard]] QList<Cue> dialogue(const QString &language, qint64 stepMs = 1);
[[nodiscard]] QStringList dialogueLanguages();

/// text in an encoding by its iconv name, which must have all of its characters.
[[nodiscard]] QByteArray encoded(const QString &text, const QByteArray &encoding);

/// The conversations written in every format, and in every encoding that is met in the wild.
[[nodiscard]] QList<SubtitleFile> conversationFiles();

/// Small files with one oddity each, as careless programs and people make them.
[[nodiscard]] QList<SubtitleFile> oddFiles();

} // namespace murvo::service::test
