// The cable between the BBC's RS423 socket and a PC, as two queues of bytes. It keeps to the BBC's
// real pace: ten bit times a byte in both directions at the speed that the BBC has set, RTS honoured
// with as much overshoot as a PC's port may have, and garbage where the two speeds disagree.

// By the serial ULA's three rate bits, which the chip takes in reversed order of weight. The emulator
// counts them up in order, which makes 1200 baud run at 9600, so the line sets the pace itself.
const kRates = [19200, 1200, 4800, 150, 9600, 300, 2400, 75];
const kCyclesPerSecond = 2_000_000;
const kBitsPerByte = 10;
const kFramingError = 0x10; // of the 6850's status

export class SerialLine {
  /**
   * overshoot: how many bytes the PC still sends after the BBC has dropped RTS, as the FIFOs of
   * real ports do. checkSpeeds false lets every byte through unharmed.
   */
  constructor(machine, { overshoot = 0, checkSpeeds = true } = {}) {
    this.machine = machine;
    this.overshoot = overshoot;
    this.checkSpeeds = checkSpeeds;
    this.pcSpeed = 1200;
    this.clearToSend = true; // the PC's RTS as the BBC sees it on its CTS
    this.toBbc = [];
    this.fromBbc = [];
    this.lastByteAt = -Infinity; // when the BBC's last byte came in, in the BBC's seconds
    this.overruns = 0;
    this.#shiftedOutAt = 0;
    this.#attach();
  }

  #shiftedOutAt;
  #sentWithoutRts = 0;

  get acia() {
    return this.machine.cpu.acia;
  }

  /** The speeds that the BBC has set, in baud. */
  get bbcTransmitSpeed() {
    return kRates[this.machine.cpu.serial.transmitRate];
  }

  get bbcReceiveSpeed() {
    return kRates[this.machine.cpu.serial.receiveRate];
  }

  /** True while the BBC says that it can take bytes. */
  get bbcReady() {
    return this.acia.rts();
  }

  #attach() {
    const acia = this.acia;
    const receive = acia.receive.bind(acia);
    acia.receive = (byte) => {
      if (acia.sr & 1) this.overruns++;
      receive(byte);
    };
    const setPace = acia.setSerialReceive.bind(acia);
    acia.setSerialReceive = () => setPace(this.bbcReceiveSpeed);
    acia.setSerialReceive();
    acia.setRs423Handler({
      onTransmit: (byte) => this.#onTransmit(byte),
      tryReceive: (rts) => this.#nextForBbc(rts),
    });
  }

  /** The PC drops or raises its RTS line, which the BBC sees as CTS. */
  setClearToSend(on) {
    this.clearToSend = on;
    if (on) this.acia.sr &= ~0x08;
    else this.acia.sr |= 0x08;
  }

  // The transmitter is a data register and a shift register: the next byte may be written as soon
  // as the last one has moved to the shift register.
  #onTransmit(byte) {
    const byteCycles = (kBitsPerByte * kCyclesPerSecond) / this.bbcTransmitSpeed;
    const now = this.machine.seconds * kCyclesPerSecond;
    const startsAt = Math.max(now, this.#shiftedOutAt);
    this.#shiftedOutAt = startsAt + byteCycles;
    this.acia.txCompleteTask.reschedule(Math.max(Math.round(startsAt - now), 32));
    const spoilt = this.checkSpeeds && this.bbcTransmitSpeed !== this.pcSpeed;
    this.fromBbc.push(spoilt ? byte ^ 0xa5 : byte);
    this.lastByteAt = this.#shiftedOutAt / kCyclesPerSecond;
  }

  #nextForBbc(rts) {
    this.acia.sr &= ~kFramingError;
    if (!this.toBbc.length) return -1;
    if (rts) this.#sentWithoutRts = 0;
    else if (++this.#sentWithoutRts > this.overshoot) return -1;
    const ratio = this.bbcReceiveSpeed / this.pcSpeed;
    if (!this.checkSpeeds || ratio === 1) return this.toBbc.shift();
    return ratio > 1 ? this.#tooSlowByte(ratio) : this.#tooFastBytes(1 / ratio);
  }

  // A byte sent more slowly than the BBC listens: its long low levels look like breaks.
  #tooSlowByte(ratio) {
    this.slowPart = (this.slowPart ?? 0) + 1;
    if (this.slowPart >= ratio) {
      this.slowPart = 0;
      this.toBbc.shift();
    }
    if (this.slowPart % 2 === 0) return -1;
    this.acia.sr |= kFramingError;
    return 0;
  }

  // Bytes sent faster than the BBC listens run into one another.
  #tooFastBytes(ratio) {
    const some = this.toBbc.splice(0, Math.ceil(ratio));
    return some.reduce((sum, byte) => (sum * 7 + byte) & 255, 0x80) | 0x80;
  }

  /** Queues bytes (a string is one byte a character) for the BBC. */
  send(bytes) {
    for (const byte of typeof bytes === "string" ? Buffer.from(bytes, "latin1") : bytes) this.toBbc.push(byte);
  }

  /** Queues bytes and runs the machine until the BBC has taken them all. */
  sendAndWait(bytes, seconds = 60) {
    this.send(bytes);
    this.machine.runUntil(() => !this.toBbc.length, seconds, "taking of the bytes on the line");
  }

  /** Takes one byte from the BBC, running the machine for at most `seconds`; -1 if none came. */
  readByte(seconds) {
    const end = this.machine.seconds + seconds;
    while (!this.fromBbc.length) {
      if (this.machine.seconds >= end) return -1;
      this.machine.run(0.001);
    }
    return this.fromBbc.shift();
  }

  /** Throws away all that waits on the line in both directions. */
  clear() {
    this.toBbc.length = 0;
    this.fromBbc.length = 0;
  }
}
