// "Find a cart...": the search over the audiowall, and the details of the cart that was chosen.
#pragma once

class QWidget;

namespace tolvex {

struct Workstation;

void FindCart(Workstation& station, QWidget* console);

} // namespace tolvex
