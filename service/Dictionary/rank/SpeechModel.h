// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

namespace murvo::service {

/// A form of a word, in lower case, and how often people say it.
struct SaidForm {
    QByteArray form;
    double perMillion = 0;
};

/// The forms that a speech recogniser expects, from its language model in the packed form of pocketsphinx:
/// what was counted of single words; the pairs and triples behind them are passed over.
///
/// Throws std::runtime_error when the file cannot be read as one.
[[nodiscard]] std::vector<SaidForm> readSpeechModel(const QString &path);

} // namespace murvo::service
