"use strict";

// The playground of a function's page: the library as WebAssembly draws the catalogue's scene, with what the visitor
// changes of its arguments. The link in the address holds all of it but photographs of one's own.

const row = JSON.parse(document.getElementById("row").textContent);
const base = { width: 400, height: 225 };
const sizes = ["400x225", "640x360", "1280x720"];
const Shape = { nothing: 0, number: 1, rectangle: 2, point: 3, words: 4, surface: 5 };
const Form = ["null", "number", "rectangle", "point", "words", "letters", "memory", "block"];
const parts = { [Shape.rectangle]: ["left", "top", "right", "bottom"], [Shape.point]: ["x", "y"], [Shape.number]: [""] };
const languages = ["C++", "JavaScript", "Python"];
const secondsOfFilm = 4;
const magnified = 8;
const fine = 2;

/** Makes an element: `make("label", { className: "wide" }, "text", child)`. */
function make(name, properties = {}, ...children) {
    const made = Object.assign(document.createElement(name), properties);
    made.append(...children);
    return made;
}

/** Gives a canvas a size, which empties it, if it has another. */
function resize(canvas, width, height) {
    if (canvas.width !== width || canvas.height !== height)
        Object.assign(canvas, { width, height });
}

// The module

/** The library and the catalogue's scenes. A call that traps leaves it unusable; then another takes its place. */
class Library {
    static async compiled() {
        const packed = Uint8Array.from(atob(playgroundModule), (letter) => letter.charCodeAt(0));
        const stream = new Blob([packed]).stream().pipeThrough(new DecompressionStream("gzip"));
        return WebAssembly.compile(await new Response(stream).arrayBuffer());
    }

    static async from(module) {
        const badDescriptor = 8;
        const system = new Proxy({}, { get: () => () => badDescriptor });
        const library = new Library();
        library.q = (await WebAssembly.instantiate(module, { wasi_snapshot_preview1: system })).exports;
        library.q._initialize();
        library.q.begin();
        const name = new TextEncoder().encode(row.fullName + "\0");
        new Uint8Array(library.q.memory.buffer).set(name, library.q.nameOfRow());
        if (!library.q.open())
            throw new Error(`there is no ${row.fullName}`);
        return library;
    }

    text(address) {
        const bytes = new Uint8Array(this.q.memory.buffer);
        return new TextDecoder().decode(bytes.subarray(address, bytes.indexOf(0, address)));
    }

    /** An argument as it is passed: its form and its numbers. */
    passed(argument) {
        const numbers = new Float64Array(this.q.memory.buffer, this.q.numbers(argument), this.q.numbersCount(argument));
        return { form: Form[this.q.form(argument)], numbers: [...numbers], letters: this.text(this.q.letters(argument)) };
    }

    get texts() {
        return Array.from({ length: this.q.texts() }, (_, i) => {
            const [x, y, colour, height] = [0, 1, 2, 3].map((which) => this.q.textNumber(i, which));
            return { x, y, colour: colourText(colour), height, text: this.text(this.q.text(i)) };
        });
    }

    get picture() {
        const [width, height] = [this.q.width(), this.q.height()];
        const image = this.q.image(); // for which the memory may grow
        const bytes = new Uint8ClampedArray(this.q.memory.buffer, image, 4 * width * height);
        return new ImageData(bytes, width, height);
    }

    pixel(x, y) {
        return new Uint32Array(this.q.memory.buffer, this.q.pixels(), this.q.pitch() * y + x + 1)[this.q.pitch() * y + x];
    }

    takePicture(argument, { width, height, data }) {
        const address = this.q.picture(argument, width, height);
        const pixels = new Uint32Array(this.q.memory.buffer, address, width * height);
        for (let i = 0; i < pixels.length; ++i)
            pixels[i] = (data[4 * i + 3] << 24) | (data[4 * i] << 16) | (data[4 * i + 1] << 8) | data[4 * i + 2];
    }
}

// The call as code

function colourText(colour) {
    return "#" + (colour & 0xffffff).toString(16).padStart(6, "0");
}

function hexText(number) {
    return "0x" + (number >>> 0).toString(16).toUpperCase().padStart(number > 0xffffff ? 8 : 6, "0");
}

/** The fewest digits that come to the same float. */
function realText(number, type) {
    if (!Number.isFinite(number))
        return "0.0";
    const round = type.includes("double") ? Number : Math.fround;
    let text = String(number);
    for (let digits = 1; digits < 18; ++digits) {
        if (round(Number(number.toPrecision(digits))) === round(number)) {
            text = String(Number(number.toPrecision(digits)));
            break;
        }
    }
    return /[.e]/.test(text) ? text : text + ".0";
}

function isReal(type) {
    return /float|double|_POINT3DFLOAT|_I3DVECTOR|_I3DMATRIX/.test(type);
}

function numberText(number, argument) {
    if (/float|double/.test(argument.type))
        return realText(number, argument.type);
    const isColour = argument.kind === "colour" || argument.kind === "key" || argument.kind === "colours";
    return isColour || (argument.type.includes("q_ulong") && number > 4096) ? hexText(number) : String(Math.trunc(number));
}

