// The PC's end of the transfer protocol, written from the bytes on the wire alone, so that it does
// not share a mistake with the program that users run.

import { kSectorSize } from "./DiscImages.js";

const kEscape = 27;
const kSilence = 0.1; // seconds that end a reply
export const kAcknowledge = "-----BBC-----PC-----";
export const kErrorToken = "-----BBCerror1-----PC-----";

/** CRC-16, polynomial &00AF, most significant bit first, from 0. */
export function crcOf(bytes, crc = 0) {
  for (const byte of bytes) {
    crc ^= byte << 8;
    for (let bit = 0; bit < 8; bit++) crc = crc & 0x8000 ? ((crc << 1) ^ 0xaf) & 0xffff : (crc << 1) & 0xffff;
  }
  return crc;
}

/** Sector data as it goes over the wire, end mark included. */
export function compress(data) {
  const out = [];
  for (let i = 0; i < data.length; ) {
    let run = 1;
    while (run < 255 && data[i + run] === data[i]) run++;
    if (run >= 4) out.push(kEscape, 0, run, data[i]);
    else for (let k = 0; k < run; k++) out.push(...(data[i] === kEscape ? [kEscape, 1] : [data[i]]));
    i += run;
  }
  out.push(kEscape, 3);
  return Uint8Array.from(out);
}

export class ProtocolClient {
  constructor(line) {
    this.line = line;
    this.wireBytes = 0; // of the last stream received
  }

  /** Sends a text, with no wait. */
  send(text) {
    this.line.send(text);
  }

  /** One burst as a string; empty if nothing comes within `seconds`. */
  reply(seconds = 10) {
    let byte = this.line.readByte(seconds);
    let text = "";
    for (; byte >= 0; byte = this.line.readByte(kSilence)) text += String.fromCharCode(byte);
    return text;
  }

  ask(command, seconds = 10) {
    this.send(command);
    return this.reply(seconds);
  }

  /** Addresses the server at 1200 baud and goes on at `speed`; gives its reply. */
  connect(speed = 19200) {
    this.line.pcSpeed = 1200;
    this.line.sendAndWait(`S${speed}\r`);
    this.line.machine.run(0.01); // the last byte's time on the wire
    this.line.pcSpeed = speed;
    return this.reply();
  }

  isAcknowledge(reply) {
    return reply === `${kAcknowledge}\r` || reply === `${kAcknowledge}\n\r`;
  }

  bufferSize() {
    return Number.parseInt(this.ask("B\r"), 10);
  }

  /** Output of a star command, without the acknowledge; throws with the BBC's words if it failed. */
  star(command, seconds = 10) {
    const reply = this.ask(`*${command}\r`, seconds);
    if (reply === `${kErrorToken}\r` || reply === `${kErrorToken}\n\r`) throw new Error(this.ask(kErrorToken));
    const end = reply.indexOf(kAcknowledge);
    if (end < 0) throw new Error(`no acknowledge after *${command}: ${JSON.stringify(reply)}`);
    return reply.slice(0, end);
  }

  /** Selects ADFS and mounts the drive. */
  mount(drive) {
    this.star("FADFS");
    this.star(`MOUNT ${drive}`);
  }

  /** One read exchange: { status, data }, status -1 for success and otherwise as the failures are numbered. */
  read(drive, start, count) {
    this.send(`A${drive}\r${start}\r${count}\r`);
    const stream = this.#receiveStream(count * kSectorSize);
    if (stream.status !== -1) return stream;
    const reply = Number.parseInt(this.reply(), 10);
    return { status: reply === stream.crc ? -1 : 5, data: stream.data };
  }

  #receiveStream(length) {
    const data = new Uint8Array(length);
    let at = 0;
    let crc = 0;
    this.wireBytes = 0;
    const next = () => {
      const byte = this.line.readByte(30);
      if (byte < 0) throw new RangeError("time-out");
      crc = crcOf([byte], crc);
      this.wireBytes++;
      return byte;
    };
    try {
      for (;;) {
        const byte = next();
        if (byte !== kEscape) data[at++] = byte;
        else {
          const code = next();
          if (code === 1) data[at++] = kEscape;
          else if (code === 3) return { status: at === length ? -1 : 4, data, crc };
          else if (code === 2) return { status: 1 };
          else if (code !== 0) return { status: 3 };
          else {
            const run = next();
            data.fill(next(), at, at + run);
            at += run;
          }
        }
      }
    } catch (error) {
      if (error instanceof RangeError) return { status: 0 };
      throw error;
    }
  }

  /** One write exchange; "ok", "failed" (the BBC could not write) or "mismatch". */
  write(drive, start, data) {
    if (!this.isAcknowledge(this.ask(`a${drive}\r${start}\r${data.length / kSectorSize}\r`))) return "refused";
    const stream = compress(data);
    this.line.sendAndWait(stream, 120);
    const reply = this.reply();
    if (reply.startsWith("\x1b\x02")) return "failed";
    return Number.parseInt(reply, 10) === crcOf(stream) ? "ok" : "mismatch";
  }

  /** The checksum of sectors on the disc, or null if the BBC could not read them. */
  checksum(drive, start, count) {
    const reply = this.ask(`c${drive}\r${start}\r${count}\r`);
    return reply.startsWith("\x1b\x02") ? null : Number.parseInt(reply, 10);
  }

  /** What the PC does after a failure: silence for two seconds, and half a second with the port closed. */
  resetLink() {
    while (this.line.readByte(2) >= 0);
    this.line.machine.run(0.5);
  }

  /** Gives up a running exchange. */
  abandon() {
    this.send("\x1b\x02");
    this.resetLink();
  }

  /** Tells the server that the PC is done; from then on it listens at 1200 baud. */
  quit() {
    this.line.sendAndWait("Q");
    this.line.machine.run(3);
    this.line.pcSpeed = 1200;
  }
}
