"""Drives emulated machines: starts QEMU, runs commands on their consoles, and controls QEMU with QMP.

Machine is any machine that boots an initramfs of initramfs.py; Board is the one of script/board.

    python3 tests/board/board.py [--cmdline WORDS] [--eeprom FILE]... [--with FILE]... [COMMAND...]
"""

import argparse
import collections
import json
import os
import pathlib
import secrets
import select
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import termios
import time
import tty

PROJECT = pathlib.Path(__file__).resolve().parents[2]
PARTS = PROJECT / "build/machine"
QEMU = PARTS / "qemu"
READY = b"machine: ready\n"
# The terminal of the machine does not accept longer lines.
LONGEST_LINE = 4000

Result = collections.namedtuple("Result", "code output")


class MachineError(Exception):
    """The machine or QEMU has failed, or does not respond."""


class Machine:
    """An emulated machine. QEMU is killed with this process at the latest.

    architecture is QEMU's name for it ("arm", "x86_64"). arguments are options of QEMU other than for console
    and display. console_port is the number of the serial port that the kernel uses as its console. The file
    log receives the output of the console and of QEMU. A wait fails after timeout seconds.

        options = ["-kernel", kernel, "-initrd", initramfs, "-append", "console=ttyS0"]
        with Machine("x86_64", options) as machine:
            machine.wait_until_ready()
            code, output = machine.run("uname -a")
            machine.qmp("device_add", driver="usb-storage", id="stick", drive="stick-node")
    """

    def __init__(self, architecture, arguments, console_port=0, log=None, timeout=300):
        self.timeout = timeout
        self._log = open(log or os.devnull, "ab", buffering=0)
        self._received = b""
        self._console, console = socket.socketpair()
        self._monitor, monitor = socket.socketpair()
        command = [
            # QEMU runs in separate namespaces and in a separate session; it is killed with this process.
            *["setpriv", "--pdeathsig", "KILL", "unshare", "--user", "--map-root-user", "--pid", "--fork"],
            *["--kill-child", "--", str(QEMU / f"usr/bin/qemu-system-{architecture}")],
            *["-L", str(QEMU / "usr/share/qemu"), "-L", str(QEMU / "usr/share/seabios")],
            *["-nodefaults", "-display", "none", "-nic", "none"],
            *["-chardev", f"socket,id=console,fd={console.fileno()}"],
            *["-chardev", f"socket,id=monitor,fd={monitor.fileno()}", "-mon", "chardev=monitor,mode=control"],
            *["-serial", "null"] * console_port,
            *["-serial", "chardev:console"],
            *map(str, arguments),
        ]
        libraries = [str(path) for place in ("usr/lib", "lib") for path in (QEMU / place).glob("*-gnu")]
        self._process = subprocess.Popen(
            command,
            stdin=subprocess.DEVNULL,
            stdout=self._log,
            stderr=self._log,
            start_new_session=True,
            pass_fds=(console.fileno(), monitor.fileno()),
            env={**os.environ, "LD_LIBRARY_PATH": ":".join(libraries)},
        )
        console.close()
        monitor.close()
        self._messages = self._monitor.makefile("rb")
        self._events = []
        self._monitor.settimeout(self.timeout)
        self._read_message()  # the greeting
        self.qmp("qmp_capabilities")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()

    def stop(self):
        """Cuts the power: data that the machine has not written to its disks is lost."""
        self._process.kill()
        self._process.wait()
        # QEMU itself terminates shortly afterwards; it uses the disks until its end of the console closes.
        try:
            while self._console.recv(65536):
                pass
        except ConnectionError:
            pass
        self._messages.close()
        self._console.close()
        self._monitor.close()
        self._log.close()

    # --- QEMU

    def _read_message(self):
        line = self._messages.readline()
        if not line:
            raise MachineError(f"QEMU exited with code {self._process.wait()}")
        return json.loads(line)

    def qmp(self, command, **arguments):
        """Executes a QMP command; returns its result. Underscores in argument names stand for dashes."""
        named = {name.replace("_", "-"): value for name, value in arguments.items()}
        self._monitor.sendall(json.dumps({"execute": command, "arguments": named}).encode())
        while True:
            message = self._read_message()
            if "return" in message:
                return message["return"]
            if "error" in message:
                raise MachineError(f"{command}: {message['error']['desc']}")
            self._events.append(message)

    def wait_for_event(self, name, **data):
        """Waits for a QMP event whose data include these; discards it and all earlier events."""
        while True:
            event = self._events.pop(0) if self._events else self._read_message()
            if event.get("event") == name and data.items() <= event["data"].items():
                return

    # --- the console

    def _receive(self, deadline):
        wait = deadline - time.monotonic()
        if wait <= 0 or not select.select([self._console], [], [], wait)[0]:
            raise MachineError(f"the machine did not respond in time; its last output: {self._tail()}")
        data = self._console.recv(65536)
        if not data:
            raise MachineError(f"QEMU exited with code {self._process.wait()}; last output: {self._tail()}")
        self._log.write(data)
        self._received += data

    def _tail(self):
        return self._received[-2000:].decode(errors="replace")

    def _take(self, end):
        """Removes the received data up to the end of a text with these bounds; returns what precedes it."""
        taken, self._received = self._received[:end[0]], self._received[end[1]:]
        return taken

    def wait_until_ready(self, timeout=None):
        """Waits until the machine accepts commands after power-on or a restart."""
        deadline = time.monotonic() + (timeout or self.timeout)
        while READY not in self._received:
            self._receive(deadline)
        start = self._received.index(READY)
        self._take((start, start + len(READY)))

    def _send(self, text):
        if any(len(line.encode()) > LONGEST_LINE for line in text.split("\n")):
            raise MachineError(f"a line of the command is longer than {LONGEST_LINE} bytes")
        self._console.sendall(text.encode())

    def run(self, command, timeout=None):
        """Runs a shell script on the machine; returns its exit code and the output of both streams."""
        deadline = time.monotonic() + (timeout or self.timeout)
        marker = "end-" + secrets.token_hex(8)
        self._send(
            f"cat >/run/command <<'{marker}'\n{command}\n{marker}\n"
            # Through a pipe: the output of some programs differs on a terminal.
            "{ sh /run/command </dev/null 2>&1; echo $? >/run/code; } | cat; "
            f"printf '\\n%s %d\\n' {marker} $(cat /run/code)\n"
        )
        end = b"\n" + marker.encode() + b" "
        while end not in self._received or b"\n" not in self._received.split(end)[1]:
            self._receive(deadline)
            if READY in self._received:
                raise MachineError(f"the machine restarted during: {command}")
        start = self._received.index(end)
        stop = self._received.index(b"\n", start + len(end))
        code = int(self._received[start + len(end):stop])
        return Result(code, self._take((start, stop + 1)).decode(errors="replace"))

    def check(self, command, timeout=None):
        """Runs a shell script that must succeed; returns its output."""
        code, output = self.run(command, timeout)
        if code != 0:
            raise MachineError(f"exit code {code}: {command}\n{output}")
        return output

    def restart(self, command="reboot"):
        """Restarts the machine from its shell, as a user would; its disks keep their content."""
        self._send(f"{command} >/dev/null 2>&1 </dev/null\n")
        self.wait_until_ready()

    def interact(self, terminal):
        """Connects a terminal with a shell on the machine until the shell exits; returns its exit code.

        A restart of the machine starts a new shell.
        """
        # Begins with a control character that is not typed by accident.
        end = b"\x1e" + secrets.token_hex(8).encode()
        before = termios.tcgetattr(terminal)
        tty.setraw(terminal)
        try:
            while True:
                self._received = b""
                self._send(
                    # One line: the shell would read a second one as its input.
                    "stty sane; cd /root; "
                    "setsid cttyhack sh -l -i </dev/console >/dev/console 2>&1; code=$?; "
                    f"stty -echo -onlcr -isig; printf '\\036%s%d\\n' {end[1:].decode()} $code\n"
                )
                while READY not in self._received:
                    self._copy(terminal, end[:1])
                    if end in self._received and self._received.endswith(b"\n"):
                        return int(self._received.split(end)[1])
        finally:
            termios.tcsetattr(terminal, termios.TCSADRAIN, before)

    def _copy(self, terminal, end):
        """Waits for data from terminal or machine and passes it on; the machine's only up to end."""
        for source in select.select([self._console, terminal], [], [])[0]:
            if source == terminal:
                self._console.sendall(os.read(terminal, 4096))
                continue
            size = len(self._received)
            self._receive(time.monotonic() + self.timeout)
            if end not in self._received[:size]:
                os.write(terminal, self._received[size:].split(end)[0])


