// A tolvexctl that runs until it is stopped, beside the test and its devices and peers.
#pragma once

#include "RunCtl.h"

#include "support/WaitFor.h"

#include <QJsonArray>
#include <QJsonObject>

namespace tolvex::tests {

class RunningCtl : public Ctl {
protected:
    void SetUp() override {
        ASSERT_EQ(run({"profile", "set", "tolvex.ini", "FileLocations", "Data", "C:\\DATA"}).status, 0);
        QDir().mkpath(onC("DATA"));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("TOLVEX_HOME", home());
        environment.insert("LC_ALL", "C.UTF-8");
        process.setProcessEnvironment(environment);
    }
    void start(const QStringList& words) {
        process.start(QStringLiteral(TOLVEX_BIN_DIR "/tolvexctl"), words);
        ASSERT_TRUE(process.waitForStarted());
    }
    // The next object that the program printed.
    QJsonObject next() {
        EXPECT_TRUE(
            waitFor([this] { return process.canReadLine() || process.state() == QProcess::NotRunning; }));
        QJsonObject event = QJsonDocument::fromJson(process.readLine()).object();
        EXPECT_TRUE(QDateTime::fromString(event.take("time").toString(), Qt::ISODate).isValid());
        return event;
    }
    int end() {
        process.terminate();
        EXPECT_TRUE(waitFor([this] { return process.state() == QProcess::NotRunning; }));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return process.exitCode();
    }

    QProcess process;
};

} // namespace tolvex::tests
