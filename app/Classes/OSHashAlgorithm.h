// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

namespace murvo {

class RemoteHashComputation;

/// Computes the movie hash: file size plus the little-endian 64-bit words of the first and last 64 KiB, all
/// modulo 2^64. Each computation ends in exactly one HashComputed notification, whose user information holds
/// a VideoHash under "hash"; a film that cannot be hashed gives the VideoHash with both fields 0.
///
/// Call it on the main thread. A local file's notification is posted before the call returns, a remote one's
/// on a background queue.
class OSHashAlgorithm {
  public:
    static constexpr qint64 chunkSize = 65536;

    /// Reads at most 128 KiB of the file at path. Anything but a readable regular file counts as unreadable.
    static void computeHashForPath(const QString &path);

    /// Asks the server for the size (HEAD) and the first and last 64 KiB (ranged GETs), 10 s each at most
    /// without an answer. Returns at once; a computation still running is given up and posts nothing.
    static void computeHashForURL(const QString &url);

    /// Gives up a remote computation. After the call it posts nothing any more.
    static void cancelRemoteHash();

    /// Both blocks must hold at least chunkSize bytes; only their first chunkSize bytes count.
    static void computeHashWithFileSize(quint64 fileSize, const QByteArray &beginData,
                                        const QByteArray &endData);

    /// Lower-case hexadecimal without prefix or padding: 255 gives "ff".
    [[nodiscard]] static QString stringForHash(quint64 hash);

    static void postFailure();

  private:
    static std::unique_ptr<RemoteHashComputation> &remote();
};

} // namespace murvo
