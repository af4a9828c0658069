// The tree: rows that fold, of which only those that are seen are in the document.

const DEEPEST_STEP = 12; // deeper rows have the number of their level instead of more indentation
const TALLEST = 8000000; // pixels; browsers limit the height of an element
const SPARE_ROWS = 6;    // drawn above and below what is seen

class Tree {
  // onSelect is called with the row that becomes the active one, and onScroll with the row around the
  // first one that is seen, or null.
  constructor(element, onSelect, onScroll) {
    this.element = element;
    this.rowsElement = element.firstElementChild;
    this.onSelect = onSelect;
    this.onScroll = onScroll;
    this.onFollow = () => {};
    this.roots = rowsOf(0, null);
    this.seen = new Map(); // the rows in the document with their elements
    this.query = "";
    this.rowHeight = this.wantedRowHeight;
    this.openFirstRows();
    this.flatten();
    this.active = this.rows[0];
    element.addEventListener("scroll", () => this.draw());
    element.addEventListener("click", (event) => this.click(event));
    element.addEventListener("dblclick", (event) => this.click(event));
    element.addEventListener("keydown", (event) => this.press(event));
    new ResizeObserver(() => this.measure()).observe(element);
    this.measure();
  }

  // Unfolds upper levels as long as everything still fits a screen.
  openFirstRows() {
    const most = Math.max(10, this.pageLength);
    const list = this.roots.slice(0, most);
    for (let i = 0, count = list.length; i < list.length; ++i) {
      const row = list[i];
      const size = sizeOf(row.value);
      if (!row.canOpen || kindOf(row.value) === KIND.structRules) continue;
      if (row !== this.roots[0] && count + size > most) continue;
      row.open();
      count += size;
      list.push(...row.rows.slice(0, most));
    }
  }

  // Lists the rows that are not inside a folded one.
  flatten() {
    const rows = [];
    const open = [[this.roots, 0]];
    while (open.length > 0) {
      const top = open[open.length - 1];
      if (top[1] === top[0].length) {
        open.pop();
        continue;
      }
      const row = top[0][top[1]++];
      rows.push(row);
      if (row.isOpen) open.push([row.rows, 0]);
    }
    this.rows = rows;
  }

  get wantedRowHeight() {
    return parseFloat(getComputedStyle(document.documentElement).getPropertyValue("--row"));
  }

  measure() {
    this.rowHeight = this.wantedRowHeight;
    this.draw();
  }

  // The height of all rows can exceed what browsers allow. Then the scroll bar moves in larger steps.
  get fullHeight() { return this.rows.length * this.rowHeight; }
  get ratio() {
    const room = this.element.clientHeight;
    const height = Math.min(this.fullHeight, TALLEST);
    return height > room ? (this.fullHeight - room) / (height - room) : 1;
  }

  draw() {
    const room = this.element.clientHeight;
    this.rowsElement.style.height = Math.min(this.fullHeight, TALLEST) + "px";
    const scrolled = this.element.scrollTop;
    const position = scrolled * this.ratio;
    const begin = Math.max(0, Math.floor(position / this.rowHeight) - SPARE_ROWS);
    const end = Math.min(this.rows.length, Math.ceil((position + room) / this.rowHeight) + SPARE_ROWS);
    const shown = [];
    for (let i = begin; i < end; ++i) shown.push([this.rows[i], i]);
    // The active row stays in the document, so that screen readers find it.
    const active = this.rows.indexOf(this.active);
    if (active >= 0 && (active < begin || active >= end)) shown.push([this.active, active]);
    const before = this.seen;
    this.seen = new Map();
    let next = this.rowsElement.firstChild;
    for (const [row, index] of shown) {
      const element = before.get(row) ?? this.makeRow(row);
      this.seen.set(row, element);
      element.style.top = scrolled + index * this.rowHeight - position + "px";
      element.classList.toggle("active", row === this.active);
      element.setAttribute("aria-selected", row === this.active);
      if (element.hasAttribute("aria-expanded")) element.setAttribute("aria-expanded", row.isOpen);
      if (element === next) next = next.nextSibling; else this.rowsElement.insertBefore(element, next);
    }
    while (next) {
      const gone = next;
      next = next.nextSibling;
      gone.remove();
    }
    this.element.setAttribute("aria-activedescendant", "row" + this.active.id);
    const top = this.rows[Math.min(Math.ceil(position / this.rowHeight), this.rows.length - 1)];
    this.onScroll(top.parent);
  }

