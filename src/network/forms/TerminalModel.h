// The workstations of the station as the grid of their form shows them, with the names that the user typed
// and the number that was chosen.
#pragma once

#include "network/WorkstationSetup.h"

#include <QAbstractTableModel>

namespace tolvex {

class TerminalModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { Number, Marker, IdName, NetworkName, LastUsed, UsedBy, ColumnCount };

    explicit TerminalModel(QObject* parent = nullptr);

    // Shows what the list holds now. Names that were typed stay.
    void show(const QList<TerminalRow>& rows);
    void choose(int id);
    void setName(int id, const QString& name);

    int chosenId() const { return chosenId_; }
    const QMap<int, QString>& typedNames() const { return names_; }
    // The row of a number as the list holds it; an empty one where there is none.
    TerminalRow terminal(int id) const { return rows_.value(id - 1); }
    QString name(int id) const { return names_.value(id, terminal(id).idName); }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QString text(int id, int column) const;
    void rowChanged(int id);

    QList<TerminalRow> rows_;
    QMap<int, QString> names_;
    int chosenId_ = 0;
};

} // namespace tolvex
