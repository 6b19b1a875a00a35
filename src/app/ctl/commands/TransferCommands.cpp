// The settings of transfers to other systems, and the transport lists.
#include "app/ctl/Commands.h"
#include "app/ctl/SetupOutput.h"

#include "audio/transfers/TransferSetup.h"
#include "audio/transfers/TransportLists.h"
#include "core/report/Folders.h"
#include "core/settings/StoredSettings.h"
#include "platform/Prompts.h"
#include "platform/files/Files.h"

namespace tolvex::ctl {

namespace {

// The settings as the station's file has them, and the way back.
struct Transfers {
    TransferStore store;
    TransferSetup shown;
    TransferSetup setup;

    int end(const Call& call) { return EndSetup(call, StoreTransferSetup(setup, shown, store)); }
};

// Nothing, with the exit status in *status, when there is no file of these settings, or when transfers are
// off and the command needs the folder of the lists.
std::optional<Transfers> read(Call& call, bool needsFolder, int* status) {
    if (!ReadForSetup(call, status))
        return std::nullopt;
    const QString file = FilesInForce(call.station.settings).system;
    if (file.isEmpty()) {
        *status = call.no(QStringLiteral("This workstation has no data location."));
        return std::nullopt;
    }
    const TransferSetup setup = LoadTransfersFromIni(file);
    if (needsFolder && !setup.allow) {
        *status =
            call.no(QStringLiteral("Transfers are off: \"tolvexctl transfers folder PATH\" turns them on."));
        return std::nullopt;
    }
    if (needsFolder && !DirectoryExists(setup.directory)) {
        *status = call.fail(QStringLiteral("The folder %1 is not there.").arg(setup.directory),
                            platform::PathNotFound);
        return std::nullopt;
    }
    return Transfers{{file}, setup, setup};
}

int show(Call& call) {
    int status = Done;
    const auto transfers = read(call, false, &status);
    if (!transfers)
        return status;
    const TransferSetup& setup = transfers->setup;
    call.output.record({{QStringLiteral("allowed"), setup.allow},
                        {QStringLiteral("directory"), setup.directory},
                        {QStringLiteral("directoryExists"), DirectoryExists(setup.directory)},
                        {QStringLiteral("default"), ShownDefault(setup)},
                        {QStringLiteral("promptDeleteAfterSend"), setup.askDelete},
                        {QStringLiteral("promptForDestinationCart"), setup.askDestination}},
                       {{"allowed", "Transfers are allowed"},
                        {"directory", "Folder of the transport lists"},
                        {"directoryExists", "The folder is there"},
                        {"default", "Default list"},
                        {"promptDeleteAfterSend", "Ask to delete a cart after it was sent"},
                        {"promptForDestinationCart", "Ask for the destination cart"}});
    return Done;
}

int list(Call& call) {
    int status = Done;
    const auto transfers = read(call, true, &status);
    if (!transfers)
        return status;
    const TransferSetup& setup = transfers->setup;
    QJsonArray records;
    for (const QString& name : TransportLists(setup.directory)) {
        const QString file = TransportListFile(setup.directory, name);
        const bool isDefault = name.compare(setup.defaultList, Qt::CaseInsensitive) == 0;
        QJsonObject record{{QStringLiteral("name"), name},
                           {QStringLiteral("size"), platform::FileSize(file)},
                           {QStringLiteral("modified"), platform::FileModified(file).toString(Qt::ISODate)},
                           {QStringLiteral("isDefault"), isDefault}};
        if (isDefault && !call.output.json())
            record[QStringLiteral("marker")] = QStringLiteral(">");
        records += record;
    }
    call.output.records(
        records,
        {{"marker", "?"}, {"name", "Transport list"}, {"size", "Bytes", true}, {"modified", "Changed"}});
    return records.isEmpty() ? No : Done;
}

int folder(Call& call) {
    int status = Done;
    auto transfers = read(call, false, &status);
    if (!transfers)
        return status;
    transfers->setup.allow = true;
    transfers->setup.directory = call.argument(0);
    if (!call.argument(0).isEmpty() && !DirectoryExists(call.argument(0)))
        return call.fail(QStringLiteral("The folder %1 is not there.").arg(call.argument(0)),
                         platform::PathNotFound);
    return transfers->end(call);
}

int add(Call& call) {
    int status = Done;
    const auto transfers = read(call, true, &status);
    return transfers ? EndSetup(call, AddTransportList(transfers->setup.directory, call.argument(0)))
                     : status;
}

// The exit status that says that there is no list of that name, or nothing.
std::optional<int> missing(const Call& call, const Transfers& transfers) {
    if (TransportListExists(transfers.setup.directory, call.argument(0)))
        return std::nullopt;
    return call.no(QStringLiteral("There is no transport list called %1.").arg(call.argument(0)));
}

int remove(Call& call) {
    int status = Done;
    auto transfers = read(call, true, &status);
    if (!transfers)
        return status;
    const QString name = call.argument(0);
    if (const auto none = missing(call, *transfers))
        return *none;
    if (platform::prompts().ask(DeletionQuestion(name)) != platform::Answer::Yes)
        return call.no(QStringLiteral("The list was kept."));
    const SetupOutcome outcome = DeleteTransportList(transfers->setup.directory, name);
    if (!outcome.stored() || transfers->setup.defaultList.compare(name, Qt::CaseInsensitive) != 0)
        return EndSetup(call, outcome);
    transfers->setup.defaultList.clear();
    return transfers->end(call);
}

int makeDefault(Call& call) {
    int status = Done;
    auto transfers = read(call, true, &status);
    if (!transfers)
        return status;
    if (const auto none = missing(call, *transfers))
        return *none;
    transfers->setup.defaultList = call.argument(0);
    return transfers->end(call);
}

int turnOff(Call& call) {
    int status = Done;
    auto transfers = read(call, false, &status);
    if (!transfers)
        return status;
    transfers->setup.allow = false;
    return transfers->end(call);
}

} // namespace

CommandRows TransferCommands() {
    return {
        {"transfers show", "", "Show how carts are sent to other systems", show},
        {"transfers list", "", "List the transport lists, \">\" at the default", list},
        Changing(
            {"transfers folder", "PATH", "Allow transfers, with the transport lists in a folder", folder}),
        Changing({"transfers add", "NAME", "Make an empty transport list", add}),
        Changing({"transfers delete", "NAME", "Delete a transport list, after a question", remove}),
        Changing({"transfers default", "NAME", "Make a transport list the default", makeDefault}),
        Changing({"transfers off", "", "Allow no transfers: their settings are removed", turnOff}),
    };
}

} // namespace tolvex::ctl
