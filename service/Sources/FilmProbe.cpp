// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sources/FilmProbe.h"

#include "Languages.h"
#include "Sources/FilmInput.h"

#include <chrono>

extern "C" {
#include <libavformat/avformat.h>
}

namespace murvo::service {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds longestProbe{5};

// libVLC numbers a track by its place among all streams, in a transport stream by its PID. Measured with
// libVLC 3 on Matroska, MP4, QuickTime, AVI, WebM, MPEG programme and transport streams.
int playerTrackId(const AVFormatContext &input, const AVStream &stream) {
    const bool ownIds = QByteArray(input.iformat->name) == "mpegts";
    return ownIds ? stream.id : stream.index;
}

AudioTrack describe(const AVFormatContext &input, const AVStream &stream) {
    AudioTrack track;
    track.trackId = playerTrackId(input, stream);
    if (const Language *language = findLanguage(streamTag(stream, "language")))
        track.language = language->code;
    track.title = streamTag(stream, "title");
    track.isDefault = (stream.disposition & AV_DISPOSITION_DEFAULT) != 0;
    return track;
}

// Containers without headers tell their streams only when some packets have been looked at.
bool needsStreamInfo(const AVFormatContext &input) {
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        const AVStream &stream = *input.streams[i];
        if (stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && stream.avg_frame_rate.num == 0)
            return true;
    }
    return input.nb_streams == 0 || (input.ctx_flags & AVFMTCTX_NOHEADER) != 0;
}

} // namespace

std::optional<FilmFacts> probeFilm(const QString &filmPath) {
    const Clock::time_point deadline = Clock::now() + longestProbe;
    const FilmInput input = openFilm(filmPath, [deadline] { return Clock::now() > deadline; });
    if (!input || (needsStreamInfo(*input) && avformat_find_stream_info(input.get(), nullptr) < 0))
        return std::nullopt;

    FilmFacts facts;
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        const AVStream &stream = *input->streams[i];
        const bool coverPicture = (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
        if (stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
            facts.audioTracks.append(describe(*input, stream));
        } else if (stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !coverPicture &&
                   facts.frameRateNumerator == 0 && stream.avg_frame_rate.den > 0) {
            facts.frameRateNumerator = stream.avg_frame_rate.num;
            facts.frameRateDenominator = stream.avg_frame_rate.den;
        }
    }
    return facts;
}

} // namespace murvo::service
