"""The first minute of a new user: all starter skins at once, on screens of several sizes. Arguments: ostrel-gui, ostrel."""
import os
import signal
import subprocess

from desktop import PATIENCE_SECONDS, wait_for
from widget_test import GUI, WidgetTest, main

SKINS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "Skins")
BOX = "[Box]\nMeter=Image\nW=%s\nH=%s\nSolidColor=0,0,200\n"


def starter_skins():
    """Those that `run` shows."""
    with open(os.path.join(SKINS, "..", "run"), encoding="utf-8") as run:
        names = next(line for line in run if line.strip().startswith("for name in")).split(" in ")[1].split(";")[0].split()
    return [os.path.join(SKINS, "Ostrel", name, name + ".ini") for name in names]


def overlapping(frames):
    return [(a, b) for i, a in enumerate(frames) for b in frames[:i]
            if a[0] < b[0] + b[2] and b[0] < a[0] + a[2] and a[1] < b[1] + b[3] and b[1] < a[1] + a[3]]


class StartTest(WidgetTest):
    def test_no_widget_covers_another_while_there_is_room(self):
        for screen in ((1440, 900), (1920, 1080), (2560, 1440)):
            with self.subTest(screen=screen):
                desktop = self.open_desktop(compositor=False, screen=screen)
                # Beside the skins there is room for more; odd sizes are rounded by the window system.
                more = [desktop.write(f"More/{name}.ini", BOX % size)
                        for name, size in (("a", (120.3, 30.7)), ("b", (60.5, 40)))]
                skins = starter_skins()
                program, panels = self.launch(*skins, **desktop.config())
                self.assert_apart(panels)
                subprocess.run([GUI, *more], env=dict(desktop.environment, **desktop.config()), check=True,
                               timeout=PATIENCE_SECONDS)
                panels = wait_for("more panels", lambda: self.shown(program, len(skins) + len(more)))
                self.assert_apart(panels)
                self.assert_ends(program, signal.SIGTERM)
                desktop.close()

    def assert_apart(self, panels):
        frames = [self.desktop.geometry(panel) for panel in panels]
        self.assertEqual(overlapping(frames), [], frames)


if __name__ == "__main__":
    main()
