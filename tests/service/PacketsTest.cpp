// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/SubtitleFiles.h"

#include "Subtitles/CuePackets.h"
#include "Subtitles/WebVttWriter.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <memory>

extern "C" {
#include <libavformat/avformat.h>
}

namespace murvo::service::test {

namespace {

struct FilmCloser {
    void operator()(AVFormatContext *film) const { avformat_close_input(&film); }
};
struct PacketFreer {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
};

/// Films with a picture track and the French conversation as their only subtitle track.
class PacketsTest : public testing::Test {
  protected:
    /// Puts a subtitle file into a film; name's ending and the codec say how.
    [[nodiscard]] QByteArray makeFilm(const QString &name, const QString &subtitleName,
                                      const QByteArray &subtitle, const QString &codec) {
        QFile file(_folder.filePath(subtitleName));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(subtitle) == subtitle.size());
        file.close();
        const QString film = _folder.filePath(name);
        EXPECT_EQ(
            QProcess::execute(QStringLiteral("ffmpeg"),
                              {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-nostdin"),
                               QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                               QStringLiteral("testsrc=s=64x48:r=5:d=50"), QStringLiteral("-i"),
                               file.fileName(), QStringLiteral("-c:s"), codec, QStringLiteral("-y"), film}),
            0);
        return film.toUtf8();
    }

    /// The cues of each subtitle track, by its number; the tracks that hold no text are absent.
    [[nodiscard]] static std::map<int, QList<Cue>> cuesOf(const QByteArray &film) {
        AVFormatContext *opened = nullptr;
        EXPECT_EQ(avformat_open_input(&opened, film.constData(), nullptr, nullptr), 0);
        const std::unique_ptr<AVFormatContext, FilmCloser> input(opened);
        std::map<int, CuePackets> readers;
        for (unsigned i = 0; i < input->nb_streams; ++i) {
            if (auto reader = CuePackets::of(*input->streams[i]))
                readers.emplace(static_cast<int>(i), std::move(*reader));
        }
        const std::unique_ptr<AVPacket, PacketFreer> packet(av_packet_alloc());
        std::map<int, QList<Cue>> cues;
        while (av_read_frame(input.get(), packet.get()) >= 0) {
            if (const auto reader = readers.find(packet->stream_index); reader != readers.end())
                cues[reader->first].append(reader->second.read(*packet));
            av_packet_unref(packet.get());
        }
        for (auto &[track, read] : cues)
            read = inOrder(read);
        return cues;
    }

  private:
    QTemporaryDir _folder;
};

TEST_F(PacketsTest, TracksOfTextInFilmsAreReadAsTheirFilesAre) {
    struct Track {
        const char *film;
        const char *file;
        const char *codec;
        qint64 stepMs;
    };
    for (const Track &track : {Track{"a.mkv", "a.vtt", "subrip", 1}, Track{"b.mkv", "b.vtt", "ass", 10},
                               Track{"c.mkv", "c.vtt", "copy", 1}, Track{"d.webm", "d.vtt", "copy", 1},
                               Track{"e.mp4", "e.vtt", "mov_text", 1}}) {
        const QList<Cue> lines = dialogue(QStringLiteral("fr"), track.stepMs);
        const QByteArray film = makeFilm(QString::fromLatin1(track.film), QString::fromLatin1(track.file),
                                         webVtt(lines), QString::fromLatin1(track.codec));
        const std::map<int, QList<Cue>> cues = cuesOf(film);
        ASSERT_EQ(cues.size(), 1) << track.film << ": the picture is no text";
        EXPECT_EQ(webVtt(cues.begin()->second).toStdString(), webVtt(lines).toStdString()) << track.film;
    }
}

TEST_F(PacketsTest, DamagedPacketsShowWhatIsLeftOfThem) {
    const QList<Cue> lines = dialogue(QStringLiteral("fr"), 10);
    const QByteArray mp4 =
        makeFilm(QStringLiteral("a.mp4"), QStringLiteral("a.vtt"), webVtt(lines), QStringLiteral("mov_text"));
    AVFormatContext *opened = nullptr;
    ASSERT_EQ(avformat_open_input(&opened, mp4.constData(), nullptr, nullptr), 0);
    const std::unique_ptr<AVFormatContext, FilmCloser> input(opened);
    const auto reader = CuePackets::of(*input->streams[input->nb_streams - 1]);
    ASSERT_TRUE(reader);
    const QByteArray bytes = QByteArray::fromHex("0005") +
                             "H\xC3\xA9"
                             "ya" +
                             QByteArray::fromHex("000000167374796c00010001ffff000102") + QByteArray(5, '\0');
    const std::unique_ptr<AVPacket, PacketFreer> packet(av_packet_alloc());
    for (qsizetype length = 0; length <= bytes.size(); ++length) {
        const QByteArray cut = bytes.left(length);
        ASSERT_EQ(av_new_packet(packet.get(), static_cast<int>(length)), 0);
        std::copy(cut.begin(), cut.end(), packet->data);
        packet->pts = 0;
        packet->duration = std::numeric_limits<int64_t>::max() / 2;
        const Cue cue = reader->read(*packet);
        if (length == bytes.size()) {
            EXPECT_EQ(cue.lines, QStringList{QStringLiteral("Héya")});
            EXPECT_EQ(cue.italics, (QList<ItalicRange>{{0, 1, 4}}));
        }
        av_packet_unref(packet.get());
    }
    EXPECT_TRUE(reader->read(*packet).lines.isEmpty());
}

} // namespace

} // namespace murvo::service::test
