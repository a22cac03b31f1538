// The transfer over a bad cable: bits turned, bytes lost and doubled, pauses of seconds, a BREAK in
// the middle of a disc. The disc arrives whole, or each sector that didn't is named; what is left
// goes over with "Check Before Transfer".
//
// Not part of the ordinary tests, as they take long: after each fault both ends wait for a silence.
// SEED repeats a run.

import assert from "node:assert/strict";
import { existsSync, mkdtempSync, readFileSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, before, describe, test } from "node:test";
import { setTimeout } from "node:timers/promises";
import { BbcMachine } from "./lib/BbcMachine.js";
import { damageSector, emptyDisc, kSectorSize } from "./lib/DiscImages.js";
import { LineFaults } from "./lib/LineFaults.js";
import { kMachines } from "./lib/Machines.js";
import { PtyCable } from "./lib/PtyCable.js";
import { randomNumbers } from "./lib/RandomChanges.js";
import { addNamed, readImage, sbx, writeImage } from "./lib/Sbx.js";
import { SerialLine } from "./lib/SerialLine.js";
import { startServer, typeListing } from "./lib/TransferServer.js";

const { SBX: program, PTY_BRIDGE: bridge } = process.env;
const kSeed = Number(process.env.SEED ?? Date.now() % 1_000_000);

const kSectors = 640;
const kOneInTenThousand = 100; // of a million bytes
const kFaults = {
  flipped: { flipped: kOneInTenThousand },
  lost: { lost: 20 },
  doubled: { doubled: 20 },
  paused: { paused: 40, pause: 3 },
  allAtOnce: { flipped: 20, lost: 5, doubled: 5, paused: 5 },
};

/** A disc whose one file owns it all and holds bytes that no compression makes shorter. */
function noiseDisc(folder, seed) {
  const random = randomNumbers(seed);
  const noise = Buffer.from(Uint8Array.from({ length: (kSectors - 7) * kSectorSize }, () => random(256)));
  const image = join(folder, "noise.adf");
  sbx("new", "--force", "40ssd", image);
  addNamed(folder, image, "$", "NOISE", noise);
  return readImage(image, kSectors);
}

/** The numbers of the sectors in which two discs differ. */
function differentSectors(one, other) {
  const different = [];
  for (let at = 0; at < one.length; at += kSectorSize)
    if (!Buffer.from(one.subarray(at, at + kSectorSize)).equals(Buffer.from(other.subarray(at, at + kSectorSize))))
      different.push(at / kSectorSize);
  return different;
}

