# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0
"""Builds the package, with the libraries compiled in, from the project's folder around this one."""

import os
import re
from pathlib import Path

from setuptools import setup

try:
    from pybind11.setup_helpers import ParallelCompile, Pybind11Extension, build_ext
except ModuleNotFoundError as error:
    raise SystemExit("Please install pybind11 for Python (python3-pybind11).") from error

here = Path(__file__).resolve().parent
os.chdir(here)
project = Path("..")
recipe = (project / "CMakeLists.txt").read_text()
version = re.search(r"^project\(seedforest VERSION ([0-9.]+)", recipe, re.MULTILINE)[1]

# The sources of the libraries, as CMake lists them.
libraries = re.findall(r"^seedforest_library\(\w+\s+([^)]*)\)", recipe, re.MULTILINE)
sources = [str(project / name) for name in " ".join(libraries).split()]
sources += sorted(map(str, Path("src").glob("*.cpp")))

extension = Pybind11Extension(
    "seedforest._core",
    sources,
    include_dirs=[str(project), str(project / "api")],
    define_macros=[("SEEDFOREST_VERSION", f'"{version}"'), ("NDEBUG", None)],
    extra_compile_args=["-O3", "-g0", "-ffp-contract=off", "-fno-semantic-interposition", "-fno-trapping-math"],
    cxx_std=20,
)

ParallelCompile("SEEDFOREST_JOBS", default=os.cpu_count() or 1).install()
setup(
    name="seedforest",
    version=version,
    description="Image analysis by the Image Foresting Transform",
    long_description=(project / "docs" / "python.md").read_text(),
    long_description_content_type="text/markdown",
    license="Apache-2.0",
    author="The Seedforest authors",
    python_requires=">=3.9",
    install_requires=["numpy>=1.21"],
    packages=["seedforest"],
    package_data={"seedforest": ["*.pyi", "py.typed"]},
    ext_modules=[extension],
    cmdclass={"build_ext": build_ext},
    zip_safe=False,
)
