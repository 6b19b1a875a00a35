// What the tests of audio start from: a machine of their own, prompts by script, a clock that stands still,
// and nothing loaded or open.
#pragma once

#include "audio/CartNotes.h"
#include "audio/CartStore.h"
#include "audio/Hotlist.h"
#include "support/FixedClock.h"
#include "support/MachineFolder.h"
#include "support/ScriptedPrompts.h"

#include <gtest/gtest.h>

namespace tolvex::tests {

class AudioTest : public testing::Test {
protected:
    AudioTest() {
        settings.NoCarts = 9999;
        settings.EmptyCartBackColor = 0x00AABBCC;
        settings.EmptyCartForeColor = 0x00112233;
        InitCartState(store);
        machine.addDrive(u'D');
    }

    // One folder for all parts.
    void setLocations(const QString& location) {
        machine.makeFolder(location);
        for (CartPart& part : settings.CartPartTable)
            part.Location = location;
    }
    CartPart& part(int number) { return settings.CartPartTable[number]; }

    QByteArray emptyCarts(int count) const {
        return QByteArray(store.emptyListRecord.data(), CartListRecordLength).repeated(count);
    }

    TestMachine machine;
    ScriptedPrompts prompts;
    FixedClock clock{QDateTime(QDate(2024, 3, 5), QTime(22, 10))};
    Settings settings;
    CartStore store{settings};
};

// A cart's file form.
inline QByteArray cartBytes(const QString& line1, float length = 180) {
    CartRecord record = MakeEmptyCartRecord(1, 2);
    record.Line1 = line1;
    record.Length = record.TotalLength = record.PlayEnd = record.PlayLength = length;
    const CartListRecord bytes = EncodeCartRecord(record);
    return QByteArray(bytes.data(), CartListRecordLength);
}

} // namespace tolvex::tests
