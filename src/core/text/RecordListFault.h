// What is wrong with the length of a file of fixed records that several programs share.
#pragma once

#include <QString>

namespace tolvex {

struct RecordListLength {
    QString path;
    qint64 size = 0; // bytes
    int recordLength = 1;
    qint64 wanted = 0;      // records
    qint64 firstNumber = 1; // what the first record is the number of

    qint64 records() const { return size / recordLength; } // whole ones
    // Bytes after the last whole record: the file is torn when there are any.
    qint64 rest() const { return size % recordLength; }
};

// A sentence that says whether the file is torn inside a record, short of records, or both; empty when it is
// neither. `one` and `many` name what a record holds ("cart", "carts").
QString RecordListFault(const RecordListLength& list, const QString& one, const QString& many);

} // namespace tolvex