/** Words of memory as numbers of the array's type. */
function wordTexts(words, argument) {
    if (isReal(argument.type))
        return [...new Float32Array(Uint32Array.from(words).buffer)].map((number) => realText(number, "float"));
    if (argument.type.includes("q_ulong"))
        return words.map(hexText);
    return words.map((word) => String(word | 0));
}

/** The library's own name in the page's calls is taken. */
function variable(argument) {
    return argument.name === "q" ? "pointQ" : argument.name;
}

function bare(type) {
    return type.replace("const", "").replace(/[*&]/g, "").trim();
}

const sizesOfTypes = { q_ulong: 4, int: 4, float: 4, short: 2, "unsigned char": 1 };

/** Memory as C++ declares it: a vector of its own, or a pointer to what only the host can know. */
function memoryText(argument, [width, height, bytes, pitch]) {
    const type = bare(argument.type);
    const isBeyond = argument.kind === "source" && row.readsBeyond && height > 1;
    const rows = (pitch === width ? "" : `, ${pitch} from row to row`) + (isBeyond ? ", and a row beyond" : "");
    const what = height > 1 ? `${width} x ${height} ${bytes === 4 ? "pixels" : "elements"}${rows}` : `${width} words`;
    if (sizesOfTypes[type] !== bytes || pitch < width)
        return { line: `${type} *${argument.name}; // ${what}`, text: argument.name };
    const count = height > 1 ? `${pitch} * ${height + isBeyond}` : width;
    return { line: `std::vector<${type}> ${argument.name}(${count}); // ${what}`, text: `${argument.name}.data()` };
}

const names = {
    rectangle: ["left", "top", "right", "bottom"],
    point: ["x", "y"],
    vector: ["x", "y", "z", "w"],
};

function isVector(argument, numbers) {
    return /_POINT3D|_I3DVECTOR|_POINTINT|POINT/.test(argument.type) && numbers.length <= 4;
}

/** Fields of an object or a dictionary. */
function fieldsText(keys, texts, colon) {
    return texts.map((text, i) => `${colon(keys[i])}${text}`).join(", ");
}

const writers = {
    "C++": {
        number: (argument, number) => numberText(number, argument) + (argument.type.includes("float") ? "F" : ""),
        null: () => "nullptr",
        rectangle: (argument, numbers, lines) => {
            lines.push(`tagRECT ${argument.name} = {${numbers.join(", ")}};`);
            return (argument.type.includes("*") ? "&" : "") + argument.name;
        },
        point: (argument, numbers, lines) => {
            lines.push(`tagPOINT ${argument.name} = {${numbers.join(", ")}};`);
            return (argument.type.includes("*") ? "&" : "") + argument.name;
        },
        words: (argument, numbers, lines) => {
            const type = bare(argument.type);
            const suffix = isReal(type) ? "F" : "";
            const texts = wordTexts(numbers, argument).map((text) => text + suffix).join(", ");
            const isOne = (type.includes("_") && type !== "q_ulong" && numbers.length <= 4) || numbers.length === 1;
            if (!isOne || (type === "_I3DMATRIX" && numbers.length === 16)) {
                lines.push(`${type} ${argument.name}${type === "_I3DMATRIX" ? "" : "[]"} = {${texts}};`);
                return type === "_I3DMATRIX" && argument.type.includes("*") ? `&${argument.name}` : argument.name;
            }
            lines.push(`${type} ${argument.name} = ${numbers.length === 1 ? texts : `{${texts}}`};`);
            return (argument.type.includes("&") ? "" : "&") + argument.name;
        },
        letters: (argument, letters, lines) => {
            lines.push(`char ${argument.name}[] = ${JSON.stringify(letters)};`);
            return argument.name;
        },
        memory: (argument, numbers, lines) => {
            const { line, text } = memoryText(argument, numbers);
            lines.push(line);
            return text;
        },
        block: (argument, numbers, lines) => {
            lines.push(`${bare(argument.type)} *${argument.name}; // made once`);
            return argument.name;
        },
        call: (passed) => {
            const result = row.result === "void" ? "" : `${row.result}${row.result.endsWith("*") ? "" : " "}result = `;
            return wrapped(`${result}${row.name}(`, passed.map(({ text }) => text), ");");
        },
    },
    JavaScript: {
        begin: ["import { load } from 'q_mur';", "const q = await load();"],
        number: (argument, number) => numberText(number, argument),
        pitch: (argument) => `${argument.of}.pitch`,
        null: () => "0",
        rectangle: (argument, numbers, lines) => {
            lines.push(`const ${variable(argument)} = { ${fieldsText(names.rectangle, numbers, (key) => `${key}: `)} };`);
            return variable(argument);
        },
        point: (argument, numbers) => `{ ${fieldsText(names.point, numbers, (key) => `${key}: `)} }`,
        words: (argument, numbers, lines) => {
            const texts = wordTexts(numbers, argument);
            const isRecord = isVector(argument, numbers) && numbers.length > 1;
            const text = isRecord ? `{ ${fieldsText(names.vector, texts, (key) => `${key}: `)} }` : `[${texts.join(", ")}]`;
            lines.push(`const ${variable(argument)} = ${text};`);
            return variable(argument);
        },
        letters: (argument, letters) => JSON.stringify(letters),
        memory: (argument, numbers, lines) => {
            const [width, height, bytes] = numbers;
            const array = isReal(argument.type) ? "floats" : bytes === 1 ? "bytes" : bytes === 2 ? "shorts" : "ints";
            const isPicture = height > 1 && bytes === 4;
            lines.push(`const ${variable(argument)} = q.${isPicture ? `surface(${width}, ${height})` : `${array}(${width * height})`};`);
            return variable(argument);
        },
        block: (argument, numbers, lines) => {
            lines.push(`// ${variable(argument)}: a ${bare(argument.type)}, made once`);
            return variable(argument);
        },
        call: (passed) => {
            const result = row.result === "void" ? "" : "const result = ";
            return wrapped(`${result}q.${row.plainName}(`, passed.map(({ text }) => text), ");");
        },
    },
    Python: {
        begin: ["import numpy as np", "import q_mur"],
        number: (argument, number) => numberText(number, argument),
        pitch: (argument) => (argument.unit === "pixels" ? null : `${argument.of}.strides[0]`),
        null: () => "None",
        rectangle: (argument, numbers) => `(${numbers.join(", ")})`,
        point: (argument, numbers) => `(${numbers.join(", ")})`,
        words: (argument, numbers, lines) => {
            const type = isReal(argument.type) ? "float32" : argument.type.includes("q_ulong") ? "uint32" : "int32";
            lines.push(`${argument.name} = np.array([${wordTexts(numbers, argument).join(", ")}], np.${type})`);
            return argument.name;
        },
        letters: (argument, letters) => JSON.stringify(letters),
        memory: (argument, [width, height, bytes], lines) => {
            const type = isReal(argument.type) ? "float32" : ["", "uint8", "int16", "", "uint32"][bytes];
            const shape = height > 1 ? `(${height}, ${width})` : width;
            lines.push(`${argument.name} = np.zeros(${shape}, np.${type})`);
            return argument.name;
        },
        block: (argument, numbers, lines) => {
            lines.push(`# ${argument.name}: a ${bare(argument.type)}, made once`);
            return argument.name;
        },
        call: (passed) => {
            const result = row.result === "void" ? "" : "result = ";
            let isNamed = false;
            const texts = passed.filter(({ text }) => text !== null).map(({ argument, form, text }) => {
                isNamed = isNamed || (form !== "memory" && form !== "block");
                return isNamed ? `${argument.name}=${text}` : text;
            });
            return wrapped(`${result}q_mur.${row.plainName}(`, texts, ")");
        },
    },
};

