#include "network/server/NetworkControl.h"

#include "core/report/DebugLog.h"

namespace tolvex {

namespace {

using Passes = NetControlEventRow::Passes;

constexpr NetControlEventRow rows[] = {
    {NetConnecting, "ConnectingToNetworkMaster", std::nullopt, WantsControl},
    {NetConnected, "ConnectedToNetworkMaster", std::nullopt, WantsControl},
    {NetDisconnected, "DisconnectedFromNetworkMaster", std::nullopt, WantsControl},
    {NetTakingControl, "TakingNetworkControl", false, WantsControl},
    {NetControlTaken, "NetworkControlTaken", true, WantsControl},
    {NetControlFail, "NetworkControlFail", false, WantsControl, Passes::Text},
    {NetReleasingControl, "ReleasingNetworkControl", false, WantsControl},
    {NetControlEnded, "NetworkControlEnded", false, WantsControl, Passes::Reason},
    {NetMessage, "message", std::nullopt, WantsMessages, Passes::Text},
    {NetSendProgress, "SendProgress", std::nullopt, WantsSending, Passes::Figures},
    {NetSendComplete, "SendComplete", std::nullopt, WantsSending},
};

QString logLine(const NetControlEventRow& row, const NetControlEvent& event) {
    QString line = QStringLiteral("NETCONTROL: NetControlClient_") + QLatin1String(row.name);
    if (row.number == NetMessage)
        return line + QStringLiteral(": \"%1\"").arg(event.text);
    if (row.number == NetSendProgress)
        return line + QStringLiteral(" %1,%2").arg(event.value1).arg(event.value2);
    return line;
}

NetControlEvent passedOn(const NetControlEventRow& row, const NetControlEvent& event) {
    NetControlEvent passed{row.number, 0, 0, {}};
    if (row.passes == Passes::Reason || row.passes == Passes::Figures)
        passed.value1 = event.value1;
    if (row.passes == Passes::Figures)
        passed.value2 = event.value2;
    if (row.passes == Passes::Text)
        passed.text = event.text;
    return passed;
}

} // namespace

std::span<const NetControlEventRow> NetControlEvents() {
    return rows;
}

NetworkControl::NetworkControl(std::function<void(bool on)> setOutputs,
                               std::function<void(const NetControlEventRow&, const NetControlEvent&)> told)
    : setOutputs_(std::move(setOutputs))
    , told_(std::move(told)) {}

NetworkControl::~NetworkControl() {
    setClient(nullptr);
}

void NetworkControl::setClient(NetControlClient* client) {
    if (client_)
        client_->onEvent = {};
    client_ = client;
    if (client_)
        client_->onEvent = [this](const NetControlEvent& event) { take(event); };
}

QString NetworkControl::description() const {
    return client_ ? QString()
                   : QStringLiteral("No network control client is installed on this workstation.");
}

void NetworkControl::stop() {
    if (client_)
        client_->stop();
    UnRegisterAllNetControlForms();
}

void NetworkControl::SendMessageToNetwork(const QString& text) {
    DebugLog(QStringLiteral("NETCONTROL: SendMessageToNetwork: \"%1\"").arg(text));
    if (client_)
        client_->send(text);
}

void NetworkControl::take(const NetControlEvent& event) {
    for (const NetControlEventRow& row : rows) {
        if (row.number != event.number)
            continue;
        DebugLog(logLine(row, event));
        if (row.outputs && setOutputs_)
            setOutputs_(*row.outputs);
        const NetControlEvent passed = passedOn(row, event);
        if (told_)
            told_(row, passed);
        dispatch(row, passed);
        return;
    }
}

// The list may change while a subscriber is told: each place is read when its turn comes, and a place that
// was added meanwhile waits for the next event.
void NetworkControl::dispatch(const NetControlEventRow& row, const NetControlEvent& event) {
    const qsizetype count = subscribers_.size();
    for (qsizetype i = 0; i < count; ++i) {
        const Subscriber subscriber = subscribers_[i];
        if (!subscriber.form || (subscriber.mask & row.mask) == 0)
            continue;
        // Each gets copies of its own: it is handed references.
        NetControlEvent own = event;
        subscriber.form->NetworkControlStatusNotice(own.number, own.value1, own.value2, own.text);
    }
}

bool NetworkControl::RegisterFormForNetControlEvents(NetControlSubscriber* form, qint32 mask) {
    Subscriber* place = nullptr;
    for (Subscriber& subscriber : subscribers_) {
        if (subscriber.form == form) {
            subscriber.mask = mask;
            return true;
        }
        if (!subscriber.form && !place)
            place = &subscriber;
    }
    if (!place)
        place = &subscribers_.emplaceBack();
    *place = {form, mask};
    return true;
}

bool NetworkControl::UnRegisterFormForNetControlEvents(NetControlSubscriber* form) {
    for (Subscriber& subscriber : subscribers_) {
        if (form && subscriber.form == form) {
            subscriber = {};
            return true;
        }
    }
    return false;
}

bool NetworkControl::UnRegisterAllNetControlForms() {
    for (Subscriber& subscriber : subscribers_)
        subscriber = {};
    return true;
}

} // namespace tolvex
