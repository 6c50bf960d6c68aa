"""The whole application: what is remembered, the tray, the main window in its process. Arguments: ostrel-gui, ostrel."""
import glob
import os
import signal
import subprocess
import zipfile

from desktop import PATIENCE_SECONDS, wait_for
from widget_test import GUI, WidgetTest, main

# A box to hold on to.
SKIN = """[Rainmeter]
Update=1000
BackgroundMode=2
SolidColor=%s
[Box]
Meter=Image
W=200
H=80
SolidColor=%s
"""


def skin(color):
    return SKIN % (color, color)


class ApplicationTest(WidgetTest):
    def setUp(self):
        self.open_desktop(compositor=False, tray="no_tray" not in self.id())
        self.red = self.desktop.write("Skins/Pack/Red.ini", skin("200,0,0"))
        self.blue = self.desktop.write("Skins/Pack/Blue.ini", skin("0,0,200"))

    def run_again(self, *arguments):
        """A later start, which hands over and ends."""
        result = subprocess.run([GUI, *arguments], env=dict(self.desktop.environment, **self.desktop.config()),
                                capture_output=True, text=True, timeout=PATIENCE_SECONDS)
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def start(self, *arguments):
        return self.desktop.start([GUI, *arguments], **self.desktop.config())

    def start_with(self, *skins):
        program, panels = self.launch(*skins, count=max(len(skins), 1), **self.desktop.config())
        wait_for("the tray item", self.desktop.tray_item)
        return program, panels

    def wait_for_window(self):
        return wait_for("the main window", self.desktop.main_window)

    def wait_for_panels(self, program, count):
        return wait_for(f"{count} panels", lambda: count == 0 and not self.desktop.panels() or self.shown(program, count))

    def click(self, window, button):
        x, y, width, height = self.desktop.geometry(window)
        self.desktop.point(x + width // 2, y + height // 2)
        self.desktop.output("xdotool", "click", button)

    def move(self, panel, dx, dy):
        x, y, _, _ = self.desktop.geometry(panel)
        self.desktop.drag((x + 20, y + 20), (x + 20 + dx, y + 20 + dy))
        return wait_for("the move", lambda: self.desktop.geometry(panel)[:2] == (x + dx, y + dy) and (x + dx, y + dy))

    def test_brings_its_widgets_back_and_nothing_else(self):
        program, [panel] = self.start_with(self.red)
        place = self.move(panel, 150, -90)
        self.assert_ends(program, signal.SIGTERM)
        self.assertIsNone(self.desktop.tray_item(), "left in the tray")

        program, [panel] = self.start_with()
        self.assertEqual(self.desktop.geometry(panel)[:2], place)
        place = self.move(panel, 60, -30)
        program.kill()
        program.wait()

        program, [panel] = self.start_with()
        self.assertEqual(self.desktop.geometry(panel)[:2], place)
        self.assertIsNone(self.desktop.main_window())
        self.assertFalse(self.children(program), "a process for a window that nobody wanted")
        self.click(self.desktop.tray_item(), "3")
        wait_for("the menu", lambda: self.count_windows(program) > 1)
        self.desktop.output("xdotool", "key", "Down", "Down", "Return")
        self.assertEqual(program.wait(PATIENCE_SECONDS), 0)
        program, [panel] = self.start_with()
        self.assertEqual(self.desktop.geometry(panel)[:2], place)
        self.assert_ends(program, signal.SIGINT)

    def children(self, program):
        with open(f"/proc/{program.pid}/task/{program.pid}/children", encoding="ascii") as children:
            return children.read().split()

    def count_windows(self, program):
        return self.desktop.output("xdotool", "search", "--onlyvisible", "--pid", str(program.pid)).count("\n")

    def test_a_later_start_hands_over(self):
        program, _ = self.start_with(self.red)
        self.run_again(self.blue)
        panels = self.wait_for_panels(program, 2)
        self.run_again(os.path.relpath(self.blue))
        self.assertEqual(sorted(self.desktop.panels()), sorted(panels), "a running widget is left as it is")
        self.assertIsNone(self.desktop.main_window())
        self.run_again()
        window = self.wait_for_window()
        other = self.desktop.start(["xmessage", "-geometry", "600x500+400+100", "Another window"])
        active = lambda: self.desktop.output("xdotool", "getactivewindow").strip()
        wait_for("another window in front", lambda: active() not in ("", str(window)))
        self.run_again()
        wait_for("the main window in front", lambda: active() == str(window))
        self.desktop.stop(other)
        self.assert_ends(program, signal.SIGTERM)
        wait_for("the window's end", lambda: not self.desktop.main_window())

    def test_shows_the_window_when_there_is_nothing_else(self):
        program = self.start()
        window = self.wait_for_window()
        self.assertIn('"Ostrel"', self.desktop.property(window, "_NET_WM_NAME"))
        self.close_window(window)
        self.assertIsNone(program.poll(), "it stays in the tray")
        self.click(wait_for("the tray item", self.desktop.tray_item), "1")
        self.wait_for_window()
        [child] = self.children(program)
        os.kill(int(child), signal.SIGKILL)
        wait_for("the window's end", lambda: not self.desktop.main_window())
        self.assertIsNone(program.poll(), "a crash of the window harms nothing")
        self.run_again()
        self.wait_for_window()
        [child] = self.children(program)
        program.kill()
        program.wait()
        wait_for("the window's end", lambda: not self.desktop.main_window())
        wait_for("its process's end", lambda: not os.path.exists(f"/proc/{child}"))

    def close_window(self, window):
        self.desktop.output("xdotool", "windowactivate", "--sync", str(window), "key", "alt+F4")
        wait_for("the window's end", lambda: not self.desktop.main_window())

    def test_a_folder_is_listed_and_not_shown(self):
        program = self.start(os.path.join(self.desktop.folder, "Skins"))
        self.wait_for_window()
        self.assertEqual(self.desktop.panels(), [])
        self.assert_ends(program, signal.SIGTERM)

    def test_unpacks_a_package_once_though_its_window_ends_and_comes_back(self):
        package = os.path.join(self.desktop.folder, "Pack.rmskin")
        with zipfile.ZipFile(package, "w") as archive:
            archive.writestr("Skins/Packed/Packed.ini", skin("0,200,0"))
        self.desktop.environment["TMPDIR"] = self.desktop.folder
        program, _ = self.start_with(self.red)
        unpacked = lambda: glob.glob(os.path.join(self.desktop.folder, "OstrelRMSkinExtraction", "*"))
        windows = set()
        for _ in range(2):
            self.run_again(package)
            window = self.wait_for_window()
            [child] = self.children(program)
            windows.add(child)
            wait_for("the package", lambda: len(unpacked()) == 1 and self.is_known(unpacked()[0]))
            # Without a scan the window's process ends with it. The button is the second of the toolbar.
            self.desktop.output("xdotool", "windowactivate", "--sync", str(window))
            self.press("Tab", "Tab", "space")
            self.close_window(window)
            wait_for("the process's end", lambda: not self.children(program))
        self.assertEqual(len(windows), 2)
        self.assertEqual(len(unpacked()), 1)
        self.assert_ends(program, signal.SIGTERM)

    def is_known(self, folder):
        """Whether the session has stored a skin of that folder."""
        for path in glob.glob(os.path.join(self.desktop.folder, "config", "**", "*"), recursive=True):
            if os.path.isfile(path):
                with open(path, "rb") as file:
                    if os.path.basename(folder).encode() in file.read():
                        return True
        return False

    def test_shows_the_window_where_there_is_no_tray(self):
        program, [panel] = self.launch(self.red, **self.desktop.config())
        window = self.wait_for_window()
        self.close_window(window)
        self.assertIsNone(program.poll())
        self.click(panel, "3")
        wait_for("the menu", lambda: self.count_windows(program) > 1)
        self.desktop.output("xdotool", "key", "Down", "Down", "Return")
        self.wait_for_panels(program, 0)
        self.close_window(self.wait_for_window())
        self.assertEqual(program.wait(PATIENCE_SECONDS), 0, "nothing was left to reach it by")

    def test_removes_a_pack_when_it_is_told_so_twice(self):
        program, _ = self.start_with(self.red)
        self.run_again()
        window = self.wait_for_window()
        self.desktop.output("xdotool", "windowactivate", "--sync", str(window))
        # To the library in the sidebar, and through the buttons above to that of the pack.
        self.press("Down", "Up", "Tab", "Tab", "Tab", "Tab")
        self.press("Return", until="Remove Skin Pack? — Ostrel")
        self.press("Return", until="Ostrel")
        self.assertTrue(os.path.exists(self.blue), "Return alone removed it")
        self.press("Return", until="Remove Skin Pack? — Ostrel")
        self.press("Tab", "space", until="Ostrel")
        self.wait_for_panels(program, 0)
        wait_for("the pack's end", lambda: not os.path.exists(os.path.dirname(self.red)))
        self.assertTrue(os.path.exists(os.path.join(self.desktop.folder, "Skins")))
        self.assert_ends(program, signal.SIGTERM)
        program = self.start()
        self.wait_for_window()
        self.assertEqual(self.desktop.panels(), [], "it came back")

    def press(self, *keys, until=None):
        self.desktop.output("xdotool", "key", *keys)
        title = lambda: self.desktop.output("xdotool", "getactivewindow", "getwindowname").strip()
        if until:
            wait_for(f"a window named {until}", lambda: title() == until)

    def test_follows_a_tray_that_is_started_anew(self):
        program, _ = self.start_with(self.red)
        self.desktop.stop(self.desktop.tray)
        wait_for("no item", lambda: not self.desktop.tray_item())
        self.desktop.tray = self.desktop.start_tray()
        wait_for("the tray item", self.desktop.tray_item)
        self.assertIsNone(self.desktop.main_window())
        self.assert_ends(program, signal.SIGTERM)


if __name__ == "__main__":
    main()
