// SPDX-License-Identifier: GPL-3.0-or-later
// vocabulary_bench [FILMS]: how long the service needs for the words of a film of two hours and for a search
// through the lines of FILMS films (200 at first) of 1500 lines each in two languages, and how large the
// store is then. The text is made of WordNet's words by how often they were met, so that the figures are like
// those of real films.

#include "ServiceClient.h"
#include "service/EmbeddedService.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTime>
#include <QUrl>

#include <algorithm>
#include <cstdio>
#include <random>
#include <vector>

namespace {

using murvo::bench::ServiceClient;
using murvo::service::EmbeddedService;

constexpr int linesOfFilm = 1500;

/// Lines of words that come as often as in real text.
class Texts {
  public:
    Texts() {
        QFile file(QStringLiteral("/usr/share/wordnet/cntlist.rev"));
        if (!file.open(QIODevice::ReadOnly))
            return;
        std::vector<std::pair<int, QByteArray>> counted;
        while (!file.atEnd()) {
            const QList<QByteArray> cells = file.readLine().trimmed().split(' ');
            const QByteArray word = cells[0].left(cells[0].indexOf('%'));
            if (cells.size() == 3 && !word.contains('_'))
                counted.emplace_back(cells[2].toInt(), word);
        }
        std::sort(counted.rbegin(), counted.rend());
        std::vector<double> weights;
        for (const char *word :
             {"the", "i", "you", "to", "a", "it", "and", "of", "that", "in", "is", "what"}) {
            _words.emplace_back(word);
            weights.push_back(2.0 * counted.front().first);
        }
        for (const auto &[count, word] : counted) {
            _words.push_back(word);
            weights.push_back(count);
        }
        _choice = std::discrete_distribution<std::size_t>(weights.begin(), weights.end());
    }

    QByteArray srt(int lines) {
        QByteArray text;
        for (int i = 0; i < lines; ++i) {
            const auto clock = [i](int ms) {
                return QTime::fromMSecsSinceStartOfDay(i * 4800 + ms)
                    .toString(QStringLiteral("hh:mm:ss,zzz"))
                    .toLatin1();
            };
            text += QByteArray::number(i + 1) + '\n' + clock(0) + " --> " + clock(2500) + '\n';
            const int words = std::uniform_int_distribution(3, 9)(_random);
            for (int word = 0; word < words; ++word)
                text += _words[_choice(_random)] + (word + 1 < words ? ' ' : '.');
            text += "\n\n";
        }
        return text;
    }

  private:
    std::vector<QByteArray> _words;
    std::discrete_distribution<std::size_t> _choice;
    std::mt19937 _random{7};
};

double msOf(const QElapsedTimer &clock) {
    return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

/// The median and the longest of some runs, in milliseconds.
void measure(ServiceClient &client, const char *what, const std::string &route) {
    std::vector<double> times;
    qsizetype lines = 0;
    for (int i = 0; i < 21; ++i) {
        QElapsedTimer clock;
        clock.start();
        lines = client.getJson(route).value(QLatin1String("lines")).toArray().size();
        times.push_back(msOf(clock));
    }
    std::sort(times.begin(), times.end());
    std::printf("%-44s %7.1f ms, longest %7.1f ms", what, times[times.size() / 2], times.back());
    std::printf(lines > 0 ? " (%lld lines)\n" : "\n", static_cast<long long>(lines));
}

int addFilm(ServiceClient &client, int number, const QByteArray &english, const QByteArray &french) {
    const std::string size = std::to_string(number + 1);
    const int videoId = client
                            .postJson("MovieFile/GetSubtitlesToDownload",
                                      "fileSize=" + size + "&movieHash=" + size + "&fileName=Film" + size +
                                          ".mkv&targetLanguageCode=eng")
                            .value(QLatin1String("videoId"))
                            .toInt();
    const std::string add =
        "MovieFile/AddSubtitle?videoId=" + std::to_string(videoId) + "&fileName=Film" + size;
    client.post(add + ".en.srt", english.toStdString());
    client.post(add + ".fr.srt", french.toStdString());
    return videoId;
}

qint64 storeBytes(const QTemporaryDir &data) {
    qint64 bytes = 0;
    for (const char *name : {"murvo.sqlite", "murvo.sqlite-wal"})
        bytes += QFileInfo(data.filePath(QLatin1String(name))).size();
    return bytes;
}

} // namespace

int main(int argc, char *argv[]) {
    const QCoreApplication application(argc, argv);
    const int films = argc > 1 ? application.arguments()[1].toInt() : 200;
    const QTemporaryDir data;
    QString error;
    auto service = EmbeddedService::start(data.path(), error);
    if (!service) {
        std::fprintf(stderr, "%s\n", error.toUtf8().constData());
        return 2;
    }
    ServiceClient client{QUrl(service->baseUrl())};
    Texts texts;

    QElapsedTimer clock;
    const int first = addFilm(client, 0, texts.srt(linesOfFilm), texts.srt(linesOfFilm));
    const std::string words = "MovieFile/Words?videoId=" + std::to_string(first);
    clock.start();
    const QJsonObject answer = client.getJson(words);
    std::printf("%-44s %7.1f ms (%d words, %lld forms)\n", "Words, its two subtitles indexed in it",
                msOf(clock), answer[QLatin1String("runningWords")].toInt(),
                static_cast<long long>(answer[QLatin1String("words")].toArray().size()));
    measure(client, "Words, later", words);

    QByteArray last;
    clock.start();
    for (int i = 1; i < films; ++i)
        addFilm(client, i, last = texts.srt(linesOfFilm), texts.srt(linesOfFilm));
    std::printf("%-44s %7.1f ms each\n", "films added", msOf(clock) / films);
    const QString lastWords = QString::fromUtf8(last.split('\n').at(2)).section(u' ', 0, 1);
    clock.start();
    const std::string rare = "Lines/Search?text=" + QUrl::toPercentEncoding(lastWords).toStdString();
    for (int videoId = 1; videoId <= films; ++videoId)
        client.getJson("MovieFile/Words?videoId=" + std::to_string(videoId));
    std::printf("%-44s %7.1f ms\n", "Words of them all", msOf(clock));
    std::printf("%-44s %7.1f MB for %d lines\n", "store", static_cast<double>(storeBytes(data)) / 1e6,
                films * linesOfFilm * 2);

    measure(client, "Words of the first film", words);
    measure(client, "Search for a phrase", rare);
    measure(client, "Search for \"government\"", "Lines/Search?text=government");
    measure(client, "Search for \"the\"", "Lines/Search?text=the");
    measure(client, "Search for \"th\"", "Lines/Search?text=th");
    measure(client, "Search for \"t\", 100 lines", "Lines/Search?text=t&count=100");
    measure(client, "Search for what there is not", "Lines/Search?text=the+the+xyz");
    measure(client, "Level", "Home/Level");
    clock.start();
    service.reset();
    std::printf("%-44s %7.1f ms\n", "the service ended in", msOf(clock));
    return 0;
}
