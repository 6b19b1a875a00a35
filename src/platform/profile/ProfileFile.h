// Private profile files: the ini files of the suite, with the behaviour of the platform's own three
// operations. The text is edited in place: one line changes, every other byte stays. A bare file name lies in
// the Windows folder.
//
// Reads of a file that did not change since the last read do not parse it again (one stat a call). Writes
// take a file lock, apply to the file as it is at that moment and replace it atomically, so that what other
// programs wrote in the meantime survives; on any failure the old file stays whole.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace tolvex::platform {

struct FileChange; // FileUpdate.h

// Error numbers of the platform, for those who want to know; the suite's own writers do not look.
enum ProfileError : int {
    ProfileOk = 0,
    ProfileFileNotFound = 2, // also: no section named
    ProfilePathNotFound = 3,
    ProfileAccessDenied = 5,
    ProfileSharingViolation = 32,
    ProfileDiskFull = 112,
    ProfileInvalidName = 123,
    ProfileDeviceError = 1117, // also: a file too long for a profile
};

// A bare name with the Windows folder in front, where these operations find it; other paths as they are.
QString ProfilePath(const QString& file);

// Text of a key: trimmed, one pair of enclosing quotes taken off, cut to bufferSize - 1 characters.
// `fallback`, without trailing blanks, when file, section or key is missing or unreadable; a present empty
// key gives empty text.
QString ProfileText(const QString& section, const QString& key, const QString& fallback, const QString& file,
                    int bufferSize = 255);

// Leading decimal digits with an optional sign, modulo 2^32; 0 for an empty or non-numeric value; `fallback`
// when the key is missing.
qint32 ProfileInteger(const QString& section, const QString& key, qint32 fallback, const QString& file);

// The number that ProfileInteger gives for a value.
qint32 LeadingInteger(const QString& value);

// Section names of a file, key names of a section, as they are spelled, in file order, repeats included.
QStringList ProfileSections(const QString& file);
QStringList ProfileKeys(const QString& section, const QString& file);
bool ProfileKeyExists(const QString& section, const QString& key, const QString& file);

// Sets (or, with a null QString, removes) one key; a null key removes the section. Written through at once.
// Line breaks and zero characters are taken out of names and values. Result: ProfileError.
int WriteProfileText(const QString& section, const QString& key, const QString& value, const QString& file);

// Several writes that go down as one replacement: all of them or none. The bytes equal those of single
// writes.
class ProfileBatch {
public:
    explicit ProfileBatch(const QString& file);
    void put(const QString& section, const QString& key, const QString& value);
    void put(const QString& section, const QString& key, qint64 value);
    void remove(const QString& section, const QString& key);
    void removeSection(const QString& section);
    // Applies the batch to the file as it is now. Result: ProfileError. The batch is empty afterwards when it
    // is 0.
    int commit();

private:
    friend struct ProfileGroup;
    struct Change {
        QString section;
        QString key;   // null: the section
        QString value; // null: remove
    };
    // Why it cannot be committed as it stands; ProfileOk when it can.
    int fault() const;
    FileChange applyTo(const std::optional<QByteArray>& now) const;

    QString file_;
    QList<Change> changes_;
};

// Batches for several files that go down together: all files change, or none. Files that change are copied to
// "<file>.<stamp>.bak" first. While they change a record lies at `record`, by which an interrupted commit is
// known and undone (FileGroup.h).
struct ProfileGroup {
    QList<ProfileBatch> batches;
    QString record;
    QString stamp;

    QString failed;      // the file that the error of commit() is about
    QStringList backups; // the copies, after a commit that went down
    // Result: ProfileError; nothing has changed when it is not ProfileOk.
    int commit();
};

// Empties the cache of parsed files (tests, and a change of the machine folder).
void ForgetProfiles();

} // namespace tolvex::platform
