// The registry store: values read back as written, whatever their type; additions of others to the file stay;
// and the platform's own editor can import the file.
#include "platform/registry/RegistryStore.h"
#include "platform/host/HostFiles.h"
#include "platform/host/Replacement.h"
#include "platform/paths/Paths.h"
#include "platform/posix/HostCalls.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>

using namespace tolvex::platform;

namespace {

const QString key = QStringLiteral("Software\\Norvane\\Tolvex v2");

class RegistryStore : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(SetMachineFolder(folder_.path())); }
    void TearDown() override { RestoreHostCalls(); }

    QString path() const { return folder_.filePath("system.reg"); }
    // The store as text; it must be UTF-16 with its mark.
    QString text() const {
        const QByteArray bytes = ReadHostFile(path(), 1 << 20).value_or(QByteArray());
        EXPECT_TRUE(bytes.startsWith("\xFF\xFE"));
        return QString::fromUtf16(reinterpret_cast<const char16_t*>(bytes.constData()), bytes.size() / 2);
    }
    void store(const QByteArray& bytes) { ASSERT_EQ(ReplaceHostFile(path(), bytes), NoError); }
    void storeWide(const QString& given) {
        store("\xFF\xFE" + QByteArray(reinterpret_cast<const char*>(given.utf16()), given.size() * 2));
    }
    static QByteArray read(const QString& name) {
        const auto value = RegistryRead(LocalMachineHive, key, name);
        return value ? QByteArray::number(static_cast<quint32>(value->type)) + ":" + value->data : "none";
    }

    QTemporaryDir folder_;
};

} // namespace

TEST_F(RegistryStore, ANewOneHoldsWhatTheDataEngineLeavesAndIsMadeByTheFirstWrite) {
    const QString engine = QStringLiteral("SOFTWARE\\Microsoft\\DataAccess");
    ASSERT_TRUE(RegistryRead(LocalMachineHive, engine, "FullInstallVer"));
    EXPECT_GE(RegistryRead(LocalMachineHive, engine, "fullinstallver")->data.left(3).toDouble(), 2.5);
    EXPECT_FALSE(RegistryDelete(LocalMachineHive, key, "Nothing"));
    EXPECT_FALSE(QFile::exists(path()));
    EXPECT_TRUE(RegistryOpens(LocalMachineHive, "software\\microsoft"));
    EXPECT_FALSE(RegistryOpens(LocalMachineHive, "software\\micro"));
    EXPECT_FALSE(RegistryOpens(0x80000005u, "software\\microsoft"));

    ASSERT_TRUE(
        RegistryWrite(LocalMachineHive, key, "Users", {RegistryType::Text, "C:\\T \"x\" caf\xE9 \x80"}));
    EXPECT_EQ(text(), QString::fromUtf8("Windows Registry Editor Version 5.00\r\n\r\n"
                                        "[HKEY_LOCAL_MACHINE\\Software\\Microsoft\\DataAccess]\r\n"
                                        "\"FullInstallVer\"=\"2.81.1117.0\"\r\n\r\n"
                                        "[HKEY_LOCAL_MACHINE\\Software\\Norvane\\Tolvex v2]\r\n"
                                        "\"Users\"=\"C:\\\\T \\\"x\\\" café €\"\r\n\r\n"));
    ASSERT_TRUE(RegistryDelete(LocalMachineHive, engine, "FullInstallVer"));
    EXPECT_FALSE(RegistryRead(LocalMachineHive, engine, "FullInstallVer"));
    EXPECT_TRUE(RegistryOpens(LocalMachineHive, engine)); // the key stays
    EXPECT_EQ(read("USERS"), "1:C:\\T \"x\" caf\xE9 \x80");
}

TEST_F(RegistryStore, EveryTypeAndLengthComesBackAsItWasStored) {
    const std::vector<RegistryValue> values = {
        {RegistryType::Text, ""},
        {RegistryType::Text, QByteArray("a\0b", 3)},
        {RegistryType::Text, "two\r\nlines"},
        {RegistryType::Text, "ends in \\"},
        {RegistryType::Number, "\xFF\xFF\xFF\xFF"},
        {RegistryType::Number, QByteArray("\x01\0\0\0", 4)},
        {RegistryType::Number, "\x01\x02"},
        {RegistryType::Binary, ""},
        {RegistryType::Binary, QByteArray(300, '\xAB')},
        {RegistryType::ExpandText, QByteArray("%TEMP%\\\x80\0", 9)},
        {RegistryType::MultiText, QByteArray("a\0b\0\0", 5)},
        {RegistryType::None, "x"},
        {static_cast<RegistryType>(11), "12345678"},
    };
    for (const QString& name : {QStringLiteral("Name \"=\\ x"), QString()}) {
        for (const RegistryValue& value : values) {
            ASSERT_TRUE(RegistryWrite(LocalMachineHive, key, name, value));
            const auto found = RegistryRead(LocalMachineHive, key.toUpper(), name.toUpper());
            ASSERT_TRUE(found);
            EXPECT_EQ(found->type, value.type);
            EXPECT_EQ(found->data, value.data);
        }
    }
    for (const QString& line : text().split("\r\n"))
        EXPECT_LE(line.size(), 80);
    EXPECT_EQ(text().count('@'), 1);
    EXPECT_FALSE(RegistryWrite(LocalMachineHive, key, "two\nlines", values[0]));
    EXPECT_FALSE(RegistryWrite(LocalMachineHive, "a]\r\n[b", "x", values[0]));
}

