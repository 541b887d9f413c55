"""The operator dialogs as an operator meets them: real keys typed into real windows, mostly those that a running script
opens.

    tools/with-display python3 dialogs_by_keys.py CORVANE DIALOG_TOOL [EMULATOR] [-- UNITTEST_ARGUMENT...]
"""

import json
import os
import subprocess
import sys
import tempfile
import threading
import time
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
from dialog_driver import Screen, Watcher, press, wait_for  # noqa: E402

arguments = sys.argv[1:]
split = arguments.index("--") if "--" in arguments else len(arguments)
corvane, tool, *emulator = arguments[:split]
unittest_arguments = arguments[split + 1 :]

NUMBER = "InputNumber(\"How much?\", N, {minimum}, {maximum})"
DARK_BLUE = (0, 0, 0x80)
KEYS_SCRIPT = "VAR N = 0\n" + NUMBER.format(minimum=-999, maximum=999)
KEYS = {"-": "minus", ",": "comma", ".": "period", " ": "space", "+": "plus", "/": "slash", "%": "percent"}
CLEAR = ("End", "shift+Home", "Delete")


def typed(text):
    return [KEYS.get(character, character) for character in text]


def console_area(program):
    """Where the console stands that a program was given: left, top, right, bottom."""
    search = ["xdotool", "search", "--onlyvisible", "--name", os.path.basename(program), "getwindowgeometry", "--shell"]
    lines = subprocess.run(search, check=True, stdout=subprocess.PIPE, text=True).stdout.split()
    at = {name: int(value) for name, value in (line.split("=") for line in lines)}
    return at["X"], at["Y"], at["X"] + at["WIDTH"], at["Y"] + at["HEIGHT"]


