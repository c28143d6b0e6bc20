// SPDX-License-Identifier: GPL-3.0-or-later
#include "Vocabulary/Lexicon.h"

#include "Vocabulary/WordKey.h"

namespace murvo::service {

std::optional<QString> Lexicon::lemma(const QString &form) const {
    const auto key = wordKey(form);
    if (!key || key->contains(u' '))
        return key;
    return wordKey(_english.lemmas(form.trimmed()).value(0, *key));
}

} // namespace murvo::service
