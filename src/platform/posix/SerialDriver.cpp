#include "platform/devices/SerialDriver.h"

#include <QSerialPort>

#include <linux/serial.h>
#include <sys/ioctl.h>
#include <termios.h>

namespace tolvex::platform {

int BytesInDriver(const QSerialPort& port) {
    int inSystem = 0;
    if (::ioctl(port.handle(), TIOCOUTQ, &inSystem) != 0)
        inSystem = 0;
    // Not every chip supports this query.
    unsigned status = TIOCSER_TEMT;
    if (inSystem == 0 && ::ioctl(port.handle(), TIOCSERGETLSR, &status) != 0)
        status = TIOCSER_TEMT;
    return inSystem + ((status & TIOCSER_TEMT) ? 0 : 1);
}

void DropBytesInDriver(const QSerialPort& port) {
    ::tcflush(port.handle(), TCOFLUSH);
}

void AddXonXoff(const QSerialPort& port) {
    struct termios settings {};
    if (::tcgetattr(port.handle(), &settings) != 0)
        return;
    settings.c_iflag |= IXON | IXOFF;
    ::tcsetattr(port.handle(), TCSANOW, &settings);
}

} // namespace tolvex::platform
