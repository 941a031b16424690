#!/usr/bin/env python3
"""Packs a hand-written document folder (manifest.json, segments/, blobs/) into a .kxd container.

Golden documents of older member sets cannot be written by the current build; they are written by
hand as entries and packed once with this script. The .kxd files are kept forever in tests/data.
Usage: pack-golden-document.py <entries folder> <target.kxd>
"""
import os
import sys
import zipfile

source, target = sys.argv[1], sys.argv[2]
entries = []
for root, _, files in os.walk(source):
    for name in sorted(files):
        path = os.path.join(root, name)
        entries.append((os.path.relpath(path, source).replace(os.sep, "/"), path))
# The manifest last, as the writer puts it; fixed time stamps, deflated.
entries.sort(key=lambda e: (e[0] == "manifest.json", e[0]))
with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=1) as archive:
    for name, path in entries:
        info = zipfile.ZipInfo(name, date_time=(2000, 1, 1, 0, 0, 0))
        info.compress_type = zipfile.ZIP_DEFLATED
        with open(path, "rb") as data:
            archive.writestr(info, data.read(), compress_type=zipfile.ZIP_DEFLATED, compresslevel=1)
