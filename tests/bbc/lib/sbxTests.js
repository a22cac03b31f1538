// `sbx` at one end of the cable, a BBC at the other.

import assert from "node:assert/strict";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, before, describe, test } from "node:test";
import { BbcMachine } from "./BbcMachine.js";
import { emptyDisc, kSectorSize } from "./DiscImages.js";
import { nameOf } from "./Machines.js";
import { kErrorToken } from "./ProtocolClient.js";
import { PtyCable } from "./PtyCable.js";
import { SerialLine } from "./SerialLine.js";
import { giveKeyboardToTheLine, listingLines, startServer } from "./TransferServer.js";

const { SBX: sbx, PTY_BRIDGE: bridge } = process.env;
const missing = sbx && bridge ? false : "SBX and PTY_BRIDGE name no programs";

/** Declares the tests of `sbx` with one kind of machine. */
export function testSbx(kind) {
  describe(`SbxWithA${nameOf(kind).slice(3)}`, { skip: missing }, () => {
    let bbc, line, cable, folder;

    before(async () => {
      folder = mkdtempSync(join(tmpdir(), "sbx-bbc-"));
      bbc = await BbcMachine.boot(kind);
      line = new SerialLine(bbc);
      cable = await PtyCable.plugIn(line, bridge);
    });

    after(() => {
      cable.unplug();
      rmSync(folder, { recursive: true });
    });

    const runSbx = (...args) => cable.run(sbx, [...args, "--port", cable.path]);
    const fileIn = (name) => join(folder, name);

    test("TypesTheServerIntoABareMachine", async () => {
      giveKeyboardToTheLine(bbc);
      const { status, stderr } = await runSbx("bootstrap", "basic");
      assert.equal(status, 0, stderr);
      await cable.settle();
      bbc.run(2);
      assert.match(bbc.text(), /REM File Transfer Complete/);
      bbc.enterCommand("LISTO 0");
      assert.deepEqual(bbc.enterCommand("LIST", 120).split(/\r\n|\n\r/).slice(0, -1), listingLines());
    });

    test("ReceivesADiscThatTheBbcWroteByteForByte", async () => {
      bbc.insertDisc(0, emptyDisc(2560, "Written"));
      bbc.enterCommand("*MOUNT 0");
      bbc.enterCommand('SAVE "SERVER"');
      bbc.enterCommand("*SAVE ROM 8000 C000");
      startServer(bbc);
      const { status, stderr } = await runSbx("receive", "0", fileIn("got.adl"));
      assert.equal(status, 0, stderr);
      assert.deepEqual(readFileSync(fileIn("got.adl")), Buffer.from(bbc.readDiscAsAdl(0)));
    });

    test("MovesNoSectorWhenNothingChanged", async () => {
      const before = cable.bytesToPc;
      const { status, stderr } = await runSbx("receive", "0", fileIn("got.adl"), "--check");
      assert.equal(status, 0, stderr);
      assert.ok(cable.bytesToPc - before < 2000, `${cable.bytesToPc - before} bytes came`);
      const sent = cable.bytesToBbc;
      assert.equal((await runSbx("send", "0", fileIn("got.adl"), "--check")).status, 0);
      assert.ok(cable.bytesToBbc - sent < 2000, `${cable.bytesToBbc - sent} bytes went`);
    });

    test("SendsADiscThatTheBbcThenCataloguesAndLoadsFrom", async () => {
      const image = bbc.readDisc(0);
      writeFileSync(fileIn("out.adl"), readFileSync(fileIn("got.adl")));
      bbc.insertDisc(1, emptyDisc(2560, "Overwritten"));
      const { status, stderr } = await runSbx("send", "1", fileIn("out.adl"));
      assert.equal(status, 0, stderr);
      assert.deepEqual(bbc.readDisc(1), image);
      const { stdout } = await runSbx("star", "CAT");
      assert.match(stdout, /^Written/);
      assert.match(stdout, /ROM/);
      bbc.pressEscape();
      bbc.runUntilPrinted("Server ended");
      bbc.enterCommand("*MOUNT 1");
      bbc.enterCommand("*LOAD ROM 5000");
      assert.deepEqual(bbc.peek(0x5000, 0x2000), image.subarray(...placeOf(image, "ROM", 0x2000)));
      startServer(bbc);
    });

    test("MovesOnlyWhatIsUsedWithDataOnly", async () => {
      const disc = emptyDisc(1280, "Used");
      disc.fill(0xaa, 7 * kSectorSize); // free space that must not travel
      bbc.insertDisc(1, disc);
      assert.equal((await runSbx("receive", "1", fileIn("used.adf"), "--data-only")).status, 0);
      assert.deepEqual(readFileSync(fileIn("used.adf")), Buffer.from(disc.subarray(0, 7 * kSectorSize)));
      bbc.insertDisc(1, emptyDisc(1280, "Other"));
      assert.equal((await runSbx("send", "1", fileIn("used.adf"), "--data-only")).status, 0);
      const now = bbc.readDisc(1);
      assert.deepEqual(now.subarray(0, 7 * kSectorSize), disc.subarray(0, 7 * kSectorSize));
      assert.ok(now.subarray(7 * kSectorSize).every((byte) => byte === 0));
    });

    test("PrintsWhatTheBbcPrintsAndTheBbcsOwnErrors", async () => {
      assert.equal((await runSbx("star", "MOUNT 0")).status, 0);
      const free = await runSbx("star", "FREE");
      assert.match(free.stdout, /^[0-9A-F]{6} Sectors = +[\d,]+ Bytes Free\n[0-9A-F]{6} Sectors = +[\d,]+ Bytes Used\n$/);
      const wrong = await runSbx("star", "LOAD NOTHERE");
      assert.equal(wrong.status, 1);
      assert.equal(wrong.stdout, "");
      assert.match(wrong.stderr, /Not found/);
      assert.doesNotMatch(wrong.stderr, new RegExp(kErrorToken));
    });

    test("LeavesTheServerReadyWhenATransferIsInterrupted", async () => {
      const args = ["send", "0", fileIn("got.adl"), "--port", cable.path];
      await cable.run(sbx, args, (child) => {
        const timer = setInterval(() => {
          if (!/Write/.test(bbc.seen)) return;
          clearInterval(timer);
          child.kill("SIGINT");
        }, 20);
        child.once("close", () => clearInterval(timer));
      });
      bbc.text();
      const { status, stdout } = await runSbx("star", "FREE");
      assert.equal(status, 0);
      assert.match(stdout, /Bytes Used/);
    });

    test("SendsTheFormatterThatThenAsksForADrive", async () => {
      bbc.pressEscape();
      bbc.runUntilPrinted("Server ended");
      giveKeyboardToTheLine(bbc);
      const { status, stderr } = await runSbx("bootstrap", "format");
      assert.equal(status, 0, stderr);
      await cable.settle();
      bbc.runUntilPrinted("Drive (0/1)? ");
    });
  });
}

/** Where a file of the root lies, as [start, end] in bytes, for its first `length` bytes. */
function placeOf(image, name, length) {
  for (let entry = 512 + 5; image[entry]; entry += 26) {
    const found = Buffer.from(image.subarray(entry, entry + 10).map((byte) => byte & 127)).toString("latin1");
    if (found.split("\r")[0] !== name) continue;
    const start = (image[entry + 22] | (image[entry + 23] << 8) | (image[entry + 24] << 16)) * kSectorSize;
    return [start, start + length];
  }
  throw new Error(`no ${name} on the disc`);
}
