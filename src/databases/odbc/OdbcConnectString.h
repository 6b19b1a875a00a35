// Connect strings of servers as in the suite's settings: "ODBC;" and then attributes,
// "DRIVER={...};SERVER=...;UID=...". Values may be in braces, with closing braces doubled.
#pragma once

#include <QString>

namespace tolvex {

// The string for the driver manager to connect to a server: without the leading "ODBC;".
QString ServerAttributes(const QString& connect);

// The same for one database on it: with ";Database=" and the name, in braces if the name needs them. A
// database in the string itself is dropped, since drivers take the first of two.
QString DatabaseAttributes(const QString& connect, const QString& database);

// The user's name for the server: its data source, or its address, or its driver; "ODBC" if it has none of
// them.
QString ServerName(const QString& connect);

// The string for display and logs: a password in it becomes "***".
QString ShownConnect(const QString& connect);

} // namespace tolvex
