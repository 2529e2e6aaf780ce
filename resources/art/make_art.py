#!/usr/bin/env python3
"""Draws the program's icons and bitmaps as small vector shapes and writes them as
.ico/.bmp files. Run it after changing a drawing; the outputs are committed."""
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))


class Canvas:
    def __init__(self, w, h):
        self.w, self.h = w, h
        self.px = [[(0, 0, 0, 0)] * w for _ in range(h)]

    def put(self, x, y, c):
        if 0 <= x < self.w and 0 <= y < self.h:
            if len(c) == 3:
                c = c + (255,)
            self.px[y][x] = c

    def rect(self, x0, y0, x1, y1, c):
        """Filled rectangle, inclusive corners."""
        for y in range(y0, y1 + 1):
            for x in range(x0, x1 + 1):
                self.put(x, y, c)

    def frame(self, x0, y0, x1, y1, c):
        for x in range(x0, x1 + 1):
            self.put(x, y0, c)
            self.put(x, y1, c)
        for y in range(y0, y1 + 1):
            self.put(x0, y, c)
            self.put(x1, y, c)

    def disc(self, cx, cy, r, c):
        for y in range(self.h):
            for x in range(self.w):
                if (x + 0.5 - cx) ** 2 + (y + 0.5 - cy) ** 2 <= r * r:
                    self.put(x, y, c)


WHITE = (255, 255, 255)
PAPER_EDGE = (96, 104, 120)
BLUE = (32, 84, 168)
LIGHT_BLUE = (200, 218, 244)
FIELD = (160, 168, 184)
GOLD = (222, 168, 40)
GOLD_DARK = (150, 100, 16)
GOLD_LIGHT = (250, 214, 110)


def app_icon(size):
    """A form sheet with two input fields and a gold key across its corner."""
    c = Canvas(size, size)
    s = size / 32.0

    def S(v):
        return int(round(v * s))

    # sheet
    c.rect(S(4), S(2), S(23), S(29), WHITE)
    c.frame(S(4), S(2), S(23), S(29), PAPER_EDGE)
    c.rect(S(5), S(3), S(22), S(6), BLUE)
    # form fields: label bars and boxes
    for top in (9, 15):
        c.rect(S(7), S(top), S(11), S(top) + max(1, S(1)) - 1, FIELD)
        c.rect(S(7), S(top + 2), S(20), S(top + 4), LIGHT_BLUE)
        c.frame(S(7), S(top + 2), S(20), S(top + 4), FIELD)
    # key: bow (ring) and shaft with two bits
    c.disc(S(22) + 0.5, S(22) + 0.5, 5.2 * s, GOLD_DARK)
    c.disc(S(22) + 0.5, S(22) + 0.5, 4.2 * s, GOLD)
    c.disc(S(21) + 0.5, S(21) + 0.5, 1.6 * s, GOLD_LIGHT)
    c.disc(S(22) + 0.5, S(22) + 0.5, 1.6 * s if size > 16 else 0.9, (0, 0, 0, 0))
    c.rect(S(13), S(21), S(18), S(23), GOLD_DARK)
    c.rect(S(13), S(21) + max(1, S(0.5)), S(18), S(22), GOLD)
    c.rect(S(13), S(24), S(14), S(26), GOLD_DARK)
    c.rect(S(16), S(24), S(16) + max(0, S(1) - 1), S(25), GOLD_DARK)
    return c


def ico_image(c):
    w, h = c.w, c.h
    header = struct.pack('<IiiHHIIiiII', 40, w, h * 2, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels = bytearray()
    for y in reversed(range(h)):
        for x in range(w):
            r, g, b, a = c.px[y][x]
            pixels += bytes((b, g, r, a))
    row = ((w + 31) // 32) * 4
    mask = bytearray()
    for y in reversed(range(h)):
        bits = bytearray(row)
        for x in range(w):
            if c.px[y][x][3] == 0:
                bits[x // 8] |= 0x80 >> (x % 8)
        mask += bits
    return header + bytes(pixels) + bytes(mask)


def write_ico(name, canvases):
    images = [ico_image(c) for c in canvases]
    out = struct.pack('<HHH', 0, 1, len(images))
    offset = 6 + 16 * len(images)
    for c, data in zip(canvases, images):
        out += struct.pack('<BBBBHHII', c.w % 256, c.h % 256, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    for data in images:
        out += data
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(out)


def write_bmp(name, c, background=(192, 192, 192)):
    """24-bit bitmap; transparent pixels take the background colour."""
    w, h = c.w, c.h
    row = (w * 3 + 3) & ~3
    data = bytearray()
    for y in reversed(range(h)):
        line = bytearray()
        for x in range(w):
            r, g, b, a = c.px[y][x]
            if a == 0:
                r, g, b = background
            line += bytes((b, g, r))
        line += bytes(row - len(line))
        data += line
    info = struct.pack('<IiiHHIIiiII', 40, w, h, 1, 24, 0, len(data), 2835, 2835, 0, 0)
    head = struct.pack('<2sIHHI', b'BM', 14 + len(info) + len(data), 0, 0, 14 + len(info))
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(head + info + bytes(data))


DRAWINGS = {}  # other subsystems register their drawings here


def main():
    write_ico('appicon.ico', [app_icon(32), app_icon(16)])
    for name, fn in DRAWINGS.items():
        fn()


if __name__ == '__main__':
    main()
