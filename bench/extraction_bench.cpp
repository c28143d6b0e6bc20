// SPDX-License-Identifier: GPL-3.0-or-later
// extraction_bench FILM: how long the service takes to give the page the first lines of a film's own tracks,
// and all of them, from the lookup on, and how much memory that takes. Compare with
//   time ffmpeg -i FILM -map 0:s:0 -c copy out.srt

#include "ServiceClient.h"
#include "service/EmbeddedService.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QUrl>

#include <cstdio>

namespace {

using murvo::bench::ServiceClient;
using murvo::service::EmbeddedService;

// Kilobytes; "VmRSS" for now, "VmHWM" for the most since forgetPeak().
int memoryKb(const QByteArray &name) {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = status.readAll();
    return text.mid(text.indexOf(name) + name.size() + 1).trimmed().split(' ').value(0).toInt();
}

void forgetPeak() {
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (file.open(QIODevice::WriteOnly))
        file.write("5");
}

qsizetype cuesOf(const QJsonObject &lines) {
    return lines[QLatin1String("learned")][QLatin1String("cues")].toArray().size();
}

} // namespace

int main(int argc, char *argv[]) {
    const QCoreApplication application(argc, argv);
    const QString film = QFileInfo(application.arguments().value(1)).absoluteFilePath();
    const QTemporaryDir data;
    QString error;
    const auto service = EmbeddedService::start(data.filePath(QStringLiteral("store")), error);
    if (!service || !QFileInfo(film).isFile()) {
        std::fprintf(stderr, "Usage: extraction_bench FILM %s\n", error.toUtf8().constData());
        return 2;
    }
    ServiceClient page{QUrl(service->baseUrl())};
    forgetPeak();
    const int beforeKb = memoryKb("VmRSS");
    QElapsedTimer clock;
    clock.start();
    service->filmIdentified(film, 1, 1);
    const int videoId = page.postJson("MovieFile/GetSubtitlesToDownload",
                                      "fileSize=1&movieHash=1&fileName=f&targetLanguageCode=eng")
                            .value(QLatin1String("videoId"))
                            .toInt();
    const std::string query = "?videoId=" + std::to_string(videoId);
    qint64 firstMs = -1;
    int replies = 0;
    QJsonObject state = page.getJson("MovieFile/Changes" + query);
    QJsonObject lines = page.getJson("MovieFile/Lines" + query);
    for (; state[QLatin1String("isReadingFilm")].toBool(); ++replies) {
        if (firstMs < 0 && cuesOf(lines) > 0)
            firstMs = clock.elapsed();
        state = page.getJson("MovieFile/Changes" + query +
                             "&after=" + std::to_string(state[QLatin1String("revision")].toInt()));
        lines = page.getJson("MovieFile/Lines" + query);
    }
    const qint64 allMs = clock.elapsed();
    std::printf(
        "first lines after %lld ms, all %lld of the upper line after %lld ms (%d replies on the way), "
        "memory at most %d MB more\n",
        static_cast<long long>(firstMs), static_cast<long long>(cuesOf(lines)), static_cast<long long>(allMs),
        replies, (memoryKb("VmHWM") - beforeKb) / 1024);
    return 0;
}
