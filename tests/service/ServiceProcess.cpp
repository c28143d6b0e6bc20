// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceProcess.h"

#include "service/ServiceFixture.h"

#include <QJsonDocument>
#include <QUrl>

namespace murvo::service::test {

namespace {

constexpr int limitMs = 30'000;

} // namespace

ServiceProcess::ServiceProcess(const QString &dataFolder) {
    _process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    _process.start(QStringLiteral(MURVO_SERVICE_PROCESS), {dataFolder});
    while (!_process.canReadLine() && _process.waitForReadyRead(limitMs)) {
    }
    _baseUrl = QString::fromUtf8(_process.readLine()).trimmed();
    _pid = _process.processId();
    EXPECT_FALSE(_baseUrl.isEmpty());
}

ServiceProcess::~ServiceProcess() {
    _process.closeWriteChannel();
    waitForEnd();
}

void ServiceProcess::waitForEnd() {
    EXPECT_TRUE(_process.state() == QProcess::NotRunning || _process.waitForFinished(limitMs));
}

Reply ServiceProcess::get(const QString &path) const {
    return ask("GET", path, {});
}

Reply ServiceProcess::put(const QString &path, const QJsonObject &body) const {
    return ask("PUT", path, QJsonDocument(body).toJson());
}

Reply ServiceProcess::ask(const char *method, const QString &path, const QByteArray &body) const {
    const QUrl base(_baseUrl);
    httplib::Client client("127.0.0.1", base.port());
    client.set_read_timeout(20);
    httplib::Request request;
    request.method = method;
    request.path = base.path().toStdString() + path.toStdString();
    request.body = body.toStdString();
    return replyOf(client.send(request));
}

} // namespace murvo::service::test
