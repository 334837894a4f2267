"""The cases of script/check board, which use the library and its programs on an emulated board.

    python3 tests/board/acceptance.py OUTPUT-DIRECTORY [CASE...]

A boot takes up to half a minute; many cases share one (see BOOTS). For a failed case,
OUTPUT-DIRECTORY/CASE.log lists its commands and their output; console.log is the output of the console.
Without CASE, all of them run.
"""

import pathlib
import re
import signal
import sys
import tempfile
import time

sys.dont_write_bytecode = True
import board
from board import PROJECT, MachineError

PROGRAMS = PROJECT / "build/armhf/bin"
SAMPLE = PROJECT / "examples/sample-board.ini"
SESSION = PROJECT / "examples/board-session.txt"
ERASED = "the EEPROM seems to be erased and was never written"
PRODUCT_WITH_HARD_RESET = "MISCTOOLS_PRODUCT_CODE=640917 "
# 4 KiB, 256 bytes, 64 KiB
EEPROMS = [f"/sys/bus/i2c/devices/1-00{address}/eeprom" for address in (50, 51, 52)]


class Failure(Exception):
    """A case has failed."""


class Bench:
    """The board, its storage, and the log of the current case."""

    def __init__(self, directory, output):
        self._directory = pathlib.Path(directory)
        self._output = pathlib.Path(output)
        programs = [PROGRAMS / name for name in ("board-probe", "board-start", "board-start-qt")]
        self.card = board.make_card(self._path("card.img"), [*programs, SAMPLE])
        self.small_eeprom = board.make_eeprom(self._path("eeprom.img"), 4096)
        self.large_eeprom = board.make_eeprom(self._path("large-eeprom.img"), 65536)
        self.machine = None
        self.log = []
        self.measured = {}

    def _path(self, name):
        return str(self._directory / name)

    def power_on(self, cmdline):
        self.machine = board.Board(self.card, [self.small_eeprom, None, self.large_eeprom], cmdline,
                                   str(self._output / "console.log"))
        self.machine.wait_until_ready()
        self.machine.set_clock()

    def power_off(self):
        if self.machine:
            self.machine.stop()
        self.machine = None

    def run(self, command, timeout=None):
        result = self.machine.run(command, timeout)
        self.log.append(f"board# {command}\n{result.output}exit code {result.code}\n")
        return result

    def output(self, command, code=0, timeout=None):
        """Runs a command that must return this exit code; returns its output."""
        result = self.run(command, timeout)
        if result.code != code:
            raise Failure(f"exit code {result.code} instead of {code}: {command}")
        return result.output

    def expect(self, command, printed, code=0):
        """Runs a command that must print exactly these lines."""
        output = self.output(command, code)
        if output.splitlines() != printed.splitlines():
            raise Failure(f"it does not print exactly {printed.splitlines()}: {command}")

    def expect_texts(self, command, *texts, code=0):
        """Runs a command that must print each of these texts; returns its output."""
        output = self.output(command, code)
        for text in texts:
            if text not in output:
                raise Failure(f"it does not print \"{text}\": {command}")
        return output

    def wait_for(self, command, seconds=120):
        """Waits until a command succeeds on the board."""
        self.output(f"for i in $(seq {seconds * 5}); do\n"
                    f"    {{ {command}; }} >/dev/null 2>&1 && exit 0\n    sleep 0.2\ndone\nexit 1")

    def plug_in(self, name):
        path = self._path(name)
        with open(path, "ab") as file:
            file.truncate(16 << 20)
        self.machine.qmp("blockdev-add", driver="file", filename=path, node_name=name)
        self.machine.qmp("device_add", driver="usb-storage", bus="usb-bus.1", drive=name, id=f"usb-{name}")
        self.wait_for("[ -b /dev/sd? ]")

    def pull(self, name):
        self.machine.qmp("device_del", id=f"usb-{name}")
        self.machine.wait_for_event("DEVICE_DELETED", device=f"usb-{name}")
        self.machine.qmp("blockdev-del", node_name=name)
        self.wait_for("[ ! -b /dev/sd? ]")

    def flip_bit(self, byte):
        with open(self.small_eeprom, "r+b") as file:
            file.seek(byte)
            value = file.read(1)[0]
            file.seek(byte)
            file.write(bytes([value ^ 1]))

    def check(self, condition, reason):
        if not condition:
            raise Failure(reason)


