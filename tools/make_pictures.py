#!/usr/bin/env python3
"""Draws the controls' pictures into res/: five 32x32 icons and six 16x15 toolbox bitmaps.

The icons are .ico files with one image each: 16 colours (4 bits) for the host controls,
256 colours (8 bits) for the two surface controls. The toolbox bitmaps are stored in their
resource form: a 40-byte BITMAPINFOHEADER and 24-bit pixel rows, 760 bytes, no file header.
Run it again only to change the artwork; the build embeds the files as they are.
"""
import math
import os
import struct

HERE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "res")

# The standard 16-colour palette, as (r, g, b).
VGA16 = [(0, 0, 0), (128, 0, 0), (0, 128, 0), (128, 128, 0), (0, 0, 128), (128, 0, 128),
         (0, 128, 128), (192, 192, 192), (128, 128, 128), (255, 0, 0), (0, 255, 0),
         (255, 255, 0), (0, 0, 255), (255, 0, 255), (0, 255, 255), (255, 255, 255)]
BLACK, DARKBLUE, GREY, DARKGREY, RED, GREEN, BLUE, WHITE, YELLOW = 0, 4, 7, 8, 9, 10, 12, 15, 11


def canvas(w, h, fill):
    return [[fill] * w for _ in range(h)]


def rect(img, x0, y0, x1, y1, c):
    for y in range(max(0, y0), min(len(img), y1 + 1)):
        for x in range(max(0, x0), min(len(img[0]), x1 + 1)):
            img[y][x] = c


