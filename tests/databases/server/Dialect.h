// Translates statements for a SQL server to the engine in which the test server keeps its databases.
#pragma once

#include <string>
#include <vector>

namespace testserver {

struct Token {
    enum Kind { Word, Name, Text, Sign } kind = Word;
    std::string text; // of a Name without its brackets; words in capitals
    bool is(const char* word) const { return kind != Name && kind != Text && text == word; }
};
using Tokens = std::vector<Token>;

struct BadStatement {
    std::string why;
};

// Throws BadStatement.
Tokens Tokenize(const std::string& sql);

// The statement for the engine: without owners and lock hints, with types and index names that the engine
// supports, `master..sysdatabases` as a table.
std::string Translate(Tokens tokens);

// "CREATE DATABASE name": the name; else empty.
std::string DatabaseToCreate(const Tokens& tokens);

// "ALTER TABLE table ALTER COLUMN column ... NOT NULL" and "ALTER TABLE table ADD CONSTRAINT name PRIMARY KEY
// (columns)", which the engine does not support; else `table` is empty.
struct Alteration {
    std::string table;
    std::string constraint; // empty: the columns lose their nulls
    std::vector<std::string> columns;
};
Alteration FindAlteration(const Tokens& tokens);

// A table that the statement names without its owner.
bool NamesBare(const Tokens& tokens, const std::string& table);

std::string Quoted(const std::string& name);
// Names in the engine for the parts of a table.
std::string IndexName(const std::string& table, const std::string& index);

} // namespace testserver
