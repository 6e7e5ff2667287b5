"""An answer as the pieces that go over the wire, in order, with what a fault makes of them."""

from typing import Iterable, NamedTuple


class Wait(NamedTuple):
    seconds: float


class Answer(NamedTuple):
    """`body` yields bytes, `length` of them in all."""

    status: str  # "200 OK"
    kind: str  # the Content-Type
    length: int
    body: Iterable[bytes]


def text_answer(text, status="200 OK", kind="text/xml; charset=utf-8"):
    body = text.encode()
    return Answer(status, kind, len(body), (body,) if body else ())


def _header(answer, *lines, status=None):
    head = [f"HTTP/1.1 {status or answer.status}", f"Content-Type: {answer.kind}", "Connection: close", *lines]
    return ("\r\n".join(head) + "\r\n\r\n").encode()


def _length(answer, difference=0):
    return f"Content-Length: {answer.length + difference}"


def _chunks(body):
    for piece in body:
        for start in range(0, len(piece), 1000):
            part = piece[start : start + 1000]
            yield b"%x\r\n%b\r\n" % (len(part), part)
    yield b"0\r\n\r\n"


def _half(answer):
    left = answer.length // 2
    for piece in answer.body:
        yield piece[:left]
        left -= len(piece[:left])
        if left == 0:
            return


def _framed(answer, fault):
    """The answer's pieces for faults of its framing."""
    if fault.name == "cut-header":
        whole = _header(answer, _length(answer))
        yield whole[: len(whole) // 2]
    elif fault.name == "cut-body":
        yield _header(answer, _length(answer))
        yield from _half(answer)
    elif fault.name in ("chunked", "chunked-and-length"):
        lengths = [_length(answer)] if fault.name == "chunked-and-length" else []
        yield _header(answer, "Transfer-Encoding: chunked", *lengths)
        yield from _chunks(answer.body)
    elif fault.name == "bad-chunk":
        yield _header(answer, "Transfer-Encoding: chunked") + b"five\r\nhello\r\n0\r\n\r\n"
    else:
        yield _header(answer, *_framing_lines(answer, fault))
        yield from answer.body


def _framing_lines(answer, fault):
    if fault.name == "long-length":
        return (_length(answer, 1000),)
    if fault.name == "short-length":
        return (f"Content-Length: {answer.length // 2}",)
    if fault.name == "two-lengths":
        return (_length(answer), _length(answer, 1))
    if fault.name == "no-length":
        return ()
    if fault.name == "long-header":
        return ("X-Long: " + "x" * (1024 * 1024), _length(answer))
    return (_length(answer),)


def pieces(answer, fault):
    """Bytes to send and Waits to keep, in order; after the last one the connection is closed."""
    if fault.name == "silence":
        return
    if fault.name == "nonsense":
        yield bytes(range(256)) * 4
    elif fault.name == "redirect":
        yield _header(answer, "Location: http://localhost:1/elsewhere", "Content-Length: 0", status="302 Found")
    elif fault.name == "404":
        yield from _framed(text_answer("not found\n", "404 Not Found", "text/plain"), fault)
    elif fault.name == "500":
        yield from _framed(text_answer("broken\n", "500 Internal Server Error", "text/plain"), fault)
    elif fault.name == "line-feeds":
        yield _header(answer, _length(answer)).replace(b"\r\n", b"\n")
        yield from answer.body
    elif fault.name == "trickle":
        for piece in _framed(answer, fault):
            for byte in piece:
                yield bytes((byte,))
                yield Wait(fault.seconds)
    else:
        if fault.name == "slow":
            yield Wait(fault.seconds)
        if fault.name == "continue":
            yield b"HTTP/1.1 100 Continue\r\n\r\n" * 3
        yield from _framed(answer, fault)
