// The medium of an emulated drive: a file of the host, read and written in place, so that a disc of
// half a gigabyte costs nothing but the blocks in use.

import { closeSync, fstatSync, openSync, readSync, writeSync } from "node:fs";

export class DriveFile {
  constructor(path) {
    this.path = path;
    this.#file = openSync(path, "r+");
  }

  #file;

  get length() {
    return fstatSync(this.#file).size;
  }

  /** `count` bytes from `offset`; what lies behind the file's end reads as zeros. */
  read(offset, count) {
    const bytes = new Uint8Array(count);
    readSync(this.#file, bytes, 0, count, offset);
    return bytes;
  }

  write(offset, bytes) {
    writeSync(this.#file, bytes, 0, bytes.length, offset);
  }

  close() {
    closeSync(this.#file);
  }
}
