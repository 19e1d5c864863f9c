#!/usr/bin/env python3
"""Checks that a screenshot shows a drawing: pixel colours at given places, a colour somewhere
within R pixels of a place (a line drawn with anti-aliased edges), and how many pixels are near
a colour. Standard library only (the PNG is decoded here with zlib).

  check_png.py FILE [--pixel X,Y,RRGGBB]... [--near X,Y,RRGGBB,R]... [--count RRGGBB,MIN]...
  check_png.py FILE --args-from LIST   (more checks, one "--flag value" pair a line)
"""
import struct
import sys
import zlib

TOLERANCE = 48


def decode(path):
    data = open(path, "rb").read()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        sys.exit(f"{path}: not a PNG file")
    pos, idat, header = 8, b"", None
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        body = data[pos + 8:pos + 8 + length]
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"IDAT":
            idat += body
        pos += 12 + length
    width, height, depth, colour, _, _, interlace = header
    channels = {0: 1, 2: 3, 6: 4}.get(colour)
    if depth != 8 or channels is None or interlace:
        sys.exit(f"{path}: unexpected PNG layout (depth {depth}, colour type {colour})")
    raw = zlib.decompress(idat)
    stride = width * channels
    rows, previous, at = [], bytearray(stride), 0
    for _ in range(height):
        kind, line = raw[at], bytearray(raw[at + 1:at + 1 + stride])
        at += 1 + stride
        for i in range(stride):
            left = line[i - channels] if i >= channels else 0
            up = previous[i]
            corner = previous[i - channels] if i >= channels else 0
            if kind == 1:
                line[i] = (line[i] + left) & 255
            elif kind == 2:
                line[i] = (line[i] + up) & 255
            elif kind == 3:
                line[i] = (line[i] + (left + up) // 2) & 255
            elif kind == 4:
                p = left + up - corner
                pa, pb, pc = abs(p - left), abs(p - up), abs(p - corner)
                pred = left if pa <= pb and pa <= pc else up if pb <= pc else corner
                line[i] = (line[i] + pred) & 255
        rows.append(line)
        previous = line
    if channels == 1:  # grey: as RGB, so every check reads three values
        rows = [bytearray(v for p in row for v in (p, p, p)) for row in rows]
        channels = 3
    return width, height, channels, rows


def near(pixel, rgb):
    return all(abs(a - b) <= TOLERANCE for a, b in zip(pixel, rgb))


def rgb_of(text):
    return tuple(int(text[i:i + 2], 16) for i in (0, 2, 4))


def main():
    path, checks = sys.argv[1], sys.argv[2:]
    width, height, channels, rows = decode(path)
    failures, pixels, nears, counts = [], [], [], []
    pairs = []
    for flag, value in zip(checks[::2], checks[1::2]):
        if flag == "--args-from":
            pairs += [tuple(line.split()) for line in open(value) if line.strip()]
        else:
            pairs.append((flag, value))
    for flag, value in pairs:
        if flag == "--pixel":
            x, y, rgb = value.split(",")
            pixels.append((int(x), int(y), rgb))
        elif flag == "--near":
            x, y, rgb, radius = value.split(",")
            nears.append((int(x), int(y), rgb, int(radius)))
        elif flag == "--count":
            rgb, minimum = value.split(",")
            counts.append((rgb, rgb_of(rgb), int(minimum)))
        else:
            sys.exit(f"unknown check {flag}")
    for x, y, rgb in pixels:
        if not (0 <= x < width and 0 <= y < height):
            failures.append(f"pixel {x},{y} lies outside the {width}x{height} picture")
            continue
        found = tuple(rows[y][x * channels:x * channels + 3])
        if not near(found, rgb_of(rgb)):
            failures.append(f"pixel {x},{y} is {found}, expected near #{rgb}")
    for x, y, rgb, radius in nears:
        around = [tuple(rows[j][i * channels:i * channels + 3])
                  for j in range(max(y - radius, 0), min(y + radius + 1, height))
                  for i in range(max(x - radius, 0), min(x + radius + 1, width))]
        if not any(near(pixel, rgb_of(rgb)) for pixel in around):
            failures.append(f"no pixel near #{rgb} within {radius} of {x},{y}")
    # One pass over the picture for every colour counted.
    found = [0] * len(counts)
    for row in rows:
        for at in range(0, width * channels, channels):
            r, g, b = row[at], row[at + 1], row[at + 2]
            for i, (_, (tr, tg, tb), _) in enumerate(counts):
                if abs(r - tr) <= TOLERANCE and abs(g - tg) <= TOLERANCE and abs(b - tb) <= TOLERANCE:
                    found[i] += 1
    for (rgb, _, minimum), n in zip(counts, found):
        if n < minimum:
            failures.append(f"{n} pixels near #{rgb}, expected at least {minimum}")
    if failures:
        # The first few say enough; a shifted grid would otherwise fill the log.
        more = f"; and {len(failures) - 10} more" if len(failures) > 10 else ""
        sys.exit(f"{path}: " + "; ".join(failures[:10]) + more)


main()
