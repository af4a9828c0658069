// What is known about the selected value.

const SHOWN_CHARACTERS = 100000;
const SHOWN_PLACES = 100;
const SHOWN_CHOICES = 500;
const SHOWN_PATH = 4000; // characters

// Returns a range with the place of a value in it, as a meter that cannot be changed.
function makeRange(value, rules, isBad) {
  const [min, max, at] = [rules.min, rules.max, value].map(numberOf);
  const part = Math.min(1, Math.max(0, (at - min) / (max - min))) || 0;
  const range = make("span", isBad ? "range bad" : "range");
  const track = make("span", "track");
  const fill = make("i");
  const knob = make("b");
  fill.style.width = knob.style.left = `${100 * part}%`;
  track.append(fill, knob);
  range.append(make("span", "limit", contentOf(rules.min)), track, make("span", "limit", contentOf(rules.max)));
  range.setAttribute("role", "meter");
  range.setAttribute("aria-label", `allowed: ${contentOf(rules.min)} to ${contentOf(rules.max)}`);
  range.setAttribute("aria-valuemin", min);
  range.setAttribute("aria-valuemax", max);
  range.setAttribute("aria-valuenow", Number.isNaN(at) ? min : Math.min(max, Math.max(min, at)));
  range.setAttribute("aria-valuetext", contentOf(value));
  return range;
}

// Adds the range of a number, or the kind of another value, which has no place in the range.
function addRange(element, value, rules, isBad) {
  if (isNumber(value)) {
    element.append(makeRange(value, rules, isBad));
  } else if (value !== 0) {
    element.append(make("span", "chip", kindOf(value) === KIND.string ? "text" : data.kindWords[kindOf(value)]));
  }
}

// Returns the bytes of a memory block as lines of hexadecimal numbers and ASCII characters.
function dumpOf(base64) {
  const bytes = Uint8Array.from(atob(base64), (c) => c.charCodeAt(0));
  const lines = [];
  for (let at = 0; at < bytes.length; at += 16) {
    const line = [...bytes.subarray(at, at + 16)];
    const hex = line.map((byte) => byte.toString(16).padStart(2, "0")).join(" ").padEnd(47);
    const text = line.map((byte) => (byte > 0x20 && byte < 0x7f ? String.fromCharCode(byte) : "·")).join("");
    lines.push(`${at.toString(16).padStart(6, "0")}  ${hex}  ${text}`);
  }
  return lines.join("\n");
}

// Returns the whole contents of a scalar for reading, with a note if something is left out.
function wholeContent(value) {
  const content = data.contents[value];
  if (kindOf(value) === KIND.memBlock) {
    const shown = atob(content[1]).length;
    return [dumpOf(content[1]), shown < content[0] ? `the first ${shown.toLocaleString("en")} bytes` : ""];
  }
  const text = plain(content);
  const lines = text.slice(0, SHOWN_CHARACTERS).split("\n").map(visible).join("\n");
  const notes = [];
  if (text.length > SHOWN_CHARACTERS) {
    notes.push(`the first ${SHOWN_CHARACTERS.toLocaleString("en")} of ${counted(text.length, "character", "characters")}`);
  }
  if (isForeign(content)) notes.push("bytes that are not UTF-8 are shown as \\xHH");
  return [lines, notes.join("; ")];
}

function addFact(list, name, ...content) {
  list.append(make("dt", "", name), make("dd", "", "", ...content));
}

function addContents(panel, value) {
  if (value === 0 || isContainer(value)) return;
  if (kindOf(value) !== KIND.string && kindOf(value) !== KIND.memBlock) return;
  const [text, note] = wholeContent(value);
  panel.append(make("pre", "", text));
  if (note) panel.append(make("p", "note", note));
}

// Returns a button that leads to a place.
function makeLink(text, place, follow) {
  const button = make("button", "", text);
  button.type = "button";
  button.addEventListener("click", () => follow(place));
  return button;
}

