// The rows of the tree, whether or not they are in the document.

// A row stands for a place on one way to it. A shared value has a row at each of its places.
class Row {
  static count = 0;
  constructor(place, parent) {
    this.id = ++Row.count;
    this.place = place;
    this.parent = parent;
    this.level = parent === null ? 1 : parent.level + 1;
    this.rows = null; // made when the row is first unfolded
    this.isOpen = false;
    this.around = undefined;
  }

  get value() { return valueAt(this.place); }

  // Returns the row around this one that has the same value, or null.
  get cycle() {
    if (this.around === undefined) {
      this.around = null;
      if (isContainer(this.value) && isShared(this.value)) {
        this.around = this.parent;
        while (this.around && this.around.value !== this.value) this.around = this.around.parent;
      }
    }
    return this.around;
  }

  get canOpen() { return isContainer(this.value) && sizeOf(this.value) > 0 && this.cycle === null; }

  open() {
    this.isOpen = true;
    if (this.rows === null) this.rows = rowsOf(this.value, this);
  }

  // Returns the path to this row. Of a long one, only the last steps are returned.
  path(mostSteps = Infinity) {
    const places = [];
    for (let row = this; row && places.length < mostSteps; row = row.parent) places.push(row.place);
    return pathThrough(places);
  }

  isBelow(other) {
    for (let row = this.parent; row; row = row.parent) {
      if (row === other) return true;
    }
    return false;
  }
}

function rowsOf(value, parent) {
  const rows = new Array(sizeOf(value));
  for (let i = 0; i < rows.length; ++i) rows[i] = new Row(first[value] + i, parent);
  return rows;
}
