// Connect strings in the forms that people write.
#include "databases/odbc/OdbcConnectString.h"

#include <gtest/gtest.h>

using namespace tolvex;

TEST(OdbcConnectString, NamesTheDatabaseOnce) {
    const struct {
        const char* connect;
        const char* name;
        const char* expected;
    } cases[] = {
        {"ODBC;DSN=Playout", "Songs", "DSN=Playout;Database=Songs"},
        {"odbc;DSN=Playout;;", "Songs", "DSN=Playout;Database=Songs"},
        {"DRIVER={A;B=}}C};UID=x", "Songs", "DRIVER={A;B=}}C};UID=x;Database=Songs"},
        {"ODBC;database=Old;DSN=P;Database = {O;ld} ;Y", "Songs", "DSN=P;Y;Database=Songs"},
        {"ODBC;DSN=P", "a;UID=sa", "DSN=P;Database={a;UID=sa};"},
        {"ODBC;DSN=P", "a}b", "DSN=P;Database={a}}b};"},
        {"ODBC;PWD={a", "x", "PWD={a;Database=x"}, // an open brace: kept as it stands
    };
    for (const auto& each : cases)
        EXPECT_EQ(DatabaseAttributes(each.connect, each.name).toStdString(), each.expected);
    EXPECT_EQ(ServerAttributes("ODBC;DSN=P;Database=Kept"), "DSN=P;Database=Kept");
}

TEST(OdbcConnectString, ShowsNoPassword) {
    EXPECT_EQ(ShownConnect("ODBC;DSN=P;UID=sa;"), "ODBC;DSN=P;UID=sa;");
    EXPECT_EQ(ShownConnect("ODBC;DSN=P;pwd={a;b}}c};UID=sa;"), "ODBC;DSN=P;pwd=***;UID=sa");
    EXPECT_EQ(ServerName("ODBC;DRIVER={D};SERVER=db1"), "db1");
    EXPECT_EQ(ServerName("ODBC;DRIVER={A}}B}"), "A}B");
    EXPECT_EQ(ServerName("ODBC;"), "ODBC");
}
