// Star commands without a keyboard: a BASIC program on the BBC waits for a line in its memory, gives
// it to the operating system and says when it is done. Pressing keys takes forty times as long.

const kLine = 0x900; // a page that nothing uses while the serial line is quiet
const kState = 0x70; // one of the bytes that are the user's
const kReady = 0;
const kGiven = 1;
const kEnd = 2;

const kProgram = [
  "10ON ERROR REPORT:PRINT", // and goes on at the next line
  `20?&${kState.toString(16)}=${kReady}`,
  `30REPEAT UNTIL?&${kState.toString(16)}`,
  `40IF?&${kState.toString(16)}=${kEnd} END`,
  `50OSCLI$&${kLine.toString(16)}`,
  "60GOTO 20",
];

export class CommandBox {
  constructor(bbc) {
    this.bbc = bbc;
    bbc.enterCommand("NEW");
    for (const line of kProgram) bbc.enterCommand(line);
    this.restart();
  }

  /** Goes to work again after `leave`. */
  restart() {
    this.bbc.poke(kState, [kEnd]);
    this.bbc.type("RUN");
    this.#waitUntilReady(10, "RUN");
    this.bbc.text();
  }

  /** Ends the program: the keyboard is BASIC's again. */
  leave() {
    const { bbc } = this;
    bbc.poke(kState, [kEnd]);
    bbc.runUntil(() => bbc.seen.endsWith(">"), 5, "BASIC's prompt");
    bbc.text();
  }

  #waitUntilReady(seconds, line) {
    const { bbc } = this;
    bbc.runUntil(() => bbc.cpu.ramRomOs[kState] === kReady, seconds, `end of ${line}`, 0.0005);
  }

  /** What the BBC prints for a command such as "CAT", its own error messages included. */
  run(line, seconds = 60) {
    const { bbc } = this;
    bbc.text();
    bbc.poke(kLine, Buffer.from(`${line}\r`, "latin1"));
    bbc.poke(kState, [kGiven]);
    this.#waitUntilReady(seconds, `*${line}`);
    return bbc.text();
  }

  /** The same for a command that prints nothing if all is well: throws what it has printed. */
  do(line, seconds = 60) {
    const printed = this.run(line, seconds);
    if (!/^\s*$/.test(printed)) throw new Error(`*${line}: ${JSON.stringify(printed)}`);
  }
}
