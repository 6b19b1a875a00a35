// Private profile files: the ini files of the suite, with the behaviour of the platform's own three
// operations. The text is edited in place: one line changes, every other byte stays. A bare file name refers
// to the Windows folder.
//
// A file is parsed again only after it changed (one stat per call). Writes take a file lock, apply to the
// file as it is at that moment and replace it atomically, so that concurrent writes of other programs
// survive; any failure leaves the old file whole.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace tolvex::platform {

struct FileChange; // FileUpdate.h

// Error numbers of the platform; the suite's own writers ignore them.
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

// A bare name with the Windows folder in front, where these operations look for it; other paths unchanged.
QString ProfilePath(const QString& file);

// Text of a key: trimmed, one pair of enclosing quotes removed, cut to bufferSize - 1 characters. `fallback`,
// without trailing blanks, if file, section or key is missing or unreadable; an existing empty key gives
// empty text.
QString ProfileText(const QString& section, const QString& key, const QString& fallback, const QString& file,
                    int bufferSize = 255);

// Leading decimal digits with an optional sign, modulo 2^32; 0 for an empty or non-numeric value; `fallback`
// if the key is missing.
qint32 ProfileInteger(const QString& section, const QString& key, qint32 fallback, const QString& file);

// The number that ProfileInteger returns for a value.
qint32 LeadingInteger(const QString& value);

// Section names of a file, key names of a section, as spelled, in file order, with repeats.
QStringList ProfileSections(const QString& file);
QStringList ProfileKeys(const QString& section, const QString& file);
bool ProfileKeyExists(const QString& section, const QString& key, const QString& file);

// Sets (or, with a null QString, removes) one key; a null key removes the section. Written through at once.
// Line breaks and zero characters are removed from names and values. Result: ProfileError.
int WriteProfileText(const QString& section, const QString& key, const QString& value, const QString& file);

// Several writes applied as one replacement: all of them or none. The bytes are those that single writes
// would make.
class ProfileBatch {
public:
    explicit ProfileBatch(const QString& file);
    void put(const QString& section, const QString& key, const QString& value);
    void put(const QString& section, const QString& key, qint64 value);
    void remove(const QString& section, const QString& key);
    void removeSection(const QString& section);
    // Applies the batch to the file as it is now. Result: ProfileError. The batch is empty afterwards if it
    // is 0.
    int commit();

private:
    friend struct ProfileGroup;
    struct Change {
        QString section;
        QString key;   // null: the section
        QString value; // null: remove
    };
    // Why it cannot be committed as it stands; ProfileOk if it can.
    int fault() const;
    FileChange applyTo(const std::optional<QByteArray>& now) const;

    QString file_;
    QList<Change> changes_;
};

// Batches for several files that are committed together: all files change, or none. Files that change are
// copied to "<file>.<stamp>.bak" first. Meanwhile a record at `record` makes an interrupted commit known, so
// that it can be undone (FileGroup.h).
struct ProfileGroup {
    QList<ProfileBatch> batches;
    QString record;
    QString stamp;

    QString failed;      // the file to which the error of commit() refers
    QStringList backups; // the copies, after a successful commit
    // Result: ProfileError; on anything but ProfileOk nothing has changed.
    int commit();
};

// Empties the cache of parsed files (tests, and a change of the machine folder).
void ForgetProfiles();

} // namespace tolvex::platform
