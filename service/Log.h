// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLoggingCategory>

namespace murvo::service {

Q_DECLARE_LOGGING_CATEGORY(serviceLog)

} // namespace murvo::service
