// File locations, display options, date and time: what the forms show, accept and write.
#include "console/forms/Station.h"

#include "console/forms/FormTable.h"
#include "console/forms/frmDateTimeSetup.h"
#include "console/forms/frmDisplayOptions.h"
#include "console/forms/frmFileLocations.h"
#include "network/forms/StrengthMeter.h"
#include "support/ClockReceiver.h"
#include "ui/style/Colours.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>

#include <gtest/gtest.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

void type(QWidget& form, const char* name, const QString& text) {
    auto* box = find<QLineEdit>(form, name);
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, text);
}

} // namespace

// The shell may have stored settings while the console was open.
TEST(SoundWindows, OpenOnWhatTheFileHoldsNow) {
    Station station(configuredIni());
    station.settings.GeneralVolume = 12;
    station.settings.CartBevelWidth = 9;
    const std::unique_ptr<QDialog> audio(MakeForm("frmAudioSetup", station.workstation, nullptr));
    EXPECT_EQ(find<QLineEdit>(*audio, "txtGeneralVolume")->text(), "100");
    const std::unique_ptr<QDialog> wall(MakeForm("frmAudioWallSetup", station.workstation, nullptr));
    EXPECT_EQ(find<QComboBox>(*wall, "comboBevelWidth")->currentIndex(), station.settings.CartBevelWidth);
    EXPECT_NE(station.settings.CartBevelWidth, 9);
}

TEST(FileLocations, StoresTidyPathsAndMakesTheFolders) {
    Station station("[FileLocations]\r\n; kept\r\nData=C:\\OLD\r\nOther=1\r\n");
    frmFileLocations form(station.settings);
    form.setIniFile("TOLVEX.INI");
    form.show();
    EXPECT_EQ(find<QLineEdit>(form, "txtDataLocation")->text(), "C:\\OLD");
    // All boxes are empty and so equal: the one-location box was initially ticked.
    click(form, "chkUseOneCartLocation");
    type(form, "txtDataLocation", "c:\\data\\");
    EXPECT_EQ(find<QLineEdit>(form, "txtDataLocation")->text(), "C:\\DATA\\");
    type(form, "txtCartLocations_1", "c:\\wall\\one\\\\");
    type(form, "txtCartLocations_2", "C:\\");
    // Nothing can be made below a file.
    station.machine.write("C:\\FILE", "x");
    type(form, "txtCartLocations_3", "C:\\FILE\\X");
    click(form, "cmdDone");

    EXPECT_EQ(station.value("FileLocations", "Data"), "C:\\DATA");
    EXPECT_EQ(station.value("FileLocations", "Schedules"), "C:\\DATA\\SCHEDULE");
    EXPECT_EQ(station.value("FileLocations", "Logs"), "C:\\DATA\\LOGS");
    EXPECT_EQ(station.settings.CartPartTable[1].Location, "C:\\WALL\\ONE\\");
    EXPECT_EQ(station.value("FileLocations", "Carts1"), "C:\\WALL\\ONE\\");
    EXPECT_EQ(station.value("FileLocations", "Carts2"), "C:");
    EXPECT_EQ(station.value("FileLocations", "Carts3"), "C:\\FILE\\X");
    EXPECT_EQ(station.value("FileLocations", "Carts4"), "");
    EXPECT_EQ(station.settings.CartPartTable[1].State, Available);
    EXPECT_EQ(station.settings.CartPartTable[2].State, Available);
    EXPECT_EQ(station.settings.CartPartTable[3].State, Unavailable);
    EXPECT_EQ(station.settings.CartPartTable[4].State, Unavailable);
    EXPECT_EQ(station.prompts.texts().size(), 1);
    EXPECT_TRUE(station.machine.exists("C:\\DATA\\SCRIPTS"));
    EXPECT_TRUE(station.ini().startsWith("[FileLocations]\r\n; kept\r\nData=C:\\DATA\r\nOther=1\r\n"));
    EXPECT_FALSE(form.isVisible());
}

TEST(FileLocations, KeepsLettersThatHaveNoUpperCaseAndMakesNoFolderUnderAnotherName) {
    Station station("[FileLocations]\r\nData=C:\\gro\xDF\r\n");
    frmFileLocations form(station.settings);
    form.setIniFile("TOLVEX.INI");
    form.show();
    EXPECT_EQ(find<QLineEdit>(form, "txtDataLocation")->text(), QString("C:\\GRO\u00DF"));
    click(form, "chkUseOneCartLocation");
    find<QLineEdit>(form, "txtCartLocations_1")->setText(QString("C:\\\u03A9"));
    type(form, "txtCartLocations_2", "C:\\A?B");
    click(form, "cmdDone");
    EXPECT_EQ(station.value("FileLocations", "Data"), QString("C:\\GRO\u00DF"));
    EXPECT_FALSE(station.machine.exists(QString("C:\\\u03A9")));
    EXPECT_FALSE(station.machine.exists("C:\\A?B"));
    EXPECT_EQ(station.settings.CartPartTable[1].State, Unavailable);
    ASSERT_EQ(station.prompts.texts().size(), 2);
    EXPECT_TRUE(station.prompts.texts()[0].contains("a character that the files cannot store"));
    EXPECT_TRUE(station.prompts.texts()[1].contains("Bad file name or number"));
}

