#!/usr/bin/env python3
"""Uploads 10 MiB to this machine with kerno and with curl -F, in turns; the memory of both.

usage: upload_bench.py KERNO
"""
import os
import socket
import subprocess
import sys
import tempfile
import threading
import time

MEBIBYTE = 1 << 20
TURNS = 25
SPEED_GOAL = 1.5  # times curl
MEMORY_GOAL = 16  # MiB beside the file and the program's own


def serve(listener, before_answer):
    """Takes a request whole and answers; the same for both clients."""
    buffer = bytearray(1 << 20)
    while True:
        try:
            connection, _ = listener.accept()
        except OSError:
            return
        with connection:
            head = b""
            while b"\r\n\r\n" not in head:
                head += connection.recv(65536)
            headers, _, start = head.partition(b"\r\n\r\n")
            if b"100-continue" in headers:
                connection.sendall(b"HTTP/1.1 100 Continue\r\n\r\n")
            length = int(headers.lower().split(b"content-length:")[1].split(b"\r\n")[0])
            left = length - len(start)
            while left > 0:
                left -= connection.recv_into(buffer)
            before_answer()
            connection.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nOK\n")


def run(arguments, env):
    """Seconds from start to end."""
    begin = time.perf_counter()
    subprocess.run(arguments, env=env, stdout=subprocess.DEVNULL, check=True)
    return time.perf_counter() - begin


def peak_memory(child):
    """The most resident memory that a running process had, in MiB."""
    with open(f"/proc/{child.pid}/status", encoding="ascii") as status:
        line = next(line for line in status if line.startswith("VmHWM:"))
    return int(line.split()[1]) / 1024


def measure_memory(kerno, file, env, held):
    """The peak of an upload when all is sent, and of a run that waits for its text."""
    held.clear()
    upload = subprocess.Popen([kerno, "upload", file], env=env, stdout=subprocess.DEVNULL)
    held.arrived.wait()
    uploading = peak_memory(upload)
    held.set()
    upload.wait()
    other = subprocess.Popen([kerno, "measure", "--text-file", "-", "--face", "DejaVu Sans"], env=env,
                             stdin=subprocess.PIPE, stdout=subprocess.DEVNULL)
    time.sleep(0.5)
    idle = peak_memory(other)
    other.communicate(b"x")
    return uploading, idle


class Held(threading.Event):
    """Lets answers go while it is set; `arrived` tells that a request is there."""

    def __init__(self):
        super().__init__()
        self.arrived = threading.Event()
        self.set()

    def pass_by(self):
        self.arrived.set()
        self.wait()

    def clear(self):
        super().clear()
        self.arrived.clear()


def main():
    kerno = sys.argv[1]
    held = Held()
    with tempfile.TemporaryDirectory() as folder:
        listener = socket.create_server(("127.0.0.1", 0))
        threading.Thread(target=serve, args=(listener, held.pass_by), daemon=True).start()
        address = f"127.0.0.1:{listener.getsockname()[1]}"
        os.makedirs(os.path.join(folder, "kerno"))
        with open(os.path.join(folder, "kerno", "UpFile.ini"), "w", encoding="ascii") as ini:
            ini.write(f"[UpFile]\nserver={address}\nopen_http=http\nphp_fn=/up\n")
        file = os.path.join(folder, "large.svg")
        with open(file, "wb") as out:
            out.write(os.urandom(10 * MEBIBYTE))
        env = {**os.environ, "XDG_CONFIG_HOME": folder, "no_proxy": "*"}
        ours = [kerno, "upload", file]
        theirs = ["curl", "-s", "-F", f"file_img=@{file}", f"http://{address}/up"]
        run(ours, env)
        run(theirs, env)
        measured = [(run(ours, env), run(theirs, env)) for _ in range(TURNS)]
        uploading, idle = measure_memory(kerno, file, env, held)
    our_time, curl_time = (min(times) for times in zip(*measured))
    ratio = our_time / curl_time
    memory = uploading - idle - 10
    print(f"upload of 10 MiB: kerno {our_time * 1000:.1f} ms, curl -F {curl_time * 1000:.1f} ms, "
          f"ratio {ratio:.2f}, goal {SPEED_GOAL}{'' if ratio <= SPEED_GOAL else ' MISSED'}")
    print(f"memory beside the file and the program's own {idle:.1f} MiB: {memory:.1f} MiB, "
          f"goal {MEMORY_GOAL}{'' if memory <= MEMORY_GOAL else ' MISSED'}")


if __name__ == "__main__":
    main()
