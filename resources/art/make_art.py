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
    return header + bytes(pixels) + mask_bits(c)


def mask_bits(c):
    """Bottom-up 1-bit rows, 1 where the picture is transparent."""
    row = ((c.w + 31) // 32) * 4
    mask = bytearray()
    for y in reversed(range(c.h)):
        bits = bytearray(row)
        for x in range(c.w):
            if c.px[y][x][3] == 0:
                bits[x // 8] |= 0x80 >> (x % 8)
        mask += bits
    return bytes(mask)


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


# ---- docking bars and Links view icons ----
# 16 x 16 pictures drawn pixel by pixel; '.' is transparent.
PALETTE = {
    'K': (40, 40, 40),       # outline
    'k': (96, 96, 96),
    'g': (128, 128, 128),
    'l': (192, 192, 192),
    'W': (255, 255, 255),
    'w': (232, 236, 244),    # paper shade
    'Y': (255, 222, 104),    # folder
    'y': (230, 178, 52),
    'o': (136, 92, 16),      # folder outline
    'B': (36, 92, 184),      # blue
    'b': (128, 176, 236),
    'c': (196, 222, 250),
    'n': (16, 40, 112),      # navy outline
    'G': (44, 160, 44),
    'd': (16, 96, 16),
    'R': (220, 44, 36),
    'r': (132, 16, 12),
    'A': (226, 172, 44),     # key gold
    'a': (140, 92, 12),
    'L': (252, 220, 120),
    'p': (244, 196, 64),     # pencil
    'P': (236, 120, 100),
    's': (120, 120, 130),
}

TOOL_PICTURES = [
    # open database: an open folder
    """
................
................
.ooooo..........
oYYYYYo.........
oYLLLLYoooooo...
oYLyyyyyyyyyyo..
oYLy........yo..
oYy.ooooooooooooo
oYyoLLLLLLLLLLLo.
oYoLYYYYYYYYYYo..
oYoLYYYYYYYYYyo..
ooLYYYYYYYYYyo...
oLyyyyyyyyyyyo...
ooooooooooooo....
................
................
""",
    # save database: a diskette
    """
................
.nnnnnnnnnnnnnn.
.nBnWWWWWWWWnBn.
.nBnWWWWWWWWnBn.
.nBnWggggggWnBn.
.nBnWWWWWWWWnBn.
.nBnWggggggWnBn.
.nBnWWWWWWWWnBn.
.nBBnnnnnnnnBBn.
.nBBBBBBBBBBBBn.
.nBBKKKKKKKKBBn.
.nBBKllllnnKBBn.
.nBBKllllnnKBBn.
.nBBKllllnnKBBn.
..nnnnnnnnnnnnn.
................
""",
    # scan html: a browser window under a magnifying glass
    """
KKKKKKKKKKKKK...
KBBBBBBBBWBWK...
KlllllllllllK...
KWWWWWWWWWWWK...
KWggggWWWWWWK...
KWWWWWWWWWWWK...
KWgggggWKKKWK...
KWWWWWWKcccKK...
KWggggKcWcccK...
KWWWWWKccccbK...
KWgggWKccccbK...
KKKKKKKKbbbKK...
.........KKKaK..
...........aAa..
............aAa.
.............aa.
""",
    # scan file html: a saved page under a magnifying glass
    """
.KKKKKKKKK......
.KWWWWWWWKK.....
.KWggggWWKWK....
.KWWWWWWWKKKK...
.KWgggggWWWwK...
.KWWWWWWKKKwK...
.KWggggKcccKK...
.KWWWWKcWcccK...
.KWgggKccccbK...
.KWWWWKccccbK...
.KWgggKKbbbKK...
.KKKKKKKKKKKaK..
...........aAa..
............aAa.
.............aa.
................
""",
    # add key: a key with a green plus
    ("key", """
...........ddd..
...........dGd..
.........dddGddd
.........dGGGGGd
.........dddGddd
...........dGd..
...........ddd..
"""),
    # modify key: a key with a pencil
    ("key", """
.............KK.
............KPPK
...........KpKPK
..........KpppK.
.........KpppK..
........KpppK...
.......KpppK....
.......KppK.....
.......KKK......
"""),
    # delete key: a key with a red cross
    ("key", """
.........rr...rr
.........rRr.rRr
..........rRrRr.
...........rRr..
..........rRrRr.
.........rRr.rRr
.........rr...rr
"""),
    # new folder: a closed folder with a spark
    """
...........y....
.........y.y.y..
..........yYy...
.ooooo...yYWYy..
oYYYYYo...yYy...
oYYYYYYoooyoyo..
oLLLLLLLLLLLLLo.
oLYYYYYYYYYYYyo.
oLYYYYYYYYYYYyo.
oLYYYYYYYYYYYyo.
oLYYYYYYYYYYYyo.
oLYYYYYYYYYYYyo.
oyyyyyyyyyyyyyo.
.oooooooooooooo.
................
................
""",
    # help: a blue ball with a question mark
    """
................
.....nnnnnn.....
...nnBBBBBBnn...
..nBBBWWWWBBBn..
..nBBWWBBWWBBn..
.nBBBWWBBWWBBBn.
.nBBBBBBBWWBBBn.
.nBBBBBBWWBBBBn.
.nBBBBBWWBBBBBn.
.nBBBBBWWBBBBBn.
..nBBBBBBBBBBn..
..nBBBBWWBBBBn..
...nnBBWWBBnn...
.....nnnnnn.....
................
................
""",
    # scan address from clipboard: a clipboard with an address line under a
    # magnifying glass
    """
....KKKKK.......
.oooKlllKooo....
oyyyKKKKKyyyo...
oyWWWWWWWWWyo...
oyWBBBBBBBWyo...
oyWWWWWWWWWyo...
oyWgggWKKKWyo...
oyWWWWKcccKyo...
oyWggKcWcccKo...
oyWWWKccccbKo...
oyWggKccccbKo...
oyyyyyKbbbKKo...
ooooooooKKKaK...
..........aAa...
...........aAa..
............aa..
""",
]

# The key the three key pictures share; their signs are drawn over it.
KEY = """
................
................
................
................
................
................
..aaaa..........
.aLLLAa.........
aLAaaLAa........
aLa..aAaaaaaaaa.
aAa..aAAAAAAAAAa
aAAaaAAaaaaAAaAa
.aAAAAa....aAaAa
..aaaa.....aaaaa
................
................
"""

DIGITS = {
    1: ["..X..", ".XX..", "..X..", "..X..", "..X..", "..X..", ".XXX."],
    2: [".XXX.", "X...X", "....X", "...X.", "..X..", ".X...", "XXXXX"],
    3: ["XXXX.", "....X", "....X", ".XXX.", "....X", "....X", "XXXX."],
    4: ["...X.", "..XX.", ".X.X.", "X..X.", "XXXXX", "...X.", "...X."],
    5: ["XXXXX", "X....", "XXXX.", "....X", "....X", "X...X", ".XXX."],
    6: ["..XX.", ".X...", "X....", "XXXX.", "X...X", "X...X", ".XXX."],
    7: ["XXXXX", "....X", "...X.", "..X..", ".X...", ".X...", ".X..."],
    8: [".XXX.", "X...X", "X...X", ".XXX.", "X...X", "X...X", ".XXX."],
    9: [".XXX.", "X...X", "X...X", ".XXXX", "....X", "...X.", ".XX.."],
}

# A database: a drum seen from above and the side; its slot number on the side.
DRUM = """
...nnnnnnnnnn...
.nnccccccccccnn.
nbcWWccccccccccn
nnbbccccccccbbnn
nBnnnbbbbbbnnnBn
nBBBBnnnnnnBBBbn
nBBBBBBBBBBBBBbn
nBBBBBBBBBBBBBbn
nBBBBBBBBBBBBBbn
nBBBBBBBBBBBBBbn
nBBBBBBBBBBBBBbn
nBBBBBBBBBBBBBbn
nBBBBBBBBBBBBBbn
nnBBBBBBBBBBBbnn
.nnnBBBBBBBbnnn.
....nnnnnnnn....
"""

ICON_PICTURES = {
    # a saved page that the Links view lists greyed: hidden
    'icon_hidden': """
..KKKKKKKKK.....
..KWlWlWlWKK....
..KlWlWlWlKWK...
..KWlWlWlWKKKK..
..KlWlWlWlWlWK..
..KWlWlWlWlWlK..
..KlWlWlWlWlWK..
..KWlWlWlWlWlK..
..KlWlWlWlWlWK..
..KWlWlWlWlWlK..
..KlWlWlWlWlWK..
..KWlWlWlWlWlK..
..KlWlWlWlWlWK..
..KWlWlWlWlWlK..
..KKKKKKKKKKKK..
................
""",
    # the top folder of the saved pages, with an arrow up
    'bfolder_root': """
................
.........d......
........dGd.....
.ooooo.dGGGd....
oYYYYYodddGddd..
oYYYYYYoodGdoo..
oLLLLLLLLdGdLLo.
oLYYYYYYYdddYyo.
oLYYYYYYYYYYYyo.
oLYYYYYYYYYYYyo.
oLYYYYYYYYYYYyo.
oLYYYYYYYYYYYyo.
oyyyyyyyyyyyyyo.
.oooooooooooooo.
................
................
""",
    # the folder shown open
    'bfolder_on': """
................
................
.ooooo..........
oYYYYYo.........
oYLLLYYoooooo...
oYLyyyyyyyyyyo..
oYLy.........o..
oYy.ooooooooooooo
oYyoLLLLLLLLLLLo.
oYoLYYYYYYYYYYo..
oYoLYYYYYYYYYYo..
ooLYYYYYYYYYYo...
oLYYYYYYYYYYYo...
ooooooooooooo....
................
................
""",
}

# The key list of the no-match prompt shows each key with the bare key.
ICON_PICTURES['key_off'] = KEY


def picture(text, c=None):
    """Draws a grid of palette letters over `c` (a new canvas if none)."""
    if isinstance(text, tuple):  # a sign over the shared key
        return picture(text[1], picture(KEY))
    rows = [r for r in text.strip('\n').split('\n')]
    c = c or Canvas(16, 16)
    for y, row in enumerate(rows[:16]):
        for x, ch in enumerate(row[:16]):
            if ch != '.':
                c.put(x, y, PALETTE[ch])
    return c


def drum(number):
    c = picture(DRUM)
    glyph = DIGITS[number]
    for y, row in enumerate(glyph):
        for x, ch in enumerate(row):
            if ch == 'X':
                c.put(5 + x, 6 + y, PALETTE['W'])
    return c


def strip(canvases):
    out = Canvas(16 * len(canvases), 16)
    for i, c in enumerate(canvases):
        for y in range(16):
            for x in range(16):
                out.px[y][16 * i + x] = c.px[y][x]
    return out


def doubled(c):
    d = Canvas(c.w * 2, c.h * 2)
    for y in range(d.h):
        for x in range(d.w):
            d.px[y][x] = c.px[y // 2][x // 2]
    return d


def write_mask(name, c):
    """1-bit bitmap: white where the picture is transparent."""
    w, h = c.w, c.h
    data = mask_bits(c)
    palette = bytes((0, 0, 0, 0, 255, 255, 255, 0))
    info = struct.pack('<IiiHHIIiiII', 40, w, h, 1, 1, 0, len(data), 2835, 2835, 2, 2)
    off = 14 + len(info) + len(palette)
    head = struct.pack('<2sIHHI', b'BM', off + len(data), 0, 0, off)
    with open(os.path.join(HERE, name), 'wb') as f:
        f.write(head + info + palette + bytes(data))


def bar_art():
    tools = strip([picture(p) for p in TOOL_PICTURES])
    write_bmp('toolbar.bmp', tools)
    write_mask('toolbar_mask.bmp', tools)
    drums = strip([drum(n) for n in range(1, 10)])
    write_bmp('databasebar.bmp', drums)
    write_mask('databasebar_mask.bmp', drums)
    for name, text in ICON_PICTURES.items():
        c = picture(text)
        write_ico(name + '.ico', [doubled(c), c])


DRAWINGS['bars'] = bar_art


# ---- key editor ----
def key_art():
    """KEY_OFF: the shared key on 16 x 12, white standing for transparent."""
    key = picture(KEY)
    c = Canvas(16, 12)
    for y in range(12):
        c.px[y] = list(key.px[y + 4])
    assert all(p[:3] != WHITE for row in c.px for p in row if p[3]), 'white is the mask colour'
    write_bmp('key_off.bmp', c, background=WHITE)


# ---- the Keys view ----
# The key every row of the key list shows: a gold key lying across, its bow at
# the left with a hole, two bits at the end of its shaft.
KEY_ROW = """
................
................
................
................
..aaaa..........
.aLLLAa.........
aLAaaLAa........
aLa..aAaaaaaaaa.
aAa..aAAAAAAAAAa
aAAaaAAaaaaAAaAa
.aAAAAa....aAaAa
..aaaa.....aaaaa
................
................
................
................
"""


def key_list_art():
    c = picture(KEY_ROW)
    write_ico('key_icon.ico', [c])




def keys_art():
    key_art()
    key_list_art()


DRAWINGS['keys'] = keys_art


def main():
    write_ico('appicon.ico', [app_icon(32), app_icon(16)])
    for name, fn in DRAWINGS.items():
        fn()


if __name__ == '__main__':
    main()
