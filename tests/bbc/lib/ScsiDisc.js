// A hard disc for the emulated BBC: the SCSI host adapter on the 1 MHz bus and one drive behind it.
// The drive's sectors are a .dat image, its geometry the .dsc companion beside it, as the BBC's own
// tools take them.
//
// The adapter has four addresses. &FC40 is the data; a byte read or written there answers the
// drive's request. &FC41 is the status (below), &FC42 selects the drive whose bit stands on the data
// lines, &FC43 turns the interrupt on and off. A command goes through the phases that any SCSI-1 bus
// has: six or ten command bytes, data in one direction, a status byte, a message byte.

import { existsSync, readFileSync } from "node:fs";
import { DriveFile } from "./DriveFile.js";

export const kSectorsOfTrack = 33;
const kSectorSize = 256;
const kModeLength = 22; // a .dsc file
const kInterrupt = 0x100; // our own bit of the processor's interrupt line
const kLatency = 2000; // cycles until the drive asks for the first byte of data or status: 1 ms

const kBits = { control: 0x80, in: 0x40, request: 0x20, interrupt: 0x10, busy: 0x02, message: 0x01 };
const kPhases = {
  free: 0,
  working: kBits.busy, // no request: the drive is looking for its sector
  command: kBits.busy | kBits.request | kBits.control,
  dataOut: kBits.busy | kBits.request,
  dataIn: kBits.busy | kBits.request | kBits.in,
  status: kBits.busy | kBits.request | kBits.in | kBits.control,
  message: kBits.busy | kBits.request | kBits.in | kBits.control | kBits.message,
};

const kSense = {
  notReady: 0x04,
  badCommand: 0x20,
  pastTheEnd: 0x21,
};
const kCheckStatus = 0x02; // of the status byte: ask for sense

export class ScsiDisc {
  /**
   * cpu: the emulated processor. path: a .dat image. If a companion lies beside it, the drive ends
   * where the companion says; without one it has no end that a command can reach.
   */
  constructor(cpu, path) {
    this.cpu = cpu;
    this.commands = []; // the bytes of each command, in order
    this.#insert(path);
    this.#task = cpu.scheduler.newTask(() => this.#enter(this.#next));
  }

  #task;
  #next = "free"; // the phase after "working"
  #phase = "free";
  #lines = 0; // the data lines of a free bus give back what was written
  #interruptOn = false;
  #command = [];
  #buffer = new Uint8Array(0);
  #position = 0;
  #whenWritten = null;
  #status = 0;
  #sense = [0, 0, 0, 0];

