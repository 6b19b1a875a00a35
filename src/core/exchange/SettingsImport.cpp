#include "core/exchange/SettingsImport.h"

#include "core/report/Folders.h"
#include "core/settings/SettingsLoader.h"
#include "core/text/PathNames.h"
#include "platform/Clock.h"
#include "platform/files/FileGroup.h"
#include "platform/files/Files.h"
#include "platform/paths/Paths.h"

#include <map>

namespace tolvex {

namespace {

QString shownName(const QString& section, const QString& key) {
    return u'[' + section + QStringLiteral("] ") + key;
}

QString recordOf(const QString& localIni) {
    return ProfilePath(localIni) + QStringLiteral(".import");
}

// A text that the reader would trim or unquote is written in quotes of its own.
QString writtenForm(const QString& text) {
    const bool enclosed =
        text.size() > 1 && text.front() == text.back() && (text.front() == u'"' || text.front() == u'\'');
    return enclosed || text != text.trimmed() ? u'"' + text + u'"' : text;
}

bool isTheSame(const SettingRow& row, const QString& stored, const QString& text) {
    if (row.kind == SettingKind::Flag)
        return (platform::LeadingInteger(stored) != 0) == (platform::LeadingInteger(text) != 0);
    return stored == text;
}

class Planner {
public:
    Planner(const QString& localIni, ImportPlan& plan)
        : localIni_(localIni)
        , plan_(plan) {}

    void take(const DocumentEntry& entry);
    void planFiles(const QString& namedSystemIni);

private:
    void putLocalEntries(Settings& values);
    void planFile(SettingsFile kind, const QString& path);
    void planFolders(const QString& path);

    // The entries of a row, by index, with their texts.
    using Texts = std::map<int, QString>;

