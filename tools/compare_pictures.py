#!/usr/bin/python3
"""Compares two folders of pictures of the same drawings, such as those of two readers.

    compare_pictures.py REFERENCE_FOLDER OTHER_FOLDER [--list]

A picture's ink is cut out, scaled to a square and compared with that of the picture of the same name, both ways: what
share of it lies within 4 of 256 pixels of the other's ink. 1: the same lines, 0: nothing in common. From 0.7 on a
drawing can be recognised. References without ink do not count. Ends with 1 when a picture is below 0.7.
"""
import pathlib
import sys

try:
    import numpy
    from PIL import Image
except ImportError as missing:
    sys.exit(f"compare_pictures.py needs {missing.name} (Debian: python3-numpy python3-pil).")

SIDE, REACH, DARK, RECOGNISABLE = 256, 4, 200, 0.7


def ink_of(path):
    """The picture's dark pixels on a square of SIDE; None when there are none."""
    with Image.open(path) as picture:
        dark = numpy.asarray(picture.convert("RGB")).min(axis=2) < DARK
    rows, columns = numpy.nonzero(dark)
    if rows.size == 0:
        return None
    rows, columns = rows - rows.min(), columns - columns.min()
    height, width = rows.max(), columns.max()
    scale = (SIDE - 1) / max(height + 1, width + 1)
    square = numpy.zeros((SIDE, SIDE), bool)
    top, left = ((SIDE - 1 - length * scale) / 2 for length in (height, width))
    square[(rows * scale + top).clip(0, SIDE - 1).astype(int), (columns * scale + left).clip(0, SIDE - 1).astype(int)] = True
    return square


def grown(ink):
    """All pixels within REACH of the ink."""
    padded = numpy.pad(ink, REACH)
    out = numpy.zeros_like(ink)
    for y in range(-REACH, REACH + 1):
        for x in range(-REACH, REACH + 1):
            if x * x + y * y <= REACH * REACH:
                out |= padded[REACH + y : REACH + y + SIDE, REACH + x : REACH + x + SIDE]
    return out


def score(reference, other):
    """The harmonic mean of what either's ink finds of the other's."""
    if other is None:
        return 0.0
    kept = (reference & grown(other)).sum() / reference.sum()
    right = (other & grown(reference)).sum() / other.sum()
    return 2 * kept * right / (kept + right) if kept + right else 0.0


def main(arguments):
    folders = [pathlib.Path(a) for a in arguments if a != "--list"]
    if len(folders) != 2:
        sys.exit(__doc__)
    scores = {}
    for path in sorted(folders[0].glob("*.png")):
        reference, other = ink_of(path), folders[1] / path.name
        if reference is not None:
            scores[path.name] = score(reference, ink_of(other) if other.exists() else None)
    if not scores:
        sys.exit(f"{folders[0]} holds no pictures (*.png) with ink.")
    if "--list" in arguments:
        for name, value in sorted(scores.items(), key=lambda item: item[1]):
            print(f"{value:.2f} {name}")
    good = sum(value >= RECOGNISABLE for value in scores.values())
    print(f"{good} of {len(scores)} recognisable, mean score {sum(scores.values()) / len(scores):.2f}")
    return 0 if good == len(scores) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
