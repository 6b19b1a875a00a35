// The definition of a table: its columns, its indexes, where its pages are listed and its counters; and its
// stored form in definition pages. Fields of unknown meaning are kept as read, so that a definition is
// written back byte for byte as it was read.
#pragma once

#include "jet/base/RowPointer.h"
#include "jet/base/Value.h"

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace jet {

inline constexpr int MaximumColumns = 255;
inline constexpr int MaximumIndexes = 32;
inline constexpr int MaximumIndexColumns = 10;
inline constexpr std::uint16_t EnglishLanguage = 0x0409;
inline constexpr std::uint32_t TableStamp = 1625; // found in every definition

struct Column {
    enum Flag : std::uint8_t {
        FixedLength = 0x01,
        Updatable = 0x02,
        Autonumber = 0x04,
        System = 0x10,
        OwnerKey = 0x20, // a security identifier, stored under a key
    };
    enum Extended : std::uint8_t { Compressed = 0x01 };

    std::u16string name;
    ColumnType type = ColumnType::Long;
    std::uint16_t number = 0;        // bit in the null mask of rows
    std::uint16_t variableIndex = 0; // among the variable columns; for a fixed column: how many precede it
    std::uint16_t ordinal = 0;       // place in the display order
    std::uint16_t language = EnglishLanguage; // for Numeric: precision, then scale in the high byte
    std::uint8_t sortVersion = 0;             // 0: the order known here
    std::uint8_t flags = Updatable;
    std::uint8_t extended = 0;
    std::uint16_t fixedOffset = 0; // from the end of the row's column count
    std::uint16_t size = 0;        // bytes; Text: two per character; Memo and OLE: 0
    RowPointer ownedMap;           // Memo and OLE: the pages of its long values
    RowPointer freeMap;
    std::uint32_t stamp = TableStamp;
    std::uint8_t reserved = 0;
    std::uint32_t reservedTail = 0;

    bool isFixed() const { return (flags & FixedLength) != 0; }
    bool isLong() const { return type == ColumnType::Memo || type == ColumnType::Ole; }
    bool isText() const { return type == ColumnType::Text || type == ColumnType::Memo; }
    bool isAutonumber() const { return (flags & Autonumber) != 0 && type == ColumnType::Long; }
    // Numeric only.
    int precision() const { return language & 0xFF; }
    int scale() const { return language >> 8; }
};

struct IndexColumn {
    std::uint16_t number = 0; // of the column
    bool ascending = true;
};

// A tree of keys.
struct RealIndex {
    enum Flag : std::uint8_t { Unique = 0x01, IgnoreNulls = 0x02, Required = 0x08, Always = 0x80 };

    std::vector<IndexColumn> columns;
    RowPointer pages; // the map of the tree's pages
    PageNumber root = 0;
    std::uint8_t flags = Always;
    std::uint32_t entriesWhenMade = 0;
    std::uint32_t distinctKeys = 0;
    std::uint32_t reservedHead = 0; // of the counters
    std::uint32_t stamp = 1923;
    std::array<std::uint8_t, MaximumIndexColumns> reservedOrders = {}; // of the unused column slots
    std::uint32_t reserved = 0;
    std::array<std::uint8_t, 5> reservedTail = {};

    bool isUnique() const { return (flags & Unique) != 0; }
    bool ignoresNulls() const { return (flags & IgnoreNulls) != 0; }
    bool isRequired() const { return (flags & Required) != 0; }
};

// A name for a tree of keys, or one side of a relationship between tables. Several may share one tree.
struct LogicalIndex {
    enum class Role : std::uint8_t { None = 0, Referenced = 1, Referencing = 2 };
    enum class Kind : std::uint8_t { Plain = 0, Primary = 1, Foreign = 2 };

    std::u16string name;
    std::uint32_t number = 0; // in order of creation
    std::uint32_t real = 0;   // position among the real indexes
    Role role = Role::None;
    std::uint32_t otherNumber = 0xFFFFFFFF; // the index on the other side
    PageNumber otherTable = 0;
    std::uint8_t cascadeUpdates = 4; // 4: no relationship
    std::uint8_t cascadeDeletes = 4;
    Kind kind = Kind::Plain;
    std::uint32_t stamp = TableStamp;
    std::uint32_t reserved = 0;
};

struct TableDefinition {
    static constexpr std::uint8_t UserTable = 0x4E;
    static constexpr std::uint8_t SystemTable = 0x53;

    PageNumber page = 0; // the first definition page: the table's identity
    std::uint32_t rowCount = 0;
    std::uint32_t lastAutonumber = 0; // the last one assigned
    std::uint8_t type = UserTable;
    std::uint16_t columnNumbers = 0;   // highest column number ever given, plus 1
    std::uint16_t variableColumns = 0; // variable columns ever made
    RowPointer ownedMap;
    RowPointer freeMap;
    std::vector<Column> columns; // in the stored order: values of a row are given in this order
    std::vector<RealIndex> realIndexes;
    std::vector<LogicalIndex> logicalIndexes;
    std::uint32_t stamp = TableStamp;
    std::array<std::uint8_t, 16> reserved = {1}; // the first one lets the engine give autonumbers

    // Position of the column with this name (in any case) or number; -1: none.
    int findColumn(std::u16string_view name) const;
    int findColumnNumber(std::uint16_t number) const;
    // The index with this name, or of the primary key; null: none.
    const LogicalIndex* findIndex(std::u16string_view name) const;
    const LogicalIndex* primaryKey() const;
    // The name of a tree of keys in faults: "index 'Main'".
    std::string nameOfIndex(std::size_t realIndex) const;
    // Removes a tree with all its names; the numbers of those after it decrease by one.
    void removeIndex(std::size_t realIndex);
    // Positions of the columns in the order in which they are shown.
    std::vector<int> displayOrder() const;
    // Bytes of the fixed columns of a row.
    int fixedLength() const;
};

// The bytes that a value of a kind takes in a row; 0 for kinds whose columns state their own size.
int StoredSize(ColumnType type);

// Whether two names of tables, columns or indexes are equal: compared in the order of texts, without regard
// to case.
bool SameName(std::u16string_view a, std::u16string_view b);

// Reads the definition that begins on `page`, on all its pages, and checks everything that reading rows
// relies on: counts, lengths, column numbers and offsets, the columns of indexes. Throws ReadVerification if
// it is not sound.
TableDefinition ReadTableDefinition(Pager& pager, PageNumber page);
// The same with its numbers unchecked, for repair (DefinitionRepair.h). Throws ReadVerification only if the
// bytes are not a definition.
TableDefinition ReadUncheckedDefinition(Pager& pager, PageNumber page);

// The length of a stored definition, including its end mark.
std::size_t TableDefinitionLength(Pager& pager, PageNumber page);

// The pages of a definition, including the first one.
std::vector<PageNumber> DefinitionPages(Pager& pager, PageNumber page);

// Writes a definition to its page and as many more as it needs; frees pages it no longer needs.
void WriteTableDefinition(Pager& pager, const TableDefinition& definition);

// The definition as one string of bytes, the head of the first page included, and back.
Bytes EncodeTableDefinition(const TableDefinition& definition);
TableDefinition DecodeTableDefinition(std::span<const std::uint8_t> bytes, PageNumber page);

// The counters have fixed places on the first page and are read and changed there, so that they follow the
// pager's transactions.
struct TableCounters {
    static std::uint32_t rowCount(Pager& pager, PageNumber page);
    static std::uint32_t lastAutonumber(Pager& pager, PageNumber page);
    // Adds to the number of rows.
    static void addRows(Pager& pager, PageNumber page, int count);
    static void setLastAutonumber(Pager& pager, PageNumber page, std::uint32_t value);
    static void addDistinctKeys(Pager& pager, PageNumber page, int realIndex, std::uint32_t count);
};

} // namespace jet
