#!/usr/bin/env python3
"""check_includes.py ROOT QT_HEADERS

Reads every #include below src/ and tests/ and lists those by which a room reaches one that is not below it, or
by which a source without windows reaches a window: a header of Qt Widgets or of a room's window library.
"""
import re
import sys
from pathlib import Path

MODEL = {"core", "platform"}
BELOW = {
    "platform": set(),
    "core": {"platform"},
    "contacts": MODEL,
    "cloud": MODEL,
    "messaging": MODEL | {"contacts", "ui"},  # its windows
    "ui": MODEL | {"contacts"},
    "tools": MODEL | {"contacts", "ui"},  # its windows
    "app": MODEL | {"contacts", "cloud", "messaging", "ui", "tools"},
    "support": MODEL,
}
WINDOW_ROOMS = {"ui", "app"}
WINDOW_FOLDERS = {"widgets", "windows"}
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', re.MULTILINE)


def widget_headers(qt_headers):
    names = {folder: {file.name for file in (qt_headers / folder).iterdir()}
             for folder in ("QtWidgets", "QtGui", "QtCore")}
    return names["QtWidgets"] - names["QtGui"] - names["QtCore"]


def has_windows(parts):
    return parts[0] in WINDOW_ROOMS or parts[1] in WINDOW_FOLDERS


def target(root, file, name):
    """The included file as [room, ...], or None where it is not of this project."""
    beside = (file.parent / name).resolve()
    if beside.is_file() and beside.is_relative_to(root):
        return beside.relative_to(root).parts[1:]
    parts = Path(name).parts
    return parts if len(parts) > 1 and parts[0] in BELOW else None


def complaint(root, file, name, widgets):
    tree, *source = file.relative_to(root).parts
    room = source[0]
    included = target(root, file, name)
    if included:
        allowed = BELOW[room] | {room} | ({"support"} if tree == "tests" else set())
        if included[0] not in allowed:
            return f"{room} stands not above {included[0]}"
    if tree == "tests" or has_windows(source):
        return None
    if included and has_windows(included):
        return f"{name} is of a window"
    if name in widgets or name.startswith("QtWidgets"):
        return f"{name} is of Qt Widgets"
    return None


def complaints(root, qt_headers):
    root = root.resolve()
    widgets = widget_headers(qt_headers)
    files = [file for tree in ("src", "tests") for kind in ("*.h", "*.cpp") for file in (root / tree).rglob(kind)]
    for file in sorted(files):
        for name in INCLUDE.findall(file.read_text(encoding="utf-8")):
            if why := complaint(root, file, name, widgets):
                yield f"{file.relative_to(root)}: {why}"


if __name__ == "__main__":
    found = list(complaints(Path(sys.argv[1]), Path(sys.argv[2])))
    print("\n".join(found))
    sys.exit(1 if found else 0)
