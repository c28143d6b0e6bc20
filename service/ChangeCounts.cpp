// SPDX-License-Identifier: GPL-3.0-or-later
#include "ChangeCounts.h"

namespace murvo::service {

void ChangeCounts::announce(qint32 key) {
    const std::lock_guard lock(_mutex);
    ++_counts[key];
    _changed.notify_all();
}

qint32 ChangeCounts::count(qint32 key) const {
    const std::lock_guard lock(_mutex);
    return _counts.value(key);
}

qint32 ChangeCounts::waitForOtherThan(qint32 known, std::chrono::milliseconds limit, qint32 key) {
    std::unique_lock lock(_mutex);
    _changed.wait_for(lock, limit, [&] { return _counts.value(key) != known || _isClosed; });
    return _counts.value(key);
}

void ChangeCounts::close() {
    const std::lock_guard lock(_mutex);
    _isClosed = true;
    _changed.notify_all();
}

} // namespace murvo::service
