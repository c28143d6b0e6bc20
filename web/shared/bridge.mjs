// SPDX-License-Identifier: GPL-3.0-or-later

// The page's side of the page protocol: commands to the player, and requests that it answers by an event.
// It knows no element of any page; how to navigate and where events arrive come in from outside.

const kindCommand = 'Execute';
const kindRequest = 'Request';
const frameLifeMs = 1000;

/** The address that stands for a command or request. The player takes arguments undecoded: plain words only. */
export function requestUrl(kind, name, args = {}) {
  const query = Object.entries(args).map(([key, value]) => `${key}=${value}`).join('&');
  return `app:///${kind}/${name}${query ? `?${query}` : ''}`;
}

export class PlayerBridge {
  #navigate;
  #events;
  #nextRequest = 1;

  /** navigate(url) starts a navigation; events is a jQuery object on which replies arrive. */
  constructor(navigate, events) {
    this.#navigate = navigate;
    this.#events = events;
  }

  /** Commands are never answered. */
  execute(name, args) {
    this.#navigate(requestUrl(kindCommand, name, args));
  }

  /** Settles with the value, or with undefined when none came in time: silence is the player's only refusal. */
  request(name, timeoutMs = 5000) {
    const guid = `${name}${this.#nextRequest++}`;
    const event = `response:${guid}`;
    return new Promise((settle) => {
      const timer = setTimeout(() => {
        this.#events.off(event);
        settle(undefined);
      }, timeoutMs);
      this.#events.one(event, (_, value) => {
        clearTimeout(timer);
        settle(value);
      });
      this.#navigate(requestUrl(kindRequest, name, { guid }));
    });
  }
}

/** Navigates a hidden frame of its own each time, so that no request replaces one under way and the page stays. */
export function hiddenFrameNavigation(document) {
  return (url) => {
    const frame = document.createElement('iframe');
    frame.hidden = true;
    frame.src = url;
    document.body.append(frame);
    setTimeout(() => frame.remove(), frameLifeMs);
  };
}
