// Long sequences of random changes of a disc, ours through `sbx` and the BBC's through star commands,
// and the model that both are compared with. The same seed gives the same sequence.

import assert from "node:assert/strict";
import { mkdirSync, rmSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { DiscModel, folded, nameIn, parentOf } from "./DiscModel.js";
import { addNamed, sbx, sbxLines } from "./Sbx.js";

export const kLoadAt = 0x3000;
const kLongestFile = 0x2800;
const kMostDirs = 12;
const kMostEntries = 40;
const kDeepest = 4;

/** Whole numbers from 0 to n - 1, the same ones for the same seed. */
export function randomNumbers(seed) {
  let state = seed >>> 0;
  return (n) => {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    return Math.floor((state / 2 ** 32) * n);
  };
}

const kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
// All that both sides take within a name: the BBC refuses the others, we also "-". The MOS takes "|"
// for the beginning of a control character, whatever follows it.
const kPrintable = kPlain + "abcdefghijklmnopqrstuvwxyz!%'()+,/;<=>?[\\]_`{}~";

/**
 * One sequence. `image` is a path or cf:CARD,P; `folder` one for host files; `names` "plain" for
 * letters and digits or "printable" for everything that the BBC can type.
 */
export class RandomChanges {
  constructor({ folder, image, seed, names = "plain", longestFile = kLongestFile }) {
    this.folder = folder;
    this.image = image;
    this.random = randomNumbers(seed);
    this.characters = names === "plain" ? kPlain : kPrintable;
    this.longestFile = longestFile;
    this.model = new DiscModel();
    this.emptyFiles = 0; // how many of them we have written
    this.log = []; // what was done, for a report
  }

  pick(list) {
    return list[this.random(list.length)];
  }
  newName() {
    let name = kPlain[this.random(26)] + "X";
    if (this.characters !== kPlain) name = this.pick(this.characters);
    for (let i = this.random(8); i > 0; i--) name += this.characters[this.random(this.characters.length)];
    return name;
  }
  bytes() {
    const length = this.pick([0, 1, 255, 256, 257, this.random(2000), this.random(this.longestFile)]);
    return Buffer.from(Uint8Array.from({ length }, () => this.random(256)));
  }
  // A path for something new; undefined where there is no room for it.
  newPath(dir = this.pick([...this.model.dirs])) {
    const path = `${dir}.${this.newName()}`;
    return this.model.has(path) || this.model.pathsIn(dir).length >= kMostEntries ? undefined : path;
  }
  newDirPath() {
    const path = this.newPath();
    if (!path || this.model.dirs.size > kMostDirs || path.split(".").length > kDeepest + 1) return undefined;
    return path;
  }
  anything() {
    return this.pick([...this.model.files.keys(), ...[...this.model.dirs].slice(1)]);
  }

  // We give an empty file a sector. The BBC doesn't, and leaves it to nobody when it takes the file.
  #own(path, bytes) {
    if (bytes.length === 0) this.emptyFiles++;
    this.model.files.set(path, bytes);
  }

  #sbx(...args) {
    this.log.push(`sbx ${args.join(" ")}`);
    sbx(...args);
  }

  #add() {
    const replaced = this.random(4) === 0 && this.pick([...this.model.files.keys()]);
    const path = replaced || this.newPath();
    if (!path) return;
    const bytes = this.bytes();
    this.log.push(`sbx add ${this.image} ${path}: ${bytes.length} bytes`);
    addNamed(this.folder, this.image, parentOf(path), nameIn(path), bytes);
    this.#own(path, bytes);
  }
  #makeDirectory() {
    const path = this.newDirPath();
    if (!path) return;
    this.#sbx("mkdir", this.image, parentOf(path), nameIn(path));
    this.model.dirs.add(path);
  }
  #importFolder() {
    const path = this.newDirPath();
    if (!path || !/^[A-Z0-9]+$/.test(nameIn(path))) return;
    const host = join(this.folder, nameIn(path));
    mkdirSync(join(host, "SUB"), { recursive: true });
    for (const file of ["ONE", "TWO", "SUB/THREE"]) {
      const bytes = this.bytes();
      writeFileSync(join(host, file), bytes);
      this.#own(`${path}.${file.replace("/", ".")}`, bytes);
    }
    this.#sbx("add", this.image, parentOf(path), host);
    rmSync(host, { recursive: true });
    this.model.dirs.add(path).add(`${path}.SUB`);
  }
  #remove() {
    const path = this.anything();
    if (!path) return;
    this.#sbx("delete", this.image, path);
    this.model.remove(path);
  }
  #rename() {
    const path = this.anything();
    const to = path && `${parentOf(path)}.${this.newName()}`;
    if (!path || this.model.has(to)) return;
    this.#sbx("rename", this.image, path, nameIn(to));
    this.model.rename(path, to);
  }

  /** One change of ours. */
  step() {
    const action = this.random(16);
    if (action < 7) this.#add();
    else if (action < 9) this.#makeDirectory();
    else if (action < 10) this.#importFolder();
    else if (action < 12) this.#remove();
    else if (action < 13) this.#rename();
    else if (action < 14) this.#sbx("title", this.image, this.pick([...this.model.dirs]), `Title ${this.random(1000)}`);
    else if (action < 15) this.#sbx("boot", this.image, this.pick(["off", "load", "run", "exec"]));
    else this.#sbx("compact", this.image);
  }

  #do(box, line) {
    this.log.push(`*${line}`);
    box.do(line);
  }

  #save(box) {
    const replaced = this.random(4) === 0 && this.pick([...this.model.files.keys()]);
    const path = replaced || this.newPath();
    if (!path) return;
    const bytes = this.bytes();
    box.bbc.poke(kLoadAt, bytes);
    this.#do(box, `SAVE ${path} 3000+${bytes.length.toString(16)} FFFF8023 FFFF3000`);
    this.model.files.set(path, bytes);
  }
  #createOnBbc(box) {
    const path = this.newDirPath();
    if (!path) return;
    this.#do(box, `CDIR ${path}`);
    this.model.dirs.add(path);
  }
  // A directory must be unlocked and empty before it goes.
  #deleteOnBbc(box) {
    const path = this.anything();
    if (!path || this.model.pathsIn(path).length > 0) return;
    this.#do(box, `ACCESS ${path} WR`);
    this.#do(box, `DELETE ${path}`);
    this.model.remove(path);
  }
  // A file may move, a directory is renamed from within its parent: the BBC takes "RENAME $.A $.B"
  // for an attempt to put the root into itself.
  #renameOnBbc(box) {
    const path = this.anything();
    const isDir = this.model.dirs.has(path);
    const to = path && (isDir ? `${parentOf(path)}.${this.newName()}` : this.newPath());
    if (!to || this.model.has(to)) return;
    this.#do(box, `ACCESS ${path} WR`);
    if (isDir) this.#do(box, `DIR ${parentOf(path)}`);
    this.#do(box, isDir ? `RENAME ${nameIn(path)} ${nameIn(to)}` : `RENAME ${path} ${to}`);
    if (isDir) this.#do(box, "DIR $");
    this.model.rename(path, to);
  }

  /** One change of the BBC's, at the drive that `box` has mounted. */
  stepOnBbc(box) {
    const action = this.random(16);
    if (action < 6) this.#save(box);
    else if (action < 8) this.#createOnBbc(box);
    else if (action < 11) this.#deleteOnBbc(box);
    else if (action < 13) this.#renameOnBbc(box);
    else if (action < 14) this.#do(box, `TITLE Title ${this.random(1000)}`);
    else if (action < 15) this.#do(box, `OPT 4,${this.random(4)}`);
    else this.#do(box, "COMPACT 30 40");
  }
}

