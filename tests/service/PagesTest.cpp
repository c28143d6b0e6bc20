// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

#include <QRegularExpression>
#include <QSet>
#include <QUrl>

namespace murvo::service::test {

namespace {

class PagesTest : public ServiceFixture {
  protected:
    /// Everything that a page loads, itself included, followed through scripts and styles.
    void follow(const QString &path, const QString &expectedType) {
        const QString file = path.section(u'?', 0, 0);
        if (_seen.contains(file))
            return;
        _seen.insert(file);
        const Reply reply = get(path);
        ASSERT_EQ(reply.status, 200) << path.toStdString();
        ASSERT_TRUE(QString::fromStdString(reply.header("Content-Type")).startsWith(expectedType))
            << path.toStdString();
        if (path.contains(QLatin1String("/lib/")))
            return;
        static const QRegularExpression reference(
            QStringLiteral("(?:<script[^>]*src=|<link[^>]*href=|from |url\\()[\"']([^\"']+)[\"']"));
        for (const auto &match : reference.globalMatch(QString::fromUtf8(reply.body))) {
            const QUrl target = QUrl(service->baseUrl() + file).resolved(QUrl(match.captured(1)));
            follow(target.toString().mid(service->baseUrl().size()), typeOf(target.path()));
        }
    }

    [[nodiscard]] static QString typeOf(const QString &path) {
        const QString extension = path.section(u'.', -1);
        return extension == QLatin1String("css")   ? QStringLiteral("text/css")
               : extension == QLatin1String("svg") ? QStringLiteral("image/svg+xml")
                                                   : QStringLiteral("text/javascript");
    }

    QSet<QString> _seen;
};

TEST_F(PagesTest, EveryFileThatAPageNamesIsServedWithItsType) {
    for (const char *page : {"Player/Home", "Player/Play?videoId=1", "Account/Register"})
        follow(QLatin1String(page), QStringLiteral("text/html"));
    EXPECT_TRUE(_seen.contains(QStringLiteral("Web/lib/jquery.min.js")));
    EXPECT_TRUE(_seen.contains(QStringLiteral("Web/play/film/clock.mjs")));
    EXPECT_TRUE(_seen.contains(QStringLiteral("Web/shared/flags/fra.svg")));
}

TEST_F(PagesTest, NoPageHasAScriptOrStyleThatTheSecurityPolicyWouldStop) {
    static const QRegularExpression inlineCode(
        QStringLiteral("<script(?![^>]*src=)|<style|\\sstyle=|\\son[a-z]+=|javascript:"));
    for (const char *page : {"Player/Home", "Player/Play", "Account/Register"})
        EXPECT_FALSE(inlineCode.match(QString::fromUtf8(get(QLatin1String(page)).body)).hasMatch()) << page;
}

} // namespace

} // namespace murvo::service::test
