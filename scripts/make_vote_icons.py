#!/usr/bin/env python3
"""Draws the two marks of the article vote buttons, a thumb up and a thumb down, as PNG resources
of the library: black on clear, as template images that the buttons tint.

Run from the repository root; writes belvakit/resources/images/icoVoteUp.png and icoVoteDown.png.
The output is committed, so a build needs no Python.
"""
import os

from make_icons import png, samples

SIZE = 20
SAMPLES = 4  # per axis, for smooth edges
OUT = os.path.join("belvakit", "resources", "images")


def inside_thumb_up(x, y):
    """The thumb-up mark in a 20 by 20 box: a cuff on the left, a fist, and the thumb on top."""
    # Cuff.
    if 2.0 <= x <= 5.5 and 9.0 <= y <= 18.0:
        return True
    # Fist: a rounded block.
    if 6.5 <= x <= 16.5 and 9.0 <= y <= 18.0:
        cx = min(max(x, 8.0), 15.0)
        cy = min(max(y, 10.5), 16.5)
        return (x - cx) ** 2 + (y - cy) ** 2 <= 1.5 ** 2
    # Thumb: a slanted bar from the fist up to a rounded tip.
    ax, ay, bx, by = 8.0, 10.0, 10.5, 2.8
    dx, dy = bx - ax, by - ay
    t = max(0.0, min(1.0, ((x - ax) * dx + (y - ay) * dy) / (dx * dx + dy * dy)))
    px, py = ax + t * dx, ay + t * dy
    return (x - px) ** 2 + (y - py) ** 2 <= 1.9 ** 2


def draw(flip):
    rows = []
    for row in range(SIZE):
        line = []
        for col in range(SIZE):
            hits = sum(inside_thumb_up(*((SIZE - x, SIZE - y) if flip else (x, y))) for x, y in samples(col, row, SAMPLES))
            alpha = round(255 * hits / (SAMPLES * SAMPLES))
            line.append((0, 0, 0, alpha))
        rows.append(line)
    return rows


def main():
    os.makedirs(OUT, exist_ok=True)
    for name, flip in (("icoVoteUp", False), ("icoVoteDown", True)):
        with open(os.path.join(OUT, name + ".png"), "wb") as out:
            out.write(png(draw(flip)))


if __name__ == "__main__":
    main()
