// The picture on the BBC's monitor, for tests that compare what we draw with what the machine shows.

import { Video } from "jsbeeb/src/video.js";

const kWidth = 1024;
const kHeight = 625;

export class ScreenGrabber {
  constructor(model) {
    const drawn = new Uint32Array(kWidth * kHeight);
    this.frame = new Uint32Array(kWidth * kHeight); // the last complete frame, 0xAABBGGRR
    this.video = new Video(model.isMaster, drawn, () => this.frame.set(drawn));
  }

  /** The area inside the borders, as { width, height, rgba }. */
  toRgba() {
    const { leftBorder, topBorder, rightBorder, bottomBorder } = this.video;
    const width = kWidth - leftBorder - rightBorder;
    const height = kHeight - topBorder - bottomBorder;
    const rgba = new Uint8Array(width * height * 4);
    const view = new DataView(rgba.buffer);
    for (let y = 0; y < height; y++)
      for (let x = 0; x < width; x++)
        view.setUint32((y * width + x) * 4, this.frame[(y + topBorder) * kWidth + x + leftBorder] | 0, true);
    return { width, height, rgba };
  }

  /** The same as a binary PPM file. */
  toPpm() {
    const { width, height, rgba } = this.toRgba();
    const rgb = rgba.filter((_, i) => i % 4 !== 3);
    return Buffer.concat([Buffer.from(`P6\n${width} ${height}\n255\n`), rgb]);
  }
}
