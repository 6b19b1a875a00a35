// The Terminal list from a shell.
#include "RunCtl.h"

#include "platform/Machine.h"
#include "platform/host/FileLock.h"

#include <QJsonArray>
#include <QJsonObject>

using tolvex::tests::Ctl;

namespace {

constexpr int RecordLength = 128;

QByteArray recordOf(const QByteArray& list, int id) {
    return list.mid((id - 1) * RecordLength, RecordLength);
}

} // namespace

TEST_F(Ctl, ChoosesAndNamesWorkstations) {
    EXPECT_EQ(run({"terminals", "list"}).status, 1);
    run({"profile", "set", "tolvex.ini", "FileLocations", "Data", "C:\\DATA"});
    QDir().mkpath(onC("DATA"));
    // Reading makes no list; choosing asks first.
    EXPECT_EQ(run({"terminals", "list"}).status, 1);
    EXPECT_EQ(run({"--no", "terminals", "choose", "3"}).status, 1);
    EXPECT_FALSE(QFile::exists(onC("DATA/Terminal.Lst")));
    EXPECT_EQ(run({"--yes", "terminals", "choose", "3"}).status, 0);

    const QByteArray computer = tolvex::platform::ComputerName().toLatin1();
    QByteArray list = read(onC("DATA/Terminal.Lst"));
    ASSERT_EQ(list.size(), 32 * RecordLength);
    EXPECT_EQ(recordOf(list, 3).mid(30, 30).trimmed(), computer);
    EXPECT_EQ(run({"profile", "get", "tolvex.ini", "LinkMesh", "LinkMeshId"}).out, "3\n");

    // A workstation has one number: the old one becomes free, all others stay unchanged.
    list.replace(4 * RecordLength + 30, 7, "STUDIO5");
    write(onC("DATA/Terminal.Lst"), list);
    EXPECT_EQ(run({"terminals", "rename", "3", " Old news "}).status, 0);
    EXPECT_EQ(run({"terminals", "choose", "7"}).status, 0);
    const QJsonArray shown = run({"--json", "terminals", "list"}).json().array();
    ASSERT_EQ(shown.size(), 32);
    EXPECT_EQ(shown[2].toObject(), (QJsonObject{{"id", 3},
                                                {"thisWorkstation", false},
                                                {"idName", "Old news"},
                                                {"networkName", ""},
                                                {"lastUsed", ""}}));
    EXPECT_EQ(shown[4].toObject()["networkName"], "STUDIO5");
    EXPECT_EQ(shown[6].toObject()["networkName"].toString().toLatin1(), computer);
    EXPECT_TRUE(shown[6].toObject()["thisWorkstation"].toBool());
    EXPECT_TRUE(run({"terminals", "list"}).out.contains("\n 7  >"));

    EXPECT_TRUE(run({"terminals", "choose", "5"}).err.contains("taken over from STUDIO5"));
    EXPECT_EQ(run({"terminals", "choose", "7"}).err, "");
    for (const char* id : {"0", "33", "x", "1.5"})
        EXPECT_EQ(run({"terminals", "choose", id}).status, 2) << id;
    EXPECT_EQ(run({"terminals", "rename", "33", "x"}).status, 2);
    for (const QString& name :
         {QString(31, 'x'), QString::fromUtf8("Caf\u00e9 \u4e2d"), QString("a\tb"), QString("a\x01")})
        EXPECT_EQ(run({"terminals", "rename", "3", name}).status, 2) << name.toStdString();
    EXPECT_EQ(run({"terminals", "rename", "3", QString::fromUtf8("Caf\u00e9 \u20ac")}).status, 0);
    EXPECT_EQ(run({"profile", "get", "tolvex.ini", "LinkMesh", "LinkMeshId"}).out, "7\n");

    // While the ini file cannot be written the list keeps the number as well.
    list = read(onC("DATA/Terminal.Lst"));
    const QByteArray ini = read(onC("WINDOWS/tolvex.ini"));
    const tolvex::platform::FileLock busy(onC("WINDOWS/tolvex.ini"));
    ASSERT_TRUE(busy.held());
    EXPECT_EQ(run({"terminals", "choose", "8"}).status, 3);
    EXPECT_EQ(read(onC("DATA/Terminal.Lst")), list);
    EXPECT_EQ(read(onC("WINDOWS/tolvex.ini")), ini);
}
