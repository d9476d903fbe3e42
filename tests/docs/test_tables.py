"""The names in the documents' tables are those of the component and of the tools."""

import json
import os
import re
import subprocess
import unittest
import xml.etree.ElementTree as xml
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from documents import ROOT, all_documents
from processes import PATIENCE, await_that, running

HOST = os.environ["QUORVEL_HOST"]
SCANNER = os.environ["QUORVEL_SCANNER"]
RUSSIAN = os.environ["QUORVEL_LIBRARY"]
ENGLISH = os.environ["QUORVEL_ENGLISH_LIBRARY"]  # the same, for a process that starts in English

GUIDES = [all_documents()["docs/guide"], all_documents()["docs/guide.ru"]]
INTEGRATIONS = [all_documents()["docs/integration"], all_documents()["docs/integration.ru"]]


def output_of(*words):
    return subprocess.run([HOST, *words], stdout=subprocess.PIPE, text=True, check=True,
                          env={**os.environ, "LC_ALL": "C.UTF-8"}, timeout=PATIENCE).stdout


def parameters_of(library):
    document = output_of("--library", library, "form", "--xml")
    return {parameter.get("Name"): parameter
            for parameter in xml.fromstring(document.encode()).iter("Parameter")}


def choices_of(parameter):
    return {item.text: item.get("Value") for item in parameter.iter("Item")}


def event_of(scan, port, library, **parameters):
    """The event of a scan at this /dev/ttyUSB, with the parameters set."""
    file = f"/dev/ttyUSB{port}"
    settings = [word for name, value in parameters.items() for word in ("--set", f"{name}={value}")]
    with running([SCANNER, "serial", "--link", file, scan], stderr=subprocess.DEVNULL):
        await_that(Path(file).exists, f"a scanner at {file}")
        return json.loads(output_of("--library", library, "listen", "--port", file, "--count", "1",
                                    "--json", *settings))


class Ports(unittest.TestCase):
    def test_the_four_names_of_a_port(self):
        for guide in GUIDES:
            rows = guide.table("/dev/ttyS0")
            for file, *_ in rows:
                Path(file).touch()
                self.addCleanup(Path(file).unlink, missing_ok=True)
            form = choices_of(parameters_of(RUSSIAN)["Port"])
            listed = re.findall(r"^(\S+): port (\d+), (.*) \(test window: (.*)\)$",
                                output_of("list"), re.MULTILINE)
            for file, number, in_form, in_window in rows:
                with self.subTest(f"{guide.name}: {file}"):
                    self.assertEqual(form[in_form], number)
                    self.assertIn((file, number, in_form, in_window), listed)


