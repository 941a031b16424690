"""Prints the benchmark cases of Google Benchmark JSON files beside their baselines.

A case is named "<case>/<variant>"; the variant "baseline" is the reference measured in the same
run, and every other variant is reported as its time divided by the baseline's. Cases run on
several threads ("/threads:N", with "/real_time") are compared thread count by thread count, by
throughput, since their times are per thread."""
import json
import sys
from collections import defaultdict


def main(paths):
    cases = defaultdict(dict)
    for path in paths:
        with open(path) as f:
            for run in json.load(f)["benchmarks"]:
                case, _, variant = run["name"].partition("/")
                variant, _, threads = variant.partition("/")
                if threads:
                    case = f"{case} ({threads.split('threads:')[-1]} threads)"
                cases[case][variant] = run
    print(f"{'case':34} {'variant':12} {'values/s':>14} {'time':>12} {'x baseline':>11}")
    for case, variants in cases.items():
        baseline = variants.get("baseline")
        for variant, run in sorted(variants.items(), key=lambda item: item[0] == "baseline"):
            rate = run.get("items_per_second", 0.0)
            time = f"{run['real_time']:.2f} {run['time_unit']}"
            ratio = ""
            if baseline and variant != "baseline":
                if rate and baseline.get("items_per_second"):
                    ratio = f"{baseline['items_per_second'] / rate:.3f}"
                else:
                    ratio = f"{run['real_time'] / baseline['real_time']:.2f}"
            print(f"{case:34} {variant:12} {rate:14,.0f} {time:>12} {ratio:>11}")


if __name__ == "__main__":
    main(sys.argv[1:])
