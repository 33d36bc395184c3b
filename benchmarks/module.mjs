#!/usr/bin/env node
// Times rows on modules for WebAssembly side by side: nanoseconds per pixel, the best of many turns, which the modules
// take one after the other. Their pixels are compared first.
//
// usage: benchmarks/module.mjs PACKAGE MODULE.wasm...
//
// PACKAGE is the directory of the package for JavaScript, as a build leaves it: build/wasm/packages/npm/package.

import { readFileSync } from 'node:fs';
import { join, resolve } from 'node:path';

const [packageDirectory, ...files] = process.argv.slice(2);
const { load } = await import(join(resolve(packageDirectory), 'index.js'));
const [width, height] = [640, 480];
const all = { left: 0, top: 0, right: width, bottom: height };
const inner = { left: 16, top: 16, right: width - 16, bottom: height - 16 };
const part = { left: 8, top: 8, right: 401, bottom: 309 };

const rows = {
    iFillRect: (q, d) => q.iFillRect(d, all, width, 0x123456),
    iFadeOut32: (q, d) => q.iFadeOut32(d, all, width, 0.7),
    iBltFast32: (q, d, s) => q.iBltFast32(d, s, 0, 0, all, width, width),
    iBltFast32_KeySrc: (q, d, s) => q.iBltFast32_KeySrc(d, s, 0, 0, all, width, width, 0x404040),
    iBltFast32_Add: (q, d, s) => q.iBltFast32_Add(d, s, 0, 0, all, width, width),
    iBltFast32_Add_scaled: (q, d, s) => q.iBltFast32_Add_scaled(d, s, 0, 0, all, width, width, 128, 200, 90),
    iBltFast32Alpha: (q, d, s) => q.iBltFast32Alpha(d, s, 0, 0, all, width, width, 0.4),
    iBltFast32AlphaChannelSafe: (q, d, s) => q.iBltFast32AlphaChannelSafe(d, s, 0, 0, all, all, width, width),
    iBltFast32_KeySrc_Alpha: (q, d, s) => q.iBltFast32_KeySrc_Alpha(d, s, 0, 0, all, width, width, 0x404040, 0.4),
    iBltNear32: (q, d, s) => q.iBltNear32(d, s, all, part, width, width),
    iBltNear32_Add: (q, d, s) => q.iBltNear32_Add(d, s, all, part, width, width),
    iBltBilinear32: (q, d, s) => q.iBltBilinear32(d, s, all, part, width, width),
    iBltBilinear32Safe: (q, d, s) => q.iBltBilinear32Safe(d, s, all, part, width, width),
    iBltBilinear32_Alpha: (q, d, s) => q.iBltBilinear32_Alpha(d, s, all, part, width, width, 0.4),
    iBltNear32_Z_Roto: (q, d, s) => q.iBltNear32_Z_Roto(d, width, s, width, all, part, 320, 240, 0.5, 1.2),
    iBilinearMapping: (q, d, s) =>
        q.iBilinearMapping(d, s, width, width, height, 20, 600, 620, 10, 15, 5, 470, 460),
    FastBlur_Rect: (q, d) => q.FastBlur_Rect(d, inner, width),
    Blur_Rect: (q, d) => q.Blur_Rect(d, inner, width, 6),
    Hor_Blur32: (q, d, s) => q.Hor_Blur32(d, s, 6, width, height, width),
    Ver_Blur32: (q, d, s) => q.Ver_Blur32(d, s, 6, width, height, width),
    Hor_GaussBlur: (q, d, s) => q.Hor_GaussBlur(d, s, 3, width, height, width),
    Draw_Light: (q, d) => q.Draw_Light(d, width, 320, 240, 200, 0x804020, 128),
};

/** A module with two pictures, the same for all. */
async function stage(file) {
    const q = await load(readFileSync(file));
    return { q, dst: q.surface(width, height), src: q.surface(width, height) };
}

function fill(pixels, seed) {
    let state = seed;
    for (let i = 0; i < pixels.length; ++i) {
        state = (Math.imul(state, 1664525) + 1013904223) | 0;
        pixels[i] = (state >>> 8) & 0xffffff;
    }
}

const stages = await Promise.all(files.map(stage));
console.log(`${'ns/pixel'.padEnd(28)}${files.map((_, i) => `module ${i + 1}`.padStart(10)).join('')}`);
for (const [name, row] of Object.entries(rows)) {
    const best = stages.map(() => Infinity);
    for (let turn = 0; turn < 40; ++turn) {
        for (const [i, { q, dst, src }] of stages.entries()) {
            fill(dst.pixels, 1);
            fill(src.pixels, 2);
            const begun = process.hrtime.bigint();
            row(q, dst, src);
            best[i] = Math.min(best[i], Number(process.hrtime.bigint() - begun) / (width * height));
        }
        const [first, ...others] = stages.map(({ dst }) => Buffer.from(dst.pixels.buffer, dst.address, 4 * dst.length));
        for (const other of others) if (!first.equals(other)) throw new Error(`${name}: the modules differ`);
    }
    console.log(`${name.padEnd(28)}${best.map((time) => time.toFixed(3).padStart(10)).join('')}`);
}
