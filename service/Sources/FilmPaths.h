// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QString>

#include <mutex>
#include <utility>

namespace murvo::service {

/// Where the films lie that the player has announced since the start, by hash and size.
///
/// Written by the player's thread, read by the server's pool. Films without a hash share one place: the last
/// one announced is the one that the next lookup asks for.
class FilmPaths {
  public:
    void announce(const QString &path, quint64 movieHash, quint64 sizeBytes);

    /// Empty when not announced. fileName is the name in the lookup, possibly cut short: a film without a
    /// hash is only found by a beginning of its own name, so that another film's lookup does not get its
    /// path.
    [[nodiscard]] QString find(quint64 movieHash, quint64 sizeBytes, const QString &fileName) const;

  private:
    using Key = std::pair<quint64, quint64>;

    mutable std::mutex _mutex;
    QHash<Key, QString> _paths;
};

} // namespace murvo::service
