#!/usr/bin/env python3
"""Arrays that are no surfaces, and calls that break their contract, in the words in which they are refused."""

import ctypes
import os
import subprocess
import sys
import threading
import time
import unittest
import warnings

import numpy as np
import q_mur

ALL = (0, 0, 64, 48)

# The calls before have all the memory that is had once.
WITHOUT_MEMORY = """
import ctypes, os, resource
import numpy as np
import q_mur

a = np.zeros((48, 64), np.uint32)
q_mur.iFillRect(a, (0, 0, 4, 4), 1)
try:
    q_mur.iFillRect(a, (0, 0, 65, 1), 1)
except ValueError:
    pass
malloc = ctypes.PyDLL(None).malloc
malloc.restype, malloc.argtypes = ctypes.c_void_p, [ctypes.c_size_t]
sizes = [1 << 20, 1 << 16, 1 << 12, *range(1024, 8, -16)]
with open("/proc/self/statm") as pages:
    used = int(pages.read().split()[0]) * resource.getpagesize()
resource.setrlimit(resource.RLIMIT_AS, (used + (1 << 20), used + (1 << 20)))
for size in sizes:
    while malloc(size) is not None:
        pass
try:
    q_mur.iFillRect(a, (0, 0, 4, 4), 1)
except MemoryError:
    os.write(1, b"refused")
os._exit(0)
"""


def surface(width=64, height=48):
    return np.zeros((height, width), np.uint32)


