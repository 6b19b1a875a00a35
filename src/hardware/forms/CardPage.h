// One card of the hardware form: its type, its connection, and the grid of its lines.
#pragma once

#include "hardware/CardSetup.h"
#include "hardware/LineList.h"

#include <QWidget>

#include <memory>

namespace Ui {
class CardPage;
}

namespace tolvex {

class EnableRules;
class FormChanges;
class LineUsageModel;

class CardPage : public QWidget {
    Q_OBJECT

public:
    // `number` is the card's, 1 to 3; the table outlives the page. Empty until load().
    CardPage(HardwareCardTable& cards, int number, QWidget* parent = nullptr);
    ~CardPage() override;

    // Shows the card's state in the table. May ask the driver several times.
    void load(DriverReports& reports);
    // The current state of the controls, for Apply.
    CardChoice choice() const;
    ListedCard listed() const;
    bool onlyInUse() const;

    // Whether anything differs from what was last marked as stored.
    bool isChanged() const;
    void markStored();

    void finishEditing();
    // The field for the card's connection; its type if it has none.
    QWidget* fieldOfCard() const;
    void focusGrid();

signals:
    void edited();

private:
    void selectType();
    void addressChanged();
    void showLines(DriverReports& reports);
    void markAddress();
    qint32 selectedType() const;

    std::unique_ptr<Ui::CardPage> ui_;
    int number_;
    HardwareCard& card_;
    LineUsageModel* model_;
    DriverReports* loading_ = nullptr; // while load() runs
    DriverReports reports_;            // during user actions
    bool answered_ = true;             // the driver's last call succeeded

    EnableRules* rules_;
    FormChanges* changes_; // of type, address and port
    NumberedTable<HardwareLine, LinesPerCard> storedLines_;
};

} // namespace tolvex
