// A cart of the audiowall for CartView: what it shows, from its record.
#pragma once

#include "audio/forms/CartView.h"

namespace tolvex {

struct CartStore;

// An empty cart stands for one that cannot be read, and outside the audiowall.
CartFace CartFaceOf(CartStore& carts, qint32 cart);

} // namespace tolvex
