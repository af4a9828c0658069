#!/usr/bin/env python3
"""Makes the Debian packages of a build, judges them, installs them and builds hosts with them.

    check_debian.py --build BUILD --cmake CMAKE --generator NAME --compiler CXX --version X.Y.Z
                    [--flags FLAGS] [--architecture NAME --native BUILD]

BUILD is a build for this machine, or for the 32-bit processor that --architecture names. In the
latter case the packages are also installed beside those of this machine, made from the build
--native, and status 77 means that the C++ libraries of that processor are not installed.
"""
import argparse
import gzip
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

from support import ROOT, expect, expect_equal, expect_links, fails, files, headers, run

CONSUMER = ROOT / "tests/install/consumer"
DEBIAN = ROOT / "packaging/debian"
LIBRARIES = ("libc6", "libstdc++6", "libgcc-s1") # those that every C++ program needs


class Package:
    """A package file, extracted with its control files."""

    def __init__(self, path, folder):
        self.path = path
        self.name, self.version, self.architecture = path.stem.split("_")
        self.root = folder / f"{self.name}_{self.architecture}"
        folder.mkdir(parents=True, exist_ok=True)
        run("dpkg-deb", "--raw-extract", path, self.root)
        self.control = self.root / "DEBIAN"
        self.files = {name for name in files(self.root) if not name.startswith("DEBIAN/")}
        lines = run("dpkg-deb", "--field", path).splitlines()
        self.fields = dict(line.split(": ", 1) for line in lines if not line.startswith(" "))

    def expect_field(self, field, value):
        found = self.fields.get(field)
        expect(found == value, f"{self.name}: {field} is {found} instead of {value}")


def make_packages(build, folder, scratch, *architecture):
    run(DEBIAN / "make-packages.sh", build, folder, *architecture)
    return {package.name: package
            for package in (Package(path, scratch) for path in sorted(folder.glob("*.deb")))}


def check_fields(packages, options):
    version = f"{options.version}-1"
    minor = ".".join(options.version.split(".")[:2])
    major = options.version.split(".")[0]
    names = {f"libkel{major}": ("libs", "same"), "libkel-dev": ("libdevel", "same"),
             "kel": ("utils", "foreign"), "kel-doc": ("doc", "foreign")}
    if options.native:
        del names["kel-doc"]
    expect_equal(set(packages), set(names), "packages")
    maintainer = next(line for line in (DEBIAN / "control").read_text().splitlines()
                      if line.startswith("Maintainer: "))
    for name, (section, multi_arch) in names.items():
        package = packages[name]
        package.expect_field("Version", version)
        package.expect_field("Section", section)
        package.expect_field("Multi-Arch", multi_arch)
        package.expect_field("Maintainer", maintainer.removeprefix("Maintainer: "))
        package.expect_field("Architecture", "all" if name == "kel-doc" else options.architecture)
        package.expect_field("Homepage", None)
    library = packages[f"libkel{major}"]
    packages["libkel-dev"].expect_field("Depends", f"{library.name} (= {version})")
    expect(f"{library.name} (>= {minor})" in packages["kel"].fields["Depends"].split(", "),
           f"the tool depends on {packages['kel'].fields['Depends']}")
    for package in (library, packages["kel"]):
        for needed in LIBRARIES:
            expect(needed in package.fields["Depends"], f"{package.name} does not need {needed}")
    shlibs = (library.control / "shlibs").read_text()
    expect(shlibs == f"libkel {major} {library.name} (>= {minor})\n", f"shlibs is {shlibs}")
    return library


