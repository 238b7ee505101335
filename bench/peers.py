#!/usr/bin/python3
"""How soon photos are on the screen, beside other image viewers that are installed: bench/peers.py FOLDER

Starts each program with the folder on a virtual screen of its own and looks at that screen many times a second.
"first" is when the first photos can be seen, "all" when nothing moves any more, both in milliseconds from the
start; "next" is from a press of the key for it until the next photo stands still in full. Wants Xvfb, openbox
and xdotool; settings and caches of the programs start empty.
"""

import ctypes
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

WIDTH, HEIGHT, STEP = 1920, 1200, 12
COLOURED = 24  # the interfaces are grey, or nearly
FIRST, CALM, PATIENCE = 0.02, 1.2, 60.0


class Screen:
    """A virtual screen and quick looks at it."""

    class _Image(ctypes.Structure):
        _fields_ = [("width", ctypes.c_int), ("height", ctypes.c_int), ("xoffset", ctypes.c_int),
                    ("format", ctypes.c_int), ("data", ctypes.POINTER(ctypes.c_ubyte))]

    def __init__(self):
        reading, writing = os.pipe()
        self._server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{WIDTH}x{HEIGHT}x24", "-nolisten", "tcp"],
            pass_fds=[writing], stderr=subprocess.DEVNULL)
        self.name = ":" + os.read(reading, 16).decode().strip()
        self._manager = subprocess.Popen(["openbox"], env={**os.environ, "DISPLAY": self.name},
                                         stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        time.sleep(0.5)
        self._x = ctypes.CDLL("libX11.so.6")
        self._x.XOpenDisplay.restype = ctypes.c_void_p
        self._display = ctypes.c_void_p(self._x.XOpenDisplay(self.name.encode()))
        self._x.XDefaultRootWindow.restype = ctypes.c_ulong
        self._root = self._x.XDefaultRootWindow(self._display)
        self._x.XGetImage.restype = ctypes.POINTER(self._Image)

    def look(self):
        """The colours of a coarse raster of points."""
        image = self._x.XGetImage(self._display, ctypes.c_ulong(self._root), 0, 0, WIDTH, HEIGHT,
                                  ctypes.c_ulong(0xFFFFFF), 2)
        pixels = ctypes.string_at(image.contents.data, WIDTH * HEIGHT * 4)
        self._x.XDestroyImage(image)
        return b"".join(pixels[y * WIDTH * 4:(y + 1) * WIDTH * 4:][i:i + 3]
                        for y in range(0, HEIGHT, STEP) for i in range(0, WIDTH * 4, STEP * 4))

    def close(self):
        self._manager.terminate()
        self._server.terminate()
        self._server.wait()


def coloured(look):
    points = len(look) // 3
    vivid = sum(1 for i in range(0, len(look), 3)
                if max(look[i:i + 3]) - min(look[i:i + 3]) > COLOURED)
    return vivid / points


def watch(screen, start, before=None):
    """(first, last change) in seconds after `start`, once the screen has been calm for a while."""
    first, last, seen = None, start, before if before is not None else screen.look()
    while time.monotonic() - last < CALM or (first is None and time.monotonic() - start < PATIENCE):
        now = screen.look()
        when = time.monotonic()
        if now != seen:
            seen, last = now, when
        if first is None and coloured(now) > FIRST:
            first = when
        if when - start > PATIENCE:
            break
    return (first or last) - start, last - start


def measure(name, command, photos, opens_photo=None, next_key="Right"):
    screen = Screen()
    home = tempfile.mkdtemp()
    environment = {**os.environ, "DISPLAY": screen.name, "HOME": home, "XDG_CONFIG_HOME": home + "/config",
                   "XDG_CACHE_HOME": home + "/cache", "XDG_DATA_HOME": home + "/data", "QT_QPA_PLATFORM": "xcb",
                   "XDG_RUNTIME_DIR": home}
    started = time.monotonic()
    program = subprocess.Popen(command + [photos], env=environment, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    try:
        first, last = watch(screen, started)
        steps = []
        if opens_photo:
            subprocess.run(opens_photo, env=environment, check=False)
            watch(screen, time.monotonic())
        for _ in range(7):
            before = screen.look()
            pressed = time.monotonic()
            subprocess.run(["xdotool", "key", next_key], env=environment, check=False)
            steps.append(watch(screen, pressed, before)[1])
        print(f"{name:32} first {first * 1000:7.0f}   all {last * 1000:7.0f}   "
              f"next {statistics.median(steps) * 1000:6.0f}   (longest {max(steps) * 1000:.0f})", flush=True)
    finally:
        program.kill()
        program.wait()
        screen.close()
        shutil.rmtree(home, ignore_errors=True)


def main():
    folder = os.path.abspath(sys.argv[1])
    here = os.path.dirname(os.path.abspath(__file__))
    kelvara = os.path.join(here, "..", "build", "release", "src", "app", "kelvara")
    photo = next(os.path.join(base, name) for base, _, names in sorted(os.walk(folder))
                 for name in sorted(names) if name.lower().endswith((".jpg", ".jpeg")))
    measure("Kelvara, folder", [kelvara, "--size", "1700x1100"], folder, ["xdotool", "key", "space"])
    for name in ("gwenview", "geeqie", "qimgv"):
        if not shutil.which(name):
            print(f"{name:32} is not installed")
            continue
        if name != "qimgv":  # which shows one photo at a time
            measure(f"{name}, folder", [name], os.path.dirname(photo))
        measure(f"{name}, photo", [name], photo, next_key="Next" if name == "geeqie" else "Right")


if __name__ == "__main__":
    main()