def session(bench):
    """each command in docs/testing-on-the-target.md prints what that page shows"""
    setup = "cd /root; "
    for part in SESSION.read_text().split("board:~# ")[1:]:
        command, _, shown = part.partition("\n")
        if command == "reboot":
            bench.machine.restart()
        elif re.fullmatch(r"\w+=\S+", command):
            setup += command + "; "
        elif command != "exit":
            printed = bench.run(setup + command).output
            bench.check(printed.rstrip("\n") == shown.rstrip("\n"), f"its output differs: {command}")


# --- EEPROM

def eeprom_erased(bench):
    """every program reports an erased EEPROM of 256 bytes, 4 KiB and 64 KiB"""
    for eeprom, size, page in ((EEPROMS[0], 4096, 32), (EEPROMS[1], 256, 8)):
        bench.output(f"head -c {size} /dev/zero | tr '\\0' '\\377' | dd bs={page} of={eeprom}")
    for eeprom in EEPROMS:
        for command in ("show", "verify", "dump", "extract"):
            bench.expect_texts(f"eeprom-image {command} {eeprom}", ERASED, code=14)
        bench.expect_texts(f"device-report --eeprom {eeprom}",
                           f"board record:                    not known ({eeprom} seems to be erased", code=1)


def eeprom_create(bench):
    """eeprom-image create writes to the kernel's file; every program reads the record"""
    for eeprom in (EEPROMS[0], EEPROMS[2]):
        bench.expect_texts(f"eeprom-image create /root/sample-board.ini {eeprom}", "287 bytes written")
        bench.expect_texts(f"eeprom-image show --json {eeprom}",
                           '"typeName": "Sample board"', '"type": "4711"')
        bench.output(f"eeprom-image verify {eeprom}")
        bench.expect(f"eeprom-image extract {eeprom} | cmp - /root/sample-board.ini", "")
        bench.expect_texts(f"device-report --eeprom {eeprom}",
                           "board type name:                 Sample board", code=1)


def eeprom_small(bench):
    """an image larger than 256 bytes is not written; a smaller one is"""
    eeprom = EEPROMS[1]
    bench.expect_texts(f"eeprom-image create /root/sample-board.ini {eeprom}",
                       "room for 256 bytes", "nothing was written", code=4)
    bench.expect_texts(f"eeprom-image verify {eeprom}", ERASED, code=14)
    bench.output("printf 'Type=1\\nTypeName=Small\\nVersion=2\\n' >/tmp/small.ini")
    bench.output(f"eeprom-image create /tmp/small.ini {eeprom}")
    bench.expect_texts(f"eeprom-image show {eeprom}", "Type name            Small")


def eeprom_bus(bench):
    """the library reads only the header and the block over the bus: 16 and 251 bytes"""
    trace = "/sys/kernel/tracing"
    for program in (f"eeprom-image show {EEPROMS[0]}", f"device-report --eeprom {EEPROMS[0]}"):
        bench.run(f"mount -t tracefs tracefs {trace}; echo >{trace}/trace; "
                  f"echo 1 >{trace}/events/i2c/enable; {program} >/dev/null; "
                  f"echo 0 >{trace}/events/i2c/enable")
        events = bench.output(f"cat {trace}/trace")
        read = sum(map(int, re.findall(r"i2c_reply: i2c-1 #\d+ a=050 .* l=(\d+) ", events)))
        bench.check(read == 16 + 251, f"{read} bytes read over the bus instead of 267: {program}")


def eeprom_after_power_off(bench):
    """the records survive power-off"""
    for eeprom in (EEPROMS[0], EEPROMS[2]):
        bench.output(f"eeprom-image verify {eeprom}")
        bench.expect(f"eeprom-image extract {eeprom} | cmp - /root/sample-board.ini", "")


def eeprom_flipped_bit(bench):
    """a flipped bit is detected"""
    bench.flip_bit(161)
    bench.power_off()
    bench.power_on("ro orvalismode=factoryreset")
    bench.expect_texts(f"eeprom-image show {EEPROMS[0]}", "the checksum is wrong", code=16)
    bench.expect_texts(f"eeprom-image verify {EEPROMS[0]}", "the checksum is wrong", code=16)
    bench.expect_texts(f"device-report --eeprom {EEPROMS[0]}",
                       "contains no valid hardware record", code=1)


