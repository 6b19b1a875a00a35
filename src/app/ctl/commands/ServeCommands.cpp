// The LinkMesh server without a window, and who may connect to it.
#include "app/ctl/Commands.h"

#include "app/ctl/ClockRecords.h"
#include "app/ctl/Running.h"
#include "network/commands/CommandText.h"
#include "network/server/LinkMeshServer.h"
#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/process/Service.h"
#include "station/NetworkParts.h"

#include <QJsonDocument>

namespace tolvex::ctl {

namespace {

const char* effectWord(RemoteCommand::Effect effect) {
    switch (effect) {
    case RemoteCommand::Effect::Cart:
        return "cart";
    case RemoteCommand::Effect::Go:
        return "go";
    case RemoteCommand::Effect::Ignored:
        break;
    }
    return "ignored";
}

void addCommand(QJsonObject& record, const RemoteCommand& command) {
    record[QStringLiteral("text")] = command.text;
    record[QStringLiteral("effect")] = QLatin1String(effectWord(command.effect));
    if (command.effect == RemoteCommand::Effect::Cart)
        record[QStringLiteral("cart")] = command.cart;
}

QJsonObject recordOf(const ServerEvent& event) {
    QJsonObject record{{QStringLiteral("time"), platform::clock().now().toString(Qt::ISODate)},
                       {QStringLiteral("event"), QLatin1String(ServerEventWord(event.kind))}};
    if (!event.peer.isEmpty())
        record[QStringLiteral("peer")] = event.peer;
    if (!event.text.isEmpty() && event.kind != ServerEvent::Kind::Network)
        record[QStringLiteral("text")] = event.text;
    switch (event.kind) {
    case ServerEvent::Kind::Listening:
        record[QStringLiteral("port")] = event.port;
        break;
    case ServerEvent::Kind::Command:
        addCommand(record, event.command);
        break;
    case ServerEvent::Kind::Clock:
        AddClockLine(record, event.line, ServerStrength(event.line.level));
        break;
    case ServerEvent::Kind::Network:
        record[QStringLiteral("name")] = event.text;
        record[QStringLiteral("value1")] = event.value1;
        record[QStringLiteral("value2")] = event.value2;
        record[QStringLiteral("text")] = event.message;
        break;
    default:
        break;
    }
    return record;
}

void print(const Call& call, const ServerEvent& event) {
    if (call.output.json())
        call.output.event(QJsonDocument(recordOf(event)).toJson(QJsonDocument::Compact));
    else
        call.output.event((platform::clock().now().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss  ")) +
                           ShowCommandText(platform::ToCodePage(event.sentence()), false))
                              .toUtf8());
}

// Stores the options about where to listen; a sentence about what is wrong with them.
QString takePlace(const Call& call, RemoteControlSetup& remote) {
    if (call.has("--port")) {
        bool isNumber = false;
        const uint port = call.option("--port").toUInt(&isNumber);
        if (!isNumber || port > 65535)
            return QStringLiteral("--port is a number from 0 to 65535.");
        remote.port = static_cast<quint16>(port);
    }
    if (call.has("--bind") && !remote.address.setAddress(call.option("--bind")))
        return QStringLiteral("--bind is an address of this computer, not \"%1\".")
            .arg(call.option("--bind"));
    return {};
}

int serve(Call& call) {
    if (!call.session.read())
        return call.fail(QStringLiteral("No local ini file was chosen."));
    LinkMeshServerSetup setup = ServerSetupOf(call.station);
    if (const QString wrong = takePlace(call, setup.remote); !wrong.isEmpty())
        return call.wrong(wrong);
    const std::optional<int> seconds = SecondsOption(call);
    if (!seconds)
        return call.wrong(QStringLiteral("--seconds is a number from 1 upward."));

    Run run;
    bool hasListened = false;
    LinkMeshServer server(setup, [&](const ServerEvent& event) {
        hasListened = hasListened || event.kind == ServerEvent::Kind::Listening;
        print(call, event);
    });
    const auto status = [&server] { return "STATUS=" + server.remote().status().trimmed().toUtf8(); };
    server.start();
    platform::TellServiceManager("READY=1\n" + status());
    server.remote().onStatus = [&status] { platform::TellServiceManager(status()); };
    run.go(*seconds);
    platform::TellServiceManager("STOPPING=1");
    const QString why = server.remote().listenError();
    server.close();
    return hasListened ? Done : call.fail(QStringLiteral("The server could not listen: %1").arg(why));
}

int access(Call& call) {
    if (call.arguments.isEmpty()) {
        const RemoteAccess now = ReadRemoteAccess();
        QJsonArray addresses;
        for (const QString& address : now.addresses)
            addresses += address;
        call.output.record({{QStringLiteral("access"), now.text()}, {QStringLiteral("addresses"), addresses}},
                           {{"access", "Who may connect"}});
        return Done;
    }
    QString why;
    const auto wanted = ParseRemoteAccess(call.arguments, &why);
    if (!wanted)
        return call.wrong(why);
    if (const int error = WriteRemoteAccess(*wanted))
        return call.fail(QStringLiteral("The setting could not be written (error %1).").arg(error));
    return Done;
}

} // namespace

CommandRows ServeCommands() {
    return {
        Changing(
            {"serve",
             "",
             "Run the LinkMesh server until it is stopped; prints a line for each event, or an object with "
             "--json",
             serve,
             {{"--seconds", "N", "stop after so many seconds"},
              {"--port", "N", "listen on another port than 6950; 0 is any that is free"},
              {"--bind", "ADDRESS", "listen on one address of this computer only"}}}),
        Changing(
            {"remote access", "[WHO] ...",
             "Show or set who may connect to the remote control: all, \"this computer\", or addresses and "
             "networks",
             access},
            [](const Call& call) { return !call.arguments.isEmpty(); }),
    };
}

} // namespace tolvex::ctl
