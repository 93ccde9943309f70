"""What Vistrel asks of the system in a whole use: local sockets, no listening, no other program, and nothing written
but its own two files."""

import pathlib
import re
import subprocess
import unittest

from stage.processes import wait_until
from stage.program import IDENTIFIER
from tests.desktop.settings import SettingsTest

CALLS = ("socket,connect,bind,listen,accept,accept4,execve,execveat,fork,vfork,clone,clone3,open,openat,openat2,creat,"
         "mkdir,mkdirat,mknod,mknodat,rename,renameat,renameat2,unlink,unlinkat,rmdir,link,linkat,symlink,symlinkat,"
         "truncate,chmod,fchmodat,ptrace,setuid,bpf,mount,kill")
WRITING = re.compile(r"O_WRONLY|O_RDWR|O_CREAT|^(creat|mk|rename|unlink|rmdir|link|symlink|truncate|chmod|fchmodat)")


def can_trace():
    """Not in every container."""
    try:
        return subprocess.run(["strace", "-o", "/dev/null", "true"], capture_output=True).returncode == 0
    except FileNotFoundError:
        return False


@unittest.skipUnless(can_trace(), "may not trace a program here")
class PrivilegeTest(SettingsTest):
    def test_a_whole_use_reaches_nothing_but_the_desktop_and_its_own_files(self):
        camera = self.desktop.camera(offers=["mjpeg:1280x720@30"])
        trace = self.desktop.folder / "trace"
        tracer = ["strace", "-D", "-f", "--seccomp-bpf", "-q", "-s", "300", "-o", trace, "-e", f"trace={CALLS}",
                  "-e", "signal=none"]
        vistrel = self.start(prefix=tracer)
        self.open(vistrel)
        vistrel.click()
        self.wait_closed(camera)
        self.open_window(vistrel, "Preferences")
        self.press(vistrel, "Icon 2", "radio button")
        self.stored(vistrel, "selectedUIIcon", 1)
        self.press(vistrel, "Open Vistrel at login", "check box")
        entry = self.desktop.folder / "config" / "autostart"
        wait_until(lambda: entry.exists() and list(entry.iterdir()), "the entry")
        self.close_window("Preferences")
        vistrel.terminate()
        wait_until(lambda: re.search(rf"^{vistrel.pid} +\+\+\+ exited", trace.read_text(), re.M), "the end of the trace")
        calls = [line.split(None, 1)[1] for line in self.joined(trace.read_text().splitlines())]
        self.assertGreater(len(calls), 100)
        self.assertEqual([call for call in calls if not self.is_allowed(call)], [])

    @staticmethod
    def joined(lines):
        """Calls that another thread's interrupted, put together again."""
        begun = {}
        for line in lines:
            pid = line.split(None, 1)[0]
            if line.endswith("<unfinished ...>"):
                begun[pid] = line.removesuffix("<unfinished ...>")
            elif " resumed>" in line and pid in begun:
                yield begun.pop(pid) + line.split(" resumed>", 1)[1]
            else:
                yield line

    def is_allowed(self, call):
        name = call.split("(")[0]
        if call.startswith("+++") or re.search(r"\) += -1 (ENOENT|EEXIST)", call):
            return True
        if name == "socket":
            return call.startswith(("socket(AF_UNIX", "socket(AF_NETLINK"))
        if name == "connect":
            return "sa_family=AF_UNIX" in call
        if name in ("clone", "clone3"):
            return "CLONE_THREAD" in call
        if name == "execve":
            return str(self.desktop.programs / "vistrel") in call
        if WRITING.search(call):
            return self.may_write(re.findall(r'"([^"]*)"', call))
        return name in ("open", "openat")

    def may_write(self, paths):
        config, run = self.desktop.folder / "config", self.desktop.folder / "run"
        folders = (config / IDENTIFIER, config / "autostart", run / "dconf")
        return bool(paths) and all(
            path == "/dev/null" or path == str(config) or pathlib.Path(path) in folders
            or pathlib.Path(path).parent in folders for path in paths)


if __name__ == "__main__":
    unittest.main()