  #insert(path) {
    this.file = new DriveFile(path);
    const companion = path.replace(/\.[^.]{3}$/, "") + ".dsc";
    this.mode = new Uint8Array(kModeLength);
    this.sectors = 0xffffffff;
    if (existsSync(companion)) {
      this.mode.set(readFileSync(companion).subarray(0, kModeLength));
      this.sectors = (this.mode[13] * 256 + this.mode[14]) * this.mode[15] * kSectorsOfTrack;
    }
  }

  /** Another disc in the drive; the BBC has to `*MOUNT` it. */
  change(path) {
    this.file.close();
    this.#insert(path);
  }

  /** The codes of the commands since the last call. */
  takeCommands() {
    return this.commands.splice(0).map((bytes) => bytes[0]);
  }

  close() {
    this.file.close();
  }

  read(register) {
    if (register === 0) return this.#readData();
    if (register === 1) return this.#statusLines();
    return 0xff;
  }

  write(register, byte) {
    if (register === 0) this.#writeData(byte);
    else if (register === 2) this.#select();
    else if (register === 3) {
      this.#interruptOn = (byte & 0x80) !== 0;
      this.#updateInterrupt();
    }
  }

  #isPending() {
    return this.#interruptOn && (kPhases[this.#phase] & kBits.request) !== 0;
  }
  #statusLines() {
    return kPhases[this.#phase] | (this.#isPending() ? kBits.interrupt : 0);
  }
  #updateInterrupt() {
    if (this.#isPending()) this.cpu.interrupt |= kInterrupt;
    else this.cpu.interrupt &= ~kInterrupt;
  }

  #enter(phase) {
    this.#phase = phase;
    this.#position = 0;
    this.#updateInterrupt();
  }
  #enterLater(phase) {
    this.#enter("working");
    this.#next = phase;
    this.#task.reschedule(kLatency);
  }

  // Only drive 0 is there; a select of another is answered by nobody.
  #select() {
    if (this.#phase !== "free" || !(this.#lines & 1)) return;
    this.#command = [];
    this.#enter("command");
  }

  #readData() {
    switch (this.#phase) {
      case "dataIn": {
        const byte = this.#buffer[this.#position++];
        if (this.#position === this.#buffer.length) this.#enterLater("status");
        return byte;
      }
      case "status":
        this.#enter("message");
        return this.#status;
      case "message":
        this.#enter("free");
        return 0;
      default:
        return this.#lines;
    }
  }

  #writeData(byte) {
    this.#lines = byte;
    if (this.#phase === "command") {
      this.#command.push(byte);
      const length = this.#command[0] >= 0x20 ? 10 : 6;
      if (this.#command.length === length) this.#run();
    } else if (this.#phase === "dataOut") {
      this.#buffer[this.#position++] = byte;
      if (this.#position === this.#buffer.length) {
        this.#whenWritten(this.#buffer);
        this.#enterLater("status");
      }
    }
  }

  #run() {
    const bytes = this.#command;
    this.commands.push(bytes);
    const unit = bytes[1] >> 5;
    const sector = ((bytes[1] & 0x1f) << 16) | (bytes[2] << 8) | bytes[3];
    const count = bytes[4] || 256;
    // Of sense there are four bytes, whatever number of them the command asks for.
    if (bytes[0] === 0x03) return this.#give(Uint8Array.from(this.#sense.splice(0, 4, 0, 0, 0, 0)));
    if (unit !== 0) return this.#fail(kSense.notReady, unit, sector);
    switch (bytes[0]) {
      case 0x00: // test ready
      case 0x01: // restore
      case 0x0c: // initialise
      case 0x1b: // start or stop
        return this.#succeed();
      case 0x04:
        return this.#format();
      case 0x08:
        return this.#onSectors(sector, count, () =>
          this.#give(this.file.read(sector * kSectorSize, count * kSectorSize)));
      case 0x0a:
        return this.#onSectors(sector, count, () =>
          this.#take(count * kSectorSize, (data) => this.file.write(sector * kSectorSize, data)));
      case 0x0b: // seek
        return this.#onSectors(sector, 1, () => this.#succeed());
      case 0x15:
        return this.#take(count, (data) => this.mode.set(data.subarray(0, kModeLength)));
      case 0x1a:
        return this.#give(this.mode.slice(0, count));
      case 0x2f: {
        const from = ((bytes[3] << 16) | (bytes[4] << 8) | bytes[5]) >>> 0;
        return this.#onSectors(from, (bytes[7] << 8) | bytes[8], () => this.#succeed());
      }
      default:
        return this.#fail(kSense.badCommand, unit, 0);
    }
  }

  #onSectors(sector, count, action) {
    if (sector + count > this.sectors) this.#fail(kSense.pastTheEnd, 0, sector);
    else action();
  }

  // What was on the disc is gone.
  #format() {
    const part = new Uint8Array(kSectorSize * 1024);
    for (let offset = 0; offset < this.file.length; offset += part.length)
      this.file.write(offset, part.subarray(0, Math.min(part.length, this.file.length - offset)));
    this.#succeed();
  }

  #succeed() {
    this.#status = 0;
    this.#enterLater("status");
  }
  #fail(code, unit, sector) {
    this.#sense = [code, (unit << 5) | (sector >> 16), (sector >> 8) & 0xff, sector & 0xff];
    this.#status = kCheckStatus;
    this.#enterLater("status");
  }
  #give(bytes) {
    this.#status = 0;
    this.#buffer = bytes;
    this.#enterLater("dataIn");
  }
  #take(length, whenWritten) {
    this.#status = 0;
    this.#buffer = new Uint8Array(length);
    this.#whenWritten = whenWritten;
    this.#enterLater("dataOut");
  }
}
