#include "jet/base/Error.h"

namespace jet {

namespace {

struct Sentence {
    ErrorNumber number;
    const char* text;
};

constexpr Sentence Sentences[] = {
    {ErrorNumber::InvalidArgument, "Invalid argument."},
    {ErrorNumber::TableExists, "The table already exists."},
    {ErrorNumber::IndexNotFound, "This is not an index of the table."},
    {ErrorNumber::NoIndexSet, "The operation is invalid without a current index."},
    {ErrorNumber::NoEdit, "Update or cancel without an add or edit before it."},
    {ErrorNumber::NoCurrentRecord, "There is no current record."},
    {ErrorNumber::DuplicateKey, "The changes were not made because they would create duplicate values in the "
                                "index, primary key or relationship."},
    {ErrorNumber::FileNotFound, "The file could not be found."},
    {ErrorNumber::DiskFull, "There is not enough space on the disk."},
    {ErrorNumber::CannotUpdateReadOnly, "Cannot update: the database or object is read-only."},
    {ErrorNumber::InvalidPassword, "This is not a valid password."},
    {ErrorNumber::PermissionToOpen, "You do not have the permissions to use this object."},
    {ErrorNumber::DiskIo, "Disk or network error."},
    {ErrorNumber::SearchKeyNotFound, "This is not a valid path."},
    {ErrorNumber::CannotStart, "The file could not be used: it is already in use."},
    {ErrorNumber::RecordTooLarge, "The record is too large."},
    {ErrorNumber::FileTooLarge, "The database would become larger than 2 GB."},
    {ErrorNumber::Corrupt, "The database cannot be opened: it may be no database, or it may be damaged."},
    {ErrorNumber::CannotOpenFile, "The file cannot be opened: another user has opened it exclusively, or you "
                                  "need permission to use it."},
    {ErrorNumber::NullNotAllowed, "The index or primary key cannot hold a null value."},
    {ErrorNumber::UnknownField, "There are too few parameters: the query names an unknown field."},
    {ErrorNumber::SyntaxError, "There is a syntax error in the query expression."},
    {ErrorNumber::TableNotFound, "The input table or query could not be found."},
    {ErrorNumber::FieldTooSmall, "The field is too small for the amount of data."},
    {ErrorNumber::RecordDeleted, "The record is deleted."},
    {ErrorNumber::TooManyFields, "Too many fields are defined."},
    {ErrorNumber::FieldExists, "A field cannot be defined more than once."},
    {ErrorNumber::RecordChanged, "The change was stopped because another user has changed the same record at "
                                 "the same time."},
    {ErrorNumber::DatabaseExists, "The database already exists."},
    {ErrorNumber::RecordLocked, "Cannot update: the data is locked by another user."},
    {ErrorNumber::ItemNotFound, "The item was not found in this collection."},
    {ErrorNumber::UsedInIndex, "The field cannot be deleted: it is part of an index."},
    {ErrorNumber::UsedInRelationship, "The table or index cannot be deleted: it is used in a relationship."},
    {ErrorNumber::IndexExists, "The index already exists."},
    {ErrorNumber::RequiredFieldEmpty, "The field cannot hold a null value because it is required."},
    {ErrorNumber::ZeroLengthNotAllowed, "The field cannot hold a text of no length."},
    {ErrorNumber::Unrecognised, "Unrecognised database format."},
    {ErrorNumber::FileLocked, "The database is opened by another user and cannot be used this way."},
    {ErrorNumber::TypeConversion, "The value cannot be converted to the type of the field."},
    {ErrorNumber::ReadVerification, "The database is damaged: compact and repair it."},
    {ErrorNumber::DataTypeMismatch, "The types of data in the criteria do not match."},
    {ErrorNumber::TooManyIndexes, "There are too many indexes on the table."},
};

} // namespace

std::string ErrorText(ErrorNumber number) {
    for (const Sentence& sentence : Sentences)
        if (sentence.number == number)
            return sentence.text;
    return "Reserved error " + std::to_string(static_cast<int>(number)) + ".";
}

Error::Error(ErrorNumber number, const std::string& detail)
    : std::runtime_error(detail.empty() ? ErrorText(number) : ErrorText(number) + " (" + detail + ")")
    , code_(number) {}

std::string Error::detail() const {
    const std::string head = ErrorText(code_) + " (";
    std::string text = what();
    if (!text.starts_with(head))
        return {};
    text.erase(0, head.size());
    if (text.ends_with(')')) // a name with a zero in it ends what() early
        text.pop_back();
    return text;
}

} // namespace jet
