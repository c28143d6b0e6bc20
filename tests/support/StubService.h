// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTcpServer>

#include <functional>

class QTcpSocket;

namespace murvo::test {

/// One request as it came over the wire.
struct RecordedRequest {
    QByteArray method;
    QByteArray target; ///< path and query as sent
    QByteArray head;   ///< request line and headers, raw
    QByteArray body;

    /// Value of the header whose name is written exactly so in any case; null without it.
    [[nodiscard]] QByteArray header(const QByteArray &name) const;
};

/// What the stub does with a request.
struct StubReply {
    int status = 200;
    QByteArray contentType = "text/html; charset=utf-8";
    QByteArray body = {};
    QList<QByteArray> extraHeaders = {}; ///< whole lines without the line end
    bool isReset = false;                ///< closes the connection without an answer
    bool isHeld = false;                 ///< answered by releaseHeld(), or never
    bool isDripped = false;              ///< a byte every 100 ms
    qint64 resetAfter = -1;              ///< bytes, head included, after which the connection is reset
    qint64 declaredLength = -1;          ///< Content-Length to send in place of the body's; -2 sends none
    bool isStream = false;               ///< stays open for what stream() adds
};

/// A web service on loopback that answers by table and keeps every request byte for byte. It stands for a
/// service that is not ours: pages with jQuery and nothing else. Lives on the thread of its event loop.
class StubService : public QObject {
    Q_OBJECT

  public:
    using Handler = std::function<StubReply(const RecordedRequest &request)>;

    explicit StubService(QObject *parent = nullptr);
    ~StubService() override;

    /// Ends in "/".
    [[nodiscard]] QString baseUrl() const;

    /// Answers requests whose path (without query and leading "/") is exactly path. Later ones replace
    /// earlier.
    void on(const QByteArray &path, Handler handler);
    void on(const QByteArray &path, const StubReply &reply);

    /// Serves the bytes, or the range of them that is asked for.
    [[nodiscard]] static Handler bytesWithRanges(const QByteArray &bytes);

    [[nodiscard]] const QList<RecordedRequest> &requests() const { return _requests; }
    [[nodiscard]] QList<RecordedRequest> requestsTo(const QByteArray &path) const;
    void forgetRequests() { _requests.clear(); }

    /// Refuses all connections and closes those that there are, as a service does whose process is killed;
    /// takes them again on the same port.
    void goDown();
    void comeBack();

    /// Answers now what was held, to the connections that still exist. Returns how many they were.
    int releaseHeld();

    /// How many replies to the path are still open.
    [[nodiscard]] qsizetype openStreams(const QByteArray &path) const { return _streams.count(path); }
    /// Adds the bytes to the last of them.
    void stream(const QByteArray &path, const QByteArray &bytes);

  private:
    void readFrom(QTcpSocket *socket);
    void answer(QTcpSocket *socket, const RecordedRequest &request);

    QHash<QByteArray, Handler> _handlers;
    QHash<QTcpSocket *, QByteArray> _received;
    QList<RecordedRequest> _requests;
    QList<std::pair<QPointer<QTcpSocket>, QByteArray>> _held; // with the bytes to send
    QMultiHash<QByteArray, QTcpSocket *> _streams;            // by path
    QTcpServer _server;
    quint16 _port = 0;
};

} // namespace murvo::test
