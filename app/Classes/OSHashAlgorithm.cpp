// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/OSHashAlgorithm.h"

#include "app/Classes/RemoteHashComputation.h"
#include "app/Classes/VideoHash.h"
#include "app/Platform/NotificationCenter.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

namespace murvo {

namespace {

quint64 sumOfWords(const QByteArray &block) {
    quint64 sum = 0;
    for (qint64 offset = 0; offset < OSHashAlgorithm::chunkSize; offset += qint64{sizeof(quint64)})
        sum += qFromLittleEndian<quint64>(block.constData() + offset);
    return sum;
}

void post(const VideoHash &hash) {
    NotificationCenter::defaultCenter().post(notifications::hashComputed,
                                             {{notifications::hashKey, QVariant::fromValue(hash)}});
}

} // namespace

void OSHashAlgorithm::computeHashForPath(const QString &path) {
    QFile file(path);
    // A directory, a pipe or a device is no film; opening a pipe would even block.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        postFailure();
        return;
    }
    const QByteArray begin = file.read(chunkSize);
    const qint64 size = file.size();
    if (size < chunkSize || !file.seek(size - chunkSize)) {
        postFailure();
        return;
    }
    const QByteArray end = file.read(chunkSize);
    if (begin.size() < chunkSize || end.size() < chunkSize) { // cut short or failing while it is read
        postFailure();
        return;
    }
    computeHashWithFileSize(static_cast<quint64>(size), begin, end);
}

void OSHashAlgorithm::computeHashForURL(const QString &url) {
    cancelRemoteHash();
    remote() = std::make_unique<RemoteHashComputation>(url);
}

void OSHashAlgorithm::cancelRemoteHash() {
    remote().reset();
}

void OSHashAlgorithm::computeHashWithFileSize(quint64 fileSize, const QByteArray &beginData,
                                              const QByteArray &endData) {
    post({.fileHash = fileSize + sumOfWords(beginData) + sumOfWords(endData), .fileSize = fileSize});
}

QString OSHashAlgorithm::stringForHash(quint64 hash) {
    return QString::number(hash, 16);
}

void OSHashAlgorithm::postFailure() {
    post({});
}

std::unique_ptr<RemoteHashComputation> &OSHashAlgorithm::remote() {
    static std::unique_ptr<RemoteHashComputation> computation;
    return computation;
}

} // namespace murvo
