// The console's search box: lists the settings that match the typed words and reports the chosen one.
#pragma once

#include "console/SettingsSearch.h"

#include <QListWidget>

class QLineEdit;

namespace tolvex {

// The list drops from a line edit of the same window; the first search fills the index.
class FindBox : public QListWidget {
    Q_OBJECT

public:
    FindBox(QLineEdit* box, QWidget* window);

signals:
    // The console's control whose form holds the chosen setting, and the place in that form.
    void chosen(const QString& control, const QString& place);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void search(const QString& query);
    void choose(const QListWidgetItem* item);
    void fillIndex();

    QLineEdit* box_;
    QList<SearchEntry> index_;
};

} // namespace tolvex
