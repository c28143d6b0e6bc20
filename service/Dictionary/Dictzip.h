// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <list>
#include <mutex>
#include <optional>
#include <vector>

namespace murvo::service {

/// The text of a dictionary, packed by dictzip (gzip in chunks with a table of them in its header) or plain,
/// read at any place without unpacking the rest.
///
/// Mapped where it lies, with the chunks unpacked last at hand: the entries of a word and of its forms often
/// lie together. Any thread. Owned by its dictionary.
class Dictzip {
  public:
    explicit Dictzip(const QString &path);

    [[nodiscard]] bool isOpen() const { return _bytes != nullptr; }

    /// So many bytes from a place of the unpacked text; nothing when the file is damaged or ends before.
    [[nodiscard]] std::optional<QByteArray> read(qint64 offset, qint64 length) const;

  private:
    bool readHeader();
    struct Chunk {
        std::size_t number = 0;
        QByteArray text; ///< empty when the file is damaged there
    };

    [[nodiscard]] QByteArray chunk(std::size_t number) const;
    [[nodiscard]] QByteArray unpack(std::size_t number) const;

    QFile _file;
    const uchar *_bytes = nullptr;
    qint64 _size = 0;                 ///< of the file, in bytes
    qint64 _chunkLength = 0;          ///< unpacked; 0 for a plain file
    std::vector<qint64> _chunkStarts; ///< in the file, and one past the last
    mutable std::mutex _mutex;        ///< guards the rest
    mutable std::list<Chunk> _recent; ///< the last one used comes first
};

} // namespace murvo::service
