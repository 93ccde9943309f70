"""Processes of a private desktop: started with their output at hand, and none of them left behind."""

import ctypes
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import threading
import time

# Seconds that a condition may take on a busy machine before it counts as never coming; an emulated one is slower.
PATIENCE = 20.0 * float(os.environ.get("VISTREL_PATIENCE", "1"))
MARK = "VISTREL_STAGE"
_own = set()  # process ids that a Process waits for


class NeverCame(AssertionError):
    """A condition that was waited for did not come true."""


def wait_until(condition, what, patience=PATIENCE):
    """Asks `condition` until it gives something true, and returns that."""
    deadline = time.monotonic() + patience
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise NeverCame(f"never came: {what}")
        time.sleep(0.01)


class Process:
    """A child whose lines of output are kept. It dies with us, whatever ends us."""

    def __init__(self, arguments, environment, user=None, directory=None):
        self.arguments = [str(argument) for argument in arguments]
        self.lines = []
        self.errors = []
        self._news = threading.Condition()
        self._process = subprocess.Popen(
            self.arguments, env=environment, user=user, cwd=directory, stdin=subprocess.PIPE,
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, start_new_session=True)
        _own.add(self.pid)
        self._readers = [self._follow(self._process.stdout, self.lines), self._follow(self._process.stderr, self.errors)]

    def _follow(self, stream, into):
        def read():
            for raw in stream:
                with self._news:
                    into.append(raw.decode(errors="replace").rstrip("\n"))
                    self._news.notify_all()
            with self._news:
                self._news.notify_all()

        thread = threading.Thread(target=read, daemon=True)
        thread.start()
        return thread

    @property
    def pid(self):
        return self._process.pid

    @property
    def status(self):
        """None while it runs."""
        return self._process.poll()

    def write(self, line):
        self._process.stdin.write(f"{line}\n".encode())
        self._process.stdin.flush()

    def wait_line(self, matches, since=0, patience=PATIENCE, errors=False):
        """The index of the first line from `since` on that `matches` (a text it starts with, or a function)."""
        test = matches if callable(matches) else lambda line: line.startswith(matches)
        kept = self.errors if errors else self.lines

        def found():
            return next((index for index in range(since, len(kept)) if test(kept[index])), None)

        with self._news:
            if not self._news.wait_for(lambda: found() is not None or self._is_silent(), patience) or found() is None:
                tail = "\n".join(self.lines[-15:] + self.errors[-15:])
                raise NeverCame(f"{self.arguments[0]} never said {matches!r} (status {self.status}):\n{tail}")
            return found()

    def _is_silent(self):
        return not any(reader.is_alive() for reader in self._readers)

    def signal(self, number):
        self._process.send_signal(number)

    def wait(self, patience=PATIENCE):
        """The exit status, all output read."""
        status = self._process.wait(patience)
        _own.discard(self.pid)
        for reader in self._readers:
            reader.join(patience)
        return status

    def end(self):
        if self.status is None:
            self.signal(signal.SIGTERM)
            try:
                self._process.wait(5)
            except subprocess.TimeoutExpired:
                self.signal(signal.SIGKILL)
        self.wait()
        for stream in (self._process.stdin, self._process.stdout, self._process.stderr):
            try:
                stream.close()
            except BrokenPipeError:
                pass


def adopt_orphans():
    """Makes this process the parent of what its children leave behind, so that it can end and reap it."""
    pr_set_child_subreaper = 36
    ctypes.CDLL(None, use_errno=True).prctl(pr_set_child_subreaper, 1, 0, 0, 0)


def marked(mark):
    """The processes that were started, however indirectly, with this mark in their environment."""
    wanted = f"{MARK}={mark}".encode()
    found = []
    for folder in pathlib.Path("/proc").iterdir():
        if not folder.name.isdigit() or int(folder.name) == os.getpid():
            continue
        try:
            if wanted in (folder / "environ").read_bytes().split(b"\0"):
                found.append(int(folder.name))
        except OSError:
            continue
    return found


def end_marked(mark, patience=3.0):
    """Ends every process with the mark, first by asking."""
    for number in (signal.SIGTERM, signal.SIGKILL):
        deadline = time.monotonic() + patience
        asked = set()
        while (left := marked(mark)) and time.monotonic() < deadline:
            for pid in set(left) - asked:
                asked.add(pid)
                try:
                    os.kill(pid, number)
                except ProcessLookupError:
                    pass
            reap()
            time.sleep(0.01)
    reap()


def reap():
    """Collects orphans that have ended. Our own children are collected by whoever waits for them."""
    for folder in pathlib.Path("/proc").iterdir():
        if folder.name.isdigit() and int(folder.name) not in _own and _is_zombie_of_ours(folder):
            try:
                os.waitpid(int(folder.name), os.WNOHANG)
            except ChildProcessError:
                pass


def _is_zombie_of_ours(folder):
    try:
        state, parent = (folder / "stat").read_text().rsplit(")", 1)[1].split()[:2]
    except OSError:
        return False
    return state == "Z" and int(parent) == os.getpid()


def guard(mark, folder):
    """Waits for the owner of a desktop to end, in whatever way, and ends what it left."""
    sys.stdin.read()
    end_marked(mark)
    shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    guard(*sys.argv[1:])
