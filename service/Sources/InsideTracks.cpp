// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sources/InsideTracks.h"

#include "Languages.h"
#include "Sources/FilmInput.h"
#include "Sources/SidecarName.h"
#include "Subtitles/CuePackets.h"

#include <QHash>

#include <chrono>
#include <memory>

extern "C" {
#include <libavcodec/codec_desc.h>
#include <libavformat/avformat.h>
}

namespace murvo::service {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds progressPause{50};
constexpr qsizetype longestTitle = 200;

struct PacketFreer {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
};

InsideTrack describe(const AVStream &stream) {
    InsideTrack track;
    track.streamIndex = stream.index;
    track.title = streamTag(stream, "title").left(longestTitle).simplified();
    // Titles tell what tags should: "English (SDH)", "Forced".
    const SidecarName told = readSubtitleWords(track.title);
    // Also with a region, as "pt-BR".
    const Language *language = findLanguage(streamTag(stream, "language").section(u'-', 0, 0));
    track.language = language != nullptr ? QString(language->code) : told.language;
    track.forced = (stream.disposition & AV_DISPOSITION_FORCED) != 0 || told.forced;
    track.hearingImpaired =
        (stream.disposition & AV_DISPOSITION_HEARING_IMPAIRED) != 0 || told.hearingImpaired;
    const AVCodecDescriptor *codec = avcodec_descriptor_get(stream.codecpar->codec_id);
    track.isPictures = codec != nullptr && (codec->props & AV_CODEC_PROP_BITMAP_SUB) != 0;
    return track;
}

/// The subtitle tracks of an open film, by the number of the stream. All other streams are passed over by the
/// demuxer itself.
class Tracks {
  public:
    explicit Tracks(AVFormatContext &film) {
        for (unsigned i = 0; i < film.nb_streams; ++i) {
            AVStream &stream = *film.streams[i];
            stream.discard = AVDISCARD_ALL;
            if (stream.codecpar->codec_type != AVMEDIA_TYPE_SUBTITLE)
                continue;
            InsideTrack track = describe(stream);
            if (const auto packets = CuePackets::of(stream)) {
                track.isText = true;
                stream.discard = AVDISCARD_DEFAULT;
                _texts.insert(stream.index, {_all.size(), *packets});
            }
            _all.append(track);
        }
    }

    [[nodiscard]] const QList<InsideTrack> &all() const { return _all; }
    [[nodiscard]] bool haveText() const { return !_texts.isEmpty(); }

    void hand(const AVPacket &packet, const InsideTrackEvents &events) const {
        const auto text = _texts.find(packet.stream_index);
        if (text == _texts.end() || packet.data == nullptr || packet.pts == AV_NOPTS_VALUE)
            return;
        Cue cue = text->packets.read(packet);
        if (!cue.lines.isEmpty())
            events.read(text->place, std::move(cue));
    }

  private:
    struct Text {
        qsizetype place;
        CuePackets packets;
    };
    QList<InsideTrack> _all;
    QHash<int, Text> _texts;
};

double shareRead(const AVFormatContext &film) {
    const qint64 size = film.pb == nullptr ? 0 : avio_size(film.pb);
    return size <= 0 ? 0 : static_cast<double>(avio_tell(film.pb)) / static_cast<double>(size);
}

} // namespace

bool readInsideTracks(const QString &filmPath, const InsideTrackEvents &events,
                      const std::atomic<bool> &isCancelled) {
    const FilmInput film = openFilm(filmPath, [&isCancelled] { return isCancelled.load(); });
    // Matroska and MP4 tell all tracks in their headers; looking at packets would only cost time.
    if (!film || (film->nb_streams == 0 && avformat_find_stream_info(film.get(), nullptr) < 0))
        return false;
    const Tracks tracks(*film);
    events.found(tracks.all());
    if (!tracks.haveText())
        return true;

    const std::unique_ptr<AVPacket, PacketFreer> packet(av_packet_alloc());
    Clock::time_point nextProgress = Clock::now() + progressPause;
    int status = packet ? 0 : AVERROR(ENOMEM);
    while (status >= 0 && !isCancelled) {
        status = av_read_frame(film.get(), packet.get());
        if (status >= 0)
            tracks.hand(*packet, events);
        av_packet_unref(packet.get());
        if (Clock::now() >= nextProgress) {
            nextProgress = Clock::now() + progressPause;
            events.progressed(shareRead(*film));
        }
    }
    return status == AVERROR_EOF && !isCancelled;
}

} // namespace murvo::service
