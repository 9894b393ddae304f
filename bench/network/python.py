import socket
import sys

CHUNK = 8192
ACK = b"ACK__________"
ELEMENTS = 100000
LARGE = 100000000
ROUNDS = 2000


class Connection:
    def __init__(self, sock):
        sock.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self.sock = sock
        self.file = sock.makefile("rb", CHUNK)

    def close(self):
        self.file.close()
        self.sock.close()

    def send_count(self, count):
        text = b"%d" % count
        self.sock.sendall(bytes((len(text),)))
        self.sock.sendall(text)

    def receive_count(self):
        return int(self.file.read(self.file.read(1)[0]))

    def send_string(self, data):
        self.send_count(len(data))
        for at in range(0, len(data), CHUNK):
            self.sock.sendall(data[at:at + CHUNK])
            if self.file.read(len(ACK)) != ACK:
                sys.exit("no acknowledgement")

    def receive_string(self):
        left = self.receive_count()
        chunks = []
        while left > 0:
            chunk = self.file.read(min(left, CHUNK))
            self.sock.sendall(ACK)
            chunks.append(chunk)
            left -= len(chunk)
        return b"".join(chunks)


def buffers(sock):
    sock.setsockopt(socket.SOL_SOCKET, socket.SO_SNDBUF, CHUNK)
    sock.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, CHUNK)


def connect(port):
    sock = socket.socket()
    buffers(sock)
    sock.connect(("127.0.0.1", port))
    return Connection(sock)


def send_list(port):
    connection = connect(port)
    elements = [b"element %d" % number for number in range(ELEMENTS)]
    connection.send_string(b"@list")
    connection.send_count(len(elements))
    for element in elements:
        connection.send_string(element)
    connection.close()


def receive_list(listener):
    connection = Connection(listener.accept()[0])
    if connection.receive_string() != b"@list":
        sys.exit("no list")
    elements = [connection.receive_string() for _ in range(connection.receive_count())]
    connection.close()
    print(len(elements), elements[77777].decode())


def send_string(port):
    connection = connect(port)
    connection.send_string(b"0123456789" * (LARGE // 10))
    connection.close()


def receive_string(listener):
    connection = Connection(listener.accept()[0])
    data = connection.receive_string()
    connection.close()
    print(len(data), data[77777777:77777787].decode())


def call(port):
    for number in range(ROUNDS):
        connection = connect(port)
        connection.send_string(b"request %d" % number)
        if connection.receive_string() != b"answer to request %d" % number:
            sys.exit("wrong answer")
        connection.close()


def answer(listener):
    size = 0
    for _ in range(ROUNDS):
        connection = Connection(listener.accept()[0])
        request = connection.receive_string()
        connection.send_string(b"answer to " + request)
        connection.close()
        size += len(request)
    print(size)


def main():
    role, workload, port = sys.argv[1], sys.argv[2], int(sys.argv[3])
    if role == "listen":
        listener = socket.socket()
        listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        buffers(listener)
        listener.bind(("", port))
        listener.listen(5)
        {"sendlist": receive_list, "sendstring": receive_string, "rounds": answer}[workload](listener)
    else:
        {"sendlist": send_list, "sendstring": send_string, "rounds": call}[workload](port)


main()
