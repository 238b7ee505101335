#!/usr/bin/env python3
"""Compares auto tone with a solver of its own: auto_tone_reference.py KELVARA_CLI KELVARA_SAMPLECARD [SEED].

Has kelvara-cli find the edits of painted photos, as they are and through random presets, and demands the same
numbers from the same levels of brightness.
"""

import json
import random
import subprocess
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True  # the sources stay as they are
from look_reference import Look, luma, random_settings, xmp_text

KEYS = ["exposure", "contrast", "highlights", "shadows", "whites", "blacks"]
TOLERANCE = 1e-9


def clamp(x, low, high):
    return min(max(x, low), high)


def rounded(x):
    """Halves away from zero."""
    return int(abs(x) + 0.5) * (1 if x > 0 else -1)


def crossing(low, high, is_below):
    while high - low > 0.01:
        middle = (low + high) / 2
        if is_below(middle):
            low = middle
        else:
            high = middle
    return rounded((low + high) / 2 / 0.01) * 0.01


def first_reaching(bins, share):
    total = 0
    for level, fraction in enumerate(bins):
        total += fraction
        if total >= share:
            return level
    return None


def solve(bins, settings, amount):
    look = Look(settings) if settings is not None else None
    shown = []  # each grey as the preset alone draws it
    for level in range(256):
        grey = [level / 255] * 3
        if look and amount > 0 and not look.is_identity():
            grey = [c + (d - c) * amount for c, d in zip(grey, look.apply(grey))]
        shown.append(grey)

    def curve(**edits):
        edits = {k: v for k, v in edits.items() if abs(v) >= (0.005 if k == "exposure" else 0.5)}
        if not edits:
            return [luma(c) for c in shown]
        after = Look({key.title() + "2012": value for key, value in edits.items()})
        return [luma(after.apply(c)) for c in shown]

    def share(response, condition):
        return sum(fraction for fraction, y in zip(bins, response) if condition(y))

    def clipped(exposure):
        return share(curve(exposure=exposure), lambda y: y >= 0.995)

    median = first_reaching(bins, 0.5)
    highest, pull = (0.7, 0.35) if median < 40 else (1.5, 0.7)
    now = curve()[median]
    target = now + pull * (0.42 - now)
    if curve(exposure=-1.5)[median] >= target:
        exposure = -1.5
    elif curve(exposure=highest)[median] <= target:
        exposure = highest
    else:
        exposure = crossing(-1.5, highest, lambda e: curve(exposure=e)[median] < target)

    allowance = max(0.005, clipped(0))
    if clipped(exposure) > allowance and exposure != -1.5:
        if clipped(-1.5) >= allowance:
            exposure = -1.5
        else:
            exposure = crossing(-1.5, exposure, lambda e: clipped(e) < allowance)

    response = curve(exposure=exposure)
    mean = sum(fraction * y for fraction, y in zip(bins, response))
    spread = sum(fraction * (y - mean) ** 2 for fraction, y in zip(bins, response)) ** 0.5
    contrast = clamp((0.22 - spread) * 150, -20, 30)
    response = curve(exposure=exposure, contrast=contrast)
    white, black = first_reaching(bins, 0.995), first_reaching(bins, 0.005)
    others = [
        contrast,
        -clamp((share(response, lambda y: y > 0.85) - 0.05) * 300, 0, 60),
        clamp((share(response, lambda y: y < 0.12) - 0.2) * 80, 0, 30),
        clamp((0.95 - response[white]) * 150, -30, 30) if white is not None and white < 254 else 0,
        -clamp((response[black] - 0.03) * 400, 0, 30),
    ]
    return [exposure if abs(exposure) >= 0.005 else 0] + [rounded(x) if abs(x) >= 0.5 else 0 for x in others]


def main():
    program, samplecard = sys.argv[1:3]
    chance = random.Random(int(sys.argv[3]) if len(sys.argv) > 3 else 1)
    solved, kinds = 0, set()
    with tempfile.TemporaryDirectory() as folder:
        card, preset = Path(folder, "card"), Path(folder, "preset.xmp")
        subprocess.run([samplecard, card, "--scale", "0.05"], check=True, capture_output=True)
        photos = sorted(card.glob("DCIM/100KELVA/KEL*.JPG"))[:14]
        assert len(photos) >= 10
        for photo in photos:
            for settings in (None, {"Exposure2012": -4.0}, random_settings(chance)):
                amount = chance.choice((1, 0.5, chance.random()))
                arguments = [program, "auto-tone", photo, "--json"]
                if settings is not None:
                    preset.write_text(xmp_text(settings))
                    arguments += ["--preset", preset, "--amount", repr(amount)]
                result = json.loads(subprocess.run(arguments, check=True, capture_output=True).stdout)
                found = [result["edits"][key] for key in KEYS]
                wanted = solve(result["luminance"], settings, amount)
                difference = max(abs(a - b) for a, b in zip(found, wanted))
                assert difference <= TOLERANCE, f"{photo.name}: {found}, not {wanted}, with {amount} of {settings}"
                solved += 1
                kinds.update(key for key, value in zip(KEYS, wanted) if value)
    print(f"{solved} times the same edits")
    assert kinds == set(KEYS), f"only {kinds} were ever set"


main()
