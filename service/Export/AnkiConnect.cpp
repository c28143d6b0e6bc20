// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/AnkiConnect.h"

#include "Export/AnkiNoteType.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <httplib.h>

#include <atomic>

namespace murvo::service {

namespace {

constexpr int version = 6;
constexpr time_t connectTimeoutSeconds = 1;
// Anki answers in its window's own thread, which may be busy.
constexpr time_t answerTimeoutSeconds = 10;

[[noreturn]] void fail(const char *code, const QString &message) {
    throw AnkiFailure({QLatin1String(code), message});
}

QJsonObject fieldsOf(const AnkiNote &note) {
    QJsonObject fields;
    for (std::size_t i = 0; i < ankiFields.size(); ++i)
        fields.insert(ankiFields[i], note.fields[i]);
    return fields;
}

QJsonObject noteType() {
    QJsonArray fields;
    for (const QLatin1String name : ankiFields)
        fields.append(name);
    const QJsonObject card{{QStringLiteral("Name"), QStringLiteral("Word")},
                           {QStringLiteral("Front"), ankiFront()},
                           {QStringLiteral("Back"), ankiBack()}};
    return {{QStringLiteral("modelName"), ankiNoteTypeName},
            {QStringLiteral("inOrderFields"), fields},
            {QStringLiteral("css"), ankiStyle()},
            {QStringLiteral("isCloze"), false},
            {QStringLiteral("cardTemplates"), QJsonArray{card}}};
}

QJsonObject newNote(const AnkiNote &note) {
    const QJsonObject options{{QStringLiteral("allowDuplicate"), false},
                              {QStringLiteral("duplicateScope"), QStringLiteral("deck")}};
    return {{QStringLiteral("deckName"), ankiDeckName},
            {QStringLiteral("modelName"), ankiNoteTypeName},
            {QStringLiteral("fields"), fieldsOf(note)},
            {QStringLiteral("tags"), QJsonArray{ankiTag}},
            {QStringLiteral("options"), options}};
}

/// The search for the note of that word: what has a meaning in searches is made to have none.
QString searchFor(const AnkiNote &note) {
    QString word = note.field(QLatin1String("Word"));
    for (const QChar special : QStringLiteral("\\\"*_:"))
        word.replace(special, u'\\' + QString(special));
    return QStringLiteral("\"note:%1\" \"Word:%2\"").arg(ankiNoteTypeName, word);
}

} // namespace

struct AnkiConnect::Connection {
    explicit Connection(int port)
        : client("127.0.0.1", port) {
        client.set_connection_timeout(connectTimeoutSeconds);
        client.set_read_timeout(answerTimeoutSeconds);
        client.set_write_timeout(answerTimeoutSeconds);
    }

    httplib::Client client;
    std::atomic<bool> isStopped{false};
};

AnkiConnect::AnkiConnect(int port)
    : _connection(std::make_unique<Connection>(port)) {}

AnkiConnect::~AnkiConnect() = default;

void AnkiConnect::stop() {
    _connection->isStopped = true;
    _connection->client.stop();
}

AnkiConnect::Answer AnkiConnect::ask(const char *action, const QJsonObject &parameters) {
    const QJsonObject question{{QStringLiteral("action"), QLatin1String(action)},
                               {QStringLiteral("version"), version},
                               {QStringLiteral("params"), parameters}};
    const QByteArray body = QJsonDocument(question).toJson(QJsonDocument::Compact);
    if (_connection->isStopped)
        fail("ankiStopped", QStringLiteral("The service is stopping."));
    const httplib::Result reply = _connection->client.Post("/", body.toStdString(), "application/json");
    if (!reply)
        fail("ankiUnreachable",
             QStringLiteral("Anki does not answer. It must be running, with its add-on AnkiConnect."));
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(reply->body));
    const QJsonObject answer = document.object();
    if (reply->status != 200 || !answer.contains(QLatin1String("result")) ||
        !answer.contains(QLatin1String("error")))
        fail("ankiStrange", QStringLiteral("What answers at Anki's address is not its add-on AnkiConnect."));
    return {answer[QLatin1String("result")], answer[QLatin1String("error")].toString()};
}

QJsonValue AnkiConnect::demand(const char *action, const QJsonObject &parameters) {
    const Answer answer = ask(action, parameters);
    if (!answer.error.isEmpty())
        fail("ankiRefused", QStringLiteral("Anki refuses: %1").arg(answer.error));
    return answer.result;
}

void AnkiConnect::prepare() {
    if (demand("version").toInt() < version)
        fail("ankiTooOld", QStringLiteral("Anki's add-on AnkiConnect is too old; bring it up to date."));
    demand("createDeck", {{QStringLiteral("deck"), ankiDeckName}});
    if (!demand("modelNames").toArray().contains(ankiNoteTypeName))
        demand("createModel", noteType());
}

void AnkiConnect::storeMedia(const AnkiMedia &file) {
    demand("storeMediaFile", {{QStringLiteral("filename"), file.name},
                              {QStringLiteral("data"), QString::fromLatin1(file.content.toBase64())}});
}

qint64 AnkiConnect::find(const QString &query) {
    const QJsonArray found = demand("findNotes", {{QStringLiteral("query"), query}}).toArray();
    return found.isEmpty() ? 0 : found[0].toInteger();
}

AnkiConnect::Outcome AnkiConnect::add(const AnkiNote &note) {
    // One at a time: of several the add-on does not tell which it refused.
    const Answer answer = ask("addNotes", {{QStringLiteral("notes"), QJsonArray{newNote(note)}}});
    const qint64 added = answer.result.toArray().at(0).toInteger();
    if (added > 0)
        return {added, {}};
    const qint64 earlier = find(searchFor(note));
    if (earlier > 0)
        return update(earlier, note);
    return {0, answer.error.isEmpty() ? QStringLiteral("Anki did not take the note.") : answer.error};
}

AnkiConnect::Outcome AnkiConnect::update(qint64 noteId, const AnkiNote &note) {
    const Answer answer = sendFields(noteId, note);
    if (answer.error.isEmpty())
        return {noteId, {}};
    if (find(QStringLiteral("nid:%1").arg(noteId)) == 0)
        return {};
    return {0, answer.error};
}

AnkiConnect::Answer AnkiConnect::sendFields(qint64 noteId, const AnkiNote &note) {
    const QJsonObject changed{{QStringLiteral("id"), noteId}, {QStringLiteral("fields"), fieldsOf(note)}};
    return ask("updateNoteFields", {{QStringLiteral("note"), changed}});
}

} // namespace murvo::service
