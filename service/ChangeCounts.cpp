// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sources/PendingFilms.h"

namespace murvo::service {

void PendingFilms::announce() {
    {
        const std::lock_guard lock(_mutex);
        ++_count;
    }
    _changed.notify_all();
}

int PendingFilms::count() const {
    const std::lock_guard lock(_mutex);
    return _count;
}

int PendingFilms::waitForOtherThan(int known, std::chrono::milliseconds limit) {
    std::unique_lock lock(_mutex);
    _changed.wait_for(lock, limit, [&] { return _isClosed || _count != known; });
    return _count;
}

void PendingFilms::close() {
    {
        const std::lock_guard lock(_mutex);
        _isClosed = true;
    }
    _changed.notify_all();
}

} // namespace murvo::service
