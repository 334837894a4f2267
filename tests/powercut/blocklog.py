"""Reads a log of all writes to a disk, as QEMU's filter blklogwrites records them in the format of the
kernel's dm-log-writes, and determines the possible contents of the disk after each write."""

import collections
import mmap
import struct

SECTOR = 512
FLUSH, DISCARD = 1, 4
MAGIC = 0x6A736677736872

Entry = collections.namedtuple("Entry", "position size flags data")


class BlockLog:
    """The entries of a log: position and size in bytes, flags, and the offset of the data in the log."""

    def __init__(self, path):
        with open(path, "rb") as file:
            self._bytes = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        magic, version, count, sector_size = struct.unpack_from("<QQQI", self._bytes)
        if (magic, version, sector_size) != (MAGIC, 1, SECTOR):
            raise ValueError(f"{path} is not a log of writes")
        self.entries = []
        offset = SECTOR
        for _ in range(count):
            sector, sectors, flags, _ = struct.unpack_from("<QQQQ", self._bytes, offset)
            offset += SECTOR
            self.entries.append(Entry(sector * SECTOR, sectors * SECTOR, flags, offset))
            if not flags & DISCARD:
                offset += sectors * SECTOR

    def data(self, entry):
        return self._bytes[entry.data:entry.data + entry.size]


class Disk:
    """A partition of a disk, at byte start, while a log is replayed. Holds the sectors that were written."""

    def __init__(self, log, start, size):
        self._log = log
        self._start = start
        self._size = size
        self._flushed = {}  # by position; these survive every power cut
        self._unflushed = []
        self._next = 0

    def _apply(self, sectors, entry):
        position = entry.position - self._start
        if entry.flags & DISCARD or position < 0 or position >= self._size:
            return
        data = self._log.data(entry)
        for offset in range(0, entry.size, SECTOR):
            sectors[position + offset] = data[offset:offset + SECTOR]

    def advance(self, index):
        """Replays the log up to the entry index, inclusive."""
        for entry in self._log.entries[self._next:index + 1]:
            if entry.size:
                self._unflushed.append(entry)
            if entry.flags & FLUSH:
                for written in self._unflushed:
                    self._apply(self._flushed, written)
                self._unflushed.clear()
        self._next = max(self._next, index + 1)

    def write_after_cut(self, file, start, survives):
        """Writes the partition after a power cut into a file that contains its original image at start;
        survives() decides for each unflushed write whether it reaches the disk."""
        sectors = dict(self._flushed)
        for entry in self._unflushed:
            if survives():
                self._apply(sectors, entry)
        end = None
        for position in sorted(sectors):
            if position != end:
                file.seek(start + position)
            file.write(sectors[position])
            end = position + SECTOR
