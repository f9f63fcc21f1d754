#!/usr/bin/env python3
"""Runs clang-tidy over the product's sources: the libraries, the room folders of vantra and the command.

    scripts/check-tidy.py [--jobs N] [BUILD] [FILE...]

BUILD (default build/debug) is a configured build folder; FILE limits the run to some sources. Sources of one folder are
checked several at a time, as parts of one translation unit: most of clang-tidy's time goes into the headers, which are
then read once. Sources that cannot stand in one unit are checked alone. A unit that was clean is not looked at again
until one of its sources, a header of the tree's that they include, the compiler options, the configuration or
clang-tidy itself changes: build/tidy holds one empty file for each clean state, named by its hash.
"""

import argparse
import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROOMS = ("kel/src", "sigil/src", "foundation", "http", "request", "proxy", "async", "ftp", "s3", "mail", "tools")
STAMPS = ROOT / "build" / "tidy"


# In a unit the sources are included, so what is said of them passes the filter for headers only.
HEADERS = ("include", "kel/include", "kel/include-posix", "sigil/include")
HEADER_FILTER = f"^{re.escape(str(ROOT))}/({'|'.join(ROOMS + HEADERS)})/.*\\.(h|cpp)$"
SOURCES_IN_A_UNIT = 8

# Options of our builds that clang does not know.
GCC_ONLY = ("-femit-class-debug-always", "-fno-keep-inline-dllexport")


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
            sources[path] = options(shlex.split(entry["command"]), entry["file"])
    missing = wanted - sources.keys()
    if missing:
        sys.exit("not among the product's sources: " + ", ".join(map(str, sorted(missing))))
    return sorted(sources.items())


def options(command, source):
    """A compilation's options alone, as clang knows them: no launcher, compiler, source, output or dependency file."""
    compiler = next(i for i, word in enumerate(command) if re.fullmatch(r"(.*-)?(clang|g|c)\+\+.*", os.path.basename(word)))
    kept, skip = [], False
    for word in command[compiler + 1:]:
        if skip:
            skip = False
        elif word in ("-o", "-MF", "-MT", "-MQ"):
            skip = True
        elif word not in ("-c", "-MD", "-MMD", *GCC_ONLY, source):
            kept.append(word)
    return kept + cross_options(command[compiler])


@functools.cache
def cross_options(compiler):
    """What clang has to be told to compile for the system for which a cross compiler does."""
    target = re.fullmatch(r"(.*-mingw32)-g\+\+.*", os.path.basename(compiler))
    if not target:
        return []
    library = subprocess.run([compiler, "-print-libgcc-file-name"], check=True, capture_output=True, text=True).stdout
    headers = pathlib.Path(library.strip()).parent / "include" / "c++"
    return [f"--target={target[1]}", f"-isystem{headers}", f"-isystem{headers / target[1]}"]


def units(sources):
    """The sources in groups of one folder and one set of options each, as pairs of paths and options."""
    folders = {}
    for path, words in sources:
        folders.setdefault((path.parent, tuple(words)), []).append(path)
    for (_, words), paths in folders.items():
        count = -(-len(paths) // SOURCES_IN_A_UNIT)
        for first in range(count):
            yield paths[first::count], list(words)


def own_includes(paths, words):
    """The tree's files that some sources read. System headers change with their packages only."""
    command = ["clang++", *words, "-MM", *map(str, paths)]
    rules = subprocess.run(command, cwd=ROOT, check=True, capture_output=True, text=True).stdout
    names = shlex.split(rules.replace("\\\n", " "))
    return sorted({name for name in names if not name.endswith(":")})


def state_hash(paths, words, version):
    """A hash over all that decides what clang-tidy says about some sources."""
    digest = hashlib.sha256()
    texts = [version, HEADER_FILTER, shlex.join(words), (ROOT / ".clang-tidy").read_text(encoding="utf-8")]
    texts += [pathlib.Path(ROOT, name).read_text(encoding="utf-8") for name in own_includes(paths, words)]
    for text in texts:
        digest.update(text.encode() + b"\0")
    return digest.hexdigest()


def run_tidy(path, words):
    """clang-tidy's exit status and what it says."""
    result = subprocess.run(["clang-tidy", "--quiet", f"--header-filter={HEADER_FILTER}", str(path), "--", *words],
                            cwd=ROOT, capture_output=True, text=True, check=False)
    return result.returncode, result.stdout + result.stderr


def check(paths, words, version):
    """What clang-tidy says about some sources, empty if they are clean."""
    state = state_hash(paths, words, version)
    stamp = STAMPS / state
    if stamp.exists():
        return ""
    if len(paths) == 1:
        status, report = run_tidy(paths[0], words)
    else:
        unit = STAMPS / f"{state}.cpp"
        unit.write_text("".join(f'#include "{path}" // NOLINT(bugprone-suspicious-include)\n' for path in paths))
        status, report = run_tidy(unit, words)
        unit.unlink()
        if "[clang-diagnostic-" in report:
            # Names of one source may be in another's way.
            reports = [check([path], words, version) for path in paths]
            status, report = int(any(reports)), "".join(reports)
    if status == 0:
        stamp.touch()
        return ""
    return report


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
    groups = sorted(units(sources), key=lambda unit: -len(unit[0]))
    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        reports = pool.map(lambda unit: check(*unit, version), groups)
        for (paths, _), report in zip(groups, reports):
            if report:
                failed += [path for path in paths if str(path) in report] or paths
                print(report, flush=True)
    if failed:
        names = ", ".join(str(path.relative_to(ROOT)) for path in failed)
        sys.exit(f"clang-tidy objects to {len(failed)} of {len(sources)} sources: {names}")
    print(f"clang-tidy is content with {len(sources)} sources.")


if __name__ == "__main__":
    main()
