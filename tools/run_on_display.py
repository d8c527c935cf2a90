#!/usr/bin/env python3
"""Runs a Windows program to its end under Wine on a display of its own.

usage: run_on_display.py PROGRAM [ARGUMENT...]
"""
import subprocess
import sys

from desktop_session import WindowsSession


class Run(WindowsSession):
    def start(self):
        self.process = subprocess.Popen(self.program, env=self.environment)


def main():
    with Run(sys.argv[1], arguments=sys.argv[2:]) as session:
        return session.process.wait()


sys.exit(main())
