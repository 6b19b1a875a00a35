#include "databases/tds/Client.h"

#include <algorithm>
#include <cstring>

namespace testserver::tds {

namespace {

enum Request : int { Batch = 1, Procedure = 3, Attention = 6, Transaction = 14, Login = 16, PreLogin = 18 };

// Procedures that are called by number.
constexpr struct {
    std::uint64_t number;
    const char* name;
} procedures[] = {
    {10, "SP_EXECUTESQL"}, {11, "SP_PREPARE"}, {12, "SP_EXECUTE"}, {13, "SP_PREPEXEC"}, {15, "SP_UNPREPARE"}};

// Names of transactions, one of which exists at a time: with the length before it, and none.
constexpr std::string_view OneTransaction("\x08\x01\x00\x00\x00\x00\x00\x00\x00", 9);
constexpr std::string_view NoTransaction("\x00", 1);

bool isCatalogue(const std::string& procedure) {
    return procedure == "SP_COLUMNS" || procedure == "SP_STATISTICS";
}

// "EXEC sp_columns @table_name = N'...', ...": the procedure and its parameters; empty for anything else.
std::string procedureOf(const Tokens& tokens, std::vector<Parameter>& parameters) {
    const std::size_t first = !tokens.empty() && tokens[0].is("EXEC") ? 1 : 0;
    if (first >= tokens.size() || tokens[first].kind != Token::Word || !isCatalogue(tokens[first].text))
        return {};
    for (const Token& token : tokens) {
        if (token.kind == Token::Word && token.text.starts_with("@"))
            parameters.emplace_back().name = token.text;
        else if (token.kind == Token::Text && !parameters.empty())
            parameters.back().text = token.text;
    }
    return tokens[first].text;
}

bool names(const Tokens& tokens, const char* word) {
    return std::any_of(tokens.begin(), tokens.end(), [&](const Token& token) { return token.is(word); });
}

std::string capitals(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char letter) { return letter >= 'a' && letter <= 'z' ? char(letter - 32) : letter; });
    return text;
}

// The value of an attribute in braces, with closing braces doubled.
std::string braced(const std::string& value) {
    std::string whole = "{";
    for (const char letter : value)
        whole.append(letter == '}' ? 2 : 1, letter);
    return whole + '}';
}

} // namespace

void Client::serve() {
    try {
        for (;;)
            answer(Receive(socket_));
    } catch (const WireError&) {
        // It is gone.
    }
}

void Client::answer(const Message& request) {
    Writer reply;
    const auto refuse = [&](const Fault& fault) {
        if (std::strcmp(fault.state, "08S01") == 0)
            throw WireError("the connection is to break");
        WriteError(reply, fault);
        WriteEnd(reply, request.type == Procedure ? End::Procedure : End::Statement, Failed);
    };
    try {
        handle(request, reply);
    } catch (const Fault& fault) {
        refuse(fault);
    } catch (const BadStatement& bad) {
        refuse({"42000", 105, "[Test Server]" + bad.why});
    }
    if (--answersLeft_ == 0)
        throw WireError("the answer is to be lost");
    Send(socket_, reply.bytes());
}

void Client::handle(const Message& request, Writer& reply) {
    if (request.type == PreLogin)
        return refuseEncryption(reply);
    if (request.type == Login)
        return login(request.body, reply);
    if (request.type == Attention)
        return WriteEnd(reply, End::Statement, Cancelled);
    if (!session_)
        throw WireError("a request before the login");
    Reader body(request.body);
    body.skipHeaders();
    if (request.type == Batch)
        run(body.restAsText(), End::Statement, {}, 0, reply);
    else if (request.type == Procedure)
        call(body, reply);
    else if (request.type == Transaction)
        changeTransaction(body, reply);
    else
        throw WireError("a request of an unknown kind");
}

// Options by number, with their big-endian places and lengths, followed by their values.
void Client::refuseEncryption(Writer& reply) {
    reply.raw({"\x00\x00\x0B\x00\x06"
               "\x01\x00\x11\x00\x01\xFF",
               11});
    reply.raw({"\x0F\x00\x07\xD0\x00\x00\x02", 7}); // the server's version; "not supported"
}

void Client::login(const Bytes& request, Writer& reply) {
    enum Field : std::size_t { User = 1, Password = 2, Program = 3, Database = 8 };
    constexpr std::size_t fieldsAt = 36; // an offset and a number of letters for each
    const auto field = [&](Field which) {
        Reader place(request);
        place.take(fieldsAt + 4 * which);
        const auto at = static_cast<std::size_t>(place.number(2));
        const auto letters = static_cast<std::size_t>(place.number(2));
        Reader value(request);
        value.take(at);
        return Bytes(value.take(letters * 2));
    };
    const auto text = [](const Bytes& letters) { return Reader(letters).restAsText(); };
    Bytes password = field(Password);
    for (char& byte : password) {
        const unsigned mixed = static_cast<unsigned char>(byte) ^ 0xA5u;
        byte = static_cast<char>((mixed << 4 | mixed >> 4) & 0xFF);
    }
    const std::string database = text(field(Database));
    session_ = std::make_unique<Session>("Server=" + braced(folder_) + ";Database=" + braced(database) +
                                         ";UID=" + braced(text(field(User))) +
                                         ";PWD=" + braced(text(password)) + ';' + text(field(Program)));
    WriteChange(reply, Change::Database, Writer().shortText(database.empty() ? "master" : database).bytes(),
                Writer().shortText("master").bytes());
    WriteChange(reply, Change::Collation, {"\x05\x09\x04\xD0\x00\x34", 6}, {"\x00", 1});
    WriteLoginDone(reply);
}