class Parameters(unittest.TestCase):
    def test_those_of_the_form(self):
        russian, english = parameters_of(RUSSIAN), parameters_of(ENGLISH)
        for guide in GUIDES:
            rows = guide.table("Port")
            self.assertEqual([row[0] for row in rows], list(russian))
            for name, caption, kind, default, _ in rows:
                with self.subTest(f"{guide.name}: {name}"):
                    captions = [form[name].get("Caption") for form in (russian, english)]
                    self.assertEqual(caption, "{} ({})".format(*captions))
                    number = russian[name].get("TypeValue") == "Number"
                    self.assertEqual(kind in ("number", "число"), number)
                    self.assertEqual(default, russian[name].get("DefaultValue"))

    def test_those_beside_the_form(self):
        setters = (ROOT / "performer/QuorvelPerformerDesktop.cpp").read_text()
        known = set(re.findall(r'^      \{L"(\w+)", ', setters, re.MULTILINE))
        for guide in GUIDES:
            names = [row[0] for rows in (guide.table("Port"), guide.table("EquipmentType"))
                     for row in rows]
            with self.subTest(guide.name):
                self.assertEqual(len(names), len(set(names)))
                self.assertEqual(set(names), known)

    def test_the_component_takes_each(self):
        for name, kind, *_ in GUIDES[0].table("EquipmentType"):
            done = self.listen_with(f"{name}={'true' if kind == 'boolean' else 1}")
            self.assertNotIn(name, done.stderr)
        self.assertIn("NoSuchName", self.listen_with("NoSuchName=1").stderr)

    @staticmethod
    def listen_with(setting):
        return subprocess.run([HOST, "listen", "--port", "64", "--set", setting],
                              stderr=subprocess.PIPE, text=True, timeout=PATIENCE)

    def test_those_without_effect(self):
        odd = {"number": 3, "text": "Windows-1251", "boolean": "false", "any": "/nowhere"}
        rows = GUIDES[0].table("Port") + GUIDES[0].table("EquipmentType")
        idle = {row[0]: odd[row[-3]] for row in rows if row[-1].startswith("No effect")}
        self.assertEqual(len(idle), 8)
        self.assertEqual(event_of("Привет", 0, RUSSIAN, **idle)["data"], "Привет")
        # The same in both languages.
        for guide in GUIDES:
            rows = guide.table("Port") + guide.table("EquipmentType")
            marked = {row[0] for row in rows if re.match("No effect|Не действует", row[-1])}
            self.assertEqual(marked, set(idle))

    def test_keys_for_the_group_separator(self):
        choices = choices_of(parameters_of(RUSSIAN)["GSSymbolKey"])
        named = {"<NONE>": "-1"}
        for guide in GUIDES:
            [(_, none), (keys, numbers), *others] = guide.table("-1", column=1)
            self.assertEqual(none, "-1")
            first, last = re.findall(r"F(\d+)", keys)
            low, high = re.findall(r"\d+", numbers)
            for key, number in zip(range(int(first), int(last) + 1),
                                   range(int(low), int(high) + 1), strict=True):
                named[f"F{key}"] = str(number)
            named.update(others)
            with self.subTest(guide.name):
                self.assertEqual(named, choices)


class Findings(unittest.TestCase):
    def test_each_is_explained(self):
        sources = "".join(file.read_text() for file in sorted((ROOT / "tools/host").glob("*.*")))
        known = set(re.findall(r'FindingText k\w+ = \{\s*"([\w-]+)"', sources))
        self.assertGreater(len(known), 15)
        for guide in GUIDES:
            text = (ROOT / f"{guide.name}.md").read_text()
            with self.subTest(guide.name):
                self.assertEqual(set(re.findall(r"^- `([\w-]+)`: ", text, re.MULTILINE)), known)


class Methods(unittest.TestCase):
    def test_names_and_arguments(self):
        first_class = output_of("info").partition("CardReaderDevice")[0]
        methods = re.findall(r"^    (\w+)\((\d)\) +(\w+)$", first_class, re.MULTILINE)
        self.assertEqual(len(methods), 10)
        expected = [(str(number), english, russian, arguments)
                    for number, (english, arguments, russian) in enumerate(methods)]
        for document in INTEGRATIONS:
            rows = [tuple(row[:4]) for row in document.table("GetVersion", column=1)]
            with self.subTest(document.name):
                self.assertEqual(rows, expected)


class Events(unittest.TestCase):
    EQUIPMENT = {"barcode scanner": "СканерШтрихкода", "сканер штрихкода": "СканерШтрихкода",
                 "card reader": "СчитывательМагнитныхКарт",
                 "считыватель карт": "СчитывательМагнитныхКарт"}

    @staticmethod
    def name_of(port, equipment, data_type, library):
        # Each at a port of its own: several are tried at the same time.
        return event_of("A1", port, library, EquipmentType=equipment,
                        OutputDataType=data_type)["event"]

    def test_names(self):
        for document in INTEGRATIONS:
            rows = document.table("Штрихкод", column=2)
            self.assertEqual(len(rows), 6)
            tries = [(self.EQUIPMENT[row[0]], row[1], library)
                     for row in rows for library in (RUSSIAN, ENGLISH)]
            with ThreadPoolExecutor() as pool:
                names = list(pool.map(self.name_of, range(len(tries)), *zip(*tries)))
            with self.subTest(document.name):
                self.assertEqual(names, [name for row in rows for name in row[2:4]])


if __name__ == "__main__":
    unittest.main()