    QString localIni_;
    ImportPlan& plan_;
    std::map<const SettingRow*, Texts> given_;
    QList<const SettingRow*> derived_;
    QList<StoredChange> derivedChanges_;
};

// One entry of the document that is known and can be stored.
void Planner::take(const DocumentEntry& entry) {
    const QString name = shownName(entry.section, entry.key);
    const SettingPlace place = FindSetting(entry.section, entry.key);
    if (!place || place.file != entry.file) {
        plan_.unknown << name;
        return;
    }
    if (!place.row->at) {
        derived_ << place.row;
        return;
    }
    QString why;
    const std::optional<QString> text = TextOfDocumentValue(*place.row, entry.value, &why);
    if (!text)
        plan_.refused << name + QStringLiteral(": ") + why;
    else if (!given_[place.row].insert({place.index, *text}).second)
        plan_.refused << name + QStringLiteral(": it is given twice");
    else if (!why.isEmpty())
        plan_.remarks << name + QStringLiteral(": ") + why;
}

// Applies the local entries to a record, so that locations and counts are those that the import will set.
void Planner::putLocalEntries(Settings& values) {
    // Of a file that cannot exist, so that every setting has its default.
    const Settings unstored = LoadFrom({localIni_ + u'?', {}, {}});
    for (const SettingGroup& group : AllSettings()) {
        if (group.file != SettingsFile::Local)
            continue;
        for (const SettingRow& row : group.rows) {
            const auto texts = given_.find(&row);
            if (texts == given_.end())
                continue;
            for (auto text = texts->second.begin(); text != texts->second.end();) {
                const QString name = shownName(QLatin1String(row.section), SettingKey(row, text->first));
                if (text->first <= SettingCount(row, values)) {
                    PutEntry(row, text->first, text->second, values);
                    ++text;
                } else if (text->first <= SettingCount(row, unstored)) {
                    // The document has no count because that workstation uses the default.
                    plan_.remarks << name + QStringLiteral(": its number is above the last one here; it is "
                                                           "taken as it stands");
                    ++text;
                } else {
                    plan_.refused << name + QStringLiteral(": its number is above the last one");
                    text = texts->second.erase(text);
                }
            }
        }
        if (group.rows.data() == AudioWallSizeRows.data())
            SizeJumpCartButtons(values);
    }
}

void Planner::planFiles(const QString& namedSystemIni) {
    const Settings before = LoadFrom({localIni_, {}, {}});
    Settings after = before;
    putLocalEntries(after);
    derivedChanges_ = DerivedChanges(localIni_, before, after, derived_);
    planFile(SettingsFile::Local, localIni_);
    planFile(SettingsFile::System,
             namedSystemIni.isEmpty() ? SystemIniIn(after.DataLocation) : namedSystemIni);
    planFile(SettingsFile::Audiowall, AudiowallIniIn(after.CartPartTable[1].Location));
}

void Planner::planFile(SettingsFile kind, const QString& path) {
    ImportPlan::File file{kind, path, {}};
    for (const SettingGroup& group : AllSettings())
        for (const SettingRow& row : group.rows) {
            const auto texts = group.file == kind ? given_.find(&row) : given_.end();
            if (texts == given_.end())
                continue;
            for (const auto& [index, text] : texts->second) {
                const QString key = SettingKey(row, index);
                if (path.isEmpty()) {
                    plan_.refused << shownName(QLatin1String(row.section), key) +
                                         QStringLiteral(": its file is not known; ") +
                                         WhatMakesFileKnown(kind) +
                                         QStringLiteral(", in the document or before");
                    continue;
                }
                const std::optional<QString> stored = StoredTextOf(row, index, path);
                if (!stored || !isTheSame(row, *stored, text))
                    file.changes.append({&row, key, stored, text});
            }
        }
    if (kind == SettingsFile::Local)
        for (const StoredChange& change : derivedChanges_)
            file.changes.append({change.row, change.key, StoredTextOf(*change.row, 0, path), change.text});
    if (file.changes.isEmpty())
        return;
    planFolders(ProfilePath(path));
    plan_.files.append(file);
}

// The missing parent folders of a file. Refused if they cannot be made.
void Planner::planFolders(const QString& path) {
    const QString fault = LocationFault(path);
    if (!fault.isEmpty() || platform::HostPath(path).isEmpty()) {
        plan_.refused << QStringLiteral("%1 cannot be written: %2")
                             .arg(path, fault.isEmpty() ? QStringLiteral("its drive is not there") : fault);
        return;
    }
    QStringList missing;
    for (QString folder = FolderOf(path); !folder.isEmpty() && !DirectoryExists(folder);
         folder = FolderOf(folder))
        if (!plan_.folders.contains(folder))
            missing.prepend(folder);
    plan_.folders += missing;
}

bool makeFolders(ImportPlan& plan) {
    for (const QString& folder : plan.folders) {
        const int error = platform::MakeFolder(folder);
        if (error == platform::NoError || platform::FolderExists(folder))
            continue;
        plan.problem = QStringLiteral("The folder %1 could not be made (error %2); nothing was changed")
                           .arg(folder)
                           .arg(error);
        plan.error = error;
        return false;
    }
    return true;
}

} // namespace

ImportPlan PlanImport(const QByteArray& document, const QString& localIni, const QString& namedSystemIni) {
    ImportPlan plan;
    plan.record = recordOf(localIni);
    const SettingsDocument read = ReadSettingsDocument(document);
    plan.problem = read.problem;
    if (!plan.problem.isEmpty())
        return plan;
    for (const QString& name : read.unknown)
        plan.unknown << u'"' + name + u'"';
    Planner planner(localIni, plan);
    for (const DocumentEntry& entry : read.entries)
        planner.take(entry);
    planner.planFiles(namedSystemIni);
    return plan;
}

bool ApplyImport(ImportPlan& plan) {
    if (!plan.usable() || !makeFolders(plan))
        return false;
    platform::ProfileGroup group;
    for (const ImportPlan::File& file : plan.files) {
        platform::ProfileBatch batch(file.path);
        for (const ImportPlan::Change& change : file.changes)
            batch.put(QLatin1String(change.row->section), change.key, writtenForm(change.after));
        group.batches.append(batch);
    }
    group.record = plan.record;
    group.stamp = platform::clock().now().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    if (group.batches.isEmpty())
        return true;
    plan.error = group.commit();
    plan.backups = group.backups;
    if (plan.error != platform::ProfileOk)
        plan.problem = ProfileErrorText(plan.error, ProfilePath(group.failed)) +
                       QStringLiteral("; no other file was changed either");
    return plan.error == platform::ProfileOk;
}

bool ImportWasInterrupted(const QString& localIni) {
    return platform::GroupWasInterrupted(recordOf(localIni));
}

QString UndoInterruptedImport(const QString& localIni) {
    const platform::UndoneGroup undone = platform::UndoInterruptedGroup(recordOf(localIni));
    QStringList sentences;
    if (!undone.restored.isEmpty())
        sentences << QStringLiteral("An import of settings was cut short. These files were put back as they "
                                    "were before it: %1.")
                         .arg(undone.restored.join(QStringLiteral(", ")));
    if (!undone.changedSince.isEmpty())
        sentences << QStringLiteral("These were changed by another program since, and stay as they are: %1.")
                         .arg(undone.changedSince.join(QStringLiteral(", ")));
    if (undone.error != platform::NoError)
        sentences
            << QStringLiteral(
                   "An import of settings was cut short, and not every file could be put back (error %1). "
                   "%2 names the files and their copies.")
                   .arg(undone.error)
                   .arg(recordOf(localIni));
    return sentences.join(u' ');
}

} // namespace tolvex
