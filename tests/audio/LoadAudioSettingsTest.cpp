// What a workstation's files, registry and sound devices make of the audio settings.
#include "AudioTest.h"

#include "audio/AudioEditorSearch.h"
#include "audio/CheckFileCache.h"
#include "audio/LoadAudioSettings.h"
#include "audio/WaveSearch.h"
#include "core/report/DebugLog.h"
#include "core/system/Registry.h"
#include "platform/Machine.h"

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;
using platform::WaveDevice;

namespace {

constexpr char ini[] = "C:\\WINDOWS\\TOLVEX.INI";
const QString root = QLatin1String(AudioRegistryRoot);

// Devices by what they can do: '4' and '2' record or play that rate with one channel, '-' nothing.
QList<WaveDevice> devices(const char* kinds, quint16 manufacturer = 0) {
    QList<WaveDevice> list;
    for (const char* kind = kinds; *kind; ++kind) {
        WaveDevice device;
        device.manufacturer = manufacturer;
        device.formats = *kind == '4'   ? quint32(platform::WaveFormat4M16)
                         : *kind == '2' ? quint32(platform::WaveFormat2M16)
                                        : 0;
        list += device;
    }
    return list;
}

class LoadAudioSettingsTest : public AudioTest {
protected:
    LoadAudioSettingsTest() { platform::SetWaveDevices(devices("4"), devices("4")); }
    ~LoadAudioSettingsTest() override {
        platform::SetOperatingSystem({10, 0, 0, 2, {}});
        platform::SetPhysicalMemory(0);
        platform::RefreshWaveDevices();
    }

    void load(const QByteArray& lines) {
        machine.write(ini, lines);
        LoadAudioSettings(store, QLatin1String(ini), root);
    }
    // The six devices as one text.
    QString players() {
        QString text;
        for (const CartPlayer& player : settings.CartPlayerTable)
            text += QString::number(player.Device);
        return text;
    }
    static void putNumber(const char* subkey, const char* name, qint32 value) {
        WriteRegistryLong(LocalMachineHive, root + QLatin1String(subkey), QLatin1String(name), value,
                          value + 1);
    }
};

} // namespace

TEST_F(LoadAudioSettingsTest, PlayersTakeTheDevicesThatSuit) {
    struct Case {
        const char* outputs;
        const char* lines;
        const char* commandLine;
        int total;
        const char* players;
    };
    const Case cases[] = {
        // Counting.
        {"-4244-444", "", "", 6, "245789"},
        {"444", "", "", 3, "123000"},
        {"22", "", "", 0, "000000"},
        {"444444444", "", "", 6, "123456"},
        // A number on the command line saves the counting, not the mode.
        {"4-4444", "", " /PLAYERS=2 /DEBUG", 2, "130000"},
        {"4", "", " /PLAYERS=3", 3, "100000"},
        {"444", "", " /PLAYERS=77", 6, "123000"},
        {"444", "", " /PLAYERS=", 0, "000000"},
        // Automatic: those left over share the last device.
        {"4", "TotalNumberCartPlayers=3\n", "", 3, "111000"},
        {"-4-4", "TotalNumberCartPlayers=6\n", "", 6, "244444"},
        {"-", "TotalNumberCartPlayers=2\n", "", 2, "000000"},
        {"44", "TotalNumberCartPlayers=99\n", "", 6, "122222"},
        {"44", "TotalNumberCartPlayers=-5\n", "", -5, "000000"},
        {"44", "TotalNumberCartPlayers=6\n", " /PLAYERS=1", 1, "100000"},
        // By hand.
        {"44",
         "AutomaticPlayerAssignment=0\nTotalNumberCartPlayers=4\nSoundCardNumber2=7\nSoundCardNumber5=3\n",
         "", 4, "173400"},
    };
    for (const Case& c : cases) {
        platform::SetWaveDevices(devices(c.outputs), {});
        settings.CommandLine = QLatin1String(c.commandLine);
        load(QByteArray("[CartPlayers]\n") + c.lines);
        EXPECT_EQ(settings.TotalNumberCartPlayers, c.total) << c.outputs << c.lines << c.commandLine;
        EXPECT_EQ(players(), QString(c.players)) << c.outputs << c.lines << c.commandLine;
    }
}

