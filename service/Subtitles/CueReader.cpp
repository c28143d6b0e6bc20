// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/CueReader.h"

#include "Subtitles/Charset.h"
#include "Subtitles/ClockTime.h"
#include "Subtitles/FileRepairs.h"
#include "Subtitles/SamiReader.h"
#include "Subtitles/TextDemuxer.h"
#include "Subtitles/TtmlReader.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace murvo::service {

namespace {

constexpr qsizetype charactersToTellFormatFrom = 65'536;

enum class Format { Unknown, SubRip, WebVtt, Ass, MicroDvd, Mpl2, SubViewer1, Sami, Ttml };

// A format whose lines with times can be told from all others; the more of them, the surer.
struct LineForm {
    Format format;
    QRegularExpression line;
};

const std::array<LineForm, 5> &lineForms() {
    using R = QRegularExpression;
    static const std::array<LineForm, 5> forms{
        LineForm{Format::SubRip, R(QStringLiteral("^\\s*") + clockTimePattern() +
                                   QStringLiteral("\\s*(?:-\\s?-?\\s?>|,\\s*\\d+:\\d+:\\d+\\.\\d+\\s*$)"))},
        LineForm{Format::Ass, R(QStringLiteral("^\\s*Dialogue:"), R::CaseInsensitiveOption)},
        LineForm{Format::MicroDvd, R(QStringLiteral("^\\s*\\{\\d+\\}\\{\\d*\\}"))},
        LineForm{Format::Mpl2, R(QStringLiteral("^\\s*\\[\\d+\\]\\[\\d*\\]"))},
        LineForm{Format::SubViewer1, R(QStringLiteral("^\\s*\\[\\d+:\\d+:\\d+\\]\\s*$"))}};
    return forms;
}

Format formatByLines(QStringView start) {
    constexpr qsizetype mostOfLine = 200;
    std::array<int, 5> counts{};
    for (const QStringView line : start.tokenize(u'\n')) {
        const QString begin = line.first(std::min(line.size(), mostOfLine)).toString();
        for (size_t i = 0; i < counts.size(); ++i)
            counts[i] += lineForms()[i].line.match(begin).hasMatch() ? 1 : 0;
    }
    const auto most = std::max_element(counts.begin(), counts.end());
    return *most == 0 ? Format::Unknown : lineForms()[static_cast<size_t>(most - counts.begin())].format;
}

// libavformat's probing misses files that can be read well (no index lines, junk first): the format is told
// here and forced.
Format formatOf(QStringView text) {
    static const QRegularExpression ttml(QStringLiteral("<(?:\\w+:)?tt[\\s>]"));
    const QStringView start = text.first(std::min(text.size(), charactersToTellFormatFrom)).trimmed();
    if (start.startsWith(u"WEBVTT"))
        return Format::WebVtt;
    if (start.startsWith(u'<')) {
        if (ttml.match(start.toString()).hasMatch())
            return Format::Ttml;
        if (start.contains(u"<SAMI", Qt::CaseInsensitive) || start.contains(u"<SYNC", Qt::CaseInsensitive))
            return Format::Sami;
    }
    if (start.startsWith(u"[Script Info]", Qt::CaseInsensitive))
        return Format::Ass;
    return formatByLines(start);
}

QList<Cue> cuesOf(const QString &text, Format format, FrameRate filmRate) {
    switch (format) {
    case Format::SubRip:
        return demuxedCues(repairedSubRip(text).toUtf8(), "srt", {});
    case Format::WebVtt:
        return demuxedCues(repairedWebVtt(text).toUtf8(), "webvtt", {});
    case Format::Ass:
        return demuxedCues(repairedAss(text).toUtf8(), "ass", {});
    case Format::MicroDvd: {
        FrameRate rate = filmRate;
        const QString repaired = repairedMicroDvd(text, rate);
        return demuxedCues(repaired.toUtf8(), "microdvd", rate);
    }
    case Format::Mpl2:
        return demuxedCues(shortLines(text).toUtf8(), "mpl2", {});
    case Format::SubViewer1:
        return demuxedCues(shortLines(text).toUtf8(), "subviewer1", {});
    case Format::Sami:
        return readSami(text);
    case Format::Ttml:
        return readTtml(text, filmRate);
    case Format::Unknown:
        break;
    }
    return {};
}

// Files have passed through programs that wrote "\r", "\r\n" or even "\r\r\n" for a line end.
QString withPlainLineEnds(QString text) {
    static const QRegularExpression lineEnd(QStringLiteral("\\r+\\n|\\r"));
    return text.replace(lineEnd, QStringLiteral("\n"));
}

// "PG", two times of four bytes each, and one of the kinds of segment.
bool isBluRaySegment(const QByteArray &fileBytes) {
    constexpr qsizetype kindAt = 10;
    static const QByteArray kinds("\x14\x15\x16\x17\x80");
    return fileBytes.startsWith("PG") && fileBytes.size() > kindAt && kinds.contains(fileBytes[kindAt]);
}

} // namespace

bool isPictureSubtitle(const QByteArray &fileBytes) {
    return fileBytes.startsWith(QByteArrayView("\0\0\x01\xBA", 4)) ||
           fileBytes.startsWith("# VobSub index file") || isBluRaySegment(fileBytes);
}

bool countsInFrames(const QByteArray &fileBytes, const QByteArray &encoding) {
    constexpr qsizetype bytesThatTell = 65'536;
    const QByteArray start = fileBytes.left(bytesThatTell);
    const Format format = formatOf(withPlainLineEnds(QString::fromUtf8(toUtf8(start, encoding))));
    return format == Format::MicroDvd || format == Format::Ttml;
}

CueReading readCues(const QByteArray &fileBytes, FrameRate filmRate, const QByteArray &encoding) {
    if (isPictureSubtitle(fileBytes))
        return {{}, CueProblem::PictureSubtitle};
    const QString text = withPlainLineEnds(QString::fromUtf8(toUtf8(fileBytes, encoding)));
    const Format format = formatOf(text);
    if (format == Format::Unknown)
        return {{}, CueProblem::UnknownFormat};
    CueReading reading{inOrder(cuesOf(text, format, filmRate)), CueProblem::None};
    if (reading.cues.isEmpty())
        reading.problem = CueProblem::NoCues;
    return reading;
}

} // namespace murvo::service
