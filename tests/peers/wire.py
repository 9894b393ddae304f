"""A peer of the transfer protocol, for the tests: both of its sides, written from
the protocol's description alone. Strings are bytes, numbers their digits."""

import contextlib
import pathlib
import select
import socket
import time

CHUNK = 8192
ACK, AGAIN = b"ACK__________", b"AGAIN________"


class Peer:
    def __init__(self, connection):
        self.connection = connection
        connection.settimeout(20)

    def read(self, count):
        """Gives up to `count` bytes, fewer at the end of the stream."""
        data = b""
        with contextlib.suppress(ConnectionError):
            while len(data) < count and (piece := self.connection.recv(count - len(data))):
                data += piece
        return data

    def send(self, data):
        with contextlib.suppress(ConnectionError):
            self.connection.sendall(data)

    def discard(self):
        """Drops what waits to be read."""
        while select.select([self.connection], [], [], 0)[0] and self.read(1):
            pass

    def send_number(self, text):
        self.send(bytes([len(text)]) + text)
        return True

    def send_string(self, data):
        self.send_number(b"%d" % len(data))
        while data:
            self.discard()
            self.send(data[:CHUNK])
            word = self.read(len(ACK))
            if word == ACK:
                data = data[CHUNK:]
            elif word != AGAIN:
                return False
        return True

    def send_rows(self, word, rows):
        """Sends a list, with rows of one string, or a map, with rows of two."""
        if not self.send_string(word):
            return False
        self.send_number(b"%d" % len(rows))
        return all(self.send_string(part) for row in rows for part in row)

    def receive_number(self):
        length = self.read(1)
        if not length or not 0 < length[0] < 128:
            return None
        return self.read(length[0]) or None

    def receive_count(self):
        text = self.receive_number()
        if text is None:
            return None
        digits = text.lstrip(b" \t\n\v\f\r")
        sign, digits = (digits[:1], digits[1:]) if digits[:1] in (b"+", b"-") else (b"", digits)
        end = next((at for at, byte in enumerate(digits) if not 48 <= byte <= 57), len(digits))
        value = min(int(digits[:end] or b"0"), 0xFFFFFFFF)
        return -value % (1 << 32) if sign == b"-" else value

    def receive_string(self):
        size = self.receive_count()
        data = b""
        while size is not None and len(data) < size:
            want = min(size - len(data), CHUNK)
            chunk = self.read(want)
            for _ in range(4):
                # Asks for no more than came: the sender's whole chunk never gets through.
                if 0 < len(chunk) < want:
                    self.send(AGAIN)
                    chunk = self.read(len(chunk))
            if len(chunk) < want:
                return None
            self.acknowledge(chunk)
            data += chunk
        return data if size is not None else None

    def acknowledge(self, _chunk):
        self.send(ACK)

    def receive_rows(self, word, width):
        """Gives whether all came, and the rows that did, each of `width` strings."""
        rows = []
        if self.receive_string() != word:
            return False, rows
        count = self.receive_count()
        for _ in range(count or 0):
            row = []
            for _ in range(width):
                row.append(self.receive_string())
                if row[-1] is None:
                    return False, rows
            rows.append(row)
        return count is not None, rows


def free_port():
    with socket.create_server(("", 0)) as taken:
        return taken.getsockname()[1]


def wait_for_listener(port):
    end = time.monotonic() + 60
    while f":{port:04X} 00000000:0000 0A" not in pathlib.Path("/proc/net/tcp").read_text():
        assert time.monotonic() < end, "nothing listens"
        time.sleep(0.005)
