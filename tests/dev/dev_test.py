# SPDX-License-Identifier: Apache-2.0
"""dev_test.py SOURCE: ./dev on a checkout of its shape that builds in a moment, with a package source
of its own. git, cmake, ninja and apt-get are the real ones; what apt-get would install goes nowhere."""
import hashlib
import os
import pathlib
import pty
import shutil
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(sys.argv.pop(1))
NOBODY = 65534
PROJECT = """cmake_minimum_required(VERSION 3.25)
project(Small LANGUAGES NONE)
option(QV_BUILD_TESTS "As in the project" ON)
file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
add_custom_command(OUTPUT made
    COMMAND "${CMAKE_COMMAND}" -E copy "${CMAKE_SOURCE_DIR}/program.sh" bin/qvscan
    COMMAND "${CMAKE_COMMAND}" -E touch made
    DEPENDS "${CMAKE_SOURCE_DIR}/program.sh")
add_custom_target(qvscan ALL DEPENDS made)
add_custom_target(qv_default_rules ALL)
"""
# Says what it was given, and finds spam.
QVSCAN = '#!/bin/sh\necho "$@"\nexit 1\n'
APT = """Dir "{folder}";
Dir::State::status "{folder}/status";
Dir::Etc::trusted "/dev/null";
Dir::Etc::main "/dev/null";
Dir::Etc::parts "{folder}/none";
Dir::Bin::dpkg "{folder}/dpkg";
Dir::Bin::methods "/usr/lib/apt/methods";
Dir::Bin::apt-key "/bin/true";
APT::Sandbox::User "";
"""
# apt-get asks dpkg what it can do; of an installation there is a record.
DPKG = """#!/bin/sh
case "$*" in
*--unpack* | *--configure*) echo "$@" >>{folder}/installed ;;
*--print-foreign-architectures*) ;;
esac
"""


class Checkout:
    """A folder with ./dev and a project of the same shape."""

    def __init__(self, folder, packages="bash coreutils | build, test, lint | installed everywhere\n"):
        self.folder = folder / "checkout"
        (self.folder / "cmake").mkdir(parents=True)
        (self.folder / "examples").mkdir()
        shutil.copy(SOURCE / "dev", self.folder)
        shutil.copy(SOURCE / "CMakePresets.json", self.folder)
        self.write("cmake/packages.txt", packages)
        self.write("CMakeLists.txt", PROJECT)
        self.write("program.sh", QVSCAN).chmod(0o755)
        self.write("examples/one.eml", "")

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        return path

    def dev(self, *arguments, path=None, user=None, **environment):
        return subprocess.run([path or self.folder / "dev", *arguments], capture_output=True, text=True,
                              user=user, env={**os.environ, **environment}, timeout=300)


