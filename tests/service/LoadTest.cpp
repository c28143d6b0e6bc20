// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

namespace {

class LoadTest : public ServiceFixture {
  protected:
    /// One page of its own that speaks and writes again and again, until the clicks have ended.
    void speakAndWrite(int page) {
        httplib::Client client = this->client();
        for (int i = 0; !haveClicksEnded; ++i) {
            const std::string word = "page" + std::string(1, static_cast<char>('a' + page)) + "word" +
                                     std::string(static_cast<size_t>(i % 40), 'x');
            const auto sound = client.Get(tokenPath() + "Api/Speech/Sound?text=" + word);
            const auto kept = client.Put(tokenPath() + "Api/Words/Word",
                                         R"({"lemma":")" + word + R"(","status":"new"})", "text/plain");
            const bool isGood = sound && sound->status == 200 && kept && kept->status == 200;
            ++(isGood ? good : failed);
        }
    }

    std::atomic<bool> haveClicksEnded = false;
    std::atomic<int> good = 0;
    std::atomic<int> failed = 0;
};

TEST_F(LoadTest, AThousandClicksAreAnsweredWhileEightPagesSpeakAndWrite) {
    (void)put(u"Api/Settings"_s, {{u"nativeLanguage"_s, u"deu"_s}});
    const QStringList words =
        u"child run house given children better went strange window night"_s.split(u' ');
    std::vector<std::thread> pages;
    for (int page = 0; page < 8; ++page)
        pages.emplace_back([this, page] { speakAndWrite(page); });
    std::vector<double> milliseconds;
    int answered = 0;
    for (int i = 0; i < 1000; ++i) {
        QElapsedTimer clock;
        clock.start();
        const Reply reply = get(u"Api/Dictionary/Word?text="_s + words[i % words.size()]);
        milliseconds.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);
        answered += reply.status == 200 && !reply.json()["headwords"_L1].toArray().isEmpty() ? 1 : 0;
    }
    haveClicksEnded = true;
    for (std::thread &page : pages)
        page.join();
    EXPECT_EQ(answered, 1000);
    EXPECT_EQ(failed, 0);
    EXPECT_GT(good, 0);
    std::sort(milliseconds.begin(), milliseconds.end());
    std::printf("  answered after %.1f ms (median), %.1f ms (99 of 100); spoken and written %d times\n",
                milliseconds[500], milliseconds[990], good.load());
}

} // namespace

} // namespace murvo::service::test
