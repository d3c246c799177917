// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

/** Settings with their past and future. Settings are never changed in place. */
export class History {
  #states = [];
  #at = -1;

  start(state) {
    this.#states = [state];
    this.#at = 0;
  }

  get state() {
    return this.#states[this.#at];
  }
  get canUndo() {
    return this.#at > 0;
  }
  get canRedo() {
    return this.#at + 1 < this.#states.length;
  }

  /** A new state; drops those that were undone. One that equals the present one changes nothing. */
  push(state) {
    if (JSON.stringify(state) === JSON.stringify(this.state)) return;
    this.#states = [...this.#states.slice(0, this.#at + 1), state];
    this.#at += 1;
  }

  /** Goes back, or forward for 1, and returns the state there. */
  go(step) {
    if (step < 0 ? this.canUndo : this.canRedo) this.#at += step;
    return this.state;
  }
}
