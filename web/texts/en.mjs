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
  'bar.soundTrack': 'Sound track',
  'bar.subtitles': 'Subtitles',
  'bar.home': 'Home',
  'bar.toFullScreen': 'Double-click for full screen',
  'bar.fromFullScreen': 'Esc leaves full screen',
};
