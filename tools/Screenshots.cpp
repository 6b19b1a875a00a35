// Sets up a station in the machine folder and saves a picture of each form: screenshots <folder> light|dark
#include "WalkThrough.h"

#include "audio/forms/frmCartDetails.h"
#include "audio/forms/frmChooseAudioFormat.h"
#include "audio/forms/frmFindCart.h"
#include "audio/forms/frmJumpToCart.h"
#include "automation/AutomationSchema.h"
#include "automation/AutomationSetup.h"
#include "automation/forms/frmKOVADatabaseSettings.h"
#include "console/ConfigurationSets.h"
#include "console/forms/FormTable.h"
#include "console/forms/frmConfigure.h"
#include "console/forms/frmMultiConfig.h"
#include "console/forms/frmSplash.h"
#include "databases/forms/frmChooseDatabase.h"
#include "databases/suite/DatabaseKinds.h"
#include "databases/suite/ValidateDatabase.h"
#include "hardware/HardwareCards.h"
#include "network/TerminalList.h"
#include "network/forms/frmCommandDetails.h"
#include "network/forms/frmCommandSetup.h"
#include "network/forms/frmRadioClockTest.h"
#include "platform/Machine.h"
#include "platform/Prompts.h"
#include "platform/devices/WaveDevices.h"
#include "platform/paths/Paths.h"
#include "station/Workstation.h"
#include "ui/forms/frmGoodInputBox.h"
#include "ui/help/frmHelp.h"
#include "ui/richtext/frmPrintPreview.h"
#include "ui/style/FitForm.h"
#include "ui/style/Style.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QTabWidget>

#include <cstdio>
#include <memory>

