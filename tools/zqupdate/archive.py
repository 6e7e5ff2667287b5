"""Packages as archives: a folder in, a .tgz out that is the same for the same folder."""

import gzip
import os
import stat
import tarfile
import zlib

from . import ToolError

RUN_SCRIPT = "run"


def _paths(folder):
    """Every entry below the folder, as paths inside it, each folder before what it holds."""
    for root, folders, files in os.walk(folder):
        folders.sort()
        # A link to a folder is an entry, not a place to go.
        for name in sorted(folders + files):
            yield os.path.relpath(os.path.join(root, name), folder)


def _entry(archive, folder, path, mtime):
    full = os.path.join(folder, path)
    mode = os.lstat(full).st_mode
    if not (stat.S_ISREG(mode) or stat.S_ISDIR(mode) or stat.S_ISLNK(mode)):
        raise ToolError(f"{full}: only files, folders and links can be packed")
    entry = archive.gettarinfo(full, arcname=path)
    if entry.islnk():
        # The second name of a file is packed as a file, or the package would depend on the order of the walk.
        entry.type, entry.linkname, entry.size = tarfile.REGTYPE, "", os.stat(full).st_size
    entry.uid = entry.gid = 0
    entry.uname = entry.gname = "root"
    # The rights that a clone of a repository keeps, whatever the umask was.
    entry.mode = 0o755 if entry.isdir() or entry.mode & 0o100 else 0o644
    entry.mtime = int(entry.mtime) if mtime is None else mtime
    return entry


def check_folder(folder):
    """The device runs `sh ./run mode=1` where it unpacked the package."""
    if not os.path.isdir(folder):
        raise ToolError(f"{folder}: no such folder")
    if not os.path.isfile(os.path.join(folder, RUN_SCRIPT)):
        raise ToolError(f'{folder}: has no script named "{RUN_SCRIPT}"')


def pack(folder, target, mtime=None):
    """`mtime`: seconds since 1970 for every entry; None keeps each file's own."""
    check_folder(folder)
    with open(target, "wb") as out:
        with gzip.GzipFile(filename="", mode="wb", fileobj=out, compresslevel=9, mtime=0) as packed:
            with tarfile.open(fileobj=packed, mode="w", format=tarfile.GNU_FORMAT) as archive:
                for path in _paths(folder):
                    entry = _entry(archive, folder, path, mtime)
                    if entry.isreg():
                        with open(os.path.join(folder, path), "rb") as file:
                            archive.addfile(entry, file)
                    else:
                        archive.addfile(entry)
        out.flush()
        os.fsync(out.fileno())


def entries(path):
    """(size, name) of every entry. An archive that ends early, leaves its folder or lacks the run script is refused."""
    listed = []
    try:
        # To the end: the checksum stands there, behind what the archive's reader wants.
        with gzip.open(path) as packed:
            while packed.read(1 << 20):
                pass
        with tarfile.open(path, "r:gz") as archive:
            for entry in archive:
                if os.path.isabs(entry.name) or ".." in entry.name.split("/"):
                    raise ToolError(f"{path}: {entry.name} leaves the folder that the package is unpacked in")
                listed.append((entry.size, entry.name))
    except (tarfile.TarError, EOFError, OSError, zlib.error) as error:
        raise ToolError(f"{path}: no whole archive: {error}") from error
    if not any(name in (RUN_SCRIPT, "./" + RUN_SCRIPT) for _, name in listed):
        raise ToolError(f'{path}: has no script named "{RUN_SCRIPT}"')
    return listed
