// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/AnkiNoteType.h"

namespace murvo::service {

QString ankiFront() {
    return QStringLiteral(R"(<div class="word">{{Word}}</div>
{{#Line}}<div class="line">{{Line}}</div>{{/Line}})");
}

QString ankiBack() {
    return QStringLiteral(R"({{FrontSide}}
<hr id="answer">
{{#Pronunciation}}<div class="pronunciation">/{{Pronunciation}}/</div>{{/Pronunciation}}
{{#Meaning}}<div class="meaning" dir="auto">{{Meaning}}</div>{{/Meaning}}
{{#Translation}}<div class="translation" dir="auto">{{Translation}}</div>{{/Translation}}
{{#Picture}}<div class="picture">{{Picture}}</div>{{/Picture}}
{{#Sound}}<div class="sound">{{Sound}}</div>{{/Sound}}
{{#Film}}<div class="film">{{Film}}</div>{{/Film}})");
}

// The ground is the program's own. It marks dark colours on the page or on the card, by program and version.
QString ankiStyle() {
    return QStringLiteral(R"(.card {
  --ink: #1d2733;
  --quiet: #5d6b7a;
  --mark: #b45309;
  --rule: #d5dbe2;
  padding: 1em;
  color: var(--ink);
  font-family: "Noto Sans", "Segoe UI", "Helvetica Neue", Arial, sans-serif;
  font-size: 20px;
  line-height: 1.45;
  text-align: center;
}
.card.nightMode, .card.night_mode, .nightMode .card, .night_mode .card {
  --ink: #e8e6e1;
  --quiet: #9aa6b2;
  --mark: #f5b366;
  --rule: #3b4652;
}
.line, .meaning, .translation { max-width: 32em; margin-left: auto; margin-right: auto; }
.word { font-size: 1.9em; font-weight: 600; overflow-wrap: anywhere; }
.line { margin-top: 0.6em; }
.line b { color: var(--mark); font-weight: 600; }
hr#answer { margin: 1.2em 0; border: 0; border-top: 1px solid var(--rule); }
.pronunciation { color: var(--quiet); }
.meaning { margin-top: 0.3em; font-size: 1.2em; }
.translation { margin-top: 0.6em; color: var(--quiet); }
.picture { margin-top: 1em; }
.picture img { max-width: 100%; height: auto; border-radius: 6px; }
.sound { margin-top: 0.6em; }
.film { margin-top: 1em; color: var(--quiet); font-size: 0.75em; overflow-wrap: anywhere; }
)");
}

} // namespace murvo::service
