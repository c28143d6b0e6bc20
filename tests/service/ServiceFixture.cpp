// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTime>
#include <QUrl>

#include <cstdlib>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

namespace murvo::service::test {

Reply replyOf(const httplib::Result &result) {
    if (!result)
        return {};
    return {result->status, QByteArray::fromStdString(result->body), result->headers};
}

QJsonObject Reply::json() const {
    return QJsonDocument::fromJson(body).object();
}

QString Reply::errorCode() const {
    return json().value(QLatin1String("error")).toObject().value(QLatin1String("code")).toString();
}

std::string Reply::header(const char *name) const {
    const auto found = headers.find(name);
    return found == headers.end() ? std::string() : found->second;
}

ServiceFixture::ServiceFixture() {
    restart();
}

void ServiceFixture::restart() {
    service.reset();
    QString error;
    service = EmbeddedService::start(dataFolder.path(), error, openFilm);
    if (!service)
        throw std::runtime_error(error.toStdString());
}

int ServiceFixture::port() const {
    return QUrl(service->baseUrl()).port();
}

std::string ServiceFixture::tokenPath() const {
    return QUrl(service->baseUrl()).path().toStdString();
}

httplib::Client ServiceFixture::client() const {
    httplib::Client client("127.0.0.1", port());
    client.set_read_timeout(10);
    return client;
}

Reply ServiceFixture::ask(const char *method, const QString &path, const httplib::Headers &headers,
                          const QByteArray &body) {
    httplib::Request request;
    request.method = method;
    request.path = tokenPath() + path.toStdString();
    request.headers = headers;
    request.body = body.toStdString();
    return replyOf(client().send(request));
}

Reply ServiceFixture::get(const QString &path) {
    return ask("GET", path);
}

Reply ServiceFixture::download(const QString &url) {
    const QUrl address(url);
    EXPECT_EQ(address.port(), port());
    return replyOf(client().Get(address.path().toStdString() + '?' + address.query().toStdString()));
}

Reply ServiceFixture::post(const QString &path, const QByteArray &body, const QByteArray &contentType) {
    return ask("POST", path, {{"Content-Type", contentType.toStdString()}}, body);
}

Reply ServiceFixture::put(const QString &path, const QJsonObject &body) {
    return ask("PUT", path, {{"Content-Type", "text/plain;charset=UTF-8"}}, QJsonDocument(body).toJson());
}

QString ServiceFixture::writeFile(const QString &name, const QByteArray &content) {
    QFile file(films.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        throw std::runtime_error("cannot write " + name.toStdString());
    return file.fileName();
}

QString ServiceFixture::makeFilm(const QString &name) {
    return makeFilm(name, QStringLiteral("-f lavfi -i sine=d=2"),
                    QStringLiteral("-map 1 -map 1 -c:a aac -metadata:s:a:0 language=eng "
                                   "-metadata:s:a:1 language=fre -metadata:s:a:1 title=Second"));
}

QString ServiceFixture::makeFilm(const QString &name, const QString &inputs, const QString &options) {
    QString path = films.filePath(name);
    const QString video =
        name.endsWith(QLatin1String("webm")) ? QStringLiteral("libvpx") : QStringLiteral("mpeg4");
    const QString command =
        QStringLiteral("cd '%1' && ffmpeg -v error -y -f lavfi -i testsrc=s=64x48:r=30:d=2 %2 "
                       "-map 0 -c:v %3 %4 '%5' < /dev/null")
            .arg(films.path(), inputs, video, options, path);
    if (std::system(command.toUtf8().constData()) != 0)
        throw std::runtime_error("ffmpeg could not make the film");
    return path;
}

bool ServiceFixture::waitUntilRead(int videoId) {
    const QString route = QStringLiteral("Api/MovieFile/Changes?videoId=%1").arg(videoId);
    QJsonObject state = get(route).json();
    for (int changes = 0; state[QLatin1String("isReadingFilm")].toBool(true) && changes < 20; ++changes)
        state = get(route + QStringLiteral("&after=%1").arg(state[QLatin1String("revision")].toInt())).json();
    return !state[QLatin1String("isReadingFilm")].toBool(true);
}

Reply ServiceFixture::lookUp(const QString &filmPath, quint64 hash, std::optional<quint64> sizeBytes) {
    const QFileInfo file(filmPath);
    const quint64 size = sizeBytes.value_or(file.isFile() ? static_cast<quint64>(file.size()) : 1000);
    service->filmIdentified(filmPath, hash, size);
    const QString body =
        QStringLiteral("fileSize=%1&movieHash=%2&fileName=%3&targetLanguageCode=eng&nativeLanguageCode=fra")
            .arg(size)
            .arg(hash, 0, 16)
            .arg(filmPath.section(u'/', -1));
    return post(QStringLiteral("Api/MovieFile/GetSubtitlesToDownload"), body.toUtf8(),
                "application/x-www-form-urlencoded");
}

QByteArray ServiceFixture::uploadBody(const QByteArray &boundary,
                                      const QList<QPair<int, QByteArray>> &parts) {
    QByteArray body = "--" + boundary + "\r\n";
    for (qsizetype i = 0; i < parts.size(); ++i) {
        body += "Content-Disposition: form-data; name=\"" + QByteArray::number(parts[i].first) +
                "\"; filename=\"My \"best\" film.srt\"\r\n\r\n" + parts[i].second;
        if (i + 1 < parts.size())
            body += "\r\n--" + boundary + "\r\n";
    }
    return body + "\r\n--" + boundary + "--\r\n";
}

Reply ServiceFixture::upload(const QList<QPair<int, QByteArray>> &parts) {
    const QByteArray boundary(64, 'b');
    return post(QStringLiteral("Api/Subtitles/UploadGzippedFiles"), uploadBody(boundary, parts),
                "multipart/form-data; boundary=" + boundary);
}

Reply ServiceFixture::fetchAndUpload(const Reply &lookup) {
    QList<QPair<int, QByteArray>> parts;
    for (const QJsonValue value : lookup.json().value(QLatin1String("subsToDownload")).toArray()) {
        const QJsonObject offer = value.toObject();
        if (!offer.value(QLatin1String("mustBeDownloaded")).toBool())
            continue;
        const QString url = offer.value(QLatin1String("downloadUrl")).toString();
        const Reply file = download(url);
        EXPECT_EQ(file.status, 200);
        parts.append({offer.value(QLatin1String("subtitleId")).toInt(), file.body});
    }
    return upload(parts);
}

int freePort() {
    sockaddr_in address{};
    socklen_t size = sizeof(address);
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    auto *any = reinterpret_cast<sockaddr *>(&address);
    if (::bind(socket, any, size) != 0 || ::getsockname(socket, any, &size) != 0)
        throw std::runtime_error("there is no free port");
    ::close(socket);
    return ntohs(address.sin_port);
}

QByteArray srt(const QByteArray &text) {
    return "1\n00:00:01,000 --> 00:00:02,500\n" + text + "\n\n2\n00:00:03,000 --> 00:00:04,000\nAnd on.\n";
}

QByteArray longSrt(int laterMs) {
    const auto clock = [](int ms) {
        return QTime::fromMSecsSinceStartOfDay(ms).toString(QStringLiteral("hh:mm:ss,zzz")).toLatin1();
    };
    QByteArray file;
    int startMs = 5000 + laterMs;
    unsigned chance = 7;
    for (int i = 1; i <= 60; ++i) {
        chance = chance * 1'103'515'245 + 12'345;
        const int lengthMs = 900 + static_cast<int>(chance >> 16) % 2100;
        const QByteArray text = i == 1 ? "<i>Slanted</i>" : "Line " + QByteArray::number(i);
        file += QByteArray::number(i) + '\n' + clock(startMs) + " --> " + clock(startMs + lengthMs) + '\n' +
                text + "\n\n";
        startMs += lengthMs + 200 + static_cast<int>(chance >> 20) % 3000;
    }
    return file;
}

} // namespace murvo::service::test
