// An emulated BBC Micro with its own ROMs, driven from a test: boot it, type at it, put discs into
// its drives, look at its memory. Emulated time only passes inside `run`, `runUntil` and `type`,
// so a test never waits for a clock.

import * as fdc from "jsbeeb/src/fdc.js";
import { findModel } from "jsbeeb/src/models.js";
import { setNodeBasePath, keyCodes } from "jsbeeb/src/utils.js";
import { TestMachine } from "jsbeeb/tests/test-machine.js";
import { deinterleave, interleave, readTracks } from "./DiscImages.js";
import { IdeCard } from "./IdeCard.js";
import { cmosOf, giveShadowMemoryTo, kAllMachines, kMachines, kPackageFolder, modelOf, putIdeAdfsInto } from "./Machines.js";
import { plugIntoBus } from "./OneMhzBus.js";
import { ScreenGrabber } from "./Screen.js";
import { ScsiDisc } from "./ScsiDisc.js";

const kCyclesPerSecond = 2_000_000;
const kShadowable = 0x8000; // where the memory ends of which a screen can lie in a shadow
const kSliceCycles = 20_000; // 10 ms of the BBC's time: how finely `runUntil` looks

// The emulator reports its ROM loading on the console; a test report has no use for that.
function quietly(action) {
  const log = console.log;
  console.log = () => {};
  try {
    return action();
  } finally {
    console.log = log;
  }
}

export class BbcMachine {
  /**
   * A booted machine with ADFS as its filing system and its floppy drives empty.
   * kind: a name of kAllMachines. screen: also keep the picture, for `screen.toPpm()`.
   * hardDisc: the path of a .dat, which is then drive 0; the floppies are 4 and 5.
   * card: the path of a raw card; the machine, a Master, then has ADFS 1.53, and the card's
   * partitions are drives 0 and 1.
   */
  static async boot(kind, { screen = false, hardDisc = null, card = null } = {}) {
    const machine = new BbcMachine(kind, { screen, hardDisc, card });
    setNodeBasePath(kPackageFolder);
    const log = console.log;
    console.log = () => {};
    try {
      await machine.emulator.initialise();
    } finally {
      console.log = log;
    }
    if (card) putIdeAdfsInto(machine.cpu);
    if (kAllMachines[kind].shadow) giveShadowMemoryTo(machine.cpu);
    machine.#captureText();
    machine.runUntil(() => machine.seen.endsWith(">"), 20, "the BASIC prompt");
    machine.enterCommand("*FADFS");
    machine.text();
    return machine;
  }

  constructor(kind, { screen = false, hardDisc = null, card = null } = {}) {
    const model = modelOf(kind);
    this.kind = kind;
    this.title = kAllMachines[kind].title;
    this.screen = screen ? new ScreenGrabber(findModel(model)) : null;
    this.emulator = new TestMachine(model, this.screen ? { video: this.screen.video } : {});
    this.cpu = this.emulator.processor;
    this.cpu.cmos.store = cmosOf({ hardDisc: hardDisc || card });
    this.drive = null; // the ScsiDisc or IdeCard
    if (hardDisc) this.drive = new ScsiDisc(this.cpu, hardDisc);
    if (card) this.drive = new IdeCard(card);
    if (this.drive) plugIntoBus(this.cpu, this.drive);
    this.seen = ""; // every character printed since the last `text()`, one a byte
  }

