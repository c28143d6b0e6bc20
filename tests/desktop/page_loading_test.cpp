// SPDX-License-Identifier: GPL-3.0-or-later
// How the real pages load when their files come late or not at all.

#include "app/ViewControllers/WebViewController.h"
#include "support/DesktopEnvironment.h"
#include "support/StubService.h"
#include "support/Wait.h"

#include <QDirIterator>
#include <QFile>

#include <gtest/gtest.h>

#include <algorithm>

namespace murvo::test {

using namespace std::chrono_literals;

/// The real pages from a service whose replies can fail.
class PageLoading : public testing::Test {
  protected:
    /// Answers with the page's own file, from the request after so many failures on.
    void serve(const QByteArray &path, const QString &file, const QByteArray &type, int failures = 0) {
        QFile resource(QStringLiteral(":/murvo/web/") + file);
        ASSERT_TRUE(resource.open(QIODevice::ReadOnly)) << file.toStdString();
        stub.on(path, [=, this, bytes = resource.readAll()](const RecordedRequest &) {
            const bool isFailing = stub.requestsTo(path).size() <= failures;
            return StubReply{.status = isFailing ? 503 : 200, .contentType = type, .body = bytes};
        });
    }

    void serveAll() {
        QDirIterator files(QStringLiteral(":/murvo/web"), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString file = files.next().section(u'/', 3);
            const QByteArray type = file.endsWith(QLatin1String("js"))    ? "text/javascript"
                                    : file.endsWith(QLatin1String("css")) ? "text/css"
                                                                          : "image/svg+xml";
            ASSERT_NO_FATAL_FAILURE(serve("Web/" + file.toUtf8(), file, type));
        }
        serve("Player/Play", QStringLiteral("play/play.html"), "text/html");
        serve("Player/Home", QStringLiteral("home/home.html"), "text/html");
    }

    StubService stub;
};

TEST_F(PageLoading, IsTriedOnceMoreWhenAScriptOrStyleDoesNotArrive) {
    struct Case {
        QByteArray page;
        QString lacking;
        QByteArray type;
        int failures;
    };
    for (const Case &each : {Case{"Player/Play", QStringLiteral("play/play.mjs"), "text/javascript", 1},
                             Case{"Player/Play", QStringLiteral("play/film/clock.mjs"), "text/javascript", 1},
                             Case{"Player/Play", QStringLiteral("lib/jquery.min.js"), "text/javascript", 1},
                             Case{"Player/Home", QStringLiteral("home/home.css"), "text/css", 1},
                             Case{"Player/Home", QStringLiteral("home/home.mjs"), "text/javascript", 99}}) {
        SCOPED_TRACE(each.lacking.toStdString());
        ASSERT_NO_FATAL_FAILURE(serveAll());
        ASSERT_NO_FATAL_FAILURE(
            serve("Web/" + each.lacking.toUtf8(), each.lacking, each.type, each.failures));
        stub.forgetRequests();
        WebViewController web(DesktopEnvironment::profile());
        web.loadUrl(stub.baseUrl() + QString::fromUtf8(each.page));
        ASSERT_TRUE(waitUntil([&] { return stub.requestsTo("Web/" + each.lacking.toUtf8()).size() == 2; }));
        const auto isAlive = [this] { // its module asks the service for what it shows
            const auto &all = stub.requests();
            return std::any_of(all.cbegin(), all.cend(),
                               [](const auto &one) { return one.target.startsWith("/Api/"); });
        };
        if (each.failures == 1)
            EXPECT_TRUE(waitUntil(isAlive));
        else
            letPass(500ms); // for a third try, which must not come
        EXPECT_EQ(stub.requestsTo(each.page).size(), 2);
    }
}

} // namespace murvo::test
