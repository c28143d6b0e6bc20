-- SPDX-License-Identifier: GPL-3.0-or-later
-- Statements end with a semicolon at the end of a line; the file runs as a whole inside one transaction.

-- One row for each film ever looked up. Its id is the "videoId" of the lookup reply and never changes.
CREATE TABLE films (
    id        INTEGER PRIMARY KEY AUTOINCREMENT,
    identity  TEXT NOT NULL UNIQUE,  -- "hash:HEX:SIZE", or "path:/..." or "name:..." for a film without a hash
    name      TEXT NOT NULL,         -- file name as last announced
    path      TEXT NOT NULL          -- where it lay last; empty when never told
);

-- One row for each subtitle file offered for a film. content stays NULL until the player has uploaded it.
CREATE TABLE subtitles (
    id                INTEGER PRIMARY KEY AUTOINCREMENT,
    film_id           INTEGER NOT NULL REFERENCES films (id) ON DELETE CASCADE,
    file_name         TEXT NOT NULL,
    language          TEXT NOT NULL,             -- ISO 639-2/T, empty while unknown
    forced            INTEGER NOT NULL DEFAULT 0,
    hearing_impaired  INTEGER NOT NULL DEFAULT 0,
    content           BLOB,                      -- the file's own bytes, in the file's own encoding
    content_sha256    BLOB,                      -- of content; tells whether the file on disk has changed since
    UNIQUE (film_id, file_name)
);

CREATE TABLE settings (
    name   TEXT PRIMARY KEY,
    value  TEXT NOT NULL
) WITHOUT ROWID;