# --- boot mode

MODE = "/root/board-probe boot"


def boot_factory_reset(bench):
    """orvalismode=factoryreset on the kernel's command line is a factory reset"""
    bench.expect(MODE, "factory reset")
    bench.expect_texts("device-report", "orvalismode on the command line: factoryreset", code=1)


def boot_product_code(bench):
    """without the reboot marker, the boot of one product is a hard reset"""
    bench.expect(PRODUCT_WITH_HARD_RESET + MODE, "hard reset")
    bench.expect("MISCTOOLS_PRODUCT_CODE=640918 " + MODE, "factory reset")


def boot_markers(bench):
    """the update marker and the reboot marker survive a reboot, and so does their removal"""
    bench.output("touch /orvalis/etc/orvalis-first-boot")
    bench.expect(MODE, "firmware update")
    bench.expect(PRODUCT_WITH_HARD_RESET + MODE, "hard reset")
    bench.output("touch /orvalis-reboot")
    bench.expect(PRODUCT_WITH_HARD_RESET + MODE, "firmware update")
    bench.machine.restart()
    bench.expect(PRODUCT_WITH_HARD_RESET + MODE, "firmware update")
    bench.expect(MODE + " --delete-update-marker", "factory reset")
    bench.expect(PRODUCT_WITH_HARD_RESET + MODE + " --delete-reboot-marker", "hard reset")
    bench.machine.restart()
    bench.expect(PRODUCT_WITH_HARD_RESET + MODE, "hard reset")
    bench.expect(MODE, "factory reset")
    bench.expect(MODE + " --delete-update-marker",
                 "Unable to delete firmware update marker, file does not exist!\nfactory reset")


def boot_last_parameter(bench):
    """orvalismode=factoryreset as the last parameter is no factory reset: its value includes the line feed"""
    bench.expect_texts("cat /proc/cmdline", " ro orvalismode=factoryreset\n")
    bench.expect(MODE, "normal")


def boot_read_only(bench):
    """on a read-only root file system the markers stay, and the library logs that"""
    bench.output("mount -o remount,rw / && touch /orvalis-reboot /orvalis/etc/orvalis-first-boot && "
                 "mount -o remount,ro /")
    bench.expect(MODE + " --delete-update-marker --delete-reboot-marker",
                 'Error on removing firmware update marker!\nUnable to remove file: "/orvalis-reboot"\n'
                 "firmware update")
    bench.expect(PRODUCT_WITH_HARD_RESET + MODE, "firmware update")


# --- media

