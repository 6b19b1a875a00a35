// The hardware form on a workstation of a test's own, with a user's actions on its grids.
#pragma once

#include "support/MachineFolder.h"
#include "support/PrintingPrompts.h"

#include "core/settings/Settings.h"
#include "hardware/FakeDriver.h"
#include "hardware/LineDisplay.h"
#include "hardware/forms/LineGrid.h"
#include "hardware/forms/frmHardwareManager.h"
#include "hardware/forms/frmHardwareSettings.h"
#include "platform/profile/ProfileFile.h"
#include "ui/binding/OptionList.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>

namespace tolvex::tests {

const QString iniPath = QStringLiteral("C:\\WINDOWS\\TOLVEX.INI");

struct HardwareForm {
    TestMachine machine;
    PrintingPrompts prompts;
    FakeDriver driver;
    Settings settings;
    HardwareCardTable cards;
    std::unique_ptr<frmHardwareSettings> form;

    explicit HardwareForm(const QByteArray& ini) {
        platform::ForgetProfiles();
        settings.LocalIniFile = QStringLiteral("TOLVEX.INI");
        machine.write(iniPath, ini);
        driver.addFixed(0, 1, 1);
    }
    ~HardwareForm() { frmHardwareManager::UnloadManager(); }

    void open() {
        form = std::make_unique<frmHardwareSettings>(cards, settings);
        form->resize(1100, 640);
        form->show();
        form->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
    HardwareLine& line(int n) { return cards[1].Lines[n]; } // of the first card
    QByteArray ini() const { return machine.read(iniPath); }

    template<typename Widget>
    Widget* on(int card, const char* name) const {
        auto* page = form->findChild<QTabWidget*>(QStringLiteral("tbsSettings"))->widget(card - 1);
        auto* widget = page->findChild<Widget*>(QString::fromLatin1(name));
        if (!widget)
            throw std::runtime_error(std::string("no control ") + name);
        return widget;
    }
    LineGrid* grid(int card) const { return on<LineGrid>(card, "gridUsage"); }
    OptionList* list(int card) const { return on<OptionList>(card, "ListOptions"); }
    QComboBox* type(int card) const { return on<QComboBox>(card, "CardTypeList"); }
    QLineEdit* address(int card) const { return on<QLineEdit>(card, "PortAddressT"); }
    void showCard(int card) const {
        form->findChild<QTabWidget*>(QStringLiteral("tbsSettings"))->setCurrentIndex(card - 1);
    }
    // Clicks on the tab of a card.
    void clickTab(int card) const {
        auto* bar = form->findChild<QTabWidget*>(QStringLiteral("tbsSettings"))->tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(card - 1).center());
        QApplication::processEvents();
    }
    void press(const char* button) const {
        auto* widget = form->findChild<QPushButton*>(QString::fromLatin1(button));
        ASSERT_TRUE(widget && widget->isVisible() && widget->isEnabled()) << button;
        QTest::mouseClick(widget, Qt::LeftButton);
    }
    QString changes() const { return form->findChild<QLabel*>(QStringLiteral("lblChanges"))->text(); }

    QString cell(int card, int line, int column) const {
        return grid(card)->model()->index(line - 1, column).data().toString();
    }
    QPoint at(int card, int line, int column) const {
        LineGrid* view = grid(card);
        const QModelIndex index = view->model()->index(line - 1, column);
        view->scrollTo(index);
        return view->visualRect(index).center();
    }
    void click(int card, int line, int column, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::mouseClick(grid(card)->viewport(), Qt::LeftButton, modifiers, at(card, line, column));
    }
    // Presses on one line, moves over the others and into a neighbouring column, and releases.
    void drag(int card, int first, int last, int column) const {
        QWidget* viewport = grid(card)->viewport();
        const int half = grid(card)->columnWidth(column) / 2 + 4;
        const QPoint aside(column > 0 ? -half : half, 0);
        QTest::mousePress(viewport, Qt::LeftButton, {}, at(card, first, column));
        for (int line = first; line != last; line += last > first ? 1 : -1)
            QTest::mouseMove(viewport, at(card, line, column) + aside);
        const QPoint end = at(card, last, column) + aside;
        QMouseEvent move(QEvent::MouseMove, end, viewport->mapToGlobal(end), Qt::NoButton, Qt::LeftButton,
                         {});
        QApplication::sendEvent(viewport, &move);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, end);
    }
    // Chooses an entry of the open list by the mouse.
    void choose(int card, const QString& text) const {
        OptionList* options = list(card);
        ASSERT_TRUE(options->isVisible());
        const int entry = options->findText(text);
        ASSERT_GE(entry, 0) << text.toStdString();
        QAbstractItemView* view = options->view();
        const QModelIndex index = options->model()->index(entry, 0);
        view->scrollTo(index);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
        QApplication::processEvents();
        EXPECT_FALSE(options->isVisible());
    }
    // Sends a key to the open list or the widget with the focus.
    void key(int key, Qt::KeyboardModifiers modifiers = {}) const {
        const QWidget* popup = QApplication::activePopupWidget();
        // This platform takes a dropped-down list for the active window even after it is gone.
        QApplication::processEvents();
        const auto ready = [&] {
            form->activateWindow();
            QApplication::processEvents();
            return QApplication::focusWidget() == form->focusWidget();
        };
        ASSERT_TRUE(popup || !form->isVisible() || QTest::qWaitFor(ready));
        QWidget* focus = popup ? popup->focusWidget() : form->focusWidget();
        QTest::keyClick(focus ? focus : form.get(), Qt::Key(key), modifiers);
        QApplication::processEvents();
    }
    QList<qint32> firstData(int card, int first, int last) const {
        QList<qint32> data;
        for (int n = first; n <= last; ++n)
            data.append(cards[card].Lines[n].ActionData[0]);
        return data;
    }
};

} // namespace tolvex::tests
