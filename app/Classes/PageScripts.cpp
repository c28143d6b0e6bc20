// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/PageScripts.h"

#include "app/Classes/TextFormat.h"

namespace murvo::PageScripts {

namespace {

QString trigger(const QString &event) {
    return QStringLiteral("if(typeof $ != 'undefined'){ $(window).trigger('") + event +
           QStringLiteral("'); }");
}

QString trigger(const QString &event, const QString &payload) {
    return QStringLiteral("if(typeof $ != 'undefined'){ $(window).trigger('") + event +
           QStringLiteral("', ") + payload + QStringLiteral("); }");
}

} // namespace

QString timeUpdate(qint64 milliseconds) {
    return trigger(QStringLiteral("timeUpdate"), QString::number(milliseconds));
}

QString resized() {
    return trigger(QStringLiteral("nativeApp:resized"));
}

QString leftFullscreen() {
    return trigger(QStringLiteral("nativeApp:leftFullscreen"));
}

QString enteredFullscreen() {
    return trigger(QStringLiteral("nativeApp:enteredFullscreen"));
}

QString refreshLevel() {
    return trigger(QStringLiteral("refreshLevel"));
}

QString quoted(const QString &text) {
    QString literal = QStringLiteral("'");
    for (const QChar character : text) {
        const bool isPlain = character >= u' ' && character != u'\'' && character != u'\\' &&
                             character != QChar::LineSeparator && character != QChar::ParagraphSeparator;
        if (isPlain)
            literal += character;
        else
            literal += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
    }
    return literal + u'\'';
}

QString response(const QString &guid, const QString &value) {
    return trigger(QStringLiteral("response:") + orNullText(guid), value);
}

QString selectedLanguage() {
    return QStringLiteral(
        "$('#selectedLanguage .flag').attr('class').replace('flag', '').replace('small', '')"
        ".replace(' ', '').replace(' ', '')");
}

QString nextSubtitleTop() {
    return QStringLiteral("$('#next-sub').offset().top");
}

} // namespace murvo::PageScripts
