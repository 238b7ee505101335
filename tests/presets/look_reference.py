#!/usr/bin/env python3
"""Compares looks with an evaluation of their own formulas: look_reference.py KELVARA_CLI [PRESETS] [SEED].

Makes random presets and colours, has kelvara-cli apply the ones to the others, and demands the same numbers
to 1e-12.
"""

import colorsys
import json
import math
import random
import subprocess
import sys
import tempfile
from pathlib import Path

TOLERANCE = 1e-12
BANDS = {"Red": 0, "Orange": 30, "Yellow": 60, "Green": 120, "Aqua": 180, "Blue": 240, "Purple": 270, "Magenta": 300}
CURVES = ["ToneCurvePV2012" + channel for channel in ("", "Red", "Green", "Blue")]
PARTS = ["Shadow", "Midtone", "Highlight", "Global"]


def unit(x):
    return min(max(x, 0.0), 1.0)


def smooth(t):
    return t**2 * (3 - 2 * t)


def luma(rgb):
    return sum(weight * c for weight, c in zip((0.299, 0.587, 0.114), rgb))


def bump(x, lower, upper):
    """One arch of a squared sine, zero at both ends."""
    return math.sin(math.pi * (x - lower) / (upper - lower)) ** 2 if lower < x < upper else 0.0


def to_linear(c):
    return c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4


def from_linear(c):
    return 12.92 * c if c <= 0.0031308 else 1.055 * c ** (1 / 2.4) - 0.055


def to_hsv(rgb):
    hue, saturation, value = colorsys.rgb_to_hsv(*rgb)
    return hue * 360, saturation, value


def from_hsv(hue, saturation, value):
    return list(colorsys.hsv_to_rgb(hue % 360 / 360, saturation, value))


def band_mean(hue, amounts):
    """The amount for a hue, between those of the two bands around it."""
    centres = list(BANDS.values()) + [360]
    index = max(i for i in range(8) if centres[i] <= hue)
    t = smooth(unit((hue - centres[index]) / (centres[index + 1] - centres[index])))
    return (1 - t) * amounts[index] + t * amounts[(index + 1) % 8]


def solve(matrix, right):
    """Gaussian elimination with pivots."""
    size = len(right)
    rows = [row[:] + [value] for row, value in zip(matrix, right)]
    for i in range(size):
        pivot = max(range(i, size), key=lambda j: abs(rows[j][i]))
        rows[i], rows[pivot] = rows[pivot], rows[i]
        for j in range(size):
            if j != i:
                factor = rows[j][i] / rows[i][i]
                rows[j] = [a - factor * b for a, b in zip(rows[j], rows[i])]
    return [rows[i][size] / rows[i][i] for i in range(size)]


class Spline:
    def __init__(self, values):
        points = {}
        for x, y in zip(values[0::2], values[1::2]):
            points[x / 255] = y / 255
        self.points = sorted(points.items())
        size = len(self.points)
        matrix = [[float(i == j) for j in range(size)] for i in range(size)]
        right = [0.0] * size
        for i in range(1, size - 1):
            (x0, y0), (x1, y1), (x2, y2) = self.points[i - 1 : i + 2]
            matrix[i][i - 1 : i + 2] = [(x1 - x0) / 6, (x2 - x0) / 3, (x2 - x1) / 6]
            right[i] = (y2 - y1) / (x2 - x1) - (y1 - y0) / (x1 - x0)
        self.curvatures = solve(matrix, right)

    def __call__(self, x):
        if x <= self.points[0][0]:
            return self.points[0][1]
        if x >= self.points[-1][0]:
            return self.points[-1][1]
        k = next(i for i in range(len(self.points)) if self.points[i + 1][0] >= x)
        (x0, y0), (x1, y1) = self.points[k : k + 2]
        h = x1 - x0
        a, b = (x1 - x) / h, (x - x0) / h
        bend = (a**3 - a) * self.curvatures[k] + (b**3 - b) * self.curvatures[k + 1]
        return a * y0 + b * y1 + bend * h**2 / 6


