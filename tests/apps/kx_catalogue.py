#!/usr/bin/env python3
"""`kx materials catalogue` checked as a person would use it, on the standard content of this build.

    kx_catalogue.py <kx> <content dir> files
    kx_catalogue.py <kx> <content dir> browser <chromium> <screenshot file>

files:   the written folder holds a page per open library, linked from index.html; each table has a
         row per preset; every swatch a page names exists and is a well-formed PNG; values keep their
         origin; colours are sRGB (the 18 % grey card shows as #767676, its swatch as 118).
browser: every page rendered by a real headless browser in one run: no console message, a row per
         preset, every swatch image decoded, and a click on the density header orders the rows (a
         second click reverses). The screenshot is kept as the test's artefact.
"""
import html.parser
import os
import re
import struct
import subprocess
import sys
import tempfile
import zlib

failures = []


def check(condition, message):
    if not condition:
        failures.append(message)


def run(kx, *arguments, env):
    return subprocess.run([kx, *arguments], env=env, capture_output=True, text=True, timeout=120)


def libraries(kx, env):
    """(name, preset count) of every open library, as `kx materials libraries` lists them."""
    listed = run(kx, "materials", "libraries", env=env)
    check(listed.returncode == 0, "kx materials libraries failed: " + listed.stderr)
    found = []
    for line in listed.stdout.splitlines()[1:]:
        columns = re.split(r"\s{2,}", line.strip())
        found.append((columns[0], int(columns[-1])))
    return found


class Page(html.parser.HTMLParser):
    """The links, images and table rows (cells with their attributes) of a catalogue page."""

    def __init__(self, path):
        super().__init__()
        self.links, self.images, self.rows = {}, [], []
        self._link = None
        self._cell = None
        with open(path, encoding="utf-8") as stream:
            self.feed(stream.read())

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        if tag == "a":
            self._link = attributes.get("href")
            self.links[self._link] = ""
        elif tag == "img":
            self.images.append(attributes["src"])
        elif tag == "tr" and "data-id" in attributes:
            self.rows.append({"id": attributes["data-id"], "cells": []})
        elif tag == "td" and self.rows:
            self._cell = dict(attributes, text="")
            self.rows[-1]["cells"].append(self._cell)

    def handle_endtag(self, tag):
        if tag == "a":
            self._link = None
        elif tag == "td":
            self._cell = None

    def handle_data(self, data):
        if self._link is not None:
            self.links[self._link] += data
        if self._cell is not None:
            self._cell["text"] += data


def png_pixels(path):
    """(width, height, rows of bytes) of an 8-bit PNG; raises ValueError for a malformed file."""
    with open(path, "rb") as stream:
        data = stream.read()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        raise ValueError("no PNG signature")
    at, chunks, idat = 8, [], b""
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        (crc,) = struct.unpack(">I", data[at + 8 + length:at + 12 + length])
        if zlib.crc32(kind + body) != crc:
            raise ValueError("bad CRC in " + kind.decode())
        chunks.append(kind)
        if kind == b"IHDR":
            width, height, depth, colour = struct.unpack(">IIBB", body[:10])
        elif kind == b"IDAT":
            idat += body
        at += 12 + length
    if chunks[0] != b"IHDR" or chunks[-1] != b"IEND" or depth != 8:
        raise ValueError("not an 8-bit PNG with IHDR first and IEND last")
    channels = {0: 1, 2: 3, 3: 1, 4: 2, 6: 4}[colour]
    raw = zlib.decompress(idat)
    stride = 1 + width * channels
    if len(raw) != height * stride:
        raise ValueError("image data of the wrong size")
    return width, height, [raw[row * stride:(row + 1) * stride] for row in range(height)]


def check_files(folder, expected):
    index = Page(os.path.join(folder, "index.html"))
    pages = {text.strip(): href for href, text in index.links.items()}
    check(sorted(pages) == sorted(name for name, _ in expected), "index.html links %s" % sorted(pages))
    for name, count in expected:
        if name not in pages:
            continue
        page = Page(os.path.join(folder, pages[name]))
        check(len(page.rows) == count, "%s: %d rows for %d presets" % (name, len(page.rows), count))
        check(len(page.images) == count, "%s: %d swatches for %d presets" % (name, len(page.images), count))
        for image in page.images:
            try:
                png_pixels(os.path.join(folder, image))
            except (OSError, ValueError, KeyError, zlib.error, struct.error) as error:
                failures.append("%s: swatch %s: %s" % (name, image, error))
    rows = {row["id"]: row for row in Page(os.path.join(folder, pages["Telvarin Advanced Material Library"])).rows}
    steel = rows["CorvexMaterial-018"]["cells"]
    check(steel[2]["text"] == "Steel (generic)" and steel[5].get("data-value") == "7900",
          "the default steel's row: %s" % steel[:6])
    flagged = [cell for row in rows.values() for cell in row["cells"] if "class" in cell]
    for origin, prefix in (("family", "family value, "), ("corrected", "corrected from "), ("withdrawn", "withdrawn; ")):
        marked = [cell for cell in flagged if origin in cell["class"].split()]
        check(marked and all(cell.get("title", "").startswith(prefix) for cell in marked),
              "cells marked %s must name their origin" % origin)
    looks = {row["id"]: row for row in Page(os.path.join(folder, pages["Telvarin Advanced Appearance Library"])).rows}
    grey = looks["Corvex-256"]
    check(grey["cells"][6]["text"] == "#767676", "the grey card shows as %s, not #767676" % grey["cells"][6]["text"])
    _, _, pixels = png_pixels(os.path.join(folder, "swatches", pages["Telvarin Advanced Appearance Library"][:-5],
                                           "Corvex-256.png"))
    check(pixels[0][1:4] == bytes([118, 118, 118]), "the grey card's swatch is %s" % list(pixels[0][1:4]))


