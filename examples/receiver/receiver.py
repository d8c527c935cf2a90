#!/usr/bin/env python3
"""Receives the files that Kerno uploads and keeps them in a folder.

Needs nothing but Python 3. See README.md beside this file.
"""
import argparse
import http.server
import os
import re
import ssl
import sys
import unicodedata

DEFAULT_PATH = "/Quenkit/upload/share/upload.php"
ROOM_FOR_HEADERS = 4096  # of the body beside the file itself
LONGEST_NAME = 200  # bytes
DEVICE_NAMES = {"con", "prn", "aux", "nul"} | {f"{d}{n}" for d in ("com", "lpt") for n in range(10)}
BOUNDARY = re.compile(r'multipart/form-data\s*;\s*boundary="?([\x21\x23-\x7e]{1,70})"?\s*$', re.I)
DISPOSITION = re.compile(
    rb'^Content-Disposition: form-data; name="file_img"; filename="([^"\r\n]*)"$', re.I)


class Refused(Exception):
    def __init__(self, status, reason):
        super().__init__(reason)
        self.status = status


def parse_body(body, boundary):
    """The file's name (bytes, as sent) and content.

    The closing line follows the file's last byte directly: a line end before it would be a part of
    the file.
    """
    opening = b"--" + boundary + b"\r\n"
    closing = b"--" + boundary + b"--\r\n"
    if not body.startswith(opening) or not body.endswith(closing):
        raise Refused(400, "the body is not between its boundary lines")
    end_of_headers = body.find(b"\r\n\r\n", len(opening) - 2, len(opening) + ROOM_FOR_HEADERS)
    if end_of_headers < 0:
        raise Refused(400, "the file's headers do not end")
    content = memoryview(body)[end_of_headers + 4:len(body) - len(closing)]
    headers = body[len(opening):end_of_headers].split(b"\r\n")
    names = [match.group(1) for match in map(DISPOSITION.match, headers) if match]
    if len(names) != 1 or b"Content-Type: application/octet-stream" not in headers:
        raise Refused(400, 'there is no file in the field "file_img"')
    return names[0], content


def safe_name(sent):
    """A plain name that is harmless on every system, whatever was sent."""
    text = sent.decode("utf-8", "replace")
    text = re.sub(r"%([0-9A-F]{2})", lambda m: chr(int(m.group(1), 16)), text)
    text = re.split(r"[/\\]", text)[-1]
    text = "".join(
        c if c.isalnum() or unicodedata.combining(c) or c in " ._-+=@(),'" else "_" for c in text)
    stem, dot, extension = text.strip(" .").rpartition(".")
    stem, extension = (stem, dot + extension[:20]) if dot else (extension, "")
    while len((stem + extension).encode()) > LONGEST_NAME:
        stem = stem[:-1]
    stem = stem.rstrip(" .")
    if not stem or stem.lower() in DEVICE_NAMES:
        stem = "_" + stem
    return stem + extension


def keep(folder, name, content):
    """Writes a new file, with a number in its name when the name is taken. Returns the name."""
    stem, extension = os.path.splitext(name)
    for number in range(1, 10000):
        chosen = name if number == 1 else f"{stem} ({number}){extension}"
        target = os.path.join(folder, chosen)
        try:
            descriptor = os.open(target, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o644)
        except FileExistsError:
            continue
        try:
            with os.fdopen(descriptor, "wb") as out:
                out.write(content)
        except OSError:
            os.unlink(target)
            raise
        return chosen
    raise Refused(507, "too many files of this name")


class Receiver(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    timeout = 60

    def do_POST(self):
        self.close_connection = True  # one request a connection
        try:
            name, size = self.receive()
            self.answer(200, f"OK {name} {size}")
        except Refused as refused:
            self.answer(refused.status, str(refused))
            self.let_the_rest_go_by()
        except OSError as error:
            self.answer(507, f"the file could not be kept: {error.strerror}")

    def receive(self):
        options = self.server.options
        if self.path.split("?")[0] != options.path:
            raise Refused(404, "there is no receiving script here")
        boundary = BOUNDARY.match(self.headers.get("Content-Type", ""))
        if not boundary:
            raise Refused(415, "multipart/form-data is expected")
        length = self.headers.get("Content-Length", "")
        if not re.fullmatch(r"[0-9]{1,18}", length):
            raise Refused(411, "the length of the body is not told")
        if int(length) > options.max_size + ROOM_FOR_HEADERS:
            raise Refused(413, f"at most {options.max_size} bytes are taken")
        body = self.rfile.read(int(length))
        if len(body) != int(length):
            raise Refused(400, "the body is shorter than told")
        sent_name, content = parse_body(body, boundary.group(1).encode("ascii"))
        if len(content) > options.max_size:
            raise Refused(413, f"at most {options.max_size} bytes are taken")
        return keep(options.folder, safe_name(sent_name), content), len(content)

    def let_the_rest_go_by(self):
        """Reads what still comes for a moment: closing at once could take the answer back."""
        self.connection.settimeout(2)
        try:
            for _ in range(1024):
                if not self.rfile.read1(65536):
                    return
        except OSError:
            pass

    def answer(self, status, line):
        data = (line + "\n").encode()
        self.send_response(status)
        self.send_header("Content-Type", "text/plain; charset=utf-8")
        self.send_header("Content-Length", str(len(data)))
        self.send_header("Connection", "close")
        self.end_headers()
        self.wfile.write(data)


class Server(http.server.ThreadingHTTPServer):
    def handle_error(self, request, client_address):
        print(f"{client_address[0]}: {sys.exc_info()[1]}", file=sys.stderr)


def size(text):
    match = re.fullmatch(r"([0-9]+)([KMG]?)", text)
    if not match:
        raise argparse.ArgumentTypeError(f"{text} is no size such as 500K or 10M")
    return int(match.group(1)) << {"": 0, "K": 10, "M": 20, "G": 30}[match.group(2)]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--folder", default="received", help="where files go (%(default)s)")
    parser.add_argument("--host", default="127.0.0.1", help="address to listen on (%(default)s)")
    parser.add_argument("--port", type=int, default=8080, help="0 takes a free one (%(default)s)")
    parser.add_argument("--path", default=DEFAULT_PATH, help="path of the script (%(default)s)")
    parser.add_argument("--max-size", type=size, default=size("32M"), help="of a file (32M)")
    parser.add_argument("--certificate", help="PEM file; the server then speaks HTTPS")
    parser.add_argument("--key", help="PEM file of the certificate's key")
    options = parser.parse_args()
    os.makedirs(options.folder, exist_ok=True)
    server = Server((options.host, options.port), Receiver)
    server.options = options
    scheme = "http"
    if options.certificate:
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(options.certificate, options.key)
        # The handshake belongs to the connection's own thread, not to the one that accepts.
        server.socket = context.wrap_socket(server.socket, server_side=True,
                                            do_handshake_on_connect=False)
        scheme = "https"
    print(f"{scheme}://{options.host}:{server.server_address[1]}{options.path}", flush=True)
    try:
        server.serve_forever()
    except KeyboardInterrupt:
        return 0


if __name__ == "__main__":
    sys.exit(main())