class Board(Machine):
    """The emulated board. Its SD card and EEPROMs are files of the caller; its clock starts at 1970.

    The EEPROMs have the bus addresses 0x50, 0x51, and so on. None is an EEPROM of 256 bytes, all zero at
    power-on: QEMU accepts only files of complete sectors. cmdline is appended to the kernel's command line.
    """

    # Chip and page size by size of the EEPROM in bytes.
    EEPROMS = {256: ("atmel,24c02", 8), 4096: ("atmel,24c32", 32), 65536: ("atmel,24c512", 128)}

    def __init__(self, card, eeproms=(), cmdline="", log=None, timeout=300):
        (kernel,) = (PARTS / "armhf/kernel/boot").glob("vmlinuz-*")
        (tree,) = (PARTS / "armhf/kernel").rglob("imx6q-sabrelite.dtb")
        tree = shutil.copyfile(tree, f"{card}.dtb")
        parameters = ["console=ttymxc1,115200", "panic=-1", "quiet", "root=/dev/mmcblk3"]
        arguments = ["-M", "sabrelite", "-m", "512", "-kernel", kernel, "-dtb", tree]
        arguments += ["-initrd", PARTS / "board/initramfs"]
        arguments += ["-drive", f"if=none,id=card,format=raw,cache=writeback,file={card}"]
        arguments += ["-device", "sd-card,drive=card"]
        for address, eeprom in enumerate(eeproms, start=0x50):
            size = 256
            drive = ""
            if eeprom is not None:
                size = os.path.getsize(eeprom)
                drive = f",drive=eeprom{address}"
                arguments += ["-blockdev", f"driver=file,node-name=eeprom{address},filename={eeprom}"]
            if size not in self.EEPROMS:
                raise MachineError(f"{eeprom} has {size} bytes, unlike every EEPROM of the board")
            arguments += ["-device", f"at24c-eeprom,bus=i2c-bus.1,address={address},rom-size={size}{drive}"]
            self._describe_eeprom(tree, address, *self.EEPROMS[size])
        arguments += ["-append", " ".join([*parameters, cmdline]).strip()]
        super().__init__("arm", arguments, console_port=1, log=log, timeout=timeout)

    @staticmethod
    def _describe_eeprom(tree, address, chip, page):
        """Adds an EEPROM to the device tree, where the kernel's driver finds it."""

        def put(kind, key, value):
            subprocess.run(["fdtput", "-t", kind, tree, node, key, str(value)], check=True)

        alias = ["fdtget", tree, "/aliases", "i2c1"]
        bus = subprocess.run(alias, check=True, capture_output=True, text=True).stdout.strip()
        node = f"{bus}/eeprom@{address:x}"
        subprocess.run(["fdtput", "-c", tree, node], check=True)
        put("s", "compatible", chip)
        put("u", "reg", address)
        put("u", "pagesize", page)

    def set_clock(self):
        """Sets the board's clock to the time of this machine."""
        self.check(f"date -u -s @{int(time.time())}")


