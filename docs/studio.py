"""What the manual's pictures are taken with: a desktop in fixed colours, a stage and a camera."""

import os
import re
import time

from desktop import wait_for

WALLPAPER = "#c3c9d4"
MARGIN = 16  # of wallpaper round several windows


def colours(window, view, button, text, dim, link, selection):
    """The desktop's colours as KDE keeps them; the toolkit reads them itself."""
    return "".join(f"[Colors:{area}]\nBackgroundNormal={ground}\nBackgroundAlternate={ground}\n"
                   f"ForegroundNormal={words}\nForegroundInactive={dim}\n"
                   f"ForegroundLink={link}\nForegroundVisited=155,89,182\n"
                   for area, ground, words in [("Window", window, text), ("View", view, text),
                                               ("Button", button, text), ("Tooltip", window, text),
                                               ("Selection", selection, "255,255,255")])


LIGHT = colours("241,243,245", "255,255,255", "241,243,245", "27,30,34", "120,125,130",
                "29,91,158", "42,102,174")
DARK = colours("42,46,50", "32,35,38", "49,54,59", "239,240,241", "150,155,160",
               "111,174,230", "48,111,180")
DESKTOP = {"XDG_CURRENT_DESKTOP": "KDE", "KDE_SESSION_VERSION": "5"}

# Window frames that leave the stage to what they hold.
FRAMES = """
border.width: 1
padding.width: 8
padding.height: 6
window.handle.width: 0
window.client.padding.width: 0
window.label.text.justify: center
window.active.border.color: {edge}
window.inactive.border.color: {edge}
window.*.title.bg: flat solid
window.*.title.bg.color: {ground}
window.*.title.separator.color: {line}
window.*.label.bg: parentrelative
window.active.label.text.color: {text}
window.inactive.label.text.color: {dim}
window.*.button.*.bg: parentrelative
window.active.button.*.image.color: {text}
window.inactive.button.*.image.color: {dim}
"""
LIGHT_FRAMES = {"edge": "#9aa0a8", "ground": "#e1e4e8", "line": "#d5d8dd", "text": "#1b1e22",
                "dim": "#666b72"}
DARK_FRAMES = {"edge": "#17191b", "ground": "#32373c", "line": "#24282b", "text": "#eff0f1",
               "dim": "#9ba0a5"}


def dress(home, dark=False):
    """Puts colours and frames where desktop and window manager find them."""
    (home / "config/kdeglobals").write_text(DARK if dark else LIGHT)
    theme = home / "data/themes/Plain/openbox-3"
    theme.mkdir(parents=True, exist_ok=True)
    frames = DARK_FRAMES if dark else LIGHT_FRAMES
    (theme / "themerc").write_text(FRAMES.format_map(frames))
    settings = home / "config/openbox/rc.xml"
    settings.parent.mkdir(exist_ok=True)
    with open("/etc/xdg/openbox/rc.xml", encoding="utf-8") as usual:
        settings.write_text(usual.read().replace("<name>Clearlooks</name>", "<name>Plain</name>"))


A_DAY = 24 * 60 * 60
THE_DAY = time.mktime((*time.localtime()[:3], 9, 26, 0, 0, 0, -1)) - 8 * A_DAY

# What the sample server shows besides its own: the size, and how many days it is older.
MORE = {"Drafts": (None, 11), "Letters": (None, 14), "Web site 2025": (None, 73),
        "notes.txt": (14, 0), "report-2026-02.pdf": (1_843_200, 13),
        "site-backup-2026-03-01.tar.gz": (48_300_000, 13), "wide photo.jpg": (3_412_000, 20)}


def age(root):
    """Makes everything there some days old."""
    for path in [root, *root.rglob("*")]:
        day = THE_DAY - A_DAY * MORE.get(path.name, (0, 0))[1]
        os.utime(path, (day, day), follow_symlinks=False)


def stock(root):
    """Gives the sample server more to show."""
    samples = root / "Samples"
    (root / "Pictures" / "newest.png").symlink_to("Colour 3.png")
    (samples / "latest.csv").symlink_to("table.csv")
    for name, (size, _) in MORE.items():
        if size is None:
            (samples / name).mkdir()
        else:
            with open(samples / name, "wb") as file:
                file.truncate(size)
    age(root)


