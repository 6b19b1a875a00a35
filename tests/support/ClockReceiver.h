// A radio time receiver at the other end of a pseudo terminal: answers "o" with a time line and "i", "g" with
// a strength line, each request a letter and a carriage return.
#pragma once

#include "support/PseudoTerminal.h"

#include <QDateTime>

namespace tolvex::tests {

class ClockReceiver {
public:
    explicit ClockReceiver(PseudoTerminal::Hold hold = PseudoTerminal::Hold::Open)
        : device(hold) {
        device.onReceive = [this](const QByteArray& bytes) {
            for (const char byte : bytes)
                take(byte);
        };
    }

    PseudoTerminal device;
    std::function<QDateTime()> now; // the true time
    char status = '1';              // bit 1 valid, bit 8 battery low
    int level = 4;
    bool isMute = false;
    QByteArray requests; // letters that were asked in full
    // How an answer is sent on the line.
    std::function<void(const QByteArray&)> answer = [this](const QByteArray& line) { device.send(line); };

    static QByteArray timeLine(const QDateTime& time, char status) {
        return time.toString("HHmmss'-'ddMMyy").toLatin1() + '0' + status + '\r';
    }

private:
    void take(char byte) {
        if (byte != '\r') {
            letter_ = byte;
            return;
        }
        requests += letter_;
        if (isMute)
            return;
        if (letter_ == 'o')
            answer(timeLine(now(), status));
        if (letter_ == 'g')
            answer(QByteArray("S") + char('0' + level) + '\r');
    }

    char letter_ = 0;
};

} // namespace tolvex::tests
