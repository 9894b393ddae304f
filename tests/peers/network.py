#!/usr/bin/env python3
"""The program against a peer that knows the protocol's description only, and
against itself on the other system: network.py PROGRAM [OTHER-PROGRAM]"""

import concurrent.futures
import contextlib
import os
import pathlib
import random
import re
import socket
import subprocess
import sys
import tempfile
import time
import traceback

from wire import ACK, AGAIN, CHUNK, Peer, free_port, wait_for_listener

PROGRAM, *OTHERS = map(os.path.abspath, sys.argv[1:])
SECONDS = 240
SIZES = (0, 1, 8191, 8192, 8193)
# The large string and the long list; Wine takes milliseconds for what Linux does in 30 us.
LARGE = {False: (50000000, 100000), True: (5000000, 1000)}
NUMBERS = ("2.5", "7", "0", "-0.1", "4294967296", "0.000000001")
FOREIGN = (b"NACK", b"OK", b"CONTINUE", b"WAIT", b"ERROR", b"INCONSISTENT", b"CANCEL", b"ack",
           b"\0")
WRONG = (b"\0" + b"1" * 9, b"\x801", b"\xff" + b"1" * 300, b"\x7f" + b"0" * 127, b"\x02-2more",
         b"\x0a4294967294more", b"\x0c00000000000", b"\x04 +2xhi", b"\3abc", b"\x042\x004hi",
         b"\x0b99999999999", b"\x043.75abc")

# By type: how a script makes the value that it sends, the value, and the peer's functions.
KINDS = {
    # The command that reads it leaves carriage returns out.
    "string": ('filetostr "sent" value', bytes(range(256)).replace(b"\r", b"") * 33,
               Peer.send_string, Peer.receive_string),
    "list": ('listappend value 1 "two" "" -1.5', [[b"1"], [b"two"], [b""], [b"-1.5"]],
             lambda peer, rows: peer.send_rows(b"@list", rows),
             lambda peer: peer.receive_rows(b"@list", 1)),
    "map": ('mapset value "b" 2 \n mapset value "a" ""', [[b"a", b""], [b"b", b"2"]],
            lambda peer, rows: peer.send_rows(b"@map", rows),
            lambda peer: peer.receive_rows(b"@map", 2)),
    "number": ("eval ( value = -1.5 )", b"-1.5", Peer.send_number, Peer.receive_number),
}

# By name: the type, the statement, the value it begins with, and what the other side does:
# it sends bytes and waits seconds. Then whether the statement is done, the value behind it,
# what the other side gets, and how many seconds it takes at least.
HI = 'eval ( value = "hi" )'
PACED = {
    "never speaks": ("string", "recvstring s value", "", [6], 0, b"", b"", 5),
    "stops in a number": ("string", "recvstring s value", "", [b"\3", 6], 0, b"", b"", 5),
    "stops in a chunk": ("string", "recvstring s value", "", [b"\0012h", 6], 0, b"", AGAIN, 5),
    "a byte a second": ("string", "recvstring s value", "",
                        [step for byte in b"\0019abcdefg" for step in (bytes([byte]), 1)],
                        0, b"", AGAIN * 4, 6),
    "digits a second apart": ("number", "recvnumber s value", "", [b"\3", 1, b"1", 1, b"23"],
                              1, b"1", b"", 1),
    "raw bytes, fewer": ("string", "recvraw s value 10", "", [b"four", 1], 1, b"four", b"", 0),
    "raw bytes, more": ("string", "recvraw s value 4", "", [b"fourteen"], 1, b"four", b"", 0),
    "never answers": ("string", "sendstring s value", HI, [6], 0, b"hi", b"\0012hi", 5),
    "half a word": ("string", "sendstring s value", HI, [0.5, ACK[:7], 2], 0, b"hi", b"\0012hi", 0),
    "numbers": ("number", " \n ".join(
        f"sendnumber s {number}" for number in (*NUMBERS, "1" + "0" * 39)), "", [], 1, b"0",
                b"\0032.5\0017\0010\4-0.1\x0a4294967296\0010"
                b"\x27999999999999999939709166371603178586112", 0),
    "raw": ("string", 'sendraw s "abc" 0 \n sendraw s "abc" 2', "", [], 1, b"", b"ab", 0),
    "raw, too much": ("string", 'sendraw s "abc" 4', "", [], 0, b"", b"", 0),
}

