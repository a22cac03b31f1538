// Makes the files of the sample disc that aren't BASIC programs or screens: text, a teletext page, a
// Wordwise document.

const kRed = "\x81", kGreen = "\x82", kYellow = "\x83", kBlue = "\x84", kCyan = "\x86", kWhite = "\x87";
const kMosaicRed = "\x91", kMosaicGreen = "\x92", kMosaicYellow = "\x93", kMosaicBlue = "\x94", kMosaicCyan = "\x96";
const kFlash = "\x88", kSteady = "\x89", kDouble = "\x8d", kSeparated = "\x9a", kBackground = "\x9d";

// Makes mosaic characters of picture rows of # and .: each character is two dots wide and three high.
function mosaic(dots) {
  const bits = [1, 2, 4, 8, 16, 64];
  const rows = [];
  for (let y = 0; y < dots.length; y += 3) {
    let row = "";
    for (let x = 0; x < dots[0].length; x += 2) {
      const lit = bits.filter((_, i) => dots[y + (i >> 1)]?.[x + (i & 1)] === "#");
      row += String.fromCharCode(32 + lit.reduce((sum, bit) => sum + bit, 0));
    }
    rows.push(row);
  }
  return rows;
}

// Letters of five by six dots.
const kLetters = {
  S: [".####", "#....", ".###.", "....#", "....#", "####."],
  E: ["#####", "#....", "####.", "#....", "#....", "#####"],
  C: [".####", "#....", "#....", "#....", "#....", ".####"],
  T: ["#####", "..#..", "..#..", "..#..", "..#..", "..#.."],
  O: [".###.", "#...#", "#...#", "#...#", "#...#", ".###."],
  R: ["####.", "#...#", "####.", "#.#..", "#..#.", "#...#"],
  B: ["####.", "#...#", "####.", "#...#", "#...#", "####."],
  X: ["#...#", ".#.#.", "..#..", "..#..", ".#.#.", "#...#"],
};
const banner = (word) =>
  Array.from({ length: 6 }, (_, y) => "." + [...word].map((letter) => kLetters[letter][y]).join("...") + "...");

// A disc seen from above, with its hub, its index hole and the slot for the head.
function floppy() {
  const [width, height] = [30, 30];
  return Array.from({ length: height }, (_, y) =>
    Array.from({ length: width }, (_, x) => {
      const dx = x - width / 2 + 0.5;
      const dy = y - height / 2 + 0.5;
      const r = Math.hypot(dx, dy);
      const slot = Math.abs(dx) < 1.6 && dy > 6.4 && dy < 12.2;
      const hole = Math.hypot(dx - 5.5, dy + 2.5) < 0.9;
      const groove = r > 9.4 && r < 10.3;
      return r < 14.6 && r > 4.2 && !slot && !hole && !groove ? "#" : ".";
    }).join(""));
}

/** A page of 24 rows: such a file is shown from its first byte. */
export function teletextPage() {
  const title = mosaic(banner("SECTORBOX").map((row) => row.slice(0, 76).padEnd(76, ".")));
  const disc = mosaic(floppy());
  const words = [
    `${kYellow}A BBC disc in a window`,
    "",
    `${kCyan}Catalogues${kWhite}as *CAT and`,
    " *EX would print them",
    `${kCyan}Listings${kWhite}of BASIC and`,
    " of 6502 machine code",
    `${kCyan}Letters${kWhite}in Wordwise`,
    `${kCyan}Pictures${kWhite}of five modes`,
    "",
    `${kGreen}By cable or on a card`,
  ];
  const bar = (colour) => colour + kSeparated + "\x7c".repeat(37);
  const big = kDouble + kYellow + "The discs are still turning.";
  const rows = [
    `${kRed}${kBackground}${kYellow}P100  SECTORBOX  Welcome  ${kWhite}Sat 21 Nov`,
    "",
    ...title.map((row) => kMosaicCyan + row),
    "",
    bar(kMosaicBlue),
    "",
    ...disc.map((row, i) => `${[kMosaicRed, kMosaicYellow, kMosaicGreen, kMosaicCyan, kMosaicBlue][Math.floor(i / 2)]}${row}${words[i] ? kWhite + words[i] : ""}`),
    "",
    bar(kMosaicBlue),
    big,
    big,
    `${kBlue}${kBackground}${kWhite}Choose any file${kFlash}${kYellow}and look${kSteady}`,
  ];
  while (rows.length < 24) rows.push("");
  const long = rows.findIndex((row) => row.length > 40);
  if (rows.length > 24 || long >= 0) throw new Error(`the page doesn't fit: ${rows.length} rows, row ${long}: ${rows[long]?.length}`);
  return Buffer.from(rows.map((row) => row.padEnd(40, " ")).join(""), "latin1");
}

/** Paragraphs of BBC text: lines end in CR. */
export function readMe() {
  return Buffer.from(
    `Welcome to Sectorbox
====================

This disc came with the program. Everything
on it can be opened, changed and thrown away.

!BOOT       what Shift-Break runs
MENU        shows the rest of the disc
PICTURES    a teletext page, five screens
  SOURCES   the programs that drew them
PROGRAMS
  GAMES     one to play
  CODE      one in machine code
DOCUMENTS   a letter typed in Wordwise

Try them in more than one way: a listing is
also bytes, and a screen is also a file. The
colours of a screen are yours to change.
`.replaceAll("\n", "\r"),
    "latin1");
}

/** A letter: embedded commands stand between code 2 and code 7. */
export function letter() {
  const green = (...commands) => commands.map((command) => `\x02${command}\x07`).join("");
  const under = (text) => green("US") + text + green("UE");
  const bold = (text) => green("DS") + text + green("DE");
  const paragraphs = [
    green("LL60", "LM5", "NJ") + green("FI") + "14 Ferrous Lane",
    green("FI") + "Track, Sector 7",
    green("FI") + "21st November",
    "",
    green("CE2") + bold("THE SOCIETY OF ROTATING MEDIA"),
    green("CE1") + under("Notice of the yearly meeting"),
    "",
    "Dear fellow member,",
    "",
    green("JO") + "It is my pleasure to invite you to our meeting, which will be held as ever on side two, between the " +
      "outermost track and the tea urn. The Secretary reports that no sector was lost this year, which is " +
      under("two fewer than last") + ". The Treasurer asks that discs be returned in the sleeves in which they were lent.",
    "",
    green("IN4") + "Members who come by the slow road are asked to start at 1200 baud and to be patient. The committee will " +
      "wait for the index hole to come round before it begins.",
    "",
    green("CI", "NJ", "DT12,24,44") + bold("The programme"),
    "",
    "\xdd10.00\xddSpinning up",
    "\xdd10.15\xddThe free space: where did it go?",
    "\xdd11.30\xddTea, with interleaved biscuits",
    "\xdd12.00\xddCompaction, with demonstrations",
    "\xdd13.00\xddHeads are parked",
    "",
    green("JO", "TI6") + "Should the meeting be full, please sit in the first gap that is large enough. Those at the end of the row " +
      "may be asked to move up.",
    "",
    green("NJ") + "Yours in good order,",
    "",
    "",
    green("IN30") + "H. Ugo, " + under("Honorary Keeper of the Map"),
    green("CI"),
  ];
  return Buffer.from(paragraphs.join("\r") + "\r", "latin1");
}

export const boot = () => Buffer.from('*DIR $\rCHAIN "MENU"\r', "latin1");
