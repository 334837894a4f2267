"""Simulates power cuts of a machine that saves files, and checks which files survive on its disks.

On an emulated machine, a writer saves files, and notes on another partition of the same disk which contents
were acknowledged. QEMU records all writes to the disks. Each point of the record is a power cut: it shows
what was on the disk, and what had been acknowledged. See script/check powercut.
"""

import argparse
import base64
import collections
import json
import multiprocessing
import pathlib
import random
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True
sys.path.insert(0, "tests/board")
import board  # noqa: E402
import initramfs  # noqa: E402
from blocklog import FLUSH, SECTOR, BlockLog, Disk  # noqa: E402

PARTS = pathlib.Path("build/machine/amd64")
BUILD = pathlib.Path("build/release")
MODULES = ["virtio_pci", "virtio_blk", "ext4", "crc32c_generic", "crc32_generic", "xfs", "f2fs", "loop"]
PROGRAMS = ["powercut-writer", "eeprom-image", "ini-lint", "peak-meter", "run-and-grep"]
LIBRARIES = ["libMiscTools.so.1", "libMiscToolsPlatform.so.1", "libFlushVoid.so"]

MIB = 1024 * 1024
NOTES_SIZE = MIB // 2
NOTES_START = MIB // 2
FILES_START = MIB
LOG_SIZE = 4096 * MIB  # sparse

# The operations of the library, and of the programs, which take longer.
LIBRARY = ["sync", "event-loop", "destructor", "first-save", "cleanUp", "firmware-marker", "reboot-marker"]
TOOLS = ["eeprom-image", "ini-lint", "peak-meter", "run-and-grep"]
NAMES = {
    "sync": "`sync()`",
    "event-loop": "flush of the event loop",
    "destructor": "destructor",
    "first-save": "first save, in a new directory",
    "cleanUp": "`cleanUp()`",
    "firmware-marker": "removal of the firmware update marker",
    "reboot-marker": "removal of the reboot marker",
    "eeprom-image": "`eeprom-image create`",
    "ini-lint": "`ini-lint --clean`",
    "peak-meter": "`peak-meter --file`",
    "run-and-grep": "`run-and-grep --output`",
}
# How to create and mount a file system, its size, and the operations on it. Without the kernel, only ext4 can
# be read: a machine mounts the others after each cut (is_mounted).
Kind = collections.namedtuple("Kind", "make size mount operations is_mounted")
MAKE_EXT4 = ["mke2fs", "-q", "-t", "ext4", "-b", "4096", "-J", "size=4"]
FILE_SYSTEMS = {
    "ext4": Kind(MAKE_EXT4, 16 * MIB, "-t ext4 -o rw", LIBRARY + TOOLS, False),
    "ext4, noauto_da_alloc": Kind(MAKE_EXT4, 16 * MIB, "-t ext4 -o noauto_da_alloc", LIBRARY + TOOLS, False),
    "XFS": Kind(["mkfs.xfs", "-q"], 300 * MIB, "-t xfs -o rw", ["sync", "cleanUp"], True),
    "F2FS": Kind(["mkfs.f2fs", "-q"], 64 * MIB, "-t f2fs -o rw", ["sync", "cleanUp"], True),
}
ON_EXT4 = [name for name, kind in FILE_SYSTEMS.items() if not kind.is_mounted]
ON_OTHERS = [name for name, kind in FILE_SYSTEMS.items() if kind.is_mounted]
# The value of FLUSH_VOID, further mount options of ext4, how often library and programs save files, and how
# many cuts each way to cut gets, on ext4 and on the other file systems. Where nothing is flushed, only the
# journal brings unfinished saves to the disk. The keys seed the choice of cuts.
Variant = collections.namedtuple("Variant", "omitted options library tools cuts cuts_of_others")
VARIANTS = {
    "as it is": Variant("", "", 60, 24, 160, 8),
    "directories": Variant("directories", "", 30, 12, 30, 2),
    "all": Variant("all", ",commit=1", 90, 24, 30, 2),
}
WAYS = ["in order", "harsh"]
LOSSES = ["older", "missing", "empty", "damaged", "no file system"]
DOCUMENT = pathlib.Path("docs/reliability.md")
LOCKS = 6
# Qt waits half a minute for a lock whose owner is unknown.
LONGEST_START_IN_S = 15

