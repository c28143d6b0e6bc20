// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/TimingTable.h"

#include "Store/Database.h"

namespace murvo::service {

Timing TimingTable::timing(qint32 subtitleId) {
    return _database.run([subtitleId](SQLite::Database &connection) {
        SQLite::Statement query(connection, "SELECT offset_ms, numerator, denominator, cut_at_ms, "
                                            "cut_offset_ms FROM timings WHERE subtitle_id = ?");
        query.bind(1, subtitleId);
        Timing timing;
        if (!query.executeStep())
            return timing;
        // A damaged store's row must not end the program.
        if (query.getColumn(1).getInt() < 1 || query.getColumn(2).getInt() < 1)
            return timing;
        timing.offsetMs = query.getColumn(0).getInt64();
        timing.rateNumerator = query.getColumn(1).getInt();
        timing.rateDenominator = query.getColumn(2).getInt();
        if (!query.getColumn(3).isNull())
            timing.cut = Cut{query.getColumn(3).getInt64(), query.getColumn(4).getInt64()};
        return timing;
    });
}

void TimingTable::setTiming(qint32 subtitleId, const Timing &timing) {
    _database.transact([&](SQLite::Database &connection) {
        SQLite::Statement update(connection,
                                 "INSERT OR REPLACE INTO timings (subtitle_id, offset_ms, numerator, "
                                 "denominator, cut_at_ms, cut_offset_ms) VALUES (?, ?, ?, ?, ?, ?)");
        update.bind(1, subtitleId);
        update.bind(2, static_cast<int64_t>(timing.offsetMs));
        update.bind(3, timing.rateNumerator);
        update.bind(4, timing.rateDenominator);
        if (timing.cut) { // what is not bound is NULL
            update.bind(5, static_cast<int64_t>(timing.cut->atMs));
            update.bind(6, static_cast<int64_t>(timing.cut->offsetMs));
        }
        update.exec();
    });
}

} // namespace murvo::service
