#!/usr/bin/env python3
"""Makes packages, twice each, unpacks them in bare places and builds or runs there what uses them.

usage: packages_test.py TEST DIRECTORY VERSION

    built       the builds of the other systems are as new as their sources
    debian      the three Debian packages: what they ask for, pkg-config's words, the show
    linux       the archive for x86-64: CMake finds the library
    arm64       the archive for AArch64: the same, under emulation
    windows     the archive for Windows: MinGW and the other family of compilers, 64 and 32 bits, under Wine
    javascript  the package for JavaScript: installed by npm, where it is found
    python      the wheel, which is installed and tried by the tests of its build
    rebuilt     the library built once more from sources elsewhere has the same bytes

The builds are those of the presets, in the tree's directory build.
"""

import filecmp
import os
import pathlib
import re
import shutil
import subprocess
import sys
import zipfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
CONSUMER = ROOT / "tests" / "package" / "consumer"
C_CONSUMER = ROOT / "tests" / "package" / "c_consumer"


def run(*command, **options):
    print("$", *command, flush=True)
    return subprocess.run(list(map(str, command)), check=True, **options)


def output_of(*command, **options):
    return run(*command, stdout=subprocess.PIPE, text=True, **options).stdout


def expect(condition, complaint):
    if not condition:
        sys.exit(complaint)


def built(preset):
    """The directory of a preset's build."""
    return ROOT / "build" / preset


def packed(build, directory):
    """The packages of a build, which come out the same when they are made a second time, somewhere else."""
    made = []
    for place in ("first", "second"):
        run("cpack", "--config", build / "CPackConfig.cmake", "-B", directory / place)
        made.append(sorted(path for path in (directory / place).iterdir() if path.is_file()))
    first, second = made
    expect([path.name for path in first] == [path.name for path in second], f"{first} and {second}")
    for one, other in zip(first, second):
        expect(filecmp.cmp(one, other, shallow=False), f"{one.name} was packed twice and has other bytes")
    return first


def serve_find_package(place, directory, version, *options, consumer=CONSUMER):
    """Builds programs that find the library below a place by CMake, and runs them."""
    package = next(place.rglob("q_MurConfig.cmake")).parent
    run(
        "ctest", "--build-and-test", consumer, directory, "--build-generator", "Ninja", "--build-options",
        f"-DWANTED_VERSION={version}", f"-Dq_Mur_DIR={package}", "-DCMAKE_BUILD_TYPE=Release", *options,
        "--test-command", "ctest", "--output-on-failure", "--no-tests=error",
    )  # fmt: skip


def c_compiler(build):
    """The compiler for C that a build has found."""
    return re.search(r"^CMAKE_C_COMPILER:\w+=(.+)", (build / "CMakeCache.txt").read_text(), re.MULTILINE)[1]


def unpacked(archive, directory):
    shutil.unpack_archive(archive, directory)
    (place,) = directory.iterdir()
    return place


def test_built(directory, version):
    for preset in ("win32", "win64", "arm64", "wasm"):
        if not (built(preset) / "CMakeCache.txt").exists():
            run("cmake", "--preset", preset, cwd=ROOT)
        run("cmake", "--build", built(preset))


