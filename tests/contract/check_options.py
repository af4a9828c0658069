#!/usr/bin/env python3
"""Configures the project as on a machine without the packages of tool, tests and benchmarks.

    check_options.py CMAKE ROOT GENERATOR COMPILER

Only the library must remain, with a message for each feature that is left out. A feature that was
requested by name must be an error instead.
"""
import subprocess
import sys
import tempfile

PACKAGES = ["CLI11", "nlohmann_json", "GTest", "benchmark", "RapidJSON"]


def configure(cmake, root, generator, compiler, *options):
    with tempfile.TemporaryDirectory() as build:
        hidden = [f"-DCMAKE_DISABLE_FIND_PACKAGE_{package}=ON" for package in PACKAGES]
        command = [cmake, "-S", root, "-B", build, "-G", generator,
                   f"-DCMAKE_CXX_COMPILER={compiler}", *hidden, *options]
        result = subprocess.run(command, text=True, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT)
        targets = ""
        if result.returncode == 0:
            targets = subprocess.run([cmake, "--build", build, "--target", "help"], text=True,
                                     check=True, stdout=subprocess.PIPE).stdout
        return result.returncode, result.stdout, targets


def differences(arguments):
    status, output, targets = configure(*arguments)
    if status != 0:
        yield f"configuring without packages fails:\n{output}"
        return
    if "kel_objects" not in targets:
        yield "the library is missing without packages"
    for feature, package in [("TOOL", "CLI11"), ("TOOL", "nlohmann_json"), ("TESTS", "GTest")]:
        message = f"KEL_BUILD_{feature} is off: {package} is not installed"
        if message not in output:
            yield f"no message: {message}"
    for target in ["kel_tool", "kel_unit_tests", "kel_host_tests", "kel_bench"]:
        if target in targets:
            yield f"{target} is built without its packages"
    for feature in ["TOOL", "TESTS", "BENCH"]:
        status, output, _ = configure(*arguments, f"-DKEL_BUILD_{feature}=ON")
        if status == 0:
            yield f"-DKEL_BUILD_{feature}=ON succeeds without its packages"


def main(arguments):
    if len(arguments) != 4:
        sys.exit(__doc__)
    found = list(differences(arguments))
    print("\n".join(found) if found else "Without the packages the library alone is built.")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