def check_contents(packages, library, options):
    """Checks that each package contains its files and no others."""
    folder = f"usr/lib/{options.triplet}"
    major = options.version.split(".")[0]
    expected = {
        library.name: {f"{folder}/libkel.so.{major}", f"{folder}/libkel.so.{options.version}"},
        "libkel-dev": {f"usr/{name}" for name in headers()}
                      | {f"{folder}/{name}" for name in [
                          "libkel.so", "pkgconfig/kel.pc", "cmake/kel/kelConfig.cmake",
                          "cmake/kel/kelConfigVersion.cmake", "cmake/kel/kelTargets.cmake",
                          "cmake/kel/kelTargets-release.cmake"]},
        "kel": {"usr/bin/kel", "usr/share/man/man1/kel.1.gz",
                "usr/share/bash-completion/completions/kel",
                "usr/share/zsh/vendor-completions/_kel",
                "usr/share/fish/vendor_completions.d/kel.fish",
                "usr/share/doc/kel/licenses/CLI11.txt",
                "usr/share/doc/kel/licenses/nlohmann-json.txt"}
               | {f"usr/share/man/man1/kel-{path.stem.lower()}.1.gz"
                  for path in (ROOT / "tools/kel/commands").glob("*.cpp")},
        "kel-doc": {f"usr/share/doc/kel/{folder}/{name}" for folder in ("docs", "examples")
                    for name in files(ROOT / folder)}
                   | {f"usr/share/doc/kel/html/{name}" for name in files(pathlib.Path(options.build, "docs/html"))}
                   | {f"usr/share/doc/kel/{name}" for name in ("README.md", "CHANGELOG.md",
                                                              "LICENSE")}}
    owners = {}
    for name, package in packages.items():
        texts = {f"usr/share/doc/{name}/{text}" for text in ("copyright", "changelog.Debian.gz")}
        expect_equal(package.files, expected[name] | texts, name)
        for path in package.files:
            expect(path not in owners, f"{path} is in {name} and in {owners.get(path)}")
            owners[path] = name
        check_texts(package, options)
        check_modes(package)
    if "kel-doc" in packages:
        texts = packages["kel-doc"].root / "usr/share/doc/kel"
        for name in ("docs/hosting.md", "CHANGELOG.md"):
            expect((texts / name).read_bytes() == (ROOT / name).read_bytes(), f"{name} differs")
        expect((texts / "README.md").read_bytes() ==
               (ROOT / "packaging/linux/README.md").read_bytes(), "README.md differs")
        expect_links(texts)
    for path in (library.root / folder / f"libkel.so.{options.version}",
                 packages["kel"].root / "usr/bin/kel"):
        expect(".symtab" not in run("readelf", "-SW", path), f"{path.name} is not stripped")
        expect("PATH)" not in run("readelf", "-d", path), f"{path.name} has a path for libraries")


def check_texts(package, options):
    texts = package.root / "usr/share/doc" / package.name
    license_text = " ".join((ROOT / "LICENSE").read_text().split("\n\n", 2)[2].split())
    text = (texts / "copyright").read_text()
    expect(text.startswith("Format: https://www.debian.org/doc/packaging-manuals/copyright-format"),
           "the copyright file cannot be read by machines")
    expect(license_text in " ".join(text.replace("\n .\n", "\n").split()),
           "the copyright file has another license")
    changelog = gzip.decompress((texts / "changelog.Debian.gz").read_bytes()).decode()
    expect(changelog.startswith(f"kel ({options.version}-1) "), f"changelog: {changelog}")
    expect(f" -- {package.fields['Maintainer']}  " in changelog, f"changelog: {changelog}")
    listed = {line.split("  ", 1)[1] for line in
              (package.control / "md5sums").read_text().splitlines()}
    real = {path for path in package.files if not (package.root / path).is_symlink()}
    expect_equal(listed, real, f"md5sums of {package.name}")
    run("md5sum", "--check", "--quiet", "DEBIAN/md5sums", cwd=package.root)


def check_modes(package):
    for line in run("dpkg-deb", "--contents", package.path).splitlines():
        mode, owner, *_ = line.split()
        kind, name = mode[0], line.split(" ./", 1)[1]
        right = {"d": "drwxr-xr-x", "l": "lrwxrwxrwx"}.get(
            kind, "-rwxr-xr-x" if name.startswith("usr/bin/") else "-rw-r--r--")
        expect(mode == right and owner == "root/root", f"{package.name}: {line}")


def check_lintian(packages):
    """Checks that lintian finds no errors, and prints its warnings. Nothing is overridden."""
    root = ["--allow-root"] if os.geteuid() == 0 else [] # nothing of the packages is executed
    print(run("lintian", "--fail-on", "error", "--no-override", *root,
              *[package.path for package in packages.values()]), end="")


def check_hosts(packages, library, scratch, options):
    """Builds a host with the packages both ways, and computes what its package depends on."""
    root = scratch / "extracted"
    for package in (library, packages["libkel-dev"]):
        run("dpkg-deb", "--extract", package.path, root)
    libraries = root / "usr/lib" / options.triplet
    works = f"kel {options.version} works\n"
    by_cmake = scratch / "by_cmake"
    run(options.cmake, "-S", CONSUMER, "-B", by_cmake, "-G", options.generator,
        f"-DCMAKE_CXX_COMPILER={options.compiler}", f"-DCMAKE_CXX_FLAGS={options.flags}",
        f"-DCMAKE_PREFIX_PATH={root / 'usr'}", f"-DCMAKE_LIBRARY_ARCHITECTURE={options.triplet}")
    run(options.cmake, "--build", by_cmake)
    expect(run(by_cmake / "consumer") == works, "the host by CMake fails")

    environment = {**os.environ, "PKG_CONFIG_PATH": str(libraries / "pkgconfig")}
    flags = run("pkg-config", "--cflags", "--libs", "kel", env=environment).split()
    host = scratch / "by_pkg_config"
    run(options.compiler, *options.flags.split(), "-std=c++17", CONSUMER / "main.cpp", "-o", host,
        *flags)
    expect(run(host, env={**os.environ, "LD_LIBRARY_PATH": str(libraries)}) == works,
           "the host by pkg-config fails")
    check_dependency(host, library, scratch, options)


