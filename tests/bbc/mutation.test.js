// After long random sequences of our changes the BBC's own filing system mounts the disc, lists
// every directory, loads every file byte for byte, and changes the disc in its turn; what it leaves
// we read, change and compact again.

import assert from "node:assert/strict";
import { join } from "node:path";
import { test } from "node:test";
import { BbcMachine } from "./lib/BbcMachine.js";
import { CommandBox } from "./lib/CommandBox.js";
import { nameOf } from "./lib/Machines.js";
import { assertBbcSees, assertWeSee, RandomChanges } from "./lib/RandomChanges.js";
import { readImage, sbx, sbxLines, temporaryFolder, writeImage } from "./lib/Sbx.js";

const kSectors = 2560;

for (const [kind, seed, names] of [
  ["master", 1, "plain"],
  ["modelB", 3, "plain"],
  ["modelBPlus", 5, "printable"],
  ["compact", 7, "printable"],
]) {
  test(`${nameOf(kind)}TakesADiscAfterRandomChangesOfOurs${seed}`, async (t) => {
    const folder = temporaryFolder(t);
    const image = join(folder, "disc.adl");
    sbx("new", "80dsd", image);
    const changes = new RandomChanges({ folder, image, seed, names });
    for (let step = 0; step < 70; step++) changes.step();
    assertWeSee(changes);

    const bbc = await BbcMachine.boot(kind);
    const box = new CommandBox(bbc);
    bbc.insertDisc(0, readImage(image, kSectors));
    assertBbcSees(box, changes);
    for (let step = 0; step < 20; step++) changes.stepOnBbc(box);
    writeImage(image, bbc.readDisc(0));
    assertWeSee(changes);

    // Once more: the BBC gets back its own disc, as we have changed it.
    for (let step = 0; step < 20; step++) changes.step();
    sbx("compact", image);
    assertWeSee(changes);
    bbc.insertDisc(0, readImage(image, kSectors));
    assertBbcSees(box, changes);
  });
}

test("ADirectoryThatTheBbcRenamedIsStillThereAfterWeCompact", async (t) => {
  const folder = temporaryFolder(t);
  const image = join(folder, "disc.adl");
  sbx("new", "80dsd", image);
  const bbc = await BbcMachine.boot("master");
  bbc.insertDisc(0, readImage(image, kSectors));
  bbc.enterCommand("*MOUNT 0");
  const bytes = Buffer.from("what the user keeps");
  bbc.poke(0x3000, bytes);
  for (const command of ["*SAVE HOLE 3000+900", "*CDIR FIRST", "*SAVE FIRST.KEPT 3000+13", "*ACCESS FIRST WR", "*RENAME FIRST SECOND", "*DELETE HOLE"])
    assert.match(bbc.enterCommand(command), /^\s*$/, command);
  writeImage(image, bbc.readDisc(0));
  sbx("compact", image);
  assert.equal(sbx("get", image, "$.SECOND.KEPT"), bytes.toString("latin1"));
  assert.deepEqual(sbxLines("tree", image).map((line) => line.split("\t")[0]), ["$", "$.SECOND"]);
});