TEST(FileLocations, OneDirectoryForAllCarts) {
    Station station(configuredIni());
    for (CartPart& part : station.settings.CartPartTable)
        part.Location = "C:\\WALL";
    frmFileLocations form(station.settings);
    form.setIniFile("TOLVEX.INI");
    form.show();
    EXPECT_TRUE(find<QCheckBox>(form, "chkUseOneCartLocation")->isChecked());
    EXPECT_TRUE(find<QLineEdit>(form, "txtCartLocations_2")->isReadOnly());
    EXPECT_FALSE(find<QPushButton>(form, "cmdChangeCartLocation_11")->isEnabled());
    type(form, "txtCartLocations_1", "c:\\new");
    EXPECT_EQ(find<QLineEdit>(form, "txtCartLocations_11")->text(), "C:\\NEW");
    click(form, "chkUseOneCartLocation");
    EXPECT_FALSE(find<QLineEdit>(form, "txtCartLocations_2")->isReadOnly());
    type(form, "txtCartLocations_1", "c:\\other");
    EXPECT_EQ(find<QLineEdit>(form, "txtCartLocations_11")->text(), "C:\\NEW");

    station.prompts.folders = {std::nullopt, QString("m:\\audio")};
    click(form, "cmdChangeCartLocation_2");
    EXPECT_EQ(find<QLineEdit>(form, "txtCartLocations_2")->text(), "C:\\NEW");
    click(form, "cmdChangeCartLocation_2");
    EXPECT_EQ(find<QLineEdit>(form, "txtCartLocations_2")->text(), "M:\\AUDIO");
    const QByteArray before = station.ini();
    QTest::keyClick(&form, Qt::Key_Escape);
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(station.ini(), before);
    EXPECT_EQ(station.settings.CartPartTable[1].Location, "C:\\WALL");
}

TEST(DateTimeSetup, StoresThePortAndTestsOnlyAChosenOne) {
    Station station("[DateTimeSettings]\r\nRadioClockComPort=2\r\n");
    station.settings.RadioClockComPort = 2;
    ClockReceiver receiver;
    receiver.level = 3;
    station.machine.link("com2", receiver.device.path());
    frmDateTimeSetup form(station.settings);
    form.show();
    auto* ports = find<QComboBox>(form, "comboRadioClock");
    EXPECT_EQ(ports->currentText(), "Com Port 2");
    withForm("frmRadioClockTest", [](QWidget& test) {
        auto* strength = find<StrengthMeter>(test, "pnlSignalStrength");
        EXPECT_TRUE(QTest::qWaitFor([strength] { return strength->percent() == 60; }));
        click(test, "Command1");
    });
    click(form, "cmdTestRadioClock");
    EXPECT_TRUE(receiver.requests.startsWith("i") && receiver.requests.contains('g'));
    EXPECT_TRUE(station.prompts.texts().isEmpty());
    EXPECT_EQ(station.settings.RadioClockComPort, 2);
    ports->setCurrentIndex(0);
    click(form, "cmdTestRadioClock");
    EXPECT_EQ(station.prompts.texts(), QStringList{"You must choose a valid Com Port"});
    ports->setCurrentIndex(4);
    click(form, "Command1");
    EXPECT_EQ(station.settings.RadioClockComPort, 4);
    EXPECT_EQ(station.ini(), "[DateTimeSettings]\r\nRadioClockComPort=4\r\n");

    // A port from a hand-edited file selects nothing and survives OK.
    station.settings.RadioClockComPort = 7;
    frmDateTimeSetup odd(station.settings);
    odd.show();
    EXPECT_EQ(find<QComboBox>(odd, "comboRadioClock")->currentIndex(), -1);
    click(odd, "Command1");
    EXPECT_EQ(station.settings.RadioClockComPort, 7);
}

TEST(DisplayOptions, ColoursShowAtOnceAndStayAfterEscape) {
    Station station("[Display]\r\nShowClock=0\r\n");
    station.settings.FormBackcolor = SystemButtonFace;
    station.settings.FormForeColor = SystemButtonText;
    station.settings.UseInformationWindow = 2;
    station.settings.ShowClock = -1;
    frmDisplayOptions form(station.settings);
    form.show();
    EXPECT_TRUE(find<QRadioButton>(form, "optInfoWindowAtBottom")->isChecked());
    EXPECT_TRUE(find<QCheckBox>(form, "chkInfoWindowDisplayClock")->isChecked());
    EXPECT_FALSE(find<QPushButton>(form, "cmdChangeBackgroundColor")->isEnabled());
    click(form, "chkAdjustSystemColors");
    station.prompts.colours = {0x0000FF, std::nullopt};
    click(form, "cmdChangeBackgroundColor");
    EXPECT_EQ(station.settings.FormBackcolor, 0x0000FF);
    EXPECT_EQ(form.grab().toImage().pixelColor(4, 4), QColor(255, 0, 0));
    click(form, "cmdChangeForegroundColor");
    EXPECT_EQ(station.settings.FormForeColor, SystemButtonText);
    QTest::keyClick(&form, Qt::Key_Escape);
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(station.settings.FormBackcolor, 0x0000FF);
    EXPECT_EQ(station.settings.AdjustTheSystemColors, 0);
    EXPECT_EQ(station.value("Display", "FormBackcolor"), "<none>");
}

TEST(DisplayOptions, OkStoresTheChoices) {
    Station station("[Display]\r\nShowClock=1\r\n");
    station.settings.ShowClock = 1;
    station.settings.UseInformationWindow = 2;
    frmDisplayOptions form(station.settings);
    form.show();
    click(form, "optInfoWindowAtTop");
    click(form, "chkInfoWindowDisplayClock");
    click(form, "chkUseSingleClick");
    click(form, "cmdOK");
    EXPECT_EQ(station.value("Display", "UseInformationWindow"), "1");
    EXPECT_EQ(station.value("Display", "ShowClock"), "0");
    EXPECT_EQ(station.value("Display", "SingleClickPlayCarts"), "1");
    EXPECT_EQ(station.settings.AdjustTheSystemColors, 0);
}
