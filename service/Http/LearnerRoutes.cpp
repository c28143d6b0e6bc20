// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/LearnerRoutes.h"

#include "Http/Router.h"
#include "Store/LearnerFile.h"

#include <QDate>
#include <QFileInfo>
#include <QJsonArray>

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

// Those of several days can lie side by side. No backup is called so: see SavedFiles.
QByteArray nameOfToday() {
    return "murvo-" + QDate::currentDate().toString(Qt::ISODate).toLatin1() + ".sqlite";
}

Response give(const LearnerRouteParts &parts) {
    return {200, "application/vnd.sqlite3", {}, nameOfToday(), parts.file.copy()};
}

// bring: puts another store in the place of this one and returns the path of the backup.
Response brought(const LearnerRouteParts &parts, const std::function<QString()> &bring) {
    try {
        const QString backup = bring();
        parts.hasReplaced();
        return jsonResponse({{QStringLiteral("backupFileName"), QFileInfo(backup).fileName()}});
    } catch (const LearnerFileError &failure) {
        throw errorOf(failure.reason());
    }
}

Response take(const Request &request, const LearnerRouteParts &parts) {
    return brought(parts, [&] { return parts.file.replaceBy(request.bodyFile, parts.taking); });
}

Response listSaved(const LearnerRouteParts &parts) {
    QJsonArray files;
    for (const SavedFile &each : parts.savedFiles.list())
        files.append(QJsonObject{{QStringLiteral("id"), each.id},
                                 {QStringLiteral("fileName"), QFileInfo(each.path).fileName()},
                                 {QStringLiteral("folderName"), each.folderName},
                                 {QStringLiteral("savedAtMs"), each.savedAtMs},
                                 {QStringLiteral("bytes"), each.sizeBytes},
                                 {QStringLiteral("isBackup"), each.isBackup}});
    return jsonResponse({{QStringLiteral("files"), files}});
}

Response takeSaved(const Request &request, const LearnerRouteParts &parts) {
    const auto file = parts.savedFiles.find(jsonBody(request).value(QLatin1String("id")).toString());
    if (!file)
        throw RouteError(404, QStringLiteral("fileMoved"),
                         QStringLiteral("The file no longer lies where it did."));
    return brought(parts, [&] { return parts.file.replaceByCopyOf(file->path, parts.taking); });
}

} // namespace

void addLearnerRoutes(Router &router, const LearnerRouteParts &parts) {
    const QString path = QStringLiteral("Api/Learner/File");
    router.add("GET", path, [parts](const Request &) { return give(parts); });
    router.add("POST", path, [parts](const Request &request) { return take(request, parts); });
    const QString saved = QStringLiteral("Api/Learner/Saved");
    router.add("GET", saved, [parts](const Request &) { return listSaved(parts); });
    router.add("POST", saved, [parts](const Request &request) { return takeSaved(request, parts); });
}

} // namespace murvo::service