  makeRow(row) {
    const { place, value } = row;
    const element = make("div", "row");
    element.id = "row" + row.id;
    element.row = row;
    element.setAttribute("role", "treeitem");
    element.setAttribute("aria-level", row.level);
    element.setAttribute("aria-setsize", sizeOf(holder[place]));
    element.setAttribute("aria-posinset", place - first[holder[place]] + 1);
    if (row.canOpen) element.setAttribute("aria-expanded", row.isOpen);
    const indent = Math.min(row.level - 1, DEEPEST_STEP);
    element.style.paddingLeft = `calc(${indent} * var(--step))`;
    element.append(make("span", "twist"));
    if (row.level - 1 > DEEPEST_STEP) element.append(make("span", "level", `level ${row.level.toLocaleString("en")}`));
    element.append(this.marked(make("span", isNamed(place) ? "name" : "name index"), labelOf(place)),
                   make("span", "kind", kindWord(value)));
    const notes = [];
    this.addContent(element, row, notes);
    this.addLinks(element, row, notes);
    element.setAttribute("aria-label", [`${labelOf(place)}: ${kindWord(value)}`, ...notes].join(", "));
    return element;
  }

  addContent(element, row, notes) {
    const { place, value } = row;
    const content = contentOf(value);
    const rules = rulesAt(place);
    const cell = make("span", "content " + styleOf(value));
    if (rules?.before) cell.append(make("span", "adornment", rules.before));
    cell.append(this.marked(make("span"), content));
    if (rules?.after) cell.append(make("span", "adornment", rules.after));
    const glance = isContainer(value) ? glanceInto(value) : "";
    if (glance) cell.append(make("span", "glance", glance));
    element.append(cell);
    if (value !== 0) notes.push(content);
    if (rules?.isSlider) addRange(element, value, rules, violations.has(place));
    if (rules?.isChoice) {
      element.append(make("span", "choices", choicesOf(rules.allowed)));
    }
    if (violations.has(place)) {
      element.append(make("span", "chip bad", "not valid"));
      notes.push(...violations.get(place));
    }
  }

  addLinks(element, row, notes) {
    if (!isShared(row.value)) return;
    const count = placesOf(row.value).length;
    const chip = make("span", "chip link", row.cycle ? "↺ contains itself" : `shared × ${count}`);
    chip.title = row.cycle ? "Go to this value around itself" : "Go to the next place of this value";
    element.append(chip);
    notes.push(row.cycle ? "contains itself" : `shared by ${count} places`);
  }

  // Fills an element with the text, with the matches of the search marked.
  marked(element, text) {
    const lower = text.toLowerCase();
    let at = 0;
    if (this.query && lower.length === text.length) {
      for (let hit; (hit = lower.indexOf(this.query, at)) >= 0; at = hit + this.query.length) {
        element.append(text.slice(at, hit), make("mark", "", text.slice(hit, hit + this.query.length)));
      }
    }
    element.append(text.slice(at));
    return element;
  }

  markMatches(query) {
    this.query = query;
    this.seen.clear();
    this.draw();
  }

  indexOf(row) { return this.rows.indexOf(row); }

  // Makes a row the active one and scrolls to it.
  select(row) {
    this.active = row;
    const index = this.indexOf(row);
    const room = this.element.clientHeight;
    const position = this.element.scrollTop * this.ratio;
    const top = index * this.rowHeight;
    let wanted = position;
    if (top < position || top + this.rowHeight > position + room) {
      const isNear = top > position - 2 * this.rowHeight && top < position + room + this.rowHeight;
      wanted = isNear ? (top < position ? top : top + this.rowHeight - room) : top - room / 3;
    }
    if (wanted !== position) {
      // The new height counts before the scroll bar can move there.
      this.rowsElement.style.height = Math.min(this.fullHeight, TALLEST) + "px";
      this.element.scrollTop = wanted / this.ratio;
    }
    this.draw();
    this.onSelect(row);
  }

  // Makes a row visible, whose way to the root may be folded, and selects it.
  reveal(row) {
    let isChanged = false;
    for (let around = row.parent; around; around = around.parent) {
      isChanged = isChanged || !around.isOpen;
      around.isOpen = true;
    }
    if (isChanged) this.flatten();
    this.select(row);
  }

