// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/StubService.h"

#include <QJsonArray>
#include <QJsonValue>
#include <QStringList>

namespace murvo::test {

/// What a page has told.
struct PageEvent {
    QString name;
    QJsonArray values; ///< the arguments that came with it, empty without one
    double atMs = 0;   ///< since the page was opened
};

/// A page that is driven from here by way of a script in it, over a connection of its own that the service
/// under test does not see. It tells of every event that is triggered on $(window), in order, as "NAME"; of
/// clicks and keys as "dom:TYPE"; and of "opened" first of all. With it the events of the page before are
/// forgotten.
class RemotePage {
  public:
    RemotePage();

    /// A whole document with jQuery and the script, and this in its body.
    [[nodiscard]] QByteArray document(const QByteArray &body) const;

    /// A page with the script is open somewhere, and listens.
    [[nodiscard]] bool isOpen() const { return _isListening && _channel.openStreams(ordersPath) > 0; }
    /// The value of the script in the page, once it has come.
    QJsonValue evaluate(const QString &script);
    /// Navigates a hidden frame to each address, in order, as pages send their requests.
    void send(const QList<QByteArray> &addresses);
    void send(const QByteArray &address) { send(QList{address}); }

    [[nodiscard]] const QList<PageEvent> &events() const { return _events; }
    [[nodiscard]] QList<PageEvent> events(const QString &name) const;
    [[nodiscard]] qsizetype count(const char *name) const;
    /// Names of all but "timeUpdate", joined by blanks.
    [[nodiscard]] QString story() const;
    /// The payloads of the answers to the guid.
    [[nodiscard]] QJsonArray answers(const char *guid) const;
    /// The last reported position of the film; -1 without one.
    [[nodiscard]] double timeMs() const;
    void forget() { _events.clear(); }

  private:
    void receive(const QByteArray &report);

    static inline const QByteArray ordersPath = "orders";
    StubService _channel;
    QList<PageEvent> _events;
    QHash<int, QJsonValue> _results;
    int _lastOrder = 0;
    bool _isListening = false;
};

} // namespace murvo::test