HARNESS_SCRIPT = r"""
window.addEventListener("load", () => {
  const lines = [];
  const ordered = (values, descending) => {
    const present = values.filter(v => v !== undefined).map(Number);
    const firstEmpty = values.indexOf(undefined);
    const emptyLast = firstEmpty < 0 || values.slice(firstEmpty).every(v => v === undefined);
    return emptyLast && present.every((v, i) => i === 0 || (descending ? present[i - 1] >= v : present[i - 1] <= v));
  };
  for (const frame of document.querySelectorAll("iframe")) {
    const page = frame.getAttribute("src");
    const doc = frame.contentDocument;
    const table = doc && doc.querySelector("table.sortable");
    if (!table) { lines.push(page + " no-table"); continue; }
    const images = Array.from(doc.images);
    const broken = images.filter(image => !image.complete || image.naturalWidth === 0).length;
    let density = "none";
    const header = table.querySelector('th[data-key="density"]');
    if (header) {
      const column = Array.from(header.parentNode.cells).indexOf(header);
      const values = () => Array.from(table.tBodies[0].rows).map(row => row.cells[column].dataset.value);
      header.click();
      const up = ordered(values(), false) && header.getAttribute("aria-sort") === "ascending";
      header.click();
      const down = ordered(values(), true) && header.getAttribute("aria-sort") === "descending";
      header.click();
      density = up && down ? "sorts" : "unsorted";
    }
    lines.push(`${page} rows=${table.tBodies[0].rows.length} images=${images.length} broken=${broken} density=${density}`);
  }
  document.getElementById("result").textContent = lines.join("\n");
});
"""


def check_browser(folder, expected, chromium, screenshot):
    if not os.access(chromium, os.X_OK):
        failures.append("no headless browser at %s: scripts/setup installs Debian's chromium" % chromium)
        return
    index = Page(os.path.join(folder, "index.html"))
    pages = {text.strip(): href for href, text in index.links.items()}
    order = sorted(pages.values(), key=lambda href: "advanced-material" not in href)
    frames = "\n".join('<iframe src="%s" width="1260" height="%d"></iframe>' % (href, 700 if i == 0 else 200)
                       for i, href in enumerate(order))
    harness = os.path.join(folder, "browser-check.html")
    with open(harness, "w", encoding="utf-8") as stream:
        stream.write('<!DOCTYPE html>\n<html><head><meta charset="utf-8"><link rel="icon" href="data:,"></head>'
                     '<body>\n<pre id="result"></pre>\n%s\n<script>%s</script>\n</body></html>\n'
                     % (frames, HARNESS_SCRIPT))
    profile = tempfile.mkdtemp()
    os.makedirs(os.path.dirname(os.path.abspath(screenshot)), exist_ok=True)
    browser = subprocess.run(
        [chromium, "--headless", "--no-sandbox", "--disable-gpu", "--user-data-dir=" + profile, "--no-first-run",
         "--disable-extensions", "--disable-dev-shm-usage", "--disable-background-networking",
         "--disable-component-update", "--allow-file-access-from-files", "--enable-logging=stderr", "--v=0",
         "--window-size=1280,1000", "--screenshot=" + os.path.abspath(screenshot), "--dump-dom",
         "file://" + os.path.abspath(harness)],
        capture_output=True, text=True, timeout=120, env=dict(os.environ, DBUS_SESSION_BUS_ADDRESS="disabled:"))
    subprocess.run(["rm", "-rf", profile])
    check(browser.returncode == 0, "the browser failed: " + browser.stderr[-2000:])
    console = [line for line in browser.stderr.splitlines() if ":CONSOLE" in line]
    check(not console, "console messages: %s" % console)
    result = re.search(r'<pre id="result">(.*?)</pre>', browser.stdout, re.S)
    check(result is not None, "the pages were not checked: " + browser.stdout[:2000])
    lines = result.group(1).splitlines() if result else []
    by_page = {line.split()[0]: line for line in lines}
    for name, count in expected:
        line = by_page.get(pages.get(name, "?"), "")
        check("rows=%d images=%d broken=0" % (count, count) in line, "%s: %s" % (name, line or "not rendered"))
        with open(os.path.join(folder, pages.get(name, "index.html")), encoding="utf-8") as stream:
            physical = "physical materials." in stream.read()
        check(("density=sorts" if physical else "density=none") in line, "%s: sorting by density: %s" % (name, line))
    check(os.path.getsize(screenshot) > 0 and png_pixels(screenshot)[0] > 0, "no screenshot")


def main():
    kx, content, mode = sys.argv[1:4]
    with tempfile.TemporaryDirectory() as work:
        env = dict(os.environ, KX_USER_DIR=os.path.join(work, "user"), KX_CONTENT_DIR=content)
        os.makedirs(env["KX_USER_DIR"])
        expected = libraries(kx, env)
        check(len(expected) >= 6, "the standard libraries are not all open: %s" % expected)
        folder = os.path.join(work, "catalogue")
        written = run(kx, "materials", "catalogue", "--out", folder, env=env)
        check(written.returncode == 0 and written.stderr == "", "catalogue: %s" % written.stderr)
        progress = [line for line in written.stdout.splitlines() if line.startswith("catalogue: ")]
        check(len(progress) == len(expected), "a progress line per library: " + written.stdout)
        if not failures:
            if mode == "files":
                check_files(folder, expected)
            else:
                check_browser(folder, expected, sys.argv[4], sys.argv[5])
    for failure in failures:
        print("FAIL:", failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
