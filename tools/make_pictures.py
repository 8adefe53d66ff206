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


def bump(u, v):  # the height of the drawn surface patch, 0 to 1
    return 0.5 + 0.5 * math.sin(u * math.pi * 1.5) * math.cos(v * math.pi * 0.8)


def nearest(n):  # points above a shaded surface, dropped onto it
    img = canvas(n, n, 255)

    def top(x):
        return int(n * 0.55 - (n / 6) * math.sin(x * math.pi / n * 1.5))

    for x in range(n):
        for y in range(top(x), n):
            img[y][x] = SURFACE + int(100 * (y - top(x)) / n) + 20
        rect(img, x, top(x), x, top(x), SURFACE)
    for x in range(n // 6, n, n // 3):
        line(img, x, n // 8 + 2, x, top(x) - 1, 224)
        rect(img, x - n // 32, n // 8 - n // 32, x + n // 32, n // 8 + n // 32, WARM + 10)
        rect(img, x - n // 32, top(x) - n // 32, x + n // 32, top(x) + n // 32, WARM + 60)
    return img


def surface_info(n):  # a shaded surface patch with its point grid
    img = canvas(n, n, 255)
    corners = [(0.08, 0.35), (0.55, 0.08), (0.95, 0.55), (0.45, 0.92)]

    def at(u, v):
        (x0, y0), (x1, y1), (x2, y2), (x3, y3) = corners
        x = (1 - u) * (1 - v) * x0 + u * (1 - v) * x1 + u * v * x2 + (1 - u) * v * x3
        y = (1 - u) * (1 - v) * y0 + u * (1 - v) * y1 + u * v * y2 + (1 - u) * v * y3
        return round(x * (n - 1)), round(y * (n - 1))

    steps = 6 * n
    for i in range(steps + 1):
        for j in range(steps + 1):
            x, y = at(i / steps, j / steps)
            rect(img, x, y, x, y, SURFACE + 30 + int(90 * bump(i / steps, j / steps)))
    lines = 2 if n < 24 else 3
    for k in range(lines + 1):
        t = k / lines
        for i in range(steps):
            for a, b in ((at(t, i / steps), at(t, (i + 1) / steps)),
                         (at(i / steps, t), at((i + 1) / steps, t))):
                line(img, a[0], a[1], b[0], b[1], SURFACE)
    if n >= 24:
        for k in range(lines + 1):
            for m in range(lines + 1):
                x, y = at(k / lines, m / lines)
                rect(img, x - 1, y - 1, x, y, WARM + 50)
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


# The 256-colour palette: a cool ramp for surfaces, a warm ramp for points, then greys, so
# that index 255 is white.
SURFACE, WARM, GREYS = 0, 128, 192


def palette256():
    def lerp(a, b, t):
        return tuple(int(a[k] + (b[k] - a[k]) * t) for k in range(3))

    pal = [lerp((0, 40, 80), (170, 230, 255), i / 127) for i in range(128)]
    pal += [lerp((120, 0, 0), (255, 230, 0), i / 63) for i in range(64)]
    pal += [lerp((0, 0, 0), (255, 255, 255), i / 63) for i in range(64)]
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
