#!/usr/bin/env python3
"""check_includes.py ROOT QT_HEADERS

Reads every #include and every forward declaration below src/ and tests/ and lists those by which a room reaches
one that is not below it, or by which a source without windows reaches a window: a header of Qt Widgets or of a
room's window library.
"""
import re
import sys
from pathlib import Path

FILES = {"base", "files"}
MODEL = FILES | {"core"}
# What the library of a room may reach, and what its windows may reach besides.
BELOW = {
    "base": set(),
    "files": {"base"},
    "desktop": FILES,
    "controls": {"base"},
    "records": FILES,
    "contacts": FILES,
    "core": FILES,
    "cloud": MODEL | {"records"},
    "messaging": MODEL | {"contacts"},
    "ui": MODEL | {"controls"},
    "tools": MODEL,
    "support": MODEL | {"records"},
}
BELOW["app"] = set(BELOW) - {"support"}
BELOW_WINDOWS = {
    "records": {"controls"},
    "contacts": {"controls"},
    "messaging": {"controls", "ui"},
    "ui": {"contacts"},
    "tools": {"contacts", "controls", "ui"},
}
WIDGET_ROOMS = {"controls", "ui", "app"}
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', re.MULTILINE)
DECLARED = re.compile(r"^\s*(?:class|struct|enum class|enum) (\w+)(?: : \w+)?;", re.MULTILINE)
DEFINED = re.compile(r"^\s*(?:class|struct|enum class|enum) (\w+)(?: final)?(?:\s*:[^;{]*)?\s*\{", re.MULTILINE)


def widget_headers(qt_headers):
    names = {folder: {file.name for file in (qt_headers / folder).iterdir()}
             for folder in ("QtWidgets", "QtGui", "QtCore")}
    return names["QtWidgets"] - names["QtGui"] - names["QtCore"]


def is_window(parts):
    return parts[0] == "app" or parts[1] == "windows"


def target(root, file, name):
    """The included file as [room, ...], or None where it is not of this project."""
    beside = (file.parent / name).resolve()
    if beside.is_file() and beside.is_relative_to(root):
        return beside.relative_to(root).parts[1:]
    parts = Path(name).parts
    return parts if len(parts) > 1 and parts[0] in BELOW else None


def reach(tree, source):
    """The rooms that a file may name."""
    room = source[0]
    if tree == "tests":
        return BELOW[room] | BELOW_WINDOWS.get(room, set()) | {room, "support"} | (
            BELOW["cloud"] | {"cloud"} if room in ("ui", "tools") else set())
    return BELOW[room] | {room} | (BELOW_WINDOWS.get(room, set()) if is_window(source) else set())


def include_complaint(root, file, name, widgets):
    tree, *source = file.relative_to(root).parts
    included = target(root, file, name)
    if included and included[0] not in reach(tree, source):
        return f"{source[0]} stands not above {included[0]}"
    if tree == "tests" or is_window(source):
        return None
    if included and is_window(included):
        return f"{name} is of a window"
    if source[0] not in WIDGET_ROOMS and (name in widgets or name.startswith("QtWidgets")):
        return f"{name} is of Qt Widgets"
    return None


def homes(root):
    """The room in which each type of a header is defined; None for a name that several rooms have."""
    found = {}
    for file in (root / "src").rglob("*.h"):
        room = file.relative_to(root).parts[1]
        for name in DEFINED.findall(file.read_text(encoding="utf-8")):
            found[name] = room if found.get(name, room) == room else None
    return found


def complaints(root, qt_headers):
    root = root.resolve()
    widgets = widget_headers(qt_headers)
    rooms = homes(root)
    files = [file for tree in ("src", "tests") for kind in ("*.h", "*.cpp") for file in (root / tree).rglob(kind)]
    for file in sorted(files):
        text = file.read_text(encoding="utf-8")
        for name in INCLUDE.findall(text):
            if why := include_complaint(root, file, name, widgets):
                yield f"{file.relative_to(root)}: {why}"
        tree, *source = file.relative_to(root).parts
        for name in DECLARED.findall(text):
            if rooms.get(name) and rooms[name] not in reach(tree, source):
                yield f"{file.relative_to(root)}: {source[0]} stands not above {rooms[name]}, where {name} is"


if __name__ == "__main__":
    found = list(complaints(Path(sys.argv[1]), Path(sys.argv[2])))
    print("\n".join(found))
    sys.exit(1 if found else 0)