/** A call in lines that are not too long. */
function wrapped(begin, texts, end) {
    const most = 76;
    const lines = [];
    let line = begin;
    texts.forEach((text, i) => {
        const piece = text + (i + 1 < texts.length ? ", " : "");
        if (line.length + piece.trimEnd().length > most) {
            lines.push(line.trimEnd());
            line = "    ";
        }
        line += piece;
    });
    return [...lines, line + end].join("\n");
}

/** The call in a language, from the arguments as they are passed. */
function codeOf(language, library) {
    const writer = writers[language];
    const lines = [];
    const passed = row.arguments.map((argument, index) => {
        const { form, numbers, letters } = library.passed(index);
        const write = argument.kind === "pitch" && writer.pitch ? writer.pitch : writer[form];
        const value = form === "letters" ? letters : form === "number" ? numbers[0] : numbers;
        return { argument, form, text: write(argument, value, lines) };
    });
    const begin = writer.begin ? [...writer.begin, ""] : [];
    return [...begin, ...lines, writer.call(passed)].join("\n");
}

function titleOf(argument) {
    return `${argument.name}: ${argument.kind}${argument.unit ? `, in ${argument.unit}` : ""}`;
}

// Photographs

const photographs = {};

/** A picture file's pixels, once, cut and scaled to a size. */
async function pixelsOf(source, width, height) {
    const image = new Image();
    image.src = source;
    await image.decode();
    const canvas = make("canvas", { width, height });
    const context = canvas.getContext("2d", { willReadFrequently: true });
    const scale = Math.max(width / image.naturalWidth, height / image.naturalHeight);
    const isSame = image.naturalWidth === width && image.naturalHeight === height;
    context.imageSmoothingQuality = "high";
    if (isSame)
        context.drawImage(image, 0, 0);
    else
        context.drawImage(image, (width - image.naturalWidth * scale) / 2, (height - image.naturalHeight * scale) / 2,
            image.naturalWidth * scale, image.naturalHeight * scale);
    return context.getImageData(0, 0, width, height);
}

// The playground itself

class Playground {
    constructor(module, library) {
        this.module = module;
        this.library = library;
        this.isFigure = Boolean(library.q.isFigure());
        this.canTurn = Boolean(library.q.canTurn());
        this.state = this.fresh();
        this.isPlaying = false;
        this.zoom = 0;
        this.pan = null; // the middle
        this.cursor = null;
        this.language = languages[0];
        this.frames = 0;
        this.picture = make("canvas");
        this.build();
        this.read();
        this.shape();
    }

    fresh() {
        return { time: 0.5, size: sizes[0], numbers: new Map(), pictures: new Map(), turn: [0, 0] };
    }

    // What can be set

