"""`yxst lsp` as clients see it: diagnostics, changes, settings, cancellation, faults, its end."""

import json
import os
import random
import shutil
import signal
import subprocess
import tempfile
import unittest
from pathlib import Path

from lsp_client import URI, Client, ServerError, framed, messages_in, position, text_range
from support_desk import (
    DESK,
    FAILED,
    FINE,
    IS_SANITIZED,
    NOT_FINE,
    ROOT,
    SANITIZED,
    TIMEOUT_SECONDS,
    child_of,
    is_running,
    large_script,
    run_yxst,
    wait_for,
)

PARSE_ERROR, INVALID_REQUEST, METHOD_NOT_FOUND, INVALID_PARAMS = -32700, -32600, -32601, -32602
NOT_INITIALIZED, CANCELLED, CONTENT_MODIFIED = -32002, -32800, -32801

ERROR, WARNING, INFORMATION = 1, 2, 3
UNNECESSARY = 1

SCRIPT = """\
PROGRAM P
VAR
    level : INT;
END_VAR
    levle := 1;
    level := 2;
    level = 3;
END_PROGRAM
"""
RIGHT = SCRIPT.replace("    levle := 1;\n", "").replace("level =", "level :=")

# A client that shows a place beside that of a diagnostic.
RELATED = {"textDocument": {"publishDiagnostics": {"relatedInformation": True}}}
TELLS_SETTINGS = {"workspace": {"configuration": True}}

LINTED = """\
PROGRAM P
VAR
    level : INT;
END_VAR
    level := 1;
    level := 2;
END_PROGRAM
"""

# So long that nothing is compiled before a message that follows is there.
LONG = large_script(20_000).decode()


def ids(diagnostics):
    """The identifiers, of the server's diagnostics or those of `yxst check`."""
    return [each.get("code") or each["id"] for each in diagnostics]


def checked(text, *options):
    """What `yxst check` finds."""
    with tempfile.NamedTemporaryFile(suffix=".st") as file:
        file.write(text.encode())
        file.flush()
        run = run_yxst("check", "--format=json", *options, file.name)
    return json.loads(run.stdout)


class Diagnostics(unittest.TestCase):
    def found(self, text, **options):
        with Client(**{"capabilities": {}, **options}) as client:
            client.open(text)
            return client.diagnostics()

    def test_they_are_those_of_check(self):
        severities = {"error": ERROR, "warning": WARNING, "note": INFORMATION}
        for path in sorted((ROOT / "tests/golden/templates").glob("*.st")) + [None]:
            text = SCRIPT if path is None else path.read_text("utf-8")
            with self.subTest(path=path):
                expected = [
                    (
                        severities[each["severity"]],
                        each["id"],
                        position(each["line"] - 1, each["column"] - 1),
                        position(each["endLine"] - 1, each["endColumn"] - 1),
                    )
                    for each in checked(text)
                ]
                found = [
                    (each["severity"], each["code"], each["range"]["start"], each["range"]["end"])
                    for each in self.found(text)
                ]
                self.assertEqual(found, expected)

    def test_helps_stand_below_the_message(self):
        first = self.found(SCRIPT)[0]
        self.assertIn("\nhelp: did you mean `level`?", first["message"])
        self.assertNotIn("relatedInformation", first)

    def test_helps_with_a_place_are_related(self):
        first = self.found(SCRIPT, capabilities=RELATED)[0]
        related = {
            "location": {"uri": URI, "range": text_range((4, 4), (4, 9))},
            "message": "help: did you mean `level`?",
        }
        self.assertEqual(first["relatedInformation"], [related])
        self.assertNotIn("help", first["message"])

    def test_unused_is_unnecessary(self):
        for found in self.found(LINTED):
            self.assertEqual(found["code"], "unused-store")
            self.assertEqual(found["tags"], [UNNECESSARY])

    def test_columns_are_utf16_units(self):
        found = self.found(RIGHT.replace("level := 2", "(*\U0001F600*) level = 2"))
        self.assertEqual(found[0]["range"]["start"], position(4, 17))

    def test_lines_may_end_with_cr_lf(self):
        self.assertEqual(self.found(SCRIPT.replace("\n", "\r\n")), self.found(SCRIPT))

    def test_they_lead_to_the_installed_manual(self):
        with tempfile.TemporaryDirectory() as name:
            program = Path(name, "a b/bin/yxst")
            manual = Path(name, "a b/share/doc/yxstcmp/html")
            program.parent.mkdir(parents=True)
            manual.mkdir(parents=True)
            shutil.copy(DESK, program)
            self.assertNotIn("codeDescription", self.found(SCRIPT, program=program)[0])
            (manual / "diagnostics.html").touch()
            hrefs = [
                each["codeDescription"]["href"]
                for text in (SCRIPT, LINTED)
                for each in self.found(text, program=program)
            ]
        begin = "file://" + str(manual).replace(" ", "%20")
        self.assertEqual(hrefs[0], f"{begin}/diagnostics.html#id-unrecognized-keyword")
        self.assertEqual(hrefs[-1], f"{begin}/lints.html#id-unused-store")

    def test_a_script_that_is_closed_has_none(self):
        with Client(capabilities={}) as client:
            client.open(SCRIPT)
            client.diagnostics()
            client.close()
            last = client.wait_for("textDocument/publishDiagnostics")
            self.assertEqual(last, {"uri": URI, "diagnostics": []})


