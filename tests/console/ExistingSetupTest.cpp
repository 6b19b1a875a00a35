// Where the search looks for a system, which of several finds counts, and the question to the user.
#include "console/ExistingSetup.h"

#include "console/SearchDrives.h"
#include "support/MachineFolder.h"
#include "support/QtPrinters.h"
#include "support/ScriptedPrompts.h"

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;
using platform::DriveType;

namespace {

// A machine of drives M and U (network), C and D (fixed), E (CD-ROM) with these files.
struct Drives {
    QStringList files;
    QStringList asked = {};
    int passesUntilStop = -1;

    SetupSearch search() {
        return {[](DriveType type) -> std::optional<QString> {
                    return type == DriveType::Remote ? "MU" : type == DriveType::Fixed ? "CD" : "E";
                },
                [this](const QStringList& paths) -> std::optional<SetupSearch::Lengths> {
                    if (passesUntilStop-- == 0)
                        return std::nullopt;
                    asked += paths;
                    SetupSearch::Lengths lengths;
                    for (const QString& path : paths)
                        lengths[path] = files.contains(path) ? 1 : path.endsWith("Carts11.LST") ? 0 : -1;
                    return lengths;
                }};
    }
};

ExistingSetup find(const QStringList& files, bool networkOnly = false) {
    Drives drives{files};
    return FindExistingSetup(networkOnly, drives.search());
}

CartPaths paths(const QMap<int, QString>& set) {
    CartPaths all;
    for (auto path = set.begin(); path != set.end(); ++path)
        all[path.key()] = path.value();
    return all;
}

QStringList listed(const CartPaths& all) {
    return {all.begin(), all.end()};
}

} // namespace

TEST(ExistingSetup, EachFileOfEachPlaceIsFound) {
    for (const char* drive : {"m:", "u:", "C:", "D:", "E:"}) {
        const QString at = drive;
        const bool network = at[0].isLower();
        for (const char* folder : {"", "\\TOLVEX\\SYSTEM", "\\SYSTEM"}) {
            const ExistingSetup setup = find({at + folder + "\\TLVX_SYS.INI"});
            EXPECT_EQ(setup.dataPath, at + folder);
            EXPECT_TRUE(setup.found);
            EXPECT_EQ(setup.foundOnNetwork, network);
            EXPECT_FALSE(IsWorthAsking(setup)); // no carts
        }
        for (const int part : {1, 5, 10, 11}) {
            const QString n = QString::number(part);
            for (const QString& folder :
                 {QString(), "\\AUDIO" + n, QString("\\TOLVEX\\AUDIO"), "\\TOLVEX\\AUDIO\\AUDIO" + n,
                  QString("\\AUDIO"), "\\AUDIO\\AUDIO" + n}) {
                const ExistingSetup setup = find({at + folder + "\\Carts" + n + ".LST"});
                EXPECT_EQ(listed(setup.cartPaths), listed(paths({{part, at + folder}})));
                EXPECT_TRUE(setup.found && IsWorthAsking(setup) && setup.dataPath.isEmpty());
                EXPECT_EQ(setup.foundOnNetwork, network);
            }
        }
    }
    const ExistingSetup nothing =
        find({"C:\\AUDIO1\\Carts2.LST", "C:\\AUDIO12\\Carts12.LST", "X:\\TLVX_SYS.INI"});
    EXPECT_FALSE(nothing.found || IsWorthAsking(nothing));
}

TEST(ExistingSetup, TheLastFindCountsAndTheNetworkComesFirst) {
    // Within a drive, between two drives, and local drives before CD-ROMs.
    EXPECT_EQ(find({"C:\\TLVX_SYS.INI", "C:\\SYSTEM\\TLVX_SYS.INI"}).dataPath, QString("C:\\SYSTEM"));
    EXPECT_EQ(find({"C:\\SYSTEM\\TLVX_SYS.INI", "D:\\TLVX_SYS.INI"}).dataPath, QString("D:"));
    EXPECT_EQ(find({"E:\\TLVX_SYS.INI", "D:\\TLVX_SYS.INI"}).dataPath, QString("E:"));
    EXPECT_EQ(find({"m:\\TLVX_SYS.INI", "u:\\TLVX_SYS.INI"}).dataPath, QString("u:"));

    // Data on the network: local drives are not searched.
    Drives network{{"m:\\SYSTEM\\TLVX_SYS.INI", "C:\\TLVX_SYS.INI", "C:\\Carts1.LST"}};
    ExistingSetup setup = FindExistingSetup(false, network.search());
    EXPECT_EQ(setup.dataPath, QString("m:\\SYSTEM"));
    EXPECT_EQ(setup.cartPaths[1], QString());
    EXPECT_EQ(network.asked.size(), 2 * 69);

    // Carts alone on the network: local drives supply the data, and their lists replace the others.
    const QStringList both = {"u:\\AUDIO1\\Carts1.LST", "u:\\AUDIO2\\Carts2.LST", "D:\\AUDIO\\Carts2.LST",
                              "C:\\TOLVEX\\SYSTEM\\TLVX_SYS.INI"};
    setup = find(both);
    EXPECT_EQ(setup.dataPath, QString("C:\\TOLVEX\\SYSTEM"));
    EXPECT_EQ(listed(setup.cartPaths), listed(paths({{1, "u:\\AUDIO1"}, {2, "D:\\AUDIO"}})));
    EXPECT_TRUE(setup.foundOnNetwork);
    setup = find(both, true);
    EXPECT_EQ(setup.dataPath, QString());
    EXPECT_EQ(setup.cartPaths[2], QString("u:\\AUDIO2"));
    setup = find({"C:\\TLVX_SYS.INI"}, true);
    EXPECT_FALSE(setup.found || setup.foundOnNetwork);
}

