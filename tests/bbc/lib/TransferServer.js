// Brings the transfer server to life on an emulated BBC, the way a user does it.

import { readFileSync } from "node:fs";

const kListing = new URL("../../../data/adfsxfer.bas", import.meta.url);

/** The listing's lines, without their line ends. */
export function listingLines() {
  const lines = readFileSync(kListing, "latin1").split("\r\n");
  if (lines.pop() !== "") throw new Error("the listing's last line has no CR LF");
  return lines;
}

/** What the user types before the PC may type: 1200 baud both ways, input from the serial line. */
export function giveKeyboardToTheLine(bbc) {
  bbc.enterCommand("*FX 7,4");
  bbc.enterCommand("*FX 8,4");
  bbc.type("*FX 2,1");
  bbc.run(0.3);
  bbc.text();
}

/** Types the listing over the wire and gives the keyboard back. */
export function typeListing(bbc, line) {
  giveKeyboardToTheLine(bbc);
  for (const text of listingLines()) line.sendAndWait(`${text}\r`);
  line.sendAndWait("*FX 2,0\r");
  bbc.run(1);
  bbc.text();
}

/** RUNs the server and waits until it listens. */
export function startServer(bbc) {
  bbc.type("RUN");
  bbc.runUntilPrinted("Escape ends", 60);
  bbc.run(0.1);
}
