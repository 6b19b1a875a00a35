#include "network/server/RemoteCommands.h"

#include "core/text/Numbers.h"
#include "core/time/Dates.h"
#include "platform/CodePage.h"

namespace tolvex {

namespace {

// Blanks alone: a carriage return at the end is the end of a command.
QByteArray withoutOuterBlanks(const QByteArray& bytes) {
    qsizetype begin = 0;
    qsizetype end = bytes.size();
    while (begin < end && bytes[begin] == ' ')
        ++begin;
    while (end > begin && bytes[end - 1] == ' ')
        --end;
    return bytes.mid(begin, end - begin);
}

RemoteCommand meaningOf(const QByteArray& bytes) {
    RemoteCommand command;
    command.text = platform::FromCodePage(bytes);
    if (const double number = LeadingNumber(command.text); number > 0) {
        command.effect = RemoteCommand::Effect::Cart;
        command.cart = ToLong(number);
    } else if (command.text.toLower() == QLatin1String("kgo")) {
        command.effect = RemoteCommand::Effect::Go;
    }
    return command;
}

} // namespace

QString RemoteCommand::reply() const {
    switch (effect) {
    case Effect::Cart:
        return QStringLiteral("Play Cart ") + text;
    case Effect::Go:
        return QStringLiteral("K-OVA Go");
    case Effect::Ignored:
        break;
    }
    return {};
}

void RemoteCommands::keep(QByteArray bytes) {
    const qsizetype last = bytes.lastIndexOf('\r');
    sinceReturn_ = last < 0 ? sinceReturn_ + bytes.size() : bytes.size() - last - 1;
    if (skipping_) {
        const qsizetype end = bytes.indexOf('\r');
        if (end < 0)
            return;
        bytes.remove(0, end + 1);
        skipping_ = false;
    }
    const qsizetype waiting = buffer_.lastIndexOf('\r') + 1;
    if (waiting == 0 || buffer_.size() + bytes.size() <= LongestBuffer) {
        buffer_ += bytes;
        return;
    }
    // A part of a command would be taken for another one.
    buffer_.truncate(waiting);
    skipping_ = !bytes.endsWith('\r');
    hasLost_ = true;
}

std::optional<RemoteCommand> RemoteCommands::take(const QByteArray& arrival) {
    keep(withoutOuterBlanks(arrival.left(LongestArrival)).replace('\n', QByteArray()));
    const qsizetype end = buffer_.indexOf('\r');
    if (end < 0)
        return std::nullopt;
    const QByteArray command = buffer_.left(end);
    buffer_.remove(0, end + 1);
    return meaningOf(command);
}

QByteArray RemoteReplyLine(const QDateTime& time, const QString& text) {
    return platform::ToCodePage(ShortDate(time.date()) + time.toString(QStringLiteral(" HH:mm:ss ")) + text +
                                QStringLiteral("\r\n"));
}

} // namespace tolvex
