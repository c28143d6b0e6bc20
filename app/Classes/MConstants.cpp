// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/MConstants.h"

namespace murvo {

namespace {
QString &baseUrl() {
    static QString url;
    return url;
}
} // namespace

const QString MConstants::supportAddress = QStringLiteral("support@murvo.example");

QString MConstants::murvoBaseUrl() {
    return baseUrl();
}

void MConstants::setMurvoBaseUrl(const QString &url) {
    baseUrl() = url;
}

QString MConstants::serviceAddress(const QString &path) {
    return baseUrl() + path;
}

} // namespace murvo
