"""Pictures that tell at a glance, and by one pixel, where they come from."""

import struct
import zlib

WIDTH, HEIGHT, BAND = 1600, 1000, 40


def png(rows, padding=0):
    """A PNG file of RGB rows, with `padding` bytes behind its end."""

    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))

    header = struct.pack(">IIBBBBB", len(rows[0]) // 3, len(rows), 8, 2, 0, 0, 0)
    pixels = zlib.compress(b"".join(b"\0" + row for row in rows), 1)
    file = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", pixels) + chunk(b"IEND", b"")
    return file + bytes(padding)


def picture(color, number):
    """One colour with a light frame and, in the upper left quarter, as many light bands as its number."""
    ground, light = bytes.fromhex(color), bytes([230, 230, 220])
    edge = light * WIDTH
    plain = light * BAND + ground * (WIDTH - 2 * BAND) + light * BAND
    banded = light * BAND + ground * BAND + light * (WIDTH // 4) + ground * (WIDTH * 3 // 4 - 3 * BAND) + light * BAND
    rows = [edge] * BAND
    for y in range(BAND, HEIGHT - BAND):
        is_band = (y - 2 * BAND) // 20 % 2 == 0 and 0 <= (y - 2 * BAND) // 40 < number
        rows.append(banded if is_band else plain)
    return png(rows + [edge] * BAND)


def earth(number, side=1024):
    """A blue disc on black, with a cloud that wanders."""
    radius, middle = side * 0.42, side / 2
    rows = []
    for y in range(side):
        half = int(max(radius * radius - (y - middle) ** 2, 0) ** 0.5)
        left = side // 2 - half
        disc = bytearray(bytes([20, 70, 150]) * (2 * half))
        if 0.4 < y / side < 0.45:
            cloud = min(number * 60, 2 * half - 60)
            disc[3 * cloud : 3 * (cloud + 60)] = bytes([240, 240, 240]) * 60
        rows.append(bytes(3 * left) + bytes(disc) + bytes(3 * (side - left - 2 * half)))
    return png(rows)
