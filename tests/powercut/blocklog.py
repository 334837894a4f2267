"""Reads what QEMU's filter blklogwrites has recorded of a disk (the format is that of the kernel's
dm-log-writes), and tells what may have been on the disk after each of its writes."""

import collections
import mmap
import struct

SECTOR = 512
FLUSH, DISCARD = 1, 4
MAGIC = 0x6A736677736872

Entry = collections.namedtuple("Entry", "position size flags data")


class BlockLog:
    """The entries of a log: position and size in bytes, and where in the log the data is."""

    def __init__(self, path):
        with open(path, "rb") as file:
            self._bytes = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        magic, version, count, sector_size = struct.unpack_from("<QQQI", self._bytes)
        if (magic, version, sector_size) != (MAGIC, 1, SECTOR):
            raise ValueError(f"{path} is no log of writes")
        self.entries = []
        place = SECTOR
        for _ in range(count):
            sector, sectors, flags, _ = struct.unpack_from("<QQQQ", self._bytes, place)
            place += SECTOR
            self.entries.append(Entry(sector * SECTOR, sectors * SECTOR, flags, place))
            if not flags & DISCARD:
                place += sectors * SECTOR

    def data(self, entry):
        return self._bytes[entry.data:entry.data + entry.size]


class Disk:
    """Part of a disk, from its byte start on, on the way through a log."""

    def __init__(self, log, image, start):
        self._log = log
        self._start = start
        self._flushed = bytearray(image)  # what no power cut can take away
        self._unflushed = []
        self._next = 0

    def _apply(self, image, entry):
        place = entry.position - self._start
        if entry.flags & DISCARD or place < 0 or place >= len(image):
            return
        image[place:place + entry.size] = self._log.data(entry)

    def advance(self, index):
        """Goes on to the time after the entry index."""
        for entry in self._log.entries[self._next:index + 1]:
            if entry.size:
                self._unflushed.append(entry)
            if entry.flags & FLUSH:
                for written in self._unflushed:
                    self._apply(self._flushed, written)
                self._unflushed.clear()
        self._next = max(self._next, index + 1)

    def after_cut(self, survives):
        """The part when the power is cut; survives tells of each write that was not flushed whether it does."""
        image = bytearray(self._flushed)
        for entry in self._unflushed:
            if survives():
                self._apply(image, entry)
        return image
