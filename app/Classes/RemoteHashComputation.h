// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Platform/TaskQueue.h"

#include <QByteArray>
#include <QUrl>

namespace murvo {

class HttpClient;

/// One movie hash over HTTP: HEAD for the size, then GETs of the first and last 64 KiB, one after another on
/// a background queue of its own. It looks at no status: a failed request just leaves a short body. The
/// destructor waits for the queue, so that nothing is posted after it.
class RemoteHashComputation {
  public:
    /// Starts at once; ends in one HashComputed notification, posted on the background queue.
    explicit RemoteHashComputation(const QString &url);

  private:
    void requestSize();
    void requestFirstBlock();
    void requestLastBlock();
    void request(const QByteArray &range, QByteArray &body, void (RemoteHashComputation::*next)());
    void finish();

    const QUrl _url;
    quint64 _size = 0;
    QByteArray _firstBlock;
    QByteArray _lastBlock;
    HttpClient *_http = nullptr; // lives on the queue, owned by its context
    TaskQueue _queue;            // last member: joined before the others go
};

} // namespace murvo
