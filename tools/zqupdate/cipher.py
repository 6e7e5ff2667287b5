"""Blowfish in CBC mode with PKCS padding, by the openssl command and its legacy provider."""

import subprocess

from . import ToolError


def _run(direction, source, target, cipher_key):
    command = ["openssl", "enc", direction, "-bf-cbc", "-provider", "legacy", "-provider", "default",
               "-K", cipher_key.key, "-iv", cipher_key.iv, "-in", source, "-out", target]
    try:
        done = subprocess.run(command, stdin=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, check=False)
    except FileNotFoundError as error:
        raise ToolError("the openssl command is missing") from error
    return done.returncode == 0, done.stderr.strip()


def encrypt(source, target, cipher_key):
    good, why = _run("-e", source, target, cipher_key)
    if not good:
        raise ToolError(f"openssl cannot encrypt: {why}")


def decrypt(source, target, cipher_key):
    if not _run("-d", source, target, cipher_key)[0]:
        # Bad padding, a length that is no whole number of blocks, and another key all end here.
        raise ToolError(f"{source}: not encrypted with this key, or damaged")
