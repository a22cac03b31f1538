// The transfer server on the BBC, asked by a client that knows nothing but the bytes on the wire.

import assert from "node:assert/strict";
import { before, describe, test } from "node:test";
import { BbcMachine } from "./BbcMachine.js";
import { damageSector, emptyDisc, kSectorSize } from "./DiscImages.js";
import { nameOf } from "./Machines.js";
import { ProtocolClient, compress, crcOf } from "./ProtocolClient.js";
import { SerialLine } from "./SerialLine.js";
import { giveKeyboardToTheLine, listingLines, startServer, typeListing } from "./TransferServer.js";

/** A disc of 640K whose first sectors behind the root hold bytes that hardly repeat. */
function busyDisc(title) {
  const disc = emptyDisc(2560, title);
  for (let i = 7 * kSectorSize; i < 400 * kSectorSize; i++) disc[i] = (Math.imul(i, 2654435761) >>> 24) ^ (i >> 11);
  return disc;
}

function sectors(disc, start, count) {
  return disc.subarray(start * kSectorSize, (start + count) * kSectorSize);
}

/** Declares the tests of the server on one kind of machine. */
export function testServer(kind) {
  describe(`TheServerOnA${nameOf(kind).slice(3)}`, () => {
    let bbc, line, pc, disc, drive0;

    before(async () => {
      bbc = await BbcMachine.boot(kind);
      line = new SerialLine(bbc, { overshoot: 8 });
      typeListing(bbc, line);
      disc = busyDisc("Original");
      drive0 = bbc.insertDisc(0, disc);
      bbc.insertDisc(1, emptyDisc(1280, "Second"));
      startServer(bbc);
      pc = new ProtocolClient(line);
      assert.equal(pc.connect(19200), "-----BBC-----PC-----\r");
      pc.mount(0);
    });

    test("ReportsABufferOfWholeSectors", (t) => {
      const size = pc.bufferSize();
      t.diagnostic(`${kind}: buffer of ${size} bytes`);
      assert.equal(size % kSectorSize, 0);
      assert.ok(size >= (kind === "master" ? 15000 : 10000), `${size} bytes`);
      assert.equal(pc.ask("B\r"), `${size}\r`);
    });

    test("SendsSectorsAsTheyStandOnTheTracks", () => {
      const { status, data } = pc.read(0, 0, 40);
      assert.equal(status, -1);
      assert.deepEqual(data, bbc.readSectors(0, 0, 40));
      assert.equal(pc.read(0, 2559, 1).status, -1);
    });

    test("SendsAWholeBufferAtTheLineSpeed", (t) => {
      const count = pc.bufferSize() / kSectorSize;
      pc.read(0, 99, 1); // the motor runs
      const start = bbc.seconds;
      const { status, data } = pc.read(0, 100, count);
      const seconds = bbc.seconds - start;
      assert.equal(status, -1);
      assert.deepEqual(data, sectors(disc, 100, count));
      const rate = (count * kSectorSize) / seconds;
      t.diagnostic(`${kind}: ${count} sectors that do not compress received in ${seconds.toFixed(2)} s, ${rate.toFixed(0)} bytes/s with the disc's time`);
      assert.ok(rate > 1300, `${rate} bytes/s`);
    });

    test("SendsEmptySectorsInSevenBytesEach", () => {
      assert.equal(pc.read(0, 2000, 10).status, -1);
      assert.ok(pc.wireBytes <= 10 * 7, `${pc.wireBytes} bytes on the wire`);
    });

    test("WritesSectorsThatThenStandOnTheTracks", (t) => {
      const count = pc.bufferSize() / kSectorSize;
      const data = sectors(disc, 200, count);
      const start = bbc.seconds;
      assert.equal(pc.write(0, 1000, data), "ok");
      const seconds = bbc.seconds - start;
      t.diagnostic(`${kind}: ${count} sectors that do not compress sent in ${seconds.toFixed(2)} s, ${(data.length / seconds).toFixed(0)} bytes/s with the disc's time`);
      assert.deepEqual(bbc.readSectors(0, 1000, count), data);
    });

    test("ExpandsRunsAsFastAsTheyCome", () => {
      const count = pc.bufferSize() / kSectorSize;
      const runs = new Uint8Array(count * kSectorSize).map((_, i) => (i % 40 < 20 ? 27 : i >> 9));
      const overruns = line.overruns;
      assert.equal(pc.write(0, 1200, runs), "ok");
      assert.deepEqual(bbc.readSectors(0, 1200, count), runs);
      assert.equal(pc.write(0, 1200, new Uint8Array(runs.length)), "ok");
      assert.ok(bbc.readSectors(0, 1200, count).every((byte) => byte === 0));
      assert.equal(line.overruns, overruns);
    });

    test("ChecksSectorsByTheCrcOfTheirPlainBytes", () => {
      assert.equal(pc.checksum(0, 100, 30), crcOf(sectors(disc, 100, 30)));
      assert.equal(pc.checksum(0, 2400, 1), 0);
    });

    test("ServesTheOtherDriveAlthoughTheFirstIsMounted", () => {
      assert.deepEqual(pc.read(1, 0, 7).data, sectors(emptyDisc(1280, "Second"), 0, 7));
      pc.star("MOUNT 1");
      assert.deepEqual(pc.read(0, 120, 2).data, sectors(disc, 120, 2));
      assert.deepEqual(pc.read(5, 0, 7).data, sectors(emptyDisc(1280, "Second"), 0, 7));
      assert.deepEqual(pc.read(4, 120, 2).data, sectors(disc, 120, 2));
      pc.star("MOUNT 0");
    });

    test("AnswersACommandThatPrintsNothingWithTheAcknowledgeAlone", () => {
      assert.equal(pc.ask("*MOUNT 0\r"), "-----BBC-----PC-----\r");
      assert.equal(pc.ask("*FADFS\r"), "-----BBC-----PC-----\r");
      pc.mount(0);
    });

    test("GivesFreeAndUsedSectorsWhereThePcLooksForThem", () => {
      const reply = pc.ask("*FREE\r");
      const behindCr = reply.indexOf("\r") + 1;
      assert.equal(Number.parseInt(reply.slice(0, 6), 16), 2553);
      assert.equal(Number.parseInt(reply.slice(behindCr, behindCr + 6), 16), 7);
    });

    test("PrintsForAStarCommandWhatTheBbcPrints", async () => {
      const other = await BbcMachine.boot(kind);
      other.insertDisc(0, bbc.readDisc(0));
      other.enterCommand("*MOUNT 0");
      for (const command of ["*CAT", "*EX", "*FREE", "*MAP"]) {
        const printed = other.enterCommand(command).replaceAll("\n\r", "\r");
        assert.equal(pc.star(command.slice(1)), printed, command);
      }
    });

    test("SendsOutputThatIsLargerThanItsBufferWhole", () => {
      const length = pc.bufferSize() + 700;
      bbc.insertDisc(1, discWithPrinter(length));
      pc.mount(1);
      let output = pc.ask("*RUN PRINTER\r", 30);
      for (let more; (more = pc.reply(1)); ) output += more;
      assert.equal(output, "*".repeat(length) + "-----BBC-----PC-----\r");
      bbc.insertDisc(1, emptyDisc(1280, "Second"));
      pc.mount(0);
    });

    test("TellsAnErrorByItsTokenAndTheTextOnRequest", () => {
      assert.equal(pc.ask("*LOAD NOTHERE\r"), "-----BBCerror1-----PC-----\r");
      assert.equal(pc.ask("-----BBCerror1-----PC-----"), "Not found");
      assert.throws(() => pc.star("NONSENSE"), /Bad command/);
      assert.equal(pc.ask("*FADFS\r"), "-----BBC-----PC-----\r");
      pc.mount(0);
    });

    test("ShowsTheNewDiscAtOnceAfterItsMapWasWritten", () => {
      const fresh = emptyDisc(2560, "Fresh");
      assert.equal(pc.write(0, 0, sectors(fresh, 0, 7)), "ok");
      assert.match(pc.star("CAT"), /^Fresh/);
      assert.equal(pc.write(0, 0, sectors(disc, 0, 7)), "ok");
      assert.match(pc.star("CAT"), /^Original/);
    });

    test("RefusesSectorsPastTheEndOfTheDisc", () => {
      assert.equal(pc.read(0, 2560, 1).status, 1);
      pc.resetLink();
      assert.equal(pc.checksum(0, 3000, 4), null);
      assert.equal(pc.write(0, 2560, new Uint8Array(kSectorSize)), "failed");
      assert.equal(pc.read(0, 10, 1).status, -1);
    });

    test("RefusesDrivesAndCountsItCannotServe", () => {
      for (const [drive, count] of [[2, 1], [6, 1], [0, 255], [0, 0]]) {
        assert.equal(pc.read(drive, 0, count).status, 1, `drive ${drive}, ${count} sectors`);
        pc.resetLink();
      }
      assert.equal(pc.ask("a0\r0\r255\r"), "\x1b\x02");
      assert.equal(pc.read(0, 10, 1).status, -1);
    });

    test("AnswersAnUnreadableSectorAtTheLatestWhenAskedAgain", () => {
      const spare = bbc.insertDisc(1, emptyDisc(1280, "Damaged"));
      damageSector(spare, 600);
      let status = 0;
      let asked = 0;
      for (; status === 0 && asked < 6; asked++) {
        status = pc.read(1, 600, 1).status;
        if (status === 0) pc.resetLink();
      }
      assert.equal(status, 1, "it was never told");
      pc.resetLink();
      assert.equal(pc.read(1, 601, 1).status, -1);
      let answer;
      for (asked = 0; answer === undefined && asked < 12; asked++) {
        const reply = pc.ask("c1\r600\r1\r");
        if (reply) answer = reply;
        else pc.resetLink();
      }
      assert.equal(answer, "\x1b\x02");
      assert.equal(pc.read(1, 601, 1).status, -1);
    });

    test("SaysThatAWriteProtectedDiscCannotBeWritten", () => {
      bbc.insertDisc(1, emptyDisc(1280, "Locked"), { writeProtected: true });
      assert.equal(pc.write(1, 30, new Uint8Array(kSectorSize)), "failed");
      bbc.insertDisc(1, emptyDisc(1280, "Second"));
      assert.equal(pc.read(0, 10, 1).status, -1);
    });

    test("GoesOnAfterAStreamThatWasAbandonedAnywhere", () => {
      const stream = compress(sectors(disc, 100, 4));
      for (const cut of [0, 1, 100, stream.length - 1]) {
        assert.ok(pc.isAcknowledge(pc.ask("a0\r1400\r4\r")));
        pc.send(stream.subarray(0, cut));
        pc.abandon();
        assert.deepEqual(pc.read(0, 100, 1).data, sectors(disc, 100, 1), `cut at ${cut}`);
      }
      for (const tail of [[27], [27, 0], [27, 0, 27]]) {
        assert.ok(pc.isAcknowledge(pc.ask("a0\r1400\r4\r")));
        pc.send(tail);
        pc.abandon();
        assert.equal(pc.read(0, 100, 1).status, -1, `cut behind ${tail}`);
      }
      assert.ok(bbc.readSectors(0, 1400, 4).every((byte) => byte === 0), "an abandoned stream was written");
    });

    test("GoesOnAfterAStreamThatStopped", () => {
      assert.ok(pc.isAcknowledge(pc.ask("a0\r1400\r4\r")));
      pc.send([1, 2, 3]);
      pc.resetLink();
      assert.equal(pc.read(0, 100, 1).status, -1);
    });

    test("GivesACrcThatCannotMatchForAStreamThatMakesNoSense", () => {
      for (const stream of [[1, 27, 4, 5, 6], [1, 2, 3, 27, 3], [...new Uint8Array(300).map((_, i) => i), 27, 3]]) {
        assert.ok(pc.isAcknowledge(pc.ask("a0\r1400\r1\r")));
        pc.send(stream);
        assert.ok(Number.parseInt(pc.reply(), 10) > 65535);
      }
      assert.ok(bbc.readSectors(0, 1400, 1).every((byte) => byte === 0));
      assert.equal(pc.write(0, 1400, new Uint8Array(kSectorSize)), "ok");
    });

    test("TellsADamagedByteOfAStreamByItsCrc", () => {
      const stream = compress(sectors(disc, 100, 2));
      assert.ok(pc.isAcknowledge(pc.ask("a0\r1400\r2\r")));
      pc.send(stream.map((byte, i) => (i === 50 && byte !== 26 ? byte ^ 1 : byte)));
      assert.notEqual(Number.parseInt(pc.reply(), 10), crcOf(stream));
      assert.equal(pc.write(0, 1400, new Uint8Array(2 * kSectorSize)), "ok");
    });

    test("IgnoresGarbageAndDoesNotTakeDiscDataForCommands", () => {
      const before = bbc.readDisc(0);
      const traps = "Ha0\r20\r1\r*DELETE X\rS1200\rQQQ\x1b\x02c0\r";
      pc.send(traps);
      pc.send(sectors(disc, 50, 6));
      bbc.run(4);
      for (const half of ["A0\r", "A0\r5", "a", "*CA", "-----BBCerr", "A0\rX\r1\r", "c0\r0\r-1\r", "A00\r0\r1\r"]) {
        pc.send(half);
        bbc.run(3);
      }
      assert.deepEqual(line.fromBbc.splice(0), []);
      assert.deepEqual(bbc.readDisc(0), before);
      assert.equal(pc.read(0, 100, 1).status, -1);
    });

    test("HoldsThePcBackWhileItCannotListen", () => {
      pc.send("c0\r100\r40\r");
      bbc.run(1);
      assert.equal(line.bbcReady, false);
      assert.notEqual(pc.reply(), "");
      bbc.run(0.1);
      assert.equal(line.bbcReady, true);
    });

    test("WaitsWhileThePcHoldsItBack", () => {
      pc.send("A0\r100\r2\r");
      bbc.run(0.5);
      line.setClearToSend(false);
      const soFar = line.fromBbc.length;
      bbc.run(5);
      assert.ok(line.fromBbc.length - soFar <= 2);
      line.setClearToSend(true);
      bbc.run(3);
      const stream = Uint8Array.from(line.fromBbc.splice(0));
      const expected = compress(sectors(disc, 100, 2));
      assert.deepEqual(stream.subarray(0, expected.length), expected);
    });

    test("GoesBackTo1200BaudOnQAndTakesTheNextPc", () => {
      pc.quit();
      for (const speed of [9600, 4800, 2400, 1200, 19200]) {
        assert.equal(pc.connect(speed), "-----BBC-----PC-----\r", `${speed} baud`);
        assert.ok(pc.bufferSize() > 0);
        pc.quit();
      }
      pc.connect(19200);
      pc.mount(0);
    });

    test("GoesBackTo1200BaudWhenAPcThatWentAwayComesAgain", () => {
      line.pcSpeed = 1200;
      pc.connect(19200);
      assert.equal(pc.connect(19200), "-----BBC-----PC-----\r");
      pc.mount(0);
    });

    test("IgnoresASpeedThatTheBbcDoesNotHave", () => {
      assert.equal(pc.ask("S115200\r", 3), "");
      assert.equal(pc.read(0, 100, 1).status, -1);
    });

    test("EndsOnEscapeAndCanBeRunAgain", () => {
      bbc.text();
      bbc.pressEscape();
      bbc.runUntilPrinted("Server ended", 10);
      assert.match(bbc.enterCommand("PRINT 6*7"), / 42/);
      line.pcSpeed = 1200;
      startServer(bbc);
      assert.equal(pc.connect(19200), "-----BBC-----PC-----\r");
      assert.match(pc.star("CAT"), /^Original/);
      bbc.pressEscape();
      bbc.runUntilPrinted("Server ended", 10);
    });
  });

  test(`TheListingArrivesOnA${nameOf(kind).slice(3)}LineForLine`, async () => {
    const bbc = await BbcMachine.boot(kind);
    const line = new SerialLine(bbc);
    giveKeyboardToTheLine(bbc);
    for (const text of listingLines()) line.sendAndWait(`${text}\r`);
    line.sendAndWait("*FX 2,0\r");
    bbc.run(1);
    assert.equal(line.overruns, 0);
    bbc.enterCommand("LISTO 0");
    assert.deepEqual(bbc.enterCommand("LIST", 120).split(/\r\n|\n\r/).slice(0, -1), listingLines());
  });
}

/** A disc with one program, $.PRINTER, which prints `length` stars and ends. */
function discWithPrinter(length) {
  const disc = emptyDisc(1280, "Printer");
  const entry = 512 + 5;
  disc.set(Buffer.from("PRINTER\r", "latin1"), entry);
  disc[entry] |= 0x80; // readable
  const fields = new DataView(disc.buffer);
  const kPlace = 0xb00; // room for a small program on every machine
  fields.setUint32(entry + 10, 0xffff0000 + kPlace, true);
  fields.setUint32(entry + 14, 0xffff0000 + kPlace, true);
  const code = [
    0xa2, length & 255, //      ldx #low
    0xa0, (length >> 8) + 1, // ldy #high + 1
    0xa9, 42, //         again: lda #"*"
    0x20, 0xee, 0xff, //        jsr oswrch
    0xca, 0xd0, 0xf8, //        dex: bne again
    0x88, 0xd0, 0xf5, //        dey: bne again
    0x60, //                    rts
  ];
  fields.setUint32(entry + 18, code.length, true);
  disc[entry + 22] = 7;
  disc.set(code, 7 * kSectorSize);
  return disc;
}
