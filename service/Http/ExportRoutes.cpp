// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/ExportRoutes.h"

#include "Export/AnkiSender.h"
#include "Export/PackageExport.h"
#include "Export/WordLists.h"
#include "Http/Router.h"
#include "Store/SettingsTable.h"
#include "Store/WordTable.h"

#include <QJsonArray>

#include <atomic>

namespace murvo::service {

namespace {

constexpr qsizetype mostRefusalsTold = 50;
const std::atomic<bool> isNeverCancelled{false};

Response list(const Request &request, const ExportRouteParts &parts) {
    const QString format = request.parameters.value(QStringLiteral("format"), QStringLiteral("csv"));
    const bool isCsv = format == QLatin1String("csv");
    if (!isCsv && format != QLatin1String("tsv"))
        throw RouteError(400, QStringLiteral("badParameter"),
                         QStringLiteral("The parameter \"format\" must be csv or tsv."));
    const auto cards =
        cardsOf(parts.words.all(parts.settings.nativeLanguage()), parts.facts, isNeverCancelled);
    if (isCsv)
        return {200, QByteArrayLiteral("text/csv; charset=utf-8"), csvOf(cards),
                QByteArrayLiteral("murvo-words.csv")};
    return {200, QByteArrayLiteral("text/tab-separated-values; charset=utf-8"), tsvOf(cards),
            QByteArrayLiteral("murvo-words.tsv")};
}

QString nameOf(PackageState::Stage stage) {
    switch (stage) {
    case PackageState::Stage::Running:
        return QStringLiteral("running");
    case PackageState::Stage::Done:
        return QStringLiteral("done");
    case PackageState::Stage::Failed:
        return QStringLiteral("failed");
    case PackageState::Stage::None:
        break;
    }
    return QStringLiteral("none");
}

Response packageState(const ExportRouteParts &parts) {
    const PackageState state = parts.package.state();
    return jsonResponse({{QStringLiteral("stage"), nameOf(state.stage)},
                         {QStringLiteral("percent"), state.percent},
                         {QStringLiteral("wordCount"), state.wordCount},
                         {QStringLiteral("clipCount"), state.clipCount},
                         {QStringLiteral("bytes"), static_cast<qint64>(state.bytes)}});
}

Response beginPackage(const Request &request, const ExportRouteParts &parts) {
    const QString clips = request.parameters.value(QStringLiteral("clips"), QStringLiteral("true"));
    if (clips != QLatin1String("true") && clips != QLatin1String("false"))
        throw RouteError(400, QStringLiteral("badParameter"),
                         QStringLiteral("The parameter \"clips\" must be true or false."));
    parts.package.begin(clips == QLatin1String("true"));
    return packageState(parts);
}

Response endPackage(const Request &, const ExportRouteParts &parts) {
    parts.package.cancel();
    return packageState(parts);
}

Response packageFile(const Request &, const ExportRouteParts &parts) {
    auto package = parts.package.package();
    if (!package)
        throw RouteError(409, QStringLiteral("notFinished"),
                         QStringLiteral("There is no finished package; begin one, or wait."));
    return {200,
            QByteArrayLiteral("application/octet-stream"),
            {},
            QByteArrayLiteral("murvo.apkg"),
            std::move(package)};
}

QJsonValue problemOrNull(const AnkiProblem &problem) {
    if (problem.code.isEmpty())
        return QJsonValue::Null;
    return QJsonObject{{QStringLiteral("code"), problem.code}, {QStringLiteral("message"), problem.message}};
}

Response senderState(const ExportRouteParts &parts) {
    const AnkiSenderState state = parts.sender.state();
    QJsonArray refused;
    for (const SentNote &note : state.refused.mid(0, mostRefusalsTold))
        refused.append(
            QJsonObject{{QStringLiteral("lemma"), note.lemma}, {QStringLiteral("message"), note.problem}});
    return jsonResponse({{QStringLiteral("isOn"), state.isOn},
                         {QStringLiteral("waitingCount"), state.waitingCount},
                         {QStringLiteral("sentCount"), state.sentCount},
                         {QStringLiteral("refusedCount"), static_cast<int>(state.refused.size())},
                         {QStringLiteral("refused"), refused},
                         {QStringLiteral("nextTryMs"), static_cast<qint64>(state.nextTry.count())},
                         {QStringLiteral("problem"), problemOrNull(state.problem)}});
}

Response sendNow(const Request &, const ExportRouteParts &parts) {
    parts.sender.tryAllNow();
    return senderState(parts);
}

} // namespace

void addExportRoutes(Router &router, const ExportRouteParts &parts) {
    const auto add = [&](const char *method, const char *path, auto answer) {
        router.add(method, QLatin1String("Api/Words/") + QLatin1String(path),
                   [parts, answer](const Request &request) { return answer(request, parts); });
    };
    add("GET", "List", list);
    add("POST", "Anki", beginPackage);
    add("GET", "Anki", [](const Request &, const ExportRouteParts &own) { return packageState(own); });
    add("DELETE", "Anki", endPackage);
    add("GET", "Anki/File", packageFile);
    add("GET", "AnkiConnect", [](const Request &, const ExportRouteParts &own) { return senderState(own); });
    add("POST", "AnkiConnect", sendNow);
}

} // namespace murvo::service
