// Commands as files, as texts and as fields of the editor: one wrong byte makes a device do something
// else.
#include "core/settings/Settings.h"
#include "network/commands/CommandFolder.h"
#include "network/commands/CommandRules.h"
#include "network/commands/CommandText.h"
#include "network/commands/CommandUses.h"
#include "support/MachineFolder.h"
#include "support/ScriptedPrompts.h"
#include "support/WithoutRights.h"

#include <QtEndian>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

const QByteArray everyByte = [] {
    QByteArray bytes;
    for (int i = 0; i < 256; ++i)
        bytes += char(i);
    return bytes;
}();

// A header built by hand: numbers and texts at offsets, blanks elsewhere.
class Header {
public:
    Header& number(int offset, qint32 value) {
        qToLittleEndian<qint32>(value, bytes_.data() + offset);
        return *this;
    }
    Header& text(int offset, const QByteArray& text) {
        bytes_.replace(offset, text.size(), text);
        return *this;
    }
    QByteArray with(const QByteArray& text) const { return bytes_ + text; }

private:
    QByteArray bytes_{1024, ' '};
};

const QByteArray serialFile =
    Header().number(0, 1).number(4, 3).number(8, 4).number(12, 2).text(16, "19200,e,7,2").with("\x02go\r");
const QByteArray tcpIpFile =
    Header().number(0, 2).number(4, 1).text(8, "studio2.local").number(264, 4001).number(268, 1).with("hi");
const QByteArray externalFile = Header().number(0, 3).number(4, 0).number(8, 7).with("C:\\X\\PLAY.EXE /q");
const QByteArray suiteFile = Header().number(0, 0).number(4, 0).with("");

class CommandFiles : public testing::Test {
protected:
    CommandFiles() { machine.makeFolder("C:\\DATA"); }
    TestMachine machine;
    ScriptedPrompts prompts;
    CommandFolder folder{"C:\\DATA"};
};

CommandFields serialFields(const QString& name) {
    CommandFields fields;
    fields.name = name;
    fields.typedText = "x";
    return fields;
}

} // namespace

TEST_F(CommandFiles, EveryFieldLiesInItsPlace) {
    const CommandRecord serial = *DecodeCommand(serialFile);
    EXPECT_EQ(serial.Type, SerialCommand);
    EXPECT_TRUE(serial.useExisting() && serial.leaveOpen());
    EXPECT_EQ(serial.SerialPort, 4);
    EXPECT_EQ(serial.Handshaking, 2);
    EXPECT_EQ(serial.Settings, QString("19200,e,7,2"));
    EXPECT_EQ(serial.Text, QByteArray("\x02go\r"));
    const CommandRecord tcpIp = *DecodeCommand(tcpIpFile);
    EXPECT_TRUE(tcpIp.useExisting() && !tcpIp.leaveOpen());
    EXPECT_EQ(tcpIp.Address, QString("studio2.local"));
    EXPECT_EQ(tcpIp.IpPort, 4001);
    EXPECT_EQ(tcpIp.Protocol, ProtocolUdp);
    EXPECT_EQ(DecodeCommand(externalFile)->WindowStyle, 7);

    // Encoding gives the same bytes back, whatever else is in the header and the text.
    QByteArray odd = serialFile + everyByte;
    odd.replace(40, 8, QByteArray("\0\xFF\x81 x\t\r\n", 8));
    odd.replace(1000, 24, everyByte.right(24));
    const QByteArray unknown = Header().number(0, 77).text(8, "what a later version keeps").with("x");
    for (const QByteArray& file : {serialFile, tcpIpFile, externalFile, suiteFile, odd, unknown})
        EXPECT_EQ(EncodeCommand(*DecodeCommand(file)).toHex(), file.toHex());
    EXPECT_FALSE(DecodeCommand(serialFile.left(1023)));
}

