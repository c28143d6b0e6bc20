-- SPDX-License-Identifier: GPL-3.0-or-later
-- How films were watched, and when words come up for review.

-- How the learner has watched a film. No row: not at all.
CREATE TABLE watching (
    film_id         INTEGER PRIMARY KEY REFERENCES films (id) ON DELETE CASCADE,
    position_ms     INTEGER NOT NULL DEFAULT 0,    -- where to go on
    duration_ms     INTEGER NOT NULL DEFAULT 0,    -- 0: not known
    speed_percent   INTEGER NOT NULL DEFAULT 100,
    audio_track_id  INTEGER,                       -- NULL: the film's own choice
    is_finished     INTEGER NOT NULL DEFAULT 0,
    watched_ms      INTEGER                        -- since 1970, UTC: when it was at the position; NULL: not among the watched
);
CREATE INDEX watching_by_time ON watching (watched_ms);

-- The picture where the learner stopped. Kept when the film goes elsewhere.
CREATE TABLE stills (
    film_id      INTEGER PRIMARY KEY REFERENCES films (id) ON DELETE CASCADE,
    position_ms  INTEGER NOT NULL,                 -- for which it was taken
    jpeg         BLOB NOT NULL
);

-- When a word that is being learned comes up again: since 1970, UTC; NULL for known and ignored ones.
ALTER TABLE words ADD COLUMN due_ms INTEGER;
CREATE INDEX words_by_due ON words (due_ms);
UPDATE words SET due_ms = changed_ms + 86400000 * CASE status
    WHEN 'new' THEN 0 WHEN 'learning1' THEN 1 WHEN 'learning2' THEN 3 WHEN 'learning3' THEN 7 WHEN 'learning4' THEN 16
    END;