for (const kind of Object.keys(kMachines)) {
  describe(`ABadCableToA${kMachines[kind].title.replaceAll(" ", "")}WithSeed${kSeed}`, () => {
    let bbc, line, cable, folder;

    before(async () => {
      folder = mkdtempSync(join(tmpdir(), "bad-cable-"));
      bbc = await BbcMachine.boot(kind);
      line = new SerialLine(bbc);
      typeListing(bbc, line);
      cable = await PtyCable.plugIn(line, bridge);
      startServer(bbc);
    });

    after(() => {
      cable.unplug();
      rmSync(folder, { recursive: true });
    });

    const fileIn = (name) => join(folder, name);
    const traceFile = () => fileIn("trace.txt");

    /** Runs sbx with these faults on the line; its status, and the sectors that its trace gives up. */
    async function runWith(t, faults, ...args) {
      rmSync(traceFile(), { force: true });
      cable.faults = faults;
      const started = bbc.seconds;
      const result = await cable.run(program, [...args, "--port", cable.path, "--trace", traceFile()]);
      cable.faults = null;
      await cable.during(setTimeout(500));
      bbc.run(15); // the server notices the silence and throws away what was under way
      line.clear(); // a BBC after a BREAK has taken nothing
      const trace = existsSync(traceFile()) ? readFileSync(traceFile(), "latin1") : "";
      const givenUp = [...trace.matchAll(/Error (?:reading|writing) sector ([0-9A-F]{6})/g)].map((m) => parseInt(m[1], 16));
      const minutes = ((bbc.seconds - started) / 60).toFixed(1);
      t.diagnostic(`${args[0]}: status ${result.status}, ${JSON.stringify(faults.count)}, ${minutes} minutes of the BBC's; ${result.stderr.trim()}`);
      return { ...result, givenUp };
    }

    /** Repeats a transfer with "Check Before Transfer" until it ends well; gives up after ten. */
    async function finish(t, faults, args) {
      for (let attempt = 0; attempt < 10; attempt++) {
        const again = await runWith(t, faults, ...args, "--check");
        if (again.status === 0) return;
        assert.equal(again.status, 1, again.stderr);
      }
      assert.fail("ten attempts");
    }

    for (const [name, rates] of Object.entries(kFaults)) {

      test(`ReceivesADiscWithBytes${name}`, async (t) => {
        bbc.insertDisc(0, noiseDisc(folder, kSeed));
        const image = fileIn(`got-${name}.adf`);
        const faults = new LineFaults(kSeed, rates);
        const result = await runWith(t, faults, "receive", "0", image);
        assert.ok(faults.total > 0, "no fault came");
        await checkArrival(t, faults, result, image);
      });

      test(`SendsADiscWithBytes${name}`, async (t) => {
        const disc = noiseDisc(folder, kSeed + 1);
        const image = fileIn(`out-${name}.adf`);
        writeImage(image, disc);
        bbc.insertDisc(1, emptyDisc(kSectors, "Overwritten"));
        const faults = new LineFaults(kSeed + 1, rates);
        const result = await runWith(t, faults, "send", "1", image);
        assert.ok(faults.total > 0, "no fault came");
        if (result.status !== 0) await finish(t, faults, ["send", "1", image]);
        assert.deepEqual(differentSectors(disc, bbc.readDisc(1)), []);
      });
    }

    // The server is gone with the BREAK, and comes back with OLD and RUN.
    test("GoesOnWithADiscAfterABreakInItsMiddle", async (t) => {
      bbc.insertDisc(0, noiseDisc(folder, kSeed + 2));
      const image = fileIn("break.adf");
      const faults = new LineFaults(kSeed + 2);
      cable.bytesToPc = 0;
      cable.onDelivery = () => {
        if (cable.bytesToPc < 50_000) return;
        cable.onDelivery = null;
        bbc.cpu.reset(false);
      };
      const result = await runWith(t, faults, "receive", "0", image);
      assert.equal(cable.onDelivery, null, "the BREAK came");
      assert.equal(result.status, 1);
      assert.match(result.stderr, /The BBC Has Stopped Answering/);
      bbc.enterCommand("*FADFS");
      bbc.enterCommand("OLD");
      startServer(bbc);
      cable.bytesToPc = 0;
      await checkArrival(t, faults, result, image);
      assert.ok(cable.bytesToPc < kSectors * kSectorSize - 30_000, `${cable.bytesToPc} bytes came the second time`);
    });

    test("NamesTheSectorThatTheBbcCannotReadOverABadCable", async (t) => {
      const kBad = 333;
      const disc = noiseDisc(folder, kSeed + 3);
      damageSector(bbc.insertDisc(0, disc), kBad);
      const image = fileIn("bad.adf");
      const result = await runWith(t, new LineFaults(kSeed + 3, { flipped: 20 }), "receive", "0", image);
      assert.deepEqual([result.status, result.givenUp], [1, [kBad]]);
      assert.match(result.stderr, /given up: 1/);
      assert.deepEqual(differentSectors(disc, readImage(image, kSectors)), [kBad]);
    });

    /** A received disc is whole, or the sectors that aren't are those that were named, and come later. */
    async function checkArrival(t, faults, result, image) {
      const disc = bbc.readDisc(0);
      const missing = () => differentSectors(disc, readImage(image, kSectors));
      if (result.status !== 0) {
        assert.equal(result.status, 1, result.stderr);
        if (/given up/.test(result.stderr))
          assert.deepEqual(missing().filter((sector) => !result.givenUp.includes(sector)), []);
        await finish(t, faults, ["receive", "0", image]);
      }
      assert.deepEqual(missing(), []);
    }
  });
}
