// The BBC's own filing system mounts discs that we make; it checks more than our readers do. A disc
// that the BBC has written opens here with the same contents.

import assert from "node:assert/strict";
import { join } from "node:path";
import { test } from "node:test";
import { BbcMachine } from "./lib/BbcMachine.js";
import { emptyDisc } from "./lib/DiscImages.js";
import { kAllMachines, nameOf } from "./lib/Machines.js";
import { readImage, sbx, sbxInfo, sbxLines, temporaryFolder, writeImage } from "./lib/Sbx.js";

const kFloppies = [
  { kind: "40ssd", file: "new.adf", sectors: 640 },
  { kind: "80ssd", file: "new.adf", sectors: 1280 },
  { kind: "80dsd", file: "new.adl", sectors: 2560 },
];

/** The words that the BBC printed, without its control characters. */
const words = (text) => text.replace(/[^\x20-\x7e]+/g, " ").trim().split(/ +/);

/** Pairs of hex numbers in the BBC's `*MAP`: address and length of each free run. */
const runsOf = (text) => [...text.matchAll(/([0-9A-F]{6})\s*:\s*([0-9A-F]{6})/g)].map((m) => [m[1], m[2]]);

function assertSameSpace(bbc, image) {
  const ours = sbxInfo(image);
  assert.deepEqual(runsOf(bbc.enterCommand("*MAP")), runsOf(sbx("map", image)));
  const free = words(bbc.enterCommand("*FREE"));
  // "000279 Sectors = 162,048 Bytes Free 000007 Sectors = 1,792 Bytes Used"
  const sectors = (bytes) => (Number(bytes) / 256).toString(16).toUpperCase().padStart(6, "0");
  assert.equal(free[0], sectors(ours.free));
  assert.equal(free[free.indexOf("Free") + 1], sectors(ours.used));
}

for (const kind of Object.keys(kAllMachines)) {
  const title = nameOf(kind);

  for (const { kind: size, file, sectors } of kFloppies) {
    test(`${title}MountsANew${size.toUpperCase()}DiscAndCountsTheSameSpace`, async (t) => {
      const image = join(temporaryFolder(t), file);
      sbx("new", size, image);
      const bbc = await BbcMachine.boot(kind);
      bbc.insertDisc(0, readImage(image, sectors));
      assert.match(bbc.enterCommand("*MOUNT 0"), /^\s*$/);
      assert.match(bbc.enterCommand("*CAT"), /^\$ +\(01\)[\s\S]*Dir\. \$/);
      assertSameSpace(bbc, image);
      bbc.enterCommand('10 PRINT "OURS"');
      assert.match(bbc.enterCommand('SAVE "PROG"'), /^\s*$/);
      assert.match(bbc.enterCommand("*CDIR SUB"), /^\s*$/);
    });
  }

  test(`ADiscThat${title}WroteOpensHereWithTheSameContents`, async (t) => {
    const folder = temporaryFolder(t);
    const blank = join(folder, "blank.adl");
    sbx("new", "80dsd", blank);
    const bbc = await BbcMachine.boot(kind);
    bbc.insertDisc(0, readImage(blank, 2560));
    bbc.enterCommand("*MOUNT 0");
    bbc.enterCommand("*CDIR GAMES");
    bbc.enterCommand("*DIR GAMES");
    bbc.enterCommand("*CDIR ARCADE");
    bbc.enterCommand('10 PRINT "HELLO"');
    bbc.enterCommand('SAVE "PROG"');
    bbc.enterCommand("*DIR $");
    const data321 = Uint8Array.from({ length: 0x321 }, (_, i) => (i * 7) ^ (i >> 8));
    bbc.poke(0x3000, data321);
    bbc.enterCommand("*SAVE DATA 3000+0321 FFFF1900 FFFF1923");
    bbc.enterCommand("*ACCESS DATA LR");
    const written = join(folder, "written.adl");
    writeImage(written, bbc.readDisc(0));

    assert.deepEqual(
      sbxLines("tree", written).map((line) => line.split("\t")[0]),
      ["$", "$.GAMES", "$.GAMES.ARCADE"]);
    const [data, games] = sbxLines("ls", written).map((line) => line.split("\t"));
    assert.deepEqual([data[0], data[1], data[4], data[5]], ["DATA", "LR", "FFFF1900", "00000321"]);
    assert.deepEqual([games[0], games[1].includes("D")], ["GAMES", true]);
    assert.ok(sbx("get", written, "$.DATA") === Buffer.from(data321).toString("latin1"), "DATA came back changed");
    assert.match(sbx("get", written, "$.GAMES.PROG"), /^\r\x00\x0a.*"HELLO"\r\xff$/s);
    assertSameSpace(bbc, written);
    assert.deepEqual(sbxLines("check", written).filter((line) => line.startsWith("error")), []);
  });
}

// ADFS goes to the next track before it looks whether it is done. On a disc of 160K there is none, so
// a transfer of such a disc takes its last sectors one by one.
test("TheMasterDoesNotReadAcrossATrackUpToTheEndOfADiscOf160K", async () => {
  const bbc = await BbcMachine.boot("master");
  const readsTo = (sectors, start, count) => {
    bbc.insertDisc(0, emptyDisc(sectors));
    bbc.enterCommand("*MOUNT 0");
    bbc.poke(0xa00, [0, 0x00, 0x30, 0xff, 0xff, 8, 0, start >> 8, start & 255, count, 0, 0, 0, 0, 0]);
    bbc.enterCommand("A%=&72:X%=0:Y%=&A:CALL &FFF1");
    return bbc.peek(0xa00, 1)[0];
  };
  assert.equal(readsTo(640, 623, 17), 0x50);
  assert.equal(readsTo(640, 624, 16), 0);
  assert.equal(readsTo(2560, 2543, 17), 0);
});
