// Describes a wrong length of a shared file of fixed records.
#pragma once

#include <QString>

namespace tolvex {

struct RecordListLength {
    QString path;
    qint64 size = 0; // bytes
    int recordLength = 1;
    qint64 wanted = 0;      // records
    qint64 firstNumber = 1; // the number of the first record

    qint64 records() const { return size / recordLength; } // whole ones
    // Bytes after the last whole record: above 0 the file is torn.
    qint64 rest() const { return size % recordLength; }
};

// A sentence that says whether the file is torn inside a record, short of records, or both; empty if neither.
// `one` and `many` name what a record holds ("cart", "carts").
QString RecordListFault(const RecordListLength& list, const QString& one, const QString& many);

} // namespace tolvex
