// Asks a server of CD titles whether it is there: connects and waits for its greeting, without holding up
// anybody. Such a server speaks first, one line with a code of three digits.
#pragma once

#include <QString>
#include <QTimer>

#include <functional>
#include <memory>

class QTcpSocket;

namespace tolvex {

struct ServerAnswer {
    bool ready = false; // it takes clients
    QString text;       // a sentence for the user
};

// What a greeting means, its first line without the line end. `from`: "gnudb.gnudb.org, port 8880".
ServerAnswer MeaningOfGreeting(const QByteArray& line, const QString& from);

class ServerTest {
public:
    // For the name to be looked up, the connection and the greeting together.
    static constexpr std::chrono::milliseconds Patience{3000};

    // Each test that is not stopped ends with one call of `then`, in which another one may begin.
    explicit ServerTest(std::function<void(const ServerAnswer&)> then,
                        std::chrono::milliseconds patience = Patience);
    ~ServerTest();
    ServerTest(const ServerTest&) = delete;
    ServerTest& operator=(const ServerTest&) = delete;

    // Begins a test; one that runs ends without a word. `port` from 1 to 65535.
    void start(const QString& host, int port);
    void stop();
    bool running() const { return socket_ != nullptr; }

private:
    void receive();
    void fail();
    void end(const ServerAnswer& answer);

    std::function<void(const ServerAnswer&)> then_;
    std::chrono::milliseconds patience_;
    QTimer limit_;
    std::unique_ptr<QTcpSocket> socket_; // null: no test runs
    QString host_;
    QString from_;
    QByteArray greeting_;
};

} // namespace tolvex
