// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QProcess>
#include <QString>

namespace murvo::service::test {

struct Reply;

/// The service in a process of its own, which can be killed.
class ServiceProcess {
  public:
    /// Started and listening, or the test fails.
    explicit ServiceProcess(const QString &dataFolder);
    /// Ends it in order.
    ~ServiceProcess();
    ServiceProcess(const ServiceProcess &) = delete;
    ServiceProcess &operator=(const ServiceProcess &) = delete;

    /// Any thread.
    [[nodiscard]] qint64 pid() const { return _pid; }
    /// Until it is gone.
    void waitForEnd();

    [[nodiscard]] Reply get(const QString &path) const;
    [[nodiscard]] Reply put(const QString &path, const QJsonObject &body) const;

  private:
    [[nodiscard]] Reply ask(const char *method, const QString &path, const QByteArray &body) const;

    QProcess _process;
    QString _baseUrl;
    qint64 _pid = 0;
};

} // namespace murvo::service::test
