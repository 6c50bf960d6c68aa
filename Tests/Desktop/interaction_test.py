"""Points, clicks, scrolls and types on a widget of the real application. Arguments: ostrel-gui, ostrel."""
import os
import shutil
import signal

from desktop import wait_for
from widget_test import WidgetTest, main

BOX, STEP, TOP = 40, 50, 24

# Boxes in a row and a background to hold on to. What happens is written into the skin's own file or seen as a color.
SKIN = """[Rainmeter]
Update=100
BackgroundMode=2
SolidColor=20,20,20
MouseScrollUpAction=[!WriteKeyValue Log Command up]
[Variables]
Color=0,0,200
[Ask]
Measure=Plugin
Plugin=InputText
X=10
Y=66
W=150
H=20
DefaultValue=replace me
Command1=[!WriteKeyValue Log Answer "$UserInput$"]
OnDismissAction=[!WriteKeyValue Log Dismissed yes]
"""

HOVER, CLICK, REFRESH, FIELD, OPEN = range(5)
BOXES = [
    """SolidColor=200,0,0
MouseOverAction=[!SetOption Box0 SolidColor 0,200,0]
MouseLeaveAction=[!SetOption Box0 SolidColor 0,200,200]
MouseScrollDownAction=[!WriteKeyValue Log Scrolled $MouseX$]""",
    """SolidColor=200,200,0
LeftMouseUpAction=[!WriteKeyValue Log Clicked "$MouseX:$,$MouseY:$"]""",
    """SolidColor=#Color#
LeftMouseUpAction=[!WriteKeyValue Variables Color 200,0,200][!Refresh]""",
    """SolidColor=0,100,0
LeftMouseUpAction=[!CommandMeasure Ask "ExecuteBatch 1"]""",
    """SolidColor=100,100,100
LeftMouseUpAction=ostrel-test://example/path""",
]


def skin_text():
    boxes = [f"[Box{i}]\nMeter=Image\nX={i * STEP}\nY={TOP}\nW={BOX}\nH={BOX}\n{options}\n"
             for i, options in enumerate(BOXES)]
    return SKIN + "".join(boxes) + "[Log]\n"


