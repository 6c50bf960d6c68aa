"""Starts the program as an installation has it. Arguments: ostrel-gui, ostrel."""
import glob
import os
import shutil
import signal
import subprocess

from desktop import PATIENCE_SECONDS, wait_for
from widget_test import GUI, WidgetTest, main

BUILD = os.path.normpath(os.path.join(os.path.dirname(GUI), "..", ".."))


class InstallTest(WidgetTest):
    def setUp(self):
        self.open_desktop(compositor=False)
        root = os.path.join(self.desktop.folder, "root")
        self.run_tool("cmake", "--install", BUILD, DESTDIR=root)
        [program] = glob.glob(os.path.join(root, "**", "ostrel-gui"), recursive=True)
        self.prefix = os.path.normpath(os.path.join(os.path.dirname(program), ".."))

    def run_tool(self, *command, **environment):
        result = subprocess.run(command, env=dict(os.environ, **environment), stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT, text=True, timeout=PATIENCE_SECONDS)
        self.assertEqual(result.returncode, 0, result.stdout)
        return result.stdout

    def installed(self, *path):
        path = os.path.join(self.prefix, *path)
        self.assertTrue(os.path.exists(path), path)
        return path

    def test_starts_with_all_its_parts(self):
        for module in ("ostrel-sound.so", "ostrel-remote.so"):
            self.installed("lib", "ostrel", module)
        skin = self.installed("share", "ostrel", "Skins", "Ostrel", "Clock", "Clock.ini")
        self.run_tool(self.installed("bin", "ostrel"), "report", skin, ASAN_OPTIONS="detect_leaks=0")
        program = self.desktop.start([self.installed("bin", "ostrel-gui"), skin])
        wait_for("the widget", lambda: self.shown(program, 1))
        subprocess.run([self.installed("bin", "ostrel-gui")], env=self.desktop.environment, check=True,
                       timeout=PATIENCE_SECONDS)
        wait_for("the main window", self.desktop.main_window)
        with open(f"/proc/{program.pid}/task/{program.pid}/children", encoding="ascii") as children:
            [child] = children.read().split()
        self.assertEqual(os.readlink(f"/proc/{child}/exe"), self.installed("libexec", "ostrel", "ostrel-window"))
        self.assert_ends(program, signal.SIGTERM)

    def test_the_desktop_takes_its_files(self):
        entry = self.installed("share", "applications", "dev.ostrel.gui.desktop")
        self.installed("share", "icons", "hicolor", "scalable", "apps", "dev.ostrel.gui.svg")
        if shutil.which("desktop-file-validate"):
            self.assertEqual(self.run_tool("desktop-file-validate", entry), "")
        if shutil.which("appstreamcli"):
            self.run_tool("appstreamcli", "validate", "--no-net",
                          self.installed("share", "metainfo", "dev.ostrel.gui.metainfo.xml"))
        if not shutil.which("update-mime-database"):
            self.skipTest("update-mime-database not found")
        mime = os.path.dirname(os.path.dirname(self.installed("share", "mime", "packages", "dev.ostrel.gui.xml")))
        self.run_tool("update-mime-database", mime)
        with open(os.path.join(mime, "globs"), encoding="utf-8") as globs:
            kind = next(line.split(":")[0] for line in globs if line.strip().endswith("*.rmskin"))
        with open(entry, encoding="utf-8") as lines:
            self.assertIn(f"MimeType={kind};\n", lines.readlines())


if __name__ == "__main__":
    main()