class Changes(unittest.TestCase):
    def test_pieces_change_the_text(self):
        with Client(capabilities={}) as client:
            client.open(SCRIPT)
            self.assertEqual(len(client.diagnostics()), 2)
            client.change((text_range((4, 0), (5, 0)), ""), (text_range((5, 10), (5, 11)), ":="))
            self.assertEqual(ids(client.diagnostics()), ids(checked(RIGHT)))

    def test_a_change_may_be_the_whole_text(self):
        with Client(capabilities={}) as client:
            client.open(RIGHT)
            client.change(SCRIPT)
            self.assertEqual(ids(client.diagnostics()), ids(checked(SCRIPT)))

    def test_scripts_do_not_know_of_each_other(self):
        others = [f"file:///plant/{number}.st" for number in range(20)]
        with Client(capabilities={}) as client:
            for uri in others:
                client.open(RIGHT, uri=uri)
            client.change(SCRIPT, uri=others[7])
            last = {}
            while len(last) < len(others) or not last[others[7]]:
                params = client.wait_for("textDocument/publishDiagnostics")
                last[params["uri"]] = ids(params["diagnostics"])
        clean = ids(checked(RIGHT))
        self.assertEqual(last.pop(others[7]), ids(checked(SCRIPT)))
        self.assertEqual(set(map(tuple, last.values())), {tuple(clean)})

    def test_only_the_latest_text_is_told_of(self):
        with Client(capabilities={}) as client:
            client.open(LONG)
            for round in range(50):
                client.change((text_range((4, 0), (4, 0)), " "))
            params = client.wait_for("textDocument/publishDiagnostics")
            self.assertEqual(params["version"], 51)

    def test_a_script_that_is_not_open_cannot_change(self):
        with Client(capabilities={}) as client:
            client.change(SCRIPT)
            message = client.wait_for("window/logMessage")["message"]
            self.assertIn(URI, message)


