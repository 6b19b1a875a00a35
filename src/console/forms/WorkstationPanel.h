// The workstation at a glance, beside the console's buttons: what it is, what is still to do with a link to
// the form for it, and what is done. It replaces no message and no check of the system.
#pragma once

#include <QScrollArea>

class QVBoxLayout;

namespace tolvex {

struct WorkstationGlance;

class WorkstationPanel : public QScrollArea {
    Q_OBJECT

public:
    explicit WorkstationPanel(QWidget* parent = nullptr);
    void showGlance(const WorkstationGlance& glance);

signals:
    // The user wants to correct something: the console's control that opens the form.
    void jobWanted(const QString& control);

private:
    void addHeading(const QString& text);
    void addFact(const QString& name, const QString& value, bool missing);
    void addMark(const QString& text, const QColor& colour, const QString& sign);

    QVBoxLayout* lines_ = nullptr;
};

} // namespace tolvex
