#!/usr/bin/env python3
"""Mutation testing of the control's sources.

Plants one small fault at a time into a copy of the sources, rebuilds that
copy incrementally, runs the tests that cover the mutated folder and reports
whether a test failed (killed) or not (survived). Called by scripts/mutants.sh,
which provides the display and decides what the machine can run.
"""
import argparse
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import time
from dataclasses import dataclass
from pathlib import Path

FOLDERS = ["com", "platform", "model", "crypto", "web", "forms", "control", "server"]

# The test programs (CTest labels) that exercise each folder. "script" is the
# cscript tests of the registered control.
TESTS = {
    "com": ["com_server_test", "script", "control_test", "control_atl_host_test", "readme_examples_test"],
    "platform": ["platform_test", "com_server_test", "web_test", "forms_test"],
    "model": ["control_test", "control_codec_test", "com_server_test", "script"],
    "crypto": ["crypto_box_test"],
    "web": ["web_test", "control_test"],
    "forms": ["forms_test"],
    "control": ["control_test", "control_atl_host_test", "web_test", "forms_test", "script"],
    "server": ["registration_test", "com_server_test"],
}

# Programs the tests run besides the labelled ones (fixture set-ups).
EXTRA_TARGETS = ["Brevantis", "crypto_box_test"]


@dataclass(frozen=True)
class Mutant:
    file: str      # relative to the source root
    line: int      # 1-based
    col: int       # 0-based, in the original line
    op: str
    old: str       # the text replaced at col
    new: str

    def describe(self):
        return f"{self.file}:{self.line}: {self.op}: '{self.old.strip()}' -> '{self.new.strip()}'"


# --- Reading C++ -------------------------------------------------------------

def code_only(lines):
    """Each line with comments and the insides of string and character
    literals blanked out (same length), so that positions still match."""
    out = []
    in_block = False
    raw_end = None
    for text in lines:
        masked = list(text)
        i, n = 0, len(text)
        while i < n:
            if raw_end is not None:
                j = text.find(raw_end, i)
                stop = n if j < 0 else j
                for k in range(i, stop):
                    masked[k] = " "
                if j < 0:
                    i = n
                else:
                    i = j + len(raw_end)
                    raw_end = None
                continue
            if in_block:
                j = text.find("*/", i)
                stop = n if j < 0 else j + 2
                for k in range(i, stop):
                    masked[k] = " "
                in_block = j < 0
                i = stop
                continue
            c = text[i]
            if text.startswith("//", i):
                for k in range(i, n):
                    masked[k] = " "
                break
            if text.startswith("/*", i):
                in_block = True
                continue
            m = re.match(r'(?:u8|u|U|L)?R"([^(\s]*)\(', text[i:])
            if m and (i == 0 or not (text[i - 1].isalnum() or text[i - 1] == "_")):
                raw_end = ")" + m.group(1) + '"'
                i += m.end()
                continue
            if c in "\"'":
                if c == "'" and i > 0 and text[i - 1].isalnum():
                    start = i - 1
                    while start > 0 and (text[start - 1].isalnum() or text[start - 1] == "'"):
                        start -= 1
                    if text[start].isdigit():
                        i += 1   # a digit separator, 1'000 (but L'x' is a literal)
                        continue
                j = i + 1
                while j < n and text[j] != c:
                    j += 2 if text[j] == "\\" else 1
                for k in range(i + 1, min(j, n)):
                    masked[k] = " "
                i = j + 1
                continue
            i += 1
        out.append("".join(masked))
    return out


def skipped_lines(code):
    """Preprocessor lines (with their continuations) and static_assert."""
    skip = set()
    continued = False
    assert_depth = 0
    for idx, text in enumerate(code):
        stripped = text.strip()
        if continued or stripped.startswith("#"):
            skip.add(idx)
            continued = text.rstrip().endswith("\\")
            continue
        if assert_depth > 0 or "static_assert" in text:
            skip.add(idx)
            start = text.find("static_assert") if assert_depth == 0 else 0
            assert_depth += text.count("(", start) - text.count(")", start)
            assert_depth = max(assert_depth, 0)
    return skip