def line(img, x0, y0, x1, y1, c, width=1):
    steps = max(abs(x1 - x0), abs(y1 - y0), 1)
    for i in range(steps + 1):
        x = round(x0 + (x1 - x0) * i / steps)
        y = round(y0 + (y1 - y0) * i / steps)
        rect(img, x - width // 2, y - width // 2, x + (width - 1) // 2, y + (width - 1) // 2, c)


def zebrin(n):  # a bold Z on white
    img = canvas(n, n, WHITE)
    m = n // 8
    rect(img, m, m, n - 1 - m, m + n // 8, BLACK)
    rect(img, m, n - 1 - m - n // 8, n - 1 - m, n - 1 - m, BLACK)
    line(img, n - 1 - m - 1, m + n // 8, m + 1, n - 1 - m - n // 8, BLACK, max(2, n // 8))
    return img


def tarvik(n):  # an end mill above a grey block
    img = canvas(n, n, WHITE)
    rect(img, n // 8, n * 3 // 4, n - 1 - n // 8, n - 1 - n // 16, DARKGREY)
    rect(img, n * 7 // 16, 0, n * 9 // 16, n // 4, GREY)
    rect(img, n * 3 // 8, n // 4, n * 5 // 8, n * 5 // 8, BLUE)
    for y in range(n // 4, n * 5 // 8, max(2, n // 8)):
        line(img, n * 3 // 8, y, n * 5 // 8, y + n // 16, WHITE)
    return img


def ulmora(n):  # a wavy surface edge in green over blue
    img = canvas(n, n, WHITE)
    for x in range(n):
        y = int(n / 2 + (n / 5) * math.sin(x * 2 * math.pi / n))
        rect(img, x, y, x, n - 1 - n // 8, GREEN)
        rect(img, x, y, x, y + max(1, n // 16), DARKBLUE)
    return img


def nearest(n):  # a curve with points dropped onto it
    img = canvas(n, n, 255)
    for x in range(n):
        y = int(n * 0.6 + (n / 6) * math.sin(x * math.pi / n * 1.5))
        rect(img, x, y, x, y + 1, 40)
    for x in range(n // 6, n, n // 3):
        y = int(n * 0.6 + (n / 6) * math.sin(x * math.pi / n * 1.5))
        line(img, x, n // 8, x, y - 2, 150)
        rect(img, x - 1, n // 8 - 1, x + 1, n // 8 + 1, 200)
    return img


def surface_info(n):  # a skewed point grid
    img = canvas(n, n, 255)
    for i in range(5):
        t = i / 4
        line(img, int(n * 0.1 + t * n * 0.5), int(n * 0.2 + t * n * 0.6),
             int(n * 0.5 + t * n * 0.4), int(n * 0.1 + t * n * 0.5), 60)
        line(img, int(n * 0.1 + t * n * 0.4), int(n * 0.2 - t * n * 0.1),
             int(n * 0.5 + t * n * 0.4), int(n * 0.8 - t * n * 0.1), 90)
    return img


def value_box(n_w, n_h):  # an entry box with a caret
    img = canvas(n_w, n_h, GREY)
    rect(img, 1, 3, n_w - 2, n_h - 4, WHITE)
    line(img, 1, 3, n_w - 2, 3, DARKGREY)
    line(img, 1, 3, 1, n_h - 4, DARKGREY)
    rect(img, 4, 6, 5, n_h - 7, BLACK)
    rect(img, 8, 6, 9, n_h - 7, BLUE)
    line(img, 12, 5, 12, n_h - 6, BLACK)
    return img


def palette256():
    # Greys from white down, then the colour cube: index 255 is white.
    pal = []
    for i in range(256):
        if i < 32:
            pal.append((i * 8, i * 4, 0))          # dark reds
        elif i < 64:
            pal.append((0, (i - 32) * 8, 64))      # greens
        elif i < 128:
            pal.append((0, 64, (i - 64) * 4))      # blues
        elif i < 192:
            pal.append(((i - 128) * 4, 0, 128))    # purples
        else:
            v = (i - 192) * 4 + 3
            pal.append((v, v, v))                  # greys to white
    return pal


def ico(img, bits, palette):
    n = len(img)
    row_bytes = n * bits // 8
    pixels = b""
    for row in reversed(img):
        if bits == 4:
            pixels += bytes((row[x] << 4) | row[x + 1] for x in range(0, n, 2))
        else:
            pixels += bytes(row)
        pixels += b"\0" * ((4 - row_bytes % 4) % 4)
    mask = b"\0" * (4 * n)  # every pixel opaque
    colours = len(palette)
    header = struct.pack("<IiiHHIIiiII", 40, n, 2 * n, 1, bits, 0, len(pixels) + len(mask), 0, 0,
                         colours, 0)
    pal = b"".join(bytes((b, g, r, 0)) for (r, g, b) in palette)
    image = header + pal + pixels + mask
    directory = struct.pack("<HHH", 0, 1, 1)
    entry = struct.pack("<BBBBHHII", n, n, 16 if bits == 4 else 0, 0, 1, bits, len(image), 22)
    return directory + entry + image


def toolbox(img, palette):
    h, w = len(img), len(img[0])
    pixels = b""
    for row in reversed(img):
        pixels += b"".join(bytes((palette[c][2], palette[c][1], palette[c][0])) for c in row)
    header = struct.pack("<IiiHHIIiiII", 40, w, h, 1, 24, 0, len(pixels), 0, 0, 0, 0)
    return header + pixels


def main():
    pal256 = palette256()
    icons = {"zebrin.ico": (zebrin(32), 4, VGA16), "tarvik3.ico": (tarvik(32), 4, VGA16),
             "ulmora27.ico": (ulmora(32), 4, VGA16),
             "ulmoranearestpoints.ico": (nearest(32), 8, pal256),
             "ulmorasurfaceinfo.ico": (surface_info(32), 8, pal256)}
    for name, (img, bits, pal) in icons.items():
        with open(os.path.join(HERE, name), "wb") as f:
            f.write(ico(img, bits, pal))

    def small(draw):
        img = draw(16)
        return img[:15]

    bitmaps = {30005: (small(zebrin), VGA16), 30004: (small(tarvik), VGA16),
               30003: (small(ulmora), VGA16), 30002: (small(nearest), pal256),
               30001: (small(surface_info), pal256), 30000: (value_box(16, 15), VGA16)}
    for number, (img, pal) in bitmaps.items():
        with open(os.path.join(HERE, "toolbox_%d.dib" % number), "wb") as f:
            f.write(toolbox(img, pal))


if __name__ == "__main__":
    main()
