#!/usr/bin/env python3
"""Runs test executables as processes and compares all that they do with stored files.

A case is a file cases/NAME.json:

    about        what the case shows; the first line of the expected file
    executable   the executable to run, by the name of its target
    runs         one object for each run; each starts in a fresh folder of its own. What stands
                 beside "runs" holds for all of them:
        args       the arguments
        env        variables; null removes one. By default LC_ALL is C.UTF-8 and QIX_TESTWORKDIR
                   is "work", and nothing else is set. "\\udcNN" stands for the byte NN.
        stdin      "/dev/null" (the default), "closed", "empty file", "output file", "ended pipe",
                   or {"text": ...},
                   which is what comes out of a pipe whose writer is gone
        dialogue   instead of stdin: pairs of a text to wait for on standard output and a line to
                   answer with
        kill after a text on standard output; the run is killed when it has been seen
        folders    folders that exist before the run, with their permissions: {"work": "755"}
        needs root true when the executable changes its user
        join empty lines
                   true when their number is a library's own, whose versions differ in it

The expected file expected/NAME.txt tells the exit status, both outputs and every file and folder
that each run leaves behind. Lines begin with "|"; "\\" begins an escape, and a last line without
a line end ends in "\\(no line end)". Only two things that vary are blanked: the folder of the run
is TMP, and the user's name in a path is USER.

usage: run.py [--update] BINARY_FOLDER [CASE...]      --update records instead of comparing
QIX_APPROVAL names another folder than this one with cases and expected files.
"""

import difflib
import json
import os
import pwd
import re
import resource
import selectors
import shlex
import signal
import stat
import subprocess
import sys
import tempfile
import time
from pathlib import Path

HERE = Path(os.environ.get("QIX_APPROVAL", Path(__file__).parent)).resolve()
SKIPPED = 77
TIME_LIMIT = 120  # seconds; far beyond what any run takes on a busy machine
HISTORY = re.compile(r"testHistory-.*\.bin")  # what differs from run to run is in it
PASSED_ON = re.compile(r"(A|UB|T|L)SAN_OPTIONS|LD_LIBRARY_PATH|LLVM_PROFILE_FILE|GCOV_.*")


