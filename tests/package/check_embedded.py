#!/usr/bin/env python3
"""Builds KEL from its sources inside a project of somebody else, shared and static.

    check_embedded.py --cmake CMAKE --generator NAME --compiler CXX --version X.Y.Z
                      [--launcher PROGRAM]

The project embedded/ takes the sources in through add_subdirectory and through FetchContent. The
library is compiled once: all ways build it in the same folder from the same objects. At last the
static library is installed, and used through the CMake package and through kel.pc.
"""
import argparse
import os
import pathlib
import tempfile

from support import ROOT, expect, run

PROJECT = ROOT / "tests/package/embedded"
CONSUMER = ROOT / "tests/install/consumer"


def check_program(program, shared, options, **more):
    """Checks that a host works, and whether it needs the shared library."""
    output = run(program, **more)
    expect(output == f"kel {options.version} works\n", f"the host says:\n{output}")
    expect(("libkel.so" in run("readelf", "-d", program)) == shared,
           f"{program} {'does not need' if shared else 'needs'} libkel.so")


def build(build_folder, source, options, *settings):
    run(options.cmake, "-S", source, "-B", build_folder, "-G", options.generator,
        f"-DCMAKE_CXX_COMPILER={options.compiler}",
        f"-DCMAKE_CXX_COMPILER_LAUNCHER={options.launcher}", *settings)
    run(options.cmake, "--build", build_folder)


def check_sources(build_folder, options):
    """Builds the project through both ways, with the shared and with the static library."""
    ways = {"FetchContent": f"-DFETCHCONTENT_SOURCE_DIR_KEL={ROOT}",
            "add_subdirectory": f"-DKEL_SOURCE={ROOT}"}
    for way, shared, setting in [("FetchContent", True, "-UBUILD_SHARED_LIBS"),
                                 ("add_subdirectory", True, "-DKEL_BUILD_SHARED=ON"),
                                 ("add_subdirectory", False, "-DKEL_BUILD_SHARED=OFF"),
                                 ("FetchContent", False, "-DBUILD_SHARED_LIBS=OFF")]:
        build(build_folder, PROJECT, options, "-UKEL_BUILD_SHARED", setting,
              f"-DKEL_WAY={way}", ways[way], f"-DKEL_HOST={CONSUMER / 'main.cpp'}")
        check_program(build_folder / "host", shared, options)
        expect(not (build_folder / "_deps/kel-build/bin").exists(), "more than the library is built")


def check_installed_static(build_folder, prefix, scratch, options):
    run(options.cmake, "--install", build_folder, "--prefix", prefix)
    expect(not list(prefix.rglob("*.so*")), "the shared library is installed too")
    archive, = prefix.rglob("libkel.a")
    build(scratch / "by_cmake", CONSUMER, options, f"-DCMAKE_PREFIX_PATH={prefix}")
    check_program(scratch / "by_cmake/consumer", False, options)
    environment = {**os.environ, "PKG_CONFIG_PATH": str(archive.parent / "pkgconfig")}
    flags = run("pkg-config", "--cflags", "--libs", "kel", env=environment).split()
    expect("-DKEL_STATIC" in flags, f"kel.pc does not define KEL_STATIC: {flags}")
    run(options.compiler, "-std=c++17", CONSUMER / "main.cpp", "-o", scratch / "by_pkg_config",
        *flags)
    check_program(scratch / "by_pkg_config", False, options)


def main():
    parser = argparse.ArgumentParser()
    for name in ["cmake", "generator", "compiler", "version"]:
        parser.add_argument(f"--{name}", required=True)
    parser.add_argument("--launcher", default="")
    options = parser.parse_args()

    with tempfile.TemporaryDirectory(prefix="kel-embedded-") as scratch:
        scratch = pathlib.Path(scratch)
        check_sources(scratch / "build", options)
        check_installed_static(scratch / "build", scratch / "prefix", scratch, options)
    print("The sources work inside another project.")


if __name__ == "__main__":
    main()