TEST_F(RegistryStore, WhatOthersPutThereStays) {
    const QString before =
        QStringLiteral("Windows Registry Editor Version 5.00\r\n\r\n; by hand\r\n"
                       "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norvane\\TOLVEX V2]\r\n"
                       "\"Odd\"=hex(8):01,\\\r\n  02\r\n  \"debug\" = dword:5\r\nno value\r\n\r\n"
                       "[HKEY_CURRENT_USER\\Software\\Norvane\\Tolvex v2]\r\n\"Debug\"=\"user\"\r\n"
                       "[-HKEY_LOCAL_MACHINE\\Gone]\r\n\"x\"=\"y\"\r\n");
    storeWide(before);
    EXPECT_EQ(read("Debug"), QByteArray("4:\x05\0\0\0", 6));
    EXPECT_EQ(read("Odd"), "8:\x01\x02");
    EXPECT_FALSE(RegistryOpens(LocalMachineHive, "Gone"));
    ASSERT_TRUE(RegistryWrite(LocalMachineHive, key, "DEBUG", {RegistryType::Text, "on"}));
    ASSERT_TRUE(RegistryWrite(LocalMachineHive, key, "New", {RegistryType::Text, "n"}));
    ASSERT_TRUE(RegistryWrite(LocalMachineHive, key + "\\Sub\\Low", "v", {RegistryType::Text, "w"}));
    QString expected = before;
    expected.replace("  \"debug\" = dword:5\r\n", "\"debug\"=\"on\"\r\n\"New\"=\"n\"\r\n");
    expected += "\r\n[HKEY_LOCAL_MACHINE\\Software\\Norvane\\Tolvex v2\\Sub\\Low]\r\n\"v\"=\"w\"\r\n\r\n";
    EXPECT_EQ(text(), expected);
    EXPECT_EQ(RegistryValueNames(LocalMachineHive, key), QStringList({"debug", "New", "Odd"}));
    EXPECT_EQ(RegistrySubkeys(LocalMachineHive, key), QStringList({"Sub"}));
    EXPECT_EQ(RegistrySubkeys(LocalMachineHive, key + "\\sub\\"), QStringList({"Low"}));
    ASSERT_TRUE(RegistryDelete(LocalMachineHive, key, "odd"));
    EXPECT_EQ(text(), expected.remove("\"Odd\"=hex(8):01,\\\r\n  02\r\n"));
}

TEST_F(RegistryStore, TakesTheOlderFormAndFilesThatAreNoneOfIt) {
    store("REGEDIT4\n[HKEY_LOCAL_MACHINE\\Software\\Norvane\\Tolvex "
          "v2]\n\"a\"=hex(2):e9,00\n\"a\"=\"\xE9\"\n\"b\"=\"x\n");
    EXPECT_EQ(read("a"), "1:\xE9"); // the last one wins
    EXPECT_EQ(read("b"), "none");
    ASSERT_TRUE(RegistryWrite(LocalMachineHive, key, "c", {RegistryType::ExpandText, "\x80"}));
    EXPECT_EQ(ReadHostFile(path(), 1000)->count("\n\"c\"=hex(2):80\r\n"), 1);
    ASSERT_TRUE(RegistryDelete(LocalMachineHive, key, "a"));
    EXPECT_EQ(read("a"), "none");
    for (const QByteArray& bytes : {QByteArray(1, '\xFF'), QByteArray("\xFF\xFE"), QByteArray("\xFF\xFEx"),
                                    QByteArray(), QByteArray(1000, '\0')}) {
        store(bytes);
        EXPECT_EQ(read("c"), "none");
        ASSERT_TRUE(RegistryWrite(LocalMachineHive, key, "c", {RegistryType::Text, "1"}));
        EXPECT_EQ(read("c"), "1:1");
    }
}

TEST_F(RegistryStore, AFailedWriteSaysSoAndLosesNothing) {
    ASSERT_TRUE(RegistryWrite(LocalMachineHive, key, "a", {RegistryType::Text, "1"}));
    const QString before = text();
    hostCalls().write = [](int, const void*, size_t) -> ssize_t { return errno = ENOSPC, -1; };
    EXPECT_FALSE(RegistryWrite(LocalMachineHive, key, "a", {RegistryType::Text, "2"}));
    EXPECT_FALSE(RegistryDelete(LocalMachineHive, key, "a"));
    RestoreHostCalls();
    EXPECT_EQ(text(), before);
    ASSERT_TRUE(QFile::remove(path()));
    ASSERT_TRUE(QDir(folder_.path()).mkdir("system.reg")); // a store that cannot be read
    EXPECT_EQ(read("a"), "none");
    EXPECT_FALSE(RegistryOpens(LocalMachineHive, key));
    EXPECT_FALSE(RegistryWrite(LocalMachineHive, key, "a", {RegistryType::Text, "2"}));
}