def media(bench):
    """every class and watch-media report a stick that is mounted, filled, unmounted, pulled, replaced"""
    bench.output("/root/board-probe medium /mnt >/tmp/probe.log 2>&1 & "
                 "watch-media --bursts 99 --recursive --pattern '*.csv' /mnt >/tmp/watch.log 2>&1 & true")
    bench.wait_for("grep watching /tmp/probe.log && grep Watching /tmp/watch.log")

    def expect_lines(*numbers):
        """Waits until each line is in probe.log or watch.log exactly this often, from the beginning."""
        for file, line, count in numbers:
            bench.wait_for(f"[ $(grep -cxF '{line}' /tmp/{file}.log) -eq {count} ]", 30)

    try:
        bench.plug_in("stick")
        bench.output("mkdosfs /dev/sda && mount -t vfat /dev/sda /mnt && touch /run/mounted")
        expect_lines(("probe", "mounted", 1), ("probe", "worker: 0 files", 1), ("watch", "medium mounted", 1))
        bench.output("mkdir /mnt/2026 && for i in 1 2 3; do echo x >/mnt/2026/$i.csv; done; "
                     "echo x >/mnt/4.csv; echo x >/mnt/5.txt; sync")
        expect_lines(("probe", "directory watcher: /mnt", 1), ("probe", "media watcher: 4 files", 1),
                     ("probe", "worker: 4 files", 1), ("watch", "+ 4.csv", 1), ("watch", "+ 2026/3.csv", 1))
        # No program keeps the medium busy; unmounting it is a change of the directory.
        bench.output("umount /mnt && rm /run/mounted")
        expect_lines(("probe", "unmounted", 1), ("probe", "directory watcher: /mnt", 2),
                     ("watch", "medium removed", 1))
        # Unmounting removed the watch: changes in the directory of the mount point are not reported.
        bench.output("touch /mnt/x; rm /mnt/x; sleep 2; mount -t vfat /dev/sda /mnt && touch /run/mounted")
        expect_lines(("probe", "mounted", 2), ("probe", "media watcher: 4 files", 2),
                     ("watch", "medium mounted", 2), ("watch", "/mnt: 4 files (*.csv)", 1))
        # Pulled while mounted: the programs are notified when the system unmounts it.
        bench.pull("stick")
        bench.output("! ls /mnt/2026 || true; umount /mnt && rm /run/mounted")
        expect_lines(("probe", "unmounted", 2), ("probe", "directory watcher: /mnt", 3),
                     ("watch", "medium removed", 2))
        bench.plug_in("other-stick")
        # Filled elsewhere: watch-media lists the files as soon as it is mounted.
        bench.output("mkdosfs /dev/sda && mkdir /run/stick && mount -t vfat /dev/sda /run/stick && "
                     "touch /run/stick/other.csv && umount /run/stick && "
                     "mount -t vfat /dev/sda /mnt && touch /run/mounted")
        expect_lines(("probe", "mounted", 3), ("probe", "media watcher: 1 files", 1),
                     ("probe", "worker: 1 files", 1), ("watch", "medium mounted", 3),
                     ("watch", "  other.csv", 1))
        bench.output("umount /mnt")
        bench.pull("other-stick")
        bench.output("touch /run/end; killall watch-media")
        bench.wait_for("! pidof board-probe && ! pidof watch-media", 30)
        expect_lines(("probe", "descriptors: 0 more than before", 1))
        bench.check("\n- " not in bench.output("cat /tmp/watch.log"),
                    "watch-media reports files of an unmounted medium as removed")
    finally:
        bench.run("cat /tmp/probe.log; echo; cat /tmp/watch.log; dmesg | tail -n 20")


# --- settings

def settings_full_disk(bench):
    """on a full file system the old file stays; with free space again, the next save succeeds"""
    bench.output("rm -f /root/s.ini; touch /root/s.ini")
    bench.expect("/root/board-probe settings /root/s.ini a 3", "3 of 3 in the file")
    # Writes of one block, 1 KiB, fill the space that larger writes leave free.
    bench.output("cp /root/s.ini /tmp/before.ini; dd if=/dev/zero of=/root/fill bs=1M 2>/dev/null; "
                 "for i in 1 2 3; do sync; dd if=/dev/zero of=/root/fill$i bs=1k 2>/dev/null; done; sync")
    try:
        bench.expect_texts("df / | tail -n 1", "100%")
        bench.expect("/root/board-probe settings /root/s.ini b 3", "0 of 3 in the file")
        bench.output("cmp /root/s.ini /tmp/before.ini")
        bench.expect("ls -A /root | grep s.ini", "s.ini")
    finally:
        bench.output("rm /root/fill*; sync")
    bench.expect("/root/board-probe settings /root/s.ini b 3", "3 of 3 in the file")


def settings_1970(bench):
    """saves succeed with a clock at 1970, and after it was set forward or back"""
    bench.output("date -u -s @60; rm -f /root/t.ini; touch /root/t.ini")
    bench.expect("/root/board-probe settings /root/t.ini a 3", "3 of 3 in the file")
    bench.machine.set_clock()
    bench.expect("/root/board-probe settings /root/t.ini b 3", "3 of 3 in the file")
    bench.output("date -u -s @60")
    bench.expect("/root/board-probe settings /root/t.ini c 3", "3 of 3 in the file")
    bench.expect("grep -c = /root/t.ini", "9")
    bench.machine.set_clock()


def settings_two_processes(bench):
    """two processes that write one file keep each other's keys"""
    bench.output("rm -f /root/u.ini; touch /root/u.ini; "
                 "/root/board-probe settings /root/u.ini a 50 >/tmp/a & "
                 "/root/board-probe settings /root/u.ini b 50 >/tmp/b; wait")
    bench.expect("grep -c = /root/u.ini", "100")
    bench.expect("ls /root | grep u.ini", "u.ini")


