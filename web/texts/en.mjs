// SPDX-License-Identifier: GPL-3.0-or-later

// English, the language that every other one follows: the same keys, the same values in braces.
export default {
  // The bar beneath the film
  'bar.name': 'Film controls',
  'bar.place': 'Place in the film',
  'bar.play': 'Play',
  'bar.pause': 'Pause',
  'bar.previousLine': 'Previous line',
  'bar.nextLine': 'Next line',
  'bar.replayLine': 'Replay line',
  'bar.speed': 'Speed',
  'bar.slower': 'Slower',
  'bar.faster': 'Faster',
  'bar.normalSpeed': 'Normal speed',
  'bar.mute': 'Mute',
  'bar.muted': 'muted',
  'bar.volume': 'Volume',
  'bar.percent': '{percent} %',
  'bar.soundTrack': 'Sound track',
  'bar.subtitles': 'Subtitles',
  'bar.transcript': 'Transcript',
  'bar.home': 'Home',
  'bar.more': 'More',
  'bar.total': 'Length: {time}',
  'bar.remaining': 'Left: {time}',
  'bar.toFullScreen': 'Double-click for full screen',
  'bar.fromFullScreen': 'Esc leaves full screen',

  'sound.track': 'Track {place}',
  'keys.space': 'Space',

  // Short words over the picture
  'notice.noLines': 'No lines: {reason}',
  'notice.badTrack': '{name}: {reason}',
  'notice.noneKnown': 'No subtitles are known for this film.',
  'notice.noneFound': 'No subtitles were found in or beside this film. Add a file under Subtitles, or put {example} next to it and open it again.',
  'notice.waiting': 'Waiting for the film…',
  'notice.stillWaiting': 'Still waiting for the film. Its server may be gone; you can open another film.',
  'notice.volume': 'Volume {percent} %',
  'notice.muted': 'Muted',
  'notice.speed': 'Speed {speed}',
  'notice.sound': 'Sound: {name}',

  // The offer to go on where the film was left
  'resume.name': 'Go on with this film',
  'resume.stopped': 'You stopped at {time}',
  'resume.goOn': 'Go on at {time}',
  'resume.fromStart': 'From the start',
  'resume.said': 'You stopped at {time}. Enter goes on there.',

  // Panels beside the picture
  'panels.close': 'Close',

  // The panel with all lines
  'transcript.title': 'Transcript',
  'transcript.search': 'Find in the lines',
  'transcript.previousHit': 'Previous place',
  'transcript.nextHit': 'Next place',
  'transcript.hits': { one: 'Found in {count} line', other: 'Found in {count} lines' },
  'transcript.hitOf': '{place} of {count}',
  'transcript.noHit': 'Not in any line',
  'transcript.onlyHard': 'With new words only',
  'transcript.noneHard': 'No line has a word that is new to you.',
  'transcript.empty': 'No subtitles are shown. Choose one under Subtitles, and all of its lines are here.',
  'transcript.backToNow': 'Back to now',

  // The panel of subtitles
  'subtitles.reading': 'Reading the film’s own subtitles… {percent} %',
};
