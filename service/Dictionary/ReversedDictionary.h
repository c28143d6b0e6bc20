// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Dictionary/BilingualDictionary.h"
#include "Dictionary/DictdDictionary.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace murvo::service {

/// A dictionary into English, read backwards: the English words of an entry find its headword.
///
/// Which entry has which English words is gathered at construction on a thread of its own, into an index in
/// memory; the entries stay where they lie. Until that is done look-ups find nothing, but in the first moment
/// they wait. Any thread; owned by Dictionaries. The destructor gives the gathering up.
class ReversedDictionary : public BilingualDictionary {
  public:
    /// path: of the dictionary into English, without the endings.
    ReversedDictionary(const QString &path, DictionarySource source);
    ~ReversedDictionary() override;

    [[nodiscard]] std::vector<Entry> entries(const QString &word) const override;
    [[nodiscard]] bool has(const QString &word) const override;
    [[nodiscard]] bool isReversed() const override { return true; }

    /// Waits until the index is there; false when it is not by then.
    bool waitUntil(std::chrono::steady_clock::time_point latest) const;

  private:
    void gather(const QString &path, const std::stop_token &stop);
    [[nodiscard]] const DictdDictionary *index() const;

    mutable std::mutex _mutex;
    mutable std::condition_variable _gathered;
    std::unique_ptr<DictdDictionary> _byEnglish; ///< null until gathered, never changed after
    std::chrono::steady_clock::time_point _began = std::chrono::steady_clock::now();
    std::jthread _gathering; ///< last: it uses the others
};

/// The words under which an English translation is to be found: "(to) run [fast]" under "run".
struct EnglishKeys {
    QList<QByteArray> keys; ///< likeliest first; none when it is a sentence rather than a word
    QString remark;         ///< what stood in brackets
    bool isVerb = false;    ///< it was written with "to"
};
[[nodiscard]] EnglishKeys englishKeys(const QString &translation);

} // namespace murvo::service
