// The machines that the tests boot. What the emulator's package has no model for, but the ROMs, is
// put together here.

import { readFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";
import { defaultCmos } from "jsbeeb/src/cmos.js";
import { allModels, findModel } from "jsbeeb/src/models.js";

export const kPackageFolder = dirname(dirname(fileURLToPath(import.meta.resolve("jsbeeb/src/utils.js"))));

/** The machines on which everything is tested, by the name used in the tests. */
export const kMachines = {
  master: { model: "MasterADFS", title: "Master" },
  modelB: { model: "B1770A", title: "Model B" },
};

/** These and the others that boot: on them discs are tested. */
export const kAllMachines = {
  ...kMachines,
  modelBPlus: {
    title: "Model B Plus",
    model: "BPlusAdfs",
    like: "B1770A",
    roms: ["bpos.rom", "BASIC.ROM", "bp/zADFS.ROM", "bp/dfs.rom"],
    shadow: true,
  },
  compact: {
    title: "Master Compact",
    model: "CompactAdfs",
    like: "MasterADFS",
    roms: ["compact/os51.rom", "compact/utils.rom", "compact/basic486.rom", "compact/adfs210.rom"],
  },
};

/** "TheModelB" and so on: how the name of a test begins. */
export function nameOf(kind) {
  return `The${kAllMachines[kind].title.replaceAll(" ", "")}`;
}

/** The model of a machine, as the emulator's package wants it named. */
export function modelOf(kind) {
  const { model, like, roms } = kAllMachines[kind];
  if (!findModel(model)) {
    const base = findModel(like);
    const parts = { name: model, synonyms: [], os: roms, cpuModel: base._cpuModel, fdc: base.Fdc };
    allModels.push(new base.constructor({ ...base, ...parts }));
  }
  return model;
}

const kFileSystem = 19; // the byte of the Master's CMOS memory whose low half names it
const kAdfs = 13;
const kFirstDrive = 25; // the byte whose top bit says that drive 0 is a hard disc
const kHardDisc = 0x80;

/** A Master's CMOS memory, its own copy: all machines of the emulator share one otherwise. */
export function cmosOf({ hardDisc }) {
  const cmos = [...defaultCmos];
  cmos[kFileSystem] = (cmos[kFileSystem] & 0xf0) | kAdfs;
  cmos[kFirstDrive] = hardDisc ? cmos[kFirstDrive] | kHardDisc : cmos[kFirstDrive] & ~kHardDisc;
  return cmos;
}

const kRomSize = 0x4000;

/** Puts ADFS 1.53, whose driver is for an IDE interface, where a Master has its ADFS. */
export function putIdeAdfsInto(cpu) {
  const rom = readFileSync(join(kPackageFolder, "public/roms/ADFS1-53.rom"));
  cpu.ramRomOs.set(rom, cpu.romOffset + kAdfs * kRomSize);
}

const kShadowSelect = 0xfe34;
const kShadowOn = 0x80;
const kScreenPages = { first: 0x30, end: 0x80 };
const kVduDrivers = (1 << 0xc) | (1 << 0xd); // 4K blocks of the MOS whose code sees the shadow memory
const kShadowOffset = 0x8000; // of the emulator's memory, as with a Master

/**
 * The shadow memory of a Model B+: while it is on, the screen lies there, and only the VDU drivers
 * see it in the place of the memory from &3000 to &7FFF. To be called after the machine's reset.
 */
export function giveShadowMemoryTo(cpu) {
  cpu.memStatOffsetByIFetchBank = kVduDrivers;
  const writeDevice = cpu.writeDevice.bind(cpu);
  cpu.writeDevice = (address, byte) => {
    if ((address & 0xffff) !== kShadowSelect) return writeDevice(address, byte);
    const offset = byte & kShadowOn ? kShadowOffset : 0;
    for (let page = kScreenPages.first; page < kScreenPages.end; page++) cpu.memLook[256 + page] = offset;
    cpu.videoDisplayPage = offset;
  };
}