def closing_paren(text, open_at):
    depth = 0
    for k in range(open_at, len(text)):
        if text[k] == "(":
            depth += 1
        elif text[k] == ")":
            depth -= 1
            if depth == 0:
                return k
    return -1


COMPARISONS = {" == ": " != ", " != ": " == ", " < ": " >= ", " >= ": " < ",
               " > ": " <= ", " <= ": " > "}
LOGIC = {" && ": " || ", " || ": " && "}
CALL = re.compile(r"^\s*(?:::)?[A-Za-z_][\w]*(?:(?:::|\.|->)[A-Za-z_~][\w]*)*\s*\(.*\)\s*;\s*$")
NOT_CALLS = {"return", "delete", "throw", "if", "while", "for", "switch", "sizeof",
             "static_assert", "case", "goto", "co_return", "co_yield", "co_await"}
DECLARATION = re.compile(r"^\s*(?:const\s+)?[A-Za-z_][\w:<>]*[\s*&]+[A-Za-z_]\w*\s*=(?!=)")
NUMBER = re.compile(r"(?<![\w.])(0[xX][0-9A-Fa-f]+|\d+)([uUlL]*)(?![\w.'])")
DEFAULT_RETURN = {"HRESULT": "E_FAIL", "STDMETHODIMP": "E_FAIL", "bool": "false",
                  "BOOL": "FALSE", "void": ""}
SIGNATURE = re.compile(r"^(?:(?:static|inline|virtual)\s+)*(HRESULT|STDMETHODIMP|bool|BOOL|void)"
                       r"\s+(?:__stdcall\s+|WINAPI\s+|CALLBACK\s+)?[A-Za-z_~][\w:~]*\s*\(")


def candidates(root, rel):
    lines = (root / rel).read_text(encoding="utf-8", errors="surrogateescape").split("\n")
    code = code_only(lines)
    skip = skipped_lines(code)
    found = []

    def add(idx, col, op, old, new):
        found.append(Mutant(rel, idx + 1, col, op, old, new))

    for idx, text in enumerate(code):
        if idx in skip or not text.strip():
            continue
        stripped = text.strip()
        for old, new in COMPARISONS.items():
            for m in re.finditer(re.escape(old), text):
                # "a < b" but not "a << b", "x <= y" but not "<<= y"
                before = text[m.start() - 1] if m.start() > 0 else " "
                after = text[m.end()] if m.end() < len(text) else " "
                if before in "<>=!" or after in "<>=":
                    continue
                add(idx, m.start(), "comparison", old, new)
        for old, new in LOGIC.items():
            for m in re.finditer(re.escape(old), text):
                add(idx, m.start(), "logic", old, new)
        for m in re.finditer(r"\b(?:if|while)\s*\(", text):
            open_at = m.end() - 1
            close = closing_paren(text, open_at)
            if close < 0 or "constexpr" in text[m.start():open_at]:
                continue
            cond = lines[idx][open_at + 1:close]
            if ";" in cond or DECLARATION.match(cond):
                continue   # if (T x = ...) or if (init; cond): no place for a "!"
            add(idx, open_at + 1, "negate", cond, "!(" + cond + ")")
        if not stripped.startswith("case ") and not re.search(r"\[\s*\]\s*=|\w\s*\[[^\]]*\]\s*=\s*\{", text):
            for m in NUMBER.finditer(text):
                value = int(m.group(1), 0)
                bumped = value + 1 if value == 0 else value - 1
                digits = hex(bumped) if m.group(1).lower().startswith("0x") else str(bumped)
                add(idx, m.start(), "constant", m.group(0), digits + m.group(2))
        if CALL.match(text) and text.count("(") == text.count(")"):
            first = re.match(r"\s*(?:::)?([A-Za-z_]\w*)", text).group(1)
            prev = next((code[k].rstrip() for k in range(idx - 1, -1, -1) if code[k].strip()), "{")
            if first not in NOT_CALLS and prev[-1:] in ";{}:" and "=" not in text.replace("==", ""):
                col = len(text) - len(text.lstrip())
                add(idx, col, "drop-call", lines[idx][col:].rstrip(), ";")
        sig = SIGNATURE.match(text)
        if sig and not stripped.endswith(";"):
            brace = body_brace(code, idx, text.index("(", sig.start(1)))
            if brace is not None:
                b_idx, b_col = brace
                value = DEFAULT_RETURN[sig.group(1)]
                stmt = f" return {value};" if value else " return;"
                add(b_idx, b_col, "early-return", "{", "{" + stmt)
    return found