class Newcomer(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.folder.chmod(0o755)

    def checkout(self, *packages):
        return Checkout(self.folder, *packages)

    def check_last_line(self, done, *texts):
        self.assertNotEqual(done.returncode, 0)
        last = done.stderr.splitlines()[-1]
        for text in ("dev: ", *texts):
            self.assertIn(text, last, done.stderr)


class Scan(Newcomer):
    def test_the_demonstration_is_no_failure_and_arguments_keep_the_status(self):
        checkout = self.checkout()
        self.assertEqual(checkout.dev("scan").returncode, 0)
        self.assertEqual(checkout.dev("scan", "my.eml").returncode, 1)
        checkout.write("program.sh", QVSCAN.replace("exit 1", "exit 78")).chmod(0o755)
        self.assertEqual(checkout.dev("scan").returncode, 78)

    def test_a_first_build_says_its_cost_and_its_log_and_later_ones_are_silent(self):
        checkout = self.checkout()
        first = checkout.dev("scan")
        log = checkout.folder / "build/release/build.log"
        self.assertRegex(first.stderr, rf"\Adev: the first build here: \d+ steps on .*; log: {log}\n\Z")
        self.assertIn("Generating made", log.read_text())
        self.assertEqual(checkout.dev("scan").stderr, "")

    def test_a_terminal_has_one_line_of_progress(self):
        checkout = self.checkout()
        shown, terminal = pty.openpty()
        done = subprocess.run([checkout.folder / "dev", "scan"], stderr=terminal,
                              stdout=subprocess.DEVNULL, timeout=300)
        os.close(terminal)
        text = os.read(shown, 100000).decode()
        os.close(shown)
        self.assertEqual(done.returncode, 0)
        self.assertRegex(text, r"\rdev: step 1 of \d+ \r")
        self.assertEqual(text.count("\n"), 1, text) # the first line, with the cost

    def test_a_failed_build_shows_why_and_ends_in_our_words(self):
        checkout = self.checkout()
        checkout.write("CMakeLists.txt", PROJECT.replace("-E copy", "-E cat nothing"))
        done = checkout.dev("scan")
        self.assertIn("FAILED: made", done.stderr)
        self.check_last_line(done, "the build failed", "build/release/build.log")


class Folder(Newcomer):
    def test_a_copied_checkout_starts_afresh(self):
        checkout = self.checkout()
        checkout.dev("scan")
        copy = self.folder / "copy"
        shutil.copytree(checkout.folder, copy)
        (copy / "program.sh").write_text(QVSCAN.replace("echo", "echo the copy"))
        done = checkout.dev("scan", path=copy / "dev")
        self.assertIn("starting afresh", done.stderr)
        self.assertIn("the copy", done.stdout)
        self.assertIn(f"--root {copy}/build/", done.stdout)
        again = checkout.dev("scan", path=copy / "dev")
        self.assertEqual((again.stderr, again.stdout), ("", done.stdout))

    def test_a_link_leads_to_the_checkout(self):
        checkout = self.checkout()
        elsewhere = self.folder / "elsewhere"
        elsewhere.mkdir()
        (elsewhere / "dev").symlink_to(checkout.folder / "dev")
        done = checkout.dev("scan", path=elsewhere / "dev")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn(f"--root {checkout.folder}/build/release/", done.stdout)

    def test_without_a_repository_the_commands_that_need_it_say_so_before_anything_else(self):
        checkout = self.checkout("no-such-package | build, test, lint | -\n")
        for command in ("learn", "format", "lint"):
            with self.subTest(command):
                done = checkout.dev(command, str(self.folder))
                self.check_last_line(done, command, "needs git")
                self.assertEqual(len(done.stderr.splitlines()), 1)

    @unittest.skipIf(os.geteuid() != 0, "needs root")
    def test_root_leaves_no_files_in_the_checkout_of_somebody_else(self):
        checkout = self.checkout()
        checkout.dev("scan") # what root built before is no obstacle
        checkout.write("lint/all", "#!/bin/sh\nid -u >build/user\n").chmod(0o755)
        subprocess.run(["git", "init", "-q", checkout.folder], check=True)
        for path in (checkout.folder, *checkout.folder.rglob("*")):
            if "build" not in path.parts:
                os.lchown(path, NOBODY, NOBODY)
        done = subprocess.run([checkout.folder / "dev", "lint"], cwd=checkout.folder,
                              capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual((checkout.folder / "build/user").read_text().strip(), str(NOBODY))
        self.assertEqual([path for path in checkout.folder.rglob("*")
                          if path.lstat().st_uid != NOBODY], [])


class Fuzz(Newcomer):
    def test_what_is_no_number_of_seconds_starts_nothing(self):
        self.check_last_line(self.checkout().dev("fuzz", "--help"), "--help", "SECONDS")
        self.assertFalse((self.folder / "checkout/build").exists())


class Packages(Newcomer):
    """One package is missing, which a package source of the test's own has."""

    def setUp(self):
        super().setUp()
        self.apt = self.folder / "apt"
        for name in ("etc/apt", "none", "source/DEBIAN", "var/cache/apt/archives/partial",
                     "var/lib/apt/lists/partial", "var/log/apt"):
            (self.apt / name).mkdir(parents=True)
        (self.apt / "status").touch()
        (self.apt / "dpkg").write_text(DPKG.format(folder=self.apt))
        (self.apt / "dpkg").chmod(0o755)
        (self.apt / "apt.conf").write_text(APT.format(folder=self.apt))
        self.tools = self.folder / "tools"
        self.tools.mkdir()
        (self.tools / "sudo").write_text('#!/bin/sh\nexec "$@"\n')
        (self.tools / "sudo").chmod(0o755)
        self.missing = self.checkout("bash qv-small-thing | build | what is missing\n")

    def add_source(self):
        """A repository with the package."""
        (self.apt / "source/DEBIAN/control").write_text(
            "Package: qv-small-thing\nVersion: 1\nArchitecture: all\nMaintainer: nobody <n@example.org>\n"
            "Description: nothing\n")
        subprocess.run(["dpkg-deb", "-b", self.apt / "source", self.apt / "qv-small-thing.deb"],
                       check=True, capture_output=True)
        package = (self.apt / "qv-small-thing.deb").read_bytes()
        (self.apt / "Packages").write_text(
            (self.apt / "source/DEBIAN/control").read_text()
            + f"Filename: ./qv-small-thing.deb\nSize: {len(package)}\n"
            f"SHA256: {hashlib.sha256(package).hexdigest()}\n")
        self.add_line(f"deb [trusted=yes] file:{self.apt} ./")

    def add_line(self, line):
        with open(self.apt / "etc/apt/sources.list", "a") as sources:
            sources.write(line + "\n")

    def scan(self, **environment):
        return self.missing.dev("scan", APT_CONFIG=str(self.apt / "apt.conf"),
                                PATH=f"{self.tools}:{os.environ['PATH']}", **environment)

    def test_one_broken_source_does_not_stop_the_others(self):
        self.add_source()
        self.add_line("deb [trusted=yes] file:/nonexistent/quorvane ./")
        done = self.scan()
        log = (self.missing.folder / "build/packages.log").read_text()
        self.assertEqual(done.returncode, 0, done.stderr + log)
        self.assertIn("dev: installing qv-small-thing and what they need (packages: 1, ", done.stderr)
        self.assertIn("qv-small-thing", (self.apt / "installed").read_text())

    def test_lists_that_are_here_are_enough(self):
        self.add_source()
        self.assertEqual(self.scan().returncode, 0)
        fetched = (self.missing.folder / "build/packages.log").read_text()
        self.assertIn("Packages", fetched) # the first time they are
        (self.apt / "installed").unlink()
        self.assertEqual(self.scan().returncode, 0)
        again = (self.missing.folder / "build/packages.log").read_text()
        self.assertNotRegex(again, "(?m)^(Get|Hit|Ign|Err):.*Packages")
        self.assertIn("qv-small-thing", (self.apt / "installed").read_text())

    def test_without_a_source_the_last_line_says_what_to_do(self):
        self.check_last_line(self.scan(), "apt-get install", "qv-small-thing", "network")

    def test_without_root_and_sudo_the_last_line_says_what_to_do(self):
        os.unlink(self.tools / "sudo")
        for name in ("bash", "cat", "comm", "dirname", "dpkg-query", "env", "id", "nproc", "readlink",
                     "sed", "sort"):
            (self.tools / name).symlink_to(shutil.which(name))
        done = self.missing.dev("scan", PATH=str(self.tools),
                                user=NOBODY if os.geteuid() == 0 else None)
        self.check_last_line(done, "no sudo", "as root: apt-get install", "qv-small-thing")


if __name__ == "__main__":
    unittest.main()
