#include "console/forms/FindBox.h"

#include "console/ConsoleJobs.h"
#include "console/forms/FormTable.h"

#include <QKeyEvent>
#include <QLineEdit>

namespace tolvex {

namespace {

constexpr int ControlRole = Qt::UserRole;
constexpr int PlaceRole = Qt::UserRole + 1;
constexpr int LongestList = 10;

QString formCaption(const QString& control) {
    const ConsoleJob* job = FindConsoleJob(control);
    return job ? QString::fromLatin1(job->caption).remove(u'&') : QString();
}

} // namespace

FindBox::FindBox(QLineEdit* box, QWidget* window)
    : QListWidget(window)
    , box_(box) {
    setObjectName(QStringLiteral("listFound"));
    setAccessibleName(QStringLiteral("Settings found"));
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVisible(false);
    box_->installEventFilter(this);
    connect(box_, &QLineEdit::textChanged, this, &FindBox::search);
    connect(this, &QListWidget::itemClicked, this, &FindBox::choose);
}

void FindBox::fillIndex() {
    // The forms themselves come before what stands in them.
    for (const ConsoleJob& job : ConsoleJobs()) {
        const QString control = QString::fromLatin1(job.control);
        const QString caption = formCaption(control);
        index_.append({caption, (caption + u' ' + QString::fromLatin1(job.about)).toLower(), control});
    }
    index_.append(SettingEntries());
    for (const ConsoleJob& job : ConsoleJobs())
        index_.append(
            LabelEntries(FormDesign(QString::fromLatin1(job.form)), QString::fromLatin1(job.control)));
    const QString database = QStringLiteral("frmKOVADatabaseSettings");
    index_.append(LabelEntries(FormDesign(database), QStringLiteral("cmdKOVASetup"), database));
}

void FindBox::search(const QString& query) {
    if (index_.isEmpty())
        fillIndex();
    clear();
    const QList<SearchEntry> found = FindEntries(index_, query, LongestList);
    for (const SearchEntry& entry : found) {
        const QString window = entry.window.isEmpty() ? formCaption(entry.control) : entry.window;
        auto* item = new QListWidgetItem(
            entry.text == window ? window : entry.text + QStringLiteral("  ·  ") + window, this);
        item->setData(ControlRole, entry.control);
        item->setData(PlaceRole, entry.place);
        item->setToolTip(item->text());
    }
    if (found.isEmpty() && !query.trimmed().isEmpty()) {
        auto* nothing = new QListWidgetItem(QStringLiteral("No setting has these words"), this);
        nothing->setFlags(Qt::NoItemFlags);
    }
    setCurrentRow(-1); // the first Down selects the first line
    setVisible(count() > 0);
    // Wider than the box: the lines are sentences. It opens to the left, where there is room.
    const QPoint corner = box_->mapTo(parentWidget(), QPoint(box_->width(), box_->height() + 4));
    const int width = std::min(560, corner.x() - 16);
    const int rows = std::max(1, count());
    setGeometry(corner.x() - width, corner.y(), width, sizeHintForRow(0) * rows + 2 * frameWidth() + 8);
    raise();
}

void FindBox::choose(const QListWidgetItem* item) {
    if (!item || !(item->flags() & Qt::ItemIsEnabled))
        return;
    const QString control = item->data(ControlRole).toString();
    const QString place = item->data(PlaceRole).toString();
    box_->clear();
    hide();
    emit chosen(control, place);
}

bool FindBox::eventFilter(QObject* watched, QEvent* event) {
    if (watched == box_ && event->type() == QEvent::KeyPress) {
        switch (static_cast<QKeyEvent*>(event)->key()) {
        case Qt::Key_Down:
            setCurrentRow(std::min(currentRow() + 1, count() - 1));
            return true;
        case Qt::Key_Up:
            setCurrentRow(std::max(currentRow() - 1, 0));
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            choose(currentItem() ? currentItem() : item(0));
            return true;
        case Qt::Key_Escape:
            box_->clear();
            hide();
            parentWidget()->setFocus();
            return true;
        default:
            break;
        }
    }
    if (watched == box_ && event->type() == QEvent::FocusOut)
        hide();
    return QListWidget::eventFilter(watched, event);
}

} // namespace tolvex
