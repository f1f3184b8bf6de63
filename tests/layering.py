#!/usr/bin/env python3
# layering.py ROOT: names each file or library of a layer that includes or links
# one above or beside it (docs/development.md, "Layers"), and then fails.
import re
import sys
from pathlib import Path

LAYERS = [["com"], ["platform"], ["model"], ["crypto", "web"], ["forms"], ["control"], ["server"], ["testkit"]]
RANK = {folder: level for level, folders in enumerate(LAYERS) for folder in folders}
GENERATED = {"BrevantisLib_h.h": "model", "version.h": "model"}  # headers the build writes from a layer
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)
LINK = re.compile(r"target_link_libraries\(brevantis_\w+\s+\w+([^)]*)\)")
found = []
for folder in RANK:
    for path in sorted(p for p in (Path(sys.argv[1]) / folder).glob("*") if p.is_file()):
        text, code = path.read_text(errors="replace"), path.suffix in (".h", ".cpp", ".c", ".rc")
        uses = [("includes " + name, GENERATED.get(name, name.split("/")[0])) for name in INCLUDE.findall(text) if code]
        for libraries in LINK.findall(text) if path.name == "CMakeLists.txt" else []:
            uses += [("links brevantis_" + used, used) for used in re.findall(r"brevantis_(\w+)", libraries)]
        found += [f"upward: {folder}/{path.name} {use}" for use, used in uses
                  if used in RANK and used != folder and RANK[used] >= RANK[folder]]
print("\n".join(found + [f"{len(RANK)} layers checked, {len(found)} upward dependencies"]))
sys.exit(1 if found else 0)
