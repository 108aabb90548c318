"""Runs the built tool as root of a private namespace and looks at what it left behind.

ToolTest.py TOOL [--list | unittest's arguments]
"""

import functools
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

TOOL = os.path.abspath(sys.argv.pop(1))
SANDBOX = pathlib.Path(__file__).resolve().parent / "sandbox"
CERTIFICATE = "Zarvo Personal CA"
CORE = "/var/lib/com.zarvo.Zarvo/ZarvoCore"
LOGS = ".local/state/Logs/com.zarvo.Zarvo"
RUN = "exec /tool/remove_cert"

SEARCH = f'(ZCSSystemUtils) Deleting certs from system keychain by name: "{CERTIFICATE}"'
REMOVED = f'(main) Root cert "{CERTIFICATE}" removed from CA storage.'
NOT_REMOVED = f'(main main) Remove root cert "{CERTIFICATE}" from CA storage failured.'
FOLDER = f'(main) Delete ZarvoCore certificates cache directory "file://{CORE}/".'


def deletion(sha1, status=0):
    return f'(ZCSSystemUtils) Exec security delete cert "{sha1}" result: {status}'


def deleted(*names):
    return [f"(main) Successfully delete: file://{CORE}/{name}" for name in names]


@functools.cache
def certificate(name, serial):
    """A certificate's PEM text and its SHA-1."""
    pem = subprocess.run(
        ["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
         "-noenc", "-keyout", "/dev/null", "-subj", f"/CN={name}", "-set_serial", str(serial)],
        check=True, capture_output=True, text=True).stdout
    fingerprint = subprocess.run(["openssl", "x509", "-noout", "-fingerprint", "-sha1"], input=pem,
                                 check=True, capture_output=True, text=True).stdout
    return pem, fingerprint.split("=")[1].strip().replace(":", "")


OURS = functools.partial(certificate, CERTIFICATE)
OTHER = functools.partial(certificate, "Example Root CA", 9)


