// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <optional>
#include <vector>

namespace murvo::service {

/// The text of a dictionary, packed by dictzip (gzip in chunks with a table of them in its header) or plain,
/// read at any place without unpacking the rest.
///
/// Mapped where it lies; read-only after construction, any thread. Owned by its dictionary.
class Dictzip {
  public:
    explicit Dictzip(const QString &path);

    [[nodiscard]] bool isOpen() const { return _bytes != nullptr; }

    /// What was unpacked last, for reads of places that lie together; one thread's own.
    struct LastChunk {
        std::size_t number = 0;
        QByteArray text; ///< its beginning, empty at first
    };

    /// So many bytes from a place of the unpacked text; nothing when the file is damaged or ends before.
    [[nodiscard]] std::optional<QByteArray> read(qint64 offset, qint64 length, LastChunk &last) const;

  private:
    bool readHeader();
    /// The beginning of a chunk, unpacked: so many bytes, fewer when it has no more.
    [[nodiscard]] std::optional<QByteArray> unpack(std::size_t number, qint64 length) const;
    /// The same, taken from the last one where that has them; false when the file is damaged there.
    bool bring(std::size_t number, qint64 length, LastChunk &last) const;

    QFile _file;
    const uchar *_bytes = nullptr;
    qint64 _chunkLength = 0;          ///< unpacked; 0 for a plain file
    std::vector<qint64> _chunkStarts; ///< in the file, and one past the last
};

} // namespace murvo::service