def body_brace(code, idx, open_at):
    """Where the function body's "{" is: at the end of the line that closes
    the parameter list, or alone on the next one."""
    depth = 0
    for k in range(idx, min(idx + 12, len(code))):
        text = code[k]
        start = open_at if k == idx else 0
        for c in range(start, len(text)):
            if text[c] == "(":
                depth += 1
            elif text[c] == ")":
                depth -= 1
                if depth == 0:
                    rest = text[c + 1:].rstrip()
                    if re.fullmatch(r"(?:\s*(?:const|override|noexcept|final))*\s*\{", rest):
                        return k, len(rest) - 1 + c + 1
                    if rest.strip() == "" and k + 1 < len(code) and code[k + 1].strip() == "{":
                        return k + 1, code[k + 1].index("{")
                    return None
    return None


def all_candidates(root, folders):
    by_folder = {}
    for folder in folders:
        found = []
        for path in sorted((root / folder).glob("*.cpp")):
            found += candidates(root, f"{folder}/{path.name}")
        by_folder[folder] = sorted(found, key=lambda m: (m.file, m.line, m.col, m.op))
    return by_folder


def queues(by_folder, seed):
    """Each folder's mutants in the order they are tried: an operator drawn
    at random among those left, then a mutant of it, so that a folder full of
    constants still gets comparisons and dropped calls."""
    rng = random.Random(seed)
    result = {}
    for folder in sorted(by_folder):
        by_op = {}
        for m in by_folder[folder]:
            by_op.setdefault(m.op, []).append(m)
        for op in sorted(by_op):
            rng.shuffle(by_op[op])
        order = []
        while by_op:
            op = rng.choice(sorted(by_op))
            order.append(by_op[op].pop())
            if not by_op[op]:
                del by_op[op]
        result[folder] = order
    return result


def plan(folders, count):
    """The folder of each mutant: the folders in turn."""
    return [folders[i % len(folders)] for i in range(count)]


def apply(root, mutant):
    path = root / mutant.file
    data = path.read_text(encoding="utf-8", errors="surrogateescape")
    lines = data.split("\n")
    text = lines[mutant.line - 1]
    assert text[mutant.col:mutant.col + len(mutant.old)] == mutant.old, mutant
    lines[mutant.line - 1] = text[:mutant.col] + mutant.new + text[mutant.col + len(mutant.old):]
    path.write_text("\n".join(lines), encoding="utf-8", errors="surrogateescape")
    return data


# --- Building and testing -------------------------------------------------------

