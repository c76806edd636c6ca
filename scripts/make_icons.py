#!/usr/bin/env python3
"""Draws the file-type icons of conversation rows, the placeholder avatar of agents, and the inbox
and compose marks of the request list, as PNG resources of the library.

Run from the repository root; writes belvakit/resources/images/<name>.png. The output is
committed, so a build needs no Python: run this again only to change the icons.
"""
import os
import struct
import zlib

SIZE = 48
OUT = os.path.join("belvakit", "resources", "images")

# 3x5 glyphs, rows top to bottom, "1" is ink.
GLYPHS = {
    "A": ["010", "101", "111", "101", "101"], "C": ["011", "100", "100", "100", "011"],
    "D": ["110", "101", "101", "101", "110"], "E": ["111", "100", "110", "100", "111"],
    "F": ["111", "100", "110", "100", "100"], "G": ["011", "100", "101", "101", "011"],
    "I": ["111", "010", "010", "010", "111"], "K": ["101", "101", "110", "101", "101"],
    "L": ["100", "100", "100", "100", "111"], "M": ["101", "111", "111", "101", "101"],
    "N": ["101", "111", "111", "111", "101"], "O": ["010", "101", "101", "101", "010"],
    "P": ["110", "101", "110", "100", "100"], "S": ["011", "100", "010", "001", "110"],
    "T": ["111", "010", "010", "010", "010"], "U": ["101", "101", "101", "101", "111"],
    "X": ["101", "101", "010", "101", "101"], "Y": ["101", "101", "010", "010", "010"],
}

# Name: (label, band colour)
ICONS = {
    "iconMessageImg": ("IMG", (52, 152, 219)),
    "iconMessagePdf": ("PDF", (214, 48, 49)),
    "iconMessageText": ("TXT", (99, 110, 114)),
    "iconMessageWord": ("DOC", (41, 98, 255)),
    "iconMessageExcel": ("XLS", (39, 174, 96)),
    "iconMessagePp": ("PPT", (230, 126, 34)),
    "iconMessageKeynote": ("KEY", (0, 122, 255)),
    "iconMessagePages": ("PAG", (255, 149, 0)),
    "iconMessageNumbers": ("NUM", (52, 199, 89)),
}

PAGE = (255, 255, 255, 255)
EDGE = (170, 176, 182, 255)
FOLD = (220, 224, 228, 255)
LINE = (206, 210, 214, 255)
CLEAR = (0, 0, 0, 0)


def draw(label, band):
    pixels = [[CLEAR] * SIZE for _ in range(SIZE)]
    left, right, top, bottom, fold = 8, 39, 3, 44, 10

    def put(x, y, colour):
        if 0 <= x < SIZE and 0 <= y < SIZE:
            pixels[y][x] = colour

    # The page, its corner folded down.
    for y in range(top, bottom + 1):
        for x in range(left, right + 1):
            if x - (right - fold) > y - top:
                continue
            edge = x in (left, right) or y in (top, bottom) or x - (right - fold) == y - top
            put(x, y, EDGE if edge else PAGE)
    for y in range(top, top + fold + 1):
        for x in range(right - fold, right + 1):
            if x - (right - fold) <= y - top and (y == top + fold or x == right - fold):
                put(x, y, EDGE)
            elif x - (right - fold) < y - top:
                put(x, y, FOLD)
    # Lines of text on the page.
    for y in (17, 21, 25):
        for x in range(left + 5, right - 4):
            put(x, y, LINE)
    # The band with the label.
    for y in range(30, 41):
        for x in range(left - 4, right + 5):
            put(x, y, band + (255,))
    scale = 2
    width = len(label) * 3 * scale + (len(label) - 1) * scale
    x0 = (SIZE - width) // 2
    for index, char in enumerate(label):
        for row, bits in enumerate(GLYPHS[char]):
            for column, bit in enumerate(bits):
                if bit != "1":
                    continue
                for dy in range(scale):
                    for dx in range(scale):
                        put(x0 + index * 4 * scale + column * scale + dx, 31 + row * scale + dy, PAGE)
    return pixels


AVATAR_SIZE = 40
AVATAR_DISC = (200, 204, 208)
AVATAR_FIGURE = (255, 255, 255)


def samples(column, row, steps=4):
    """The points of a pixel's steps-by-steps supersampling grid, for smooth edges."""
    for sy in range(steps):
        for sx in range(steps):
            yield column + (sx + 0.5) / steps, row + (sy + 0.5) / steps


