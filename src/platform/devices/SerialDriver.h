// What the class for serial ports leaves out and the system's driver offers. The port is open.
#pragma once

class QSerialPort;

namespace tolvex::platform {

// Bytes that the system was given and that are not on the line yet. The last characters are in the chip
// itself; while some are there, they count as one.
int BytesInDriver(const QSerialPort& port);

// Forgets them.
void DropBytesInDriver(const QSerialPort& port);

// Adds XON and XOFF to handshaking by lines: the class knows one kind at a time.
void AddXonXoff(const QSerialPort& port);

} // namespace tolvex::platform
