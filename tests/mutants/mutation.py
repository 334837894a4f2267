"""Mutation testing: would the tests detect a defect? A mutant is the library with one line of src/ changed
or omitted. This module lists the mutants of a file, builds one (compiles the changed source and links) and
runs a test program of the dev build with it, which finds it through LD_LIBRARY_PATH. A mutant that passes
shows that a test is missing."""

import os
import pathlib
import re
import resource
import shlex
import signal
import subprocess
import threading

LIBRARY = "lib/libMiscTools.so.1.0.0"
PASSED, FAILED, TIMED_OUT = "passed", "failed", "timed out"


class Mutant:
    def __init__(self, path, number, line, changed):
        self.path, self.number, self.line, self.changed = path, number, line, changed

    def __str__(self):
        return f"{self.path}:{self.number}: {self.line.strip()} -> {self.changed.strip() or '(omitted)'}"

    def key(self):
        return f"{self.path}: {self.line.strip()} -> {self.changed.strip() or '(omitted)'}"


# Regular expressions and replacements: each match is a mutant.
REPLACEMENTS = [
    (r" == ", " != "),
    (r" != ", " == "),
    (r" < ", " <= "),
    (r" > ", " >= "),
    (r" <= ", " < "),
    (r" >= ", " > "),
    (r" && ", " || "),
    (r" \|\| ", " && "),
    (r" \+ ", " - "),
    (r" - ", " + "),
    (r" \+= ", " = "),
    (r"\+\+", "--"),
    (r"\btrue\b", "false"),
    (r"\bfalse\b", "true"),
    (r"\bcontinue;", "break;"),
    (r"\bbreak;", "continue;"),
    (r"\b0\b", "1"),
    (r"\b1\b", "2"),
    (r"\bif \((?=[^!])", "if (!"),
    (r"(?<=[( ])!(?=\w)", ""),
]
# A statement on its own line (a call, an assignment) is omitted.
STATEMENT = re.compile(r"^ +(?!return|using|const |static |QString |case |default|delete )[\w.>()*:-]+"
                       r"(\(.*\)| [+&|]?= .*);$")


def code_of(line):
    """The line with strings and comments replaced by spaces, so that columns are kept."""
    spaces = lambda match: " " * len(match.group())
    return re.sub(r"//.*|\"(\\.|[^\"\\])*\"|'(\\.|[^'\\])+'", spaces, line)


def mutants_of(path):
    in_comment = False
    for number, line in enumerate(path.read_text().split("\n"), 1):
        code = code_of(line)
        if code.lstrip().startswith("/*"):
            in_comment = True
        if in_comment or code.startswith("#") or "#include" in code:
            in_comment = in_comment and "*/" not in code
            continue
        for expression, replacement in REPLACEMENTS:
            for match in re.finditer(expression, code):
                yield Mutant(path, number, line,
                             line[:match.start()] + replacement + line[match.end():])
        if STATEMENT.match(code):
            yield Mutant(path, number, line, "")


class Compiler:
    """Runs the commands of a build with one source and the output replaced."""

    def __init__(self, build):
        self.build = build
        lines = subprocess.check_output(["ninja", "-C", build, "-t", "commands", LIBRARY],
                                        text=True).splitlines()
        self.link = lines[-1]
        self.compile = {}
        for line in lines:
            # Quoted if the project's path contains a space.
            match = re.search(r""" -o (\S+\.o) -c ['\"]?(.+/(src/[\w./]+\.cpp))['\"]?$""", line)
            if match:
                self.compile[match.group(3)] = (line, match.group(1), match.group(2))

    def make(self, mutant, directory):
        """The library with that change; None if it does not compile."""
        command, old_object, old_source = self.compile[str(mutant.path)]
        source = directory / mutant.path.name
        lines = mutant.path.read_text().split("\n")
        lines[mutant.number - 1] = mutant.changed
        source.write_text("\n".join(lines))
        new_object = directory / "mutant.o"
        library = directory / "libMiscTools.so.1"
        includes = shlex.quote(str(pathlib.Path(old_source).parent))
        steps = [
            f"{command[:command.rindex(' -o ')]} -MF {directory}/mutant.d -w -I{includes}"
            f" -o {new_object} -c {source}",
            self.link.replace(old_object, str(new_object)).replace(
                f"-o {LIBRARY}", f"-o {library}"),
        ]
        for step in steps:
            if subprocess.run(step, shell=True, cwd=self.build, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL).returncode != 0:
                return None
        return library


def run_quietly(command, directory, environment, timeout_in_s, memory_in_bytes=resource.RLIM_INFINITY):
    """The result of the command: PASSED, FAILED or TIMED_OUT. A test is killed at its first failure."""
    def limits():
        resource.setrlimit(resource.RLIMIT_AS, (memory_in_bytes, memory_in_bytes))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

    process = subprocess.Popen(command, cwd=directory, env=environment, preexec_fn=limits,
                               start_new_session=True, stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    is_late = threading.Event()

    def end(reason=None):
        if reason:
            reason.set()
        os.killpg(process.pid, signal.SIGKILL) # the session started above

    clock = threading.Timer(timeout_in_s, end, [is_late])
    clock.start()
    with process.stdout as output:
        has_failed = any(line.startswith(b"FAIL!") for line in output)
    if has_failed:
        end()
    status = process.wait()
    clock.cancel()
    if has_failed or not is_late.is_set():
        return FAILED if has_failed or status != 0 else PASSED
    return TIMED_OUT