/** Lines of what the BBC printed, without the blanks at their ends and the empty lines at the end. */
export function printedLines(text) {
  const lines = text
    .replace(/[^\r\n\x20-\x7e]/g, "")
    .split(/\r\n|\n\r/)
    .map((line) => line.trimEnd());
  while (lines.at(-1) === "") lines.pop();
  return lines;
}

const ourLines = (view, ...args) => printedLines(sbxLines(view, ...args).join("\r\n"));

/**
 * Fails unless the BBC lists each directory as we do, finds each file by its name and loads it as it
 * should be, and counts the space as we do. `drive` is the one to mount.
 */
export function assertBbcSees(box, { model, image, drive = 0 }) {
  box.do(`MOUNT ${drive}`);
  for (const dir of model.dirs) {
    box.do(`DIR ${dir}`);
    assert.deepEqual(listed(box, "CAT", drive), ourLines("cat", image, dir), `*CAT of ${dir}`);
    assert.deepEqual(listed(box, "EX", drive), ourLines("ex", image, dir), `*EX of ${dir}`);
    box.do("DIR $");
    for (const path of model.pathsIn(dir)) {
      if (model.files.has(path)) assertBbcLoads(box, path, model.files.get(path));
      else assert.match(box.run(`INFO ${path}`), /D[LWR]+ *\(\d\d\)/, path);
    }
  }
  assert.deepEqual(runsOf(box.run("MAP")), runsOf(sbx("map", image)));
}

