# SPDX-License-Identifier: Apache-2.0
"""The alerts and the dashboard for Prometheus: promtool of a real Prometheus reads them, and the
daemon has every figure that they use."""
import json
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

from debian import unpacked
from milter import MilterTest

PROMTOOL = unpacked("prometheus") / "usr/bin/promtool"
MONITORING = pathlib.Path(os.environ["QV_SOURCE"]) / "data/monitoring"
ALERTS = MONITORING / "qvmilter-alerts.yml"
DASHBOARD = MONITORING / "qvmilter-dashboard.json"


def promtool(*words, **options):
    return subprocess.run([PROMTOOL, *words], capture_output=True, text=True, **options)


def expressions():
    """All expressions of the dashboard and of the alerts."""
    panels = json.loads(DASHBOARD.read_text())["panels"]
    found = [target["expr"] for panel in panels for target in panel["targets"]]
    return found + re.findall(r"^ *expr: (.*)$", ALERTS.read_text(), re.M)


def metric_lines(page):
    """Names with their labels, of each line that is a value."""
    return re.findall(r"^(\w+)((?:\{.*\})?) \S+$", page, re.M)


class Alerts(unittest.TestCase):
    def test_prometheus_takes_them(self):
        done = promtool("check", "rules", str(ALERTS))
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertIn("5 rules found", done.stdout)

    def test_each_is_raised_for_its_problem_and_no_other(self):
        with tempfile.TemporaryDirectory() as folder:
            shutil.copy(ALERTS, folder)
            shutil.copy(pathlib.Path(__file__).parent / "alerts.yml", folder)
            done = promtool("test", "rules", "alerts.yml", cwd=folder)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)


class Figures(MilterTest):
    def page(self):
        """The metrics of a daemon that has judged a message."""
        zone = tempfile.NamedTemporaryFile()
        self.addCleanup(zone.close)
        daemon = self.daemon(shared=f'dns-data = "{zone.name}"').start()
        self.play(daemon, """
            postfix_client("mail.example.org", "192.0.2.10", "mail.example.org")
            message()""")
        return daemon.get("/metrics")[1]

    def test_the_daemon_has_all_that_dashboard_and_alerts_use(self):
        lines = metric_lines(self.page())
        known = {name for name, _ in lines}
        labels = set(re.findall(r"[{,](\w+)=", "".join(labels for _, labels in lines)))
        used = expressions()
        self.assertEqual(len(used), 15)
        for expression in used:
            with self.subTest(expression):
                self.assertLessEqual(set(re.findall(r"qvmilter_\w+", expression)), known)
                grouped = ",".join(re.findall(r"by \(([\w, ]+)\)", expression))
                self.assertLessEqual(set(re.findall(r"\w+", grouped)) - {"instance"}, labels)

    def test_what_alerts_watch_grow_is_there_from_the_start(self):
        page = self.daemon().start().get("/metrics")[1]
        for line in ('qvmilter_reloads_total{result="refused"} 0',
                     'qvmilter_failures_total{class="dns_failure"} 0'):
            self.assertIn("\n" + line + "\n", page)

    def test_prometheus_reads_them(self):
        done = promtool("check", "metrics", input=self.page())
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)


if __name__ == "__main__":
    unittest.main()