# Each round meets the peer once and keeps what the statement said and got.
CASES = """
function main
    number i s
    string text
    for ( i = 0 ) ( i < {count} ) ( ++ i )
        number done
        {kind} value
        {before}
        connect "127.0.0.1" {port} s
        {statement}
        if success
            eval ( done = 1 )
        end
        eval ( text = "" . value )
        appendstrtofile ( done . " " . &sizeof text . " " . text ) "results"
        closeconnection s
    end
end
"""


def start(program, name, script):
    pathlib.Path(name).mkdir()
    pathlib.Path(name, "run.qcs").write_text(script)
    wine = ["wine"] if program.endswith(".exe") else []
    return subprocess.Popen([*wine, program, "--script", "run.qcs"], cwd=name,
                            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)


def records(name):
    data = pathlib.Path(name, "results").read_bytes()
    while data:
        done, size, data = data.split(b" ", 2)
        yield int(done), data[:int(size)]
        data = data[int(size):]


def text_of(value):
    """The text that a script sees; a map keeps the last of equal keys, in the order of bytes."""
    if not isinstance(value, list):
        return value or b""
    if value and len(value[0]) == 2:
        value = sorted(dict(value).items(), key=lambda row: [byte ^ 128 for byte in row[0]])
    text = b""
    for row in value:  # no separator before the first byte
        text += (b";" if text else b"") + b"=".join(row)
    return text


class Taking(Peer):
    """Keeps what it reads. Of its acknowledgements the first are those that it is given,
    and None behind them ends its side of the stream."""

    def __init__(self, connection, answers):
        super().__init__(connection)
        self.answers = list(answers)
        self.taken = b""

    def read(self, count):
        data = super().read(count)
        self.taken += data
        return data

    def acknowledge(self, chunk):
        answer = self.answers.pop(0) if self.answers else ACK
        self.send(answer)
        if self.answers == [None]:
            self.connection.shutdown(socket.SHUT_WR)
        elif answer == AGAIN:
            self.read(len(chunk))
            self.acknowledge(chunk)


def streams(data):
    """Meets a receiver: sends all of `data`, ends, and gives what came back."""
    def meet(connection):
        peer = Peer(connection)
        peer.send(data)
        with contextlib.suppress(OSError):
            connection.shutdown(socket.SHUT_WR)
        return peer.read(1 << 20)
    return meet


def answers(receive, *words):
    """Meets a sender, and gives what came."""
    def meet(connection):
        peer = Taking(connection, words)
        receive(peer)
        peer.read(1 << 20)
        return peer.taken
    return meet


def paced(steps):
    def meet(connection):
        peer = Peer(connection)
        for step in steps:
            peer.send(step) if isinstance(step, bytes) else time.sleep(step)
        return peer.read(1 << 20)
    return meet


def by_the_peer(meet, act):
    """What the peer does in the program's place: its outcome, and what the other side got."""
    ours, theirs = socket.socketpair()
    with concurrent.futures.ThreadPoolExecutor(1) as pool, theirs:
        other = pool.submit(meet, theirs)
        outcome = act(Peer(ours))
        ours.close()
        return outcome, other.result()


def by_the_program(name, kind, statement, before, cases):
    """The same for a row of cases, each with its own connection."""
    with socket.create_server(("127.0.0.1", 0)) as listener:
        listener.settimeout(60)
        process = start(PROGRAM, name, CASES.format(
            count=len(cases), kind=kind, port=listener.getsockname()[1], statement=statement,
            before=before))
        pathlib.Path(name, "sent").write_bytes(KINDS["string"][1])
        got = []
        for meet in cases:
            with listener.accept()[0] as connection:
                got.append(meet(connection))
        process.communicate(timeout=SECONDS)
    return list(zip(records(name), got, strict=True))


