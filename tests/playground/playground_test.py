#!/usr/bin/env python3
"""Plays with every page of the gallery in a browser without a window, from the file system and as wide as a phone: no
error on the console, a picture in each canvas, which controls change and a link restores; the pixels are those that the
native library draws.

usage: playground_test.py Q_MUR_CATALOGUE Q_MUR_GALLERY_DRAW Q_MUR_PLAY PLAYGROUND.wasm
"""

import ast
import functools
import json
import pathlib
import random
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "gallery"))
import site_maker  # noqa: E402

site_maker.need(jinja2="Jinja", selenium="Selenium", tomllib="Python 3.11")

import browser_test  # noqa: E402
from site_maker import pages  # noqa: E402

ROOT = site_maker.ROOT

# Neither letters nor files: what they need is not in a page.
NOT_PLAYED = {"iTextOut", "LoadBitmap24"}

# Their calls do nothing, or choose a place of a record whose slots the picture shows in an order of its own.
IDLE = {"Blur_Ring", "Blur_Parallelogram", "ClearMemory", "FindNotUsedMemory", "GetPrivate_LUT_Data", "GetPrivate_QM3D_Data",
        "GetPrivate_QMGL_Data", "GetPrivate_QMGP_Data", "SetRegionSrcFill", "bSetRegionFill"}

# Its direction is drawn anew at each call.
DIRECTION_AT_RANDOM = "FastBlur_Rect"

# What is done on each page, and what comes of it.
VISIT = """
const done = arguments[arguments.length - 1];
(async () => {
    const page = await playground;
    const sum = () => page.library.text(page.library.q.checksum());
    const state = () => ({
        row: row.fullName, width: page.library.q.width(), height: page.library.q.height(), time: page.state.time, turn: page.state.turn, pictures: [],
        numbers: [...page.state.numbers].map(([key, value]) => [...key.split(".").map(Number), value]), checksum: sum(),
    });
    page.run(false);
    page.state.time = 0.5;
    page.draw();
    const report = { width: Math.max(document.documentElement.scrollWidth, document.body.scrollWidth), states: [state()] };
    const { data } = page.view.getContext("2d").getImageData(0, 0, page.view.width, page.view.height);
    const first = new Uint32Array(data.buffer);
    report.isPlain = first.every((pixel) => pixel === first[0]);

    // Each control in its turn, there and back.
    const own = sum();
    report.controls = [];
    report.without = [];
    const address = location.hash;
    for (const setting of page.settings.filter((each) => each.input)) {
        const { input } = setting;
        const was = input.type === "checkbox" ? input.checked : input.value;
        const tries = input.type === "checkbox" ? [!was] : input.type === "color" ? ["#ff0000", "#0000ff"] :
            [0.31, 0.83, 0, 1].map((share) => setting.low + (setting.high - setting.low) * share);
        let changes = false;
        for (const value of tries) {
            if (input.type === "checkbox")
                input.checked = value;
            else
                input.value = value;
            input.dispatchEvent(new Event("input"));
            page.draw();
            await page.mending;
            changes = sum() !== own;
            if (changes)
                break;
        }
        const name = row.arguments[setting.index].name + (setting.part ? "." + setting.part : "");
        (changes ? report.controls : report.without).push(name);
        if (changes && page.message.textContent === "" && report.states.length === 1) {
            // What is set so is restored from its link, after everything has been put back.
            const changed = state();
            report.states.push(changed);
            page.write();
            const link = location.hash;
            page.state = page.fresh();
            page.shape();
            await page.ready;
            page.draw();
            const back = sum();
            const heard = new Promise((go) => addEventListener("hashchange", go, { once: true }));
            location.hash = link;
            await heard;
            await page.ready;
            page.draw();
            report.link = { link, back, own, wanted: changed.checksum, got: sum() };
        }
        page.state = page.fresh();
        page.shape();
        await page.ready;
        page.draw();
    }
    report.ownAgain = sum() === own;

    // The call in each language, as far as a page can read it.
    report.calls = {};
    for (const language of languages) {
        page.language = language;
        page.showCode();
        report.calls[language] = document.querySelector("#call").textContent;
    }
    const body = report.calls.JavaScript.replace(/^import .*$/m, "").replace(/^const q = .*$/m, "");
    try {
        new Function("q", body);
    } catch (fault) {
        report.faultInCall = `${fault}: ${body}`;
    }
    done(report);
})().catch((fault) => done({ fault: String(fault?.stack ?? fault) }));
"""

