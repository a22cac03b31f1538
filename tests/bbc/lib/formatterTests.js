// The formatter's tests, for one kind of machine.

import assert from "node:assert/strict";
import { before, describe, test } from "node:test";
import { BbcMachine } from "./BbcMachine.js";
import { emptyDisc, kSectorSize, mapChecksum } from "./DiscImages.js";
import { answerQuestions, formatterBytes, kLoader, sendFormatter } from "./Formatter.js";
import { nameOf } from "./Machines.js";
import { SerialLine } from "./SerialLine.js";

const kSizes = { S: 640, M: 1280, L: 2560 };
const kBlank = new Uint8Array(0);

/** Declares the tests of the formatter on one kind of machine. */
export function testFormatter(kind) {
  const title = nameOf(kind).slice(3);

  describe(`TheFormatterOnA${title}`, () => {
    let bbc, line;

    before(async () => {
      bbc = await BbcMachine.boot(kind);
      line = new SerialLine(bbc);
      sendFormatter(bbc, line, formatterBytes());
      bbc.runUntilPrinted("Drive (0/1)? ");
    });

    function callAgain() {
      bbc.type("CALL &2FB3");
    }

    test("ArrivesWholeThroughTheLoader", () => {
      assert.equal(line.overruns, 0);
      assert.deepEqual(Buffer.from(bbc.peek(0x2fb3, 0x400)).toString("hex"), formatterBytes().subarray(0, 0x400).toString("hex"));
    });

    for (const [size, sectors] of Object.entries(kSizes)) {
      test(`MakesADiscOf${sectors / 4}KThatTheBbcSavesToAndLoadsFrom`, (t) => {
        bbc.insertDisc(0, kBlank, { sides: 2 });
        const start = bbc.seconds;
        answerQuestions(bbc, `0${size}Y`);
        bbc.runUntilPrinted("Format another disc (Y/N)? ", 300);
        assert.match(bbc.text(), /The disc is ready/);
        t.diagnostic(`${kind}: ${sectors / 4}K in ${(bbc.seconds - start).toFixed(0)} s`);
        bbc.press("N".charCodeAt(0));
        bbc.runUntilPrinted(">");

        const made = bbc.readDisc(0);
        assert.equal(made.length, sectors * kSectorSize);
        assert.equal(made[255], mapChecksum(made.subarray(0, 256)));
        assert.equal(made[511], mapChecksum(made.subarray(256, 512)));
        const expected = emptyDisc(sectors, "$");
        for (const own of [255, 507, 508, 511]) expected[own] = made[own]; // the identifier and what follows from it
        assert.deepEqual(made, expected);

        bbc.enterCommand("*ADFS");
        assert.match(bbc.enterCommand("*MOUNT 0"), /^\s*$/);
        assert.match(bbc.enterCommand("*FREE"), new RegExp(`^${(sectors - 7).toString(16).toUpperCase().padStart(6, "0")} `));
        bbc.enterCommand("*SAVE CODE 2FB3 461D");
        bbc.enterCommand("*LOAD CODE 5000");
        assert.deepEqual(bbc.peek(0x5000, 5738), bbc.peek(0x2fb3, 5738));
        assert.match(bbc.enterCommand("*CAT"), /CODE/);
        assert.doesNotThrow(() => bbc.readDisc(0));
        callAgain();
      });
    }

    test("UsesDrive1WhenTold", () => {
      const untouched = emptyDisc(640, "Keep");
      bbc.insertDisc(0, untouched);
      bbc.insertDisc(1, kBlank, { sides: 2 });
      answerQuestions(bbc, "1SY");
      bbc.runUntilPrinted("Format another disc (Y/N)? ", 300);
      bbc.press("Y".charCodeAt(0));
      assert.equal(bbc.readDisc(1).length, 640 * kSectorSize);
      assert.deepEqual(bbc.readDisc(0), untouched);
    });

    test("WritesNothingUnlessTheUserSaysYes", () => {
      const untouched = emptyDisc(1280, "Keep");
      bbc.insertDisc(0, untouched);
      for (const answers of ["0MN", "0X", "7"]) {
        answerQuestions(bbc, answers);
        bbc.runUntilPrinted("Nothing was written");
        bbc.runUntilPrinted(">");
        callAgain();
      }
      assert.deepEqual(bbc.readDisc(0), untouched);
    });

    test("SaysThatADiscIsWriteProtected", () => {
      const untouched = emptyDisc(640, "Keep");
      bbc.insertDisc(0, untouched, { writeProtected: true });
      answerQuestions(bbc, "0SY");
      bbc.runUntilPrinted("The disc is write protected");
      bbc.runUntilPrinted("Format another disc (Y/N)? ");
      bbc.press("Y".charCodeAt(0));
      assert.deepEqual(bbc.readDisc(0), untouched);
    });

    test("SaysThatThereIsNoDiscInsteadOfWaitingForever", () => {
      bbc.removeDisc(0);
      answerQuestions(bbc, "0LY");
      bbc.runUntilPrinted("The drive doesn't answer. Is a disc in it?", 60);
      bbc.runUntilPrinted("Format another disc (Y/N)? ");
      bbc.press("Y".charCodeAt(0));
    });

    test("SaysWhereADiscCannotBeFormatted", () => {
      const disc = bbc.insertDisc(0, kBlank, { sides: 2 });
      const write = disc.writePulses.bind(disc);
      disc.writePulses = (upper, track, ...rest) => {
        if (!(upper && track === 3)) write(upper, track, ...rest); // a scratch on the second side
      };
      answerQuestions(bbc, "0LY");
      bbc.runUntilPrinted("Format another disc (Y/N)? ", 120);
      assert.match(bbc.text(), /Sector not found at track 03 side 1 sector 00\n\rThe disc can't be used/);
      bbc.press("Y".charCodeAt(0));
    });

    test("StopsOnEscapeAndLeavesBasicInGoodHealth", () => {
      bbc.insertDisc(0, kBlank, { sides: 2 });
      answerQuestions(bbc, "0MY");
      bbc.runUntilPrinted("Track 05");
      bbc.pressEscape();
      bbc.runUntilPrinted("Stopped: the disc can't be used as it is");
      bbc.runUntilPrinted("Format another disc (Y/N)? ");
      bbc.press("N".charCodeAt(0));
      bbc.runUntilPrinted(">");
      assert.match(bbc.enterCommand("PRINT 6*7"), / 42/);
      assert.match(bbc.enterCommand("LIST"), /CALL &2FB3/);
    });
  });

  test(`TheLoaderOnA${title}RefusesAFormatterWithADamagedByte`, async () => {
    const bbc = await BbcMachine.boot(kind);
    const line = new SerialLine(bbc);
    const bytes = Buffer.from(formatterBytes());
    bytes[3000] ^= 0x10;
    sendFormatter(bbc, line, bytes);
    bbc.runUntilPrinted("TRANSFER CORRUPT - PLEASE TRY AGAIN");
    bbc.runUntilPrinted(">");
    assert.match(bbc.enterCommand("PRINT 6*7"), / 42/); // the keyboard is back
  });
}

test("TheFormatterHasTheLengthAndTheSumThatTheLoaderWants", () => {
  const bytes = formatterBytes();
  assert.equal(bytes.length, 0x166a);
  assert.equal(bytes.reduce((sum, byte) => (sum + byte) & 255, 0), 206);
  assert.ok(kLoader[1].includes("&1669") && kLoader[4].includes("206"));
});
