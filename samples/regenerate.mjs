// Makes samples/disc anew. The BASIC programs are typed at an emulated BBC, which tokenises and saves
// them. The screens are drawn by running the programs, and the BBC saves them too.
//
// Usage: SBX=.../sbx node samples/regenerate.mjs    (after `npm ci --omit=optional` in tests/bbc)

import { execFileSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";
import { BbcMachine } from "../tests/bbc/lib/BbcMachine.js";
import { readImage, sbx, writeImage } from "../tests/bbc/lib/Sbx.js";
import { boot, letter, readMe, teletextPage } from "./makeFiles.mjs";

const kHere = dirname(fileURLToPath(import.meta.url));
const kFolders = ["PICTURES", "PICTURES.SOURCES", "PROGRAMS", "PROGRAMS.GAMES", "PROGRAMS.CODE", "DOCUMENTS"];
const kPrograms = { MENU: "$", GUESS: "$.PROGRAMS.GAMES" };
const kScreens = { HAT: "FFFF3000", SUNSET: "FFFF3000", WORLDS: "FFFF3000", ROSETTE: "FFFF5800", BLOCKS: "FFFF5800" };

const work = mkdtempSync(join(tmpdir(), "sectorbox-samples-"));
const image = join(work, "work.adl");

function addFile(name, directory, bytes, load, exec) {
  const path = join(work, name);
  writeFileSync(path, bytes);
  sbx("add", image, directory, path);
  sbx("address", image, `${directory}.${name}`, load, exec);
}

function addHostFiles() {
  sbx("new", "80dsd", image);
  for (const folder of kFolders) {
    const parts = folder.split(".");
    sbx("mkdir", image, ["$", ...parts.slice(0, -1)].join("."), parts.at(-1));
  }
  execFileSync("64tass", ["-q", "--nostart", "-o", join(work, "code"), join(kHere, "code/stars.asm")]);
  addFile("STARS", "$.PROGRAMS.CODE", readFileSync(join(work, "code")), "FFFF2800", "FFFF2800");
  addFile("!BOOT", "$", boot(), "00000000", "FFFFFFFF");
  addFile("README", "$", readMe(), "00000000", "FFFFFFFF");
  addFile("TELETEXT", "$.PICTURES", teletextPage(), "FFFF7C00", "FFFF7C00");
  addFile("LETTER", "$.DOCUMENTS", letter(), "FFFFFFFF", "FFFFFFFF");
}

const programLines = (name) => readFileSync(join(kHere, "basic", `${name}.bas`), "latin1").trim().split("\n");

function typeProgram(bbc, name, directory) {
  bbc.enterCommand("NEW");
  const lines = programLines(name);
  for (const line of lines) bbc.enterCommand(line);
  bbc.enterCommand(`*DIR ${directory}`);
  const said = bbc.enterCommand(`SAVE "${name}"`);
  if (/[A-Za-z]/.test(said)) throw new Error(`${name} wasn't saved: ${said}`);
  return lines;
}

// The program's end is changed: it goes to a line that saves the screen before the prompt appears.
function drawScreen(bbc, name, start) {
  for (const line of typeProgram(bbc, name, "$.PICTURES.SOURCES"))
    if (/^\d+END$/.test(line)) bbc.enterCommand(`${parseInt(line)}GOTO 9999`);
  bbc.enterCommand(`9999OSCLI"SAVE $.PICTURES.${name} ${start} FFFF8000":?&70=1:REPEAT UNTIL ?&70=2`);
  bbc.poke(0x70, [0]);
  bbc.type("RUN");
  bbc.runUntil(() => bbc.peek(0x70, 1)[0] === 1, 20000, `end of ${name}`);
  bbc.poke(0x70, [2]);
  bbc.run(0.2);
  bbc.type("MODE 7");
  bbc.run(0.2);
  console.log(`${name} after ${Math.round(bbc.seconds)} s of the BBC's time`);
}

addHostFiles();
const bbc = await BbcMachine.boot("master");
bbc.insertDisc(0, readImage(image, 2560));
bbc.enterCommand("*MOUNT 0");
for (const [name, directory] of Object.entries(kPrograms)) typeProgram(bbc, name, directory);
for (const [name, start] of Object.entries(kScreens)) drawScreen(bbc, name, start);
bbc.run(1);
writeImage(image, bbc.readDisc(0));
rmSync(join(kHere, "disc"), { recursive: true, force: true });
sbx("export", image, "$", join(kHere, "disc"));
rmSync(work, { recursive: true });
