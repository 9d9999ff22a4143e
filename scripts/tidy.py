#!/usr/bin/env python3
"""tidy.py <build folder> [file ...]: clang-tidy over the product's sources, or over the files named, with the
checks of .clang-tidy. Fails on the first finding of any of them.

The compile commands name GCC's precompiled headers, which clang cannot read; they are taken out.
"""
import concurrent.futures
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

root = pathlib.Path(__file__).resolve().parent.parent
build = pathlib.Path(sys.argv[1]).resolve()
wanted = {str(pathlib.Path(name).resolve()) for name in sys.argv[2:]}

commands = []
for entry in json.loads((build / "compile_commands.json").read_text()):
    source = entry["file"]
    if not source.startswith(f"{root}/src/") or (wanted and source not in wanted):
        continue
    entry["command"] = re.sub(r"-Winvalid-pch|-include \S*cmake_pch\.hxx", "", entry["command"])
    commands.append(entry)


def tidy(source, folder):
    return subprocess.run(["clang-tidy", "--quiet", "-p", folder, source], capture_output=True, text=True, cwd=root)


failed = False
with tempfile.TemporaryDirectory() as folder:
    pathlib.Path(folder, "compile_commands.json").write_text(json.dumps(commands))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for result in pool.map(lambda entry: tidy(entry["file"], folder), commands):
            if result.returncode != 0:
                failed = True
                print(result.stdout)
print(f"clang-tidy: {len(commands)} files, " + ("findings above" if failed else "no findings"))
sys.exit(1 if failed or not commands else 0)
