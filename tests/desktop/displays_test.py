"""Displays that are switched off, moved and resized under the running program."""

import unittest

from quillmar_desktop import BEFORE, FIRST_ARRANGEMENT, DesktopTest, arrange

FIRST, SECOND = "#1F6F8B", "#D98E04"


class DisplaysTest(DesktopTest):
    def setUp(self):
        self.addCleanup(arrange, *FIRST_ARRANGEMENT)
        super().setUp()
        self.make_settings(DUMMY0=FIRST, DUMMY1=SECOND)
        self.program = self.start_and_wait()
        self.wait_for_colors(self.program, FIRST, SECOND)

    def rearrange(self, *arguments):
        """Another arrangement, after another program took the desktop."""
        self.paint(BEFORE)
        arrange(*arguments)

    def test_a_display_keeps_its_colour_and_identity_wherever_it_comes_back(self):
        identities = self.displays()
        self.assertEqual(len(set(identities.values())), 2)
        for arguments, second_point in (
            (("--off",), None),
            (("--mode", "1280x1024", "--pos", "1920x0"), (2560, 512)),
            (("--pos", "1920x56"), (2560, 1070)),
            (("--mode", "1280x720", "--pos", "1920x0"), (3190, 710)),
            (("--off",), None),
            (("--mode", "1280x720", "--pos", "0x1080"), (640, 1790)),
        ):
            with self.subTest(arguments=arguments):
                self.rearrange("--output", "DUMMY1", *arguments)
                points = [(960, 540)] + ([second_point] if second_point else [])
                self.wait_for_colors(self.program, *(FIRST, SECOND)[: len(points)], points=points)
                outputs = ("DUMMY0", "DUMMY1")[: len(points)]
                self.assertEqual(self.displays(), {output: identities[output] for output in outputs})
        self.quit(self.program)

    def test_another_main_display_changes_no_colour(self):
        self.rearrange("--output", "DUMMY1", "--primary")
        self.wait_for_colors(self.program, FIRST, SECOND)
        self.rearrange("--output", "DUMMY0", "--off", "--output", "DUMMY1", "--pos", "0x0")
        self.wait_for_colors(self.program, SECOND, points=((640, 512),))
        self.quit(self.program)

    def test_no_display_at_all_for_a_while_does_not_end_it(self):
        self.rearrange("--output", "DUMMY0", "--off", "--output", "DUMMY1", "--off")
        self.wait_for_log("Display topology changed.", self.program)
        arrange(*FIRST_ARRANGEMENT)
        self.wait_for_colors(self.program, FIRST, SECOND)
        self.quit(self.program)


if __name__ == "__main__":
    unittest.main()
