#!/usr/bin/env python3
"""Runs clang-tidy over the product's sources: the libraries, the room folders of vantra and the command.

    scripts/check-tidy.py [--jobs N] [BUILD] [FILE...]

BUILD (default build/debug) is a configured build folder; FILE limits the run to some sources. A source that was clean
is not looked at again until it, one of the tree's headers that it includes, its compiler options, the configuration or
clang-tidy itself changes: build/tidy holds one empty file for each clean state, named by its hash.
"""

import argparse
import concurrent.futures
import hashlib
import json
import os
import pathlib
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROOMS = ("kel/src", "sigil/src", "foundation", "http", "request", "proxy", "async", "ftp", "s3", "mail", "tools")
STAMPS = ROOT / "build" / "tidy"


def read_sources(build, only):
    """The product's sources as pairs of path and compiler arguments, each once."""
    with open(build / "compile_commands.json", encoding="utf-8") as file:
        entries = json.load(file)
    wanted = {pathlib.Path(name).resolve() for name in only}
    sources = {}
    for entry in entries:
        path = pathlib.Path(entry["directory"], entry["file"]).resolve()
        if not path.is_relative_to(ROOT) or not any(path.is_relative_to(ROOT / room) for room in ROOMS):
            continue
        if not wanted or path in wanted:
            sources[path] = shlex.split(entry["command"])
    missing = wanted - sources.keys()
    if missing:
        sys.exit("not among the product's sources: " + ", ".join(map(str, sorted(missing))))
    return sorted(sources.items())


def own_includes(command):
    """The tree's files that a compilation reads. System headers change with their packages only."""
    arguments = [argument for argument in command if not os.path.basename(argument).startswith("ccache")]
    # Without the options that name outputs: the dependencies are to be written to standard output.
    kept, skip = [], False
    for argument in arguments:
        if skip:
            skip = False
        elif argument in ("-o", "-MF", "-MT", "-MQ"):
            skip = True
        elif argument not in ("-c", "-MD", "-MMD"):
            kept.append(argument)
    rule = subprocess.run(kept + ["-MM"], cwd=ROOT, check=True, capture_output=True, text=True).stdout
    return sorted(set(shlex.split(rule.replace("\\\n", " "))[1:]))


def state_hash(command, version):
    """A hash over all that decides what clang-tidy says about a source."""
    digest = hashlib.sha256()
    texts = [version, shlex.join(command), (ROOT / ".clang-tidy").read_text(encoding="utf-8")]
    texts += [pathlib.Path(ROOT, name).read_text(encoding="utf-8") for name in own_includes(command)]
    for text in texts:
        digest.update(text.encode() + b"\0")
    return digest.hexdigest()


def check(source, build, version):
    """What clang-tidy says about one source, empty if it is clean."""
    path, command = source
    stamp = STAMPS / state_hash(command, version)
    if stamp.exists():
        return ""
    result = subprocess.run(["clang-tidy", "--quiet", "-p", str(build), str(path)],
                            cwd=ROOT, capture_output=True, text=True, check=False)
    if result.returncode == 0:
        stamp.touch()
        return ""
    return result.stdout + result.stderr


def main():
    parser = argparse.ArgumentParser(description="Runs clang-tidy over the product's sources.")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("build", nargs="?", default="build/debug")
    parser.add_argument("files", nargs="*")
    arguments = parser.parse_args()

    build = (ROOT / arguments.build).resolve()
    if not (build / "compile_commands.json").exists():
        sys.exit(f"{arguments.build} is not configured: cmake --preset debug")
    sources = read_sources(build, arguments.files)
    if not sources:
        sys.exit("no sources to check")
    STAMPS.mkdir(parents=True, exist_ok=True)
    version = subprocess.run(["clang-tidy", "--version"], capture_output=True, text=True, check=True).stdout

    failed = []
    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        reports = pool.map(lambda source: check(source, build, version), sources)
        for (path, _), report in zip(sources, reports):
            if report:
                failed.append(path)
                print(report, flush=True)
    if failed:
        names = ", ".join(str(path.relative_to(ROOT)) for path in failed)
        sys.exit(f"clang-tidy objects to {len(failed)} of {len(sources)} sources: {names}")
    print(f"clang-tidy is content with {len(sources)} sources.")


if __name__ == "__main__":
    main()