    build() {
        this.view = make("canvas", { id: "canvas", tabIndex: 0 });
        this.view.setAttribute("role", "img");
        this.view.setAttribute("aria-label", `${row.name}: ${row.sentence} Arrow keys move over the pixels.`);
        this.stage = make("div", { className: "stage" }, this.view);
        this.readout = make("output", { className: "readout" });
        this.message = make("p", { className: "message", role: "status" });
        this.play = make("button", { type: "button", title: "Runs and stops the scene (space)" }, "Play");
        this.play.addEventListener("click", () => this.run(!this.isPlaying));
        this.time = make("input", { type: "range", min: 0, max: 1, step: 0.001 });
        this.time.setAttribute("aria-label", "Time");
        this.time.addEventListener("input", () => {
            this.run(false);
            this.state.time = Number(this.time.value);
            this.changed();
        });
        this.zooms = make("span", { className: "choices", role: "group" }, ...[[0, "Fit"], [1, "100 %"], [magnified, "800 %"]].map(
            ([zoom, text]) => {
                const button = make("button", { type: "button", value: zoom }, text);
                button.addEventListener("click", () => this.look(zoom));
                return button;
            }));
        this.size = make("select", {}, ...sizes.map((size) => make("option", { value: size }, size.replace("x", " × "))));
        this.size.setAttribute("aria-label", "Size of the picture");
        this.size.hidden = this.isFigure;
        this.size.addEventListener("change", () => {
            this.state.size = this.size.value;
            this.state.numbers.clear();
            this.shape();
        });
        const link = make("button", { type: "button" }, "Link");
        link.title = "Copies the address of this state";
        link.addEventListener("click", async () => {
            this.write();
            await copyText(location.href);
            link.textContent = "Copied";
            setTimeout(() => (link.textContent = "Link"), 1200);
        });
        const reset = make("button", { type: "button" }, "Reset");
        reset.addEventListener("click", () => {
            this.state = this.fresh();
            this.shape();
        });
        const isStill = !row.moves;
        this.play.hidden = this.time.hidden = isStill;
        this.bar = make("div", { className: "bar" }, this.play, this.time, this.zooms, this.size, link, reset);
        this.controls = make("div", { className: "controls" });
        this.tabs = make("span", { className: "choices", role: "tablist" }, ...languages.map((language) => {
            const button = make("button", { type: "button", role: "tab", value: language }, language);
            button.addEventListener("click", () => {
                this.language = language;
                this.showCode();
            });
            return button;
        }));
        const section = make("section", { id: "play", className: "play" },
            make("div", { className: "seen" }, this.stage, this.bar, make("div", { className: "under" }, this.readout, this.message)),
            this.controls);
        const figure = document.querySelector("figure");
        figure.classList.add("played");
        figure.before(section);
        document.getElementById("call").before(this.tabs);
        this.listen();
    }

    /** Takes over the size, and makes what sets the arguments. */
    shape() {
        const { q } = this.library;
        const [width, height] = this.state.size.split("x").map(Number);
        q.stage(width, height, this.state.time);
        this.settings = [];
        this.controls.replaceChildren();
        row.arguments.forEach((argument, index) => {
            const shape = q.shape(index);
            if (shape === Shape.surface)
                this.controls.append(this.pictureControl(argument, index));
            else if (shape !== Shape.nothing)
                this.controls.append(this.numberControl(argument, index, shape));
        });
        this.controls.hidden = !this.controls.children.length;
        this.giveAll();
        this.fitView();
        this.draw();
    }

    numberControl(argument, index, shape) {
        const { q } = this.library;
        const isColour = ["colour", "key", "colours"].includes(argument.kind);
        const count = shape === Shape.words ? this.wordsOf(index) : parts[shape].length;
        const group = make("div", { className: "control" });
        const label = make("span", { className: "name", title: titleOf(argument) }, argument.name);
        const isSeveral = count > 1 && !isColour;
        const inputs = make("span", { className: isSeveral ? "parts" : isColour ? "colours" : "part" });
        group.classList.toggle("several", isSeveral);
        group.append(label, inputs);
        for (let part = 0; part < count; ++part) {
            const [low, high, step] = [q.low(index, part), q.high(index, part), q.step(index, part)];
            const isSwitch = argument.kind === "choice" && low === 0 && high === 1;
            const input = make("input", isColour ? { type: "color" } : isSwitch ? { type: "checkbox" } : { type: "range", min: low, max: high });
            if (input.type === "range")
                input.step = step || (high - low) / 400 || 1;
            const name = parts[shape]?.[part] || (count > 1 ? String(part) : "");
            input.setAttribute("aria-label", `${argument.name} ${name}`.trim());
            input.title = name;
            const output = make("output");
            const key = `${index}.${part}`;
            input.addEventListener("input", () => {
                this.run(false);
                const value = isColour ? parseInt(input.value.slice(1), 16) : isSwitch ? Number(input.checked) : Number(input.value);
                this.state.numbers.set(key, value);
                this.library.q.set(index, part, value);
                this.changed();
            });
            this.settings.push({ index, part, key, input, output, low, high, isColour, isSwitch, isReal: step === 0, shape, argument });
            inputs.append(...(isSeveral ? [make("small", {}, name)] : []), input, output);
        }
        return group;
    }

    wordsOf(index) {
        this.draw();
        return this.library.q.numbersCount(index);
    }

