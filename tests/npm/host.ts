// Calls as an editor checks them. Each wrong one has to be complained of.

import { load, type Block, type QMur, type Rectangle, type Surface } from 'q_mur';

export async function draw(): Promise<Uint32Array> {
    const q: QMur = await load();
    const dst: Surface = q.surface(64, 48);
    const src = q.surface(8, 8);
    const part: Rectangle = { left: 0, top: 0, right: 8, bottom: 8 };
    q.iFillRect(dst, dst.rectangle, dst.pitch, 0x123456);
    q.iBltFast32(dst, src.at(0, 0), 1, 2, part, dst.pitch, src.pitch);
    q.iBltFast32Alpha(dst, src, 0, 0, part, dst.pitch, src.pitch, 0.5);
    const front: boolean = q.IsFront({ x: 0, y: 0, z: 0 }, { x: 1, y: 0, z: 0 }, { x: 0, y: 1, z: 0 });
    const mean = q.iMean2Vector({ x: 0, y: 0, z: 0 }, { x: 2, y: 2, z: 2, w: 1 });
    const w: number = mean.w;
    const numbers: Block<Float32Array> = q.floats(2);
    q.fRotate3DByZ(numbers, [1], front ? 1 : w);
    q.FreeMemoryBlocks(null);
    const loaded: Promise<QMur>[] = [load('q_Mur.wasm'), load(new Uint8Array(8)), load(fetch('q_Mur.wasm'))];

    // @ts-expect-error: an argument is lacking
    q.iFillRect(dst, dst.rectangle, dst.pitch);
    // @ts-expect-error: one too many
    q.iFillRect(dst, dst.rectangle, dst.pitch, 0, 0);
    // @ts-expect-error: a text for a number
    q.iFillRect(dst, dst.rectangle, '64', 0);
    // @ts-expect-error: nothing for a surface
    q.iFillRect(null, dst.rectangle, dst.pitch, 0);
    // @ts-expect-error: a surface for a pitch
    q.iFillRect(dst, dst.rectangle, dst, 0);
    // @ts-expect-error: pixels that would have to be copied
    q.iFillRect([0, 0, 0, 0], dst.rectangle, 2, 0);
    // @ts-expect-error: half a rectangle
    q.iFillRect(dst, { left: 0, top: 0 }, dst.pitch, 0);
    // @ts-expect-error: there is no such function
    q.iFillRectangle(dst, dst.rectangle, dst.pitch, 0);
    // @ts-expect-error: a surface has the pitch that it has
    dst.pitch = 80;
    await Promise.all(loaded);
    return dst.pixels;
}
