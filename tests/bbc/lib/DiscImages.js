// The three layouts of an ADFS floppy: flat (sectors in ADFS's own order, first side then second),
// .adl (the two sides track by track in turn), and the tracks of the emulated disc.

export const kSectorSize = 256;
export const kSectorsPerTrack = 16;
export const kTrackSize = kSectorSize * kSectorsPerTrack;
export const kTracksPerSide = 80;

/** Flat to .adl: the first side's tracks go to the even places, the second side's to the odd ones. */
export function interleave(flat) {
  const adl = new Uint8Array(flat.length <= kTrackSize * kTracksPerSide ? flat.length * 2 : flat.length);
  for (let track = 0; track * kTrackSize < flat.length; track++)
    adl.set(flat.subarray(track * kTrackSize, (track + 1) * kTrackSize), placeInAdl(track) * kTrackSize);
  return adl;
}

/** .adl to flat. */
export function deinterleave(adl) {
  const flat = new Uint8Array(adl.length);
  for (let track = 0; track * kTrackSize < adl.length; track++) {
    const place = placeInAdl(track) * kTrackSize;
    flat.set(adl.subarray(place, place + kTrackSize), track * kTrackSize);
  }
  return flat;
}

function placeInAdl(track) {
  return Math.floor(track / kTracksPerSide) + (track % kTracksPerSide) * 2;
}

/** One track's sixteen sectors; throws if one is missing or damaged. */
export function readTrack(disc, upperSide, cylinder) {
  const bytes = new Uint8Array(kTrackSize);
  const found = new Set();
  for (const sector of disc.getTrack(upperSide, cylinder).findSectors()) {
    const where = `side ${upperSide ? 1 : 0} track ${cylinder} sector ${sector.sectorNumber}`;
    if (sector.hasHeaderCrcError || sector.hasDataCrcError) throw new Error(`wrong check bytes: ${where}`);
    if (sector.sectorNumber >= kSectorsPerTrack || found.has(sector.sectorNumber)) throw new Error(`stray sector: ${where}`);
    if (sector.header[0] !== cylinder || sector.byteLength !== kSectorSize) throw new Error(`odd header: ${where}`);
    found.add(sector.sectorNumber);
    bytes.set(sector.sectorData, sector.sectorNumber * kSectorSize);
  }
  if (found.size !== kSectorsPerTrack)
    throw new Error(`side ${upperSide ? 1 : 0} track ${cylinder}: ${found.size} sectors`);
  return bytes;
}

/** Sectors of a disc in ADFS's order; all of them, as many as its own map says, unless told. */
export function readTracks(disc, start = 0, count = sizeByMap(disc) - start) {
  const firstTrack = Math.floor(start / kSectorsPerTrack);
  const endTrack = Math.ceil((start + count) / kSectorsPerTrack);
  const tracks = new Uint8Array((endTrack - firstTrack) * kTrackSize);
  for (let track = firstTrack; track < endTrack; track++)
    tracks.set(readTrack(disc, track >= kTracksPerSide, track % kTracksPerSide), (track - firstTrack) * kTrackSize);
  const skipped = (start % kSectorsPerTrack) * kSectorSize;
  return tracks.slice(skipped, skipped + count * kSectorSize);
}

function sizeByMap(disc) {
  const map = readTrack(disc, false, 0);
  return map[252] | (map[253] << 8) | (map[254] << 16);
}

/** The checksum of a map sector: add from byte 254 down with the carry; the last carry is dropped. */
export function mapChecksum(sector) {
  let sum = 255;
  let carry = 0;
  for (let i = 254; i >= 0; i--) {
    const total = sum + sector[i] + carry;
    sum = total & 255;
    carry = total >> 8;
  }
  return sum;
}

/** An empty ADFS disc of 640, 1280 or 2560 sectors, flat. */
export function emptyDisc(sectors, title = "Disc") {
  const disc = new Uint8Array(sectors * kSectorSize);
  const put24 = (offset, value) => disc.set([value & 255, (value >> 8) & 255, value >> 16], offset);
  put24(0, 7); // one free run, behind map and root
  put24(252, sectors);
  put24(256, sectors - 7);
  disc[510] = 3;
  disc[255] = mapChecksum(disc.subarray(0, 256));
  disc[511] = mapChecksum(disc.subarray(256, 512));
  const root = disc.subarray(512, 512 + 1280);
  const putText = (offset, text) => [...text].forEach((c, i) => (root[offset + i] = c.charCodeAt(0)));
  putText(1, "Hugo");
  putText(1228, "$\r");
  root[1238] = 2; // the root is its own parent
  putText(1241, `${title}\r`);
  putText(1275, "Hugo");
  return disc;
}

/** Makes a sector unreadable: some pulses are turned on the track, so its check bytes are wrong. */
export function damageSector(disc, sector) {
  const logicalTrack = Math.floor(sector / kSectorsPerTrack);
  const track = disc.getTrack(logicalTrack >= kTracksPerSide, logicalTrack % kTracksPerSide);
  const target = track.findSectors().find((s) => s.sectorNumber === sector % kSectorsPerTrack);
  const bit = target.dataPosBitOffset + 16 * 100;
  track.pulses2Us[bit >>> 5] ^= 0x33333333; // clock and data pulses alternate: some of both
}
