// The drawing of a value that several places hold.

const DRAWN_PLACES = 6;
const SVG = "http://www.w3.org/2000/svg";

// Returns an element with a class, text and children.
function make(tag, className, text, ...children) {
  const element = document.createElement(tag);
  if (className) element.className = className;
  if (text) element.textContent = text;
  element.append(...children);
  return element;
}

function makeSvg(tag, attributes, text) {
  const element = document.createElementNS(SVG, tag);
  for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
  if (text !== undefined) element.textContent = text;
  return element;
}

// Returns the text, or its end if it is longer than the drawing has room for.
const lastPart = (text, most) => (text.length > most ? "…" + text.slice(1 - most) : text);
const firstPart = (text, most) => (text.length > most ? text.slice(0, most - 1) + "…" : text);

// Returns a box with two lines of text.
function makeBox(className, x, y, width, upper, lower) {
  const group = makeSvg("g", { class: className });
  group.append(makeSvg("rect", { x, y, width, height: 42 }),
               makeSvg("text", { x: x + 9, y: y + 18, class: "quiet" }, upper),
               makeSvg("text", { x: x + 9, y: y + 35 }, lower));
  return group;
}

// Returns the path of a container in the room of a box.
function wordsForContainer(container, value) {
  if (container === value) return "itself";
  if (container === 0) return "the document";
  const place = homeOf(container);
  return holder[place] === 0 ? labelOf(place) : lastPart(visible(pathOf(place, 4)), 15);
}

// Returns a drawing: the places on the left, the value on the right, an arrow from each place. The
// arrow of a place inside the value itself is dashed.
function drawSharing(value, current, follow) {
  const places = placesOf(value);
  // The current place is always drawn.
  const drawn = [...places.subarray(0, DRAWN_PLACES)];
  if (!drawn.includes(current)) drawn[DRAWN_PLACES - 1] = current;
  const height = drawn.length * 52 + (places.length > drawn.length ? 22 : 0);
  const middle = (drawn.length * 52 - 10) / 2;
  const svg = makeSvg("svg", { viewBox: `0 0 340 ${height}`, role: "img",
    "aria-label": `${counted(places.length, "place holds", "places hold")} this value` });
  const marker = makeSvg("marker", { id: "arrow", viewBox: "0 0 8 8", refX: 7, refY: 4, markerWidth: 7,
                                     markerHeight: 7, orient: "auto" });
  marker.append(makeSvg("path", { d: "M0 0 L8 4 L0 8 z" }));
  svg.append(marker);
  const inside = containersIn(value);
  drawn.forEach((place, number) => {
    const y = number * 52;
    const isInside = inside.has(holder[place]);
    const box = makeBox(place === current ? "place here" : "place", 1, y + 1, 158,
                        `${isInside ? "inside" : "in"} ${wordsForContainer(holder[place], value)}`,
                        firstPart(labelOf(place), 20));
    box.addEventListener("click", () => follow(place));
    svg.append(box, makeSvg("path", {
      class: isInside ? "inside" : "", "marker-end": "url(#arrow)",
      d: `M160 ${y + 22} C195 ${y + 22} 185 ${middle} 218 ${middle}` }));
  });
  svg.append(makeBox("value", 220, middle - 21, 118, kindWord(value), firstPart(contentOf(value, 24), 15)));
  if (places.length > drawn.length) {
    svg.append(makeSvg("text", { x: 10, y: height - 5, class: "quiet" },
                       `and ${places.length - drawn.length} more`));
  }
  return svg;
}
