"""The two languages of a document have the same parts; every link and picture is there."""

import hashlib
import re
import unittest
from urllib.parse import unquote

from documents import ROOT, all_documents, anchor_of, pairs


def in_english(path):
    """A path or a link without the mark of the Russian twin."""
    return re.sub(r"\.ru(?=\.\w+(#|$))", "", path)


class Pairs(unittest.TestCase):
    def assert_same(self, part):
        for english, russian in pairs():
            with self.subTest(english.name):
                self.assertEqual(part(english), part(russian))

    def test_headings(self):
        self.assert_same(lambda document: [level for level, _ in document.headings])

    def test_commands(self):
        self.assert_same(lambda document: [command.text for command in document.commands()])

    def test_shape_of_the_output_that_is_shown(self):
        self.assert_same(
            lambda document: [len(command.output) for command in document.commands()])

    def test_other_literal_blocks(self):
        self.assert_same(lambda document: [
            block.lines for block in document.blocks if block.language != "console"])

    def test_pictures(self):
        self.assert_same(lambda document: [in_english(file) for file, _ in document.pictures])

    def test_tables(self):
        self.assert_same(lambda document: [
            [len(row) for row in rows] for rows in document.tables])

    def test_literal_words(self):
        # In Russian the doctor is called by the command's name.
        self.assert_same(lambda document: set(document.spans) - {"doctor"})

    def test_links(self):
        def links(document):
            # Without the anchors, which are headings, and without the link to the twin.
            files = [in_english(link).partition("#")[0] for link in document.links]
            return sorted(files)
        self.assert_same(links)

    def test_each_links_to_its_twin(self):
        for english, russian in pairs():
            self.assertIn(f"{russian.name.rpartition('/')[2]}.md", english.links)
            self.assertIn(f"{english.name.rpartition('/')[2]}.md", russian.links)

    def test_russian_descriptions_and_pictures(self):
        for _, russian in pairs():
            with self.subTest(russian.name):
                for file, description in russian.pictures:
                    self.assertRegex(description, "[а-я]")
                    twin = re.sub(r"(\.\w+)$", r".ru\1", in_english(file))
                    exists = (ROOT / russian.name).parent.joinpath(twin).exists()
                    self.assertEqual(file, twin if exists else in_english(file))


class Links(unittest.TestCase):
    def target(self, document, link):
        """The document that a link leads to, which must be there, and the anchor in it."""
        file, _, anchor = unquote(link).partition("#")
        path = (ROOT / document.name).parent / file if file else ROOT / f"{document.name}.md"
        self.assertTrue(path.exists(), f"{document.name}: {link}")
        return path.resolve(), anchor

    def test_lead_somewhere(self):
        for document in all_documents().values():
            for link in document.links:
                if re.match("https?://", link):
                    continue
                path, anchor = self.target(document, link)
                if not anchor:
                    continue
                name = str(path.relative_to(ROOT.resolve()).with_suffix(""))
                self.assertIn(anchor, all_documents()[name].anchors(),
                              f"{document.name}: {link}")

    def test_pictures_are_there_and_described(self):
        for document in all_documents().values():
            for file, description in document.pictures:
                self.target(document, file)
                self.assertNotEqual(description, "", f"{document.name}: {file}")

    def test_files_named_in_the_text_are_there(self):
        folders = "|".join(sorted(path.name for path in ROOT.iterdir() if path.is_dir()))
        named = re.compile(rf"(?!build/)({folders})/[\w./-]*|[\w-]+\.md")
        for document in all_documents().values():
            for span in document.spans:
                if named.fullmatch(span):
                    # A class is named without the ending of its files.
                    self.assertTrue(any(ROOT.glob(f"{span.rstrip('/')}*")),
                                    f"{document.name}: {span}")

    def test_anchors_are_made_as_expected(self):
        self.assertEqual(anchor_of("The end of a scan: the suffix"), "the-end-of-a-scan-the-suffix")
        self.assertEqual(anchor_of("GS и коды GS1"), "gs-и-коды-gs1")


class Pictures(unittest.TestCase):
    folder = ROOT / "docs/pictures"

    def test_diagrams_are_drawn_from_their_sources(self):
        for source in self.folder.glob("*.dot"):
            total = hashlib.sha256(source.read_bytes()).hexdigest()
            for language in ("", ".ru"):
                picture = source.with_suffix(f"{language}.svg").read_text()
                self.assertIn(f"<!-- source: {total} -->", picture,
                              f"run docs/pictures/draw-diagrams: {source.name} has changed")

    def test_each_is_used(self):
        used = {
            (ROOT / document.name).parent.joinpath(file).resolve()
            for document in all_documents().values() for file, _ in document.pictures}
        there = {file.resolve() for suffix in ("svg", "png")
                 for file in self.folder.glob(f"*.{suffix}")}
        self.assertEqual(there - used, set())

    def test_are_small(self):
        for file in self.folder.iterdir():
            self.assertLess(file.stat().st_size, 60_000, file.name)


if __name__ == "__main__":
    unittest.main()
