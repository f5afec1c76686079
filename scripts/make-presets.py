#!/usr/bin/env python3
"""Computes the installed presets of colour tables, share/presets/*.json, from published definitions:

  Oklab      B. Ottosson, "A perceptual color space for image processing", 2020: matrices below
  sRGB       IEC 61966-2-1: transfer function below
  cubehelix  D. A. Green, "A colour scheme for the display of astronomical intensity images",
             Bulletin of the Astronomical Society of India 39 (2011), equations (1) and (2)
  tolerance  M. Okabe, K. Ito, "Color Universal Design", 2008: colours told apart with every colour vision

The curves through Oklab are our own. Each is cut into pieces of equal Oklab length, so that equal steps of the value
look equally large, and every table that is not cyclic or diverging grows lighter all the way, so that it reads in grey
as well. Usage: scripts/make-presets.py [FOLDER]
"""

import math
import os
import struct
import sys

PIECES = 32
LARGEST = 3.4028234663852886e38


def as_float(value):
    return struct.unpack("<f", struct.pack("<f", value))[0]


def text_of(value):
    """The shortest decimal that reads back to the same float."""
    value = as_float(value)
    if abs(value) == LARGEST:
        return "3.4028235e+38" if value > 0 else "-3.4028235e+38"
    digits = next(n for n in range(1, 10) if as_float(float(f"{value:.{n}g}")) == value)
    mantissa, exponent = f"{value:.{digits - 1}e}".split("e")
    fixed = f"{value:.{max(digits - 1 - int(exponent), 0)}f}"
    scientific = f"{mantissa}e{int(exponent):+03d}"
    return fixed if len(fixed) <= len(scientific) else scientific


def oklab_to_srgb(lightness, a, b):
    l = (lightness + 0.3963377774 * a + 0.2158037573 * b) ** 3
    m = (lightness - 0.1055613458 * a - 0.0638541728 * b) ** 3
    s = (lightness - 0.0894841775 * a - 1.2914855480 * b) ** 3
    linear = (
        4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s,
        -1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s,
        -0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s,
    )
    for channel in linear:
        if not -1e-4 <= channel <= 1.0001:
            raise ValueError(f"outside of sRGB: L {lightness:.3f} a {a:.3f} b {b:.3f}: {linear}")
    return tuple(encode(min(max(channel, 0.0), 1.0)) for channel in linear)


def encode(linear):
    return 12.92 * linear if linear <= 0.0031308 else 1.055 * linear ** (1 / 2.4) - 0.055


def equal_lengths(curve, pieces):
    """Points of a curve t in [0, 1] -> (L, a, b) that lie at equal distances along it."""
    fine = 20000
    points = [curve(i / fine) for i in range(fine + 1)]
    lengths = [0.0]
    for before, after in zip(points, points[1:]):
        lengths.append(lengths[-1] + math.dist(before, after))
    result, at = [], 0
    for i in range(pieces + 1):
        wanted = lengths[-1] * i / pieces
        while at < fine and lengths[at] < wanted:
            at += 1
        result.append(points[at])
    return result


def polar(lightness, chroma, degrees):
    return lightness, chroma * math.cos(math.radians(degrees)), chroma * math.sin(math.radians(degrees))


def grey(t):
    return 0.15 + 0.83 * t, 0.0, 0.0


def blue_yellow(t):
    # Red-green opponency stays constant: what red-green blind people see is the same table.
    return 0.28 + 0.63 * t, -0.02, -0.11 + 0.235 * t


def heat(t):
    return polar(0.16 + 0.79 * t, 0.05 + 0.075 * math.sin(0.8 * math.pi * t), 20 + 85 * t)


def violet_green(t):
    return polar(0.22 + 0.70 * t, 0.075 + 0.075 * t * t, 310 - 203 * t)


def blue_orange(t):
    side = 2 * t - 1
    chroma = 0.125 * abs(side)
    return polar(0.93 - 0.38 * abs(side), chroma, 252 if side < 0 else 55)


def phase(t):
    angle = 2 * math.pi * t
    return 0.60 - 0.30 * math.cos(angle), 0.0, -0.095 * math.sin(angle)


def cubehelix(t):
    start, rotations, hue, gamma = 0.5, -1.5, 1.0, 1.0
    angle = 2 * math.pi * (start / 3 + rotations * t)
    level = t**gamma
    amplitude = hue * level * (1 - level) / 2
    red = level + amplitude * (-0.14861 * math.cos(angle) + 1.78277 * math.sin(angle))
    green = level + amplitude * (-0.29227 * math.cos(angle) - 0.90649 * math.sin(angle))
    blue = level + amplitude * 1.97294 * math.cos(angle)
    return tuple(min(max(channel, 0.0), 1.0) for channel in (red, green, blue))


def uniform(curve, pieces=PIECES):
    return [oklab_to_srgb(*point) for point in equal_lengths(curve, pieces)]


