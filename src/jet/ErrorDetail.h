// What an Error says beyond the engine's own sentence.
#pragma once

#include "jet/Error.h"

namespace jet {

inline std::string ErrorDetail(const Error& error) {
    std::string text = error.what();
    const std::string head = ErrorText(error.code()) + " (";
    if (text.starts_with(head) && text.ends_with(')'))
        return text.substr(head.size(), text.size() - head.size() - 1);
    return text == ErrorText(error.code()) ? std::string() : text;
}

} // namespace jet