class Dialogs(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.watcher = Watcher([*emulator, tool])

    @classmethod
    def tearDownClass(cls):
        cls.watcher.__exit__()

    def setUp(self):
        self.processes = []

    def tearDown(self):
        for process in self.processes:
            if process.poll() is None:
                process.kill()
            process.communicate()
        wait_for(lambda: not self.watcher.dialogs(), "end of the dialogs")

    def start(self, *command, **environment):
        process = subprocess.Popen([*emulator, *command], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.DEVNULL, env=os.environ | environment)
        self.processes.append(process)
        return process

    def run_script(self, script, *options, **environment):
        """Starts a script whose log end() gives."""
        with tempfile.NamedTemporaryFile("w", suffix=".script", delete=False) as file:
            file.write(script)
        self.addCleanup(os.remove, file.name)
        if "--decimal-mark" not in options and not environment:
            options = (*options, "--decimal-mark", "point")
        return self.start(corvane, "run", file.name, "--windows", "--log", "jsonl", *options, **environment)

    def ask(self, kind, initial="0", minimum="0", maximum="10", allow_zero="1", question="How much?", title="Title"):
        return self.start(tool, "ask", kind, initial, minimum, maximum, allow_zero, question, title, LC_ALL="C.UTF-8")

    def end(self, process):
        """The objects that the program wrote, after its end."""
        output, _ = process.communicate(timeout=20)
        return [json.loads(line) for line in output.decode().splitlines()]

    def dialogs_of(self, process):
        return [(each["dialog"], each["text"], each["ending"], each.get("answer"))
                for each in self.end(process) if "dialog" in each]

    def entry(self, expected):
        """The box, once its entry holds a text."""
        return self.watcher.dialog(lambda dialog: dialog.entry == expected)

    def expect(self, title, text, buttons, has_icon, key):
        """The message box with a text, which a key closes."""
        box = self.watcher.dialog(lambda dialog: text in dialog.texts)
        self.assertEqual((box.title, box.buttons, box.has_icon), (title, buttons, has_icon))
        press(key)

    def check_labels(self, box, value, reason, range_text):
        """What the box says of its entry, in its colours; without a range text the range is not seen."""
        self.assertEqual((box["lblReturnValue"], box["lblReason"]), (value, reason))
        self.assertEqual(box["lblRange"] if box.is_visible("lblRange") else None, range_text)

        def dark_blue_labels():
            screen = Screen()
            return [label for label in ("lblReturnValue", "lblReason", "lblQuestion")
                    if screen.count(box.named[label]["area"], DARK_BLUE) > 0]

        # A text can be read before it is drawn.
        expected = ["lblReturnValue", *(["lblReason"] if reason else [])]
        wait_for(lambda: dark_blue_labels() == expected, f"dark blue of {expected} alone")

    def check_keys(self, rows, process):
        """Types into the box that a KEYS_SCRIPT opens."""
        self.watcher.dialog()
        for keys, expected in rows:
            with self.subTest(keys=keys):
                press(*CLEAR)
                self.entry("")
                press(*keys)
                try:
                    self.entry(expected)
                except TimeoutError:
                    self.fail(f"the entry holds {self.watcher.dialog().entry!r}, not {expected!r}")
        press("Escape")
        self.watcher.dialog(lambda dialog: Cancel.QUESTION in dialog.texts)
        press("Return")
        self.end(process)


class NumberBox(Dialogs):
    # Keys and what the entry holds then, for every decimal separator.
    ROWS = [
        (typed("0123456789"), "0123456789"),
        (typed("12-"), "-12"),
        (typed("12--"), "12"),
        (typed("-12"), "-12"),
        (typed("12") + ["Home"] + typed("-5"), "-512"),
        (typed("12-") + ["Home"] + typed("-5"), "512"),
        (typed("-"), "-"),
        (typed("--"), ""),
        (typed("123") + ["BackSpace"], "12"),
        (typed("12") + ["Home", "BackSpace"], "12"),
        (typed("12") + ["Home", "Delete"], "2"),
        (typed("1a2 b+e/N%3"), "123"),
        (typed("12") + ["ctrl+a", "ctrl+c", "End", "ctrl+v"], "12"),
        (typed("1") + ["Eacute"] + typed("2"), "12"),
    ]
    POINT_ROWS = ROWS + [
        (typed("1.5"), "1.5"),
        (typed("1.5.5"), "1.55"),
        (typed("."), "."),
        (typed("1,5"), "15"),
        (typed("1n5"), "1n5"),
        (typed("1.5n5"), "1.55"),
        (typed("1n5.5"), "1n5.5"),
    ]
    COMMA_ROWS = ROWS + [
        (typed("1,5"), "1,5"),
        (typed("1,5,5"), "1,55"),
        (typed(","), ","),
        (typed("1.5"), "15"),
        (typed("1n5"), "15"),
    ]

    def test_takes_the_keys_of_a_number_with_a_decimal_point(self):
        self.check_keys(self.POINT_ROWS, self.run_script(KEYS_SCRIPT))

    def test_takes_the_keys_of_a_number_with_a_decimal_comma(self):
        self.check_keys(self.COMMA_ROWS, self.run_script(KEYS_SCRIPT, "--decimal-mark", "comma"))

    def test_follows_the_users_settings(self):
        self.check_keys([(typed("1,5"), "1,5"), (typed("1.5"), "15")],
                        self.run_script(KEYS_SCRIPT, LC_ALL="de_DE.UTF-8"))
        self.check_keys([(typed("1,5"), "15"), (typed("1.5"), "1.5")], self.run_script(KEYS_SCRIPT, LC_ALL="C.UTF-8"))

    def test_shows_the_corrected_value_and_the_reason(self):
        rows = [
            # kind, zero allowed, keys, value, reason, range shown
            ("single", "1", "3.25", "3.25", "", False),
            ("single", "1", "10", "10", "", False),
            ("single", "1", "10.5", "10", "(Too large)", True),
            ("single", "1", "-1", "1", "(Too small)", True),
            ("single", "0", "n", "1", "(Too small)", True),
            ("whole", "1", "7", "7", "", False),
            ("whole", "1", "2.5", "2", "(Non Long)", False),
            ("whole", "1", "3.5", "4", "(Non Long)", False),
            ("whole", "1", "10.6", "11", "(Non Long)", False),
            ("whole", "1", "11", "10", "(Too large)", True),
        ]
        for kind, zero, keys, value, reason, range_shown in rows:
            with self.subTest(kind=kind, keys=keys):
                self.check_correction(self.ask(kind, "5", "10", "1", zero), keys, value, reason, range_shown)

    def test_corrects_a_zero_that_is_not_allowed(self):
        for kind in ("single", "whole"):
            with self.subTest(kind=kind):
                self.check_correction(self.ask(kind, "5", "-10", "10", "0"), "0", "1", "(Value is Zero)", False)

    def check_correction(self, process, keys, value, reason, range_shown):
        self.watcher.dialog()
        press(*CLEAR, *typed(keys))
        box = self.entry(keys)
        self.check_labels(box, value, reason, "(Please enter a value between: 1 and 10)" if range_shown else None)
        press("Return")
        self.assertEqual(self.end(process), [{"ending": "accepted", "value": value}])

    def test_is_what_a_script_gets(self):
        process = self.run_script("VAR N = 2.5\n" + NUMBER.format(minimum=10, maximum=1))
        box = self.watcher.dialog()
        self.assertEqual((box.title, box["lblQuestion"], box.entry), ("Enter Number", "How much?", "2.5"))
        press("4", "2")
        self.assertEqual(self.entry("42")["lblReturnValue"], "10")
        press("Return")
        self.assertEqual(self.dialogs_of(process), [("input", "How much?", "accepted", 10)])

    def test_stands_over_the_console_that_the_program_runs_in(self):
        with tempfile.NamedTemporaryFile("w", suffix=".script") as file:
            file.write(KEYS_SCRIPT)
            file.flush()
            process = self.start("wineconsole", corvane, "run", file.name, "--windows")
            box = self.watcher.dialog()
            left, top, right, bottom = console_area(corvane)
            self.assertNotEqual((left + right, top + bottom), (1024, 768))
            self.assertAlmostEqual((box.area[0] + box.area[2]) / 2, (left + right) / 2, delta=1)
            self.assertAlmostEqual((box.area[1] + box.area[3]) / 2, (top + bottom) / 2, delta=1)
            press("Return")
            process.wait(timeout=20)

    def test_returns_the_corrected_start_value_without_typing(self):
        process = self.run_script("VAR N = 99\n" + NUMBER.format(minimum=1, maximum=10))
        self.assertEqual(self.watcher.dialog()["lblReason"], "(Too large)")
        press("Return")
        self.assertEqual(self.dialogs_of(process), [("input", "How much?", "accepted", 10)])


class StringBox(Dialogs):
    SCRIPT = 'VAR S = "abc"\nInputString("Which batch?", S, {})\nInfo(S)\n'

    def test_takes_every_key_up_to_the_greatest_length(self):
        process = self.run_script(self.SCRIPT.format(8))
        box = self.watcher.dialog()
        self.assertEqual((box.title, box.entry), ("Enter String", "abc"))
        self.assertEqual(box["lblRange"], "(Maximum String Lenght: 8)")
        self.assertTrue(box.is_visible("lblRange"))
        press("shift+X", *typed("-,. n12345"))
        self.assertEqual(self.entry("X-,. n12")["lblReturnValue"], "X-,. n12")
        press("Return")
        self.assertEqual(self.dialogs_of(process), [("input", "Which batch?", "accepted", "X-,. n12")])

    def test_takes_any_length_without_a_greatest(self):
        process = self.run_script(self.SCRIPT.format(0))
        self.assertEqual(self.watcher.dialog()["lblRange"], "(String of any length)")
        press(*"0123456789" * 3)
        self.entry("0123456789" * 3)
        press("Return")
        self.assertEqual(self.dialogs_of(process), [("input", "Which batch?", "accepted", "0123456789" * 3)])

    def test_returns_one_blank_for_no_text_that_is_not_allowed(self):
        process = self.ask("string", "abc", "0", "5", "0")
        self.watcher.dialog()
        press("BackSpace")
        self.assertEqual(self.entry("")["lblReturnValue"], " ")
        press("Return")
        self.assertEqual(self.end(process), [{"ending": "accepted", "value": " "}])


class Cancel(Dialogs):
    QUESTION = "Are you sure you want to cancel the Script?"

    def confirm(self, key):
        box = self.watcher.dialog(lambda dialog: self.QUESTION in dialog.texts)
        self.assertEqual((box.title, box.buttons, box.has_icon), ("Corvane", ["Yes", "No"], True))
        press(key)

    def test_asks_again_after_no(self):
        process = self.run_script("VAR N = 2.5\n" + NUMBER.format(minimum=5, maximum=10))
        self.watcher.dialog()
        press("7", "Escape")
        self.confirm("n")
        self.assertEqual(self.watcher.dialog(lambda dialog: dialog.title == "Enter Number").entry, "2.5")
        press("Tab", "Tab", "space")
        self.confirm("n")
        self.watcher.dialog(lambda dialog: dialog.title == "Enter Number")
        press("8", "Return")
        self.assertEqual(self.dialogs_of(process),
                         [("input", "How much?", "cancelled", None), ("message", self.QUESTION, "no", None),
                          ("input", "How much?", "cancelled", None), ("message", self.QUESTION, "no", None),
                          ("input", "How much?", "accepted", 8)])

    def test_ends_the_run_after_yes(self):
        process = self.run_script('VAR S = "abc"\nInputString("Which batch?", S, 9)\nPark()\n')
        self.watcher.dialog()
        press("alt+c")
        self.confirm("y")
        end = self.end(process)[-1]
        self.assertEqual((end["outcome"], end["message"]),
                         ("failed", "statement 1 on line 2 failed: the operator cancelled InputString"))


class MessageBoxes(Dialogs):
    # Style words of an extended message, its buttons and whether it has an icon.
    EXTENDED = [
        (0, ["OK"], False),
        (16, ["OK"], True),
        (33, ["OK", "Cancel"], True),
        (50, ["Abort", "Retry", "Ignore"], True),
        (67, ["Yes", "No", "Cancel"], True),
        (4, ["Yes", "No"], False),
        (5, ["Retry", "Cancel"], False),
        (6, ["Cancel", "Try Again", "Continue"], False),
        (7, ["OK"], False),
        (999, ["OK"], False),
    ]

    def test_question_jumps_on_yes_only(self):
        script = 'MsgAsk("Again?|Really?", There)\nInfo("not jumped")\nThere:\nInfo("there")\n'
        for key, ending, texts in (("y", "yes", ["there"]), ("n", "no", ["not jumped", "there"]),
                                   ("Return", "yes", ["there"])):
            with self.subTest(key=key):
                process = self.run_script(script)
                self.expect("Corvane", "Again?\r\nReally?", ["Yes", "No"], True, key)
                log = self.end(process)
                self.assertEqual([each["ending"] for each in log if "dialog" in each], [ending])
                self.assertEqual([each["arguments"]["tInfoStr"] for each in log if each.get("event") == "Info"], texts)

    def test_message_has_an_ok_button_and_an_icon(self):
        process = self.run_script('VAR T = "two|lines"\nMsgInfo(T)\n')
        self.expect("Corvane", "two\r\nlines", ["OK"], True, "Return")
        self.assertEqual(self.dialogs_of(process), [("message", "two\r\nlines", "ok", None)])

    def test_extended_message_takes_its_style_from_the_sound_number(self):
        for style, buttons, has_icon in self.EXTENDED:
            with self.subTest(style=style):
                process = self.run_script(f'MsgInfoEx("Weigh now", "{style}")\nInfo("goes on")\n')
                self.expect("64", "Weigh now", buttons, has_icon, "Return")
                self.assertEqual([each.get("outcome") for each in self.end(process)][-1], "ended")

    def test_syntax_error_names_the_line_and_is_shown_once(self):
        rows = [
            ("var Count = 0", "Syntax Error on Line 0", "Invalid input:\r\n\r\n'var Count = 0'", b"0"),
            ("Goto(Nowhere)\n", "Syntax Error on Line 2", "Undefined Label: Nowhere", b"0"),
            ("A:\n;\nA:\nGoto(B)", "Syntax Error on Line 2", "Duplicate Lable Defined: A", b"0"),
            ("A:\nA:", "Syntax Error on Line 1", "Duplicate Lable Defined: A", b"1"),
        ]
        for script, title, text, answer in rows:
            with self.subTest(script=script):
                process = self.start(tool, "load", script)
                self.expect(title, text, ["OK"], True, "Return")
                output, _ = process.communicate(timeout=20)
                self.assertEqual(output.strip(), answer)


class ThroughTheComponent(Dialogs):
    """The same windows, opened by the component for an automation host that leaves its dialogs to it."""

    ENDED = {"loaded": True, "result": 0, "ran": True}

    def run_by_component(self, script, locale="C.UTF-8"):
        return self.start(tool, "component", script, LC_ALL=locale)

    def ended_with(self, process, *infos):
        self.assertEqual(self.end(process), [*({"info": each} for each in infos), self.ENDED])

    def test_a_number_is_corrected_and_stored(self):
        process = self.run_by_component('VAR N = 2.5\nVAR S = "is "\n' + NUMBER.format(minimum=1, maximum=10) +
                                        "\nConCatString(S, S, N)\nInfo(S)")
        box = self.watcher.dialog()
        self.assertEqual((box.title, box["lblQuestion"], box.entry), ("Enter Number", "How much?", "2.5"))
        press("4", "2")
        box = self.entry("42")
        self.assertEqual((box["lblReturnValue"], box["lblReason"]), ("10", "(Too large)"))
        press("Return")
        self.ended_with(process, "is 10")

    def test_each_correction_of_a_number_is_shown_and_stored(self):
        script = ('VAR N = 2\nVAR S = ""\n' + NUMBER.format(minimum="2.5", maximum="-10") +
                  "\nConCatString(S, S, N)\nInfo(S)")
        point = "(Please enter a value between: -10 and 2.5)"
        comma = "(Please enter a value between: -10 and 2,5)"
        rows = [
            ("C.UTF-8", "2.25", "2.25", "", None),
            ("C.UTF-8", "0", "0", "", None),
            ("C.UTF-8", "3", "2.5", "(Too large)", point),
            ("C.UTF-8", "-10.5", "-10", "(Too small)", point),
            ("C.UTF-8", "1n5", "0", "", None),
            ("de_DE.UTF-8", "2,25", "2,25", "", None),
            ("de_DE.UTF-8", "3", "2,5", "(Too large)", comma),
            ("de_DE.UTF-8", "-10,5", "-10", "(Too small)", comma),
        ]
        for locale, keys, value, reason, range_text in rows:
            with self.subTest(locale=locale, keys=keys):
                process = self.run_by_component(script, locale)
                self.watcher.dialog()
                press(*CLEAR, *typed(keys))
                self.check_labels(self.entry(keys), value, reason, range_text)
                press("Return")
                self.ended_with(process, value)

    def test_the_start_value_is_corrected_without_typing(self):
        process = self.run_by_component("VAR N = 99\nVAR S = \"is \"\n" + NUMBER.format(minimum=1, maximum=10) +
                                        "\nConCatString(S, S, N)\nInfo(S)")
        self.assertEqual(self.watcher.dialog()["lblReason"], "(Too large)")
        press("Return")
        self.ended_with(process, "is 10")

    def test_the_box_of_a_number_takes_the_keys_of_the_users_numbers(self):
        self.check_keys(NumberBox.POINT_ROWS, self.run_by_component(KEYS_SCRIPT))
        self.check_keys(NumberBox.COMMA_ROWS, self.run_by_component(KEYS_SCRIPT, "de_DE.UTF-8"))

    def test_a_text_is_stored_up_to_its_greatest_length(self):
        for maximum, keys, text, range_text in (
                (8, "batch-,. n", "batch-,.", "(Maximum String Lenght: 8)"),
                (1000000, "n" * 30, "n" * 30, "(Maximum String Lenght: 1024)"),
                (0, "0123456789" * 3, "0123456789" * 3, "(String of any length)")):
            with self.subTest(maximum=maximum):
                process = self.run_by_component(StringBox.SCRIPT.format(maximum))
                self.assertEqual(self.watcher.dialog()["lblRange"], range_text)
                press(*typed(keys))
                self.assertEqual(self.entry(text)["lblReturnValue"], text)
                press("Return")
                self.ended_with(process, text)

    def test_cancel_asks_again_or_ends_the_run(self):
        number = "VAR N = 2.5\n" + NUMBER.format(minimum=5, maximum=10) + '\nInfo("not reached")'
        string = StringBox.SCRIPT.format(8)
        for script, title, start in ((number, "Enter Number", "2.5"), (string, "Enter String", "abc")):
            with self.subTest(title=title):
                process = self.run_by_component(script)
                for leave, answer in (("Escape", "n"), ("alt+c", "n"), ("Escape", "y")):
                    box = self.watcher.dialog(lambda dialog: dialog.title == title)
                    self.assertEqual(box.entry, start)
                    press("7", leave)
                    self.expect("Corvane", Cancel.QUESTION, ["Yes", "No"], True, answer)
                self.ended_with(process)

    def test_a_question_leads_to_its_label_on_yes_only(self):
        script = 'MsgAsk("Again?", There)\nInfo("not jumped")\nThere:\nInfo("there")\n'
        for key, infos in (("y", ["there"]), ("n", ["not jumped", "there"])):
            with self.subTest(key=key):
                process = self.run_by_component(script)
                self.expect("Corvane", "Again?", ["Yes", "No"], True, key)
                self.ended_with(process, *infos)

    def test_messages_wait_to_be_read(self):
        script = 'MsgInfo("one")\n'
        script += "".join(f'MsgInfoEx("style {style}", "{style}")\n' for style, _, _ in MessageBoxes.EXTENDED)
        process = self.run_by_component(script + 'Info("read")\n')
        self.expect("Corvane", "one", ["OK"], True, "Return")
        for style, buttons, has_icon in MessageBoxes.EXTENDED:
            self.expect("64", f"style {style}", buttons, has_icon, "Return")
        self.ended_with(process, "read")

    def test_each_button_of_an_extended_message_leads_to_the_next_statement(self):
        rows = [
            (33, ("Return", "Escape")),
            (34, ("a", "r", "i")),
            (35, ("y", "n", "Escape")),
            (36, ("y", "n")),
            (37, ("r", "Escape")),
            (38, ("t", "c", "Escape")),
        ]
        presses = [(style, key) for style, keys in rows for key in keys]
        process = self.run_by_component("".join(f'MsgInfoEx("{number}", "{style}")\nInfo("{number}")\n'
                                                for number, (style, _) in enumerate(presses)))
        for number, (style, key) in enumerate(presses):
            with self.subTest(style=style, key=key):
                box = self.watcher.dialog(lambda dialog: str(number) in dialog.texts)
                self.assertEqual((box.title, box.has_icon), ("64", True))
                press(key)
        self.ended_with(process, *(str(number) for number in range(len(presses))))

    def test_an_extended_message_has_the_default_button_of_its_number(self):
        process = self.run_by_component("".join(f'MsgInfoEx("{style}", "{style}")\n' for style in (3, 0x103, 0x203)))
        for style, button in ((3, "Yes"), (0x103, "No"), (0x203, "Cancel")):
            self.watcher.dialog(lambda dialog: str(style) in dialog.texts and dialog.focus == button)
            press("Return")
        self.ended_with(process)

    def test_a_rejected_script_is_shown_once(self):
        rows = [
            # A statement that cannot be bound says why, and the line is not shown as well.
            ("Goto()", 0, "Goto requires 1 parameters"),
            (";\nReturn(5)", 1, "Return requires 0 parameters"),
            ("WaitTime(1, \"a\", 3)\nGoto()", 0, "WaitTime requires 2 parameters"),
            ("\n\nSet(Nothing, 1)", 2, "Undeclared identifier"),
            ('VAR S = "a"\nIfEqual(S, 1, There)\nThere:', 1, "Incorrect parameter type: 1"),
            ("VAR N = 1\nMsgInfo(N)", 1, "Incorrect parameter type: 1"),
            # Where nothing else was said the line is shown.
            (";\n  MoveIntoVesel(120) ", 1, "Invalid input:\r\n\r\n'MoveIntoVesel(120)'"),
            ("CONST Empty", 0, "Invalid input:\r\n\r\n'CONST Empty'"),
            # Only the first fault is shown.
            ("A:\nA:\nSet(Nothing, 1)", 1, "Duplicate Lable Defined: A"),
            ("A:\nA:\nGoto(Nowhere)", 1, "Duplicate Lable Defined: A"),
            ("Goto(Nowhere)", 1, "Undefined Label: Nowhere"),
        ]
        for script, line, text in rows:
            with self.subTest(script=script):
                process = self.run_by_component(script)
                self.expect(f"Syntax Error on Line {line}", text, ["OK"], True, "Return")
                self.assertEqual(self.end(process), [{"loaded": False, "result": 0, "ran": False}])


class WithoutDesktop(unittest.TestCase):
    def environment(self):
        """Of programs that no display is there for."""
        environment = {key: value for key, value in os.environ.items() if key not in ("CORVANE_DISPLAY", "DISPLAY")}
        # The first start of a prefix takes its time.
        subprocess.run([*emulator, tool, "load", ";"], env=environment, stdout=subprocess.DEVNULL, check=True)
        return environment

    LIMIT = 60  # seconds; without an answer a dialog would be there for ever

    def assert_within(self, seconds, attempt):
        """A busy machine delays one attempt, a dialog that waits delays them all."""
        taken = []
        while not taken or taken[-1] >= seconds and len(taken) < 5:
            taken.append(attempt())
        self.assertLess(taken[-1], seconds, f"the attempts took {taken} s")

    def test_the_component_answers_each_dialog_within_a_second(self):
        script = ('VAR N = 5\nInfo("start")\nMsgInfo("read")\nInfo("MsgInfo")\nMsgInfoEx("read", "36")\n'
                  'Info("MsgInfoEx")\nMsgAsk("Jump?", There)\nInfo("MsgAsk")\nThere:\n' +
                  NUMBER.format(minimum=1, maximum=10) + "\nPark()\n")
        for run, last in ((script, {"loaded": True, "result": 0, "ran": True}),
                          ("Goto(Nowhere)", {"loaded": False, "result": 0, "ran": False})):
            def longest_answer():
                process = subprocess.Popen([*emulator, tool, "component", run], env=self.environment(),
                                           stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
                limit = threading.Timer(self.LIMIT, process.kill)
                limit.start()
                told = [(time.monotonic(), json.loads(line)) for line in process.stdout]
                process.communicate()
                limit.cancel()
                infos = ["start", "MsgInfo", "MsgInfoEx", "MsgAsk"] if last["loaded"] else []
                self.assertEqual([each for _, each in told], [*({"info": each} for each in infos), last])
                return max((after - before for (before, _), (after, _) in zip(told, told[1:])), default=0)

            self.assert_within(1, longest_answer)

    def test_the_command_answers_everything_at_once(self):
        script = ('VAR N = 5\nMsgInfo("read")\nMsgInfoEx("read", "36")\nMsgAsk("Jump?", There)\nInfo("not jumped")\n'
                  "There:\n" + NUMBER.format(minimum=1, maximum=10) + "\nPark()\n")

        def whole_run():
            environment = self.environment()
            with tempfile.NamedTemporaryFile("w", suffix=".script") as file:
                file.write(script)
                file.flush()
                start = time.monotonic()
                run = subprocess.run([*emulator, corvane, "run", file.name, "--windows", "--log", "jsonl"],
                                     env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                     timeout=self.LIMIT)
                taken = time.monotonic() - start
            log = [json.loads(line) for line in run.stdout.decode().splitlines()]
            self.assertEqual([each["ending"] for each in log if "dialog" in each], ["nobody there"] * len(
                [each for each in log if "dialog" in each]))
            self.assertIn("not jumped", [each["arguments"]["tInfoStr"] for each in log if each.get("event") == "Info"])
            self.assertEqual(log[-1]["message"],
                             "statement 5 on line 7 failed: there was no operator to answer InputNumber")
            return taken

        self.assert_within(5, whole_run)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *unittest_arguments])
