// Command files of any content: a whole header reads and is written back byte for byte; its text can be shown
// and typed again; the editor's result is refused with a sentence or stored without loss; settings are
// accepted or refused with a reason.
#include "Require.h"

#include "network/commands/CommandRules.h"
#include "platform/devices/SerialLine.h"

#include <cstddef>
#include <cstdint>

using namespace tolvex;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray file(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto command = DecodeCommand(file);
    require(command.has_value() == (file.size() >= CommandHeaderLength));
    const QByteArray text = command ? command->Text : file;
    for (const bool lineBreaks : {false, true})
        require(ReadCommandText(ShowCommandText(text, lineBreaks), TextForm::Escaped) == text);
    TextFault wrong;
    if (!ReadCommandText(QString::fromUtf8(file), TextForm::Escaped, &wrong))
        require(!wrong.sentence.isEmpty() && wrong.place >= 0 && wrong.place < file.size());
    QString why;
    if (!platform::ParseSerialSettings(QString::fromLatin1(text.left(60)), &why))
        require(!why.isEmpty());
    if (!command)
        return 0;
    require(EncodeCommand(*command) == file);
    CommandFields fields = FieldsOf(QStringLiteral("Fuzz"), *command);
    if (const auto fault = CheckCommand(fields, true))
        require(!fault->message.isEmpty() && !fault->isQuestion);
    else if (FindValue(CommandTypes(), command->Type))
        require(DecodeCommand(EncodeCommand(CommandOf(fields, *command)))->Text == command->Text);
    return 0;
}