class Run:
    """One run of an executable: what it gets, and what comes of it."""

    def __init__(self, binary, settings, folder):
        self.binary = binary
        self.settings = settings
        self.folder = Path(folder)

    def prepare(self):
        self.folder.chmod(0o777)
        for name, permissions in self.settings.get("folders", {}).items():
            folder = self.folder / name.replace("USER", users()[0])
            folder.mkdir(parents=True)
            folder.chmod(int(permissions, 8))

    def environment(self):
        wanted = {"LC_ALL": "C.UTF-8", "QIX_TESTWORKDIR": "work", **self.settings.get("env", {})}
        wanted = {name: value.replace("TMP", str(self.folder))
                  for name, value in wanted.items() if value is not None}
        kept = {name: value for name, value in os.environ.items() if PASSED_ON.fullmatch(name)}
        return {**kept, **wanted}

    def execute(self):
        self.prepare()
        stdin = self.open_stdin()
        process = subprocess.Popen(
            [self.binary.name] + self.settings.get("args", []), executable=self.binary,
            cwd=self.folder, env=self.environment(), stdin=stdin, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE, preexec_fn=self.in_child)
        if isinstance(stdin, int) and stdin >= 0:
            os.close(stdin)
        with process:
            self.converse(process)
        self.status = process.returncode

    def in_child(self):
        os.umask(0o022)
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        if self.settings.get("stdin") == "closed":
            os.close(0)

    def open_stdin(self):
        kind = self.settings.get("stdin", "/dev/null")
        if "dialogue" in self.settings:
            return subprocess.PIPE
        if kind in ("/dev/null", "closed"):
            return subprocess.DEVNULL
        if kind == "empty file":
            return os.open(self.folder, os.O_TMPFILE | os.O_RDWR)
        if kind == "output file":
            return os.open(self.folder, os.O_TMPFILE | os.O_WRONLY)
        reader, writer = os.pipe()
        os.write(writer, b"" if kind == "ended pipe" else kind["text"].encode())
        os.close(writer)
        return reader

    def converse(self, process):
        """Collects the outputs while it answers, and kills the run where it has to end."""
        outputs = {process.stdout: b"", process.stderr: b""}
        dialogue = list(self.settings.get("dialogue", []))
        kill_after = self.settings.get("kill after", "").encode()
        answered = 0  # bytes of standard output that the answers so far belong to
        deadline = time.monotonic() + TIME_LIMIT
        with selectors.DefaultSelector() as selector:
            for stream in outputs:
                selector.register(stream, selectors.EVENT_READ)
            while selector.get_map():
                for key, _ in selector.select(max(0, deadline - time.monotonic())):
                    data = os.read(key.fd, 65536)
                    outputs[key.fileobj] += data
                    if not data:
                        selector.unregister(key.fileobj)
                seen = outputs[process.stdout]
                while dialogue and dialogue[0][0].encode() in seen[answered:]:
                    answered = seen.index(dialogue[0][0].encode(), answered)
                    answered += len(dialogue[0][0].encode())
                    process.stdin.write((dialogue.pop(0)[1] + "\n").encode())
                    process.stdin.flush()
                if kill_after and kill_after in seen:
                    outputs[process.stdout] = seen[:seen.index(kill_after) + len(kill_after)]
                    process.kill()
                    break
                if time.monotonic() > deadline:
                    process.kill()
                    sys.exit(f"no end after {TIME_LIMIT} s; so far:\n{seen[-2000:]!r}")
        self.stdout = outputs[process.stdout]
        self.stderr = outputs[process.stderr]

    def report(self):
        yield "$ " + self.shown_command()
        yield "exit status: " + self.shown_status()
        yield from self.section("standard output", self.stdout)
        yield from self.section("standard error", self.stderr)
        for path in sorted(self.folder.rglob("*")):
            name = self.blank_path(path.relative_to(self.folder))
            if HISTORY.fullmatch(path.name):
                yield f"file {name}: (holds times)"
            elif path.is_file():
                yield from self.section("file " + name, path.read_bytes())
            elif not any(path.iterdir()):
                yield f"empty folder {name} {stat.S_IMODE(path.stat().st_mode):o}"

    def shown_command(self):
        settings = self.settings
        variables = [f"{name}={shlex.quote(escaped(os.fsencode(value)))}" if value is not None
                     else f"{name}(unset)" for name, value in settings.get("env", {}).items()]
        words = [self.binary.name] + [shlex.quote(a) for a in settings.get("args", [])]
        stdin = settings.get("stdin", "/dev/null")
        if isinstance(stdin, dict):
            words.append("< " + json.dumps(stdin["text"]))
        elif "dialogue" in settings:
            words.append("< (dialogue)")
        elif stdin != "/dev/null" or not settings.get("args"):
            words.append("< /dev/null" if stdin == "/dev/null" else f"< ({stdin})")
        return " ".join(variables + words)

    def shown_status(self):
        if self.settings.get("kill after"):
            return "killed from outside"
        return str(self.status) if self.status >= 0 else signal.Signals(-self.status).name

    def section(self, title, data):
        if not data:
            yield title + ": (empty)"
            return
        yield title + ":"
        data = self.blank(data)
        if self.settings.get("join empty lines"):
            data = re.sub(rb"\n\n+", b"\n\n", data)
        for line in data.splitlines(keepends=True):
            ended = line.endswith(b"\n")
            yield "|" + escaped(line[:-1] if ended else line) + ("" if ended else "\\(no line end)")

    def blank(self, data):
        data = data.replace(str(self.folder).encode(), b"TMP")
        for user in users():
            for end in ("'", "/testLog.txt'"):
                data = data.replace(f"/{user}{end}".encode(), f"/USER{end}".encode())
        return data

    def blank_path(self, path):
        parts = ["USER" if part in users() else part for part in path.parts]
        return escaped(os.fsencode("/".join(parts)))


def users():
    """The users under whom a run may take place: the own one, and one without rights."""
    return pwd.getpwuid(os.geteuid()).pw_name, "nobody"


def escaped(data):
    """The bytes as text that shows each of them: valid UTF-8 as it is, blanks at the end too."""
    text = data.replace(b"\\", b"\\\\").decode("utf-8", "backslashreplace")
    text = re.sub(r"[\x00-\x1f\x7f-\x9f]", lambda match: f"\\x{ord(match[0]):02x}", text)
    return re.sub(r" $", r"\\x20", text)


def transcript(name, binaries):
    """What the expected file of the case should hold."""
    case = json.loads((HERE / "cases" / f"{name}.json").read_text("utf-8"))
    about, executable, runs = case.pop("about"), case.pop("executable"), case.pop("runs")
    lines = [about]
    for settings in ({**case, **own} for own in runs):
        if settings.get("needs root") and os.geteuid() != 0:
            print(f"{name}: only the administrator can run this")
            sys.exit(SKIPPED)
        with tempfile.TemporaryDirectory(prefix="qix approval ") as folder:
            run = Run(binaries / executable, settings, folder)
            run.execute()
            lines += ["", *run.report()]
    return "\n".join(lines) + "\n"


def differs(name, expected, actual):
    difference = difflib.unified_diff(expected.splitlines(), actual.splitlines(),
                                      f"expected/{name}.txt", "this run", lineterm="")
    print("\n".join(difference))


def main(arguments):
    update = "--update" in arguments
    binaries, *names = [argument for argument in arguments if argument != "--update"]
    names = names or sorted(path.stem for path in (HERE / "cases").glob("*.json"))
    status = 0
    for name in names:
        actual = transcript(name, Path(binaries).resolve())
        expected = HERE / "expected" / f"{name}.txt"
        if update:
            expected.write_text(actual, "utf-8")
        elif not expected.exists() or expected.read_text("utf-8") != actual:
            differs(name, expected.read_text("utf-8") if expected.exists() else "", actual)
            status = 1
    return status


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
