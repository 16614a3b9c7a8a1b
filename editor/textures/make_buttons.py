#!/usr/bin/env python3
"""Draws the editor's knob atlas "buttons.png": 256 x 128 RGBA, y measured up from the bottom.

Cells (x, y, size) of knobs and of their arc masks:
  tiny 26: knob (2, 2), mask (32, 2); small 34: knob (2, 92), mask (2, 52);
  big 92: knob (52, 34), mask (162, 34).
Run: python3 make_buttons.py buttons.png
"""
import math
import struct
import sys
import zlib

WIDTH, HEIGHT = 256, 128
KNOBS = [(2, 2, 26), (2, 92, 34), (52, 34, 92)]
MASKS = [(32, 2, 26), (2, 52, 34), (162, 34, 92)]


def blend(pixels, x, y, rgba):
    """Source-over of one pixel, with (x, y) in y-up atlas space."""
    row = HEIGHT - 1 - y
    i = (row * WIDTH + x) * 4
    sr, sg, sb, sa = rgba
    dr, dg, db, da = pixels[i:i + 4]
    a = sa + da * (1 - sa / 255.0)
    if a <= 0:
        return
    for k, (s, d) in enumerate(((sr, dr), (sg, dg), (sb, db))):
        pixels[i + k] = int(round((s * sa + d * da * (1 - sa / 255.0)) / a))
    pixels[i + 3] = int(round(a))


def coverage(distance, radius):
    """Anti-aliased coverage of a disc edge, one pixel wide."""
    return max(0.0, min(1.0, radius - distance + 0.5))


def draw_knob(pixels, x0, y0, size):
    r = size / 2.0 - 0.5
    cx, cy = x0 + size / 2.0, y0 + size / 2.0
    for y in range(y0, y0 + size):
        for x in range(x0, x0 + size):
            dx, dy = x + 0.5 - cx, y + 0.5 - cy
            d = math.hypot(dx, dy)
            c = coverage(d, r)
            if c <= 0:
                continue
            # A domed cap lit from the upper left, with a darker rim.
            t = d / r
            light = 0.62 + 0.25 * ((-dx + dy) / (2 * r)) - 0.25 * t * t
            if t > 0.86:
                light *= 0.55
            v = int(max(0, min(255, 255 * light)))
            blend(pixels, x, y, (v, v, int(v * 1.04) if v < 245 else v, int(255 * c)))


def draw_mask(pixels, x0, y0, size):
    r_out = size / 2.0 - 0.5
    r_in = r_out - max(2.0, size * 0.09)
    cx, cy = x0 + size / 2.0, y0 + size / 2.0
    for y in range(y0, y0 + size):
        for x in range(x0, x0 + size):
            d = math.hypot(x + 0.5 - cx, y + 0.5 - cy)
            c = min(coverage(d, r_out), 1.0 - coverage(d, r_in))
            if c > 0:
                blend(pixels, x, y, (255, 255, 255, int(255 * c)))


def write_png(path, pixels):
    raw = b"".join(b"\x00" + bytes(pixels[r * WIDTH * 4:(r + 1) * WIDTH * 4]) for r in range(HEIGHT))

    def chunk(tag, data):
        body = tag + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    with open(path, "wb") as out:
        out.write(b"\x89PNG\r\n\x1a\n")
        out.write(chunk(b"IHDR", struct.pack(">IIBBBBB", WIDTH, HEIGHT, 8, 6, 0, 0, 0)))
        out.write(chunk(b"IDAT", zlib.compress(raw, 9)))
        out.write(chunk(b"IEND", b""))


def main():
    pixels = bytearray(WIDTH * HEIGHT * 4)
    for cell in KNOBS:
        draw_knob(pixels, *cell)
    for cell in MASKS:
        draw_mask(pixels, *cell)
    write_png(sys.argv[1] if len(sys.argv) > 1 else "buttons.png", pixels)


if __name__ == "__main__":
    main()
