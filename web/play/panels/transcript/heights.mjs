// SPDX-License-Identifier: GPL-3.0-or-later

/** The heights of many rows: where a row begins, and which row lies at a place, in few steps each. */
export class Heights {
  #heights;
  #sums; // a binary indexed tree

  constructor(heights) {
    this.#heights = Float64Array.from(heights);
    this.#sums = new Float64Array(this.#heights.length + 1);
    for (let i = 1; i < this.#sums.length; i += 1) {
      this.#sums[i] += this.#heights[i - 1];
      const above = i + (i & -i);
      if (above < this.#sums.length) this.#sums[above] += this.#sums[i];
    }
  }

  get count() {
    return this.#heights.length;
  }

  get total() {
    return this.offset(this.count);
  }

  height(row) {
    return this.#heights[row];
  }

  set(row, height) {
    const more = height - this.#heights[row];
    this.#heights[row] = height;
    for (let i = row + 1; i < this.#sums.length; i += i & -i) this.#sums[i] += more;
  }

  /** Where a row begins. */
  offset(row) {
    let sum = 0;
    for (let i = row; i > 0; i -= i & -i) sum += this.#sums[i];
    return sum;
  }

  /** The row at a place: the first above, the last below all of them. */
  at(offset) {
    let row = 0;
    let left = offset;
    for (let step = 2 ** Math.floor(Math.log2(Math.max(1, this.count))); step > 0; step >>= 1) {
      if (row + step <= this.count && this.#sums[row + step] <= left) {
        row += step;
        left -= this.#sums[row];
      }
    }
    return Math.max(0, Math.min(row, this.count - 1));
  }
}
