// What compaction could not rescue from a damaged database, as readable text: by table, with the pages.
#pragma once

#include "jet/Check.h"

#include <QString>
#include <QStringList>

#include <map>

namespace tolvex {

class LossReport {
public:
    void add(const jet::Fault& loss);
    bool isEmpty() const { return count_ == 0; }
    // At most 10,000 losses are listed one by one; the others are counted.
    QString text() const;

private:
    std::map<QString, QStringList> lines_; // by table; an empty name: of no table
    qint64 count_ = 0;
};

} // namespace tolvex
