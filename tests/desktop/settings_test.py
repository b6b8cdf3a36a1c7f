"""The Settings window as assistive technology sees and uses it."""

import json
import os
import pathlib
import unittest

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402  (the version is asked for first)

from quillmar_desktop import COMPLETED, DESKTOP, PROGRAM, DesktopTest, run, run_checked, wait_until

MOST_GROWTH = 10 << 10  # KiB that an opened and closed window may leave behind


def below(root):
    """Every accessible object below one; those that go meanwhile are left out."""
    try:
        for i in range(root.get_child_count()):
            if child := root.get_child_at_index(i):
                yield child
                yield from below(child)
    except GLib.Error:
        return


def is_shown(item):
    return item.get_state_set().contains(Atspi.StateType.SHOWING)


class SettingsWindowTest(DesktopTest):
    def setUp(self):
        super().setUp()
        del self.environment["NO_AT_BRIDGE"]

    def find(self, role, name, program):
        def seen():
            desktop = Atspi.get_desktop(0)
            for i in range(desktop.get_child_count()):
                application = desktop.get_child_at_index(i)
                try:
                    if not application or application.get_process_id() != program.pid:
                        continue
                    for item in below(application):
                        if item.get_role_name() == role and item.get_name() == name and is_shown(item):
                            return item
                except GLib.Error:
                    pass
            return None

        return wait_until(f"the {role} “{name}”", seen, program)

    def press(self, role, name, program):
        item = self.find(role, name, program)
        wait_until(f"an enabled “{name}”", lambda: item.get_state_set().contains(Atspi.StateType.SENSITIVE), program)
        self.assertTrue(item.do_action(0))

    def general(self):
        return json.loads(self.settings.read_bytes())["general"]

    def wait_for_setting(self, name, value, program):
        wait_until(f"{name} {value}", lambda: self.general()[name] == value, program)

    def take_picture(self, name):
        if pictures := os.environ.get("QUILLMAR_SCREENSHOTS"):
            run_checked("import", "-window", "root", f"{pictures}/settings-{name}.png")

    def close(self, program, title="Definições do Quillmar"):
        self.answer(program, title, "key", "Escape")
        search = ("xdotool", "search", "--onlyvisible", "--name", f"^{title}$")
        wait_until("a closed window", lambda: not run(*search).stdout, program)

    @staticmethod
    def memory(program):
        """KiB of its own: what libraries share depends on who else runs."""
        lines = pathlib.Path(f"/proc/{program.pid}/smaps_rollup").read_text().splitlines()
        return int(next(line.split()[1] for line in lines if line.startswith("Pss_Anon:")))

    def export_backup(self, file, program):
        self.find("list item", "Exportar uma cópia de segurança", program).grab_focus()
        run_checked("xdotool", "key", "space")
        self.press("push button", "Exportar…, Exportar as secções escolhidas", program)
        self.find("file chooser", "Exportar cópia de segurança do Quillmar", program)
        self.take_picture("backup")
        self.answer(program, "Exportar cópia de segurança do Quillmar", "key", "ctrl+a", "type", str(file))
        run_checked("xdotool", "key", "Return")
        self.answer(program, "Cópia de segurança exportada", "key", "Return")
        self.assertEqual(json.loads(file.read_bytes())["contents"]["general"], self.general())

    @staticmethod
    def answer(program, title, *keys):
        """Presses keys once the dialog of that title has the focus."""
        question = ("xdotool", "getwindowfocus", "getwindowname")
        wait_until(f"“{title}” with the focus", lambda: run(*question).stdout.strip() == title, program)
        run_checked("xdotool", *keys)

    def test_a_person_changes_settings_and_keeps_a_backup(self):
        program = self.start_and_wait()
        before = self.memory(program)
        for _ in range(3):
            run(PROGRAM, "settings", env=self.environment, check=True)
            self.close(program, "Quillmar Settings")
        if "ASAN_OPTIONS" not in os.environ:  # which keeps what is freed
            self.assertLess(self.memory(program), before + MOST_GROWTH)
        run(PROGRAM, "settings", env=self.environment, check=True)
        self.press("toggle button", "Pause", program)
        self.wait_for_setting("pauseRotations", True, program)
        self.find("combo box", "Language", program).get_selection_iface().select_child(1)
        self.wait_for_setting("language", "portuguese", program)
        self.find("frame", "Definições do Quillmar", program)
        self.find("combo box", "Tema", program).get_selection_iface().select_child(2)
        self.wait_for_setting("appTheme", "dark", program)
        self.take_picture("general")

        run(PROGRAM, "settings", "backup", env=self.environment, check=True)
        self.export_backup(self.home / "kept.json", program)
        self.close(program)
        # Starting the program again brings the window back.
        self.assertEqual(run(PROGRAM, env=self.environment).returncode, 0)
        self.find("list item", "Exportar uma cópia de segurança", program)
        self.close(program)
        self.quit(program)

    def test_a_person_gives_a_display_a_color_and_a_picture(self):
        program = self.start_and_wait()
        run(PROGRAM, "settings", "wallpaper", env=self.environment, check=True)
        self.press("radio button", "DUMMY1", program)
        self.find("radio button", "DUMMY1, chosen", program)
        self.choose_mode("Solid Color", program)
        self.find("text", "Color", program).get_editable_text_iface().set_text_contents("#2F6B8F")
        self.find("radio button", "DUMMY1, chosen, has changes that are not applied", program)
        self.take_picture("wallpaper")
        self.press("push button", "Apply", program)
        self.wait_for_colors(program, "#2F6B8F", points=self.POINTS[1:])
        self.choose_mode("Image", program)
        self.press("push button", "Choose…, Image file", program)
        picture = self.home / "green.png"
        run_checked("convert", "-size", "64x64", "xc:#20A040", str(picture))
        self.answer(program, "Choose an Image", "key", "ctrl+l")
        self.find("text", "", program).get_editable_text_iface().set_text_contents(str(picture))
        self.press("push button", "Choose", program)
        self.find("combo box", "Layout", program).get_selection_iface().select_child(4)
        self.press("push button", "Apply", program)
        self.wait_for_colors(program, "#20A040", points=self.POINTS[1:])
        self.take_picture("wallpaper-image")
        self.close(program, "Quillmar Settings")
        self.quit(program)

    @staticmethod
    def error_at(field):
        for relation in field.get_relation_set():
            if relation.get_relation_type() == Atspi.RelationType.ERROR_MESSAGE:
                return relation.get_target(0).get_name()
        return None

    def test_a_person_errs_reverts_and_applies_by_the_keyboard(self):
        self.make_settings(DUMMY0="#102030", DUMMY1="#405060")
        program = self.start_and_wait()
        run(PROGRAM, "settings", "wallpaper", env=self.environment, check=True)
        self.find("radio button", "DUMMY0, main display, chosen", program).grab_focus()
        run_checked("xdotool", "key", "Right")
        self.find("radio button", "DUMMY1, chosen", program)
        field = self.find("text", "Color", program)

        def is_enabled(button):
            return self.find("push button", button, program).get_state_set().contains(Atspi.StateType.SENSITIVE)

        # The pane follows every letter, and whoever types keeps the focus and the place.
        field.grab_focus()
        run_checked("xdotool", "key", "ctrl+a", "type", "#2F6B")
        self.assertTrue(wait_until("an error at the field", lambda: self.error_at(field), program))
        self.assertFalse(is_enabled("Apply"))
        self.take_picture("wallpaper-error")
        run_checked("xdotool", "type", "8F")
        wait_until("no error any more", lambda: not self.error_at(field) and is_enabled("Apply"), program)
        self.press("push button", "Revert", program)
        wait_until("the former color", lambda: Atspi.Text.get_text(field, 0, -1) == "#405060", program)
        self.assertFalse(is_enabled("Apply"))
        field.grab_focus()
        run_checked("xdotool", "key", "ctrl+a", "type", "#2F6B8F")
        run_checked("xdotool", "key", "ctrl+Return")
        self.wait_for_colors(program, "#102030", "#2F6B8F")
        displays = json.loads(self.settings.read_bytes())["wallpaper"]["displays"]
        kept = {display["persistentDisplayID"]: display["mode"] for display in displays}
        self.assertEqual(kept[self.displays()["DUMMY1"]], {"solidColor": {"_0": {"hexColor": "#2F6B8F"}}})
        self.close(program, "Quillmar Settings")
        self.quit(program)

    def choose_mode(self, title, program):
        self.find("list item", title, program).grab_focus()
        run_checked("xdotool", "key", "space")

    def test_a_first_run_is_welcomed_and_an_update_is_told(self):
        program = self.start(DESKTOP_AUTOSTART_ID=None)
        self.find("push button", "Open Settings", program)
        self.take_picture("welcome")
        self.assertNotIn(COMPLETED, self.log())
        run(PROGRAM, "general", "set", "--language", "portuguese", "--appTheme", "dark", env=self.environment, check=True)
        self.find("frame", "Bem-vindo ao Quillmar", program)
        self.take_picture("welcome-dark")
        self.press("push button", "Abrir as definições", program)
        self.wait_for_log(COMPLETED, program)
        self.find("frame", "Definições do Quillmar", program)
        self.close(program)
        self.quit(program)

        document = json.loads(self.settings.read_bytes())
        self.settings.write_text(json.dumps(document | {"lastLaunchedAppVersion": "0.0.1"}))
        program = self.start_and_wait()
        self.find("label", "Versão " + (DESKTOP.parents[1] / "VERSION").read_text().strip(), program)
        self.take_picture("changelog")
        self.close(program, "Novidades do Quillmar")
        self.quit(program)


if __name__ == "__main__":
    unittest.main()
