// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/DiskFull.h"

#include <QList>
#include <QString>

#include <SQLiteCpp/SQLiteCpp.h>

#include <mutex>
#include <type_traits>
#include <utility>

namespace murvo::service {

/// The one SQLite file of the service, brought to the newest schema when opened.
///
/// One connection behind a mutex, used from any thread of the server's pool; owned by the EmbeddedService.
/// It knows no table: those are the business of the *Table classes. Every call may throw SQLite::Exception,
/// and DiskFull in its place where that is the reason.
class Database {
  public:
    /// One numbered schema file: brings the database from number - 1 to number.
    struct SchemaStep {
        int number;
        QString sql;
    };

    /// Opens or makes the file and applies the steps that it has not seen, all in one transaction.
    /// Throws std::runtime_error for a file of a newer schema than the last step.
    Database(const QString &filePath, const QList<SchemaStep> &steps);

    /// The steps built into the program, in order.
    [[nodiscard]] static QList<SchemaStep> builtInSteps();

    /// Runs work(connection) alone.
    template<typename Work>
    auto run(Work &&work) {
        const std::lock_guard lock(_mutex);
        try {
            return std::forward<Work>(work)(_connection);
        } catch (const SQLite::Exception &failure) {
            throwIfFull(failure);
            throw;
        }
    }

    /// Runs work(connection) alone and in a transaction: when it returns, its changes are on the disk.
    template<typename Work>
    auto transact(Work &&work) {
        return run([&work](SQLite::Database &connection) {
            SQLite::Transaction transaction(connection, SQLite::TransactionBehavior::IMMEDIATE);
            if constexpr (std::is_void_v<decltype(work(connection))>) {
                std::forward<Work>(work)(connection);
                transaction.commit();
            } else {
                auto result = std::forward<Work>(work)(connection);
                transaction.commit();
                return result;
            }
        });
    }

    /// Takes all that the other one holds in place of what is here, at once or not at all: when it throws,
    /// not at all. The other one has the same schema, page size and encoding. first is called when nobody
    /// else of this process can write any more; what it throws comes through, too.
    void takeAllOf(SQLite::Database &other, const std::function<void()> &first);

    /// Another one whenever the content may be another than before, whoever has changed it.
    struct Generation {
        int own = -1;    ///< counts what this connection has changed
        int others = -1; ///< counts what others have

        friend bool operator==(const Generation &, const Generation &) = default;
    };
    [[nodiscard]] Generation generation();

    /// For calls that use a connection of their own.
    static void throwIfFull(const SQLite::Exception &failure);

  private:
    void migrate(const QList<SchemaStep> &steps);

    std::mutex _mutex;
    SQLite::Database _connection;
};

} // namespace murvo::service
