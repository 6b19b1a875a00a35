// Connect strings of servers as the suite's settings hold them: "ODBC;" and then attributes,
// "DRIVER={...};SERVER=...;UID=...". Values may stand in braces, a closing brace in them doubled.
#pragma once

#include <QString>

namespace tolvex {

// What is handed to the driver manager for a server: the string without its leading "ODBC;".
QString ServerAttributes(const QString& connect);

// The same for one database on it: with ";Database=" and the name, in braces where the name needs them. A
// database that the string names by itself gives way, since drivers take the first of two.
QString DatabaseAttributes(const QString& connect, const QString& database);

// What a user knows the server by: its data source, or its address, or its driver; "ODBC" when there is none
// of them.
QString ServerName(const QString& connect);

// The string as it may be shown and logged: a password in it becomes "***".
QString ShownConnect(const QString& connect);

} // namespace tolvex