class SettingsTest(unittest.TestCase):
    DISABLED = {"disable": [" Unused-Store "]}

    def test_options_at_the_begin(self):
        for options in self.DISABLED, {"yxst": self.DISABLED}:
            with Client(capabilities={}, options=options) as client:
                client.open(LINTED)
                self.assertEqual(client.diagnostics(), [])

    def test_max_errors(self):
        with Client(capabilities={}, options={"maxErrors": 1}) as client:
            client.open(SCRIPT)
            self.assertEqual(ids(client.diagnostics()), ids(checked(SCRIPT, "--max-errors=1")))

    def test_changed_settings_are_taken(self):
        with Client(capabilities={}) as client:
            client.open(LINTED)
            self.assertNotEqual(client.diagnostics(), [])
            for settings, are_found in (self.DISABLED, False), ({}, True):
                client.notify("workspace/didChangeConfiguration", {"settings": {"yxst": settings}})
                self.assertEqual(bool(client.diagnostics()), are_found)

    def test_a_client_is_asked_for_settings(self):
        with Client(capabilities=TELLS_SETTINGS) as client:
            client.open(LINTED)
            for settings, are_found in (self.DISABLED, False), (None, True):
                asked = client.receive()
                while asked["method"] != "workspace/configuration":
                    asked = client.receive()
                self.assertEqual(asked["params"], {"items": [{"section": "yxst"}]})
                client.send({"id": asked["id"], "result": [settings or {}]})
                while bool(client.diagnostics()) != are_found:
                    pass
                client.notify("workspace/didChangeConfiguration", {"settings": None})

    def test_wrong_settings_are_told(self):
        wrong = {
            "disable": ["unused-stor"],
            "maxErrors": 0,
            "timeLimit": "long",
        }
        with Client(capabilities={}, options=wrong) as client:
            told = [client.wait_for("window/logMessage")["message"] for _ in wrong]
        self.assertIn('no lint "unused-stor"; the nearest is unused-store', told[0])
        self.assertIn("maxErrors", told[1])
        self.assertIn("timeLimit", told[2])

    def test_null_is_no_setting(self):
        nothing = {"disable": None, "maxErrors": None, "timeLimit": None}
        with Client(capabilities={}, options=nothing) as client:
            client.open(LINTED)
            self.assertNotEqual(client.diagnostics(), [])
            client.end()
            self.assertEqual(client.sent, [])