    pictureControl(argument, index) {
        const select = make("select", {}, make("option", { value: "" }, "the scene's own"),
            ...Object.keys(playgroundPhotographs).map((name) => make("option", { value: name }, name)),
            make("option", { value: "file" }, "a file of mine …"));
        select.setAttribute("aria-label", argument.name);
        const file = make("input", { type: "file", accept: "image/*", hidden: true });
        select.addEventListener("change", () => {
            if (select.value === "file")
                file.click();
            else
                this.choosePicture(index, select.value);
        });
        file.addEventListener("change", () => file.files[0] && this.takeFile(index, file.files[0]));
        const credit = make("small");
        const group = make("div", { className: "control" }, make("span", { className: "name", title: titleOf(argument) }, argument.name), select, file, credit);
        for (const kind of ["dragover", "drop"])
            group.addEventListener(kind, (event) => {
                event.preventDefault();
                event.stopPropagation();
                if (event.dataTransfer.files[0])
                    this.takeFile(index, event.dataTransfer.files[0]);
            });
        this.settings.push({ index, shape: Shape.surface, select, credit, argument });
        return group;
    }

    /** What a visitor hands over stays in the page. */
    takeFile(index, file) {
        const name = `file${index}`;
        if (photographs[name])
            URL.revokeObjectURL(photographs[name]);
        photographs[name] = URL.createObjectURL(file);
        return this.choosePicture(index, name);
    }

    async choosePicture(index, name) {
        this.state.pictures.delete(index);
        if (name)
            this.state.pictures.set(index, name);
        await this.givePicture(index, name);
        this.changed();
    }

    async givePicture(index, name) {
        const { q } = this.library;
        if (!name) {
            q.unset(index);
            return;
        }
        const source = photographs[name] ?? playgroundPhotographs[name]?.data;
        const [width, height] = this.state.size.split("x").map(Number);
        try {
            const pixels = await pixelsOf(source, width, height);
            if (this.state.pictures.get(index) === name)
                this.library.takePicture(index, pixels);
        } catch {
            this.state.pictures.delete(index);
            this.say("This is no picture that the browser can read.");
        }
    }

    /** Hands the module all that is set. */
    giveAll() {
        const { q } = this.library;
        row.arguments.forEach((_, index) => q.unset(index));
        for (const setting of this.settings) {
            if (!this.state.numbers.has(setting.key))
                continue;
            const value = Math.min(Math.max(this.state.numbers.get(setting.key), setting.isColour ? 0 : setting.low), setting.isColour ? 0xffffff : setting.high);
            this.state.numbers.set(setting.key, value);
            q.set(setting.index, setting.part, value);
        }
        q.turn(...this.state.turn);
        this.ready = Promise.all([...this.state.pictures].map(([index, name]) => this.givePicture(index, name))).then(() => this.changed());
    }

    // Drawing

    run(isPlaying) {
        this.isPlaying = isPlaying && row.moves;
        this.play.textContent = this.isPlaying ? "Pause" : "Play";
        this.before = undefined;
        if (this.isPlaying)
            this.ask();
        else
            this.write();
    }

    changed() {
        this.isChanged = true;
        this.write();
        this.ask();
    }

    ask() {
        if (!this.isAsked) {
            this.isAsked = true;
            requestAnimationFrame((now) => {
                this.isAsked = false;
                this.step(now);
            });
        }
    }

    step(now) {
        if (this.isPlaying) {
            const passed = this.before === undefined ? 0 : (now - this.before) / 1000 / secondsOfFilm;
            this.before = now;
            this.course = ((this.course ?? this.state.time) + passed) % (row.isLoop ? 1 : 2);
            this.state.time = this.course > 1 ? 2 - this.course : this.course;
            this.time.value = this.state.time;
            this.ask();
        } else {
            this.course = undefined;
            if (!this.isChanged)
                return;
        }
        this.isChanged = false;
        this.draw();
    }

    /** Draws; answers whether there is a new picture. */
    draw() {
        if (this.mending)
            return false;
        const [width, height] = this.isFigure ? [base.width, base.height] : this.state.size.split("x").map(Number);
        try {
            this.library.q.stage(width, height, this.state.time);
            if (!this.library.q.draw()) {
                this.say("Beyond what a call may be given: this is the picture before.");
                return false;
            }
        } catch {
            this.mending = this.mend();
            return false;
        }
        this.say("");
        ++this.frames;
        this.drawn = { numbers: new Map(this.state.numbers), pictures: new Map(this.state.pictures), turn: [...this.state.turn] };
        this.show();
        this.tell();
        return true;
    }

    /** A call that has no end has trapped: goes back to what was drawn before it, on a new instance. */
    async mend() {
        this.run(false);
        this.library = await Library.from(this.module);
        this.state = { ...this.fresh(), size: this.state.size, time: this.state.time, ...this.drawn };
        this.drawn = {};
        this.mending = null;
        this.shape();
        await this.ready;
        this.say("That call would not have ended: this is the picture before.");
    }

    say(text) {
        if (this.message.textContent !== text)
            this.message.textContent = text;
    }

    /** Brings the picture to the canvas as it is looked at. */
    show() {
        const picture = this.library.picture;
        const isDirect = this.zoom === 0 && !this.isFigure;
        const canvas = isDirect ? this.view : this.picture;
        resize(canvas, picture.width, picture.height);
        canvas.getContext("2d").putImageData(picture, 0, 0);
        // A picture that stands upright is as high as the window allows beside its controls.
        this.view.style.maxWidth = this.zoom ? "" : `${Math.round(32 * picture.width / picture.height)}rem`;
        if (this.isFigure)
            this.showFigure();
        if (this.zoom)
            this.magnify();
        this.showPixel();
    }

