// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Dictionary/BilingualDictionary.h"

#include <QString>

#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace murvo::service {

/// The dictionaries between English and other languages that are installed, by the other language.
///
/// Any thread; owned by the EmbeddedService. A dictionary is opened when its language is first asked for.
class Dictionaries {
  public:
    using List = std::vector<std::unique_ptr<BilingualDictionary>>;

    /// folder: where the packages put them.
    explicit Dictionaries(const QString &folder);

    /// The dictionaries of a language (ISO 639-2/T), those from English first; empty when none is installed
    /// that can be read.
    [[nodiscard]] const List &of(const QString &language);
    /// Opens them in the background, so that the first look-up finds them ready. Returns at once; one thread.
    void prepare(const QString &language);

  private:
    QString _folder;
    std::mutex _mutex;
    std::map<QString, List> _byLanguage; ///< never shrinks
    std::jthread _preparing;             ///< last: it uses the others
};

} // namespace murvo::service
