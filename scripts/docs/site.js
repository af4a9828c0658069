// The search: names that begin with the typed words come first, then those that contain them.
// SEARCH_INDEX has a row [name, where, address] for each class, operation, page and heading.
"use strict";

const field = document.getElementById("search");
const list = document.getElementById("found");
const most = 30;

function rank(row, words) {
  const name = row[0].toLowerCase();
  if (name === words) return 0;
  if (name.startsWith(words)) return 1;
  if (name.includes(words)) return 2;
  return (row[1] + " " + row[0]).toLowerCase().includes(words) ? 3 : 4;
}

function show() {
  const words = field.value.trim().toLowerCase();
  const hits = words === "" ? [] : SEARCH_INDEX.map((row) => [rank(row, words), row])
    .filter((hit) => hit[0] < 4).sort((a, b) => a[0] - b[0]).slice(0, most);
  list.replaceChildren(...hits.map((hit) => {
    const link = document.createElement("a");
    const where = document.createElement("span");
    link.href = hit[1][2];
    link.append(hit[1][0], where);
    where.textContent = hit[1][1];
    const row = document.createElement("li");
    row.append(link);
    return row;
  }));
  if (words !== "" && hits.length === 0) list.append("Nothing has this name.");
  list.hidden = words === "";
}

field.addEventListener("input", show);
field.addEventListener("keydown", (event) => {
  const links = list.querySelectorAll("a");
  if (event.key === "Escape") { field.value = ""; show(); }
  if (event.key === "Enter" && links.length > 0) links[0].click();
  if (event.key === "ArrowDown" && links.length > 0) { links[0].focus(); event.preventDefault(); }
});
list.addEventListener("keydown", (event) => {
  const step = { ArrowDown: 1, ArrowUp: -1 }[event.key];
  const links = [...list.querySelectorAll("a")];
  const next = links[links.indexOf(document.activeElement) + step];
  if (step) { (next || field).focus(); event.preventDefault(); }
});
document.addEventListener("click", (event) => {
  if (!event.target.closest("search") || event.target.closest("#found a")) list.hidden = true;
});

for (const link of document.querySelectorAll("header nav a")) {
  if (link.pathname === location.pathname) link.setAttribute("aria-current", "page");
}