class Arrays(unittest.TestCase):
    def refused(self, kind, text, function, *arguments, **named):
        with self.assertRaises(kind) as caught:
            function(*arguments, **named)
        self.assertEqual(str(caught.exception), text)

    def fill_refused(self, kind, text, array, rect=(0, 0, 4, 4)):
        before = None if array is None else np.array(array, copy=True)
        self.refused(kind, f"iFillRect: {text}", q_mur.iFillRect, array, rect, 1)
        if array is not None:
            np.testing.assert_array_equal(array, before)

    def test_pixels_are_drawn_into_the_array_itself(self):
        a = surface()
        q_mur.iFillRect(a, (1, 2, 4, 6), 0x123456)
        expected = surface()
        expected[2:6, 1:4] = 0x123456
        np.testing.assert_array_equal(a, expected)

    def test_bytes_are_blue_green_red_and_top(self):
        a = np.zeros((48, 64, 4), np.uint8)
        q_mur.iFillRect(dst=a, rect=(1, 2, 4, 6), colour=0x112233)
        self.assertEqual(a[2, 1].tolist(), [0x33, 0x22, 0x11, 0])
        self.assertEqual(int((a != 0).any(axis=2).sum()), 12)

    def test_the_pitch_is_that_of_the_array(self):
        a = surface()
        q_mur.iFillRect(a[10:20, 5:15], (0, 0, 10, 10), 1)
        q_mur.iFillRect(a[::2], (20, 0, 21, 24), 2)
        expected = surface()
        expected[10:20, 5:15] = 1
        expected[::2, 20] = 2
        np.testing.assert_array_equal(a, expected)

    def test_a_frame_may_be_drawn_into(self):
        a = surface()
        q_mur.iFillRect(q_mur.Framed(a, left=8, top=4), (-8, -4, -7, -3), 7)
        self.assertEqual((a[0, 0], int(a.sum())), (7, 7))
        self.refused(
            ValueError,
            "iFillRect: rect.left -9 is below -8",
            q_mur.iFillRect, q_mur.Framed(a, left=8, top=4), (-9, 0, 1, 1), 7,
        )

    def test_a_frame_without_its_array(self):
        bare = q_mur.Framed.__new__(q_mur.Framed)
        self.refused(TypeError, "iFillRect: dst is a Framed without its array", q_mur.iFillRect, bare, ALL, 1)

    def test_an_array_may_say_nothing_of_its_strides(self):
        words = (ctypes.c_uint32 * 64 * 48)()
        q_mur.iFillRect(words, (1, 2, 3, 4), 7)
        self.assertEqual([(y, x) for y in range(48) for x in range(64) if words[y][x] == 7],
                         [(2, 1), (2, 2), (3, 1), (3, 2)])
        self.refused(ValueError, "iFillRect: rect.right 65 exceeds pitch 64", q_mur.iFillRect, words, (0, 0, 65, 1), 7)

    def test_arrays_of_other_kinds(self):
        words = "dst has to be an array of uint32 (H, W) or of uint8 (H, W, 4)"
        for kind in (np.int32, np.float32, np.uint16, np.uint64, bool):
            self.fill_refused(TypeError, words, surface().astype(kind))
        self.fill_refused(TypeError, words, np.zeros(64, np.uint32))
        self.fill_refused(TypeError, words, np.zeros((4, 4, 3), np.uint8))
        self.fill_refused(TypeError, words, surface().astype(">u4"))
        self.refused(TypeError, "iFillRect: dst is no array", q_mur.iFillRect, [[1, 2], [3, 4]], (0, 0, 1, 1), 1)

    def test_arrays_of_other_shapes(self):
        self.fill_refused(ValueError, "the pixels of a row of dst do not stand side by side", surface()[:, ::2])
        self.fill_refused(ValueError, "the pixels of a row of dst do not stand side by side", surface()[:, ::-1])
        self.fill_refused(ValueError, "the pixels of a row of dst do not stand side by side", surface().T)
        self.fill_refused(ValueError, "the rows of dst are in reverse order", surface()[::-1])
        self.fill_refused(ValueError, "dst has no pixels", surface()[:0])
        self.fill_refused(ValueError, "dst is null", None)

    def test_arrays_that_may_only_be_read(self):
        a = surface()
        a.flags.writeable = False
        self.fill_refused(ValueError, "dst is read-only", a)
        b = surface()
        q_mur.iBltFast32(b, a, 0, 0, ALL)

    def test_arrays_that_are_too_small(self):
        self.fill_refused(ValueError, "rect.right 65 exceeds pitch 64", surface(), (0, 0, 65, 48))
        self.fill_refused(ValueError, "rect.bottom 49 exceeds the 48 rows of dst", surface(), (0, 0, 64, 49))
        self.fill_refused(ValueError, "rect.right 33 exceeds the 32 columns of dst", surface()[:, :32], (0, 0, 33, 48))
        self.fill_refused(ValueError, "rect.left -1 is below 0", surface(), (-1, 0, 4, 4))
        self.refused(
            ValueError,
            "iBltFast32: srcRect.right 65 exceeds srcPitch 64",
            q_mur.iBltFast32, surface(100, 100), surface(), 0, 0, (0, 0, 65, 10),
        )

    def test_numbers_outside_of_the_contract(self):
        self.refused(ValueError, "randInt: low 5 equals high 5", q_mur.randInt, 5, 5)
        self.refused(
            ValueError, "iFillRect: colour 4294967296 exceeds 4294967295", q_mur.iFillRect, surface(), ALL, 1 << 32
        )
        self.refused(TypeError, "iFillRect: colour is no whole number", q_mur.iFillRect, surface(), ALL, 1.5)
        self.refused(
            TypeError, "iFillRect: rect has to be (left, top, right, bottom)", q_mur.iFillRect, surface(), (1, 2), 1
        )

    def test_numbers_with_a_sign_do_not_wrap(self):
        word = (1 << 32) - 1
        a = surface()
        for rect in ((0, 0, word, 10), (0, 1 << 31, 4, 4), (word, 0, 4, 4)):
            number = max(rect)
            self.fill_refused(ValueError, f"rect {number} exceeds 2147483647", a, rect)
        self.refused(
            ValueError, "iLine: x1 4294967295 exceeds 2147483647", q_mur.iLine, a, word, 0, 5, 5, 7, ALL
        )
        self.refused(
            ValueError,
            "Draw_Light: radius 4294967293 exceeds 2147483647",
            q_mur.Draw_Light, a, 5, 5, word - 2, 7, 1,
        )
        # Places are signed also where they are handed over without a sign.
        self.refused(
            ValueError, "iBltFast32: dstX 4294967295 exceeds 2147483647", q_mur.iBltFast32, a, surface(), word, 0, ALL
        )
        np.testing.assert_array_equal(a, surface())

    def test_colours_and_keys_fill_their_words(self):
        a = surface()
        q_mur.iFillRect(a, (0, 0, 1, 1), 0xFF123456)
        q_mur.iFillRect(a, (1, 0, 2, 1), -1)
        self.assertEqual(a[0, :3].tolist(), [0xFF123456, 0xFFFFFFFF, 0])
        b = surface()
        q_mur.iBltFast32_KeySrc(b, a, 0, 0, (0, 0, 3, 1), key=0xFFFFFFFF)
        self.assertEqual(b[0, :3].tolist(), [0xFF123456, 0, 0])

    def test_rows_need_not_begin_at_whole_pixels(self):
        a = np.full((25, 99), 9, np.uint8)
        q_mur._FitOn32RAW_24RAW_Nearest(a, 24, 25, np.array([[[1, 2, 3]]], np.uint8), 1, 1)
        expected = np.full((25, 99), 9, np.uint8)
        expected[:, :96] = [1, 2, 3, 0] * 24
        np.testing.assert_array_equal(a, expected)
        # Of a part of such rows nobody could tell what lies beside it.
        self.refused(
            ValueError,
            "_FitOn32RAW_24RAW_Nearest: dst is a part of rows that are no whole number of pixels",
            q_mur._FitOn32RAW_24RAW_Nearest, a[:, :97], 24, 24, np.zeros((1, 3), np.uint8), 1, 1,
        )

    def test_parts_of_one_array_that_begin_together_are_told_apart(self):
        whole = surface(64, 100)
        whole[50:60] = 7
        q_mur.iBltFast32(whole[:10], whole, 0, 0, (0, 50, 10, 55))
        self.assertEqual(int((whole[:10] == 7).sum()), 50)
        self.refused(ValueError, "iBltFast32: srcRect.bottom 50 exceeds the 10 rows of src",
                     q_mur.iBltFast32, whole, whole[:10], 0, 20, (0, 0, 10, 50))
        wide = whole.reshape(50, 128)
        whole[61] = 9
        q_mur.iBltFast32(whole, wide, 0, 0, (64, 30, 128, 31))
        self.assertTrue((whole[0] == 9).all())
        self.refused(ValueError, "iBltFast32: srcRect.right 65 exceeds srcPitch 64",
                     q_mur.iBltFast32, wide, whole, 0, 0, (0, 0, 65, 1))

    def test_memory_without_rows_has_no_gaps(self):
        memory = surface(64, 40)
        picture = surface(300, 300)
        resource = surface(100, 100)
        self.refused(ValueError,
                     "DrawRealBubble: scratch is written without a gap, but has one behind each 10 columns",
                     q_mur.DrawRealBubble, picture, memory[:, :10], 150, 150, 10, resource, 100, 0, 300, 300)
        self.assertFalse(memory.any())
        self.refused(ValueError,
                     "DrawRealBubble: resource is read without a gap, but has one behind each 50 columns",
                     q_mur.DrawRealBubble, picture, surface(300, 300), 150, 150, 60, surface(100, 100)[:, :50], 100, 0,
                     300, 300)

    def test_a_bitmap_file_fits_into_its_array(self):
        memory = surface(4, 4)
        self.refused(ValueError, "LoadBitmap24: dst holds 15 elements, of which 16 are written",
                     q_mur.LoadBitmap24, memory.reshape(16)[:15].reshape(3, 5), "none", 16, 1)
        self.refused(ValueError, "LoadBitmap24: dst is written without a gap, but has one behind each 2 columns",
                     q_mur.LoadBitmap24, memory[:, :2], "none", 2, 4)
        memory.flags.writeable = False
        self.refused(ValueError, "LoadBitmap24: dst is read-only", q_mur.LoadBitmap24, memory, "none", 4, 4)

    def test_columns_before_a_frame_count_where_memory_has_no_rows(self):
        part = surface(8, 4)[:, :4]
        for left, width, fits in ((0, 4, True), (1, 3, True), (1, 4, False), (3, 2, False)):
            framed = q_mur.Framed(part, left=left, top=1)
            if fits:
                self.assertEqual(q_mur.LoadBitmap24(framed, "none", width, 1), 0)
            else:
                self.refused(ValueError,
                             "LoadBitmap24: dst is written without a gap, but has one behind each 4 columns",
                             q_mur.LoadBitmap24, framed, "none", width, 1)

    def test_a_doubt_is_a_warning(self):
        a = surface()
        with warnings.catch_warnings(record=True) as caught:
            warnings.simplefilter("always")
            q_mur.iBltFast32Alpha(a, a.copy(), 0, 0, ALL, 2.0)
        self.assertEqual([str(each.message) for each in caught], ["iBltFast32Alpha: alpha 2 exceeds 1"])
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            self.assertRaises(UserWarning, q_mur.iBltFast32Alpha, a, a.copy(), 0, 0, ALL, 2.0)

    def test_arguments_by_other_names(self):
        self.refused(TypeError, "iFillRect() has no argument color", q_mur.iFillRect, surface(), ALL, color=1)
        self.refused(TypeError, "iFillRect() lacks the argument colour", q_mur.iFillRect, surface(), ALL)
        self.refused(TypeError, "iFillRect() takes 3 arguments, not 4", q_mur.iFillRect, surface(), ALL, 1, 2)
        self.refused(TypeError, "iFillRect() has two of the argument rect", q_mur.iFillRect, surface(), ALL, rect=ALL)


