"""Runs the commands of the documents as their readers would, and compares what they print.

In a private /dev, on an X server whose only scanner that types is called Handheld Scanner.
"""

import os
import re
import signal
import subprocess
import tempfile
import threading
import unittest
from contextlib import ExitStack, contextmanager
from pathlib import Path

from documents import ROOT, all_documents
from processes import PATIENCE, await_that, running
from scenarios import SCENARIOS, Leave, scenario_of

HOST = Path(os.environ["QUORVEL_HOST"])
SCANNER = Path(os.environ["QUORVEL_SCANNER"])
PORT = Path("/dev/ttyUSB0")

# Documents whose commands readers are to enter.
DOCUMENTS = [document for name, document in all_documents().items() if name != "docs/licences"]


@contextmanager
def scanner(arguments):
    """A virtual scanner at the port."""
    with running([SCANNER, "serial", "--link", PORT, *arguments], stdout=subprocess.DEVNULL,
                 stderr=subprocess.DEVNULL):
        await_that(PORT.exists, "a scanner at the port")
        # Of a new pseudo terminal.
        subprocess.run(["stty", "-F", PORT, "9600"], check=True)
        yield


class TypingScanner:
    """Types a scan from time to time while it is asked to. The X server takes one such program."""

    def __init__(self):
        words = [SCANNER, "keyboard", "--socket", os.environ["QUORVEL_KEYBOARD"], "--file", "-"]
        self.process = subprocess.Popen(words, stdin=subprocess.PIPE)
        self.typing = threading.Event()
        self.ended = threading.Event()
        self.thread = threading.Thread(target=self.run)
        self.thread.start()

    def run(self):
        while not self.ended.wait(0.3):
            if self.typing.is_set():
                self.process.stdin.write(b"4600051000057\n")
                self.process.stdin.flush()

    @contextmanager
    def at_work(self):
        self.typing.set()
        try:
            yield
        finally:
            self.typing.clear()

    def end(self):
        self.ended.set()
        self.thread.join()
        self.process.kill()
        self.process.communicate()


def comparable(lines):
    """What a command printed, without what differs from run to run."""
    times = re.compile(r"(\d{4}-\d\d-\d\dT)?\d\d:\d\d:\d\d\.\d{3}(\+\d{4})?")
    return [times.sub("TIME", line.rstrip()) for line in lines]


def is_shown(shown, printed):
    """Whether the lines are those that a document shows; "..." stands for any number of lines."""
    if not shown:
        return not printed
    if shown[0] == "...":
        return any(is_shown(shown[1:], printed[at:]) for at in range(len(printed) + 1))
    return bool(printed) and shown[0] == printed[0] and is_shown(shown[1:], printed[1:])