# What a stranger writes around a call that he has copied.
HOST = """#include <cstdio>
#include <q_Mur.h>
#include <vector>

constexpr int width = 400, height = 225;

/// A photograph brought to the surface's size as the page does it, by its nearest pixels.
void load(std::vector<q_ulong> &surface, int columns, int rows, int pitch, const char *name) {
    std::vector<q_ulong> photograph(width * height);
    std::FILE *file = std::fopen(name, "rb");
    if (std::fread(photograph.data(), 4, photograph.size(), file) != photograph.size())
        std::printf("%s is too short\\n", name);
    std::fclose(file);
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x)
            surface[y * pitch + x] = photograph[y * height / rows * width + x * width / columns];
}

int main() {
    Init_qMur_GlobalData(nullptr, nullptr);
DECLARATIONS
LOADING
CALL
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            std::printf("%06X\\n", SHOWN[PITCH * y + x] & 0xFFFFFF);
}
"""


def png_of(width, height, pixels):
    """A picture file without loss: pixels as 0xAARRGGBB."""
    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))
    rows = b"".join(b"\0" + b"".join(struct.pack(">I", (p << 8 | p >> 24) & 0xFFFFFFFF)
                                     for p in pixels[y * width:(y + 1) * width]) for y in range(height))
    header = struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


