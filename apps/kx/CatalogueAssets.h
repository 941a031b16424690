#pragma once

// The catalogue's style sheet and sorting script, written beside its pages.
namespace Kx::Console {

inline constexpr const char* s_catalogueStyle = R"(body { font-family: system-ui, sans-serif; margin: 1.5em; color: #222; }
h1 { font-size: 1.4em; }
table { border-collapse: collapse; font-size: 0.9em; }
th, td { border-bottom: 1px solid #ddd; padding: 0.25em 0.6em; text-align: left; vertical-align: middle; }
th { background: #f2f2f2; cursor: pointer; position: sticky; top: 0; user-select: none; }
th[aria-sort="ascending"]::after { content: " \25B2"; }
th[aria-sort="descending"]::after { content: " \25BC"; }
td.number { text-align: right; font-variant-numeric: tabular-nums; }
td.corrected, td.family, td.withdrawn { background: #fff6d6; }
td.corrected::after { content: " c"; color: #a05a00; font-size: 0.75em; vertical-align: super; }
td.family::after { content: " f"; color: #a05a00; font-size: 0.75em; vertical-align: super; }
td.withdrawn::after { content: " w"; color: #a05a00; font-size: 0.75em; vertical-align: super; }
img.swatch { width: 24px; height: 24px; border: 1px solid #999; display: block; }
.legend { font-size: 0.85em; color: #555; }
)";

// Sorts a table by the clicked header: numbers by value with empty cells last, text in the reader's
// alphabetical order; a second click on the same header reverses. "page.html#sort=density" (or
// "#sort=-density", largest first) opens a page sorted, so a sorted view can be linked.
inline constexpr const char* s_catalogueScript = R"("use strict";
function sortTable(table, column, descending) {
  const headers = Array.from(table.tHead.rows[0].cells);
  const numeric = headers[column].dataset.type === "number";
  const key = row => {
    const cell = row.cells[column];
    if (!numeric) return cell.textContent.trim();
    return cell.dataset.value === undefined ? null : Number(cell.dataset.value);
  };
  const body = table.tBodies[0];
  const rows = Array.from(body.rows);
  rows.sort((a, b) => {
    const x = key(a), y = key(b);
    if (x === null || y === null) return (x === null) - (y === null);
    const order = numeric ? x - y : x.localeCompare(y);
    return descending ? -order : order;
  });
  rows.forEach(row => body.appendChild(row));
  headers.forEach((cell, index) =>
    cell.setAttribute("aria-sort", index === column ? (descending ? "descending" : "ascending") : "none"));
}
document.querySelectorAll("table.sortable").forEach(table => {
  const headers = Array.from(table.tHead.rows[0].cells);
  headers.forEach((header, column) => header.addEventListener("click",
    () => sortTable(table, column, header.getAttribute("aria-sort") === "ascending")));
  const wanted = /^#sort=(-?)([\w-]+)$/.exec(location.hash);
  const column = wanted ? headers.findIndex(cell => cell.dataset.key === wanted[2]) : -1;
  if (column >= 0) sortTable(table, column, wanted[1] === "-");
});
)";

} // namespace Kx::Console