TEST_F(LoadAudioSettingsTest, TheCountOfDevicesIsLogged) {
    platform::SetWaveDevices(devices("44444444"), {});
    {
        const qint32 level = -1;
        const DebugLogging logging(level);
        load({});
    }
    const QStringList logs = platform::FolderNames("C:\\Debugfiles");
    ASSERT_EQ(logs.size(), 1);
    const QByteArray log = machine.read("C:\\Debugfiles\\" + logs[0]);
    const qsizetype counted = log.indexOf(" Number Suitable Wave Out Devices=8");
    EXPECT_GT(counted, 0);
    EXPECT_GT(log.indexOf("Checked Number Suitable Wave Out Devices=6"), counted);
}

TEST_F(LoadAudioSettingsTest, RecordingGoesToADeviceThatIsThere) {
    platform::SetWaveDevices(devices("44"), devices("442"));
    load({});
    EXPECT_EQ(settings.RecordingSoundCard, 2);
    load("[Audio]\nRecordingSoundCard=9\n");
    EXPECT_EQ(settings.RecordingSoundCard, 2);
    load("[Audio]\nRecordingSoundCard=0\n");
    EXPECT_EQ(settings.RecordingSoundCard, 0);
    // A card of one make records what its output of the same number plays; the first of them wins.
    platform::SetWaveDevices(devices("444"), devices("4") + devices("44", 39) + devices("4"));
    load({});
    EXPECT_EQ(settings.RecordingSoundCard, 2);
    load("[CartPlayers]\nTotalNumberCartPlayers=3\n");
    EXPECT_EQ(settings.RecordingSoundCard, 4);
}

TEST_F(LoadAudioSettingsTest, DevicesAreSearchedByRateAndChannels) {
    const auto device = [](quint32 formats) {
        WaveDevice made;
        made.formats = formats;
        return made;
    };
    platform::SetWaveDevices({device(platform::WaveFormat1M16), device(platform::WaveFormat1S16),
                              device(platform::WaveFormat2M16), device(platform::WaveFormat2S16),
                              device(platform::WaveFormat4M16), device(platform::WaveFormat4S16)},
                             {device(platform::WaveFormat4M16), device(0)});
    int number = 0;
    for (const int rate : {11025, 22050, 44100}) {
        for (const int channels : {1, 2}) {
            EXPECT_EQ(FindSuitableOutput(0, rate, channels), number);
            EXPECT_EQ(FindSuitableOutput(number + 1, rate, channels), -1);
            EXPECT_EQ(LastSuitableOutput(rate, channels), number);
            EXPECT_EQ(CountSuitableOutputs(rate, channels), 1);
            ++number;
        }
    }
    EXPECT_EQ(LastSuitableInput(44100, 1), 0);
    EXPECT_EQ(LastSuitableInput(44100, 2), -1);
    for (const auto& [rate, channels] : {std::pair(48000, 1), {44100, 0}, {44100, 3}, {0, 1}})
        EXPECT_EQ(CountSuitableOutputs(rate, channels), 0) << rate << ' ' << channels;
}

TEST_F(LoadAudioSettingsTest, DefaultsHangOnWhatIsHeld) {
    load("[CartPlayers]\nTotalNumberCartPlayers=4\n"
         "[Audio]\nGeneralVolume=80\nSweptVolume=55\nFadeFire=0.4\nEmptyCartBackColor=66\nEmptyCartForeColor="
         "77\n");
    const Settings& values = settings;
    EXPECT_EQ(values.Instant, 4);
    EXPECT_EQ(values.SweptVolume, 80);
    EXPECT_EQ(values.DuckAudioVolume, 70);
    EXPECT_EQ(values.PlayerFadeFirePercent, 40);
    EXPECT_EQ(values.CartPlayerTable[3].ForeColor, 0xFFA0A0);
    EXPECT_EQ(values.CartFontName, QString("MS Sans Serif"));
    EXPECT_EQ(DecodeCartRecord(store.emptyListRecord).BackColor, 66);
    EXPECT_EQ(DecodeCartRecord(store.emptyListRecord).ForeColor, 77);
    load("[Audio]\nUsePlayerDucking=0\nSweptVolume=55\nFadeFire=0.4\nPlayerFadeFirePercent=30\n"
         "PlayCartsInstantly=0\nMaintainLegacyCartList=0\n");
    EXPECT_EQ(values.SweptVolume, 55);
    EXPECT_EQ(values.DuckAudioVolume, 90);
    EXPECT_EQ(values.PlayerFadeFirePercent, 30);
    EXPECT_EQ(values.PlayCartsInstantly, 0);
    EXPECT_EQ(values.MaintainLegacyCartList, 0);
}