// The drive's number is the BBC's own matter.
function listed(box, view, drive) {
  return printedLines(box.run(view)).map((line) =>
    line.startsWith(`Drive:${drive} `) ? line.replace(`Drive:${drive}`, "Drive:0") : line);
}

/** Address and length of each free run of a `*MAP` or a map view, as pairs of hex numbers. */
export function runsOf(text) {
  return [...text.matchAll(/([0-9A-F]{6})\s*:\s*([0-9A-F]{6})/g)].map((match) => [match[1], match[2]]);
}

/** Fails unless the BBC loads just these bytes from the file. */
export function assertBbcLoads(box, path, bytes) {
  const { bbc } = box;
  bbc.poke(kLoadAt, new Uint8Array(bytes.length + 1).fill(0xa5));
  box.do(`LOAD ${path} ${kLoadAt.toString(16)}`);
  assert.ok(Buffer.from(bbc.peek(kLoadAt, bytes.length)).equals(bytes), `${path} came back changed`);
  assert.equal(bbc.peek(kLoadAt + bytes.length, 1)[0], 0xa5, `${path} is longer than it was`);
}

/** Fails unless we find exactly these directories and files, and no fault on the disc. */
export function assertWeSee({ model, image, emptyFiles }) {
  const dirs = sbxLines("tree", image).map((line) => folded(line.split("\t")[0]));
  assert.deepEqual(dirs.sort(), [...model.dirs].map(folded).sort());
  for (const dir of model.dirs) {
    const names = sbxLines("ls", image, dir).map((line) => folded(`${dir}.${line.split("\t")[0]}`));
    assert.deepEqual(names.sort(), model.pathsIn(dir).map(folded).sort(), dir);
  }
  for (const [path, bytes] of model.files)
    assert.ok(sbx("get", image, path) === bytes.toString("latin1"), `${path} came back changed`);
  assertNoFaults(image, emptyFiles);
}

/** Fails if `check` finds anything but up to `lostSectors` sectors that belong to nothing. */
export function assertNoFaults(image, lostSectors = 0) {
  const kLost = /^warning: sector [0-9A-F]{6}: (\d+) sectors from here belong to nothing$/;
  const faults = sbxLines("check", image);
  assert.deepEqual(faults.filter((line) => !kLost.test(line)), []);
  const lost = faults.reduce((sum, line) => sum + Number(kLost.exec(line)[1]), 0);
  assert.ok(lost <= lostSectors, `${lost} sectors belong to nothing`);
}