class Requests(unittest.TestCase):
    HOVER = "textDocument/hover"

    def code_of(self, client, method, params=None):
        with self.assertRaises(ServerError) as caught:
            client.request(method, params)
        return caught.exception.code

    def test_they_wait_for_the_model(self):
        with Client(capabilities={}) as client:
            client.open(LONG)
            self.assertIn("INT", json.dumps(client.request(self.HOVER, client.at(2, 4))))
            client.change(LONG.replace("INT", "REAL"))
            self.assertIn("REAL", json.dumps(client.request(self.HOVER, client.at(2, 4))))

    def test_they_are_answered_in_order(self):
        with Client(capabilities={}) as client:
            client.open(LONG)
            asked = [client.ask(self.HOVER, client.at(2, 4)) for _ in range(20)]
            for identifier in asked:
                client.answer(identifier)

    def test_one_can_be_cancelled(self):
        with Client(capabilities={}) as client:
            client.open(LONG)
            first, second = (client.ask(self.HOVER, client.at(2, 4)) for _ in range(2))
            client.notify("$/cancelRequest", {"id": first})
            with self.assertRaises(ServerError) as caught:
                client.answer(first)
            self.assertEqual(caught.exception.code, CANCELLED)
            client.answer(second)
            client.notify("$/cancelRequest", {"id": second})
            client.notify("$/cancelRequest", {"id": "unknown"})
            self.assertEqual(client.end(), FINE)

    def test_an_answer_is_never_about_another_text(self):
        """With the model under way it is that of the old text; a later one may never come."""
        with Client(capabilities={}) as client:
            client.open(LONG)
            wait_for(lambda: child_of(client.process.pid))
            first = client.ask(self.HOVER, client.at(2, 4))
            client.change(LONG.replace("INT", "REAL"))
            second = client.ask(self.HOVER, client.at(2, 4))
            client.change(LONG.replace("INT", "BOOL"))
            third = client.ask(self.HOVER, client.at(2, 4))
            with self.assertRaises(ServerError) as caught:
                client.answer(second)
            self.assertEqual(caught.exception.code, CONTENT_MODIFIED)
            self.assertIn("INT", json.dumps(client.answer(first)))
            self.assertIn("BOOL", json.dumps(client.answer(third)))

    def test_a_closed_script_has_no_answers(self):
        with Client(capabilities={}) as client:
            client.open(LONG)
            asked = client.ask(self.HOVER, client.at(2, 4))
            client.close()
            with self.assertRaises(ServerError) as caught:
                client.answer(asked)
            self.assertEqual(caught.exception.code, CONTENT_MODIFIED)

    def test_wrong_ones_get_errors(self):
        with Client() as client:
            self.assertEqual(self.code_of(client, self.HOVER, client.at(0, 0)), NOT_INITIALIZED)
            client.request("initialize", {"capabilities": {}})
            for method, params, code in (
                ("initialize", {}, INVALID_REQUEST),
                ("textDocument/nothing", {}, METHOD_NOT_FOUND),
                ("$/nothing", {}, METHOD_NOT_FOUND),
                (self.HOVER, client.at(0, 0), INVALID_PARAMS),
                (self.HOVER, {}, INVALID_PARAMS),
                (self.HOVER, {"textDocument": 3}, INVALID_PARAMS),
            ):
                self.assertEqual(self.code_of(client, method, params), code, method)
            client.request("shutdown")
            self.assertEqual(self.code_of(client, self.HOVER, client.at(0, 0)), INVALID_REQUEST)

    def test_what_is_no_request_gets_an_error(self):
        for message, code in (
            (b"{", PARSE_ERROR),
            (b"", PARSE_ERROR),
            (b'{"method": "x\xff"}', PARSE_ERROR),
            (b"[]", INVALID_REQUEST),
            (b"{}", INVALID_REQUEST),
            (b'{"id": null, "method": "shutdown"}', INVALID_REQUEST),
            (b'{"id": {}, "method": "shutdown"}', INVALID_REQUEST),
            (b'{"id": 1, "method": 2}', INVALID_REQUEST),
        ):
            with self.subTest(message), Client(capabilities={}) as client:
                client.write(framed(message))
                answer = client.receive()
                self.assertEqual(answer["error"]["code"], code)
                self.assertEqual(answer["id"], 1 if b'"id": 1' in message else None)
                self.assertEqual(client.end(), FINE)

    def test_identifiers_may_be_texts(self):
        with Client(capabilities={}) as client:
            client.send({"id": "a", "method": "shutdown"})
            self.assertEqual(client.receive(), {"jsonrpc": "2.0", "id": "a", "result": None})

    def test_unknown_notifications_and_answers_are_ignored(self):
        with Client(capabilities={}) as client:
            for method in "$/setTrace", "textDocument/didSave", "textDocument/willSave", "nothing":
                client.notify(method, {})
            client.send({"id": 99, "result": 1})
            client.send({"id": 1, "error": {"code": 1, "message": "x"}})
            client.open(RIGHT)
            client.diagnostics()
            self.assertEqual(client.end(), FINE)


