"""Writes the initramfs of an emulated machine: busybox, kernel modules and the init script."""

import gzip
import os
import pathlib
import re
import stat

HERE = pathlib.Path(__file__).resolve().parent


class Archive:
    """An archive in the kernel's format, "newc". Its files belong to root."""

    def __init__(self):
        self._data = bytearray()
        self._entries = 0
        self._directories = set()

    def _add(self, name, mode, content):
        self._entries += 1
        encoded = name.encode() + b"\0"
        fields = [self._entries, mode, 0, 0, 1, 0, len(content), 0, 0, 0, 0, len(encoded), 0]
        self._data += b"070701" + b"".join(b"%08X" % field for field in fields) + encoded
        self._data += bytes(-len(self._data) % 4) + content
        self._data += bytes(-len(self._data) % 4)

    def add_directory(self, name):
        if name in self._directories or name in ("", "."):
            return
        self.add_directory(os.path.dirname(name))
        self._directories.add(name)
        self._add(name, stat.S_IFDIR | 0o755, b"")

    def add_file(self, name, content, mode=0o644):
        self.add_directory(os.path.dirname(name))
        self._add(name, stat.S_IFREG | mode, content)

    def add_link(self, name, target):
        self.add_directory(os.path.dirname(name))
        self._add(name, stat.S_IFLNK | 0o777, target.encode())

    def write(self, path):
        self._add("TRAILER!!!", 0, b"")
        with open(path, "wb") as file:
            file.write(gzip.compress(bytes(self._data), compresslevel=6, mtime=0))


def module_files(kernel_tree):
    """The kernel's modules by name."""
    return {path.stem.replace("-", "_"): path for path in pathlib.Path(kernel_tree).rglob("*.ko")}


def in_order(names, kernel_tree):
    """The files of the modules, each after its dependencies; modules built into the kernel are omitted."""
    files = module_files(kernel_tree)
    (built_in,) = pathlib.Path(kernel_tree).rglob("modules.builtin")
    built_in = {pathlib.Path(line).stem.replace("-", "_") for line in built_in.read_text().split()}
    ordered = []

    def add(name):
        name = name.replace("-", "_")
        if name in built_in or files.get(name) in ordered:
            return
        path = files.get(name)
        if path is None:
            raise LookupError(f"the kernel has no module {name}")
        depends = re.search(rb"\0depends=([^\0]*)\0", path.read_bytes())
        for other in filter(None, depends.group(1).decode().split(",")):
            add(other)
        ordered.append(path)

    for name in names:
        add(name)
    return ordered


def write(path, machine_parts, modules):
    """Writes an initramfs from machine_parts, a directory of script/machine-parts, with these modules."""
    parts = pathlib.Path(machine_parts)
    archive = Archive()
    for directory in ("dev", "proc", "root", "run", "sys"):
        archive.add_directory(directory)
    archive.add_file("bin/busybox", (parts / "system/bin/busybox").read_bytes(), 0o755)
    archive.add_link("bin/sh", "busybox")
    archive.add_file("init", (HERE / "init").read_bytes(), 0o755)
    archive.add_file("sbin/console", (HERE / "system/sbin/console").read_bytes(), 0o755)
    ordered = in_order(modules, parts / "kernel")
    for module in ordered:
        archive.add_file(f"modules/{module.name}", module.read_bytes())
    archive.add_file("modules/order", "".join(f"{module.name}\n" for module in ordered).encode())
    archive.write(path)
