// Shared by the commands of the audiowall: writing a cart, and opening a list for reading.
#pragma once

#include "app/ctl/Command.h"
#include "audio/CartLists.h"
#include "audio/CartRecord.h"

#include <optional>

namespace tolvex::ctl {

// The status if settings or lists are missing.
extern const QString NoIniChosen;
extern const QString NoCartListOpens;

// A cart number given as an argument; nothing unless it is from 1 to HighestCart.
std::optional<qint32> CartNumber(const QString& text);
// The message for any other argument.
QString NoCartNumber(const QString& text);

// A cart in JSON, and the columns for people.
QJsonObject CartAsJson(qint32 number, const CartRecord& cart, qint16 status);
const Columns& CartColumns();

// Opens the list of a part for reading. False, with a note, if it cannot be opened.
bool OpenForReading(const Call& call, const CartListFacts& list);

// The row of "carts find".
Command CartFindCommand();

} // namespace tolvex::ctl