class Records(unittest.TestCase):
    def test_a_block_is_memory(self):
        record = q_mur.Record(planeElements=100, originElement=10)
        plane = np.frombuffer(q_mur.FindNotUsedMemory(record, 0, -1), np.uint32)
        self.assertEqual(plane.shape, (90,))
        with self.assertRaises(BufferError):
            q_mur.DeleteMemoryBlocks(record)
        with self.assertRaises(BufferError):
            q_mur.FindNotUsedMemory(record, 1, 64)
        del plane
        block = q_mur.FindNotUsedMemory(record, 1, 64)
        q_mur.DeleteMemoryBlocks(record)
        with self.assertRaises(BufferError):
            memoryview(block)

    def test_a_block_that_is_gone_is_named(self):
        record = q_mur.Record()
        block = q_mur.GetPrivate_QMGP_Data(record, 0)
        q_mur.DeleteMemoryBlocks(record)
        with self.assertRaisesRegex(ValueError, "data has been freed with its record's blocks"):
            q_mur.SetRegionFill(block, surface(), surface())

    def test_a_block_of_another_kind_is_refused(self):
        block = q_mur.GetPrivate_LUT_Data(q_mur.Record(), 0)
        with self.assertRaisesRegex(TypeError, "data has to be a block of GetPrivate_QMGP_Data"):
            q_mur.SetRegionFill(block, surface(), surface())

    def test_a_block_that_went_long_ago_is_refused(self):
        record = q_mur.Record(planeElements=4000, vertexArrayEntries=100, matrixStackDepth=2)
        block = q_mur.GetPrivate_QMGL_Data(record, 0)
        for _ in range(40):
            q_mur.GetPrivate_QMGP_Data(record, 0)  # which frees the one before
        with self.assertRaisesRegex(ValueError, "data has been freed with its record's blocks"):
            q_mur.VKD_glLoadIdentity(block)

    def test_a_block_is_not_the_next_one_at_its_address(self):
        record = q_mur.Record()
        block = q_mur.FindNotUsedMemory(record, 0, 5000)
        others = []
        for _ in range(1000):
            others.append(q_mur.FindNotUsedMemory(record, 0, 5000))
            if others[-1].address == block.address:
                break
        else:
            self.skipTest("the address has not come again")
        self.assertEqual(len(memoryview(others[-1])), 5000)
        with self.assertRaises(BufferError):
            memoryview(block)

    def test_a_block_that_goes_while_a_warning_is_shown(self):
        record = q_mur.Record(planeElements=4000, vertexArrayEntries=100, matrixStackDepth=2)
        block = q_mur.GetPrivate_QMGL_Data(record, 0)
        shown = []

        def show(message, *_):
            shown.append(str(message))
            q_mur.DeleteMemoryBlocks(record)

        four = np.zeros(4, np.float32)
        with warnings.catch_warnings():
            warnings.simplefilter("always")
            warnings.showwarning = show
            with self.assertRaisesRegex(ValueError, "data has been freed with its record's blocks"):
                q_mur.VKD_FindLuminenceTerm(block, four, 0, 2, four, 0, 0, 0)
        self.assertEqual(len(shown), 1)


