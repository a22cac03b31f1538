// Tests of the harness itself. If these fail, the other tests say nothing about discs.

import assert from "node:assert/strict";
import { test } from "node:test";
import { BbcMachine, kMachines, deinterleave, interleave } from "./lib/BbcMachine.js";
import { damageSector, emptyDisc } from "./lib/DiscImages.js";
import { SerialLine } from "./lib/SerialLine.js";

test("InterleavingAndBackGivesTheSameSectors", () => {
  const flat = Uint8Array.from({ length: 2560 * 256 }, (_, i) => (i >> 8) ^ (i * 7));
  const adl = interleave(flat);
  assert.deepEqual(adl.subarray(18 * 256, 19 * 256), flat.subarray(1282 * 256, 1283 * 256));
  assert.deepEqual(deinterleave(adl), flat);
});

for (const kind of Object.keys(kMachines)) {
  const title = `The${kMachines[kind].title.replaceAll(" ", "")}`;

  test(`${title}ReadsAFreshDiscAndWhatItSavesIsOnTheTracks`, async () => {
    const bbc = await BbcMachine.boot(kind);
    const before = emptyDisc(2560, "Harness");
    bbc.insertDisc(0, before);
    assert.match(bbc.enterCommand("*MOUNT 0"), /^\s*$/);
    assert.match(bbc.enterCommand("*CAT"), /Harness {13}\(00\)/);
    bbc.enterCommand("10 PRINT \"HELLO\"");
    bbc.enterCommand("SAVE \"PROG\"");
    const after = bbc.readDisc(0);
    assert.equal(after.length, before.length);
    assert.notDeepEqual(after, before);
    assert.ok(Buffer.from(after).includes("HELLO"));
    assert.equal(bbc.readDiscAsAdl(0).length, before.length);
  });

  test(`${title}RefusesADiscWithADamagedMapSector`, async () => {
    const bbc = await BbcMachine.boot(kind);
    const disc = bbc.insertDisc(0, emptyDisc(640));
    damageSector(disc, 0);
    assert.match(bbc.enterCommand("*MOUNT 0"), /Disc error/);
    assert.throws(() => bbc.readDisc(0), /wrong check bytes|0 track 0/);
  });

  test(`${title}TakesItsKeyboardFromTheSerialLineAndHonoursRts`, async () => {
    const bbc = await BbcMachine.boot(kind);
    const line = new SerialLine(bbc);
    for (const command of ["*FX 7,4", "*FX 8,4"]) bbc.enterCommand(command);
    bbc.type("*FX 2,1");
    bbc.run(0.5);
    bbc.text();
    line.sendAndWait("10REM " + "A".repeat(200) + "\rPRINT 6*7\r*FX 2,0\r");
    bbc.run(1);
    assert.match(bbc.text(), / 42\n\r/);
    assert.equal(line.overruns, 0);
  });
}

test("TheScreenShowsWhatTheMachineDraws", async () => {
  const bbc = await BbcMachine.boot("master", { screen: true });
  bbc.enterCommand("MODE 2:VDU 19,0,1,0,0,0:CLS");
  bbc.run(0.1);
  const { width, height, rgba } = bbc.screen.toRgba();
  const middle = (Math.floor(height / 2) * width + Math.floor(width / 2)) * 4;
  assert.deepEqual([...rgba.subarray(middle, middle + 3)], [255, 0, 0]);
});
