"""Drives the real application on a real X server. Arguments: ostrel-gui, ostrel."""
import os
import signal
import subprocess

from desktop import PATIENCE_SECONDS, wait_for
from widget_test import CLI, GUI, WidgetTest, main
from xclient import DamageCounter

# Stands still; soft edges, text and a half transparent area around a solid one.
STILL = """[Rainmeter]
Update=50
[Card]
Meter=Shape
X=10
Y=24
Shape=Rectangle 0,0,240,90,16 | Fill Color 20,30,40,180 | StrokeWidth 0
[Title]
Meter=String
X=30
Y=40
FontFace=DejaVu Sans
FontSize=22
FontColor=255,220,120
Text=Standing still
[Solid]
Meter=Image
X=30
Y=80
W=60
H=20
SolidColor=0,120,255
"""

COUNTING = """[Rainmeter]
Update=50
[Tick]
Measure=Calc
Formula=Tick+1
[Text]
Meter=String
MeasureName=Tick
Y=24
FontColor=255,255,255
"""

GROWING = """[Rainmeter]
Update=50
[Tick]
Measure=Calc
Formula=Tick+1
IfEqualValue=20
IfEqualAction=[!SetOption Box W 400][!SetOption Box H 300]
[Box]
Meter=Image
Y=24
W=240
H=40
SolidColor=0,120,255
"""


