// What the commands of the audiowall share: how a cart is written, and opening a list for reading.
#pragma once

#include "app/ctl/Command.h"
#include "audio/CartLists.h"
#include "audio/CartRecord.h"

#include <optional>

namespace tolvex::ctl {

// What a command fails with when settings or lists are not there.
extern const QString NoIniChosen;
extern const QString NoCartListOpens;

// A cart number given as an argument; nothing unless it is one from 1 to HighestCart.
std::optional<qint32> CartNumber(const QString& text);
// What a command says of any other.
QString NoCartNumber(const QString& text);

// A cart in JSON, and the columns that people see of it.
QJsonObject CartAsJson(qint32 number, const CartRecord& cart, qint16 status);
const Columns& CartColumns();

// Opens the list of a part for reading. False, with a note, when it cannot be opened.
bool OpenForReading(const Call& call, const CartListFacts& list);

// The row of "carts find".
Command CartFindCommand();

} // namespace tolvex::ctl
