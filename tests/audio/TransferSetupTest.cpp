// The settings of transfers in their two stores, and the transport lists in their folder.
#include "SetupTest.h"

#include "audio/transfers/TransferSetup.h"
#include "audio/transfers/TransportLists.h"
#include "support/WithoutRights.h"

using namespace tolvex;
using namespace tolvex::tests;

namespace {

const QString Ini = QStringLiteral("D:\\DATA\\TLVX_SYS.INI");
const QString Lists = QStringLiteral("D:\\LISTS");
const QString Key = QStringLiteral("Software\\Norvane\\Transfers");

class TransferSetupTest : public SetupTest {
protected:
    TransferSetupTest() {
        machine.write(Ini, "[OPALTransfers]\r\nDirectory=D:\\LISTS\r\nDefault=Night\r\n"
                           "PromptDeleteAfterSend=-1\r\n[LinkMesh]\r\nNumberTerminals=8\r\n");
        machine.write(Lists + "\\night.otl", "");
        machine.write(Lists + "\\News.OTL", "carts");
        machine.write(Lists + "\\other.txt", "");
        machine.makeFolder(Lists + "\\Folder.OTL");
        load();
    }
    void load() {
        platform::ForgetProfiles();
        setup = shown = LoadTransfersFromIni(Ini);
    }
    SetupOutcome store(const TransferStore& into = {Ini}) { return StoreTransferSetup(setup, shown, into); }
    QByteArray ini() const { return machine.read(Ini); }

    TransferSetup shown;
    TransferSetup setup;
};

} // namespace

TEST_F(TransferSetupTest, StoresFourKeysAndRemovesTheSectionWhenTransfersAreOff) {
    EXPECT_TRUE(setup.allow && setup.askDelete && !setup.askDestination);
    EXPECT_EQ(ShownDefault(setup), "Night"); // an empty file is there
    setup.askDestination = true;
    setup.defaultList = "News";
    EXPECT_TRUE(store().stored());
    EXPECT_EQ(ini(), "[OPALTransfers]\r\nDirectory=D:\\LISTS\r\nDefault=News\r\nPromptDeleteAfterSend=1\r\n"
                     "PromptForDestinationCart=1\r\n[LinkMesh]\r\nNumberTerminals=8\r\n");
    setup.allow = false;
    EXPECT_TRUE(store().stored());
    EXPECT_EQ(ini(), "[LinkMesh]\r\nNumberTerminals=8\r\n");
    load();
    EXPECT_FALSE(setup.allow || setup.askDelete);
    setup.allow = true;
    EXPECT_EQ(store().message, "You must select a directory");
    EXPECT_EQ(store({}).field, "cmdBrowse");
    setup.directory = Lists;
    EXPECT_TRUE(store({}).message.contains("set the Data Location"));
}

TEST_F(TransferSetupTest, ADefaultWithoutItsListIsBlankUnlessTheFolderIsGoneToo) {
    platform::RemoveFile(Lists + "\\night.otl");
    EXPECT_EQ(ShownDefault(setup), "");
    machine.write(Ini, "[OPALTransfers]\r\nDirectory=M:\\LISTS\r\nDefault=Night\r\n");
    load();
    setup.askDestination = true;
    EXPECT_EQ(ShownDefault(setup), "");
    EXPECT_TRUE(store().stored());
    EXPECT_EQ(value("OPALTransfers", "Default", Ini), "Night"); // nobody could look
    machine.addDrive(u'M');
    machine.makeFolder("M:\\LISTS");
    EXPECT_TRUE(store().stored());
    EXPECT_EQ(value("OPALTransfers", "Default", Ini), "");
}

TEST_F(TransferSetupTest, KeepsItsOtherStoreInTheRegistry) {
    const TransferStore both{Ini, LocalMachineHive, Key};
    EXPECT_TRUE(store(both).stored());
    EXPECT_EQ(ReadRegistryString(LocalMachineHive, Key, "Directory", {}), Lists);
    TransferSetup read = LoadTransfersFromRegistry(LocalMachineHive, Key);
    EXPECT_TRUE(read.allow && read.askDelete && !read.askDestination);
    EXPECT_EQ(read.defaultList, "Night");
    EXPECT_FALSE(platform::RegistryRead(LocalMachineHive, Key, "PromptForDestinationCart"));
    WriteRegistryLong(LocalMachineHive, Key, "PromptForDestinationCart", -1, 0);
    EXPECT_TRUE(LoadTransfersFromRegistry(LocalMachineHive, Key).askDestination);
    setup.allow = false;
    EXPECT_TRUE(store(both).stored());
    EXPECT_FALSE(platform::RegistryRead(LocalMachineHive, Key, "Directory"));
    EXPECT_FALSE(platform::RegistryRead(LocalMachineHive, Key, "Default"));
    EXPECT_TRUE(platform::RegistryRead(LocalMachineHive, Key, "PromptDeleteAfterSend")); // as told
    setup.allow = true;
    EXPECT_TRUE(store({{}, 5U, Key}).message.contains("registry did not take"));
}

