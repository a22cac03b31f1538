// What real cables do to bytes, at random but the same for the same seed: bits turned, bytes lost,
// bytes doubled, and seconds in which nothing passes.

import { randomNumbers } from "./RandomChanges.js";

const kOutOf = 1_000_000;

export class LineFaults {
  /** How many of a million bytes meet each fault; pause: how many seconds one lasts. */
  constructor(seed, { flipped = 0, lost = 0, doubled = 0, paused = 0, pause = 3 } = {}) {
    this.random = randomNumbers(seed);
    this.rates = { flipped, lost, doubled, paused };
    this.pause = pause;
    this.count = { flipped: 0, lost: 0, doubled: 0, paused: 0 };
    this.pauseDue = 0; // seconds in which the line is to be dead from now on
  }

  #strikes(fault) {
    if (this.random(kOutOf) >= this.rates[fault]) return false;
    this.count[fault]++;
    return true;
  }

  /** The bytes as they come out at the other end. */
  pass(bytes) {
    const passed = [];
    for (let byte of bytes) {
      if (this.#strikes("paused")) this.pauseDue = this.pause;
      if (this.#strikes("lost")) continue;
      if (this.#strikes("flipped")) byte ^= 1 << this.random(8);
      passed.push(byte);
      if (this.#strikes("doubled")) passed.push(byte);
    }
    return passed;
  }

  /** The pause that has come up since the last call, in seconds. */
  takePause() {
    const seconds = this.pauseDue;
    this.pauseDue = 0;
    return seconds;
  }

  get total() {
    return Object.values(this.count).reduce((sum, n) => sum + n, 0);
  }
}
