// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/RemoteHashComputation.h"

#include "app/Classes/OSHashAlgorithm.h"
#include "app/Platform/HttpClient.h"

namespace murvo {

namespace {

constexpr std::chrono::seconds requestTimeout{10};
constexpr auto chunkSize = static_cast<quint64>(OSHashAlgorithm::chunkSize);

// Compressed bodies would give the length and the bytes of the compressed form.
const HttpHeader identityEncoding{QByteArrayLiteral("Accept-Encoding"), QByteArrayLiteral("identity")};

} // namespace

RemoteHashComputation::RemoteHashComputation(const QString &url)
    : _url(url)
    , _queue(QStringLiteral("remote hash")) {
    _queue.async([this] {
        _http = new HttpClient(_queue.context());
        requestSize();
    });
}

void RemoteHashComputation::requestSize() {
    HttpHandlers handlers;
    handlers.didReceiveResponse = [this](const HttpResponse &response) {
        // A server that gives no length (-1) counts as one of 2^64 - 1 bytes.
        _size = static_cast<quint64>(response.expectedContentLength);
    };
    handlers.didFinishLoading = [this] { requestFirstBlock(); };
    handlers.didFailWithError = [this](const QString &) {
        _size = 0;
        requestFirstBlock();
    };
    _http->start({.method = "HEAD", .url = _url, .headers = {identityEncoding}, .timeout = requestTimeout},
                 std::move(handlers));
}

void RemoteHashComputation::requestFirstBlock() {
    if (_size < chunkSize) {
        OSHashAlgorithm::postFailure();
        return;
    }
    request("bytes=0-" + QByteArray::number(chunkSize - 1), _firstBlock,
            &RemoteHashComputation::requestLastBlock);
}

void RemoteHashComputation::requestLastBlock() {
    // The upper bound is the size itself, one beyond the last byte: servers stop at the end of the film.
    request("bytes=" + QByteArray::number(_size - chunkSize) + '-' + QByteArray::number(_size), _lastBlock,
            &RemoteHashComputation::finish);
}

void RemoteHashComputation::request(const QByteArray &range, QByteArray &body,
                                    void (RemoteHashComputation::*next)()) {
    HttpHandlers handlers;
    handlers.didReceiveData = [&body](const QByteArray &chunk) {
        // A server that ignores the range sends the whole film: what lies beyond the block is not kept.
        const qint64 missing = OSHashAlgorithm::chunkSize - body.size();
        body.append(chunk.left(missing));
        return chunk.size() <= missing ? HttpFlow::More : HttpFlow::Enough;
    };
    handlers.didFinishLoading = [this, next] { (this->*next)(); };
    handlers.didFailWithError = [this, next, &body](const QString &) {
        body.clear();
        (this->*next)();
    };
    _http->start({.method = "GET",
                  .url = _url,
                  .headers = {identityEncoding, {"Range", range}},
                  .timeout = requestTimeout},
                 std::move(handlers));
}

void RemoteHashComputation::finish() {
    if (_firstBlock.size() < OSHashAlgorithm::chunkSize || _lastBlock.size() < OSHashAlgorithm::chunkSize)
        OSHashAlgorithm::postFailure();
    else
        OSHashAlgorithm::computeHashWithFileSize(_size, _firstBlock, _lastBlock);
}

} // namespace murvo