    /** A figure, whose texts are the page's own: fine ones where it is not looked at pixel by pixel. */
    showFigure() {
        const [canvas, scale] = this.zoom ? [this.picture, 1] : [this.view, fine];
        const context = canvas.getContext("2d");
        if (!this.zoom) {
            resize(canvas, fine * this.picture.width, fine * this.picture.height);
            context.setTransform(1, 0, 0, 1, 0, 0);
            context.imageSmoothingEnabled = false;
            context.drawImage(this.picture, 0, 0, canvas.width, canvas.height);
        }
        context.setTransform(scale, 0, 0, scale, 0, 0);
        context.textBaseline = "top";
        for (const { x, y, colour, height, text } of this.library.texts) {
            context.fillStyle = colour;
            context.font = `${Math.round(height * 0.86)}px "DejaVu Sans", Verdana, sans-serif`;
            context.fillText(text, x, y + 1);
        }
        context.setTransform(1, 0, 0, 1, 0, 0);
    }

    /** The part of the picture that is seen at 100 % or 800 %, with the pixels' grid where they are large. */
    magnify() {
        const { view, zoom } = this;
        const [width, height] = [this.picture.width, this.picture.height];
        view.width = Math.min(this.stage.clientWidth, width * zoom);
        view.height = Math.min(Math.max(225, Math.round(this.stage.clientWidth * 9 / 16)), height * zoom);
        const shown = { x: view.width / zoom, y: view.height / zoom };
        const pan = this.pan ?? { x: Math.round((width - shown.x) / 2), y: Math.round((height - shown.y) / 2) };
        this.pan = pan;
        pan.x = Math.min(Math.max(pan.x, 0), width - view.width / zoom);
        pan.y = Math.min(Math.max(pan.y, 0), height - view.height / zoom);
        const context = view.getContext("2d");
        context.imageSmoothingEnabled = false;
        context.drawImage(this.picture, -pan.x * zoom, -pan.y * zoom, width * zoom, height * zoom);
        if (zoom < magnified)
            return;
        context.fillStyle = "rgba(128, 128, 128, 0.45)";
        for (let x = zoom - (pan.x * zoom) % zoom; x < view.width; x += zoom)
            context.fillRect(Math.round(x), 0, 1, view.height);
        for (let y = zoom - (pan.y * zoom) % zoom; y < view.height; y += zoom)
            context.fillRect(0, Math.round(y), view.width, 1);
        if (this.cursor) {
            context.strokeStyle = "#fff";
            context.lineWidth = 2;
            context.strokeRect((this.cursor.x - pan.x) * zoom, (this.cursor.y - pan.y) * zoom, zoom + 1, zoom + 1);
        }
    }

    look(zoom, at = this.cursor) {
        this.zoom = zoom;
        this.pan = null;
        this.fitView();
        if (zoom && at) {
            const shown = { x: this.stage.clientWidth / zoom, y: this.stage.clientWidth * 9 / 16 / zoom };
            this.pan = { x: Math.round(at.x - shown.x / 2), y: Math.round(at.y - shown.y / 2) };
        }
        this.show();
        this.write();
    }

    fitView() {
        this.view.classList.toggle("fit", this.zoom === 0);
        this.view.classList.toggle("fine", this.zoom === 0 && this.isFigure);
        this.view.style.touchAction = this.zoom === magnified || this.canTurn || this.pairs().length ? "none" : "pan-y";
        for (const button of this.zooms.children)
            button.setAttribute("aria-pressed", Number(button.value) === this.zoom);
    }

    /** Shows the numbers that are passed, and the call. */
    tell() {
        const { q } = this.library;
        this.time.value = this.state.time;
        this.size.value = this.state.size;
        const passed = row.arguments.map((_, index) => this.library.passed(index));
        for (const setting of this.settings) {
            if (setting.shape === Shape.surface) {
                const name = this.state.pictures.get(setting.index) ?? "";
                setting.select.value = name.startsWith("file") ? "file" : name;
                setting.credit.textContent = playgroundPhotographs[name]?.credit ?? "";
                continue;
            }
            const value = passed[setting.index].numbers[setting.part];
            if (value === undefined)
                continue;
            if (setting.isColour)
                setting.input.value = colourText(value);
            else if (setting.isSwitch)
                setting.input.checked = value !== 0;
            else
                setting.input.value = value;
            setting.output.textContent = setting.isColour ? hexText(value) : setting.isReal ? String(Number(value.toPrecision(4))) : setting.isSwitch ? "" : String(value);
            setting.input.closest(".control").classList.toggle("changed", this.state.numbers.has(setting.key));
        }
        this.calls = q.calls();
        this.showCode();
    }

    showCode() {
        const code = document.querySelector("#call code");
        const more = this.calls > 1 ? `\n${this.language === "Python" ? "#" : "//"} the first of ${this.calls} calls` : "";
        let text = codeOf(this.language, this.library) + more;
        if (this.library.q.returnedWords())
            text += `\n${this.language === "Python" ? "#" : "//"} returned ${this.returnedText()}`;
        if (code.textContent !== text)
            code.textContent = text;
        for (const button of this.tabs.children)
            button.setAttribute("aria-selected", button.value === this.language);
    }

