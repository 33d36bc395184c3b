"""A screen without a monitor, on which tests look at windows and use mouse and keyboard."""

import os
import shutil
import subprocess
import time

WIDTH, HEIGHT = 800, 600


class Screen:
    lacking = [name for name in ("Xvfb", "xdotool", "ffmpeg") if not shutil.which(name)]

    def __enter__(self):
        read, write = os.pipe()
        self.server = subprocess.Popen(
            # Without -noreset it drops who is just connecting when xdotool, the only one so far, leaves.
            ["Xvfb", "-noreset", "-displayfd", str(write), "-screen", "0", f"{WIDTH}x{HEIGHT}x24", "-nolisten", "tcp"],
            pass_fds=[write], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as lines:
            number = lines.readline().strip()
        assert number, "Xvfb did not start"
        self.environment = {**os.environ, "DISPLAY": f":{number}"}
        return self

    def __exit__(self, *error):
        self.server.terminate()
        self.server.wait()

    def do(self, *arguments):
        """What xdotool answers."""
        return subprocess.run(["xdotool", *map(str, arguments)], env=self.environment, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, text=True, timeout=30).stdout

    def place_of(self, name):
        """The window of a name, its left and top, once it is there."""
        found = wait_for(lambda: self.do("search", "--onlyvisible", "--name", name), f"a window called {name}")
        window = found.split()[-1]
        place = dict(line.split("=") for line in self.do("getwindowgeometry", "--shell", window).split())
        return window, int(place["X"]), int(place["Y"])

    def picture(self):
        """The rows of the screen as bytes of red, green and blue."""
        grab = ["ffmpeg", "-loglevel", "error", "-f", "x11grab", "-draw_mouse", "0", "-video_size",
                f"{WIDTH}x{HEIGHT}", "-i", self.environment["DISPLAY"], "-frames:v", "1", "-f", "rawvideo"]
        pixels = subprocess.run([*grab, "-pix_fmt", "rgb24", "-"], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                check=True, timeout=60).stdout
        assert len(pixels) == 3 * WIDTH * HEIGHT, len(pixels)
        return [pixels[3 * WIDTH * y : 3 * WIDTH * (y + 1)] for y in range(HEIGHT)]


def wait_for(condition, what, seconds=60):
    deadline = time.monotonic() + seconds
    while True:
        found = condition()
        if found:
            return found
        assert time.monotonic() < deadline, f"{what} did not come"
        time.sleep(0.1)
