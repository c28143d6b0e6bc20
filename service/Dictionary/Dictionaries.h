// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Dictionary/DictdDictionary.h"
#include "Dictionary/Entry.h"

#include <QString>

#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace murvo::service {

/// Where an entry comes from, in the makers' own words.
struct DictionarySource {
    QString name;
    QString licence;
};

/// The dictionaries from English that are installed, by the language that they translate to.
///
/// Any thread; owned by the EmbeddedService. A dictionary is opened when its language is first asked for.
class Dictionaries {
  public:
    /// One dictionary, opened.
    struct Opened {
        explicit Opened(const QString &path);

        DictdDictionary dictionary;
        DictionarySource source;
    };

    /// folder: where the packages put them.
    explicit Dictionaries(const QString &folder);

    /// The dictionaries of a language (ISO 639-2/T); empty when none is installed that can be read.
    [[nodiscard]] const std::vector<std::unique_ptr<Opened>> &of(const QString &language);

  private:
    QString _folder;
    std::mutex _mutex;
    std::map<QString, std::vector<std::unique_ptr<Opened>>> _byLanguage; ///< never shrinks
};

} // namespace murvo::service
