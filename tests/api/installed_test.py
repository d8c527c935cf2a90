#!/usr/bin/env python3
"""libkerno as it is installed: the functions that it shows, and programs that are built with it, below
a prefix with a name that is not plain.

usage: installed_test.py KERNO BUILD SANITIZED (ON or OFF)
"""
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest

KERNO, BUILD, SANITIZED = sys.argv[1:4]
ROOT = pathlib.Path(__file__).resolve().parents[2]
HEADER = (ROOT / "src/api/kerno.h").read_text()
# The functions of released libraries, which programs call: this list only grows.
RELEASED = {"KERNO_1": """
    kerno_faces kerno_facts kerno_formats kerno_free kerno_layer kerno_make kerno_message kerno_new
    kerno_options kerno_path kerno_points kerno_segments kerno_set kerno_set_text kerno_stroke_fonts
    kerno_unset kerno_version kerno_warning kerno_write""".split()}
FLAGS = ["-fsanitize=address,undefined"] if SANITIZED == "ON" else []


def run(words, **more):
    done = subprocess.run([str(word) for word in words], capture_output=True, text=True, **more)
    if done.returncode != 0:
        raise AssertionError(f"{words}\n{done.stdout}{done.stderr}")
    return done.stdout


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="kerno "))
        cls.addClassCleanup(shutil.rmtree, cls.folder, ignore_errors=True)
        cls.prefix = cls.folder / "切 文字"
        for component in ("lib", "dev", "python"):
            run(["cmake", "--install", BUILD, "--component", component, "--prefix", cls.prefix])
        cls.library = next(cls.prefix.rglob("libkerno.so.1"))
        cls.lib = cls.library.parent
        cls.wanted = cls.folder / "wanted.dxf"
        os.environ["SOURCE_DATE_EPOCH"] = "1700000000"
        run([KERNO, "cut", "Open", "--face", "DejaVu Sans", "--cap-height", "40mm", "-o", cls.wanted])

    def package(self, *words):
        """For a shell: each byte that is not plain stands behind a backslash."""
        found = subprocess.run(["pkg-config", *words, "kerno"], check=True, capture_output=True,
                               env={**os.environ, "PKG_CONFIG_PATH": str(self.lib / "pkgconfig")})
        return [os.fsdecode(word.encode("latin-1")) for word in shlex.split(found.stdout.decode("latin-1"))]

    def check_program(self, program, env=None):
        made = self.folder / "made.dxf"
        made.unlink(missing_ok=True)
        out = run([program, made] if isinstance(program, pathlib.Path) else [*program, made],
                  env={**os.environ, **(env or {})})
        self.assertRegex(out, r"\d\.\d{3} x \d+\.\d{3} mm")
        self.assertEqual(self.wanted.read_bytes(), made.read_bytes())

    def links(self, program):
        return re.findall(r"NEEDED\s+(\S+)", run(["objdump", "-p", program]))

    def test_what_is_installed_is_this_alone(self):
        names = sorted(str(path.relative_to(self.lib)) for path in self.lib.rglob("*") if not path.is_dir())
        version = run([KERNO, "--version"]).split()[1]
        self.assertEqual([version], self.package("--modversion"))
        cmake = [name for name in names if re.fullmatch(r"cmake/Kerno/Kerno\w*Targets(-\w+)?\.cmake", name)]
        self.assertEqual(4, len(cmake))
        self.assertEqual(sorted(["libkerno.a", "libkerno.so", "libkerno.so.1", f"libkerno.so.{version}",
                                 "pkgconfig/kerno.pc", "cmake/Kerno/KernoConfig.cmake",
                                 "cmake/Kerno/KernoConfigVersion.cmake", *cmake,
                                 *(f"python3/dist-packages/kerno/{name}"
                                   for name in ("__init__.py", "_library.py", "py.typed"))]), names)
        others = [path for path in self.prefix.rglob("*") if path.is_file() and self.lib not in path.parents]
        self.assertEqual([self.prefix / "include/kerno.h"], others)
        alone = {**os.environ, "PKG_CONFIG_LIBDIR": str(self.lib / "pkgconfig"), "PKG_CONFIG_PATH": ""}
        found = subprocess.run(["pkg-config", "--cflags", "kerno"], check=True, capture_output=True, env=alone)
        self.assertIn(b"-I", found.stdout)
        self.assertIn(" libkerno.so.1\n", run(["objdump", "-p", self.library]))
        text = (self.lib / "pkgconfig/kerno.pc").read_text() + "".join(
            path.read_text() for path in (self.lib / "cmake/Kerno").iterdir())
        for here in (str(ROOT), BUILD):
            self.assertNotIn(here, text)

    def test_the_functions_that_are_shown_are_those_of_the_header_and_the_list(self):
        listed = re.findall(r"^    (\w+);", (ROOT / "src/api/kerno.map").read_text(), re.M)
        declared = re.findall(r"^KERNO_API .*?(\w+)\(", HEADER, re.M)
        shown = [line.split() for line in run(["nm", "-D", "--defined-only", self.library]).splitlines()]
        functions = [name for *_, kind, name in shown if kind != "A"]
        self.assertEqual(listed, sorted(declared))
        released = sorted(f"{name}@@{version}" for version, names in RELEASED.items() for name in names)
        self.assertEqual(released, sorted(functions))
        self.assertEqual(sorted(RELEASED), sorted(name.split("@")[0] for *_, kind, name in shown if kind == "A"))

    def test_types_are_those_that_programs_were_built_with(self):
        def compiles(header, standard="-std=c11", source=ROOT / "tests/api/abi.c"):
            (self.folder / "kerno.h").write_text(header)
            return subprocess.run(["cc", standard, "-Wall", "-Wextra", "-Wstrict-prototypes", "-pedantic-errors", "-Werror",
                                   "-fsyntax-only", "-I", self.folder, str(source)], capture_output=True).returncode == 0
        self.assertTrue(compiles(HEADER))
        self.assertTrue(compiles(HEADER, "-std=c99", ROOT / "examples/c/sign.c"))
        for before, after in (("int kerno_free(KernoSign", "void kerno_free(KernoSign"), ("double tolerance", "float tolerance"),
                              ("KERNO_NO_FACE = 3", "KERNO_NO_FACE = 5"), ("  double bulge;", "  float bulge;"),
                              ("int32_t closed;", "int64_t closed;"), ("uint64_t KernoSign", "uint32_t KernoSign"),
                              ("lines, arcs", "arcs, lines"), ("KernoPoint start, end", "KernoPoint end, start")):
            self.assertIn(before, HEADER)
            self.assertFalse(compiles(HEADER.replace(before, after, 1)), after)
        program = self.folder / "abi"
        run(["cc", "-std=c11", *FLAGS, ROOT / "tests/api/abi.c", *self.package("--cflags", "--libs"), "-o", program])
        run([program], env={**os.environ, "LD_LIBRARY_PATH": str(self.lib)})

    def test_the_c_example_by_pkg_config(self):
        source, program = ROOT / "examples/c/sign.c", self.folder / "sign"
        run(["cc", "-std=c99", *FLAGS, source, *self.package("--cflags", "--libs"), "-o", program])
        self.assertIn("libkerno.so.1", self.links(program))
        self.check_program(program, {"LD_LIBRARY_PATH": str(self.lib)})
        static = [word.replace("-lkerno", "-l:libkerno.a") for word in self.package("--static", "--cflags", "--libs")]
        run(["cc", "-std=c99", *FLAGS, source, *static, "-o", program])
        self.assertNotIn("libkerno.so.1", self.links(program))
        self.check_program(program)

    def test_the_c_example_by_cmake(self):
        build = self.folder / "build"
        run(["cmake", "-S", ROOT / "examples/c", "-B", build, f"-DCMAKE_PREFIX_PATH={self.prefix}",
             f"-DCMAKE_C_FLAGS={' '.join(FLAGS)}", f"-DCMAKE_CXX_FLAGS={' '.join(FLAGS)}"])
        run(["cmake", "--build", build])
        self.check_program(build / "sign")
        self.check_program(build / "sign_static")
        self.assertNotIn("libkerno.so.1", self.links(build / "sign_static"))

    def test_the_python_example_finds_the_library_that_is_installed(self):
        env = {"PYTHONPATH": str(next(self.prefix.rglob("dist-packages"))), "KERNO_LIBRARY": ""}
        if FLAGS:
            runtime = run(["cc", "-print-file-name=libasan.so"]).strip()
            env.update(LD_PRELOAD=runtime, ASAN_OPTIONS="detect_leaks=0")  # the interpreter's own
        self.check_program([sys.executable, "-B", ROOT / "examples/python/sign.py"], env)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
