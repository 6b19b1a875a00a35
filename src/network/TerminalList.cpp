#include "network/TerminalList.h"

#include "core/settings/Settings.h"
#include "core/text/RecordLayout.h"
#include "core/text/RecordListFault.h"
#include "core/time/Dates.h"
#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/Machine.h"
#include "platform/Prompts.h"
#include "platform/files/Files.h"
#include "platform/host/FileLock.h"
#include "platform/paths/Paths.h"

#include <memory>

namespace tolvex {

namespace {

using platform::Answer;
using platform::Buttons;
using platform::Icon;
using platform::RecordFile;

constexpr auto layout = MakeRecordLayout<TerminalRecordLength, TerminalRecord>(
    TextField{0, TerminalNameLength, &TerminalRecord::IdName},
    TextField{30, TerminalNameLength, &TerminalRecord::NetworkName},
    NumberField{60, &TerminalRecord::LastUsedDay}, NumberField{64, &TerminalRecord::LastUsedSeconds},
    NumberField{68, &TerminalRecord::Number68}, TextField{72, 56, &TerminalRecord::Text72});
static_assert(layout.coversEachByteOnce());

constexpr qint32 lastShownDay = 60000;
constexpr int secondsOfDay = 86400;
// How long another workstation may take for its changes.
constexpr int patienceMilliseconds = 1500;

std::unique_ptr<RecordFile> openFile(const TerminalList& terminals) {
    return RecordFile::open(TerminalListPath(terminals), TerminalRecordLength, true);
}

QByteArray blankBytes() {
    const TerminalBytes bytes = EncodeTerminalRecord(BlankTerminalRecord());
    return QByteArray(bytes.data(), TerminalRecordLength);
}

// The record as it is in the file; blank beyond its end. FileError of any other failure.
int read(const TerminalList& terminals, int id, TerminalRecord& record) {
    record = BlankTerminalRecord();
    TerminalBytes bytes;
    const int error =
        terminals.file && id >= 1 ? terminals.file->read(id, bytes.data()) : platform::BadFileNumber;
    if (error == platform::NoError)
        record = DecodeTerminalRecord(bytes);
    return error == platform::PastEndOfFile ? platform::NoError : error;
}

// Reads a record, changes it and writes it where that made a difference. What cannot be read is not written:
// it may hold another workstation's name. FileError.
template<typename Change>
int change(TerminalList& terminals, int id, Change apply) {
    TerminalRecord before;
    if (const int error = read(terminals, id, before); error != platform::NoError)
        return error;
    TerminalRecord after = before;
    apply(after);
    const bool same = EncodeTerminalRecord(after) == EncodeTerminalRecord(before);
    return same ? platform::NoError : WriteTerminal(terminals, id, after);
}

bool sameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// A computer's name as a record gives it back: cut to its field, in the characters that the file has.
QString asStored(const QString& computerName) {
    TerminalRecord record = BlankTerminalRecord();
    record.NetworkName = computerName;
    return NetworkNameOf(DecodeTerminalRecord(EncodeTerminalRecord(record)));
}

// One step of changes at a time, over all workstations. Programs of the suite know nothing of it.
class Step {
public:
    explicit Step(const TerminalList& terminals)
        : lock_(platform::HostPath(TerminalListPath(terminals)), patienceMilliseconds) {}
    // PermissionDenied: somebody else has it. Where there can be no lock the step is done without.
    int error() const {
        return lock_.error() == platform::PermissionDenied ? lock_.error() : platform::NoError;
    }

private:
    platform::FileLock lock_;
};

} // namespace

// What follows a zero character is left over from an older name.
QString NetworkNameOf(const TerminalRecord& record) {
    return record.NetworkName.section(QChar(0), 0, 0).trimmed();
}

bool IsOnComputer(const TerminalRecord& record, const QString& computerName) {
    const QString name = NetworkNameOf(record);
    return !name.isEmpty() && sameName(name, asStored(computerName));
}

QDateTime TerminalRecord::lastUsed() const {
    if (LastUsedDay < 1 || LastUsedDay >= lastShownDay)
        return {};
    // Anything but a time of day counts as midnight.
    const bool valid = LastUsedSeconds >= 0 && LastUsedSeconds < secondsOfDay;
    const int milliseconds = valid ? std::min(qRound(LastUsedSeconds * 1000.0), secondsOfDay * 1000 - 1) : 0;
    return QDateTime(FromSerialDate(LastUsedDay).date(), QTime::fromMSecsSinceStartOfDay(milliseconds));
}

void TerminalRecord::setLastUsed(const QDateTime& time) {
    LastUsedDay = qint32(SerialDate(time.date().startOfDay()));
    LastUsedSeconds = float(time.time().msecsSinceStartOfDay() / 1000.0);
}

TerminalRecord BlankTerminalRecord() {
    TerminalRecord record;
    record.IdName = record.NetworkName = QString(TerminalNameLength, u' ');
    record.Text72 = QString(56, u' ');
    return record;
}

TerminalBytes EncodeTerminalRecord(const TerminalRecord& record) {
    TerminalBytes bytes;
    layout.encode(record, bytes.data());
    return bytes;
}

TerminalRecord DecodeTerminalRecord(const TerminalBytes& bytes) {
    TerminalRecord record;
    layout.decode(bytes.data(), record);
    return record;
}

QString TerminalListPath(const TerminalList& terminals) {
    return terminals.settings.DataLocation + QStringLiteral("\\Terminal.Lst");
}

bool OpenTerminalList(TerminalList& terminals) {
    const int wanted = terminals.settings.NumberTerminals;
    if (terminals.settings.LastOneWas == -1 || wanted < 1)
        return false;
    CloseTerminalList(terminals);
    if (!terminals.settings.AutoConfigInProgress && platform::FileSize(TerminalListPath(terminals)) < 0) {
        const Answer answer =
            platform::prompts().ask({.text = QStringLiteral("The Terminal List has not been found.\n\n"
                                                            "Do you wish to create it in :\n\n") +
                                             TerminalListPath(terminals),
                                     .icon = Icon::Exclamation,
                                     .buttons = Buttons::YesNoCancel,
                                     .title = QStringLiteral("File System Startup Error")});
        if (answer == Answer::Cancel)
            return false;
        if (answer == Answer::No)
            return true;
    }
    terminals.file = openFile(terminals);
    if (!terminals.file)
        return false;
    if (const qint64 there = terminals.file->count(); there < wanted) {
        // What cannot be added reads as blank, so a full disk or a file that is read-only here stops nobody.
        terminals.file->append(blankBytes(), wanted - there);
        terminals.file.reset();
        terminals.file = openFile(terminals);
    }
    return terminals.file != nullptr;
}

bool ReopenTerminalList(TerminalList& terminals) {
    CloseTerminalList(terminals);
    if (terminals.settings.LastOneWas != -1 && platform::FileSize(TerminalListPath(terminals)) >= 0)
        terminals.file = openFile(terminals);
    return terminals.file != nullptr;
}

void CloseTerminalList(TerminalList& terminals) {
    terminals.file.reset();
}

bool TerminalListIsOpen(const TerminalList& terminals) {
    return terminals.file != nullptr;
}

QString TerminalListFault(const TerminalList& terminals) {
    const QString path = TerminalListPath(terminals);
    const qint64 size = platform::FileSize(path);
    if (size < 0)
        return {};
    return RecordListFault({path, size, TerminalRecordLength, terminals.settings.NumberTerminals},
                           QStringLiteral("number"), QStringLiteral("workstations"));
}

TerminalRecord ReadTerminal(const TerminalList& terminals, int id) {
    TerminalRecord record;
    return read(terminals, id, record) == platform::NoError ? record : BlankTerminalRecord();
}

int WriteTerminal(TerminalList& terminals, int id, const TerminalRecord& record) {
    if (!terminals.file || id < 1 || id > terminals.settings.NumberTerminals)
        return platform::BadFileNumber;
    return terminals.file->write(id, EncodeTerminalRecord(record).data());
}

QList<TerminalRecord> ReadTerminals(const TerminalList& terminals) {
    QList<TerminalRecord> records;
    for (int id = 1; id <= terminals.settings.NumberTerminals; ++id)
        records += ReadTerminal(terminals, id);
    return records;
}

std::optional<QList<TerminalRecord>> ReadTerminalsAnew(TerminalList& terminals) {
    if (!ReopenTerminalList(terminals))
        return std::nullopt;
    QList<TerminalRecord> records(terminals.settings.NumberTerminals);
    for (int id = 1; id <= records.size(); ++id)
        if (read(terminals, id, records[id - 1]) != platform::NoError)
            return std::nullopt;
    return records;
}

void ReadOwnTerminalRecord(TerminalList& terminals) {
    OpenTerminalList(terminals);
    if (terminals.settings.LinkMeshId >= 1)
        terminals.own = ReadTerminal(terminals, terminals.settings.LinkMeshId);
}

ClaimedTerminal ClaimTerminal(TerminalList& terminals, const QString& computerName) {
    // Looked up and written in one step: two new workstations must not find the same free number.
    const Step step(terminals);
    ClaimedTerminal claimed;
    int firstFree = 0;
    for (int id = 1; id <= terminals.settings.NumberTerminals; ++id) {
        const TerminalRecord record = ReadTerminal(terminals, id);
        if (IsOnComputer(record, computerName))
            return {id, platform::NoError, {}};
        if (firstFree == 0 && NetworkNameOf(record).isEmpty())
            firstFree = id;
    }
    if (firstFree == 0) {
        claimed.holder = NetworkNameOf(ReadTerminal(terminals, claimed.id));
        return claimed;
    }
    claimed.id = firstFree;
    claimed.error = step.error() != platform::NoError
                        ? step.error()
                        : change(terminals, firstFree,
                                 [&](TerminalRecord& record) { record.NetworkName = computerName; });
    return claimed;
}

bool FitsTerminalName(QChar character) {
    return character.category() != QChar::Other_Control &&
           platform::FirstOutsideCodePage(QString(character)) < 0;
}

int AssignTerminal(TerminalList& terminals, int chosenId, const QStringList& idNames,
                   const QString& computerName, const QString& seenName, QString* holder,
                   const std::function<bool()>& confirm) {
    const Step step(terminals);
    if (step.error() != platform::NoError)
        return step.error();
    TerminalRecord chosen;
    if (const int error = read(terminals, chosenId, chosen); error != platform::NoError)
        return error;
    const QString now = NetworkNameOf(chosen);
    if (!seenName.isNull() && !now.isEmpty() && !sameName(now, seenName.trimmed()) &&
        !IsOnComputer(chosen, computerName)) {
        if (holder)
            *holder = now;
        return TerminalTaken;
    }
    int error = platform::NoError;
    QList<TerminalRecord> before;
    for (int id = 1; id <= terminals.settings.NumberTerminals && error == platform::NoError; ++id) {
        TerminalRecord held;
        error = read(terminals, id, held);
        if (error != platform::NoError)
            break;
        before += held;
        error = change(terminals, id, [&](TerminalRecord& record) {
            if (id <= idNames.size() && !idNames[id - 1].isNull())
                record.IdName = idNames[id - 1].trimmed();
            if (id == chosenId)
                record.NetworkName = computerName;
            else if (IsOnComputer(record, computerName))
                record.NetworkName.clear();
        });
    }
    if (error != platform::NoError || (confirm && !confirm()))
        for (int id = 1; id <= before.size(); ++id)
            change(terminals, id, [&](TerminalRecord& record) { record = before[id - 1]; });
    return error;
}

int RenameTerminal(TerminalList& terminals, int id, const QString& name) {
    const Step step(terminals);
    return step.error() != platform::NoError
               ? step.error()
               : change(terminals, id, [&](TerminalRecord& record) { record.IdName = name.trimmed(); });
}

bool StampOwnTerminalRecord(TerminalList& terminals) {
    if (!terminals.file && !OpenTerminalList(terminals))
        return false;
    const int error = change(terminals, terminals.settings.LinkMeshId, [](TerminalRecord& record) {
        record.NetworkName = platform::ComputerName();
        record.setLastUsed(platform::clock().now());
    });
    return OpenTerminalList(terminals) && error == platform::NoError;
}

} // namespace tolvex
