#!/usr/bin/env python3
"""Makes the archives, unpacks them elsewhere, and builds and runs a host against the contents.

    check_package.py --build BUILD --cmake CMAKE --cpack CPACK --generator NAME --compiler CXX
                     --version X.Y.Z [--toolchain FILE] [--emulator PROGRAM]

Without --toolchain the archive is the one of Linux. With it the archive is the one of Windows: its
host is built with the tool chain and run by the emulator. It holds the run-time libraries of the
tool chain's width.
"""
import argparse
import os
import pathlib
import shutil
import sys
import tempfile

from support import ROOT, expect, expect_equal, expect_links, files, headers, run

HOST = ROOT / "packaging/windows/host"
OUTPUT = ["settings: 1", "settings: 2", "read back alike",
            "refused: KEL_Struct_Impl. Cannot get variable - unknown variable name."]
SAVED = '{\n\tdevice = "Front speakers"\n\tvolume = 7\n}\n'


def expect_files(folder, *patterns):
    for pattern in patterns:
        expect(list(folder.glob(pattern)), f"{folder.name} holds no {pattern}")


def expect_sources(prefix, texts):
    """Checks that the archive contains all headers, and examples of both ways to use them."""
    expect_equal({name for name in files(prefix) if name.startswith("include/")}, headers(),
                 "headers")
    used = "".join(path.read_text(encoding="utf-8") for path in texts.glob("examples/*/main.cpp"))
    for header in ("kel.h", "kel.hpp"):
        expect(f"#include <kel/{header}>" in used, f"no example uses {header}")


def only(folder, pattern):
    found = [path for path in folder.glob(pattern) if not path.name.endswith(".sha256")]
    expect(len(found) == 1, f"{pattern}: {len(found)} files instead of one")
    return found[0]


def check_host(program, folder, emulator):
    """Runs the host inside the folder and checks its output and the files that it saves."""
    output = run(*emulator, program, cwd=folder)
    expect(output.splitlines() == OUTPUT, f"the host says:\n{output}")
    saved = folder / "r\u00e9glages.kel"
    expect(saved.exists(), f"no file of that name: {[path.name for path in folder.iterdir()]}")
    text = saved.read_bytes().decode("ascii").replace("\r\n", "\n")
    expect(text == SAVED, f"the host saved:\n{text}")
    saved.unlink()


def build_host(prefix, work, options):
    """Builds the host through the CMake package under the prefix."""
    # A tool chain for another system searches only its own packages, so it gets the folder here.
    more = [f"-DCMAKE_TOOLCHAIN_FILE={options.toolchain}",
            f"-Dkel_DIR={prefix / 'lib/cmake/kel'}"] if options.toolchain else []
    run(options.cmake, "-S", HOST, "-B", work, "-G", options.generator, *more,
        f"-DCMAKE_CXX_COMPILER={options.compiler}", "-DCMAKE_BUILD_TYPE=Release",
        f"-DCMAKE_PREFIX_PATH={prefix}")
    run(options.cmake, "--build", work)


def check_archive(packages, scratch, options):
    archive = only(packages, "*.tar.gz")
    run("tar", "xzf", archive, "-C", scratch)
    prefix = scratch / archive.name.removesuffix(".tar.gz")
    expect_files(prefix, "bin/kel", "lib/libkel.so.*", "include/kel/kel.h", "lib/pkgconfig/kel.pc",
                 "lib/cmake/kel/kelConfig.cmake", "share/doc/kel/README.md",
                 "share/doc/kel/docs/hosting.md", "share/doc/kel/LICENSE",
                 "share/doc/kel/licenses/CLI11.txt", "share/doc/kel/licenses/nlohmann-json.txt")
    expect_links(prefix / "share/doc/kel")
    expect_sources(prefix, prefix / "share/doc/kel")
    expect(not list(packages.glob("*.deb")), "CPack makes a Debian package")
    build_host(prefix, scratch / "from_archive", options)
    check_host(scratch / "from_archive/host", scratch, [])
    expect(options.version in run(prefix / "bin/kel", "--version"), "the tool is of another version")


def check_windows_archive(packages, scratch, options):
    archive = only(packages, "*.zip")
    shutil.unpack_archive(archive, scratch)
    prefix = scratch / archive.stem
    is_wide = run(options.compiler, "-dumpmachine").startswith("x86_64")
    expect(prefix.name == f"kel-{options.version}-win{64 if is_wide else 32}",
           f"the archive is called {prefix.name}")
    libraries = ["KEL.dll", f"libgcc_s_{'seh' if is_wide else 'dw2'}-1.dll", "libwinpthread-1.dll"]
    expect_equal({path.name for path in (prefix / "bin").glob("*.dll")}, set(libraries), "libraries")
    text = (prefix / "README.md").read_text(encoding="utf-8")
    expect(f"finds `{libraries[0]}`, `{libraries[1]}` and `{libraries[2]}`" in text and "@" not in text,
           "README.md names other libraries")
    expect_files(prefix, "bin/kel.exe", "lib/libKEL.dll.a", "include/kel/kel.h", "lib/cmake/kel/kelConfig.cmake",
                 "host/main.cpp", "docs/abi.md", "LICENSE", "licenses/gcc-runtime.txt",
                 "licenses/GPL-3.txt", "licenses/mingw-w64.txt", "licenses/CLI11.txt",
                 "licenses/nlohmann-json.txt")
    expect(all(path.read_bytes() == (prefix / "host" / path.name).read_bytes()
               for path in HOST.iterdir()), "the archive holds another host")
    expect_links(prefix)
    expect_sources(prefix, prefix)
    build_host(prefix, scratch / "by_cmake", options)
    shutil.copytree(prefix / "bin", scratch / "plain")
    for source, program in [("host/main.cpp", "host.exe"),
                            ("examples/settings/main.cpp", "settings.exe")]:
        run(options.compiler, "-std=c++17", "-Wall", "-Wextra", "-Werror", f"-I{prefix / 'include'}",
            prefix / source, "-o", scratch / "plain" / program, prefix / "lib/libKEL.dll.a",
            "-static-libstdc++", "-shared-libgcc")
    for library in (prefix / "bin").glob("*.dll"):
        shutil.copy(library, scratch / "by_cmake")
    emulator = [options.emulator]
    check_host(scratch / "by_cmake/host.exe", scratch, emulator)
    check_host(scratch / "plain/host.exe", scratch, emulator)
    # A host that uses kel.hpp.
    run(sys.executable, "-B", ROOT / "tests/examples/check_example.py", scratch / "plain/settings.exe",
        prefix / "examples/settings", env={**os.environ, "KEL_LAUNCHER": options.emulator})
    expect(options.version in run(*emulator, prefix / "bin/kel.exe", "--version"),
           "the tool is of another version")


def main():
    parser = argparse.ArgumentParser()
    for name in ["build", "cmake", "cpack", "generator", "compiler", "version"]:
        parser.add_argument(f"--{name}", required=True)
    parser.add_argument("--toolchain", default="")
    parser.add_argument("--emulator", default="")
    options = parser.parse_args()

    with tempfile.TemporaryDirectory(prefix="kel-package-") as scratch:
        scratch = pathlib.Path(scratch)
        packages = scratch / "packages"
        run(options.cpack, "--config", pathlib.Path(options.build) / "CPackConfig.cmake", "-B",
            packages)
        if options.toolchain:
            check_windows_archive(packages, scratch, options)
        else:
            check_archive(packages, scratch, options)
    print("The archive works.")


if __name__ == "__main__":
    main()
