// The module beside the list of exports, and some of its functions as a page calls them.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { test } from 'node:test';

const bytes = readFileSync(process.env.Q_MUR_MODULE);
const module = new WebAssembly.Module(bytes);
const badDescriptor = 8;

/** An instance whose system has no files. */
function instantiated() {
    const system = new Proxy({}, { get: () => () => badDescriptor });
    const { exports } = new WebAssembly.Instance(module, { wasi_snapshot_preview1: system });
    exports._initialize();
    return exports;
}

/** The plain name, and how many parameters a call passes, of each function in the list of exports. */
function listed() {
    const functions = [];
    for (const line of readFileSync(process.env.Q_MUR_EXPORTS, 'utf8').split('\n')) {
        const found = /^([^#\s].*?)(\w+)\((.*)\)$/.exec(line);
        if (!found) continue;
        const [, result, name, parameters] = found;
        const isRecord = /^_\w+ $/.test(result);
        const count = parameters === '' ? 0 : parameters.split(',').length;
        functions.push({ name, count: count + Number(isRecord) });
    }
    return functions;
}

test('every function of the list is exported, an overload with a word behind its name', () => {
    const exports = instantiated();
    const others = ['memory', '_initialize', 'q_MurAllocate', 'q_MurRelease', 'q_MurTransfer', 'iSin', 'iCos', 'iSqrt'];
    const names = Object.keys(exports).filter((name) => !others.includes(name));
    for (const name of others) assert.ok(name in exports, name);
    const functions = listed();
    assert.equal(functions.length, 257);
    assert.equal(names.length, 257);
    const expected = new Map();
    for (const { name, count } of functions) expected.set(name, [...(expected.get(name) ?? []), count]);
    const longestFirst = [...expected].sort(([a], [b]) => b.length - a.length);
    for (const [name, counts] of longestFirst) {
        const further = names.filter((other) => other.startsWith(`${name}_`) && !expected.has(other));
        const found = [name, ...further];
        assert.equal(found.length, counts.length, `${name}: ${found}`);
        const lengths = found.map((one) => exports[one].length);
        assert.deepEqual(lengths.sort(), counts.sort(), name);
        for (const one of found) names.splice(names.indexOf(one), 1);
    }
    assert.deepEqual(names, []);
});

test('what it asks of a system is a few functions for files', () => {
    for (const wanted of WebAssembly.Module.imports(module)) {
        assert.equal(wanted.module, 'wasi_snapshot_preview1');
        assert.equal(wanted.kind, 'function');
        assert.match(wanted.name, /^(fd_(close|fdstat_get|fdstat_set_flags|prestat_get|prestat_dir_name|read|seek|write)|path_open|proc_exit)$/);
    }
});

test('it takes less than 250 KB to fetch', () => {
    const packed = execFileSync('gzip', ['-9'], { input: bytes });
    assert.ok(packed.length < 250000, `${packed.length} bytes`);
});

test('the tables are empty until the host fills them', () => {
    const exports = instantiated();
    const entry = (table, index) => new Int32Array(exports.memory.buffer, exports[table].value, 8192)[index];
    assert.equal(entry('iCos', 0), 0);
    exports.Init_qMur_GlobalData(0, 0);
    const expected = { iSin: [0, 23170, 32768], iCos: [32768, 23170, 0], iSqrt: [0, 32768, 46340] };
    for (const [table, entries] of Object.entries(expected))
        assert.deepEqual([0, 1024, 2048].map((index) => entry(table, index)), entries, table);
});

test('a surface is filled and copied, pixel by pixel as worked out by hand', () => {
    const exports = instantiated();
    exports.Init_qMur_GlobalData(0, 0);
    const words = (address, count) => new Uint32Array(exports.memory.buffer, address, count);
    const [dst, src, rect] = [exports.q_MurAllocate(4 * 12), exports.q_MurAllocate(4 * 4), exports.q_MurAllocate(16)];
    for (const address of [dst, src, rect]) assert.equal(address % 16, 0);
    assert.deepEqual([...words(dst, 12)], Array(12).fill(0));
    words(rect, 4).set([1, 0, 3, 2]); // columns 1 and 2 of rows 0 and 1
    exports.iFillRect(dst, rect, 4, 0x123456);
    const filled = 0x123456;
    assert.deepEqual([...words(dst, 12)], [0, filled, filled, 0, 0, filled, filled, 0, 0, 0, 0, 0]);
    words(src, 4).set([1, 2, 3, 4]);
    words(rect, 4).set([0, 0, 2, 2]);
    exports.iBltFast32_KeySrc(dst, src, 2, 1, rect, 4, 2, 3); // all but the pixel 3
    assert.deepEqual([...words(dst, 12)], [0, filled, filled, 0, 0, filled, 1, 2, 0, 0, 0, 4]);
    for (const address of [dst, src, rect]) exports.q_MurRelease(address);
});

test('records are passed and returned by their address', () => {
    const exports = instantiated();
    const floats = (address) => new Float32Array(exports.memory.buffer, address, 4);
    const [result, vector] = [exports.q_MurAllocate(16), exports.q_MurAllocate(16)];
    floats(vector).set([3, 4, 0, 0]);
    assert.equal(exports.Magnitude(vector), 5);
    exports.Normalize(result, vector);
    assert.deepEqual([...floats(result)].slice(0, 3), [0.6, 0.8, 0].map(Math.fround));
});

test('a file that the system has not is answered 0', () => {
    const exports = instantiated();
    const name = exports.q_MurAllocate(16);
    new Uint8Array(exports.memory.buffer, name, 5).set([...'a.bmp'].map((c) => c.charCodeAt(0)));
    assert.equal(exports.LoadBitmap24(exports.q_MurAllocate(4), name, 1, 1), 0);
});
