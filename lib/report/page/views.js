// SPDX-License-Identifier: Apache-2.0

const overview = document.getElementById("overview");
const view = document.getElementById("view");
const searchBox = document.getElementById("search");
const pageTitle = document.title;
const noun = (count, name) => `${count.toLocaleString("en")} ${name}${count === 1 ? "" : "s"}`;

function heading(text, ...after) {
  return element("h1", { tabindex: "-1" }, text, ...after);
}

function classLink(cimClass, text = cimClass.label) {
  const address = `#class-${contents.classes.indexOf(cimClass)}`;
  return element("a", { href: address }, shortened(text));
}

function facts(pairs) {
  const rows = pairs.map(([name, value]) =>
    element("div", {}, element("dt", {}, name), element("dd", {}, value)));
  return element("dl", { class: "facts" }, ...rows);
}

// All instances of a class. What is the same for all, or empty, is not repeated in each row.
function classView(cimClass) {
  const ns = contents.namespaces[cimClass.namespace];
  const parts = [
    heading(shortened(cimClass.label)),
    element("p", { class: "origin" }, `${ns}: `, longText(cimClass.name),
            cimClass.superclass ? `, a ${cimClass.superclass}` : ""),
  ];
  if (cimClass.missing !== undefined) {
    parts.push(element("p", { class: "absent" }, contents.texts[cimClass.missing]));
  }
  if (cimClass.count === 0) {
    parts.push(element("p", {}, "There is no instance of this class."));
    return parts;
  }
  if (cimClass.count === 1) return [...parts, ...instanceParts(cimClass.first)];
  const { columns } = cimClass;
  const rows = Array.from({ length: cimClass.count }, (_, row) => row);
  // A key that is the whole label is in the first column already.
  const isLabel = (column) =>
    column.key && rows.every((row) => textOf(cellOf(column, row)) === nameOf(cimClass.first + row));
  const differing = columns.filter((column) => "cells" in column && !isLabel(column));
  const same = columns.filter((column) => "same" in column && !isEmpty(column.same));
  const empty = columns.filter((column) => "same" in column && isEmpty(column.same));
  parts.push(new SortableTable(
    `All instances of ${cimClass.label}`,
    [
      {
        title: "Instance",
        cell: (row) => nameOf(cimClass.first + row),
        show: (row) => element("a", { href: `#instance-${cimClass.first + row}` },
                               shortened(nameOf(cimClass.first + row)) || `Number ${row + 1}`),
      },
      ...differing.map((column) => ({
        title: column.name,
        about: contents.texts[column.about],
        cell: (row) => cellOf(column, row),
      })),
    ],
    rows).element);
  if (same.length > 0) {
    parts.push(element("h2", {}, "The same for all"));
    parts.push(facts(same.map((column) => [column.name, showCell(column.same)])));
  }
  if (empty.length > 0) {
    parts.push(element("h2", {}, "Missing for all"));
    parts.push(facts(empty.map((column) => [column.name, showCell(column.same, true)])));
  }
  return parts;
}

function instanceParts(instance) {
  const cimClass = classOf(instance);
  const row = instance - cimClass.first;
  const rows = cimClass.columns.map((column) =>
    element(
      "tr", {},
      element("th", { scope: "row" }, column.name, column.key ? " (key)" : ""),
      element("td", {}, showCell(cellOf(column, row), true)),
      element("td", { class: "about" }, contents.texts[column.about] ?? "")));
  const head = ["Property", "Value", "Meaning"].map((title) =>
    element("th", { scope: "col" }, title));
  const caption = `Values of ${shortened(labelOf(instance))}`;
  const table = element(
    "table", { class: "values" },
    element("caption", {}, caption),
    element("thead", {}, element("tr", {}, ...head)),
    element("tbody", {}, ...rows));
  const parts = [
    element("div", { class: "scroller", role: "region", tabindex: "0", "aria-label": caption },
            table),
  ];
  const related = relatedTo(instance);
  if (related.length > 0) parts.push(element("h2", {}, "Refers to this"), ...related);
  return parts;
}

