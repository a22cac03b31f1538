// The BBC works on hard disc images of ours through its SCSI adapter, and we on what it leaves.

import assert from "node:assert/strict";
import { copyFileSync, existsSync, readFileSync, statSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { BbcMachine } from "./lib/BbcMachine.js";
import { CommandBox } from "./lib/CommandBox.js";
import { nameOf } from "./lib/Machines.js";
import {
  assertBbcLoads, assertBbcSees, assertNoFaults, assertWeSee, kLoadAt, printedLines, RandomChanges, runsOf,
} from "./lib/RandomChanges.js";
import { kSectorsOfTrack } from "./lib/ScsiDisc.js";
import { sbx, sbxInfo, sbxKilledAt, sbxLines, sbxRefusal, temporaryFolder } from "./lib/Sbx.js";

const kSizes = [1, 2, 4, 8, 16, 32, 64, 128, 256];
const kMachinesWithAdapter = ["master", "modelB"];

/** A machine with the image as its drive 0, mounted. */
async function bootWith(t, image, kind = "master") {
  const bbc = await BbcMachine.boot(kind, { hardDisc: image });
  t.after(() => bbc.drive.close());
  const box = new CommandBox(bbc);
  box.do("MOUNT 0");
  return box;
}

function newImage(t, size, name = "disc.dat") {
  const image = join(temporaryFolder(t), name);
  sbx("new", size, image);
  return image;
}

/** Bytes that no two files of a test have in common. */
const someBytes = (length, salt = 0) => Buffer.from(Uint8Array.from({ length }, (_, i) => (i * 7) ^ (i >> 8) ^ salt));

function addFile(image, dir, name, bytes) {
  const host = join(image, "..", name);
  writeFileSync(host, bytes);
  sbx("add", image, dir, host);
}

/** Sectors free and used, as `*FREE` prints them. */
function freeOf(box) {
  const [free, used] = [...box.run("FREE").matchAll(/([0-9A-F]{6}) Sectors/g)].map((m) => parseInt(m[1], 16));
  return { free: free * 256, used: used * 256 };
}

function assertSameSpace(box, image) {
  const { free, used } = sbxInfo(image);
  assert.deepEqual(freeOf(box), { free: Number(free), used: Number(used) });
  assert.deepEqual(runsOf(box.run("MAP")), runsOf(sbx("map", image)));
}

for (const kind of kMachinesWithAdapter) {
  test(`${nameOf(kind)}WritesToNewHardDiscsOfEverySizeAndWeReadIt`, async (t) => {
    const image = newImage(t, "1m");
    const box = await bootWith(t, image, kind);
    for (const size of kSizes) {
      sbx("new", "--force", `${size}m`, image);
      box.bbc.drive.change(image);
      box.do("MOUNT 0");
      assert.equal(freeOf(box).used, 7 * 256);
      assertSameSpace(box, image);
      const bytes = someBytes(0x321, size);
      box.bbc.poke(kLoadAt, bytes);
      box.do("CDIR SUB");
      box.do("SAVE SUB.DATA 3000+321");
      assertSameSpace(box, image);
      assert.equal(sbx("get", image, "$.SUB.DATA"), bytes.toString("latin1"));
      assertNoFaults(image);
    }
  });

  test(`${nameOf(kind)}SaysOfAHardDiscWhatWeSay`, async (t) => {
    const image = newImage(t, "8m");
    const folder = temporaryFolder(t);
    const changes = new RandomChanges({ folder, image, seed: 11, names: "printable" });
    for (let step = 0; step < 40; step++) changes.step();
    sbx("title", image, "$", "Nineteen characters");
    sbx("boot", image, "run");
    const box = await bootWith(t, image, kind);
    assertBbcSees(box, changes);
    assertSameSpace(box, image);
    // A line of *INFO is one of *EX.
    const infos = printedLines(box.run("INFO *"));
    assert.deepEqual(infos, printedLines(sbxLines("ex", image).slice(-infos.length).join("\r\n")));
  });

  test(`AFileThat${nameOf(kind)}WritesByteForByteIsWhole`, async (t) => {
    const image = newImage(t, "2m");
    const box = await bootWith(t, image, kind);
    const { bbc } = box;
    box.leave();
    bbc.enterCommand('X=OPENOUT("DATA"):FOR I%=0 TO 999:BPUT#X,I%EORI%DIV256:NEXT:CLOSE#X');
    const expected = Buffer.from(Uint8Array.from({ length: 1000 }, (_, i) => i ^ (i >> 8)));
    assert.equal(sbx("get", image, "$.DATA"), expected.toString("latin1"));
    addFile(image, "$", "OURS", expected);
    bbc.enterCommand("*MOUNT 0");
    const sum = bbc.enterCommand('S%=0:X=OPENIN("OURS"):REPEAT S%=S%+BGET#X:UNTIL EOF#X:CLOSE#X:PRINT S%');
    assert.equal(Number(sum), expected.reduce((total, byte) => total + byte, 0));
  });
}

for (const kind of [...kMachinesWithAdapter, "modelBPlus"]) {
  test(`WeSeeWhat${nameOf(kind)}DoesToAHardDisc`, async (t) => {
    const image = newImage(t, "4m");
    const box = await bootWith(t, image, kind);
    const bytes = someBytes(0x1234);
    box.bbc.poke(kLoadAt, bytes);
    for (const line of [
      "SAVE HOLE 3000+2000", "CDIR GAMES", "SAVE GAMES.ELITE 3000+1234 FFFF8023 FFFF1900", "SAVE GONE 3000+100",
      "RENAME GAMES.ELITE GAMES.Exile", "ACCESS GAMES.EXILE LR", "DELETE GONE", "DELETE HOLE", "TITLE Kept",
      "DIR GAMES", "TITLE All games", "DIR $", "OPT 4,3", "COMPACT 30 40",
    ]) box.do(line);
    assert.deepEqual(sbxLines("tree", image).map((line) => line.split("\t")[0]), ["$", "$.GAMES"]);
    const [exile] = sbxLines("ls", image, "$.GAMES").map((line) => line.split("\t"));
    assert.deepEqual(exile.slice(0, 2).concat(exile.slice(3, 6)), ["Exile", "LR", "FFFF1900", "FFFF8023", "00001234"]);
    assert.equal(sbx("get", image, "$.GAMES.EXILE"), bytes.toString("latin1"));
    const info = sbxInfo(image);
    assert.deepEqual([info.title, info.boot, info.runs], ["Kept", "3", "1"]);
    assert.equal(sbxLines("cat", image, "$.GAMES")[0].slice(0, 9), "All games");
    assertSameSpace(box, image);
    assertNoFaults(image);
  });
}

for (const [kind, seed, names] of [["master", 21, "printable"], ["modelB", 22, "printable"]]) {
  test(`${nameOf(kind)}AndWeChangeAHardDiscInTurn${seed}`, async (t) => {
    const image = newImage(t, "4m");
    const changes = new RandomChanges({ folder: temporaryFolder(t), image, seed, names, longestFile: 0x1000 });
    const box = await bootWith(t, image, kind);
    for (let round = 0; round < 2; round++) {
      for (let step = 0; step < 25; step++) changes.step();
      assertBbcSees(box, changes);
      for (let step = 0; step < 40; step++) changes.stepOnBbc(box);
      assertWeSee(changes);
    }
    assertBbcSees(box, changes);
  });
}

test("TheBbcWritesToTheLargestDiscOfWhichWeDoNotWarnAndOnlyListsALargerOne", async (t) => {
  const image = newImage(t, "512m");
  const box = await bootWith(t, image);
  const writes = () => !/Bad FS map/.test(box.run("SAVE X 3000+10"));
  const kTooLarge = "warning: sector 0: the BBC can't write to a disc of this size";
  assertSameSpace(box, image);
  assert.deepEqual([writes(), sbxLines("check", image)], [false, [kTooLarge]]);
  // Just below and just above &200000 sectors: the BBC has 21 bits for the number of one.
  for (const [megabytes, isTooLarge] of [["496.5", true], ["496.47", false]]) {
    sbx("resize", image, megabytes);
    assert.equal(Number(sbxInfo(image).size) > 0x200000, isTooLarge);
    box.do("MOUNT 0");
    assertSameSpace(box, image);
    assert.deepEqual([writes(), sbxLines("check", image)], isTooLarge ? [false, [kTooLarge]] : [true, []]);
  }
});

test("TheDriveTellsTheBytesOfTheCompanionThatWeWrite", async (t) => {
  const image = newImage(t, "16m");
  const companion = readFileSync(image.replace(".dat", ".dsc"));
  assert.equal(companion.length, 22);
  const box = await bootWith(t, image);
  assert.deepEqual(modeSense(box), companion);
  assert.equal((companion[13] * 256 + companion[14]) * companion[15] * kSectorsOfTrack, Number(sbxInfo(image).size));
});

/** Sends a command from a program on the BBC, through OSWORD &72; the drive's error code, or 0. */
function send(box, command) {
  const { bbc } = box;
  bbc.poke(kBlock, [0, kData & 255, kData >> 8, 0xff, 0xff, ...command, ...Array(10 - command.length).fill(0)]);
  bbc.enterCommand("A%=&72:X%=0:Y%=&A:CALL &FFF1");
  return bbc.peek(kBlock, 1)[0];
}
const kBlock = 0xa00;
const kData = 0xb00;

function modeSense(box) {
  box.leave();
  box.bbc.poke(kData, new Uint8Array(32).fill(0xee));
  assert.equal(send(box, [0x1a, 0, 0, 0, 22]), 0);
  assert.equal(box.bbc.peek(kData + 22, 1)[0], 0xee);
  return Buffer.from(box.bbc.peek(kData, 22));
}

test("TheDriveKnowsTheCommandsOfToolsAndItsEnd", async (t) => {
  const image = newImage(t, "1m");
  const box = await bootWith(t, image);
  box.leave();
  const last = Number(sbxInfo(image).size) - 1;
  const sector = (n) => [n >> 16, (n >> 8) & 255, n & 255];
  for (const code of [0x00, 0x01, 0x0c]) assert.equal(send(box, [code, 0, 0, 0, 0]), 0);
  assert.deepEqual([0x0b, 0x08].map((code) => send(box, [code, ...sector(last), 1])), [0, 0]);
  assert.deepEqual([0x0b, 0x08, 0x0a].map((code) => send(box, [code, ...sector(last + 1), 1])), [0x21, 0x21, 0x21]);
  const verify = (n, count) => send(box, [0x2f, 0, 0, ...sector(n), 0, 0, count]);
  assert.deepEqual([verify(last - 9, 10), verify(last - 9, 11)], [0, 0x21]);
  assert.equal(send(box, [0x1f, 0, 0, 0, 0]), 0x20);
  box.bbc.poke(kData, someBytes(22));
  assert.equal(send(box, [0x15, 0, 0, 0, 22]), 0);
  box.restart();
  assert.deepEqual(modeSense(box), someBytes(22));
  assert.equal(send(box, [0x04, 0, 0, 0, 0]), 0);
  assert.ok(readFileSync(image).every((byte) => byte === 0));
});

test("ADriveEndsWhereAnOldCompanionSaysUntilTheResizedDiscGetsANewOne", async (t) => {
  const image = newImage(t, "2m");
  const bytes = someBytes(0x2000);
  addFile(image, "$", "FIRST", bytes);
  sbx("resize", image, "8");
  addFile(image, "$", "BIG", Buffer.alloc(6_000_000));
  addFile(image, "$", "LAST", bytes);
  const box = await bootWith(t, image);
  assertSameSpace(box, image);
  assertBbcLoads(box, "FIRST", bytes);
  assert.match(box.run("LOAD LAST 3000"), /Disc error 21/);
  const told = sbxLines("check", image);
  assert.deepEqual(told, ["warning: disc.dsc: tells of 8448 sectors, and the disc has 33792"]);

  const companion = readFileSync(image.replace(".dat", ".dsc"));
  companion.set([1, 0], 13); // 256 cylinders
  writeFileSync(image.replace(".dat", ".dsc"), companion);
  assertNoFaults(image);
  box.bbc.drive.change(image);
  box.do("MOUNT 0");
  assertBbcLoads(box, "LAST", bytes);
});

test("ADiscThatWasMadeSmallerIsWrittenByTheBbcUpToItsEnd", async (t) => {
  const image = newImage(t, "8m");
  addFile(image, "$", "FIRST", someBytes(0x2000));
  sbx("resize", image, "2");
  const box = await bootWith(t, image);
  assertSameSpace(box, image);
  box.bbc.poke(kLoadAt, someBytes(0x2800));
  let files = 0;
  while (!/Disc full|Dir full/.test(box.run(`SAVE F${files} 3000+2800`))) files++;
  assert.ok(files > 30);
  assert.equal(sbx("get", image, `$.F${files - 1}`), someBytes(0x2800).toString("latin1"));
  assertNoFaults(image);
});

test("ADiscThatIsSmallerThanItsFilesIsRefusedByUsAndSoundAfterItIsLargeAgain", async (t) => {
  const image = newImage(t, "4m");
  addFile(image, "$", "BIG", Buffer.alloc(2_500_000, 0x42));
  addFile(image, "$", "LAST", someBytes(0x1000));
  sbx("resize", image, "2");
  assert.match(sbxRefusal("mkdir", image, "$", "SUB"), /Cannot Change A Damaged Disc/);
  sbx("resize", image, "4");
  const box = await bootWith(t, image);
  assertBbcLoads(box, "LAST", someBytes(0x1000));
  box.do("CDIR SUB");
  assertNoFaults(image);
});

test("TheBbcTakesATrimmedDiscAndAPaddedOne", async (t) => {
  const image = newImage(t, "4m");
  addFile(image, "$", "DATA", someBytes(0x1000));
  const folder = temporaryFolder(t);
  const lengths = [];
  for (const pad of ["off", "on"]) {
    const saved = join(folder, `${pad}.dat`);
    sbx("save", "--pad", pad, image, saved);
    lengths.push(statSync(saved).size);
    const box = await bootWith(t, saved);
    assertBbcLoads(box, "DATA", someBytes(0x1000));
    box.bbc.poke(kLoadAt, someBytes(0x2000, 9));
    box.do("SAVE MORE 3000+2000");
    assert.equal(sbx("get", saved, "$.MORE"), someBytes(0x2000, 9).toString("latin1"));
    assertNoFaults(saved);
  }
  assert.ok(lengths[0] < 0x3000 && lengths[1] === Number(sbxInfo(image).size) * 256, lengths.join());
});

test("AnEmptyFileThatTheBbcDeletesLeavesASectorOfWhichCheckTells", async (t) => {
  const image = newImage(t, "1m");
  addFile(image, "$", "EMPTY", Buffer.alloc(0));
  addFile(image, "$", "NEXT", someBytes(10));
  const box = await bootWith(t, image);
  box.do("DELETE EMPTY");
  assert.deepEqual(sbxLines("check", image), ["warning: sector 000007: 1 sectors from here belong to nothing"]);
  sbx("compact", image);
  assertNoFaults(image);
  box.do("MOUNT 0");
  assertBbcLoads(box, "NEXT", someBytes(10));
});

// The field lies in what a quick format leaves alone, so we write no parent.
test("TheRootOfANewDiscHasNoParentWhichTheBbcMindsOnItsWayUpOnly", async (t) => {
  const kRootParent = 512 + 1238;
  const image = newImage(t, "1m");
  addFile(image, "$", "DATA", someBytes(10));
  const disc = readFileSync(image);
  assert.equal(disc[kRootParent], 0);
  assertNoFaults(image);
  const box = await bootWith(t, image);
  assertBbcLoads(box, "DATA", someBytes(10));
  box.do("CDIR SUB");
  box.do("DIR SUB");
  assert.match(box.run("CAT ^"), /DATA/);
  box.do("DIR $");
  assert.match(box.run("CAT ^"), /Broken directory/);
  disc[kRootParent] = 2;
  writeFileSync(image, disc);
  assertNoFaults(image);
  box.do("MOUNT 0");
  assert.match(box.run("CAT ^"), /DATA/);
});

test("TheBbcFindsADiscWholeWhoseChangeWasKilledAndFinishedFromItsJournal", async (t) => {
  const image = newImage(t, "1m");
  const files = new Map();
  for (const [i, name] of ["A", "B", "C", "D", "E", "F"].entries()) {
    files.set(name, someBytes(0x600 + 0x111 * i, i));
    addFile(image, "$", name, files.get(name));
  }
  sbx("delete", image, "B", "D");
  files.delete("B");
  files.delete("D");
  const before = join(image, "..", "before");
  copyFileSync(image, before);
  const box = await bootWith(t, image);
  let withJournal = 0;
  let kills = 0;
  for (const call of ["pwrite", "write", "fsync", "rename", "remove"]) {
    for (let at = 1; ; at++, kills++) {
      copyFileSync(before, image);
      if (!sbxKilledAt(call, at, "compact", image)) break;
      if (existsSync(`${image}-journal`)) withJournal++;
      // Whoever opens the disc next finishes the change or drops it. Of a journal in which nothing
      // stands yet only the name may stay.
      sbx("info", image);
      assert.equal(existsSync(`${image}-journal`) ? statSync(`${image}-journal`).size : 0, 0);
      assertNoFaults(image);
      box.bbc.drive.change(image);
      box.do("MOUNT 0");
      for (const [name, bytes] of files) assertBbcLoads(box, name, bytes);
      box.do("SAVE NEW 3000+100");
      assertNoFaults(image);
    }
  }
  assert.ok(kills > 5 && withJournal > 2, `${kills} kills, ${withJournal} with a journal`);
});