class Regions(unittest.TestCase):
    def setUp(self):
        self.block = q_mur.GetPrivate_QMGP_Data(q_mur.Record(), 0)

    def test_a_region_keeps_its_surfaces(self):
        a = surface()
        q_mur.iFillRect(a, (10, 10, 20, 11), 5)
        references = sys.getrefcount(a)
        q_mur.SetRegionFill(self.block, a, a)
        self.assertGreater(sys.getrefcount(a), references)
        self.block = None
        self.assertEqual(sys.getrefcount(a), references)

    def test_surfaces_stay_until_others_take_their_place(self):
        a, b, plane = surface(), surface(), np.zeros((48, 64), np.uint8)

        def kept():
            return [sys.getrefcount(each) for each in (a, b, plane)]

        free = kept()
        q_mur.SetRegionFill(self.block, a, b)
        q_mur.bSetRegionFill(self.block, plane, ALL)
        self.assertEqual(kept(), [count + 1 for count in free])
        q_mur.SetRegionFill(self.block, b, b)
        self.assertEqual(kept(), [free[0], free[1] + 2, free[2] + 1])
        q_mur.bSetRegionFill(self.block, np.zeros((48, 64), np.uint8), ALL)
        self.assertEqual(kept(), [free[0], free[1] + 2, free[2]])
        q_mur.SetRegionFill(self.block, None, a)
        self.assertEqual(kept(), [free[0] + 1, free[1], free[2]])

    def test_limits_are_those_that_were_set(self):
        plane, others = np.zeros((48, 64), np.uint8), np.zeros((48, 64), np.uint8)
        q_mur.bSetRegionFill(self.block, plane, (10, 10, 20, 20))
        with self.assertRaises(ValueError):
            q_mur.Region_Fill(self.block, 5, 5, 1, 2, 0, 0, 0, ALL)  # there are no surfaces
        with self.assertRaises(ValueError):
            q_mur.bSetRegionFill(self.block, others[:, ::2], ALL)
        self.assertEqual(q_mur.bscan_left(self.block, 15, 15, 9), 10)
        self.assertEqual(q_mur.bscan_right(self.block, 15, 15, 9), 19)
        a = surface()
        q_mur.SetRegionFill(self.block, a, a)
        q_mur.Region_Fill(self.block, 5, 5, 1, 1, 0, 0, 0, ALL)
        self.assertEqual(q_mur.bscan_left(self.block, 15, 15, 9), 10)
        self.assertEqual(q_mur.bscan_right(self.block, 15, 15, 9), 19)

    def test_surfaces_of_a_region_that_begin_together_are_told_apart(self):
        a = surface()
        a[20, 29] = 1
        q_mur.SetRegionFill(self.block, a[:10], a)
        self.assertEqual(q_mur.scan_left(self.block, 40, 20, 1, 0), 30)
        q_mur.SetRegionFill(self.block, a, a[:10])
        with self.assertRaisesRegex(ValueError, "^scan_left: "):
            q_mur.scan_left(self.block, 40, 20, 1, 0)

    def test_what_is_painted_may_not_be_read_only(self):
        a, plane = surface(), np.zeros((48, 64), np.uint8)
        for each in (a, plane):
            each.flags.writeable = False
        with self.assertRaisesRegex(ValueError, "^SetRegionFill: destSurface is read-only$"):
            q_mur.SetRegionFill(self.block, a, surface())
        with self.assertRaisesRegex(ValueError, "^bSetRegionFill: plane is read-only$"):
            q_mur.bSetRegionFill(self.block, plane, ALL)
        with self.assertRaisesRegex(ValueError, "^SetRegionSrcFill: plane is read-only$"):
            q_mur.SetRegionSrcFill(self.block, surface(), a, plane, ALL)
        q_mur.SetRegionFill(self.block, surface(), a)  # which is only looked at


