// The page: the head with its search, the tree, the details, and the way back.

const byId = (id) => document.getElementById(id);

// Finds places by names, contents, identities and paths.
class Search {
  constructor(tree) {
    this.tree = tree;
    this.places = [];
    this.at = -1;
    this.opened = []; // rows that were unfolded only to show a match
    this.input = byId("query");
    this.input.addEventListener("input", () => this.find());
    this.input.addEventListener("keydown", (event) => this.press(event));
    byId("next").addEventListener("click", () => this.step(1));
    byId("previous").addEventListener("click", () => this.step(-1));
  }

  // Returns the contents of all scalars in lower case, by the numbers of their values.
  contents() {
    this.lower ??= data.contents.map((content, value) =>
      (value === 0 || isContainer(value) || kindOf(value) === KIND.memBlock
        ? "" : String(plain(content)).toLowerCase()));
    return this.lower;
  }

  // Returns the values whose identity has the digits.
  identified(query) {
    const found = new Set();
    const digits = query.replaceAll("-", "").toUpperCase();
    if (!/^[0-9A-F]{4,32}$/.test(digits)) return found;
    for (let at = 0; (at = data.identities.indexOf(digits, at)) >= 0; ++at) {
      const number = Math.floor(at / DIGITS);
      if (at - number * DIGITS + digits.length <= DIGITS) found.add(identifiedValue(number));
    }
    return found;
  }

  find() {
    const path = this.input.value.trim();
    const query = path.toLowerCase();
    const names = data.nameTexts.map((name) => plain(name).toLowerCase().includes(query));
    const contents = this.contents();
    const identified = this.identified(query);
    this.places = query === "" ? [] : Array.from(placesInOrder()).filter((place) => {
      const value = valueAt(place);
      return (isNamed(place) && names[data.names[place]]) ||
             contents[value].includes(query) || identified.has(value);
    });
    const place = /[.[#:]/.test(path) ? placeAt(path) : null;
    if (place !== null) this.places.unshift(place);
    this.at = -1;
    this.tree.markMatches(query);
    if (this.places.length > 0) this.step(1); else this.report();
  }

  step(by) {
    if (this.places.length === 0) return;
    this.at = this.at < 0 ? (by > 0 ? 0 : this.places.length - 1)
                          : (this.at + by + this.places.length) % this.places.length;
    for (const row of this.opened) row.isOpen = false;
    if (this.opened.length > 0) this.tree.flatten();
    this.opened = this.tree.goTo(this.places[this.at]);
    this.report();
  }

  // Keeps the rows unfolded that are unfolded now.
  keepOpened() { this.opened = []; }

  report() {
    const count = this.places.length.toLocaleString("en");
    byId("matches").textContent = this.input.value.trim() === "" ? "" :
      this.places.length === 0 ? "not found" : `${(this.at + 1).toLocaleString("en")} of ${count}`;
  }

  press(event) {
    if (event.key === "Enter") {
      this.step(event.shiftKey ? -1 : 1);
    } else if (event.key === "Escape" || event.key === "ArrowDown") {
      this.tree.element.focus();
    } else {
      return;
    }
    event.preventDefault();
  }
}

// The ways that were followed, so that they can be gone back. The browser's own way back works too.
class Trail {
  constructor(tree) {
    this.tree = tree;
    this.rows = [];
    this.at = 0;
    history.replaceState({ trail: 0 }, "");
    addEventListener("popstate", (event) => this.arrive(event.state?.trail));
    byId("back").addEventListener("click", () => this.back());
  }

  // Follows a link from a row. go() selects the target.
  follow(row, go) {
    this.rows.length = this.at;
    this.rows.push(row);
    go();
    this.at += 1;
    this.rows[this.at] = this.tree.active;
    history.pushState({ trail: this.at }, "", "#" + this.tree.active.place);
    this.update();
  }

  back() { if (this.at > 0) history.back(); }

  arrive(at) {
    if (at === undefined || this.rows[at] === undefined) return;
    this.at = at;
    this.tree.reveal(this.rows[at]);
    this.update();
  }

  update() { byId("back").disabled = this.at === 0; }
}

// Adds a button that leads from place to place of those for which matches(place) is true.
function addJump(tree, trail, words, className, places) {
  if (places.length === 0) return;
  const button = make("button", className, words);
  button.type = "button";
  button.title = "Go to the next of them";
  let at = -1;
  button.addEventListener("click", () => {
    at = (at + 1) % places.length;
    trail.follow(tree.active, () => tree.goTo(places[at]));
    tree.element.focus({ preventScroll: true });
  });
  byId("jumps").append(button);
}

function start() {
  const name = data.file === "-" ? "stdin" : visible(plain(data.file));
  document.title = name;
  byId("file").textContent = name;
  byId("summary").textContent = `${data.format}, ${counted(valueCount - 1, "value", "values")}`;

  let trail = null;
  const showRow = (row) => showDetails(byId("details"), row, (place) =>
    trail.follow(row, () => tree.goTo(place)));
  const tree = new Tree(byId("tree"), showRow, (around) => {
    byId("around").textContent =
      around === null ? "" : around.parent === null ? labelOf(around.place) : visible(around.path(12));
  });
  trail = new Trail(tree);
  tree.onFollow = (row, go) => trail.follow(row, go);
  const search = new Search(tree);
  tree.element.addEventListener("pointerdown", () => search.keepOpened());
  tree.element.addEventListener("keydown", () => search.keepOpened());

  const sharedValues = [];
  for (let v = 1; v < valueCount; ++v) if (isShared(v)) sharedValues.push(homeOf(v));
  addJump(tree, trail, `${sharedValues.length.toLocaleString("en")} shared`, "", sharedValues);
  addJump(tree, trail, `${violations.size.toLocaleString("en")} not valid`, "bad",
          [...violations.keys()]);

  byId("unfold").addEventListener("click", () => tree.unfold(tree.roots));
  byId("fold").addEventListener("click", () => tree.foldAll());
  document.addEventListener("keydown", (event) => {
    if (event.target === search.input) return;
    if (event.key === "/") {
      search.input.select();
      search.input.focus();
    } else if (event.key === "Backspace") {
      trail.back();
    } else {
      return;
    }
    event.preventDefault();
  });

  const wanted = Number(location.hash.slice(1));
  if (location.hash.length > 1 && wanted >= 0 && wanted < placeCount) tree.goTo(wanted);
  else showRow(tree.active);
  tree.element.focus({ preventScroll: true });
}

start();