def test_debian(directory, version):
    packages = [path for path in packed(built("linux"), directory) if path.suffix == ".deb"]
    expect(
        [path.name.split("_")[:2] for path in packages]
        == [["libq-mur-dev", version], ["libq-mur0", version], ["qmur-show", version]],
        f"not the packages of {version}: {packages}",
    )
    development, library, show = packages
    asked = {path: output_of("dpkg-deb", "--field", path, "Depends") for path in packages}
    expect("libc6" in asked[library] and "libfreetype6" in asked[library], f"{library} asks for {asked[library]}")
    for path in (development, show):
        expect(f"libq-mur0 (= {version})" in asked[path], f"{path} asks for {asked[path]}")

    root = directory / "root"
    for name in ("info", "updates", "triggers"):
        (root / "var" / "lib" / "dpkg" / name).mkdir(parents=True)
    (root / "var" / "lib" / "dpkg" / "status").touch()
    if os.geteuid() == 0:
        # All but these packages is lacking there, and there is no shell.
        run("dpkg", f"--root={root}", "--force-depends", "--force-script-chrootless", "--install", *packages)
        listed = output_of("dpkg", f"--root={root}", "--list")
        for name in ("libq-mur-dev", "libq-mur0", "qmur-show"):
            expect(re.search(rf"^ii +{name}\b", listed, re.MULTILINE), f"{name} is not installed: {listed}")
    else:
        for path in packages:
            run("dpkg-deb", "--extract", path, root)
    run(
        sys.executable, ROOT / "tests" / "package" / "pkg_config_test.py", "pkg-config", "q_Mur", root / "usr",
        CONSUMER / "main.cpp", directory / "host", version, "c++ -std=c++20",
    )  # fmt: skip
    program = root / "usr" / "bin" / "qmur-show"
    expect(version in output_of(program, "--version"), "the show is of another version")
    linked = output_of("ldd", program)
    expect(f"{root.resolve()}/usr/" in str(pathlib.Path(re.search(r"libq_Mur\S* => (\S+)", linked)[1]).resolve()), linked)
    run(program, "-o", directory / "sheet.png", "--size", "160x90", "--seconds", "0.2", "--fps", "5", cwd=directory)
    expect((directory / "sheet.png").stat().st_size > 10000, "the show has drawn nothing")


def test_linux(directory, version):
    packages = packed(built("linux"), directory)
    (archive,) = [path for path in packages if path.name == f"q_Mur-{version}-linux-x86_64.tar.gz"]
    place = unpacked(archive, directory / "place")
    serve_find_package(place, directory / "host", version, "-DWANTS_CHECKED=ON")
    serve_find_package(place, directory / "c_host", version, consumer=C_CONSUMER)


def test_arm64(directory, version):
    (archive,) = packed(built("arm64"), directory)
    expect(archive.name == f"q_Mur-{version}-linux-aarch64.tar.gz", archive.name)
    place = unpacked(archive, directory / "place")
    library = next(place.rglob(f"libq_Mur.so.{version}"))
    expect(library.read_bytes()[18] == 0xB7, "that is a library for another processor")
    serve_find_package(place, directory / "host", version, f"-DCMAKE_TOOLCHAIN_FILE={ROOT}/cmake/arm64.cmake")


def serve_msvc(place, directory, width):
    """A program of the other family of compilers: it has no run-time library here, so it brings what it needs."""
    sources = ROOT / "tests" / "link"
    triple, machine, other_machine = {
        "64": ("x86_64-pc-windows-msvc", "x64", "i386:x86-64"),
        "32": ("i686-pc-windows-msvc", "x86", "i386"),
    }[width]
    objects = []
    for source in ("host", "bare_program"):
        objects.append(directory / f"{source}.obj")
        run(
            "clang++", f"--target={triple}", "-std=c++20", "-nostdinc", "-O1", "-fno-builtin", "-fno-exceptions",
            "-fno-rtti", f"-I{place}/include", "-DQ_MUR_HAS_STRUCT_RESULTS=1", "-c", sources / f"{source}.cpp",
            "-o", objects[-1],
        )  # fmt: skip
    kernel = directory / "kernel32.lib"
    run("llvm-dlltool", "-k", "-m", other_machine, "-d", sources / f"kernel32_{machine}.def", "-l", kernel)
    program = directory / "msvc_host.exe"
    run(
        "lld-link", "/nologo", f"/machine:{machine}", "/subsystem:console", "/entry:bareProgram", "/nodefaultlib",
        f"/out:{program}", *objects, place / "lib" / "q_Mur.lib", kernel,
    )  # fmt: skip
    run(ROOT / "cmake" / "under-wine", program)


