// Pictures of ours and of the BBC in one form, so that they can be compared pixel by pixel: width,
// height, and a physical colour (0 to 7) a pixel.

import { readFileSync } from "node:fs";

/** Red, green and blue, each lit or dark, as a physical colour. */
const colourOf = (red, green, blue) => (red ? 1 : 0) | (green ? 2 : 0) | (blue ? 4 : 0);

/** A Windows bitmap of 24 bits a pixel. */
export function readBitmap(path) {
  const file = readFileSync(path);
  const [start, width, height] = [10, 18, 22].map((at) => file.readUInt32LE(at));
  if (file.toString("latin1", 0, 2) !== "BM" || file.readUInt16LE(28) !== 24) throw new Error(`${path} is no such bitmap`);
  const stride = (width * 3 + 3) & ~3;
  const pixels = new Uint8Array(width * height);
  for (let y = 0; y < height; y++)
    for (let x = 0; x < width; x++) {
      const at = start + (height - 1 - y) * stride + x * 3;
      pixels[y * width + x] = colourOf(file[at + 2] > 127, file[at + 1] > 127, file[at] > 127);
    }
  return { width, height, pixels };
}

/** Where the picture proper begins on the monitor, in the rows and columns of `toRgba`. */
const kTeletextPlace = { left: 136, top: 52 };

/**
 * A MODE 7 screen of 25 rows as the chip's own 12 by 20 pixels a cell. The monitor shows a cell on
 * 16 columns, so three of the chip's pixels spread over four: the first and the last of the three
 * have a column to themselves, and of the second two thirds are in the column next to the first.
 */
export function teletextScreen(bbc) {
  const { width: line, rgba } = bbc.screen.toRgba();
  const [width, height] = [480, 500];
  const pixels = new Uint8Array(width * height);
  const lit = (x, y, channel, least) => rgba[(y * line + x) * 4 + channel] >= least;
  for (let y = 0; y < height; y++)
    for (let x = 0; x < width; x++) {
      const third = x % 3;
      const column = kTeletextPlace.left + Math.floor(x / 3) * 4 + [0, 1, 3][third];
      const channels = [0, 1, 2].map((c) => lit(column, y + kTeletextPlace.top, c, third === 1 ? 0xc0 : 0x80));
      pixels[y * width + x] = colourOf(...channels);
    }
  return { width, height, pixels };
}

/** A cell of a teletext picture: 20 lines of 12 digits. */
export function cellOf(picture, column, row) {
  return Array.from({ length: 20 }, (_, y) => {
    const at = (row * 20 + y) * picture.width + column * 12;
    return picture.pixels.subarray(at, at + 12).join("");
  });
}

/** A screen of MODE 0, 1, 2, 4 or 5: 640 by 512, as it stands inside the monitor's borders. */
export function graphicsScreen(bbc) {
  const { width: line, rgba } = bbc.screen.toRgba();
  const [width, height, left, top] = [640, 512, 120, 52];
  const pixels = new Uint8Array(width * height);
  for (let y = 0; y < height; y++)
    for (let x = 0; x < width; x++) {
      const at = ((y + top) * line + x + left) * 4;
      pixels[y * width + x] = colourOf(rgba[at] > 127, rgba[at + 1] > 127, rgba[at + 2] > 127);
    }
  return { width, height, pixels };
}