def make_eeprom(path, size=4096):
    """Creates an erased EEPROM."""
    pathlib.Path(path).write_bytes(b"\xff" * size)
    return path


def make_card(path, files=()):
    """Creates an SD card with the current packages, and with copies of files in /root."""
    shutil.copyfile(PARTS / "board/root.img", path)
    for file in files:
        name = pathlib.Path(file).name
        debugfs = ["debugfs", "-w", "-R", f'write "{file}" "/root/{name}"', str(path)]
        errors = subprocess.run(debugfs, check=True, capture_output=True, text=True).stderr
        if len(errors.splitlines()) > 1:  # the first line is the version of debugfs
            raise MachineError(f"{file} cannot be copied to the SD card: {errors}")
    return path


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--cmdline", default="")
    parser.add_argument("--eeprom", action="append", default=[])
    parser.add_argument("--with", action="append", default=[], dest="files")
    parser.add_argument("command", nargs="*")
    arguments = parser.parse_args()
    command = " ".join(arguments.command)
    if not command and not sys.stdin.isatty():
        command = sys.stdin.read()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    with tempfile.TemporaryDirectory() as directory:
        log = f"{directory}/console.log"
        try:
            card = make_card(f"{directory}/card.img", arguments.files)
            eeproms = arguments.eeprom or [make_eeprom(f"{directory}/eeprom.img")]
            with Board(card, eeproms, arguments.cmdline, log) as board:
                board.wait_until_ready()
                board.set_clock()
                if not command:
                    return board.interact(sys.stdin.fileno())
                code, output = board.run(command, timeout=24 * 3600)
                sys.stdout.write(output)
                return code
        except (MachineError, OSError, subprocess.CalledProcessError) as error:
            print(f"script/board: {error}", file=sys.stderr)
            return 125


if __name__ == "__main__":
    sys.exit(main())
