// Private profile files: what the operations answer, what they leave of a file, and what happens when the
// disk or another program is in the way.
#include "TestPlaces.h"
#include "platform/host/FileLock.h"
#include "platform/host/HostFiles.h"
#include "platform/host/Replacement.h"
#include "platform/paths/Paths.h"
#include "platform/posix/HostCalls.h"
#include "platform/profile/ProfileCheck.h"
#include "platform/profile/ProfileDocument.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>
#include <random>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tolvex::platform;

namespace {

const QString ini = QStringLiteral("C:\\TOLVEX.INI");

class ProfileFile : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(SetMachineFolder(folder_.path()));
        ForgetProfiles();
    }
    void TearDown() override { RestoreHostCalls(); }

    // The bytes of the file; nothing when there is none.
    static std::optional<QByteArray> stored() { return ReadHostFile(HostPath(ini), 1 << 30); }
    static void store(const QByteArray& bytes) { ASSERT_EQ(ReplaceHostFile(HostPath(ini), bytes), NoError); }

    QTemporaryDir folder_;
};

QString textOf(const QJsonValue& value) {
    return value.isNull() ? QString() : value.toString(QStringLiteral(""));
}

// Runs `check` in a process without rights over what root owns, and tells whether it said yes.
template<class Check>
bool asOrdinaryUser(Check check) {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(::geteuid() != 0 || ::setuid(65534) == 0 ? (check() ? 0 : 1) : 2);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

// Each case of the fixture: a file (bytes as characters 0 to 255), steps with their answers, and the file
// afterwards where it differs. ["text", section, key, default, (buffer size,) answer], ["number", section,
// key, default, answer], ["keys", section, names], ["sections", names], ["set", section, key, value, error].
TEST_F(ProfileFile, AnswersAndLeavesFilesAsThePlatformDoes) {
    QFile fixture(QStringLiteral(TOLVEX_SOURCE_DIR "/tests/data/profile-cases.json"));
    ASSERT_TRUE(fixture.open(QIODevice::ReadOnly));
    const QJsonArray cases = QJsonDocument::fromJson(fixture.readAll()).array();
    ASSERT_GT(cases.size(), 100);
    for (const auto& entry : cases) {
        const QJsonObject row = entry.toObject();
        SCOPED_TRACE(row["name"].toString().toStdString());
        ::unlink(HostName(HostPath(ini)).constData());
        if (!row["file"].isNull())
            store(row["file"].toString().toLatin1());
        const QJsonArray steps = row["steps"].toArray();
        for (const auto& value : steps) {
            const QJsonArray step = value.toArray();
            const QString what = step[0].toString();
            const QString section = textOf(step[1]);
            SCOPED_TRACE(QJsonDocument(step).toJson(QJsonDocument::Compact).toStdString());
            if (what == u"text") {
                EXPECT_EQ(ProfileText(section, textOf(step[2]), textOf(step[3]), ini,
                                      step.size() > 5 ? step[4].toInt() : 255),
                          step.last().toString());
            } else if (what == u"number") {
                EXPECT_EQ(ProfileInteger(section, textOf(step[2]), step[3].toInt(), ini), step[4].toInt());
            } else if (what == u"keys") {
                EXPECT_EQ(QJsonArray::fromStringList(ProfileKeys(section, ini)), step[2].toArray());
            } else if (what == u"sections") {
                EXPECT_EQ(QJsonArray::fromStringList(ProfileSections(ini)), step[1].toArray());
            } else {
                EXPECT_EQ(WriteProfileText(section, textOf(step[2]), textOf(step[3]), ini), step[4].toInt());
            }
        }
        const QJsonValue after = row.contains("after") ? row["after"] : row["file"];
        EXPECT_EQ(stored(),
                  after.isNull() ? std::nullopt : std::optional<QByteArray>(after.toString().toLatin1()));
    }
}

TEST_F(ProfileFile, HasNoLimitOfItsOwnButTheBuffer) {
    const QString name(400, u'N');
    const QString value(60000, u'v');
    store("[s]\r\n;" + QByteArray(5000, 'c') + "\r\n");
    ASSERT_EQ(WriteProfileText(name, name, value, ini), ProfileOk);
    EXPECT_EQ(ProfileText(name.toLower(), name, {}, ini), value.left(254));
    EXPECT_EQ(ProfileText(name, name, {}, ini, 70000), value);
}

// A CR that a removal brings before a CR LF makes one line end of them for whoever reads the file next.
TEST(ProfileDocument, AGroupSeesLineEndsThatGrowTogether) {
    ProfileDocument group("[s]\ra=1\rb=2\n\r\nc=3\r\n");
    ProfileDocument one(group.bytes());
    for (ProfileDocument* document : {&group, &one})
        document->remove("s", "b");
    one = ProfileDocument(one.bytes());
    for (ProfileDocument* document : {&group, &one}) {
        document->remove("s", "c");
        document->set("s", "n", "x");
    }
    EXPECT_EQ(one.bytes(), "[s]\ra=1\r\r\nn=x\r\n");
    EXPECT_EQ(group.bytes(), one.bytes());
}

// Several programs of the suite change the same file. Whatever sequence of changes is made, as one group or
// one by one, the bytes are the same, and lines that no change names stay.
TEST(ProfileDocument, AGroupOfChangesLeavesTheBytesOfSingleOnes) {
    std::mt19937 random(7);
    const auto pick = [&random](const QStringList& list) {
        return list[static_cast<qsizetype>(random() % static_cast<size_t>(list.size()))];
    };
    const QStringList lines = {"[s]",   "[t] x", "[s",     "a=1",     "A = 2",
                               " b=x ", "flag",  "; note", "",        "  ",
                               "[]",    "=e",    "c",      "a=\"q\"", QString::fromLatin1("d=1\0z", 5)};
    const QStringList ends = {"\r\n", "\r\n", "\n", "\r", "\r\r\n", "\r\r", "\n\r"};
    const QStringList names = {"a", "B", "c", "flag", "", ";k", "x=y", "\ttab", "[u", " d ", "new"};
    const QStringList sections = {"s", "T", "", "u", "v]w", "\tx"};
    for (int round = 0; round < 3000; ++round) {
        QString text;
        for (unsigned n = random() % 12; n > 0; --n)
            text += pick(lines) + pick(ends);
        if (random() % 3 == 0)
            text += pick(lines);
        QByteArray single = text.toLatin1();
        if (random() % 4 == 0) {
            single = "\xFF\xFE";
            single.append(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
        }
        const QByteArray before = single;
        ProfileDocument group(single);
        ASSERT_EQ(group.bytes(), before);
        for (unsigned n = random() % 8 + 1; n > 0; --n) {
            const QString section = pick(sections);
            const QString key = pick(names);
            const unsigned what = random() % 8;
            ProfileDocument one(single);
            for (ProfileDocument* document : {&group, &one}) {
                if (what < 4)
                    document->set(section, key, QString::number(n));
                else if (what < 7)
                    document->remove(section, key);
                else
                    document->removeSection(section);
            }
            single = one.bytes();
            ASSERT_EQ(group.bytes(), single) << before.toPercentEncoding().toStdString();
            ASSERT_EQ(group.keys(section), ProfileDocument(single).keys(section));
        }
        for (const QByteArray& line : {QByteArray("; note"), QByteArray("[t] x")})
            ASSERT_LE(single.count(line) - before.count(line), 0);
        ASSERT_EQ(single.count("; note"), before.count("; note"));
    }
}

TEST_F(ProfileFile, AGroupIsWrittenOnceAndKeepsWhatAnotherProgramWroteMeanwhile) {
    store("[Audio]\nVolume = 3\n; keep\n\n[Other]\nx=1\n");
    ProfileBatch batch(ini);
    batch.put(QStringLiteral("Audio"), QStringLiteral("VOLUME"), 5);
    batch.put(QStringLiteral("FileLocations"), QStringLiteral("Data"), QStringLiteral("C:\\TOLVEX\\"));
    batch.put(QStringLiteral("Empty"), QStringLiteral("text"), QString());
    batch.remove(QStringLiteral("Audio"), QStringLiteral("nothing"));
    // Another program writes in place, same length, in the same moment.
    QFile other(HostPath(ini));
    ASSERT_TRUE(other.open(QIODevice::ReadWrite));
    other.write("[Audio]\nVolume = 3\n; keep\n\n[Other]\nx=2\n");
    other.close();
    ASSERT_EQ(batch.commit(), ProfileOk);
    EXPECT_EQ(stored(), "[Audio]\nVolume=5\r\n; keep\n\n[Other]\nx=2\n"
                        "[FileLocations]\r\nData=C:\\TOLVEX\\\r\n[Empty]\r\ntext=\r\n");
    EXPECT_EQ(batch.commit(), ProfileOk); // it is empty now

    // What is there already leaves the file alone: same file, same time.
    struct stat before {};
    struct stat after {};
    ASSERT_EQ(::stat(HostName(HostPath(ini)).constData(), &before), 0);
    ASSERT_EQ(WriteProfileText("Audio", "Volume", "5", ini), ProfileOk);
    ASSERT_EQ(::stat(HostName(HostPath(ini)).constData(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(ProfileFile, AReadSeesWhatAnotherProgramWroteAMomentAgo) {
    store("[s]\r\nk=1\r\n");
    for (char digit = '2'; digit <= '9'; ++digit) {
        EXPECT_EQ(ProfileInteger("s", "k", 0, ini), digit - '1');
        QFile other(HostPath(ini)); // in place, same size, within one step of the file system's clock
        ASSERT_TRUE(other.open(QIODevice::ReadWrite));
        other.write(QByteArray("[s]\r\nk=") + digit);
    }
    ::unlink(HostName(HostPath(ini)).constData());
    EXPECT_EQ(ProfileInteger("s", "k", 77, ini), 77);
}

TEST_F(ProfileFile, ABareNameLiesInTheWindowsFolderAndOnlyThere) {
    ASSERT_EQ(WriteProfileText("s", "k", "1", "tolvex.ini"), ProfileOk);
    EXPECT_EQ(ProfileText("s", "k", {}, "C:\\WINDOWS\\TOLVEX.INI"), "1");
    ASSERT_TRUE(SetCurrentFolder("C:\\"));
    EXPECT_EQ(WriteProfileText("s", "k", "2", ".\\tolvex.ini"), ProfileOk);
    EXPECT_EQ(ProfileText("s", "k", {}, "tolvex.ini"), "1");
    EXPECT_EQ(ProfileText("s", "k", {}, ini), "2");
}

TEST_F(ProfileFile, SaysWhyItCannotWriteAndReadsTheDefault) {
    const auto write = [](const char* file) {
        EXPECT_EQ(ProfileText("s", "k", "default", file), "default");
        const int error = WriteProfileText("s", "k", "v", file);
        EXPECT_EQ(CheckProfileWrite(file), error); // says so before
        return error;
    };
    EXPECT_EQ(write(""), ProfileAccessDenied);
    EXPECT_EQ(write("C:\\MISSING\\X.INI"), ProfilePathNotFound);
    EXPECT_EQ(write("Q:\\X.INI"), ProfileFileNotFound);
    EXPECT_EQ(write("\\\\SERVER\\SHARE\\X.INI"), ProfilePathNotFound);
    EXPECT_EQ(write("C:\\X*.INI"), ProfileInvalidName);
    EXPECT_EQ(write("C:\\WINDOWS"), ProfileAccessDenied);
}

TEST_F(ProfileFile, AFailedWriteLeavesTheOldFileWhole) {
    const QByteArray old = "[s]\r\nk=1\r\n";
    store(old);
    hostCalls().write = [](int descriptor, const void* bytes, size_t length) -> ssize_t {
        if (length <= 4)
            return errno = ENOSPC, -1;
        return ::write(descriptor, bytes, length / 2);
    };
    EXPECT_EQ(WriteProfileText("s", "other", QString(500, u'x'), ini), ProfileDiskFull);
    RestoreHostCalls();
    for (auto* fail :
         {+[] { hostCalls().flush = [](int) { return errno = EIO, -1; }; },
          +[] { hostCalls().rename = [](const char*, const char*) { return errno = EIO, -1; }; }}) {
        fail();
        EXPECT_EQ(WriteProfileText("s", "other", "2", ini), ProfileDeviceError);
        RestoreHostCalls();
        EXPECT_EQ(stored(), old);
    }
    const FileLock held(HostPath(ini));
    EXPECT_EQ(WriteProfileText("s", "other", "2", ini), ProfileSharingViolation);
    EXPECT_EQ(stored(), old);
    EXPECT_EQ(ProfileInteger("s", "k", 0, ini), 1);
}

TEST_F(ProfileFile, RightsCountAsTheyDoOnTheirPlatform) {
    const QByteArray folder = HostName(folder_.path() + "/locked");
    ASSERT_EQ(::mkdir(folder.constData(), 0755), 0);
    const QByteArray file = folder + "/x.ini";
    const auto make = [&file](mode_t mode, const QByteArray& bytes) {
        ASSERT_EQ(ReplaceHostFile(QString::fromUtf8(file), bytes), NoError);
        ASSERT_EQ(::chmod(file.constData(), mode), 0);
    };
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0755), 0);
    const QString path = WindowsPath(QString::fromUtf8(file));

    // A read-only file is not replaced, be its folder writable or not.
    ASSERT_EQ(::chmod(folder.constData(), 0777), 0);
    make(0444, "[s]\r\nk=1\r\n");
    EXPECT_TRUE(asOrdinaryUser([&path] {
        return CheckProfileWrite(path) == ProfileAccessDenied &&
               WriteProfileText("s", "k", "2", path) == ProfileAccessDenied &&
               ProfileInteger("s", "k", 0, path) == 1;
    }));
    // A writable file in a folder that takes no new files is written where it lies, longer and shorter.
    make(0666, "[s]\r\nk=1\r\nlong=abcdefgh\r\n");
    ASSERT_EQ(::chmod(folder.constData(), 0555), 0);
    EXPECT_TRUE(asOrdinaryUser([&path] {
        return CheckProfileWrite(path) == ProfileOk &&
               WriteProfileText("s", "k", "12345", path) == ProfileOk &&
               WriteProfileText("s", "long", {}, path) == ProfileOk &&
               WriteProfileText("s", "k", "1", path + "x") == ProfileAccessDenied;
    }));
    EXPECT_EQ(ReadHostFile(QString::fromUtf8(file), 1000), "[s]\r\nk=12345\r\n");
    ASSERT_EQ(::chmod(folder.constData(), 0755), 0);
}

// Sizes that no station has: they must not take for ever.
TEST(ProfileDocument, StaysQuickOnHugeText) {
    constexpr int count = 100'000;
    ProfileDocument document;
    for (int i = 0; i < count; ++i)
        document.set("s", QString::number(i), "v");
    EXPECT_EQ(document.keys("s").size(), count);
    for (int i = count - 1; i >= 0; --i)
        document.remove("s", QString::number(i));
    EXPECT_EQ(document.bytes(), "[s]\r\n");
    for (const char* unit : {"a=1\r\n", "[s]\r\n", "flag\n", "\r", "=", "\n;", "[", "x"}) {
        const QByteArray bytes = QByteArray(unit).repeated(count);
        ProfileDocument same(bytes);
        for (int i = 0; i < 100; ++i)
            same.remove("s", "a");
        same.set("s", "flag", "1");
        same.removeSection("s");
        EXPECT_GE(same.bytes().size(), 0);
    }
    EXPECT_FALSE(
        ProfileDocument(QByteArray("[\n").repeated(static_cast<qsizetype>(ProfileDocument::mostLines + 1)))
            .valid());
}