class Look:
    def __init__(self, settings):
        self.settings = settings
        n = self.number
        vivid = settings.get("CameraProfile") == "Adobe Vivid"
        self.gray = settings.get("ConvertToGrayscale") is True or n("Saturation") <= -100
        warmth, tint = n("IncrementalTemperature") * 0.5, n("IncrementalTint")
        if settings.get("WhiteBalance", "As Shot") != "As Shot":
            if n("Temperature") > 0:
                warmth += 181.8181818181818 - 1e6 / n("Temperature")
            tint += n("Tint")
        balance = [math.exp(0.0035 * warmth), math.exp(-0.0025 * tint), math.exp(-0.0035 * warmth)]
        self.gain = [c / luma(balance) * 2 ** n("Exposure2012") for c in balance]
        dehaze = n("Dehaze") / 100
        self.contrast = dehaze * 0.35 + 0.1 * vivid + n("Contrast2012") / 100
        self.blacks = n("Blacks2012") / 100 - 0.3 * dehaze
        self.saturation = (1 + 0.2 * dehaze) * (1.12 if vivid else 1) * (1 + n("Saturation") / 100)
        self.vibrance = n("Vibrance") / 100
        self.zones = self.parametric_zones()
        self.curves = [Spline(settings[key]) if len(settings.get(key, [])) > 1 else None for key in CURVES]
        self.shifts = {
            kind: [n(f"{kind}Adjustment{band}") / 100 for band in BANDS] for kind in ("Hue", "Saturation", "Luminance")
        }
        self.mix = [n("GrayMixer" + band) / 100 for band in BANDS]
        self.grades = self.color_grades()
        self.balance = n("ColorGradeBalance") / 100
        if not self.grades:
            self.grades = [
                (part, n(f"SplitToning{part}Hue"), n(f"SplitToning{part}Saturation") / 100, 0)
                for part in ("Shadow", "Highlight")
                if n(f"SplitToning{part}Saturation") != 0
            ]
            self.balance = n("SplitToningBalance") / 100

    def number(self, key, default=0):
        return self.settings.get(key, default)

    def parametric_zones(self):
        n = self.number
        low, middle, high = (
            n(f"Parametric{split}Split", default) / 100
            for split, default in (("Shadow", 25), ("Midtone", 50), ("Highlight", 75))
        )
        bounds = {
            "Shadows": (0, (low + middle) / 2),
            "Darks": (low / 2, (middle + high) / 2),
            "Lights": ((low + middle) / 2, (high + 1) / 2),
            "Highlights": ((middle + high) / 2, 1),
        }
        return [(*bounds[zone], n("Parametric" + zone) / 100) for zone in bounds]

    def color_grades(self):
        n = self.number
        grades = [
            (part, n(f"ColorGrade{part}Hue"), n(f"ColorGrade{part}Sat") / 100, n(f"ColorGrade{part}Lum") / 100)
            for part in PARTS
        ]
        return [grade for grade in grades if grade[2] != 0 or grade[3] != 0]

    def tone(self, x):
        n = self.number
        x -= math.sin(2 * math.pi * x) / (2 * math.pi) * self.contrast * 0.6
        x += bump(x, 0.35, 1.05) * n("Highlights2012") / 100 * 0.18
        x += bump(x, -0.05, 0.6) * n("Shadows2012") / 100 * 0.18
        x += n("Whites2012") / 100 * 0.12 * smooth(unit((x - 0.45) / 0.55))
        x += self.blacks * 0.12 * (1 - smooth(unit(x / 0.55)))
        return x

    def parametric(self, x):
        return unit(x + sum((b - a) * bump(x, a, b) * amount * 0.35 for a, b, amount in self.zones))

    def shifted(self, rgb):
        hue, saturation, value = to_hsv(rgb)
        if saturation <= 0.001:
            return rgb
        new_saturation = min(1, saturation * (1 + band_mean(hue, self.shifts["Saturation"])))
        new_value = min(1, value * (1 + new_saturation / 2 * band_mean(hue, self.shifts["Luminance"])))
        return from_hsv(hue + 30 * band_mean(hue, self.shifts["Hue"]), new_saturation, new_value)

    def graded(self, rgb):
        y = luma(rgb)
        centre = 0.5 - 0.3 * self.balance
        half = (0.15 + 0.7 * self.number("ColorGradeBlending", 50) / 100) / 2
        s = smooth(unit((y - (centre - half)) / (2 * half)))
        weights = {"Shadow": 1 - s, "Midtone": 4 * y * (1 - y), "Highlight": s, "Global": 1}
        for part, hue, saturation, luminance in self.grades:
            color = from_hsv(hue, 1, 1)
            tint = [c - luma(color) for c in color]
            weight = weights[part]
            rgb = [c + luminance * weight * 0.2 + t * saturation * weight * 0.3 for c, t in zip(rgb, tint)]
        return rgb

    def apply(self, rgb):
        if any(abs(gain - 1) > 1e-9 for gain in self.gain):
            rgb = [unit(from_linear(to_linear(c) * gain)) for c, gain in zip(rgb, self.gain)]
        if self.gray:
            hue, saturation, _ = to_hsv(rgb)
            rgb = [luma(rgb) + saturation * band_mean(hue, self.mix) * 0.35] * 3
        rgb = [self.parametric(self.tone(c)) for c in rgb]
        for curve, channels in zip(self.curves, ((0, 1, 2), (0,), (1,), (2,))):
            if curve:
                rgb = [curve(c) if i in channels else c for i, c in enumerate(rgb)]
        rgb = [unit(c) for c in rgb]
        if not self.gray:
            if any(any(amounts) for amounts in self.shifts.values()):
                rgb = self.shifted(rgb)
            y, chroma = luma(rgb), max(rgb) - min(rgb)
            factor = max(0, self.saturation * (1 + self.vibrance * (1 - chroma)))
            rgb = [y + (c - y) * factor for c in rgb]
        return [unit(c) for c in self.graded(rgb)]

    def is_identity(self):
        n = self.number
        if any(n(key) for key in ("Clarity2012", "Texture", "PostCropVignetteAmount")) or n("GrainAmount") > 0:
            return False
        levels = (0, 0.2, 0.45, 0.7, 1)
        return all(
            max(abs(a - b) for a, b in zip(self.apply([r, g, b]), (r, g, b))) < 1 / 510
            for r in levels for g in levels for b in levels
        )


