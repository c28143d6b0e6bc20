// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/AssText.h"
#include "Subtitles/CueMarkup.h"
#include "Subtitles/Cues.h"

#include <QByteArray>

#include <optional>

struct AVPacket;
struct AVStream;

namespace murvo::service {

/// Turns the packets of one text track, as libavformat demuxes them, into cues: of a film's track and of a
/// subtitle file alike.
///
/// A value that keeps what the track's header says; read() is const and may run on any thread. It takes the
/// packets' own bytes: the decoders of libavcodec lose text.
class CuePackets {
  public:
    /// Nothing when the track holds no text that can be read (pictures, teletext).
    [[nodiscard]] static std::optional<CuePackets> of(const AVStream &stream);

    /// The cue of a packet in ms of the film; its lines are empty when the packet shows nothing. An end that
    /// the packet does not tell is its start.
    [[nodiscard]] Cue read(const AVPacket &packet) const;

  private:
    enum class Form { Marked, MovText, Script };

    explicit CuePackets(const AVStream &stream);

    Form _form = Form::Marked;
    Markup _markup = Markup::SubRip; ///< of Form::Marked
    QByteArray _movDescription;      ///< of Form::MovText
    AssScript _script;               ///< of Form::Script
    int _timeBaseNumerator = 1;
    int _timeBaseDenominator = 1000;
};

} // namespace murvo::service
