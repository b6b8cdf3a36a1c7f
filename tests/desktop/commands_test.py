"""The program that a person calls, and the agent that it calls: what is said when they do not find each other."""

import fcntl
import json
import os
import pathlib
import shutil
import signal
import subprocess
import unittest

from quillmar_desktop import COMPLETED, PATIENCE, PROGRAM, DesktopTest, run, wait_until

FIRST, SECOND = "#1F6F8B", "#D98E04"
NAME = "com.quillmar.Quillmar"


class CommandsTest(DesktopTest):
    def quillmar(self, *arguments, status=0, **options):
        answer = run(PROGRAM, *arguments, env=self.environment, cwd=self.home, **options)
        self.assertEqual(answer.returncode, status, answer)
        return answer.stdout + answer.stderr

    def call(self, arguments, version):
        """A call as another program makes it; the answer as text."""
        words = "[" + ", ".join(f"b'{word}'" for word in arguments) + "]"
        return run(
            *("gdbus", "call", "--session", "--dest", NAME, "--object-path", "/com/quillmar/Quillmar/Control"),
            *("--method", NAME + ".Control.Run", words, "b'/'", f"{{'version': <'{version}'>}}"),
        ).stdout

    def test_commands_reach_the_running_program_as_they_were_typed(self):
        self.make_settings(DUMMY0=FIRST)
        program = self.start_and_wait()
        picture = os.fsencode(self.home) + b"/\xff odd.png"
        run("convert", "-size", "8x8", f"xc:{SECOND}", "png:" + str(self.home / "plain.png"), check=True)
        os.rename(self.home / "plain.png", picture)
        answer = subprocess.run(
            [os.fsencode(PROGRAM), b"wallpaper", b"set", b"DUMMY0", b"image", b"\xff odd.png", b"--layout=fill"],
            env=self.environment, cwd=self.home, capture_output=True,
        )
        self.assertEqual((answer.returncode, answer.stdout), (0, b"DUMMY0: applied\n"), answer)
        self.wait_for_colors(program, SECOND, points=self.POINTS[:1])
        self.assertEqual(set(self.displays()), {"DUMMY0", "DUMMY1"})
        for words in ("displays", "wallpaper", "status", "general"):
            self.assertIn("version", json.loads(self.quillmar(words, "--json")), words)
        self.quillmar("general", "set", "--language", "portuguese")
        self.assertIn('Não está ligado nenhum ecrã "Beamer".', self.quillmar("wallpaper", "next", "Beamer", status=1))
        self.assertIn('Não existe o comando "dance".', self.call(["dance"], "0.0.1"))
        self.assertIn("este comando é da versão 0.0.1", self.call(["dance"], "0.0.1"))
        self.quillmar("quit")
        self.assertEqual(program.status(), 0)
        self.environment["LANGUAGE"] = "pt_PT"
        self.assertIn("O Quillmar não está em execução.", self.quillmar("status", status=1))

    def test_a_follower_is_told_what_is_and_what_changes_until_the_program_or_its_reader_is_gone(self):
        program = self.start_and_wait()
        followers = [
            subprocess.Popen([PROGRAM, "watch", "--json"], env=self.environment, stdout=subprocess.PIPE) for _ in range(2)
        ]
        self.assertEqual([json.loads(one.stdout.readline())["event"] for one in followers], ["status"] * 2)
        followers[1].stdout.close()
        self.assertEqual(followers[1].wait(PATIENCE), 0)
        self.quillmar("wallpaper", "set", "DUMMY1", "colour", FIRST)
        self.quillmar("quit")
        self.assertEqual(program.status(), 0)
        told = [json.loads(line) for line in followers[0].communicate(timeout=PATIENCE)[0].splitlines()]
        self.assertEqual(followers[0].returncode, 0)
        self.assertEqual(told[-1]["event"], "display")
        self.assertEqual([display["picture"]["color"] for display in told[-1]["displays"]], [FIRST])
        self.assertIn("not running", self.quillmar("watch", status=1))

    def test_a_program_that_starts_or_hangs_is_not_said_to_be_gone(self):
        lock = pathlib.Path(self.environment["XDG_RUNTIME_DIR"], NAME + ".instance.lock")
        with open(lock, "w") as held:
            fcntl.flock(held, fcntl.LOCK_EX)
            for words in (("status",), ("backup", "reset")):
                self.assertIn("is starting or cannot be reached", self.quillmar(*words, status=1))
        self.assertIn("is not running", self.quillmar("status", status=1))

    def test_a_program_that_dies_over_a_command_is_said_to(self):
        program = self.start_and_wait()
        program.send_signal(signal.SIGSTOP)
        asking = self.start("status")
        wait_until("the question", lambda: pathlib.Path(f"/proc/{asking.pid}/wchan").exists(), asking)
        program.kill()
        program.wait()
        self.assertEqual(asking.status(), 1)
        self.assertRegex(asking.complaint(), "Quillmar (ended before the command was done|is not running)")
        self.quit(self.start_and_wait())

    def test_an_answer_that_cannot_be_written_is_a_failure(self):
        reader, unread = os.pipe()
        os.close(reader)
        program = self.start_and_wait()
        for output, reason in ((os.open("/dev/full", os.O_WRONLY), b"No space left on device"), (unread, b"Broken pipe")):
            for verb in ("--version", "status", "watch"):
                answer = subprocess.run([PROGRAM, verb], env=self.environment, stdout=output, stderr=subprocess.PIPE)
                self.assertEqual(answer.returncode, 1, verb)
                self.assertIn(b"The output could not be written: %s." % reason, answer.stderr, verb)
            os.close(output)
        self.quit(program)

    def test_two_starts_at_once_are_one_program(self):
        for _ in range(5):
            count = self.log().count(COMPLETED)
            programs = [self.start() for _ in range(2)]
            wait_until("one of them", lambda: self.log().count(COMPLETED) == count + 1)
            wait_until("the end of the other", lambda: [p.poll() for p in programs].count(None) == 1)
            self.assertEqual([p.poll() for p in programs if p.poll() is not None], [0])
            self.quillmar("quit")
            wait_until("the end", lambda: None not in [p.poll() for p in programs])

    def test_without_its_agent_it_says_so(self):
        folder = self.home / "bin"
        folder.mkdir()
        for name in ("quillmar", "Info.json"):
            shutil.copy(pathlib.Path(PROGRAM).parent / name, folder)
        answer = run(str(folder / "quillmar"), env=self.environment)
        self.assertEqual(answer.returncode, 1)
        self.assertRegex(answer.stderr, "quillmar: The program .*quillmar-agent cannot be started: No such file")
        self.quit(self.start_and_wait())


if __name__ == "__main__":
    unittest.main()