def random_curve(chance):
    size = chance.randint(1, 7)
    values = [chance.choice((0, 255, chance.randint(0, 255))) for _ in range(2 * size)]
    return values + [chance.randint(0, 255)] * (chance.random() < 0.1)


def random_settings(chance):
    """Some of all settings, so that each effect also stands alone at times."""
    share = chance.choice((0.02, 0.1, 0.4, 1))
    scale = chance.choice((0.01, 1, 1, 1))
    settings = {}

    def offer(key, low, high):
        if chance.random() < share:
            settings[key] = round(chance.uniform(low, high) * scale, chance.choice((0, 2)))

    def offer_choice(key, *values):
        if chance.random() < share:
            settings[key] = chance.choice(values)

    offer_choice("WhiteBalance", "As Shot", "Custom", "Daylight")
    offer_choice("Temperature", 2500.0, 5500.0, 9000.0, 0.0, -3.0)
    offer_choice("CameraProfile", "Adobe Vivid", "adobe vivid", "Adobe Color")
    offer_choice("ConvertToGrayscale", True, False, False)
    offer_choice("ColorGradeBlending", 0.0, 50.0, 100.0)
    offer("Exposure2012", -5, 5)
    for key in ("Contrast2012", "Highlights2012", "Shadows2012", "Whites2012", "Blacks2012", "Dehaze", "Saturation",
                "Vibrance", "Tint", "IncrementalTemperature", "IncrementalTint", "ColorGradeBalance",
                "SplitToningBalance", "ParametricShadows", "ParametricDarks", "ParametricLights",
                "ParametricHighlights"):
        offer(key, -100, 100)
    for key, low in (("Shadow", 10), ("Midtone", 40), ("Highlight", 70)):
        if chance.random() < share:
            settings[f"Parametric{key}Split"] = float(chance.randint(low, low + 20))
    for band in BANDS:
        for kind in ("GrayMixer", "HueAdjustment", "SaturationAdjustment", "LuminanceAdjustment"):
            offer(kind + band, -100, 100)
    has_grades = chance.random() < 0.5
    for part in PARTS:
        if has_grades:
            offer(f"ColorGrade{part}Sat", 0, 100)
            offer(f"ColorGrade{part}Lum", -100, 100)
        offer(f"ColorGrade{part}Hue", 0, 360)
        offer(f"SplitToning{part}Hue", 0, 360)
        offer(f"SplitToning{part}Saturation", 0, 100)
    for key in CURVES:
        if chance.random() < share / 2:
            settings[key] = random_curve(chance)
    for key in ("Clarity2012", "Texture", "PostCropVignetteAmount", "GrainAmount"):
        if chance.random() < 0.02:
            settings[key] = chance.uniform(-100, 100)
    return settings


