-- SPDX-License-Identifier: GPL-3.0-or-later
-- What the learner knows better than names and texts tell.

ALTER TABLE subtitles ADD COLUMN chosen_language TEXT NOT NULL DEFAULT '';  -- ISO 639-2/T; empty: as name or text tell

-- A file that the learner has added and taken out again; it comes back by being added or asked for.
ALTER TABLE subtitles ADD COLUMN is_removed INTEGER NOT NULL DEFAULT 0;
