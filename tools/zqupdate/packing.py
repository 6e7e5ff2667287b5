"""What make-update does, without its command line."""

import os
import re
import tempfile

from . import ToolError, archive, cipher

PLAIN, ENCRYPTED = "app-", "capp-"


def check_name(name):
    # The device passes the package's file name to a shell.
    if not re.fullmatch(r"[A-Za-z0-9][A-Za-z0-9._+-]*", name):
        raise ToolError(f'"{name}": a package\'s name has letters, digits and ._+- only')


def make(folder, out_folder, name, cipher_key=None, mtime=None):
    """Makes the package, and its folder when missing, and returns its path; encrypted when there is a key."""
    check_name(name)
    target = os.path.join(out_folder, (ENCRYPTED if cipher_key else PLAIN) + name + ".tgz")
    try:
        os.makedirs(out_folder, exist_ok=True)
        with tempfile.TemporaryDirectory(prefix=".make-update-", dir=out_folder) as scratch:
            made = os.path.join(scratch, "package")
            archive.pack(folder, made, mtime)
            if cipher_key:
                secret = os.path.join(scratch, "secret")
                cipher.encrypt(made, secret, cipher_key)
                made = secret
            os.chmod(made, 0o644)
            os.replace(made, target)
    except OSError as error:
        raise ToolError(f"cannot write {target}: {error.strerror}") from error
    return target


def is_encrypted(path):
    """The device decides by the file's name too."""
    return os.path.basename(path).startswith("capp")


def verify(path, cipher_key):
    """The package's (size, name) entries, decrypted first when its name says so."""
    if not os.path.isfile(path):
        raise ToolError(f"{path}: no such file")
    if not is_encrypted(path):
        return archive.entries(path)
    with tempfile.TemporaryDirectory(prefix="make-update-") as scratch:
        plain = os.path.join(scratch, "package")
        cipher.decrypt(path, plain, cipher_key)
        try:
            return archive.entries(plain)
        except ToolError as error:
            raise ToolError(str(error).replace(plain, path)) from error