Job = collections.namedtuple("Job", "number file_system variant operation way image log")
Result = collections.namedtuple("Result", "job cuts losses temporary locks flushes")
State = collections.namedtuple("State", "entry path content")
Lock = collections.namedtuple("Lock", "size image")


def run(*command):
    return subprocess.run([str(word) for word in command], check=True, capture_output=True, text=True)


# --- the machine


def make_system(path):
    """Creates the boot disk of the machine: busybox, Qt, the library and the programs of this build."""
    with tempfile.TemporaryDirectory() as directory:
        tree = pathlib.Path(directory) / "tree"
        shutil.copytree(PARTS / "system", tree, symlinks=True)
        shutil.copytree("tests/board/system", tree, dirs_exist_ok=True)
        for name in "dev proc sys run tmp mnt root data sbin usr/bin usr/sbin".split():
            (tree / name).mkdir(parents=True, exist_ok=True)
        for applet in run(tree / "bin/busybox", "--list-full").stdout.split():
            if not (tree / applet).exists():
                (tree / applet).symlink_to("/bin/busybox")
        for program in PROGRAMS:
            run("strip", "-o", tree / "usr/bin" / program, BUILD / "bin" / program)
        for library in LIBRARIES:
            run("strip", "-o", tree / "usr/lib" / library, BUILD / "lib" / library)
        run("unshare", "--user", "--map-root-user", "mke2fs", "-q", "-t", "ext4", "-d", tree, path, "128M")


