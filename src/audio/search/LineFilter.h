// A quick look at a cart's record in its file form that tells most carts from those whose lines may hold a
// text: it looks for two neighbouring letters of the text, the rarest, in either case. Whether the text is
// there is for others to say; the filter only ever errs by letting a cart through.
#pragma once

#include "audio/CartRecord.h"

#include <QByteArray>

namespace tolvex {

class LineFilter {
public:
    // `lowerCase`: the text in lower case, in bytes of code page 1252.
    explicit LineFilter(const QByteArray& lowerCase);

    // False when neither a line nor the joined description of the record holds the text. Cost: some 10
    // nanoseconds.
    bool mayHold(const CartListRecord& bytes) const;

private:
    struct Letter {
        char lower;
        char upper;
        // 0 or 1, without a branch.
        unsigned char is(char byte) const {
            return static_cast<unsigned char>(byte == lower) | static_cast<unsigned char>(byte == upper);
        }
    };
    static Letter letter(char lowerCase);

    bool passesAll_ = true;
    Letter first_{};
    Letter second_{};
};

} // namespace tolvex
