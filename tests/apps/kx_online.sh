#!/usr/bin/env bash
# The online library end to end, as a team would run it: publish a library file, serve the folder
# with `kx library serve` on a free loopback port, list and download from it with `kx download`,
# then the same listing offline. Every run has a fresh user directory.
#
#   kx_online.sh <kx> <content dir> <kx_make_library>
set -u
kx=$1
export KX_CONTENT_DIR=$2
work=$(mktemp -d)
library="$work/Mine.tvrnlib"
server=""
cleanup() {
    [[ -n "$server" ]] && kill "$server" 2>/dev/null && wait "$server" 2>/dev/null
    rm -rf "$work"
}
trap cleanup EXIT
export KX_USER_DIR="$work/user"
mkdir -p "$KX_USER_DIR"
fail() { echo "FAIL: $*"; exit 1; }

"$3" "$library" 33333333-0000-4000-8000-00000000000A >/dev/null || fail "cannot write the library"
"$kx" library publish "$library" --out "$work/site" >"$work/publish.out" || fail "publish: $(cat "$work/publish.out")"
grep -q "^published [0-9]* materials" "$work/publish.out" || fail "publish said: $(cat "$work/publish.out")"
[[ -f "$work/site/index.json" ]] || fail "no index.json"

"$kx" library serve "$work/site" --port 0 >"$work/serve.out" 2>&1 &
server=$!
for _ in $(seq 50); do
    grep -q "^serving" "$work/serve.out" && break
    sleep 0.1
done
url=$(grep -o 'http://127\.0\.0\.1:[0-9]*/' "$work/serve.out" | head -1)
[[ -n "$url" ]] || fail "the server did not start: $(cat "$work/serve.out")"
export KX_ONLINE_LIBRARY=$url

"$kx" download content >"$work/content.out" 2>"$work/content.err" || fail "content: $(cat "$work/content.err")"
uuid=$(awk 'NR == 2 { print $1 }' "$work/content.out")
[[ -n "$uuid" ]] || fail "no material listed: $(cat "$work/content.out")"
"$kx" download material "$uuid" >"$work/material.out" 2>"$work/material.err" || fail "material: $(cat "$work/material.err")"
grep -q "^downloaded 100% " "$work/material.out" || fail "no progress: $(cat "$work/material.out")"
grep -q "^installed $uuid into " "$work/material.out" || fail "not installed: $(cat "$work/material.out")"
"$kx" materials libraries | grep -q "^  Downloaded " || fail "the Downloaded library is not listed"

# The same through the material text commands: the command answers at once, the session reports
# how the download ended before it exits.
"$kx" Materials.DownloadMaterial "$uuid" >"$work/text.out" 2>"$work/text.err" || fail "text command: $(cat "$work/text.err")"
[[ "$(cat "$work/text.out")" == "Material Download: start downloading $uuid
Material Download: $uuid installed" ]] || fail "text command said: $(cat "$work/text.out")"
printf 'Materials.QueryLibraryCategory\nMaterials.DownloadMaterial no-such-material\n' | "$kx" >"$work/script.out" 2>"$work/script.err"
[[ $? == 1 ]] || fail "a failed download must fail the session"
grep -q "^Query Library Category: start ...$" "$work/script.out" || fail "category query: $(cat "$work/script.out")"
grep -q "^Query Library Category: [1-9][0-9]* categories$" "$work/script.out" || fail "no categories: $(cat "$work/script.out")"
grep -q "^kx: Material Download: no-such-material failed: " "$work/script.err" || fail "failure: $(cat "$work/script.err")"
"$kx" Materials.DownloadMaterial a b >"$work/usage.out" 2>&1
[[ $? == 1 && "$(cat "$work/usage.out")" == "kx: Material Download: no material ID specified!" ]] || fail "usage: $(cat "$work/usage.out")"

# The server goes; offline the listing still answers and knows what is installed.
kill "$server"; wait "$server" 2>/dev/null; server=""
"$kx" download content --offline >"$work/offline.out" 2>&1 || fail "offline: $(cat "$work/offline.out")"
grep -q "^  $uuid .* yes$" "$work/offline.out" || fail "offline listing: $(cat "$work/offline.out")"
echo PASS
