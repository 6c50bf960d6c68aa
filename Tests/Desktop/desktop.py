"""A desktop of its own for one test: X server, window manager, compositor, and the programs under test on it."""
import os
import re
import shutil
import subprocess
import tempfile
import time

import xclient
from pictures import read_png

PATIENCE_SECONDS = 60
SCREEN = (1280, 800)
TOOLS = ["Xvfb", "openbox", "picom", "trayer", "xprop", "xwininfo", "xdotool", "xmessage"]


def wait_for(what, condition):
    """The first true value of the condition; fails when it does not come."""
    end = time.monotonic() + PATIENCE_SECONDS
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain for {what}")
        time.sleep(0.02)


class Desktop:
    def __init__(self, compositor=True, tray=True, screen=SCREEN):
        self.screen = screen
        self.folder = tempfile.mkdtemp(prefix="ostrel-desktop-")
        self.started = []
        self.pointer = None
        self.environment = dict(os.environ, HOME=self.folder, XDG_RUNTIME_DIR=self.folder, LC_ALL="C.UTF-8")
        for name in ("WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "SESSION_MANAGER", "DBUS_SESSION_BUS_ADDRESS",
                     "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"):
            self.environment.pop(name, None)
        # What Qt, fontconfig and the bus keep until the end is none of ours.
        self.environment["ASAN_OPTIONS"] = "detect_leaks=0"
        self.display = self.start_server()
        self.environment["DISPLAY"] = self.display
        self.start(["openbox", "--sm-disable"])
        wait_for("the window manager", lambda: "window id" in self.output("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"))
        self.compositor = self.start_compositor() if compositor else None
        self.tray = self.start_tray() if tray else None

    def start_server(self):
        reading, writing = os.pipe()
        self.start(["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{self.screen[0]}x{self.screen[1]}x24", "-nolisten", "tcp", "-noreset"],
                   pass_fds=[writing])
        os.close(writing)
        with os.fdopen(reading) as numbers:
            return ":" + numbers.readline().strip()

    def start_compositor(self):
        compositor = self.start(["picom", "--config", "/dev/null", "--backend", "xrender", "--no-vsync"])
        # Until then the screen is black.
        wait_for("the compositor", lambda: self.has_compositor() and self.screenshot().pixel(0, 0) != (0, 0, 0))
        return compositor

    def start_tray(self):
        """In the top right corner. Without one the application shows its main window."""
        tray = self.start(["trayer", "--edge", "top", "--align", "right", "--widthtype", "request", "--height", "24"])
        wait_for("the tray", lambda: '"trayer"' in self.output("xwininfo", "-root", "-tree"))
        return tray

    def config(self, name="config"):
        """The environment of a user whose settings are in a folder of that name."""
        return {"XDG_CONFIG_HOME": os.path.join(self.folder, name)}

    def stop_compositor(self):
        self.stop(self.compositor)
        wait_for("the compositor's end", lambda: not self.has_compositor())

    def has_compositor(self):
        return "Compositing Manager" in self.output("xwininfo", "-root", "-tree") or "picom" in self.output(
            "xwininfo", "-root", "-tree")

    def start(self, command, pass_fds=(), **environment):
        process = subprocess.Popen(command, env=dict(self.environment, **environment), pass_fds=pass_fds,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.started.append(process)
        return process

    def stop(self, process):
        process.terminate()
        process.wait(PATIENCE_SECONDS)
        self.started.remove(process)

    def close(self):
        for process in reversed(self.started):
            if process.poll() is None:
                process.kill()
                process.wait()
        shutil.rmtree(self.folder, ignore_errors=True)

    def output(self, *command):
        return subprocess.run(command, env=self.environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True, errors="replace", timeout=PATIENCE_SECONDS).stdout

    def screenshot(self):
        return xclient.screenshot(self.display, *self.screen)

    def write(self, name, text):
        path = os.path.join(self.folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    def windows(self, instance):
        """Windows of our class and that instance, as numbers, those that are on the screen."""
        tree = self.output("xwininfo", "-root", "-tree")
        found = [int(id, 16) for id in re.findall(rf'(0x[0-9a-f]+) [^\n]*"{instance}" "dev\.ostrel\.gui"', tree)]
        return [id for id in found if "IsViewable" in self.output("xwininfo", "-id", hex(id))]

    def panels(self):
        """The widgets."""
        return self.windows("ostrel-gui")

    def main_window(self):
        """None while it is not on the screen."""
        return next(iter(self.windows("ostrel-window")), None)

    def tray_item(self):
        """None while no tray shows it."""
        return next(iter(self.windows("ostrel-tray")), None)

    def geometry(self, window):
        """x, y, width, height, from the screen's top left corner."""
        text = self.output("xwininfo", "-id", hex(window))
        keys = ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")
        return tuple(int(re.search(key + r":\s*(-?\d+)", text).group(1)) for key in keys)

    def property(self, window, name):
        return self.output("xprop", "-id", hex(window), name)

    def point(self, x, y):
        # Pointing where it points already would wait long for a move that does not come.
        if (x, y) != self.pointer:
            self.output("xdotool", "mousemove", "--sync", str(x), str(y))
        self.pointer = (x, y)

    def drag(self, start, end):
        self.point(*start)
        self.output("xdotool", "mousedown", "1")
        for part in (0.3, 0.6, 1):
            self.point(*(round(a + (b - a) * part) for a, b in zip(start, end)))
        self.output("xdotool", "mouseup", "1")

    def rendered(self, cli, skin, *options):
        path = os.path.join(self.folder, "rendered.png")
        subprocess.run([cli, "render", skin, "-o", path, *options], env=self.environment, check=True,
                       timeout=PATIENCE_SECONDS)
        return read_png(path)
