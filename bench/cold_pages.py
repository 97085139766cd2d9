# SPDX-License-Identifier: MIT
"""Puts the pages of a folder's files out of memory, and says how many of them are in it."""

import ctypes
import mmap
import os

libc = ctypes.CDLL(None, use_errno=True)
libc.mincore.argtypes = [ctypes.c_void_p, ctypes.c_size_t, ctypes.c_char_p]


def files_of(root):
    return [os.path.join(folder, name) for folder, _, names in os.walk(root) for name in names]


def drop(paths):
    """What waits to be written must have been: `os.sync()`."""
    for path in paths:
        file = os.open(path, os.O_RDONLY)
        os.posix_fadvise(file, 0, 0, os.POSIX_FADV_DONTNEED)
        os.close(file)


def share_in_memory(paths):
    """Of the files' pages."""
    there = total = 0
    for path in paths:
        with open(path, "rb") as file:
            size = os.fstat(file.fileno()).st_size
            if size == 0:
                continue
            with mmap.mmap(file.fileno(), size, access=mmap.ACCESS_COPY) as mapped:
                pages = ctypes.create_string_buffer((size + mmap.PAGESIZE - 1) // mmap.PAGESIZE)
                start = ctypes.c_char.from_buffer(mapped)
                if libc.mincore(ctypes.addressof(start), size, pages) != 0:
                    raise OSError(ctypes.get_errno(), "mincore")
                del start
                there += sum(page & 1 for page in pages.raw)
                total += len(pages)
    return there / max(total, 1)