  // Selects the row of a place on the shortest way to it.
  // Returns the rows that had to be unfolded for it.
  goTo(place) {
    const way = [place];
    while (holder[way[way.length - 1]] !== 0) way.push(homeOf(holder[way[way.length - 1]]));
    const opened = [];
    let row = this.roots[way.pop()];
    while (way.length > 0) {
      if (!row.isOpen) opened.push(row);
      row.open();
      row = row.rows[way.pop() - first[row.value]];
    }
    if (opened.length > 0) this.flatten();
    this.select(row);
    return opened;
  }

  setOpen(row, isOpen) {
    if (!row.canOpen || row.isOpen === isOpen) return;
    if (isOpen) row.open(); else row.isOpen = false;
    this.flatten();
    this.select(!isOpen && this.active.isBelow(row) ? row : this.active);
  }

  // Unfolds everything below the rows, which have one parent, but each shared value only once.
  unfold(rows) {
    const list = [...rows];
    const met = new Set();
    for (let row = rows[0].parent; row; row = row.parent) met.add(row.value);
    while (list.length > 0) {
      const row = list.pop();
      if (!isContainer(row.value) || sizeOf(row.value) === 0 || met.has(row.value)) continue;
      if (isShared(row.value)) met.add(row.value);
      row.open();
      for (const inside of row.rows) list.push(inside);
    }
    this.flatten();
    this.select(this.active);
  }

  foldAll() {
    const list = [...this.roots];
    while (list.length > 0) {
      const row = list.pop();
      row.isOpen = false;
      for (const inside of row.rows ?? []) list.push(inside);
    }
    this.flatten();
    let top = this.active;
    while (top.parent) top = top.parent;
    this.select(top);
  }

  click(event) {
    const row = event.target.closest(".row")?.row;
    if (!row) return;
    const isTwist = event.target.className === "twist";
    if (event.target.classList.contains("link")) {
      if (event.type === "click") this.follow(row);
    } else if (isTwist ? event.type === "click" : event.type === "dblclick") {
      this.select(row);
      this.setOpen(row, !row.isOpen);
    } else if (event.type === "click") {
      this.select(row);
    }
  }

  // Follows the link of a row: from a value inside itself to the same value around it, and from a
  // shared value to its next place.
  follow(row) {
    const around = row.cycle;
    if (around) {
      this.onFollow(row, () => this.reveal(around));
      return;
    }
    const places = placesOf(row.value);
    const next = places[(places.indexOf(row.place) + 1) % places.length];
    this.onFollow(row, () => this.goTo(next));
  }

  press(event) {
    if (event.altKey || event.ctrlKey || event.metaKey || event.key === "/") return;
    const action = this.actions[event.key];
    if (action) {
      action.call(this, this.indexOf(this.active));
      event.preventDefault();
    } else if (event.key.length === 1) {
      this.findLetter(event.key.toLowerCase());
    }
  }

  get pageLength() { return Math.max(1, Math.floor(this.element.clientHeight / this.rowHeight) - 1); }
  move(index) { this.select(this.rows[Math.max(0, Math.min(index, this.rows.length - 1))]); }

  actions = {
    ArrowDown(at) { this.move(at + 1); },
    ArrowUp(at) { this.move(at - 1); },
    Home() { this.move(0); },
    End() { this.move(this.rows.length - 1); },
    PageDown(at) { this.move(at + this.pageLength); },
    PageUp(at) { this.move(at - this.pageLength); },
    ArrowRight(at) {
      if (this.active.isOpen) this.move(at + 1); else this.setOpen(this.active, true);
    },
    ArrowLeft() {
      if (this.active.isOpen) this.setOpen(this.active, false);
      else if (this.active.parent) this.select(this.active.parent);
    },
    Enter() {
      if (this.active.canOpen) this.setOpen(this.active, !this.active.isOpen);
      else if (isShared(this.active.value)) this.follow(this.active);
    },
    " "() { this.actions.Enter.call(this); },
    "*"() { this.unfold([this.active]); },
  };

  // Selects the next row whose name begins with the letter.
  findLetter(letter) {
    const at = this.indexOf(this.active);
    for (let step = 1; step <= this.rows.length; ++step) {
      const row = this.rows[(at + step) % this.rows.length];
      if (labelOf(row.place).toLowerCase().startsWith(letter)) {
        this.select(row);
        return;
      }
    }
  }
}
