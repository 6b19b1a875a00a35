#include "audio/ripping/ServerTest.h"

#include <QTcpSocket>

#include <algorithm>
#include <utility>

namespace tolvex {

namespace {

// A server that sends more without a line end is none of CD titles.
constexpr qsizetype longestGreeting = 1000; // bytes
constexpr qsizetype longestShown = 80;      // characters of it

// The codes with which a server turns clients away.
struct RefusalRow {
    const char* code;
    const char* reason;
};
constexpr RefusalRow refusals[] = {
    {"432", "it does not allow this computer to connect"},
    {"433", "too many others use it"},
    {"434", "it has too much to do"},
};

QString shownLine(const QByteArray& line) {
    QString text = QString::fromLatin1(line).trimmed();
    std::replace_if(
        text.begin(), text.end(), [](QChar c) { return !c.isPrint(); }, u'?');
    return text.size() > longestShown ? text.left(longestShown) + u'\u2026' : text;
}

} // namespace

ServerAnswer MeaningOfGreeting(const QByteArray& line, const QString& from) {
    const QByteArray code = line.left(3);
    const QString text = shownLine(line);
    if (code == "200" || code == "201")
        return {true, QStringLiteral("%1 is there and ready: \"%2\"").arg(from, text)};
    for (const RefusalRow& row : refusals)
        if (code == row.code)
            return {
                false,
                QStringLiteral("%1 takes nobody now, %2: \"%3\"").arg(from, QLatin1String(row.reason), text)};
    return {false, QStringLiteral("%1 answers, but not as a server of CD titles: \"%2\"").arg(from, text)};
}

ServerTest::ServerTest(std::function<void(const ServerAnswer&)> then, std::chrono::milliseconds patience)
    : then_(std::move(then))
    , patience_(patience) {
    limit_.setSingleShot(true);
    QObject::connect(&limit_, &QTimer::timeout, &limit_, [this] {
        const bool connected = socket_->state() == QAbstractSocket::ConnectedState;
        const QString text = connected
                                 ? QStringLiteral("%1 took the connection, but sent no greeting within %2 "
                                                  "seconds.")
                                 : QStringLiteral("%1 did not answer within %2 seconds.");
        end({false, text.arg(from_).arg(std::chrono::duration<double>(patience_).count())});
    });
}

ServerTest::~ServerTest() {
    stop();
}

void ServerTest::start(const QString& host, int port) {
    stop();
    host_ = host;
    from_ = QStringLiteral("%1, port %2,").arg(host).arg(port);
    greeting_.clear();
    socket_ = std::make_unique<QTcpSocket>();
    QObject::connect(socket_.get(), &QTcpSocket::readyRead, socket_.get(), [this] { receive(); });
    QObject::connect(socket_.get(), &QTcpSocket::errorOccurred, socket_.get(), [this] { fail(); });
    limit_.start(patience_);
    socket_->connectToHost(host, static_cast<quint16>(port));
}

void ServerTest::stop() {
    limit_.stop();
    if (!socket_)
        return;
    // Inside one of its own signals a socket cannot be destroyed.
    QTcpSocket* old = socket_.release();
    old->disconnect();
    old->abort();
    old->deleteLater();
}

void ServerTest::receive() {
    greeting_ += socket_->read(longestGreeting - greeting_.size());
    const qsizetype lineEnd = greeting_.indexOf('\n');
    if (lineEnd >= 0 || greeting_.size() >= longestGreeting)
        end(MeaningOfGreeting(greeting_.left(lineEnd), from_));
}

void ServerTest::fail() {
    switch (socket_->error()) {
    case QAbstractSocket::HostNotFoundError:
        return end(
            {false,
             QStringLiteral("There is no server called %1, or no network to look it up in.").arg(host_)});
    case QAbstractSocket::ConnectionRefusedError:
        return end({false, QStringLiteral("%1 refused the connection: nothing listens there.").arg(from_)});
    case QAbstractSocket::RemoteHostClosedError:
        return end({false, QStringLiteral("%1 closed the connection without a greeting.").arg(from_)});
    default:
        return end({false, QStringLiteral("%1 cannot be reached: %2.").arg(from_, socket_->errorString())});
    }
}

void ServerTest::end(const ServerAnswer& answer) {
    const ServerAnswer kept = answer;
    stop();
    then_(kept);
}

} // namespace tolvex
