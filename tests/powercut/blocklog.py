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
    """Part of a disk, from its byte start on, on the way through a log. Its content is kept by sector."""

    def __init__(self, log, start, size):
        self._log = log
        self._start = start
        self._size = size
        self._flushed = {}  # what no power cut can take away, where it differs from the image
        self._unflushed = []
        self._next = 0

    def _apply(self, sectors, entry):
        place = entry.position - self._start
        if entry.flags & DISCARD or place < 0 or place >= self._size:
            return
        data = self._log.data(entry)
        for offset in range(0, entry.size, SECTOR):
            sectors[place + offset] = data[offset:offset + SECTOR]

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

    def write_after_cut(self, file, start, survives):
        """Writes the part into a file that has the image at start already, as it is when the power is cut;
        survives tells of each write that was not flushed whether it does."""
        sectors = dict(self._flushed)
        for entry in self._unflushed:
            if survives():
                self._apply(sectors, entry)
        end = None
        for place in sorted(sectors):
            if place != end:
                file.seek(start + place)
            file.write(sectors[place])
            end = place + SECTOR
