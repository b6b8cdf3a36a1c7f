"""Pictures on the displays: where each layout puts their edges, and that each comes back to its own display."""

import struct
import os
import signal
import subprocess
import unittest
import zlib

from quillmar_desktop import BEFORE, FIRST_ARRANGEMENT, PROGRAM
from quillmar_desktop import DesktopTest, arrange, run, run_checked, wait_until, x11

WIDTH, HEIGHT, EDGE = 400, 200, 16
LEFT, RIGHT, TOP, BOTTOM, MIDDLE, GROUND = "#E02020", "#20C040", "#2040E0", "#E0C020", "#F0F0F0", "#102030"


def png(rows):
    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))

    header = struct.pack(">IIBBBBB", len(rows[0]) // 3, len(rows), 8, 2, 0, 0, 0)
    pixels = zlib.compress(b"".join(b"\0" + row for row in rows))
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", pixels) + chunk(b"IEND", b"")


def framed_picture():
    """A picture with another colour at each of its edges."""
    left, right, top, bottom, middle = (bytes.fromhex(c[1:]) for c in (LEFT, RIGHT, TOP, BOTTOM, MIDDLE))
    row = left * EDGE + middle * (WIDTH - 2 * EDGE) + right * EDGE
    return png([top * WIDTH] * EDGE + [row] * (HEIGHT - 2 * EDGE) + [bottom * WIDTH] * EDGE)


# What stands where on 1920x1080: on both sides of every edge that the layout makes.
LAYOUTS = {
    "center": {
        (759, 540): GROUND, (760, 540): LEFT, (1159, 540): RIGHT, (1160, 540): GROUND,
        (960, 439): GROUND, (960, 440): TOP, (960, 639): BOTTOM, (960, 640): GROUND,
    },
    "tile": {
        (200, 1079): BOTTOM, (200, 880): TOP, (200, 879): BOTTOM, (200, 79): BOTTOM, (200, 80): TOP,
        (0, 980): LEFT, (399, 980): RIGHT, (400, 980): LEFT, (1600, 980): LEFT, (1919, 980): MIDDLE,
    },
    "stretch": {(0, 540): LEFT, (1919, 540): RIGHT, (960, 0): TOP, (960, 1079): BOTTOM, (960, 540): MIDDLE},
    "fit": {
        (0, 540): LEFT, (1919, 540): RIGHT, (960, 59): GROUND, (960, 60): TOP, (960, 1019): BOTTOM,
        (960, 1020): GROUND,
    },
    "fill": {(0, 540): MIDDLE, (1919, 540): MIDDLE, (960, 0): TOP, (960, 1079): BOTTOM},
}  # fmt: skip


class PicturesTest(DesktopTest):
    def setUp(self):
        self.addCleanup(arrange, *FIRST_ARRANGEMENT)
        super().setUp()
        self.framed = self.home / "framed.png"
        self.framed.write_bytes(framed_picture())

    def set(self, display, *kind, status=0):
        answer = run(PROGRAM, "wallpaper", "set", display, *kind, env=self.environment)
        self.assertEqual(answer.returncode, status, answer.stderr)
        return answer.stderr

    def picture(self, name, color):
        file = self.home / f"{name}.png"
        file.write_bytes(png([bytes.fromhex(color[1:]) * 64] * 36))
        return str(file)

    def set_two_pictures(self):
        self.set("DUMMY0", "image", self.picture("one", LEFT), "--layout", "fill")
        self.set("DUMMY1", "image", self.picture("two", RIGHT), "--layout", "fill")

    def test_each_layout_puts_the_edges_where_they_belong_and_leaves_the_other_display_alone(self):
        program = self.start_and_wait()
        self.set("DUMMY1", "image", str(self.framed), "--layout", "center", "--background", GROUND)
        for layout, points in LAYOUTS.items():
            with self.subTest(layout=layout):
                self.set("DUMMY0", "image", str(self.framed), "--layout", layout, "--background", GROUND)
                seen = {point: x11.color(*point) for point in points}
                self.assertEqual(seen, points)
                other = [x11.color(x, 512) for x in (2359, 2360, 2759, 2760)]
                self.assertEqual(other, [GROUND, LEFT, RIGHT, GROUND])
        self.quit(program)

    def test_thirty_changes_of_the_arrangement_in_a_row_end_with_the_right_pictures(self):
        program = self.start_and_wait()
        self.set_two_pictures()
        for number in range(30):
            mode = ("1280x720", "1280x1024")[number % 2]
            run_checked("xrandr", "--output", "DUMMY1", "--mode", mode, "--pos", f"1920x{number}")
        self.paint(BEFORE)
        # Not as it was at first: an arrangement that comes back before anybody looked is no change.
        arrange("--output", "DUMMY1", "--mode", "1280x1024", "--pos", "1920x56")
        self.wait_for_colors(program, LEFT, RIGHT)
        self.quit(program)

    def test_another_program_that_paints_all_the_while_is_outlived(self):
        program = self.start_and_wait()
        painter = subprocess.Popen(
            ["sh", "-c", f"while :; do hsetroot -solid '{BEFORE}'; done"], start_new_session=True
        )
        try:
            for _ in range(5):
                self.set_two_pictures()
                self.set("all", "colour", GROUND)
        finally:
            os.killpg(painter.pid, signal.SIGKILL)  # with the one that paints just now
            painter.wait()
        self.set_two_pictures()
        self.wait_for_colors(program, LEFT, RIGHT)
        self.quit(program)

    def test_a_change_that_fails_leaves_every_display_as_it_was(self):
        program = self.start_and_wait()
        self.set("DUMMY0", "image", self.picture("one", LEFT), "--layout", "fill")
        self.paint_second_by_hand()
        (self.home / "page.jpg").write_text("<html>not found</html>")
        for file in ("nothing-here.png", "page.jpg"):
            complaint = self.set("all", "image", str(self.home / file), status=1)
            self.assertIn(f"Quillmar cannot read the selected image at {self.home / file}.", complaint)
            self.assertEqual(complaint.count("DUMMY"), 2)
            self.assertEqual([x11.color(*point) for point in self.POINTS], [LEFT, BEFORE])
        listed = run(PROGRAM, "wallpaper", env=self.environment).stdout
        self.assertIn("DUMMY1", listed)
        self.assertIn("Disabled", listed)
        self.assertNotIn("failed", run(PROGRAM, "status", env=self.environment).stdout, "it was taken back")
        self.quit(program)

    def test_a_session_in_which_nobody_would_see_a_picture_is_called_that(self):
        for name in ("WAYLAND_DISPLAY", "XDG_SESSION_TYPE"):
            self.environment = self.environment | {name: "wayland"}
            program = self.start_and_wait()
            self.wait_for_log("No display can be given a picture in this session.", program)
            self.assertIn("Wayland", self.set("all", "colour", GROUND, status=1))
            self.assertIn("Wayland", run(PROGRAM, "status", env=self.environment).stdout)
            self.assert_untouched_desktop()
            self.quit(program)
            del self.environment[name]

    def test_rows_of_the_last_picture_that_were_damaged_are_not_shown(self):
        self.make_settings(DUMMY0=LEFT, DUMMY1=RIGHT)
        self.quit(self.start_and_wait())
        for rows in (self.folder / "Cache/LastShown").glob("*.rows"):
            whole = rows.read_bytes()
            rows.write_bytes(whole[:4096] + bytes(len(whole) - 4096))
        self.paint(BEFORE)
        program = self.start_and_wait()
        self.wait_for_colors(program, LEFT, RIGHT)
        self.quit(program)

    def paint_second_by_hand(self):
        """A desktop of the user's own, on which the program has painted one display."""
        self.paint(BEFORE)
        self.set("DUMMY0", "image", str(self.home / "one.png"), "--layout", "fill")
        wait_until("both", lambda: [x11.color(*point) for point in self.POINTS] == [LEFT, BEFORE])


if __name__ == "__main__":
    unittest.main()
