#include "databases/odbc/OdbcError.h"

#include "jet/Error.h"

#include <algorithm>

namespace tolvex {

namespace {

using jet::ErrorNumber;

// A SQL server's own error numbers and their numbers in the suite.
constexpr struct {
    int native;
    int number;
} nativeNumbers[] = {
    {207, ItemNotFoundError},                             // invalid column name
    {208, static_cast<int>(ErrorNumber::TableNotFound)},  // invalid object name
    {229, NoPermissionOnServer},                          // on an object
    {230, NoPermissionOnServer},                          // on a column
    {241, static_cast<int>(ErrorNumber::TypeConversion)}, // text that is not a date
    {245, static_cast<int>(ErrorNumber::TypeConversion)}, // text that is not a number
    {515, static_cast<int>(ErrorNumber::RequiredFieldEmpty)},
    {1205, static_cast<int>(ErrorNumber::RecordLocked)},   // chosen to end a deadlock
    {1222, static_cast<int>(ErrorNumber::RecordLocked)},   // waited too long for a lock
    {1505, DuplicateKeyError},                             // while an index is made
    {1801, static_cast<int>(ErrorNumber::DatabaseExists)}, //
    {1913, static_cast<int>(ErrorNumber::IndexExists)},    //
    {2601, DuplicateKeyError},                             // in a unique index
    {2627, DuplicateKeyError},                             // in a constraint
    {2628, static_cast<int>(ErrorNumber::FieldTooSmall)},  //
    {2705, static_cast<int>(ErrorNumber::FieldExists)},    //
    {2714, static_cast<int>(ErrorNumber::TableExists)},    // or another object of that name
    {3906, static_cast<int>(ErrorNumber::CannotUpdateReadOnly)},
    {8114, static_cast<int>(ErrorNumber::TypeConversion)},
    {8152, static_cast<int>(ErrorNumber::FieldTooSmall)}, // text would be cut
};

// The standard's states, for numbers that are not known.
constexpr struct {
    const char* state;
    ErrorNumber number;
} states[] = {
    {"22001", ErrorNumber::FieldTooSmall},  {"22003", ErrorNumber::TypeConversion},
    {"22007", ErrorNumber::TypeConversion}, {"22018", ErrorNumber::TypeConversion},
    {"42S01", ErrorNumber::TableExists},    {"42S02", ErrorNumber::TableNotFound},
    {"42S11", ErrorNumber::IndexExists},    {"42S21", ErrorNumber::FieldExists},
    {"42S22", ErrorNumber::ItemNotFound},
};

int meaningOf(const OdbcDiagnostic& record) {
    for (const auto& known : nativeNumbers)
        if (known.native == record.native)
            return known.number;
    for (const auto& known : states)
        if (record.state == QLatin1String(known.state))
            return static_cast<int>(known.number);
    return ServerCallFailed;
}

QString sentenceFor(int number) {
    switch (number) {
    case ServerCallFailed:
        return QStringLiteral("ODBC--call failed.");
    case NoPermissionOnServer:
        return QStringLiteral("The server refuses the use of an object.");
    default:
        return QString::fromStdString(jet::ErrorText(static_cast<ErrorNumber>(number)));
    }
}

// All messages, each text once.
QString saidBy(const QList<OdbcDiagnostic>& records) {
    QStringList texts;
    for (const OdbcDiagnostic& record : records) {
        const QString text =
            QStringLiteral("%1 (%2, #%3)").arg(record.text.trimmed(), record.state).arg(record.native);
        if (!texts.contains(text))
            texts += text;
    }
    return texts.join(u'\n');
}

// Whether any state is of a class: its first two characters.
bool hasClass(const QList<OdbcDiagnostic>& records, const QString& wanted) {
    return std::any_of(records.begin(), records.end(),
                       [&](const OdbcDiagnostic& record) { return record.state.startsWith(wanted); });
}

// Errors after which the server has rolled the transaction back: to end a deadlock, because another changed
// the same row, in a trigger. FreeTDS reports a state of another class with them.
constexpr int undoneNumbers[] = {1205, 3960, 3609};

DatabaseError withSentence(int number, const QString& sentence, const QList<OdbcDiagnostic>& records) {
    return {number, records.isEmpty() ? sentence : sentence + u'\n' + saidBy(records)};
}

} // namespace

DatabaseError FromServer(const QList<OdbcDiagnostic>& records) {
    int number = ServerCallFailed;
    for (const OdbcDiagnostic& record : records) {
        number = meaningOf(record);
        if (number != ServerCallFailed)
            break;
    }
    return withSentence(number, sentenceFor(number), records);
}

DatabaseError NotConnected(const QString& server, const QList<OdbcDiagnostic>& records) {
    return withSentence(ConnectionFailed, QStringLiteral("ODBC--connection to '%1' failed.").arg(server),
                        records);
}

bool IsLost(const QList<OdbcDiagnostic>& records) {
    return hasClass(records, QStringLiteral("08"));
}

bool EndsTransaction(const QList<OdbcDiagnostic>& records) {
    return hasClass(records, QStringLiteral("40")) ||
           std::any_of(records.begin(), records.end(), [](const OdbcDiagnostic& record) {
               return std::find(std::begin(undoneNumbers), std::end(undoneNumbers), record.native) !=
                      std::end(undoneNumbers);
           });
}

} // namespace tolvex
