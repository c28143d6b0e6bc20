// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sources/Sidecars.h"

#include "Sources/SidecarFile.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace murvo::service {

namespace {

constexpr int mostSidecars = 64;

/// What lies in a film's folder, as far as it bears on which subtitles are the film's.
class FilmFolder {
  public:
    explicit FilmFolder(const QFileInfo &film)
        : _folder(film.dir().canonicalPath())
        , _film(film.fileName()) {
        for (const QString &name : filesIn({})) {
            if (!isFilmName(name) || name == _film)
                continue;
            _isLone = false;
            if (comparableBase(name).startsWith(comparableBase(_film)) &&
                comparableBase(name).size() > comparableBase(_film).size())
                _namedLonger.append(name);
        }
    }

    [[nodiscard]] QString path() const { return _folder.path(); }

    /// Places and what their names tell; the contents are left empty.
    [[nodiscard]] QList<Sidecar> candidates() const {
        QList<Sidecar> found = besideFilm();
        static const QStringList subtitleFolders{QStringLiteral("sub"), QStringLiteral("subs"),
                                                 QStringLiteral("subtitle"), QStringLiteral("subtitles")};
        for (const QString &name : foldersIn({})) {
            if (subtitleFolders.contains(name.toLower()))
                found += inSubtitleFolder(name);
        }
        return found.mid(0, mostSidecars);
    }

  private:
    [[nodiscard]] QStringList filesIn(const QString &below) const {
        return QDir(_folder.filePath(below)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
    [[nodiscard]] QStringList foldersIn(const QString &below) const {
        return QDir(_folder.filePath(below)).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    }

    // What the name tells, if the file is named after this film and not better after another.
    [[nodiscard]] std::optional<SidecarName> namedAfterFilm(const QString &name) const {
        if (!isSubtitleName(name))
            return std::nullopt;
        const bool isOfAnother =
            std::any_of(_namedLonger.begin(), _namedLonger.end(),
                        [&name](const QString &other) { return readSidecarName(other, name).has_value(); });
        return isOfAnother ? std::nullopt : readSidecarName(_film, name);
    }

    [[nodiscard]] QList<Sidecar> besideFilm() const {
        QList<Sidecar> found;
        QList<Sidecar> others;
        for (const QString &name : filesIn({})) {
            if (const auto told = namedAfterFilm(name))
                found.append({name, *told, {}, {}});
            else if (isSubtitleName(name))
                others.append({name, readSubtitleName(name), {}, {}});
        }
        if (!_isLone)
            return found;
        const bool isLoneFile = found.isEmpty() && others.size() == 1;
        for (const Sidecar &other : others) {
            if (isLoneFile || (other.told.isWordsOnly && !other.told.language.isEmpty()))
                found.append(other);
        }
        return found;
    }

    [[nodiscard]] QList<Sidecar> inSubtitleFolder(const QString &folder) const {
        QList<Sidecar> found;
        const auto add = [&found](const QString &below, const QString &name) {
            if (isSubtitleName(name))
                found.append({below + u'/' + name, readSubtitleName(name), {}, {}});
        };
        for (const QString &name : filesIn(folder)) {
            if (const auto told = namedAfterFilm(name))
                found.append({folder + u'/' + name, *told, {}, {}});
            else if (_isLone)
                add(folder, name);
        }
        for (const QString &name : foldersIn(folder)) {
            // A folder's name has no extension.
            if (comparableBase(name + QLatin1String(".x")) != comparableBase(_film))
                continue;
            const QString below = folder + u'/' + name;
            for (const QString &file : filesIn(below))
                add(below, file);
        }
        return found;
    }

    QDir _folder;
    QString _film;
    bool _isLone = true;      // no other film lies in the folder
    QStringList _namedLonger; // other films whose names begin with this one's
};

// Many files of text are no subtitles, and a VobSub's index says the same as the pictures beside it.
bool isOfNoAccount(const Sidecar &sidecar, const QList<Sidecar> &all) {
    const QString base = sidecar.place.section(u'.', 0, -2);
    const QString extension = sidecar.place.section(u'.', -1).toLower();
    if (extension == QLatin1String("idx"))
        return std::any_of(all.begin(), all.end(), [&base](const Sidecar &other) {
            return other.place.compare(base + QLatin1String(".sub"), Qt::CaseInsensitive) == 0;
        });
    if (extension == QLatin1String("txt") || extension == QLatin1String("xml"))
        return sidecar.problem != CueProblem::None ||
               readCues(sidecar.content, {}).problem != CueProblem::None;
    return false;
}

} // namespace

QList<Sidecar> findSidecars(const QString &filmPath) {
    const QFileInfo film(filmPath);
    if (filmPath.isEmpty() || !film.isFile())
        return {};
    const FilmFolder folder(film);
    QList<Sidecar> sidecars;
    QList<Sidecar> candidates = folder.candidates();
    for (Sidecar &candidate : candidates) {
        SidecarFile file = readSidecarFile(folder.path(), candidate.place);
        candidate.content = std::move(file.content);
        candidate.problem = file.problem;
        sidecars.append(std::move(candidate));
    }
    const QList<Sidecar> all = sidecars;
    sidecars.removeIf([&all](const Sidecar &sidecar) { return isOfNoAccount(sidecar, all); });
    return sidecars;
}

std::optional<QByteArray> readSidecar(const QString &filmPath, const QString &place) {
    const QFileInfo film(filmPath);
    if (filmPath.isEmpty() || !film.isFile())
        return std::nullopt;
    const FilmFolder folder(film);
    const QList<Sidecar> candidates = folder.candidates();
    const bool isOfFilm =
        std::any_of(candidates.begin(), candidates.end(),
                    [&place](const Sidecar &candidate) { return candidate.place == place; });
    if (!isOfFilm)
        return std::nullopt;
    SidecarFile file = readSidecarFile(folder.path(), place);
    return file.problem == CueProblem::None ? std::optional(std::move(file.content)) : std::nullopt;
}

} // namespace murvo::service
