#include "network/forms/TrialLines.h"

#include "network/commands/CommandText.h"

namespace tolvex {

namespace {

constexpr qsizetype mostBytesShown = 24;

QString count(const QByteArray& bytes) {
    return bytes.size() == 1 ? QStringLiteral("1 byte") : QStringLiteral("%1 bytes").arg(bytes.size());
}

QString describe(const QByteArray& bytes) {
    const QByteArray start = bytes.left(mostBytesShown);
    const QString more = bytes.size() > start.size() ? QStringLiteral("...") : QString();
    return QStringLiteral("%1: %2%4 (%3%4)")
        .arg(count(bytes), ShowCommandText(start, false), HexOf(start), more);
}

} // namespace

QString BytesLine(const QByteArray& bytes) {
    if (bytes.isEmpty())
        return QStringLiteral("Nothing is sent.");
    return count(bytes) + QStringLiteral(": ") + HexOf(bytes.left(mostBytesShown)) +
           (bytes.size() > mostBytesShown ? QStringLiteral(" ...") : QString());
}

QString TrialLine(const CommandEvent& event, bool answered) {
    switch (event.kind) {
    case CommandEvent::Kind::Connecting:
        return QStringLiteral("Connecting to %1").arg(event.peer);
    case CommandEvent::Kind::Open:
        return QStringLiteral("%1 is open").arg(event.peer);
    case CommandEvent::Kind::Sent:
        return QStringLiteral("Sent ") + describe(event.bytes);
    case CommandEvent::Kind::Answer:
        return QStringLiteral("Answer, ") + describe(event.bytes);
    case CommandEvent::Kind::Started:
        return QStringLiteral("Started %1").arg(event.peer);
    case CommandEvent::Kind::Closed:
        return answered ? QStringLiteral("Done.") : QStringLiteral("Done; no answer came.");
    case CommandEvent::Kind::Failed:
        return event.text;
    }
    return {};
}

} // namespace tolvex
