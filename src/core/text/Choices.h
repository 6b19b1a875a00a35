// The entries of a list: texts, and the values they stand for.
#pragma once

#include <QList>
#include <QString>

namespace tolvex {

struct Choice {
    QString text;
    qint32 value = 0;
};
using Choices = QList<Choice>;

} // namespace tolvex
