-- SPDX-License-Identifier: GPL-3.0-or-later
-- Subtitles come from inside the film and from the learner, too, and what was found out about each is kept.

ALTER TABLE films ADD COLUMN inside_read TEXT NOT NULL DEFAULT '';  -- tells the file whose own tracks were read

CREATE TABLE new_subtitles (
    id                INTEGER PRIMARY KEY AUTOINCREMENT,
    film_id           INTEGER NOT NULL REFERENCES films (id) ON DELETE CASCADE,
    source            TEXT NOT NULL,             -- 'beside', 'inside' or 'added'
    place             TEXT NOT NULL,             -- path from the film's folder, number of the stream, or file name
    file_name         TEXT NOT NULL,             -- empty for a track inside the film
    title             TEXT NOT NULL DEFAULT '',  -- as the film names its track
    language          TEXT NOT NULL,             -- ISO 639-2/T as the name or the track tells, empty when neither does
    hinted_language   TEXT NOT NULL DEFAULT '',  -- as a name tells that may mean something else
    forced            INTEGER NOT NULL DEFAULT 0,
    hearing_impaired  INTEGER NOT NULL DEFAULT 0,
    is_there          INTEGER NOT NULL DEFAULT 1,   -- 0: no longer found beside or inside it last time
    text_language     TEXT NOT NULL DEFAULT '',     -- as its text tells, empty when that is not sure
    encoding          TEXT NOT NULL DEFAULT '',     -- chosen by the learner, empty when it was found
    cue_count         INTEGER NOT NULL DEFAULT -1,  -- -1 while the content has not been looked at
    problem           TEXT NOT NULL DEFAULT '',     -- code of why it cannot be used, empty when it can
    content           BLOB,                      -- the file's own bytes; WebVTT for a track inside the film
    content_sha256    BLOB,                      -- of content; tells whether the file on disk has changed since
    UNIQUE (film_id, source, place)
);
INSERT INTO new_subtitles (id, film_id, source, place, file_name, language, forced, hearing_impaired, content,
                           content_sha256)
    SELECT id, film_id, 'beside', file_name, file_name, language, forced, hearing_impaired, content, content_sha256
    FROM subtitles;
DROP TABLE subtitles;
ALTER TABLE new_subtitles RENAME TO subtitles;

-- How a subtitle's times become the film's: time * numerator / denominator + offset, and from the cut on (in the
-- subtitle's own time) the cut's offset more. No row: as they are.
CREATE TABLE timings (
    subtitle_id    INTEGER PRIMARY KEY REFERENCES subtitles (id) ON DELETE CASCADE,
    offset_ms      INTEGER NOT NULL,
    numerator      INTEGER NOT NULL,
    denominator    INTEGER NOT NULL,
    cut_at_ms      INTEGER,
    cut_offset_ms  INTEGER
);

-- Which subtitle the learner wants as which of the two lines over the picture. No row: the best is found.
CREATE TABLE choices (
    film_id      INTEGER NOT NULL REFERENCES films (id) ON DELETE CASCADE,
    line         TEXT NOT NULL,                  -- 'learned' or 'native'
    subtitle_id  INTEGER REFERENCES subtitles (id) ON DELETE CASCADE,  -- NULL: none is shown
    PRIMARY KEY (film_id, line)
) WITHOUT ROWID;
