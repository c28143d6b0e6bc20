// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/MultipartBody.h"
#include "app/Classes/SubtitleLookup.h"

#include <QSet>

#include <gtest/gtest.h>

namespace murvo {

TEST(LookupReply, ReadsNumbersAndWrongTypesLeniently) {
    const auto videoId = [](const char *value) {
        return parseLookupReply(QByteArray(R"({"videoId":)") + value + '}').videoId;
    };
    EXPECT_EQ(videoId("12.9"), 12);
    EXPECT_EQ(videoId("{}"), 0);
    EXPECT_EQ(videoId("1e300"), 0);
    const LookupReply reply = parseLookupReply(
        R"({"subsToDownload":[null,"x",[],{"downloadUrl":7,"mustBeDownloaded":true},
            {"downloadUrl":"http://h","mustBeDownloaded":true,"subtitleId":4294967297}]})");
    ASSERT_EQ(reply.subtitles.size(), 1);
    EXPECT_EQ(reply.subtitles[0].subtitleId, 1) << "the low 32 bits count";
    EXPECT_TRUE(reply.subtitles[0].fileName.isNull());
}

TEST(MultipartBody, WritesAMissingNameAndAnyBytes) {
    const QByteArray bytes("\0\r\n", 3);
    EXPECT_EQ(multipartBody("B", {{.id = -1, .fileName = QString(), .data = bytes}}),
              "--B\r\nContent-Disposition: form-data; name=\"-1\"; filename=\"(null)\"\r\n\r\n" + bytes +
                  "\r\n--B--\r\n");
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
