-- SPDX-License-Identifier: GPL-3.0-or-later
-- What the learner knows better than names and texts tell.

PRAGMA application_id = 1299542646;  -- "Murv": the file's first bytes say whose it is

ALTER TABLE subtitles ADD COLUMN chosen_language TEXT NOT NULL DEFAULT '';  -- ISO 639-2/T; empty: as name or text tell

-- A file that the learner has added and taken out again; it comes back by being added or asked for.
ALTER TABLE subtitles ADD COLUMN is_removed INTEGER NOT NULL DEFAULT 0;