class Studio:
    """The screen, and the pictures taken of it."""

    def __init__(self, screen, folder, target):
        self.screen, self.target = screen, target
        self.scratch = folder / "screen.png"
        self.width, self.height = map(int, screen.run("xdotool", "getdisplaygeometry").split())
        screen.run("display", "-window", "root", f"xc:{WALLPAPER}")
        self.rest()

    def rest(self):
        """Takes the pointer out of the pictures."""
        self.screen.run("xdotool", "mousemove", self.width - 1, self.height - 1)

    def keys(self, window, *keys):
        self.screen.run("xdotool", "windowactivate", "--sync", window)
        self.screen.run("xdotool", "key", "--delay", 60, *keys)

    def click(self, window, x, y, button=1):
        """Clicks into a window, at a place from its left or, where it is negative, its right."""
        self.screen.run("xdotool", "windowactivate", "--sync", window)
        left, top, right, _ = self.inside(window)
        self.screen.run("xdotool", "mousemove", (left if x >= 0 else right) + x, top + y, "click",
                        button)
        self.rest()

    def fill(self, window, *texts):
        """Fills fields in their order, from the one that has the focus."""
        for number, text in enumerate(texts):
            if number:
                self.keys(window, "Tab")
            self.screen.type(window, text)

    def windows(self):
        return set(self.screen.run("xdotool", "search", "--onlyvisible", "--name", ".").split())

    def ask(self, window, *keys):
        """The window that the keys bring up, whatever its title."""
        before = self.windows()
        self.keys(window, *keys)
        asked = wait_for(f"a window after {keys}", lambda: self.windows() - before).pop()
        time.sleep(0.5)
        return asked

    def inside(self, window):
        place = dict(re.findall(r"^ *([\w -]+): +(-?\d+)$", self.screen.run(
            "xwininfo", "-id", window), re.MULTILINE))
        x, y, width, height = (int(place[name]) for name in (
            "Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))
        return x, y, x + width, y + height

    def box(self, window):
        """Where the window stands, its frame included."""
        x, y, end_x, end_y = self.inside(window)
        left, right, top, bottom = map(int, re.findall(r"\d+", self.screen.run(
            "xprop", "-id", window, "-notype", "_NET_FRAME_EXTENTS")))
        return x - left, y - top, end_x + right, end_y + bottom

    def move(self, window, left, top):
        self.screen.run("xdotool", "windowmove", window, left, top)

    def dismiss(self, window):
        self.keys(window, "Escape")
        wait_for("a window to go", lambda: window not in self.windows())
        time.sleep(0.3)

    def with_menu(self, name, window, *keys, more=(0, 0, 0, 0)):
        """A picture of the window with the menu that the keys open."""
        self.keys(window, *keys)
        time.sleep(0.3)
        self.shoot(name, window, more=more)
        self.keys(window, "Escape", "Escape")  # the menu, and the menu bar
        time.sleep(0.5)

    def shoot(self, name, *windows, more=(0, 0, 0, 0), moving=False):
        """Saves what shows of the windows, and `more` pixels to the left, above and so on; where
        something moves all the time, as it happens to be."""
        margin = MARGIN if len(windows) > 1 else 0
        boxes = [self.box(window) for window in windows]
        left, top = (max(min(box[i] for box in boxes) - more[i] - margin, 0) for i in (0, 1))
        right, bottom = (max(box[i] for box in boxes) + more[i] + margin for i in (2, 3))
        self.cut(name, left, top, right, bottom, moving)

    def cut(self, name, left, top, right, bottom, moving=False):
        if moving:
            self.screen.run("import", "-window", "root", self.scratch)
        else:
            self.screen.picture(self.scratch)
        target = self.target / f"{name}.png"
        self.screen.run("convert", self.scratch, "-crop",
                        f"{right - left}x{bottom - top}+{left}+{top}", "+repage", "+dither",
                        "-colors", 128, "-strip", "-define", "png:compression-level=9",
                        f"PNG8:{target}")
        print(f"{target.name}: {target.stat().st_size} bytes")
