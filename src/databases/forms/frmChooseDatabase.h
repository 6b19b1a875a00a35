// Lists the databases of one kind in one folder and lets the user pick one, make, copy, rename, describe and
// delete them. Every form that needs a database uses it:
//
//     const QString name = ChooseDatabase(this, settings.DataLocation + "\\SCHEDULE", KOVAType);
#pragma once

#include "databases/suite/DatabaseList.h"

#include <QDialog>
#include <QPointer>
#include <QSet>

#include <memory>

namespace Ui {
class frmChooseDatabase;
}

class QItemSelectionModel;
class QStandardItem;
class QStandardItemModel;

namespace tolvex {

// Notifies whoever opened the chooser of what users do to databases in it. Each member may be left out. Names
// are file names without a folder.
class DatabaseChooserCaller {
public:
    virtual ~DatabaseChooserCaller() = default;
    virtual void DatabaseCopied(const QString& /*from*/, const QString& /*to*/, qint32 /*type*/) {}
    virtual void DatabaseDeleted(const QString& /*fileName*/, qint32 /*type*/) {}
    virtual void DatabaseRenamed(const QString& /*from*/, const QString& /*to*/, qint32 /*type*/) {}
    // A file that is shown but cannot be chosen. Case does not count.
    virtual QString DisabledDatabaseFName() const { return {}; }
};

class frmChooseDatabase : public QDialog {
    Q_OBJECT

public:
    explicit frmChooseDatabase(QWidget* parent = nullptr);
    ~frmChooseDatabase() override;

    // Before it is shown: the folder, and the request, the number of the kind.
    void setPath(const QString& folder) { path_ = folder; }
    void setTag(const QString& tag) { tag_ = tag; }
    void setCaller(DatabaseChooserCaller* caller) { caller_ = caller; }
    // "1", the default: databases can be made and changed, not only chosen.
    void setCanEdit(const QString& flag) { canEdit_ = flag; }

    // After it is closed: the file name of the choice, with ".MDB"; empty when the user cancelled.
    QString tag() const { return tag_; }

    void reject() override;

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // A long job, shown in the panel with its Stop button while the object lives.
    class Work : public platform::Progress {
    public:
        // With `copies`, OK and Cancel are disabled meanwhile.
        Work(frmChooseDatabase& form, const QString& what, bool copies = false);
        ~Work() override;
        Work(const Work&) = delete;
        Work& operator=(const Work&) = delete;

        bool step(qint64 done, qint64 total, const QString& what) override;
        void say(const QString& what);
        void stop() { stopped_ = true; }
        bool copies() const { return copies_; }

    private:
        QPointer<frmChooseDatabase> form_;
        bool copies_;
        bool stopped_ = false;
    };

    bool canEdit() const { return !canEdit_.isEmpty() && canEdit_ != QStringLiteral("0"); }
    void addTools();
    void firstShowing();
    void showView(int mode);
    void focusList();
    void select(int row);
    void saveView() const;

    void fill(const QString& wanted = {});
    void take(ListedDatabase database, const QString& disabled);
    void addRow(const ListedDatabase& database, bool ghosted);
    void sortBy(int column);
    void updateEnabled();
    void showSelected();
    void showDescription(const QString& text);
    int selectedRow() const;
    ListedDatabase selected() const;
    bool isGhosted(int row) const;
    void popUp(const QPoint& at);

    void ok();
    std::optional<QString> askNewPath();
    void makeNew();
    void copy();
    void describe();
    void remove();
    void rename();

    std::unique_ptr<Ui::frmChooseDatabase> ui_;
    QStandardItemModel* model_;
    QItemSelectionModel* selection_;
    DatabaseLister lister_;
    QString path_;
    QString tag_;
    QString canEdit_ = QStringLiteral("1");
    DatabaseChooserCaller* caller_ = nullptr;
    qint32 type_ = 0;
    QString word_;
    QString title_;
    QString description_;   // of the row that is selected
    QSet<QString> offered_; // unrecognised files that were offered for repair
    Work* work_ = nullptr;  // the job that is running
    int sortColumn_ = -1;
    Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
    bool shown_ = false;
};

// Shows the chooser modally and returns the choice; empty when the user cancelled.
QString ChooseDatabase(QWidget* owner, const QString& folder, qint32 type,
                       DatabaseChooserCaller* caller = nullptr);

} // namespace tolvex
