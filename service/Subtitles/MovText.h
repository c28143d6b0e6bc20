// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/MarkedText.h"

#include <QByteArrayView>

namespace murvo::service {

/// Reads a packet of MP4's timed text: the text's length in two bytes, the text, boxes with its styles.
/// description is the track's sample description, which says how text without a style looks. Takes any
/// bytes; a pure function, any thread.
[[nodiscard]] MarkedText readMovText(QByteArrayView packet, QByteArrayView description);

} // namespace murvo::service
