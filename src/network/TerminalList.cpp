#include "network/TerminalList.h"

#include "core/settings/Settings.h"
#include "core/text/RecordLayout.h"
#include "core/text/RecordListFault.h"
#include "core/time/Dates.h"
#include "platform/Clock.h"
#include "platform/Machine.h"
#include "platform/Prompts.h"
#include "platform/files/Files.h"

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

std::unique_ptr<RecordFile> list;
TerminalRecord own = BlankTerminalRecord();

std::unique_ptr<RecordFile> openFile() {
    return RecordFile::open(TerminalListPath(), TerminalRecordLength, true);
}

QByteArray blankBytes() {
    const TerminalBytes bytes = EncodeTerminalRecord(BlankTerminalRecord());
    return QByteArray(bytes.data(), TerminalRecordLength);
}

// The record as it is in the file; blank beyond its end. FileError of any other failure.
int read(int id, TerminalRecord& record) {
    record = BlankTerminalRecord();
    TerminalBytes bytes;
    const int error = list && id >= 1 ? list->read(id, bytes.data()) : platform::BadFileNumber;
    if (error == platform::NoError)
        record = DecodeTerminalRecord(bytes);
    return error == platform::PastEndOfFile ? platform::NoError : error;
}

// Reads a record, changes it and writes it where that made a difference. What cannot be read is not written:
// it may hold another workstation's name. FileError.
template<typename Change>
int change(int id, Change apply) {
    TerminalRecord before;
    if (const int error = read(id, before); error != platform::NoError)
        return error;
    TerminalRecord after = before;
    apply(after);
    const bool same = EncodeTerminalRecord(after) == EncodeTerminalRecord(before);
    return same ? platform::NoError : WriteTerminal(id, after);
}

// The name of a computer in a record, as comparisons take it. A zero character ends it: what follows is
// left over from an older name.
QString networkName(const TerminalRecord& record) {
    return record.NetworkName.section(QChar(0), 0, 0).trimmed();
}

bool sameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// A computer's name as a record gives it back: cut to its field, in the characters that the file has.
QString asStored(const QString& computerName) {
    TerminalRecord record = BlankTerminalRecord();
    record.NetworkName = computerName;
    return networkName(DecodeTerminalRecord(EncodeTerminalRecord(record)));
}

} // namespace

QDateTime TerminalRecord::lastUsed() const {
    if (LastUsedDay < 1 || LastUsedDay >= lastShownDay)
        return {};
    // Anything that is no time of a day counts as midnight.
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

QString TerminalListPath() {
    return settings().DataLocation + QStringLiteral("\\Terminal.Lst");
}

bool OpenTerminalList() {
    const int wanted = settings().NumberTerminals;
    if (settings().LastOneWas == -1 || wanted < 1)
        return false;
    CloseTerminalList();
    if (!settings().AutoConfigInProgress && platform::FileSize(TerminalListPath()) < 0) {
        const Answer answer =
            platform::prompts().ask({.text = QStringLiteral("The Terminal List has not been found.\n\n"
                                                            "Do you wish to create it in :\n\n") +
                                             TerminalListPath(),
                                     .icon = Icon::Exclamation,
                                     .buttons = Buttons::YesNoCancel,
                                     .title = QStringLiteral("File System Startup Error")});
        if (answer == Answer::Cancel)
            return false;
        if (answer == Answer::No)
            return true;
    }
    list = openFile();
    if (!list)
        return false;
    if (const qint64 there = list->count(); there < wanted) {
        // What cannot be added reads as blank, so a full disk or a file that is read-only here stops nobody.
        list->append(blankBytes(), wanted - there);
        list.reset();
        list = openFile();
    }
    return list != nullptr;
}

void CloseTerminalList() {
    list.reset();
}

bool TerminalListIsOpen() {
    return list != nullptr;
}

QString TerminalListFault() {
    const QString path = TerminalListPath();
    const qint64 size = platform::FileSize(path);
    if (size < 0)
        return {};
    return RecordListFault({path, size, TerminalRecordLength, settings().NumberTerminals},
                           QStringLiteral("number"), QStringLiteral("workstations"));
}

TerminalRecord ReadTerminal(int id) {
    TerminalRecord record;
    return read(id, record) == platform::NoError ? record : BlankTerminalRecord();
}

int WriteTerminal(int id, const TerminalRecord& record) {
    if (!list || id < 1 || id > settings().NumberTerminals)
        return platform::BadFileNumber;
    return list->write(id, EncodeTerminalRecord(record).data());
}

QList<TerminalRecord> ReadTerminals() {
    QList<TerminalRecord> records;
    for (int id = 1; id <= settings().NumberTerminals; ++id)
        records += ReadTerminal(id);
    return records;
}

void ReadOwnTerminalRecord() {
    OpenTerminalList();
    if (settings().LinkMeshId >= 1)
        own = ReadTerminal(settings().LinkMeshId);
}

const TerminalRecord& OwnTerminalRecord() {
    return own;
}

int TerminalForComputer(const QString& computerName) {
    const QString wanted = asStored(computerName);
    int firstFree = 0;
    for (int id = 1; id <= settings().NumberTerminals; ++id) {
        const QString name = networkName(ReadTerminal(id));
        if (sameName(name, wanted))
            return id;
        if (firstFree == 0 && name.isEmpty())
            firstFree = id;
    }
    return std::max(firstFree, 1);
}

int ClaimTerminal(int id, const QString& computerName) {
    return change(id, [&](TerminalRecord& record) {
        if (networkName(record).isEmpty())
            record.NetworkName = computerName;
    });
}

int AssignTerminal(int chosenId, const QStringList& idNames, const QString& computerName) {
    const QString ownName = asStored(computerName);
    int error = platform::NoError;
    for (int id = 1; id <= settings().NumberTerminals && error == platform::NoError; ++id) {
        error = change(id, [&](TerminalRecord& record) {
            if (id <= idNames.size())
                record.IdName = idNames[id - 1].trimmed();
            if (id == chosenId)
                record.NetworkName = computerName;
            else if (sameName(networkName(record), ownName))
                record.NetworkName.clear();
        });
    }
    return error;
}

int RenameTerminal(int id, const QString& name) {
    return change(id, [&](TerminalRecord& record) { record.IdName = name.trimmed(); });
}

bool StampOwnTerminalRecord() {
    if (!list && !OpenTerminalList())
        return false;
    const int error = change(settings().LinkMeshId, [](TerminalRecord& record) {
        record.NetworkName = platform::ComputerName();
        record.setLastUsed(platform::clock().now());
    });
    return OpenTerminalList() && error == platform::NoError;
}

void ResetTerminalList() {
    CloseTerminalList();
    own = BlankTerminalRecord();
}

} // namespace tolvex
