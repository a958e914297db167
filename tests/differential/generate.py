#!/usr/bin/env python3
"""Random kvexec scripts for the differential test (run.py).

    generate.py [--kind general|selfmod] SEED DIR

writes job.kvx into DIR, with the files it needs beside it: args (the arguments, one a line), env
(variables added to the environment, in order; PWD=@run is the run directory, PWD=@none leaves
PWD out) and, for a self-modifying script, new.kvx, old.kvx and more.kvx (what it copies over or
appends to itself). The same seed always gives the same bytes: the generator has its own random
number generator and depends on nothing but this file.

Two kinds of script:
  general  statements, expressions, blocks, jumps, commands, comments, long lines, blanks, tabs and
           stray bytes, mostly well formed so that a run gets far before an error ends it;
  selfmod  a script that rewrites itself (cp, mv, a truncated copy, touch) or has lines appended
           to it while it runs, and then jumps, loops, returns or reads on past its read buffer.

Every run is bounded: each loop body, each label and each return point counts a pass in &zq and
ends the run with status 99 after 80 of them; the driver's time limit catches the rest. Nothing
in a script touches files outside its run directory, and no value that reaches a command line
unquoted holds an "&" (a command put in the background would make the output order random).
"""

import os
import sys

MASK64 = (1 << 64) - 1


class Rng:
    """splitmix64: small, fast and the same on every Python version."""

    def __init__(self, seed):
        # Mixed first, so that neighbouring seeds give unrelated streams.
        self.state = seed & MASK64
        self.state = self.next() ^ 0x2545F4914F6CDD1D

    def next(self):
        self.state = (self.state + 0x9E3779B97F4A7C15) & MASK64
        z = self.state
        z = ((z ^ (z >> 30)) * 0xBF58476D1CE4E5B9) & MASK64
        z = ((z ^ (z >> 27)) * 0x94D049BB133111EB) & MASK64
        return z ^ (z >> 31)

    def below(self, n):
        return self.next() % n

    def randint(self, lo, hi):
        return lo + self.below(hi - lo + 1)

    def chance(self, p):
        return self.below(1 << 30) < p * (1 << 30)

    def choice(self, seq):
        return seq[self.below(len(seq))]

    def weighted(self, table):
        """table: list of (weight, value)."""
        total = sum(w for w, _ in table)
        r = self.below(total)
        for w, v in table:
            if r < w:
                return v
            r -= w
        return table[-1][1]


GUARD_VAR = "zq"
GUARD_LIMIT = 80

VARS = ["a", "b", "c", "n", "s", "t", "x1", "Total", "name"]
WORDS = ["abc", "Hello", "x", "ON", "file.txt", "a.b:c", "HOME", "42", "3.5", "z_y", "OFF", "end"]
LABELS = ["top", "L1", "L2", "L3", "Again", "skip1", "Done", "far", "Inner"]
SUBS = ["sub1", "sub2", "Sub3"]
ENV_NAMES = ["HOME", "home", "TZ", "PATH", "LC_ALL", "KVEXEC_TERM", "PWD", "NOSUCHVAR", "Tz", "GEN_X"]
# Values reach command lines unquoted (&*, a variable as the first word): none may hold an "&",
# which would put a command in the background and make the output order a matter of chance.
ARG_WORDS = ["a", "b", "first", "x1", "HELLO", "42", "3.5", "two words", "", "-v", "*", "x;y"]


def mixcase(rng, word):
    """The same keyword or name in a random letter case now and then."""
    r = rng.below(10)
    if r < 6:
        return word
    if r < 8:
        return word.lower()
    if r < 9:
        return word.upper()
    return "".join(ch.upper() if rng.chance(0.5) else ch.lower() for ch in word)


class Script:
    """Collects lines; each line is bytes without its line end, plus a flag saying whether it
    may be decorated with blanks, tabs or a carriage return."""

    def __init__(self, rng):
        self.rng = rng
        self.lines = []

    def add(self, text, decorate=True):
        if isinstance(text, str):
            text = text.encode("utf-8", "surrogateescape")
        self.lines.append((text, decorate))

    def render(self, final_newline=True):
        rng = self.rng
        out = bytearray()
        for i, (text, decorate) in enumerate(self.lines):
            if decorate and rng.chance(0.12):
                text = rng.choice([b" ", b"  ", b"\t", b" \t", b"\t\t"]) + text
            if decorate and rng.chance(0.10):
                text = text + rng.choice([b" ", b"   ", b"\t", b" \t "])
            end = b"\r\n" if decorate and rng.chance(0.04) else b"\n"
            out += text
            if i + 1 < len(self.lines) or final_newline:
                out += end
        return bytes(out)