// Without an ini file everything comes from the registry, under the names and the two keys it has there.
TEST_F(LoadAudioSettingsTest, TheRegistryHoldsTheSameSettingsUnderItsOwnNames) {
    machine.write(ini, "[Audio]\nGeneralVolume=1\n");
    putNumber("\\CartPlayers", "TotalNumberCartPlayers", 2);
    putNumber("\\CartPlayers", "BackColor2", 123);
    putNumber("\\CartPlayers", "EditPlayer", 1); // not here
    putNumber("\\Cart Players", "EditPlayer", 2);
    putNumber("\\Cart Players", "KeyboardEject", -1);
    putNumber("\\Cart Players", "MouseEject", 0);
    putNumber("\\Audio Settings", "GeneralVolume", 60);
    putNumber("\\Audiowall\\Settings", "UseIndividualCartListFiles", 1);
    putNumber("\\Audiowall", "CartFontSize", 12);
    WriteRegistryString(LocalMachineHive, root + "\\File Locations", "CartLocation3", "D:\\WALL", {});
    WriteRegistryString(LocalMachineHive, root + "\\File Locations", "AudioEditor", "D:\\EDIT.EXE", {});
    LoadAudioSettings(store, {}, root);
    const Settings& values = settings;
    EXPECT_EQ(values.TotalNumberCartPlayers, 2);
    EXPECT_EQ(values.CartPlayerTable[2].BackColor, 123);
    EXPECT_EQ(values.EditPlayer, 2);
    EXPECT_TRUE(values.KeyboardClose);
    EXPECT_FALSE(values.MouseClose);
    EXPECT_EQ(values.GeneralVolume, 60);
    EXPECT_EQ(values.DuckAudioVolume, 50);
    EXPECT_EQ(values.PlayerFadeFirePercent, 65);
    EXPECT_TRUE(values.UseIndividualCartListFiles);
    EXPECT_EQ(values.CartFontSize, 12);
    EXPECT_EQ(part(3).Location, QString("D:\\WALL"));
    EXPECT_EQ(part(1).Location, QString());
    EXPECT_EQ(values.AudioEditor, QString("D:\\EDIT.EXE"));
    EXPECT_EQ(values.NoCarts, 9999);
}

// The lists of an older audiowall are backed up once.
TEST_F(LoadAudioSettingsTest, AnOlderAudiowallIsBackedUpOnce) {
    const char* const locations = "[FileLocations]\nCarts1=D:\\WALL\n";
    const auto backups = [] { return platform::FolderNames("D:\\WALL\\Backups"); };
    struct Case {
        const char* version;
        bool backedUp;
    };
    for (const Case& c : {Case{"2.6", false}, Case{"2.7", false}, Case{"2.60001", false}, Case{"10", false},
                          Case{"2.5999", true}, Case{"abc", true}, Case{"", true}, Case{nullptr, true}}) {
        QDir(machine.host("D:\\WALL")).removeRecursively();
        machine.write("D:\\WALL\\Carts1.lst", "list");
        const QByteArray other = "[Audiowall]\r\nNoCarts=500\r\nAllowAudioFileLinking=1\r\n";
        const QByteArray version = c.version ? QByteArray("Version=") + c.version + "\r\n" : QByteArray();
        machine.write("D:\\WALL\\Audwall.ini", other + version);
        load(locations);
        EXPECT_EQ(!backups().isEmpty(), c.backedUp) << QByteArray(c.version).constData();
        EXPECT_EQ(settings.NoCarts, 500);
        EXPECT_TRUE(settings.AllowAudioFileLinking);
        EXPECT_EQ(machine.read("D:\\WALL\\Audwall.ini"),
                  other + (c.backedUp ? QByteArray("Version=2.6\r\n") : version));
        clock.time = clock.time.addDays(1);
        load(locations);
        EXPECT_EQ(backups().size(), c.backedUp ? 1 : 0);
    }
    // Nothing is written where the first part has no location.
    load({});
    EXPECT_EQ(settings.NoCarts, 9999);
    EXPECT_EQ(platform::FileSize("\\Audwall.ini"), -1);
}

