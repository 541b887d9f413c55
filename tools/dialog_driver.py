"""Windows programs on the X display of tools/with-display: their dialogs, keys typed into them, and what the screen
shows."""

import json
import os
import struct
import subprocess
import time
import zlib

# What the input box calls its controls.
CONTROLS = {1: "cmdOK", 2: "cmdCancel", 101: "lblQuestion", 102: "txtNumValue", 103: "txtStrValue", 104: "lblRange",
            105: "lblReturnValue", 106: "lblReason", 107: "lblValueCaption"}
PATIENCE = 20


def wait_for(condition, what):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        result = condition()
        if result:
            return result
        time.sleep(0.03)
    raise TimeoutError(f"no {what} in {PATIENCE} s")


class Dialog:
    """What a dialog showed at one moment. Areas are left, top, right, bottom on the screen."""

    def __init__(self, description):
        self.title = description["title"]
        self.area = description["area"]
        self.parts = description["controls"]
        self.named = {CONTROLS.get(part["id"]): part for part in self.parts}

    def __getitem__(self, name):
        return self.named[name]["text"]

    def is_visible(self, name):
        return self.named[name]["visible"]

    @property
    def entry(self):
        return self["txtNumValue"] if self.is_visible("txtNumValue") else self["txtStrValue"]

    @property
    def texts(self):
        """The labels of a message box."""
        return [part["text"] for part in self.parts if part["class"] == "Static" and part["visible"] and part["text"]]

    @property
    def buttons(self):
        """The visible buttons from the left, without their marks for keys."""
        shown = [part for part in self.parts if part["class"] == "Button" and part["visible"]]
        return [part["text"].replace("&", "") for part in sorted(shown, key=lambda part: part["area"][0])]

    @property
    def has_icon(self):
        return any(part["icon"] for part in self.parts)

    @property
    def focus(self):
        return next((part["text"].replace("&", "") for part in self.parts if part["focus"]), None)


class Watcher:
    """Tells which dialogs are open."""

    def __init__(self, command):
        self.process = subprocess.Popen([*command, "watch"], stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.stdin.close()
        self.process.wait()

    def dialogs(self):
        self.process.stdin.write(b"\n")
        self.process.stdin.flush()
        return [Dialog(each) for each in json.loads(self.process.stdout.readline())]

    def dialog(self, accepts=lambda _: True):
        """The one open dialog, once it is there, has the focus and is as `accepts` wants it."""

        def present():
            dialogs = [each for each in self.dialogs() if any(part["focus"] for part in each.parts)]
            return dialogs[0] if len(dialogs) == 1 and accepts(dialogs[0]) else None

        return wait_for(present, "such dialog")


def press(*keys):
    """Presses keys by their X names, such as Return, 5, comma, shift+Home."""
    if keys:
        subprocess.run(["xdotool", "key", "--delay", "5", *keys], check=True)


class Screen:
    """The pixels of the display, as its file holds them."""

    def __init__(self):
        with open(os.environ["CORVANE_SCREEN"], "rb") as file:
            data = file.read()
        header = struct.unpack(">25I", data[:100])
        self.line = header[12]
        self.data = data[header[0] + header[19] * 12 :]

    def rows(self, area):
        left, top, right, bottom = area
        for y in range(top, bottom):
            row = self.data[y * self.line + left * 4 : y * self.line + right * 4]
            yield [row[x + 2 : None if x == 0 else x - 1 : -1] for x in range(0, len(row), 4)]

    def count(self, area, colour):
        """The pixels of exactly one colour (red, green, blue) in an area."""
        return sum(row.count(bytes(colour)) for row in self.rows(area))

    def save(self, area, path):
        """Writes an area as PNG; with a palette, which keeps it small, where that is enough."""
        rows = list(self.rows(area))
        palette = sorted({pixel for row in rows for pixel in row})
        if len(palette) <= 256:
            index = {pixel: bytes([number]) for number, pixel in enumerate(palette)}
            rows = [[index[pixel] for pixel in row] for row in rows]
        kind = 3 if len(palette) <= 256 else 2
        picture = b"".join(b"\0" + b"".join(row) for row in rows)

        def chunk(name, content):
            return struct.pack(">I", len(content)) + name + content + struct.pack(">I", zlib.crc32(name + content))

        with open(path, "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n")
            file.write(chunk(b"IHDR", struct.pack(">IIBBBBB", len(rows[0]), len(rows), 8, kind, 0, 0, 0)))
            if kind == 3:
                file.write(chunk(b"PLTE", b"".join(palette)))
            file.write(chunk(b"IDAT", zlib.compress(picture, 9)) + chunk(b"IEND", b""))
