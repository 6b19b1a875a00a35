// A list of rows with headings, as the forms of the network show them: whole rows are selected, nothing is
// edited in place unless a form opens an editor, and an empty list says what it would show.
#pragma once

#include <QTableView>

namespace tolvex {

class RowTable : public QTableView {
    Q_OBJECT

public:
    explicit RowTable(QWidget* parent = nullptr);

    // Shown in the middle while there are no rows.
    void setEmptyText(const QString& text);
    // The selected row; -1 for none.
    int row() const;
    void selectRow(int row);
    // Each column as wide as what stands in it. One of them takes the room that is left, and gives room where
    // there is too little; its long texts then end in dots.
    void fitColumns(int stretched);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void rowsInserted(const QModelIndex& parent, int first, int last) override;

private:
    void stretch();

    QString emptyText_;
    int stretched_ = -1;
    int content_ = 0; // pixels that the texts of the stretched column need
};

} // namespace tolvex