function addRules(panel, place, rules, follow) {
  const value = valueAt(place);
  panel.append(make("h3", "", "Descriptor"));
  if (rules.isSlider) addRange(panel, value, rules, violations.has(place));
  const facts = make("dl");
  if (isNumber(rules.kind)) addFact(facts, "Type", wordOfCode(data.contents[rules.kind]));
  if (rules.standard !== 0) addFact(facts, "Default", contentOf(rules.standard));
  if (rules.step !== 0) addFact(facts, "Step", contentOf(rules.step));
  panel.append(facts, make("p", "", "", makeLink("Go to the descriptor", rules.place, follow)));
  if (!rules.isChoice) return;
  const list = make("ul", "allowed");
  list.setAttribute("aria-label", "Allowed values");
  const end = Math.min(first[rules.allowed + 1], first[rules.allowed] + SHOWN_CHOICES);
  const current = violations.has(place) ? null : contentOf(value, Infinity);
  for (let p = first[rules.allowed]; p < end; ++p) {
    const item = make("li", "", contentOf(valueAt(p)));
    if (!isContainer(value) && contentOf(valueAt(p), Infinity) === current) item.setAttribute("aria-current", "true");
    list.append(item);
  }
  const left = sizeOf(rules.allowed) - list.childElementCount;
  if (left > 0) list.append(make("li", "", `and ${left.toLocaleString("en")} more`));
  panel.append(make("h3", "", "Allowed values"), list);
}

// Lists the variables of a checked struct that its descriptor has and the struct itself does not.
function addMissing(panel, value, follow) {
  const descriptors = descriptorsFor(value);
  if (descriptors === null) return;
  const list = make("ul", "places");
  for (const [name, place] of descriptors) {
    if (membersOf(value).has(name) || kindOf(valueAt(place)) !== KIND.variableRules) continue;
    const { standard } = readRules(valueAt(place));
    const words = standard === 0 ? "without a default" : `default ${contentOf(standard)}`;
    if (list.childElementCount === SHOWN_PLACES) break;
    list.append(make("li", "", "", makeLink(`${labelOf(place)}: ${words}`, place, follow)));
  }
  if (list.childElementCount > 0) panel.append(make("h3", "", "Described and not set"), list);
}

// Returns the path to a row as long as it is, or both ends of a very long one.
function shownPath(row) {
  const path = visible(row.path());
  const half = SHOWN_PATH / 2;
  return path.length > SHOWN_PATH ? `${path.slice(0, half)} ... ${path.slice(-half)}` : path;
}

function addPlaces(panel, place, follow) {
  const value = valueAt(place);
  const places = placesOf(value);
  panel.append(make("h3", "", `Held in ${counted(places.length, "place", "places")}`),
               drawSharing(value, place, follow));
  const list = make("ul", "places");
  for (const other of places.subarray(0, SHOWN_PLACES)) {
    const button = makeLink(visible(pathOf(other, 24)), other, follow);
    if (other === place) button.setAttribute("aria-current", "true");
    list.append(make("li", "", "", button));
  }
  if (places.length > SHOWN_PLACES) list.append(make("li", "", `and ${places.length - SHOWN_PLACES} more`));
  panel.append(list);
}

// Shows everything about the value of a row. follow(place) goes to another place.
function showDetails(panel, row, follow) {
  const { place, value } = row;
  panel.textContent = "";
  panel.scrollTop = 0;
  panel.append(make("h2", "", labelOf(place)), make("span", "path", shownPath(row)));
  for (const words of violations.get(place) ?? []) panel.append(make("p", "violation", visible(words)));
  const facts = make("dl");
  addFact(facts, "Kind", kindWord(value));
  if (value !== 0) addFact(facts, isContainer(value) ? "Holds" : "Value", contentOf(value));
  const identity = value === 0 ? null : identityOf(value);
  if (identity) addFact(facts, "Identity", make("code", "", identity));
  if (row.level > DEEPEST_STEP) addFact(facts, "Level", row.level.toLocaleString("en"));
  panel.append(facts);
  addContents(panel, value);
  const rules = rulesAt(place);
  if (rules) addRules(panel, place, rules, follow);
  addMissing(panel, value, follow);
  if (isShared(value)) addPlaces(panel, place, follow);
}
