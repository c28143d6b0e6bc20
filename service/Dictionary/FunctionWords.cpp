// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/FunctionWords.h"

#include <QFile>

namespace murvo::service {

FunctionWords::FunctionWords(const QByteArray &list) {
    for (const QByteArray &line : list.split('\n')) {
        const QStringList parts = QString::fromUtf8(line).split(QStringLiteral(" | "));
        if (line.startsWith('#') || parts.size() != 4)
            continue;
        _senses[parts[0]].push_back({parts[1], parts[2], {parts[3].trimmed()}, {}, {}, true});
    }
}

FunctionWords FunctionWords::ofProgram() {
    QFile list(QStringLiteral(":/murvo/words/function-words.txt"));
    return FunctionWords(list.open(QIODevice::ReadOnly) ? list.readAll() : QByteArray());
}

} // namespace murvo::service
