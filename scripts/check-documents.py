#!/usr/bin/env python3
"""Checks README.md and docs/*.md against the tree.

    scripts/check-documents.py             checks
    scripts/check-documents.py --write     first copies the files that are shown whole into the documents
    scripts/check-documents.py --blocks LANGUAGE DOCUMENT
                                           prints the document's blocks in a language, each ended by a NUL character

What a block shows is told by the line before it:

    <!-- FILE -->              the whole file, without the lines of comment at its beginning
    <!-- from FILE -->         lines that follow one another in the file, however far they are indented
    <!-- output: NAME -->      what a program prints; a test compares it, by documentedOutput(DOCUMENT, "NAME")

Every block of C++ is of one of the first two kinds, so that the build compiles it. Blocks of text and XML are outputs.
Blocks of shell and CMake stand for themselves in docs/getting-started.md, where scripts/check-docs.sh runs them.
Everything else has to say what it is. Links to other files of the tree, and to headings in them, lead somewhere, and
docs/README.md names every document.
"""

import pathlib
import re
import sys
import textwrap

ROOT = pathlib.Path(__file__).resolve().parent.parent
EXECUTED = "docs/getting-started.md"
MARKER = re.compile(r"^<!-- (from |output: )?(\S+) -->$")
FENCE = re.compile(r"^```(\w*)$")
LINK = re.compile(r"(?<!!)\[[^\]]*\]\(([^)\s]+)\)")
USED_OUTPUT = re.compile(r'documentedOutput\(\s*"([^"]+)",\s*"([^"]+)"\s*\)')


class Block:
    """A fenced block: where it is, its language, its marker and its lines."""

    def __init__(self, document, number, language, marker):
        self.place = f"{document}:{number}"
        self.document = document
        self.language = language
        self.kind, self.name = marker if marker else ("", "")
        self.start = number  # the index of the first line behind the fence
        self.lines = []


def documents():
    return ["README.md"] + sorted(f"docs/{path.name}" for path in (ROOT / "docs").glob("*.md"))


def read_lines(name):
    return (ROOT / name).read_text(encoding="utf-8").splitlines()


def read_blocks(document, lines):
    blocks, open_block, before = [], None, ""
    for index, line in enumerate(lines):
        fence = FENCE.match(line)
        if open_block and line == "```":
            blocks.append(open_block)
            open_block = None
        elif open_block:
            open_block.lines.append(line)
        elif fence:
            marker = MARKER.match(before)
            kind = marker and (marker.group(1) or "whole").strip(" :")
            open_block = Block(document, index + 1, fence.group(1), kind and (kind, marker.group(2)))
        elif line.startswith("```"):
            sys.exit(f"{document}:{index + 1}: a fence with more than a language")
        before = line
    if open_block:
        sys.exit(f"{open_block.place}: the block does not end")
    return blocks


def shown_lines(name):
    """A file's lines without the comment that begins it."""
    lines = read_lines(name)
    while lines and lines[0].startswith("//"):
        lines.pop(0)
    return lines


def indented_alike(lines):
    return textwrap.dedent("\n".join(lines)).split("\n")


def contains(lines, wanted):
    """Whether lines that follow one another are the wanted ones but for a common indentation."""
    wanted = indented_alike(wanted)
    count = len(wanted)
    starts = (i for i in range(len(lines) - count + 1) if lines[i].strip() == wanted[0].strip())
    return any(indented_alike(lines[i : i + count]) == wanted for i in starts)


