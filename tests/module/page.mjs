// What the page does: it runs the test program on a system of its own, and the module on one without files.

const badDescriptor = 8;

/** As much of a system as a program needs that reads no files: arguments, a clock, and somewhere to write. */
class System {
    constructor(words) {
        this.words = words.map((word) => new TextEncoder().encode(`${word}\0`));
        this.output = '';
    }

    get view() {
        return new DataView(this.memory.buffer);
    }

    imports() {
        const calls = {
            args_sizes_get: (count, size) => {
                this.view.setUint32(count, this.words.length, true);
                this.view.setUint32(size, this.words.reduce((sum, word) => sum + word.length, 0), true);
                return 0;
            },
            args_get: (addresses, text) => {
                for (const word of this.words) {
                    this.view.setUint32(addresses, text, true);
                    new Uint8Array(this.memory.buffer).set(word, text);
                    addresses += 4;
                    text += word.length;
                }
                return 0;
            },
            environ_sizes_get: (count, size) => {
                this.view.setUint32(count, 0, true);
                this.view.setUint32(size, 0, true);
                return 0;
            },
            environ_get: () => 0,
            clock_time_get: (clock, precision, time) => {
                this.view.setBigUint64(time, BigInt(Math.round(performance.now() * 1e6)), true);
                return 0;
            },
            random_get: (address, count) => {
                crypto.getRandomValues(new Uint8Array(this.memory.buffer, address, count));
                return 0;
            },
            fd_write: (file, parts, count, written) => {
                let all = 0;
                for (let i = 0; i < count; ++i) {
                    const address = this.view.getUint32(parts + 8 * i, true);
                    const length = this.view.getUint32(parts + 8 * i + 4, true);
                    this.output += new TextDecoder().decode(new Uint8Array(this.memory.buffer, address, length));
                    all += length;
                }
                this.view.setUint32(written, all, true);
                return 0;
            },
            proc_exit: (status) => {
                throw { status };
            },
        };
        return { wasi_snapshot_preview1: new Proxy(calls, { get: (_, name) => calls[name] ?? (() => badDescriptor) }) };
    }
}

async function loaded(path, system) {
    const { instance } = await WebAssembly.instantiateStreaming(fetch(path), system.imports());
    system.memory = instance.exports.memory;
    return instance.exports;
}

async function testsRun(names) {
    const filter = names.map((name) => `agrees_with_its_twin.${name}`).join(':');
    const system = new System(['tests', '--cases=2000', `--gtest_filter=${filter}`]);
    const program = await loaded('tests.wasm', system);
    try {
        program._start();
        return { status: 0, output: system.output };
    } catch (end) {
        if (end?.status === undefined) throw new Error(`${end}\n${system.output}`);
        return { status: end.status, output: system.output };
    }
}

async function drawn() {
    const q = await loaded('q_Mur.wasm', new System([]));
    q._initialize();
    q.Init_qMur_GlobalData(0, 0);
    const [surface, rect] = [q.q_MurAllocate(16), q.q_MurAllocate(16)];
    new Int32Array(q.memory.buffer, rect, 4).set([1, 0, 3, 1]);
    q.iFillRect(surface, rect, 4, 0x123456);
    return [...new Uint32Array(q.memory.buffer, surface, 4)];
}

async function report() {
    try {
        const names = new URLSearchParams(location.search).getAll('test');
        return { ...(await testsRun(names)), pixels: await drawn() };
    } catch (error) {
        return { failure: String(error?.stack ?? error) };
    }
}

await fetch('/', { method: 'POST', body: JSON.stringify(await report()) });
