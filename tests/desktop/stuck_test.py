"""What hangs holds up nobody else: a picture that is never read to its end, a window server that is stopped."""

import os
import pathlib
import signal
import subprocess
import unittest

from quillmar_desktop import BEFORE, PATIENCE, PROGRAM
from quillmar_desktop import DesktopTest, another_desktop, run, wait_until, x11

COLOR = "#1F6F8B"


def readers():
    """The processes that read pictures at present."""
    names = {}
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            names[int(folder.name)] = (folder / "comm").read_text().strip()
        except OSError:
            continue
    return {pid for pid, name in names.items() if name == "quillmar-render"}


class StuckTest(DesktopTest):
    def command(self, *words):
        return subprocess.Popen(
            [PROGRAM, *words], env=self.environment, text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE
        )

    def run_command(self, *words):
        return run(PROGRAM, *words, env=self.environment)

    def test_a_picture_that_is_never_read_to_its_end_holds_up_no_other_display_nor_the_end(self):
        picture = self.home / "slow.svg"
        circles = "".join(f'<circle cx="{i % 997}" cy="{i % 991}" r="{i % 400}" opacity=".1"/>' for i in range(150_000))
        picture.write_text(f'<svg xmlns="http://www.w3.org/2000/svg" width="1000" height="1000">{circles}</svg>')
        before = readers()
        program = self.start_and_wait()
        stuck = self.command("wallpaper", "set", "DUMMY0", "image", str(picture))
        wait_until("a reader at work", lambda: readers() - before, program)
        self.assertEqual(self.run_command("wallpaper", "set", "DUMMY1", "colour", COLOR).returncode, 0)
        self.assertEqual([x11.color(*point) for point in self.POINTS], [BEFORE, COLOR])
        self.assertIn("DUMMY1", self.run_command("status").stdout)
        self.assertIsNone(stuck.poll())
        self.assertEqual(self.run_command("quit").returncode, 0)
        self.assertEqual(program.status(), 0, program.complaint())
        self.assertEqual(stuck.communicate(timeout=PATIENCE)[1], "quillmar: Quillmar ended before the command was done.\n")
        self.assertEqual(stuck.returncode, 1)
        wait_until("no reader left", lambda: not readers() - before)
        again = self.start_and_wait()
        self.assertEqual(self.run_command("wallpaper", "set", "DUMMY0", "colour", COLOR).returncode, 0)
        self.quit(again)

    def test_a_window_server_that_is_stopped_holds_up_neither_the_status_nor_the_end(self):
        with another_desktop() as (variables, server):
            self.environment |= variables
            program = self.start_and_wait()
            os.kill(server, signal.SIGSTOP)
            try:
                stuck = self.command("wallpaper", "set", "DUMMY1", "colour", COLOR)
                self.assertIn("DUMMY0", self.run_command("status").stdout)
                self.assertEqual(self.run_command("quit").returncode, 0)
                self.assertEqual(program.status(), 0, program.complaint())
                self.assertEqual(stuck.wait(PATIENCE), 1)
                stuck.communicate()
            finally:
                os.kill(server, signal.SIGCONT)
            again = self.start_and_wait()
            self.assertEqual(self.run_command("wallpaper", "set", "DUMMY1", "colour", COLOR).returncode, 0)
            self.assertEqual(x11.color(*self.POINTS[1], display=variables["DISPLAY"]), COLOR)
            self.quit(again)


if __name__ == "__main__":
    unittest.main()
