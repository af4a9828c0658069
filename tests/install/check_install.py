#!/usr/bin/env python3
"""Installs the built library into an empty folder and uses it from an outside project.

    check_install.py --cmake CMAKE --build BUILD --generator NAME --compiler CXX --flags FLAGS
                     --version X.Y.Z --libdir LIB --config CONFIG [--tool]

The project consumer/ is built and run twice, through the CMake package and through kel.pc, each
time after the installed tree was moved. FLAGS are the flags that the library was built with,
because a sanitizer affects the hosts too.
"""
import argparse
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent


def expect(condition, message):
    if not condition:
        sys.exit(f"failed: {message}")


def run(*command, **more):
    print("+", *command, flush=True)
    result = subprocess.run([str(part) for part in command], text=True, stdout=subprocess.PIPE,
                            **more)
    expect(result.returncode == 0, f"status {result.returncode}\n{result.stdout}")
    return result.stdout


def check_tree(prefix, arguments):
    """Checks that the installed files are exactly those that a host needs."""
    library = prefix / arguments.libdir
    major = arguments.version.split(".")[0]
    expected = {str(header.relative_to(ROOT)) for header in (ROOT / "include").rglob("*.h*")}
    for name in ["libkel.so", f"libkel.so.{major}", f"libkel.so.{arguments.version}",
                 "pkgconfig/kel.pc", "cmake/kel/kelConfig.cmake",
                 "cmake/kel/kelConfigVersion.cmake", "cmake/kel/kelTargets.cmake",
                 f"cmake/kel/kelTargets-{arguments.config.lower()}.cmake"]:
        expected.add(f"{arguments.libdir}/{name}")
    if arguments.tool:
        expected.add("bin/kel")
    texts = prefix / "share/doc/kel"
    expect((texts / "LICENSE").exists() and (texts / "docs/hosting.md").exists(), "no texts")
    found = {str(p.relative_to(prefix)) for p in prefix.rglob("*")
             if not p.is_dir() and texts not in p.parents}
    expect(found == expected, f"missing {sorted(expected - found)}, "
                              f"surplus {sorted(found - expected)}")
    soname = run("readelf", "-d", library / "libkel.so")
    expect(f"[libkel.so.{major}]" in soname, "the library has no SONAME of its major version")


def use_cmake_package(prefix, work, arguments):
    run(arguments.cmake, "-S", HERE / "consumer", "-B", work, "-G", arguments.generator,
        f"-DCMAKE_CXX_COMPILER={arguments.compiler}", f"-DCMAKE_CXX_FLAGS={arguments.flags}",
        f"-DCMAKE_PREFIX_PATH={prefix}")
    run(arguments.cmake, "--build", work)
    return run(work / "consumer")


def use_pkg_config(prefix, work, arguments):
    library = prefix / arguments.libdir
    environment = {**os.environ, "PKG_CONFIG_PATH": str(library / "pkgconfig")}
    version = run("pkg-config", "--modversion", "kel", env=environment).strip()
    expect(version == arguments.version, f"kel.pc says version {version}")
    flags = run("pkg-config", "--cflags", "--libs", "kel", env=environment).split()
    work.mkdir()
    compile_with = [arguments.compiler, "-std=c++17", *arguments.flags.split()]
    # A host that checks the types of objects links, because the headers hold everything for that.
    run(*compile_with, "-fsanitize=undefined", HERE / "consumer/main.cpp",
        "-o", work / "sanitized", *flags)
    run(*compile_with, HERE / "consumer/main.cpp", "-o", work / "consumer", *flags)
    return run(work / "consumer", env={**os.environ, "LD_LIBRARY_PATH": str(library)})


def main():
    parser = argparse.ArgumentParser()
    for name in ["cmake", "build", "generator", "compiler", "flags", "version", "libdir", "config"]:
        parser.add_argument(f"--{name}", required=True)
    parser.add_argument("--tool", action="store_true")
    arguments = parser.parse_args()

    with tempfile.TemporaryDirectory() as scratch:
        scratch = pathlib.Path(scratch)
        run(arguments.cmake, "--install", arguments.build, "--prefix", scratch / "first")
        prefix = scratch / "moved here"
        shutil.move(scratch / "first", prefix)
        check_tree(prefix, arguments)
        works = f"kel {arguments.version} works\n"
        answer = use_cmake_package(prefix, scratch / "by_cmake", arguments)
        expect(answer == works, f"through the CMake package: {answer}")
        plain = scratch / "plain"
        shutil.move(prefix, plain)
        answer = use_pkg_config(plain, scratch / "by_pkg_config", arguments)
        expect(answer == works, f"through kel.pc: {answer}")
        if arguments.tool:
            answer = run(plain / "bin/kel", "--version")
            expect(arguments.version in answer, f"the installed tool says {answer}")
    print("The installed copy works.")


if __name__ == "__main__":
    main()