class PanelTest(WidgetTest):
    def assert_shows(self, panel, skin, scale=1):
        """The screen shows what `ostrel render` draws over the desktop's color."""
        x, y, width, height = self.desktop.geometry(panel)
        back = ",".join(map(str, self.desktop.screenshot().pixel(x + width + 5, y + height // 2)))
        expected = self.desktop.rendered(CLI, skin, "--background", back, "--scale", str(scale), "--ticks", "3")
        self.assertEqual((expected.width, expected.height), (width, height))
        # The compositor rounds on its own when it blends.
        found = []

        def same():
            found[:] = [self.desktop.screenshot().cropped(x, y, width, height).difference(expected, 3)]
            return found == [""]

        try:
            wait_for("the picture", same)
        except AssertionError:
            self.fail(found[0])

    def test_is_part_of_the_desktop_and_leaves_the_focus_alone(self):
        desktop = self.open_desktop()
        desktop.start(["xmessage", "-geometry", "300x300+80+480", "A normal window"])
        normal = int(wait_for("a normal window", lambda: desktop.output("xdotool", "search", "--name", "xmessage").strip()))
        wait_for("its focus", lambda: desktop.output("xdotool", "getactivewindow").strip() == str(normal))

        program, [panel] = self.launch(desktop.write("Still.ini", STILL))
        state = desktop.property(panel, "_NET_WM_STATE")
        for flag in ("BELOW", "SKIP_TASKBAR", "SKIP_PAGER"):
            self.assertIn("_NET_WM_STATE_" + flag, state)
        self.assertIn("= 4294967295", desktop.property(panel, "_NET_WM_DESKTOP"))
        self.assertIn("_NET_WM_WINDOW_TYPE_UTILITY", desktop.property(panel, "_NET_WM_WINDOW_TYPE"))
        self.assertIn("input focus: False", desktop.property(panel, "WM_HINTS"))
        self.assertNotIn("WM_TAKE_FOCUS", desktop.property(panel, "WM_PROTOCOLS"))
        self.assertIn('"dev.ostrel.gui"', desktop.property(panel, "WM_CLASS"))
        self.assertIn('"Still.ini"', desktop.property(panel, "_NET_WM_NAME"))
        self.assertIn("= 0, 0, 0, 0", desktop.property(panel, "_NET_FRAME_EXTENTS"))

        stacking = desktop.output("xprop", "-root", "_NET_CLIENT_LIST_STACKING")
        self.assertLess(stacking.index(hex(panel)), stacking.index(hex(normal)), "above a normal window")
        x, y, width, height = desktop.geometry(panel)
        desktop.point(x + width - 5, y + 5)
        desktop.output("xdotool", "click", "1")
        desktop.output("xdotool", "key", "Alt+Tab")
        self.assertEqual(desktop.output("xdotool", "getactivewindow").strip(), str(normal))
        self.assert_ends(program, signal.SIGTERM)

    def test_shows_what_render_draws_and_moves_by_its_background(self):
        desktop = self.open_desktop()
        skin = desktop.write("Still.ini", STILL)
        program, [panel] = self.launch(skin)
        x, y, width, height = desktop.geometry(panel)
        self.assertEqual((x, y + height), (100, 700))
        self.assert_shows(panel, skin)

        desktop.drag((x + 60, y + 40), (x + 260, y - 110))
        wait_for("the move", lambda: desktop.geometry(panel) == (x + 200, y - 150, width, height))
        self.assert_shows(panel, skin)
        self.assert_ends(program, signal.SIGINT)

    def test_is_sharp_on_a_dense_screen(self):
        desktop = self.open_desktop()
        skin = desktop.write("Still.ini", STILL)
        program, [panel] = self.launch(skin, QT_SCALE_FACTOR="2")
        x, y, width, height = desktop.geometry(panel)
        self.assertEqual((x, y + height), (200, 600))
        self.assert_shows(panel, skin, scale=2)
        self.assert_ends(program, signal.SIGTERM)

    def test_grows_from_its_bottom_left_corner(self):
        desktop = self.open_desktop()
        program, [panel] = self.launch(desktop.write("Growing.ini", GROWING))
        x, y, width, height = wait_for("growth", lambda: self.grown(panel))
        self.assertEqual((x, y + height, width, height), (100, 700, 424, 348))
        wait_for("the new picture", lambda: desktop.screenshot().pixel(x + 390, y + 300) == (0, 120, 255))
        self.assert_ends(program, signal.SIGTERM)

    def grown(self, panel):
        geometry = self.desktop.geometry(panel)
        return geometry if geometry[2] > 300 else None

    def test_opens_several_beside_each_other(self):
        desktop = self.open_desktop()
        skins = [desktop.write(f"{name}/Still.ini", STILL) for name in "abc"]
        program, panels = self.launch(*skins)
        frames = sorted(desktop.geometry(panel) for panel in panels)
        for left, right in zip(frames, frames[1:]):
            self.assertLessEqual(left[0] + left[2], right[0])
        self.assert_ends(program, signal.SIGTERM)

    def test_paints_what_changes_and_wakes_for_its_timer_alone(self):
        desktop = self.open_desktop(compositor=False)
        program, [panel] = self.launch(desktop.write("Counting.ini", COUNTING))
        counter = DamageCounter(desktop.display, panel)
        wait_for("changes", lambda: counter.count() >= 10)
        counter.close()
        self.assert_ends(program, signal.SIGTERM)

        program, [panel] = self.launch(desktop.write("Still.ini", STILL))
        self.wait_for_wakes(program, 20)
        counter = DamageCounter(desktop.display, panel)
        before = self.wakes(program, others=True)
        self.wait_for_wakes(program, 40)
        self.assertEqual(counter.count(), 0, "painted though nothing had changed")
        self.assertLess(self.wakes(program, others=True) - before, 20, "another thread wakes with the ticks")
        counter.close()
        self.assert_ends(program, signal.SIGTERM)

    def wakes(self, program, others=False):
        """How often the main thread, or all others together, have gone to sleep."""
        count = 0
        for thread in os.listdir(f"/proc/{program.pid}/task"):
            if (int(thread) != program.pid) == others:
                with open(f"/proc/{program.pid}/task/{thread}/status", encoding="ascii") as status:
                    lines = dict(line.split(":", 1) for line in status if ":" in line)
                count += int(lines["voluntary_ctxt_switches"])
        return count

    def wait_for_wakes(self, program, count):
        start = self.wakes(program)
        wait_for("wakes", lambda: self.wakes(program) >= start + count)

    def test_cuts_out_what_no_compositor_blends(self):
        desktop = self.open_desktop(compositor=False)
        program, [panel] = self.launch(desktop.write("Still.ini", STILL))
        x, y, width, height = desktop.geometry(panel)
        wait_for("the picture", lambda: desktop.screenshot().pixel(x + 60, y + 90) == (0, 120, 255))
        shaped = lambda: "extents:  240x" in desktop.output("xwininfo", "-shape", "-id", hex(panel))
        wait_for("the outline", shaped)
        desktop.compositor = desktop.start_compositor()
        wait_for("no outline", lambda: not shaped())
        desktop.stop_compositor()
        wait_for("the outline again", shaped)
        self.assert_ends(program, signal.SIGTERM)

    def test_tells_what_cannot_be_loaded(self):
        desktop = self.open_desktop(compositor=False)
        missing = os.path.join(desktop.folder, "Missing.ini")
        result = subprocess.run([GUI, missing], env=desktop.environment, capture_output=True, text=True,
                                timeout=PATIENCE_SECONDS)
        self.assertEqual(result.returncode, 1)
        self.assertTrue(result.stderr.startswith(f"ostrel: cannot load {missing}\n"), result.stderr)

        program, _ = self.launch(missing, desktop.write("Still.ini", STILL), count=1)
        self.assert_ends(program, signal.SIGTERM)
        nowhere = dict(desktop.environment, DISPLAY=":9999")
        result = subprocess.run([GUI, desktop.write("Still.ini", STILL)], env=nowhere, capture_output=True, text=True, timeout=PATIENCE_SECONDS)
        self.assertEqual(result.returncode, 1)
        self.assertTrue(result.stderr.startswith("ostrel: "), result.stderr)


if __name__ == "__main__":
    main()