TEST_F(CommandFiles, AreListedReadSavedRenamedAndRemoved) {
    EXPECT_TRUE(folder.list().isEmpty());
    machine.write("C:\\DATA\\Commands\\b side.TCD", serialFile);
    machine.write("C:\\DATA\\Commands\\Alarm.tcd", tcpIpFile);
    machine.write("C:\\DATA\\Commands\\Cut.TCD", serialFile.left(500));
    machine.write("C:\\DATA\\Commands\\Door.TCD", externalFile);
    machine.write("C:\\DATA\\Commands\\Later.TCD", Header().number(0, 9).number(4, 0).with(""));
    machine.write("C:\\DATA\\Commands\\readme.txt", "x");
    machine.makeFolder("C:\\DATA\\Commands\\Folder.TCD");
    QStringList rows;
    for (const ListedCommand& row : folder.list())
        rows += QStringList{row.name, row.typeText(), row.leaveActiveText(), row.useExistingText(),
                            row.fault.isEmpty() ? "sound" : "faulty"}
                    .join('|');
    EXPECT_EQ(rows, (QStringList{"Alarm|TCP/IP Command|No|Yes|sound", "b side|Serial Command|Yes|Yes|sound",
                                 "Cut|Not readable|n/a|n/a|faulty", "Door|External Command|n/a|n/a|sound",
                                 "Later|Unknown (9)|n/a|n/a|sound"}));

    EXPECT_TRUE(folder.has(" ALARM ") && !folder.has("Alarm2") && !folder.has(""));
    EXPECT_EQ(folder.otherSpelling("ALARM"), QString("Alarm"));
    EXPECT_EQ(folder.otherSpelling("Alarm"), QString());
    EXPECT_EQ(folder.otherSpelling("New"), QString());
    QString why;
    EXPECT_FALSE(folder.read("Cut", &why));
    EXPECT_TRUE(why.contains("500 bytes")) << why.toStdString();
    EXPECT_FALSE(folder.read("Nobody", &why));
    EXPECT_TRUE(why.contains("There is no file")) << why.toStdString();
    // A file that this user may not read exists all the same.
    QFile::setPermissions(machine.path(), QFile::Permissions(0x7755));
    QFile::setPermissions(machine.host("C:\\DATA\\Commands\\Door.TCD"), {});
    EXPECT_TRUE(PassesWithoutRights([this] {
        QString reason;
        EXPECT_FALSE(folder.read("Door", &reason));
        EXPECT_TRUE(reason.contains("cannot be read")) << reason.toStdString();
    }));

    // A file that is opened and saved without a change keeps every byte; no text box sees its text.
    const CommandRecord before = *folder.read("b side");
    EXPECT_TRUE(folder.save("b side", CommandOf(FieldsOf("b side", before), before)));
    EXPECT_EQ(machine.read("C:\\DATA\\Commands\\b side.TCD"), serialFile);
    EXPECT_TRUE(folder.save(" New one ", before));
    EXPECT_TRUE(machine.exists("C:\\DATA\\Commands\\New one.TCD"));

    EXPECT_TRUE(folder.rename("New one", "NEW ONE"));
    EXPECT_EQ(folder.otherSpelling("New one"), QString("NEW ONE"));
    EXPECT_TRUE(prompts.asked.isEmpty());
    EXPECT_FALSE(folder.rename("New one", "alarm"));
    EXPECT_TRUE(folder.remove("NEW ONE"));
    EXPECT_FALSE(folder.remove("NEW ONE"));
    EXPECT_EQ(
        prompts.texts(),
        (QStringList{"There was a problem renaming the command and the error's description was reported "
                     "as : \n\n\"File already exists\" (58)",
                     "There was a problem deleting the command and the error's description was reported "
                     "as : \n\n\"File not found\" (53)"}));
    EXPECT_EQ(machine.read("C:\\DATA\\Commands\\Alarm.tcd"), tcpIpFile);
}

