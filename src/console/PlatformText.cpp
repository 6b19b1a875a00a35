#include "console/PlatformText.h"

namespace tolvex {

namespace {

constexpr int Any = -1;

struct Row {
    quint32 platform;
    int major;
    int minor;
    const char* text; // %1 stands for the major number, %2 for the minor one
};

// The first row that fits counts.
constexpr Row rows[] = {
    {1, Any, 0, "Windows 95"},       {1, Any, 10, "Windows 98"},       {2, 3, Any, "Windows NT v3.%2"},
    {2, 4, Any, "Windows NT v%1"},   {2, 5, 0, "Windows 2000"},        {2, 5, Any, "Windows XP/2003"},
    {2, 6, 0, "Windows Vista/2008"}, {2, 6, Any, "Windows 7/2008 R2"},
};

bool fits(int wanted, quint32 number) {
    return wanted == Any || static_cast<quint32>(wanted) == number;
}

} // namespace

QString PlatformText(const platform::SystemVersion& version) {
    for (const Row& row : rows) {
        if (row.platform != version.platform || !fits(row.major, version.major) ||
            !fits(row.minor, version.minor))
            continue;
        QString text = QString::fromLatin1(row.text);
        text.replace(QStringLiteral("%1"), QString::number(version.major));
        text.replace(QStringLiteral("%2"), QString::number(version.minor));
        const QString service = version.service.left(version.service.indexOf(QChar(0)));
        if (service.size() > 1)
            text += QStringLiteral(" (%1)").arg(service.left(service.indexOf(u',')));
        return text;
    }
    return {};
}

} // namespace tolvex