class General:
    def __init__(self, seed):
        self.rng = Rng(seed)
        self.s = Script(self.rng)
        self.loop_vars = 0
        self.subs_called = set()
        self.budget = 0
        # How often a construct that ends the run with an error is chosen: some scripts are
        # nearly clean and run to their end, others fail early in many different ways.
        self.bad_rate = self.rng.choice([0.002, 0.01, 0.01, 0.03])
        self.labels = [self.rng.choice(LABELS) for _ in range(self.rng.randint(2, 5))]
        self.labels_placed = set()

    def bad(self, scale=1.0):
        return self.rng.chance(self.bad_rate * scale)

    # ----- pieces of expressions -----------------------------------------------------------

    def var(self):
        return "&" + mixcase(self.rng, self.rng.choice(VARS))

    def string_literal(self):
        """At most one variable reference: a value built from two copies of itself doubles on
        every pass of a loop, and a few dozen passes fill the memory."""
        rng = self.rng
        parts = []
        refs = 0
        for _ in range(rng.randint(0, 3)):
            part = rng.weighted([
                (5, rng.choice(WORDS)),
                (0 if refs else 3, self.var()),
                (1, '""'),
                (1, ";"),
                (1, " "),
                (0 if refs else 1, "&&p"),
                (1, "&1"),
            ])
            refs += part.startswith("&") and part != "&1"
            parts.append(part)
        return '"' + "".join(parts) + '"'

    def operand(self, first=False):
        """One operand. A group as the first operand of a statement's expression is rare: its
        value is not pushed, so it usually ends the run with a stack underflow."""
        rng = self.rng
        if self.bad():
            return rng.choice(["5.", "1.2.3", "12ab", '"open', ".", "(&a)", "*", ","])
        return rng.weighted([
            (6, lambda: str(rng.choice([0, 1, 2, 3, 5, 7, 10, 42, 100, 255, 1000, 32767]))),
            (2, lambda: str(rng.choice([-1, -5, -32768, 40000, 70000, 65536, rng.randint(0, 99)]))),
            (3, lambda: rng.choice(["1.5", ".5", "0.25", "2.0", "100000.0", "3.14159", "0.1", "1e3"])),
            (4, self.string_literal),
            (2, lambda: rng.choice(WORDS)),
            (9, self.var),
            (1, lambda: "&&p"),
            (1, lambda: rng.choice(["&0", "&1", "&2", "&3", "&retcode", "&RETCODE"])),
            (0 if first else 1, lambda: "(" + self.expr(simple=True) + ")"),
        ])()

    def function_call(self):
        rng = self.rng
        name = rng.choice(["&CAT", "&LEN", "&SUB", "&TYP", "&LIT", "&INDEX", "&ENV", "&CAT", "&SUB"])
        kw = mixcase(rng, name)
        # Each argument is an expression of its own: no group first.
        if name == "&CAT":
            # One argument a constant, for the same reason as in string_literal.
            const = rng.choice(WORDS + ['"x"', '""', "1.5", "7"])
            if rng.chance(0.5):
                return f"{kw} {self.operand(True)} {const}"
            return f"{kw} {const} {self.operand(True)}"
        if name == "&LEN":
            return f"{kw} {self.operand(True)}"
        if name == "&SUB":
            third = f" {rng.randint(0, 8)}" if rng.chance(0.6) else ""
            return f"{kw} {self.operand(True)} {rng.randint(-1, 8)}{third}"
        if name == "&TYP":
            return f"{kw} {self.operand(True)}"
        if name == "&LIT":
            return f"{kw} {rng.choice(WORDS + ['+', '(', '12', 'x2'])}"
        if name == "&INDEX":
            return kw
        return f"{kw} {rng.choice(ENV_NAMES)}"

    def expr(self, simple=False):
        rng = self.rng
        if not simple and rng.chance(0.25):
            e = self.function_call()
        else:
            e = self.operand(first=not simple)
            if rng.chance(0.08):
                # A range with its ends the wrong way round pushes nothing.
                e += "[3 2]" if self.bad(5) else rng.choice(["[1]", "[2]", "[3]", "[0]", "[2 4]", "[1 1]", "[-1]"])
        for _ in range(rng.weighted([(5, 0), (4, 1), (2, 2), (1, 3)])):
            op = rng.weighted([
                (6, "+"), (4, "-"), (3, "*"), (2, "/"),
                (1, "&"), (1, "|"), (1, "^"), (1, "%"),
                (1, "="), (1, "=="), (1, "<>"), (1, "!="), (1, ">"), (1, "<"), (1, ">="), (1, "<="),
            ])
            if op == "%":
                # The remainder by zero ends the process on a signal: keep the divisor a constant.
                e += f" % {rng.randint(1, 9)}"
                break
            e += f" {op} {self.operand()}"
        return e

    def condition(self):
        rng = self.rng
        if self.bad(2):
            return rng.choice([f"{self.var()} = 1 & {self.var()} < 5", f"{self.var()} > 2 | {self.var()} = 1",
                               f"{self.var()} = ", self.function_call(), "(1)", "", "&LEN &a > 1"])
        return rng.weighted([
            (8, lambda: f"{self.var()} {rng.choice(['<', '>', '=', '<>', '>=', '<=', '==', '!='])} {self.operand()}"),
            (2, lambda: rng.choice(["1", "0", "1.5", "0.0", "&retcode"])),
            (2, self.var),
            (1, lambda: f"{self.var()} + 1 > {self.operand()}"),
            (1, lambda: f"{self.var()} = {self.var()} = 1"),
            (1, lambda: f"{self.var()} < (5)"),
        ])()

    # ----- lines ---------------------------------------------------------------------------

    def guard(self):
        self.s.add(f"{GUARD_VAR} = &{GUARD_VAR} + 1")
        self.s.add(f"&IF &{GUARD_VAR} > {GUARD_LIMIT} &QUIT 99")

    def kw(self, word):
        return mixcase(self.rng, word)

    def label_name(self):
        rng = self.rng
        return rng.choice(self.labels) if rng.chance(0.9) else rng.choice(LABELS)

    def assignment(self):
        rng = self.rng
        name = mixcase(rng, rng.choice(VARS + ["p", "p", "q"]))
        if name.lower() == "p" and rng.chance(0.7):
            # &p names another variable, for the indirect references &&p.
            self.s.add(f"p = {rng.choice(VARS)}")
            return
        lhs = ("&" + name) if rng.chance(0.3) else name
        self.s.add(f"{lhs} = {self.expr()}")

    def type_line(self):
        rng = self.rng
        parts = []
        for _ in range(rng.randint(0, 5)):
            parts.append(rng.weighted([
                (6, rng.choice(WORDS)),
                (5, self.var()),
                (1, "&&p"),
                (1, "&*"),
                (1, "&1"),
                (1, '"quoted &a"'),
                (1, "\t"),
                (1, "&"),
            ]))
        text = " ".join(parts)
        if rng.chance(0.1):
            text += " ; a comment"
        if rng.chance(0.1):
            text += " \\"
        self.s.add((self.kw("&TYPE") + " " + text).rstrip(" ") if text else self.kw("&TYPE"))

    def command(self):
        rng = self.rng
        cmd = rng.weighted([
            (6, lambda: rng.choice(["true", "false", "/bin/true", "/bin/false", "TRUE"])),
            (6, lambda: f'echo {rng.choice(WORDS)} "{self.var()}"'),
            (2, lambda: f'printf "%s|%s\\n" {rng.choice(WORDS)} "{self.var()}"'),
            (2, lambda: "env | grep -iv kvexec_plain | sort | head -3"),
            (2, lambda: "env | grep -iv kvexec_plain"),
            (1, lambda: "/usr/bin/env | grep -iv kvexec_plain | head -4"),
            (1, lambda: "echo -e x\\ty"),
            (1, lambda: "/bin/echo -e x"),
            (1, lambda: "ECHO LOUD"),
            (1, lambda: 'Echo MiXeD "KeptCase"'),
            (1, lambda: "type true"),
            (1, lambda: "kill -l 9"),
            (1, lambda: "test 1 = 1"),
            (1, lambda: "cd /"),
            (1, lambda: "exit 3"),
            (1, lambda: "nosuchcommand arg"),
            (1, lambda: "sh -c 'kill -9 $$'"),
            (1, lambda: "echo $HOME $PWD"),
            (1, lambda: "echo *"),
            (2, lambda: f"set {rng.choice(['gen_x', 'GEN_Y', 'Home2'])}={rng.choice(WORDS)}"),
            (1, lambda: "set gen_x"),
            (1, lambda: "printf 'echo from a script\\n' > plain.sh"),
            (1, lambda: "chmod +x plain.sh"),
            (1, lambda: "./plain.sh"),
            (1, lambda: "printf 'echo from a script without #!\\n' > plain.sh\nchmod +x plain.sh\n./plain.sh"),
            (1, lambda: "printf '#!/bin/sh\\necho with #! $0\\n' > bang.sh\nchmod +x bang.sh\n./bang.sh x"),
            (1, lambda: "./job.kvx"),
            (1, lambda: f'echo "{self.var()}" > out.txt'),
            (1, lambda: "cat out.txt"),
            (1, lambda: "ls ; not run"),
            (1, lambda: "echo a ; b"),
            (1, lambda: "echo &*"),
            (1, lambda: f"{self.var()} is not an assignment"),
        ])()
        for line in cmd.split("\n"):
            self.s.add(line)

    def comment(self):
        rng = self.rng
        text = rng.choice(["; a comment", "# hash comment", ";", "; &TYPE not run", ";&GOTO top",
                           "#!/not/a/shebang", "; l1: not a label"])
        self.s.add(text)

    def garbage(self):
        rng = self.rng
        n = rng.randint(1, 30)
        data = bytes(rng.below(256) for _ in range(n)).replace(b"\n", b"\xff")
        # Run as a command, a "|" or "&" would start two processes whose messages race.
        data = data.replace(b"|", b"!").replace(b"&", b"+")
        if self.bad(10):
            self.s.add(data, decorate=False)
        elif rng.chance(0.6):
            self.s.add(b"; " + data, decorate=False)
        else:
            self.s.add(b"&TYPE " + data, decorate=False)

    def long_line(self):
        rng = self.rng
        kind = rng.below(6)

        def pad(n, words=("abc ", "filler ", "x", "&a ", ".. ")):
            return (rng.choice(words) * 3000)[:n]
        if kind == 0:
            # The pieces after the first are lines of their own: commands here.
            self.s.add("; " + pad(rng.randint(1100, 2500)), decorate=False)
        elif kind == 1:
            # The second piece is a label of its own.
            self.s.add("; " + pad(1021) + mixcase(rng, self.label_name()) + ":", decorate=False)
            self.guard()
        elif kind == 2:
            # Exactly at the limits: the line end becomes an empty line of its own, or not.
            n = rng.choice([1021, 1022, 1023, 1024, 2045, 2046, 2047])
            self.s.add(("; " + pad(n, ("; ", ";;;", "# x")))[:n], decorate=False)
        elif kind == 3:
            self.s.add(self.kw("&TYPE") + " " + pad(1017) + ";" + pad(rng.randint(10, 1500), (";",)), decorate=False)
        elif kind == 4:
            self.s.add("s = \"" + pad(1017, ("abc ", "x", ".. ")) + "\"; " + pad(rng.randint(30, 200)), decorate=False)
        else:
            self.s.add("; " + pad(1021) + "&TYPE second piece &a", decorate=False)

    def label(self, name=None):
        rng = self.rng
        name = name or self.label_name()
        self.labels_placed.add(name)
        tail = rng.choice(["", "", "", "   ; note", ";"])
        if self.bad(5):
            tail = rng.choice([";x", " trailing words", ":"])
        self.s.add(mixcase(rng, name) + ":" + tail)
        self.guard()

    def goto(self):
        rng = self.rng
        if self.bad(5):
            self.s.add(f"{self.kw('&GOTO')} {rng.choice(['nowhere', 'sub1', ''])}".rstrip())
        elif rng.chance(0.8):
            self.s.add(f"{self.kw('&GOTO')} {mixcase(rng, self.label_name())}")
        else:
            self.s.add(f"t = {self.label_name()}")
            self.s.add(f"{self.kw('&GOTO')} &t")

    def call(self):
        rng = self.rng
        name = rng.choice(SUBS + ["top", "nowhere"]) if self.bad(5) else rng.choice(SUBS)
        self.subs_called.add(name)
        self.s.add(f"{self.kw('&CALL')} {mixcase(rng, name)}")
        self.guard()

    def control(self):
        rng = self.rng
        opts = []
        for _ in range(rng.randint(1, 3)):
            opts.append(rng.weighted([
                (4, "TRACE"), (4, "NOTRACE"), (2, "DEBUG"), (4, "NODEBUG"), (3, "OFF"), (3, "ON"),
                (1, "STACK"), (1, "NOSTACK"), (1, "FOO"), (1, "AUTOCR 3"), (1, "CASE U"),
                (1, "CASE m"), (1, "PROMPT >"), (1, "&t"),
            ]))
        self.s.add(self.kw("&CONTROL") + " " + " ".join(mixcase(rng, o) for o in opts))

    def text_block(self, opener):
        rng = self.rng
        self.s.add(self.kw(opener) + rng.choice(["", "", " ignored words"]))
        for _ in range(rng.randint(0, 4)):
            self.s.add(rng.choice(["plain text &a", "&TYPE inside", "; not a comment here",
                                   "L1:", "  indented", "&ENDX", "tab\there", "&IF 1"]))
        if not self.bad(3):
            self.s.add(self.kw("&END") + rng.choice(["", "", " trailing"]))

    def stack(self):
        rng = self.rng
        items = " ".join(self.operand(True) for _ in range(rng.randint(1, 3)))
        if rng.chance(0.2):
            items += " \\"
        self.s.add(f"{self.kw('&STACK')} {items}")

    def error_line(self):
        rng = self.rng
        line = rng.choice(["&TYPE a command failed: &retcode", "&GOTO " + self.label_name(),
                           "n = &n + 1", "&TYPE failed"])
        self.s.add(f"{self.kw('&ERROR')} {line}")

    def misc(self):
        rng = self.rng
        if self.bad(3):
            self.s.add(rng.choice([f"{self.kw('&ESC')} {rng.choice(['X ON', 'O maybe'])}",
                                   f"{self.kw('&MENU')} x", f"{self.kw('&SLEEP')}"]))
            return
        self.s.add(rng.weighted([
            (2, f"{self.kw('&SKIP')} {rng.choice(['0', '1', '2', '3', '-1', '&n', '1 + 1'])}"),
            (1, f"{self.kw('&SHIFT')}"),
            (1, f"{self.kw('&SHIFT')} {rng.choice(['0', '1', '2', '5'])}"),
            (1, f"{self.kw('&SPACE')} {rng.choice(['0', '1', '2', '-1'])}"),
            (1, f"{self.kw('&CRT')} {rng.choice(['DL', 'CLS', 'ULC', 'BEL', 'HOME', 'x DL', 'foo', '5 10', 'EOL'])}"),
            (1, f"{self.kw('&ESC')} {rng.choice(['O ON', 'w off', 'P ON x'])}"),
            (1, self.kw("&MENU")),
            (1, f"{self.kw('&SLEEP')} 0"),
            (2, "n = &INDEX"),
            (2, "&TYPE args: &0 &1 &2 &3"),
            (1, f"{self.kw('&QUIT')} {rng.choice(['', '3', '2.9', '&retcode', '256', '-1'])}".rstrip()),
        ]))

    def stray_closer(self):
        rng = self.rng
        self.s.add(self.kw(rng.choice(["&NEXT", "&WEND", "&LOOP", "&END", "&ENDIF", "&IFEND",
                                       "&ELSE", "&ELSEIF 1", "&RETURN", "&BREAK", "&CONTINUE"])))

    # ----- blocks --------------------------------------------------------------------------

    def if_block(self, depth, loop):
        rng = self.rng
        self.s.add(f"{self.kw('&IF')} {self.condition()}")
        self.body(depth + 1, loop, rng.randint(0, 4))
        for _ in range(rng.weighted([(5, 0), (3, 1), (1, 2)])):
            self.s.add(f"{self.kw('&ELSEIF')} {self.condition()}")
            self.body(depth + 1, loop, rng.randint(0, 3))
        if rng.chance(0.4):
            self.s.add(self.kw("&ELSE"))
            self.body(depth + 1, loop, rng.randint(0, 3))
        if not self.bad(3):
            self.s.add(self.kw(rng.weighted([(7, "&IFEND"), (3, "&ENDIF")])))

    def if_line(self):
        rng = self.rng
        if self.bad(5):
            action = rng.choice(["echo not a one-line action", self.kw("&BREAK"), "x = 1"])
        else:
            action = rng.weighted([
                (4, lambda: f"{self.kw('&TYPE')} yes {self.var()}"),
                (3, lambda: f"&{rng.choice(VARS)} = {self.expr()}"),
                (2, lambda: f"{self.kw('&GOTO')} {self.label_name()}"),
                (1, lambda: f"{self.kw('&QUIT')} {rng.randint(0, 5)}"),
                (1, lambda: f"{self.kw('&CALL')} {rng.choice(SUBS)}"),
                (1, lambda: f"{self.kw('&CONTROL')} {rng.choice(['TRACE', 'NOTRACE', 'OFF'])}"),
            ])()
        self.s.add(f"{self.kw('&IF')} {self.condition()} {action}")

    def loop_counter(self):
        self.loop_vars += 1
        return f"w{self.loop_vars}"

    def loop_body(self, depth, kind, counter):
        """&BREAK and &CONTINUE work only as lines of a &WHILE or &UNTIL body itself. The lines
        after a &BREAK run once more as ordinary lines, up to the closer, which then fails: so a
        &BREAK is followed by a jump past the loop. Returns that label, if any."""
        rng = self.rng
        self.guard()
        n = rng.randint(0, 4)
        inc_at = rng.randint(0, n)
        after = None
        for i in range(n + 1):
            if i == inc_at and counter:
                self.s.add(f"{counter} = &{counter} + 1")
            if i < n:
                if kind != "for" and not after and rng.chance(0.04):
                    after = f"{counter}out"
                    self.s.add(self.kw("&BREAK"))
                    self.s.add(f"&TYPE after &BREAK {self.var()}")
                    self.s.add(f"{self.kw('&GOTO')} {after}")
                elif self.bad(3):
                    self.s.add(self.kw(rng.choice(["&BREAK", "&CONTINUE"])))
                else:
                    self.statement(depth + 1, kind)
        return after

    def for_loop(self, depth):
        rng = self.rng
        var = rng.choice(["i", "j", "k", "I", "J"])
        lo = rng.randint(-1, 3)
        hi = lo + rng.randint(-1, 3)
        head = f"{self.kw('&FOR')} &{var} = {lo} , {hi}"
        if rng.chance(0.1):
            head = f"{self.kw('&FOR')} &{var} = &n , {rng.choice(['3', '&n + 2', '2.5'])}"
        if self.bad(3):
            head = rng.choice([f"&FOR {var} = 1 , 2", f"&FOR &{var} 1 , 2", f"&FOR &{var} = 1 2"])
        self.s.add(head)
        self.loop_body(depth, "for", None)
        if not self.bad(2):
            self.s.add(self.kw("&NEXT"))

    def while_loop(self, depth, until=False):
        rng = self.rng
        c = self.loop_counter()
        limit = rng.randint(0, 4)
        self.s.add(f"{c} = 0")
        if until:
            cond = f"&{c} >= {limit}" if rng.chance(0.8) else f"&{c} > {limit}.0"
        else:
            cond = f"&{c} < {limit}" if rng.chance(0.8) else f"&{c} < {limit}.5"
        if self.bad(3):
            cond = rng.choice(['""', '"x"'])
        self.s.add(f"{self.kw('&UNTIL' if until else '&WHILE')} {cond}")
        after = self.loop_body(depth, "until" if until else "while", c)
        if not self.bad(2):
            self.s.add(self.kw("&LOOP" if until else "&WEND"))
        if after:
            self.label(after)

    def statement(self, depth, loop):
        rng = self.rng
        self.budget -= 1
        blocks_ok = depth < 3 and self.budget > 0
        kind = rng.weighted([
            (20, "assign"), (10, "type"), (7, "command"), (8 if blocks_ok else 0, "if"),
            (6, "ifline"), (3 if blocks_ok else 0, "for"), (3 if blocks_ok else 0, "while"),
            (2 if blocks_ok else 0, "until"), (3, "label"), (3, "goto"), (2, "call"),
            (3, "misc"), (3, "control"), (1, "begtype"), (1, "begstack"), (2, "stack"),
            (1, "error"), (4, "comment"), (3, "blank"), (1, "long"), (1, "garbage"),
            (1 if self.bad(30) else 0, "stray"),
        ])
        getattr(self, "st_" + kind)(depth, loop)

    def body(self, depth, loop, count):
        for _ in range(count):
            self.statement(depth, loop)

    def st_assign(self, depth, loop):
        self.assignment()

    def st_type(self, depth, loop):
        self.type_line()

    def st_command(self, depth, loop):
        self.command()

    def st_if(self, depth, loop):
        self.if_block(depth, loop)

    def st_ifline(self, depth, loop):
        self.if_line()

    def st_for(self, depth, loop):
        self.for_loop(depth)

    def st_while(self, depth, loop):
        self.while_loop(depth)

    def st_until(self, depth, loop):
        self.while_loop(depth, until=True)

    def st_label(self, depth, loop):
        self.label()

    def st_goto(self, depth, loop):
        self.goto()

    def st_call(self, depth, loop):
        self.call()

    def st_misc(self, depth, loop):
        self.misc()

    def st_control(self, depth, loop):
        self.control()

    def st_begtype(self, depth, loop):
        self.text_block("&BEGTYPE")

    def st_begstack(self, depth, loop):
        self.text_block("&BEGSTACK")

    def st_stack(self, depth, loop):
        self.stack()

    def st_error(self, depth, loop):
        self.error_line()

    def st_comment(self, depth, loop):
        self.comment()

    def st_blank(self, depth, loop):
        self.s.add(self.rng.choice(["", " ", "\t", "   \t  "]), decorate=False)

    def st_long(self, depth, loop):
        self.long_line()

    def st_garbage(self, depth, loop):
        self.garbage()

    def st_stray(self, depth, loop):
        self.stray_closer()

    def generate(self):
        rng = self.rng
        if rng.chance(0.5):
            self.s.add(self.kw("&CONTROL") + " OFF")
        if rng.chance(0.25):
            self.s.add(self.kw("&CONTROL") + " TRACE")
        for v in rng.choice([VARS[:3], VARS[:5], ["n", "s"], []]):
            self.s.add(f"{v} = {self.operand(first=True)}")
        self.budget = rng.randint(15, 60)
        self.body(0, None, self.budget)
        # Labels that jumps aim at and that no statement placed go in at random lines (inside
        # blocks too, where skipping passes over them).
        for name in self.labels:
            if name not in self.labels_placed:
                self.labels_placed.add(name)
                at = rng.randint(0, len(self.s.lines))
                self.s.lines[at:at] = [(mixcase(rng, name).encode() + b":", True),
                                       (f"{GUARD_VAR} = &{GUARD_VAR} + 1".encode(), True),
                                       (f"&IF &{GUARD_VAR} > {GUARD_LIMIT} &QUIT 99".encode(), True)]
        # The subroutines, usually out of the way of the straight-through path.
        self.s.add(rng.weighted([(5, self.kw("&QUIT")), (3, f"{self.kw('&GOTO')} Done"), (2, "; fall through")]))
        for name in SUBS:
            if name in self.subs_called or rng.chance(0.3):
                self.s.add(mixcase(rng, name) + ":")
                self.guard()
                self.body(1, None, rng.randint(0, 4))
                if rng.chance(0.9):
                    self.s.add(self.kw("&RETURN"))
        if rng.chance(0.7):
            self.label("Done")
            self.s.add("&TYPE done &n")
        return {"job.kvx": self.s.render(final_newline=rng.chance(0.9)), "args": self.args(),
                "env": self.env()}

    def env(self):
        """Variables added to the run's environment, in this order. PWD is the run directory
        ("@run"), left out ("@none") or wrong: the shell puts it right for its commands."""
        rng = self.rng
        lines = [rng.weighted([(6, "PWD=@run"), (2, "PWD=@none"), (1, "PWD=/"), (1, "PWD=/nonexistent")])]
        extra = ["GEN_A=1", "zeta=last", "B_VAR=two words", "lower_case=x", "A1=", "EMPTYISH= ",
                 "Z_LAST=z", "GEN_X=from the environment", "kvwm=1", "KVEXEC_YEAR_MODE=2"]
        for _ in range(rng.weighted([(3, 0), (2, 1), (2, 3), (1, 6)])):
            lines.append(rng.choice(extra))
        if rng.chance(0.5):
            lines.insert(rng.randint(0, len(lines)), lines.pop(0))
        return "".join(line + "\n" for line in lines)

    def args(self):
        rng = self.rng
        return "".join(rng.choice(ARG_WORDS) + "\n" for _ in range(rng.weighted([(2, 0), (3, 1), (3, 2), (2, 4)])))


