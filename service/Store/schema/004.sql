-- SPDX-License-Identifier: GPL-3.0-or-later
-- What Anki has been sent of the learner's words. A word that has no row here, or is not any more what was sent, waits
-- to be sent.
CREATE TABLE anki_notes (
    guid         TEXT PRIMARY KEY,           -- of the word
    note_id      INTEGER NOT NULL,           -- Anki's number of its note; 0 when Anki has refused it or has it no more
    sent_sha256  BLOB NOT NULL,              -- of all that was sent
    problem      TEXT NOT NULL DEFAULT ''    -- why Anki refused it, empty when it did not
) WITHOUT ROWID;
