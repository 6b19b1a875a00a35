// The settings of the window for transfers as one record: the folder of the transport lists, which of them is
// the default, and what is asked when a cart is sent. The window shows the record, the shell changes it, and
// StoreTransferSetup is the one way back.
#pragma once

#include "audio/SetupOutcome.h"
#include "core/system/Registry.h"

namespace tolvex {

struct Settings;

// Where the settings are kept; either may be left out.
struct TransferStore {
    QString iniFile = {}; // section OPALTransfers
    quint32 registryRoot = LocalMachineHive;
    QString registryKey = {};
};

// What the window holds.
struct TransferSetup {
    bool allow = false;
    QString directory;
    // As it is stored or was chosen, whether or not there is such a list (ShownDefault).
    QString defaultList;
    bool askDelete = false;
    bool askDestination = false;
};

TransferSetup LoadTransfersFromIni(const QString& iniFile);
TransferSetup LoadTransfersFromRegistry(quint32 root, const QString& key);

// The default list where there is one of that name in the folder; otherwise empty.
QString ShownDefault(const TransferSetup& setup);

// The OK: checks the record and writes it to both stores, or takes it out of them where transfers are not
// allowed. A record that is refused and an ini file that cannot be written change nothing. The default is
// stored as it is shown, but a folder that is not there says nothing about its lists: the name is kept then.
// `shown` is the record as it was loaded from the ini file: where another workstation stored something since,
// nothing is written, both records are brought up to date, and the message says so; the next call stores.
SetupOutcome StoreTransferSetup(TransferSetup& setup, TransferSetup& shown, const TransferStore& store);

// What is wrong with the transfers of a workstation, a line; empty when nothing is.
QString TransferFault(const Settings& settings);

} // namespace tolvex
