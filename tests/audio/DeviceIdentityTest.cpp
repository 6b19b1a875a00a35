// Numbers that mean other devices than when they were saved.
#include "SetupTest.h"

#include "audio/DeviceIdentity.h"
#include "core/settings/SaveLocalSettings.h"

using namespace tolvex;
using namespace tolvex::platform;
using namespace tolvex::tests;

namespace {

class DeviceIdentities : public SetupTest {
protected:
    DeviceIdentities() {
        settings = loaded();
        settings.AutomaticPlayerAssignment = 0;
        settings.TotalNumberCartPlayers = 2;
        settings.CartPlayerTable[1].Device = 1;
        settings.CartPlayerTable[2].Device = 2;
        settings.RecordingSoundCard = 1;
        plug({{"Twin", "a", "left"}, {"Twin", "b", "right"}}, {{"Line", "l", ""}});
        RememberDevices(settings);
    }
    struct Plugged {
        const char* name;
        const char* id;
        const char* place;
    };
    static void plug(const QList<Plugged>& outputs, const QList<Plugged>& inputs) {
        const auto devices = [](const QList<Plugged>& plugged) {
            QList<WaveDevice> list;
            for (const Plugged& one : plugged)
                list +=
                    {QLatin1String(one.name), QLatin1String(one.id), 0, all, true, QLatin1String(one.place)};
            return list;
        };
        SetWaveDevices(devices(outputs), devices(inputs));
    }
    QStringList texts() const { return MovedDeviceTexts(settings); }
};

} // namespace

TEST_F(DeviceIdentities, AreFoundByPlaceThenById) {
    EXPECT_EQ(texts(), QStringList());
    // Two cards of one make change their ids, and stay where they are.
    plug({{"Twin", "b", "left"}, {"Twin", "a", "right"}}, {{"Line", "l", ""}});
    EXPECT_EQ(texts(), QStringList());
    plug({{"Twin", "a", "right"}, {"Other", "o", "elsewhere"}, {"Twin", "b", "left"}}, {{"Else", "e", ""}});
    EXPECT_EQ(texts(),
              QStringList({"The recording device was 'Line', which is not there now; number 0 is now 'Else'",
                           "Player 1 was 'Twin', which is now number 2; number 0 is now 'Twin'",
                           "Player 2 was 'Twin', which is now number 0; number 1 is now 'Other'"}));
    // Fewer devices than the number.
    plug({}, {});
    EXPECT_EQ(texts().value(2), "Player 2 was 'Twin', which is not there now; no device has number 1 now");
}

TEST_F(DeviceIdentities, SayNothingOfNumbersThatWereChangedSince) {
    plug({{"Twin", "b", "right"}, {"Twin", "a", "left"}}, {{"Line", "l", ""}});
    settings.CartPlayerTable[1].Device = 2;
    EXPECT_EQ(texts(), QStringList("Player 2 was 'Twin', which is now number 0; number 1 is now 'Twin'"));
    settings.AutomaticPlayerAssignment = -1;
    EXPECT_EQ(texts(), QStringList());
    settings.AutomaticPlayerAssignment = 0;
    settings.TotalNumberCartPlayers = 1;
    EXPECT_EQ(texts(), QStringList());
    settings.TotalNumberCartPlayers = 2;
    settings.LocalIniFile = "C:\\WINDOWS\\OTHER.INI"; // has devices of its own
    EXPECT_EQ(texts(), QStringList());
    RememberDevices(settings);
    settings.LocalIniFile = "tolvex.ini";
    EXPECT_EQ(texts().size(), 1); // the first one's are still remembered
}

