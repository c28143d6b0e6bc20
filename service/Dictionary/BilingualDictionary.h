// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Dictionary/Entry.h"

#include <QString>

#include <utility>
#include <vector>

namespace murvo::service {

/// Where an entry comes from, in the makers' own words.
struct DictionarySource {
    QString name;
    QString licence;
};

/// What English words mean in one language, however the dictionary behind it is laid out.
///
/// Any thread; owned by Dictionaries.
class BilingualDictionary {
  public:
    explicit BilingualDictionary(DictionarySource source)
        : _source(std::move(source)) {}
    virtual ~BilingualDictionary() = default;
    BilingualDictionary(const BilingualDictionary &) = delete;
    BilingualDictionary &operator=(const BilingualDictionary &) = delete;

    [[nodiscard]] const DictionarySource &source() const { return _source; }
    /// The word's entries, each with at least one sense.
    [[nodiscard]] virtual std::vector<Entry> entries(const QString &word) const = 0;
    [[nodiscard]] virtual bool has(const QString &word) const = 0;
    /// Made from one of the other direction: less to be relied on than one from English.
    [[nodiscard]] virtual bool isReversed() const = 0;

  private:
    DictionarySource _source;
};

} // namespace murvo::service
