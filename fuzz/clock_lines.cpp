// Whatever a receiver sends, in whatever pieces: the same lines result, each of a kind determined by its
// length alone, and a time that would set the clock is valid.
#include "Require.h"

#include "network/clock/ClockLines.h"

#include <cstddef>
#include <cstdint>

using namespace tolvex;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    ClockLineReader whole;
    const QList<ClockLine> lines = whole.take(bytes);
    require(lines.size() == bytes.count('\r'));
    ClockLineReader pieces;
    QList<ClockLine> again;
    for (qsizetype at = 0, step = 1; at < bytes.size(); at += step, step = step % 23 + 1)
        again += pieces.take(bytes.mid(at, step));
    require(again.size() == lines.size());
    const QList<QByteArray> raw = bytes.split('\r');
    const QDateTime now = QDateTime::fromSecsSinceEpoch(1735689600);
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const ClockLine& line = lines[i];
        require(line.raw == again[i].raw && line.kind == again[i].kind);
        require((line.kind == ClockLine::Kind::Time) == (raw[i].size() == 15));
        require((line.kind == ClockLine::Kind::Strength) == (raw[i].size() == 2));
        require(line.level >= -1 && line.level <= 5 && line.seconds >= -1 && line.seconds < 86400);
        require(!line.text().isEmpty());
        if (line.setsClock())
            require(line.date->isValid() && LocalMoment(*line.date, line.seconds, now).isValid());
    }
    return 0;
}
