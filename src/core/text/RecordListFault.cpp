#include "core/text/RecordListFault.h"

#include <QStringList>

namespace tolvex {

QString RecordListFault(const RecordListLength& list, const QString& one, const QString& many) {
    QStringList found;
    if (list.rest() > 0)
        found += QStringLiteral("is torn: %1 of %2 bytes of %3 %4 are there")
                     .arg(list.rest())
                     .arg(list.recordLength)
                     .arg(one)
                     .arg(list.firstNumber + list.records());
    if (list.records() < list.wanted)
        found +=
            QStringLiteral("is short: %1 of %2 %3 are there").arg(list.records()).arg(list.wanted).arg(many);
    return found.isEmpty() ? QString()
                           : QStringLiteral("%1 %2.").arg(list.path, found.join(QStringLiteral(", and ")));
}

} // namespace tolvex
