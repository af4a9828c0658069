"use strict";
// The values of the document, the places that hold them, and what follows from both. A value and a
// place are numbers. Value 0 is null as what a place holds, and the document as what holds a place.

const KIND = { int: 1, boolean: 2, double: 3, guid: 4, memBlock: 5, string: 6, array: 7, struct: 8,
               manager: 9, indexList: 12, checked: 50, structRules: 51, variableRules: 52 };
const DIGITS = 32; // of an identity

const data = JSON.parse(document.getElementById("data").textContent);
const valueCount = data.kinds.length;
const placeCount = data.values.length;

const kindOf = (value) => data.kinds[value];
const isContainer = (value) => value !== 0 && kindOf(value) >= KIND.array;
const sizeOf = (value) => (value === 0 || isContainer(value) ? data.contents[value] : 0);
const valueAt = (place) => data.values[place];
const kindWord = (value) => data.kindWords[kindOf(value)];
const wordOfCode = (code) => (Object.hasOwn(data.kindWords, code) ? data.kindWords[code] : `kind ${code}`);
const counted = (count, one, more) => `${count.toLocaleString("en")} ${count === 1 ? one : more}`;

// The places in value v are first[v] up to first[v + 1], and holder[p] holds place p.
const first = new Uint32Array(valueCount + 1);
const holder = new Uint32Array(placeCount);
for (let v = 0; v < valueCount; ++v) {
  first[v + 1] = first[v] + sizeOf(v);
  holder.fill(v, first[v], first[v + 1]);
}

// The places that hold value v are placesByValue[firstHolding[v]] up to firstHolding[v + 1]. The first
// of them, its home, is the nearest to a root value, so the way up from home to home has an end.
const firstHolding = new Uint32Array(valueCount + 1);
const placesByValue = new Uint32Array(placeCount);
for (const v of data.values) firstHolding[v + 1] += 1;
for (let v = 0; v < valueCount; ++v) firstHolding[v + 1] += firstHolding[v];
{
  const next = firstHolding.slice();
  for (let p = 0; p < placeCount; ++p) placesByValue[next[data.values[p]]++] = p;
}
const homeOf = (value) => placesByValue[firstHolding[value]];
const placesOf = (value) => placesByValue.subarray(firstHolding[value], firstHolding[value + 1]);
const isShared = (value) => value !== 0 && firstHolding[value + 1] - firstHolding[value] > 1;

// Returns the text of a name or string. One that is not UTF-8 has its other bytes as "\xHH".
const isForeign = (text) => Array.isArray(text);
const plain = (text) => (isForeign(text) ? text[0] : text);

const violations = new Map(); // the words for each place
for (const [place, words] of data.violations) {
  violations.set(place, [...(violations.get(place) ?? []), plain(words)]);
}

// Returns all places in the order of the tree, each once.
let treeOrder = null;
function placesInOrder() {
  if (treeOrder) return treeOrder;
  treeOrder = new Uint32Array(placeCount);
  const open = [[first[0], first[1]]];
  for (let count = 0; open.length > 0;) {
    const range = open[open.length - 1];
    if (range[0] === range[1]) {
      open.pop();
      continue;
    }
    const place = range[0]++;
    treeOrder[count++] = place;
    const value = valueAt(place);
    if (isContainer(value) && homeOf(value) === place) open.push([first[value], first[value + 1]]);
  }
  return treeOrder;
}

// Returns the text with a sign for each character that cannot be seen or that turns others round.
const UNSEEN = /[\u0000-\u001f\u007f-\u009f\u00ad\u061c\u200b\u200e\u200f\u2028-\u202e\u2060-\u206f\ufeff]/g;
function visible(text) {
  return text.replace(UNSEEN, (c) => {
    const code = c.charCodeAt(0);
    return code < 0x20 ? String.fromCharCode(0x2400 + code)
                       : "\\u" + code.toString(16).padStart(4, "0");
  });
}

// Returns the identity that the file gives the value, in GUID layout, or null.
function identityOf(value) {
  let at = value - 1;
  if (data.identified !== null) {
    let end = data.identified.length;
    for (at = 0; at < end;) {
      const middle = (at + end) >> 1;
      if (data.identified[middle] < value) at = middle + 1; else end = middle;
    }
    if (data.identified[at] !== value) return null;
  }
  const d = data.identities.slice(at * DIGITS, (at + 1) * DIGITS);
  return `${d.slice(0, 8)}-${d.slice(8, 12)}-${d.slice(12, 16)}-${d.slice(16, 20)}-${d.slice(20)}`;
}

