// The sample disc on a real BBC's filing system: its catalogue is the one that we show, and everything
// on it loads and runs.

import assert from "node:assert/strict";
import { fileURLToPath } from "node:url";
import { test } from "node:test";
import { BbcMachine, kMachines } from "./lib/BbcMachine.js";
import { readImage, sbx, sbxInfo, sbxLines } from "./lib/Sbx.js";

const kSample = fileURLToPath(new URL("../../samples/Welcome.adl", import.meta.url));

const trimmedLines = (text) => text.replace(/\n/g, "").trimEnd().split("\r").map((line) => line.trimEnd());
const ourLines = (...args) => sbxLines(...args).join("\n").trimEnd().split("\n").map((line) => line.trimEnd());
const runsOf = (text) => [...text.matchAll(/([0-9A-F]{6})\s*:\s*([0-9A-F]{6})/g)].map((m) => [m[1], m[2]]);

async function bootWithSample(kind, options = {}) {
  const bbc = await BbcMachine.boot(kind, options);
  bbc.insertDisc(0, readImage(kSample, 2560));
  assert.match(bbc.enterCommand("*MOUNT 0"), /^\s*$/);
  return bbc;
}

for (const kind of Object.keys(kMachines)) {
  const title = `The${kMachines[kind].title.replaceAll(" ", "")}`;

  test(`${title}CataloguesTheSampleDiscAsWeDo`, async () => {
    const bbc = await bootWithSample(kind);
    bbc.enterCommand("MODE 3:PRINT");
    for (const path of sbxLines("tree", kSample).map((line) => line.split("\t")[0])) {
      bbc.enterCommand(`*DIR ${path}`);
      for (const view of ["cat", "ex"])
        assert.deepEqual(trimmedLines(bbc.enterCommand(`*${view.toUpperCase()}`)), ourLines(view, kSample, path), path);
    }
    assert.deepEqual(runsOf(bbc.enterCommand("*MAP")), runsOf(sbx("map", kSample)));
    const free = bbc.enterCommand("*FREE");
    for (const figure of ["free", "used"])
      assert.ok(free.includes((Number(sbxInfo(kSample)[figure]) / 256).toString(16).toUpperCase().padStart(6, "0")), free);
  });

  test(`${title}ShowsTheTeletextPageAndTheScreensFromTheMenu`, async () => {
    const bbc = await bootWithSample(kind);
    const entries = [["1", "TELETEXT", 0x7c00], ["2", "HAT", 0x3000], ["4", "WORLDS", 0x3000], ["6", "BLOCKS", 0x5800]];
    bbc.type('CHAIN "MENU"');
    for (const [key, name, address] of entries) {
      bbc.runUntilPrinted("from 1 to 8");
      bbc.text();
      bbc.type(key);
      const file = Buffer.from(sbx("get", kSample, `$.PICTURES.${name}`), "latin1");
      bbc.runUntil(() => Buffer.compare(Buffer.from(bbc.peek(address, file.length)), file) === 0, 30, name);
    }
  });

  test(`${title}RunsTheGameAndTheMachineCode`, async () => {
    // The stars wait for the frames of a picture, which only come where there is a screen.
    const bbc = await bootWithSample(kind, { screen: true });
    bbc.type('CHAIN "$.PROGRAMS.GAMES.GUESS"');
    for (let low = 1, high = 100; ; ) {
      bbc.runUntilPrinted("Your guess");
      bbc.text();
      const guess = (low + high) >> 1;
      bbc.type(String(guess));
      bbc.runUntil(() => /It is (more|less)|Found in/.test(bbc.seen), 20, "answer");
      if (bbc.seen.includes("Found in")) break;
      if (bbc.seen.includes("more")) low = guess + 1;
      else high = guess - 1;
    }
    bbc.runUntil(() => /\r>$/.test(bbc.seen), 20, "the end of the game");
    assert.doesNotMatch(bbc.text(), /at line/);
    bbc.type("*RUN $.PROGRAMS.CODE.STARS");
    // Each star is a place and a colour of its own: VDU 31,x,y, a colour code, a shape.
    bbc.runUntil(() => (bbc.seen.match(/\x1f..[\x81-\x87]/gs) ?? []).length > 50, 30, "stars");
    bbc.type(" ");
    bbc.runUntil(() => bbc.seen.includes(">"), 20, "prompt behind the stars");
  });
}
