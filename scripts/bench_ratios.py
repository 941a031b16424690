"""Prints the benchmark cases of Google Benchmark JSON files beside their baselines, then the table
of targets (bench/targets.txt) with what was measured and whether each is met.

A case is named "<case>/<variant>"; the variant "baseline" is the reference measured in the same
run, and every other variant is reported as its time divided by the baseline's. Cases run on
several threads ("/threads:N", with "/real_time") are compared thread count by thread count, by
throughput, since their times are per thread. With repetitions, the median of each is used."""
import json
import os
import re
import sys
from collections import defaultdict

TARGETS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "bench", "targets.txt")


def read_runs(paths):
    cases = defaultdict(dict)
    for path in paths:
        try:
            with open(path) as f:
                runs = json.load(f)["benchmarks"]
        except (OSError, ValueError, KeyError) as error:
            # A program that crashed leaves half a file: its cases show as not run.
            print(f"{path}: unreadable ({error})", file=sys.stderr)
            continue
        for run in runs:
            if run.get("run_type") == "aggregate":
                if run.get("aggregate_name") != "median":
                    continue
                name = run["run_name"]
            else:
                name = run["name"]
            case, _, variant = name.partition("/")
            variant, _, rest = variant.partition("/")
            threads = re.search(r"threads:(\d+)", rest)
            if threads:
                case = f"{case} ({threads.group(1)} threads)"
            cases[case][variant] = run
    return cases


def ratio(run, baseline):
    """The variant's time over the baseline's: by throughput when both report one."""
    rate = run.get("items_per_second", 0.0)
    if rate and baseline.get("items_per_second"):
        return baseline["items_per_second"] / rate
    return run["cpu_time"] / baseline["cpu_time"]


def print_cases(cases):
    print(f"{'case':34} {'variant':12} {'values/s':>14} {'cpu time':>12} {'x baseline':>11}")
    for case, variants in cases.items():
        baseline = variants.get("baseline")
        for variant, run in sorted(variants.items(), key=lambda item: item[0] == "baseline"):
            rate = run.get("items_per_second", 0.0)
            time = f"{run['cpu_time']:.2f} {run['time_unit']}"
            shown = f"{ratio(run, baseline):.3f}" if baseline and variant != "baseline" else ""
            print(f"{case:34} {variant:12} {rate:14,.0f} {time:>12} {shown:>11}")


def check(condition, case, variant, cases):
    """(what was measured, whether the condition holds); None when the run is missing."""
    run = cases.get(case, {}).get(variant)
    if run is None or run.get("error_occurred"):
        return None
    rate = run.get("items_per_second", 0.0)
    if m := re.fullmatch(r"rate\s*>=\s*(\S+)", condition):
        return f"{rate / 1e6:.1f} M/s", rate >= float(m.group(1))
    if m := re.fullmatch(r"ratio\s*<=\s*(\S+)\s+against\s+(\S+)", condition):
        other = cases[case].get(m.group(2))
        if other is None or other.get("error_occurred"):
            return None
        value = ratio(run, other)
        return f"{value:.2f}x of {m.group(2)}", value <= float(m.group(1))
    if m := re.fullmatch(r"ratio\s*<=\s*(\S+)", condition):
        baseline = cases[case].get("baseline")
        if baseline is None:
            return None
        value = ratio(run, baseline)
        return f"{value:.2f}x", value <= float(m.group(1))
    if m := re.fullmatch(r"scale\s*>=\s*(\S+)\s+of\s+(.+)", condition):
        other = cases.get(m.group(2).strip(), {}).get(variant)
        if other is None or not other.get("items_per_second"):
            return None
        value = rate / other["items_per_second"]
        return f"{value:.2f}x of {other['items_per_second'] / 1e6:.1f} M/s", value >= float(m.group(1))
    raise ValueError(f"unknown condition: {condition}")


def print_targets(cases, path):
    print()
    print(f"{'target':38} {'condition':34} {'now':>24} {'met':>4}")
    for line in open(path):
        line = line.strip()
        if not line or line.startswith("#"):
            continue
        label, case, variant, conditions = (field.strip() for field in line.split("|"))
        for condition in (c.strip() for c in conditions.split(";")):
            result = check(condition, case, variant, cases)
            now, met = result if result else ("not run", None)
            mark = {True: "yes", False: "no", None: "-"}[met]
            print(f"{label:38} {condition:34} {now:>24} {mark:>4}")
            label = ""


def main(paths):
    cases = read_runs(paths)
    print_cases(cases)
    if os.path.exists(TARGETS):
        print_targets(cases, TARGETS)


if __name__ == "__main__":
    main(sys.argv[1:])
