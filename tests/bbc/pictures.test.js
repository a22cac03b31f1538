// Our pictures beside the BBC's own: the shapes of the teletext characters, a page with every kind of
// control code, and saved screens. Where ours is meant to differ, the place and the reason are listed.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { test } from "node:test";
import { BbcMachine } from "./lib/BbcMachine.js";
import { cellOf, graphicsScreen, readBitmap, teletextScreen } from "./lib/Pictures.js";
import { emptyDisc } from "./lib/DiscImages.js";
import { sbx, temporaryFolder, writeImage } from "./lib/Sbx.js";

const kScreenMemory = { 0: 0x3000, 1: 0x3000, 2: 0x3000, 4: 0x5800, 5: 0x5800, 7: 0x7c00 };
const kMemoryEnd = 0x8000;
const hex = (number) => number.toString(16).toUpperCase();

/** Runs a program of BASIC that switches to `mode`, lets us fill the screen, and saves its memory. */
function startScreen(bbc, mode) {
  bbc.insertDisc(0, emptyDisc(2560));
  bbc.enterCommand("*MOUNT 0");
  const save = mode === 7 ? "7C00 7FC0" : `${hex(kScreenMemory[mode])} ${hex(kMemoryEnd)}`;
  bbc.enterCommand(`10 MODE ${mode}:VDU 23,1,0;0;0;0;:?&70=1:REPEAT UNTIL ?&70=2`);
  bbc.enterCommand(`20 OSCLI "SAVE SCREEN ${save}"`);
  bbc.enterCommand("30 ?&70=3:REPEAT UNTIL FALSE");
  bbc.type("RUN");
  bbc.runUntil(() => bbc.peek(0x70, 1)[0] === 1, 5, "screen");
}

function saveScreen(bbc, image) {
  bbc.poke(0x70, [2]);
  bbc.runUntil(() => bbc.peek(0x70, 1)[0] === 3, 60, "end of saving");
  writeImage(image, bbc.readDisc(0));
}

/** The distinct pictures that the monitor shows within two seconds, for what flashes. */
function picturesOf(bbc, look) {
  const seen = [];
  for (let i = 0; i < 40; i++) {
    bbc.run(0.05);
    const picture = look(bbc);
    if (!seen.some((other) => Buffer.compare(other.pixels, picture.pixels) === 0)) seen.push(picture);
  }
  return seen;
}

// The chip leaves the two left columns of a character's cell dark, we the two right ones.
const movedLeft = (cell) => cell.map((line) => line.slice(2) + line.slice(0, 2));
const isEvenAtTheLeft = (cell) => cell.every((line) => line[0] === line[1]);
function sameCell(ours, theirs) {
  const text = ours.join();
  return text === theirs.join() || (isEvenAtTheLeft(theirs) && text === movedLeft(theirs).join());
}

// Characters that we draw otherwise than the chip, each with its reason.
const kOtherShapes = {};

test("EveryCharacterOfTheTeletextFontHasTheShapeThatTheBBCShows", async (t) => {
  const font = readFileSync(join(dirname(process.env.SBX), "teletext.fnt"));
  const bbc = await BbcMachine.boot("modelB", { screen: true });
  bbc.type("MODE 7");
  bbc.run(0.5);
  bbc.type("VDU 23,1,0;0;0;0;");
  bbc.run(0.5);
  const place = (code) => ({ column: 2 + 2 * (code % 16), row: 2 * Math.floor(code / 16) });
  const page = new Uint8Array(1000).fill(32);
  for (let code = 32; code < 128; code++) page[place(code).row * 40 + place(code).column] = code;
  bbc.poke(kScreenMemory[7], page);
  bbc.run(0.2);
  const screen = teletextScreen(bbc);
  const differing = [];
  for (let code = 32; code < 128; code++) {
    const rows = Array.from({ length: 18 }, (_, y) => font.readUInt16LE(((code - 32) * 18 + y) * 2));
    const ours = ["0".repeat(12), "0".repeat(12), ...rows.map((row) => row.toString(2).padStart(10, "0") + "00")];
    const theirs = cellOf(screen, place(code).column, place(code).row).map((line) => line.replaceAll("7", "1"));
    if (ours.join() !== movedLeft(theirs).join()) differing.push(code);
  }
  t.diagnostic(`${96 - differing.length} of 96 characters agree`);
  assert.deepEqual(differing, Object.keys(kOtherShapes).map(Number));
});

const kSteadyRelease = "the chip shows the held mosaic in the cell that releases it, we a blank";
const kTextBlank = "the chip shows the held mosaic in the cell that turns to text, we a blank";
const kForgets = "the chip forgets the held mosaic when text begins, we keep it";
const kOwnForm = "the chip shows a held mosaic in the form in which it came, we in the form now set";
const kConceals = "the chip conceals up to the next colour, we only the code's own cell";
const kFlashLate = "the chip begins to flash after the code's cell, we in it";
const kHeightForgets = "the chip forgets the held mosaic at a change of height, we keep it";

