// The editor of one command. Texts are shown and typed with escapes for control characters; what is stored is
// the bytes. A test sends what stands in the fields, unsaved.
#pragma once

#include "network/commands/CommandFolder.h"
#include "network/commands/CommandRules.h"
#include "network/commands/CommandTrial.h"
#include "network/commands/CommandUses.h"
#include "ui/binding/FormBinding.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmCommandDetails;
}

namespace tolvex {

class EventModel;
class FormChanges;

class frmCommandDetails : public QDialog {
    Q_OBJECT

public:
    // Edits the command of that name; an empty one is for a new command. `uses` finds what names a command.
    frmCommandDetails(const CommandFolder& folder, const QString& name, CommandUseSource uses,
                      QWidget* parent = nullptr);
    ~frmCommandDetails() override;

    // Whether a command was stored or deleted.
    bool needsRefresh() const { return needsRefresh_; }
    // As it was stored, or as it was opened.
    const QString& commandName() const { return name_; }

    // Cancel, Escape and the window's own close button: asks while there are changes.
    void reject() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fillLists();
    void load();
    // Whether the command in the name's box exists and could not be read.
    bool isUnreadable() const { return seen_ == Seen::Unreadable; }
    // Looks at the command of the name that is typed, which OK would replace.
    void look();
    // Asks when another workstation has changed that command since. Whether OK may go on.
    bool mayReplace(const QString& name);
    qint32 type() const;
    // The box of the type's text; null for one without a text.
    QWidget* textBox() const;
    CommandFields fields();

    void showType();
    void showName();
    void showText();
    void showPort();
    void showUses();

    // Reports the first fault at its field. `emptyIsRight`: an empty text needs no question.
    bool isRight(const CommandFields& fields, bool emptyIsRight);
    bool showFault(const CommandFault& fault);
    void store();
    void remove();
    void test();
    void showTrial(const CommandEvent& event);

    CommandFolder folder_;
    QString name_;
    CommandUseSource uses_;
    std::unique_ptr<Ui::frmCommandDetails> ui_;
    // As it was opened, and as the one was that OK replaces; nothing: missing, or not readable.
    std::optional<CommandRecord> opened_;
    std::optional<CommandRecord> replaced_;
    enum class Seen { Missing, Readable, Unreadable } seen_ = Seen::Missing;
    CommandRecord before_; // as it was read
    QString shownText_;    // its text as its box showed it: while it still does, the bytes stay
    CommandFields fields_;
    FormBinding binding_{this};
    FormChanges* changes_ = nullptr;
    EventModel* events_;
    bool loaded_ = false;   // until then, changes are the form's own
    bool answered_ = false; // in the test that runs
    bool needsRefresh_ = false;
    CommandTrial trial_;
};

} // namespace tolvex