TEST(ExistingSetup, AStoppedSearchSaysSo) {
    for (const int passes : {0, 1}) {
        Drives drives{{"u:\\Carts1.LST", "C:\\TLVX_SYS.INI"}};
        drives.passesUntilStop = passes;
        const ExistingSetup setup = FindExistingSetup(false, drives.search());
        EXPECT_TRUE(setup.stopped);
        EXPECT_EQ(setup.dataPath, QString());
    }
}

TEST(ExistingSetup, GapsAreFilledAndEachPlaceIsListedOnce) {
    const struct {
        QMap<int, QString> found;
        QStringList filled;
        QString list; // as in the question
    } cases[] = {
        {{{3, "C:\\A"}, {7, "C:\\B"}},
         {"C:\\B", "C:\\B", "C:\\A", "C:\\A", "C:\\A", "C:\\A", "C:\\B", "C:\\B", "C:\\B", "C:\\B", "C:\\B"},
         ">C:\\B\n>C:\\A"},
        {{{1, "u:"}}, QStringList(11, "u:"), ">u:"},
        {{{11, "D:\\AUDIO"}}, QStringList(11, "D:\\AUDIO"), ">D:\\AUDIO"},
        {{{1, "u:\\AUDIO1"}, {2, "u:"}, {10, "u:\\AUDIO10"}, {11, "U:\\AUDIO1"}},
         QStringList{"u:\\AUDIO1"} + QStringList(8, "u:") + QStringList{"u:\\AUDIO10", "U:\\AUDIO1"},
         // "u:" is part of a listed path; in another case it is not.
         ">u:\\AUDIO1\n>u:\\AUDIO10\n>U:\\AUDIO1"},
    };
    for (const auto& each : cases) {
        const CartPaths filled = FilledCartPaths(paths(each.found));
        EXPECT_EQ(listed(filled), each.filled);
        EXPECT_EQ(
            AcceptanceQuestion("m:\\SYSTEM", filled, ">"),
            "Tolvex data has been found in: \n\n m:\\SYSTEM\n\nand the audiowall has been found in: \n\n" +
                each.list + "\n\nDo you want to use these locations?");
    }
}

TEST(ExistingSetup, TheDrivesOfThisMachineAreSearchedByTheirTypes) {
    TestMachine machine;
    ScriptedPrompts prompts;
    machine.addDrive(u'M', DriveType::Remote);
    machine.addDrive(u'D', DriveType::CdRom);
    machine.addDrive(u'F', DriveType::Removable);
    machine.write("D:\\AUDIO\\CARTS3.lst", "x");
    machine.write("C:\\System\\tlvx_sys.ini", "x");
    machine.write("F:\\TLVX_SYS.INI", "x");
    EXPECT_EQ(DriveLettersOfType(DriveType::Remote), QString("M"));
    EXPECT_EQ(DriveLettersOfType(DriveType::CdRom), QString("D"));
    for (const ExistingSetup& setup : {FindExistingSetup(false), SearchDrives(false)}) {
        EXPECT_EQ(setup.dataPath, QString("C:\\SYSTEM"));
        EXPECT_EQ(listed(setup.cartPaths), listed(paths({{3, "D:\\AUDIO"}})));
        EXPECT_FALSE(setup.foundOnNetwork);
    }
    machine.write("M:\\TLVX_SYS.INI", "");
    EXPECT_FALSE(SearchDrives(true).found);
    machine.write("M:\\TLVX_SYS.INI", "x");
    EXPECT_EQ(SearchDrives(false).dataPath, QString("m:"));
    EXPECT_EQ(prompts.progressTitles.size(), 3);
}