def make_disk(path, kind):
    """Creates a disk with a partition for the notes and one with an empty file system; returns the latter's
    image."""
    files = path.with_suffix(".files")
    with open(files, "wb") as file:
        file.truncate(kind.size)
    run(*kind.make, files)
    entries = b"".join(struct.pack("<B3xB3xII", 0, 0x83, start // SECTOR, size // SECTOR)
                       for start, size in ((NOTES_START, NOTES_SIZE), (FILES_START, kind.size)))
    table = bytes(446) + entries + bytes(32) + b"\x55\xaa"
    with open(path, "wb") as disk:
        disk.write(table)
        disk.truncate(FILES_START + kind.size)
        write_image(disk, FILES_START, files)
    return files


def write_image(file, start, image):
    """Writes an image into a file, except for its zeros."""
    with open(image, "rb") as source:
        position = start
        while chunk := source.read(65536):
            if chunk.strip(b"\0"):
                file.seek(position)
                file.write(chunk)
            position += len(chunk)


def machine(directory, disks, log, more=()):
    (kernel,) = (PARTS / "kernel/boot").glob("vmlinuz-*")
    arguments = ["-M", "q35", "-accel", "tcg", "-m", "512"]
    arguments += ["-kernel", kernel, "-initrd", directory / "initramfs"]
    arguments += ["-append", "console=ttyS0 panic=-1 quiet root=/dev/vda ro"]
    system = directory / "system.img"
    arguments += ["-blockdev", f"driver=file,node-name=system,filename={system},read-only=on"]
    arguments += ["-device", "virtio-blk-pci,drive=system"]
    return board.Machine("x86_64", [*arguments, *disks, *more], log=log)


def recorded_disk(number, image, log):
    """QEMU's arguments for a disk and the log of its writes. Flushes need not reach the disk of the host."""
    file = "driver=file,cache.no-flush=on"
    return [
        *["-blockdev", f"{file},node-name=image{number},filename={image}"],
        *["-blockdev", f"{file},node-name=log{number},filename={log}"],
        *["-blockdev", f"driver=blklogwrites,node-name=disk{number},file=image{number},log=log{number}"],
        *["-device", f"virtio-blk-pci,drive=disk{number}"],
    ]


def record(directory):
    """Saves the files on a machine; returns the jobs, each a record to judge."""
    disks, jobs, arguments = [], [], []
    for file_system, kind in FILE_SYSTEMS.items():
        for variant in VARIANTS:
            number = len(disks)
            image, log = directory / f"{number}.img", directory / f"{number}.log"
            files = make_disk(image, kind)
            with open(log, "wb") as file:
                file.truncate(LOG_SIZE)
            arguments += recorded_disk(number, image, log)
            disks.append((file_system, variant))
            for operation in kind.operations:
                for way in WAYS:
                    jobs.append(Job(len(jobs), file_system, variant, operation, way, files, log))
    with machine(directory, arguments, directory / "console.log") as guest:
        guest.wait_until_ready()
        for number, (file_system, variant) in enumerate(disks):
            started = time.monotonic()
            disk = f"/dev/vd{chr(ord('b') + number)}"
            settings = VARIANTS[variant]
            omitted = settings.omitted
            kind = FILE_SYSTEMS[file_system]
            options = "" if kind.is_mounted else settings.options
            guest.check(f"mount {kind.mount}{options} {disk}2 /data")
            for operation in kind.operations:
                count = settings.library if operation in LIBRARY else settings.tools
                preload = f"LD_PRELOAD=libFlushVoid.so FLUSH_VOID={omitted}" if omitted else ""
                guest.check(f"{preload} powercut-writer {operation} {count} /data {disk}1")
            guest.check("umount /data")
            seconds = time.monotonic() - started
            print(f"recorded: {file_system}, omitted: {omitted or 'none'}: {seconds:.0f} s", flush=True)
        guest.qmp("quit")
    return jobs


# --- the losses


def states_of(log, operation):
    """The states of an operation's file in the order in which they were acknowledged."""
    states = []
    for index, entry in enumerate(log.entries):
        if entry.position != NOTES_START or not entry.size:
            continue
        note = json.loads(log.data(entry).rstrip(b"\0"))
        if note["operation"] != operation:
            continue
        path = note["path"].removeprefix("/data")
        if operation.endswith("-marker") and note["generation"] > 0:
            path = f"/{operation}{path}"
        content = base64.b64decode(note["content"]) if "content" in note else None
        states.append(State(index, path, content))
    return states


def cuts_of(states, count, generator):
    """Entries after which the power is cut. Half of them are notes: a save has just been acknowledged."""
    first, last = states[0].entry, states[-1].entry
    notes = [state.entry for state in states[1:]]
    cuts = set(generator.sample(notes, min(count // 2, len(notes))))
    while len(cuts) < min(count, last - first):
        cuts.add(generator.randint(first, last))
    return sorted(cuts)


class FileSystem:
    """A file system after a power cut, as the next boot sees it."""

    def __init__(self, path):
        self.path = path
        self._content = path.with_suffix(".content")
        # Replays the journal, as the kernel does on mounting, and checks the file system.
        self.is_valid = subprocess.run(["e2fsck", "-fy", self.path], capture_output=True).returncode < 4

    def read(self, path):
        """The content of a file, None if it is missing; and the sizes of all in its directory by name."""
        self._content.unlink(missing_ok=True)
        commands = f"dump {path} {self._content}\nls -p {pathlib.PurePath(path).parent}\n"
        command = ["debugfs", "-f", "-", self.path]
        listing = subprocess.run(command, input=commands, capture_output=True, text=True)
        sizes = {name: int(size or 0) for name, size in
                 re.findall(r"^/\d+/\d+/\d+/\d+/([^/]+)/(\d*)/", listing.stdout, re.MULTILINE)}
        if pathlib.PurePath(path).name not in sizes:
            return None, sizes
        return self._content.read_bytes(), sizes


def judge_content(found, states, acknowledged):
    """The kind of loss, empty for none. The file may already be in the next state."""
    state = states[acknowledged]
    allowed = [state.content]
    if acknowledged + 1 < len(states) and states[acknowledged + 1].path == state.path:
        allowed.append(states[acknowledged + 1].content)
    if found in allowed:
        return ""
    if found is None:
        return "missing"
    if found == b"":
        return "empty"
    return "older" if found in [other.content for other in states[:acknowledged]] else "damaged"


class Cuts:
    """The power cuts of a job."""

    def __init__(self, job):
        variant = VARIANTS[job.variant]
        is_mounted = FILE_SYSTEMS[job.file_system].is_mounted
        self._job = job
        self._generator = random.Random(f"{job.file_system} {job.variant} {job.operation} {job.way}")
        self._log = BlockLog(job.log)
        self.states = states_of(self._log, job.operation)
        count = variant.cuts_of_others if is_mounted else variant.cuts
        self.entries = cuts_of(self.states, count, self._generator)

    def flushes(self):
        """The number of disk flushes per save."""
        first, last = self.states[0].entry, self.states[-1].entry
        flushes = sum(bool(entry.flags & FLUSH) for entry in self._log.entries[first:last])
        return flushes / (len(self.states) - 1)

    def __iter__(self):
        """For each cut: its entry, the number of the last acknowledged state, and a function that writes the
        content of the disk into a file that contains the image."""
        disk = Disk(self._log, FILES_START, FILE_SYSTEMS[self._job.file_system].size)
        is_harsh = self._job.way == "harsh"
        for cut in self.entries:
            disk.advance(cut)
            acknowledged = max(i for i, state in enumerate(self.states) if state.entry <= cut)
            yield cut, acknowledged, lambda file, start: disk.write_after_cut(
                file, start, lambda: not is_harsh or self._generator.random() < 0.5)


def is_temporary(name):
    return bool(re.fullmatch(r"file\.[A-Za-z]{6}", name))


def judge(job):
    """Judges the cuts of a job on ext4."""
    losses, locks, temporary = collections.Counter(), [], 0
    cuts = Cuts(job)
    image = job.image.read_bytes()
    with tempfile.TemporaryDirectory(dir="/dev/shm") as directory:
        for cut, acknowledged, write in cuts:
            path = pathlib.Path(directory) / "cut.img"
            with open(path, "wb") as file:
                file.write(image)
                write(file, 0)
            files = FileSystem(path)
            if not files.is_valid:
                losses["no file system"] += 1
                continue
            found, sizes = files.read(cuts.states[acknowledged].path)
            loss = judge_content(found, cuts.states, acknowledged)
            if loss:
                losses[loss] += 1
            temporary = max(temporary, sum(map(is_temporary, sizes)))
            if "file.lock" in sizes and job.variant == "as it is" and job.operation == "sync":
                kept = job.log.with_suffix(f".lock-{job.way[:2]}-{cut}")
                if len(locks) < LOCKS // 2:
                    shutil.copyfile(files.path, kept)
                locks.append(Lock(sizes["file.lock"], kept if kept.exists() else None))
    return Result(job, len(cuts.entries), losses, temporary, locks, cuts.flushes())


def judge_mounted(directory, jobs):
    """Judges the cuts of jobs on other file systems: a machine mounts these one by one, as parts of a large
    disk."""
    tasks, arguments = [], []
    for number, name in enumerate(ON_OTHERS):
        path = directory / f"cuts-{number}.img"
        size = FILE_SYSTEMS[name].size
        arguments += ["-blockdev", f"driver=file,cache.no-flush=on,node-name=disk{number},filename={path}"]
        arguments += ["-device", f"virtio-blk-pci,drive=disk{number}"]
        start = 0
        with open(path, "wb") as file:
            for job in (job for job in jobs if job.file_system == name):
                cuts, images = Cuts(job), []
                for _, acknowledged, write in cuts:
                    write_image(file, start, job.image)
                    write(file, start)
                    images.append((start, acknowledged))
                    start += size
                tasks.append((job, cuts, images, f"/dev/vd{chr(ord('b') + number)}"))
            file.truncate(start)
    with machine(directory, arguments, directory / "console-3.log") as guest:
        guest.wait_until_ready()
        return [judge_by_mounting(guest, *task) for task in tasks]


def judge_by_mounting(guest, job, cuts, images, device):
    losses, temporary = collections.Counter(), 0
    for start, acknowledged in images:
        path = pathlib.PurePath(cuts.states[acknowledged].path)
        output = guest.check(
            f"losetup -o {start} /dev/loop0 {device}\n"
            f"if mount {FILE_SYSTEMS[job.file_system].mount} /dev/loop0 /data 2>/dev/null; then\n"
            f"if [ -e /data{path} ]; then echo content $(base64 -w 0 /data{path}); else echo none; fi\n"
            f"ls /data{path.parent} 2>/dev/null\numount /data\nelse echo damaged; fi\nlosetup -d /dev/loop0")
        first, *names = output.split("\n")
        if first == "damaged":
            losses["no file system"] += 1
            continue
        found = base64.b64decode(first.removeprefix("content")) if first.startswith("content") else None
        loss = judge_content(found, cuts.states, acknowledged)
        if loss:
            losses[loss] += 1
        temporary = max(temporary, sum(map(is_temporary, names)))
    return Result(job, len(images), losses, temporary, [], cuts.flushes())


def time_of_start(guest):
    started = time.monotonic()
    guest.check("powercut-writer sync 1 /data -", timeout=120)
    return time.monotonic() - started


def start_times(directory, locks):
    """The time of a sync in each file system with a lock, on a machine that has just booted. The last time is
    that with an empty lock, for which Qt waits."""
    images = [lock.image for lock in locks if lock.image][:LOCKS]
    arguments = []
    for number, image in enumerate(images):
        arguments += ["-blockdev", f"driver=file,node-name=disk{number},filename={image}"]
        arguments += ["-device", f"virtio-blk-pci,drive=disk{number}"]
    # The clock is not after the cuts: otherwise Qt removes a lock for its age.
    clock = time.strftime("%Y-%m-%dT%H:%M:%S", time.gmtime((directory / "system.img").stat().st_mtime))
    times = []
    with machine(directory, arguments, directory / "console-2.log", ["-rtc", f"base={clock}"]) as guest:
        guest.wait_until_ready()
        for number in range(len(images)):
            guest.check(f"mount -t ext4 /dev/vd{chr(ord('b') + number)} /data; ls /data/sync/file.lock")
            times.append(time_of_start(guest))
            if number == len(images) - 1:
                guest.check(": >/data/sync/file.lock")
                times.append(time_of_start(guest))
            guest.check("umount /data")
    return times


# --- the report


def cell(cuts, losses):
    kinds = ", ".join(f"{losses[kind]} {kind}" for kind in LOSSES if losses[kind])
    return f"{sum(losses.values())} of {cuts}" + (f": {kinds}" if kinds else "")


def table(results, operations, columns):
    """columns: the title of each column, and a function that selects its jobs."""
    lines = ["| cuts with losses | " + " | ".join(columns) + " |", "|---" * (len(columns) + 1) + "|"]
    for operation in [*operations, None]:
        cells = [NAMES[operation] if operation else "all"]
        for fits in columns.values():
            chosen = [result for result in results
                      if fits(result.job) and result.job.operation in (operation or result.job.operation,)]
            cells.append(cell(sum(result.cuts for result in chosen),
                              sum((result.losses for result in chosen), collections.Counter())))
        lines.append("| " + " | ".join(cells) + " |")
    return "\n".join(lines)


def tables(results):
    def column(file_system, variant, way=None):
        return lambda job: (job.file_system, job.variant) == (file_system, variant) and way in (None, job.way)

    def own(file_systems):
        return {f"{name}, {way}": column(name, "as it is", way) for name in file_systems for way in WAYS}

    def controls(file_systems):
        titles = {"directories": "directories not flushed", "all": "nothing flushed"}
        return {f"{name}: {title}": column(name, variant)
                for name in file_systems for variant, title in titles.items()}

    on_others = FILE_SYSTEMS[ON_OTHERS[0]].operations
    return "\n\n".join([
        table(results, LIBRARY + TOOLS, own(ON_EXT4)),
        "Controls:", table(results, LIBRARY + TOOLS, controls(ON_EXT4)),
        "Other file systems, which an emulated machine mounts after each cut:",
        table(results, on_others, own(ON_OTHERS)), table(results, on_others, controls(ON_OTHERS)),
        "Flushes of the disk per save, with and without the flush of the directory:",
        flush_table(results)])


def flush_table(results):
    def flushes(*job):
        return next(f"{result.flushes:.1f}" for result in results
                    if (result.job.operation, result.job.file_system, result.job.variant) == job)

    names = [name for name in FILE_SYSTEMS if name != "ext4, noauto_da_alloc"]
    lines = ["| | " + " | ".join(names) + " |", "|---" * (len(names) + 1) + "|"]
    for operation in FILE_SYSTEMS[ON_OTHERS[0]].operations:
        cells = [f"{flushes(operation, name, 'as it is')}; {flushes(operation, name, 'directories')}"
                 for name in names]
        lines.append(f"| {NAMES[operation]} | " + " | ".join(cells) + " |")
    return "\n".join(lines)


def lost(results, variant):
    """The share of the cuts that lost something."""
    chosen = [result for result in results if result.job.variant == variant]
    return sum(sum(result.losses.values()) for result in chosen) / sum(result.cuts for result in chosen)


def problems(results, times):
    found = []
    if lost(results, "as it is"):
        found.append(f"{100 * lost(results, 'as it is'):.1f} % of the cuts lost something")
    for operation in LIBRARY + TOOLS:
        if not lost([result for result in results if result.job.operation == operation], "directories"):
            found.append(f"ineffective control: no loss of {operation} with directories not flushed")
    if lost(results, "all") <= lost(results, "directories"):
        found.append("ineffective control: no more losses with nothing flushed than with "
                     "directories not flushed")
    if not any(result.losses["empty"] for result in results if result.job.variant == "all"):
        found.append("ineffective control: no empty file with nothing flushed")
    if max(result.temporary for result in results if result.job.variant == "as it is") > 1:
        found.append("a cut left more than one temporary file")
    if len(times) < 2 or max(times[:-1]) > LONGEST_START_IN_S:
        found.append(f"a leftover lock delays the next start: {times}")
    elif times[-1] < LONGEST_START_IN_S:
        found.append("ineffective control: an empty lock does not delay the next start")
    return found


def update_document(text):
    document = DOCUMENT.read_text()
    begin, end = "<!-- begin powercut -->", "<!-- end powercut -->"
    start, stop = document.index(begin) + len(begin), document.index(end)
    DOCUMENT.write_text(f"{document[:start]}\n{text}\n{document[stop:]}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--update-docs", action="store_true")
    parser.add_argument("directory", type=pathlib.Path)
    arguments = parser.parse_args()
    directory = arguments.directory
    initramfs.write(directory / "initramfs", PARTS, MODULES)
    make_system(directory / "system.img")
    jobs = record(directory)
    started = time.monotonic()
    with multiprocessing.Pool() as pool:
        results = pool.map(judge, [job for job in jobs if job.file_system in ON_EXT4], chunksize=1)
    results += judge_mounted(directory, jobs)
    print(f"judged: {sum(result.cuts for result in results)} cuts in {time.monotonic() - started:.0f} s")
    own = [result for result in results if result.job.variant == "as it is"]
    locks = [lock for result in own for lock in result.locks]
    cuts_of_sync = sum(result.cuts for result in own
                       if result.job.operation == "sync" and result.job.file_system in ON_EXT4)
    times = start_times(directory, locks)
    text = tables(results)
    text += (f"\n\nOf the {cuts_of_sync} cuts of `sync()` on ext4, {len(locks)} left a lock file; "
             f"{sum(lock.size == 0 for lock in locks)} of these were empty. With {len(times) - 1} of "
             f"the lock files, the start of a program and its first sync after the next boot took "
             f"{max(times[:-1], default=0):.1f} s at most; with an empty one, created for comparison, "
             f"{times[-1] if times else 0:.0f} s. Temporary files after a cut, at most: "
             f"{max(result.temporary for result in own)}.")
    print(f"\n{text}\n")
    if arguments.update_docs:
        update_document(text)
    found = problems(results, times)
    for problem in found:
        print(f"script/check powercut: {problem}")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
