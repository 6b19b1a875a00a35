// The window for transfers, worked by mouse and keyboard, while other programs make and delete lists.
#include "SetupForm.h"

#include "audio/forms/frmOpalSetup.h"
#include "ui/forms/frmGoodInputBox.h"

#include <QListWidget>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

const QString Ini = QStringLiteral("D:\\TLVX_SYS.INI");

class TransferWindow : public testing::Test, protected SetupForm<frmOpalSetup> {
protected:
    void openOn(const QByteArray& ini) {
        machine.write(Ini, ini);
        form = std::make_unique<frmOpalSetup>();
        form->setIniFile(Ini);
        FitForm(form.get());
        form->show();
        activate();
    }
    void makeLists(const QStringList& names) {
        machine.makeFolder("D:\\LISTS");
        for (const QString& name : names)
            machine.write("D:\\LISTS\\" + name + ".OTL", "");
    }
    QListWidget* list() const { return on<QListWidget>("listFiles"); }
    QStringList lists() const {
        QStringList names;
        for (int row = 0; row < list()->count(); ++row)
            names += list()->item(row)->text();
        return names;
    }
    QString selected() const { return list()->currentItem() ? list()->currentItem()->text() : QString(); }
    // Adds a list by the input box.
    void add(const QString& name) {
        QTimer::singleShot(0, qApp, [name] {
            auto* box = qobject_cast<frmGoodInputBox*>(QApplication::activeModalWidget());
            ASSERT_TRUE(box);
            EXPECT_EQ(box->windowTitle(), "Add Opal Transport List");
            auto* line = box->findChild<QLineEdit*>("Text1");
            QTest::keyClicks(line, name);
            QTest::keyClick(line, Qt::Key_Return);
        });
        press("cmdAdd");
    }
    // Another program had the keyboard, and the user comes back.
    void comeBack() {
        QWidget other;
        other.show();
        other.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
        activate();
    }
    QString stored(const char* key) const { return value("OPALTransfers", key, Ini); }

    const QByteArray used = "[OPALTransfers]\r\nDirectory=D:\\LISTS\r\nDefault=Night\r\n";
};

} // namespace

TEST_F(TransferWindow, TurnsTransfersOnWithAFolderAndADefault) {
    makeLists({"Night", "News"});
    openOn("[X]\r\n");
    for (const char* name : {"fraOpalSettings", "cmdBrowse", "listFiles", "cmdAdd", "cmdDelete", "cmdDefault",
                             "chkDeleteAfterSend", "lblDefault"})
        EXPECT_FALSE(enabled(name)) << name;
    press("chkAllowOPAL");
    EXPECT_TRUE(enabled("cmdBrowse") && enabled("chkDeleteAfterSend"));
    EXPECT_FALSE(enabled("cmdAdd") || enabled("listFiles") || enabled("cmdDefault"));
    press("cmdOK");
    EXPECT_EQ(prompts.texts(), QStringList{"You must select a directory"});
    prompts.folders = {std::nullopt, QString("D:\\LISTS")};
    press("cmdBrowse");
    EXPECT_EQ(text("lblDirectory"), "");
    press("cmdBrowse");
    EXPECT_EQ(prompts.folderPrompts.last(), "Select the folder that contains the Opal Transport Lists");
    EXPECT_EQ(lists(), (QStringList{"News", "Night"}));
    EXPECT_EQ(selected(), "News");
    EXPECT_TRUE(enabled("cmdAdd") && enabled("cmdDelete"));
    QTest::keyClick(list(), Qt::Key_Down);
    press("cmdDefault");
    EXPECT_EQ(label("lblDefault"), "Night");
    press("chkPromptForDestinationCart");
    press("cmdOK");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(stored("Directory"), "D:\\LISTS");
    EXPECT_EQ(stored("Default"), "Night");
    EXPECT_EQ(stored("PromptDeleteAfterSend"), "0");
    EXPECT_EQ(stored("PromptForDestinationCart"), "1");
    openOn(machine.read(Ini));
    press("chkAllowOPAL");
    EXPECT_FALSE(enabled("listFiles") || enabled("cmdDelete"));
    press("cmdOK");
    EXPECT_EQ(machine.read(Ini), "[X]\r\n");
}

