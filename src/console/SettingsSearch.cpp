#include "console/SettingsSearch.h"

#include "automation/AutomationFields.h"
#include "console/ConsoleJobs.h"
#include "core/settings/SettingsTable.h"

#include <QSet>
#include <QXmlStreamReader>

#include <algorithm>

namespace tolvex {

namespace {

// Longer texts are explanations, not names.
constexpr qsizetype LongestLabel = 90;

// Widgets whose text names a setting or a choice.
bool namesSomething(QStringView widgetClass) {
    return widgetClass == u"QLabel" || widgetClass == u"QCheckBox" || widgetClass == u"QRadioButton" ||
           widgetClass == u"QPushButton" || widgetClass == u"QGroupBox";
}

// Fields, which have names for screen readers.
bool isField(QStringView widgetClass) {
    return widgetClass == u"QLineEdit" || widgetClass == u"QComboBox" ||
           widgetClass == u"tolvex::ColourButton";
}

// The names of a control's value in a database, which engineers know.
QString itemsOf(const QString& control) {
    QString items;
    for (const AutomationField& field : AutomationFields())
        if (control == QLatin1String(field.control))
            items += u' ' + QString::fromLatin1(field.item);
    return items;
}

// Buttons that every form has.
bool isCommonButton(const QString& text) {
    return text == u"OK" || text == u"Cancel" || text == u"Done" || text == u"Browse..." || text == u"Test";
}

// The control of a row; if there are several, the first.
QString placeOf(const SettingRow& row) {
    const QString control = QString::fromLatin1(row.control).section(u' ', 0, 0);
    return row.count && control.endsWith(u'_') ? control + u'1' : control;
}

} // namespace

QList<SearchEntry> SettingEntries() {
    QList<SearchEntry> entries;
    for (const SettingGroup& group : AllSettings())
        for (const SettingRow& row : group.rows) {
            const ConsoleJob* job = row.form ? FindJobOfForm(QString::fromLatin1(row.form)) : nullptr;
            if (!job || !row.help)
                continue;
            const QString help = QString::fromUtf8(row.help);
            const QString key = QString::fromLatin1(row.key);
            entries.append(
                {help, (help + u' ' + key).toLower(), QString::fromLatin1(job->control), placeOf(row)});
        }
    return entries;
}

QList<SearchEntry> LabelEntries(const QByteArray& ui, const QString& control, const QString& inner) {
    QList<SearchEntry> entries;
    QXmlStreamReader xml(ui);
    QStringList widgets;
    QStringList names;
    QString property;
    QString title;
    const auto placeFor = [&inner](const QString& name) {
        return inner.isEmpty() ? name : inner + u'/' + name;
    };
    const auto isNaming = [&] {
        if (widgets.isEmpty())
            return false;
        return property == u"text" || property == u"title"
                   ? namesSomething(widgets.last())
                   : property == u"accessibleName" && isField(widgets.last());
    };
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement()) {
            if (xml.name() == u"widget") {
                widgets.append(xml.attributes().value(QLatin1String("class")).toString());
                names.append(xml.attributes().value(QLatin1String("name")).toString());
            } else if (xml.name() == u"property") {
                property = xml.attributes().value(QLatin1String("name")).toString();
            } else if (xml.name() == u"string" && property == u"windowTitle") {
                title = xml.readElementText();
            } else if (xml.name() == u"cstring" && property == u"buddy") {
                const QString field = xml.readElementText();
                if (!entries.isEmpty() && entries.last().place == placeFor(names.last())) {
                    entries.last().place = placeFor(field);
                    entries.last().words += itemsOf(field).toLower();
                }
            } else if (xml.name() == u"string" && isNaming()) {
                QString text = xml.readElementText();
                text.remove(u'&');
                if (text.endsWith(u':'))
                    text.chop(1);
                if (!text.isEmpty() && text.size() <= LongestLabel && !isCommonButton(text))
                    entries.append({text, (text + itemsOf(names.last())).toLower(), control,
                                    placeFor(names.last()), inner.isEmpty() ? QString() : title});
            }
        } else if (xml.isEndElement() && xml.name() == u"widget") {
            widgets.removeLast();
            names.removeLast();
        }
    }
    return entries;
}

QList<SearchEntry> FindEntries(const QList<SearchEntry>& entries, const QString& query, int limit) {
    const QString wanted = query.trimmed().toLower();
    const QStringList words = wanted.split(u' ', Qt::SkipEmptyParts);
    QList<SearchEntry> found;
    if (words.isEmpty())
        return found;
    for (const SearchEntry& entry : entries)
        if (std::all_of(words.begin(), words.end(),
                        [&](const QString& word) { return entry.words.contains(word); }))
            found.append(entry);
    std::stable_partition(found.begin(), found.end(),
                          [&](const SearchEntry& entry) { return entry.words.startsWith(wanted); });
    QSet<QString> places;
    found.removeIf([&places](const SearchEntry& entry) {
        const QString place = entry.control + u'/' + entry.place;
        if (!entry.place.isEmpty() && places.contains(place))
            return true;
        places.insert(place);
        return false;
    });
    if (found.size() > limit)
        found.resize(limit);
    return found;
}

} // namespace tolvex
