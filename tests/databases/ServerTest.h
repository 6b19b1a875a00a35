// A SQL server of a test's own: a folder, reached through the real driver manager with the driver that lies
// in tests/databases/server/.
#pragma once

#include "databases/DatabasesTest.h"

namespace tolvex::tests {

class ServerTest : public DatabasesTest {
protected:
    // `more`: attributes behind those that lead to the server.
    QString connect(const QString& more = {}) const {
        return QStringLiteral("ODBC;DRIVER={Test Server};Server=%1;%2").arg(folder.path(), more);
    }
    // Makes a database of a kind with its Description row.
    void makeOnServer(const QString& name, qint32 type, QString title = QStringLiteral("A title")) const {
        ASSERT_EQ(ValidateDatabase(name, type, true, &title, connect()), 0)
            << texts().join('|').toStdString();
    }
    std::unique_ptr<SuiteDatabase> openOnServer(const QString& name, const QString& more = {}) const {
        return OpenSuiteDatabase(name, connect(more));
    }

    QTemporaryDir folder;
};

} // namespace tolvex::tests