  // Characters are caught where every program prints them: at the routine that WRCHV points to.
  #captureText() {
    const ram = this.cpu.ramRomOs;
    this.cpu.debugInstruction.add((address) => {
      if (address === (ram[0x20e] | (ram[0x20f] << 8))) this.seen += String.fromCharCode(this.cpu.a);
      return false;
    });
  }

  /** Seconds of the BBC's own time since it was switched on. */
  get seconds() {
    return this.cpu.cycleSeconds + this.cpu.currentCycles / kCyclesPerSecond;
  }

  /** Lets `seconds` of the BBC's time pass. */
  run(seconds) {
    quietly(() => {
      for (let left = Math.round(seconds * kCyclesPerSecond); left > 0; left -= kSliceCycles)
        this.cpu.execute(Math.min(left, kSliceCycles));
    });
  }

  /**
   * Runs until `condition()` holds, which is asked after each `slice` seconds; throws, with the
   * screen's last words, after `seconds`.
   */
  runUntil(condition, seconds, what = "a condition", slice = kSliceCycles / kCyclesPerSecond) {
    const end = this.seconds + seconds;
    while (!condition()) {
      if (this.seconds >= end)
        throw new Error(`${this.title}: no ${what} in ${seconds} s; last printed: ${JSON.stringify(this.seen.slice(-300))}`);
      this.run(slice);
    }
  }

  /** Runs until the machine has printed `words` (since the last `text()`). */
  runUntilPrinted(words, seconds = 30) {
    this.runUntil(() => this.seen.includes(words), seconds, `printing of ${JSON.stringify(words)}`);
  }

  /** What was printed since the last call, as bytes in a string; the record is emptied. */
  text() {
    const all = this.seen;
    this.seen = "";
    return all;
  }

  /** The same as lines: control characters dropped, a line for each CR. */
  lines() {
    return this.text()
      .replace(/[^\r\x20-\x7e]/g, "")
      .split("\r");
  }

  /** Presses the keys of `line` and Return. */
  type(line) {
    for (const character of `${line}\r`) {
      const { code, shift } = this.emulator._charToKey(character);
      this.press(code, { shift });
    }
  }

  /** One key, held for 40 ms and released for as long, as a quick typist does it. */
  press(code, { shift = false, ctrl = false } = {}) {
    const keyboard = this.cpu.sysvia;
    if (shift) keyboard.keyDown(keyCodes.SHIFT);
    if (ctrl) keyboard.keyDown(keyCodes.CTRL);
    keyboard.keyDown(code);
    this.run(0.04);
    keyboard.keyUp(code);
    if (shift) keyboard.keyUp(keyCodes.SHIFT);
    if (ctrl) keyboard.keyUp(keyCodes.CTRL);
    this.run(0.04);
  }

  /** The Escape key. */
  pressEscape() {
    this.press(keyCodes.ESCAPE);
  }

  /** Types a line at BASIC's prompt and runs until the prompt is back; gives what was printed between. */
  enterCommand(line, seconds = 60) {
    this.text();
    this.type(line);
    this.runUntil(() => /[\r\n\f]>$/.test(this.seen), seconds, `prompt after ${line}`);
    const all = this.text();
    return all.slice(all.indexOf("\r") + 1, -1);
  }

  /**
   * Puts a disc into a drive (0 or 1). `flat` holds the sectors in ADFS's order; sides is 2 for a
   * disc of 640K, 1 for the smaller ones. No bytes at all is a disc that was never formatted.
   */
  insertDisc(drive, flat, { sides = flat.length > 0x50000 ? 2 : 1, writeProtected = false } = {}) {
    const name = sides === 2 ? "disc.adl" : "disc.adf";
    const disc = fdc.discFor(this.cpu.fdc, name, sides === 2 ? interleave(flat) : flat);
    disc.isWriteable = !writeProtected;
    this.cpu.fdc.loadDisc(drive, disc);
    return disc;
  }

  /** Takes the disc out of a drive. */
  removeDisc(drive) {
    this.cpu.fdc.loadDisc(drive, undefined);
  }

  /** The `Disc` in a drive, tracks and pulses. */
  discIn(drive) {
    const disc = this.cpu.fdc.drives[drive]._disc;
    disc.flushWrites();
    return disc;
  }

  /**
   * What stands on the disc now, read from the pulses of its tracks: the sectors in ADFS's order.
   * Throws for a sector that is missing or whose check bytes are wrong.
   */
  readDisc(drive) {
    return readTracks(this.discIn(drive));
  }

  /** Only the sectors from `start` on, which is quicker. */
  readSectors(drive, start, count) {
    return readTracks(this.discIn(drive), start, count);
  }

  /** The whole disc in the order of an .adl file. */
  readDiscAsAdl(drive) {
    return interleave(this.readDisc(drive));
  }

  /** Bytes as a program sees them: below &8000 always the main memory, never a shadow screen. */
  peek(address, length) {
    return Uint8Array.from({ length }, (_, i) => this.#peekByte(address + i));
  }

  #peekByte(address) {
    return address < kShadowable ? this.cpu.ramRomOs[address] : this.emulator.readbyte(address);
  }

  poke(address, bytes) {
    bytes.forEach((byte, i) => {
      if (address + i < kShadowable) this.cpu.ramRomOs[address + i] = byte;
      else this.emulator.writebyte(address + i, byte);
    });
  }
}

export { deinterleave, interleave, kMachines };
