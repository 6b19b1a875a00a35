// The lines of one card as the grid shows them.
#pragma once

#include "hardware/LineDisplay.h"

#include <QAbstractTableModel>

#include <vector>

namespace tolvex {

class LineUsageModel : public QAbstractTableModel {
    Q_OBJECT

public:
    explicit LineUsageModel(HardwareCard& card, QObject* parent = nullptr);

    HardwareCard& card() const { return card_; }
    // The number of visible lines, 0 to 100. Row i is line i + 1.
    void setLines(int lines);
    // Decodes all lines again; those without a description get their default one, in the table.
    void UpdateGridDisplay();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QString text(int row, int column) const;

    HardwareCard& card_;
    std::vector<LineTexts> texts_; // of the lines shown
};

} // namespace tolvex
