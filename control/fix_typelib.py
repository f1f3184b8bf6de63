#!/usr/bin/env python3
"""Finishes the type library written by widl, in place of what widl cannot say.

- Help strings: the IDL is UTF-8, but a type library stores its strings as
  bytes of the library's code page (1252 for locale 0x409). Every string is
  re-encoded as cp1252, and the escape \\r\\n becomes a real CR LF.
- Versions of dispinterfaces: widl rejects version() there, so the versions
  are given on the command line as NAME=MAJOR.MINOR.

Re-encoding never makes a string longer, so each string is rewritten inside
its own slot and no offset in the file moves.

usage: fix_typelib.py IN.tlb OUT.tlb [NAME=MAJOR.MINOR ...]
"""
import struct
import sys

HEADER_SIZE = 0x54
HELPDLL_FLAG = 0x100
SEG_TYPEINFO, SEG_NAME, SEG_STRING = 0, 7, 8


def segments(data):
    nr_typeinfos = struct.unpack_from('<i', data, 0x20)[0]
    varflags = struct.unpack_from('<i', data, 0x14)[0]
    pos = HEADER_SIZE + (4 if varflags & HELPDLL_FLAG else 0)
    typeinfo_offsets = struct.unpack_from('<%di' % nr_typeinfos, data, pos)
    pos += 4 * nr_typeinfos
    segs = [struct.unpack_from('<2i', data, pos + 16 * i) for i in range(15)]
    return typeinfo_offsets, segs


def fix_strings(data, seg_offset, seg_length):
    pos, end = seg_offset, seg_offset + seg_length
    while pos < end:
        length = struct.unpack_from('<H', data, pos)[0]
        slot = (2 + length + 3) & ~3
        text = bytes(data[pos + 2:pos + 2 + length]).decode('utf-8')
        encoded = text.replace('\\r\\n', '\r\n').encode('cp1252')
        padded = encoded + b'W' * (slot - 2 - len(encoded))
        struct.pack_into('<H', data, pos, len(encoded))
        data[pos + 2:pos + slot] = padded
        pos += slot
    if pos != end:
        sys.exit('fix_typelib: string segment does not parse')


def typeinfo_name(data, name_seg_offset, name_offset):
    length = struct.unpack_from('<i', data, name_seg_offset + name_offset + 8)[0] & 0xff
    start = name_seg_offset + name_offset + 12
    return bytes(data[start:start + length]).decode('ascii')


def main():
    src, dst, *versions = sys.argv[1:]
    data = bytearray(open(src, 'rb').read())
    if data[:4] != b'MSFT':
        sys.exit('fix_typelib: not an MSFT type library')
    typeinfo_offsets, segs = segments(data)
    fix_strings(data, *segs[SEG_STRING])
    wanted = dict(v.split('=') for v in versions)
    for ti in typeinfo_offsets:
        base = segs[SEG_TYPEINFO][0] + ti
        name = typeinfo_name(data, segs[SEG_NAME][0], struct.unpack_from('<i', data, base + 0x34)[0])
        if name in wanted:
            major, minor = (int(x) for x in wanted.pop(name).split('.'))
            struct.pack_into('<HH', data, base + 0x38, major, minor)
    if wanted:
        sys.exit('fix_typelib: no type named %s' % ', '.join(wanted))
    open(dst, 'wb').write(data)


if __name__ == '__main__':
    main()
