// A stranger's program that uses the package. What is drawn is worked out by hand.

import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { test } from 'node:test';
import { load } from 'q_mur';
import { signatures } from './node_modules/q_mur/signatures.js';

const file = createRequire(import.meta.url).resolve('q_mur/q_Mur.wasm');
const all = (width, height) => ({ left: 0, top: 0, right: width, bottom: height });

test('a surface is filled, copied and blended', async () => {
    const q = await load();
    const dst = q.surface(4, 3);
    const src = q.surface(2, 2);
    assert.deepEqual([...dst.pixels], Array(12).fill(0));
    assert.deepEqual([dst.width, dst.height, dst.pitch, dst.rectangle], [4, 3, 4, all(4, 3)]);
    q.iFillRect(dst, { left: 1, top: 0, right: 3, bottom: 2 }, dst.pitch, 0x123456);
    const filled = 0x123456;
    assert.deepEqual([...dst.pixels], [0, filled, filled, 0, 0, filled, filled, 0, 0, 0, 0, 0]);
    src.pixels.set([1, 2, 3, 4]);
    q.iBltFast32_KeySrc(dst, src, 2, 1, src.rectangle, dst.pitch, src.pitch, 3);
    assert.deepEqual([...dst.pixels], [0, filled, filled, 0, 0, filled, 1, 2, 0, 0, 0, 4]);
    const light = q.surface(4, 3);
    light.pixels.fill(0x804020);
    q.iFillRect(dst, dst.rectangle, dst.pitch, 0);
    q.iBltFast32Alpha(dst, light, 1, 1, all(2, 2), dst.pitch, light.pitch, 0.5);
    const half = 0x402010;
    assert.deepEqual([...dst.pixels], [0, 0, 0, 0, 0, half, half, 0, 0, half, half, 0]);
});

test('pixels are the memory of the module, also where it has grown', async () => {
    const q = await load();
    const surface = q.surface(2, 1);
    const { pixels } = surface;
    assert.equal(pixels.buffer, q.memory.buffer);
    assert.equal(pixels.byteOffset, surface.address);
    pixels[1] = 0xff000001;
    assert.equal(new DataView(q.memory.buffer).getUint32(surface.at(1, 0), true), 0xff000001);
    assert.equal(surface.pixels, pixels);
    q.surface(4096, 4096).free(); // 64 MiB
    assert.equal(pixels.length, 0);
    assert.deepEqual([...surface.pixels], [0, 0xff000001]);
    q.iFillRect(surface, surface.rectangle, surface.pitch, 7);
    assert.deepEqual([...surface.pixels], [7, 7]);
});

test('a view, a block and an address stand for a surface, and a part for the whole', async () => {
    const q = await load();
    const surface = q.surface(3, 2);
    q.iFillRect(surface.at(1, 0), all(1, 2), surface.pitch, 1);
    q.iFillRect(surface.pixels.subarray(2), all(1, 1), surface.pitch, 2);
    q.iFillRect(surface.address, all(1, 1), surface.pitch, 3);
    assert.deepEqual([...surface.values], [3, 1, 2, 0, 1, 0]);
    const words = q.words(2);
    q.iFillRect(words, all(2, 1), 2, 0xffffffff);
    assert.deepEqual([...words.values], [0xffffffff, 0xffffffff]);
    // Bottom-up: the first row is the last in memory.
    q.iFillRect(surface.at(0, 1), all(3, 1), -3, 9);
    assert.deepEqual([...surface.pixels], [3, 1, 2, 9, 9, 9]);
});

