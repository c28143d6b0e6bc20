// SPDX-License-Identifier: GPL-3.0-or-later
// The documentation's table of what is checked from outside names the tests of this program, each one.

#include "conformance/Session.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

namespace murvo::test {

namespace {

/// Without what parameters add to the names.
QSet<QString> testsOfThisProgram() {
    QSet<QString> names;
    const testing::UnitTest &program = *testing::UnitTest::GetInstance();
    for (int i = 0; i < program.total_test_suite_count(); ++i) {
        const testing::TestSuite &suite = *program.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j)
            names.insert(QString::fromLatin1(suite.name()).section(u'/', -1) + u'.' +
                         QString::fromLatin1(suite.GetTestInfo(j)->name()).section(u'/', 0, 0));
    }
    return names;
}

} // namespace

TEST(Table, NamesEveryTestAndHasNoEmptyCell) {
    QFile file(QStringLiteral(MURVO_CONFORMANCE_TABLE));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QSet<QString> tests = testsOfThisProgram();
    QSet<QString> named;
    const QStringList rows =
        QString::fromUtf8(file.readAll()).split(u'\n').filter(QRegularExpression(QStringLiteral("^\\|")));
    for (const QString &row : rows.mid(2)) {
        const QStringList cells = row.split(u'|').mid(1, 4);
        EXPECT_EQ(row.count(u'|'), 5) << row.toStdString();
        for (const QString &cell : cells)
            EXPECT_FALSE(cell.trimmed().isEmpty()) << row.toStdString();
        auto names = QRegularExpression(QStringLiteral("`(\\w+\\.\\w+)`")).globalMatch(cells.last());
        EXPECT_TRUE(names.hasNext()) << row.toStdString();
        while (names.hasNext()) {
            named.insert(names.next().captured(1));
        }
    }
    EXPECT_EQ((named - tests).values().join(u' '), QString()) << "named, but no test";
    EXPECT_EQ((tests - named).values().join(u' '), QString()) << "tests that the table does not name";
}

} // namespace murvo::test
