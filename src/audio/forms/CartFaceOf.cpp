#include "audio/forms/CartFaceOf.h"

#include "audio/CartStore.h"

namespace tolvex {

CartFace CartFaceOf(CartStore& carts, qint32 cart) {
    const CartRecord record = ReadCart(carts, cart);
    CartFace face;
    face.number = cart;
    if (record.isEmpty()) {
        face.state = CartFace::State::Empty;
        return face;
    }
    face.description = CartDescription(record, true);
    // A length that is no time of a day shows as none.
    face.seconds = record.Length >= 0 && record.Length < 86400 ? int(record.Length) : 0;
    face.hasAudio = record.TotalLength > 0;
    face.back = record.BackColor;
    face.fore = record.ForeColor;
    return face;
}

} // namespace tolvex
