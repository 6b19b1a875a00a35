// Network control: the link to the network master of the automation, which decides which workstation has
// control. The client that keeps the link is a component of the suite; here it is a seam, with no client
// installed. Each of its events is logged, sets the "Has Control" outputs, and goes to the subscribers that
// want them.
#pragma once

#include <QList>
#include <QString>

#include <functional>
#include <optional>
#include <span>

namespace tolvex {

enum NetControlEventNumber : qint32 {
    NetConnected = 1,
    NetConnecting = 2,
    NetDisconnected = 7,
    NetTakingControl = 17,
    NetControlTaken = 20,
    NetControlFail = 23,
    NetReleasingControl = 28,
    NetControlEnded = 31, // value1: the reason that the client gave
    NetMessage = 250,     // text
    NetSendComplete = 252,
    NetSendProgress = 253, // value1, value2: its two figures
};

// What a subscriber wants; bits add up.
enum NetControlMask : qint32 { WantsMessages = 1, WantsControl = 2, WantsSending = 4 };

struct NetControlEvent {
    qint32 number = 0;
    qint32 value1 = 0;
    qint32 value2 = 0;
    QString text; // of a message, and of control that failed
};

struct NetControlEventRow {
    enum class Passes {
        Nothing,
        Reason,
        Figures,
        Text
    }; // of the client's values; all others go as 0 or empty
    qint32 number;
    const char* name;            // "NetworkControlTaken"
    std::optional<bool> outputs; // what the "Has Control" outputs are set to
    qint32 mask;                 // the bit of the subscribers that get it
    Passes passes = Passes::Nothing;
};
std::span<const NetControlEventRow> NetControlEvents();

// The suite's client. Whoever has one installs it; it calls `onEvent`.
class NetControlClient {
public:
    virtual ~NetControlClient() = default;
    virtual void send(const QString& text) = 0;
    virtual void stop() = 0;
    std::function<void(const NetControlEvent&)> onEvent;
};

// A form or other part of the program that is told of events.
class NetControlSubscriber {
public:
    virtual void NetworkControlStatusNotice(qint32& event, qint32& value1, qint32& value2, QString& text) = 0;

protected:
    ~NetControlSubscriber() = default;
};

class NetworkControl {
public:
    // `setOutputs` sets every line that is marked "Has Control"; `told` gets each event of the table.
    explicit NetworkControl(std::function<void(bool on)> setOutputs = {},
                            std::function<void(const NetControlEventRow&, const NetControlEvent&)> told = {});
    ~NetworkControl();

    // Not owned; null: none is installed. The client's events arrive here until it is replaced.
    void setClient(NetControlClient* client);
    bool hasClient() const { return client_ != nullptr; }
    // "No network control client is installed on this workstation.", or empty.
    QString description() const;
    // Tells the client to stop and clears the subscribers.
    void stop();

    void SendMessageToNetwork(const QString& text);

    // Each returns true on success. A subscriber that is registered already gets the new mask; the place of
    // one that leaves goes to the next.
    bool RegisterFormForNetControlEvents(NetControlSubscriber* form, qint32 mask);
    bool UnRegisterFormForNetControlEvents(NetControlSubscriber* form);
    bool UnRegisterAllNetControlForms();

    // An event of the client.
    void take(const NetControlEvent& event);

private:
    struct Subscriber {
        NetControlSubscriber* form = nullptr;
        qint32 mask = 0;
    };
    void dispatch(const NetControlEventRow& row, const NetControlEvent& event);

    std::function<void(bool)> setOutputs_;
    std::function<void(const NetControlEventRow&, const NetControlEvent&)> told_;
    NetControlClient* client_ = nullptr;
    QList<Subscriber> subscribers_;
};

} // namespace tolvex