def check_block(block):
    """What is wrong with a block, or None."""
    if not any(line.strip() for line in block.lines):
        return "the block is empty"
    if block.kind in ("whole", "from"):
        if not (ROOT / block.name).is_file():
            return f"there is no file {block.name}"
        if block.language == "cpp" and not block.name.startswith("examples/"):
            return "C++ is shown from examples/, which the tests run"
        if block.kind == "whole" and block.lines != shown_lines(block.name):
            return f"the block is not {block.name}; mend it with: scripts/check-documents.py --write"
        if block.kind == "from" and not contains(read_lines(block.name), block.lines):
            return f"these lines are not in {block.name}"
        return None
    if block.kind == "output":
        return None if block.language in ("text", "xml") else "an output is a block of text or XML"
    if block.language in ("sh", "cmake") and block.document == EXECUTED:
        return None
    # A drawing. One of a program would need a language.
    return f"a block in '{block.language}' must say what it shows" if block.language else None


def tested_outputs():
    """The pairs of document and name that tests compare."""
    sources = (ROOT / "tests" / "integration" / "examples").rglob("*.cpp")
    return {pair for path in sources for pair in USED_OUTPUT.findall(path.read_text(encoding="utf-8"))}


def check_outputs(blocks):
    shown = {(block.document, block.name): block.place for block in blocks if block.kind == "output"}
    tested = tested_outputs()
    for pair in sorted(shown.keys() - tested):
        yield f"{shown[pair]}: no test compares the output '{pair[1]}'"
    for document, name in sorted(tested - shown.keys()):
        yield f"{document}: a test compares the output '{name}', which is not there"


def anchors(name):
    """The anchors of a document's headings."""
    found, in_block = set(), False
    for line in read_lines(name):
        if line.startswith("```"):
            in_block = not in_block
        elif line.startswith("#") and not in_block:
            title = line.lstrip("#").strip().lower()
            found.add(re.sub(r"[^\w\- ]", "", title).replace(" ", "-"))
    return found


def check_links(document, lines, blocks):
    inside = {number for block in blocks for number in range(block.start, block.start + len(block.lines))}
    for index, line in enumerate(lines):
        if index in inside:
            continue
        for link in LINK.findall(line):
            if re.match(r"[a-z]+:", link):
                continue
            path, _, anchor = link.partition("#")
            target = (ROOT / document).parent / path if path else ROOT / document
            if not target.exists():
                yield f"{document}:{index + 1}: {link} leads nowhere"
            elif anchor and (target.suffix != ".md" or anchor not in anchors(target)):
                yield f"{document}:{index + 1}: {link} has no such heading"


def check_index():
    index = (ROOT / "docs" / "README.md").read_text(encoding="utf-8")
    for document in documents():
        name = pathlib.Path(document).name
        if name != "README.md" and f"]({name})" not in index:
            yield f"docs/README.md does not name {name}"


def write(document):
    """Copies the files that the document shows whole into it."""
    lines = read_lines(document)
    for block in reversed(read_blocks(document, lines)):
        if block.kind == "whole" and (ROOT / block.name).is_file():
            lines[block.start : block.start + len(block.lines)] = shown_lines(block.name)
    (ROOT / document).write_text("\n".join(lines) + "\n", encoding="utf-8")


def print_blocks(language, document):
    for block in read_blocks(document, read_lines(document)):
        if block.language == language:
            sys.stdout.write("\n".join(block.lines) + "\n\0")


def main():
    if sys.argv[1:2] == ["--blocks"] and len(sys.argv) == 4:
        print_blocks(sys.argv[2], sys.argv[3])
        return
    if sys.argv[1:] == ["--write"]:
        for document in documents():
            write(document)
    elif len(sys.argv) > 1:
        sys.exit(__doc__)
    faults, all_blocks = [], []
    for document in documents():
        lines = read_lines(document)
        blocks = read_blocks(document, lines)
        all_blocks += blocks
        for block in blocks:
            fault = check_block(block)
            if fault:
                faults.append(f"{block.place}: {fault}")
        faults += check_links(document, lines, blocks)
    faults += check_outputs(all_blocks)
    faults += check_index()
    if faults:
        sys.exit("\n".join(faults))
    print(f"{len(documents())} documents with {len(all_blocks)} blocks fit the tree.")


if __name__ == "__main__":
    main()
