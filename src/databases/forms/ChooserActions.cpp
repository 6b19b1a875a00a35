// What the chooser does with databases: new, copy, describe, delete, rename; and the panel that shows a long
// job.
#include "core/report/Folders.h"
#include "core/text/PathNames.h"
#include "databases/forms/frmChooseDatabase.h"
#include "databases/store/Report.h"
#include "databases/suite/DatabaseFiles.h"
#include "databases/suite/DatabaseInformation.h"
#include "databases/suite/DatabaseNames.h"
#include "databases/suite/ValidateDatabase.h"
#include "ui_frmChooseDatabase.h"

namespace tolvex {

namespace {

using platform::Answer;
using platform::Buttons;
using platform::Icon;

void tell(const QString& text, Icon icon) {
    platform::prompts().ask({text, icon});
}

bool isConfirmed(const QString& question, Answer fallback, const QString& toolTip = {}) {
    return platform::prompts().ask({question, Icon::Question, Buttons::YesNo, fallback, {}, toolTip}) ==
           Answer::Yes;
}

} // namespace

frmChooseDatabase::Work::Work(frmChooseDatabase& form, const QString& what, bool copies)
    : form_(&form)
    , copies_(copies) {
    form.work_ = this;
    form.ui_->barDone->setRange(0, 0);
    form.ui_->pnlStatus->show();
    say(what);
    form.updateEnabled();
}

frmChooseDatabase::Work::~Work() {
    if (!form_)
        return;
    form_->work_ = nullptr;
    form_->ui_->pnlStatus->hide();
    form_->updateEnabled();
    if (copies_)
        form_->focusList(); // it was disabled
}

void frmChooseDatabase::Work::say(const QString& what) {
    form_->ui_->lblDoing->setText(what);
}

bool frmChooseDatabase::Work::step(qint64 done, qint64 total, const QString&) {
    if (form_ && total > 1) {
        constexpr int steps = 1000;
        form_->ui_->barDone->setRange(0, steps);
        form_->ui_->barDone->setValue(static_cast<int>(done * steps / total));
    }
    return form_ && !stopped_;
}

// Asks for the name of a new database. None when the user cancels or the name is refused, with a message.
std::optional<QString> frmChooseDatabase::askNewPath() {
    const QString name =
        platform::prompts()
            .askText(QStringLiteral("What filename do you want to use for this database:\n(This "
                                    "is a unique reference that can be up to 8 letters)"),
                     QStringLiteral("Create Database"), {})
            .value_or(QString());
    if (name.isEmpty())
        return std::nullopt;
    if (const QString fault = DatabaseNameFault(name); !fault.isEmpty()) {
        tell(fault, Icon::Exclamation);
        return std::nullopt;
    }
    const QString path = path_ + u'\\' + name + QStringLiteral(".MDB");
    if (FileLength(path) >= 0) {
        tell(QStringLiteral("A database with this name already exists"), Icon::Information);
        return std::nullopt;
    }
    return path;
}

void frmChooseDatabase::makeNew() {
    const std::optional<QString> path = askNewPath();
    if (!path ||
        !isConfirmed(QStringLiteral("Are you sure you want to create a new %1 in: %2").arg(title_, *path),
                     Answer::Yes))
        return;
    QString noTitle;
    if (ValidateDatabase(*path, type_, true, &noTitle) == 0)
        fill(FileNameOf(*path));
}

void frmChooseDatabase::copy() {
    const ListedDatabase from = selected();
    const std::optional<QString> to = askNewPath();
    if (!to)
        return;
    bool done = false;
    try {
        Work work(*this, QStringLiteral("Copying Database..."), true);
        const auto step = [&work](qint64 now, qint64 total) {
            work.say(QStringLiteral("Copying Database Contents..."));
            const bool goesOn = work.step(now, total, {});
            platform::prompts().processEvents();
            return goesOn;
        };
        work.say(QStringLiteral("Creating new database..."));
        done = CopyDatabase(from.path, *to, step);
    } catch (const DatabaseError& error) {
        Report(QStringLiteral("copying : ") + from.fileName, error);
    }
    if (!done)
        return;
    if (caller_)
        caller_->DatabaseCopied(from.fileName, FileNameOf(*to), type_);
    fill(FileNameOf(*to));
}

void frmChooseDatabase::describe() {
    DatabaseInformation information;
    const QString path = selected().path;
    if (GetDatabaseInformation(path, &information, true) != 0)
        return;
    const QString text = platform::prompts()
                             .askText(QStringLiteral("Enter database Description:\n(This is a simple "
                                                     "description label)"),
                                      QStringLiteral("Description"), information.Description)
                             .value_or(QString());
    if (!text.isEmpty() && ChangeDatabaseDescription(path, text))
        showDescription(text.left(LongestTitle));
}

void frmChooseDatabase::remove() {
    const ListedDatabase database = selected();
    if (const QStringList users = ComputersUsing(database.path); !users.isEmpty()) {
        tell(QStringLiteral("%1 is open on %2. It can be deleted once it is closed there.")
                 .arg(database.fileName, users.join(QStringLiteral(", "))),
             Icon::Exclamation);
        return;
    }
    for (const QString& question : DeletionQuestions(title_, description_))
        if (!isConfirmed(question, Answer::No, ui_->mnuDelete->toolTip()))
            return;
    try {
        RemoveDatabaseFile(database.path);
    } catch (const DatabaseError& error) {
        Report(QStringLiteral("deleting : ") + database.fileName, error);
        return;
    }
    if (caller_)
        caller_->DatabaseDeleted(database.fileName, type_);
    fill();
}

void frmChooseDatabase::rename() {
    const ListedDatabase database = selected();
    const QString given = platform::prompts()
                              .askText(QStringLiteral("What do you want this database's filename to be?"),
                                       windowTitle(), database.baseName)
                              .value_or(QString());
    if (given.isEmpty())
        return;
    const QString name = RenamedDatabase(given);
    if (const QString fault = FileNameFault(name); !fault.isEmpty()) {
        tell(fault, Icon::Exclamation);
        return;
    }
    const QString path = path_ + u'\\' + name;
    if (FileLength(path) >= 0) {
        tell(QStringLiteral("A database with that name already exists"), Icon::Information);
        return;
    }
    try {
        RenameDatabaseFile(database.path, path);
    } catch (const DatabaseError& error) {
        Report(QStringLiteral("renaming : ") + database.fileName, error);
        return;
    }
    if (caller_)
        caller_->DatabaseRenamed(database.fileName, name, type_);
    fill(name);
}

} // namespace tolvex
