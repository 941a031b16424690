#!/usr/bin/env bash
# Runs the console once as a user would and checks what a script relies on: the exact exit status,
# the text on standard output and standard error, the number of lines on standard error (each one
# starting "kx: ") and that files the command must not touch keep their bytes.
#
#   kx_case.sh --kx <kx> --content <content dir> [setup and checks …] -- <arguments of kx …>
#
# Every run has a fresh working folder, which is also the user directory (never the real home).
# "@WORK@" in arguments and written text stands for that folder.
#
# Setup, in the order given:
#   --doc <name>                 kx doc create @WORK@/<name> --count 3
#   --library <tool> <name> <id> <tool> @WORK@/<name> <id> (writes a material library)
#   --write <name> <text>        writes <text> to @WORK@/<name>
#   --env <NAME=value>           exported for the run
#   --run <n> <argument …>       runs kx with the n arguments first (an earlier session); it must succeed
#   --stdin <text>               the run reads <text> on standard input (otherwise nothing)
# Checks:
#   --status <n>  --stdout <regex>  --stderr <regex>  --stderr-lines <n>
#   --unchanged <name>           the file has the same bytes after the run as before
#   --absent <name>              the file does not exist after the run
set -u

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export KX_USER_DIR="$work/user"
mkdir -p "$KX_USER_DIR"

kx="" status="" stdin_text="" stdout_re="" stderr_re="" stderr_lines=""
unchanged=() absent=()
problems=0
complain() { echo "FAIL: $*"; problems=$((problems + 1)); }
inWork() { printf '%s' "${1//@WORK@/$work}"; }

while [[ $# -gt 0 ]]; do
    case "$1" in
    --kx) kx=$2; shift 2 ;;
    --content) export KX_CONTENT_DIR=$2; shift 2 ;;
    --env) export "${2?}"; shift 2 ;;
    --doc)
        "$kx" doc create "$work/$2" --count 3 >/dev/null || { echo "setup: cannot create $2"; exit 1; }
        shift 2 ;;
    --library)
        "$2" "$work/$3" "$4" || { echo "setup: cannot write the library $3"; exit 1; }
        shift 4 ;;
    --write)
        mkdir -p "$(dirname "$work/$2")"
        inWork "$3" >"$work/$2"
        shift 3 ;;
    --run)
        count=$2; shift 2
        earlier=()
        for argument in "${@:1:$count}"; do
            earlier+=("$(inWork "$argument")")
        done
        "$kx" "${earlier[@]}" >/dev/null 2>&1 || { echo "setup: kx ${earlier[*]} failed"; exit 1; }
        shift "$count" ;;
    --stdin) stdin_text=$(inWork "$2"); shift 2 ;;
    --status) status=$2; shift 2 ;;
    --stdout) stdout_re=$2; shift 2 ;;
    --stderr) stderr_re=$2; shift 2 ;;
    --stderr-lines) stderr_lines=$2; shift 2 ;;
    --unchanged)
        unchanged+=("$2")
        cp -p "$work/$2" "$work/.before-${2//\//_}" || { echo "setup: no file $2"; exit 1; }
        shift 2 ;;
    --absent) absent+=("$2"); shift 2 ;;
    --) shift; break ;;
    *) echo "kx_case.sh: unknown option $1"; exit 1 ;;
    esac
done

arguments=()
for argument in "$@"; do
    arguments+=("$(inWork "$argument")")
done

printf '%s' "$stdin_text" >"$work/.stdin"
"$kx" "${arguments[@]}" <"$work/.stdin" >"$work/.stdout" 2>"$work/.stderr"
got=$?
out=$(cat "$work/.stdout")
err=$(cat "$work/.stderr")
echo "--- kx ${arguments[*]}"
echo "--- status $got; standard output:"
cat "$work/.stdout"
echo "--- standard error:"
cat "$work/.stderr"
echo "---"

[[ -z "$status" || "$got" == "$status" ]] || complain "exit status $got, expected $status"
[[ -z "$stdout_re" || "$out" =~ $stdout_re ]] || complain "standard output does not match: $stdout_re"
[[ -z "$stderr_re" || "$err" =~ $stderr_re ]] || complain "standard error does not match: $stderr_re"
if [[ -n "$stderr_lines" ]]; then
    lines=$(wc -l <"$work/.stderr")
    [[ "$lines" -eq "$stderr_lines" ]] || complain "$lines line(s) on standard error, expected $stderr_lines"
    if grep -qv '^kx: ' "$work/.stderr"; then
        complain "a line on standard error does not start with \"kx: \""
    fi
fi
for name in "${unchanged[@]+"${unchanged[@]}"}"; do
    cmp -s "$work/.before-${name//\//_}" "$work/$name" || complain "$name changed"
done
for name in "${absent[@]+"${absent[@]}"}"; do
    [[ ! -e "$work/$name" ]] || complain "$name exists"
done
[[ $problems -eq 0 ]] && echo "PASS"
exit $((problems != 0))
