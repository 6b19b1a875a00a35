// One card of the hardware form: its type, where it is attached, and the grid of its lines.
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
    // `number` is the card's, 1 to 3; the table outlives the page. Shows nothing before load().
    CardPage(HardwareCardTable& cards, int number, QWidget* parent = nullptr);
    ~CardPage() override;

    // Shows the card as the table has it. The driver may be asked several times.
    void load(DriverReports& reports);
    // What the controls say now, for Apply.
    CardChoice choice() const;
    ListedCard listed() const;
    bool onlyInUse() const;

    // Whether anything differs from what was marked as stored last.
    bool isChanged() const;
    void markStored();

    void finishEditing();
    // The field that says where the card is attached; of a card that has none, its type.
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
    DriverReports reports_;            // of what the user does
    bool answered_ = true;             // the driver did, the last time it was asked

    EnableRules* rules_;
    FormChanges* changes_; // of type, address and port
    NumberedTable<HardwareLine, LinesPerCard> storedLines_;
};

} // namespace tolvex