def check_dependency(host, library, scratch, options):
    """Checks that the host's package accepts the library of this and of later minor versions."""
    source = scratch / "source"
    (source / "debian").mkdir(parents=True)
    (source / "debian/control").write_text("Source: host\n\nPackage: host\nArchitecture: any\n")
    variables = run("dpkg-shlibdeps", "-O", f"-S{library.root}", host, cwd=source, env={
        **os.environ, "DEB_BUILD_ARCH": options.architecture,
        "DEB_HOST_ARCH": options.architecture})
    needed = [part for part in variables.strip().removeprefix("shlibs:Depends=").split(", ")
              if part.startswith(library.name)]
    expect(len(needed) == 1 and " (>= " in needed[0], f"the host needs {needed}")
    least = needed[0].split(" (>= ")[1].rstrip(")")
    major, minor, patch = (int(part) for part in options.version.split("."))
    for version, right in [(options.version, True), (f"{major}.{minor}.{patch + 1}", True),
                           (f"{major}.{minor + 1}.0", True), (f"{major}.{minor + 10}.0", True),
                           (f"{major}.{minor - 1}.9", False)]:
        fits = not fails("dpkg", "--compare-versions", f"{version}-1", "ge", least)
        expect(fits == right, f"the host needs {needed[0]}; {version} fits: {fits}")


class System:
    """A folder into which dpkg installs packages as into a machine that has the C++ libraries."""

    def __init__(self, folder, native, *foreign):
        self.folder = folder
        for name in ("info", "updates"):
            (folder / "var/lib/dpkg" / name).mkdir(parents=True)
        for name in ("status", "available"):
            (folder / "var/lib/dpkg" / name).touch()
        needless = ",".join(f"{name}:{architecture}" for architecture in (native, *foreign)
                            for name in LIBRARIES)
        # The packages' files belong to root. For other users fakeroot pretends that they do.
        self.command = [*([] if os.geteuid() == 0 else ["fakeroot"]), "dpkg", f"--root={folder}",
                        "--log=/dev/null", f"--ignore-depends={needless}"]
        expect(run("dpkg", "--print-architecture").strip() == native, f"this is not {native}")
        for name in foreign:
            run(*self.command, "--add-architecture", name)

    def install(self, *packages):
        run(*self.command, "--install", *[package.path for package in packages])

    def refuses(self, package):
        return fails(*self.command, "--install", package.path)

    def state(self):
        """Returns the installed packages with their versions and states."""
        lines = run("dpkg-query", f"--root={self.folder}", "--show", "--showformat",
                    "${Package}:${Architecture} ${Version} ${db:Status-Status}\n").splitlines()
        return set(lines)

    def expect_complete(self, *packages):
        expect_equal(self.state(), {f"{package.name}:{package.architecture} {package.version} "
                                    "installed" for package in packages}, "installed packages")
        for package in packages:
            for path in package.files:
                expect(os.path.lexists(self.folder / path), f"{path} is not installed")


def later(package, scratch, version):
    """Makes the same package under a later version."""
    folder = scratch / "later"
    shutil.copytree(package.root, folder, symlinks=True)
    control = folder / "DEBIAN/control"
    text = control.read_text()
    control.write_text(text.replace(f"\nVersion: {package.version}\n", f"\nVersion: {version}\n"))
    path = scratch / f"{package.name}_{version}_{package.architecture}.deb"
    run("dpkg-deb", "--root-owner-group", "--build", folder, path)
    return Package(path, scratch / "later-extracted")


