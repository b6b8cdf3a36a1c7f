"""How the program starts, meets a second start, refuses and ends."""

import os
import pathlib
import pty
import signal
import stat
import unittest
import unittest.mock

from quillmar_desktop import ACQUIRED, BEFORE, COMPLETED, LIMITED, PROGRAM, TERMINATING
from quillmar_desktop import DesktopTest, Program, another_desktop, run, run_checked, wait_until

TWO_COLORS = {"DUMMY0": "#1F6F8B", "DUMMY1": "#D98E04"}
HAS_NAME = (
    *("dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/"),
    *("org.freedesktop.DBus.NameHasOwner", "string:com.quillmar.Quillmar"),
)


class LifecycleTest(DesktopTest):
    def test_a_first_start_makes_private_settings_and_paints_nothing(self):
        self.quit(self.start_and_wait())
        self.assertEqual(stat.S_IMODE(self.settings.stat().st_mode), 0o600)
        self.assert_untouched_desktop()

    def test_every_display_shows_its_colour_and_the_settings_stay_as_they_were_written(self):
        self.make_settings(**TWO_COLORS)
        written = self.settings.read_bytes()
        for _ in range(2):
            program = self.start_and_wait()
            self.wait_for_colors(program, *TWO_COLORS.values())
            self.quit(program)
            self.paint(BEFORE)
        self.assertEqual(self.settings.read_bytes(), written)

    def test_a_second_start_calls_the_first_to_the_front_and_ends(self):
        called = "Another start asked this instance to come to the front."
        for bus in (self.environment["DBUS_SESSION_BUS_ADDRESS"], "unix:path=/nonexistent/bus"):
            with self.subTest(bus=bus):
                self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus
                first = self.start_and_wait()
                if "nonexistent" not in bus:
                    wait_until("a name on the bus", lambda: "true" in run(*HAS_NAME).stdout, first)
                before = self.log()
                self.assertEqual(self.start().status(), 0)
                expected = [
                    "Application diagnostics started.",
                    "A running application instance was found; forwarding activation.",
                ]
                wait_until("the first one’s word", lambda: self.log().count(called) == 1, first)
                self.assertEqual([line for line in self.log()[len(before) :] if line != called], expected)
                self.assertIsNone(first.poll())
                self.quit(first)

    def test_every_request_to_quit_ends_it_in_good_order(self):
        once = [(number,) for number in (signal.SIGTERM, signal.SIGINT)]
        twice = [(signal.SIGTERM, signal.SIGTERM), (signal.SIGINT, signal.SIGTERM)]
        for moment in (ACQUIRED, COMPLETED):
            for signals in once + twice:
                with self.subTest(moment=moment, signals=signals):
                    count = self.log().count(TERMINATING)
                    self.quit(self.start_and_wait(moment), *signals)
                    self.assertEqual(self.log().count(TERMINATING), count + 1)

    def test_a_terminal_that_goes_ends_it_and_a_hang_up_without_one_does_not(self):
        for wrapper, ends in (((), True), (("nohup",), False)):
            with self.subTest(wrapper=wrapper):
                count = self.log().count(COMPLETED)
                child, terminal = pty.fork()
                if child == 0:
                    os.execvpe([*wrapper, PROGRAM][0], [*wrapper, PROGRAM], self.environment)
                try:
                    wait_until("a start", lambda: self.log().count(COMPLETED) > count)
                    os.kill(child, signal.SIGHUP)
                    self.assertEqual(run(PROGRAM, "status", env=self.environment).returncode, 0)
                    os.close(terminal)
                    if not ends:
                        self.assertEqual(run(PROGRAM, "status", env=self.environment).returncode, 0)
                        os.kill(child, signal.SIGTERM)
                    self.assertEqual(wait_until("its end", lambda: os.waitpid(child, os.WNOHANG)[0]), child)
                except BaseException:
                    os.kill(child, signal.SIGKILL)
                    raise

    def test_the_command_line_answers_without_a_display_server(self):
        for arguments, status, words in (
            (["--version"], 0, "Quillmar 0."),
            (["--help"], 0, "Usage: quillmar"),
            (["dance"], 2, 'quillmar: There is no command "dance".\nSee "quillmar help".\n'),
            (["displays", "--loud"], 2, 'quillmar: "displays" does not take "--loud".'),
            (["status"], 1, "quillmar: Quillmar is not running."),
            (["displays", "--json"], 1, "quillmar: No display server could be reached."),
            ([], 1, "quillmar: No display server could be reached."),
        ):
            for display in (None, ":4999"):
                with self.subTest(arguments=arguments, display=display):
                    program = self.start(*arguments, DISPLAY=display)
                    self.assertEqual(program.status(), status)
                    self.assertIn(words, program.complaint())
        self.assertFalse(self.folder.exists())

    def test_without_a_window_manager_it_paints_and_its_alert_can_be_answered(self):
        self.make_settings(**TWO_COLORS)
        with another_desktop() as (desktop, _):
            with unittest.mock.patch.dict(os.environ, desktop):
                self.environment |= desktop
                program = self.start_and_wait()
                self.wait_for_colors(program, *TWO_COLORS.values())
                self.quit(program)
                self.settings.write_text("{")
                program = self.start()
                self.answer_alert(program, "Escape")
                self.wait_for_log(LIMITED, program)
                self.quit(program)

    def test_a_display_server_that_dies_ends_it_with_a_message(self):
        with another_desktop() as (desktop, server):
            program = self.start_and_wait(**desktop)
            os.kill(server, signal.SIGKILL)
            self.assertEqual(program.status(), 1)
            self.assertIn("quillmar: The connection to the display server was lost.", program.complaint())

    def test_where_it_is_installed_its_programs_find_each_other(self):
        build = pathlib.Path(PROGRAM).parent
        run_checked("cmake", "--install", str(build), "--prefix", str(self.home / "usr"))
        picture = pathlib.Path(__file__).parent.parent / "render" / "samples" / "quadrants.heic"
        installed = str(self.home / "usr" / "bin" / "quillmar")
        program = Program([installed], self.environment)
        self.addCleanup(self.end, program)
        self.wait_for_log(COMPLETED, program)
        answer = run(installed, "wallpaper", "set", "DUMMY0", "image", str(picture), env=self.environment)
        self.assertEqual(answer.stdout, "DUMMY0: applied\n", answer.stderr)
        self.quit(program)


if __name__ == "__main__":
    unittest.main()
