"""How the tests start kerno: as it is, or, the Windows one, under Wine."""
import os
import pathlib

RUNNER = pathlib.Path(__file__).resolve().parents[2] / "tools" / "run_windows.sh"


def is_windows(program):
    return program.endswith(".exe")


def command(program):
    program = os.path.abspath(program)
    return [str(RUNNER), program] if is_windows(program) else [program]