test('records and arrays are handed over and brought back', async () => {
    const q = await load();
    assert.deepEqual(q.iMean2Vector({ x: 1, y: -3, z: 10 }, { x: 4, y: 0, z: 20, w: 2 }), { x: 2, y: -2, z: 15, w: 0 });
    assert.equal(q.Magnitude({ x: 3, y: 4, z: 0 }), 5);
    assert.equal(q.Magnitude_point({ x: 0, y: -6, z: 8 }), 10);
    assert.deepEqual(q.Normalize({ x: 0, y: 0, z: 2 }), { x: 0, y: 0, z: 1, w: 0 });
    const [a, b] = [[1], [0]];
    q.fRotate3DByZ(a, b, 0);
    assert.deepEqual([a, b], [[1], [0]]);
    q.fRotate3DByZ(a, b, Math.PI);
    assert.equal(Math.round(a[0] * 1e6), -1e6);
    const matrix = Array(16).fill(5);
    q.SetIdentityMatrix(matrix);
    assert.deepEqual(matrix, [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1]);
    const floats = q.floats(16);
    q.MatrixMultiply(floats, matrix, new Float32Array(16).fill(2));
    assert.deepEqual([...floats.values], Array(16).fill(2));
    const point = Object.freeze({ x: 1, y: 2, z: 3 });
    assert.equal(q.DotProduct(point, point), 14);
    // A number that single precision cannot hold stays as it is where the call does not write it.
    const third = { x: 1 / 3, y: 0, z: 0 };
    q.Magnitude(third);
    assert.equal(third.x, 1 / 3);
});

test('more than the room for a call is allocated for it', async () => {
    const q = await load();
    const dst = q.surface(2000, 2);
    const [xs, ys] = [Array.from({ length: 1501 }, (_, i) => i), Array(1501).fill(1)];
    q.iPolyBesier(dst, dst.rectangle, dst.pitch, xs, ys, 1501, 0xabcdef, 1);
    assert.deepEqual([...dst.pixels.subarray(0, 2000)], Array(2000).fill(0));
    assert.equal(dst.pixels[2000 + 700], 0xabcdef);
    assert.deepEqual(xs.slice(0, 3), [0, 1, 2]);
});

test('small numbers are cut to their size, results are unsigned and truth values', async () => {
    const q = await load();
    const [dst, src] = [q.surface(1, 1), q.surface(1, 1)];
    const blended = (weight) => {
        dst.pixels[0] = 0;
        src.pixels[0] = 0x404040;
        q.iBltFast32_Add_scaled(dst, src, 0, 0, src.rectangle, 1, 1, weight, 0, 0);
        return dst.pixels[0];
    };
    assert.notEqual(blended(128), blended(64));
    assert.equal(blended(128 + 256), blended(128));
    for (let i = 0; i < 100; ++i) assert.ok(q.randColor() >= 0);
    const [o, x, y] = [{ x: 0, y: 0, z: 0 }, { x: 1, y: 0, z: 0 }, { x: 0, y: 1, z: 0 }];
    assert.deepEqual([q.IsFront(o, x, y), q.IsFront(o, y, x)].sort(), [false, true]);
});

test('what the library remembers lies in a record and in memory of the module', async () => {
    const q = await load();
    const record = q.transfer({ planeElements: 64, originElement: 9 });
    const plane = q.FindNotUsedMemory(record, 0, -1);
    const block = q.GetPrivate_QMGP_Data(record, 1);
    assert.ok(plane > 0 && block > 0);
    const surface = q.surface(6, 6);
    q.iFillRect(surface, { left: 1, top: 1, right: 5, bottom: 5 }, 6, 5);
    q.iFillRect(surface, { left: 2, top: 2, right: 4, bottom: 4 }, 6, 0);
    q.SetRegionFill(block, surface, 6, surface, 6);
    q.Region_Fill(block, 2, 2, 5, 5, 2, 2, 1, surface.rectangle);
    assert.deepEqual([...surface.pixels].map((pixel) => pixel / 5).join(''), '000000011110011110011110011110000000');
    q.DeleteMemoryBlocks(record);
    q.release(record);
    assert.throws(() => q.bSetRegionFill(block, q.bytes(4), all(2, 2), 2), /bSetRegionFill: planeRect takes .*memory/);
});

test('tables are filled, letters and files are lacking', async () => {
    const q = await load();
    assert.deepEqual([q.iSin[1024], q.iCos[0], q.iSqrt[1024], q.iSqrt.length], [23170, 32768, 32768, 8192]);
    const surface = q.surface(8, 8);
    assert.equal(q.iTextOut(surface, surface.rectangle, 8, 'caf\u00e9', 0xff, 0, 0, 8, 'sans'), 0);
    assert.equal(q.iTextOut(surface, surface.rectangle, 8, null, 0xff, 0, 0, 8, 'sans'), 0);
    assert.equal(q.LoadBitmap24(surface, 'a.bmp', 8, 8), 0);
    assert.throws(() => q.LoadBitmap24(surface, '\u20ac.bmp', 8, 8), /LoadBitmap24: name takes a text of 8-bit/);
});