def random_colors(chance):
    levels = (0.0, 1.0, 0.04045, 0.5, 1 / 3)
    colors = [[chance.choice((chance.random(), chance.choice(levels))) for _ in range(3)] for _ in range(60)]
    return colors + [[x, x, x] for x in (0.0, 0.02, 0.5, 1.0)] + [[0.5, 0.5, 0.5002], [1.0, 0.0, 1.0]]


def lua_text(settings):
    def literal(value):
        if isinstance(value, list):
            return "{ " + ", ".join(map(str, value)) + " }"
        return json.dumps(value)

    entries = "".join(f"\t\t\t{key} = {literal(value)},\n" for key, value in settings.items())
    return f's = {{\n\ttype = "Develop",\n\tvalue = {{\n\t\tsettings = {{\n{entries}\t\t}},\n\t}},\n}}\n'


def xmp_text(settings):
    attributes, elements = "", ""
    for key, value in settings.items():
        if isinstance(value, list):
            points = "".join(f"<rdf:li>{x}, {y}</rdf:li>" for x, y in zip(value[0::2], value[1::2]))
            elements += f"<crs:{key}><rdf:Seq>{points}</rdf:Seq></crs:{key}>"
        else:
            text = f"{value:+}" if isinstance(value, float) else str(value)
            attributes += f' crs:{key}="{text}"'
    return (
        '<rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">'
        '<rdf:Description xmlns:crs="http://ns.adobe.com/camera-raw-settings/1.0/" crs:HasSettings="True"'
        f"{attributes}>{elements}</rdf:Description></rdf:RDF>"
    )


def main():
    program = sys.argv[1]
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 300
    chance = random.Random(int(sys.argv[3]) if len(sys.argv) > 3 else 1)
    worst, identities, changed = 0.0, 0, 0

    def run(*arguments):
        return subprocess.run([program, *map(str, arguments)], check=True, capture_output=True, text=True).stdout

    with tempfile.TemporaryDirectory() as folder:
        for index in range(count):
            settings = random_settings(chance)
            is_lua = chance.random() < 0.5
            preset = Path(folder, "preset.lrtemplate" if is_lua else "preset.xmp")
            preset.write_text(lua_text(settings) if is_lua else xmp_text(settings))
            amount = chance.choice((1, 1, 0, 0.5, chance.random()))
            colors = random_colors(chance)
            inputs = Path(folder, "colors")
            inputs.write_text("".join("%.17g %.17g %.17g\n" % tuple(color) for color in colors))
            output = run("look", "--preset", preset, "--amount", repr(amount), "--colors", inputs)
            results = [list(map(float, line.split())) for line in output.splitlines()]
            look = Look(settings)
            wanted = [[c + (d - c) * amount for c, d in zip(color, look.apply(color))] for color in colors]
            assert len(results) == len(colors), f"{len(results)} colours came back"
            difference = max(abs(a - b) for pair in zip(results, wanted) for a, b in zip(*pair))
            worst = max(worst, difference)
            assert difference <= TOLERANCE, f"preset {index} is off by {difference}: {settings}"
            described = json.loads(run("preset", preset, "--json"))["look"]
            assert described["isIdentity"] == look.is_identity(), f"preset {index}: {settings}"
            identities += described["isIdentity"]
            changed += any(abs(a - b) > 0.01 for pair in zip(colors, wanted) for a, b in zip(*pair))
    print(f"{count} presets, {identities} of them identities, {changed} clearly visible; off by {worst:.1e} at most")
    assert 0 < identities < count / 2 < changed, "the presets are no good sample"


if __name__ == "__main__":
    main()