def settings_pulled_stick(bench):
    """a pulled stick becomes read-only after I/O errors, and contains the last saved file"""
    bench.plug_in("settings-stick")
    bench.output("mke2fs /dev/sda && mount -t ext4 -o errors=remount-ro /dev/sda /mnt && touch /mnt/y.ini")
    bench.expect("/root/board-probe settings /mnt/y.ini a 3", "3 of 3 in the file")
    bench.output("sync")
    bench.pull("settings-stick")
    bench.expect_texts("/root/board-probe settings /mnt/y.ini b 3", "0 of 3 in the file")
    bench.expect_texts("dmesg | tail -n 50", "EXT4-fs (sda): Remounting filesystem read-only")
    bench.output("umount /mnt")
    bench.plug_in("settings-stick")
    bench.output("mount -t ext4 /dev/sda /mnt")
    bench.expect("/root/board-probe settings /mnt/y.ini b 3", "3 of 3 in the file")
    bench.expect("grep -c = /mnt/y.ini", "6")
    bench.output("umount /mnt")
    bench.pull("settings-stick")


def settings_remount(bench):
    """the file stays when an error makes the root file system read-only (errors=remount-ro)"""
    bench.output("mount -o remount,rw /; rm -f /root/w.ini; touch /root/w.ini; sync")
    bench.expect("/root/board-probe settings /root/w.ini a 3", "3 of 3 in the file")
    bench.output("cp /root/w.ini /tmp/before.ini; sync; echo test >/sys/fs/ext4/mmcblk3/trigger_fs_error; "
                 "! touch /root/x 2>/dev/null")
    bench.expect("/root/board-probe settings /root/w.ini b 3", "0 of 3 in the file")
    bench.output("cmp /root/w.ini /tmp/before.ini")


# --- programs and texts

def files_of_the_kernel(bench):
    """the text matcher reads files of /proc and /sys, which have no size"""
    memory = bench.output("awk '/^MemTotal/ { print $2 }' /proc/meminfo").strip()
    for path, expression, printed in (
        ("/proc/meminfo", r"MemTotal: *(\d+)", f'1 matches, the last one "{memory}", no error'),
        ("/proc/cmdline", r"orvalismode=(\w+)", '1 matches, the last one "factoryreset", no error'),
        ("/sys/class/net/lo/address", r"^(\S+)", '1 matches, the last one "00:00:00:00:00:00", no error'),
        ("/sys/none", r"x", "0 matches, the last one \"\", File doesn't exists: /sys/none"),
    ):
        bench.expect_texts(f"/root/board-probe text {path} '{expression}'", printed)
    lines = bench.output("wc -l </proc/kallsyms").strip()
    bench.expect_texts("/root/board-probe text /proc/kallsyms '(?m)^.*$'", f"{lines} matches", "no error")


def kernel_log(bench):
    """a kernel log of 2 MB is read completely, from dmesg and from a file"""
    message = "a-message-of-the-test-" * 40
    bench.output(f"for i in $(seq 2500); do echo \"line $i {message}\" >/dev/kmsg; done", timeout=600)
    size = int(bench.output("dmesg >/tmp/log; wc -c </tmp/log").strip())
    bench.check(size > 2_000_000, f"the kernel's log has only {size} bytes")
    bench.expect_texts("/root/board-probe process 60000 cat /tmp/log",
                       f"exit code 0, ended, {size} characters")
    bench.expect_texts("/root/board-probe text /tmp/log 'line (\\d+) a-message'",
                       '2500 matches, the last one "2500"')
    bench.expect_texts("run-and-grep -e 'line (2\\d99) a-message' -- dmesg",
                       "2099", "2199", "2299", "2399", "2499")
    bench.output("rm /tmp/log")


def process_out_of_memory(bench):
    """a child that the kernel kills for lack of memory is a crash; one that times out is not"""
    bench.expect("/root/board-probe process 120000 /root/board-probe memory",
                 "exit code 9, crashed, 0 characters")
    bench.expect_texts("dmesg | tail -n 50", "Out of memory: Killed process")
    bench.expect_texts("/root/board-probe process 500 sleep 5",
                       "Timeout from command", "exit code -1, ended, 0 characters")
    bench.expect("pidof sleep", "", code=1)


