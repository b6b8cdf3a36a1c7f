"""Settings and folders that cannot be used."""

import json
import os
import shutil
import unittest

from quillmar_desktop import LIMITED, NOBODY, PROGRAM, TERMINATING
from quillmar_desktop import DesktopTest, run, run_checked, wait_until

COLORS = {"DUMMY0": "#1F6F8B", "DUMMY1": "#D98E04"}


def limited_to(blocks):
    """Runs the program with files of at most so many KiB: as on a full disk, a write fails. The log needs under 12."""
    return "bash", "-c", f"trap '' XFSZ; ulimit -f {blocks}; exec \"$@\"", "limited"


class BadSettingsTest(DesktopTest):
    def assert_recovery(self, name, key="Escape", **options):
        with self.subTest(name):
            count = self.log().count(LIMITED)
            program = self.start(**options)
            window = self.wait_for_alert(program)
            if pictures := os.environ.get("QUILLMAR_SCREENSHOTS"):
                run_checked("import", "-window", window, f"{pictures}/alert-{name.replace(' ', '-')}.png")
            self.answer_alert(program, key)
            wait_until(f"“{LIMITED}”", lambda: self.log().count(LIMITED) == count + 1, program)
            self.quit(program)
            self.assert_untouched_desktop()
            self.assertEqual(list(self.folder.glob(".settings*")), [])

    def test_settings_that_cannot_be_read_are_announced_and_left_as_they_are(self):
        document = self.make_settings(**COLORS)
        good = self.settings.read_bytes()
        wrong_type = json.loads(good)
        wrong_type["general"] = []
        unknown_mode = json.loads(good)
        unknown_mode["wallpaper"]["displays"][1]["mode"] = {"lavaLamp": {}}
        for name, content in (
            ("truncated", good[: len(good) // 2]),
            ("other schema", json.dumps(document | {"schemaVersion": 99}).encode()),
            ("wrong type", json.dumps(wrong_type).encode()),
            ("unknown mode", json.dumps(unknown_mode).encode()),
            ("invalid UTF-8", good.replace(b"#1F6F8B", b"#1F\xff\xfeB")),
            ("empty", b""),
        ):
            self.settings.write_bytes(content)
            self.assert_recovery(name, key="Return" if name == "truncated" else "Escape")
            self.assertEqual(self.settings.read_bytes(), content)

        self.settings.unlink()
        self.settings.mkdir()
        self.assert_recovery("directory")
        self.settings.rmdir()
        os.mkfifo(self.settings)
        self.assert_recovery("pipe")
        self.assertTrue(self.settings.is_fifo())

    def run_as_nobody(self):
        """How to start the program as a user who is refused what the files' modes refuse."""
        if os.geteuid() != 0:
            return ()
        if run(*NOBODY, "test", "-x", PROGRAM).returncode != 0:
            self.skipTest("the program lies where another user cannot run it, and root is refused nothing")
        for folder, _, files in os.walk(self.home):
            for path in (folder, *(os.path.join(folder, file) for file in files)):
                os.chown(path, 65534, 65534)
        return NOBODY

    def test_settings_that_may_not_be_read_are_announced(self):
        self.make_settings(**COLORS)
        written = self.settings.read_bytes()
        self.settings.chmod(0)
        user = self.run_as_nobody()
        self.assert_recovery("unreadable", wrapper=user)
        self.settings.chmod(0o600)
        self.assertEqual(self.settings.read_bytes(), written)

    def test_a_data_folder_that_may_not_be_written_hinders_the_pictures_and_nothing_else(self):
        self.make_settings(**COLORS)
        shutil.rmtree(self.folder / "Cache", ignore_errors=True)
        user = self.run_as_nobody()
        self.folder.chmod(0o500)
        self.addCleanup(self.folder.chmod, 0o700)
        program = self.start_and_wait(wrapper=user)
        self.assertIn("One or more wallpapers failed to apply during startup.", self.log())
        self.quit(program)

    def test_quitting_at_the_alert_ends_it(self):
        self.folder.mkdir(parents=True)
        self.settings.write_text("{")
        program = self.start()
        self.wait_for_alert(program)
        self.quit(program)
        self.assertEqual(self.log()[-1], TERMINATING)
        self.assertNotIn(LIMITED, self.log())

    def test_without_a_usable_data_folder_it_says_so_and_can_be_quit(self):
        file = self.home / "file"
        file.touch()
        for name, changes in (
            ("nowhere", {"XDG_DATA_HOME": None, "HOME": None}),
            ("below a file", {"XDG_DATA_HOME": f"{file}/data"}),
            ("kernel folder", {"XDG_DATA_HOME": "/proc/quillmar"}),
        ):
            with self.subTest(name):
                program = self.start(**changes)
                self.wait_for_alert(program)
                self.quit(program)

    def test_a_full_disk_hinders_the_first_settings_and_is_announced(self):
        program = self.start(wrapper=limited_to(0))
        self.wait_for_alert(program)
        self.quit(program)
        self.assertEqual([path.name for path in self.folder.glob("*settings*")], [])

    def test_a_full_disk_hinders_the_pictures_and_nothing_else(self):
        self.make_settings(**COLORS)
        written = self.settings.read_bytes()
        program = self.start_and_wait(wrapper=limited_to(12))
        self.assertIn("One or more wallpapers failed to apply during startup.", self.log())
        self.quit(program)
        self.assert_untouched_desktop()
        self.assertEqual(self.settings.read_bytes(), written)


class BackupTest(DesktopTest):
    def quillmar(self, *arguments, status=0):
        answer = run(PROGRAM, *arguments, env=self.environment, cwd=self.home)
        self.assertEqual(answer.returncode, status, answer)
        return answer.stdout + answer.stderr

    def test_a_backup_comes_back_into_the_running_program_and_where_none_runs(self):
        self.make_settings(**COLORS)
        program = self.start_and_wait()
        self.assertIn("Saved kept.json.", self.quillmar("backup", "export", "kept.json"))
        self.assertIn("hotCorners", self.quillmar("backup", "inspect", "kept.json"))
        self.quillmar("wallpaper", "set", "all", "colour", "#445566")
        restored = self.quillmar("backup", "restore", "kept.json", "--sections", "general,wallpaper")
        self.assertIn("The selected settings were restored successfully.", restored)
        self.wait_for_colors(program, *COLORS.values())
        self.assertIn("reset to their default values", self.quillmar("backup", "reset"))
        self.quillmar("quit")
        self.assertEqual(program.status(), 0)

        self.settings.write_text("{")
        self.assertIn("there is nothing to back up", self.quillmar("backup", "export", "broken.json", status=1))
        self.quillmar("backup", "restore", "kept.json")
        program = self.start_and_wait()
        self.wait_for_colors(program, *COLORS.values())
        self.quit(program)

    def test_what_is_no_backup_or_not_understood_changes_nothing(self):
        self.make_settings(**COLORS)
        written = self.settings.read_bytes()
        (self.home / "page.json").write_text("<html>")
        self.quillmar("backup", "export", "general.json", "--sections", "general")
        for status, words, complaint in (
            (2, "export all.json --sections general,sound", '"--sections" is one of general, wallpaper'),
            (1, "restore general.json --sections wallpaper", "The backup has none of these sections."),
            (1, "restore page.json", "Couldn’t Read Backup: the document is not valid JSON"),
            (1, "inspect none.json", "none.json: No such file or directory"),
        ):
            with self.subTest(words):
                self.assertIn(complaint, self.quillmar("backup", *words.split(), status=status))
        self.assertEqual(self.settings.read_bytes(), written)


if __name__ == "__main__":
    unittest.main()
