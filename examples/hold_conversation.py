"""Talks to a program through a terminal, as a person does: hold_conversation.py PROGRAM CONVERSATION.

The conversation is what stands on the screen at the end. What is typed stands in <<...>>, each followed by
the Enter key; <<^D>> ends the input. The program must show exactly the rest, and end with status 0.
"""

import os
import pty
import re
import select
import sys
import time

PATIENCE = 30


class Terminal:
    def __init__(self, program):
        self.process, self.screen = pty.fork()
        if self.process == 0:
            os.execv(program, [program])
        self.unread = ""
        self.history = ""

    def read_more(self, until):
        """Whether more has come; False at the end of the output."""
        ready, _, _ = select.select([self.screen], [], [], max(0, until - time.monotonic()))
        if not ready:
            self.fail("nothing more came")
        try:
            block = os.read(self.screen, 65536)
        except OSError:  # the program has closed the terminal
            block = b""
        self.unread += block.decode("utf-8", "replace").replace("\r", "")
        return bool(block)

    def expect(self, text):
        until = time.monotonic() + PATIENCE
        while len(self.unread) < len(text) and self.unread == text[: len(self.unread)] and self.read_more(until):
            pass
        if not self.unread.startswith(text):
            self.fail("this was expected:\n" + text + "\n--- and this came:\n" + self.unread)
        self.history += text
        self.unread = self.unread[len(text) :]

    def type(self, text):
        if text == "^D":
            os.write(self.screen, b"\x04")
            return
        os.write(self.screen, text.encode() + b"\n")
        # The terminal shows what is typed.
        self.expect(text + "\n")

    def end(self):
        until = time.monotonic() + PATIENCE
        while self.read_more(until):
            pass
        if self.unread:
            self.fail("this came after the end:\n" + self.unread)
        _, status = os.waitpid(self.process, 0)
        if os.waitstatus_to_exitcode(status) != 0:
            self.fail("ended with " + str(os.waitstatus_to_exitcode(status)))

    def fail(self, reason):
        sys.exit(self.history + "\n--- " + reason)


def main():
    program, conversation = sys.argv[1:]
    with open(conversation, encoding="utf-8") as file:
        pieces = re.split(r"<<(.*?)>>\n?", file.read())
    terminal = Terminal(program)
    for number, piece in enumerate(pieces):
        if number % 2:
            terminal.type(piece)
        else:
            terminal.expect(piece)
    terminal.end()


main()