TEST_F(LoadAudioSettingsTest, AnAudioEditorIsFoundInOrder) {
    const auto install = [&](const char* key, const char* value, const char* program) {
        const QString folder = QStringLiteral("D:\\") + QLatin1String(program).chopped(4);
        WriteRegistryString(LocalMachineHive, "Software\\Syntrillium\\" + QString(key), value, folder + ' ',
                            {});
        machine.write(folder + '\\' + program, "x");
        return folder + '\\' + program;
    };
    EXPECT_EQ(SearchSampleEditor({}), QString());
    EXPECT_EQ(FindAudioEditor("D:\\GONE.EXE"), QString("D:\\GONE.EXE"));
    const QString last = install("CE96\\MAINDIR", "", "COOL96.EXE");
    EXPECT_EQ(SearchSampleEditor({}), last);
    const QString third = install("CE2000", "MAINDIR", "COOL2000.EXE");
    EXPECT_EQ(SearchSampleEditor({}), third);
    const QString second = install("CEPro", "MAINDIR", "COOLPRO.EXE");
    EXPECT_EQ(SearchSampleEditor("D:\\GONE.EXE"), second);
    machine.write(second, {}); // an empty file is none
    EXPECT_EQ(SearchSampleEditor({}), third);
    const QString first = platform::SpecialFolderPath(0x26) + "\\Norvane\\Cutlane v1\\Cutlane.exe";
    machine.write(first, "x");
    EXPECT_EQ(SearchSampleEditor({}), first);
    EXPECT_EQ(FindAudioEditor(last), last);

    load("[FileLocations]\nSampleEditor=D:\\OLD.EXE\n");
    EXPECT_EQ(settings.AudioEditor, QString("D:\\OLD.EXE"));
    load({});
    EXPECT_EQ(settings.AudioEditor, first);
}

TEST_F(LoadAudioSettingsTest, TheFileCacheIsCheckedOnlyOnTheOldConsumerSystem) {
    CheckFileCache(settings, {}, true);
    CheckFileCache(settings, root, false);
    EXPECT_TRUE(prompts.asked.isEmpty());
    CheckFileCache(settings, root, true);
    EXPECT_TRUE(prompts.texts().last().contains("does not need to be optimised"));

    const char systemIni[] = "C:\\WINDOWS\\system.ini";
    const auto checked = [] { return ReadRegistryLong(LocalMachineHive, root, "CheckedForVCACHE", 0); };
    platform::SetOperatingSystem({4, 10, 0, 1, {}});
    platform::SetPhysicalMemory(0x4000000 - 1);
    machine.write(systemIni, "[boot]\r\nshell=x\r\n");
    prompts.answers = {Answer::Cancel};
    load({});
    EXPECT_EQ(checked(), 0);
    EXPECT_EQ(prompts.asked.last().buttons, platform::Buttons::YesNoCancel);
    prompts.answers = {Answer::No};
    load({});
    EXPECT_EQ(checked(), 1);
    prompts.forget();
    load({});
    EXPECT_TRUE(prompts.asked.isEmpty());
    EXPECT_EQ(machine.read(systemIni), QByteArray("[boot]\r\nshell=x\r\n"));

    prompts.answers = {Answer::Yes};
    CheckFileCache(settings, root, true);
    EXPECT_EQ(checked(), 2);
    EXPECT_EQ(machine.read(systemIni),
              QByteArray("[boot]\r\nshell=x\r\n[vcache]\r\nMinFileCache=4096\r\nMaxFileCache=4096\r\n"));
    CheckFileCache(settings, root, true);
    EXPECT_EQ(prompts.texts().last(),
              QString("Your Windows(TM) Operating System is optimized for Audio playback"));
    platform::SetPhysicalMemory(0x4000000);
    prompts.answers = {Answer::Cancel};
    CheckFileCache(settings, root, true);
    EXPECT_EQ(checked(), 2);
}