class Runner:
    def __init__(self, args, repo):
        self.args = args
        self.repo = repo
        self.work = Path(args.work_dir).resolve()
        self.src = self.work / "src"
        self.build = self.work / f"build{args.bits}"
        self.log = self.work / "log"
        self.log.mkdir(parents=True, exist_ok=True)
        for old in self.log.glob("*.log"):   # a run's logs only
            old.unlink()
        self.jobs = str(os.cpu_count() or 2)

    def copy_sources(self):
        """The tracked files of the checkout, as they are on disk; unchanged
        files keep their times, so the copy's build stays incremental."""
        files = subprocess.run(["git", "-C", str(self.repo), "ls-files", "-z"], check=True,
                               capture_output=True).stdout.decode().split("\0")
        for rel in filter(None, files):
            source, target = self.repo / rel, self.src / rel
            if not source.is_file():
                continue
            if target.is_file() and target.read_bytes() == source.read_bytes():
                continue
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(source, target)

    def run_logged(self, cmd, name, timeout=None, **kw):
        with open(self.log / name, "w") as out:
            proc = subprocess.Popen(cmd, stdout=out, stderr=subprocess.STDOUT,
                                    start_new_session=True, **kw)
            try:
                return proc.wait(timeout=timeout)
            except subprocess.TimeoutExpired:
                os.killpg(proc.pid, signal.SIGKILL)
                proc.wait()
                self.stop_wine()
                return None
            except BaseException:   # interrupted: the build or tests go too
                os.killpg(proc.pid, signal.SIGKILL)
                proc.wait()
                self.stop_wine()
                raise

    def stop_wine(self):
        """After a timeout: the Wine processes of this build's own prefixes."""
        loader = "/usr/lib/wine/wine64" if self.args.bits == 64 else "/usr/lib/wine/wine"
        server = "/usr/lib/wine/wineserver64" if self.args.bits == 64 else "/usr/lib/wine/wineserver32"
        for prefix in sorted(self.build.glob("prefix-*")) + [self.build / "wineprefix"]:
            if prefix.is_dir():
                subprocess.run([server, "-k"], env={**os.environ, "WINEPREFIX": str(prefix),
                               "WINELOADER": loader}, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL, timeout=60)

    def configure(self):
        toolchain = "toolchain-mingw-x86_64.cmake" if self.args.bits == 64 else "toolchain-mingw-i686.cmake"
        cmd = ["cmake", "-S", str(self.src), "-B", str(self.build), "-G", "Ninja",
               f"-DCMAKE_TOOLCHAIN_FILE={self.src}/cmake/{toolchain}",
               f"-DBREVANTIS_EMULATED={'ON' if self.args.emulated else 'OFF'}",
               "-DBREVANTIS_DISCOVERY_MODE=PRE_TEST"]
        if self.run_logged(cmd, "configure.log") != 0:
            sys.exit(f"configuring {self.build} failed: see {self.log}/configure.log")

    def targets(self, folder):
        return [t for t in TESTS[folder] if t != "script"] + EXTRA_TARGETS

    def build_targets(self, targets, name, timeout=None):
        cmd = ["cmake", "--build", str(self.build), "-j", self.jobs, "--target", *targets]
        rc = self.run_logged(cmd, name, timeout=timeout)
        # A mutant never adds or removes a test: the lists of the programs
        # stay as they are, without a Wine start each to list them again.
        if rc == 0 and self.listed:
            now = time.time()
            for f in self.build.rglob("*]_tests.cmake"):
                os.utime(f, (now, now))
        return rc

    def test(self, labels, name, timeout=None, stop_on_failure=True):
        cmd = ["ctest", "--test-dir", str(self.build), "-j", self.jobs, "--output-on-failure",
               "-L", "^(" + "|".join(labels) + ")$"]
        if stop_on_failure:
            cmd.append("--stop-on-failure")
        return self.run_logged(cmd, name, timeout=timeout)