class Ends(unittest.TestCase):
    def ended_by(self, data):
        """The answers and the status after that input, the begin of which is sound."""
        begin = framed({"id": 1, "method": "initialize", "params": {"capabilities": {}}})
        run = run_yxst("lsp", stdin=None, input=begin + data)
        with tempfile.TemporaryFile() as file:
            file.write(run.stdout)
            file.seek(0)
            return list(messages_in(file))[1:], run.status, run.stderr

    def test_status(self):
        shutdown, end = framed({"id": 2, "method": "shutdown"}), framed({"method": "exit"})
        for data, status in (
            (shutdown + end, FINE),
            (end, NOT_FINE),
            (shutdown, FINE),
            (b"", NOT_FINE),
            (b"Content-Le", NOT_FINE),
            (framed(b"{}")[:-1], NOT_FINE),
            (b"Content-Length: 1\r\n\r\n" * 2, FAILED),
            (b"\x00" * 100_000, FAILED),
        ):
            with self.subTest(data[:40]):
                self.assertEqual(self.ended_by(data)[1], status)

    def test_a_stream_that_cannot_be_followed_ends_it(self):
        for head in b"Content-Length: 2147483648\r\n\r\n", b"Content-Type: x\r\n\r\n{}":
            answers, status, complaint = self.ended_by(head)
            self.assertEqual([each["error"]["code"] for each in answers], [PARSE_ERROR])
            self.assertEqual(status, FAILED)
            self.assertRegex(complaint, rb"^yxst: .*message.*\.\n$")

    def test_nobody_reads(self):
        process = subprocess.Popen(
            [DESK, "lsp"], stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE
        )
        process.stdout.close()
        with process.stdin, process.stderr:
            process.stdin.write(framed({"id": 1, "method": "initialize", "params": {}}))
            process.stdin.flush()
            self.assertEqual(process.wait(TIMEOUT_SECONDS), NOT_FINE)
            self.assertEqual(process.stderr.read(), b"")

    def test_a_client_that_does_not_read_stops_nothing_else(self):
        """More is answered than a pipe holds before the client reads any of it."""
        data = framed({"id": 2, "method": "nothing" * 1000}) * 1000
        answers, status, _ = self.ended_by(data)
        self.assertEqual((len(answers), status), (1000, NOT_FINE))

    def test_no_process_is_left(self):
        with Client(capabilities={}) as client:
            client.open(LONG)
            child = wait_for(lambda: child_of(client.process.pid))
            client.process.stdin.close()
            self.assertEqual(client.process.wait(TIMEOUT_SECONDS), NOT_FINE)
            wait_for(lambda: not is_running(child))


@unittest.skipIf(IS_SANITIZED, SANITIZED)
class Compiles(unittest.TestCase):
    """What happens to a compile is no matter for the server."""

    def hurt(self, client, signal_number):
        client.open(LONG)
        os.kill(wait_for(lambda: child_of(client.process.pid)), signal_number)

    def assert_lives(self, client):
        client.change(SCRIPT)
        self.assertEqual(ids(client.diagnostics()), ids(checked(SCRIPT)))
        self.assertEqual(client.end(), FINE)

    def test_one_that_dies_is_told(self):
        with Client(capabilities={}) as client:
            self.hurt(client, signal.SIGSEGV)
            (found,) = client.diagnostics()
            self.assertIn("signal 11", found["message"])
            self.assertEqual(found["range"], text_range((0, 0), (0, 0)))
            client.request("textDocument/hover", client.at(2, 4))
            self.assert_lives(client)

    def test_one_without_end_is_ended(self):
        with Client(capabilities={}, options={"timeLimit": 0.5}) as client:
            self.hurt(client, signal.SIGSTOP)
            child = child_of(client.process.pid)
            client.request("textDocument/hover", client.at(2, 4))
            self.assertFalse(is_running(child))
            self.assert_lives(client)

    def test_the_end_of_one_without_end_is_told(self):
        with Client(capabilities={}, options={"timeLimit": 0.5}) as client:
            self.hurt(client, signal.SIGSTOP)
            (found,) = client.diagnostics()
            self.assertIn("after 0.5 seconds", found["message"])

    def test_one_that_proves_a_new_name_is_ended_too(self):
        with Client(capabilities={}) as client:
            client.open(LONG)
            client.diagnostics()
            asked = client.ask("textDocument/rename", {**client.at(2, 4), "newName": "height"})
            os.kill(wait_for(lambda: child_of(client.process.pid)), signal.SIGSTOP)
            with self.assertRaisesRegex(ServerError, "too long"):
                client.answer(asked)
            self.assert_lives(client)

    def test_a_text_that_changes_ends_the_old_one(self):
        with Client(capabilities={}) as client:
            self.hurt(client, signal.SIGSTOP)
            self.assert_lives(client)


