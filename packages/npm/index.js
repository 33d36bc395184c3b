// q_Mur for JavaScript: the module's functions, taking what JavaScript has for numbers, records and memory.

import { signatures } from './signatures.js';

const badDescriptor = 8;
const scratchSize = 4096;
const tableLength = 8192;

const records = {
    tagRECT: [Int32Array, ['left', 'top', 'right', 'bottom']],
    tagPOINT: [Int32Array, ['x', 'y']],
    _POINTINT: [Int32Array, ['x', 'y']],
    _POINT3D: [Int32Array, ['x', 'y', 'z', 'w']],
    _POINT3DFLOAT: [Float32Array, ['x', 'y', 'z', 'w']],
    _I3DVECTOR: [Float32Array, ['x', 'y', 'z', 'w']],
};

const arrays = {
    words: Uint32Array,
    ints: Int32Array,
    shorts: Int16Array,
    bytes: Uint8Array,
    floats: Float32Array,
};

/** The bytes of the module's file, wherever it lies: beside this file, if nothing is said. */
async function fetched(source) {
    const isName = typeof source === 'string' || source instanceof URL;
    if (!isName) return source instanceof Response ? source.arrayBuffer() : source;
    const location = new URL(source, import.meta.url);
    if (location.protocol === 'file:') return (await import('node:fs/promises')).readFile(location);
    const answer = await fetch(location);
    if (!answer.ok) throw new Error(`${location}: ${answer.status} ${answer.statusText}`);
    return answer.arrayBuffer();
}

/** An instance of the module, its memory, and room in it for what lasts as long as a call. */
class Instance {
    constructor(exports) {
        this.exports = exports;
        this.views = new Map();
        this.scratch = this.allocated(scratchSize);
        this.used = 0;
        this.borrowed = [];
        this.written = [];
    }

    /** The whole memory as numbers of one kind. Memory that has grown is another buffer. */
    memory(View) {
        let view = this.views.get(View);
        if (view?.buffer !== this.exports.memory.buffer) {
            view = new View(this.exports.memory.buffer);
            this.views.set(View, view);
        }
        return view;
    }

    allocated(bytes) {
        const address = this.exports.q_MurAllocate(bytes);
        if (!address) throw new RangeError(`there are no ${bytes} bytes left`);
        return address;
    }

    /** So many bytes until the call ends. */
    borrow(bytes) {
        const begin = this.used;
        if (begin + bytes <= scratchSize) {
            this.used += (bytes + 7) & ~7;
            return this.scratch + begin;
        }
        const address = this.allocated(bytes);
        this.borrowed.push(address);
        return address;
    }

    giveBack() {
        this.used = 0;
        this.written.length = 0;
        while (this.borrowed.length) this.exports.q_MurRelease(this.borrowed.pop());
    }
}

/** Memory of the module as an array of numbers. */
class Block {
    #instance;
    #address;
    #View;
    #view;

    constructor(instance, View, length) {
        if (!Number.isInteger(length) || length < 0 || length * View.BYTES_PER_ELEMENT > 0x7fffffff)
            throw new RangeError(`${length} is no length`);
        this.#instance = instance;
        this.#View = View;
        this.#address = instance.allocated(Math.max(length, 1) * View.BYTES_PER_ELEMENT);
        this.length = length;
    }

