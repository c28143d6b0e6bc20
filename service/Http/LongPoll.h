// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/Message.h"

namespace murvo::service {

class ChangeCounts;

/// The count of the key's changes. With the parameter "after", waits until it differs from that, some 20 s at
/// most; without, does not wait. Throws RouteError for an "after" that is no count.
[[nodiscard]] qint32 countAfter(const Request &request, ChangeCounts &changes, qint32 key = 0);

} // namespace murvo::service
