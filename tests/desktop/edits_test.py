"""The settings file in other hands than the program's while a slideshow saves, and backups into what is no file."""

import json
import os
import pathlib
import shutil
import signal
import subprocess
import unittest

from quillmar_desktop import PROGRAM, DesktopTest, run, run_checked

FIRST, SECOND = "#1F6F8B", "#D98E04"


class EditsTest(DesktopTest):
    def quillmar(self, *arguments, status=0):
        answer = run(PROGRAM, *arguments, env=self.environment, cwd=self.home)
        self.assertEqual(answer.returncode, status, answer)
        return answer.stdout + answer.stderr

    def start_slideshow(self):
        """A slideshow that saves every second on one display, a colour on the other; the program."""
        pictures = self.home / "pictures"
        pictures.mkdir()
        for number in range(5):
            run_checked("convert", "-size", "8x8", f"xc:rgb({number * 9},{number},0)", str(pictures / f"{number}.png"))
        document = self.make_settings(DUMMY1=FIRST)
        program = self.start_and_wait()
        self.quillmar("wallpaper", "set", "DUMMY0", "slideshow", str(pictures), "--interval", "1")
        return program, document

    def shows(self, color, program):
        self.wait_for_colors(program, color, points=self.POINTS[1:])

    def edit_in_place(self, before, after):
        """As a program that writes piece by piece."""
        text = self.settings.read_text().replace(before, after)
        with open(self.settings, "w") as file:
            for at in range(0, len(text), 1000):
                file.write(text[at : at + 1000])
                file.flush()

    def sync(self, before, after):
        """As a program that keeps folders in step: from elsewhere, by rename, with a time of its own."""
        copy = self.settings.with_name(".sync-settings.json.tmp")
        copy.write_text(self.settings.read_text().replace(before, after))
        os.utime(copy, (1, 1))
        copy.rename(self.settings)

    def test_every_edit_is_taken_over_while_a_slideshow_saves(self):
        program, _ = self.start_slideshow()
        vim = shutil.which("vim")
        ways = {
            "vim": vim and (lambda a, b: run(vim, "-u", "NONE", "-es", f"+%s/{a}/{b}/", "+wq", self.settings)),
            "sed -i": lambda a, b: run_checked("sed", "-i", f"s/{a}/{b}/", str(self.settings)),
            "in place": self.edit_in_place,
            "sync": self.sync,
        }
        color = FIRST
        for turn, (name, edit) in enumerate([*ways.items()] * 2):
            if not edit:
                continue
            with self.subTest(name, turn=turn):
                after = f"#{0x204060 + turn * 0x101010:06X}"
                edit(color, after)
                color = after
                self.shows(color, program)
                self.assertIn(color, self.settings.read_text())
        # Two at once: the later one stands, and the file is whole.
        self.edit_in_place(color, FIRST)
        self.sync(FIRST, SECOND)
        self.shows(SECOND, program)
        json.loads(self.settings.read_bytes())
        self.quit(program)
        self.assertIn(SECOND, self.settings.read_text())

    def test_a_broken_file_stays_until_it_is_mended_and_a_hang_up_looks_at_it(self):
        program, _ = self.start_slideshow()
        good = self.settings.read_text()
        for name, fault in (("text", "line 2, column"), ("folder", "Is a directory"), ("gone link", "No such file")):
            with self.subTest(name):
                self.settings.unlink()
                if name == "text":
                    self.settings.write_text("{\n  oops")
                elif name == "folder":
                    self.settings.mkdir()
                else:
                    self.settings.symlink_to("nowhere.json")
                program.send_signal(signal.SIGHUP)
                self.assertIn(fault, self.quillmar("status"))
                self.assertIn(fault, self.quillmar("wallpaper", "set", "DUMMY1", "colour", SECOND, status=1))
                next_ = self.quillmar("wallpaper", "next", "DUMMY0")
                self.assertIn("applied", next_)
                self.assertEqual(self.settings.is_dir(), name == "folder")
                self.assertEqual(self.settings.is_symlink(), name == "gone link")
                self.settings.rmdir() if name == "folder" else self.settings.unlink()
                self.settings.write_text(good)
                self.assertNotIn("cannot be read", self.quillmar("status"))
        self.quit(program)

    def test_backups_go_into_pipes_devices_and_links_and_replace_none(self):
        self.quit(self.start_and_wait())
        pipe, link = self.home / "pipe", self.home / "link"
        os.mkfifo(pipe)
        link.symlink_to("kept.json")

        def export(file, shell='"$0" backup export "$1"'):
            return subprocess.run(["sh", "-c", shell, PROGRAM, str(file)], env=self.environment, capture_output=True)

        for runs in (False, True):
            with self.subTest(runs=runs):
                program = self.start_and_wait() if runs else None
                for file in ("-", "/dev/stdout", "/dev/fd/1"):
                    self.assertIn("contents", json.loads(export(file).stdout), file)
                reader = subprocess.Popen(["cat", pipe], stdout=subprocess.PIPE)
                self.assertEqual(export(pipe).returncode, 0)
                self.assertIn("contents", json.loads(reader.communicate()[0]))
                self.assertEqual(export("/dev/full").returncode, 1)
                self.assertEqual(export("/dev/null").returncode, 0)
                self.assertEqual(export(link).returncode, 0)
                self.assertTrue(pipe.is_fifo() and link.is_symlink() and pathlib.Path("/dev/null").is_char_device())
                if program:
                    self.quit(program)

        self.settings.unlink()
        for words in (("backup", "export", "-"), ("backup", "inspect", str(link))):
            self.quillmar(*words)
            self.assertFalse(self.settings.exists(), "the first run is still to come")


if __name__ == "__main__":
    unittest.main()
