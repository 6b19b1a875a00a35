// The Terminal list of a test's station, with four numbers, as its workstations read and write it.
#pragma once

#include "network/TerminalList.h"

#include <gtest/gtest.h>

namespace tolvex::tests {

class StationList {
public:
    // Makes the list in the data location of these settings.
    explicit StationList(Settings& settings)
        : terminals(settings) {
        settings.NumberTerminals = 4;
        settings.AutoConfigInProgress = -1; // no question
        EXPECT_TRUE(OpenTerminalList(terminals));
        settings.AutoConfigInProgress = 0;
    }
    // What another workstation writes on a record.
    void put(int id, const QString& idName, const QString& networkName, const QDateTime& used = {}) {
        EXPECT_TRUE(TerminalListIsOpen(terminals) || OpenTerminalList(terminals));
        TerminalRecord record = ReadTerminal(terminals, id);
        record.IdName = idName;
        record.NetworkName = networkName;
        if (used.isValid())
            record.setLastUsed(used);
        EXPECT_EQ(WriteTerminal(terminals, id, record), 0);
    }
    // "Studio 1=STUDIO1" for each number.
    QStringList lines() {
        EXPECT_TRUE(OpenTerminalList(terminals));
        QStringList all;
        for (const TerminalRecord& record : ReadTerminals(terminals))
            all += record.IdName.trimmed() + u'=' + record.NetworkName.trimmed();
        return all;
    }

    TerminalList terminals;
};

} // namespace tolvex::tests
