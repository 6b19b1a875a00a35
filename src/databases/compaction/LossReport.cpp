#include "databases/compaction/LossReport.h"

namespace tolvex {

namespace {

constexpr qint64 MostLines = 10'000;

} // namespace

void LossReport::add(const jet::Fault& loss) {
    if (loss.harmless || ++count_ > MostLines)
        return;
    lines_[QString::fromStdU16String(loss.table)] +=
        QStringLiteral("    page %1 %2").arg(loss.page).arg(QString::fromStdString(loss.reason));
}

QString LossReport::text() const {
    QString text =
        QStringLiteral(
            "%1 thing%2 could not be saved. What is listed here is missing from the new file; "
            "the old file, kept with a '.BAK' extension, still holds whatever can be read of it.\n")
            .arg(count_)
            .arg(count_ == 1 ? "" : "s");
    for (const auto& [table, lines] : lines_)
        text += u'\n' + (table.isEmpty() ? QStringLiteral("Of no table") : QStringLiteral("Table ") + table) +
                QStringLiteral(":\n") + lines.join(u'\n') + u'\n';
    if (count_ > MostLines)
        text += QStringLiteral("\n... and %1 more.\n").arg(count_ - MostLines);
    return text;
}

} // namespace tolvex
