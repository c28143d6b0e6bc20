// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Dictionary/BilingualDictionary.h"
#include "NewestOnly.h"

#include <QString>

#include <functional>
#include <map>
#include <memory>
#include <mutex>
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
    /// Whether there are any, by their files: none is opened.
    [[nodiscard]] bool areThere(const QString &language) const;
    /// Opens those of the language that it is told by the call, in the background, so that the first look-up
    /// finds them ready. Returns at once; the call is made on that thread and may throw.
    void prepare(const std::function<QString()> &language);

  private:
    [[nodiscard]] List open(const QString &language) const;

    QString _folder;
    std::mutex _mutex;
    std::map<QString, List> _byLanguage; ///< never shrinks
    NewestOnly _preparing;               ///< last: its thread uses the others
};

} // namespace murvo::service
