#!/usr/bin/env python3
"""Measures how many frames a second the gallery's pages draw at 1280 x 720 in Chromium without a window, and what of
each frame is the page's own work. Three seconds a function, some two and a half minutes for all blits.

usage: speed.py DIRECTORY [REGEX]    all functions of the subsystem blit, or those in whose names the expression is found
"""

import argparse
import pathlib
import re
import shutil
import sys

from selenium import webdriver
from selenium.webdriver.chrome.service import Service

WANTED = 60
MEASURE = """
const [seconds, done] = arguments;
(async () => {
    const page = await playground;
    await page.ready;
    const pause = (milliseconds) => new Promise((go) => setTimeout(go, milliseconds));
    const work = [];
    const draw = page.draw.bind(page);
    page.draw = () => {
        const begin = performance.now();
        const isDrawn = draw();
        work.push(performance.now() - begin);
        return isDrawn;
    };
    // A scene that stands still is drawn anew for each frame, too.
    let isOver = false;
    const again = () => {
        page.isChanged = true;
        page.ask();
        if (!isOver)
            requestAnimationFrame(again);
    };
    if (row.moves)
        page.run(true);
    else
        again();
    await pause(700);
    work.length = 0;
    const [first, begin] = [page.frames, performance.now()];
    await pause(1000 * seconds);
    const rate = (page.frames - first) / (performance.now() - begin) * 1000;
    isOver = true;
    page.run(false);
    work.sort((a, b) => a - b);
    const at = (share) => work[Math.floor(share * (work.length - 1))];
    done({ rate, width: page.library.q.width(), height: page.library.q.height(), median: at(0.5), slow: at(0.95) });
})().catch((fault) => done({ fault: String(fault?.stack ?? fault) }));
"""


def open_browser():
    options = webdriver.ChromeOptions()
    options.binary_location = shutil.which("chromium")
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--window-size=1440,900"):
        options.add_argument(argument)
    browser = webdriver.Chrome(service=Service(shutil.which("chromedriver")), options=options)
    browser.set_script_timeout(60)
    return browser


def pages_of(directory, pattern):
    """Names and pages, as the subsystem's page or the search has them."""
    if pattern:
        index = (directory / "index.js").read_text(encoding="utf-8")
        found = re.findall(r'"name":"([^"]+)","page":"([^"]+)"', index)
        found = [(name, page) for name, page in found if re.search(pattern, name)]
    else:
        cards = (directory / "subsystem-blit.html").read_text(encoding="utf-8")
        found = [(page.removesuffix(".html"), page) for page in re.findall(r'<a class="card" href="([^"]+)"', cards)]
    return [(name, page) for name, page in found if 'id="row"' in (directory / page).read_text(encoding="utf-8")]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("directory", type=pathlib.Path)
    parser.add_argument("regex", nargs="?")
    parser.add_argument("--seconds", type=float, default=3, help="how long each function is played")
    options = parser.parse_args()
    wanted = pages_of(options.directory.resolve(), options.regex)
    if not wanted:
        sys.exit("no such function can be played with; ./gallery makes the pages")
    browser = open_browser()
    print(f"{'frames/s':>8} {'ms/frame':>8} {'slow':>6}  1280 x 720")
    reached = 0
    try:
        for name, page in wanted:
            browser.get("about:blank")
            browser.get((options.directory.resolve() / page).as_uri() + "#time=0&size=1280x720")
            told = browser.execute_async_script(MEASURE, options.seconds)
            if "fault" in told or (told["width"], told["height"]) != (1280, 720):
                sys.exit(f"{name}: {told}")
            reached += round(told["rate"]) >= WANTED
            print(f"{told['rate']:8.1f} {told['median']:8.1f} {told['slow']:6.1f}  {name}", flush=True)
    finally:
        browser.quit()
    print(f"{reached} of {len(wanted)} at {WANTED} frames a second")


if __name__ == "__main__":
    main()
