// The whole program in a test: its console and forms on a station of the test's own, with its own prompts;
// the changes in its files; and checks for every form.
#pragma once

#include "TestPlaces.h"
#include "app/window/QtPrompts.h"
#include "console/forms/Station.h"
#include "support/Wheel.h"

#include "console/ConsoleJobs.h"
#include "console/forms/frmConfigure.h"
#include "hardware/HardwareCards.h"

#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTabBar>
#include <QTabWidget>

#include <gtest/gtest.h>

namespace tolvex::tests {

using Act = std::function<void(QWidget& form)>;

// "Section/Key" and value of each line of an ini file.
inline QMap<QString, QString> valuesOf(const QByteArray& ini) {
    QMap<QString, QString> values;
    QString section;
    for (const QString& line : QString::fromLatin1(ini).split("\r\n")) {
        if (line.startsWith(u'['))
            section = line.mid(1, line.size() - 2);
        else if (line.contains(u'='))
            values[section + u'/' + line.section(u'=', 0, 0)] = line.section(u'=', 1);
    }
    return values;
}

// "Section/Key=value" for what only the first file has; "-Section/Key" for what was removed.
inline QStringList changes(const QByteArray& before, const QByteArray& after) {
    const QMap<QString, QString> from = valuesOf(before);
    const QMap<QString, QString> to = valuesOf(after);
    QStringList all;
    for (auto it = to.begin(); it != to.end(); ++it)
        if (!from.contains(it.key()) || from[it.key()] != it.value())
            all += it.key() + u'=' + it.value();
    for (auto it = from.begin(); it != from.end(); ++it)
        if (!to.contains(it.key()))
            all += u'-' + it.key();
    return all;
}

// As large as its content needs, if the screen is large enough.
inline void expectSaneSize(const QWidget& form) {
    const QSize screen = form.screen()->availableSize();
    const QSize wanted = form.sizeHint().boundedTo(screen);
    const QString size = QStringLiteral("%1: %2 x %3, its content asks for %4 x %5")
                             .arg(form.objectName())
                             .arg(form.width())
                             .arg(form.height())
                             .arg(wanted.width())
                             .arg(wanted.height());
    EXPECT_TRUE(form.width() >= wanted.width() && form.height() >= wanted.height()) << size.toStdString();
    EXPECT_TRUE(form.width() <= screen.width() && form.height() <= screen.height()) << size.toStdString();
    EXPECT_TRUE(form.width() >= 200 && form.height() >= 100) << size.toStdString();
}

// The wheel over the fields of a form changes none of them.
inline void expectWheelHarmless(QWidget& form) {
    QList<QWidget*> fields;
    for (QWidget* widget : form.findChildren<QWidget*>())
        if ((qobject_cast<QComboBox*>(widget) || qobject_cast<QAbstractSpinBox*>(widget) ||
             qobject_cast<QTabBar*>(widget) || qobject_cast<QAbstractSlider*>(widget)) &&
            !qobject_cast<QScrollBar*>(widget) && widget->isVisible())
            fields += widget;
    const auto values = [&fields] {
        QVariantList all;
        for (const QWidget* field : fields)
            for (const char* property : {"currentIndex", "value", "text"})
                all += field->property(property);
        return all;
    };
    const QVariantList before = values();
    QPointer<QWidget> focus = QApplication::focusWidget();
    for (QWidget* field : fields) {
        for (QWidget* other : form.findChildren<QPushButton*>())
            if (other->isEnabled())
                other->setFocus();
        for (const bool up : {true, false}) {
            RollWheel(field, up);
            EXPECT_EQ(values(), before)
                << form.objectName().toStdString() << ": " << field->objectName().toStdString();
        }
    }
    if (focus)
        focus->setFocus();
}

// The program on a station whose folders and lists exist, with its own prompts. Every question is answered
// Yes, every message OK.
class Program : public testing::Test {
protected:
    Program() {
        platform::SetApplicationFolder(QStringLiteral("C:\\APP"));
        for (const char* folder : {"C:\\DATA", "C:\\WALL"})
            machine_.makeFolder(folder);
        QFile help(QString(TOLVEX_BIN_DIR) + "/config.chm");
        EXPECT_TRUE(help.open(QIODevice::ReadOnly));
        machine_.write("C:\\WINDOWS\\TOLVEX.INI", configuredIni());
        machine_.write("C:\\APP\\config.chm", help.readAll());
        QObject::connect(&answering_, &QTimer::timeout, &answering_, [this] { answer(); });
        answering_.start(5);
        // The first run makes the lists, which returning from the locations opens, and its end saves every
        // setting.
        start();
        open("cmdFileLocations", [](QWidget& form) { click(form, "cmdCancel"); });
        exit();
    }
    ~Program() override { close(); }

    // A start of the program, without any memory of the last one.
    bool start() {
        close();
        platform::ForgetProfiles();
        workstation_ = std::make_unique<Workstation>();
        workstation_->settings.LocalIniFile = QStringLiteral("TOLVEX.INI");
        prompts_ = std::make_unique<QtPrompts>(workstation_->settings);
        platform::setPrompts(prompts_.get());
        console_ = std::make_unique<frmConfigure>(*workstation_);
        if (!console_->load())
            return false;
        console_->show();
        activate(*console_);
        return true;
    }
    void exit() {
        clickMenu(*console_, "mnuFile", "mnuExit");
        EXPECT_FALSE(console_->isVisible());
    }

    // Opens a form by its button in the console and returns when it is closed.
    void open(const char* button, const Act& act) {
        const ConsoleJob* job = FindConsoleJob(button);
        auto* strip = find<QTabWidget>(*console_, "tbsConfig")->tabBar();
        QTest::mouseClick(strip, Qt::LeftButton, {}, strip->tabRect(static_cast<int>(job->tab)).center());
        bool came = false;
        withForm(job->form, [&](QWidget& form) {
            came = true;
            activate(form);
            EXPECT_EQ(prompts_->pointer(), platform::Pointer::Default) << job->form;
            expectSaneSize(form);
            expectWheelHarmless(form);
            act(form);
            EXPECT_FALSE(form.isVisible()) << job->form;
        });
        click(*console_, button);
        EXPECT_TRUE(came) << button;
        EXPECT_TRUE(console_->isEnabled() && console_->isVisible()) << button;
        for (const QWidget* widget : QApplication::topLevelWidgets())
            EXPECT_NE(widget->objectName(), job->form);
    }

    QByteArray ini() const { return machine_.read("C:\\WINDOWS\\TOLVEX.INI"); }

    TestMachine machine_;
    std::unique_ptr<Workstation> workstation_;
    std::unique_ptr<QtPrompts> prompts_;
    std::unique_ptr<frmConfigure> console_;
    QStringList asked_;

private:
    void close() {
        console_.reset();
        platform::setPrompts(nullptr);
        prompts_.reset();
        workstation_.reset();
    }
    void answer() {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        asked_ += box->text();
        for (const auto button : {QMessageBox::Yes, QMessageBox::Ok})
            if (QAbstractButton* found = box->button(button))
                return QTest::mouseClick(found, Qt::LeftButton);
    }

    QTimer answering_;
};

} // namespace tolvex::tests
