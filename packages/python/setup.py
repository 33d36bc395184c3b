"""Packs what the build of the library has made; nothing is compiled here."""

import os
import pathlib

from setuptools import setup
from setuptools.dist import Distribution
from wheel.bdist_wheel import bdist_wheel


# Archives keep modes, which are to be the same whoever builds.
os.umask(0o022)
for file in pathlib.Path("q_mur").iterdir():
    file.chmod(0o644)


class Built(Distribution):
    def has_ext_modules(self):
        return True


class Wheel(bdist_wheel):
    def finalize_options(self):
        super().finalize_options()
        self.py_limited_api = "cp311"


setup(distclass=Built, cmdclass={"bdist_wheel": Wheel})
