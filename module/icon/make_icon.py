#!/usr/bin/env python3
"""Makes the icon of the library from one drawing: ten square images with 32 bits a pixel.

The image of 256 pixels is stored as PNG, which Windows expects for that size. All others are stored as
bitmaps, which every reader of icons supports.
Usage: make_icon.py RSVG_CONVERT DRAWING.svg ICON.ico
"""
import struct
import subprocess
import sys
import zlib

SIZES = (256, 128, 96, 64, 48, 40, 32, 24, 20, 16)
PNG_START = b"\x89PNG\r\n\x1a\n"


def chunks(png):
    """Returns the chunks of a PNG file by name; the contents of equal names are joined."""
    assert png.startswith(PNG_START)
    found, at = {}, len(PNG_START)
    while at < len(png):
        length, name = struct.unpack_from(">I4s", png, at)
        found[name] = found.get(name, b"") + png[at + 8:at + 8 + length]
        at += length + 12
    return found


def paeth(left, up, corner):
    nearest = left + up - corner
    return min((left, up, corner), key=lambda value: abs(nearest - value))


def pixel_rows(png, size):
    """Returns the rows of an RGBA image with 8 bits a channel, from the top, 4 bytes a pixel."""
    parts = chunks(png)
    header = struct.unpack(">IIBBBBB", parts[b"IHDR"])
    assert header == (size, size, 8, 6, 0, 0, 0), header
    data = zlib.decompress(parts[b"IDAT"])
    above, rows, stride = bytearray(4 * size), [], 4 * size + 1
    for start in range(0, len(data), stride):
        kind, row = data[start], bytearray(data[start + 1:start + stride])
        for i in range(len(row)):
            left = row[i - 4] if i >= 4 else 0
            corner = above[i - 4] if i >= 4 else 0
            guess = (0, left, above[i], (left + above[i]) // 2, paeth(left, above[i], corner))[kind]
            row[i] = (row[i] + guess) & 0xFF
        rows.append(row)
        above = row
    return rows


def bitmap(png, size):
    """Returns the image in the form of an icon: header, BGRA rows from the bottom, and an empty mask,
    because the alpha channel holds the transparency."""
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, 0, 0, 0, 0, 0)
    body = bytearray()
    for row in reversed(pixel_rows(png, size)):
        for i in range(0, len(row), 4):
            body += bytes((row[i + 2], row[i + 1], row[i], row[i + 3]))
    mask = bytes((size + 31) // 32 * 4 * size)
    return header + bytes(body) + mask


def main():
    convert, drawing, target = sys.argv[1:]
    images = []
    for size in SIZES:
        png = subprocess.run([convert, "-w", str(size), "-h", str(size), drawing],
                             capture_output=True, check=True).stdout
        images.append(png if size == 256 else bitmap(png, size))
    directory = struct.pack("<HHH", 0, 1, len(SIZES))
    offset = len(directory) + 16 * len(SIZES)
    for size, image in zip(SIZES, images):
        directory += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(image), offset)
        offset += len(image)
    with open(target, "wb") as file:
        file.write(directory + b"".join(images))


main()
