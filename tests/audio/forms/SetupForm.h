// One of the sound windows on a test's own workstation, and what a user does to it.
#pragma once

#include "support/MachineFolder.h"
#include "support/ScriptedPrompts.h"

#include "core/settings/Settings.h"
#include "core/settings/SettingsLoader.h"
#include "platform/devices/WaveDevices.h"
#include "platform/profile/ProfileFile.h"
#include "ui/style/FitForm.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

namespace tolvex::tests {

struct SetupStation {
    TestMachine machine;
    ScriptedPrompts prompts;
    Settings settings;

    SetupStation() {
        platform::ForgetProfiles();
        machine.addDrive(u'D');
        machine.makeFolder(QStringLiteral("D:\\WALL"));
        settings.LocalIniFile = QStringLiteral("TOLVEX.INI");
        settings.CartPartTable[1].Location = QStringLiteral("D:\\WALL");
        settings.ScreenWidthTwips = 1024 * 15;
        settings.ScreenHeightTwips = 768 * 15;
        // The defaults of the sections that the windows show.
        for (const SettingRows rows :
             {PlayerAssignmentRows, PlayerColourRows, PlayerRows, VolumeRows, SweptVolumeRows, AudioRows,
              CartDisplayRows, AudioWallSizeRows, AudioWallRows, AudiowallFileRows})
            LoadRows(rows, {settings.LocalIniFile}, settings);
        SizeJumpCartButtons(settings);
        settings.TotalNumberCartPlayers = 3;
        settings.RecordingSoundCard = 1;
        setOutputs({"Desk 1", "Desk 2", "Phones"});
    }
    ~SetupStation() { platform::RefreshWaveDevices(); }

    static void setOutputs(const QStringList& names, const QStringList& inputs = {"Line", "Microphone"}) {
        constexpr quint32 formats = platform::WaveFormat4M16 | platform::WaveFormat4S16;
        const auto devices = [](const QStringList& of) {
            QList<platform::WaveDevice> list;
            for (const QString& name : of)
                list += {name, name, 0, formats, true};
            return list;
        };
        platform::SetWaveDevices(devices(names), devices(inputs));
    }
    QString value(const char* section, const char* key,
                  const QString& file = QStringLiteral("TOLVEX.INI")) const {
        return platform::ProfileText(QString::fromLatin1(section), QString::fromLatin1(key),
                                     QStringLiteral("<none>"), file);
    }
};

template<typename Form>
struct SetupForm : SetupStation {
    std::unique_ptr<Form> form;

    void open() {
        form = std::make_unique<Form>(settings);
        FitForm(form.get());
        form->show();
        activate();
    }
    void activate() const {
        form->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
    template<typename Widget>
    Widget* on(const char* name) const {
        auto* widget = form->template findChild<Widget*>(QString::fromLatin1(name));
        if (!widget)
            throw std::runtime_error(std::string("no control ") + name);
        return widget;
    }
    // Clicks on a tab's caption.
    void tab(int number) const {
        QTabBar* bar = form->template findChild<QTabWidget*>()->tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(number - 1).center());
        QApplication::processEvents();
    }
    // Clicks a button; check boxes and radio buttons on their mark.
    void press(const char* name) const {
        auto* button = on<QAbstractButton>(name);
        ASSERT_TRUE(button->isVisible() && button->isEnabled()) << name;
        QTest::mouseClick(button, Qt::LeftButton, {},
                          button->isCheckable() ? QPoint(8, button->height() / 2) : QPoint());
    }
    void type(const char* name, const QString& text) const {
        auto* box = on<QLineEdit>(name);
        ASSERT_TRUE(box->isVisible() && box->isEnabled()) << name;
        QTest::mouseClick(box, Qt::LeftButton);
        QApplication::processEvents(); // the whole text is selected
        QTest::keyClicks(box, text);
    }
    void choose(const char* name, int entry) const {
        auto* list = on<QComboBox>(name);
        ASSERT_TRUE(list->isVisible() && list->isEnabled()) << name;
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Home);
        for (int i = 0; i < entry; ++i)
            QTest::keyClick(list, Qt::Key_Down);
        EXPECT_EQ(list->currentIndex(), entry) << name;
    }
    QString text(const char* name) const { return on<QLineEdit>(name)->text(); }
    QString label(const char* name) const { return on<QLabel>(name)->text(); }
    bool enabled(const char* name) const { return on<QWidget>(name)->isEnabled(); }
};

} // namespace tolvex::tests