TEST_F(TransferWindow, AddsAndDeletesLists) {
    makeLists({"Night"});
    openOn(used + "PromptForDestinationCart=-1\r\n");
    type("lblDirectory", "X"); // the folder is chosen, not typed
    EXPECT_EQ(text("lblDirectory"), "D:\\LISTS");
    add("Day");
    EXPECT_EQ(lists(), (QStringList{"Day", "Night"}));
    EXPECT_EQ(selected(), "Day");
    EXPECT_EQ(platform::FileSize("D:\\LISTS\\Day.OTL"), 0);
    add("night");
    add("a?b");
    EXPECT_EQ(prompts.texts(), (QStringList{"You already have an Opal Transport list called night",
                                            "A file name cannot hold any of \\ / : * ? \" < > |."}));
    EXPECT_EQ(lists().size(), 2);
    prompts.forget();
    prompts.answers = {platform::Answer::No, platform::Answer::Yes};
    QTest::keyClick(list(), Qt::Key_Down);
    press("cmdDelete");
    EXPECT_EQ(prompts.asked[0].text, "Are you sure you want to delete the 'Night' Opal Transport List?");
    EXPECT_EQ(prompts.asked[0].defaultAnswer, platform::Answer::No);
    EXPECT_EQ(label("lblDefault"), "Night");
    QTest::keyClick(list(), Qt::Key_Delete);
    EXPECT_EQ(lists(), QStringList{"Day"});
    EXPECT_EQ(label("lblDefault"), ""); // at once; the settings change at OK
    EXPECT_TRUE(enabled("cmdDelete"));
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_EQ(machine.read(Ini), used + "PromptForDestinationCart=-1\r\n");
    EXPECT_FALSE(machine.exists("D:\\LISTS\\Night.OTL"));
}

TEST_F(TransferWindow, ListsOfOtherProgramsComeAndGo) {
    makeLists({"Night", "Sport"});
    openOn(used);
    QTest::keyClick(list(), Qt::Key_Down);
    makeLists({"Day"});
    comeBack();
    EXPECT_EQ(lists(), (QStringList{"Day", "Night", "Sport"}));
    EXPECT_EQ(selected(), "Sport");
    platform::RemoveFile("D:\\LISTS\\Night.OTL");
    platform::RemoveFile("D:\\LISTS\\Sport.OTL");
    comeBack();
    EXPECT_EQ(selected(), "Day");
    EXPECT_EQ(label("lblDefault"), "");
    EXPECT_EQ(label("lblListState"), "The default list \"Night\" is not in this folder.");
    // It goes while its deletion is asked about.
    prompts.answers = {platform::Answer::Yes};
    prompts.beforeAnswers = [] { platform::RemoveFile("D:\\LISTS\\Day.OTL"); };
    press("cmdDelete");
    EXPECT_TRUE(prompts.texts().last().startsWith("There was a problem deleting the Opal Transport List"));
    EXPECT_TRUE(lists().isEmpty());
    EXPECT_FALSE(enabled("cmdDelete") || enabled("cmdDefault"));
    // The folder itself, while the window looks by itself every two seconds.
    QDir(machine.host("D:\\LISTS")).removeRecursively();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !enabled("cmdAdd"); }));
    EXPECT_TRUE(label("lblListState").contains("not there"));
}

TEST_F(TransferWindow, KeepsTheRegistryToo) {
    makeLists({"Night"});
    openOn("[X]\r\n");
    WriteRegistryString(LocalMachineHive, "Software\\T", "Directory", "D:\\LISTS", {});
    form->setRegistryRoot(LocalMachineHive);
    form->setRegistryKey("Software\\T");
    EXPECT_EQ(text("lblDirectory"), "D:\\LISTS");
    press("cmdDefault");
    press("cmdOK");
    EXPECT_EQ(ReadRegistryString(LocalMachineHive, "Software\\T", "Default", {}), "Night");
    EXPECT_EQ(stored("Default"), "Night");
}

TEST_F(TransferWindow, ShowsTenThousandLists) {
    machine.makeFolder("D:\\LISTS");
    const QString folder = machine.host("D:\\LISTS");
    for (int n = 0; n < 10000; ++n)
        QFile(folder + QStringLiteral("/List %1.OTL").arg(n, 5, 10, QChar(u'0'))).open(QIODevice::WriteOnly);
    openOn(used);
    EXPECT_EQ(list()->count(), 10000);
    EXPECT_EQ(label("lblListState"), "The default list \"Night\" is not in this folder.");
    QTest::keyClick(list(), Qt::Key_End);
    press("cmdDefault");
    EXPECT_EQ(label("lblDefault"), "List 09999");
}
