// The one exception of the engine. It carries the error number that programs of the suite know and compare.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace jet {

enum class ErrorNumber : int {
    InvalidArgument = 3001,
    PermissionToOpen = 3033,  // no permission to use an object
    SearchKeyNotFound = 3044, // not a valid path
    CannotOpenFile = 3051,    // opened exclusively by another user, or no rights
    CannotStart = 3045,       // file already in use
    InvalidPassword = 3031,
    DiskFull = 3026,
    DuplicateKey = 3022,
    CannotUpdateReadOnly = 3027,
    NoCurrentRecord = 3021,
    FieldTooSmall = 3163,  // text longer than the field
    NullNotAllowed = 3058, // index or primary key holds a null
    ZeroLengthNotAllowed = 3315,
    RequiredFieldEmpty = 3314,
    TableNotFound = 3078, // the engine cannot find the input table or query
    ItemNotFound = 3265,  // item not found in this collection
    TableExists = 3010,
    IndexExists = 3284,
    FieldExists = 3191, // cannot define field more than once
    TooManyFields = 3190,
    TooManyIndexes = 3626,
    RecordTooLarge = 3047,
    RecordChanged = 3197, // another user changed the record at the same time
    RecordDeleted = 3167,
    RecordLocked = 3260,     // locked by another user
    FileLocked = 3356,       // database opened by another user, cannot be used exclusively
    SyntaxError = 3075,      // in a query expression
    UnknownField = 3061,     // too few parameters: the name is not a field
    DataTypeMismatch = 3464, // in criteria expression
    TypeConversion = 3421,
    FileNotFound = 3024,
    DatabaseExists = 3204,
    Unrecognised = 3343,     // unrecognised database format
    Corrupt = 3049,          // cannot open; may not be a database, or corrupt
    ReadVerification = 3428, // a problem occurred in the database: damaged page
    DiskIo = 3043,           // disk or network error
    FileTooLarge = 3048,
    IndexNotFound = 3015,      // the table has no index of that name
    NoIndexSet = 3019,         // operation needs a current index
    UsedInIndex = 3280,        // a field that an index needs cannot be dropped
    UsedInRelationship = 3281, // a table or index that a relationship needs cannot be dropped
    NoEdit = 3020,             // update without add or edit
};

// The engine's sentence for a number.
std::string ErrorText(ErrorNumber number);

class Error : public std::runtime_error {
public:
    explicit Error(ErrorNumber number, const std::string& detail = {});
    ErrorNumber code() const noexcept { return code_; }
    int number() const noexcept { return static_cast<int>(code_); }
    // Details beyond the engine's sentence; may be empty.
    std::string detail() const;

private:
    ErrorNumber code_;
};

} // namespace jet
