"""What skins start and throw away, with the real application: programs and the trash of a home of its own."""
import os
import signal

from desktop import wait_for
from widget_test import WidgetTest, main

SKIN = """[Rainmeter]
Update=1000
OnRefreshAction=[!CommandMeasure Long Run][!CommandMeasure Short Run]

[Long]
Measure=Plugin
Plugin=RunCommand
Program=long
Parameter="two words" 'and $HOME'

[Short]
Measure=Plugin
Plugin=RunCommand
Program=short

[Trash]
Measure=Plugin
Plugin=RecycleManager
Drives=~

[Button]
Meter=Shape
Shape=Rectangle 0,0,100,60 | Fill Color 0,200,0 | StrokeWidth 0
LeftMouseUpAction=[!CommandMeasure Trash EmptyBin][!CommandMeasure Short Run]
"""
LONG = """#!/bin/sh
mkfifo "$0.end"
printf '<%s>' "$@" > "$0.part"
mv "$0.part" "$0.started"
read line < "$0.end"
touch "$0.ended"
"""
SHORT = """#!/bin/sh
echo >> "$0.runs"
"""
TRASH = ".local/share/Trash/"


def children(process):
    """State and name of those that are not yet reaped."""
    found = []
    for pid in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{pid}/stat", encoding="utf-8", errors="replace") as file:
                name, rest = file.read().rsplit(")", 1)
        except OSError:
            continue
        state, parent = rest.split()[:2]
        if int(parent) == process.pid:
            found.append((state, name.split("(", 1)[1]))
    return found


class PluginTest(WidgetTest):
    def program(self, name, text):
        path = self.desktop.write(f"skin/{name}", text)
        os.chmod(path, 0o700)
        return path

    def runs(self):
        path = os.path.join(self.desktop.folder, "skin/short.runs")
        return len(open(path, encoding="utf-8").readlines()) if os.path.exists(path) else 0

    def test_starts_programs_that_outlive_it_and_empties_the_trash(self):
        self.open_desktop()
        self.desktop.environment.pop("XDG_DATA_HOME", None)
        long = self.program("long", LONG)
        self.program("short", SHORT)
        for name in ("files/a", "files/folder/b", "info/a.trashinfo", "info/folder.trashinfo"):
            self.desktop.write(TRASH + name, "x")
        precious = self.desktop.write("precious", "x")
        os.symlink(precious, os.path.join(self.desktop.folder, TRASH, "files/link"))
        skin = self.desktop.write("skin/skin.ini", SKIN)
        program, (panel,) = self.launch(skin)

        wait_for("the program", lambda: os.path.exists(long + ".started"))
        with open(long + ".started", encoding="utf-8") as file:
            self.assertEqual(file.read(), "<two words><and $HOME>")
        wait_for("the short one's run", lambda: self.runs() == 1)
        # Nothing of it is left while the other runs.
        wait_for("the short one's end", lambda: "short" not in [name for _, name in children(program)])
        self.assertIn("long", [name for _, name in children(program)])

        x, y = self.desktop.geometry(panel)[:2]
        self.desktop.point(x + 50, y + 30)
        self.desktop.output("xdotool", "click", "1")
        folder = os.path.join(self.desktop.folder, TRASH)
        wait_for("the empty trash", lambda: not os.listdir(folder + "files") and not os.listdir(folder + "info"))
        self.assertTrue(os.path.exists(precious))
        wait_for("the second run", lambda: self.runs() == 2)
        wait_for("its end", lambda: "Z" not in [state for state, _ in children(program)])

        self.assert_ends(program, signal.SIGINT)
        self.assertFalse(os.path.exists(long + ".ended"))
        with open(long + ".end", "w", encoding="utf-8") as end:
            end.write("now\n")
        wait_for("the program's own end", lambda: os.path.exists(long + ".ended"))


if __name__ == "__main__":
    main()