class WhileItIsWritten(unittest.TestCase):
    """Answers in the midst of a statement that is not whole yet; "|" is where the cursor stands."""

    HEAD = """\
FUNCTION Mean : REAL
VAR_ARG
    one : REAL;
    other : REAL;
END_VAR
    RESULT := (one + other) / 2;
END_FUNCTION
PROGRAM P
VAR
    level : REAL := 0.0;
    n : INT := 0;
    b : BOOL := FALSE;
END_VAR
"""

    def ask(self, method, text, capabilities=None):
        before, _, after = (self.HEAD + text).partition("|")
        place = before.count("\n"), len(before) - before.rfind("\n") - 1
        with Client(capabilities=capabilities or {}) as client:
            client.open(before + after)
            return client.request(f"textDocument/{method}", client.at(*place))

    def proposed(self, text):
        return {item["label"] for item in self.ask("completion", text)}

    def test_names_are_proposed_in_values(self):
        for text in ("level = le|", "level = le|;", "level == le|;", "level + le|;", "Mean(le|",
                     "IF b THEN level = le|", "CASE n OF 1: level = le|",
                     "FOR n :=\nlevel := 1.0;\nlevel := le|",
                     "FOR\nlevel := 1.0;\nlevel := le|;"):  # fmt: skip
            for end in ("", "\nEND_PROGRAM\n"):
                with self.subTest(text=text, end=end):
                    proposed = self.proposed(text + end)
                    self.assertTrue({"level", "sin", "Mean"} <= proposed, proposed)
                    self.assertNotIn("IF", proposed)

    def test_statements_are_proposed_after_heads_without_an_end(self):
        for head in ("IF b", "IF unknown", "WHILE b", "WHILE unknown", "FOR n :=", "FOR i :="):
            with self.subTest(head=head):
                proposed = self.proposed(f"{head}\nn := 1;\nle|")
                self.assertTrue({"level", "IF", "FOR"} <= proposed, proposed)

    def test_a_condition_of_several_lines_goes_on(self):
        proposed = self.proposed("IF b\nAN|")
        self.assertIn("AND", proposed)
        self.assertNotIn("level", proposed)

    def test_parentheses_are_not_doubled(self):
        (item,) = (item for item in self.ask("completion", "level := si|n (1.0);",
                                             {"textDocument": {"completion": {"completionItem": {
                                                 "snippetSupport": True}}}})
                   if item["label"] == "sin")  # fmt: skip
        self.assertEqual(item["textEdit"]["newText"], "sin")

    def test_calls_around_parentheses_show_their_parameters(self):
        for text, parameter in (("level := Mean((1 + |", 0), ("level := Mean(-(|", 0),
                                ("level := Mean(1, (2 * |3));", 1)):  # fmt: skip
            with self.subTest(text=text):
                shown = self.ask("signatureHelp", text)
                self.assertEqual(shown["signatures"][0]["label"],
                                 "Mean(one : REAL, other : REAL) : REAL")  # fmt: skip
                self.assertEqual(shown["activeParameter"], parameter)
        self.assertIsNone(self.ask("signatureHelp", "level := (1 + |2);"))

    def test_built_ins_are_explained_in_calls_that_are_not_right(self):
        right = self.ask("hover", "level := s|in(1.0);")["contents"]
        for text in ("level := s|in();", "level := s|in(", "level := s|in(TRUE);", "s|in;"):
            with self.subTest(text=text):
                self.assertEqual(self.ask("hover", text)["contents"], right)

    def test_documentation_has_the_format_that_is_taken(self):
        plain = {"documentationFormat": ["plaintext"]}
        capabilities = {"textDocument": {"completion": {"completionItem": plain},
                                         "signatureHelp": {"signatureInformation": plain}}}  # fmt: skip
        items = self.ask("completion", "level := si|", capabilities)
        signature = self.ask("signatureHelp", "level := sin(|", capabilities)["signatures"][0]
        kinds = {each["documentation"]["kind"] for each in [*items, signature]
                 if "documentation" in each}  # fmt: skip
        self.assertEqual(kinds, {"plaintext"})