class Commands(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.typist = TypingScanner()
        # The programs under the names that they have when they are installed.
        cls.folder = tempfile.TemporaryDirectory()
        bin_folder = Path(cls.folder.name)
        for program in (HOST, SCANNER):
            for suffix in ("", "32"):
                (bin_folder / f"{program.name}{suffix}").symlink_to(program)
        # In a private /dev, whoever runs the tests is root already.
        sudo = bin_folder / "sudo"
        sudo.write_text('#!/bin/sh\nexec "$@"\n')
        sudo.chmod(0o755)
        cls.path = f"{bin_folder}:{os.environ['PATH']}"

    @classmethod
    def tearDownClass(cls):
        cls.typist.end()
        cls.folder.cleanup()

    def environment(self, document):
        language = "ru_RU.UTF-8" if document.name.endswith(".ru") else "en_US.UTF-8"
        variables = {**os.environ, "PATH": self.path, "LC_MESSAGES": language,
                     "LC_CTYPE": "C.UTF-8", "USER": "root"}
        # A session of the machine's own is none of the commands' business.
        for name in ("LC_ALL", "LANG", "WAYLAND_DISPLAY", "XDG_SESSION_TYPE"):
            variables.pop(name, None)
        return variables

    def words(self, text):
        """The shell's command line. Programs are the built ones, a library lies beside them."""
        text = text.replace("build/lin32/", f"{HOST.parent}/")
        return ["bash", "-c", text.replace("./QuorvelNative", f"{HOST.parent}/QuorvelNative")]

    def run_to_its_end(self, words, scenario, command, environment):
        done = subprocess.run(words, cwd=ROOT, env=environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              timeout=3 * PATIENCE)
        self.assertEqual(done.returncode, scenario.code, done.stdout)
        self.assertIn(scenario.shows, done.stdout)
        if command.output:
            printed = comparable(done.stdout.splitlines())
            self.assertTrue(is_shown(comparable(command.output), printed), done.stdout)

    def run_until_shown(self, words, scenario, environment):
        with running(words, cwd=ROOT, env=environment, stdin=subprocess.DEVNULL,
                     stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                     start_new_session=True) as process:
            if scenario.shows:
                printed = ""
                while scenario.shows not in printed:
                    line = process.stdout.readline()
                    self.assertTrue(line, printed)
                    printed += line
            elif "scanner" in words[-1]:
                self.receive_a_scan(environment)
            else:
                await_that(self.window_is_there, "the test window")
            os.killpg(process.pid, signal.SIGINT)
            process.wait(PATIENCE)

    def receive_a_scan(self, environment):
        await_that(PORT.exists, "the scanner at its port")
        done = subprocess.run([HOST, "listen", "--port", PORT, "--count", "1"], env=environment,
                              stdout=subprocess.PIPE, text=True, timeout=3 * PATIENCE, check=True)
        self.assertIn("4600051000057", done.stdout)

    @staticmethod
    def window_is_there():
        tree = subprocess.run(["xwininfo", "-root", "-tree"], stdout=subprocess.PIPE, text=True,
                              env={**os.environ, "LC_ALL": "C.UTF-8"}, check=True)
        return "Тест устройства" in tree.stdout

    def test_each_does_what_is_written(self):
        tried = []
        for document in DOCUMENTS:
            environment = self.environment(document)
            for command in document.commands():
                scenario = scenario_of(command.text)
                # A command without output is the same in every document.
                if isinstance(scenario, Leave) or command in tried:
                    continue
                with self.subTest(f"{document.name}: {command.text}"), ExitStack() as devices:
                    self.assertIsNotNone(scenario, "add it to scenarios.py")
                    tried.append(command)
                    if scenario.scanner:
                        devices.enter_context(scanner(scenario.scanner))
                    if scenario.types:
                        devices.enter_context(self.typist.at_work())
                    here = command.text.replace(*scenario.instead, 1)
                    if scenario.ends:
                        self.run_to_its_end(self.words(here), scenario, command, environment)
                    else:
                        self.run_until_shown(self.words(here), scenario, environment)

    def test_those_that_are_left_are_read_by_the_shell(self):
        for text, scenario in SCENARIOS.items():
            if isinstance(scenario, Leave):
                with self.subTest(text):
                    self.assertNotEqual(scenario.why, "")
                    subprocess.run(["bash", "-n", "-c", text], check=True)

    def test_no_scenario_is_out_of_use(self):
        used = {command.text for document in DOCUMENTS for command in document.commands()}
        self.assertEqual(set(SCENARIOS) - used, set())

    def test_the_comparison_of_output(self):
        self.assertTrue(is_shown(["a", "...", "c"], ["a", "b", "b", "c"]))
        self.assertFalse(is_shown(["a", "...", "c"], ["a", "b"]))
        self.assertFalse(is_shown(["a"], ["a", "b"]))


class Configuration(unittest.TestCase):
    """The lines of lines.conf that the documents show are understood by what reads it."""

    def test_lines_are_understood(self):
        count = 0
        for document in DOCUMENTS:
            for block in document.blocks:
                for line in block.lines if block.language == "conf" else []:
                    count += 1
                    with self.subTest(line):
                        self.assertIn("QUORVEL_LINE=framed", self.settings(line))
        self.assertGreater(count, 0)

    def test_a_line_that_is_not_understood(self):
        self.assertNotIn("QUORVEL_LINE=framed", self.settings("ttyS0 end=cr,lf"))

    @staticmethod
    def settings(line):
        port = line.split()[0]
        vendor, product, serial = (port.split(":")[1:] + ["", "", ""])[:3]
        device = port if port.startswith("tty") else "ttyUSB0"
        with tempfile.NamedTemporaryFile("w", suffix=".conf") as file:
            file.write(line + "\n")
            file.flush()
            done = subprocess.run(
                [ROOT / "packaging/quorvel-frame-line", "--settings", file.name, f"/dev/{device}"],
                env={**os.environ, "ID_VENDOR_ID": vendor, "ID_MODEL_ID": product,
                     "ID_SERIAL_SHORT": serial},
                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        return done.stdout


if __name__ == "__main__":
    unittest.main()
