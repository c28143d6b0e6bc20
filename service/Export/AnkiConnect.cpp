// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/AnkiConnect.h"

#include "Export/AnkiNoteType.h"
#include "Store/AnkiTable.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <httplib.h>

#include <atomic>
#include <optional>
#include <utility>

namespace murvo::service {

namespace {

constexpr int version = 6;
constexpr time_t connectTimeoutSeconds = 1;
// Anki answers in its window's own thread, which may be busy.
constexpr time_t answerTimeoutSeconds = 10;
// What is asked for are names and numbers.
constexpr size_t largestAnswerBytes = 1024UL * 1024;
constexpr qsizetype longestMessage = 500;

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
    Connection(int port, QString usedKey)
        : client("127.0.0.1", port)
        , key(std::move(usedKey)) {
        client.set_connection_timeout(connectTimeoutSeconds);
        client.set_read_timeout(answerTimeoutSeconds);
        client.set_write_timeout(answerTimeoutSeconds);
    }

    /// None when nobody answers, or with more than anybody should.
    [[nodiscard]] std::optional<httplib::Response> post(const QByteArray &body) {
        std::string answer;
        httplib::Request request;
        request.method = "POST";
        request.path = std::string("/"); // from the letters alone GCC 12 takes fright at -O3
        request.set_header("Content-Type", "application/json");
        request.body = body.toStdString();
        request.content_receiver = [&answer](const char *data, size_t length, uint64_t, uint64_t) {
            answer.append(data, length);
            return answer.size() <= largestAnswerBytes;
        };
        const httplib::Result reply = client.send(request);
        if (!reply)
            return std::nullopt;
        httplib::Response response = *reply;
        response.body = std::move(answer);
        return response;
    }

    httplib::Client client;
    const QString key;
    std::atomic<bool> isStopped{false};
};

AnkiConnect::AnkiConnect(int port, const QString &key)
    : _connection(std::make_unique<Connection>(port, key)) {}

AnkiConnect::~AnkiConnect() = default;

void AnkiConnect::stop() {
    _connection->isStopped = true;
    _connection->client.stop();
}

AnkiConnect::Answer AnkiConnect::ask(const char *action, const QJsonObject &parameters) {
    QJsonObject question{{QStringLiteral("action"), QLatin1String(action)},
                         {QStringLiteral("version"), version},
                         {QStringLiteral("params"), parameters}};
    if (!_connection->key.isEmpty())
        question.insert(QStringLiteral("key"), _connection->key);
    const QByteArray body = QJsonDocument(question).toJson(QJsonDocument::Compact);
    if (_connection->isStopped)
        fail("ankiStopped", QStringLiteral("The service is stopping."));
    const auto reply = _connection->post(body);
    if (!reply)
        fail("ankiUnreachable",
             QStringLiteral("Anki does not answer. It must be running, with its add-on AnkiConnect."));
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(reply->body));
    const QJsonObject answer = document.object();
    if (reply->status != 200 || !answer.contains(QLatin1String("result")) ||
        !answer.contains(QLatin1String("error")))
        fail("ankiStrange", QStringLiteral("What answers at Anki's address is not its add-on AnkiConnect."));
    return {answer[QLatin1String("result")], answer[QLatin1String("error")].toString().left(longestMessage)};
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
        return {SentNote::deleted, {}};
    return {0, answer.error};
}

AnkiConnect::Answer AnkiConnect::sendFields(qint64 noteId, const AnkiNote &note) {
    const QJsonObject changed{{QStringLiteral("id"), noteId}, {QStringLiteral("fields"), fieldsOf(note)}};
    return ask("updateNoteFields", {{QStringLiteral("note"), changed}});
}

} // namespace murvo::service