// The instances that refer to this one, and through associations the other ends, by class.
function relatedTo(instance) {
  const groups = new Map();
  for (const [from, column] of referencesTo(instance)) {
    const cimClass = classOf(from);
    const key = `${cimClass.label}, ${column.name}`;
    if (!groups.has(key)) groups.set(key, { cimClass, column, found: [] });
    groups.get(key).found.push(from);
  }
  return [...groups.values()].map(({ cimClass, column, found }) => {
    const shown = found.slice(0, SortableTable.page);
    const items = shown.map((from) => element("li", {}, ...endsOf(from, column)));
    if (shown.length < found.length) {
      items.push(element("li", {}, `and ${noun(found.length - shown.length, "other")}: `,
                         classLink(cimClass, `all of ${cimClass.label}`)));
    }
    return element("section", {}, element("h3", {}, classLink(cimClass), ` as ${column.name}`),
                   element("ul", {}, ...items));
  });
}

function endsOf(from, column) {
  const cimClass = classOf(from);
  if (!isAssociation(cimClass)) return [linkTo(from)];
  const others = cimClass.columns.filter((each) => each !== column && isReference(each));
  const ends = others.map((each) => showCell(cellOf(each, from - cimClass.first)));
  const details = element("a", { href: `#instance-${from}`, class: "details" },
                          "association");
  return [...ends, " (", details, ")"];
}

function instanceView(instance) {
  const cimClass = classOf(instance);
  return [
    heading(shortened(labelOf(instance))),
    element("p", { class: "origin" }, "An instance of ", classLink(cimClass, cimClass.name)),
    ...instanceParts(instance),
  ];
}

function missingView() {
  const rows = contents.missing;
  const byName = new Map(contents.classes.map((each) => [`${each.namespace} ${each.name}`, each]));
  const column = (title, position) => ({ title, cell: (row) => row[position] });
  const classOfRow = (row) => byName.get(`${row[0]} ${row[1]}`);
  const table = new SortableTable(
    "What is missing",
    [
      {
        title: "Class",
        cell: (row) => row[1],
        show: (row) => {
          const cimClass = classOfRow(row);
          return cimClass ? classLink(cimClass) : document.createTextNode(row[1]);
        },
      },
      { title: "Instance", cell: (row) => row[2] || (row[3] ? "all" : "") },
      { title: "Property", cell: (row) => row[3] || "instances" },
      {
        title: "Reason",
        cell: (row) => contents.texts[row[4]],
        show: (row) => longText(contents.texts[row[4]]),
      },
      { title: "Kind", cell: (row) => (row[5] ? "error" : "not there") },
    ],
    rows);
  return [
    heading("What is missing"),
    element("p", {},
            "These values and instances are not in the report. After an error the machine may ",
            "well have them; the others are not there, or were not asked for."),
    table.element,
  ];
}

const mostHits = 200;

// All cells with a text, up to some. Returns also how many there are.
function findEverywhere(text) {
  const wanted = text.toLowerCase();
  const hits = [];
  let count = 0;
  const has = (cell) => textOf(cell).toLowerCase().includes(wanted);
  const add = (hit) => {
    if (++count <= mostHits) hits.push(hit);
  };
  for (const cimClass of contents.classes) {
    if (`${cimClass.name} ${cimClass.label}`.toLowerCase().includes(wanted)) add({ cimClass });
    for (const column of cimClass.columns ?? []) {
      if (isEmpty(column.same ?? null) && !column.cells) continue;
      if ("same" in column && !has(column.same)) continue;
      for (let row = 0; row < cimClass.count; ++row) {
        const cell = cellOf(column, row);
        if (!isEmpty(cell) && has(cell)) add({ cimClass, column, cell, row });
      }
    }
  }
  return { hits, count };
}

function searchView(text) {
  const { hits, count } = findEverywhere(text);
  const rows = hits.map(({ cimClass, column, cell, row }) => {
    if (!column) {
      return element("tr", {}, element("th", { scope: "row" }, classLink(cimClass)),
                     element("td", {}, "the class"),
                     element("td", {}, noun(cimClass.count, "instance")));
    }
    return element("tr", {}, element("th", { scope: "row" }, linkTo(cimClass.first + row)),
                   element("td", {}, column.name), element("td", {}, excerpt(cell, text)));
  });
  const shown = count > hits.length ? `; the first ${noun(hits.length, "one")} are shown` : "";
  const status = element("p", { role: "status" }, `${noun(count, "hit")}${shown}`);
  if (count === 0) return [heading("Search"), status];
  const head = ["Where", "Property", "Value"].map((title) => element("th", { scope: "col" }, title));
  const table = element("table", {}, element("caption", {}, "Hits"),
                        element("thead", {}, element("tr", {}, ...head)),
                        element("tbody", {}, ...rows));
  const scroller = { class: "scroller", role: "region", tabindex: "0", "aria-label": "Hits" };
  return [heading("Search"), status, element("div", scroller, table)];
}

