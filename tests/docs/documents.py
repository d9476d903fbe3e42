"""Reads the project's Markdown documents."""

import os
import re
from dataclasses import dataclass, field
from functools import cache
from pathlib import Path

from markdown_it import MarkdownIt

ROOT = Path(os.environ["QUORVEL_SOURCES"])

# Each in English and in Russian.
PAIRS = ["README", "docs/guide", "docs/integration", "docs/unplugging"]


@dataclass
class Command:
    """A command line of a document, with the output that the document shows, if any."""

    text: str
    output: list[str] = field(default_factory=list)


@dataclass
class Block:
    """A block of literal lines: indented, or fenced, with the language that the fence names."""

    language: str
    lines: list[str]


@dataclass
class Document:
    name: str
    headings: list[tuple[int, str]] = field(default_factory=list)  # level and text
    blocks: list[Block] = field(default_factory=list)
    spans: list[str] = field(default_factory=list)  # literal words in a text
    links: list[str] = field(default_factory=list)
    pictures: list[tuple[str, str]] = field(default_factory=list)  # file and description
    tables: list[list[list[str]]] = field(default_factory=list)  # rows of cells, the head first

    def commands(self):
        """The commands of the blocks, then those in the text."""
        found = [command for block in self.blocks for command in commands_of(block)]
        return found + [Command(span) for span in self.spans if is_command(span)]

    def table(self, first_cell, column=0):
        """The rows below the head of the table that has this in its first row's column."""
        [rows] = [rows[1:] for rows in self.tables if rows[1][column:column + 1] == [first_cell]]
        return rows

    def anchors(self):
        return {anchor_of(text) for _, text in self.headings}


# Words with which a command line begins, and no other literal text.
PROGRAMS = re.compile(
    r"(sudo|quorvel-\w+|\./\S+|(scripts|build|packaging|\.ci)/\S+|adduser|apt|cmake|ctest|gdb|kill"
    r"|pkexec|stty|systemctl|udevadm|valgrind) +\S")


def is_command(span):
    return PROGRAMS.match(span) is not None


def commands_of(block):
    if block.language == "console":
        commands = []
        for line in block.lines:
            if line.startswith("$ "):
                commands.append(Command(line[2:]))
            else:
                commands[-1].output.append(line)
        return commands
    if block.language != "indented":
        return []
    # Commands with comments; a backslash goes on with the next line.
    text = "\n".join(block.lines).replace("\\\n", " ")
    lines = [re.sub(r"(^|\s+)# .*", "", line).strip() for line in text.split("\n")]
    return [Command(re.sub(r"\s+", " ", line)) for line in lines if line]


def anchor_of(heading):
    """The anchor that is made of a heading where the documents are shown."""
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def text_of(inline):
    """The text without its marks, as a reader sees it."""
    return "".join(child.content for child in inline.children)


def read(name):
    document = Document(name)
    tokens = MarkdownIt("commonmark").enable("table").parse((ROOT / f"{name}.md").read_text())
    for before, token in zip([None] + tokens, tokens):
        if token.type in ("fence", "code_block"):
            language = token.info if token.type == "fence" else "indented"
            document.blocks.append(Block(language, token.content.rstrip("\n").split("\n")))
        elif token.type == "table_open":
            document.tables.append([])
        elif token.type == "tr_open":
            document.tables[-1].append([])
        elif token.type == "inline":
            if before.type == "heading_open":
                document.headings.append((int(before.tag[1]), text_of(token)))
            elif before.type in ("td_open", "th_open"):
                document.tables[-1][-1].append(text_of(token))
            for child in token.children:
                if child.type == "code_inline":
                    document.spans.append(child.content)
                elif child.type == "link_open":
                    document.links.append(child.attrs["href"])
                elif child.type == "image":
                    document.pictures.append((child.attrs["src"], child.content))
    return document


@cache
def all_documents():
    files = [*ROOT.glob("*.md"), *ROOT.glob("docs/*.md")]
    names = sorted(str(file.relative_to(ROOT).with_suffix("")) for file in files)
    return {name: read(name) for name in names if name != "CHANGELOG"}


@cache
def pairs():
    """Each document in English with its twin."""
    documents = all_documents()
    return [(documents[name], documents[name + ".ru"]) for name in PAIRS]