def test_windows(directory, version):
    (archive,) = packed(built("win64"), directory)
    expect(archive.name == f"q_Mur-{version}-windows.zip", archive.name)
    names = zipfile.ZipFile(archive).namelist()
    files = ["include/q_Mur.h", "include/q_Mur/types.h", "lib/libq_Mur.dll.a", "lib/q_Mur.lib", "lib/q_Mur.def"]
    files += ["bin/q_Mur.dll", "bin/q_Mur_c.dll", "bin/q_Mur_checked.dll"]
    wanted = [f"win{width}/{file}" for width in (32, 64) for file in files]
    for file in [*wanted, "win64/bin/qmur-show.exe"]:
        expect(any(name.endswith(f"/{file}") for name in names), f"{file} is lacking")
    place = unpacked(archive, directory / "place")
    for width in ("64", "32"):
        host = directory / f"host{width}"
        options = [f"-DCMAKE_TOOLCHAIN_FILE={ROOT}/cmake/win{width}.cmake", "-DCMAKE_EXE_LINKER_FLAGS=-static"]
        serve_find_package(place / f"win{width}", host, version, "-DWANTS_CHECKED=ON", *options)
        c_host = directory / f"c_host{width}"
        options.append(f"-DCMAKE_C_COMPILER={c_compiler(built(f'win{width}'))}")
        serve_find_package(place / f"win{width}", c_host, version, *options, consumer=C_CONSUMER)
        other_host = directory / f"other_host{width}"
        other_host.mkdir()
        shutil.copy(place / f"win{width}" / "bin" / "q_Mur.dll", other_host)
        serve_msvc(place / f"win{width}", other_host, width)
    show = place / "win64" / "bin" / "qmur-show.exe"
    expect(version in output_of(ROOT / "cmake" / "under-wine", show, "--version"), "the show is of another version")


def test_javascript(directory, version):
    build = built("wasm")
    archive = build / "packages" / f"q_mur-{version}.tgz"
    before = directory / archive.name
    shutil.copy(archive, before)
    archive.unlink()
    run("cmake", "--build", build, "--target", "package")
    expect(filecmp.cmp(before, archive, shallow=False), "the archive was packed twice and has other bytes")
    host = directory / "host"
    test = ROOT / "tests" / "npm" / "host_test.mjs"
    run(sys.executable, ROOT / "tests" / "npm" / "install.py", archive, host, test)
    expect(f'"version": "{version}"' in (host / "node_modules/q_mur/package.json").read_text(), "another version")
    run("node", "--test", host / test.name)


def test_python(directory, version):
    build = built("linux")
    (wheel,) = (build / "wheels").glob(f"q_mur-{version}-*.whl")
    python = re.search(r"^Q_MUR_PYTHON:\w+=(.+)", (build / "CMakeCache.txt").read_text(), re.MULTILINE)[1]
    place = directory / "place"
    shutil.copytree(build / "packages" / "python" / "wheel", place, ignore=shutil.ignore_patterns("build", "*.egg-info"))
    for path in place.rglob("*"):  # of another time, and a user's who lets nobody else read
        path.chmod(0o700)
        os.utime(path, (1, 1))
    run(
        python, "-m", "build", "--wheel", "--no-isolation", "--outdir", directory / "again", place,
        env={**os.environ, "SOURCE_DATE_EPOCH": "1577836800"}, umask=0o077,
    )  # fmt: skip
    same = filecmp.cmp(wheel, directory / "again" / wheel.name, shallow=False)
    expect(same, f"{wheel.name} was packed twice and has other bytes")


def test_rebuilt(directory, version):
    build = built("linux")
    sources = directory / "elsewhere" / "sources"
    for name in output_of("git", "-c", "safe.directory=*", "ls-files", "-z", cwd=ROOT).split("\0"):
        if (ROOT / name).is_file() and name.split("/")[0] not in ("benchmarks", "docs", "site", "tests"):
            (sources / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, sources / name)
    again = directory / "again"
    switches = [f"-DQ_MUR_BUILD_{part}=OFF" for part in ("TESTS", "CHECKED", "EXAMPLES")]
    # What a cache has kept would prove nothing.
    environment = {**os.environ, "CCACHE_DISABLE": "1"}
    run("cmake", "-G", "Ninja", "-S", sources, "-B", again, *switches, env=environment)
    run("cmake", "--build", again, "--target", "q_Mur", "q_Mur_static", env=environment)
    for name in (f"libq_Mur.so.{version}", "libq_Mur.a"):
        expect(filecmp.cmp(build / "src" / name, again / "src" / name, shallow=False), f"{name} has other bytes")


def main():
    test, directory, version = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3]
    shutil.rmtree(directory, ignore_errors=True)
    directory.mkdir(parents=True)
    globals()[f"test_{test}"](directory, version)


if __name__ == "__main__":
    main()
