# SPDX-License-Identifier: Apache-2.0
"""Whole runs of qdx, each beside another command: for script/bench."""
import os
import re
import subprocess
import sys
import tempfile
import time
from pathlib import Path

TREE = Path(__file__).resolve().parent.parent
# Where a round takes long, fewer of them do.
MOST_SECONDS = 6
FEWEST_ROUNDS = 3
# Documents differ, or a part of the machine cannot be read.
GOOD_STATUS = {"diff": (0, 1), "collect": (0, 3), "identity": (0, 3), "summary": (0, 3)}
BIG = "100,000 instances"
MEGABYTE = 1e6


def refuse_bad_status(status, command):
    good = [0]
    for verb, statuses in GOOD_STATUS.items():
        if verb in command:
            good = statuses
    if status not in good:
        sys.exit(f"script/bench: status {status} of: {' '.join(map(str, command))}")


class Run:
    """A command line of qdx, and its limit, a whole command."""

    def __init__(self, arguments, limit, limit_is, aim, factor=1, start=None):
        self.arguments = arguments
        self.limit = limit
        self.limit_is = limit_is
        self.aim = aim
        self.factor = factor  # of the limit's time
        self.start = start  # the part of the limit that only starts processes


class WholeRuns:
    """Makes what the runs need in a folder of its own, once and only if a run needs it."""

    def __init__(self, folder, program, environment):
        self.qdx = folder.resolve() / "bin/qdx"
        self.plugin = folder.resolve() / "lib/qdx/liblinux.nsp.so"
        self.program = program
        self.environment = environment
        self.keeper = tempfile.TemporaryDirectory(prefix="qdx-bench-")
        self.folder = Path(self.keeper.name)
        big = ", a big machine"
        self.runs = {
            "qdx plugins": lambda: self.beside_reading(["plugins"]),
            "qdx identity": lambda: self.beside_reading(["identity"]),
            "qdx summary": lambda: self.beside_reading(["summary"]),
            "qdx collect": lambda: self.beside_reading(self.collect("/")),
            f"qdx collect{big}": lambda: self.beside_reading(self.collect(self.tree(100))),
            f"qdx collect{big}, twice a half": lambda: self.beside_half(
                self.collect(self.tree(100)), self.collect(self.tree(50))),
            f"qdx collect{big}, .gz": self.beside_gzip,
            f"qdx show, {BIG}": lambda: self.beside_expat(["show", self.document(100000)], 2.2),
            f"qdx show, {BIG}, twice a half": lambda: self.beside_half(
                ["show", self.document(100000)], ["show", self.document(50000)]),
            f"qdx diff, {BIG}": lambda: self.beside_expat(self.diff(100000), 1.77),
            f"qdx diff, {BIG}, twice a half": lambda: self.beside_half(self.diff(100000), self.diff(50000)),
        }
        # What is counted under callgrind: smaller, and not of this machine. Not 'qdx plugins': how many of
        # its supervisors qdx kills, and are not counted then, depends on what else the machine does.
        self.counted = {
            "qdx collect, a small machine": lambda: self.collect(self.tree(1)),
            "qdx show, 1,000 instances": lambda: ["show", self.document(1000)],
            "qdx diff, 1,000 instances": lambda: self.diff(1000),
        }

    # What the runs need.

    def make(self, name, *command):
        """Returns the file or folder in this object's folder; the command with its path makes it."""
        path = self.folder / name
        if not path.exists():
            arguments = [str(path) if argument == "PATH" else argument for argument in command]
            subprocess.run(arguments, env=self.environment, check=True)
        return str(path)

    def tree(self, percent):
        return self.make(f"machine{percent}", TREE / "bench/big_machine", "PATH", str(percent))

    def document(self, count):
        return self.make(f"document{count}.xml", self.program, "--document", "PATH", str(count))

    def other_document(self, count):
        """Differs in a property of one instance."""
        path = self.folder / f"other{count}.xml"
        text = Path(self.document(count)).read_bytes()
        path.write_bytes(text.replace(b"<VALUE>777</VALUE>", b"<VALUE>778</VALUE>"))
        return str(path)

    def collect(self, root):
        return ["collect", "--root", root, "-o", str(self.folder / "collected.xml")]

    def diff(self, count):
        return ["diff", self.document(count), self.other_document(count)]

    def files_of(self, arguments):
        """Returns a file with the names of the files that the run reads."""
        log, names = self.folder / "strace", self.folder / ("files of " + " ".join(arguments).replace("/", "_"))
        subprocess.run(
            ["strace", "-f", "-qq", "-y", "-e", "trace=open,openat,openat2", "-o", log, self.qdx, *arguments],
            env=self.environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
        opened = re.findall(r"O_RDONLY.*= \d+<(/[^<>]*)>$", log.read_text(errors="replace"), re.MULTILINE)
        read = {path for path in opened if not re.match(r"/dev/|/memfd:|.*\.so(\.|$)", path)}
        names.write_text("".join(f"{path}\n" for path in sorted(read)))
        return str(names)

    # The kinds of limits.

    def beside_reading(self, arguments):
        load = [self.program, "--load", self.plugin]
        return Run(arguments, [*load, self.files_of(arguments)], "a worker, and a bare loop over the files",
                   None, start=[*load, "/dev/null"])

    def beside_half(self, arguments, half):
        return Run(arguments, [self.qdx, *half], "twice the time of a half", 1.1, factor=2)

    def beside_expat(self, arguments, aim):
        return Run(arguments, [self.program, "--parse", *arguments[1:]], "expat alone", aim)

    def beside_gzip(self):
        root, file = self.tree(100), self.folder / "collected.gz"
        command = f"'{self.qdx}' collect --root '{root}' -o - | gzip -1 >'{file}'"
        return Run([*self.collect(root)[:-1], str(self.folder / "collected.xml.gz")], ["sh", "-c", command],
                   "plain, into gzip -1", 1.1)

    # The measuring.

    def time(self, command):
        """Returns the nanoseconds and the peak of memory in bytes."""
        begin = time.perf_counter_ns()
        process = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        status, usage = os.wait4(process.pid, 0)[1:]
        taken = time.perf_counter_ns() - begin
        process.returncode = os.waitstatus_to_exitcode(status)
        refuse_bad_status(process.returncode, command)
        return taken, usage.ru_maxrss * 1024

    def measure(self, name, rounds, before):
        """Returns rows by their names: one of the time, and of memory where that counts."""
        run = self.runs[name]()
        # The other build first: both write the same file, whose size is measured.
        commands = {"before": [before, *run.arguments]} if before else {}
        commands.update({"ours": [self.qdx, *run.arguments], "limit": run.limit})
        if run.start:
            commands["start"] = run.start
        least, peak, end = {}, {}, time.monotonic() + MOST_SECONDS
        for number in range(rounds):
            if number >= FEWEST_ROUNDS and time.monotonic() > end:
                break
            for side, command in commands.items():
                taken, memory = self.time(command)
                least[side] = min(taken, least.get(side, taken))
                peak[side] = min(memory, peak.get(side, memory))
        row = {"unit": "ns", "limit_is": run.limit_is, "aim": run.aim, **least}
        row["limit"] *= run.factor
        if run.start:
            # Reading may take half as much again, starting may not.
            row["aim"] = (1.5 * row["limit"] - 0.5 * row.pop("start")) / row["limit"]
        return {name: row, **self.sizes(name, run, peak)}

    def sizes(self, name, run, peak):
        if run.limit_is == "expat alone":
            documents = sum(os.path.getsize(file) for file in run.arguments[1:])
            row = {side: peak[side] / MEGABYTE for side in ("ours", "before") if side in peak}
            return {f"{name}, memory": {**row, "limit": documents / MEGABYTE, "unit": "MB", "aim": 1.33,
                                        "limit_is": "the documents' size"}}
        if run.arguments[-1].endswith(".gz"):
            written = os.path.getsize(run.arguments[-1]) / MEGABYTE
            again = subprocess.run(["sh", "-c", f"gzip -cd '{run.arguments[-1]}' | gzip | wc -c"],
                                   stdout=subprocess.PIPE, check=True)
            return {f"{name}, size": {"ours": written, "limit": int(again.stdout) / MEGABYTE, "unit": "MB",
                                      "aim": 1.2, "limit_is": "gzip"}}
        return {}

    def count(self, name, qdx):
        """Returns the instructions of all processes of a run."""
        command = [qdx, *self.counted[name]()]
        # The more complete one of two runs counts.
        return max(self.count_once(command) for _ in range(2))

    def count_once(self, command):
        """qdx kills supervisors of workers that are done, which leave a file without the last line."""
        with tempfile.TemporaryDirectory() as folder:
            done = subprocess.run(
                ["valgrind", "--tool=callgrind", "--quiet", "--dump-line=no", "--trace-children=yes",
                 f"--callgrind-out-file={folder}/%p", *command],
                env=self.environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
            refuse_bad_status(done.returncode, command)
            texts = [file.read_text() for file in Path(folder).iterdir()]
        return sum(int(total) for text in texts for total in re.findall(r"^totals: (\d+)$", text, re.MULTILINE))
