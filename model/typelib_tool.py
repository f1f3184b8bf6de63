#!/usr/bin/env python3
"""Gets the type library past what widl cannot say.

A type library stores its help strings as bytes of the library's code page
(1252 for locale 0x409), and the Error event's help string holds a real
CR LF, which widl cannot write; widl also rejects version() on a
dispinterface. So:

  prepare IN.idl OUT.idl
      writes the UTF-8 IDL as code page 1252, with each \\r\\n escape in a
      string turned into the two placeholder bytes 01 02.
  finish IN.tlb OUT.tlb [NAME=MAJOR.MINOR ...]
      turns the placeholders in the library's strings into CR LF (same
      length, so no offset moves) and sets the versions of the named types.
"""
import struct
import sys

PLACEHOLDER = b'\x01\x02'
HEADER_SIZE = 0x54
HELPDLL_FLAG = 0x100
SEG_TYPEINFO, SEG_NAME, SEG_STRING = 0, 7, 8
TYPEINFO_NAME, TYPEINFO_VERSION = 0x34, 0x38


def prepare(src, dst):
    text = open(src, encoding='utf-8').read()
    data = text.encode('cp1252').replace(b'\\r\\n', PLACEHOLDER)
    open(dst, 'wb').write(data)


def segments(data):
    nr_typeinfos = struct.unpack_from('<i', data, 0x20)[0]
    varflags = struct.unpack_from('<i', data, 0x14)[0]
    pos = HEADER_SIZE + (4 if varflags & HELPDLL_FLAG else 0)
    typeinfo_offsets = struct.unpack_from('<%di' % nr_typeinfos, data, pos)
    pos += 4 * nr_typeinfos
    segs = [struct.unpack_from('<2i', data, pos + 16 * i) for i in range(15)]
    return typeinfo_offsets, segs


def typeinfo_name(data, name_seg_offset, name_offset):
    start = name_seg_offset + name_offset
    length = struct.unpack_from('<i', data, start + 8)[0] & 0xff
    return bytes(data[start + 12:start + 12 + length]).decode('ascii')


def finish(src, dst, versions):
    data = bytearray(open(src, 'rb').read())
    if data[:4] != b'MSFT':
        sys.exit('typelib_tool: not an MSFT type library')
    typeinfo_offsets, segs = segments(data)
    start, length = segs[SEG_STRING]
    strings = bytes(data[start:start + length])
    data[start:start + length] = strings.replace(PLACEHOLDER, b'\r\n')

    wanted = dict(v.split('=') for v in versions)
    for offset in typeinfo_offsets:
        base = segs[SEG_TYPEINFO][0] + offset
        name_offset = struct.unpack_from('<i', data, base + TYPEINFO_NAME)[0]
        name = typeinfo_name(data, segs[SEG_NAME][0], name_offset)
        if name in wanted:
            major, minor = (int(x) for x in wanted.pop(name).split('.'))
            struct.pack_into('<HH', data, base + TYPEINFO_VERSION, major, minor)
    if wanted:
        sys.exit('typelib_tool: no type named %s' % ', '.join(wanted))
    open(dst, 'wb').write(data)


def main():
    command, src, dst, *rest = sys.argv[1:]
    if command == 'prepare':
        prepare(src, dst)
    elif command == 'finish':
        finish(src, dst, rest)
    else:
        sys.exit(__doc__)


if __name__ == '__main__':
    main()
