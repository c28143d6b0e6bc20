// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/MultipartBody.h"
#include "app/Classes/SubtitleLookup.h"

#include <QSet>

#include <gtest/gtest.h>

namespace murvo {

TEST(LookupRequest, WritesNameAndLanguageAsTheyStand) {
    EXPECT_EQ(lookupRequestBody({.fileHash = 0xff, .fileSize = 1234567890},
                                QStringLiteral("My Film (2010) a&b=c.mkv"), QStringLiteral("fra")),
              QStringLiteral("fileSize=1234567890&movieHash=ff&fileName=My Film (2010) a&b=c.mkv"
                             "&targetLanguageCode=eng&nativeLanguageCode=fra"));
}

TEST(LookupRequest, KeepsTheFullRangeOfSizesAndWritesAMissingName) {
    EXPECT_EQ(lookupRequestBody({.fileHash = 0, .fileSize = ~quint64{0}}, QString(), QStringLiteral("")),
              QStringLiteral("fileSize=18446744073709551615&movieHash=0&fileName=(null)"
                             "&targetLanguageCode=eng&nativeLanguageCode="));
}

TEST(LookupReply, TakesOnlyUsableEntriesInOrder) {
    const LookupReply reply = parseLookupReply(R"({"videoId": "42", "subsToDownload": [
        {"downloadUrl": "http://h/1", "mustBeDownloaded": true, "subFileName": "a.srt", "subtitleId": 5},
        {"downloadUrl": "", "mustBeDownloaded": true, "subFileName": "b.srt", "subtitleId": 6},
        {"mustBeDownloaded": true, "subFileName": "c.srt", "subtitleId": 7},
        {"downloadUrl": "http://h/4", "mustBeDownloaded": false, "subtitleId": 8},
        {"downloadUrl": "http://h/5", "subtitleId": 9},
        {"downloadUrl": "http://h/6", "mustBeDownloaded": true, "subtitleId": 4294967297}]})");
    EXPECT_EQ(reply.videoId, 42);
    ASSERT_EQ(reply.subtitles.size(), 2);
    EXPECT_EQ(reply.subtitles[0].downloadUrl, QStringLiteral("http://h/1"));
    EXPECT_EQ(reply.subtitles[0].fileName, QStringLiteral("a.srt"));
    EXPECT_EQ(reply.subtitles[0].subtitleId, 5);
    EXPECT_EQ(reply.subtitles[1].subtitleId, 1) << "the low 32 bits count";
    EXPECT_TRUE(reply.subtitles[1].fileName.isNull());
}

TEST(LookupReply, ReadsWrongTypesAsNothing) {
    for (const char *body :
         {"", "no json", "[1,2]", "null", "\"text\"", "{\"videoId\":", "{\"videoId\":null}",
          "{\"videoId\":{},\"subsToDownload\":\"x\"}", "{\"subsToDownload\":[1,null,\"x\",[]]}",
          "{\"videoId\":1e300,\"subsToDownload\":{\"a\":1}}",
          "{\"subsToDownload\":[{\"downloadUrl\":7,\"mustBeDownloaded\":true}]}"}) {
        const LookupReply reply = parseLookupReply(body);
        EXPECT_EQ(reply.videoId, 0) << body;
        EXPECT_TRUE(reply.subtitles.isEmpty()) << body;
    }
    EXPECT_EQ(parseLookupReply("{\"videoId\":-5}").videoId, -5);
    EXPECT_EQ(parseLookupReply("{\"videoId\":12.9}").videoId, 12);
}

TEST(MultipartBody, PutsASeparatorOnlyBetweenParts) {
    const QList<MultipartFile> files = {{.id = 11, .fileName = QStringLiteral("a\"é.srt"), .data = "one\r\n"},
                                        {.id = 12, .fileName = QString(), .data = QByteArray("\0x", 2)}};
    EXPECT_EQ(
        multipartBody("B", files),
        QByteArray("--B\r\n"
                   "Content-Disposition: form-data; name=\"11\"; filename=\"a\"\xc3\xa9.srt\"\r\n\r\none\r\n"
                   "\r\n--B\r\n"
                   "Content-Disposition: form-data; name=\"12\"; filename=\"(null)\"\r\n\r\n") +
            QByteArray("\0x", 2) + "\r\n--B--\r\n");
    EXPECT_EQ(multipartBody("B", {}), "--B\r\n\r\n--B--\r\n");
}

TEST(MultipartBody, DrawsAFreshBoundaryOfLettersAndDigits) {
    QSet<QByteArray> drawn;
    for (int i = 0; i < 50; ++i) {
        const QByteArray boundary = randomBoundary();
        EXPECT_EQ(boundary.size(), 64);
        for (const char c : boundary)
            EXPECT_TRUE((c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')) << c;
        drawn.insert(boundary);
    }
    EXPECT_EQ(drawn.size(), 50);
}

} // namespace murvo
