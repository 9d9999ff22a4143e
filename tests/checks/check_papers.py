#!/usr/bin/env python3
"""check_papers.py ROOT

Lists what the papers (README.md, CONTRIBUTING.md, docs/) name and the project does not have: paths below its
folders, and class names in backticks.
"""
import re
import sys
from pathlib import Path

PATH = re.compile(r"(?<![\w./-])(?:\.ci|bench|cmake|docs|packaging|resources|scripts|src|tests)/[\w./*-]*[\w*-]")
CLASS = re.compile(r"`(?!Q[A-Z])([A-Z][a-z]+(?:[A-Z][a-z0-9]*)+)(?:::[\w:]+)?(?:\(\))?`")
SOURCES = ("*.h", "*.cpp", "*.ui", "*.txt", "*.cmake")


def papers(root):
    named = [root / "README.md", root / "CONTRIBUTING.md"]
    return [paper for paper in named if paper.exists()] + sorted((root / "docs").rglob("*.md"))


def words(root):
    found = set()
    for folder in ("src", "tests", "bench", "cmake"):
        for kind in SOURCES:
            for file in (root / folder).rglob(kind):
                found.update(re.findall(r"\w+", file.read_text(encoding="utf-8")))
    return found


def complaints(root):
    known = words(root)
    for paper in papers(root):
        text = paper.read_text(encoding="utf-8")
        missing = {path for path in PATH.findall(text) if not any(root.glob(path))}
        missing |= {name for name in CLASS.findall(text) if name not in known}
        for name in sorted(missing):
            yield f"{paper.relative_to(root)}: there is no {name}"


if __name__ == "__main__":
    found = list(complaints(Path(sys.argv[1])))
    print("\n".join(found))
    sys.exit(1 if found else 0)
