// A configured workstation for tests of the console's forms: a machine folder, scripted prompts, settings in
// a known state, and the waiting that modal forms need.
#pragma once

#include "support/MachineFolder.h"
#include "support/ScriptedPrompts.h"

#include "platform/profile/ProfileFile.h"
#include "station/Workstation.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace tolvex::tests {

struct Station {
    TestMachine machine;
    ScriptedPrompts prompts;
    Workstation workstation;
    Settings& settings = workstation.settings;

    explicit Station(const QByteArray& ini = {}) {
        platform::ForgetProfiles();
        platform::SetApplicationFolder(QStringLiteral("C:\\APP"));
        settings.LocalIniFile = QStringLiteral("TOLVEX.INI");
        if (!ini.isEmpty())
            machine.write(QStringLiteral("C:\\WINDOWS\\TOLVEX.INI"), ini);
    }

    QByteArray ini() const { return machine.read(QStringLiteral("C:\\WINDOWS\\TOLVEX.INI")); }
    QString value(const char* section, const char* key) const {
        return platform::ProfileText(QString::fromLatin1(section), QString::fromLatin1(key),
                                     QStringLiteral("<none>"), QStringLiteral("TOLVEX.INI"));
    }
};

// A workstation with everything set, on drive C:.
inline QByteArray configuredIni() {
    QByteArray ini = "[General]\r\nConfigName=Studio 1\r\n[FileLocations]\r\nData=C:\\DATA\r\n";
    for (int part = 1; part <= CartPartCount; ++part)
        ini += "Carts" + QByteArray::number(part) + "=C:\\WALL\r\n";
    return ini + "[LinkMesh]\r\nLinkMeshId=1\r\n";
}

template<typename Widget>
Widget* find(QWidget& form, const char* name) {
    auto* widget = form.findChild<Widget*>(QString::fromLatin1(name));
    if (!widget)
        throw std::runtime_error(std::string("no control ") + name);
    return widget;
}

inline void click(QWidget& form, const char* name) {
    auto* button = find<QAbstractButton>(form, name);
    ASSERT_TRUE(button->isVisible() && button->isEnabled()) << name;
    // Check boxes and radio buttons are clicked on their mark: their text may not reach the middle.
    const bool mark = qobject_cast<QPushButton*>(button) == nullptr;
    QTest::mouseClick(button, Qt::LeftButton, {}, mark ? QPoint(8, button->height() / 2) : QPoint());
}

// Calls a routine with the form that the next action opens, as soon as it is there; fails if none comes.
inline void withNextForm(const std::function<void(QWidget&)>& act) {
    auto* timer = new QTimer(qApp);
    timer->setInterval(5);
    auto tries = std::make_shared<int>(0);
    // A later form may have the same address: only a form that still exists is the earlier one.
    const QPointer<QWidget> before = QApplication::activeModalWidget();
    QObject::connect(timer, &QTimer::timeout, timer, [timer, tries, act, before] {
        QWidget* form = QApplication::activeModalWidget();
        const bool there = form && form != before.data();
        if (!there && ++*tries < 400)
            return;
        timer->stop();
        timer->deleteLater();
        ASSERT_TRUE(there) << "no form came up";
        act(*form);
    });
    timer->start();
}

// Calls a routine with the form of that name as soon as it is visible, modal or not.
inline void withForm(const QString& name, const std::function<void(QWidget&)>& act) {
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, name, act, tries = 0]() mutable {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName() == name && widget->isVisible()) {
                timer->deleteLater();
                timer->stop();
                return act(*widget);
            }
        if (++tries == 400) {
            timer->deleteLater();
            timer->stop();
            FAIL() << name.toStdString() << " did not come up";
        }
    });
    timer->start(5);
}

// Activates a window as a window manager does; this platform takes a menu for the active window even after it
// is gone.
inline void activate(const QWidget& part) {
    QApplication::processEvents();
    part.window()->activateWindow();
    EXPECT_TRUE(QTest::qWaitFor([&part] { return part.isActiveWindow(); }));
}

// Opens a menu of a window's bar and chooses an entry, by the mouse.
inline void clickMenu(QMainWindow& window, const char* menuName, const char* actionName) {
    auto* menu = find<QMenu>(window, menuName);
    auto* action = find<QAction>(window, actionName);
    QTest::mouseClick(window.menuBar(), Qt::LeftButton, {},
                      window.menuBar()->actionGeometry(menu->menuAction()).center());
    ASSERT_TRUE(menu->isVisible() && action->isEnabled()) << actionName;
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
}

} // namespace tolvex::tests
