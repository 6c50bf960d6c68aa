"""What the desktop tests share: the programs under test, and widgets opened on a desktop of their own."""
import os
import shutil
import sys
import tempfile
import unittest

from desktop import PATIENCE_SECONDS, TOOLS, Desktop, wait_for

SKIPPED = 77
GUI, CLI = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])


class WidgetTest(unittest.TestCase):
    def open_desktop(self, **options):
        self.desktop = Desktop(**options)
        self.addCleanup(self.desktop.close)
        return self.desktop

    def launch(self, *skins, count=None, **environment):
        """The program and its panels, once all are on the screen. It remembers nothing, unless a folder is named."""
        if "XDG_CONFIG_HOME" not in self.desktop.environment:
            environment.setdefault("XDG_CONFIG_HOME", tempfile.mkdtemp(dir=self.desktop.folder))
        program = self.desktop.start([GUI, *skins], **environment)
        panels = wait_for("the panels", lambda: self.shown(program, count or len(skins)))
        return program, panels

    def shown(self, program, count):
        self.assertIsNone(program.poll(), "the program ended")
        panels = self.desktop.panels()
        return panels if len(panels) == count else None

    def assert_ends(self, program, by):
        program.send_signal(by)
        self.assertEqual(program.wait(PATIENCE_SECONDS), 0)


def main():
    lacking = [tool for tool in TOOLS if not shutil.which(tool)]
    if lacking:
        # In CI everything is installed; a test that nobody sees skipped checks nothing.
        is_failure = "CI" in os.environ
        print("failed: " if is_failure else "skipped: ", ", ".join(lacking) + " not found", sep="")
        sys.exit(1 if is_failure else SKIPPED)
    unittest.main(module="__main__", argv=sys.argv[:1] + sys.argv[3:], verbosity=2)
