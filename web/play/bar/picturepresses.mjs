// SPDX-License-Identifier: GPL-3.0-or-later

// A notch of a wheel is 100 or so; a touchpad sends many small ones.
const wheelStep = 100;

/**
 * What the pointer does to the picture. closesSomething(): whether a press on it closes what is open over it, asked
 * before it does; clicked(isSpent): a click, and whether its press has closed something; wheeled(step): -1 up, 1 down.
 */
export function onPicturePresses(picture, { closesSomething, clicked, wheeled }) {
  // Of two quick presses the second may hit the picture because the first has closed what lay over it.
  let firstPressed = null;
  picture.ownerDocument.addEventListener('mousedown', ({ detail, target }) => {
    if (detail === 1) firstPressed = target;
  }, true);
  let isSpent = false;
  picture.addEventListener('pointerdown', () => { isSpent = closesSomething(); }, true);
  picture.addEventListener('click', (event) => {
    if (event.detail > 1 && firstPressed !== event.target) return;
    clicked(isSpent || event.ctrlKey);
  });
  let turned = 0;
  picture.addEventListener('wheel', (event) => {
    if (event.ctrlKey) return;
    turned = Math.sign(event.deltaY) === Math.sign(turned) ? turned + event.deltaY : event.deltaY;
    for (; Math.abs(turned) >= wheelStep; turned -= Math.sign(turned) * wheelStep) wheeled(Math.sign(turned));
  });
}
