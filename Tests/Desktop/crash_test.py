"""A skin that ends the program takes no other with it. Arguments: ostrel-gui, ostrel."""
import signal
import subprocess

from desktop import PATIENCE_SECONDS, wait_for
from widget_test import GUI, WidgetTest, main

GOOD = "[Rainmeter]\nUpdate=100\n[Box]\nMeter=Image\nW=40\nH=20\nSolidColor=0,0,200\n"
# Sound for nine ticks, and then a number that no integer holds.
BAD = """[Rainmeter]
Update=50
[Tick]
Measure=Calc
Formula=Tick+1
[End]
Measure=Calc
Formula=TRUNC(Tick*1e18)
[Box]
Meter=Image
W=40
H=20
SolidColor=200,0,0
"""


class CrashTest(WidgetTest):
    def run_again(self, *arguments):
        subprocess.run([GUI, *arguments], env=dict(self.desktop.environment, **self.desktop.config()),
                       timeout=PATIENCE_SECONDS)

    def ends(self, program):
        """How often it has ended and gone on in the same process, by what each start was told."""
        with open(f"/proc/{program.pid}/environ", "rb") as environment:
            for entry in environment.read().split(b"\0"):
                if entry.startswith(b"OSTREL_EARLIER_END="):
                    return entry.split(b";")[0].count(b",") + 1
        return 0

    def test_goes_on_without_the_skin_that_ended_it(self):
        desktop = self.open_desktop(compositor=False)
        good = [desktop.write(f"Good/{i}.ini", GOOD) for i in range(9)]
        bad = desktop.write("Bad/Bad.ini", BAD)
        program, panels = self.launch(*good, count=9, **desktop.config())
        before = sorted(desktop.geometry(panel) for panel in panels)
        for count in (1, 2):
            self.run_again(bad)
            wait_for("the end", lambda: self.ends(program) == count)
            panels = wait_for("the others", lambda: self.shown(program, 9))
            self.assertEqual(sorted(desktop.geometry(panel) for panel in panels), before)
        self.assertIsNone(desktop.main_window())
        self.run_again(bad)
        wait_for("the end", lambda: self.ends(program) == 3)
        wait_for("a start without widgets", lambda: desktop.main_window() and not desktop.panels())
        self.assertIsNone(program.poll())
        self.assert_ends(program, signal.SIGTERM)


if __name__ == "__main__":
    main()
