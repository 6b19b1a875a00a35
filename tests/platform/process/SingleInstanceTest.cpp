#include "platform/process/SingleInstance.h"

#include "support/MachineFolder.h"

#include <gtest/gtest.h>

using namespace tolvex::platform;
using namespace tolvex::tests;

TEST(SingleInstance, OneForEachMachineFolderAndNoneLeftBehindByACrash) {
    TestMachine machine;
    {
        const SingleInstance first;
        EXPECT_TRUE(first.first());
        EXPECT_FALSE(SingleInstance().first());
        TestMachine other;
        EXPECT_TRUE(SingleInstance().first());
        machine.use();
    }
    EXPECT_TRUE(SingleInstance().first());
    // The lock of a program that died without removing it: an unused process number.
    QFile stale(machine.path() + "/tolvex-config.lock");
    ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
    stale.write("4194303\ntolvex-config\n" + QSysInfo::machineHostName().toUtf8() + "\n");
    stale.close();
    EXPECT_TRUE(SingleInstance().first());
}
