// A configured workstation for tests of the console's forms: a machine folder, scripted prompts, settings in
// a known state, and the waiting that modal forms need.
#pragma once

#include "support/MachineFolder.h"
#include "support/ScriptedPrompts.h"

#include "audio/CartStore.h"
#include "console/StartUp.h"
#include "core/settings/Settings.h"
#include "databases/users/UsersDatabase.h"
#include "network/TerminalList.h"
#include "platform/ProfileFile.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPointer>
#include <QTest>
#include <QTimer>

namespace tolvex::tests {

struct Station {
    TestMachine machine;
    ScriptedPrompts prompts;

    explicit Station(const QByteArray& ini = {}) {
        ResetStartUp();
        ResetSettings();
        ResetCartStore();
        ResetTerminalList();
        ResetUsersState();
        platform::ForgetProfiles();
        platform::SetApplicationFolder(QStringLiteral("C:\\APP"));
        settings().LocalIniFile = QStringLiteral("TOLVEX.INI");
        if (!ini.isEmpty())
            machine.write(QStringLiteral("C:\\WINDOWS\\TOLVEX.INI"), ini);
    }
    ~Station() {
        CloseTerminalList();
        ResetCartStore();
        ResetUsersState();
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
    // Check boxes and radio buttons are hit on their mark: their text may not reach the middle.
    const bool mark = qobject_cast<QPushButton*>(button) == nullptr;
    QTest::mouseClick(button, Qt::LeftButton, {}, mark ? QPoint(8, button->height() / 2) : QPoint());
}

// Does something with the form that the next action opens, as soon as it is there; fails when none comes.
inline void withNextForm(const std::function<void(QWidget&)>& act) {
    auto* timer = new QTimer(qApp);
    timer->setInterval(5);
    auto tries = std::make_shared<int>(0);
    // A later form may lie at the same address: only a form that is still there is the one before.
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

} // namespace tolvex::tests
