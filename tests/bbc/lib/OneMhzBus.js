// Plugs a device into the BBC's 1 MHz bus: eight addresses from &FC40 on, in front of whatever the
// emulator has there. The device answers `read(register)` and `write(register, byte)`.

const kBase = 0xfc40;
const kAddresses = 8;
const kTestBit = 0x40; // of a Master's ACCCON: reads of all devices give the MOS instead

export function plugIntoBus(cpu, device) {
  const readDevice = cpu.readDevice.bind(cpu);
  const writeDevice = cpu.writeDevice.bind(cpu);
  const registerAt = (address) => {
    const register = (address & 0xffff) - kBase;
    return register >= 0 && register < kAddresses ? register : -1;
  };
  cpu.readDevice = (address) => {
    const register = registerAt(address);
    const isHidden = cpu.model.isMaster && cpu.acccon & kTestBit;
    return register < 0 || isHidden ? readDevice(address) : device.read(register);
  };
  cpu.writeDevice = (address, byte) => {
    const register = registerAt(address);
    if (register < 0) writeDevice(address, byte);
    else device.write(register, byte & 0xff);
  };
}
