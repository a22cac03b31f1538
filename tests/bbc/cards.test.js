// The BBC works on raw cards that we format, through its 8-bit IDE interface, and we on what it
// leaves. A card holds two discs, the BBC's drives 0 and 1.

import assert from "node:assert/strict";
import { closeSync, openSync, readSync, statSync, truncateSync, writeFileSync, writeSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { BbcMachine } from "./lib/BbcMachine.js";
import { CommandBox } from "./lib/CommandBox.js";
import {
  assertBbcLoads, assertBbcSees, assertNoFaults, assertWeSee, kLoadAt, RandomChanges, runsOf,
} from "./lib/RandomChanges.js";
import { addNamed, sbx, sbxInfo, sbxLines, sbxRefusal, sbxResult, temporaryFolder } from "./lib/Sbx.js";

const kMegabyte = 2 ** 20;
const kSecondPartition = 0x200000; // its first block: one gibibyte in
const someBytes = (length, salt = 0) => Buffer.from(Uint8Array.from({ length }, (_, i) => (i * 7) ^ (i >> 8) ^ salt));

/** A blank card that has room for both partitions. */
function blankCard(t) {
  const card = join(temporaryFolder(t), "card.img");
  writeFileSync(card, "");
  truncateSync(card, 1100 * kMegabyte);
  return card;
}

function formattedCard(t) {
  const card = blankCard(t);
  sbx("cf", "format", `${card},0`, "8MB");
  sbx("cf", "format", `${card},1`, "4MB", "--quick");
  return card;
}

async function bootWith(t, card) {
  const bbc = await BbcMachine.boot("master", { card });
  t.after(() => bbc.drive.close());
  return new CommandBox(bbc);
}

/** Sets `count` bytes of a disc on the card, or of all of it, odd bytes included. */
function fill(card, offset, count, byte) {
  const file = openSync(card, "r+");
  writeSync(file, new Uint8Array(count).fill(byte), 0, count, offset);
  closeSync(file);
}

/** The blocks that the BBC has read since the last call. */
function blocksOf(box) {
  return box.bbc.drive.commands.splice(0).filter(({ command }) => command === 0x20).map(({ block }) => block);
}

for (const quick of [false, true]) {
  test(`TheBbcWorksOnBothPartitionsAfterA${quick ? "Quick" : "Full"}Format`, async (t) => {
    const card = blankCard(t);
    for (const [drive, size] of [[0, "16MB"], [1, "4MB"]])
      sbx("cf", "format", `${card},${drive}`, size, ...(quick ? ["--quick"] : []));
    const box = await bootWith(t, card);
    for (const drive of [0, 1]) {
      const image = `cf:${card},${drive}`;
      const ours = someBytes(0x1111, drive);
      addNamed(join(card, ".."), image, "$", "OURS", ours);
      box.do(`MOUNT ${drive}`);
      assert.ok(blocksOf(box).includes(drive * kSecondPartition), "the first sector of its disc");
      assertBbcLoads(box, "OURS", ours);
      assert.ok(blocksOf(box).every((block) => (block >= kSecondPartition) === (drive === 1)));
      box.bbc.poke(kLoadAt, someBytes(0x2345, 9));
      for (const line of ["SAVE HOLE 3000+800", "CDIR SUB", "SAVE SUB.THEIRS 3000+2345", "DELETE HOLE", "COMPACT 30 40", "OPT 4,2", "TITLE Card"])
        box.do(line);
      assert.equal(sbx("get", image, "$.SUB.THEIRS"), someBytes(0x2345, 9).toString("latin1"));
      assert.equal(sbx("get", image, "$.OURS"), ours.toString("latin1"));
      assert.deepEqual([sbxInfo(image).boot, sbxInfo(image).title, sbxInfo(image).runs], ["2", "Card", "1"]);
      assert.deepEqual(runsOf(box.run("MAP")), runsOf(sbx("map", image)));
      assertNoFaults(image);
    }
    assertNoFaults(`cf:${card},0`);
  });
}

for (const [drive, seed] of [[0, 31], [1, 32]]) {
  test(`TheBbcAndWeChangePartition${drive}InTurn${seed}`, async (t) => {
    const card = formattedCard(t);
    const image = `cf:${card},${drive}`;
    const changes = new RandomChanges({ folder: temporaryFolder(t), image, seed, names: "printable", longestFile: 0x1000 });
    const box = await bootWith(t, card);
    const asSeen = () => ({ model: changes.model, image, drive });
    for (let round = 0; round < 2; round++) {
      for (let step = 0; step < 20; step++) changes.step();
      assertBbcSees(box, asSeen());
      for (let step = 0; step < 20; step++) changes.stepOnBbc(box);
      assertWeSee(changes);
    }
    assertBbcSees(box, asSeen());
    assertNoFaults(`cf:${card},${1 - drive}`);
    assert.equal(sbxInfo(`cf:${card},${1 - drive}`).used, "1792");
  });
}

test("APartitionThatIsBackedUpAndRestoredToTheOtherIsTheSameForTheBbc", async (t) => {
  const card = formattedCard(t);
  const folder = temporaryFolder(t);
  const changes = new RandomChanges({ folder, image: `cf:${card},1`, seed: 33 });
  for (let step = 0; step < 25; step++) changes.step();
  const [backup, full] = [join(folder, "part.dat"), join(folder, "full.dat")];
  sbx("cf", "backup", `${card},1`, backup);
  sbx("cf", "backup", `${card},1`, full, "--full");
  assert.ok(statSync(backup).size < statSync(full).size);
  const box = await bootWith(t, card);
  for (const file of [backup, full]) {
    sbx("cf", "format", `${card},0`, "8MB", "--quick");
    sbx("cf", "restore", `${card},0`, file);
    assertBbcSees(box, { model: changes.model, image: `cf:${card},0` });
    box.do("SAVE NEW 3000+100");
    assertNoFaults(`cf:${card},0`);
  }
});

test("ABackupOfACardIsAHardDiscForTheBbc", async (t) => {
  const card = formattedCard(t);
  const folder = temporaryFolder(t);
  const changes = new RandomChanges({ folder, image: `cf:${card},0`, seed: 34 });
  for (let step = 0; step < 15; step++) changes.step();
  const image = join(folder, "backup.dat");
  sbx("cf", "backup", `${card},0`, image);
  const bbc = await BbcMachine.boot("modelB", { hardDisc: image });
  t.after(() => bbc.drive.close());
  assertBbcSees(new CommandBox(bbc), { model: changes.model, image });
});

// A quick format leaves the root's end as it was. What stood there may be taken for a last entry.
test("WhatAQuickFormatLeavesAtTheRootsEndIsADirectoryThatIsFullForTheBbcAndForUs", async (t) => {
  const card = blankCard(t);
  const image = `cf:${card},0`;
  fill(card, 0, 4096, 0xff);
  sbx("cf", "format", `${card},0`, "4MB", "--quick");
  assert.equal(sbxResult(["check", image]).stdout, "error: $: names sector FFFFFF as its parent instead of sector 000002\n");
  const box = await bootWith(t, card);
  box.do("MOUNT 0");
  assert.match(box.run("SAVE X 3000+100"), /Dir full/);
  assert.match(sbxRefusal("mkdir", image, "$", "SUB"), /Directory Full/);
  sbx("cf", "format", `${card},0`, "4MB");
  box.do("MOUNT 0");
  box.do("SAVE X 3000+100");
  assertNoFaults(image);
});

for (const [files, isFull] of [[46, false], [47, true]]) {
  test(`AQuickFormatOverARootOf${files}FilesLeaves${isFull ? "AFull" : "AnEmpty"}Root`, async (t) => {
    const card = formattedCard(t);
    const image = `cf:${card},0`;
    for (let n = 0; n < files; n++) addNamed(join(card, ".."), image, "$", `F${n}`, someBytes(n));
    sbx("cf", "format", `${card},0`, "8MB", "--quick");
    assert.deepEqual(sbxLines("ls", image), []);
    const box = await bootWith(t, card);
    box.do("MOUNT 0");
    if (isFull) {
      assert.match(box.run("SAVE X 3000+100"), /Dir full/);
      assert.match(sbxRefusal("mkdir", image, "$", "SUB"), /Directory Full/);
    } else {
      box.do("SAVE X 3000+100");
    }
    assertNoFaults(image);
  });
}

test("TheAdfsOfCardsTakesAMapWithAWrongSumAndCheckTellsOfIt", async (t) => {
  const card = formattedCard(t);
  addNamed(join(card, ".."), `cf:${card},0`, "$", "DATA", someBytes(100));
  const file = openSync(card, "r+");
  const sum = new Uint8Array(1);
  readSync(file, sum, 0, 1, 255 * 2); // byte 255 of the disc is every second byte's 255th
  writeSync(file, Uint8Array.of(sum[0] ^ 1), 0, 1, 255 * 2);
  closeSync(file);
  assert.match(sbxResult(["check", `cf:${card},0`]).stdout, /^error: sector 0: the checksum is/m);
  const box = await bootWith(t, card);
  box.do("MOUNT 0");
  assertBbcLoads(box, "DATA", someBytes(100));
  assert.match(sbxLines("ls", `cf:${card},0`).join(), /DATA/);
});
