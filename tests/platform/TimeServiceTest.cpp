// Sets the system's clock through its time service, on a bus of the test's own, so that no clock moves.
#include "platform/Clock.h"
#include "support/WaitFor.h"
#include "support/WithoutRights.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace tolvex::platform;
using namespace tolvex::tests;

namespace {

const QDateTime moment = QDateTime::fromSecsSinceEpoch(1735689600);

// A time service with the behaviour that the tests want.
class FakeService : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        calls += message;
        connection.send(error.isEmpty() ? message.createReply()
                                        : message.createErrorReply(error, "No such luck"));
        return true;
    }
    QList<QDBusMessage> calls;
    QString error;
};

class TimeService : public testing::Test {
protected:
    void SetUp() override {
        daemon_.start("dbus-daemon",
                      {"--session", "--nofork", "--print-address", "--address=unix:path=" + address()});
        ASSERT_TRUE(daemon_.waitForStarted() && daemon_.waitForReadyRead());
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + address()).toUtf8());
    }
    void TearDown() override {
        qunsetenv("DBUS_SYSTEM_BUS_ADDRESS");
        daemon_.kill();
        daemon_.waitForFinished();
    }
    QString address() const { return folder_.filePath("bus"); }
    ClockRefusal set(bool mayAsk = true) {
        std::optional<ClockRefusal> answer;
        tolvex::platform::clock().set(moment, mayAsk,
                                      [&answer](const ClockRefusal& refusal) { answer = refusal; });
        EXPECT_TRUE(waitFor([&] { return answer.has_value(); }));
        return answer.value_or(ClockRefusal{-1, "no answer"});
    }

private:
    QTemporaryDir folder_;
    QProcess daemon_;
};

} // namespace

// This comes first, as a process that has used a bus cannot fork.
TEST(SystemClock, IsNotSetByThoseWhoMayNot) {
    EXPECT_TRUE(PassesWithoutRights([] {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus");
        int refusals = 0;
        tolvex::platform::clock().set(moment, true, [&refusals](const ClockRefusal& refusal) {
            refusals += refusal.number == NoRightToSetClock || refusal.number == ClockKeptByNetwork;
            EXPECT_FALSE(refusal.text.isEmpty());
        });
        tolvex::platform::clock().set(
            {}, true, [&refusals](const ClockRefusal& refusal) { refusals += bool(refusal); });
        EXPECT_EQ(refusals, 2);
    }));
}

TEST_F(TimeService, IsAskedAndItsRefusalsAreToldInWords) {
    FakeService service;
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SystemBus, "service");
    ASSERT_TRUE(bus.registerVirtualObject("/org/freedesktop/timedate1", &service));
    ASSERT_TRUE(bus.registerService("org.freedesktop.timedate1"));
    for (const bool mayAsk : {true, false}) {
        const ClockRefusal refusal = set(mayAsk);
        EXPECT_FALSE(refusal) << refusal.text.toStdString();
        const QDBusMessage& call = service.calls.last();
        EXPECT_EQ(call.interface() + '.' + call.member(), QString("org.freedesktop.timedate1.SetTime"));
        EXPECT_EQ(call.signature(), QString("xbb"));
        EXPECT_EQ(call.arguments(), (QVariantList{qlonglong(1735689600000000), false, mayAsk}));
    }
    const struct {
        const char* error;
        int number;
        const char* said;
    } rows[] = {
        {"org.freedesktop.timedate1.AutomaticTimeSyncEnabled", ClockKeptByNetwork,
         "keeps its time by the network"},
        {"org.freedesktop.DBus.Error.AccessDenied", NoRightToSetClock, "may not set"},
        {"org.freedesktop.DBus.Error.InteractiveAuthorizationRequired", NoRightToSetClock, "may not set"},
        {"org.freedesktop.DBus.Error.Failed", NoRightToSetClock, "No such luck"},
    };
    for (const auto& row : rows) {
        service.error = row.error;
        const ClockRefusal refusal = set();
        EXPECT_EQ(refusal.number, row.number) << row.error;
        EXPECT_TRUE(refusal.text.contains(row.said)) << refusal.text.toStdString();
    }
    bus.unregisterService("org.freedesktop.timedate1");
    QDBusConnection::disconnectFromBus("service");
}
