// SPDX-License-Identifier: GPL-3.0-or-later
#include "conformance/RemotePage.h"

#include "support/Wait.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <algorithm>

namespace murvo::test {

namespace {

const QByteArray script = R"js(
(() => {
  const waiting = [];
  let isSending = false;
  const send = async () => {
    if (isSending) return;
    isSending = true;
    while (waiting.length)
      await fetch(channel + 'reports', {method: 'POST', keepalive: true, body: JSON.stringify(waiting.splice(0))});
    isSending = false;
  };
  window.tell = (name, ...values) => {
    waiting.push({name, values, at: performance.now()});
    send();
  };
  window.ask = url => {
    const frame = document.createElement('iframe');
    frame.hidden = true;
    frame.src = url;
    document.body.append(frame);
  };
  const trigger = $.fn.trigger;
  $.fn.trigger = function (name, ...values) {
    if (this[0] === window) tell(name, ...values);
    return trigger.call(this, name, ...values);
  };
  for (const type of ['click', 'dblclick', 'keydown'])
    document.addEventListener(type, event => tell('dom:' + type, event.key || event.clientY));
  tell('opened'); // before what the page's own scripts ask and hear
  const orders = new EventSource(channel + 'orders');
  orders.onopen = () => tell('listens');
  orders.onmessage = event => {
    const order = JSON.parse(event.data);
    let value;
    try { value = (0, eval)(order.script); } catch (error) { value = String(error); }
    tell('done', order.number, value === undefined ? null : value);
  };
})();)js";

const QList<QByteArray> fromAnyPage = {"Access-Control-Allow-Origin: *"};

} // namespace

RemotePage::RemotePage() {
    _channel.on(ordersPath, {.contentType = "text/event-stream",
                             .extraHeaders = fromAnyPage,
                             .declaredLength = -2,
                             .isStream = true});
    _channel.on("reports", [this](const RecordedRequest &request) {
        receive(request.body);
        _channel.forgetRequests();
        return StubReply{.extraHeaders = fromAnyPage};
    });
}

QByteArray RemotePage::document(const QByteArray &body) const {
    return "<!doctype html><html><head><script src='/jquery.js'></script><script>const channel = '" +
           _channel.baseUrl().toLatin1() + "';" + script + "</script></head><body style='margin:0'>" + body +
           "</body></html>";
}

void RemotePage::receive(const QByteArray &report) {
    const QJsonArray told = QJsonDocument::fromJson(report).array();
    for (const QJsonValue each : told) {
        const QJsonArray values = each[QLatin1String("values")].toArray();
        const QString name = each[QLatin1String("name")].toString();
        if (name == QLatin1String("done")) {
            _results.insert(values[0].toInt(), values[1]);
            continue;
        }
        if (name == QLatin1String("listens")) {
            _isListening = true;
            continue;
        }
        if (name == QLatin1String("opened")) {
            _events.clear();
            _isListening = false;
        }
        _events.append({.name = name, .values = values, .atMs = each[QLatin1String("at")].toDouble()});
    }
}

QJsonValue RemotePage::evaluate(const QString &text) {
    if (!waitUntil([this] { return isOpen(); })) {
        ADD_FAILURE() << "no page is open to run: " << text.toStdString();
        return {};
    }
    const int number = ++_lastOrder;
    const QJsonObject order{{QStringLiteral("number"), number}, {QStringLiteral("script"), text}};
    _channel.stream(ordersPath, "data: " + QJsonDocument(order).toJson(QJsonDocument::Compact) + "\n\n");
    EXPECT_TRUE(waitUntil([&] { return _results.contains(number); })) << text.toStdString();
    return _results.take(number);
}

void RemotePage::send(const QList<QByteArray> &addresses) {
    QString calls;
    for (const QByteArray &address : addresses)
        calls += QStringLiteral("ask('%1');").arg(QString::fromUtf8(address));
    std::ignore = evaluate(calls);
}

QList<PageEvent> RemotePage::events(const QString &name) const {
    QList<PageEvent> found;
    std::copy_if(_events.begin(), _events.end(), std::back_inserter(found),
                 [&](const PageEvent &event) { return event.name == name; });
    return found;
}

qsizetype RemotePage::count(const char *name) const {
    return events(QString::fromLatin1(name)).size();
}

QString RemotePage::story() const {
    QStringList names;
    for (const PageEvent &event : _events) {
        if (event.name != QLatin1String("timeUpdate"))
            names.append(event.name);
    }
    return names.join(u' ');
}

QJsonArray RemotePage::answers(const char *guid) const {
    QJsonArray found;
    const QList<PageEvent> answers = events(QStringLiteral("response:") + QLatin1String(guid));
    for (const PageEvent &answer : answers)
        found.append(answer.values.at(0));
    return found;
}

double RemotePage::timeMs() const {
    const QList<PageEvent> reports = events(QStringLiteral("timeUpdate"));
    return reports.isEmpty() ? -1 : reports.last().values.at(0).toDouble();
}

} // namespace murvo::test