def main():
    # Stopped with kill as with Ctrl-C: the mutated file is put back.
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    repo = Path(__file__).resolve().parent.parent
    p = argparse.ArgumentParser(prog="mutants.sh", description=__doc__.split("\n\n")[0])
    p.add_argument("--seed", type=int, default=1, help="picks the mutants (default 1)")
    p.add_argument("--count", "-n", type=int, default=60, help="mutants that compile (default 60)")
    p.add_argument("--bits", type=int, choices=(32, 64), default=64)
    p.add_argument("--emulated", action="store_true", help=argparse.SUPPRESS)
    p.add_argument("--folders", default=",".join(FOLDERS),
                   help="comma-separated product folders (default all of them)")
    p.add_argument("--all-tests", action="store_true", help="run the whole suite for each mutant")
    p.add_argument("--list", action="store_true", help="print the mutants in the order tried; build nothing")
    p.add_argument("--work-dir", default=str(repo / "build-mutants"))
    p.add_argument("--timeout-factor", type=float, default=2.0,
                   help="a mutant's tests may take this many times the baseline, "
                        "and at least 40 s (default 2)")
    args = p.parse_args()
    folders = [f for f in args.folders.split(",") if f]
    for f in folders:
        if f not in FOLDERS:
            p.error(f"unknown folder {f}: one of {', '.join(FOLDERS)}")

    by_folder = all_candidates(repo, folders)
    order = queues(by_folder, args.seed)
    picks = plan(folders, args.count)
    if args.list:
        total = sum(len(v) for v in by_folder.values())
        print(f"seed {args.seed}: {total} candidate mutants in {', '.join(folders)}")
        used = {f: 0 for f in folders}
        for i, folder in enumerate(picks, 1):
            print(f"{i:3}. {order[folder][used[folder]].describe()}")
            used[folder] += 1
        return 0

    runner = Runner(args, repo)
    started = time.time()
    runner.copy_sources()
    runner.configure()
    all_labels = sorted({label for f in FOLDERS for label in TESTS[f]})
    labels_of = {f: (all_labels if args.all_tests else TESTS[f]) for f in folders}
    targets = sorted({t for f in folders for t in runner.targets(f)})
    if args.all_tests:
        targets = sorted({t for f in FOLDERS for t in runner.targets(f)})
    print(f"building the unmutated copy in {runner.build} ...", flush=True)
    runner.listed = False
    if runner.build_targets(targets, "baseline-build.log") != 0:
        sys.exit(f"the unmutated copy does not build: see {runner.log}/baseline-build.log")
    baseline = {}
    for folder in folders:
        t0 = time.time()
        rc = runner.test(labels_of[folder], f"baseline-{folder}.log", stop_on_failure=False)
        baseline[folder] = time.time() - t0
        if rc != 0:
            sys.exit(f"the unmutated suite fails for {folder}/: see {runner.log}/baseline-{folder}.log")
        print(f"baseline {folder}: tests pass in {baseline[folder]:.0f} s", flush=True)
    runner.listed = True
    print(f"baseline ready after {time.time() - started:.0f} s", flush=True)

    results = []
    used = {f: 0 for f in folders}
    uncompilable = 0
    for i, folder in enumerate(picks, 1):
        while True:
            if used[folder] >= len(order[folder]):
                print(f"{folder}/: no candidates left", flush=True)
                break
            mutant = order[folder][used[folder]]
            used[folder] += 1
            t0 = time.time()
            original = apply(runner.src, mutant)
            tag = f"{i:03}"
            try:
                rc = runner.build_targets(targets if args.all_tests else runner.targets(folder),
                                          f"{tag}-build.log", timeout=900)
                if rc != 0:
                    uncompilable += 1
                    print(f"[{tag}] uncompilable  {mutant.describe()} ({time.time() - t0:.0f} s)", flush=True)
                    continue
                built = time.time() - t0
                limit = max(40.0, args.timeout_factor * baseline[folder])
                rc = runner.test(labels_of[folder], f"{tag}-test.log", timeout=limit)
            finally:
                (runner.src / mutant.file).write_text(original, encoding="utf-8", errors="surrogateescape")
            verdict = "timeout" if rc is None else ("survived" if rc == 0 else "killed")
            results.append((verdict, mutant))
            print(f"[{tag}] {verdict:<9} {mutant.describe()} "
                  f"(build {built:.0f} s, tests {time.time() - t0 - built:.0f} s)", flush=True)
            break

    elapsed = time.time() - started
    killed = sum(1 for v, _ in results if v in ("killed", "timeout"))
    timeouts = sum(1 for v, _ in results if v == "timeout")
    survivors = [m for v, m in results if v == "survived"]
    print()
    print(f"seed {args.seed}, {args.bits}-bit, {elapsed / 60:.1f} min "
          f"({elapsed / max(len(results), 1):.0f} s a mutant with the baseline), "
          f"{uncompilable} uncompilable replaced")
    print(f"mutants: {len(results)}, killed: {killed} ({timeouts} by timeout), "
          f"survived: {len(survivors)} (score {killed}/{len(results)})")
    if survivors:
        print("survivors:")
        for m in survivors:
            print(f"  {m.describe()}")
    print(f"logs: {runner.log}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
