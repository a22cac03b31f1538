// Names are ordered and compared as the BBC does it: with bit 5 of the columns from &40 on set, so
// that "[" and "{" are one letter and "_" stands behind "~".

import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { test } from "node:test";
import { BbcMachine } from "./lib/BbcMachine.js";
import { CommandBox } from "./lib/CommandBox.js";
import { kMachines, nameOf } from "./lib/Machines.js";
import { assertBbcLoads, assertNoFaults, kLoadAt, printedLines } from "./lib/RandomChanges.js";
import { addNamed, sbx, sbxLines, temporaryFolder } from "./lib/Sbx.js";

// Every character that both sides take within a name, besides letters and digits. Of two that the
// BBC takes for one, the one is used at the end of names and the other at the front.
const kAtTheEnd = "!%'()+,/;<=>?[\\]_`~";
const kInFront = "!%'()+,/;<=>?{}_`~";
const kNames = [...kAtTheEnd].map((c) => `M${c}`).concat([...kInFront].map((c) => `${c}m`), ["MA", "mZ", "M0", "zz", "9"]);

const ourNames = (image) => sbxLines("ls", image).map((line) => line.split("\t")[0]);
const bbcNames = (box) => printedLines(box.run("INFO *")).map((line) => line.split(" ")[0]);

/** A machine with the image as its hard disc. */
async function bootWith(t, kind, image) {
  const bbc = await BbcMachine.boot(kind, { hardDisc: image });
  t.after(() => bbc.drive.close());
  const box = new CommandBox(bbc);
  box.do("MOUNT 0");
  return box;
}

function addAs(image, name, text) {
  addNamed(dirname(image), image, "$", name, Buffer.from(text));
}

for (const kind of Object.keys(kMachines)) {
  test(`${nameOf(kind)}FindsFilesWithEveryCharacterAndOrdersThemAsWeDo`, async (t) => {
    const folder = temporaryFolder(t);
    const [ours, theirs] = [join(folder, "ours.dat"), join(folder, "theirs.dat")];
    for (const image of [ours, theirs]) sbx("new", "1m", image);
    for (const name of kNames) addAs(ours, name, `by name ${name}`);
    assertNoFaults(ours);
    const box = await bootWith(t, kind, ours);
    for (const name of kNames) assertBbcLoads(box, name, Buffer.from(`by name ${name}`));
    assert.deepEqual(bbcNames(box), ourNames(ours));

    box.bbc.drive.change(theirs);
    box.do("MOUNT 0");
    for (const name of [...kNames].reverse()) box.do(`SAVE ${name} 3000+10`);
    assert.deepEqual(ourNames(theirs), ourNames(ours));
    assertNoFaults(theirs);
  });

  test(`${nameOf(kind)}AndWeTakeTheSameNamesForOne`, async (t) => {
    const image = join(temporaryFolder(t), "disc.dat");
    sbx("new", "1m", image);
    const box = await bootWith(t, kind, image);
    for (const [one, other] of [["A[", "a{"], ["B\\B", "b|b"], ["]C", "}c"], ["_", "_"], ["D1", "d1"]]) {
      addAs(image, one, "first");
      addAs(image, other, "second");
      assert.deepEqual(ourNames(image).length, 1, `${one} and ${other} with us`);
      box.do("MOUNT 0");
      for (const name of [one, other]) assertBbcLoads(box, name, Buffer.from("second"));
      box.bbc.poke(kLoadAt, Buffer.from("third"));
      box.do(`SAVE ${one} 3000+5`);
      assert.deepEqual(ourNames(image).length, 1, `${one} and ${other} with the BBC`);
      assert.equal(sbx("get", image, other), "third");
      sbx("delete", image, other);
    }
    // Digits and what stands with them have bit 5 set anyway.
    for (const name of ["E1", "E!", "E+", "E;"]) addAs(image, name, name);
    assert.equal(ourNames(image).length, 4);
  });
}

test("CheckTellsOfAnOrderInWhichTheBbcDoesNotFindAFile", async (t) => {
  const image = join(temporaryFolder(t), "disc.dat");
  sbx("new", "1m", image);
  for (const name of ["M0", "M[", "MA"]) addAs(image, name, name);
  const box = await bootWith(t, "master", image);
  assert.deepEqual(bbcNames(box), ["M0", "MA", "M["]);
  // As by the codes of the characters without bit 5: "M[" in front of "Ma".
  const disc = readFileSync(image);
  const [kFirst, kEntry] = [512 + 5, 26];
  const entries = disc.subarray(kFirst + kEntry, kFirst + 3 * kEntry);
  entries.set(Buffer.concat([entries.subarray(kEntry), entries.subarray(0, kEntry)]));
  writeFileSync(image, disc);
  assert.match(sbx("check", image), /^warning: \$\.MA: stands out of order$/m);
  box.do("MOUNT 0");
  assert.match(box.run("LOAD MA 3000") + box.run("LOAD M[ 3000"), /Not found/);
});

test("TheBbcCannotNameAFileWithOneOfItsOwnCharactersOrMoveTheRootIntoItself", async (t) => {
  const image = join(temporaryFolder(t), "disc.dat");
  sbx("new", "1m", image);
  const box = await bootWith(t, "master", image);
  for (const c of "#$&*.:@^") assert.match(box.run(`SAVE Q${c}Z 3000+10`), /Bad name|Wild cards|Not found/, c);
  assert.match(box.run("SAVE -Z 3000+10"), /Bad filing system name/);
  assert.deepEqual(ourNames(image), []);
  box.do("CDIR A");
  box.do("ACCESS A WR");
  assert.match(box.run("RENAME $.A $.B"), /Bad rename/);
  box.do("RENAME A B");
  assert.deepEqual(ourNames(image), ["B"]);
});
