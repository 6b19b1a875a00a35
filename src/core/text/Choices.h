// What a list offers: texts, and the values that they stand for.
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
