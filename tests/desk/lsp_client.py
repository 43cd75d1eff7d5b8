"""A client of `yxst lsp`, for its tests."""

import json
import queue
import re
import subprocess
import threading
import time

from support_desk import DESK, TIMEOUT_SECONDS

URI = "file:///plant/fill.st"


class ServerError(Exception):
    """The server has answered with an error."""

    def __init__(self, error):
        super().__init__(error["message"])
        self.code = error["code"]


def framed(message):
    data = message if isinstance(message, bytes) else json.dumps(message).encode()
    return b"Content-Length: %d\r\n\r\n%s" % (len(data), data)


def messages_in(stream):
    """The messages of a stream up to its end, which must be that of a message."""
    while head := stream.readline():
        length = int(re.fullmatch(rb"Content-Length: (\d+)\r\n", head)[1])
        if stream.readline() != b"\r\n":
            raise AssertionError("a head of more than one line")
        data = stream.read(length)
        if len(data) != length:
            raise AssertionError("a message is cut off")
        yield json.loads(data)


def position(line, character):
    return {"line": line, "character": character}


def text_range(start, end):
    return {"start": position(*start), "end": position(*end)}


class Client:
    """A server and what it has said. The messages that it sends by itself are kept."""

    def __init__(self, *, program=DESK, capabilities=None, options=None, **process_options):
        self.process = subprocess.Popen(
            [program, "lsp"], stdin=subprocess.PIPE, stdout=subprocess.PIPE, **process_options
        )
        self.sent = []  # by the server: notifications and requests, in their order
        self._received = queue.Queue()
        self._last_id = 0
        self._version = 0
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()
        if capabilities is not None:
            params = {"processId": None, "rootUri": None, "capabilities": capabilities}
            self.greeting = self.request("initialize", {**params, "initializationOptions": options})
            self.notify("initialized", {})

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        self._reader.join()
        self.process.stdin.close()
        self.process.stdout.close()

    # -----------------------------------------------------------------------------------------
    # Messages
    # -----------------------------------------------------------------------------------------

    def _read(self):
        for message in messages_in(self.process.stdout):
            self._received.put(message)
        self._received.put(None)

    def write(self, data):
        self.process.stdin.write(data)
        self.process.stdin.flush()

    def send(self, message):
        self.write(framed({"jsonrpc": "2.0", **message}))

    def receive(self):
        """The next message, None at the end."""
        return self._received.get(timeout=TIMEOUT_SECONDS)

    def notify(self, method, params):
        self.send({"method": method, "params": params})

    def ask(self, method, params=None):
        """Sends a request; its identifier."""
        self._last_id += 1
        self.send({"id": self._last_id, "method": method, "params": params or {}})
        return self._last_id

    def answer(self, identifier):
        """The result of a request; what comes before it is kept."""
        while True:
            message = self.receive()
            if message is None:
                raise AssertionError("the server has left")
            if "method" in message:
                self.sent.append(message)
            elif message["id"] != identifier:
                raise AssertionError(f"the answer to {message['id']}, not {identifier}")
            elif "error" in message:
                raise ServerError(message["error"])
            else:
                return message["result"]

    def request(self, method, params=None):
        return self.answer(self.ask(method, params))

    def wait_for(self, method, condition=lambda params: True):
        """The params of the next message of that method that the server sends."""
        while True:
            while self.sent:
                message = self.sent.pop(0)
                if message["method"] == method and condition(message["params"]):
                    return message["params"]
            message = self.receive()
            if message is None:
                raise AssertionError("the server has left")
            self.sent.append(message)

    def end(self):
        """Ends the server as it should be; its status."""
        self.request("shutdown")
        self.send({"method": "exit"})
        return self.process.wait(TIMEOUT_SECONDS)

    # -----------------------------------------------------------------------------------------
    # Scripts
    # -----------------------------------------------------------------------------------------

    def open(self, text, uri=URI):
        self._version += 1
        document = {"uri": uri, "languageId": "st", "version": self._version, "text": text}
        self.notify("textDocument/didOpen", {"textDocument": document})

    def change(self, *changes, uri=URI):
        """Each change is a text, or a range and a text."""
        self._version += 1
        events = [
            {"text": change} if isinstance(change, str) else {"range": change[0], "text": change[1]}
            for change in changes
        ]
        document = {"uri": uri, "version": self._version}
        self.notify("textDocument/didChange", {"textDocument": document, "contentChanges": events})

    def close(self, uri=URI):
        self.notify("textDocument/didClose", {"textDocument": {"uri": uri}})

    def diagnostics(self, uri=URI):
        """Those of the text that was sent last."""
        return self.wait_for(
            "textDocument/publishDiagnostics",
            lambda params: params["uri"] == uri and params["version"] == self._version,
        )["diagnostics"]

    def at(self, line, character, uri=URI):
        """The params of a request about a place."""
        return {"textDocument": {"uri": uri}, "position": position(line, character)}


def timed(work):
    """The seconds that it takes, and what it gives."""
    begin = time.monotonic()
    result = work()
    return time.monotonic() - begin, result
