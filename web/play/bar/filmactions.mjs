// SPDX-License-Identifier: GPL-3.0-or-later

import { t } from '../../shared/texts.mjs';
import { speedText } from './speedtext.mjs';

const shortNoticeMs = 1500;

/**
 * What keys and the wheel do to the film itself. While the bar is not seen, a short notice tells what it would show.
 * notice: a Notice; isBarSeen(): whether the bar shows.
 */
export function filmActions(film, notice, isBarSeen) {
  const tell = (text) => { if (!isBarSeen()) notice.say(text, shortNoticeMs); };
  const tellVolume = () => tell(film.muted ? t('notice.muted') : t('notice.volume', { percent: film.volumePercent }));
  const tellSpeed = () => tell(t('notice.speed', { speed: speedText(film.speed) }));
  return {
    togglePlay: () => film.togglePlay(),
    back: () => film.seekBy(-5),
    forward: () => film.seekBy(5),
    backSecond: () => film.seekBy(-1),
    forwardSecond: () => film.seekBy(1),
    backMinute: () => film.seekBy(-60),
    forwardMinute: () => film.seekBy(60),
    louder: () => { film.changeVolume(1); tellVolume(); },
    softer: () => { film.changeVolume(-1); tellVolume(); },
    toggleMute: () => { film.toggleMute(); tellVolume(); },
    slower: () => { film.changeSpeed(-1); tellSpeed(); },
    faster: () => { film.changeSpeed(1); tellSpeed(); },
    normalSpeed: () => { film.setSpeed(1); tellSpeed(); },
    halfSpeed: () => { film.setSpeed(0.5); tellSpeed(); },
    doubleSpeed: () => { film.setSpeed(2); tellSpeed(); },
    playAgain: () => film.playAgain(),
    home: () => film.home(),
  };
}
