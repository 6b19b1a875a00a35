#include "core/report/DebugLog.h"

#include "core/report/Folders.h"
#include "core/report/ProblemReport.h"
#include "core/settings/Settings.h"
#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/files/Files.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace tolvex {

namespace {

constexpr int blanksAStep = 4;
qint16 steps = 0;

bool wanted(qint32 level) {
    const qint32 limit = settings().DebugLevel;
    if (limit == 0)
        return false;
    return limit == -1 || (level == -1 ? 5 : level) <= limit;
}

} // namespace

QString ProgramName() {
    const QString file = QCoreApplication::instance() ? QCoreApplication::applicationFilePath() : QString();
    return file.isEmpty() ? QStringLiteral("tolvex-config") : QFileInfo(file).completeBaseName();
}

void DebugLog(const QString& text, qint32 level, DebugIndent indent, const QString& extra) {
    if (!wanted(level))
        return;
    if (indent == DebugIndent::Shallower && steps > 0)
        --steps;
    if (indent == DebugIndent::Reset)
        steps = 0;
    if (!CreatePath(QStringLiteral("c:\\DebugFiles"), true)) {
        ShowExclamation(QStringLiteral("Could not create Debug Files folder in 'C:\\DebugFiles'"));
        return;
    }
    const QDateTime now = platform::clock().now();
    const QString file = QStringLiteral("c:\\Debugfiles\\") + ProgramName() + u'.' +
                         now.toString(QStringLiteral("yyyyMMdd")) + QStringLiteral(".log");
    QString line = now.toString(QStringLiteral("HH:mm:ss ")) + (extra.isEmpty() ? extra : extra + u' ') +
                   QString(steps * blanksAStep, u' ') + text;
    platform::AppendToFile(file, platform::ToCodePage(line) + "\r\n");
    if (indent == DebugIndent::Deeper && steps < INT16_MAX)
        ++steps;
}

} // namespace tolvex