void Client::changeTransaction(Reader request, Writer& reply) {
    enum What { Begin = 5, Commit = 7, RollBack = 8 };
    const std::uint64_t what = request.number(2);
    if (what == Begin) {
        begin(reply);
    } else {
        end(what == Commit, reply);
        request.take(request.byte()); // its name
        if ((request.byte() & 1) != 0)
            begin(reply);
    }
    WriteEnd(reply, End::Statement, 0);
}

void Client::begin(Writer& reply) {
    session_->setAutomaticCommit(false);
    WriteChange(reply, Change::Begun, OneTransaction, NoTransaction);
}

void Client::end(bool commit, Writer& reply) {
    session_->setAutomaticCommit(true);
    session_->end(commit);
    WriteChange(reply, commit ? Change::Committed : Change::RolledBack, NoTransaction, OneTransaction);
}

void Client::call(Reader request, Writer& reply) {
    constexpr std::uint64_t byNumber = 0xFFFF;
    std::string name;
    if (const std::uint64_t letters = request.number(2); letters != byNumber) {
        name = capitals(request.text(static_cast<std::size_t>(letters)));
    } else {
        const std::uint64_t number = request.number(2);
        for (const auto& procedure : procedures)
            if (procedure.number == number)
                name = procedure.name;
    }
    request.number(2); // options
    Parameters parameters;
    while (!request.atEnd())
        parameters.push_back(ReadParameter(request));
    call(name, parameters, reply);
}

void Client::call(const std::string& procedure, const Parameters& parameters, Writer& reply) {
    const auto parameter = [&](std::size_t number) -> const Parameter& {
        if (number >= parameters.size())
            throw WireError("a procedure lacks a parameter");
        return parameters[number];
    };
    const auto prepared = [&](std::int64_t handle) -> const std::string& {
        if (handle < 1 || static_cast<std::size_t>(handle) > prepared_.size())
            throw Fault{"42000", 8179, "Could not find prepared statement."};
        return prepared_[static_cast<std::size_t>(handle) - 1];
    };
    int handle = 0;
    if (procedure == "SP_PREPARE" || procedure == "SP_PREPEXEC") { // handle, types, statement, values
        prepared_.push_back(parameter(2).text);
        handle = static_cast<int>(prepared_.size());
    }
    if (procedure == "SP_PREPEXEC")
        run(parameter(2).text, End::InProcedure, parameters, 3, reply);
    else if (procedure == "SP_EXECUTE")
        run(prepared(parameter(0).whole), End::InProcedure, parameters, 1, reply);
    else if (procedure == "SP_EXECUTESQL") // statement, types, values
        run(parameter(0).text, End::InProcedure, parameters, 2, reply);
    else if (isCatalogue(procedure))
        listCatalogue(procedure, parameters, End::InProcedure, reply);
    else if (procedure != "SP_PREPARE" && procedure != "SP_UNPREPARE")
        throw Fault{"42000", 2812, "Could not find stored procedure '" + procedure + "'."};
    WriteProcedureEnd(reply, 0, handle);
}

void Client::listCatalogue(const std::string& procedure, const Parameters& parameters, End what,
                           Writer& reply) {
    std::string table;
    for (const Parameter& parameter : parameters)
        if (capitals(parameter.name) == "@TABLE_NAME")
            table = parameter.text;
    const bool ofColumns = procedure == "SP_COLUMNS";
    const Rows rows = ofColumns ? session_->columns(table) : session_->indexes(table);
    const std::uint64_t count =
        WriteRows(reply, ofColumns ? ColumnsOfTables() : ColumnsOfIndexes(), *session_, rows);
    WriteEnd(reply, what, Counted | (what == End::InProcedure ? More : 0), count);
}

void Client::run(const std::string& sql, End what, const Parameters& parameters, std::size_t first,
                 Writer& reply) {
    const int more = what == End::InProcedure ? More : 0;
    const Tokens tokens = Tokenize(sql);
    Parameters named;
    if (const std::string procedure = procedureOf(tokens, named); !procedure.empty())
        return listCatalogue(procedure, named, what, reply);
    const bool endsOne = names(tokens, "COMMIT") || names(tokens, "ROLLBACK");
    if (const bool beginsOne = names(tokens, "BEGIN"); endsOne || beginsOne) {
        if (endsOne)
            end(names(tokens, "COMMIT"), reply);
        if (beginsOne)
            begin(reply);
        return WriteEnd(reply, what, more);
    }
    const bool isOption = tokens.empty() || tokens[0].is("SET") || tokens[0].is("USE");
    const Rows rows = isOption ? Rows() : session_->prepare(sql, true);
    if (!rows)
        return WriteEnd(reply, what, more);
    for (std::size_t i = first; i < parameters.size(); ++i) {
        const int byName = sqlite3_bind_parameter_index(rows.get(), parameters[i].name.c_str());
        parameters[i].bind(rows.get(), byName != 0 ? byName : static_cast<int>(i - first) + 1);
    }
    if (sqlite3_column_count(rows.get()) > 0) {
        const std::uint64_t count = WriteRows(reply, ColumnsOf(rows.get()), *session_, rows);
        return WriteEnd(reply, what, Counted | more, count);
    }
    session_->step(rows);
    WriteEnd(reply, what, Counted | more,
             static_cast<std::uint64_t>(sqlite3_changes(sqlite3_db_handle(rows.get()))));
}

} // namespace testserver::tds
