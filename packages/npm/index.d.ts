import type { Functions } from './functions.js';

/** A place in the module's memory. */
export type Address = number;

/** An array of numbers in the module's memory. Calls work on it in place. */
export interface Block<View> {
    /** Where it lies in the module's memory. */
    readonly address: Address;
    readonly length: number;
    /**
     * The numbers themselves, without copying. Ask again after calls that may need memory of their own: a view of
     * memory that has grown is empty.
     */
    readonly values: View;
    /** Gives the memory back. What was freed must not be passed any more. */
    free(): void;
}

/** A picture: `height` rows of `width` pixels, 0xTTRRGGBB each, without gaps. */
export interface Surface extends Block<Uint32Array> {
    readonly width: number;
    readonly height: number;
    /** Pixels from one row to the next. */
    readonly pitch: number;
    /** The pixels themselves, as `values`. */
    readonly pixels: Uint32Array;
    /** All of it. */
    readonly rectangle: Rectangle;
    /** The address of a pixel, for calls that take a part of the surface as a surface. */
    at(x: number, y: number): Address;
    /** A copy in the order of a canvas, red first, opaque. */
    toRgba(rgba?: Uint8ClampedArray): Uint8ClampedArray;
    /** Takes the pixels of a canvas, red first; its opacity becomes the top byte. */
    setRgba(rgba: Uint8ClampedArray): void;
}

/** `left` and `top` inclusive, `right` and `bottom` exclusive. */
export interface Rectangle {
    left: number;
    top: number;
    right: number;
    bottom: number;
}

export interface Point {
    x: number;
    y: number;
}

export interface Vector {
    x: number;
    y: number;
    z: number;
    w?: number;
}

/** Views that numbers in the module's memory are seen through. */
type View = Uint32Array | Int32Array | Int16Array | Uint8Array | Float32Array;

/** What lies in the module's memory: a block, a view of it, or an address. */
export type Memory = Block<View> | View | Address;

/** Pixels in the module's memory. */
export type Pixels = Block<Uint32Array> | Uint32Array | Address;

/** Numbers in the module's memory, or an array that is copied there before the call and back behind it. */
export type Numbers<Kind> = Memory | Kind | number[];

/** A record, or an array of them, that is copied into the module's memory before the call and back behind it. */
export type Records<Record> = Record | Record[] | Memory;

/** Sizes in a host's record: see `_TRANSFERDATA` in the library's `types.h`. */
export interface TransferSizes {
    /** Pixels of a whole frame plane, margins included. */
    planeElements?: number;
    /** Index within such a plane of the frame's first pixel. */
    originElement?: number;
    /** Entries in each of the two arrays of a 3D private block that hold a number for each vertex. */
    vertexArrayEntries?: number;
    /** Matrices in each of the two stacks of a 3D private block. */
    matrixStackDepth?: number;
}

/** An instance of the library. Instances share nothing. */
export interface QMur extends Functions {
    readonly memory: WebAssembly.Memory;
    /** 8192 sines of a circle, times 32768. */
    readonly iSin: Int32Array;
    /** 8192 cosines of a circle, times 32768. */
    readonly iCos: Int32Array;
    /** Square roots of 0 to 8191, times 1024. */
    readonly iSqrt: Int32Array;

    /** A picture whose pixels are all 0. */
    surface(width: number, height: number): Surface;
    /** So many unsigned numbers of 32 bits, all 0. */
    words(length: number): Block<Uint32Array>;
    /** So many ints, all 0. */
    ints(length: number): Block<Int32Array>;
    /** So many numbers of 16 bits, all 0. */
    shorts(length: number): Block<Int16Array>;
    /** So many bytes, all 0. */
    bytes(length: number): Block<Uint8Array>;
    /** So many floats, all 0. */
    floats(length: number): Block<Float32Array>;
    /** A host's record for the functions that keep blocks of memory in one, `BeginMemoryManager` and others. */
    transfer(sizes?: TransferSizes): Address;
    /** Gives back what `transfer` gave, once `DeleteMemoryBlocks` has freed its blocks. */
    release(address: Address): void;
}

/**
 * Loads the module and makes it ready. What `source` is: the URL of `q_Mur.wasm`, its bytes, an answer of `fetch`, or
 * a compiled module; the file of this package, if nothing is said.
 */
export function load(
    source?: string | URL | BufferSource | Response | WebAssembly.Module | Promise<Response>,
): Promise<QMur>;
