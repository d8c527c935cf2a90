"""Servers that treat uploads badly, each on a free port of this machine.

usage: misbehaving_server.py

Prints a line "NAME PORT" for each and an empty one, and writes a line with the name to the file
"connections" for every connection that it gets. The last request of "takes it" is kept in "request".
"""
import pathlib
import re
import socket
import struct
import sys
import threading
import time

STEP = 0.1  # seconds


def headers(peer, text=b""):
    while b"\r\n\r\n" not in text and (more := peer.recv(65536)):
        text += more
    return text


def request(peer):
    text = headers(peer)
    end = text.index(b"\r\n\r\n") + 4
    size = end + int(re.search(rb"Content-Length: (\d+)", text)[1])
    while len(text) < size and (more := peer.recv(1 << 20)):
        text += more
    return text


def until_it_goes(peer):
    while peer.recv(1 << 20):
        pass


def reset(peer):
    peer.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))


def takes_it(peer):
    pathlib.Path("request").write_bytes(request(peer))
    peer.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 7\r\n\r\nTaken.\n")


def refuse_early(peer):
    headers(peer)
    peer.sendall(b"HTTP/1.1 413 Too Large\r\nContent-Length: 9\r\nConnection: close\r\n\r\ntoo large")
    until_it_goes(peer)


def answer(text, drip=False):
    def act(peer):
        request(peer)
        peer.sendall(text)
        while drip:
            time.sleep(STEP)
            peer.sendall(b"x")
    return act


BEHAVIOURS = {
    "takes it": takes_it,
    "never reads": lambda peer: time.sleep(60),
    "never answers": until_it_goes,
    "endless status line": answer(b"HTTP/1.1 200 ", drip=True),
    "dripping answer": answer(b"HTTP/1.1 200 OK\r\n\r\nfirst\n", drip=True),
    "resets": reset,
    "closes after the request": request,
    "308": answer(b"HTTP/1.1 308 Permanent Redirect\r\nLocation: http://example.org/\r\n"
                  b"Content-Length: 0\r\n\r\n"),
    "303": answer(b"HTTP/1.1 303 See Other\r\nLocation: /thanks\r\nContent-Length: 0\r\n\r\n"),
    "413 before the body": refuse_early,
    "500": answer(b"HTTP/1.0 500 Oops\r\n\r\n\r\n  \r\n<b>no</b>\r\nmore"),
    "megabyte of headers": answer(b"HTTP/1.1 200 OK\r\nX: " + b"y" * (1 << 20) + b"\r\n\r\n"),
    "stops in headers": answer(b"HTTP/1.1 200 OK\r\nX: y\r\nContent-Le"),
    "short answer": answer(b"HTTP/1.1 200 OK\r\nContent-Length: 90\r\n\r\nTaken.\n"),
    "damaged chunk": answer(b"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                            b"6\r\nTaken.\r\nzz\r\n"),
    "chunks without end": answer(b"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                                 b"6\r\nTaken.\r\n"),
    "chunks with trailers": answer(b"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nTrailer: X\r\n\r\n"
                                   b"6\r\nTaken.\r\n0\r\nX: y\r\n\r\n"),
    "no HTTP": answer(b"220 mail.example.org ready\r\n"),
    "terminal escapes": answer(b"HTTP/1.1 200 \x1b]0;x\x07\r\n\r\n\x1b[2J\xe2\x80\xaegnp\n"),
    "nobody": None,
}


def serve(name, listener):
    while True:
        peer, _ = listener.accept()
        with open("connections", "a", encoding="ascii") as log:
            log.write(name + "\n")
        with peer:
            try:
                BEHAVIOURS[name](peer)
            except OSError:
                pass  # the other end has gone


for behaviour, act in BEHAVIOURS.items():
    listening = socket.create_server(("127.0.0.1", 0))
    print(behaviour, listening.getsockname()[1])
    if act:
        threading.Thread(target=serve, args=(behaviour, listening), daemon=True).start()
    else:
        listening.close()
print(flush=True)
sys.stdout.close()
time.sleep(600)  # a test ends it sooner
