// What the command editor accepts: the fields as they stand, what is wrong with them in the order in which it
// is reported, and the command that they make.
#pragma once

#include "network/commands/CommandRecord.h"
#include "network/commands/CommandText.h"

namespace tolvex {

enum class CommandField {
    Name,
    SerialPort,
    SerialHandshaking,
    SerialSettings,
    TcpIpAddress,
    TcpIpPort,
    TcpIpProtocol,
    WindowStyle,
    Text // the text of the type that is chosen
};

struct CommandFields {
    QString name;
    qint32 type = SerialCommand;
    bool useExisting = false;
    bool leaveOpen = false;
    qint32 serialPort = 1;
    qint32 handshaking = 0;
    QString settings = QStringLiteral("9600,n,8,1");
    QString address;
    QString port; // as typed; its leading number counts
    qint32 protocol = ProtocolTcp;
    qint32 windowStyle = 1;
    // The text: bytes as they were read until the box is changed, from then on what stands in it.
    QByteArray storedText;
    std::optional<QString> typedText;
    TextForm textForm = TextForm::Box;
};

struct CommandFault {
    CommandField field = CommandField::Name;
    QString message;
    bool isQuestion = false; // Yes and No; with Yes the check goes on
    qsizetype place = -1;    // in the text, where the fault has one
};

// The first fault. `emptyTextIsRight`: the question about an empty text was answered with Yes.
std::optional<CommandFault> CheckCommand(const CommandFields& fields, bool emptyTextIsRight = false);

// What is worth knowing about fields that are accepted, a sentence: settings that no port will take. Empty
// when there is nothing.
QString CommandHint(const CommandFields& fields);

// The record that fields without a fault make. `before` gives what the fields do not hold, if its type is
// the same.
CommandRecord CommandOf(const CommandFields& fields, const CommandRecord& before = {});
CommandFields FieldsOf(const QString& name, const CommandRecord& command);

// What the editor shows for a type that it does not know; empty for 0 to 3.
QString UnknownTypeMessage(qint32 type);

} // namespace tolvex
