// A form of the network on a workstation of a test's own, used by mouse and keyboard.
#pragma once

#include "support/MachineFolder.h"
#include "support/ScriptedPrompts.h"
#include "support/WaitFor.h"

#include "core/settings/Settings.h"
#include "platform/profile/ProfileFile.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QTest>

#include <gtest/gtest.h>

namespace tolvex::tests {

template<typename Widget>
Widget* find(const QWidget& form, const char* name) {
    auto* widget = form.findChild<Widget*>(QString::fromLatin1(name));
    if (!widget)
        throw std::runtime_error(std::string("no control ") + name);
    return widget;
}

inline void clickCell(QTableView& grid, int row, int column) {
    const QModelIndex cell = grid.model()->index(row, column);
    grid.scrollTo(cell);
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.visualRect(cell).center());
}

// The labels whose texts are cut off.
inline QStringList cutTexts(const QWidget& form) {
    QStringList cut;
    for (const QLabel* label : form.findChildren<QLabel*>()) {
        const int needed =
            label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
        if (label->isVisible() && !label->text().isEmpty() && label->height() < needed)
            cut += label->objectName();
    }
    return cut;
}
// The form is laid out so that no text is cut off.
inline void expectTextsFit(const QWidget& form) {
    EXPECT_TRUE(waitFor([&form] { return cutTexts(form).isEmpty(); }))
        << cutTexts(form).join(u' ').toStdString();
}

class FormTest : public testing::Test {
protected:
    FormTest() {
        platform::ForgetProfiles();
        machine.makeFolder(QStringLiteral("C:\\DATA"));
        settings.DataLocation = QStringLiteral("C:\\DATA");
        settings.LocalIniFile = QStringLiteral("TOLVEX.INI");
        machine.write(QStringLiteral("C:\\WINDOWS\\TOLVEX.INI"), "[General]\r\n");
    }
    // Shows a form as the window in front.
    void show(QWidget& window) {
        shown_ = &window;
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    void clickButton(const char* name) {
        auto* button = find<QAbstractButton>(*shown_, name);
        ASSERT_TRUE(button->isVisible() && button->isEnabled()) << name;
        QTest::mouseClick(button, Qt::LeftButton);
    }

    TestMachine machine;
    ScriptedPrompts prompts;
    Settings settings;

private:
    QWidget* shown_ = nullptr;
};

} // namespace tolvex::tests
