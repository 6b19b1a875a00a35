// What the system's driver offers and the class for serial ports lacks. The port is open.
#pragma once

class QSerialPort;

namespace tolvex::platform {

// Bytes that the system has accepted but not sent yet. The last characters are in the chip itself; while some
// are there, they count as one.
int BytesInDriver(const QSerialPort& port);

// Discards them.
void DropBytesInDriver(const QSerialPort& port);

// Adds XON/XOFF to hardware handshaking: the class supports only one kind at a time.
void AddXonXoff(const QSerialPort& port);

} // namespace tolvex::platform
