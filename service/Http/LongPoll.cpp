// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/LongPoll.h"

#include "ChangeCounts.h"

namespace murvo::service {

namespace {

// The page asks again at once. A page that has gone holds a thread of the pool for so long.
constexpr std::chrono::seconds longestWait{20};

} // namespace

qint32 countAfter(const Request &request, ChangeCounts &changes, qint32 key) {
    const QString name = QStringLiteral("after");
    return request.parameters.contains(name)
               ? changes.waitForOtherThan(request.wholeNumber(name, 0), longestWait, key)
               : changes.count(key);
}

} // namespace murvo::service
