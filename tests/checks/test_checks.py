#!/usr/bin/env python3
"""Shows that the checks beside this file find what they are for, and nothing else."""
import tempfile
import unittest
from pathlib import Path

import check_includes
import check_papers


class Project(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)

    def write(self, path, text=""):
        file = self.root / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")


class Includes(Project):
    def found(self, path, line):
        for header in ("QtWidgets/QWidget", "QtWidgets/QAction", "QtGui/QAction", "QtCore/QObject"):
            self.write("qt/" + header)
        self.write("src/core/task.h", "enum class DayOrder { First };")
        self.write("src/records/record.h", "class CloudRecord : public QObject\n{")
        self.write(path, f"// a comment\n{line}\n")
        return list(check_includes.complaints(self.root, self.root / "qt"))

    def test_finds(self):
        for path, line in (
            ("src/base/a.cpp", "#include <core/task.h>"),
            ("src/files/a.h", '  #  include "../core/task.h"'),
            ("src/core/a.cpp", "#include <ui/a.h>"),
            ("src/core/a.h", "class CloudRecord;"),
            ("src/records/a.h", "enum class DayOrder;"),
            ("src/contacts/a.cpp", "#include <core/a.h>"),
            ("src/cloud/a.cpp", "#include <messaging/a.h>"),
            ("src/ui/a.cpp", "#include <contacts/a.h>"),
            ("src/ui/windows/a.cpp", "#include <desktop/a.h>"),
            ("src/tools/windows/a.cpp", "#include <app/a.h>"),
            ("src/app/a.cpp", "#include <support/a.h>"),
            ("tests/core/a.cpp", "#include <ui/a.h>"),
            ("tests/support/a.h", "#include <ui/a.h>"),
            ("src/core/a.cpp", "#include <QWidget>"),
            ("src/desktop/a.h", "#include <QtWidgets/QWidget>"),
            ("src/contacts/a.cpp", "#include <QtWidgets>"),
            ("src/contacts/a.cpp", "#include <controls/a.h>"),
            ("src/contacts/a.cpp", "#include <contacts/windows/a.h>"),
            ("src/controls/a.cpp", "#include <ui/windows/a.h>"),
        ):
            with self.subTest(path=path, line=line):
                self.assertEqual(len(self.found(path, line)), 1)
                (self.root / path).unlink()

    def test_lets_through(self):
        for path, line in (
            ("src/core/a.cpp", "#include <files/a.h>"),
            ("src/core/a.cpp", '#include "task.h"'),
            ("src/core/a.cpp", "#include <sys/stat.h>"),
            ("src/core/a.cpp", "#include <QAction>"),
            ("src/core/a.cpp", "// #include <QWidget>"),
            ("src/core/a.h", "class QObject;"),
            ("src/cloud/a.h", "class CloudRecord;"),
            ("src/app/a.cpp", "#include <contacts/windows/a.h>"),
            ("src/ui/a.cpp", "#include <QWidget>"),
            ("src/contacts/windows/a.cpp", "#include <QWidget>"),
            ("src/ui/windows/a.cpp", "#include <contacts/a.h>"),
            ("tests/ui/a.cpp", "#include <support/a.h>"),
        ):
            with self.subTest(path=path, line=line):
                self.assertEqual(self.found(path, line), [])
                (self.root / path).unlink()


class Papers(Project):
    def found(self, text):
        self.write("src/core/task.h", "class TaskList {};")
        self.write("docs/notes/one.md", text)
        return list(check_papers.complaints(self.root))

    def test_finds(self):
        for text in ("see src/core/gone.h.", "`scripts/gone.sh`", "tests/*/gone.cpp", "`TaskTable`", "`TaskTable::sort()`"):
            with self.subTest(text=text):
                self.assertEqual(len(self.found(text)), 1)

    def test_lets_through(self):
        for text in ("see src/core/task.h.", "src/core/, src/*/task.h", "https://example.org/src/gone.h", "src/<room>/x.h",
                     "`TaskList` and `TaskList::add`", "`QTableView`", "TaskTable in prose", "`run`"):
            with self.subTest(text=text):
                self.assertEqual(self.found(text), [])


if __name__ == "__main__":
    unittest.main()
