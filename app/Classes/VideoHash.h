// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMetaType>

namespace murvo {

/// The identity of a film: its movie hash and its size in bytes. Both are 0 when no hash could be computed.
struct VideoHash {
    quint64 fileHash = 0;
    quint64 fileSize = 0;

    friend bool operator==(const VideoHash &, const VideoHash &) = default;
};

} // namespace murvo

Q_DECLARE_METATYPE(murvo::VideoHash)