    /** Where it lies in the module's memory. */
    get address() {
        if (!this.#address) throw new TypeError('this memory was freed');
        return this.#address;
    }

    /** The numbers themselves, for as long as no call lets the memory grow. */
    get values() {
        const { buffer } = this.#instance.exports.memory;
        if (this.#view?.buffer !== buffer || !this.#address)
            this.#view = new this.#View(buffer, this.address, this.length);
        return this.#view;
    }

    /** Whether it is memory of this instance. */
    isOf(instance) {
        return this.#instance === instance;
    }

    free() {
        if (this.#address) this.#instance.exports.q_MurRelease(this.#address);
        this.#address = 0;
    }
}

/** A picture: `height` rows of `width` pixels, 0xTTRRGGBB each, without gaps. */
class Surface extends Block {
    constructor(instance, width, height) {
        if (!(Number.isInteger(width) && Number.isInteger(height) && width >= 0 && height >= 0))
            throw new RangeError(`a surface of ${width} x ${height}`);
        super(instance, Uint32Array, width * height);
        this.width = width;
        this.height = height;
        this.pitch = width;
    }

    get pixels() {
        return this.values;
    }

    get rectangle() {
        return { left: 0, top: 0, right: this.width, bottom: this.height };
    }

    /** The address of a pixel, for calls that take a part of the surface as a surface. */
    at(x, y) {
        return this.address + 4 * (y * this.pitch + x);
    }

    /** A copy in the order of a canvas, red first, opaque. */
    toRgba(rgba = new Uint8ClampedArray(4 * this.length)) {
        if (rgba.length !== 4 * this.length) throw new RangeError(`${rgba.length} bytes for ${this.length} pixels`);
        const { pixels } = this;
        for (let i = 0; i < pixels.length; ++i) {
            const pixel = pixels[i];
            rgba[4 * i] = (pixel >>> 16) & 0xff;
            rgba[4 * i + 1] = (pixel >>> 8) & 0xff;
            rgba[4 * i + 2] = pixel & 0xff;
            rgba[4 * i + 3] = 0xff;
        }
        return rgba;
    }

    /** Takes the pixels of a canvas, red first; its opacity becomes the top byte. */
    setRgba(rgba) {
        if (rgba.length !== 4 * this.length) throw new RangeError(`${rgba.length} bytes for ${this.length} pixels`);
        const { pixels } = this;
        for (let i = 0; i < pixels.length; ++i)
            pixels[i] = (rgba[4 * i + 3] << 24) | (rgba[4 * i] << 16) | (rgba[4 * i + 1] << 8) | rgba[4 * i + 2];
    }
}

/** What a call hands over as a number, or complains of. */
function numberFrom(mask) {
    return (instance, value, complain) => {
        if (typeof value !== 'number') complain('a number');
        return mask ? value & mask : value;
    };
}

/** The address of what lies in the module's memory already; undefined for anything else. */
function addressOf(instance, value, complain) {
    if (typeof value === 'number') return value;
    if (value instanceof Block) {
        if (!value.isOf(instance)) complain('memory of this module');
        return value.address;
    }
    if (ArrayBuffer.isView(value) && value.buffer === instance.exports.memory.buffer) return value.byteOffset;
    return undefined;
}

/** Memory of the module and nothing else, as no pixels are copied. */
function passMemory(instance, value, complain) {
    return addressOf(instance, value, complain) ?? complain('a surface, or other memory of the module');
}

/** Numbers: memory of the module, or an array that is copied there and back. */
function passNumbers(View) {
    return (instance, value, complain) => {
        const address = addressOf(instance, value, complain);
        if (address !== undefined) return address;
        if (!Array.isArray(value) && !ArrayBuffer.isView(value)) complain('an array of numbers');
        const borrowed = instance.borrow(value.length * View.BYTES_PER_ELEMENT);
        const begin = borrowed / View.BYTES_PER_ELEMENT;
        instance.memory(View).set(value, begin);
        instance.written.push(() => {
            const after = instance.memory(View);
            const given = new View(1);
            for (let i = 0; i < value.length; ++i) {
                given[0] = value[i];
                if (!Object.is(given[0], after[begin + i])) value[i] = after[begin + i];
            }
        });
        return borrowed;
    };
}

/** A record, or an array of them, copied there and back; or memory of the module. */
function passRecord([View, fields]) {
    return (instance, value, complain) => {
        const address = addressOf(instance, value, complain);
        if (address !== undefined) return address;
        const all = Array.isArray(value) ? value : [value];
        for (const record of all)
            for (const field of fields)
                if (typeof (record?.[field] ?? (field === 'w' ? 0 : undefined)) !== 'number')
                    complain(`{ ${fields.join(', ')} }`);
        const borrowed = instance.borrow(4 * fields.length * all.length);
        const before = View.from(all.flatMap((record) => fields.map((field) => record[field] ?? 0)));
        instance.memory(View).set(before, borrowed / 4);
        instance.written.push(() => {
            const after = instance.memory(View).subarray(borrowed / 4, borrowed / 4 + before.length);
            after.forEach((number, i) => {
                if (Object.is(number, before[i])) return;
                all[Math.floor(i / fields.length)][fields[i % fields.length]] = number;
            });
        });
        return borrowed;
    };
}

/** A text of 8-bit characters. */
function passText(instance, value, complain) {
    const address = addressOf(instance, value, complain);
    if (address !== undefined) return address;
    if (typeof value !== 'string' || /[^\x01-\xff]/.test(value)) complain('a text of 8-bit characters');
    const borrowed = instance.borrow(value.length + 1);
    const bytes = instance.memory(Uint8Array);
    for (let i = 0; i < value.length; ++i) bytes[borrowed + i] = value.charCodeAt(i);
    bytes[borrowed + value.length] = 0;
    return borrowed;
}

const passes = {
    number: numberFrom(0),
    byte: numberFrom(0xff),
    ushort: numberFrom(0xffff),
    memory: passMemory,
    text: passText,
};
for (const [name, View] of Object.entries(arrays)) passes[name] = passNumbers(View);
for (const [name, record] of Object.entries(records)) passes[name] = passRecord(record);

/** A function of the module as its signature tells. */
function called(instance, name, signature) {
    const native = instance.exports[name];
    const [result, ...parameters] = signature.split(' ');
    const given = parameters.map((parameter) => {
        const [label, kind] = parameter.split(':');
        const mayBeNull = kind.endsWith('?');
        const pass = passes[mayBeNull ? kind.slice(0, -1) : kind];
        const isNumber = ['number', 'byte', 'ushort'].includes(kind);
        const complain = (wanted) => {
            throw new TypeError(`${name}: ${label} takes ${wanted}`);
        };
        return (value) => {
            if (isNumber) return pass(instance, value, complain);
            if (value === null || value === 0) return mayBeNull ? 0 : complain('something, not null');
            return pass(instance, value, complain);
        };
    });
    const returned = records[result];
    const finished = (value, address) => {
        if (result === 'uint') return value >>> 0;
        if (result === 'bool') return value !== 0;
        if (!returned) return value;
        const [View, fields] = returned;
        const numbers = instance.memory(View);
        return Object.fromEntries(fields.map((field, i) => [field, numbers[address / 4 + i]]));
    };
    return (...values) => {
        if (values.length !== given.length)
            throw new TypeError(`${name} takes ${given.length} arguments, not ${values.length}`);
        if (instance.fault) throw new Error(`an earlier call ended this instance: ${instance.fault.message}`);
        try {
            const handed = values.map((value, i) => given[i](value));
            const address = returned ? instance.borrow(4 * returned[1].length) : 0;
            if (returned) handed.unshift(address);
            const value = native(...handed);
            for (const write of instance.written) write();
            return finished(value, address);
        } catch (failure) {
            if (failure instanceof WebAssembly.RuntimeError) instance.fault = failure;
            throw failure;
        } finally {
            if (!instance.fault) instance.giveBack();
        }
    };
}

/**
 * Loads the module and makes it ready. What `source` is: the URL of `q_Mur.wasm`, its bytes, an answer of `fetch`, or
 * a compiled module; the file of this package, if nothing is said.
 */
export async function load(source = new URL('q_Mur.wasm', import.meta.url)) {
    const system = new Proxy({}, { get: () => () => badDescriptor });
    const code = source instanceof WebAssembly.Module ? source : await WebAssembly.compile(await fetched(await source));
    const { exports } = await WebAssembly.instantiate(code, { wasi_snapshot_preview1: system });
    exports._initialize();
    exports.Init_qMur_GlobalData(0, 0);

    const instance = new Instance(exports);
    const q = {
        memory: exports.memory,
        surface: (width, height) => new Surface(instance, width, height),
        transfer: ({ planeElements = 0, originElement = 0, vertexArrayEntries = 0, matrixStackDepth = 0 } = {}) => {
            const address = exports.q_MurTransfer(planeElements, originElement, vertexArrayEntries, matrixStackDepth);
            if (!address) throw new RangeError('there is no memory left for a record');
            return address;
        },
        release: (address) => exports.q_MurRelease(address),
    };
    for (const [name, View] of Object.entries(arrays)) q[name] = (length) => new Block(instance, View, length);
    for (const name of ['iSin', 'iCos', 'iSqrt'])
        Object.defineProperty(q, name, {
            enumerable: true,
            get: () => new Int32Array(exports.memory.buffer, exports[name].value, tableLength),
        });
    for (const [name, signature] of Object.entries(signatures)) q[name] = called(instance, name, signature);
    return Object.freeze(q);
}