TEST_F(CommandFiles, AnOldCommandThatCannotBeReplacedStaysAndIsReported) {
    machine.write("C:\\DATA\\Commands\\Old.TCD", serialFile);
    const QByteArray commands = machine.host("C:\\DATA\\Commands").toUtf8();
    ASSERT_EQ(::chmod(machine.path().toUtf8().constData(), 0755), 0);
    ASSERT_EQ(::chmod(commands.constData(), 0555), 0);
    EXPECT_TRUE(PassesWithoutRights([this] {
        EXPECT_FALSE(folder.save("old", CommandRecord()));
        EXPECT_FALSE(folder.save("New", CommandRecord()));
        ASSERT_EQ(prompts.asked.size(), 2);
        EXPECT_TRUE(prompts.texts()[0].startsWith("There was a problem removing the old command and "));
        EXPECT_TRUE(prompts.texts()[1].startsWith("There was a problem saving the command and "));
    }));
    EXPECT_EQ(machine.read("C:\\DATA\\Commands\\Old.TCD"), serialFile);
    ::chmod(commands.constData(), 0755);
}

TEST(CommandTexts, EveryByteCanBeShownAndTyped) {
    for (const bool lineBreaks : {false, true}) {
        const QString shown = ShowCommandText(everyByte + "\r\n\r\r\n\n\\r", lineBreaks);
        EXPECT_EQ(ReadCommandText(shown, TextForm::Escaped), everyByte + "\r\n\r\r\n\n\\r");
        for (const QChar c : shown)
            EXPECT_TRUE(c.isPrint() || (lineBreaks && c == u'\n')) << int(c.unicode());
    }
    EXPECT_EQ(ShowCommandText("\x02\x7F\\A\r\n\t\xA0\xE9", false),
              QString::fromUtf8("\\x02\\x7F\\\\A\\r\\n\\t\\xA0é"));
    EXPECT_EQ(ShowCommandText("a\r\nb\rc\nd", true), QString("a\nb\\rc\\nd"));
    EXPECT_EQ(HexOf("\x02\xFFH"), QString("02 FF 48"));
}

TEST(CommandTexts, WhatIsTypedIsTakenAsItsFormSays) {
    const QString typed = QString::fromUtf8("a\\r\n€");
    EXPECT_EQ(ReadCommandText(typed, TextForm::AsItStands), QByteArray("a\\r\n\x80"));
    EXPECT_EQ(ReadCommandText(typed, TextForm::Box), QByteArray("a\\r\r\n\x80"));
    EXPECT_EQ(ReadCommandText(typed, TextForm::Escaped), QByteArray("a\r\r\n\x80"));
    EXPECT_EQ(ReadCommandText("a\r\nb", TextForm::Box), QByteArray("a\r\nb"));
    EXPECT_EQ(ReadCommandText("\\xfE\\xFf", TextForm::Escaped), QByteArray("\xFE\xFF"));
    struct {
        const char* text;
        qsizetype place;
    } const bad[] = {{"ab\\q", 2}, {"\\", 0},    {"ok\\x1", 2}, {"\\x", 0},
                     {"\\x+1", 0}, {"\\xg0", 0}, {"aΩ", 1},     {"x😀", 1}};
    for (const auto& row : bad) {
        TextFault fault;
        EXPECT_FALSE(ReadCommandText(QString::fromUtf8(row.text), TextForm::Escaped, &fault)) << row.text;
        EXPECT_EQ(fault.place, row.place) << row.text;
        EXPECT_TRUE(fault.sentence.contains(QStringLiteral("at place %1 ").arg(row.place + 1))) << row.text;
    }
}

