// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace murvo::service {

class ChangeCounts;
class Database;

enum class SubtitleSource {
    Beside, ///< a file in the film's folder or below it
    Inside, ///< a track of the film itself
    Added   ///< a file that the learner has given to the film
};

/// A subtitle of a film, without its content.
struct Subtitle {
    qint32 id = 0;
    qint32 filmId = 0;
    SubtitleSource source = SubtitleSource::Beside;
    QString place;    ///< path from the film's folder, number of the stream, or file name: one in its source
    QString fileName; ///< empty for a track inside the film
    QString title;    ///< as the film names its track
    QString language; ///< ISO 639-2/T as the name or the track tells, empty when neither does
    QString hintedLanguage; ///< as a name tells that may mean something else, empty when it tells none
    bool forced = false;
    bool hearingImpaired = false;
    bool isThere = true;      ///< false: no longer found beside or inside the film at the last lookup
    QString textLanguage;     ///< as its text tells, empty when that is not sure
    QString chosenLanguage;   ///< by the learner, whatever all else tells; empty when they left it
    QString encoding;         ///< chosen by the learner, empty when it is to be found
    qint32 cueCount = -1;     ///< -1 while the content has not been looked at
    QString problem;          ///< code of why it cannot be used, empty when it can
    QByteArray contentSha256; ///< empty until the store holds the content

    [[nodiscard]] bool stored() const { return !contentSha256.isEmpty(); }
    [[nodiscard]] const QString &likelyLanguage() const {
        return !chosenLanguage.isEmpty() ? chosenLanguage : foundLanguage();
    }
    /// The same without the learner.
    [[nodiscard]] const QString &foundLanguage() const {
        return !language.isEmpty() ? language : !textLanguage.isEmpty() ? textLanguage : hintedLanguage;
    }
};

/// What looking at a content has found out.
struct SubtitleFindings {
    qint32 cueCount = 0;
    QString textLanguage;
    QString problem;
};

/// The table of subtitles. Any thread; borrows the database. Every call may throw SQLite::Exception.
class SubtitleTable {
  public:
    /// Announces to the counts, where given, that there is a content or another way of reading one.
    explicit SubtitleTable(Database &database, ChangeCounts *changes = nullptr)
        : _database(database)
        , _changes(changes) {}

    /// The rows of these sources and places, made or brought up to date to what is described; in the same
    /// order. Only what names, tracks and folders tell is taken from the descriptions.
    [[nodiscard]] QList<Subtitle> findOrAdd(qint32 filmId, const QList<Subtitle> &described);

    /// Notes that of the subtitles of that source only these (by id) are left.
    void onlyTheseAreThere(qint32 filmId, SubtitleSource source, const QList<qint32> &subtitleIds);

    [[nodiscard]] std::optional<Subtitle> find(qint32 subtitleId);

    /// All subtitles of a film but those that were removed, oldest first.
    [[nodiscard]] QList<Subtitle> ofFilm(qint32 filmId);

    /// Keeps the content and what was found in it; false when there is no such subtitle. Encoding, language
    /// and timing that were chosen for another content are forgotten. On the disk when it returns.
    bool storeContent(qint32 subtitleId, const QByteArray &content, const SubtitleFindings &findings);

    /// Keeps the learner's encoding (empty: to be found) and what reading by it has found.
    void setEncoding(qint32 subtitleId, const QString &encoding, const SubtitleFindings &findings);

    /// Keeps the learner's word for the language (ISO 639-2/T, empty: as name or text tell).
    void setLanguage(qint32 subtitleId, const QString &language);

    /// Takes an added file out of its film, or brings it back. Its row stays, and all that belongs to it.
    void setRemoved(qint32 subtitleId, bool isRemoved);

    /// Keeps what was found in a content that is stored already, or why a track has none.
    void setFindings(qint32 subtitleId, const SubtitleFindings &findings);

    /// The stored bytes; none when there is no such subtitle or nothing was stored.
    [[nodiscard]] std::optional<QByteArray> content(qint32 subtitleId);

    /// The form in which contents are compared.
    [[nodiscard]] static QByteArray sha256(const QByteArray &content);

  private:
    void announce() const;

    Database &_database;
    ChangeCounts *_changes;
};

} // namespace murvo::service
