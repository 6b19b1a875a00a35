#include "console/forms/Station.h"

#include "console/ConfigurationSets.h"
#include "console/forms/frmMultiConfig.h"
#include "core/system/Registry.h"
#include "platform/registry/RegistryStore.h"
#include "ui/forms/frmGoodInputBox.h"

#include <QAction>
#include <QListWidget>
#include <QStatusBar>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

const QString Key = QString::fromUtf16(SetsRegistryKey);

QString storedList() {
    return ReadRegistryString(platform::LocalMachineHive, Key, "ConfigFiles", "<none>");
}

void storeList(const QString& list) {
    WriteRegistryString(platform::LocalMachineHive, Key, "ConfigFiles", list, QString());
}

QStringList shown(frmMultiConfig& form) {
    QStringList texts;
    auto* list = find<QListWidget>(form, "lvwConfigs");
    for (int i = 0; i < list->count(); ++i)
        texts += list->item(i)->text();
    return texts;
}

// Answers one input box: a text, or Cancel for a null one.
void answerBox(const QString& text, const std::function<void()>& next = {}) {
    withNextForm([text, next](QWidget& box) {
        if (next)
            next();
        if (text.isNull()) {
            click(box, "cmdCancel");
            return;
        }
        auto* line = find<QLineEdit>(box, "Text1");
        line->selectAll();
        QTest::keyClicks(line, text);
        click(box, "cmdOK");
    });
}

} // namespace

TEST(MultiConfig, TheFirstUseListsTheStandardConfiguration) {
    Station station;
    frmMultiConfig form(Key, QString::fromUtf16(DefaultSetFile));
    EXPECT_EQ(shown(form), QStringList{"Standard Configuration"});
    EXPECT_EQ(storedList(), "tolvex.ini");
    form.show();
    // With nothing selected OK does nothing.
    click(form, "cmdOK");
    EXPECT_TRUE(form.isVisible());
    find<QListWidget>(form, "lvwConfigs")->setCurrentRow(0);
    EXPECT_EQ(find<QStatusBar>(form, "statusbar")->currentMessage(), "Selected Configuration : tolvex.ini");
    click(form, "cmdOK");
    EXPECT_EQ(form.chosen(), "tolvex.ini");
    EXPECT_FALSE(form.isVisible());
}

TEST(MultiConfig, CancelEscapeAndTheCloseBoxLeaveNoFile) {
    for (int way = 0; way < 3; ++way) {
        Station station;
        frmMultiConfig form(Key, "tolvex.ini");
        form.show();
        find<QListWidget>(form, "lvwConfigs")->setCurrentRow(0);
        if (way == 0)
            click(form, "cmdCancel");
        else if (way == 1)
            QTest::keyClick(&form, Qt::Key_Escape);
        else
            form.close();
        EXPECT_EQ(form.chosen(), "");
    }
}

TEST(MultiConfig, CopiesWithATidyNameAndRenames) {
    Station station("[General]\r\nConfigName=Studio\r\n[Own]\r\nx=1\r\n");
    frmMultiConfig form(Key, "TOLVEX.INI");
    form.show();
    auto* copy = find<QAction>(form, "mnuCopyConfig");
    copy->trigger(); // nothing selected
    find<QListWidget>(form, "lvwConfigs")->setCurrentRow(0);
    answerBox(QString());
    copy->trigger();
    answerBox("no-hyphen");
    copy->trigger();
    EXPECT_EQ(station.prompts.texts(), QStringList{"You can only use letters and numbers"});
    answerBox("stu dio 2", [] { answerBox("Second"); });
    copy->trigger();
    EXPECT_EQ(storedList(), "TOLVEX.INI studio2.ini");
    EXPECT_EQ(shown(form), (QStringList{"Standard Configuration", "Second"}));
    EXPECT_TRUE(station.machine.read("C:\\WINDOWS\\studio2.ini").endsWith("[Own]\r\nx=1\r\n"));

    find<QListWidget>(form, "lvwConfigs")->setCurrentRow(1);
    answerBox("Renamed");
    find<QAction>(form, "mnuRenameConfig")->trigger();
    EXPECT_EQ(shown(form), (QStringList{"Standard Configuration", "Renamed"}));
    EXPECT_EQ(storedList(), "TOLVEX.INI studio2.ini");
}

TEST(MultiConfig, DeletesBySubstringAndNeverTheLast) {
    Station station;
    station.machine.write("C:\\WINDOWS\\b.ini", "[General]\r\nConfigName=B\r\n");
    station.machine.write("C:\\WINDOWS\\SYSTEM32\\c.ini", "[General]\r\n");
    storeList("ab.ini b.ini  c.ini");
    frmMultiConfig form(Key, "tolvex.ini");
    form.show();
    auto* list = find<QListWidget>(form, "lvwConfigs");
    auto* remove = find<QAction>(form, "mnuDeleteConfig");
    ASSERT_EQ(shown(form), (QStringList{"ab.ini", "B", "c.ini"}));
    list->setCurrentRow(1);
    station.prompts.answers = {platform::Answer::No, platform::Answer::Yes};
    remove->trigger();
    EXPECT_EQ(list->count(), 3);
    remove->trigger();
    EXPECT_EQ(station.prompts.asked.last().text, "Are you sure you want to delete the B Configuration Set?");
    EXPECT_EQ(station.prompts.asked.last().defaultAnswer, platform::Answer::No);
    EXPECT_FALSE(station.machine.exists("C:\\WINDOWS\\b.ini"));
    // "ab.ini" loses the end that it shares with the deleted name.
    EXPECT_EQ(storedList(), "a   c.ini");
    EXPECT_EQ(shown(form), (QStringList{"a", "c.ini"}));

    list->setCurrentRow(1);
    station.prompts.answers = {platform::Answer::Yes};
    remove->trigger();
    EXPECT_FALSE(station.machine.exists("C:\\WINDOWS\\SYSTEM32\\c.ini"));
    list->setCurrentRow(0);
    station.prompts.forget();
    remove->trigger();
    EXPECT_EQ(station.prompts.texts(), QStringList{"You cannot delete the last Configuration Set"});
    EXPECT_EQ(storedList(), "a");
}