namespace {

using namespace tolvex;

QString folder;

void write(const QString& windowsPath, const QByteArray& bytes) {
    const QString path = platform::HostPath(windowsPath);
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

// The owners of numbers on the network.
QByteArray terminals() {
    constexpr const char* names[][2] = {
        {"Studio 1", "STUDIO1"}, {"Studio 2", "STUDIO2"}, {"News", ""}, {"Production", ""}};
    QByteArray list;
    for (const auto& [idName, networkName] : names) {
        TerminalRecord record = BlankTerminalRecord();
        record.IdName = QString::fromLatin1(idName);
        record.NetworkName = list.isEmpty() ? platform::ComputerName() : QString::fromLatin1(networkName);
        if (*networkName != 0)
            record.setLastUsed(QDateTime::currentDateTime().addSecs(-200));
        const TerminalBytes bytes = EncodeTerminalRecord(record);
        list.append(bytes.data(), TerminalRecordLength);
    }
    return list;
}

void makeStation() {
    QByteArray ini = "[General]\r\nConfigName=Studio 1\r\n[FileLocations]\r\nData=C:\\TOLVEX\\SYSTEM\r\n";
    for (int part = 1; part <= CartPartCount; ++part)
        ini += "Carts" + QByteArray::number(part) +
               (part == 3 ? "=C:\\TOLVEX\\AUDIO3\r\n" : "=C:\\TOLVEX\\AUDIO\r\n");
    ini +=
        "[AudioWall]\r\nJumpCartNumber1=100\r\nJumpDescription1=Jingles\r\nJumpCartNumber2=2000\r\n"
        "JumpDescription2=News beds\r\n"
        "[Hardware1]\r\nCardType=3\r\nBaseAddress=2\r\n[Hardware2]\r\nCardType=4\r\nBaseAddress=3\r\n"
        "[Hardware3]\r\nCardType=5\r\nAction1=64\r\nAction1Data2=120\r\nAction2=96\r\nAction2Data1=255\r\n";
    // A studio's lines: type, action and its parameters.
    constexpr int lines[][4] = {{0, 1, 1, 0}, {0, 1, 2, 0},  {0, 3, 1, 2},  {0, 6, -2, 1},
                                {1, 4, 1, 5}, {1, 80, 1, 0}, {1, 151, 1, 0}};
    QByteArray card;
    int number = 0;
    for (const auto& [type, action, first, second] : lines) {
        const QByteArray n = QByteArray::number(++number);
        card += "LineType" + n + '=' + QByteArray::number(type) + "\r\nAction" + n + '=' +
                QByteArray::number(action) + "\r\nAction" + n + "Data1=" + QByteArray::number(first) +
                "\r\nAction" + n + "Data2=" + QByteArray::number(second) + "\r\n";
    }
    ini.replace("[Hardware2]", "ActiveLow6=-1\r\nDescription3=Cue from the desk\r\n" + card + "[Hardware2]");
    write(QStringLiteral("C:\\WINDOWS\\TOLVEX.INI"), ini);
    write(QStringLiteral("C:\\TOLVEX\\SYSTEM\\Terminal.Lst"), terminals());
    write(QStringLiteral("C:\\WINDOWS\\studio2.ini"), "[General]\r\nConfigName=Studio 2, news\r\n");
    write(QStringLiteral("C:\\TOLVEX\\AUDIO\\Audwall.ini"),
          "[CDDB]\r\nAllowCDDB=1\r\nEmailAddress=engineer@station.example\r\n");
    write(QStringLiteral("C:\\TOLVEX\\SYSTEM\\TLVX_SYS.INI"),
          "[OPALTransfers]\r\nDirectory=C:\\TOLVEX\\OPAL\r\nDefault=News desk\r\n");
    for (const char* list : {"News desk", "Sister station", "Sport"})
        write(QStringLiteral("C:\\TOLVEX\\OPAL\\%1.OTL").arg(QLatin1String(list)), {});
    for (const char* name : {"C:\\TOLVEX\\SYSTEM", "C:\\TOLVEX\\AUDIO"})
        QDir().mkpath(platform::HostPath(QString::fromLatin1(name)));
    write(QStringLiteral("C:\\notes.rtf"), "{\\rtf1{\\fonttbl{\\f0 Arial;}{\\f1\\fcharset2 "
                                           "Symbol;}}{\\colortbl;\\red179\\green38\\blue30;}\\f0\\fs28{\\b "
                                           "What is new}\\par\\fs20{\\f1\\'B7}\\tab Carts can be {\\i found} "
                                           "by their length.\\par{\\f1\\'B7}\\tab "
                                           "{\\cf1 Please} make a backup first.\\par}");
}

void save(QWidget& form, const char* name) {
    form.show();
    QCoreApplication::processEvents();
    const QString path = folder + u'/' + QString::fromLatin1(name) + QStringLiteral(".png");
    QPixmap picture = form.grab();
    // The frame that a window manager would draw.
    QPainter painter(&picture);
    painter.setPen(tokens().line);
    painter.drawRect(form.rect().adjusted(0, 0, -1, -1));
    painter.end();
    std::printf("%s %s\n", picture.save(path) ? "saved" : "NOT SAVED", qPrintable(path));
}

void saveForm(Workstation& station, const char* form, const char* name) {
    const std::unique_ptr<QDialog> dialog(MakeForm(QString::fromLatin1(form), station, nullptr));
    FitForm(dialog.get());
    save(*dialog, name);
}

// The list of commands, the editor on a tested command, and the server.
void saveCommands(Workstation& station) {
    const CommandFolder commands(station.settings.DataLocation);
    CommandRecord command;
    command.Text = "\x02GPO 4 ON\r\n";
    commands.save(QStringLiteral("Door light"), command);
    command = {};
    command.Type = TcpIpCommand;
    command.Flags = UseExistingConnection | LeaveConnectionOpen;
    command.Address = QStringLiteral("127.0.0.1");
    command.IpPort = 9;
    command.Protocol = ProtocolUdp;
    command.Text = "NEWS\r";
    commands.save(QStringLiteral("News feed"), command);
    command = {};
    command.Type = ExternalCommand;
    command.Text = "C:\\TOLVEX\\REPORT.EXE /NIGHT";
    commands.save(QStringLiteral("Night report"), command);
    const std::unique_ptr<QDialog> dialog(MakeForm(QStringLiteral("frmCommandSetup"), station, nullptr));
    FitForm(dialog.get());
    save(*dialog, "commands");
    for (const char* name : {"Door light", "News feed", "Night report"}) {
        frmCommandDetails editor(commands, QString::fromLatin1(name),
                                 [](const QString&) { return QList<CommandUse>(); });
        FitForm(&editor);
        editor.findChild<QPushButton*>(QStringLiteral("cmdTest"))->click();
        save(editor, *name == 'D' ? "command" : name[1] == 'e' ? "command-network" : "command-program");
    }
    frmLinkMeshServer& server = static_cast<frmCommandSetup*>(dialog.get())->serverForm();
    FitForm(&server);
    server.restore();
    save(server, "server");
}

// A picture of each tab: "audio1", "audio2", ...
void saveTabs(Workstation& station, const char* form, const char* name) {
    const std::unique_ptr<QDialog> dialog(MakeForm(QString::fromLatin1(form), station, nullptr));
    FitForm(dialog.get());
    auto* tabs = dialog->findChild<QTabWidget*>();
    for (int tab = 0; tab < tabs->count(); ++tab) {
        tabs->setCurrentIndex(tab);
        save(*dialog, (name + QByteArray::number(tab + 1)).constData());
    }
}

// A few carts of a station.
void makeCarts() {
    struct Cart {
        int number;
        const char* line1;
        const char* line2;
        float length;
    };
    constexpr Cart carts[] = {{12, "News at one", "Opener", 12},
                              {13, "News at one", "Bed", 185},
                              {21, "Weather", "Music bed for the news desk", 62},
                              {40, "Station jingle", "Sung, with the name", 9},
                              {100, "News at ten", "Opener", 14},
                              {512, "Traffic and news", "Short", 33},
                              {999, "Night news", "Closing words", 41}};
    QByteArray list(1000 * CartListRecordLength, '\0');
    const CartListRecord empty = EncodeCartRecord(MakeEmptyCartRecord(0xC0C0C0, 0));
    for (int cart = 0; cart < 1000; ++cart)
        list.replace(cart * CartListRecordLength, CartListRecordLength, empty.data(), CartListRecordLength);
    for (const Cart& cart : carts) {
        CartRecord record = MakeEmptyCartRecord(0xE6D8AD, 0);
        record.Line1 = QString::fromLatin1(cart.line1);
        record.Line2 = QString::fromLatin1(cart.line2);
        record.Length = record.TotalLength = record.PlayEnd = record.PlayLength = cart.length;
        const CartListRecord bytes = EncodeCartRecord(record);
        list.replace((cart.number - 1) * CartListRecordLength, CartListRecordLength, bytes.data(),
                     CartListRecordLength);
    }
    write(QStringLiteral("C:\\TOLVEX\\AUDIO\\Carts1.lst"), list);
}

// The search before and after, the keypad, and a cart to look at.
void saveCarts(Workstation& station) {
    frmFindCart search(station.carts, station.picking);
    FitForm(&search);
    save(search, "findcart");
    auto* tabs = search.findChild<QTabWidget*>();
    tabs->setCurrentIndex(1);
    save(search, "findcart-rules");
    tabs->setCurrentIndex(0);
    search.findChild<QComboBox*>(QStringLiteral("cmbSearchText"))->setEditText(QStringLiteral("news"));
    search.findChild<QPushButton*>(QStringLiteral("cmdFind"))->click();
    save(search, "findcart-searching");
    while (search.isSearching())
        QCoreApplication::processEvents();
    save(search, "findcart-found");
    search.findChild<QComboBox*>(QStringLiteral("cmbSearchText"))->setEditText(QStringLiteral("nowhere"));
    search.findChild<QPushButton*>(QStringLiteral("cmdFind"))->click();
    while (search.isSearching())
        QCoreApplication::processEvents();
    save(search, "findcart-none");
    frmJumpToCart keypad(station.carts, station.picking);
    FitForm(&keypad);
    save(keypad, "jumptocart-empty");
    keypad.close();
    keypad.Tag = QStringLiteral("512");
    save(keypad, "jumptocart");
    frmCartDetails details(station.carts);
    details.setCart(512);
    FitForm(&details);
    save(details, "cartdetails");
}

// A studio has a desk with three channels and a card for listening in advance.
void makeDevices() {
    constexpr quint32 formats = platform::WaveFormat4M16 | platform::WaveFormat4S16;
    QList<platform::WaveDevice> outputs;
    for (const char* output :
         {"Desk, Channel 1", "Desk, Channel 2", "Desk, Channel 3", "USB Audio, Headphones"})
        outputs += {QLatin1String(output), QLatin1String(output), 0, formats, true};
    platform::SetWaveDevices(outputs,
                             {{QStringLiteral("Desk, Record Bus"), QStringLiteral("rec"), 0, formats, true}});
}

// The automation player's windows, on a database with a few settings of the station's own.
void saveAutomation(Workstation& station) {
    const QString databases = AutomationFolder(station.settings);
    for (const auto& [name, title] : {std::pair("NIGHT", "Night and weekend log"), {"SPORT", "Sport log"}}) {
        QString description = QString::fromLatin1(title);
        ValidateDatabase(databases + u'\\' + QLatin1String(name), KOVAType, true, &description);
    }
    station.settings.DefaultDatabase = QStringLiteral("NIGHT.mdb");
    const QString path = databases + QStringLiteral("\\NIGHT.mdb");
    ValidateKOVADatabaseTables(path);
    frmChooseDatabase chooser;
    chooser.setPath(databases);
    chooser.setTag(QString::number(KOVAType));
    chooser.show();
    const char* const views[] = {"mnuViewLarge", "mnuViewSmall", "mnuViewList", "mnuViewDetails"};
    for (int at = 0; at < 200; ++at)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    for (const char* view : views) {
        chooser.findChild<QAction*>(QLatin1String(view))->trigger();
        save(chooser, (QByteArray("chooser-") + (view + 7)).toLower().constData());
    }
    const std::unique_ptr<QDialog> setup(MakeForm(QStringLiteral("frmKOVASetup"), station, nullptr));
    frmKOVADatabaseSettings settings(station.automation, station.settings, station.users);
    settings.setDatabase(path);
    for (const auto& [form, name] :
         {std::pair<QDialog*, const char*>(setup.get(), "kova-setup-"), {&settings, "kova-settings-"}}) {
        FitForm(form);
        auto* tabs = form->findChild<QTabWidget*>();
        for (int tab = 0; tab < tabs->count(); ++tab) {
            tabs->setCurrentIndex(tab);
            save(*form, (name + QByteArray::number(tab + 1)).constData());
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: screenshots FOLDER light|dark\n");
        return 2;
    }
    folder = QString::fromLocal8Bit(argv[1]);
    QDir().mkpath(folder);
    ApplyStyle(application, QByteArray(argv[2]) == "dark" ? Scheme::Dark : Scheme::Light);
    makeStation();
    makeCarts();
    makeDevices();
    Workstation station;

    frmConfigure console(station);
    if (!console.load())
        return 1;
    save(console, "console");
    auto* tabs = console.findChild<QTabWidget*>(QStringLiteral("tbsConfig"));
    tabs->setCurrentIndex(2);
    save(console, "console-database");
    tabs->setCurrentIndex(3);
    save(console, "console-autoconfig");
    tabs->setCurrentIndex(0);
    console.findChild<QLineEdit*>(QStringLiteral("txtFind"))->setText(QStringLiteral("clock"));
    save(console, "console-search");

    saveForm(station, "frmFileLocations", "filelocations");
    saveTabs(station, "frmAudioSetup", "audio");
    saveTabs(station, "frmAudioWallSetup", "audiowall");
    saveCarts(station);
    frmChooseAudioFormat chooser(1, 2, 44100);
    save(chooser, "audioformat");
    saveForm(station, "frmDisplayOptions", "displayoptions");
    saveForm(station, "frmDateTimeSetup", "datetime");
    frmRadioClockTest clock;
    clock.setPort(1);
    FitForm(&clock);
    save(clock, "radioclocktest");
    saveForm(station, "frmLinkMeshSetup", "linkmesh");
    saveForm(station, "frmOpalSetup", "transfers");
    saveForm(station, "frmRippingSettings", "ripping");
    saveCommands(station);
    for (int card = 0; card < HardwareCardCount; ++card) {
        const std::unique_ptr<QDialog> hardware(
            MakeForm(QStringLiteral("frmHardwareSettings"), station, nullptr));
        hardware->findChild<QTabWidget*>(QStringLiteral("tbsSettings"))->setCurrentIndex(card);
        FitForm(hardware.get());
        save(*hardware, card == 0 ? "hardware" : card == 1 ? "hardware-advantech" : "hardware-joystick");
    }
    saveAutomation(station);
    frmMultiConfig sets(QString::fromUtf16(SetsRegistryKey), QStringLiteral("tolvex.ini studio2.ini"));
    sets.findChild<QListWidget*>()->setCurrentRow(0);
    save(sets, "configurationsets");
    frmSplash splash(station.settings.OSVersion);
    splash.setCurrentAction(QStringLiteral("Accessing AudioWall..."));
    splash.adjustSize();
    save(splash, "splash");
    frmSplash about(station.settings.OSVersion);
    about.becomeAboutBox();
    about.adjustSize();
    save(about, "about");
    frmPrintPreview notice;
    notice.LoadFile(QStringLiteral("C:\\notes.rtf"));
    save(notice, "printpreview");
    frmGoodInputBox box;
    box.setPrompt(
        QStringLiteral("What filename do you want to use for the new Configuration Set?\n\n(You can only use "
                       "letters and numbers)"));
    save(box, "inputbox");
    ShowHelp(platform::ApplicationFile(QStringLiteral("config.chm")), 100);
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->objectName() == QStringLiteral("frmHelp"))
            save(*window, "help");
    console.close();
    WalkThrough(save);
    return 0;
}
