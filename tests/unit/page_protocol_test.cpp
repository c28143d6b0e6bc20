// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/AudioTrackText.h"
#include "app/Classes/LenientNumber.h"
#include "app/Classes/PageRequest.h"
#include "app/Classes/PageScripts.h"

#include <gtest/gtest.h>

namespace murvo {

namespace {

PageRequest parsed(const char *url) {
    return PageRequest::fromUrl(QUrl(QString::fromLatin1(url))).value();
}

} // namespace

TEST(PageRequest, TakesKindNameAndArgumentsFromTheUrl) {
    const PageRequest seek = parsed("app:///Execute/SeekTo?position=42");
    EXPECT_EQ(seek.kind, PageRequest::Kind::Execute);
    EXPECT_EQ(seek.name, QStringLiteral("SeekTo"));
    EXPECT_EQ(seek.arguments, (PageRequest::Arguments{{QStringLiteral("position"), QStringLiteral("42")}}));

    const PageRequest duration = parsed("app:///Request/Duration?guid=a1&x&y=1=2&guid=b2&u=a%20b%26&e=");
    EXPECT_EQ(duration.kind, PageRequest::Kind::Request);
    EXPECT_EQ(duration.arguments, (PageRequest::Arguments{{QStringLiteral("guid"), QStringLiteral("b2")},
                                                          {QStringLiteral("u"), QStringLiteral("a%20b%26")},
                                                          {QStringLiteral("e"), QString()}}));
}

TEST(PageRequest, KeepsAGuidInBraces) {
    const PageRequest request = parsed("app:///Request/Volume?guid={1B4E-a^b|c`d\\e}");
    EXPECT_EQ(request.arguments.value(QStringLiteral("guid")), QStringLiteral("{1B4E-a^b|c`d\\e}"));
}

TEST(PageRequest, KnowsNothingElse) {
    EXPECT_FALSE(PageRequest::fromUrl(QUrl(QStringLiteral("http://h/Execute/Play"))));
    EXPECT_EQ(parsed("app:///Other/Play").kind, PageRequest::Kind::Unknown);
    EXPECT_EQ(parsed("app:///execute/Play").kind, PageRequest::Kind::Unknown);
    EXPECT_EQ(parsed("app:///").kind, PageRequest::Kind::Unknown);
    EXPECT_EQ(parsed("app:").kind, PageRequest::Kind::Unknown);
    EXPECT_EQ(parsed("app:///Execute").name, QStringLiteral("Execute"))
        << "kind and name are the same component";
    EXPECT_EQ(parsed("app:///Execute/More/Play").name, QStringLiteral("Play"));
    EXPECT_EQ(lastUrlComponent(QUrl(QStringLiteral("http://h/a/PlayerRegister?x=1"))),
              QStringLiteral("PlayerRegister"));
}

TEST(LenientNumber, ReadsWhatLeadsAndNeverFails) {
    EXPECT_EQ(intValue(QStringLiteral(" 42s")), 42);
    EXPECT_EQ(intValue(QStringLiteral("-7.9")), -7);
    EXPECT_EQ(intValue(QStringLiteral("")), 0);
    EXPECT_EQ(intValue(QStringLiteral("x1")), 0);
    EXPECT_EQ(intValue(QStringLiteral("99999999999")), 2147483647);
    EXPECT_EQ(intValue(QStringLiteral("-99999999999999999999999")), -2147483648);
    EXPECT_FLOAT_EQ(floatValue(QStringLiteral("1.25x")), 1.25F);
    EXPECT_FLOAT_EQ(floatValue(QStringLiteral(".5")), 0.5F);
    EXPECT_FLOAT_EQ(floatValue(QStringLiteral("fast")), 0.0F);
    for (const char *yes : {"Yes", "y", "true", "T", "1", "09", "-3", " 5"})
        EXPECT_TRUE(boolValue(QString::fromLatin1(yes))) << yes;
    for (const char *no : {"", "no", "false", "0", "00", "-0", "off", "0y"})
        EXPECT_FALSE(boolValue(QString::fromLatin1(no))) << no;
}

TEST(PageScripts, AreSilentInAPageWithoutJQuery) {
    EXPECT_EQ(PageScripts::timeUpdate(12345),
              QStringLiteral("if(typeof $ != 'undefined'){ $(window).trigger('timeUpdate', 12345); }"));
    EXPECT_EQ(PageScripts::resized(),
              QStringLiteral("if(typeof $ != 'undefined'){ $(window).trigger('nativeApp:resized'); }"));
    EXPECT_EQ(PageScripts::response(QStringLiteral("a1"), QStringLiteral("'f.mkv'")),
              QStringLiteral("if(typeof $ != 'undefined'){ $(window).trigger('response:a1', 'f.mkv'); }"));
    EXPECT_EQ(PageScripts::quoted(QStringLiteral("L'Auberge é\n\\x.mkv")),
              QStringLiteral("'L\\u0027Auberge é\\u000a\\u005cx.mkv'"));
    EXPECT_EQ(PageScripts::response(QString(), QStringLiteral("true")),
              QStringLiteral("if(typeof $ != 'undefined'){ $(window).trigger('response:(null)', true); }"));
}

TEST(AudioTrackText, WritesBareNamesAndACommaAfterEach) {
    EXPECT_EQ(audioTrackText({{1, QStringLiteral("English")}, {2, QStringLiteral("French")}}, 2),
              QStringLiteral("{audioTracks:{'1':English, '2':French, }, audioTrack:2}"));
    EXPECT_EQ(audioTrackText({}, -1), QStringLiteral("{audioTracks:{}, audioTrack:-1}"));
}

} // namespace murvo
