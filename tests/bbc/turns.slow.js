// Many random sequences of our changes and of the BBC's in turn, with every character in the names:
// on hard discs, on both partitions of cards, and on floppies. SEED is the first seed (else one by
// the clock) and SEEDS how many follow; each test has its own in its name.

import { truncateSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { BbcMachine } from "./lib/BbcMachine.js";
import { CommandBox } from "./lib/CommandBox.js";
import { kAllMachines, nameOf } from "./lib/Machines.js";
import { assertBbcSees, assertWeSee, RandomChanges } from "./lib/RandomChanges.js";
import { readImage, sbx, temporaryFolder, writeImage } from "./lib/Sbx.js";

const kSeeds = Number(process.env.SEEDS ?? 3);
const kFirst = Number(process.env.SEED ?? Date.now() % 1_000_000);
const kRounds = 3;
const kSteps = { file: 40, floppy: 20 }; // a floppy turns as slowly as a real one

/**
 * Each of these gives { image, machine, drive, steps, fetch, insert }: the image for sbx, what to boot
 * with, the drive's number, how many changes make a turn, and what brings the disc from the machine
 * and to it, if that doesn't work on the file itself.
 */
const kMediums = {
  HardDisc(folder) {
    const image = join(folder, "disc.dat");
    sbx("new", "4m", image);
    return { image, machine: { hardDisc: image }, drive: 0, steps: kSteps.file, fetch() {}, insert() {} };
  },
  Partition(folder, seed) {
    const card = join(folder, "card.img");
    writeFileSync(card, "");
    truncateSync(card, 1100 * 2 ** 20);
    for (const drive of [0, 1]) sbx("cf", "format", `${card},${drive}`, "4MB", "--quick");
    const drive = seed % 2;
    return { image: `cf:${card},${drive}`, machine: { card }, drive, steps: kSteps.file, fetch() {}, insert() {} };
  },
  Floppy(folder) {
    const image = join(folder, "disc.adl");
    sbx("new", "80dsd", image);
    return {
      image, machine: {}, drive: 0, steps: kSteps.floppy,
      fetch: (bbc) => writeImage(image, bbc.readDisc(0)),
      insert: (bbc) => bbc.insertDisc(0, readImage(image, 2560)),
    };
  },
};

function testInTurn(kind, mediumName, seed) {
  test(`${nameOf(kind)}AndWeChangeA${mediumName}InTurn${seed}`, async (t) => {
    const folder = temporaryFolder(t);
    const { image, machine, drive, steps, fetch, insert } = kMediums[mediumName](folder, seed);
    const changes = new RandomChanges({ folder, image, seed, names: "printable" });
    const bbc = await BbcMachine.boot(kind, machine);
    t.after(() => bbc.drive?.close());
    const box = new CommandBox(bbc);
    const asSeen = () => ({ model: changes.model, image, drive });
    try {
      for (let round = 0; round < kRounds; round++) {
        for (let step = 0; step < steps; step++) changes.step();
        assertWeSee(changes);
        insert(bbc);
        assertBbcSees(box, asSeen());
        for (let step = 0; step < steps; step++) changes.stepOnBbc(box);
        fetch(bbc);
        assertBbcSees(box, asSeen());
        assertWeSee(changes);
      }
    } catch (error) {
      t.diagnostic(changes.log.slice(-20).join("\n"));
      throw error;
    }
  });
}

for (let seed = kFirst; seed < kFirst + kSeeds; seed++) {
  for (const kind of ["master", "modelB", "modelBPlus"]) testInTurn(kind, "HardDisc", seed);
  testInTurn("master", "Partition", seed);
  for (const kind of Object.keys(kAllMachines)) testInTurn(kind, "Floppy", seed);
}
