#!/usr/bin/env python3
# An independent writer of package archives, made from the layout alone, so that the
# reader is checked against bytes it didn't write itself.
#
# Usage: write_archive.py OUT VERSION ALGORITHM    (VERSION 1 or 2, ALGORITHM zlib or bz2)
# Writes three files: "hello.txt" (b"hello\n", read-only, time 1e9), "dir/data.bin"
# (bytes 0..255 forty times, mode 0o100755, time 1.5e9) and "empty" (mode 0o100644, time 0).
import bz2
import struct
import sys
import zlib

out, version, algorithm = sys.argv[1], int(sys.argv[2]), sys.argv[3]
files = [("hello.txt", b"hello\n", 0o100444, 1000000000),
         ("dir/data.bin", bytes(range(256)) * 40, 0o100755, 1500000000),
         ("empty", b"", 0o100644, 0)]

if version == 1:
    offset = 8 + 1040 * len(files)
    table = b""
    for name, data, mode, time in files:
        table += name.encode().ljust(1024, b"\0")
        table += struct.pack("<IIII", offset, len(data), 0 if mode & 0o222 else 1, time)
        offset += len(data)
    plain = struct.pack("<II", 0x4152C3C8, len(files)) + table + b"".join(f[1] for f in files)
    total = 2080 * len(files) + sum(len(f[1]) for f in files)
    header = struct.pack("<II", 0xB231F47A, 1) + struct.pack(">I", total + total // 100 + 13)
    body = zlib.compress(plain)
else:
    offset = 20 + sum(18 + len(f[0].encode()) for f in files)
    table = b""
    for name, data, mode, time in files:
        table += struct.pack("<HIIII", len(name.encode()), offset, len(data), mode, time) + name.encode()
        offset += len(data)
    plain = struct.pack("<I", len(files)) + b"\0" * 16 + table + b"".join(f[1] for f in files)
    code = 0 if algorithm == "zlib" else 1
    header = struct.pack("<IHH", 0x71F5C6B1, 2 | code << 12, 0)
    body = zlib.compress(plain) if code == 0 else bz2.compress(plain)
open(out, "wb").write(header + body)