class Threads(unittest.TestCase):
    def test_a_record_serves_one_thread_at_a_time(self):
        block = q_mur.GetPrivate_QMGP_Data(q_mur.Record(), 0)
        big = np.zeros((2000, 2000), np.uint32)
        q_mur.SetRegionFill(block, big, big)
        for colour in range(1, 100):
            fill = (block, 5, 5, colour, colour, 0, 0, 0, (1, 0, 1999, 2000))
            thread = threading.Thread(target=q_mur.Region_Fill, args=fill)
            thread.start()
            try:
                while thread.is_alive():
                    q_mur.SetRegionFill(block, big, big)
            except RuntimeError as error:
                self.assertEqual(str(error), "SetRegionFill: another thread works on the same record")
                return
            finally:
                thread.join()
        self.fail("no call was refused during another one")

    def test_others_run_during_a_call(self):
        """A thread counts while another one is in a single long call."""
        big = np.zeros((4000, 4000), np.uint32)
        source = big.copy()
        counted, ends = [0], threading.Event()

        def count():
            while not ends.is_set():
                counted[0] += 1
                time.sleep(0.0001)  # lets go of the lock

        thread = threading.Thread(target=count)
        interval = sys.getswitchinterval()
        sys.setswitchinterval(1000)  # nobody is made to let go: the counter runs on only where a call lets go by itself
        try:
            thread.start()
            before = counted[0]
            until = time.monotonic() + 20
            while counted[0] == before and time.monotonic() < until:
                q_mur.iBltFast32(big, source, 0, 0, (0, 0, 4000, 4000))
        finally:
            sys.setswitchinterval(interval)
            ends.set()
            thread.join()
        self.assertGreater(counted[0], before)

    def test_a_call_without_memory_comes_back_with_the_lock(self):
        environment = {name: value for name, value in os.environ.items() if name != "PYTHONMALLOC"}
        ended = subprocess.run([sys.executable, "-c", WITHOUT_MEMORY], stdout=subprocess.PIPE, env=environment, check=False)
        self.assertEqual((ended.returncode, ended.stdout), (0, b"refused"))


if __name__ == "__main__":
    unittest.main()
