// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/SubtitleFiles.h"

namespace murvo::service::test {

namespace {

/// Collects odd files; texts are UTF-8.
class OddFiles {
  public:
    void add(const char *name, const QByteArray &bytes, const QList<Cue> &expected, FrameRate filmRate = {}) {
        _files.append({QString::fromLatin1(name), bytes, expected, filmRate});
    }

    QList<SubtitleFile> take() { return std::move(_files); }

  private:
    QList<SubtitleFile> _files;
};

Cue cue(qint64 startMs, qint64 endMs, const char *notation) {
    return cueOf(startMs, endMs, QString::fromUtf8(notation));
}

/// A SubRip file of one cue from the first to the second second.
QByteArray oneLine(const char *text) {
    return QByteArray("1\n00:00:01,000 --> 00:00:02,000\n") + text + "\n\n";
}

void addSubRipTimes(OddFiles &files) {
    const QList<Cue> two{cue(1000, 2000, "One"), cue(3000, 4000, "Two")};
    files.add("srt-points",
              "1\n00:00:01.000 --> 00:00:02.000\nOne\n\n2\n00:00:03.000 --> 00:00:04.000\nTwo\n", two);
    files.add("srt-short-fractions", "1\n00:00:07.5 --> 00:00:08,25\nOne\n\n2\n0:0:9,1234 --> 0:0:10\nTwo\n",
              {cue(7500, 8250, "One"), cue(9123, 10'000, "Two")});
    files.add("srt-no-hours", "1\n00:01,000 --> 00:02,000\nOne\n\n2\n00:03,000 --> 00:04,000\nTwo\n", two);
    files.add("srt-colon-before-ms",
              "1\n00:00:01:000 --> 00:00:02:000\nOne\n\n2\n00:00:03:000 --> 00:00:04:000\nTwo\n", two);
    files.add("srt-no-spaces", "1\n00:00:01,000-->00:00:02,000\nOne\n\n2\n00:00:03,000-->00:00:04,000\nTwo\n",
              two);
    files.add("srt-spaces-in-times",
              "1\n00: 00: 01, 000 -> 00: 00: 02, 000\nOne\n\n2\n00:00:03 ,000 - -> 00:00:04,000\nTwo\n", two);
    files.add("srt-positions",
              "1\n00:00:01,000 --> 00:00:02,000  X1:100 X2:200 Y1:050 Y2:060\nOne\n\n2\n00:00:03,000 --> "
              "00:00:04,000 align:start line:0%\nTwo\n",
              two);
    files.add("srt-text-behind-times",
              "00:00:01,000 --> 00:00:02,000 One\n00:00:03,000 --> 00:00:04,000 Two\n", two);
    files.add("srt-negative",
              "1\n-00:00:05,000 --> -00:00:03,000\nGone\n\n2\n-00:00:00,500 --> 00:00:01,500\nCut\n",
              {cue(0, 1500, "Cut")});
    files.add("srt-late",
              "1\n023:59:59,999 --> 024:00:01,000\nOne\n\n2\n24:00:00,001 --> 24:00:01,000\nDamage\n\n"
              "3\n123:59:59,999 --> 124:00:01,000\nDamage\n",
              {cue(86'399'999, 86'401'000, "One")});
    files.add("srt-endless", "1\n00:00:01,000 --> 99:59:59,999\nLong\n", {cue(1000, 61'000, "Long")});
    files.add("srt-no-end", "1\n00:00:01,000 -->\nOne\n\n2\n00:00:03,000 --> \nTwo\n",
              {cue(1000, 3000, "One"), cue(3000, 6000, "Two")});
    files.add("srt-end-before-start",
              "1\n00:00:01,000 --> 00:00:01,000\nZero\n\n2\n00:00:02,000 --> "
              "00:00:01,000\nBack\n\n3\n00:00:09,000 --> "
              "00:00:08,000\nLast\n",
              {cue(1000, 2000, "Zero"), cue(2000, 5000, "Back"), cue(9000, 12'000, "Last")});
    files.add("srt-from-zero", "1\n00:00:00,000 --> 00:00:00,000\nNow\n", {cue(0, 3000, "Now")});
    files.add("srt-unordered-overlapping",
              "1\n00:00:05,000 --> 00:00:09,000\nSecond\n\n2\n00:00:01,000 --> "
              "00:00:06,000\nFirst\n\n3\n00:00:05,000 "
              "--> 00:00:07,000\nThird\n",
              {cue(1000, 6000, "First"), cue(5000, 9000, "Second"), cue(5000, 7000, "Third")});
    files.add("srt-broken-times",
              "1\n00:00:01,000 --> 00:00:02,000\nOne\n\n2\n00:00:0x,000 --> "
              "00:00:05,000\nLost\n\n3\n20000:00:00,000 --> "
              "20000:00:01,000\nLost\n\n4\n00:00:06,000 --> 00:0o:07,000\nNo end\n",
              {cue(1000, 2000, "One"), cue(6000, 9000, "No end")});
    files.add("srt-impossible-times",
              "1\n99999999999:00:00,000 --> 00:00:02,000\nNever\n\n2\n00:00:01,000 --> 00:00:02,000\nOne\n",
              {cue(1000, 2000, "One")});
}

void addSubRipBlocks(OddFiles &files) {
    const QList<Cue> two{cue(1000, 2000, "One|more"), cue(3000, 4000, "1984")};
    files.add("srt-no-index",
              "00:00:01,000 --> 00:00:02,000\nOne\nmore\n\n00:00:03,000 --> 00:00:04,000\n1984\n", two);
    files.add("srt-no-index-no-blank",
              "00:00:01,000 --> 00:00:02,000\nOne\nmore\n00:00:03,000 --> 00:00:04,000\n1984\n"
              "00:00:05,000 --> 00:00:06,000\nEnd\n",
              two + QList<Cue>{cue(5000, 6000, "End")});
    files.add("srt-some-index",
              "1\n00:00:01,000 --> 00:00:02,000\nOne\nmore\n\n00:00:03,000 --> 00:00:04,000\n1984\n\n3\n"
              "00:00:05,000 --> 00:00:06,000\nEnd\n",
              two + QList<Cue>{cue(5000, 6000, "End")});
    files.add("srt-no-blank-lines",
              "1\n00:00:01,000 --> 00:00:02,000\nOne\nmore\n2\n00:00:03,000 --> 00:00:04,000\n1984\n", two);
    files.add(
        "srt-double-spaced",
        "1\n\n00:00:01,000 --> 00:00:02,000\n\nOne\n\nmore\n\n\n2\n\n00:00:03,000 --> 00:00:04,000\n\n1984\n",
        two);
    files.add("srt-cr",
              "1\r00:00:01,000 --> 00:00:02,000\rOne\rmore\r\r2\r00:00:03,000 --> 00:00:04,000\r1984\r", two);
    files.add("srt-crcrlf",
              "1\r\r\n00:00:01,000 --> 00:00:02,000\r\r\nOne\r\r\nmore\r\r\n\r\r\n2\r\r\n00:00:03,000 --> "
              "00:00:04,000\r\r\n1984\r\r\n",
              two);
    files.add(
        "srt-junk-first",
        "downloaded from somewhere\n\n1\n00:00:01,000 --> 00:00:02,000\nOne\nmore\n\n2\n00:00:03,000 --> "
        "00:00:04,000\n1984",
        two);
    files.add("srt-number-before-text-line", oneLine("3 people came.\n12 left."),
              {cue(1000, 2000, "3 people came.|12 left.")});
    files.add("srt-empty-cues",
              "1\n00:00:01,000 --> 00:00:02,000\n\n2\n00:00:03,000 --> 00:00:04,000\n<b></b>\n \n\n3\n"
              "00:00:05,000 --> 00:00:06,000\nSeen\n",
              {cue(5000, 6000, "Seen")});
    files.add("srt-nuls-at-the-end", oneLine("One") + QByteArray(900, '\0'), {cue(1000, 2000, "One")});
    files.add("srt-nuls-inside",
              oneLine("One") + QByteArray(60, '\0') + "\n\n2\n00:00:03,000 --> 00:00:04,000\nT" +
                  QByteArray(1, '\0') + "wo\n",
              {cue(1000, 2000, "One"), cue(3000, 4000, "T wo")});
    files.add("srt-damaged-utf8",
              oneLine("\xC3\xA9t\xC3\xA9, \xE2\x99\xAA l\xC3\xA0-bas \xC3\xA9t\xC3\xA9 "
                      "\xC3\xA9t\xC3\xA9 \xC3\xA9t\xC3\xA9 "
                      "\xC3\xA9t\xC3\xA9 \xC3\xA9t\xC3\xA9 \xC3\xA9t\xC3\xA9 \xC3\xA9t\xC3\xA9 \xFF!"),
              {cue(1000, 2000, "été, ♪ là-bas été été été été été été été \xEF\xBF\xBD!")});
    files.add("srt-same-twice", oneLine("Same") + oneLine("Same") + oneLine("Other"),
              {cue(1000, 2000, "Same"), cue(1000, 2000, "Other")});
}

void addSubRipText(OddFiles &files) {
    const auto add = [&files](const char *name, const char *text, const char *expected) {
        files.add(name, oneLine(text), {cue(1000, 2000, expected)});
    };
    add("srt-tags",
        "{\\an8}<i>He said</i> <font color=\"#f00\">1 < 2</font> &amp; 3\n{literal} C:\\new \x01\x7f",
        "_He said_ 1 < 2 & 3|{literal} C:\\new");
    add("srt-italics",
        "<I>All of\nit</I>\n{\\i1}once{\\i0} {i}more{/i}\n<em>and</em> <i></i>never closed <i>so",
        "_All of|it_|_once_ _more_|_and_ never closed _so_");
    add("srt-script",
        "<script>alert('1')</script>\n<img src=x onerror=alert(1)> <b onclick=\"go()\">bold</b>",
        "<script>alert('1')</script>|<img src=x onerror=alert(1)> bold");
    add("srt-angles", "<sighs> I <3 you, a <-- b\n<< Tom & Jerry >>",
        "<sighs> I <3 you, a <-- b|<< Tom & Jerry >>");
    add("srt-entities",
        "&lt;i&gt; &eacute;&Eacute;&nbsp;&#233;&#xE9; &hellip;&NBSP;&hearts; &nosuch; &amp;lt; AT&T",
        "<i> éÉ éé … ♥ &nosuch; &lt; AT&T");
    add("srt-careless-unicode", "It\xC2\x92s \xC2\x93quoted\xC2\x94 \xC2\x96 yes &#146;",
        "It’s “quoted” – yes ’");
    add("srt-marks-of-direction",
        "\xE2\x80\xAB\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D, DVD!\xE2\x80\xAC\n\xE2\x80\x8F- "
        "\xD7\x9B\xD7\x9F.\n\xE2\x80\x8E",
        "\xE2\x80\xAB\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D, DVD!\xE2\x80\xAC|\xE2\x80\x8F- \xD7\x9B\xD7\x9F.");
    add("srt-inner-mark-of-order", "\xEF\xBB\xBFH\xEF\xBB\xBFi  \t there\xC2\xA0!", "Hi there !");
    add("srt-music", "♪ La la ♫\n# Humming #\n\xF0\x9F\x8E\xB5", "♪ La la ♫|# Humming #|\xF0\x9F\x8E\xB5");
    add("srt-ideographic-space", "はい。　いいえ。\n　　右です", "はい。　いいえ。|右です");
    add("srt-two-speakers", "- Hi.\n- Ho.\n-And you?", "- Hi.|- Ho.|-And you?");
}

void addWebVtt(OddFiles &files) {
    files.add(
        "vtt-blocks",
        "WEBVTT - title\n\nSTYLE\n::cue { color: red }\n\nREGION\nid:fred\n\nNOTE a remark\n00:00:00.000 --> "
        "00:00:09.000\nof two lines\n\nbad\n00:01 -> 00:02\nlost\n\nid 1\n00:01.000 --> 00:02.000 "
        "align:start\n<v "
        "Roger>Hi <c.x>there</c>&nbsp;you &lt;3\n\n00:00:03,000 --> 00:00:04,000\nComma\n",
        {cue(1000, 2000, "Hi there you <3"), cue(3000, 4000, "Comma")});
    files.add("vtt-tags",
              "WEBVTT\n\n00:01.000 --> 00:02.000\n<i.loud>All<00:01.500> of</i> it "
              "&lrm;&rlm;&amp;lt;\n<ruby>漢字<rt>かんじ</rt>"
              "</ruby>です\n1 < 2, 3 > 2\n<script>go()</script>\n",
              {cue(1000, 2000, "_All of_ it \xE2\x80\x8E\xE2\x80\x8F&lt;|漢字です|1 < 2, 3 > 2|go()")});
    files.add("vtt-broken-times",
              "WEBVTT\n\n00:00:01.000 --> never\nlost\n\n--> 00:00:02.000\nlost\n\n1000:00:01.000 --> "
              "1000:00:02.000\nlost\n\n"
              "00:00:03.5 --> 00:00:04.25\nShort\n00:00:05.000 --> 00:00:06.000\nNo blank line\n",
              {cue(3500, 4250, "Short"), cue(5000, 6000, "No blank line")});
    files.add("vtt-without-its-first-line", "00:01.000 --> 00:02.000 line:0\n<v Ann>Hi\n",
              {cue(1000, 2000, "Hi")});
}

void addAss(OddFiles &files) {
    const QByteArray standard =
        "[Script Info]\nScriptType: v4.00+\n[V4+ Styles]\nFormat: Name, Italic, Bold\nStyle: Plain,0,-1\n"
        "Style: Thoughts,-1,0\n[Events]\nFormat: Layer, Start, End, Style, Name, MarginL, MarginR, "
        "MarginV, Effect, Text\n";
    const auto event = [](const char *text, const char *layerAndTimes = "0,0:00:01.00,0:00:02.00",
                          const char *style = "Plain") {
        return QByteArray("Dialogue: ") + layerAndTimes + ',' + style + ",,0,0,0,," + text + '\n';
    };
    files.add(
        "ass-short-format",
        "[Script Info]\nScriptType: v4.00+\n[Events]\nFormat: Layer, Start, End, Style, Text\nDialogue: "
        "0,0:00:01.00,0:00:02.00,Default,a, b\\hc \\{d\\}\nComment: 0,0:00:02.00,0:00:03.00,Default,not "
        "shown\n",
        {cue(1000, 2000, "a, b c {d}")});
    files.add("ass-other-order",
              "[Events]\nFormat: Start, End, Text\nDialogue: 0:00:01.5,0:00:02.250,One, two\n",
              {cue(1500, 2250, "One, two")});
    files.add("ass-file-order",
              standard + event("Below") + event("Above", "5,0:00:01.00,0:00:02.00") +
                  event("First", "0,0:00:00.50,0:00:02.00"),
              {cue(500, 2000, "First"), cue(1000, 2000, "Below"), cue(1000, 2000, "Above")});
    files.add("ass-shadow-layers",
              standard + event("{\\blur3}Glow", "0,0:00:01.00,0:00:02.00") +
                  event("Glow", "1,0:00:01.00,0:00:02.00", "Thoughts"),
              {cue(1000, 2000, "Glow")});
    files.add("ass-drawings",
              standard + event("{\\p1}m 0 0 l 9 9{\\p0}drawn") +
                  event("{\\an7\\p2}m 1 1 l 2 2", "0,0:00:03.00,0:00:04.00") +
                  event("{\\pos(1,2)\\pbo3}kept", "0,0:00:05.00,0:00:06.00"),
              {cue(1000, 2000, "drawn"), cue(5000, 6000, "kept")});
    files.add("ass-karaoke", standard + event("{\\k20}Sa{\\kf30}ku{\\ko15}ra{a remark}"),
              {cue(1000, 2000, "Sakura")});
    files.add(
        "ass-italics",
        standard + event("{\\i1\\b1}So{\\i0} it {\\iclip(1,1,2,2)}goes{\\i1}") +
            event("Thought {\\i0}said{\\r} thought {\\rPlain}said", "0,0:00:03.00,0:00:04.00", "*Thoughts"),
        {cue(1000, 2000, "_So_ it goes"), cue(3000, 4000, "_Thought _said_ thought _said")});
    files.add("ass-breaks", standard + event("One\\Ntwo\\nthree\\hfour {unclosed \\N\\N end"),
              {cue(1000, 2000, "One|two three four {unclosed|end")});
    files.add(
        "ass-commas-for-points",
        standard +
            event("One", "0,0:00:01,00,0:00:02,00").replace("01,00,", "01.00,").replace("02,00,", "02.00,"),
        {cue(1000, 2000, "One")});
}

void addFrames(OddFiles &files) {
    files.add("microdvd-comma-rate", "{1}{1}29,97\n{30}{60}One\n{2997}{3000}{Y:i}Two|three\n",
              {cue(1001, 2002, "One"), cue(100'000, 100'100, "_Two|three_")});
    files.add("microdvd-ntsc-rate", "{1}{1}23.976\n{143856}{143880}An hour and 40 minutes\n",
              {cue(5'999'994, 6'000'995, "An hour and 40 minutes")}, {25, 1});
    files.add("microdvd-films-rate",
              "{1}{50}24 hours later\n{75}{100}three\n{125}{}open\n{150}{175}{c:$0000ff}{y:b,i}four|/five\n",
              {cue(40, 2000, "24 hours later"), cue(3000, 4000, "three"), cue(5000, 6000, "open"),
               cue(6000, 7000, "_four_|_five_")},
              {25, 1});
    files.add("microdvd-no-rate", "{DEFAULT}{}{c:$ffffff}\n{0}{0}\n{2997}{5994}One\n",
              {cue(125'000, 185'000, "One")});
    files.add("microdvd-two-lines", "{25}{50}{y:i}one|/two\n{75}{100}th<i>r</i>ee\n",
              {cue(1000, 2000, "_one_|_two_"), cue(3000, 4000, "th_r_ee")}, {25, 1});
    files.add("mpl2-short", "[10][20]/One|two\n", {cue(1000, 2000, "_One_|two")});
    files.add("mpl2-open", "[10][]One\n[35][40]Two / three\n",
              {cue(1000, 3500, "One"), cue(3500, 4000, "Two / three")});
    files.add(
        "subviewer-noises",
        "[INFORMATION]\n[END INFORMATION]\n[SUBTITLE]\n00:00:01.50,00:00:02.25\n[Door opens][br]Hi|there\n\n"
        "00:00:03.500,00:00:04.125\nThree figures\n",
        {cue(1500, 2250, "[Door opens]|Hi|there"), cue(3500, 4125, "Three figures")});
}

void addXml(OddFiles &files) {
    files.add(
        "sami-two-classes",
        "<SAMI><BODY>\n<SYNC Start=500><P Class=KRCC>&nbsp;<P Class=ENCC>&nbsp;\n<SYNC Start=1000><P "
        "Class=ENCC>Hi<br><i>you</i>"
        "<P Class=KRCC>안녕\n<SYNC Start=1500><P Class=KRCC>&nbsp;\n<SYNC Start=2000><P Class=ENCC>&nbsp;\n"
        "<SYNC Start=3000><P Class=ENCC>One\nline\n<SYNC Start=3500><P Class=KRCC>하나\n<SYNC Start=4000><P "
        "Class=ENCC>Two"
        "</BODY></SAMI>",
        {cue(1000, 2000, "Hi|_you_"), cue(3000, 4000, "One line"), cue(4000, 7000, "Two")});
    files.add("sami-careless",
              "<sami>\n<!-- <SYNC Start=1><P>Remark -->\n<sync start=\"1000\" end='1800'><p class='a'>&lt;3 "
              "&eacute;t&eacute; "
              "<font color=red>red</font></p>\n<SYNC START=2000ms>No paragraph\n<SYNC Start=3000><P>&nbsp;",
              {cue(1000, 1800, "<3 été red")});
    files.add(
        "ttml-times",
        "<tt xmlns:ttp='http://www.w3.org/ns/ttml#parameter' ttp:frameRate='30' "
        "ttp:frameRateMultiplier='1000 1001' "
        "ttp:tickRate='10000000'><body>\n<p begin='1s' end='2.5s'>Offset</p><p begin='3500ms' "
        "dur='1s'>Length</p>\n"
        "<p begin='00:00:06:15' end='00:00:07:00'>Frames</p><p begin='80000000t' end='240f'>Ticks</p>\n"
        "<div begin='10s'><p begin='0.5s' end='1.5s'>Inner</p></div><p begin='0.25m'>Open</p></body></tt>",
        {cue(1000, 2500, "Offset"), cue(3500, 4500, "Length"), cue(6501, 7000, "Frames"),
         cue(8000, 8008, "Ticks"), cue(10'500, 11'500, "Inner"), cue(15'000, 18'000, "Open")});
    files.add("ttml-films-frames",
              "<tt><body><p begin='00:00:01:06' end='00:00:02:12'>Frames</p></body></tt>",
              {cue(1250, 2500, "Frames")}, {24, 1});
    files.add("ttml-standard-frames", "<tt><body><p begin='00:00:01:06' end='75f'>Frames</p></body></tt>",
              {cue(1200, 2500, "Frames")});
    files.add("ttml-styles",
              "<tt:tt><tt:head><tt:styling><tt:style xml:id='s1' tts:fontStyle='italic'/><tt:style "
              "xml:id='s2' style='s1'/>"
              "</tt:styling><tt:metadata>Title</tt:metadata></tt:head><tt:body><tt:div>\n<tt:p begin='1s' "
              "end='2s' style='s2'>All "
              "<tt:span tts:fontStyle='normal'>but</tt:span>\n  one<tt:br/>line</tt:p>\n<tt:p begin='3s' "
              "end='4s'>A &lt;b&gt; &nbsp;"
              "&eacute; R&D<tt:metadata>no</tt:metadata></tt:p></tt:div></tt:body></tt:tt>",
              {cue(1000, 2000, "_All _but_ one|line_"), cue(3000, 4000, "A <b> é R&D")});
    files.add("ttml-timed-spans",
              "<tt><body><div><p><span begin='1s' end='2s'>One</span>\n<span begin='3s' "
              "end='4s'>Two</span></p><p begin='5s' "
              "end='6s'>漢字<span tts:ruby='text'>かんじ</span></p></div></body></tt>",
              {cue(1000, 2000, "One"), cue(3000, 4000, "Two"), cue(5000, 6000, "漢字")});
    files.add("ttml-around-a-timed-span",
              "<tt><body><p begin='0s' end='9s'><span begin='1s' end='2s'>One</span> Two</p></body></tt>",
              {cue(0, 9000, "Two"), cue(1000, 2000, "One")});
    files.add("ttml-cut", "<tt><body><div><p begin='1s' end='2s'>One</p><p begin='3s' end='4s'>Tw",
              {cue(1000, 2000, "One")});
}

} // namespace

QList<SubtitleFile> oddFiles() {
    OddFiles files;
    addSubRipTimes(files);
    addSubRipBlocks(files);
    addSubRipText(files);
    addWebVtt(files);
    addAss(files);
    addFrames(files);
    addXml(files);
    return files.take();
}

} // namespace murvo::service::test
