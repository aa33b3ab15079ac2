// SPDX-License-Identifier: Apache-2.0

// Elements are made one by one and get plain text: nothing of the machine is ever parsed as HTML.
function element(tag, attributes = {}, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (typeof value === "function") {
      made.addEventListener(name, value);
    } else if (value === true) {
      made.setAttribute(name, "");
    } else if (value !== false && value !== undefined) {
      made.setAttribute(name, value);
    }
  }
  made.append(...children.filter((child) => child !== null));
  return made;
}

const linkTo = (instance) =>
  element("a", { href: `#instance-${instance}` }, shortened(labelOf(instance)));

const longest = 200;

function shortened(text) {
  return text.length > longest ? `${text.slice(0, longest)}\u2026` : text;
}

// A long text begins short, with a button that shows the rest.
function longText(text) {
  if (text.length <= 4 * longest) return element("span", { class: "text" }, text);
  const shown = element("span", { class: "text" }, shortened(text));
  const showAll = () => {
    shown.textContent = text;
    button.remove();
  };
  const label = `Show all ${text.length.toLocaleString("en")} characters`;
  const button = element("button", { type: "button", click: showAll }, label);
  return element("span", {}, shown, " ", button);
}

// A cell of a table, or with `isWhole` the value of an instance.
function showCell(cell, isWhole = false) {
  if (cell === null) return element("span", { class: "absent" }, "\u2013");
  if (!isObject(cell) || "text" in cell) {
    const text = textOf(cell);
    return isWhole ? longText(text) : document.createTextNode(shortened(text));
  }
  if ("instance" in cell) return linkTo(cell.instance);
  if ("missing" in cell) {
    const reason = textOf(cell);
    if (isWhole) return element("span", { class: "absent" }, `\u2013 (${reason})`);
    return element("span", { class: "absent", title: reason }, "\u2013");
  }
  const list = element("span");
  for (const each of cell.list) list.append(list.hasChildNodes() ? ", " : "", showCell(each));
  return list;
}

// A table that can be searched and sorted. `columns` are {title, about, cell(row), show(row)}; the
// first one names the row, and `show` may be missing. Only the first rows are laid out, more on
// request.
class SortableTable {
  static page = 200;

  constructor(caption, columns, rows) {
    this.columns = columns;
    this.rows = rows;
    this.found = rows;
    this.shown = SortableTable.page;
    this.sortedBy = null;
    this.isDescending = false;
    this.body = element("tbody");
    this.status = element("p", { role: "status" });
    this.more = element("button", { type: "button", click: () => this.showMore() });
    this.headers = columns.map((column, i) => this.makeHeader(column, i));
    const table = element(
      "table", {},
      element("caption", {}, caption),
      element("thead", {}, element("tr", {}, ...this.headers)),
      this.body);
    const scroller = { class: "scroller", role: "region", tabindex: "0", "aria-label": caption };
    this.element = element(
      "div", {}, this.makeSearch(), this.status, element("div", scroller, table), this.more);
    this.fill();
  }

  makeHeader(column, position) {
    const button = element("button", { type: "button", click: () => this.sortBy(position) },
                           column.title);
    return element("th", { scope: "col", title: column.about }, button);
  }

  makeSearch() {
    const input = element("input", { type: "search", autocomplete: "off", spellcheck: "false" });
    input.addEventListener("input", () => this.search(input.value));
    return element("label", { class: "find" }, "Search in this table ", input);
  }

  search(text) {
    const wanted = text.toLowerCase();
    const has = (row) =>
      this.columns.some((column) => textOf(column.cell(row)).toLowerCase().includes(wanted));
    this.found = wanted === "" ? this.rows : this.rows.filter(has);
    this.shown = SortableTable.page;
    this.sort();
    this.fill();
  }

  sortBy(position) {
    this.isDescending = this.sortedBy === position && !this.isDescending;
    this.sortedBy = position;
    this.headers.forEach((header, i) => {
      if (i !== position) return header.removeAttribute("aria-sort");
      return header.setAttribute("aria-sort", this.isDescending ? "descending" : "ascending");
    });
    this.sort();
    this.fill();
  }

  sort() {
    if (this.sortedBy === null) return;
    const { cell } = this.columns[this.sortedBy];
    const sign = this.isDescending ? -1 : 1;
    // What is missing stays at the end.
    const compare = (left, right) => {
      const isLast = isEmpty(left.cell) || isEmpty(right.cell);
      return (isLast ? 1 : sign) * compareCells(left.cell, right.cell);
    };
    const keyed = this.found.map((row) => ({ row, cell: cell(row) }));
    this.found = keyed.sort(compare).map((each) => each.row);
  }

  showMore() {
    const before = this.shown;
    this.shown *= 4;
    this.fill();
    this.body.rows[before]?.querySelector("a")?.focus();
  }

  fill() {
    const rows = this.found.slice(0, this.shown);
    this.body.replaceChildren(...rows.map((row) => this.makeRow(row)));
    const all = this.rows.length.toLocaleString("en");
    const found = this.found.length.toLocaleString("en");
    this.status.textContent = `${found === all ? all : `${found} of ${all}`} rows`;
    this.more.hidden = rows.length === this.found.length;
    this.more.textContent = `Show more than ${rows.length.toLocaleString("en")} rows`;
  }

  makeRow(row) {
    const cells = this.columns.map((column, i) => {
      const shown = column.show ? column.show(row) : showCell(column.cell(row));
      if (i === 0) return element("th", { scope: "row" }, shown);
      // Not those with a meaning in words: "2 (OK)".
      const isNumber =
        numberOf(column.cell(row)) !== null && !textOf(column.cell(row)).includes("(");
      return element("td", { class: isNumber ? "number" : undefined }, shown);
    });
    return element("tr", {}, ...cells);
  }
}
