-- SPDX-License-Identifier: GPL-3.0-or-later
-- What the learner knows and learns, and the lines of all films, to be searched.

-- The words that the learner has marked, by dictionary form. A word without a row has not been marked.
CREATE TABLE words (
    lemma       TEXT PRIMARY KEY,      -- in the form of wordKey()
    guid        TEXT NOT NULL UNIQUE,  -- by which other programs know it again
    status      TEXT NOT NULL,         -- 'new', 'learning1' to 'learning4', 'known' or 'ignored'
    added_ms    INTEGER NOT NULL,      -- since 1970, UTC
    changed_ms  INTEGER NOT NULL       -- when the status was last changed
) WITHOUT ROWID;
CREATE INDEX words_by_status ON words (status);

-- What the learner says that a word means. Stays when the word is forgotten.
CREATE TABLE glosses (
    lemma       TEXT NOT NULL,
    language    TEXT NOT NULL,         -- ISO 639-2/T
    gloss       TEXT NOT NULL,
    changed_ms  INTEGER NOT NULL,
    PRIMARY KEY (lemma, language)
) WITHOUT ROWID;

-- Where the learner has saved a word. Texts and times are kept as they were: the film's subtitles may change.
CREATE TABLE sightings (
    id           INTEGER PRIMARY KEY AUTOINCREMENT,
    lemma        TEXT NOT NULL REFERENCES words (lemma) ON DELETE CASCADE,
    form         TEXT NOT NULL,        -- as the line has it
    line         TEXT NOT NULL,
    translation  TEXT NOT NULL,        -- the line shown beneath, empty when there was none
    film_id      INTEGER REFERENCES films (id) ON DELETE SET NULL,
    subtitle_id  INTEGER REFERENCES subtitles (id) ON DELETE SET NULL,
    start_ms     INTEGER NOT NULL,     -- of the film
    end_ms       INTEGER NOT NULL,
    saved_ms     INTEGER NOT NULL
);
CREATE UNIQUE INDEX sightings_of_word ON sightings (lemma, line, IFNULL(film_id, 0));
CREATE INDEX sightings_of_film ON sightings (film_id);
CREATE INDEX sightings_of_subtitle ON sightings (subtitle_id);

-- The lines of every stored subtitle, at its own times. Made from the contents, and made anew when lost.
CREATE TABLE lines (
    id           INTEGER PRIMARY KEY,
    subtitle_id  INTEGER NOT NULL REFERENCES subtitles (id) ON DELETE CASCADE,
    start_ms     INTEGER NOT NULL,
    end_ms       INTEGER NOT NULL,
    text         TEXT NOT NULL
);
CREATE INDEX lines_of_subtitle ON lines (subtitle_id, start_ms);
CREATE VIRTUAL TABLE line_texts USING fts5 (
    text, content = 'lines', content_rowid = 'id', tokenize = 'unicode61 remove_diacritics 2'
);
CREATE TRIGGER line_added AFTER INSERT ON lines BEGIN
    INSERT INTO line_texts (rowid, text) VALUES (new.id, new.text);
END;
CREATE TRIGGER line_removed AFTER DELETE ON lines BEGIN
    INSERT INTO line_texts (line_texts, rowid, text) VALUES ('delete', old.id, old.text);
END;

-- How often an English subtitle has each dictionary form.
CREATE TABLE words_met (
    subtitle_id  INTEGER NOT NULL REFERENCES subtitles (id) ON DELETE CASCADE,
    lemma        TEXT NOT NULL,
    form         TEXT NOT NULL,        -- as the line below has it
    count        INTEGER NOT NULL,
    is_name      INTEGER NOT NULL,
    line_id      INTEGER NOT NULL,     -- a line that shows it
    PRIMARY KEY (subtitle_id, lemma)
) WITHOUT ROWID;

-- From what the lines and words of a subtitle were made. Where this is not what it is now, they are made anew.
CREATE TABLE line_sources (
    subtitle_id     INTEGER PRIMARY KEY REFERENCES subtitles (id) ON DELETE CASCADE,
    content_sha256  BLOB NOT NULL,
    encoding        TEXT NOT NULL,
    language        TEXT NOT NULL,
    made_by         INTEGER NOT NULL   -- number of the way of making them
);
