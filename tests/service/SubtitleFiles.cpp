// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/SubtitleFiles.h"

#include <array>
#include <memory>
#include <stdexcept>

#include <iconv.h>

namespace murvo::service::test {

namespace {

QString figures(qint64 number, int count) {
    return QStringLiteral("%1").arg(number, count, 10, QLatin1Char('0'));
}

QString clock(qint64 ms, const char *point = ".", int fractionFigures = 3) {
    const qint64 fraction = fractionFigures == 2 ? ms % 1000 / 10 : ms % 1000;
    return figures(ms / 3'600'000, 2) + u':' + figures(ms / 60'000 % 60, 2) + u':' +
           figures(ms / 1000 % 60, 2) +
           (fractionFigures == 0 ? QString() : QLatin1String(point) + figures(fraction, fractionFigures));
}

/// The lines of a cue with tags around its italics, joined by what breaks a line.
QString tagged(const Cue &cue, const QString &on, const QString &off, const QString &lineBreak) {
    QStringList lines = cue.lines;
    for (auto range = cue.italics.crbegin(); range != cue.italics.crend(); ++range)
        lines[range->line].insert(range->end, off).insert(range->start, on);
    return lines.join(lineBreak);
}

QString htmlTagged(const Cue &cue, const char *lineBreak) {
    return tagged(cue, QStringLiteral("<i>"), QStringLiteral("</i>"), QString::fromLatin1(lineBreak));
}

/// "/" before each line that is in italics.
QString slashed(const Cue &cue, const QString &mark) {
    return tagged(cue, mark, QString(), QStringLiteral("|"));
}

QString subRip(const QList<Cue> &cues) {
    QString file;
    for (const Cue &cue : cues)
        file += QString::number(file.count(QLatin1String("-->")) + 1) + QLatin1String("\r\n") +
                clock(cue.startMs, ",") + QLatin1String(" --> ") + clock(cue.endMs, ",") +
                QLatin1String("\r\n") + htmlTagged(cue, "\r\n") + QLatin1String("\r\n\r\n");
    return file;
}

QString webVttFile(const QList<Cue> &cues) {
    QString file = QStringLiteral("WEBVTT - a title\nKind: captions\n\n");
    for (const Cue &cue : cues)
        file += clock(cue.startMs) + QLatin1String(" --> ") + clock(cue.endMs) +
                QLatin1String(" line:84%\n") + htmlTagged(cue, "\n") + QLatin1String("\n\n");
    return file;
}

QString assEvents(const QList<Cue> &cues, const char *layer) {
    QString events;
    for (const Cue &cue : cues)
        events += QLatin1String("Dialogue: ") + QLatin1String(layer) + u',' +
                  clock(cue.startMs, ".", 2).mid(1) + u',' + clock(cue.endMs, ".", 2).mid(1) +
                  QLatin1String(",Default,,0000,0000,0000,,{\\an2\\pos(192,270)}") +
                  tagged(cue, QStringLiteral("{\\i1}"), QStringLiteral("{\\i0}"), QStringLiteral("\\N")) +
                  QLatin1String("\r\n");
    return events;
}

QString ass(const QList<Cue> &cues) {
    return QStringLiteral(
               "[Script Info]\r\nScriptType: v4.00+\r\n\r\n[V4+ Styles]\r\n"
               "Format: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, OutlineColour, BackColour, "
               "Bold, Italic\r\nStyle: Default,Arial,20,&H0,&H0,&H0,&H0,-1,0\r\n\r\n[Events]\r\n"
               "Format: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\r\n") +
           assEvents(cues, "0");
}

QString ssa(const QList<Cue> &cues) {
    return QStringLiteral(
               "[Script Info]\r\nScriptType: v4.00\r\n\r\n[Events]\r\n"
               "Format: Marked, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\r\n") +
           assEvents(cues, "Marked=0");
}

QString microDvd(const QList<Cue> &cues) {
    QString file = QStringLiteral("{1}{1}25\r\n");
    for (const Cue &cue : cues)
        file += QStringLiteral("{%1}{%2}").arg(cue.startMs / 40).arg(cue.endMs / 40) +
                slashed(cue, QStringLiteral("{y:i}")) + QLatin1String("\r\n");
    return file;
}

QString mpl2(const QList<Cue> &cues) {
    QString file;
    for (const Cue &cue : cues)
        file += QStringLiteral("[%1][%2]").arg(cue.startMs / 100).arg(cue.endMs / 100) +
                slashed(cue, QStringLiteral("/")) + QLatin1String("\r\n");
    return file;
}

QString subViewer(const QList<Cue> &cues) {
    QString file =
        QStringLiteral("[INFORMATION]\r\n[TITLE]A film\r\n[AUTHOR]\r\n[END INFORMATION]\r\n[SUBTITLE]\r\n"
                       "[COLF]&HFFFFFF,[STYLE]no,[SIZE]18,[FONT]Arial\r\n");
    for (const Cue &cue : cues)
        file += clock(cue.startMs, ".", 2) + u',' + clock(cue.endMs, ".", 2) + QLatin1String("\r\n") +
                htmlTagged(cue, "[br]") + QLatin1String("\r\n\r\n");
    return file;
}

QString subViewer1(const QList<Cue> &cues) {
    QString file = QStringLiteral("[TITLE]\r\nA film\r\n[BEGIN]\r\n******** START SCRIPT ********\r\n");
    for (const Cue &cue : cues)
        file += u'[' + clock(cue.startMs, "", 0) + QLatin1String("]\r\n") + cue.lines.join(u'|') +
                QLatin1String("\r\n[") + clock(cue.endMs, "", 0) + QLatin1String("]\r\n\r\n");
    return file + QLatin1String("[end]\r\n******** END SCRIPT ********\r\n");
}

QString sami(const QList<Cue> &cues) {
    QString file =
        QStringLiteral("<SAMI>\r\n<HEAD>\r\n<STYLE TYPE=\"text/css\">\r\n<!--\r\nP { margin-left: 8pt }\r\n"
                       ".MAINCC { Name: Main; lang: xx; }\r\n-->\r\n</STYLE>\r\n</HEAD>\r\n<BODY>\r\n");
    for (const Cue &cue : cues)
        file += QStringLiteral("<SYNC Start=%1><P Class=MAINCC>\r\n").arg(cue.startMs) +
                htmlTagged(cue, "<br>\r\n") +
                QStringLiteral("\r\n<SYNC Start=%1><P Class=MAINCC>&nbsp;\r\n").arg(cue.endMs);
    return file + QLatin1String("</BODY>\r\n</SAMI>\r\n");
}

QString ttml(const QList<Cue> &cues) {
    QString file =
        QStringLiteral("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<tt xmlns=\"http://www.w3.org/ns/ttml\" "
                       "xmlns:tts=\"http://www.w3.org/ns/ttml#styling\">\n <body><div>\n");
    for (const Cue &cue : cues)
        file += QStringLiteral("  <p begin=\"%1\" end=\"%2\">").arg(clock(cue.startMs), clock(cue.endMs)) +
                tagged(cue, QStringLiteral("<span tts:fontStyle=\"italic\">"), QStringLiteral("</span>"),
                       QStringLiteral("<br/>\n    ")) +
                QLatin1String("</p>\n");
    return file + QLatin1String(" </div></body>\n</tt>\n");
}

enum class Italics { None, Lines, Parts };

/// What a format can say: its steps of time, and where italics can begin.
struct Form {
    const char *name;
    qint64 stepMs;
    Italics italics;
    QString (*write)(const QList<Cue> &);
};

constexpr std::array forms{Form{"srt", 1, Italics::Parts, subRip},
                           Form{"vtt", 1, Italics::Parts, webVttFile},
                           Form{"ass", 10, Italics::Parts, ass},
                           Form{"ssa", 10, Italics::Parts, ssa},
                           Form{"microdvd.sub", 40, Italics::Lines, microDvd},
                           Form{"mpl2.txt", 100, Italics::Lines, mpl2},
                           Form{"subviewer.sub", 10, Italics::Parts, subViewer},
                           Form{"subviewer1.sub", 1000, Italics::None, subViewer1},
                           Form{"smi", 1, Italics::Parts, sami},
                           Form{"ttml", 1, Italics::Parts, ttml}};

const Form &formOf(const char *name) {
    for (const Form &form : forms) {
        if (QLatin1String(form.name) == QLatin1String(name))
            return form;
    }
    throw std::logic_error(name);
}

QList<Cue> asFormCanSay(QList<Cue> cues, Italics italics) {
    for (Cue &cue : cues) {
        const QStringList lines = cue.lines;
        cue.italics.removeIf([&lines, italics](const ItalicRange &range) {
            const bool whole = range.start == 0 && range.end == lines[range.line].size();
            return italics == Italics::None || (italics == Italics::Lines && !whole);
        });
    }
    return cues;
}

SubtitleFile conversationFile(const char *formName, const char *language, const char *encoding,
                              const QByteArray &mark = {}) {
    const Form &form = formOf(formName);
    const QString languageName = QString::fromLatin1(language);
    const QList<Cue> cues = asFormCanSay(dialogue(languageName, form.stepMs), form.italics);
    const QString name = languageName + u'-' + QLatin1String(encoding) +
                         QLatin1String(mark.isEmpty() ? "" : "-marked") + u'.' + QLatin1String(form.name);
    return {name, mark + encoded(form.write(cues), encoding), cues, {}};
}

} // namespace

QByteArray encoded(const QString &text, const QByteArray &encoding) {
    const std::unique_ptr<void, int (*)(iconv_t)> converter(iconv_open(encoding.constData(), "UTF-8"),
                                                            iconv_close);
    QByteArray input = text.toUtf8();
    QByteArray output(input.size() * 4 + 16, '\0');
    char *in = input.data();
    char *out = output.data();
    auto inLeft = static_cast<size_t>(input.size());
    auto outLeft = static_cast<size_t>(output.size());
    if (iconv(converter.get(), &in, &inLeft, &out, &outLeft) != 0)
        throw std::logic_error("not in " + encoding.toStdString() + ": " + text.toStdString());
    output.chop(static_cast<qsizetype>(outLeft));
    return output;
}

QList<SubtitleFile> conversationFiles() {
    QList<SubtitleFile> files;
    for (const Form &form : forms) {
        for (const char *language : {"en", "fr", "ru", "he", "ja"})
            files.append(conversationFile(form.name, language, "UTF-8"));
    }
    struct Writing {
        const char *language;
        QByteArrayList encodings;
    };
    for (const Writing &writing :
         {Writing{"fr", {"WINDOWS-1252", "ISO-8859-1"}}, Writing{"de", {"WINDOWS-1252", "ISO-8859-15"}},
          Writing{"ru", {"WINDOWS-1251", "KOI8-R", "ISO-8859-5"}},
          Writing{"pl", {"WINDOWS-1250", "ISO-8859-2"}}, Writing{"el", {"WINDOWS-1253", "ISO-8859-7"}},
          Writing{"tr", {"WINDOWS-1254", "ISO-8859-9"}}, Writing{"he", {"WINDOWS-1255"}},
          Writing{"ar", {"WINDOWS-1256"}}, Writing{"zh", {"GB18030"}}, Writing{"zh-Hant", {"BIG5"}},
          Writing{"ja", {"SHIFT_JIS", "EUC-JP"}}, Writing{"ko", {"CP949"}}}) {
        for (const QByteArray &encoding : writing.encodings)
            files.append(conversationFile("srt", writing.language, encoding.constData()));
    }
    for (const char *language : {"fr", "zh"}) {
        for (const char *encoding : {"UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"})
            files.append(conversationFile("srt", language, encoding));
    }
    files.append(conversationFile("srt", "ar", "UTF-8", "\xEF\xBB\xBF"));
    files.append(conversationFile("vtt", "ko", "UTF-8", "\xEF\xBB\xBF"));
    files.append(conversationFile("microdvd.sub", "tr", "UTF-8", "\xEF\xBB\xBF"));
    files.append(conversationFile("srt", "ru", "UTF-16LE", QByteArray("\xFF\xFE", 2)));
    files.append(conversationFile("ass", "ja", "UTF-16BE", QByteArray("\xFE\xFF", 2)));
    files.append(conversationFile("ttml", "el", "UTF-16LE", QByteArray("\xFF\xFE", 2)));
    files.append(conversationFile("smi", "ko", "UTF-32LE", QByteArray("\xFF\xFE\0\0", 4)));
    files.append(conversationFile("srt", "he", "UTF-32BE", QByteArray("\0\0\xFE\xFF", 4)));
    files.append(conversationFile("microdvd.sub", "pl", "WINDOWS-1250"));
    files.append(conversationFile("microdvd.sub", "ru", "WINDOWS-1251"));
    files.append(conversationFile("mpl2.txt", "pl", "WINDOWS-1250"));
    files.append(conversationFile("subviewer.sub", "el", "WINDOWS-1253"));
    files.append(conversationFile("subviewer1.sub", "he", "WINDOWS-1255"));
    files.append(conversationFile("smi", "ko", "CP949"));
    files.append(conversationFile("ass", "zh", "GB18030"));
    files.append(conversationFile("ssa", "ja", "SHIFT_JIS"));
    files.append(conversationFile("ttml", "fr", "WINDOWS-1252"));
    return files;
}

} // namespace murvo::service::test
