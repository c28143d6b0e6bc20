// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Platform/SingleInstance.h"
#include "support/Wait.h"

#include <QDataStream>
#include <QFile>
#include <QLocalSocket>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <future>

namespace murvo {

using namespace std::chrono_literals;
using Claim = SingleInstance::Claim;

class OneInstance : public testing::Test {
  protected:
    std::unique_ptr<SingleInstance> make() {
        return std::make_unique<SingleInstance>(_folder.path(), QStringLiteral("name"));
    }
    std::unique_ptr<SingleInstance> makeFirst() {
        auto first = make();
        EXPECT_EQ(first->claim({}, 0ms), Claim::First);
        QObject::connect(first.get(), &SingleInstance::received, first.get(),
                         [this](const QByteArray &message) { received.append(message); });
        return first;
    }
    /// On a thread of its own, as a claim blocks.
    std::future<Claim> claimLater(const QByteArray &message, std::chrono::milliseconds limit = 10s) {
        return std::async(std::launch::async,
                          [this, message, limit] { return make()->claim(message, limit); });
    }
    static Claim outcome(std::future<Claim> &claim) {
        EXPECT_TRUE(test::waitUntil([&] { return claim.wait_for(0ms) == std::future_status::ready; }));
        return claim.get();
    }
    [[nodiscard]] QString socketPath() const { return _folder.filePath(QStringLiteral("name.socket")); }

    QList<QByteArray> received;

  private:
    QTemporaryDir _folder;
};

TEST_F(OneInstance, TakesTheMessagesOfAllLaterOnesEvenOfThoseThatCameBeforeItListened) {
    const auto first = makeFirst();
    const QByteArray film = QStringLiteral("/films/Été \n\"1\".mkv").toUtf8();
    auto early = claimLater(film);
    EXPECT_EQ(early.wait_for(200ms), std::future_status::timeout) << "nobody listens yet";
    first->listen();
    EXPECT_EQ(outcome(early), Claim::HandedOver);
    auto withoutFilm = claimLater({});
    EXPECT_EQ(outcome(withoutFilm), Claim::HandedOver);
    EXPECT_EQ(received, (QList<QByteArray>{film, {}}));
    EXPECT_EQ(QFile::permissions(socketPath()) &
                  (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther),
              QFile::Permissions());
}

TEST_F(OneInstance, LeavesTheNameToTheNextWhenItEndsOrDoesNotAnswer) {
    auto first = makeFirst();
    auto impatient = claimLater("film", 100ms);
    EXPECT_EQ(outcome(impatient), Claim::Unanswered);
    auto patient = claimLater("film");
    EXPECT_EQ(patient.wait_for(200ms), std::future_status::timeout);
    first.reset(); // while the other waits
    EXPECT_EQ(outcome(patient), Claim::First);

    QFile left(socketPath()); // by one that crashed: a file nobody listens at
    ASSERT_TRUE(left.open(QIODevice::WriteOnly));
    first = makeFirst();
    first->listen();
    auto later = claimLater("film");
    EXPECT_EQ(outcome(later), Claim::HandedOver);
    EXPECT_EQ(received, QList<QByteArray>{"film"});
}

TEST_F(OneInstance, TheLaterStartedWinsAndOneThatIsNotGreetedKeepsItsMessage) {
    auto first = makeFirst();
    const auto send = [this](quint64 start, const QByteArray &message) {
        QLocalSocket sender;
        sender.connectToServer(socketPath());
        EXPECT_TRUE(test::waitUntil([&] { return sender.bytesAvailable() == 1; })) << "the greeting";
        QDataStream stream(&sender);
        stream.setVersion(QDataStream::Qt_6_4);
        stream << start << message;
        EXPECT_TRUE(test::waitUntil([&] { return sender.bytesAvailable() == 2; }));
    };
    first->listen();
    auto unheard = std::async(std::launch::deferred, [this] { return make()->claim("unheard", 100ms); });
    EXPECT_EQ(unheard.get(), Claim::Unanswered) << "this thread does not take it meanwhile";
    test::letPass(100ms);
    const quint64 later = ~quint64{0};
    send(later, "later");
    send(later - 1, "earlier, but slower");
    EXPECT_EQ(received, (QList<QByteArray>{"later", {}}));
}

TEST_F(OneInstance, DropsASenderThatSaysTooMuchAndGoesOn) {
    const auto first = makeFirst();
    first->listen();
    QLocalSocket endless;
    endless.connectToServer(socketPath());
    ASSERT_TRUE(endless.waitForConnected());
    endless.write(QByteArray(1024 * 1024, '\x01'));
    EXPECT_TRUE(test::waitUntil([&] { return endless.state() == QLocalSocket::UnconnectedState; }));
    auto later = claimLater("film");
    EXPECT_EQ(outcome(later), Claim::HandedOver);
    EXPECT_EQ(received, QList<QByteArray>{"film"});
}

TEST_F(OneInstance, IsTheFirstWhereThereIsNoFolderOfTheUsers) {
    for (int i = 0; i < 2; ++i) {
        SingleInstance homeless(QString(), QStringLiteral("name"));
        EXPECT_EQ(homeless.claim("film", 0ms), Claim::First);
        homeless.listen();
    }
    EXPECT_FALSE(QFile::exists(QStringLiteral("name.lock")));
}

} // namespace murvo
