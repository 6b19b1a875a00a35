// What happened lately, the newest at the end: time and sentence.
#pragma once

#include <QAbstractTableModel>
#include <QColor>
#include <QDateTime>

namespace tolvex {

class EventModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { Time, Event, ColumnCount };
    // Older ones are forgotten.
    static constexpr int MostEvents = 500;

    explicit EventModel(QObject* parent = nullptr);

    void add(const QString& sentence, bool isFault = false);
    void clear();
    // All of it as rows of text, for the clipboard.
    QString text() const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Entry {
        QDateTime time;
        QString sentence;
        bool isFault = false;
    };
    QString text(const Entry& entry, int column) const;

    QList<Entry> entries_;
};

} // namespace tolvex
