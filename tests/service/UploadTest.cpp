// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

#include <QJsonArray>

#include <zlib.h>

namespace murvo::service::test {

namespace {

QByteArray gzipped(const QByteArray &plain) {
    z_stream stream{};
    deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
    QByteArray input = plain;
    QByteArray packed(static_cast<qsizetype>(deflateBound(&stream, static_cast<uLong>(plain.size()))) + 64,
                      '\0');
    stream.next_in = reinterpret_cast<Bytef *>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = reinterpret_cast<Bytef *>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.truncate(static_cast<qsizetype>(stream.total_out));
    deflateEnd(&stream);
    return packed;
}

/// A film with an English and a French file beside it, looked up but not uploaded: subtitles 1 and 2.
class UploadTest : public ServiceFixture {
  protected:
    void SetUp() override {
        const QString film = writeFile(QStringLiteral("Film.mkv"), "film");
        writeFile(QStringLiteral("Film.en.srt"), srt("Hello"));
        writeFile(QStringLiteral("Film.fr.srt"), srt("Bonjour"));
        const QJsonArray offers = lookUp(film).json().value(QLatin1String("subsToDownload")).toArray();
        ASSERT_EQ(offers.size(), 2);
        english = offers[0][QLatin1String("subtitleId")].toInt();
        french = offers[1][QLatin1String("subtitleId")].toInt();
    }

    [[nodiscard]] Reply uploadBytes(const QByteArray &body, const QByteArray &type) {
        return post(QStringLiteral("Api/Subtitles/UploadGzippedFiles"), body, type);
    }

    [[nodiscard]] static int stored(const Reply &reply) {
        return reply.json().value(QLatin1String("stored")).toInt(-1);
    }

    [[nodiscard]] static QString refusal(const Reply &reply) {
        return reply.json().value(QLatin1String("refused")).toArray()[0][QLatin1String("code")].toString();
    }

    [[nodiscard]] QString firstLine(int subtitleId) {
        const QJsonArray cues = get(QStringLiteral("Api/Subtitles/Cues?subtitleId=%1").arg(subtitleId))
                                    .json()
                                    .value(QLatin1String("cues"))
                                    .toArray();
        return cues[0][QLatin1String("lines")][0].toString();
    }

    int english = 0;
    int french = 0;
};

TEST_F(UploadTest, StoresPlainAndGzippedParts) {
    EXPECT_EQ(stored(upload({{english, srt("Hello")}, {french, gzipped(srt("Bonjour"))}})), 2);
    EXPECT_EQ(firstLine(english), QStringLiteral("Hello"));
    EXPECT_EQ(firstLine(french), QStringLiteral("Bonjour"));
}

TEST_F(UploadTest, TakesTheBodyWithoutAnyPart) {
    const Reply reply = upload({});
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(stored(reply), 0);
    EXPECT_EQ(get(QStringLiteral("Api/Subtitles/Cues?subtitleId=%1").arg(english)).errorCode(),
              QStringLiteral("notStored"));
}

TEST_F(UploadTest, ABodyCutAnywhereIsAnsweredAndNeverSpoilsAnotherPart) {
    const QByteArray boundary(64, 'b');
    const QByteArray body = uploadBody(boundary, {{english, srt("Hello")}, {french, srt("Bonjour")}});
    for (qsizetype length = 0; length <= body.size(); ++length) {
        const Reply reply = uploadBytes(body.left(length), "multipart/form-data; boundary=" + boundary);
        ASSERT_EQ(reply.status, 200) << length;
        ASSERT_LE(stored(reply), 2) << length;
    }
    EXPECT_EQ(firstLine(english), QStringLiteral("Hello"));
    EXPECT_EQ(firstLine(french), QStringLiteral("Bonjour"));
}

TEST_F(UploadTest, ReadsEveryHarmlessFormOfTheBody) {
    const QByteArray content = srt("Hello --b and \r\n-- more");
    const QByteArray id = QByteArray::number(english);
    const QByteArray head = "Content-Disposition: form-data; ";
    for (const QByteArray &body :
         {"--b\r\n" + head + "name=\"" + id + "\"; filename=\"a\"\r\n\r\n" + content + "\r\n--b--\r\n",
          "--b\r\n" + head + "filename=\"a name=9\"; name=\"" + id + "\"\r\n\r\n" + content + "\r\n--b--",
          "--b\r\n" + head + "name=" + id + "\r\nContent-Type: text/plain\r\n\r\n" + content + "\r\n--b--",
          "\r\npreamble\r\n--b\r\nX-Other: 1\r\ncontent-disposition: form-data; name=\"" + id + "\"\r\n\r\n" +
              content}) {
        (void)upload({{english, srt("Before")}});
        EXPECT_EQ(stored(uploadBytes(body, "multipart/form-data; charset=utf-8; boundary=\"b\"")), 1)
            << body.toStdString();
        EXPECT_TRUE(firstLine(english).startsWith(QLatin1String("Hello --b"))) << body.toStdString();
    }
}

TEST_F(UploadTest, RefusesPackedFilesThatAreCutOrBombs) {
    const QByteArray bomb = gzipped(QByteArray(50 * 1024 * 1024, '\0'));
    ASSERT_LT(bomb.size(), 100'000);
    EXPECT_EQ(refusal(upload({{english, bomb}})), QStringLiteral("badGzip"));
    const QByteArray packed = gzipped(srt("Hello"));
    EXPECT_EQ(refusal(upload({{english, packed.left(packed.size() / 2)}})), QStringLiteral("badGzip"));
    EXPECT_EQ(uploadBytes("x", "text/plain").errorCode(), QStringLiteral("notMultipart"));
    EXPECT_EQ(stored(uploadBytes(QByteArray(1000, '\0'), "multipart/form-data; boundary=b")), 0);
}

TEST_F(UploadTest, AHeaderOfTheServicesOwnCannotBeSmuggledIn) {
    const auto reply = client().Post(tokenPath() + "Api/Subtitles/UploadGzippedFiles",
                                     {{"X-Murvo-Content-Type", "multipart/form-data; boundary=b"}},
                                     "--b\r\n\r\n--b--", "text/plain");
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->status, 400);
}

} // namespace

} // namespace murvo::service::test
