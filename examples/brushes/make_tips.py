#!/usr/bin/env python3
"""Writes the pictures in tips/, from formulas: PNG in 1 bit, 8 bits of grey and RGBA."""
import math
import pathlib
import struct
import zlib

FOLDER = pathlib.Path(__file__).resolve().parent / 'tips'
GREY, RGBA = 0, 6


def write_png(name, width, height, bits, colour_type, rows):
    def chunk(kind, data):
        return struct.pack('>I', len(data)) + kind + data + struct.pack('>I', zlib.crc32(kind + data))
    head = struct.pack('>IIBBBBB', width, height, bits, colour_type, 0, 0, 0)
    body = zlib.compress(b''.join(b'\0' + row for row in rows), 9)
    (FOLDER / name).write_bytes(b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', head) + chunk(b'IDAT', body) + chunk(b'IEND', b''))


def supersampled(width, height, at, places=4):
    """Mean of at(u, v) = (r, g, b, coverage), all from 0 to 1, over every pixel; u and v go from -1 to 1."""
    for y in range(height):
        row = []
        for x in range(width):
            sums = [0.0] * 4
            for i in range(places * places):
                u = (x + (i % places + 0.5) / places) / width * 2 - 1
                v = (y + (i // places + 0.5) / places) / height * 2 - 1
                r, g, b, a = at(u, v)
                sums = [s + c * a for s, c in zip(sums, (r, g, b))] + [sums[3] + a]
            alpha = sums[3]
            colour = [round(255 * s / alpha) if alpha else 255 for s in sums[:3]]
            row.append(colour + [round(255 * alpha / places ** 2)])
        yield row


def write_rgba(name, width, height, at):
    write_png(name, width, height, 8, RGBA, [bytes(sum(row, [])) for row in supersampled(width, height, at)])


def write_grey(name, width, height, ink):
    rows = supersampled(width, height, lambda u, v: (0, 0, 0, ink(u, v)))
    write_png(name, width, height, 8, GREY, [bytes(255 - pixel[3] for pixel in row) for row in rows])


def write_bits(name, width, height, ink):
    rows = []
    for y in range(height):
        bits = [0 if ink((x + 0.5) / width * 2 - 1, (y + 0.5) / height * 2 - 1) else 1 for x in range(width)]
        bits += [1] * (-width % 8)
        rows.append(bytes(int(''.join(map(str, bits[i:i + 8])), 2) for i in range(0, len(bits), 8)))
    write_png(name, width, height, 1, GREY, rows)


def paw(u, v):
    toes = [(-0.62, -0.25, 0.24), (-0.24, -0.66, 0.26), (0.24, -0.66, 0.26), (0.62, -0.25, 0.24)]
    return any(math.hypot(u - x, v - y) < r for x, y, r in toes) or math.hypot(u / 1.15, (v - 0.4) * 1.2) < 0.5


def feather(u, v):
    half = 0.5 * math.sqrt(max(0.0, 1 - v * v)) * (0.75 + 0.25 * math.sin(23 * (v - abs(u) * 0.6)))
    if abs(u) < 0.04:
        return 1.0
    return max(0.0, 0.85 - abs(u) / half * 0.6) if half > 0.02 and abs(u) < half else 0.0


def petal(red, green, blue):
    def at(u, v):
        half = 0.8 * math.sin(math.pi * ((1 - v) / 2) ** 0.6)
        light = 0.75 + 0.25 * math.cos(u * 9) * 0.4 - 0.15 * v
        return (red * light, green * light, blue * light, 1.0 if abs(u) < half else 0.0)
    return at


def rail(u, v):
    """A railway line that goes on above and below."""
    if 0.5 < abs(u) < 0.62:
        return (0.35, 0.36, 0.4, 1.0)
    if abs(u) < 0.9 and abs(v) < 0.4:
        return (0.45 + 0.08 * math.cos(u * 40), 0.3, 0.2, 1.0)
    return (1, 1, 1, 0.0)


if __name__ == '__main__':
    FOLDER.mkdir(exist_ok=True)
    write_bits('paw.png', 24, 24, paw)
    write_grey('feather.png', 40, 64, feather)
    write_rgba('petal-pink.png', 48, 48, petal(1.0, 0.62, 0.72))
    write_rgba('petal-rose.png', 48, 48, petal(0.95, 0.42, 0.55))
    write_rgba('petal-white.png', 48, 48, petal(1.0, 0.95, 0.93))
    write_rgba('rail.png', 48, 24, rail)