// Rows of a page: their codes, and by column where our picture is another and why. The cells that
// differ in phase 0 alone stand under `phase0`.
const kRows = [
  { codes: "\x81Red\x82Green\x83Yellow\x84Blue\x85Mag\x86Cyan\x87White" },
  { codes: "\x91a5\x92b6\x93c7\x94d8\x95e9\x96f?\x97|/" },
  { codes: "\x91ABC\x9AXYZ012" },
  { codes: "\x91\x9A/~\x7f5\x99/~\x7f5" },
  { codes: "\x91a5\x82a5\x93a5" },
  { codes: "\x88Flash\x89steady\x84\x9D\x83\x88on blue" },
  { codes: "\x81\x9D\x83red\x84\x9Dblue\x9Cblack" },
  { codes: "\x91\x9E\x7f\x92\x93\x9F\x94x", differs: { 5: kSteadyRelease } },
  { codes: "\x92\x35\x9E\x93\x35" },
  { codes: "\x91\x9E\x92\x35" },
  { codes: "\x91\x9E\x35G\x92\x35" },
  { codes: "\x91\x9E\x35\x81\x92\x35", differs: { 3: kTextBlank, 4: kForgets } },
  { codes: "\x91\x9E\x7f\x9A\x99\x7f", differs: { 3: kOwnForm } },
  { codes: "\x98Hid\x81shown", differs: { 1: kConceals, 2: kConceals, 3: kConceals } },
  { codes: "\x8DDouble\x8Cnormal\x91\x8D/7\x9A/7" },
  { codes: "\x8DDouble\x8Cnormal\x91\x8D/7\x9A/7" },
  { codes: "a\x80b\x8Ac\x8Bd\x8Ee\x8Ff\x90g\x9Bh" },
  { codes: "\x91\x35\x90\x35\x80\x35\x9B\x35" },
  { codes: "\x91\x9E\x7f\x88\x7f\x89\x7f", phase0: { 3: kFlashLate } },
  { codes: "\x91\x9E\x7f\x9D\x92\x7f\x9C\x7f" },
  { codes: "\x91\x9E\x7f\x8D\x7f\x8C\x7f", differs: { 3: kHeightForgets, 5: kHeightForgets } },
  { codes: "\x91\x9E\x7f\x8D\x7f\x8C\x7f", differs: { 3: kHeightForgets } },
  { codes: "0123456789 ABCDEFGHIJKLM abcdefghijklm" },
  { codes: "!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~\x7f" },
];

function expectedDifferences(phase) {
  return kRows.flatMap(({ differs = {}, phase0 = {} }, row) =>
    Object.keys(phase === 0 ? { ...differs, ...phase0 } : differs).map((column) => `${row}:${column}`));
}

test("ASavedTeletextPageLooksAsTheBBCShowsItApartFromWhatIsMeant", async (t) => {
  const folder = temporaryFolder(t);
  const bbc = await BbcMachine.boot("modelB", { screen: true });
  startScreen(bbc, 7);
  const page = new Uint8Array(1000).fill(32);
  kRows.forEach(({ codes }, row) => page.set(Buffer.from(codes, "latin1"), row * 40));
  bbc.poke(kScreenMemory[7], page);
  const theirs = picturesOf(bbc, teletextScreen);
  assert.ok(theirs.length >= 2, "two phases of flashing, and frames between them");
  saveScreen(bbc, join(folder, "saved.adl"));
  for (const phase of [0, 1]) {
    const bitmap = join(folder, `${phase}.bmp`);
    sbx("teletext", join(folder, "saved.adl"), "SCREEN", "--phase", String(phase), "-o", bitmap);
    const ours = readBitmap(bitmap);
    assert.deepEqual([ours.width, ours.height], [480, 480]);
    const differences = theirs.map((screen) => {
      const found = [];
      for (let row = 0; row < 24; row++)
        for (let column = 0; column < 40; column++)
          if (!sameCell(cellOf(ours, column, row), cellOf(screen, column, row))) found.push(`${row}:${column}`);
      return found;
    });
    const closest = differences.reduce((best, found) => (found.length < best.length ? found : best));
    assert.deepEqual(closest, expectedDifferences(phase));
  }
});

for (const mode of [0, 1, 2, 4, 5]) {
  test(`ASavedScreenOfMode${mode}LooksAsTheBBCShowsIt`, async (t) => {
    const folder = temporaryFolder(t);
    const bbc = await BbcMachine.boot("modelB", { screen: true });
    startScreen(bbc, mode);
    const start = kScreenMemory[mode];
    // Every byte value in every row of a cell, in no order that a shifted reading could match.
    bbc.poke(start, Uint8Array.from({ length: kMemoryEnd - start }, (_, i) => (i * 37 + (i >> 8) * 11) & 255));
    const theirs = picturesOf(bbc, graphicsScreen);
    assert.equal(theirs.length, mode === 2 ? 2 : 1, "phases of flashing");
    saveScreen(bbc, join(folder, "saved.adl"));
    const ours = theirs.map((_, flash) => {
      const bitmap = join(folder, `${flash}.bmp`);
      sbx("mode", String(mode), join(folder, "saved.adl"), "SCREEN", "--flash", String(flash), "-o", bitmap);
      return readBitmap(bitmap);
    });
    const key = ({ width, height, pixels }) => `${width}x${height} ${Buffer.from(pixels).toString("base64")}`;
    const [ourKeys, theirKeys] = [ours, theirs].map((pictures) => pictures.map(key).sort());
    ourKeys.forEach((one, i) => assert.ok(one === theirKeys[i], `picture ${i} differs`));
  });
}
