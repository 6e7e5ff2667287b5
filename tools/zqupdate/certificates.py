"""The server's own authority and certificates, good and bad, made with the openssl command."""

import os
import ssl
import subprocess
import warnings

from . import ToolError

_CURVE = ["-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes"]
_DAYS = "3650"
# The certificate that a fault shows in place of the good one.
BY_FAULT = {"expired": "expired", "wrong-name": "wrong-name", "unknown-ca": "unknown-ca"}


def _openssl(folder, *words):
    try:
        done = subprocess.run(["openssl", *words], cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              check=False, umask=0o077)
    except FileNotFoundError as error:
        raise ToolError("the openssl command is missing") from error
    if done.returncode != 0:
        raise ToolError(f"openssl {words[0]}: {done.stderr.strip()}")


def _names(hosts):
    """subjectAltName: addresses and names are told apart by how they look."""
    kind = {True: "IP", False: "DNS"}
    return ",".join(f"{kind[host.replace('.', '').isdigit() or ':' in host]}:{host}" for host in hosts)


def _authority(folder, name, common_name):
    _openssl(folder, "req", "-x509", *_CURVE, "-keyout", f"{name}.key", "-out", f"{name}.pem", "-days", _DAYS,
             "-subj", f"/CN={common_name}", "-addext", "keyUsage=critical,keyCertSign,cRLSign")


def _leaf(folder, name, authority, hosts, days=_DAYS):
    _openssl(folder, "req", "-new", *_CURVE, "-keyout", f"{name}.key", "-out", f"{name}.csr", "-subj", f"/CN={hosts[0]}")
    with open(os.path.join(folder, f"{name}.ext"), "w", encoding="ascii") as file:
        file.write(f"subjectAltName={_names(hosts)}\nbasicConstraints=CA:FALSE\nextendedKeyUsage=serverAuth\n")
    _openssl(folder, "x509", "-req", "-in", f"{name}.csr", "-CA", f"{authority}.pem", "-CAkey", f"{authority}.key",
             "-days", days, "-extfile", f"{name}.ext", "-out", f"{name}.pem")
    for suffix in ("csr", "ext"):
        os.remove(os.path.join(folder, f"{name}.{suffix}"))


class Certificates:
    def __init__(self, folder, hosts):
        """Makes what is missing. The authority stays, so that devices that trust it go on doing so; the server's
        certificates are made anew when the names change."""
        self._folder = folder
        self.ca_file = os.path.join(folder, "ca.pem")
        os.makedirs(folder, mode=0o700, exist_ok=True)
        if not os.path.exists(self.ca_file):
            _authority(folder, "ca", "update-server's own authority")
        # Written last: a start that was cut off makes them all again.
        stamp = os.path.join(folder, "names")
        if self._read(stamp) != "\n".join(hosts):
            _leaf(folder, "server", "ca", hosts)
            _leaf(folder, "expired", "ca", hosts, days="-1")
            _leaf(folder, "wrong-name", "ca", ["elsewhere.invalid"])
            _authority(folder, "stranger", "An authority that nobody knows")
            _leaf(folder, "unknown-ca", "stranger", hosts)
            with open(stamp, "w", encoding="utf-8") as file:
                file.write("\n".join(hosts))

    @staticmethod
    def _read(path):
        try:
            with open(path, encoding="utf-8") as file:
                return file.read()
        except FileNotFoundError:
            return None

    def context(self, fault):
        """The TLS side of a connection under the fault of this name."""
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        path = os.path.join(self._folder, BY_FAULT.get(fault, "server"))
        context.load_cert_chain(path + ".pem", path + ".key")
        context.minimum_version = ssl.TLSVersion.TLSv1_2
        if fault == "old-version":
            # Today's security level has no signature that TLS 1.1 could use.
            context.set_ciphers("DEFAULT:@SECLEVEL=0")
            with warnings.catch_warnings():
                warnings.simplefilter("ignore", DeprecationWarning)
                context.minimum_version = ssl.TLSVersion.TLSv1_1
                context.maximum_version = ssl.TLSVersion.TLSv1_1
        context.set_alpn_protocols(["h2" if fault == "h2" else "http/1.1"])
        return context
