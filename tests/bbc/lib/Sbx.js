// Runs the command line of this project from a test. CTest tells where it is in SBX.

import { spawnSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { interleave, deinterleave } from "./DiscImages.js";

/** How `sbx ARGS...` ended: { status, stdout, stderr }, bytes in strings; status is null after a kill. */
export function sbxResult(args, environment = {}) {
  const program = process.env.SBX;
  if (!program) throw new Error("SBX must name the sbx to test");
  const env = { ...process.env, ...environment };
  return spawnSync(program, args, { encoding: "latin1", maxBuffer: 1 << 26, env });
}

/** Standard output of `sbx ARGS...` as bytes in a string; throws if it doesn't end with status 0. */
export function sbx(...args) {
  const done = sbxResult(args);
  if (done.status !== 0) throw new Error(`sbx ${args.join(" ")}: status ${done.status}: ${done.stderr}`);
  return done.stdout;
}

/** Standard error of `sbx ARGS...`, which has to end with status 1. */
export function sbxRefusal(...args) {
  const done = sbxResult(args);
  if (done.status !== 1) throw new Error(`sbx ${args.join(" ")}: status ${done.status}`);
  return done.stderr;
}

/** Runs `sbx ARGS...` and kills it at its `at`th call of `call`; true if it came to that. */
export function sbxKilledAt(call, at, ...args) {
  const library = process.env.FAILING_CALLS;
  if (!library) throw new Error("FAILING_CALLS must name the library that lets calls fail");
  const done = sbxResult(args, {
    LD_PRELOAD: library,
    ASAN_OPTIONS: "verify_asan_link_order=0",
    FAILING_CALL: call,
    FAILING_AT: `${at}`,
    FAILING_HOW: "kill",
  });
  return done.signal === "SIGKILL";
}

/** The lines of `sbx ARGS...`. */
export function sbxLines(...args) {
  const lines = sbx(...args).split("\n");
  if (lines.at(-1) === "") lines.pop();
  return lines;
}

/** Adds a file by a name that the host may not have: through a host file in `folder` and its sidecar. */
export function addNamed(folder, image, dir, name, bytes) {
  const host = join(folder, "host");
  const hex = (n) => n.toString(16).toUpperCase().padStart(8, "0");
  writeFileSync(host, bytes);
  writeFileSync(`${host}.INF`, `${name.padEnd(10)} FFFF3000 FFFF8023 ${hex(bytes.length)} WR\r\n`);
  sbx("add", image, dir, host);
}

/** `sbx info IMAGE` as an object of its `name: value` lines. */
export function sbxInfo(image) {
  return Object.fromEntries(sbxLines("info", image).map((line) => line.split(/: ?/, 2)));
}

/** A folder of the test's own; `t.after` removes it. */
export function temporaryFolder(t) {
  const folder = mkdtempSync(join(tmpdir(), "sectorbox-bbc-"));
  t.after(() => rmSync(folder, { recursive: true, force: true }));
  return folder;
}

/** The sectors of an image file in ADFS's order, as many as `sectors` says (a trimmed file is filled up). */
export function readImage(path, sectors) {
  const file = new Uint8Array(sectors * 256);
  file.set(readFileSync(path).subarray(0, file.length));
  return path.endsWith(".adl") ? deinterleave(file) : file;
}

/** Writes sectors in ADFS's order as an image file. */
export function writeImage(path, flat) {
  writeFileSync(path, path.endsWith(".adl") ? interleave(flat) : flat);
}