class InteractionTest(WidgetTest):
    def setUp(self):
        self.open_desktop(compositor=False)
        self.skin = self.desktop.write("Interaction.ini", skin_text())

    def open(self):
        self.program, [self.panel] = self.launch(self.skin)
        self.x, self.y, self.width, self.height = self.desktop.geometry(self.panel)
        # Low on the right, behind the boxes.
        self.background = (self.x + self.width - 10, self.y + self.height - 6)
        self.wait_for_color(HOVER, (200, 0, 0))

    def middle(self, box):
        return self.x + box * STEP + BOX // 2, self.y + TOP + BOX // 2

    def wait_for_color(self, box, color):
        wait_for(f"{color} in box {box}", lambda: self.desktop.screenshot().pixel(*self.middle(box)) == color)

    def wait_for_line(self, line):
        wait_for(line, lambda: line in self.lines())

    def lines(self):
        with open(self.skin, encoding="utf-8") as file:
            return file.read().splitlines()

    def act(self, *words):
        self.desktop.output("xdotool", *words)

    def click(self, point, button="1"):
        self.desktop.point(*point)
        self.act("click", button)

    def test_answers_pointer_and_wheel(self):
        self.open()
        self.desktop.point(*self.middle(HOVER))
        self.wait_for_color(HOVER, (0, 200, 0))
        self.act("click", "5")
        self.wait_for_line("Scrolled=20")
        self.act("keydown", "ctrl", "click", "4", "keyup", "ctrl")
        self.wait_for_line("Command=up")
        self.click(self.middle(CLICK))
        self.wait_for_line("Clicked=20,20")
        self.wait_for_color(HOVER, (0, 200, 200))
        self.click(self.middle(REFRESH))
        self.wait_for_line("Color=200,0,200")
        [self.panel] = wait_for("the panel", lambda: self.shown(self.program, 1))
        self.wait_for_color(REFRESH, (200, 0, 200))
        self.assert_ends(self.program, signal.SIGTERM)

    def test_a_press_on_an_acting_meter_does_not_move_it(self):
        self.open()
        x, y = self.middle(CLICK)
        self.desktop.drag((x, y), (x + 60, y + 20))
        wait_for("the release", lambda: any(line.startswith("Clicked=") for line in self.lines()))
        self.assertEqual(self.desktop.geometry(self.panel)[:2], (self.x, self.y))
        x, y = self.background
        self.desktop.drag((x, y), (x + 50, y - 20))
        wait_for("the move", lambda: self.desktop.geometry(self.panel)[:2] == (self.x + 50, self.y - 20))

    def test_its_menu_freezes_and_ends_it(self):
        self.open()
        self.choose("Down", "Return")
        x, y = self.background
        self.desktop.drag((x, y), (x + 50, y - 20))
        self.click(self.middle(CLICK))
        self.wait_for_line("Clicked=20,20")
        self.assertEqual(self.desktop.geometry(self.panel)[:2], (self.x, self.y), "it moved, though frozen")
        self.choose("Down", "Down", "Return")
        wait_for("its end", lambda: not self.desktop.panels())
        self.assert_ends(self.program, signal.SIGTERM)

    def choose(self, *keys):
        before = self.windows()
        self.click(self.background, "3")
        wait_for("the menu", lambda: self.windows() > before)
        self.act("key", *keys)
        wait_for("the menu's end", lambda: self.windows() <= before)

    def windows(self):
        """How many windows the program shows; a menu is no panel to the window manager."""
        return self.desktop.output("xdotool", "search", "--onlyvisible", "--pid", str(self.program.pid)).count("\n")

    def test_its_field_takes_what_is_typed(self):
        self.open()
        self.open_field()
        self.act("type", "two words")
        self.act("key", "Return")
        self.wait_for_line("Answer=two words")
        wait_for("the field's end", lambda: not self.has_field())

        self.open_field()
        self.act("key", "Escape")
        self.wait_for_line("Dismissed=yes")
        wait_for("the field's end", lambda: not self.has_field())

        self.open_field()
        x, y = self.background
        self.desktop.drag((x, y), (x + 50, y - 20))
        wait_for("the field's end", lambda: not self.has_field())
        self.assertEqual(self.desktop.geometry(self.panel)[:2], (self.x, self.y), "the press outside was not spent")
        self.assert_ends(self.program, signal.SIGTERM)

    def open_field(self):
        self.click(self.middle(FIELD))
        wait_for("the field", self.has_field)
        wait_for("its focus", lambda: "150x20" in self.desktop.output("xdotool", "getwindowfocus", "getwindowgeometry"))

    def has_field(self):
        return self.desktop.screenshot().pixel(self.x + 155, self.y + 69) == (255, 255, 255)

    def test_opens_urls_through_the_desktop(self):
        if not shutil.which("xdg-open"):
            self.skipTest("xdg-open not found")
        opened = os.path.join(self.desktop.folder, "opened")
        handler = self.desktop.write("handler", f'#!/bin/sh\nprintf %s "$1" > {opened}\n')
        self.desktop.write("data/applications/handler.desktop",
                           "[Desktop Entry]\nType=Application\nName=Handler\n"
                           f"Exec=sh {handler} %u\nMimeType=x-scheme-handler/ostrel-test;\n")
        self.desktop.write("config/mimeapps.list",
                           "[Default Applications]\nx-scheme-handler/ostrel-test=handler.desktop\n")
        for name in ("data", "config"):
            self.desktop.environment[f"XDG_{name.upper()}_HOME"] = os.path.join(self.desktop.folder, name)
        self.open()
        self.click(self.middle(OPEN))
        wait_for("the handler", lambda: os.path.exists(opened) and os.path.getsize(opened))
        with open(opened, encoding="utf-8") as file:
            self.assertEqual(file.read(), "ostrel-test://example/path")


if __name__ == "__main__":
    main()
