"""A server of a name of its own for the manual's pictures: its certificates, and a proxy that leads
every name to this machine."""

import socket
import socketserver
import subprocess
import threading

HOST = "www.example.net"


def certificate(folder, name, issuer=None):
    """Key and certificate of the host in one file, signed by the issuer or else by itself."""
    path = folder / f"{name}.pem"
    signed = []
    if issuer:
        signed = ["-CA", certificate(folder, issuer), "-CAkey", folder / f"{issuer}.key"]
    subject = HOST if issuer or name == HOST else name
    subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256",
                    "-nodes", "-days", "365" if issuer else "730", "-subj", f"/CN={subject}", "-addext",
                    f"subjectAltName=DNS:{HOST}", "-keyout", folder / f"{name}.key", "-out", path, *signed],
                   check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    path.write_bytes((folder / f"{name}.key").read_bytes() + path.read_bytes())
    return path


def pass_on(source, target):
    try:
        while data := source.recv(1 << 16):
            target.sendall(data)
        target.shutdown(socket.SHUT_WR)
    except OSError:
        for end in (source, target):
            try:
                end.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass  # it has gone already


class Way(socketserver.StreamRequestHandler):
    """One connection through the proxy (RFC 9110, 9.3.6)."""

    def handle(self):
        target = self.rfile.readline().split()[1]
        while self.rfile.readline().strip():
            pass
        port = int(target.rpartition(b":")[2])
        try:
            there = socket.create_connection(("127.0.0.1", self.server.ftp if port == 21 else port))
        except OSError:
            self.wfile.write(b"HTTP/1.1 502 Bad Gateway\r\n\r\n")
            return
        self.wfile.write(b"HTTP/1.1 200 OK\r\n\r\n")
        with there:
            back = threading.Thread(target=pass_on, args=(there, self.connection), daemon=True)
            back.start()
            pass_on(self.connection, there)
            back.join()


class Signpost(socketserver.ThreadingTCPServer):
    """The proxy, on a free port; the usual port of FTP leads to `ftp`."""

    daemon_threads = True

    def __init__(self, ftp):
        super().__init__(("127.0.0.1", 0), Way)
        self.ftp = ftp
        self.port = self.server_address[1]
        threading.Thread(target=self.serve_forever, daemon=True).start()
