#!/usr/bin/env python3
"""Draws the program's icon, resources/narrixmenu.ico: a menu of three bars,
the lower two indented like items under a pull-down, in yellow on black with
a yellow frame, so that it stands out on light and dark backgrounds alike.
Each size is drawn on its own pixel grid, so that small icons stay sharp.

Usage: make_icon.py OUTPUT.ico   (only the standard library is needed)
"""
import struct
import sys
import zlib

SIZES = (16, 20, 24, 32, 40, 48, 64, 256)
YELLOW = (255, 214, 0, 255)
BLACK = (0, 0, 0, 255)
CLEAR = (0, 0, 0, 0)


def draw(size):
    """The picture as rows of RGBA tuples, top row first."""
    unit = size / 16.0  # the design is laid out on a 16 x 16 grid
    px = lambda v: int(round(v * unit))
    frame = max(1, px(1))
    rows = [[BLACK] * size for _ in range(size)]
    # Rounded corners from 32 pixels up: the corner pixels let the background through.
    cut = px(1.5) if size >= 32 else 0
    for y in range(size):
        for x in range(size):
            dx = max(cut - x, x - (size - 1 - cut), 0)
            dy = max(cut - y, y - (size - 1 - cut), 0)
            if dx * dx + dy * dy > cut * cut:
                rows[y][x] = CLEAR
            elif x < frame or y < frame or x >= size - frame or y >= size - frame or \
                    (cut and dx * dx + dy * dy > (cut - frame) * (cut - frame)):
                rows[y][x] = YELLOW
    # The bars: x from, x to, y from on the 16 grid, each 2 units high.
    for left, top in ((3, 3), (5, 7), (5, 11)):
        for y in range(px(top), px(top + 2)):
            for x in range(px(left), px(13)):
                rows[y][x] = YELLOW
    return rows


def bmp_entry(rows):
    size = len(rows)
    header = struct.pack("<IiiHHIIiiII", 40, size, size * 2, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels = b"".join(bytes((b, g, r, a)) for row in reversed(rows) for (r, g, b, a) in row)
    mask_row = ((size + 31) // 32) * 4
    return header + pixels + b"\0" * (mask_row * size)


def png_entry(rows):
    size = len(rows)
    raw = b"".join(b"\0" + b"".join(bytes(p) for p in row) for row in rows)
    chunk = lambda kind, data: struct.pack(">I", len(data)) + kind + data + \
        struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0)) + \
        chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b"")


def main(out):
    images = [png_entry(draw(s)) if s >= 256 else bmp_entry(draw(s)) for s in SIZES]
    offset = 6 + 16 * len(SIZES)
    head = struct.pack("<HHH", 0, 1, len(SIZES))
    for size, data in zip(SIZES, images):
        head += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    with open(out, "wb") as f:
        f.write(head + b"".join(images))


if __name__ == "__main__":
    main(sys.argv[1])
