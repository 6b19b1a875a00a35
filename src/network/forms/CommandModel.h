// The commands of the station as their list shows them.
#pragma once

#include "network/commands/CommandFolder.h"

#include <QAbstractTableModel>

namespace tolvex {

class CommandModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { Type, Name, LeaveActive, UseExisting, ColumnCount };

    explicit CommandModel(QObject* parent = nullptr);

    void show(const QList<ListedCommand>& commands);
    ListedCommand command(int row) const { return commands_.value(row); }
    // -1 where there is none of that name.
    int rowOf(const QString& name) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QList<ListedCommand> commands_;
};

} // namespace tolvex
