// A cable from the emulated BBC to a pseudo-terminal, so that a program on this machine can talk to it
// through what it takes for a serial port. Such a terminal has no modem lines and no pace of its own.

import { spawn } from "node:child_process";
import { setImmediate, setTimeout } from "node:timers/promises";

const kSlice = 0.005; // seconds of the BBC's time between two looks at the terminal

export class PtyCable {
  /** Starts `bridge` (PtyBridge) and plugs it into `line`; `path` is then the terminal to open. */
  static async plugIn(line, bridge) {
    const cable = new PtyCable(line, spawn(bridge, { stdio: ["pipe", "pipe", "inherit"] }));
    await cable.#readPath();
    return cable;
  }

  constructor(line, child) {
    line.checkSpeeds = false; // a pseudo-terminal doesn't tell its speed
    this.line = line;
    this.child = child;
    this.path = "";
    this.bytesToPc = 0;
    this.bytesToBbc = 0;
    this.faults = null; // LineFaults in both directions
    this.onDelivery = null; // called after each burst that the PC got
    this.#waiting = [];
    this.#deadUntil = 0;
  }

  #waiting; // bytes for the BBC while the line is dead
  #deadUntil; // by performance.now()

  #readPath() {
    return new Promise((resolve, reject) => {
      let head = Buffer.alloc(0);
      this.child.once("error", reject);
      this.child.stdout.on("data", (bytes) => {
        if (this.path) return this.#take(bytes);
        head = Buffer.concat([head, bytes]);
        const end = head.indexOf("\n");
        if (end < 0) return;
        this.path = head.subarray(0, end).toString();
        this.#take(head.subarray(end + 1));
        resolve();
      });
    });
  }

  #take(bytes) {
    this.bytesToBbc += bytes.length;
    this.#waiting.push(...this.#spoilt(bytes));
    this.#sendOn();
  }

  #spoilt(bytes) {
    if (!this.faults) return bytes;
    const passed = this.faults.pass(bytes);
    const pause = this.faults.takePause();
    if (pause > 0) this.#deadUntil = performance.now() + pause * 1000;
    return passed;
  }

  #sendOn() {
    if (performance.now() >= this.#deadUntil) this.line.send(this.#waiting.splice(0));
  }

  // Bursts go out whole: the PC takes 100 ms of its own time without a byte for the end of a reply,
  // and this process may be held up for that long at any moment.
  #deliver() {
    const { line } = this;
    this.#sendOn();
    if (performance.now() < this.#deadUntil) return;
    if (!line.fromBbc.length || line.machine.seconds < line.lastByteAt + 2 * kSlice) return;
    this.bytesToPc += line.fromBbc.length;
    this.child.stdin.write(Uint8Array.from(this.#spoilt(line.fromBbc.splice(0))));
    this.onDelivery?.();
  }

  /**
   * Lets the BBC and the world run until `promise` is settled, and gives its value. While the BBC
   * works it runs as fast as it can; while it listens to a silent line its time passes like ours,
   * or its time-outs would strike before the PC has drawn breath.
   */
  async during(promise) {
    const { line } = this;
    let settled = false;
    const done = promise.finally(() => (settled = true));
    done.catch(() => {});
    for (let lastLook = performance.now(); !settled; ) {
      const listening = line.bbcReady && !line.toBbc.length && !line.fromBbc.length;
      line.machine.run(kSlice);
      this.#deliver();
      if (listening) await setTimeout(Math.max(0, kSlice * 1000 - (performance.now() - lastLook)));
      else await setImmediate();
      lastLook = performance.now();
    }
    return done;
  }

  /**
   * Runs a program to its end, with the BBC alive at the other end of the cable:
   * { status, stdout, stderr }. `whenStarted` gets the child process, to interrupt it.
   */
  run(program, args, whenStarted = () => {}) {
    return this.during(
      new Promise((resolve, reject) => {
        const child = spawn(program, args, { stdio: ["ignore", "pipe", "pipe"] });
        const output = { stdout: "", stderr: "" };
        for (const name of Object.keys(output))
          child[name].on("data", (bytes) => (output[name] += bytes.toString("latin1")));
        child.once("error", reject);
        child.once("close", (status) => resolve({ status, ...output }));
        whenStarted(child);
      }),
    );
  }

  /** Runs until the BBC has taken what a program left on the line: there is no pace on our side of it. */
  settle() {
    const untilEmpty = async () => {
      do await setTimeout(200);
      while (this.line.toBbc.length);
    };
    return this.during(untilEmpty());
  }

  unplug() {
    this.child.stdin.end();
  }
}
