// SPDX-License-Identifier: GPL-3.0-or-later
// export_bench [FILM [PACKAGE]]: how long the service takes to speak, to make an Anki package of 1,000 words
// without films, and one of 40 words whose lines lie all over the film, of five minutes, written to the file
// PACKAGE.

#include "ServiceClient.h"
#include "service/EmbeddedService.h"
#include "service/SavedWords.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonObject>
#include <QSet>
#include <QTemporaryDir>
#include <QUrl>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

namespace {

using murvo::bench::ServiceClient;
using murvo::service::EmbeddedService;
using murvo::service::test::SavedWordsStore;
using murvo::service::test::WordRow;

class Page : public ServiceClient {
  public:
    using ServiceClient::ServiceClient;

    double speakMs(const QString &text) {
        QElapsedTimer clock;
        clock.start();
        const QByteArray wav = get("Speech/Sound?text=" + QUrl::toPercentEncoding(text).toStdString());
        const double ms = static_cast<double>(clock.nsecsElapsed()) / 1e6;
        if (!wav.startsWith("RIFF"))
            std::fprintf(stderr, "nothing was spoken\n");
        return ms;
    }

    /// The finished package, and in how many ms.
    QByteArray package(const std::string &query, double &ms) {
        QElapsedTimer clock;
        clock.start();
        QByteArray state = post("Words/Anki" + query);
        while (state.contains("running")) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            state = get("Words/Anki");
        }
        QByteArray file = get("Words/Anki/File");
        ms = static_cast<double>(clock.nsecsElapsed()) / 1e6;
        std::printf("    %s\n", state.constData());
        return file;
    }
};

void measureSpeech(Page &page) {
    std::printf("first word: %.1f ms\n", page.speakMs(QStringLiteral("children")));
    constexpr int count = 100;
    std::vector<double> times;
    times.reserve(count);
    for (int i = 0; i < count; ++i)
        times.push_back(page.speakMs(QStringLiteral("word%1").arg(i)));
    std::sort(times.begin(), times.end());
    std::printf("later words: median %.1f ms, slowest of 100 %.1f ms\n", times[50], times.back());
    std::printf("line of three sentences: %.1f ms\n",
                page.speakMs(QStringLiteral("I was going to tell you. But you never asked me about it! "
                                            "Why did you leave the house?")));
}

void measurePackage(Page &page, SavedWordsStore &store) {
    for (int i = 0; i < 1000; ++i) {
        WordRow row;
        row.lemma = QStringLiteral("word%1").arg(i);
        row.form = row.lemma;
        row.gloss = QStringLiteral("le mot numéro %1").arg(i);
        row.line = QStringLiteral("I never knew that word%1 was one <i>at all</i>.").arg(i);
        row.translation = QStringLiteral("Je ne savais pas que c'était un mot.");
        store.add(row);
    }
    for (int i = 0; i < 3; ++i) {
        double ms = 0;
        const QByteArray package = page.package({}, ms);
        std::printf("1,000 words: %.0f ms, %lld KB\n", ms, static_cast<long long>(package.size() / 1024));
    }
}

/// Words that nobody has translated, in the language of the largest dictionary.
void measureDictionary(Page &page, SavedWordsStore &store) {
    QFile file(QStringLiteral("/usr/share/wordnet/cntlist.rev"));
    if (!file.open(QIODevice::ReadOnly))
        return;
    QSet<QString> words;
    while (words.size() < 1000 && !file.atEnd()) {
        const QString word = QString::fromLatin1(file.readLine().split('%')[0]).replace(u'_', u' ');
        if (words.contains(word))
            continue;
        words.insert(word);
        WordRow row;
        row.lemma = word;
        store.add(row);
    }
    page.put("Settings", R"({"nativeLanguage":"deu"})");
    for (int i = 0; i < 3; ++i) {
        double ms = 0;
        const QByteArray package = page.package({}, ms);
        std::printf("1,000 words that are looked up: %.0f ms, %lld KB\n", ms,
                    static_cast<long long>(package.size() / 1024));
    }
}

void measureClips(Page &page, SavedWordsStore &store, int filmId, qint64 filmMs, const QString &to) {
    constexpr int count = 40;
    for (int i = 0; i < count; ++i) {
        WordRow row;
        row.lemma = QStringLiteral("seen%1").arg(i);
        row.form = QStringLiteral("one");
        row.line = QStringLiteral("This is \"one\" line & no other.");
        row.filmId = filmId;
        row.startMs = i * 7919LL * 1000 % (filmMs - 4000);
        row.endMs = row.startMs + 2500;
        store.add(row);
    }
    double without = 0;
    (void)page.package("?clips=false", without);
    double with = 0;
    const QByteArray package = page.package({}, with);
    std::printf("%d clips: %.0f ms each, package of %lld KB\n", count, (with - without) / count,
                static_cast<long long>(package.size() / 1024));
    QFile file(to);
    if (!to.isEmpty() && file.open(QIODevice::WriteOnly))
        file.write(package);
}

} // namespace

int main(int argc, char *argv[]) {
    const QCoreApplication application(argc, argv);
    const QTemporaryDir data;
    QString error;
    const auto service = EmbeddedService::start(data.path(), error);
    if (!service) {
        std::fprintf(stderr, "%s\n", error.toUtf8().constData());
        return 2;
    }
    Page page{QUrl(service->baseUrl())};
    SavedWordsStore store(data.filePath(QStringLiteral("murvo.sqlite")));
    measureSpeech(page);
    measurePackage(page, store);
    const QTemporaryDir otherData;
    const auto other = EmbeddedService::start(otherData.path(), error);
    SavedWordsStore otherStore(otherData.filePath(QStringLiteral("murvo.sqlite")));
    Page otherPage{QUrl(other->baseUrl())};
    measureDictionary(otherPage, otherStore);
    const QString film = QFileInfo(application.arguments().value(1)).absoluteFilePath();
    if (!QFileInfo(film).isFile())
        return 0;
    service->filmIdentified(film, 1, 1);
    const QJsonObject found = page.postJson("MovieFile/GetSubtitlesToDownload",
                                            "fileSize=1&movieHash=1&fileName=Film.mkv&targetLanguageCode=eng&"
                                            "nativeLanguageCode=fra");
    const int filmId = found[QLatin1String("videoId")].toInt();
    constexpr qint64 lengthMs = 5 * 60'000;
    measureClips(page, store, filmId, lengthMs, application.arguments().value(2));
    return 0;
}
