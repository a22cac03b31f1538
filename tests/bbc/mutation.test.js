// After long random sequences of our changes the BBC's own filing system mounts the disc, lists
// every directory, loads every file byte for byte, and changes the disc in its turn; what it leaves
// we read, change and compact again.

import assert from "node:assert/strict";
import { mkdirSync, rmSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { BbcMachine, kMachines } from "./lib/BbcMachine.js";
import { readImage, sbx, sbxLines, temporaryFolder, writeImage } from "./lib/Sbx.js";

const kSectors = 2560;
const kLoadAt = 0x3000;
const kLongestFile = 0x2800;

/** Whole numbers from 0 to n - 1, the same ones for the same seed. */
function randomNumbers(seed) {
  let state = seed >>> 0;
  return (n) => {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    return Math.floor((state / 2 ** 32) * n);
  };
}

/** What ought to be on the disc: directories and files by their paths in upper case. */
class Model {
  dirs = new Set(["$"]);
  files = new Map();

  pathsIn(dir) {
    return [...this.dirs, ...this.files.keys()].filter(
      (path) => path.startsWith(`${dir}.`) && !path.slice(dir.length + 1).includes("."));
  }
  removeBelow(dir) {
    for (const path of [...this.dirs]) if (path === dir || path.startsWith(`${dir}.`)) this.dirs.delete(path);
    for (const path of [...this.files.keys()]) if (path.startsWith(`${dir}.`)) this.files.delete(path);
  }
}

class Changes {
  constructor(folder, image, seed) {
    this.folder = folder;
    this.image = image;
    this.random = randomNumbers(seed);
    this.model = new Model();
  }

  pick(list) {
    return list[this.random(list.length)];
  }
  newName() {
    const letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    let name = letters[this.random(26)] + "X";
    for (let i = this.random(8); i > 0; i--) name += letters[this.random(letters.length)];
    return name;
  }
  bytes() {
    const length = this.pick([0, 1, 255, 256, 257, this.random(2000), this.random(kLongestFile)]);
    return Buffer.from(Uint8Array.from({ length }, () => this.random(256)));
  }

  add(dir) {
    const replaced = this.random(4) === 0 && this.pick([...this.model.files.keys()]);
    const path = replaced || `${dir}.${this.newName()}`;
    const name = path.slice(path.lastIndexOf(".") + 1);
    if (this.model.dirs.has(path) || this.model.pathsIn(dir).length >= 40) return;
    const bytes = this.bytes();
    const host = join(this.folder, "host");
    writeFileSync(host, bytes);
    const hex = (n) => n.toString(16).toUpperCase().padStart(8, "0");
    writeFileSync(`${host}.INF`, `${name.padEnd(10)} ${hex(0xffff0000 + kLoadAt)} ${hex(0xffff8023)} ${hex(bytes.length)} WR\r\n`);
    sbx("add", this.image, path.slice(0, path.lastIndexOf(".")), host);
    this.model.files.set(path, bytes);
  }
  makeDirectory(dir) {
    const name = this.newName();
    if (this.model.dirs.size > 12 || dir.split(".").length > 4) return;
    if (this.model.pathsIn(dir).includes(`${dir}.${name}`) || this.model.pathsIn(dir).length >= 40) return;
    sbx("mkdir", this.image, dir, name);
    this.model.dirs.add(`${dir}.${name}`);
  }
  importFolder(dir) {
    const name = this.newName();
    if (this.model.dirs.size > 12 || dir.split(".").length > 3 || this.model.pathsIn(dir).length >= 40) return;
    if (this.model.pathsIn(dir).includes(`${dir}.${name}`)) return;
    const host = join(this.folder, name);
    mkdirSync(join(host, "SUB"), { recursive: true });
    for (const file of ["ONE", "TWO", "SUB/THREE"]) {
      const bytes = this.bytes();
      writeFileSync(join(host, file), bytes);
      this.model.files.set(`${dir}.${name}.${file.replace("/", ".")}`, bytes);
    }
    sbx("add", this.image, dir, host);
    rmSync(host, { recursive: true });
    this.model.dirs.add(`${dir}.${name}`).add(`${dir}.${name}.SUB`);
  }
  remove() {
    const path = this.pick([...this.model.files.keys(), ...[...this.model.dirs].slice(1)]);
    if (!path) return;
    sbx("delete", this.image, path);
    this.model.files.delete(path);
    this.model.removeBelow(path);
  }
  rename() {
    const path = this.pick([...this.model.files.keys(), ...[...this.model.dirs].slice(1)]);
    if (!path) return;
    const to = `${path.slice(0, path.lastIndexOf("."))}.${this.newName()}`;
    if (this.model.files.has(to) || this.model.dirs.has(to)) return;
    sbx("rename", this.image, path, to.slice(to.lastIndexOf(".") + 1));
    const moved = (old) => (old === path || old.startsWith(`${path}.`) ? to + old.slice(path.length) : old);
    this.model.dirs = new Set([...this.model.dirs].map(moved));
    this.model.files = new Map([...this.model.files].map(([old, bytes]) => [moved(old), bytes]));
  }
  step() {
    const dir = this.pick([...this.model.dirs]);
    const action = this.random(16);
    if (action < 7) this.add(dir);
    else if (action < 9) this.makeDirectory(dir);
    else if (action < 10) this.importFolder(dir);
    else if (action < 12) this.remove();
    else if (action < 13) this.rename();
    else if (action < 14) sbx("title", this.image, dir, `Title ${this.random(1000)}`);
    else if (action < 15) sbx("boot", this.image, this.pick(["off", "load", "run", "exec"]));
    else sbx("compact", this.image);
  }
}

/**
 * Fails unless the BBC lists exactly these directories and loads these files. Files are loaded by
 * their bare names from within their directory, with LOAD cut short: nearly all of the time goes
 * into pressing keys.
 */
function assertBbcSees(bbc, model) {
  assert.match(bbc.enterCommand("*MOUNT 0"), /^\s*$/);
  for (const dir of model.dirs) {
    assert.match(bbc.enterCommand(`*DIR ${dir}`), /^\s*$/, dir);
    const listed = bbc.enterCommand("*CAT").split(/Lib\. .*?[\r\n]/)[1];
    const names = [...listed.matchAll(/([A-Z0-9]+) +[DLWRE]* *\(\d\d\)/g)].map((match) => match[1]);
    assert.deepEqual(names.sort(), model.pathsIn(dir).map((path) => path.slice(dir.length + 1)).sort(), dir);
    for (const path of model.pathsIn(dir)) if (model.files.has(path)) assertBbcLoads(bbc, path, model.files.get(path));
  }
  bbc.enterCommand("*DIR $");
}

function assertBbcLoads(bbc, path, bytes) {
  bbc.poke(kLoadAt, new Uint8Array(bytes.length + 1).fill(0xa5));
  const name = path.slice(path.lastIndexOf(".") + 1);
  assert.match(bbc.enterCommand(`*LO. ${name} ${kLoadAt.toString(16).toUpperCase()}`), /^\s*$/, path);
  assert.ok(Buffer.from(bbc.peek(kLoadAt, bytes.length)).equals(bytes), `${path} came back changed`);
  assert.equal(bbc.peek(kLoadAt + bytes.length, 1)[0], 0xa5, `${path} is longer than it was`);
}

/** Fails unless we find exactly these directories and files. */
function assertWeSee(image, model) {
  const dirs = sbxLines("tree", image).map((line) => line.split("\t")[0].toUpperCase());
  assert.deepEqual(dirs.sort(), [...model.dirs].sort());
  for (const dir of model.dirs) {
    const names = sbxLines("ls", image, dir).map((line) => `${dir}.${line.split("\t")[0]}`);
    assert.deepEqual(names.sort(), model.pathsIn(dir).sort());
  }
  for (const [path, bytes] of model.files)
    assert.ok(sbx("get", image, path) === bytes.toString("latin1"), `${path} came back changed`);
}

/** SAVE, *CDIR, *DELETE, *RENAME and *COMPACT at the BBC's keyboard. */
function changeOnTheBbc(bbc, model) {
  const bytes = Buffer.from(Uint8Array.from({ length: 0x321 }, (_, i) => (i * 7) ^ (i >> 8)));
  bbc.poke(kLoadAt, bytes);
  for (const path of ["$.ZSAVED", "$.ZDIR.ZINNER"]) {
    if (path.includes("ZDIR")) assert.match(bbc.enterCommand("*CDIR ZDIR"), /^\s*$/);
    assert.match(bbc.enterCommand(`*SAVE ${path} 3000+0321 FFFF1900 FFFF1923`), /^\s*$/);
    model.files.set(path, bytes);
  }
  model.dirs.add("$.ZDIR");
  const gone = [...model.files.keys()].filter((path) => !path.includes(".Z")).slice(0, 6);
  for (const path of gone) {
    assert.match(bbc.enterCommand(`*DELETE ${path}`), /^\s*$/);
    model.files.delete(path);
  }
  assert.match(bbc.enterCommand("*COMPACT 30 40"), /^\s*$/);
}

for (const [kind, seeds] of [["master", [1]], ["modelB", [3]]]) {
  for (const seed of seeds) {
    test(`The${kMachines[kind].title.replaceAll(" ", "")}TakesADiscAfterRandomChangesOfOurs${seed}`, async (t) => {
      const folder = temporaryFolder(t);
      const image = join(folder, "disc.adl");
      sbx("new", "80dsd", image);
      const changes = new Changes(folder, image, seed);
      const { model } = changes;
      for (let step = 0; step < 120; step++) changes.step();
      assertWeSee(image, model);

      const bbc = await BbcMachine.boot(kind);
      bbc.insertDisc(0, readImage(image, kSectors));
      assertBbcSees(bbc, model);
      changeOnTheBbc(bbc, model);
      writeImage(image, bbc.readDisc(0));
      assertWeSee(image, model);

      // Once more: the BBC gets back its own disc, as we have changed it.
      for (let step = 0; step < 40; step++) changes.step();
      sbx("compact", image);
      assertWeSee(image, model);
      bbc.insertDisc(0, readImage(image, kSectors));
      assertBbcSees(bbc, model);
    });
  }
}

test("ADirectoryThatTheBbcRenamedIsStillThereAfterWeCompact", async (t) => {
  const folder = temporaryFolder(t);
  const image = join(folder, "disc.adl");
  sbx("new", "80dsd", image);
  const bbc = await BbcMachine.boot("master");
  bbc.insertDisc(0, readImage(image, kSectors));
  bbc.enterCommand("*MOUNT 0");
  const bytes = Buffer.from("what the user keeps");
  bbc.poke(kLoadAt, bytes);
  for (const command of ["*SAVE HOLE 3000+900", "*CDIR FIRST", "*SAVE FIRST.KEPT 3000+13", "*ACCESS FIRST WR", "*RENAME FIRST SECOND", "*DELETE HOLE"])
    assert.match(bbc.enterCommand(command), /^\s*$/, command);
  writeImage(image, bbc.readDisc(0));
  sbx("compact", image);
  assert.equal(sbx("get", image, "$.SECOND.KEPT"), bytes.toString("latin1"));
  assert.deepEqual(sbxLines("tree", image).map((line) => line.split("\t")[0]), ["$", "$.SECOND"]);
});