TEST_F(DeviceIdentities, AreRepairedInTheSuitesOwnKeysAlone) {
    plug({{"Twin", "b", "right"}, {"New", "n", "hub"}, {"Twin", "a", "left"}}, {{"Else", "e", ""}});
    ASSERT_TRUE(RepairDevices(settings).stored());
    EXPECT_EQ(value("CartPlayers", "SoundCardNumber1"), "3");
    EXPECT_EQ(value("CartPlayers", "SoundCardNumber2"), "1");
    EXPECT_EQ(settings.RecordingSoundCard, 1); // gone, so it keeps its number
    EXPECT_EQ(value("Other", "Key"), "kept");
    // What is gone is told until it comes back or something else is chosen for it.
    EXPECT_EQ(texts(),
              QStringList("The recording device was 'Line', which is not there now; number 0 is now 'Else'"));
    RememberDevices(settings);
    EXPECT_EQ(texts().size(), 1);
    const QByteArray before = machine.read(iniPath);
    ASSERT_TRUE(RepairDevices(settings).stored());
    EXPECT_EQ(machine.read(iniPath), before);
    EXPECT_FALSE(before.contains("Twin"));
}

TEST_F(DeviceIdentities, OfARecordingDeviceThatIsGoneAreToldUnderTheNumberThatLoadingPulledDown) {
    plug({{"Twin", "a", "left"}, {"Twin", "b", "right"}}, {{"Line", "l", ""}, {"Mic", "m", ""}});
    settings.RecordingSoundCard = 2;
    RememberDevices(settings);
    plug({{"Twin", "a", "left"}, {"Twin", "b", "right"}}, {{"Line", "l", ""}});
    settings.RecordingSoundCard = 1;
    EXPECT_EQ(texts(),
              QStringList("The recording device was 'Mic', which is not there now; number 0 is now 'Line'"));
    RememberDevices(settings);
    EXPECT_EQ(texts().size(), 1);
    RememberDevices(settings, 1); // the user has chosen the line
    EXPECT_EQ(texts(), QStringList());
}

TEST_F(DeviceIdentities, OfAPlayersDeviceThatIsGoneAreToldAndRepairedAfterAnOkThatShowedAnother) {
    plug({{"One", "1", ""}, {"Two", "2", ""}, {"Three", "3", ""}}, {{"Line", "l", ""}});
    settings.CartPlayerTable[2].Device = 3;
    RememberDevices(settings);
    plug({{"Three", "3", ""}, {"One", "1", ""}}, {{"Line", "l", ""}});
    settings.CartPlayerTable[1].Device = 2;
    settings.CartPlayerTable[2].Device = 0; // as OK stores it
    RememberDevices(settings);
    const QStringList told("Player 2 was 'Three', which is now number 0; it has '" + WaveMapperName() +
                           "' now");
    EXPECT_EQ(texts(), told);
    // It does not end when the numbers mean the same again.
    plug({{"One", "1", ""}, {"Two", "2", ""}, {"Three", "3", ""}}, {{"Line", "l", ""}});
    RememberDevices(settings);
    EXPECT_TRUE(texts().join(u'|').contains("Player 2 was 'Three', which is now number 2;"));
    ASSERT_TRUE(RepairDevices(settings).stored());
    EXPECT_EQ(settings.CartPlayerTable[2].Device, 3);
    EXPECT_EQ(texts(), QStringList());
    settings.CartPlayerTable[2].Device = 0;
    RememberDevices(settings, 1 << 2); // the user has chosen it
    EXPECT_EQ(texts(), QStringList());
}

TEST_F(DeviceIdentities, PassOverAFileThatIsDamaged) {
    QFile file(machine.path() + "/audiodevices.txt");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const char damaged[] = "x\ty\n\0\xff\t\t\t\t\t\t\nC:\\WINDOWS\\TOLVEX.INI\tplayer\t99\t1\t\tq\tBad\n"
                           "C:\\WINDOWS\\TOLVEX.INI\tplayer\t1\t1\t\tq\tGood\n";
    file.write(damaged, sizeof damaged - 1);
    file.close();
    EXPECT_EQ(texts(), QStringList("Player 1 was 'Good', which is not there now; number 0 is now 'Twin'"));
}

TEST_F(DeviceIdentities, ThatCannotBeRememberedAreSaidOnce) {
    QFile::remove(machine.path() + "/audiodevices.txt");
    QDir(machine.path()).mkdir("audiodevices.txt");
    EXPECT_EQ(RememberDevices(settings),
              machine.path() +
                  "/audiodevices.txt cannot be written: a number that means another sound device "
                  "later will not be noticed.");
    EXPECT_EQ(RememberDevices(settings), "");
}