class FormatAction(unittest.TestCase):
    def actions(self, text, *only):
        with Client(capabilities={}) as client:
            client.open(text)
            start = client.at(0, 0)
            nowhere = {"start": start["position"], "end": start["position"]}
            context = {"diagnostics": [], **({"only": list(only)} if only else {})}
            return client.request("textDocument/codeAction",
                                  {"textDocument": start["textDocument"], "range": nowhere,
                                   "context": context})  # fmt: skip

    def test_it_is_there_for_who_asks(self):
        ugly = SCRIPT.replace("    ", "")
        for only in ("source", "source.format"):
            (action,) = (each for each in self.actions(ugly, only)
                         if each["kind"] == "source.format")  # fmt: skip
            self.assertEqual(action["title"], "Format")
            self.assertTrue(action["edit"])
        self.assertEqual(self.actions(ugly), [])
        returns = "program p\rvar\rx:int:=0;\rend_var\rx:=1;\rend_program\r"
        self.assertEqual(self.actions(returns, "source.format"), [])
        self.assertEqual(self.actions(ugly, "quickfix"), [])


class Fuzzed(unittest.TestCase):
    SEEDS = range(150)

    def damaged(self, stream, chance):
        data = bytearray(stream)
        for _ in range(chance.randrange(1, 4)):
            begin = chance.randrange(len(data))
            end = begin + chance.choice((0, 1, 1, 2, 30))
            data[begin:end] = chance.choice(
                (b"", b"{", b'"', b"\xff", b"9", b"-1", b"1e99", b"null", b"\r\n\r\n", b"[[")
            )
        return bytes(data)

    def session(self):
        document = {"uri": URI, "languageId": "st", "version": 1, "text": SCRIPT}
        place = {"textDocument": {"uri": URI}, "position": position(5, 5)}
        beyond = {"textDocument": {"uri": URI}, "position": position(10**9, 10**9)}
        change = {"range": text_range((4, 4), (4, 9)), "text": "level"}
        changed = {"textDocument": {"uri": URI, "version": 2}, "contentChanges": [change]}
        return (
            ("initialize", {"capabilities": {}}),
            ("textDocument/didOpen", {"textDocument": document}),
            ("textDocument/hover", place),
            ("textDocument/rename", {**place, "newName": "x"}),
            ("textDocument/definition", beyond),
            ("textDocument/didChange", changed),
            ("textDocument/completion", beyond),
            ("textDocument/documentSymbol", place),
            ("shutdown", {}),
        )

    def stream(self):
        return b"".join(
            framed({"jsonrpc": "2.0", "id": number, "method": method, "params": params})
            if "/did" not in method
            else framed({"jsonrpc": "2.0", "method": method, "params": params})
            for number, (method, params) in enumerate(self.session())
        )

    def test_damaged_streams_end_well(self):
        stream = self.stream()
        for seed in self.SEEDS:
            data = self.damaged(stream, random.Random(seed))
            with self.subTest(seed=seed):
                run = run_yxst("lsp", stdin=None, input=data)
                self.assertIn(run.status, (FINE, NOT_FINE, FAILED))
                with tempfile.TemporaryFile() as file:
                    file.write(run.stdout)
                    file.seek(0)
                    list(messages_in(file))

    def test_damaged_messages_get_answers(self):
        """The lengths are right, so each request is answered, or what it has become."""
        chance = random.Random(1)
        with Client(capabilities={}) as client:
            for method, params in list(self.session())[1:-1] * 30:
                text = json.dumps({"id": 0, "method": method, "params": params}).encode()
                client.write(framed(self.damaged(text, chance)))
            identifier = client.ask("shutdown")
            while client.receive().get("id") != identifier:
                pass
            client.send({"method": "exit"})
            self.assertIn(client.process.wait(TIMEOUT_SECONDS), (FINE, NOT_FINE))


if __name__ == "__main__":
    unittest.main()
