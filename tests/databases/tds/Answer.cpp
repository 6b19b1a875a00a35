#include "databases/tds/Answer.h"

namespace testserver::tds {

namespace {

// The tokens of an answer.
enum Token : int {
    ReturnStatus = 0x79,
    ColumnMetadata = 0x81,
    ErrorToken = 0xAA,
    ReturnValue = 0xAC,
    LoginAck = 0xAD,
    RowToken = 0xD1,
    EnvironmentChange = 0xE3
};

constexpr int NullableAndMutable = 9;
constexpr Type Name{Type::Text, 128};
constexpr Type Short{Type::Whole, 2};
constexpr Type Long{Type::Whole, 4};

} // namespace

void WriteEnd(Writer& to, End what, int flags, std::uint64_t rows) {
    to.number(static_cast<std::uint64_t>(what), 1).number(static_cast<std::uint64_t>(flags), 2);
    to.number(0, 2).number(rows, 8);
}

void WriteError(Writer& to, const Fault& fault) {
    constexpr int severity = 16;
    Writer contents;
    contents.number(static_cast<std::uint64_t>(fault.native), 4).number(1, 1).number(severity, 1);
    contents.longText(fault.text).shortText("tests").shortText("").number(1, 4);
    to.token(ErrorToken, contents);
}

void WriteChange(Writer& to, Change what, std::string_view now, std::string_view before) {
    Writer contents;
    contents.number(static_cast<std::uint64_t>(what), 1).raw(now).raw(before);
    to.token(EnvironmentChange, contents);
}

void WriteLoginDone(Writer& to) {
    Writer contents;
    contents.number(1, 1).raw({"\x74\x00\x00\x04", 4}).shortText("Test Server").raw({"\x0D\x00\x00\x00", 4});
    to.token(LoginAck, contents);
    WriteEnd(to, End::Statement, 0);
}

void WriteProcedureEnd(Writer& to, int flags, int givenBack) {
    to.number(ReturnStatus, 1).number(0, 4);
    if (givenBack != 0) {
        constexpr int isOutput = 1;
        to.number(ReturnValue, 1).number(0, 2).shortText("").number(isOutput, 1).number(0, 6);
        Long.write(to);
        to.number(4, 1).number(static_cast<std::uint64_t>(givenBack), 4);
    }
    WriteEnd(to, End::Procedure, flags);
}

Columns ColumnsOf(sqlite3_stmt* rows) {
    Columns columns;
    for (int i = 0; i < sqlite3_column_count(rows); ++i)
        columns.emplace_back(sqlite3_column_name(rows, i), TypeOfColumn(rows, i));
    return columns;
}

const Columns& ColumnsOfTables() {
    static const Columns columns = {{"TABLE_QUALIFIER", Name},
                                    {"TABLE_OWNER", Name},
                                    {"TABLE_NAME", Name},
                                    {"COLUMN_NAME", Name},
                                    {"DATA_TYPE", Short},
                                    {"TYPE_NAME", Name},
                                    {"PRECISION", Long},
                                    {"LENGTH", Long},
                                    {"SCALE", Short},
                                    {"RADIX", Short},
                                    {"NULLABLE", Short},
                                    {"REMARKS", {Type::Text, 254}},
                                    {"COLUMN_DEF", {Type::Text, 4000}},
                                    {"SQL_DATA_TYPE", Short},
                                    {"SQL_DATETIME_SUB", Short},
                                    {"CHAR_OCTET_LENGTH", Long},
                                    {"ORDINAL_POSITION", Long},
                                    {"IS_NULLABLE", {Type::Text, 254}},
                                    {"SS_DATA_TYPE", Short}};
    return columns;
}

const Columns& ColumnsOfIndexes() {
    static const Columns columns = {{"TABLE_QUALIFIER", Name}, {"TABLE_OWNER", Name},
                                    {"TABLE_NAME", Name},      {"NON_UNIQUE", Short},
                                    {"INDEX_QUALIFIER", Name}, {"INDEX_NAME", Name},
                                    {"TYPE", Short},           {"SEQ_IN_INDEX", Short},
                                    {"COLUMN_NAME", Name},     {"COLLATION", {Type::Text, 1}},
                                    {"CARDINALITY", Long},     {"PAGES", Long},
                                    {"FILTER_CONDITION", Name}};
    return columns;
}

std::uint64_t WriteRows(Writer& to, const Columns& columns, Session& session, const Rows& rows) {
    to.number(ColumnMetadata, 1).number(columns.size(), 2);
    for (const auto& [name, type] : columns) {
        to.number(0, 4).number(NullableAndMutable, 2);
        type.write(to);
        to.shortText(name);
    }
    std::uint64_t count = 0;
    for (; session.step(rows); ++count) {
        to.number(RowToken, 1);
        for (std::size_t i = 0; i < columns.size(); ++i)
            WriteValue(to, columns[i].second, rows.get(), static_cast<int>(i));
    }
    return count;
}

} // namespace testserver::tds