    returnedText() {
        const word = this.library.q.returned(0);
        if (row.result === "float")
            return realText(new Float32Array(Uint32Array.of(word).buffer)[0], "float");
        return row.result === "q_ulong" ? hexText(word) : String(word | 0);
    }

    // Pixels under the pointer, dragging, keys

    placeOf(event) {
        const box = this.view.getBoundingClientRect();
        const x = (event.clientX - box.left) / box.width;
        const y = (event.clientY - box.top) / box.height;
        if (this.zoom)
            return { x: this.pan.x + (x * this.view.width) / this.zoom, y: this.pan.y + (y * this.view.height) / this.zoom };
        return { x: x * this.library.q.width(), y: y * this.library.q.height() };
    }

    showPixel() {
        const { q } = this.library;
        const cursor = this.cursor;
        if (!cursor || cursor.x < 0 || cursor.y < 0 || cursor.x >= q.width() || cursor.y >= q.height()) {
            this.readout.textContent = "";
            return;
        }
        const pixel = this.library.pixel(cursor.x, cursor.y);
        this.readout.textContent = `(${cursor.x}, ${cursor.y}) 0x${pixel.toString(16).toUpperCase().padStart(8, "0")}`;
    }

    /** Numbers that are a place on the picture, two by two. */
    pairs() {
        if (this.isFigure)
            return [];
        const pairs = [];
        const positions = (this.settings ?? []).filter((setting) => setting.shape === Shape.number && ["position", "count", "number"].includes(setting.argument.kind));
        for (const setting of positions) {
            const name = setting.argument.name;
            const other = positions.find((each) => each.argument.name === name.replace("X", "Y").replace("x", "y") && each !== setting);
            if (other && /[xX]/.test(name) && setting.argument.kind === "position")
                pairs.push([setting, other]);
        }
        for (const setting of this.settings ?? [])
            if (setting.shape === Shape.point && setting.part === 0)
                pairs.push([setting, this.settings.find((each) => each.index === setting.index && each.part === 1)]);
        return pairs;
    }

    valueOf(setting) {
        return this.library.passed(setting.index).numbers[setting.part];
    }

    setValue(setting, value) {
        const held = Math.min(Math.max(setting.isReal ? value : Math.round(value), setting.low), setting.high);
        this.state.numbers.set(setting.key, held);
        this.library.q.set(setting.index, setting.part, held);
    }

    /** Moves a place, or along one axis alone where the contract allows no more. */
    move(pair, place) {
        const before = pair.map((setting) => this.valueOf(setting));
        for (const axes of [[0, 1], [0], [1]]) {
            pair.forEach((setting, i) => this.setValue(setting, axes.includes(i) ? place[i] : before[i]));
            if (this.draw())
                return;
        }
        pair.forEach((setting, i) => this.setValue(setting, before[i]));
    }

    grab(place, event) {
        if (this.zoom === magnified || (this.zoom && this.picture.width > this.view.width && !this.canTurn))
            return { kind: "pan", pan: { ...this.pan }, x: event.clientX, y: event.clientY };
        if (this.canTurn)
            return { kind: "turn", turn: [...this.state.turn], x: event.clientX, y: event.clientY };
        const distance = ([x, y]) => Math.hypot(this.valueOf(x) - place.x, this.valueOf(y) - place.y);
        const nearest = this.pairs().sort((a, b) => distance(a) - distance(b))[0];
        if (nearest)
            return { kind: "move", pair: nearest, from: nearest.map((setting) => this.valueOf(setting)), place };
        return row.moves ? { kind: "time", time: this.state.time, x: event.clientX } : null;
    }

    drag(event) {
        const { held } = this;
        if (held.kind === "pan") {
            this.pan = { x: Math.round(held.pan.x - (event.clientX - held.x) / this.zoom), y: Math.round(held.pan.y - (event.clientY - held.y) / this.zoom) };
            this.magnify();
            return;
        }
        this.run(false);
        if (held.kind === "turn") {
            this.state.turn = [held.turn[0] + (event.clientX - held.x) / 120, held.turn[1] - (event.clientY - held.y) / 120];
            this.library.q.turn(...this.state.turn);
        } else if (held.kind === "time") {
            const time = held.time + (event.clientX - held.x) / this.view.clientWidth;
            this.state.time = row.isLoop ? time - Math.floor(time) : Math.min(Math.max(time, 0), 1);
        } else {
            const place = this.placeOf(event);
            this.move(held.pair, [held.from[0] + place.x - held.place.x, held.from[1] + place.y - held.place.y]);
        }
        this.changed();
    }

