"""Parsing of the project's Markdown documents: links, names of headings, and code blocks."""

import collections
import glob
import os
import re

PROJECT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
CODE = re.compile(r'(`+)(.+?)(?<!`)\1(?!`)')
LINK = re.compile(r'(?<!!)\[((?:[^][]|\[[^][]*\])*)\]\(([^()\s]+)\)')
IMAGE = re.compile(r'!\[([^][]*)\]\(([^()\s]+)\)')
HEADING = re.compile(r'(#+) (.*)$')

# language: None for an indented block; first: the number of its first line
Block = collections.namedtuple('Block', 'path first language lines')


def read(path):
    with open(path, encoding='utf-8') as file:
        return file.read()


def documents(*patterns):
    return [path for pattern in patterns
            for path in sorted(glob.glob(os.path.join(PROJECT, pattern)))]


def name_of(path):
    """A path as messages show it."""
    return os.path.relpath(path, PROJECT)


def anchor(text):
    """The anchor that a code host generates for a heading."""
    text = re.sub(r'[`*]', '', LINK.sub(r'\1', text)).strip().lower()
    return re.sub(r'[^\w\- ]', '', text).replace(' ', '-')


def parts(path):
    """Each line of a document, its number, and whether it is part of a code block."""
    fenced = False
    may_begin = True
    indented = False
    for number, line in enumerate(read(path).split('\n'), 1):
        if line.startswith('```'):
            fenced = not fenced
            yield number, line, True
        elif fenced:
            yield number, line, True
        else:
            indented = line.startswith('    ') and (indented or may_begin)
            may_begin = not line
            yield number, line, indented


def blocks(path):
    """The code blocks of a document, in order."""
    found = []
    open_block = None
    for number, line, is_code in parts(path):
        if open_block is not None and open_block.language is not None:
            if line.startswith('```'):
                open_block = None
            else:
                open_block.lines.append(line)
        elif line.startswith('```'):
            open_block = Block(path, number + 1, line[3:].strip(), [])
            found.append(open_block)
        elif is_code:
            if open_block is None:
                open_block = Block(path, number, None, [])
                found.append(open_block)
            open_block.lines.append(line[4:])
        else:
            open_block = None
    return found
