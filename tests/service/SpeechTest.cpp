// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

#include <QJsonArray>
#include <QUrl>
#include <QtEndian>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <thread>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

namespace {

constexpr qsizetype headerBytes = 44;

/// What a sound is, as its header and its samples tell.
struct Sound {
    double seconds = 0;
    int loudest = 0;
};

Sound soundOf(const Reply &reply) {
    const QByteArray &file = reply.body;
    if (reply.status != 200 || file.size() < headerBytes || !file.startsWith("RIFF") ||
        file.mid(8, 8) != "WAVEfmt ")
        return {};
    const auto number = [&file](qsizetype at) { return qFromLittleEndian<quint32>(file.constData() + at); };
    EXPECT_EQ(number(4), file.size() - 8);
    EXPECT_EQ(number(40), file.size() - headerBytes);
    Sound sound;
    sound.seconds = static_cast<double>(number(40)) / number(28);
    for (qsizetype at = headerBytes; at + 1 < file.size(); at += 2)
        sound.loudest =
            std::max(sound.loudest, std::abs(int{qFromLittleEndian<qint16>(file.constData() + at)}));
    return sound;
}

QString encoded(const QString &text) {
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

class SpeechTest : public ServiceFixture {
  protected:
    [[nodiscard]] Reply say(const QString &text, const QString &more = {}) {
        return get(u"Api/Speech/Sound?text="_s + encoded(text) + more);
    }
    [[nodiscard]] QJsonObject pronounce(const QString &text, const QString &more = {}) {
        return get(u"Api/Speech/Pronunciation?text="_s + encoded(text) + more).json();
    }
};

TEST_F(SpeechTest, AWordAndALineAreHeardAndTheSlowPaceIsReallySlow) {
    for (const QString &text :
         {u"children"_s, u"give up"_s, u"I was going to tell you, but you never asked me about it."_s}) {
        const Reply reply = say(text);
        EXPECT_EQ(reply.header("Content-Type"), "audio/wav");
        const Sound normal = soundOf(reply);
        const Sound slow = soundOf(say(text, u"&speed=slow"_s));
        EXPECT_GT(normal.loudest, 5000) << text.toStdString();
        EXPECT_GT(normal.seconds, 0.3);
        EXPECT_LT(normal.seconds, 5);
        EXPECT_GT(slow.seconds, 1.4 * normal.seconds) << text.toStdString();
    }
}

TEST_F(SpeechTest, PronunciationDiffersByAccentAndLanguage) {
    EXPECT_EQ(pronounce(u"children went"_s)["ipa"_L1].toString(), u"ˈtʃɪldɹən ˈwɛnt"_s);
    EXPECT_EQ(pronounce(u"water"_s)["ipa"_L1].toString(), u"ˈwɔːɾɚ"_s);
    EXPECT_EQ(pronounce(u"water"_s, u"&accent=gb"_s)["ipa"_L1].toString(), u"ˈwɔːtə"_s);
    EXPECT_EQ(pronounce(u"bonjour"_s, u"&language=fra"_s)["ipa"_L1].toString(), u"bɔ̃ʒˈuʁ"_s);
    EXPECT_EQ(pronounce(u"Yes!\nDid they?"_s)["ipa"_L1].toString(), u"ˈjɛs ˈdɪd ðeɪ"_s)
        << "all sentences of two lines";
}

TEST_F(SpeechTest, EveryLanguageThatIsOfferedHasAVoice) {
    const QJsonObject offered = get(u"Api/Settings/Languages"_s).json();
    for (const QJsonValue each : offered["languages"_L1].toArray()) {
        QString name = each["nativeName"_L1].toString();
        if (each["code"_L1] == u"jpn"_s) {
            EXPECT_EQ(say(name, u"&language=jpn"_s).errorCode(), u"cannotSpeak"_s);
            name = u"にほんご"_s;
        }
        if (each["code"_L1] == u"zho"_s) {
            EXPECT_EQ(say(name, u"&language=zho"_s).errorCode(), u"cannotSpeak"_s);
            continue;
        }
        EXPECT_GT(soundOf(say(name, u"&language="_s + each["code"_L1].toString())).loudest, 1000)
            << name.toStdString();
    }
}

TEST_F(SpeechTest, ThePlayerCanFetchTheAddressesByThemselves) {
    const QString hard = u"50% of \"rock & roll\" + C#, naïve?"_s;
    const QJsonObject told = pronounce(hard);
    // The page hands the address over encoded as a whole, the player decodes it once.
    const QString handedOver = QString::fromLatin1(QUrl::toPercentEncoding(told["soundUrl"_L1].toString()));
    const QUrl url(QUrl::fromPercentEncoding(handedOver.toUtf8()));
    const auto fetch = [this](const QUrl &address) {
        const QByteArray target = address.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority);
        return replyOf(client().Get(target.toStdString()));
    };
    const Sound sound = soundOf(fetch(url));
    EXPECT_NEAR(sound.seconds, soundOf(say(hard)).seconds, 0.1) << "nothing of the text was lost";
    EXPECT_GT(soundOf(fetch(QUrl(told["slowSoundUrl"_L1].toString()))).seconds, 1.4 * sound.seconds);
    EXPECT_FALSE(url.path().startsWith(QString::fromStdString(tokenPath())))
        << "the player writes it into its log";
    EXPECT_EQ(fetch(QUrl(url.toString().replace("Sound"_L1, "Pronunciation"_L1))).status, 404);
}

TEST_F(SpeechTest, WhatCannotBeSpokenIsRefusedAndOddTextsAreSurvived) {
    const auto codeOf = [this](const QString &query) {
        return get(u"Api/Speech/Sound?"_s + query).errorCode();
    };
    for (const char *bad : {"", "text=", "text=%20%0A", "text=...", "text=%E2%99%AA", "text=%ff",
                            "text=a%00b", "text=a%07b", "text=a%C2%9Bb"})
        EXPECT_EQ(codeOf(QLatin1String(bad)), u"badText"_s) << bad;
    EXPECT_EQ(codeOf(u"text="_s + QString(301, u'a')), u"textTooLong"_s);
    EXPECT_EQ(codeOf(u"text=a&speed=fast"_s), u"badParameter"_s);
    EXPECT_EQ(codeOf(u"text=a&accent=fr"_s), u"badParameter"_s);
    for (const char *language : {"xx", "en", "qqq", "../en", ""})
        EXPECT_EQ(codeOf(u"text=a&language="_s + QLatin1String(language)), u"badParameter"_s) << language;
    for (const QString &odd :
         {QString(300, u'a'), QString(100, u'7'), u"<speak><break time='9s'/>x"_s, u"[[h@'loU]] x"_s,
          u"你好 привет שלום"_s, u"a"_s + QString(250, QChar(0x301)), QString::fromUcs4(U"😀 x", 3)})
        EXPECT_GT(soundOf(say(odd)).seconds, 0.1) << odd.toStdString();
    EXPECT_GT(soundOf(get(u"Api/Speech/Sound?text=%ffyes%fe%C3"_s)).seconds, 0.1);
}

TEST_F(SpeechTest, AFloodIsTurnedAwayInPartAndTwoServicesSpeakAtOnce) {
    const QTemporaryDir otherFolder;
    QString error;
    const auto other = EmbeddedService::start(otherFolder.path(), error);
    ASSERT_TRUE(other) << error.toStdString();
    const QString path = u"Api/Speech/Sound?speed=slow&text="_s + encoded(u"well "_s.repeated(59));
    std::atomic<int> spoken = 0;
    std::atomic<int> refused = 0;
    std::vector<std::thread> clients;
    clients.reserve(24);
    for (int i = 0; i < 24; ++i)
        clients.emplace_back([&, i] {
            const QUrl base(i % 2 == 0 ? service->baseUrl() : other->baseUrl());
            for (int repeated = 0; repeated < 3; ++repeated) {
                httplib::Client client("127.0.0.1", base.port());
                client.set_read_timeout(60);
                const Reply reply = replyOf(client.Get((base.path() + path).toStdString()));
                spoken += soundOf(reply).seconds > 10 ? 1 : 0;
                refused += reply.status == 503 && reply.errorCode() == "cannotSpeak"_L1 ? 1 : 0;
            }
        });
    for (std::thread &client : clients)
        client.join();
    EXPECT_EQ(spoken + refused, 72);
    EXPECT_GE(spoken, 9) << "what waits is spoken";
}

TEST_F(SpeechTest, AServiceThatStopsDoesNotFinishSpeaking) {
    const QUrl base(service->baseUrl());
    const QString path =
        base.path() + u"Api/Speech/Sound?speed=slow&text="_s + encoded(u"well "_s.repeated(59));
    std::atomic<int> answered = 0;
    std::vector<std::thread> clients;
    clients.reserve(8);
    for (int i = 0; i < 8; ++i)
        clients.emplace_back([&] {
            for (;;) { // until the service is no more
                httplib::Client client("127.0.0.1", base.port());
                const Reply reply = replyOf(client.Get(path.toStdString()));
                if (reply.status == 0)
                    return;
                EXPECT_TRUE(reply.status == 200 || reply.status == 503) << reply.status;
                ++answered;
            }
        });
    while (answered == 0)
        std::this_thread::yield();
    service.reset();
    for (std::thread &client : clients)
        client.join();
    restart();
    EXPECT_GT(soundOf(say(u"again"_s)).loudest, 5000);
}

} // namespace

} // namespace murvo::service::test
