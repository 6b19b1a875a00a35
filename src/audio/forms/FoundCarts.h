// What a search found, as the rows of a list: a hidden column with the number in six digits, by which the
// rows are sorted under the heading "Cart", the number, the three lines, the length. Rows come in batches; a
// list that is sorted stays so.
#pragma once

#include "audio/search/CartSearch.h"

#include <QAbstractTableModel>

#include <array>
#include <vector>

namespace tolvex {

class FoundCarts : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { Key, CartNo, Line1, Line2, Line3, Length, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    void clear();
    void add(const QList<FoundCart>& found);
    // The one row of a search that found nothing.
    void addNone();

    // The cart of a row; 0 for the row that says that there is none, and outside the list.
    qint32 cart(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    // By the text of a column in whatever case; rows that are alike stay in the order they were found in.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

private:
    struct Row {
        qint32 cart = 0;
        std::array<QString, 3> lines;
        QString length;
    };
    QString text(const Row& row, int column) const;
    bool isBefore(std::size_t a, std::size_t b) const;
    void arrange(std::size_t sorted);

    std::vector<Row> rows_;          // in the order they were found in
    std::vector<std::size_t> order_; // of the list: which of rows_
    int sortedBy_ = -1;              // -1: as found
    Qt::SortOrder direction_ = Qt::AscendingOrder;
};

} // namespace tolvex
