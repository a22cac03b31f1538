// What ought to be on a disc: directories and files by their paths. Names are compared as ADFS does
// it, with bit 5 of the columns from &40 on set.

/** The form in which the BBC compares names and paths. */
export function folded(path) {
  return path.replace(/[@-\x7f]/g, (c) => String.fromCharCode(c.charCodeAt(0) | 0x20));
}

export const parentOf = (path) => path.slice(0, path.lastIndexOf("."));
export const nameIn = (path) => path.slice(path.lastIndexOf(".") + 1);

export class DiscModel {
  dirs = new Set(["$"]);
  files = new Map(); // path to bytes

  pathsIn(dir) {
    return [...this.dirs, ...this.files.keys()].filter((path) => path !== "$" && parentOf(path) === dir);
  }
  /** True if something of this name, in whatever case, is there already. */
  has(path) {
    const wanted = folded(path);
    return this.pathsIn(parentOf(path)).some((there) => folded(there) === wanted);
  }
  remove(path) {
    const isGone = (there) => there === path || there.startsWith(`${path}.`);
    for (const dir of [...this.dirs]) if (isGone(dir)) this.dirs.delete(dir);
    for (const file of [...this.files.keys()]) if (isGone(file)) this.files.delete(file);
  }
  rename(path, to) {
    const moved = (old) => (old === path || old.startsWith(`${path}.`) ? to + old.slice(path.length) : old);
    this.dirs = new Set([...this.dirs].map(moved));
    this.files = new Map([...this.files].map(([old, bytes]) => [moved(old), bytes]));
  }
}
