// SPDX-License-Identifier: GPL-3.0-or-later
// STAND-IN until the dictionary's own list is here.
#pragma once
#include <QFile>
#include <QHash>
#include <QString>
#include <algorithm>
namespace murvo::service {
inline QHash<QString, int> standInRanks() {
    QHash<QString, int> counts;
    QFile file(QStringLiteral("/usr/share/wordnet/cntlist.rev"));
    if (file.open(QIODevice::ReadOnly)) {
        while (!file.atEnd()) {
            const QList<QByteArray> cells = file.readLine().trimmed().split(' ');
            if (cells.size() == 3)
                counts[QString::fromUtf8(cells[0].left(cells[0].indexOf('%')).replace('_', ' '))] += cells[2].toInt();
        }
    }
    int top = 1'000'000;
    for (const QString &word : QStringLiteral("the be to of and a in that have i it for not on with he as you do at this but his by from they we say her she or an will my one all would there their what so up out if about who get which go me when make can like time no just him know take people into year your good some could them see other than then now look only come its over think also back after use two how our work first well way even new want because any these give day most us").split(u' '))
        counts[word] = top--;
    QList<QPair<int, QString>> sorted;
    for (auto each = counts.begin(); each != counts.end(); ++each) sorted.append({-each.value(), each.key()});
    std::sort(sorted.begin(), sorted.end());
    QHash<QString, int> ranks;
    for (qsizetype i = 0; i < sorted.size(); ++i) ranks[sorted[i].second] = static_cast<int>(i) + 1;
    return ranks;
}
} // namespace murvo::service
