#!/usr/bin/env python3
"""Writes out the examples of README.md so that the tests run them as printed.

An example is a fenced code block preceded by a line <!-- example: NAME.EXT -->;
the block after a line <!-- output: NAME.EXT --> is what it must print.

usage: extract_examples.py README.md OUTDIR
"""
import pathlib
import re
import sys

MARK = re.compile(r'^<!-- (example|output): ([\w.-]+) -->\s*$')


def blocks(lines):
    """(kind, name, text) for every marked fenced block."""
    i = 0
    while i < len(lines):
        match = MARK.match(lines[i])
        i += 1
        if not match:
            continue
        while i < len(lines) and not lines[i].startswith('```'):
            i += 1
        start = i + 1
        end = start
        while end < len(lines) and not lines[end].startswith('```'):
            end += 1
        yield match.group(1), match.group(2), ''.join(lines[start:end])
        i = end + 1


def main():
    readme, outdir = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    outdir.mkdir(parents=True, exist_ok=True)
    for old in outdir.iterdir():
        old.unlink()
    examples = set()
    for kind, name, text in blocks(readme.read_text(encoding='utf-8').splitlines(keepends=True)):
        if kind == 'example':
            # Scripts are read in the ANSI code page, and Windows wants CR LF in them.
            data = text.replace('\n', '\r\n').encode('cp1252') if name.endswith(('.vbs', '.js')) else text.encode()
            (outdir / name).write_bytes(data)
            examples.add(name)
        else:
            (outdir / (name + '.out')).write_text(text, encoding='utf-8')
    outputs = {p.name[:-4] for p in outdir.glob('*.out')}
    if outputs - examples:
        sys.exit('extract_examples: output without example: %s' % ', '.join(sorted(outputs - examples)))
    (outdir / 'stamp').write_text('\n'.join(sorted(examples)) + '\n')


if __name__ == '__main__':
    main()
