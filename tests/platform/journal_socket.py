"""What a program sends to the journal, read at its socket in the journal's own protocol."""

import struct


def received(listener):
    """The entries that wait at a socket: field names to bytes."""
    while True:
        try:
            yield fields(listener.recv(1 << 20))
        except BlockingIOError:
            return


def fields(datagram):
    """One entry: `NAME=text` lines, and sized values for the rest."""
    entry = {}
    while datagram:
        line, _, rest = datagram.partition(b"\n")
        name, is_text, value = line.partition(b"=")
        if not is_text:
            (size,) = struct.unpack("<Q", rest[:8])
            value, rest = rest[8 : 8 + size], rest[8 + size + 1 :]
        entry[name.decode()] = value
        datagram = rest
    return entry


def messages(entries):
    return [(int(entry["PRIORITY"]), entry["MESSAGE"]) for entry in entries]