    listen() {
        const { view } = this;
        view.addEventListener("pointerdown", (event) => {
            view.setPointerCapture(event.pointerId);
            this.held = this.grab(this.placeOf(event), event);
            this.point(event);
        });
        view.addEventListener("pointermove", (event) => {
            if (this.held)
                this.drag(event);
            this.point(event);
        });
        for (const kind of ["pointerup", "pointercancel"])
            view.addEventListener(kind, () => (this.held = null));
        view.addEventListener("keydown", (event) => this.key(event));
        view.addEventListener("dblclick", (event) => {
            const place = this.placeOf(event);
            this.look(this.zoom === magnified ? 0 : magnified, { x: Math.floor(place.x), y: Math.floor(place.y) });
        });
        const section = document.getElementById("play");
        section.addEventListener("dragover", (event) => event.preventDefault());
        section.addEventListener("drop", (event) => {
            event.preventDefault();
            const surfaces = this.settings.filter((setting) => setting.shape === Shape.surface);
            const into = surfaces.find((setting) => setting.argument.kind === "source") ?? surfaces[0];
            if (into && event.dataTransfer.files[0])
                this.takeFile(into.index, event.dataTransfer.files[0]);
        });
        addEventListener("hashchange", () => {
            if (location.hash.slice(1) === this.written)
                return;
            this.read();
            this.shape();
        });
        addEventListener("resize", () => this.show());
    }

    point(event) {
        const place = this.placeOf(event);
        this.cursor = { x: Math.floor(place.x), y: Math.floor(place.y) };
        if (this.zoom === magnified)
            this.magnify();
        this.showPixel();
    }

    key(event) {
        const moves = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] };
        const { q } = this.library;
        if (event.key in moves) {
            const [dx, dy] = moves[event.key].map((step) => step * (event.shiftKey ? 10 : 1));
            const from = this.cursor ?? { x: q.width() >> 1, y: q.height() >> 1 };
            this.cursor = { x: Math.min(Math.max(from.x + dx, 0), q.width() - 1), y: Math.min(Math.max(from.y + dy, 0), q.height() - 1) };
            if (this.zoom) {
                const shown = { x: this.view.width / this.zoom, y: this.view.height / this.zoom };
                for (const axis of ["x", "y"])
                    this.pan[axis] = Math.min(Math.max(this.pan[axis], this.cursor[axis] - Math.floor(shown[axis]) + 1), this.cursor[axis]);
                this.magnify();
            }
            this.showPixel();
        } else if (event.key === "+" || event.key === "-") {
            const zooms = [0, 1, magnified];
            this.look(zooms[Math.min(Math.max(zooms.indexOf(this.zoom) + (event.key === "+" ? 1 : -1), 0), 2)]);
        } else if (event.key === " ") {
            this.run(!this.isPlaying);
        } else {
            return;
        }
        event.preventDefault();
    }

    // The link

    get address() {
        const fields = new URLSearchParams();
        if (row.moves)
            fields.set("time", String(Number(this.state.time.toFixed(4))));
        if (this.state.size !== sizes[0])
            fields.set("size", this.state.size);
        for (const [key, value] of this.state.numbers) {
            const [index, part] = key.split(".").map(Number);
            fields.set(row.arguments[index].name + (part ? `.${part}` : ""), String(value));
        }
        for (const [index, name] of this.state.pictures)
            if (name in playgroundPhotographs)
                fields.set(row.arguments[index].name, name);
        if (this.state.turn.some((angle) => angle !== 0))
            fields.set("turned", this.state.turn.map((angle) => angle.toFixed(3)).join(","));
        if (this.zoom)
            fields.set("zoom", String(this.zoom * 100));
        return fields.toString();
    }

    /** Writes the state into the address, unless it is still what the page opens with. */
    write() {
        if (this.isPlaying)
            return;
        const address = this.address;
        this.state.time = row.moves ? Number(this.state.time.toFixed(4)) : this.state.time;
        this.written = address;
        if (location.hash.slice(1) !== address)
            history.replaceState(null, "", address ? `#${address}` : location.pathname + location.search);
    }

    read() {
        const fields = new URLSearchParams(location.hash.slice(1));
        this.state = this.fresh();
        const within = (text, low, high, otherwise) => {
            const number = Number(text);
            return text !== null && text !== "" && Number.isFinite(number) ? Math.min(Math.max(number, low), high) : otherwise;
        };
        this.state.time = within(fields.get("time"), 0, 1, this.state.time);
        if (sizes.includes(fields.get("size")) && !this.isFigure)
            this.state.size = fields.get("size");
        const zoom = within(fields.get("zoom"), 0, 800, 0) / 100;
        this.zoom = [0, 1, magnified].includes(zoom) ? zoom : 0;
        this.pan = null;
        if (this.canTurn && fields.has("turned"))
            this.state.turn = [0, 1].map((i) => within(fields.get("turned").split(",")[i] ?? null, -1000, 1000, 0));
        row.arguments.forEach((argument, index) => {
            for (const [name, value] of fields) {
                const part = name === argument.name ? 0 : name.startsWith(argument.name + ".") ? Number(name.slice(argument.name.length + 1)) : -1;
                if (!(part >= 0))
                    continue;
                if (value in playgroundPhotographs)
                    this.state.pictures.set(index, value);
                else if (value !== "" && Number.isFinite(Number(value)))
                    this.state.numbers.set(`${index}.${part}`, Number(value));
            }
        });
        this.isLinked = fields.size > 0;
    }
}

async function begin() {
    const module = await Library.compiled();
    const playground = new Playground(module, await Library.from(module));
    await playground.ready;
    if (!playground.isLinked && !matchMedia("(prefers-reduced-motion: reduce)").matches)
        playground.run(true);
    return playground;
}

const playground = begin();
