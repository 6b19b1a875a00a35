// Files of fixed records that other programs read and write at the same time.
#include "platform/SteadyTime.h"
#include "platform/files/Files.h"
#include "platform/host/HostFiles.h"
#include "platform/posix/Descriptor.h"
#include "support/MachineFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>

#include <fcntl.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tolvex::platform;
using tolvex::tests::TestMachine;

namespace {

constexpr int length = 300;
constexpr qint64 records = 100;

QByteArray recordOf(char letter) {
    return QByteArray(length, letter);
}

class RecordFiles : public testing::Test {
protected:
    RecordFiles() {
        machine.write("C:\\Carts1.lst", recordOf('A').repeated(records));
        file = RecordFile::open("C:\\CARTS1.LST", length, false);
    }
    // The change that another program makes to the file.
    int other() const {
        return ::open(HostName(machine.host("C:\\CARTS1.LST")).constData(), O_RDWR | O_CREAT, 0600);
    }
    int read(qint64 number) {
        got = recordOf('?');
        return file->read(number, got.data());
    }

    TestMachine machine;
    std::unique_ptr<RecordFile> file;
    QByteArray got;
};

} // namespace

TEST_F(RecordFiles, ShowAtOnceWhatOtherProgramsWrite) {
    ASSERT_EQ(read(7), NoError);
    EXPECT_EQ(got, recordOf('A'));
    const Descriptor writer(other());
    ASSERT_EQ(::pwrite(writer.get(), recordOf('B').constData(), length, 6 * length), length);
    EXPECT_EQ(read(7), NoError);
    EXPECT_EQ(got, recordOf('B'));
    // It grows, by a record and a half.
    ASSERT_EQ(::pwrite(writer.get(), recordOf('C').constData(), length, records * length), length);
    ASSERT_EQ(::pwrite(writer.get(), recordOf('C').constData(), length / 2, (records + 1) * length),
              length / 2);
    EXPECT_EQ(file->count(), records + 1);
    EXPECT_EQ(read(records + 1), NoError);
    EXPECT_EQ(got, recordOf('C'));
    EXPECT_EQ(read(records + 2), PastEndOfFile);
    EXPECT_EQ(got, recordOf('?'));
    EXPECT_EQ(file->write(3, recordOf('D').constData()), NoError);
    EXPECT_EQ(machine.read("C:\\Carts1.lst").mid(2 * length, length), recordOf('D'));
}

TEST_F(RecordFiles, TellOfAFileCutShortAndDoNotCrash) {
    ASSERT_EQ(read(records), NoError);
    const Descriptor writer(other());
    // To the middle of a page, whose rest then reads as zeros; and to nothing, so that no page is left.
    ASSERT_EQ(::ftruncate(writer.get(), 5 * length), 0);
    EXPECT_EQ(read(6), PastEndOfFile);
    EXPECT_EQ(read(records), PastEndOfFile);
    EXPECT_EQ(read(5), NoError);
    ASSERT_EQ(::ftruncate(writer.get(), 0), 0);
    EXPECT_EQ(read(1), PastEndOfFile);
    EXPECT_EQ(got, recordOf('?'));
    EXPECT_EQ(file->count(), 0);
    // And it returns. A record of zeros is a record.
    ASSERT_EQ(::ftruncate(writer.get(), 2 * length), 0);
    EXPECT_EQ(read(2), NoError);
    EXPECT_EQ(got, recordOf(0));
}