def judge(command, kind, cases, act):
    """Puts the cases to the program and to the peer, which must do the same."""
    before = KINDS[kind][0] if command.startswith("send") else ""
    found = by_the_program(command, kind, f"{command} s value", before, cases)
    for at, (meet, ((done, text), got)) in enumerate(zip(cases, found)):
        (well, value), wanted = by_the_peer(meet, act)
        assert (done, text, got) == (well, text_of(value), wanted), (
            command, at, done, text[:99], got[-99:], well, text_of(value)[:99], wanted[-99:])


def receiving(kind):
    def act(peer):
        value = KINDS[kind][3](peer)
        if kind == "number":
            digits = re.match(rb"\s*[+-]?\d+\.?\d*", value or b"")
            text = b"%.8f" % float(digits[0] if digits else 0)
            return value is not None, text.rstrip(b"0").rstrip(b".")
        return value if isinstance(value, tuple) else (value is not None, value)
    return act


def sending(kind):
    return lambda peer: (KINDS[kind][2](peer, KINDS[kind][1]), KINDS[kind][1])


def mutated(data, chance):
    data = bytearray(data)
    for _ in range(chance.randint(1, 3)):
        at = chance.randrange(len(data))
        data[at:at + chance.randint(0, 1)] = chance.choice((b"", b"\0", b"\xff", b"1", b"9", b"@"))
    return bytes(data)


def receiver_cases(kind):
    """The end of the stream behind each byte, and streams with wrong bytes."""
    _, whole = by_the_peer(answers(KINDS[kind][3]), sending(kind))
    cuts = [cut for cut in range(len(whole) + 1) if kind != "string" or not 8 < cut < CHUNK]
    chance = random.Random(kind)
    return [streams(data) for data in (
        *(whole[:cut] for cut in cuts), *WRONG, whole + b"surplus",
        *(mutated(whole, chance) for _ in range(0 if kind == "number" else 100)))]