// The cell, or of a long text the part with the hit.
function excerpt(cell, wanted) {
  const text = textOf(cell);
  const at = text.toLowerCase().indexOf(wanted.toLowerCase());
  if (text.length <= longest || at < longest / 2) return showCell(cell);
  return document.createTextNode(`\u2026${text.slice(at - 40, at + longest)}\u2026`);
}

// The list of what the page has.
function fillMenu() {
  const groups = [
    ["", (each) => each.count > 0 && !isAssociation(each)],
    ["Associations", (each) => each.count > 0 && isAssociation(each)],
    ["Without instances", (each) => each.count === 0],
  ];
  const item = (each) =>
    element("li", {}, classLink(each), " ", element("span", { class: "count" }, `${each.count}`));
  const menu = document.getElementById("menu");
  const missing = noun(contents.missing.length, "reason");
  menu.append(element("ul", {}, element("li", {}, element("a", { href: "#" }, "Overview")),
                      element("li", {}, element("a", { href: "#missing" }, "What is missing"), " ",
                              element("span", { class: "count" }, missing))));
  contents.namespaces.forEach((ns, number) => {
    menu.append(element("h2", {}, ns));
    for (const [title, belongs] of groups) {
      const items = contents.classes.filter((each) => each.namespace === number && belongs(each));
      if (items.length === 0) continue;
      const list = element("ul", {}, ...items.map(item));
      menu.append(title === "" ? list : element(
        "details", {}, element("summary", {}, `${title} (${items.length})`), list));
    }
  });
  // Beside a wide page the list is open; above a narrow one it would be in the way.
  const isWide = window.matchMedia("(min-width: 60rem)");
  const adapt = () => { menu.parentElement.open = isWide.matches; };
  isWide.addEventListener("change", adapt);
  adapt();
}

function markCurrent() {
  for (const link of document.querySelectorAll("#menu a")) {
    if (link.hash === location.hash && searchBox.value === "") {
      link.setAttribute("aria-current", "page");
    } else {
      link.removeAttribute("aria-current");
    }
  }
}

function show(parts) {
  overview.hidden = parts !== null;
  view.hidden = parts === null;
  view.replaceChildren(...(parts ?? []));
  const title = view.querySelector("h1");
  document.title = title ? `${title.textContent} \u2013 ${pageTitle}` : pageTitle;
  markCurrent();
}

function partsOf(name, number) {
  if (name === "missing") return missingView();
  if (name === "class" && contents.classes[number]) return classView(contents.classes[number]);
  const last = contents.classes[contents.classes.length - 1];
  const isInstance = name === "instance" && last && number < last.first + last.count;
  return isInstance ? instanceView(number) : null;
}

function follow(event) {
  const [, name, number] = location.hash.match(/^#([a-z]+)(?:-(\d+))?$/) ?? [];
  if (name === "content") {  // the link that skips the list
    document.getElementById("content").focus();
    return;
  }
  searchBox.value = "";
  const parts = partsOf(name, Number(number));
  show(parts);
  const target = parts ? null : document.getElementById(name ?? "");
  if (target && overview.contains(target)) {
    target.scrollIntoView();
  } else {
    window.scrollTo(0, 0);
  }
  // Not when the page opens: the reader has not chosen anything yet.
  if (event) (parts ? view : overview).querySelector("h1")?.focus();
}

let waiting = 0;

function searchSoon() {
  clearTimeout(waiting);
  waiting = setTimeout(() => {
    const text = searchBox.value.trim();
    if (text === "") {
      follow();
    } else {
      show(searchView(text));
    }
  }, 150);
}

fillMenu();
searchBox.addEventListener("input", searchSoon);
window.addEventListener("hashchange", follow);
// From what a search has found, back to where it began: the address is the same.
document.addEventListener("click", (event) => {
  const link = event.target.closest("a");
  if (link && link.hash === location.hash) follow(event);
});
document.body.classList.add("scripted");
follow();
