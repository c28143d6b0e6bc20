-- SPDX-License-Identifier: GPL-3.0-or-later
-- What Anki has been sent of the learner's words. A word that has no row here, or is not any more what was sent, waits
-- to be sent.
CREATE TABLE anki_notes (
    guid         TEXT PRIMARY KEY,           -- of the word
    note_id      INTEGER NOT NULL,           -- Anki's number of its note; 0 when Anki has refused it, -1 when the learner has deleted it there
    sent_sha256  BLOB NOT NULL,              -- of all that was sent
    problem      TEXT NOT NULL DEFAULT ''    -- why Anki refused it, empty when it did not
) WITHOUT ROWID;
-- A word that is saved anew is to be learned anew.
CREATE TRIGGER word_forgotten AFTER DELETE ON words BEGIN
    DELETE FROM anki_notes WHERE guid = old.guid AND note_id <= 0;
END;
