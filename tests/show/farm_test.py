#!/usr/bin/env python3
"""Runs the script that renders a show in shards and joins them: frames are those of the whole, and nothing is lost.

usage: farm_test.py --program qmur-show --photos DIRECTORY [name of a test ...]
"""

import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

import running
from running import ShowTest, four_photos

FARM = Path(__file__).resolve().parents[2] / "examples" / "show" / "farm"
SHOW = ["--size", "160x90", "--fps", "8", "--seconds", "1.5", "--effects", "pan,iris,snow", "--threads", "1"]
FRAMES = 24
# A stand-in for ssh: another host has another home, and what ssh is called with is written down.
HOST = """#!/bin/bash
echo "$*" >>"$0.log"
while [[ $1 == -* ]]; do shift; done
shift
[[ $1 == -- ]] && shift
export HOME=$0.home
mkdir -p "$HOME" && cd "$HOME" && exec bash -c "$*"
"""


class Farm(ShowTest):
    def farm(self, *arguments, **environment):
        command = [FARM, "--program", running.program, *map(str, arguments)]
        home = self.directory.parent / (self.directory.name + "-home")
        home.mkdir(exist_ok=True)
        self.addCleanup(shutil.rmtree, home, ignore_errors=True)
        return subprocess.run(command, cwd=self.directory, env={**os.environ, "HOME": str(home), **environment},
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=300)

    def assert_made(self, film, shards, *arguments, **environment):
        result = self.farm("-o", film, "--shards", shards, *arguments, **environment)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertRegex(result.stderr, rf"^farm: wrote '.*{re.escape(film)}', {FRAMES} frames in {shards} shards\n$")

    def decoded(self, name):
        """The checksum of each frame."""
        text = subprocess.run(["ffmpeg", "-loglevel", "error", "-i", f"file:{name}", "-map", "0:v", "-f", "framemd5", "-"],
                              cwd=self.directory, capture_output=True, text=True, check=True).stdout
        return [line.split(",")[-1].strip() for line in text.splitlines() if not line.startswith("#")]

    def whole(self, *arguments):
        self.show(*four_photos()[:2], *SHOW, *arguments, "-o", "whole.mkv")
        frames = self.decoded("whole.mkv")
        self.assertEqual(len(frames), FRAMES)
        self.assertGreater(len(set(frames)), FRAMES / 2)
        return frames

    def test_four_shards_have_the_frames_of_the_whole(self):
        name, title = "with a 'name' {1}.mkv", ["--title", "it's {1} & $HOME"]
        (self.directory / name).write_text("old")
        frames = self.whole(*title)
        self.assert_made(name, 4, *four_photos()[:2], *SHOW, *title)
        self.assertEqual(self.decoded(name), frames)
        self.assertEqual(self.contents(), sorted(["whole.mkv", name]))

    def test_hosts_send_their_shards_back(self):
        ssh = self.directory / "ssh"
        ssh.write_text(HOST)
        ssh.chmod(0o755)
        frames = self.whole()
        self.assert_made("film.mkv", 3, *four_photos()[:2], *SHOW, "--sshlogin", "1/elsewhere", PARALLEL_SSH=str(ssh))
        self.assertEqual(self.decoded("film.mkv"), frames)
        self.assertGreater((self.directory / "ssh.log").read_text().count("rsync --server --sender"), 2)
        self.assertEqual([path for path in (self.directory / "ssh.home").rglob("*") if path.is_file()], [])

    def test_goes_on_where_a_shard_failed(self):
        broken = self.directory / "broken"
        broken.write_text(f'#!/bin/sh\ncase "$*" in *--first\\ 12\\ *) exit 1 ;; esac\nexec "{running.program}" "$@"\n')
        broken.chmod(0o755)
        frames = self.whole()
        arguments = ["-o", "film.mkv", "--shards", 4, *four_photos()[:2], *SHOW, "--program", broken]
        (self.directory / "film.mkv").write_text("old")
        result = self.farm(*arguments)
        self.assertEqual(result.returncode, 2)
        self.assertRegex(result.stderr, r"^farm: 1 of 4 shards failed; .*\n$")
        self.assertEqual((self.directory / "film.mkv").read_text(), "old")
        shards = {path.name: path.stat().st_mtime_ns for path in (self.directory / "film.mkv.shards").glob("*.mkv")}
        self.assertEqual(sorted(shards), ["0000.mkv", "0001.mkv", "0003.mkv"])
        # Another command does not touch them.
        other = self.farm("-o", "film.mkv", *four_photos()[:2], *SHOW)
        self.assertEqual((other.returncode, other.stderr.count("\n")), (2, 1))
        self.assertIn("holds no shards of this command", other.stderr)
        broken.write_text(f'#!/bin/sh\ncase "$*" in *--first\\ 0\\ *) exit 1 ;; esac\nexec "{running.program}" "$@"\n')
        result = self.farm(*arguments)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(self.decoded("film.mkv"), frames)

    def test_the_array_that_the_page_on_scale_shows(self):
        page = (FARM.parents[2] / "docs" / "scale.md").read_text(encoding="utf-8")
        task, join = re.findall(r"^```sh\n(.*?)^```", page, re.DOTALL | re.MULTILINE)
        (self.directory / "qmur-show").symlink_to(running.program)
        (self.directory / "shard.sh").write_text(task)
        path = {**os.environ, "PATH": f"{self.directory}:{os.environ['PATH']}", "FRAMES": str(FRAMES)}
        frames = self.whole()
        for number in range(4):
            numbers = {"SLURM_ARRAY_TASK_ID": str(number), "SLURM_ARRAY_TASK_MAX": "3", "SLURM_CPUS_PER_TASK": "1"}
            subprocess.run(["bash", "shard.sh", *four_photos()[:2], *SHOW[:-2]], cwd=self.directory,
                           env={**path, **numbers}, check=True, stderr=subprocess.DEVNULL)
        subprocess.run(["bash", "-e", "-c", join], cwd=self.directory, check=True)
        self.assertEqual(self.decoded("film.mkv"), frames)

    def test_music_runs_through_the_joined_film(self):
        subprocess.run(["ffmpeg", "-loglevel", "error", "-f", "lavfi", "-i", "sine=duration=1.25", "music.wav"],
                       cwd=self.directory, check=True)
        self.assert_made("film.mp4", 4, *four_photos()[:2], *SHOW, "--music", "music.wav")
        found = self.probe("film.mp4")
        self.assertIn(("codec_name", "aac"), found)
        self.assertIn(("nb_read_packets", str(FRAMES)), found)
        self.assertTrue(all(abs(float(value) - FRAMES / 8) < 0.1 for name, value in found if name == "duration"), found)

    def test_refuses_in_one_line_and_leaves_all_files(self):
        (self.directory / "film.mkv").write_text("old")
        photo = four_photos()[0]
        for arguments, reason in (
            ([photo], "which film?"),
            (["-o"], "-o needs a value"),
            (["-o", "film.avi", photo], "must end in"),
            (["-o", "film", photo], "must end in"),
            (["-o", "film.mkv", "-o", "other.mkv", photo], "-o may be given once"),
            (["-o", "film.mkv", "--shards", "0", photo], "--shards 0"),
            (["-o", "film.mkv", "--shards", "4x", photo], "--shards 4x"),
            (["-o", "film.mkv", "--first", "1", photo], "--first is not for a farm"),
            (["-o", "film.mkv", "--program", "missing", photo], "'missing' cannot be run"),
            (["-o", "film.mkv", "missing.jpg"], "missing.jpg"),
            (["-o", "film.mkv", "--effects", "nothing", photo], "there is no effect 'nothing'"),
            (["-o", "film.mp4", "--size", "33x33", photo], "even width"),
            (["-o", "film.mkv", "--music", "missing.wav", photo], "missing.wav"),
            (["-o", "missing/film.mkv", photo], "cannot be written"),
        ):
            with self.subTest(arguments):
                result = self.farm(*arguments)
                self.assertEqual((result.returncode, result.stdout, result.stderr.count("\n")), (2, "", 1), result.stderr)
                self.assertRegex(result.stderr, f"^farm: .*{re.escape(reason)}")
                self.assertEqual(self.contents(), ["film.mkv"])
                self.assertEqual((self.directory / "film.mkv").read_text(), "old")


if __name__ == "__main__":
    lacking = [name for name in ("parallel", "rsync", "ffmpeg") if not shutil.which(name)]
    if lacking:
        print(f"not installed: {', '.join(lacking)}")
        sys.exit(77)
    running.run_tests([Farm])
