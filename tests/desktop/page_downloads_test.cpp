// SPDX-License-Identifier: GPL-3.0-or-later
// Files that a page of the service gives the user to keep.

#include "app/AppDelegate.h"
#include "app/Classes/MConstants.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/WebViewController.h"
#include "support/DesktopEnvironment.h"
#include "support/SaveChooser.h"
#include "support/StubService.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QApplication>
#include <QColor>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

namespace murvo::test {

using namespace std::chrono_literals;

class PageDownload : public testing::Test {
  protected:
    PageDownload() {
        stub.on(
            "Player/Home",
            StubReply{.body =
                          "<body style='margin:0'><a id='file' href='../File' download style='display:block;"
                          "height:100vh;background:#ccc'>words</a>"});
        serve({.body = content});
        MConstants::setMurvoBaseUrl(stub.baseUrl());
        delegate = std::make_unique<AppDelegate>(DesktopEnvironment::profile(), DesktopEnvironment::vlc());
        delegate->applicationDidFinishLaunching();
        EXPECT_TRUE(waitUntil([this] { return delegate->window().isActiveWindow(); }));
        // A page takes no clicks before its first frame.
        EXPECT_TRUE(waitUntil([this] { return screenColor(middle()) == QColor(0xcc, 0xcc, 0xcc); }))
            << "the page does not show";
        QObject::connect(&_atChooser, &QTimer::timeout, [this] { answerChooser(); });
    }

    void serve(StubReply reply) {
        reply.contentType = "text/csv";
        reply.extraHeaders = {"Content-Disposition: attachment; filename=\"murvo-words.csv\""};
        stub.on("File", reply);
    }
    [[nodiscard]] QString inPage(const char *script) const {
        return delegate->homeWebViewController()->evaluate(QString::fromUtf8(script));
    }
    /// Clicks the page's link; the chooser, which runs the event loop, is answered with that path.
    void clickAndAnswer(const QString &path) {
        click(path);
        EXPECT_TRUE(waitUntil([this] { return chooserCount == 1; }))
            << (QApplication::activeModalWidget() == nullptr ? "no chooser has come"
                                                             : "the chooser does not get the keyboard");
    }
    /// The same, where it is not sure that a chooser comes.
    void click(const QString &path) {
        answer = path;
        chooserCount = 0;
        EXPECT_TRUE(waitUntil([this] { return delegate->window().isActiveWindow(); }));
        _atChooser.start(50ms);
        clickAt(middle());
    }
    [[nodiscard]] QPoint middle() const { return delegate->window().contentScreenRect().center(); }
    void answerChooser() {
        const auto told = answerSaveChooser(answer);
        if (!told)
            return;
        _atChooser.stop();
        ++chooserCount;
        suggested = *told;
    }
    [[nodiscard]] static QByteArray read(const QString &path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    [[nodiscard]] QStringList kept() const {
        return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden);
    }
    [[nodiscard]] static QMessageBox *alert() {
        return qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    }

    const QByteArray content = QByteArray("word,meaning\r\n").repeated(20'000);
    QTemporaryDir folder;
    QString answer;    ///< what is typed into the chooser; empty: it is closed
    QString suggested; ///< by the chooser
    int chooserCount = 0;
    StubService stub;
    std::unique_ptr<AppDelegate> delegate;

  private:
    QTimer _atChooser;
};

TEST_F(PageDownload, GoesWhereTheUserWantsItAndTakesThePlaceOfWhatWasThere) {
    const QString path = folder.filePath(QStringLiteral("mine.csv"));
    clickAndAnswer(path);
    EXPECT_TRUE(waitUntil([&] { return read(path) == content; }));
    EXPECT_EQ(QFileInfo(suggested).fileName(), QStringLiteral("murvo-words.csv"));
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    EXPECT_EQ(QFileInfo(suggested).absolutePath(), QDir(documents).exists() ? documents : QDir::homePath());
    serve({.body = "other"});
    clickAndAnswer(path);
    EXPECT_TRUE(waitUntil([&] { return read(path) == "other"; }));
    clickAndAnswer({});
    letPass(300ms);
    EXPECT_EQ(kept(), QStringList{QStringLiteral("mine.csv")}) << "nothing beside it, and no other";
    EXPECT_EQ(inPage("String(!!document.getElementById('file'))"), QStringLiteral("true"))
        << "the page stays";
}

TEST_F(PageDownload, ThatBreaksOffLeavesWhatWasThereAndIsTold) {
    const QString path = folder.filePath(QStringLiteral("mine.csv"));
    enum class Fault { Short, Reset, Refused };
    for (const Fault fault : {Fault::Short, Fault::Reset, Fault::Refused}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("before");
        file.close();
        StubReply broken{.status = fault == Fault::Refused ? 507 : 200, .body = content};
        broken.declaredLength = fault == Fault::Short ? content.size() + 10 : -1;
        broken.resetAfter = fault == Fault::Reset ? 100'000 : -1;
        serve(broken);
        clickAndAnswer(path);
        ASSERT_TRUE(waitUntil([] { return alert() && alert()->isActiveWindow(); }))
            << static_cast<int>(fault);
        EXPECT_TRUE(alert()->text().contains(QStringLiteral("mine.csv")));
        alert()->accept();
        ASSERT_TRUE(waitUntil([] { return alert() == nullptr; }));
        EXPECT_EQ(read(path), "before");
        EXPECT_EQ(kept(), QStringList{QStringLiteral("mine.csv")});
    }
    serve({.body = content});
    clickAndAnswer(path);
    EXPECT_TRUE(waitUntil([&] { return read(path) == content; })) << "the next one";
}

TEST_F(PageDownload, WithoutAPressOrFromElsewhereIsRefused) {
    std::ignore = inPage("document.getElementById('file').click(); 1");
    EXPECT_TRUE(waitUntil([this] { return stub.requestsTo("File").size() == 1; }));
    letPass(500ms);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "without a press";

    StubService other;
    other.on("File", StubReply{.contentType = "text/csv", .body = "x"});
    const QByteArray script =
        "document.getElementById('file').href = '" + other.baseUrl().toUtf8() + "File'; 1";
    std::ignore = inPage(script.constData());
    click({});
    letPass(1s);
    EXPECT_EQ(chooserCount, 0) << "from elsewhere";
}

} // namespace murvo::test
