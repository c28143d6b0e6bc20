// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Timing/Timing.h"

#include <QJsonObject>

namespace murvo::service {

[[nodiscard]] QJsonObject timingJson(const Timing &timing);

/// The timing that a client sends; throws RouteError when it is none, or one that no subtitle can need.
[[nodiscard]] Timing timingOf(const QJsonObject &object);

} // namespace murvo::service
