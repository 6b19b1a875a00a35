// A SQL server of a test's own: a folder, reached through the real driver manager, with the driver in
// tests/databases/server/ or over the wire.
#pragma once

#include "databases/DatabasesTest.h"
#include "databases/TdsServer.h"

#include <optional>

namespace tolvex::tests {

enum class Way { OwnDriver, Wire };

inline std::string NameOfWay(const testing::TestParamInfo<Way>& way) {
    return way.param == Way::Wire ? "OverTheWire" : "OwnDriver";
}

class ServerTest : public DatabasesTest {
protected:
    explicit ServerTest(Way way = Way::OwnDriver) {
        if (way == Way::Wire)
            wire.emplace(folder.path());
    }
    // `more`: attributes after those that lead to the server.
    QString connect(const QString& more = {}) const {
        return wire ? wire->connect(more)
                    : QStringLiteral("ODBC;DRIVER={Test Server};Server=%1;%2").arg(folder.path(), more);
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
    std::optional<TdsServer> wire;
};

} // namespace tolvex::tests
