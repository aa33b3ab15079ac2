// SPDX-License-Identifier: Apache-2.0
"use strict";

// What the page knows:
//
//   namespaces  names
//   texts       reasons and explanations; others refer to them by position
//   missing     rows [namespace, class, instance, property, text, whether it is an error]
//   classes     {namespace, name, label, superclass, first, count, missing, labels, columns}
//
// Instances have numbers: those of a class are "first" and the "count" - 1 after it. Each has a
// label, except in associations. A column is {name, type, key, about, cells}, or has "same" in
// place of "cells" if all instances have the same. A cell is null, true, false, a text, a number,
// or one of
//
//   {text, number}  a number that is shown as the text
//   {missing}       the position of the reason
//   {instance}      the number of the instance that it refers to
//   {list}          cells
const contents = JSON.parse(document.getElementById("contents").textContent);

const cellOf = (column, row) => ("same" in column ? column.same : column.cells[row]);
const isObject = (cell) => cell !== null && typeof cell === "object";
const isEmpty = (cell) => cell === null || (isObject(cell) && "missing" in cell);

function classOf(instance) {
  const { classes } = contents;
  let low = 0;
  let high = classes.length - 1;
  while (low < high) {
    const middle = (low + high + 1) >> 1;
    if (classes[middle].first <= instance) {
      low = middle;
    } else {
      high = middle - 1;
    }
  }
  return classes[low];
}

const isReference = (column) => column.type.startsWith("reference");

const isAssociation = (cimClass) => cimClass.count > 0 && !cimClass.labels;

// The label of an instance, without its class.
function nameOf(instance) {
  const cimClass = classOf(instance);
  const row = instance - cimClass.first;
  if (cimClass.labels) return cimClass.labels[row];
  const ends = cimClass.columns.filter(isReference);
  return ends.map((column) => endOf(cellOf(column, row))).join(" \u2192 ");
}

function endOf(cell) {
  if (!isObject(cell) || !("instance" in cell)) return textOf(cell);
  // The end of an association can be an association, and perhaps one in a circle.
  const cimClass = classOf(cell.instance);
  return isAssociation(cimClass) ? cimClass.label : labelOf(cell.instance);
}

const labelOf = (instance) => `${classOf(instance).label} ${nameOf(instance)}`.trim();

function textOf(cell) {
  if (cell === null) return "";
  if (!isObject(cell)) return String(cell);
  if ("text" in cell) return cell.text;
  if ("missing" in cell) return contents.texts[cell.missing];
  if ("instance" in cell) return endOf(cell);
  return cell.list.map(textOf).join(", ");
}

// For each instance that is referred to, the references: [instance, column] each.
let references = null;

function referencesTo(instance) {
  references ??= findReferences();
  return references.get(instance) ?? [];
}

function findReferences() {
  const found = new Map();
  const add = (cell, from, column) => {
    if (!isObject(cell)) return;
    if ("list" in cell) cell.list.forEach((element) => add(element, from, column));
    if (!("instance" in cell)) return;
    if (!found.has(cell.instance)) found.set(cell.instance, []);
    found.get(cell.instance).push([from, column]);
  };
  for (const cimClass of contents.classes) {
    for (const column of cimClass.columns ?? []) {
      if (!isReference(column)) continue;
      for (let row = 0; row < cimClass.count; ++row) {
        add(cellOf(column, row), cimClass.first + row, column);
      }
    }
  }
  return found;
}

function numberOf(cell) {
  if (typeof cell === "number") return cell;
  return isObject(cell) && "number" in cell ? cell.number : null;
}

const collator = new Intl.Collator("en", { numeric: true });

// Orders cells: numbers, then texts, then what is missing.
function compareCells(left, right) {
  const rank = (cell) => (isEmpty(cell) ? 2 : numberOf(cell) === null ? 1 : 0);
  if (rank(left) !== rank(right)) return rank(left) - rank(right);
  if (rank(left) === 0) return numberOf(left) - numberOf(right);
  return collator.compare(textOf(left), textOf(right));
}
