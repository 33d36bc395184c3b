#!/usr/bin/env node
// A page in headless Chromium recomputes three checksums with the test program, and draws with the module.
//
// usage: page_test.mjs TESTS.wasm MODULE.wasm

import { spawn } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { createServer } from 'node:http';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

const skipped = 77;
const patience = 300000;
const tests = ['iFadeOut32', 'iBltNear32_Z_Roto', 'iBilinearMapping'];
const page = '<!doctype html><meta charset="utf-8"><title>q_Mur</title><script type="module" src="page.mjs"></script>';
const files = {
    '/': ['text/html', page],
    '/page.mjs': ['text/javascript', readFileSync(new URL('page.mjs', import.meta.url))],
    '/tests.wasm': ['application/wasm', readFileSync(process.argv[2])],
    '/q_Mur.wasm': ['application/wasm', readFileSync(process.argv[3])],
};

const profile = mkdtempSync(join(tmpdir(), 'q_Mur_page_'));
let browser;

/** Some of the browser's processes may still write for a moment after it has ended; what they leave fails no test. */
function removeProfile() {
    try {
        rmSync(profile, { recursive: true, force: true, maxRetries: 10 });
    } catch (failure) {
        console.log(`${profile} stays behind: ${failure.message}`);
    }
}

function finish(status, text) {
    console.log(text);
    process.exitCode = status;
    clearTimeout(timer);
    server.close();
    server.closeAllConnections();
    if (browser?.exitCode === null && browser.signalCode === null) {
        browser.once('exit', removeProfile);
        browser.kill();
    } else {
        removeProfile();
    }
}

/** What is wrong with what the page has found; nothing if all is well. */
function faultIn({ status, output, pixels, failure }) {
    if (failure) return failure;
    if (status !== 0) return `the test program ended with status ${status}`;
    for (const test of tests)
        if (!output.includes(`[       OK ] agrees_with_its_twin.${test} `)) return `${test} was not tested`;
    if (!output.includes(`[  PASSED  ] ${tests.length} tests.`)) return 'not as many tests as were asked for';
    const expected = [0, 0x123456, 0x123456, 0];
    return String(pixels) === String(expected) ? '' : `the module drew ${pixels} instead of ${expected}`;
}

const server = createServer((request, response) => {
    if (request.method === 'POST') {
        const parts = [];
        request.on('data', (part) => parts.push(part));
        request.on('end', () => {
            response.end();
            const found = JSON.parse(Buffer.concat(parts).toString());
            const fault = faultIn(found);
            finish(fault ? 1 : 0, `${found.output ?? ''}\n${fault || 'as expected'}`);
        });
        return;
    }
    const [type, content] = files[new URL(request.url, 'http://page').pathname] ?? [];
    response.writeHead(type ? 200 : 404, { 'Content-Type': type ?? 'text/plain' });
    response.end(content);
});
const timer = setTimeout(() => finish(1, 'the page did not answer in time'), patience);

server.listen(0, '127.0.0.1', () => {
    const query = new URLSearchParams(tests.map((test) => ['test', test]));
    browser = spawn(
        'chromium',
        [
            '--headless',
            '--no-sandbox',
            '--disable-gpu',
            '--disable-dev-shm-usage',
            '--disable-background-networking',
            '--disable-component-update',
            '--no-first-run',
            `--user-data-dir=${profile}`,
            `http://127.0.0.1:${server.address().port}/?${query}`,
        ],
        { stdio: 'ignore' },
    );
    browser.on('error', (error) => {
        browser = undefined;
        finish(skipped, `Chromium cannot be started: ${error.message}`);
    });
    browser.on('exit', (status) => {
        if (process.exitCode === undefined) finish(1, `Chromium ended with status ${status}`);
    });
});
