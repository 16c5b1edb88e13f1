#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""coverage.py BUILD: prints how many lines of each room the fuzzers of a build folder have run.

BUILD/profiles holds what they wrote (LLVM_PROFILE_FILE). Rooms are the folders of the sources.
"""
import collections
import json
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent


def line_counts(build):
    """Yields path, number of lines and number of lines that ran, for each source of a room."""
    profile = build / "profiles" / "all.profdata"
    raw = sorted((build / "profiles").glob("*.profraw"))
    subprocess.run(["llvm-profdata-14", "merge", "-sparse", *raw, "-o", profile], check=True)
    objects = sorted(build.glob("bin/fuzz_*")) + sorted(build.glob("lib/*.so"))
    command = ["llvm-cov-14", "export", "-summary-only", f"-instr-profile={profile}", objects[0]]
    for other in objects[1:]:
        command += ["-object", other]
    report = json.loads(subprocess.run(command, check=True, capture_output=True).stdout)
    for file in report["data"][0]["files"]:
        path = pathlib.Path(file["filename"]).resolve()
        if path.is_relative_to(ROOT):
            lines = file["summary"]["lines"]
            yield path.relative_to(ROOT), lines["count"], lines["covered"]


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    rooms = collections.defaultdict(lambda: [0, 0])
    for path, count, covered in line_counts(build):
        if path.parts[0] not in ("fuzz", "tests", "build"):
            rooms[str(path.parent)][0] += count
            rooms[str(path.parent)][1] += covered
    print(f"{'room':24} {'lines':>6} {'run':>6}")
    for room, (count, covered) in sorted(rooms.items()):
        print(f"{room:24} {count:6} {covered:6} {100 * covered / count:4.0f} %")


main()