TEST_F(RecordFiles, SurviveAProgramThatEmptiesAndFillsTheFileAllTheTime) {
    const pid_t child = ::fork();
    if (child == 0) {
        const Descriptor writer(other());
        const QByteArray all = recordOf('A').repeated(records);
        for (;;)
            if (::ftruncate(writer.get(), 0) != 0 ||
                ::pwrite(writer.get(), all.constData(), static_cast<size_t>(all.size()), 0) < 0)
                ::_exit(1);
    }
    int whole = 0;
    for (int i = 0; i < 200'000; ++i) {
        const int error = read(1 + i % records);
        ASSERT_TRUE(error == NoError || error == PastEndOfFile) << error;
        whole += error == NoError && got.back() == 'A';
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_GT(whole, 0);
}

TEST_F(RecordFiles, TellOfAFileThatWasReplacedOrRemoved) {
    ASSERT_EQ(read(1), NoError);
    ASSERT_EQ(ReplaceWholeFile("C:\\Carts1.lst", recordOf('N').repeated(3)), NoError);
    // Writing to the file that nobody can see any more would lose the record.
    EXPECT_EQ(file->write(1, recordOf('W').constData()), FileNotFound);
    EXPECT_EQ(file->append(recordOf('W'), 2), FileNotFound);
    EXPECT_EQ(file->count(), 0);
    SkipAhead(std::chrono::milliseconds(150));
    EXPECT_EQ(read(1), FileNotFound);
    EXPECT_EQ(machine.read("C:\\Carts1.lst"), recordOf('N').repeated(3));
}

TEST_F(RecordFiles, AreReadWithoutASystemCallPerRecord) {
    // In strict mode the system kills a process at any call except read, write and exit. The check that comes
    // ten times a second is such a call: on a busy machine it may hit one try, but not all.
    int status = -1;
    for (int attempt = 0; attempt < 20 && status != 0; ++attempt) {
        const pid_t child = ::fork();
        if (child == 0) {
            bool good = read(1) == NoError;
            if (::prctl(PR_SET_SECCOMP, SECCOMP_MODE_STRICT) != 0)
                ::_exit(2);
            for (qint64 number = 1; number <= records; ++number)
                good = good && file->read(number, got.data()) == NoError;
            ::syscall(SYS_exit, good ? 0 : 1);
        }
        ::waitpid(child, &status, 0);
    }
    EXPECT_EQ(status, 0);
}

TEST_F(RecordFiles, GrowWholeOrNotAtAll) {
    EXPECT_EQ(file->append(recordOf('E'), 5000), NoError);
    EXPECT_EQ(file->write(records + 5002, recordOf('F').constData()), NoError);
    EXPECT_EQ(file->count(), records + 5002);
    ASSERT_EQ(read(records + 5000), NoError);
    EXPECT_EQ(got, recordOf('E'));
    ASSERT_EQ(read(records + 5001), NoError);
    EXPECT_EQ(got, recordOf(0));
    const QByteArray before = machine.read("C:\\Carts1.lst");

    ::signal(SIGXFSZ, SIG_IGN);
    struct rlimit old {};
    ::getrlimit(RLIMIT_FSIZE, &old);
    const struct rlimit full { static_cast<rlim_t>(before.size() + length / 2), old.rlim_max };
    ::setrlimit(RLIMIT_FSIZE, &full);
    const int one = file->write(records + 5003, recordOf('G').constData());
    const int many = file->append(recordOf('G'), 10000);
    ::setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_EQ(one, DiskFull);
    EXPECT_EQ(many, DiskFull);
    EXPECT_EQ(machine.read("C:\\Carts1.lst"), before);
}

TEST_F(RecordFiles, SayWhatIsWrong) {
    int error = -1;
    const struct {
        const char* path;
        int recordLength;
        bool create;
        int error;
    } cases[] = {
        {"C:\\Missing.lst", length, false, FileNotFound},  {"C:\\Missing\\x.lst", length, true, PathNotFound},
        {"C:\\WINDOWS", length, true, PathFileAccess},     {"Q:\\x.lst", length, true, PathNotFound},
        {"C:\\what?.lst", length, true, BadFileNumber},    {"C:\\Carts1.lst", 0, true, BadRecordLength},
        {"C:\\Carts1.lst\\x", length, true, PathNotFound}, {"", length, true, BadFileNumber},
        {"Z:\\proc\\version", length, true, NoError},
    };
    for (const auto& wanted : cases) {
        const auto opened = RecordFile::open(wanted.path, wanted.recordLength, wanted.create, &error);
        EXPECT_EQ(error, wanted.error) << wanted.path;
        EXPECT_EQ(opened != nullptr, error == NoError);
    }
    EXPECT_EQ(read(0), BadRecordNumber);
    EXPECT_EQ(read(-1), BadRecordNumber);
    EXPECT_EQ(read(std::numeric_limits<qint64>::max()), PastEndOfFile);
    EXPECT_EQ(file->write(0, got.constData()), BadRecordNumber);
    EXPECT_EQ(file->append("short", 1), BadRecordLength);
    const auto made = RecordFile::open("C:\\New.lst", length, true, &error);
    ASSERT_TRUE(made);
    EXPECT_EQ(made->read(1, got.data()), PastEndOfFile);
    EXPECT_EQ(made->append(recordOf('x'), 1), NoError);
    EXPECT_EQ(made->read(1, got.data()), NoError);
}
