// A CF card for the emulated BBC: the 8-bit IDE interface on the 1 MHz bus over a raw card file. Of
// each 16-bit word of a block the BBC sees the low byte only; the high byte isn't connected, so what
// the BBC writes puts &FF there.
//
// &FC40 data, &FC41 error, &FC42 count of blocks, &FC43 sector from 1 on, &FC44 and &FC45 cylinder,
// &FC46 head and drive, &FC47 status when read and command when written.

import { DriveFile } from "./DriveFile.js";

const kBlockSize = 512;
const kUnconnected = 0xff;
const kReady = 0x50; // drive ready, seek done
const kDataRequest = 0x08;
const kError = 0x01;
const kSecondDrive = 0x10; // of the head's register
const kErrorCodes = { idNotFound: 0x10, aborted: 0x04 };

export class IdeCard {
  /** path: a file that holds a raw card. What is written behind its end makes it longer. */
  constructor(path) {
    this.file = new DriveFile(path);
    this.commands = []; // { command, block } of each command, in order
  }

  #registers = new Uint8Array(8);
  #sectors = 64; // a track, and
  #heads = 4; // a cylinder, as the last command &91 said
  #status = kReady;
  #error = 0;
  #buffer = null; // of the block that is under way
  #position = 0;
  #offset = -1; // where the buffer goes to, if it is being written

  close() {
    this.file.close();
  }

  /** Another card in the interface; the BBC has to `*MOUNT` it. */
  change(path) {
    this.file.close();
    this.file = new DriveFile(path);
  }

  read(register) {
    if (register === 0) return this.#readWord();
    if (register === 1) return this.#error;
    if (register === 7) return this.#status;
    return this.#registers[register];
  }

  write(register, byte) {
    if (register === 0) return this.#writeWord(byte);
    if (register === 7) return this.#run(byte);
    this.#registers[register] = byte;
  }

  #readWord() {
    if (!(this.#status & kDataRequest) || this.#offset >= 0) return kUnconnected;
    const byte = this.#buffer[this.#position];
    this.#advance();
    return byte;
  }

  #writeWord(byte) {
    if (!(this.#status & kDataRequest) || this.#offset < 0) return;
    this.#buffer[this.#position] = byte;
    this.#buffer[this.#position + 1] = kUnconnected;
    this.#advance();
  }

  #advance() {
    this.#position += 2;
    if (this.#position < kBlockSize) return;
    this.#status &= ~kDataRequest;
    if (this.#offset >= 0) this.file.write(this.#offset, this.#buffer);
  }

  #block() {
    const [, , , sector, low, high, head] = this.#registers;
    return ((high * 256 + low) * this.#heads + (head & 0x0f)) * this.#sectors + sector - 1;
  }

  #run(command) {
    const block = this.#block();
    this.commands.push({ command, block });
    this.#error = 0;
    this.#status = kReady;
    if (command === 0x91) {
      this.#sectors = this.#registers[2];
      this.#heads = (this.#registers[6] & 0x0f) + 1;
    } else if (command !== 0x20 && command !== 0x30) {
      this.#fail(kErrorCodes.aborted);
    } else if (this.#registers[6] & kSecondDrive || block < 0) {
      this.#fail(kErrorCodes.idNotFound);
    } else {
      this.#transfer(block * kBlockSize, command === 0x30);
    }
  }

  #transfer(offset, writes) {
    this.#buffer = writes ? new Uint8Array(kBlockSize) : this.file.read(offset, kBlockSize);
    this.#position = 0;
    this.#offset = writes ? offset : -1;
    this.#status = kReady | kDataRequest;
  }

  // No data request follows. The machine waits for one all the same, for ever.
  #fail(code) {
    this.#error = code;
    this.#status = kReady | kError;
  }
}
