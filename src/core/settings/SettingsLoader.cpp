#include "core/settings/SettingsLoader.h"

#include "core/system/Registry.h"
#include "core/text/Numbers.h"
#include "core/text/PathNames.h"
#include "core/time/Dates.h"
#include "platform/profile/ProfileFile.h"

#include <algorithm>

namespace tolvex {

namespace {

template<class... Visitors>
struct Overloaded : Visitors... {
    using Visitors::operator()...;
};
template<class... Visitors>
Overloaded(Visitors...) -> Overloaded<Visitors...>;

void putNumber(const SettingRef& ref, qint32 value) {
    std::visit(Overloaded{
                   [&](qint16* word) {
                       *word = static_cast<qint16>(std::clamp<qint32>(value, INT16_MIN, INT16_MAX));
                   },
                   [&](qint32* number) { *number = value; },
                   [&](double* number) { *number = value; },
                   [&](QString* text) { *text = QString::number(value); },
               },
               ref);
}

bool isText(SettingKind kind) {
    return kind == SettingKind::Text || kind == SettingKind::Path || kind == SettingKind::Date;
}

qint32 defaultNumber(const SettingRow& row, int index, const Settings& values) {
    return row.numberDefault ? row.numberDefault(values, index) : row.defaultNumber;
}

QString defaultText(const SettingRow& row, int index, const Settings& values) {
    return row.textDefault ? row.textDefault(values, index) : QLatin1String(row.defaultText);
}

// The keys of one entry in an ini file.
struct IniEntry {
    IniEntry(const SettingRow& r, int index, const QString& iniFile)
        : row(r)
        , file(iniFile)
        , number(row.count ? QString::number(index) : QString()) {}

    QString text(const char* section, const char* key, const QString& fallback) const {
        return platform::ProfileText(QLatin1String(section), QLatin1String(key) + number, fallback, file,
                                     row.buffer);
    }
    qint32 integer(const char* section, const char* key, qint32 fallback) const {
        return platform::ProfileInteger(QLatin1String(section), QLatin1String(key) + number, fallback, file);
    }

    const SettingRow& row;
    const QString& file;
    const QString number;
};

qint32 iniNumber(const SettingRow& row, int index, const QString& file, qint32 fallback) {
    const IniEntry entry(row, index, file);
    if (row.oldIsFraction) {
        const QString fraction = entry.text(row.oldSection, row.oldKey, QString::number(fallback / 100.0));
        fallback = ToLong(LeadingNumber(fraction) * 100);
    } else if (row.oldKey) {
        fallback = entry.integer(row.oldSection, row.oldKey, fallback);
    }
    if (row.kind == SettingKind::NumberText)
        return ToLong(LeadingNumber(entry.text(row.section, row.key, QString::number(fallback))));
    return entry.integer(row.section, row.key, fallback);
}

QString iniText(const SettingRow& row, int index, const QString& file, QString fallback) {
    const IniEntry entry(row, index, file);
    if (row.oldKey)
        fallback = entry.text(row.oldSection, row.oldKey, fallback).trimmed();
    return entry.text(row.section, row.key, fallback);
}

// A date is written with a 24-hour clock, so anything that other programs add after it is ignored. A text
// that is not a date leaves the value as it is.
void putDate(const SettingRef& ref, const QString& text) {
    const QString plain = text.toUpper().remove(QStringLiteral("AM")).remove(QStringLiteral("PM"));
    if (const std::optional<double> date = ParseDate(plain))
        *std::get<double*>(ref) = *date;
}

void putText(const SettingRow& row, const SettingRef& ref, const QString& text) {
    if (row.kind == SettingKind::Date)
        putDate(ref, text);
    else
        *std::get<QString*>(ref) = row.longest ? text.left(row.longest) : text;
}

// Forms hold a set flag as -1; the files hold 1.
bool losesSign(const SettingRow& row) {
    return row.kind == SettingKind::Flag || row.kind == SettingKind::NumberText || row.absolute;
}

qint32 withoutSign(qint32 value) {
    return value == INT32_MIN ? INT32_MAX : qAbs(value);
}

qint32 asLoaded(const SettingRow& row, qint32 value) {
    if (row.absolute)
        value = withoutSign(value);
    return row.held ? std::clamp(value, row.lowest, row.highest) : value;
}

} // namespace

void LoadEntry(const SettingRow& row, int index, const SettingSource& source, Settings& values) {
    const bool fromIni = !source.iniFile.isEmpty();
    if (!row.at || (!fromIni && !row.subkey))
        return;
    const SettingRef ref = row.at(values, index);
    const QString key = source.registryRoot + QLatin1String(row.subkey);
    const QString name = QLatin1String(row.valueName) + (row.count ? QString::number(index) : QString());
    if (isText(row.kind)) {
        const QString fallback = defaultText(row, index, values);
        putText(row, ref,
                fromIni ? iniText(row, index, source.iniFile, fallback)
                        : ReadRegistryString(LocalMachineHive, key, name, fallback));
    } else {
        const qint32 fallback = defaultNumber(row, index, values);
        putNumber(ref, asLoaded(row, fromIni ? iniNumber(row, index, source.iniFile, fallback)
                                             : ReadRegistryLong(LocalMachineHive, key, name, fallback)));
    }
}

void PutEntry(const SettingRow& row, int index, const QString& text, Settings& values) {
    const SettingRef ref = row.at(values, index);
    if (isText(row.kind))
        putText(row, ref, text.left(row.buffer - 1));
    else if (row.kind == SettingKind::NumberText)
        putNumber(ref, asLoaded(row, ToLong(LeadingNumber(text))));
    else
        putNumber(ref, asLoaded(row, platform::LeadingInteger(text)));
}

void LoadRow(const SettingRow& row, const SettingSource& source, Settings& values) {
    if (!row.count) {
        LoadEntry(row, 0, source, values);
        return;
    }
    const int count = row.count(values);
    for (int index = 1; index <= count; ++index)
        LoadEntry(row, index, source, values);
}

void LoadRows(SettingRows rows, const SettingSource& source, Settings& values) {
    for (const SettingRow& row : rows)
        LoadRow(row, source, values);
}

void SizeJumpCartButtons(Settings& values) {
    values.JumpCartButtons.resize(std::max<qsizetype>(0, values.NumberCartJumpButtons));
}

QString MemberText(const SettingRow& row, int index, Settings& values) {
    return std::visit(
        Overloaded{
            [](const QString* text) { return *text; },
            [](const double* date) { return *date > 0 ? DateText(FromSerialDate(*date)) : QString(); },
            [](const auto* number) { return QString::number(*number); },
        },
        row.at(values, index));
}

std::optional<QString> StoredText(const SettingRow& row, int index, Settings& values) {
    if (row.written)
        return row.written(values, index);
    const QString text = MemberText(row, index, values);
    if (row.kind == SettingKind::Path)
        return TidyLocation(text);
    return losesSign(row) ? QString::number(withoutSign(text.toInt())) : text;
}

QString DefaultText(const SettingRow& row, int index, const Settings& values) {
    return isText(row.kind) ? defaultText(row, index, values)
                            : QString::number(defaultNumber(row, index, values));
}

} // namespace tolvex