class Machine:
    """The throw-away folders that stand for a machine's while the tool runs."""

    def __init__(self, test, certificates=()):
        self.path = pathlib.Path(tempfile.mkdtemp())
        test.addCleanup(shutil.rmtree, self.path)
        self.keychain = self.path / "keychains/System.keychain"
        self.lib = self.path / "lib"
        self.core = self.lib / "com.zarvo.Zarvo/ZarvoCore"
        self.logs = self.path / "home" / LOGS
        for folder in (self.path / "home", self.core, self.keychain.parent):
            folder.mkdir(parents=True)
        self.keychain.write_text("".join(pem for pem, _ in certificates))

    def run(self, script=RUN):
        """Runs a shell script as root in the sandbox and returns its exit status."""
        result = subprocess.run([SANDBOX, self.path, TOOL, "/bin/sh", "-c", script],
                                stdin=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
        if result.returncode == 125:
            raise RuntimeError(result.stderr)
        return result.returncode

    def lines(self):
        """The log's lines, each as (time stamp, text)."""
        (log,) = self.logs.iterdir()
        return [tuple(line.split("  ", 1)) for line in log.read_text().splitlines()]

    def log(self):
        """The log's texts; what follows the folder's line, in no defined order, sorted."""
        texts = [text for _, text in self.lines()]
        start = texts.index(FOLDER) + 1 if FOLDER in texts else len(texts)
        return texts[:start] + sorted(texts[start:])

    def tree(self, *places):
        """What stands below the given places, or everywhere: kind, mode and contents by path."""
        found = {}
        for place in places or (self.path,):
            for path in [place, *place.rglob("*")]:
                status = path.lstat()
                content = path.read_bytes() if path.is_file() and not path.is_symlink() else None
                found[str(path)] = (status.st_mode, content)
        return found


class RemoveCert(unittest.TestCase):

    def standard_machine(self):
        machine = Machine(self, [OURS(1), OTHER(), OURS(2)])
        (machine.core / "CertCache/.index").mkdir(parents=True)
        (machine.core / "CertCache/.index/key").write_text("key")
        (machine.core / "state").write_text("state")
        (machine.core / ".hidden").write_text("keep")
        return machine

    STANDARD_ENTRIES = deleted("CertCache/", "state")

    def assert_cleaned(self, machine):
        self.assertEqual(machine.keychain.read_text(), OTHER()[0])
        self.assertEqual(os.listdir(machine.core), [".hidden"])

    def assert_standard_log(self, machine):
        self.assertEqual(machine.log(), [
            SEARCH, deletion(OURS(1)[1]), deletion(OURS(2)[1]), REMOVED, FOLDER,
            *self.STANDARD_ENTRIES])

    def test_without_root_nothing_is_done(self):
        machine = self.standard_machine()
        machine.run("true")  # the sandbox makes its mount point
        before = machine.tree()
        self.assertEqual(machine.run("exec unshare --user --map-user=65534 /tool/remove_cert"), 10)
        self.assertEqual(machine.tree(), before)

    def test_certificates_go_by_name(self):
        for case, certificates, locked, log in (
            ("empty keychain", [], [], [NOT_REMOVED]),
            ("no such certificate", [OTHER()], [], [NOT_REMOVED]),
            ("one", [OURS(1), OTHER()], [], [deletion(OURS(1)[1]), REMOVED]),
            ("two", [OURS(1), OTHER(), OURS(2)], [],
             [deletion(OURS(1)[1]), deletion(OURS(2)[1]), REMOVED]),
            ("first deletion fails", [OURS(1), OURS(2)], [OURS(1)],
             [deletion(OURS(1)[1], 161), deletion(OURS(2)[1]), REMOVED]),
            ("last deletion fails", [OURS(1), OURS(2)], [OURS(2)],
             [deletion(OURS(1)[1]), deletion(OURS(2)[1], 161), REMOVED]),
            ("every deletion fails", [OURS(1)], [OURS(1)],
             [deletion(OURS(1)[1], 161), NOT_REMOVED]),
        ):
            with self.subTest(case):
                machine = Machine(self, certificates)
                (machine.core / "state").touch()
                for _, sha1 in locked:
                    machine.keychain.with_name(f"System.keychain.locked-{sha1}").touch()
                self.assertEqual(machine.run(), 0)
                self.assertEqual(machine.log(), [SEARCH, *log, FOLDER, *deleted("state")])
                self.assertEqual(machine.keychain.read_text(),
                                 "".join(c[0] for c in certificates if c == OTHER() or c in locked))
                self.assertEqual(os.listdir(machine.core), [])

    def test_the_run_goes_on_without_keychain_or_certificate_tool(self):
        for case, breakage in (("keychain missing", "rm /Library/Keychains/System.keychain"),
                               ("tool missing", "rm /usr/bin/security"),
                               ("tool not executable", "chmod 644 /usr/bin/security")):
            with self.subTest(case):
                machine = self.standard_machine()
                self.assertEqual(machine.run(f"{breakage}; {RUN}"), 0)
                self.assertEqual(machine.log(),
                                 [SEARCH, NOT_REMOVED, FOLDER, *self.STANDARD_ENTRIES])

    def test_visible_entries_go_whole_and_hidden_ones_stay(self):
        machine = Machine(self)
        outside = machine.lib / "outside"
        outside.mkdir()
        (outside / "file").write_text("not ours")
        for folder in ("nested/.hidden/deeper", ".hidden folder", "empty"):
            (machine.core / folder).mkdir(parents=True)
        for file in ("nested/.hidden/deeper/file", ".hidden folder/file", "blank name", "grün",
                     "line\nbreak", "100%"):
            (machine.core / file).write_text("x")
        (machine.core / "nested/link").symlink_to("/var/lib/outside")
        (machine.core / "link").symlink_to("/var/lib/outside")
        (machine.core / "dangling").symlink_to("nowhere")
        os.mkfifo(machine.core / "fifo")
        kept = machine.tree(outside, machine.core / ".hidden folder")

        self.assertEqual(machine.run(), 0)
        self.assertEqual(machine.log()[3:], deleted(
            "100%25", "blank%20name", "dangling", "empty/", "fifo", "gr%C3%BCn", "link", "nested/"))
        # The pattern of all names asks for a name without a line break.
        self.assertEqual(sorted(os.listdir(machine.core)), [".hidden folder", "line\nbreak"])
        self.assertEqual(machine.tree(outside, machine.core / ".hidden folder"), kept)

    def test_an_entry_that_cannot_be_deleted_is_passed_over(self):
        machine = self.standard_machine()
        (machine.core / "busy").touch()
        self.assertEqual(machine.run(f"mount --bind /bin/sh {CORE}/busy; {RUN}"), 0)
        warning, *rest = machine.log()[5:]
        self.assertRegex(warning, fr"^\(ZCFFileUtils\) Error deleting file://{CORE}/busy: .")
        self.assertEqual(rest, self.STANDARD_ENTRIES)
        self.assertEqual(sorted(os.listdir(machine.core)), [".hidden", "busy"])

    def test_a_missing_folder_is_made(self):
        machine = Machine(self)
        machine.core.rmdir()
        machine.core.parent.rmdir()
        self.assertEqual(machine.run(), 0)
        self.assertEqual(machine.log(), [SEARCH, NOT_REMOVED, FOLDER])
        self.assertEqual(machine.core.stat().st_mode & 0o7777, 0o755)

    def test_a_folder_that_cannot_be_made_ends_the_run(self):
        root = r"productDataDirectoryForDomain:\) Cannot create application data directory: ."
        core = r"sharedZarvoCoreDirectory\) Cannot create ZarvoCore certificates cache directory: ."
        for case, breakage, status, error in (
            ("file instead of the core folder", f"rmdir {CORE}; touch {CORE}", 40, core),
            ("file instead of the product's folder",
             "cd /var/lib; rm -r com.zarvo.Zarvo; touch com.zarvo.Zarvo", 40, root),
            ("no folder for application support", "umount /var/lib; rmdir /var/lib; touch /var/lib",
             -signal.SIGABRT, root),
        ):
            with self.subTest(case):
                machine = Machine(self, [OURS(1)])
                self.assertEqual(machine.run(f"ulimit -c 0; {breakage}; {RUN}"), status)
                *before, last = machine.log()
                self.assertEqual(before, [SEARCH, deletion(OURS(1)[1]), REMOVED])
                self.assertRegex(last, r"^\(ZDLocations\[0x[0-9a-f]+\] " + error)

    def test_the_log_is_one_file_with_dated_lines_in_order(self):
        machine = self.standard_machine()
        start = int(time.time() * 1000)
        self.assertEqual(machine.run(), 0)
        end = int(time.time() * 1000)
        (log,) = machine.logs.iterdir()
        self.assertIn(log.name, {time.strftime("remove_cert %Y-%m-%d %H-%M.log",
                                               time.gmtime(at / 1000)) for at in (start, end)})
        self.assertEqual(log.stat().st_mode & 0o022, 0)
        self.assertTrue(log.read_bytes().endswith(b"\n"))
        stamps = []
        for stamp, _ in machine.lines():
            self.assertRegex(stamp, r"^\d{4}/\d\d/\d\d \d\d:\d\d:\d\d:\d{3}$")
            seconds = time.mktime(time.strptime(stamp[:-4], "%Y/%m/%d %H:%M:%S"))
            stamps.append(int(seconds) * 1000 + int(stamp[-3:]))
        self.assertEqual(stamps, sorted(stamps))
        self.assertLessEqual(start, stamps[0])
        self.assertLessEqual(stamps[-1], end)

    def test_a_second_run_appends_to_the_log(self):
        machine = self.standard_machine()
        self.assertEqual(machine.run(), 0)
        first = machine.lines()
        self.assertEqual(machine.run(), 0)
        self.assertEqual(machine.lines()[:len(first)], first)
        self.assertEqual([text for _, text in machine.lines()[len(first):]],
                         [SEARCH, NOT_REMOVED, FOLDER])

    def test_a_hostile_start_changes_nothing(self):
        traps = " ".join(
            f"{name}=/var/lib/trap" for name in
            "HOME PATH TMPDIR XDG_STATE_HOME XDG_DATA_HOME XDG_CONFIG_HOME ICU_DATA".split())
        environment = (f"env -i {traps} BASH_ENV=/var/lib/trap/security ENV=/var/lib/trap/security "
                       "TZ=Trap+12 LC_ALL=tr_TR.UTF-8 LANGUAGE=tr OPENSSL_CONF=/var/lib/trap/grep "
                       "SHELLOPTS=noexec 'BASH_FUNC_grep%%=() { : >/var/lib/trap/sprung; }' ")
        starts = {
            "descriptors closed": "exec 0<&- 1>&- 2>&-",
            "umask": "umask 0777",
            "children's end ignored": "trap '' CHLD",
            "signals ignored": "trap '' PIPE HUP TERM USR1",
            "working folder gone": "mkdir /tool/gone; cd /tool/gone; rmdir /tool/gone",
            "few descriptors": "ulimit -n 64",
        }
        runs = {name: f"{start}; {RUN}" for name, start in starts.items()}
        runs["environment"] = f"exec {environment} /tool/remove_cert"
        runs["arguments"] = f"{RUN} --help /var/lib/trap"
        runs["all at once"] = "; ".join(starts.values()) + f"; exec {environment} /tool/remove_cert"
        for case, script in runs.items():
            with self.subTest(case):
                machine = self.standard_machine()
                trap = machine.lib / "trap"
                trap.mkdir()
                for program in ("bash", "grep", "security"):
                    (trap / program).write_text("#!/bin/sh\n: >/var/lib/trap/sprung\n")
                    (trap / program).chmod(0o755)
                before = machine.tree(trap)
                hour = time.strftime("%Y/%m/%d %H"), time.strftime("%Y/%m/%d %H",
                                                                   time.localtime(time.time() + 60))
                self.assertEqual(machine.run(script), 0)
                self.assert_cleaned(machine)
                self.assert_standard_log(machine)
                self.assertIn(machine.lines()[0][0][:13], hour)
                self.assertEqual(machine.tree(trap), before)
                self.assertEqual(sorted(os.listdir(machine.lib)), ["com.zarvo.Zarvo", "trap"])
                (log,) = machine.logs.iterdir()
                self.assertEqual(log.stat().st_mode & 0o777, 0o644)

    def test_the_work_is_done_though_the_log_cannot_be_written(self):
        date = "date -u '+%Y-%m-%d %H-%M' -d"

        def instead(command):
            """Does it in place of the log, under both names that this may get."""
            return (f"mkdir -p ~/{LOGS}; cd ~/{LOGS}; "
                    f'for date in "$({date} now)" "$({date} 1min)"; '
                    f'do {command} "remove_cert $date.log"; done')

        for case, obstacle in (
            ("disk read-only", f"mkdir -p ~/{LOGS}; mount -t tmpfs -o ro tmpfs ~/{LOGS}"),
            ("disk full", f"mkdir -p ~/{LOGS}; mount -t tmpfs -o size=4k tmpfs ~/{LOGS}; "
                          f"head -c 4096 /dev/zero >~/{LOGS}/fill"),
            ("no files left", f"mkdir -p ~/{LOGS}; mount -t tmpfs -o nr_inodes=1 tmpfs ~/{LOGS}"),
            ("file instead of the folder", f"mkdir -p ~/{LOGS}/..; touch ~/{LOGS}"),
            ("link instead of the log", instead("ln -s /var/lib/victim")),
            ("dangling link instead of the log", instead("ln -s /var/lib/missing")),
            ("folder instead of the log", instead("mkdir")),
        ):
            with self.subTest(case):
                machine = self.standard_machine()
                (machine.lib / "victim").write_text("untouched")
                self.assertEqual(machine.run(f"{obstacle}; {RUN}"), 0)
                self.assert_cleaned(machine)
                self.assertEqual((machine.lib / "victim").read_text(), "untouched")
                self.assertEqual(sorted(os.listdir(machine.lib)), ["com.zarvo.Zarvo", "victim"])

    def test_a_disk_that_fills_up_keeps_the_lines_that_fit(self):
        machine = Machine(self)
        names = [f"entry {number:03}" for number in range(100)]
        for entry in names:
            (machine.core / entry).touch()
        self.assertEqual(machine.run(
            f"mkdir -p ~/{LOGS}; mount -t tmpfs -o size=4k tmpfs ~/{LOGS}; /tool/remove_cert; "
            f"status=$?; cp ~/{LOGS}/*.log /var/lib/log; exit $status"), 0)
        self.assertEqual(os.listdir(machine.core), [])
        whole = (machine.lib / "log").read_text().split("\n")[:-1]
        texts = [line.split("  ", 1)[1] for line in whole]
        self.assertEqual(texts[:3], [SEARCH, NOT_REMOVED, FOLDER])
        self.assertGreater(len(texts), 30)
        self.assertLessEqual(set(texts[3:]), set(deleted(*(n.replace(" ", "%20") for n in names))))


if __name__ == "__main__":
    os.environ.pop("TZ", None)
    time.tzset()
    if sys.argv[1:] == ["--list"]:
        print("\n".join(unittest.defaultTestLoader.getTestCaseNames(RemoveCert)))
    else:
        unittest.main()
