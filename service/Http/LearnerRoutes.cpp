// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/LearnerRoutes.h"

#include "Http/Router.h"
#include "Store/LearnerFile.h"

#include <QFileInfo>

namespace murvo::service {

namespace {

RouteError errorOf(LearnerFileError::Reason reason) {
    switch (reason) {
    case LearnerFileError::Reason::Newer:
        return {422, QStringLiteral("newerFile"),
                QStringLiteral("This file was written by a newer version of the program.")};
    case LearnerFileError::Reason::Damaged:
        return {422, QStringLiteral("damagedFile"),
                QStringLiteral("This file is damaged and was not taken. Nothing has changed.")};
    case LearnerFileError::Reason::NotOurs:
        break;
    }
    return {422, QStringLiteral("notLearnerFile"),
            QStringLiteral("This is not a file that was saved from this program.")};
}

Response give(const LearnerRouteParts &parts) {
    return {200, "application/vnd.sqlite3", {}, "murvo.sqlite", parts.file.copy()};
}

Response take(const Request &request, const LearnerRouteParts &parts) {
    try {
        const QString backup = parts.file.replaceBy(request.bodyFile, parts.beforeReplacing);
        parts.afterReplacing();
        return jsonResponse({{QStringLiteral("backupFileName"), QFileInfo(backup).fileName()}});
    } catch (const LearnerFileError &failure) {
        throw errorOf(failure.reason());
    }
}

} // namespace

void addLearnerRoutes(Router &router, const LearnerRouteParts &parts) {
    const QString path = QStringLiteral("Api/Learner/File");
    router.add("GET", path, [parts](const Request &) { return give(parts); });
    router.add("POST", path, [parts](const Request &request) { return take(request, parts); });
}

} // namespace murvo::service
