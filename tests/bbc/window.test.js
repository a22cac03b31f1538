// A disc that the window program made, filled, reorganised, compacted and saved, on a real BBC's
// filing system.

import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { join } from "node:path";
import { test } from "node:test";
import { BbcMachine, kMachines } from "./lib/BbcMachine.js";
import { readImage, sbx, sbxLines, temporaryFolder } from "./lib/Sbx.js";

const kLoadAt = 0x2000;

/** Plays the user at the window, offscreen, and gives the image that was saved. */
function discOfTheWindow(folder) {
  const image = join(folder, "WINDOW.adl");
  const program = process.env.WINDOW_TESTS;
  if (!program) throw new Error("WINDOW_TESTS must name the window tests");
  const done = spawnSync(program, ["--gtest_filter=DiscRound.*"], {
    encoding: "latin1",
    env: { ...process.env, QT_QPA_PLATFORM: "offscreen", KEEP_DISC: image },
  });
  assert.equal(done.status, 0, done.stdout.slice(-2000));
  return image;
}

test("ADiscFromTheWindowIsReadByBothMachines", async (t) => {
  const image = discOfTheWindow(temporaryFolder(t));
  assert.deepEqual(sbxLines("check", image), []);
  const directories = sbxLines("tree", image).map((line) => line.split("\t")[0]);
  assert.deepEqual(directories, ["$", "$.HOME", "$.HOME.LOWER", "$.WORK"]);
  for (const kind of Object.keys(kMachines)) {
    const bbc = await BbcMachine.boot(kind);
    bbc.insertDisc(0, readImage(image, 2560));
    assert.match(bbc.enterCommand("*MOUNT 0"), /^\s*$/);
    bbc.enterCommand("MODE 3:PRINT");
    const lines = (text) => text.replace(/\n/g, "").trimEnd().split("\r").map((line) => line.trimEnd());
    for (const directory of directories) {
      bbc.enterCommand(`*DIR ${directory}`);
      const ours = sbxLines("ex", image, directory).map((line) => line.trimEnd());
      assert.deepEqual(lines(bbc.enterCommand("*EX")), ours.join("\n").trimEnd().split("\n"), directory);
    }
    bbc.enterCommand("MODE 7:PRINT");
    for (const path of ["$.TWO", "$.HOME.Fourth", "$.HOME.FIVE", "$.HOME.LOWER.INNER", "$.WORK.SEVEN"]) {
      const file = Buffer.from(sbx("get", image, path), "latin1");
      assert.match(bbc.enterCommand(`*LOAD ${path} ${kLoadAt.toString(16)}`), /^\s*$/, path);
      assert.equal(Buffer.compare(Buffer.from(bbc.peek(kLoadAt, file.length)), file), 0, path);
    }
    assert.match(bbc.enterCommand("*DELETE $.TWO"), /Locked/);
  }
});