def sender_cases(kind):
    """The end of the answers behind each byte, wrong words, surplus, and AGAIN often."""
    receive = KINDS[kind][3]
    _, whole = by_the_peer(answers(receive), sending(kind))
    count = len(by_the_peer(streams(whole), receiving(kind))[1])
    words = [[ACK] * (cut // len(ACK)) + [ACK[:cut % len(ACK)], None] for cut in range(count)]
    words += [[ACK] * at + [word.ljust(13, b"_")] for at in (0, 1) for word in FOREIGN]
    words += [[], [AGAIN] * 50, [ACK, AGAIN, AGAIN], [ACK + b"NACK_________"]]
    return [answers(receive, *row) for row in words]


def pace(name):
    kind, statement, before, steps, done, text, wanted, least = PACED[name]
    began = time.monotonic()
    found = by_the_program(name, kind, statement, before, [paced(steps)])
    assert found == [((done, text), wanted)], (name, found)
    assert time.monotonic() - began >= least, (name, "too soon")


# Two scripts: the listener sends back what it got, and the caller keeps it.
LISTENER = """
function main
    number s n
    string t
    vector v
    map m
    startlistener {port}
    getnextconn {port} s t n
    while ( ! success )
        sleep 1
        getnextconn {port} s t n
    end
    {exchanges}
    recvlist s v {tell}
    closeconnection s
    endlistener {port}
end
"""
CALLER = """
function main
    number s n r
    string t u
    list l k
    set e
    map m q
    connect "127.0.0.1" {port} s
    {exchanges}
    sendmap s m {tell}
    closeconnection s
end
"""
TELL = """
    if success
        appendstrtofile "1" "results"
    end
    else
        appendstrtofile "0" "results"
    end
"""


def exchanges(sizes):
    """Gives what the listener does and what the caller does, side by side."""
    for size in sizes:
        yield "recvstring s t", f'filetostr "../in.{size}" t \n sendstring s t'
        yield "sendstring s t", f'recvstring s u {TELL} strtofile u "out.{size}"'
    for number in NUMBERS:
        yield "recvnumber s n", f"sendnumber s {number}"
        yield "sendnumber s n", f'recvnumber s r {TELL} appendstrtofile ( r . " " ) "values"'
    yield "recvlist s v", 'filetolist "../elements" l \n sendlist s l'
    yield "sendlist s v", f'recvlist s k {TELL} listtofile k "elements"'
    yield ("vecclear v \n recvlist s v", 'listclear l \n listappend l "b" "a" \n listclear k \n'
           'listappend k 5 l m "" \n sendlist s k')
    yield "sendlist s v", f'setinsert e 1 \n recvlist s e {TELL} appendstrtofile ( "" . e ) "values"'
    yield "recvmap s m", 'mapset m 1 k \n mapset m "a=b" "" \n mapset m "k" -2.5 \n sendmap s m'
    yield "sendmap s m", f'mapset q "k" "old" \n recvmap s q {TELL} appendstrtofile ( "" . q ) "values"'


def converse(name, listener, caller):
    port = free_port()
    place = pathlib.Path(name)
    place.mkdir()
    large, elements = LARGE[any(program.endswith(".exe") for program in (listener, caller))]
    sizes = (*SIZES, large)
    for size in sizes:
        place.joinpath(f"in.{size}").write_bytes(os.urandom(size).replace(b"\r", b"x"))
    place.joinpath("elements").write_text("".join(f"element {at}\n" for at in range(elements)))
    listens, calls = (" \n ".join(column) for column in zip(*exchanges(sizes)))
    theirs = start(listener, place / "listener",
                   LISTENER.format(port=port, exchanges=listens, tell=TELL))
    wait_for_listener(port)
    ours = start(caller, place / "caller", CALLER.format(port=port, exchanges=calls, tell=TELL))
    said = [process.communicate(timeout=SECONDS)[0] for process in (ours, theirs)]
    assert place.joinpath("listener", "results").read_bytes() == b"0", (name, said)
    out = {path.name: path.read_bytes() for path in place.joinpath("caller").iterdir()}
    assert out["results"] == b"1" * (len(sizes) + len(NUMBERS) + 3) + b"0", (name, out["results"])
    values = b"2.5 7 0 -0.1 4294967296 0 1;5;b;a" b"1=5;b;a;;;a=b=;k=-2.5"
    assert out["values"] == values, (name, out["values"])
    assert out["elements"] == place.joinpath("elements").read_bytes(), name
    for size in sizes:
        assert out[f"out.{size}"] == place.joinpath(f"in.{size}").read_bytes(), (name, size)


# A port that another program has, and one that is listened on twice.
PORTS = """
function main
    number s
    startlistener {taken}
    startlistener {port}
    sleep 300
    startlistener {port}
    connect "127.0.0.1" {port} s
    sleep 300
    getnextconn {port} s
    {tell}
    endlistener {taken}
    {tell}
    endlistener {port} \n endlistener {port}
    {tell}
    endlistener {port}
    {tell}
end
"""


def ports():
    with socket.create_server(("", 0)) as other:
        began = time.monotonic()
        script = PORTS.format(taken=other.getsockname()[1], port=free_port(), tell=TELL)
        start(PROGRAM, "ports", script).communicate(timeout=SECONDS)
        assert pathlib.Path("ports", "results").read_bytes() == b"1110"
        # Five attempts to have the port take more.
        assert time.monotonic() - began < 10


def jobs():
    """Each test with its arguments; those that mostly wait come first."""
    yield ports,
    yield from ((pace, name) for name in PACED)
    for kind in KINDS:
        yield judge, "recv" + kind, kind, receiver_cases(kind), receiving(kind)
        if kind != "number":
            yield judge, "send" + kind, kind, sender_cases(kind), sending(kind)
    for other in OTHERS:
        yield converse, "to the other", other, PROGRAM
        yield converse, "from the other", PROGRAM, other
    yield converse, "alike", PROGRAM, PROGRAM


def main():
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(8) as pool:
        for job in [pool.submit(*job) for job in jobs()]:
            if error := job.exception():
                failed += 1
                traceback.print_exception(error)
    return 1 if failed else 0


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        os.environ["QUOREL_REGISTRY"] = os.path.join(folder, "registry.db")
        sys.exit(main())