// Returns the value of an identity of the file by its number in the column.
const identifiedValue = (at) => (data.identified === null ? at + 1 : data.identified[at]);

// Returns the step from a container to one of its places, as paths of kel have it.
function stepTo(place) {
  const container = holder[place];
  const number = place - first[container];
  switch (kindOf(container)) {
  case KIND.array:
    return `[${number}]`;
  case KIND.indexList:
    return `[${number >> 1}].${number % 2 === 0 ? "key" : "item"}`;
  case KIND.manager:
    return "#" + (identityOf(valueAt(place)) ?? "");
  }
  const name = data.nameTexts[data.names[place]];
  const text = plain(name);
  if (/^[A-Za-z0-9_@]+$/.test(text)) return "." + text;
  const escaped = isForeign(name) ? text.replace(/"/g, "\\\"") : text.replace(/["\\]/g, "\\$&");
  const controls = /[\u0000-\u001f\u007f]/g;
  return "[\"" + escaped.replace(controls,
    (c) => "\\u00" + c.charCodeAt(0).toString(16).padStart(2, "0")) + "\"]";
}

// Returns the path through places, from the innermost one outwards. It can end before a root value.
function pathThrough(places) {
  const outermost = places[places.length - 1];
  const steps = places.filter((place) => holder[place] !== 0).map(stepTo);
  const text = steps.reverse().join("").replace(/^\./, "") || ".";
  if (holder[outermost] !== 0) return "… " + text;
  return (sizeOf(0) > 1 ? `${outermost + 1}:` : "") + text;
}

// Returns the shortest path to a place. Of a long one, only the last steps are returned.
function pathOf(place, mostSteps = Infinity) {
  const places = [place];
  for (let at = place; holder[at] !== 0 && places.length < mostSteps;) {
    at = homeOf(holder[at]);
    places.push(at);
  }
  return pathThrough(places);
}

// Returns the place in a container that the text leads to from an offset on, with the offset after
// it, or null.
function stepFrom(container, text, offset) {
  let best = null;
  const tryPlace = (place) => {
    const step = stepTo(place);
    const isFirst = offset === 0 || text[offset - 1] === ":";
    const written = isFirst && step[0] === "." ? step.slice(1) : step;
    const end = offset + written.length;
    const fits = text.startsWith(written, offset) && (end === text.length || ".[#".includes(text[end]));
    if (fits && (best === null || end > best[1])) best = [place, end];
  };
  if (kindOf(container) === KIND.array) {
    const number = Number(/^\[(\d+)\]/.exec(text.slice(offset, offset + 16))?.[1] ?? NaN);
    if (number < sizeOf(container)) tryPlace(first[container] + number);
  } else {
    for (let p = first[container]; p < first[container + 1]; ++p) tryPlace(p);
  }
  return best;
}

// Returns the place with this path, or null.
function placeAt(path) {
  const root = /^(\d+):/.exec(path);
  let place = root ? Number(root[1]) - 1 : 0;
  let offset = root ? root[0].length : 0;
  if (place < 0 || place >= sizeOf(0)) return null;
  while (offset < path.length) {
    const value = valueAt(place);
    const next = isContainer(value) ? stepFrom(value, path, offset) : null;
    if (next === null) return null;
    [place, offset] = next;
  }
  return place;
}

// Returns the name of a place in its container, as the tree shows it.
function labelOf(place) {
  const container = holder[place];
  const number = place - first[container];
  switch (kindOf(container)) {
  case 0:
    return sizeOf(0) > 1 ? `root ${number + 1}` : "root";
  case KIND.array:
    return String(number);
  case KIND.indexList:
    return `${number % 2 === 0 ? "key" : "item"} ${number >> 1}`;
  case KIND.manager:
    return (identityOf(valueAt(place)) ?? "").replace(/^(.{8}).*(.{4})$/, "#$1…$2");
  }
  const text = plain(data.nameTexts[data.names[place]]);
  return text === "" ? "\"\"" : visible(text);
}
const isNamed = (place) => data.names[place] !== 0;

const HELD = { [KIND.array]: ["element", "elements"], [KIND.manager]: ["value", "values"],
               [KIND.indexList]: ["pair", "pairs"] };

// Returns the contents of a value on one line. A string is cut off after a number of characters.
function contentOf(value, longest = 300) {
  const content = data.contents[value];
  if (value === 0) return "null";
  switch (kindOf(value)) {
  case KIND.string: {
    const text = plain(content);
    return `"${visible(text.slice(0, longest))}${text.length > longest ? "…" : "\""}`;
  }
  case KIND.memBlock:
    return counted(content[0], "byte", "bytes");
  }
  if (!isContainer(value)) return String(content);
  const [one, more] = HELD[kindOf(value)] ?? ["variable", "variables"];
  return counted(kindOf(value) === KIND.indexList ? content / 2 : content, one, more);
}

// Returns the first scalars in a container on one line, or an empty text.
function glanceInto(value) {
  const parts = [];
  const end = Math.min(first[value] + 4, first[value + 1]);
  for (let p = first[value]; p < end; ++p) {
    if (isContainer(valueAt(p))) continue;
    parts.push((isNamed(p) ? labelOf(p) + " = " : "") + contentOf(valueAt(p), 24));
  }
  return parts.length === 0 ? "" : parts.join(", ") + (sizeOf(value) > parts.length ? ", …" : "");
}

// Returns a few allowed values on one line, or only their number.
function choicesOf(allowed) {
  const count = sizeOf(allowed);
  if (count === 0 || count > 4) return `one of ${counted(count, "choice", "choices")}`;
  const words = [];
  for (let p = first[allowed]; p < first[allowed + 1]; ++p) words.push(contentOf(valueAt(p), 24));
  return `one of ${words.join(", ")}`;
}

// Returns the style of a value's contents.
function styleOf(value) {
  switch (kindOf(value)) {
  case KIND.int: case KIND.double: return "number";
  case KIND.string: return "string";
  case KIND.guid: return "guid";
  case KIND.boolean: case 0: return "word";
  }
  return "holds";
}

// Returns the members of a struct: their places by the numbers of their names.
const memberTables = new Map();
function membersOf(value) {
  if (!memberTables.has(value)) {
    const table = new Map();
    for (let p = first[value]; p < first[value + 1]; ++p) table.set(data.names[p], p);
    memberTables.set(value, table);
  }
  return memberTables.get(value);
}

const nameNumbers = new Map(data.nameTexts.map((text, number) => [isForeign(text) ? null : text, number]));

// Returns the value of a struct's member, or 0.
function memberOf(value, name) {
  const place = membersOf(value).get(nameNumbers.get(name) ?? -1);
  return place === undefined ? 0 : valueAt(place);
}

const isNumber = (value) => kindOf(value) === KIND.int || kindOf(value) === KIND.double;

// Returns an int or double as a number, and NaN for other values.
function numberOf(value) {
  return isNumber(value) ? Number(String(data.contents[value]).replace("inf", "Infinity")) : NaN;
}

const textOfString = (value) => (kindOf(value) === KIND.string ? visible(plain(data.contents[value])) : "");

// Returns what a variable descriptor says.
function readRules(value) {
  const rules = { kind: memberOf(value, "type"), standard: memberOf(value, "default"),
                  step: memberOf(value, "stepsize"), min: memberOf(value, "min"),
                  max: memberOf(value, "max"), allowed: memberOf(value, "enum"),
                  before: textOfString(memberOf(value, "preadorn")),
                  after: textOfString(memberOf(value, "postadorn")) };
  rules.isRanged = isNumber(rules.min) && isNumber(rules.max);
  rules.isSlider = rules.isRanged && numberOf(rules.min) <= numberOf(rules.max);
  rules.isChoice = !rules.isRanged && kindOf(rules.allowed) === KIND.array;
  return rules;
}

// Returns the place of each variable descriptor for a checked struct by the number of the variable's
// name, or null for other values.
function descriptorsFor(container) {
  if (kindOf(container) !== KIND.checked) return null;
  const descriptor = memberOf(container, "@desc");
  return kindOf(descriptor) === KIND.structRules ? membersOf(descriptor) : null;
}

// Returns what the descriptor of the struct around a place says about it, or null.
function rulesAt(place) {
  if (data.names[place] === nameNumbers.get("@desc")) return null;
  const rules = descriptorsFor(holder[place])?.get(data.names[place]);
  return rules !== undefined && kindOf(valueAt(rules)) === KIND.variableRules
    ? { place: rules, ...readRules(valueAt(rules)) } : null;
}

// Returns the value and all containers in it, at any depth.
function containersIn(value) {
  const met = new Set([value]);
  const open = [value];
  while (open.length > 0) {
    const at = open.pop();
    for (let p = first[at]; p < first[at + 1]; ++p) {
      const inside = valueAt(p);
      if (isContainer(inside) && !met.has(inside)) {
        met.add(inside);
        open.push(inside);
      }
    }
  }
  return met;
}
