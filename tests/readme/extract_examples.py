#!/usr/bin/env python3
# extract_examples.py README.md OUTDIR: writes the fenced block after each
# <!-- example: NAME --> to OUTDIR/NAME, the one after <!-- output: NAME --> to NAME.out.
import pathlib
import re
import sys

blocks = re.findall(r'^<!-- (example|output): ([\w.-]+) -->\s*^```[^\n]*\n(.*?)^```',
                    pathlib.Path(sys.argv[1]).read_text(encoding='utf-8'), re.M | re.S)
examples, outputs = ({name for kind, name, _ in blocks if kind == k} for k in ('example', 'output'))
if examples != outputs:
    sys.exit('extract_examples: an example without output or the reverse: %s' % sorted(examples ^ outputs))
outdir = pathlib.Path(sys.argv[2])
outdir.mkdir(parents=True, exist_ok=True)
for old in outdir.iterdir():
    old.unlink()
for kind, name, text in blocks:  # scripts are read in the ANSI code page, with CR LF
    script = kind == 'example' and name.endswith(('.vbs', '.js'))
    data = text.replace('\n', '\r\n').encode('cp1252') if script else text.encode('utf-8')
    (outdir / (name if kind == 'example' else name + '.out')).write_bytes(data)