def check_installation(packages, library, scratch, options):
    system = System(scratch / "system", options.architecture)
    expect(system.refuses(packages["kel"]), "the tool can be installed without the library")
    run(*system.command, "--purge", "kel")
    everything = [library, packages["libkel-dev"], packages["kel"], packages["kel-doc"]]
    system.install(*everything)
    system.expect_complete(*everything)
    output = run(system.folder / "usr/bin/kel", "--version", env={
        **os.environ, "LD_LIBRARY_PATH": str(system.folder / "usr/lib" / options.triplet)})
    expect(options.version in output, f"the tool says {output}")

    # The headers are those of exactly their library. The tool accepts each later one.
    major, minor, patch = (int(part) for part in options.version.split("."))
    newer = later(library, scratch, f"{major}.{minor}.{patch + 1}-1")
    run(*system.command, "--remove", "libkel-dev")
    system.install(newer)
    system.expect_complete(newer, packages["kel"], packages["kel-doc"])
    expect(system.refuses(packages["libkel-dev"]), "the headers accept another library")


def stub(name, version, scratch, files_of_it, **fields):
    """Makes a package by hand that stands for one of earlier days."""
    folder = scratch / name
    for path in files_of_it:
        (folder / path).parent.mkdir(parents=True, exist_ok=True)
        (folder / path).write_text(f"{name} {version}\n")
    (folder / "DEBIAN").mkdir(parents=True)
    architecture = run("dpkg", "--print-architecture").strip()
    lines = {"Package": name, "Version": version, "Architecture": architecture,
             "Maintainer": "nobody", "Description": "stub", **fields}
    (folder / "DEBIAN/control").write_text("".join(f"{key}: {value}\n"
                                                   for key, value in lines.items()))
    path = scratch / f"{name}_{version}_{architecture}.deb"
    run("dpkg-deb", "--root-owner-group", "--build", folder, path)
    return Package(path, scratch / "stubs")


def check_upgrade(packages, library, scratch, options):
    """Replaces version 1.0.0, of which one package had everything, below a host that needs it."""
    system = System(scratch / "upgraded", options.architecture)
    old = stub("kel", "1.0.0", scratch, [
        "usr/bin/kel", "usr/lib/libkel.so.1", "usr/include/kel/kel.h",
        "usr/share/doc/kel/README.md", "usr/share/doc/kel/LICENSE"])
    host = stub("host", "1.0", scratch, ["usr/bin/host"], Depends="kel (= 1.0.0)")
    system.install(old, host)
    everything = [library, packages["libkel-dev"], packages["kel"], packages["kel-doc"]]
    system.install(*everything)
    system.expect_complete(*everything, host)
    expect(not (system.folder / "usr/lib/libkel.so.1").exists(), "files of 1.0.0 remain")


def check_side_by_side(packages, library, scratch, options):
    """Installs the libraries and headers of two processors at once."""
    native = make_packages(options.native, scratch / "native", scratch / "native-extracted")
    expect(native[library.name].architecture != options.architecture, "both are of one processor")
    system = System(scratch / "system", native[library.name].architecture, options.architecture)
    both = [native[library.name], library, native["libkel-dev"], packages["libkel-dev"],
            native["kel"], native["kel-doc"]]
    system.install(*both)
    system.expect_complete(*both)


def main():
    parser = argparse.ArgumentParser()
    for name in ["build", "cmake", "generator", "compiler", "version"]:
        parser.add_argument(f"--{name}", required=True)
    for name in ["flags", "architecture", "native"]:
        parser.add_argument(f"--{name}", default="")
    options = parser.parse_args()
    other = [options.architecture] if options.architecture else []
    if not other:
        options.architecture = run("dpkg", "--print-architecture").strip()
    elif fails("dpkg-query", "--show", *[f"{name}:{options.architecture}" for name in LIBRARIES]):
        # dpkg would find other packages, which are not for that processor.
        print(f"Not tested: the libraries of {options.architecture} are not installed as packages.")
        sys.exit(77)
    options.triplet = run("dpkg-architecture", "-a", options.architecture, "-f",
                          "-q", "DEB_HOST_MULTIARCH", stderr=subprocess.DEVNULL).strip()

    with tempfile.TemporaryDirectory(prefix="kel-debian-") as scratch:
        scratch = pathlib.Path(scratch)
        packages = make_packages(options.build, scratch / "packages", scratch / "made", *other)
        library = check_fields(packages, options)
        check_contents(packages, library, options)
        check_lintian(packages)
        check_hosts(packages, library, scratch, options)
        if other:
            check_side_by_side(packages, library, scratch, options)
        else:
            check_installation(packages, library, scratch, options)
            check_upgrade(packages, library, scratch, options)
        for package in packages.values():
            print(f"{package.path.stat().st_size:8d} {package.path.name}")
    print("The Debian packages work.")


if __name__ == "__main__":
    main()
