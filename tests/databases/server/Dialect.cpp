#include "databases/server/Dialect.h"

#include <algorithm>
#include <cctype>

namespace testserver {

namespace {

bool isWordLetter(char letter) {
    return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '_' || letter == '@' ||
           (letter & 0x80) != 0;
}

// A quoted piece that starts at `at`, with its closing sign doubled inside; `at` moves past it.
std::string quotedPiece(const std::string& sql, std::size_t& at, char closing) {
    std::string piece;
    for (++at; at < sql.size(); ++at) {
        if (sql[at] == closing && (++at >= sql.size() || sql[at] != closing))
            return piece;
        piece += sql[at];
    }
    throw BadStatement{"Unclosed quotation mark."};
}

void replaceAll(Tokens& tokens, const std::vector<const char*>& wanted, const Tokens& by) {
    const auto matches = [](const Token& token, const char* text) {
        return token.kind != Token::Text && token.text == text;
    };
    for (auto at = tokens.begin();;) {
        at = std::search(at, tokens.end(), wanted.begin(), wanted.end(), matches);
        if (at == tokens.end())
            return;
        at = tokens.erase(at, at + static_cast<std::ptrdiff_t>(wanted.size()));
        at = tokens.insert(at, by.begin(), by.end()) + static_cast<std::ptrdiff_t>(by.size());
    }
}

// Texts compare as in the server, and are limited to their length.
void translateTypes(Tokens& tokens) {
    for (std::size_t i = 1; i + 3 < tokens.size(); ++i) {
        if (!tokens[i].is("NVARCHAR") || !tokens[i + 1].is("("))
            continue;
        const std::string size = tokens[i + 2].text;
        tokens[i].text = size == "MAX" ? "NVARCHAR_MAX COLLATE SERVER"
                                       : "NVARCHAR(" + size + ") COLLATE SERVER CHECK (length(" +
                                             Quoted(tokens[i - 1].text) + ") <= " + size + ")";
        const auto behind = tokens.begin() + static_cast<std::ptrdiff_t>(i) + 1;
        tokens.erase(behind, behind + 3);
    }
}

// Names of indexes belong to their table on a server, and to the whole database in the engine.
void translateIndex(Tokens& tokens) {
    for (std::size_t i = 1; i < 3 && i + 3 < tokens.size(); ++i)
        if (tokens[0].is("CREATE") && tokens[i].is("INDEX"))
            tokens[i + 1].text = IndexName(tokens[i + 3].text, tokens[i + 1].text);
}

// A text between two signs, with these doubled inside.
std::string between(const std::string& text, char sign) {
    std::string whole(1, sign);
    for (const char letter : text)
        whole.append(letter == sign ? 2 : 1, letter);
    return whole + sign;
}

bool begins(const Tokens& tokens, const std::vector<const char*>& words) {
    for (std::size_t i = 0; i < words.size(); ++i)
        if (i >= tokens.size() || (*words[i] != '\0' && !tokens[i].is(words[i])))
            return false;
    return true;
}

} // namespace

Tokens Tokenize(const std::string& sql) {
    Tokens tokens;
    for (std::size_t at = 0; at < sql.size();) {
        const char letter = sql[at];
        if (std::isspace(static_cast<unsigned char>(letter)) != 0) {
            ++at;
        } else if (letter == '\'') {
            tokens.push_back({Token::Text, quotedPiece(sql, at, '\'')});
        } else if (letter == '[' || letter == '"') {
            tokens.push_back({Token::Name, quotedPiece(sql, at, letter == '[' ? ']' : '"')});
        } else if (isWordLetter(letter)) {
            Token word{Token::Word, {}};
            for (; at < sql.size() && isWordLetter(sql[at]); ++at)
                word.text += static_cast<char>(std::toupper(static_cast<unsigned char>(sql[at])));
            tokens.push_back(word);
        } else {
            const std::size_t length = std::max<std::size_t>(sql.find_first_not_of("<>=", at), at + 1) - at;
            tokens.push_back({Token::Sign, sql.substr(at, length)});
            at += tokens.back().text.size();
        }
    }
    return tokens;
}

std::string Quoted(const std::string& name) {
    return between(name, '"');
}

std::string IndexName(const std::string& table, const std::string& index) {
    return table + '|' + index;
}

std::string Translate(Tokens tokens) {
    replaceAll(tokens, {"WITH", "(", "UPDLOCK", ")"}, {});
    replaceAll(tokens, {"dbo", "."}, {});
    replaceAll(tokens, {"MASTER", ".", ".", "SYSDATABASES"}, {{Token::Name, "sysdatabases"}});
    translateTypes(tokens);
    translateIndex(tokens);
    std::string sql;
    for (const Token& token : tokens) {
        if (token.kind == Token::Name) {
            sql += Quoted(token.text);
        } else if (token.kind == Token::Text) {
            sql += between(token.text, '\'');
        } else {
            sql += token.text;
        }
        sql += token.is(".") ? "" : " ";
    }
    return sql;
}

std::string DatabaseToCreate(const Tokens& tokens) {
    return tokens.size() == 3 && begins(tokens, {"CREATE", "DATABASE"}) ? tokens[2].text : std::string();
}

Alteration FindAlteration(const Tokens& all) {
    Tokens tokens = all;
    replaceAll(tokens, {"dbo", "."}, {});
    if (begins(tokens, {"ALTER", "TABLE", "", "ALTER", "COLUMN", ""}))
        return {tokens[2].text, {}, {tokens[5].text}};
    if (!begins(tokens, {"ALTER", "TABLE", "", "ADD", "CONSTRAINT", "", "PRIMARY", "KEY", "("}))
        return {};
    Alteration found{tokens[2].text, tokens[5].text, {}};
    for (std::size_t i = 9; i < tokens.size(); ++i)
        if (tokens[i].kind == Token::Name)
            found.columns.push_back(tokens[i].text);
    return found;
}

bool NamesBare(const Tokens& tokens, const std::string& table) {
    for (std::size_t i = 1; i < tokens.size(); ++i)
        if (tokens[i].kind == Token::Name && tokens[i].text == table && tokens[i - 1].is("FROM"))
            return true;
    return false;
}

} // namespace testserver
