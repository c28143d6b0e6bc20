// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/rank/SpeechModel.h"

#include <QFile>
#include <QtEndian>

#include <cmath>
#include <stdexcept>

namespace murvo::service {

namespace {

constexpr char signature[] = "Trie Language Model";
constexpr qsizetype signatureLength = sizeof signature - 1;
constexpr qsizetype numberLength = 4;
// Of each length of word groups but the first: rounded probabilities, and but for the longest the weights of
// falling back, too.
constexpr qsizetype quantTableLength = 65536 * numberLength;
// Probability, weight of falling back, place of the pairs.
constexpr qsizetype wordLength = 3 * numberLength;
// Logarithms are kept to this base, which makes whole numbers of them.
constexpr double logBase = 1.0001;

/// Reads a file's numbers one after the other.
class Numbers {
  public:
    explicit Numbers(const QByteArray &bytes)
        : _bytes(bytes) {}

    void skip(qsizetype length) { _at += length; }

    template<typename Number>
    Number next() {
        if (_at < 0 || _at + qsizetype(sizeof(Number)) > _bytes.size())
            throw std::runtime_error("The language model is cut short.");
        const auto number = qFromLittleEndian<Number>(_bytes.constData() + _at);
        _at += qsizetype(sizeof(Number));
        return number;
    }

  private:
    const QByteArray &_bytes;
    qsizetype _at = 0;
};

// The words stand at the end, each with a zero behind it, and before the first of them their length in bytes.
QList<QByteArray> wordsOf(const QByteArray &bytes, qsizetype count) {
    qsizetype start = bytes.size() - 1;
    for (qsizetype ends = 0; start > 0 && ends < count; ++ends)
        start = bytes.lastIndexOf('\0', start - 1);
    for (start += 1; start >= numberLength && start < bytes.size(); ++start) {
        const auto length = qFromLittleEndian<quint32>(bytes.constData() + start - numberLength);
        if (qsizetype(length) == bytes.size() - start)
            return bytes.sliced(start, bytes.size() - start - 1).split('\0');
    }
    return {};
}

} // namespace

std::vector<SaidForm> readSpeechModel(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("The language model cannot be opened.");
    const QByteArray bytes = file.readAll();
    if (!bytes.startsWith(signature))
        throw std::runtime_error("This is no packed language model.");
    Numbers numbers(bytes);
    numbers.skip(signatureLength);
    const auto longestGroup = numbers.next<quint8>();
    const auto count = qsizetype(numbers.next<quint32>());
    numbers.skip((longestGroup - 1) * numberLength); // how many pairs, how many triples
    const bool isRounded = numbers.next<quint32>() != 0;
    numbers.skip(isRounded ? (2 * longestGroup - 3) * quantTableLength : 0);
    const QList<QByteArray> words = wordsOf(bytes, count);
    if (longestGroup < 2 || words.size() != count)
        throw std::runtime_error("The language model's words are not where they should be.");

    std::vector<SaidForm> forms;
    double sum = 0;
    for (const QByteArray &word : words) {
        const double share = std::pow(logBase, double(numbers.next<float>()));
        numbers.skip(wordLength - numberLength);
        sum += share;
        forms.push_back({word, share * 1'000'000});
    }
    if (!(std::abs(sum - 1) < 0.05))
        throw std::runtime_error("The language model's shares do not add up.");
    return forms;
}

} // namespace murvo::service
