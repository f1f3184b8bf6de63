#!/usr/bin/env python3
"""The direction rule of the layers (docs/development.md): a file may include
from its own folder and from the layers below it, never from one above or
beside it, and a layer's library links only the libraries below it.

    layering.py ROOT    checks the tree at ROOT; exit 1 names each breach
"""
import re
import sys
from pathlib import Path

# Bottom up; folders on one line are services of one level, kept apart.
LAYERS = [["com"], ["platform"], ["model"], ["crypto", "web"], ["forms"], ["control"], ["server"], ["testkit"]]
RANK = {folder: level for level, folders in enumerate(LAYERS) for folder in folders}
# Headers the build writes from a layer's sources.
GENERATED = {"BrevantisLib_h.h": "model", "version.h": "model"}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)
LINK = re.compile(r"target_link_libraries\(brevantis_(\w+)\s+\w+([^)]*)\)")


def allowed(folder, used):
    return used == folder or RANK[used] < RANK[folder]


def breaches(root):
    found = []
    for folder in RANK:
        for path in sorted((root / folder).glob("*")):
            if path.suffix in (".h", ".cpp", ".c", ".rc"):
                for name in INCLUDE.findall(path.read_text(errors="replace")):
                    used = GENERATED.get(name, name.split("/")[0])
                    if used in RANK and not allowed(folder, used):
                        found.append(f"{folder}/{path.name} includes {name}")
        cmake = root / folder / "CMakeLists.txt"
        for layer, libraries in LINK.findall(cmake.read_text() if cmake.exists() else ""):
            for used in re.findall(r"brevantis_(\w+)", libraries):
                if used in RANK and not allowed(layer, used):
                    found.append(f"brevantis_{layer} links brevantis_{used}")
    return found


if __name__ == "__main__":
    problems = breaches(Path(sys.argv[1]))
    for problem in problems:
        print("upward:", problem)
    print(f"{len(RANK)} layers checked, {len(problems)} upward dependencies")
    sys.exit(1 if problems else 0)
