#include "console/forms/CompactDatabase.h"

#include "core/settings/Settings.h"
#include "databases/compaction/CompactRepair.h"
#include "databases/compaction/LossReport.h"
#include "databases/users/UsersDatabase.h"
#include "ui/richtext/frmPrintPreview.h"

namespace tolvex {

void CompactDatabase(QWidget* console) {
    const QString users = usersState().database ? usersState().information.FullName : QString();
    CloseUsersDatabase();
    LossReport losses;
    const bool done = CompactRepairDatabase({}, true, settings().DataLocation, false,
                                            [&losses](const jet::Fault& loss) { losses.add(loss); });
    if (!users.isEmpty())
        OpenUsersDatabase(users);
    if (!done || losses.isEmpty())
        return;
    frmPrintPreview list(console);
    list.setWindowTitle(QStringLiteral("Compact/Repair Database"));
    list.ShowText(losses.text());
    list.exec();
}

} // namespace tolvex