# Drawings limit the diameter of pores, analyses measure their volume. Balls of 1 and 2 mm across have 0.52 and 4.19 mm³
# (pi / 6 * d ** 3), rounded down to numbers that are easy to read and on the safe side.
PORE_VOLUMES = [0.5, 4]

VERMILLION, ORANGE, BLUISH_GREEN = (213, 94, 0), (230, 159, 0), (0, 158, 115)
FAIL, WARN, PASS = (tuple(channel / 255 for channel in color) for color in (VERMILLION, ORANGE, BLUISH_GREEN))


def section(kind, start, end=None):
    """A section as its file has it, a line each."""
    lines = [f'"Type": "{kind}"']
    for name, channel in (("Red", 0), ("Green", 1), ("Blue", 2), ("Alpha", 3)):
        points = []
        for place, color in ((0, start), (1, end)):
            if color is not None:
                value = 1 if channel == 3 else round(color[channel], 5)
                points.append(f"[{place}, {text_of(value)}]")
        lines.append(f'"PointList{name}": [{", ".join(points)}]')
    inside = ",\n".join("    " + line for line in lines)
    return f'{{\n  "class": "LyrColorLookupTable::Section",\n  "properties": {{\n{inside}\n  }}\n}}'


def indented(text, spaces):
    return "\n".join(" " * spaces + line for line in text.split("\n"))


def preset(name, positions, sections, absolute, reference, quantity, auto_label):
    listed = indented(",\n".join(sections), 10)
    return f"""{{
  "format": "lyr-object",
  "version": 1,
  "class": "LyrPresetColortableProxyObject",
  "properties": {{
    "AbsoluteMode": {"true" if absolute else "false"},
    "ReferenceRange": [{", ".join(map(text_of, reference))}],
    "ColorLookupTable": {{
      "class": "LyrColorLookupTable",
      "properties": {{
        "PositionList": [{", ".join(map(text_of, positions))}],
        "SectionList": [
{listed}
        ],
        "ExtensionColorList": [],
        "ExtensionEnumList": [],
        "AutoLabel": {"true" if auto_label else "false"},
        "AutoScale": {"false" if absolute else "true"},
        "FiniteMode": [0, 0],
        "Quantity": "{quantity}",
        "CreationParameters": [0, 0, 0],
        "CreationType": "Custom",
        "MaximumRange": [-3.4028235e+38, 3.4028235e+38]
      }}
    }},
    "NameTemplate": "{name}"
  }}
}}
"""


def smooth(name, colors, low, high, quantity="Length"):
    pieces = len(colors) - 1
    positions = [low + (high - low) * i / pieces for i in range(pieces + 1)]
    sections = [section("Constant", colors[0])]
    sections += [section("Gradient", before, after) for before, after in zip(colors, colors[1:])]
    sections.append(section("Constant", colors[-1]))
    return preset(name, positions, sections, False, (low, high), quantity, True)


def graded(name, positions, colors, quantity="Length"):
    """Hard steps; the sections between are gradients from a colour to the same one."""
    last = len(colors) - 1
    sections = [
        section("Gradient", color, color) if 0 < i < last else section("Constant", color)
        for i, color in enumerate(colors)
    ]
    return preset(name, positions, sections, True, (positions[0], positions[-1]), quantity, False)


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    folder = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "..", "share", "presets")
    files = {
        "uniform-grey": smooth("Uniform Grey", uniform(grey), 0, 1),
        "uniform-blue-yellow": smooth("Uniform Blue Yellow", uniform(blue_yellow), 0, 1),
        "uniform-heat": smooth("Uniform Heat", uniform(heat), 0, 1),
        "uniform-violet-green-yellow": smooth("Uniform Violet Green Yellow", uniform(violet_green), 0, 1),
        "cubehelix": smooth("Cubehelix", [cubehelix(i / 64) for i in range(65)], 0, 1),
        "diverging-blue-orange": smooth("Diverging Blue Orange", uniform(blue_orange), -1, 1),
        "cyclic-blue-yellow": smooth("Cyclic Blue Yellow", uniform(phase), -math.pi, math.pi, "Angle"),
        "tolerance-both-sides": graded("Tolerance Both Sides", [-0.2, -0.1, 0.1, 0.2], [FAIL, WARN, PASS, WARN, FAIL]),
        "tolerance-upper-limit": graded("Tolerance Upper Limit", [0.1, 0.2], [PASS, WARN, FAIL]),
        "tolerance-lower-limit": graded("Tolerance Lower Limit", [1, 1.5], [FAIL, WARN, PASS]),
        "tolerance-pore-volume": graded("Tolerance Pore Volume", PORE_VOLUMES, [PASS, WARN, FAIL], "Volume"),
    }
    os.makedirs(folder, exist_ok=True)
    for name, text in files.items():
        with open(os.path.join(folder, name + ".json"), "w", encoding="utf-8", newline="\n") as file:
            file.write(text)


if __name__ == "__main__":
    main()
