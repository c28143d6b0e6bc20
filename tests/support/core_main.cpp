// SPDX-License-Identifier: GPL-3.0-or-later
// main() of tests that need Qt's event loop but no display.

#include <QCoreApplication>
#include <QStandardPaths>

#include <gtest/gtest.h>

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