test('an argument that cannot be is named', async () => {
    const q = await load();
    const [surface, other] = [q.surface(4, 4), (await load()).surface(4, 4)];
    const { rectangle } = surface;
    const wrong = [
        [[surface, rectangle, 4], 'iFillRect takes 4 arguments, not 3'],
        [[surface, rectangle, 4, '1'], 'iFillRect: colour takes a number'],
        [[surface, rectangle, undefined, 1], 'iFillRect: pitch takes a number'],
        [[null, rectangle, 4, 1], 'iFillRect: dst takes something, not null'],
        [[0, rectangle, 4, 1], 'iFillRect: dst takes something, not null'],
        [[[1, 2], rectangle, 4, 1], 'iFillRect: dst takes a surface, or other memory of the module'],
        [[new Uint32Array(16), rectangle, 4, 1], 'iFillRect: dst takes a surface, or other memory of the module'],
        [[other, rectangle, 4, 1], 'iFillRect: dst takes memory of this module'],
        [[surface, { left: 0, top: 0 }, 4, 1], 'iFillRect: rect takes { left, top, right, bottom }'],
        [[surface, null, 4, 1], 'iFillRect: rect takes something, not null'],
    ];
    for (const [given, message] of wrong) assert.throws(() => q.iFillRect(...given), { name: 'TypeError', message });
    assert.deepEqual([...surface.pixels], Array(16).fill(0));
    surface.free();
    surface.free();
    assert.throws(() => q.iFillRect(surface, rectangle, 4, 1), /this memory was freed/);
    assert.throws(() => surface.pixels, /this memory was freed/);
    assert.throws(() => q.surface(-1, 4), /a surface of -1 x 4/);
    assert.throws(() => q.surface(65536, 65536), RangeError);
    q.iFillRect(q.surface(4, 4), rectangle, 4, 1);
});

test('a call that traps ends its instance and no other', async () => {
    const [q, other] = [await load(), await load()];
    assert.throws(() => q.randIntGauss(0, 5, 0), WebAssembly.RuntimeError);
    assert.throws(() => q.randInt(0, 5), /an earlier call ended this instance/);
    assert.ok(other.randInt(0, 5) <= 5);
});

test('a canvas takes and gives red first', async () => {
    const q = await load();
    const surface = q.surface(2, 1);
    surface.pixels.set([0x112233, 0xff445566]);
    assert.deepEqual([...surface.toRgba()], [0x11, 0x22, 0x33, 0xff, 0x44, 0x55, 0x66, 0xff]);
    surface.setRgba(new Uint8ClampedArray([1, 2, 3, 4, 5, 6, 7, 255]));
    assert.deepEqual([...surface.pixels], [0x04010203, 0xff050607]);
    assert.throws(() => surface.toRgba(new Uint8ClampedArray(4)), /4 bytes for 2 pixels/);
});

test('the module is loaded from whatever has it', async () => {
    const bytes = readFileSync(file);
    const response = new Response(bytes, { headers: { 'Content-Type': 'application/wasm' } });
    for (const source of [new URL(`file://${file}`), bytes, new WebAssembly.Module(bytes), response])
        assert.equal((await load(source)).Magnitude({ x: 3, y: 4, z: 0 }), 5);
    await assert.rejects(load(new Uint8Array(8)), WebAssembly.CompileError);
});

test('every function of the module is called with as many arguments as it has', async () => {
    const q = await load();
    const exports = new WebAssembly.Instance(new WebAssembly.Module(readFileSync(file)), {
        wasi_snapshot_preview1: new Proxy({}, { get: () => () => 8 }),
    }).exports;
    const own = /^(memory|_initialize|q_Mur\w+|iSin|iCos|iSqrt)$/;
    const names = Object.keys(exports).filter((name) => !own.test(name));
    assert.equal(names.length, 257);
    assert.deepEqual(Object.keys(signatures).sort(), names.sort());
    for (const name of names) {
        const [result, ...parameters] = signatures[name].split(' ');
        assert.equal(exports[name].length, parameters.length + Number(result.startsWith('_')), name);
        assert.equal(typeof q[name], 'function');
    }
});
