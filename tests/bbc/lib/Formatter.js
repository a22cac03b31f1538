// The disc formatter and the way it comes to the BBC.

import { execFileSync } from "node:child_process";
import { existsSync, mkdtempSync, readFileSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { fileURLToPath } from "node:url";
import { giveKeyboardToTheLine } from "./TransferServer.js";

const kData = fileURLToPath(new URL("../../../data/", import.meta.url));

/** The loader that the PC types, one BASIC line each. */
export const kLoader = [
  '10CLS:P."Please Wait ...";:*DISC',
  "20T%=0:F.A%=0TO&1669:C%=GET:T%=(T%+C%)AND255:A%?&2FB3=C%",
  "30IF A% MOD 128 = 0 THEN VDU 46",
  "40N.:*FX2,0",
  '50IFT%=206 CALL &2FB3 ELSE PRINT"TRANSFER CORRUPT - PLEASE TRY AGAIN"',
  "RUN",
];

/** The formatter as the build made it, or, outside a build, assembled for the occasion. */
export function formatterBytes() {
  const built = process.env.AFORM;
  if (built && existsSync(built)) return readFileSync(built);
  const folder = mkdtempSync(join(tmpdir(), "aform-"));
  try {
    const output = join(folder, "aform");
    const settings = ["-DASSEMBLER=64tass", `-DSOURCE=${join(kData, "aform.s")}`, `-DOUTPUT=${output}`];
    execFileSync("cmake", [...settings, "-P", join(kData, "BuildAform.cmake")]);
    return readFileSync(output);
  } finally {
    rmSync(folder, { recursive: true });
  }
}

/** Types the loader over the wire and feeds it `bytes`. */
export function sendFormatter(bbc, line, bytes) {
  giveKeyboardToTheLine(bbc);
  for (const text of kLoader) line.sendAndWait(`${text}\r`);
  bbc.run(0.3);
  line.sendAndWait(bytes, 120);
}

/** Answers the formatter's questions; `answers` is drive, size and the go-ahead. */
export function answerQuestions(bbc, answers) {
  const questions = ["Drive (0/1)? ", "Size (S/M/L)? ", "Go on (Y/N)? "];
  [...answers].forEach((answer, i) => {
    bbc.runUntilPrinted(questions[i]);
    bbc.run(0.05);
    bbc.text();
    bbc.press(answer.charCodeAt(0));
  });
}
