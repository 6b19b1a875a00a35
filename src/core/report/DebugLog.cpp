#include "core/report/DebugLog.h"

#include "core/report/Folders.h"
#include "core/report/ProblemReport.h"
#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/files/Files.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <utility>

namespace tolvex {

namespace {

constexpr int blanksAStep = 4;
DebugLogging* installed = nullptr;

} // namespace

DebugLogging::DebugLogging(const qint32& level)
    : level_(level)
    , before_(std::exchange(installed, this)) {}

DebugLogging::~DebugLogging() {
    installed = before_;
}

bool DebugLogging::wants(qint32 level) const {
    return level_ == -1 || (level_ != 0 && (level == -1 ? 5 : level) <= level_);
}

QString ProgramName() {
    const QString file = QCoreApplication::instance() ? QCoreApplication::applicationFilePath() : QString();
    return file.isEmpty() ? QStringLiteral("tolvex-config") : QFileInfo(file).completeBaseName();
}

void DebugLog(const QString& text, qint32 level, DebugIndent indent, const QString& extra) {
    if (!installed || !installed->wants(level))
        return;
    qint16& steps = installed->steps;
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
