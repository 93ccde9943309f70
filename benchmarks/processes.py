"""What a process costs, with everything that it started: processor time, sleeps, timers, memory."""

import pathlib
import platform
import re
import time

# The waiting system calls of x86-64: which argument holds the longest time to wait, and what "for ever" is there.
_WAITS = {7: (2, 0xFFFFFFFF), 23: (4, 0), 202: (3, 0), 230: (2, None), 232: (3, 0xFFFFFFFF), 270: (4, 0), 271: (2, 0),
          281: (3, 0xFFFFFFFF), 35: (0, None), 441: (3, 0)}
_FUTEX, _FUTEX_WAITS = 202, (0, 9)


def tree(pid):
    """The process and everything that it started."""
    found = [pid]
    for task in pathlib.Path(f"/proc/{pid}/task").glob("*/children"):
        for child in _text(task).split():
            found += tree(int(child))
    return found


def processor_seconds(pid):
    """The time of all threads, of those that have ended too: each process has a clock for it."""
    total = 0.0
    for process in tree(pid):
        try:
            total += time.clock_gettime(~process << 3 | 2)
        except OSError:  # it has ended
            continue
    return total


def switches(pid):
    """Of each thread, how often it has stopped running, by itself or not."""
    return {task.parent.name: sum(map(int, re.findall(r"ctxt_switches:\s+(\d+)", _text(task))))
            for task in pathlib.Path(f"/proc/{pid}/task").glob("*/status")}


def wake_ups(before, after):
    """How often threads ran between two answers of `switches`; a thread that has ended had to wake up for it."""
    return sum(count - before.get(thread, 0) for thread, count in after.items()) + len(before.keys() - after.keys())


def timers(pid):
    """What would wake the process by the clock: threads that wait for a limited time, armed timer descriptors. None:
    not to be told on this machine."""
    if platform.machine() != "x86_64":
        return None
    found = [f"thread {task.parent.name}: {limited}" for task in pathlib.Path(f"/proc/{pid}/task").glob("*/syscall")
             if (limited := limited_wait(_text(task)))]
    for descriptor in pathlib.Path(f"/proc/{pid}/fdinfo").iterdir():
        times = re.search(r"it_value: \((\d+), (\d+)\)", _text(descriptor))
        if times and times.groups() != ("0", "0"):
            found.append(f"descriptor {descriptor.name}: {times[0]}")
    return found


def limited_wait(call):
    """`call` as /proc tells it: the number of a system call and its arguments; "running" for a thread that runs."""
    words = call.split()
    if not words or not words[0].isdigit() or int(words[0]) not in _WAITS:
        return None
    number, arguments = int(words[0]), [int(word, 16) for word in words[1:7]]
    index, for_ever = _WAITS[number]
    if number == _FUTEX and arguments[1] & 0x7F not in _FUTEX_WAITS:
        return None
    value = arguments[index] & (for_ever or -1)
    return None if value == for_ever else f"system call {number} waits for {value:#x}"


def memory(pid):
    """In megabytes: resident, proportional, anonymous, and what is resident of the camera's shared buffers."""
    facts = {}
    buffers = 0
    for process in tree(pid):
        for key, amount in re.findall(r"^(\w+):\s+(\d+) kB", _text(f"/proc/{process}/smaps_rollup"), re.MULTILINE):
            facts[key] = facts.get(key, 0) + int(amount) / 1024
        buffers += sum(int(amount) / 1024 for amount in re.findall(
            r"memfd:pipewire[^\n]*\n(?:\w+:[^\n]*\n)*?Rss:\s+(\d+) kB", _text(f"/proc/{process}/smaps")))
    return {"rss": facts["Rss"], "pss": facts["Pss"], "anonymous": facts["Anonymous"], "buffers": buffers}


def _text(path):
    """What the kernel says there; nothing, when the thread or the descriptor is gone already."""
    try:
        return pathlib.Path(path).read_text()
    except OSError:
        return ""
