// Everything that a supporter wants to see about a workstation, in one file.
#include "app/ctl/Asking.h"

#include "core/system/Product.h"
#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/Machine.h"
#include "platform/files/Files.h"
#include "platform/paths/Paths.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QSysInfo>

namespace tolvex::ctl {

namespace {

constexpr qint64 LongestLog = 256 << 20;
constexpr int LogLines = 400;

// The questions, in the order of the report.
constexpr const char* asked[] = {
    "status",          "carts check",     "settings list", "sets list",     "registry list",
    "audio devices",   "audio show",      "ports list",    "hardware list", "terminals list",
    "automation show", "automation list", "commands list", "remote access",
};

// Passwords appear in connection strings ("PWD=..."), in log lines and under names of keys. A value without
// quotes or braces ends at a semicolon or at the end of its line.
QString withoutPasswords(QString text) {
    static const QRegularExpression given(
        QStringLiteral(
            R"rx((\b\w*(?:pwd|passw(?:or)?d|passphrase|secret)\w*\s*[=:]\s*)("[^"]*"|\{[^}]*\}|[^;\r\n]*))rx"),
        QRegularExpression::CaseInsensitiveOption);
    return text.replace(given, QStringLiteral("\\1***"));
}

QString lineOf(const QJsonValue& value);

QString partsOf(const QJsonObject& object) {
    QStringList parts;
    for (auto member = object.begin(); member != object.end(); ++member)
        if (member.key() != u"help")
            parts += member.key() + u'=' + lineOf(member.value());
    return parts.join(QStringLiteral("; "));
}

QString lineOf(const QJsonValue& value) {
    if (value.isObject())
        return QStringLiteral("{%1}").arg(partsOf(value.toObject()));
    if (!value.isArray())
        return value.toVariant().toString();
    QStringList parts;
    for (const auto& part : value.toArray())
        parts += lineOf(part);
    return QStringLiteral("[%1]").arg(parts.join(QStringLiteral(", ")));
}

// Settings and registry values appear as "section\key=value", so that names that mean passwords are seen.
QString recordLine(const QJsonObject& record) {
    const QString name = record[QLatin1String("key")].toString();
    if (!record.contains(QLatin1String("value")))
        return partsOf(record);
    const QString place = record[QLatin1String("section")].toString();
    const QString item = record[QLatin1String("name")].toString();
    QStringList path{place, name, item};
    path.removeAll(QString());
    return path.join(u'\\') + u'=' + lineOf(record[QLatin1String("value")]);
}

QString documentText(const QJsonDocument& document) {
    QString text;
    for (const auto& record : document.array())
        text += recordLine(record.toObject()) + u'\n';
    const QJsonObject object = document.object();
    for (auto member = object.begin(); member != object.end(); ++member)
        text += member.key() + QStringLiteral(": ") + lineOf(member.value()) + u'\n';
    return text;
}

// Where a file lies for the user: the path of the host without the links of the drives.
QString placeOf(const QString& path) {
    return QFileInfo(platform::HostPath(path)).canonicalFilePath();
}

QString versions() {
    const QString help = platform::ApplicationFile(QStringLiteral("config.chm"));
    return QStringLiteral("%1 %2\nQt %3\n%4, %5 %6, %7\nComputer: %8\nMemory: %9 MB\n")
               .arg(QLatin1String(ProductName), ProductVersion(), QLatin1String(qVersion()),
                    QSysInfo::prettyProductName(), QSysInfo::kernelType(), QSysInfo::kernelVersion(),
                    QSysInfo::currentCpuArchitecture(), platform::ComputerName())
               .arg(platform::PhysicalMemory() >> 20) +
           QStringLiteral("Machine folder: %1\nHelp: %2\n")
               .arg(platform::MachineFolder(),
                    platform::FileExists(help) ? placeOf(help) : QStringLiteral("not found"));
}

// The last lines of the newest debug log.
QString endOfLog() {
    const QString folder = QStringLiteral("C:\\DebugFiles\\");
    QString newest;
    for (const QString& name : platform::FolderNames(folder))
        if (name.endsWith(QLatin1String(".log"), Qt::CaseInsensitive) &&
            (newest.isEmpty() || platform::FileModified(folder + name) > platform::FileModified(newest)))
            newest = folder + name;
    if (newest.isEmpty())
        return QStringLiteral("There is none. Start the window with /DEBUG to have one.\n");
    const std::optional<QByteArray> log = platform::ReadWholeFile(newest, LongestLog);
    if (!log)
        return QStringLiteral("%1 could not be read.\n").arg(newest);
    QStringList lines = platform::FromCodePage(*log).split(u'\n');
    lines = lines.mid(std::max<qsizetype>(0, lines.size() - LogLines));
    return newest + QStringLiteral(":\n") + lines.join(u'\n').remove(u'\r') + u'\n';
}

QString section(const QString& title, const QString& text) {
    return QStringLiteral("\n== %1\n%2").arg(title, text);
}

int report(Call& call) {
    const QDateTime now = platform::clock().now();
    QString text = QStringLiteral("Report of %1\n").arg(now.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    text += section(QStringLiteral("versions"), versions());
    for (const char* command : asked) {
        const QString words = QLatin1String(command);
        const Answer answer = Ask(words.split(u' '), call.station.startUp);
        text += section(QStringLiteral("%1 (exit status %2)").arg(words).arg(answer.status),
                        documentText(answer.document));
    }
    text += section(QStringLiteral("end of the debug log"), endOfLog());

    QString file = call.path(0);
    QString why;
    if (call.arguments.isEmpty()) {
        const QString name =
            QStringLiteral("tolvex-report-%1-%2.txt")
                .arg(platform::ComputerName(), now.toString(QStringLiteral("yyyyMMdd-HHmmss")));
        const auto found = FileArgument(name, BareFile::ShellFolder, &why);
        if (!found)
            return call.fail(why);
        file = *found;
    }
    if (const int error = platform::ReplaceWholeFile(file, withoutPasswords(text).toUtf8()))
        return call.fail(QStringLiteral("%1 could not be written (error %2).").arg(file).arg(error), error);
    call.output.value("file", placeOf(file));
    return Done;
}

} // namespace

CommandRows ReportCommands() {
    return {
        Changing(
            {"report", "[FILE]",
             "Write one file for whoever is asked for help: versions, status, settings, devices, the end "
             "of the debug log; passwords are left out",
             report}),
    };
}

} // namespace tolvex::ctl