def draw_avatar():
    """A grey disc with a white head and shoulders, its edges smoothed by 4x4 supersampling."""
    size = AVATAR_SIZE
    radius = size / 2
    steps = 4

    def inside_disc(x, y):
        return (x - radius) ** 2 + (y - radius) ** 2 <= radius ** 2

    def inside_figure(x, y):
        head = (x - radius) ** 2 + (y - 15.5) ** 2 <= 7.0 ** 2
        # Shoulders: the top of a wide ellipse, cut by the disc.
        shoulders = ((x - radius) / 13.0) ** 2 + ((y - 36.0) / 12.0) ** 2 <= 1.0
        return head or shoulders

    pixels = []
    for row in range(size):
        line = []
        for column in range(size):
            disc = figure = 0
            for x, y in samples(column, row, steps):
                if inside_disc(x, y):
                    disc += 1
                    figure += inside_figure(x, y)
            total = steps * steps
            if disc == 0:
                line.append(CLEAR)
                continue
            share = figure / disc
            colour = tuple(round(AVATAR_DISC[i] * (1 - share) + AVATAR_FIGURE[i] * share) for i in range(3))
            line.append(colour + (round(255 * disc / total),))
        pixels.append(line)
    return pixels


def draw_strokes(size, segments, width, colour):
    """Line segments of the given width with round ends, their edges smoothed by 4x4 supersampling."""
    steps = 4
    half = width / 2

    def distance(px, py, ax, ay, bx, by):
        dx, dy = bx - ax, by - ay
        length = dx * dx + dy * dy
        t = 0 if length == 0 else max(0.0, min(1.0, ((px - ax) * dx + (py - ay) * dy) / length))
        cx, cy = ax + t * dx - px, ay + t * dy - py
        return (cx * cx + cy * cy) ** 0.5

    pixels = []
    for row in range(size):
        line = []
        for column in range(size):
            ink = sum(any(distance(x, y, *segment) <= half for segment in segments) for x, y in samples(column, row, steps))
            line.append(colour + (round(255 * ink / (steps * steps)),) if ink else CLEAR)
        pixels.append(line)
    return pixels


def draw_inbox():
    """An empty tray: the mark of a request list with nothing in it."""
    segments = [
        (18, 12, 54, 12), (18, 12, 8, 40), (54, 12, 64, 40),
        (8, 40, 8, 60), (8, 60, 64, 60), (64, 60, 64, 40),
        (8, 40, 24, 40), (24, 40, 28, 48), (28, 48, 44, 48), (44, 48, 48, 40), (48, 40, 64, 40),
    ]
    return draw_strokes(72, segments, 3.0, (184, 184, 184))


def draw_compose():
    """A plus: the bar button that starts a new request."""
    return draw_strokes(24, [(12, 5, 12, 19), (5, 12, 19, 12)], 2.2, (0, 122, 255))


def draw_down_arrow():
    """The Help Center's See all mark: a chevron pointing down, drawn in black as a template."""
    return draw_strokes(24, [(5, 9, 12, 16), (12, 16, 19, 9)], 3.0, (0, 0, 0))


def draw_contact():
    """The Help Center's contact button: a square with a pencil across its corner."""
    segments = [(4, 8, 4, 24), (4, 24, 20, 24), (20, 24, 20, 16), (4, 8, 12, 8), (11, 17, 24, 4)]
    return draw_strokes(28, segments, 2.2, (0, 0, 0))


def png(pixels):
    raw = b"".join(b"\x00" + b"".join(bytes(p) for p in row) for row in pixels)

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF)

    header = struct.pack(">IIBBBBB", len(pixels[0]), len(pixels), 8, 6, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b"")


def main():
    os.makedirs(OUT, exist_ok=True)
    for name, (label, band) in ICONS.items():
        with open(os.path.join(OUT, name + ".png"), "wb") as out:
            out.write(png(draw(label, band)))
    with open(os.path.join(OUT, "Avatar.png"), "wb") as out:
        out.write(png(draw_avatar()))
    for name, pixels in (("Inbox", draw_inbox()), ("iconCompose", draw_compose()), ("icoDown", draw_down_arrow()),
                         ("compose", draw_contact())):
        with open(os.path.join(OUT, name + ".png"), "wb") as out:
            out.write(png(pixels))


if __name__ == "__main__":
    main()
