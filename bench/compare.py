"""Runs every benchmark program and the peers' script several times in turn, keeps the best time of
each row, and sets them side by side."""
import datetime
import json
import os
import pathlib
import platform
import subprocess
import sys

ROUNDS = 3
UNITS = ((1, "s"), (1e-3, "ms"), (1e-6, "us"), (1e-9, "ns"))


ONE_CORE = "arrlib, one core"
# Ends of rows' names.
OURS, PEERS = "/arrlib$", "/[^a/][^/]*$"


def run_program(program, wanted, only, environment=None):
    command = [program, "--benchmark_format=json", "--benchmark_min_time=0.2"]
    plain = "".join(f"[{letter}]" if letter in "().*+?{}|$" else letter for letter in wanted)
    command.append(f"--benchmark_filter={plain}.*{only}")
    result = subprocess.run(command, capture_output=True, text=True, check=True, env=environment)
    if not result.stdout.strip():
        return
    scale = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1}
    for row in json.loads(result.stdout)["benchmarks"]:
        if wanted in row["name"]:
            yield row["name"], row["real_time"] * scale[row["time_unit"]]


def run_peers(script, wanted):
    arguments = [sys.executable, script] + ([wanted] if wanted else [])
    for line in subprocess.run(arguments, capture_output=True, text=True, check=True).stdout.splitlines():
        name, seconds = line.split("\t")
        yield name, float(seconds)


def shown(seconds):
    scale, unit = next((s, u) for s, u in UNITS if seconds >= s or s == 1e-9)
    return f"{seconds / scale:.3g} {unit}"


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def main():
    folder = pathlib.Path(sys.argv[1])
    wanted = sys.argv[2] if len(sys.argv) > 2 else ""
    here = pathlib.Path(__file__).parent
    best = {}
    for _ in range(ROUNDS):
        for program in sorted(folder.glob("*_bench")):
            # The peers in processes of their own, as their users have them: what our library tells a
            # library that it shares with them holds for the whole process.
            for rows in (OURS, PEERS):
                for name, seconds in run_program(program, wanted, rows):
                    best[name] = min(seconds, best.get(name, seconds))
            for name, seconds in run_program(program, wanted, OURS, {**os.environ, "ARRLIB_THREADS": "1"}):
                name = name.rsplit("/", 1)[0] + "/" + ONE_CORE
                best[name] = min(seconds, best.get(name, seconds))
        for name, seconds in run_peers(here / "peers.py", wanted):
            best[name] = min(seconds, best.get(name, seconds))
    rows = {}
    for name, seconds in best.items():
        row, implementation = name.rsplit("/", 1)
        rows.setdefault(row, {})[implementation] = seconds
    lines = ["| row | arrlib | on one core | peers | arrlib / best peer | on one core |", "| --- | --- | --- | --- | --- | --- |"]
    for row, times in rows.items():
        ours, alone = times.pop("arrlib", None), times.pop(ONE_CORE, None)
        if ours is None or alone is None:
            continue
        peers = ", ".join(f"{name} {shown(seconds)}" for name, seconds in sorted(times.items(), key=lambda item: item[1]))
        ratios = [f"{time / min(times.values()):.2f}" if times else "" for time in (ours, alone)]
        lines.append(f"| {row} | {shown(ours)} | {shown(alone)} | {peers} | {' | '.join(ratios)} |")
    table = "\n".join(lines) + "\n"
    print(table)
    if not wanted:
        text = ("# Performance\n\nMade by `bench/compare`: the best of several runs of every row, ours and the peers' in turn.\n"
                f"Machine: {processor()}, {datetime.date.today()}.\n\n{table}")
        (here.parent / "docs" / "performance.md").write_text(text)


main()
