// SPDX-License-Identifier: GPL-3.0-or-later
// main() of the desktop tests: what the player's own main() prepares, then the tests.

#include "app/Media/VLCInstance.h"
#include "app/Platform/Log.h"
#include "app/Platform/PageScheme.h"
#include "support/DesktopEnvironment.h"

#include <QApplication>
#include <QDir>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QWebEngineProfile>

#include <gtest/gtest.h>

#include <unistd.h>

namespace murvo::test::DesktopEnvironment {

namespace {
QWebEngineProfile *sharedProfile = nullptr;
const VLCInstance *sharedLibrary = nullptr;
} // namespace

QWebEngineProfile &profile() {
    return *sharedProfile;
}
const VLCInstance &vlc() {
    return *sharedLibrary;
}

} // namespace murvo::test::DesktopEnvironment

int main(int argc, char **argv) {
    using namespace murvo;
    testing::InitGoogleTest(&argc, argv);
    installLogFormat();
    qputenv("QT_QPA_PLATFORM", "xcb");
    if (::geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    QStandardPaths::setTestModeEnabled(true);
    // What lies in the home of whoever tests is none of the pages' business.
    const QTemporaryDir home;
    QDir(home.path()).mkdir(QStringLiteral("Downloads"));
    qputenv("HOME", home.path().toUtf8());
    PageScheme::registerScheme();
    QApplication::setOrganizationName(QStringLiteral("Murvo"));
    QApplication::setApplicationName(QStringLiteral("Murvo"));
    QApplication::setQuitOnLastWindowClosed(false);
    const QApplication application(argc, argv);
    const VLCInstance library;
    QWebEngineProfile webProfile;
    PageScheme::install(webProfile);
    test::DesktopEnvironment::sharedProfile = &webProfile;
    test::DesktopEnvironment::sharedLibrary = &library;
    return RUN_ALL_TESTS();
}