class Playground(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(temporary.cleanup)
        cls.site = pathlib.Path(temporary.name)
        catalogue, _ = site_maker.make(cls.programs, cls.site, frames=3, module=pathlib.Path(cls.programs[3]))
        cls.functions = [f for subsystem in catalogue["subsystems"] for f in subsystem["functions"]]
        cls.browser = browser_test.open_browser()
        cls.addClassCleanup(cls.browser.quit)
        cls.browser.set_script_timeout(120)

    def native(self, states):
        """The checksums of states as the native library draws them."""
        wanted = [{key: value for key, value in state.items() if key != "checksum"} for state in states]
        done = subprocess.run([self.programs[2]], input=json.dumps(wanted), stdout=subprocess.PIPE, text=True, check=True)
        return json.loads(done.stdout)

    def open(self, function, address=""):
        self.browser.get("about:blank")
        browser_test.go_to(self.browser, (self.site / pages.page_of(function)).as_uri() + address)
        self.run_script("")  # the controls are there with the module

    def run_script(self, script, *values):
        """What a script returns, to which `page` is the playground."""
        answer = self.browser.execute_async_script(
            "const done = arguments[arguments.length - 1];"
            "playground.then(async (page) => { await page.ready; " + script + " }).then("
            "(value) => done({ value }), (fault) => done({ fault: String(fault?.stack ?? fault) }));", *values)
        self.assertNotIn("fault", answer, answer)
        return answer.get("value")

    def named(self, name, overload=""):
        return next(f for f in self.functions if f["name"] == name and f.get("overload", "") == overload)

    @classmethod
    @functools.cache
    def visits(cls):
        """What comes of a visit to each page that is played."""
        reports = {}
        for function in cls.functions:
            if function["name"] in NOT_PLAYED:
                continue
            browser_test.go_to(cls.browser, (cls.site / pages.page_of(function)).as_uri())
            report = cls.browser.execute_async_script(VISIT)
            report["console"] = [entry["message"] for entry in cls.browser.get_log("browser")]
            reports[pages.full_name(function)] = report
        return reports

    def test_every_page_plays(self):
        reports = self.visits()
        self.assertGreaterEqual(len(reports), 250)
        for name, report in reports.items():
            with self.subTest(name):
                self.assertNotIn("fault", report)
                self.assertEqual(report["console"], [])
                self.assertFalse(report["isPlain"], "one colour only")
                self.assertLessEqual(report["width"], browser_test.PHONE)
                self.assertTrue(report["ownAgain"], "the scene does not come back")

    def test_controls_change_the_picture(self):
        changing = {name for name, report in self.visits().items() if report.get("controls")}
        idle = {name for name, report in self.visits().items() if report.get("without") and not report["controls"]}
        controls = sum(len(report["controls"]) for report in self.visits().values())
        without = {name: report["without"] for name, report in self.visits().items() if report["without"]}
        print(f"{controls} controls on {len(changing)} pages change the picture; these do not: {without}")
        self.assertGreaterEqual(len(changing), 200)
        self.assertGreaterEqual(controls, 1400)
        self.assertEqual(idle - IDLE, set())

    def test_links_restore(self):
        links = {name: report["link"] for name, report in self.visits().items() if "link" in report}
        self.assertGreaterEqual(len(links), 190)
        for name, link in links.items():
            with self.subTest(name):
                self.assertNotEqual(link["wanted"], link["own"])
                self.assertEqual(link["back"], link["own"])
                self.assertEqual(link["got"], link["wanted"], link["link"])

    def test_pixels_are_those_of_the_native_library(self):
        at_random = {pages.full_name(f) for f in self.functions if f["drawsRandomNumbers"]} | {DIRECTION_AT_RANDOM}
        states = [state for name, report in self.visits().items() if name not in at_random for state in report.get("states", [])]
        self.assertGreaterEqual(len({state["row"] for state in states}), 240)
        self.assertGreaterEqual(len(states), 430)
        differing = [state for state, checksum in zip(states, self.native(states)) if state["checksum"] != checksum]
        self.assertEqual(differing, [])

    def test_calls_can_be_read(self):
        for name, report in self.visits().items():
            with self.subTest(name):
                self.assertNotIn("faultInCall", report)
                ast.parse(report["calls"]["Python"])
                plain = name.split()[0]
                for call in report["calls"].values():
                    self.assertIn(plain, call)

    def test_a_call_says_what_is_set(self):
        self.open(self.named("iBltFast32Alpha"), "#time=0.5&alpha=0.3&rect=10&rect.1=20")
        calls = self.run_script("""
            return languages.map((language) => {
                page.language = language;
                page.showCode();
                return document.querySelector("#call").textContent;
            });""")
        self.assertEqual(calls[0].splitlines(), [
            "std::vector<q_ulong> dst(416 * 225); // 400 x 225 pixels, 416 from row to row",
            "std::vector<q_ulong> src(416 * 225); // 400 x 225 pixels, 416 from row to row",
            "tagRECT rect = {10, 20, 400, 225};",
            "iBltFast32Alpha(dst.data(), src.data(), 0, 0, &rect, 416, 416, 0.3F);"])
        self.assertEqual(calls[1].splitlines(), [
            "import { load } from 'q_mur';", "const q = await load();", "",
            "const dst = q.surface(400, 225);", "const src = q.surface(400, 225);",
            "const rect = { left: 10, top: 20, right: 400, bottom: 225 };",
            "q.iBltFast32Alpha(dst, src, 0, 0, rect, dst.pitch, src.pitch, 0.3);"])
        self.assertEqual(calls[2].splitlines(), [
            "import numpy as np", "import q_mur", "",
            "dst = np.zeros((225, 400), np.uint32)", "src = np.zeros((225, 400), np.uint32)",
            "q_mur.iBltFast32Alpha(dst, src, offsetX=0, offsetY=0,", "    rect=(10, 20, 400, 225), alpha=0.3)"])

    def test_a_bundled_photograph_is_drawn(self):
        self.open(self.named("iBltFast32"), "#time=0.5&src=meadow")
        without, withIt = self.run_script("""
            const sum = () => page.library.text(page.library.q.checksum());
            page.draw();
            const withIt = sum();
            await page.choosePicture(1, "");
            page.draw();
            return [sum(), withIt];""")
        self.assertNotEqual(without, withIt)
        self.assertIn("CC", self.run_script("""
            await page.choosePicture(1, "meadow");
            page.draw();
            return document.querySelector(".controls").textContent;"""))

    def test_a_file_is_drawn_and_stays_in_the_page(self):
        chosen = random.Random(1)
        pixels = [0xFF000000 | chosen.getrandbits(24) for _ in range(400 * 225)]
        file = self.site / "own.png"
        file.write_bytes(png_of(400, 225, pixels))
        self.open(self.named("iBltFast32Alpha"), "#time=0.5&alpha=0.7")
        inputs = self.browser.find_elements("css selector", '.controls input[type="file"]')
        inputs[1].send_keys(str(file))
        state = self.run_script("""
            for (let i = 0; i < 100 && !page.state.pictures.has(1); ++i)
                await new Promise((go) => setTimeout(go, 50));
            await page.givePicture(1, page.state.pictures.get(1));
            page.draw();
            return { row: row.fullName, width: 400, height: 225, time: 0.5, turn: [0, 0],
                     numbers: [...page.state.numbers].map(([key, value]) => [...key.split(".").map(Number), value]),
                     checksum: page.library.text(page.library.q.checksum()), address: page.address };""")
        self.assertEqual(state.pop("address"), "time=0.5&alpha=0.7")
        self.assertEqual(self.native([{**state, "pictures": [{"argument": 1, "width": 400, "height": 225, "pixels": pixels}]}]),
                         [state["checksum"]])
        self.assertNotEqual(self.native([{**state, "pictures": []}]), [state["checksum"]])

    def test_a_copied_call_draws_the_same_pixels_in_a_host(self):
        library = next(pathlib.Path(self.programs[0]).parents[1].rglob("libq_Mur.so"), None)
        compiler = shutil.which("c++")
        if not library or not compiler:
            self.skipTest("no compiler, or no library, for this machine")
        chosen = random.Random(2)
        for name, address in {"iBltFast32Alpha": "#time=0.5&alpha=0.35&rect=10&rect.1=20",
                              "Edge_Transparency_Circle": "#time=0.4&band=30",
                              "iBltNear32_Z_Roto": "#time=0.7&scale=0.8"}.items():
            with self.subTest(name), tempfile.TemporaryDirectory() as directory:
                site = pathlib.Path(directory)
                self.open(self.named(name), address)
                self.run_script("page.draw();")
                inputs = self.browser.find_elements("css selector", '.controls input[type="file"]')
                for i, element in enumerate(inputs):
                    pixels = [chosen.getrandbits(24) for _ in range(400 * 225)]
                    (site / f"{i}.png").write_bytes(png_of(400, 225, [0xFF000000 | pixel for pixel in pixels]))
                    (site / f"{i}.raw").write_bytes(struct.pack(f"={len(pixels)}I", *pixels))
                    element.send_keys(str(site / f"{i}.png"))
                call, shown = self.run_script("""
                    for (let i = 0; i < 100 && page.state.pictures.size < arguments[0]; ++i)
                        await new Promise((go) => setTimeout(go, 50));
                    for (const [index, name] of page.state.pictures)
                        await page.givePicture(index, name);
                    page.draw();
                    const { data } = page.view.getContext("2d").getImageData(0, 0, 400, 225);
                    const hex = (number) => number.toString(16).toUpperCase().padStart(2, "0");
                    const rows = [];
                    for (let i = 0; i < data.length; i += 4)
                        rows.push(hex(data[i]) + hex(data[i + 1]) + hex(data[i + 2]));
                    return [document.querySelector("#call").textContent, rows];""", len(inputs))
                lines = call.rstrip().splitlines()
                begin = next(i for i, line in enumerate(lines) if line.startswith(name + "("))
                surfaces = re.findall(r"std::vector<q_ulong> (\w+)\((\d+) \* \d+\); // (\d+) x (\d+)", call)
                self.assertEqual(len(surfaces), len(inputs))
                host = HOST.replace("DECLARATIONS", "\n".join(lines[:begin])).replace("CALL", "\n".join(lines[begin:]))
                host = host.replace("SHOWN", surfaces[0][0]).replace("PITCH", surfaces[0][1])
                host = host.replace("LOADING", "\n".join(f'load({surface}, {columns}, {rows}, {pitch}, "{i}.raw");'
                                                         for i, (surface, pitch, columns, rows) in enumerate(surfaces)))
                (site / "host.cpp").write_text(host, encoding="utf-8")
                subprocess.run([compiler, "-std=c++20", f"-I{ROOT / 'include'}", "host.cpp", str(library),
                                f"-Wl,-rpath,{library.parent}", "-o", "host"], cwd=site, check=True)
                drawn = subprocess.run(["./host"], cwd=site, stdout=subprocess.PIPE, text=True, check=True).stdout.split()
                self.assertEqual(drawn, shown)
                self.assertGreater(len(set(drawn)), 1000)

    def test_pixels_are_read_out_at_every_size(self):
        self.open(self.named("iBltFast32"), "#time=0.5")
        for zoom in (0, 1, 8):
            with self.subTest(zoom=zoom):
                text, pixel = self.run_script("""
                    page.look(arguments[0]);
                    const box = page.view.getBoundingClientRect();
                    const at = { clientX: box.left + box.width * 0.4, clientY: box.top + box.height * 0.6 };
                    page.view.dispatchEvent(new PointerEvent("pointermove", at));
                    const data = page.library.picture.data;
                    const first = 4 * (page.cursor.y * 400 + page.cursor.x);
                    return [page.readout.textContent, [page.cursor.x, page.cursor.y, data[first], data[first + 1], data[first + 2]]];
                    """.replace("arguments[0]", str(zoom)))
                x, y, red, green, blue = pixel
                self.assertEqual(text, f"({x}, {y}) 0x00{red:02X}{green:02X}{blue:02X}")
        grid = self.run_script("""
            const { data } = page.view.getContext("2d").getImageData(0, 0, 64, 64);
            page.look(0);
            return [...Array(63).keys()].map((x) => data[4 * (64 * 3 + x)] !== data[4 * (64 * 3 + x + 1)]);""")
        self.assertEqual([x for x, changes in enumerate(grid) if changes and x % 8 not in (7, 0)], [])
        self.assertGreater(sum(grid), 8)

    def test_keys_move_over_the_pixels(self):
        self.open(self.named("iBltFast32"), "#time=0.5")
        self.run_script("page.view.focus(); page.cursor = { x: 10, y: 10 };")
        view = self.browser.find_element("id", "canvas")
        view.send_keys("\ue014\ue014\ue015")  # right, right, down
        self.assertEqual(self.run_script("return [page.cursor.x, page.cursor.y];"), [12, 11])
        self.assertRegex(self.run_script("return page.readout.textContent;"), r"^\(12, 11\) 0x00[0-9A-F]{6}$")
        view.send_keys("++")
        self.assertEqual(self.run_script("return page.zoom;"), 8)
        self.assertIn("zoom=800", self.run_script("return location.hash;"))

    def test_a_finger_turns_what_stands_in_space(self):
        self.open(self.named("VKD_Render_Tri"), "#time=0.5")
        middle, before = self.run_script("""
            const box = page.view.getBoundingClientRect();
            return [[box.left + box.width / 2, box.top + box.height / 2], page.library.text(page.library.q.checksum())];""")
        def touch(kind, *points):
            self.browser.execute_cdp_cmd("Input.dispatchTouchEvent", {
                "type": kind, "touchPoints": [{"x": x, "y": y} for x, y in points]})
        touch("touchStart", middle)
        touch("touchMove", (middle[0] + 40, middle[1] + 25))
        touch("touchMove", (middle[0] + 60, middle[1] + 25))
        touch("touchEnd")
        after, link = self.run_script("page.draw(); return [page.library.text(page.library.q.checksum()), location.hash];")
        self.assertNotEqual(before, after)
        self.assertIn("turned=", link)

    def test_a_lamp_stays_where_a_mesh_is_turned(self):
        for name in ("Render_Texture_3D", "VKD_Render_3D_Surface"):
            with self.subTest(name):
                self.open(self.named(name), "#time=0.5")
                before, after, whites = self.run_script("""
                    const light = () => document.querySelector("#call").textContent.match(/light = .*/)[0];
                    page.draw();
                    const before = light();
                    const whites = [];
                    for (const turn of [[0, 0], [0.7, 0], [1.4, 0.5], [2.4, 0], [3, -1]]) {
                        page.state.turn = turn;
                        page.library.q.turn(...turn);
                        page.draw();
                        const { data } = page.library.picture;
                        whites.push(new Uint32Array(data.buffer).filter((pixel) => pixel === 0xffffffff).length / data.length * 4);
                    }
                    return [before, light(), whites];""")
                self.assertEqual(before, after)
                self.assertLessEqual(max(whites), whites[0] + 0.05)

    def test_a_large_scene_moves(self):
        self.open(self.named("iBltFast32"), "#time=0&size=1280x720")
        times, frames = self.run_script("""
            const times = [];
            for (let i = 0; i < 60; ++i) {
                const begin = performance.now();
                page.state.time = i / 60;
                page.draw();
                times.push(performance.now() - begin);
            }
            page.run(true);
            await new Promise((go) => setTimeout(go, 500));
            const [first, since] = [page.frames, performance.now()];
            await new Promise((go) => setTimeout(go, 2000));
            const frames = (page.frames - first) / (performance.now() - since) * 1000;
            page.run(false);
            return [times, frames];""")
        # The machine may have other work to do: the best quarter says what a frame takes.
        milliseconds = sorted(times)[len(times) // 4]
        print(f"1280 x 720: {milliseconds:.1f} ms of work for a frame, {frames:.0f} frames a second")
        self.assertLess(milliseconds, 1000 / 60)
        self.assertGreater(frames, 1)


if __name__ == "__main__":
    if not shutil.which("chromium") or not shutil.which("chromedriver"):
        site_maker.skip("no Chromium with its driver")
    Playground.programs = sys.argv[1:5]
    unittest.main(argv=sys.argv[:1], verbosity=2)
