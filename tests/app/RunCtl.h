// Runs the built tolvexctl as a user would, with a machine folder of its own.
#pragma once

#include "TestPlaces.h"

#include <QDir>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace tolvex::tests {

class Ctl : public testing::Test {
protected:
    struct Result {
        int status = -1;
        QByteArray out;
        QByteArray err;
        QJsonDocument json() const { return QJsonDocument::fromJson(out); }
    };

    // `input`: standard input, which is not a terminal.
    Result run(const QStringList& words, const QByteArray& input = {}) const {
        return start(QStringLiteral(TOLVEX_BIN_DIR "/tolvexctl"), words, input);
    }
    // A line of shell, in which $ctl is the program.
    Result shell(const QString& line) const {
        return start(QStringLiteral("bash"), {"-c", "ctl='" TOLVEX_BIN_DIR "/tolvexctl'; " + line});
    }
    Result start(const QString& program, const QStringList& words, const QByteArray& input = {}) const {
        QProcess process;
        process.setWorkingDirectory(folder_.path());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("TOLVEX_HOME", home());
        environment.insert("LC_ALL", "C.UTF-8");
        environment.remove("ALSA_CONFIG_PATH");
        process.setProcessEnvironment(environment);
        process.start(program, words);
        process.write(input);
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(60000)) << "tolvexctl hangs";
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }

    QString home() const { return folder_.filePath("home"); }
    // The host path of something on drive C:.
    QString onC(const QString& name) const { return folder_.filePath("home/drive_c/" + name); }

    static QByteArray read(const QString& hostPath) {
        QFile file(hostPath);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void write(const QString& hostPath, const QByteArray& bytes) {
        QDir().mkpath(QFileInfo(hostPath).path());
        QFile file(hostPath);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    QTemporaryDir folder_;
};

} // namespace tolvex::tests