TEST(CommandRules, FaultsComeInTheirOrderWithTheirFields) {
    constexpr char question[] = "You have not entered a command to send. Is this OK?";
    CommandFields fields = serialFields("  ");
    fields.settings = " ";
    fields.typedText = "  ";
    const auto fault = [&fields](bool emptyIsRight = false) {
        const auto found = CheckCommand(fields, emptyIsRight);
        return found ? QStringLiteral("%1 %2").arg(int(found->field)).arg(found->message) : QString("none");
    };
    const auto is = [](CommandField field, const char* message) {
        return QStringLiteral("%1 %2").arg(int(field)).arg(message);
    };
    EXPECT_EQ(fault(), is(CommandField::Name, "You must enter a Command Name before clicking OK"));
    fields.name = "a_b";
    EXPECT_EQ(fault(),
              is(CommandField::Name, "You can only use numbers, letters and spaces in Command Names"));
    fields.name = " Fire 1 ";
    EXPECT_EQ(fault(),
              is(CommandField::SerialSettings, "You must enter a set of valid Settings for the Serial Port"));
    for (const char* settings : {"9600,n,8", "9600,n,8,1,"}) {
        fields.settings = settings;
        EXPECT_EQ(fault(), is(CommandField::SerialSettings,
                              "The Serial Port Settings that you have entered do not appear to be correct."));
    }
    fields.settings = "what,ever,stands,there";
    EXPECT_EQ(fault(), is(CommandField::Text, question));
    EXPECT_TRUE(CheckCommand(fields)->isQuestion);
    EXPECT_EQ(fault(true), QString("none"));
    EXPECT_TRUE(CommandHint(fields).contains("what"));

    fields.type = TcpIpCommand;
    fields.typedText = "";
    EXPECT_EQ(fault(), is(CommandField::TcpIpAddress, "You must enter an IP Name or address to connect to"));
    fields.address = " studio2 ";
    for (const char* port : {"", "x", "0", "-5"}) {
        fields.port = port;
        EXPECT_EQ(fault(), is(CommandField::TcpIpPort, "You must enter an IP Port to connect to"));
    }
    fields.port = "4001 or so";
    EXPECT_EQ(fault(), is(CommandField::Text, question));
    fields.typedText = " ";
    EXPECT_EQ(fault(), QString("none"));
    fields.type = ExternalCommand;
    fields.typedText = "";
    EXPECT_EQ(fault(), is(CommandField::Text, question));
    EXPECT_EQ(fault(true), QString("none"));
}

// The editor refuses what the file would cut and what the network would refuse.
TEST(CommandRules, NothingIsCutSilently) {
    const auto field = [](const CommandFields& fields) {
        const auto found = CheckCommand(fields);
        return found ? int(found->field) : -1;
    };
    CommandFields fields = serialFields("Go");
    fields.settings = QString(29, '9') + ",,,";
    EXPECT_EQ(field(fields), -1);
    fields.settings += ' ';
    EXPECT_EQ(field(fields), int(CommandField::SerialSettings));
    fields = serialFields("com1");
    EXPECT_EQ(field(fields), int(CommandField::Name));
    fields.name = "com10";
    EXPECT_EQ(field(fields), -1);
    fields.name = QString(201, 'x');
    EXPECT_EQ(field(fields), int(CommandField::Name));
    // Values that a file holds and no list offers.
    fields = serialFields("Go");
    fields.serialPort = 5;
    EXPECT_EQ(field(fields), int(CommandField::SerialPort));
    fields.handshaking = 4;
    fields.serialPort = 4;
    EXPECT_EQ(field(fields), int(CommandField::SerialHandshaking));
    fields.type = ExternalCommand;
    fields.windowStyle = 5;
    EXPECT_EQ(field(fields), int(CommandField::WindowStyle));
    fields = serialFields("Go");
    fields.typedText = QString::fromUtf8("abc→");
    EXPECT_EQ(field(fields), int(CommandField::Text));
    EXPECT_EQ(CheckCommand(fields)->place, 3);

    fields = serialFields("Go");
    fields.type = TcpIpCommand;
    fields.port = "65535";
    fields.address = QString(256, 'h');
    EXPECT_EQ(field(fields), -1);
    fields.port = "65536";
    EXPECT_EQ(field(fields), int(CommandField::TcpIpPort));
    fields.port = "1";
    fields.address += 'h';
    EXPECT_EQ(field(fields), int(CommandField::TcpIpAddress));
    fields.address = QString::fromUtf8("πi");
    EXPECT_EQ(field(fields), int(CommandField::TcpIpAddress));
    fields.address = "h";
    fields.protocol = 2;
    EXPECT_EQ(field(fields), int(CommandField::TcpIpProtocol));
    fields.protocol = ProtocolTcp;
    fields.typedText = QString(65508, 'x');
    EXPECT_EQ(field(fields), -1);
    fields.protocol = ProtocolUdp;
    EXPECT_EQ(field(fields), int(CommandField::Text));
    fields.typedText->chop(1);
    EXPECT_EQ(field(fields), -1);
}