# --- start-up

def start_up(bench):
    """the library adds little to the start time and the memory of a program"""
    seconds = {}
    for program in ("board-start-qt", "board-start") * 3:
        bench.output(f"/root/{program}")
        output = bench.output(f"time -f '%e' sh -c 'for i in 1 2 3 4 5 6 7 8 9 10; do /root/{program}; done'")
        seconds[program] = min(float(output.split()[-1]) / 10, seconds.get(program, 1e9))
    memory = {}
    for program in ("board-start-qt", "board-start"):
        output = bench.output(f"/root/{program} --memory")
        memory[program] = {key: int(value) for key, value in re.findall(r"(?m)^(\w+): +(\d+) kB$", output)}
    bench.measured = {"seconds": seconds, "memory": memory}
    added = memory["board-start"]["Private_Dirty"] - memory["board-start-qt"]["Private_Dirty"]
    bench.check(0 < added <= 64, f"the library adds {added} KiB of private memory; expected are 1 to 64")
    bench.check(seconds["board-start"] < 3 * seconds["board-start-qt"], f"starting takes too long: {seconds}")


# What each boot appends to the kernel's command line, and its cases. A case may depend on those before it.
BOOTS = [
    ("log_buf_len=4M orvalismode=factoryreset splash",
     [session, boot_factory_reset, boot_product_code, eeprom_erased, eeprom_create, eeprom_small, eeprom_bus,
      files_of_the_kernel, kernel_log, process_out_of_memory, start_up, media, settings_pulled_stick,
      settings_full_disk, settings_1970, settings_two_processes, boot_markers]),
    ("ro orvalismode=factoryreset",
     [eeprom_after_power_off, boot_last_parameter, boot_read_only, eeprom_flipped_bit, settings_remount]),
]


def run_case(bench, case, cmdline, output):
    """Runs a case; returns whether it passed."""
    started = time.monotonic()
    bench.log = []
    reason = None
    try:
        case(bench)
    except (Failure, MachineError, OSError, ValueError) as error:
        reason = str(error)
        # The next case needs a board that responds, with nothing mounted or plugged in.
        bench.power_off()
        bench.power_on(cmdline)
    verdict = "passed" if reason is None else "FAILED"
    print(f"{verdict}  {case.__name__:24} {time.monotonic() - started:5.0f} s  {case.__doc__}", flush=True)
    if reason is not None:
        log = output / f"{case.__name__}.log"
        log.write_text("\n".join(bench.log) + f"\n{reason}\n")
        print(f"        {reason}\n        {log}", flush=True)
    return reason is None


def print_measured(measured):
    """Prints the rows for the table in docs/performance.md."""
    for program, meaning in (("board-start-qt", "Qt Core alone"), ("board-start", "with the library")):
        seconds = measured["seconds"][program]
        memory = measured["memory"][program]
        print(f"| {meaning} | {seconds * 1000:.0f} ms | {memory['Rss']:,} KiB "
              f"| {memory['Private_Dirty']} KiB |")


def main():
    output = pathlib.Path(sys.argv[1])
    names = sys.argv[2:]
    known = [case.__name__ for _, cases in BOOTS for case in cases]
    unknown = [name for name in names if name not in known]
    if unknown:
        print(f"there is no case {unknown[0]}; the cases are {' '.join(known)}", file=sys.stderr)
        return 2
    output.mkdir(parents=True, exist_ok=True)
    for old in output.glob("*.log"):
        old.unlink()
    failed = 0
    with tempfile.TemporaryDirectory() as directory:
        bench = Bench(directory, output)
        try:
            for cmdline, cases in BOOTS:
                chosen = [case for case in cases if not names or case.__name__ in names]
                if chosen:
                    bench.power_on(cmdline)
                    failed += sum(not run_case(bench, case, cmdline, output) for case in chosen)
                    bench.power_off()
        finally:
            bench.power_off()
    if bench.measured:
        print_measured(bench.measured)
    return 1 if failed else 0


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    sys.exit(main())
