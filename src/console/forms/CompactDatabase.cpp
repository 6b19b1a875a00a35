#include "console/forms/CompactDatabase.h"

#include "databases/compaction/CompactRepair.h"
#include "databases/compaction/LossReport.h"
#include "station/Workstation.h"
#include "ui/richtext/frmPrintPreview.h"

namespace tolvex {

void CompactDatabase(Workstation& station, QWidget* console) {
    const QString users = station.users.database ? station.users.information.FullName : QString();
    CloseUsersDatabase(station.users);
    LossReport losses;
    const bool done = CompactRepairDatabase({}, true, station.settings.DataLocation, false,
                                            [&losses](const jet::Fault& loss) { losses.add(loss); });
    if (!users.isEmpty())
        OpenUsersDatabase(station.users, users);
    if (!done || losses.isEmpty())
        return;
    frmPrintPreview list(console);
    list.setWindowTitle(QStringLiteral("Compact/Repair Database"));
    list.ShowText(losses.text());
    list.exec();
}

} // namespace tolvex