class SelfMod:
    """A script that changes its own file while it runs. The interesting offsets are around the
    4 KiB read buffer, so the scripts are padded to land there."""

    def __init__(self, seed):
        self.rng = Rng(seed)

    def filler(self, s, count, tag):
        rng = self.rng
        for i in range(count):
            s.add(f"; {tag} filler {i} " + "." * rng.randint(0, 60))

    def generate(self):
        rng = self.rng
        s = Script(rng)
        op = rng.choice(["cp", "cp", "cp_same", "mv", "append", "append", "truncate", "touch"])
        jump = rng.choice(["goto", "goto", "while", "for", "return", "call", "sequential", "skip"])
        trace = rng.chance(0.3)
        s.add("&CONTROL OFF" + (" TRACE" if trace else ""))
        s.add("k = 0")
        self.filler(s, rng.randint(0, 70), "head")
        if jump == "return":
            s.add("&CALL work")
            s.add(f"{GUARD_VAR} = &{GUARD_VAR} + 1")
            s.add(f"&IF &{GUARD_VAR} > 20 &QUIT 99")
            s.add("&TYPE back from work k=&k")
            self.filler(s, rng.randint(0, 40), "between")
            s.add("&GOTO finish")
            s.add("work:")
        s.add("top:")
        s.add(f"{GUARD_VAR} = &{GUARD_VAR} + 1")
        s.add(f"&IF &{GUARD_VAR} > 20 &QUIT 99")
        if jump == "while":
            s.add("&WHILE &k < 3")
        elif jump == "for":
            s.add("&FOR &i = 1 , 3")
        s.add("k = &k + 1")
        s.add("&TYPE pass &k old")
        s.add(f"&IF &k = {rng.randint(1, 2)}")
        for line in self.operation(op):
            s.add(line)
        goto_appended = op == "append" and rng.chance(0.3)
        if goto_appended:
            s.add("&GOTO appended")
        s.add("&IFEND")
        if rng.chance(0.3):
            # Back to the first text: same size and bytes, another modification time.
            s.add("&IF &k = 3")
            s.add("cp old.kvx job.kvx")
            s.add("&IFEND")
        self.filler(s, rng.randint(0, 70), "body")
        s.add("&TYPE after the change k=&k old")
        if jump == "goto":
            s.add("&IF &k < 3 &GOTO top")
        elif jump == "while":
            s.add("&WEND")
        elif jump == "for":
            s.add("&NEXT")
        elif jump == "return":
            s.add("&RETURN")
        elif jump == "call":
            s.add("&IF &k < 3 &CALL later")
        elif jump == "skip":
            s.add("&SKIP 3")
        self.filler(s, rng.randint(0, 40), "tail")
        s.add("later:")
        s.add("&TYPE at later k=&k old")
        s.add("&IF &k < 3 &GOTO top")
        s.add("finish:")
        s.add("&TYPE finished k=&k old")
        job = s.render()

        files = {"job.kvx": job, "old.kvx": job, "args": ""}
        files["new.kvx"] = self.variant(job, op)
        more = Script(rng)
        more.add("&TYPE appended line one k=&k")
        if goto_appended or rng.chance(0.5):
            more.add("appended:")
            more.add("&TYPE appended label reached")
        if rng.chance(0.5):
            more.add("&IF &k < 3 &GOTO top")
        more.add("&TYPE appended end")
        files["more.kvx"] = more.render()
        return files

    def operation(self, op):
        """The command lines that change the script (an "&" would start a variable reference,
        hence the octal escape in printf)."""
        rng = self.rng
        if op in ("cp", "cp_same"):
            return ["cp new.kvx job.kvx"]
        if op == "mv":
            return ["mv new.kvx job.kvx"]
        if op == "append":
            return [rng.choice(["cat more.kvx >> job.kvx", 'printf "\\046TYPE printed append\\n" >> job.kvx'])]
        if op == "truncate":
            return [f"head -c {rng.choice([0, 100, 500, 2000, 4096, 5000])} job.kvx > cut.kvx", "cp cut.kvx job.kvx"]
        return ["touch job.kvx"]

    def variant(self, job, op):
        """What replaces the script: the same text with its words changed, with the same length
        or with lines added or removed so that offsets move."""
        rng = self.rng
        new = job.replace(b" old", b" NEW")
        if op == "cp_same":
            return new
        how = rng.below(4)
        if how == 0:
            return b"; one more line at the top\n" + new
        if how == 1:
            return new.replace(b"; head filler 1 ", b"; ", 1)
        if how == 2:
            return new + b"&TYPE extra tail line\n"
        return new.replace(b"&TYPE pass", b"&TYPE pass\n&TYPE inserted", 1)


def generate(kind, seed):
    """Returns {file name: bytes or str}; "args" holds the arguments, one a line."""
    if kind == "selfmod":
        return SelfMod(seed).generate()
    return General(seed).generate()


def main(argv):
    kind = "general"
    if len(argv) >= 2 and argv[0] == "--kind":
        kind, argv = argv[1], argv[2:]
    if len(argv) != 2 or kind not in ("general", "selfmod"):
        sys.stderr.write("usage: generate.py [--kind general|selfmod] SEED DIR\n")
        return 2
    seed, out = int(argv[0]), argv[1]
    os.makedirs(out, exist_ok=True)
    for name, data in generate(kind, seed).items():
        if isinstance(data, str):
            data = data.encode()
        with open(os.path.join(out, name), "wb") as f:
            f.write(data)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
