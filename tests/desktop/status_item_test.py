"""The icon in real panels: LXQt's, which takes icons over the bus, and trayer's tray, which takes windows."""

import json
import subprocess
import unittest

from quillmar_desktop import DesktopTest, run, run_checked, wait_until

CLICKED = "A click asked for the screensavers, which this version does not have."
PANEL = "[General]\npanels=panel1\n[panel1]\nplugins=statusnotifier\nposition=Bottom\n[statusnotifier]\ntype=statusnotifier\n"
IN_PANEL = (16, 1064)  # its one icon, at the left end of the main monitor's bottom


class StatusItemTest(DesktopTest):
    def panel(self, *command):
        panel = subprocess.Popen(command, env=self.environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(self.end_panel, panel)
        return panel

    @staticmethod
    def end_panel(panel):
        panel.kill()
        panel.wait()

    @staticmethod
    def windows():
        """What the program shows: its icon in the tray, its menus."""
        return run("xdotool", "search", "--onlyvisible", "--class", "quillmar").stdout.split()

    def is_offered(self):
        ask = ("--dest=org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties.Get")
        wanted = ("string:org.kde.StatusNotifierWatcher", "string:RegisteredStatusNotifierItems")
        return "StatusNotifierItem" in run("dbus-send", "--print-reply", *ask, *wanted).stdout

    def clicks_are_heard(self, program, place, *clicks):
        """Each of the clicks, until it does what the settings say: a panel may still be drawing itself."""
        run_checked("xdotool", "mousemove", *map(str, place))
        for click in clicks:
            count = self.log().count(CLICKED)

            def clicks_again():
                run_checked("xdotool", "click", *click)
                return self.log().count(CLICKED) > count

            wait_until(f"an answer to {click}", clicks_again, program)

    def center_of_tray_icon(self):
        lines = run_checked("xdotool", "getwindowgeometry", "--shell", self.windows()[0]).splitlines()
        at = {name: int(number) for name, number in (line.split("=") for line in lines)}
        return at["X"] + at["WIDTH"] // 2, at["Y"] + at["HEIGHT"] // 2

    def test_clicks_do_what_the_settings_say_in_panels_that_come_and_go(self):
        document = self.make_settings()
        clicks = document["general"]["statusIconClickBehavior"]
        clicks |= {"leftClick": "openCustomMenu", "doubleClick": "toggleAllScreensavers", "middleClick": "toggleAllScreensavers"}
        self.settings.write_text(json.dumps(document), encoding="utf-8")
        configuration = self.home / "config" / "lxqt" / "panel.conf"
        configuration.parent.mkdir(parents=True, exist_ok=True)
        configuration.write_text(PANEL)

        program = self.start_and_wait()
        tray = self.panel("trayer", "--edge", "top", "--align", "right", "--height", "32")
        wait_until("the icon in the tray", self.windows, program)
        place = self.center_of_tray_icon()
        twice = ("--repeat", "2", "--delay", "60", "1")
        # The middle button last: what follows it is no double click.
        self.clicks_are_heard(program, place, twice, ("2",))
        for opening in (("1",), ("3",)):
            run_checked("xdotool", "click", *opening)
            wait_until("a menu", lambda: len(self.windows()) == 2, program)
            run_checked("xdotool", "key", "Escape")
            wait_until("no menu", lambda: len(self.windows()) == 1, program)

        panel = self.panel("lxqt-panel")
        wait_until("the icon out of the tray", lambda: not self.windows(), program)
        self.clicks_are_heard(program, IN_PANEL, twice, ("2",))
        self.end_panel(panel)
        wait_until("the icon back in the tray", self.windows, program)
        self.end_panel(tray)
        self.panel("lxqt-panel")
        wait_until("the icon in the new panel", self.is_offered, program)
        self.clicks_are_heard(program, IN_PANEL, ("2",))
        # The menu that the panel draws: its last entry quits.
        run_checked("xdotool", "click", "3")

        def quits():
            run("xdotool", "key", "Up", "Return")
            return program.poll() is not None

        wait_until("the end", quits)
        self.assertEqual(program.status(), 0, program.complaint())


if __name__ == "__main__":
    unittest.main()
