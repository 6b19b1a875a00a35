// The test server as a process of its own, reached over TCP with Debian's FreeTDS driver.
#pragma once

#include "TestPlaces.h"

#include <gtest/gtest.h>

#include <QProcess>

#include <csignal>

#include <sys/wait.h>

namespace tolvex::tests {

class TdsServer {
public:
    explicit TdsServer(const QString& folder) {
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.start(QStringLiteral(TOLVEX_TDS_SERVER), {folder});
        port_ = whatItSays();
    }
    ~TdsServer() {
        process_.kill();
        process_.waitForFinished();
    }
    TdsServer(const TdsServer&) = delete;
    TdsServer& operator=(const TdsServer&) = delete;

    // `more`: attributes for the server, which travel as the name of the client's program.
    QString connect(const QString& more = {}) const {
        return QStringLiteral("ODBC;DRIVER={FreeTDS};SERVER=127.0.0.1;PORT=%1;TDS_Version=7.4;"
                              "ClientCharset=UTF-8;UID=sa;PWD=right;APP={%2}")
            .arg(port_, more);
    }

    // It stays connected and does not answer.
    void hang() const {
        signal(SIGSTOP);
        siginfo_t stopped{}; // of all its threads
        EXPECT_EQ(::waitid(P_PID, static_cast<id_t>(process_.processId()), &stopped, WSTOPPED), 0);
    }
    void wake() const { signal(SIGCONT); }
    // Returns how many there were.
    int breakConnections() {
        signal(SIGUSR1);
        return whatItSays().toInt();
    }
    // The connection that would get the n-th answer from
    // now breaks: its request has been done. 0 means none.
    void loseAnswer(int n) {
        sigval value{};
        value.sival_int = n;
        ::sigqueue(static_cast<pid_t>(process_.processId()), SIGUSR2, value);
        EXPECT_EQ(whatItSays().toInt(), n);
    }

private:
    void signal(int number) const { ::kill(static_cast<pid_t>(process_.processId()), number); }
    QString whatItSays() {
        EXPECT_TRUE(process_.canReadLine() || process_.waitForReadyRead());
        return QString::fromLatin1(process_.readLine().trimmed());
    }

    QProcess process_;
    QString port_;
};

} // namespace tolvex::tests