TEST(CommandRules, FieldsMakeTheRecordOfTheirTypeAndKeepWhatTheyDoNotShow) {
    CommandRecord before = *DecodeCommand(serialFile);
    before.Flags |= 64;
    before.Rest = "kept";
    CommandFields fields = FieldsOf("Go", before);
    fields.leaveOpen = false;
    fields.textForm = TextForm::Escaped;
    fields.typedText = "a\\r";
    const CommandRecord same = CommandOf(fields, before);
    EXPECT_EQ(same.Flags, 64 | UseExistingConnection);
    EXPECT_EQ(same.Rest, QString("kept"));
    EXPECT_EQ(same.Text, QByteArray("a\r"));
    EXPECT_EQ(same.Settings, QString("19200,e,7,2"));
    fields.type = TcpIpCommand;
    fields.address = " host ";
    fields.port = " 80x";
    const CommandRecord other = CommandOf(fields, before);
    EXPECT_EQ(other.Rest, QString());
    EXPECT_EQ(other.Address, QString("host"));
    EXPECT_EQ(other.IpPort, 80);
    EXPECT_EQ(EncodeCommand(other).mid(272, 752), QByteArray(752, ' '));
    // Zeros that pad a text are not part of it, and stay in the file.
    before.Settings = "9600,n,8,1" + QString(QChar(0)).repeated(3) + "8,1";
    fields = FieldsOf("Go", before);
    EXPECT_EQ(fields.settings, QString("9600,n,8,1"));
    EXPECT_EQ(CommandOf(fields, before).Settings, before.Settings);
    fields.settings = "9600,n,8,2";
    EXPECT_EQ(CommandOf(fields, before).Settings, QString("9600,n,8,2"));
    EXPECT_EQ(UnknownTypeMessage(0) + UnknownTypeMessage(3), QString());
    EXPECT_EQ(UnknownTypeMessage(4),
              QString("The Command Type (4) was not recognised. Please contact Norvane Ltd."));
}

TEST(CommandUsesTest, LinesThatNameACommandAreFound) {
    EXPECT_TRUE(NamesCommand("fire JINGLE one!", "Jingle One"));
    EXPECT_TRUE(NamesCommand("jingles, jingle", "jingle"));
    EXPECT_FALSE(NamesCommand("Jingles", "jingle"));
    EXPECT_FALSE(NamesCommand("1jingle", "jingle"));
    EXPECT_FALSE(NamesCommand("anything", " "));
    HardwareCardTable cards;
    cards[2].CardType = CardRS232;
    cards[2].Lines[7].Description = " Fire Jingle ";
    cards[3].Lines[1].Description = "Jingle"; // of a card that is disabled
    const CommandUseSource log = [](const QString& name) {
        return QList<CommandUse>{{"Automation log, entry 5", name}};
    };
    const QList<CommandUse> uses = CommandUses("jingle", cards, {log});
    ASSERT_EQ(uses.size(), 2);
    EXPECT_EQ(uses[0].where + '|' + uses[0].text, QString("Hardware card 2, line 7|Fire Jingle"));
    EXPECT_EQ(uses[1].where + '|' + uses[1].text, QString("Automation log, entry 5|jingle"));
}
