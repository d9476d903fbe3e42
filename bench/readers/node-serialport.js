// Reads scans with node's serialport and its delimiter parser: node-serialport.js PORT EVERY.
//
// Prints the steady clock's nanoseconds at each EVERY-th scan; "ready" before the first.
'use strict';

const { SerialPort, DelimiterParser } = require('serialport');

const port = new SerialPort({ path: process.argv[2], baudRate: 9600 }, (error) => {
  if (error) throw error;
  process.stdout.write('ready\n');
});
const every = Number(process.argv[3]);
let count = 0;
port.pipe(new DelimiterParser({ delimiter: '\r' })).on('data', () => {
  const now = process.hrtime.bigint();
  if (++count % every === 0) process.stdout.write(`${now}\n`);
});
