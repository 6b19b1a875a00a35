// One client of the test server on a socket: its login and its requests, answered by a Session.
#pragma once

#include "databases/tds/Answer.h"

#include <atomic>

namespace testserver::tds {

class Client {
public:
    // `folder`: where the server's databases lie. More attributes for the session arrive as the name of the
    // client's program ("LoseAfter=3;Locked=1"). `answersLeft`: counted down, and the connection is broken
    // instead of the answer that makes it zero.
    Client(int socket, std::string folder, std::atomic<int>& answersLeft)
        : socket_(socket)
        , folder_(std::move(folder))
        , answersLeft_(answersLeft) {}

    // Answers until the client leaves, or the session breaks the connection.
    void serve();

private:
    using Parameters = std::vector<Parameter>;

    void answer(const Message& request);
    void handle(const Message& request, Writer& reply);
    static void refuseEncryption(Writer& reply);
    void login(const Bytes& request, Writer& reply);
    void changeTransaction(Reader request, Writer& reply);
    void begin(Writer& reply);
    void end(bool commit, Writer& reply);
    void call(Reader request, Writer& reply);
    void call(const std::string& procedure, const Parameters& parameters, Writer& reply);
    void listCatalogue(const std::string& procedure, const Parameters& parameters, End what, Writer& reply);
    void run(const std::string& sql, End what, const Parameters& parameters, std::size_t first,
             Writer& reply);

    int socket_;
    std::string folder_;
    std::atomic<int>& answersLeft_;
    std::unique_ptr<Session> session_;
    std::vector<std::string> prepared_; // a statement's handle is its index, from 1
};

} // namespace testserver::tds