TEST_F(TransferSetupTest, OverwritesNothingThatAnotherWorkstationStoredMeanwhile) {
    setup.askDestination = true;
    machine.write(Ini,
                  "[OPALTransfers]\r\nDirectory=D:\\NEW\r\nDefault=Night\r\nPromptDeleteAfterSend=1\r\n");
    platform::ForgetProfiles();
    EXPECT_TRUE(
        store().message.contains("\n\nFolder of the transport lists; empty if transfers are off.\n\n"));
    EXPECT_EQ(value("OPALTransfers", "PromptForDestinationCart", Ini), "<none>");
    EXPECT_EQ(setup.directory, "D:\\NEW");
    EXPECT_TRUE(setup.askDestination);
    // Turned off there: the user, who has seen it, decides.
    machine.write(Ini, "[X]\r\n");
    platform::ForgetProfiles();
    EXPECT_FALSE(store().stored());
    EXPECT_FALSE(setup.allow);
    EXPECT_TRUE(store().stored());
    EXPECT_EQ(ini(), "[X]\r\n");
}

TEST_F(TransferSetupTest, MakesAndDeletesListsAndRefusesNamesThatCannotBe) {
    EXPECT_EQ(TransportLists(Lists), (QStringList{"News", "night"}));
    EXPECT_EQ(AddTransportList(Lists, "news").message, "You already have an Opal Transport list called news");
    EXPECT_EQ(machine.read(Lists + "\\News.OTL"), "carts");
    EXPECT_TRUE(AddTransportList(Lists, " Day 1. ").stored());
    EXPECT_TRUE(machine.exists(Lists + "\\Day 1..OTL"));
    const struct {
        QString name;
        const char* why;
    } refused[] = {{"", "needs a name"},
                   {"  ", "needs a name"},
                   {"..\\up", "cannot hold any of"},
                   {"a:b", "cannot hold any of"},
                   {"a/b", "cannot hold any of"},
                   {"con", "\"con\" is the name of a device."},
                   {"LPT1.old", "is the name of a device."},
                   {"'x'", "cannot be enclosed in quotes"},
                   {QString::fromUtf8("Ω"), "cannot store"},
                   {QString(252, u'x'), "room for 251 characters"}};
    for (const auto& [name, why] : refused)
        EXPECT_TRUE(AddTransportList(Lists, name).message.contains(why)) << name.toStdString();
    EXPECT_TRUE(AddTransportList(Lists, QString(251, u'x')).stored());
    EXPECT_EQ(AddTransportList("D:\\GONE", "x").error, platform::PathNotFound);
    EXPECT_EQ(AddTransportList(Lists, "folder").error, platform::PathFileAccess);
    EXPECT_TRUE(DeleteTransportList(Lists, "NIGHT").stored());
    EXPECT_EQ(DeleteTransportList(Lists, "Night").message,
              "There was a problem deleting the Opal Transport List D:\\LISTS\\Night.OTL and the error's "
              "description was reported as : \n\n\"File not found\" (53)");
}

TEST_F(TransferSetupTest, AFolderThatMayNotBeWrittenKeepsItsLists) {
    for (const QString& path : {machine.path(), machine.host("D:\\"), machine.host(Lists)})
        QFile::setPermissions(path, QFile::ReadOther | QFile::ExeOther | QFile::ReadOwner | QFile::ExeOwner);
    EXPECT_TRUE(PassesWithoutRights([] {
        EXPECT_EQ(TransportLists(Lists).size(), 2);
        EXPECT_EQ(AddTransportList(Lists, "x").error, platform::PathFileAccess);
        EXPECT_NE(DeleteTransportList(Lists, "News").error, 0);
    }));
    EXPECT_EQ(machine.read(Lists + "\\News.OTL"), "carts");
    EXPECT_FALSE(machine.exists(Lists + "\\x.OTL"));
}

TEST_F(TransferSetupTest, AFolderThatIsGoneIsAFault) {
    settings.OPALDirectory.clear();
    EXPECT_EQ(TransferFault(settings), "");
    settings.OPALDirectory = Lists;
    EXPECT_EQ(TransferFault(settings), "");
    settings.OPALDirectory = "D:\\GONE";
    EXPECT_EQ(TransferFault(settings), "The folder of the transport lists could not be found");
}
