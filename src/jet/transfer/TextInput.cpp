#include "jet/transfer/TextInput.h"

#include "jet/base/Error.h"

#include <string_view>

namespace jet {

namespace {

constexpr std::size_t bufferLength = 65536;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

} // namespace

TextInput::TextInput(Fill fill)
    : fill_(std::move(fill))
    , buffer_(bufferLength) {}

bool TextInput::fill() {
    at_ = 0;
    length_ = 0;
    while (!ended_ && (length_ == 0 || (!started_ && length_ < byteOrderMark.size()))) {
        const std::size_t more = fill_(buffer_.data() + length_, buffer_.size() - length_);
        ended_ = more == 0;
        length_ += more;
    }
    if (!started_ && std::string_view(buffer_.data(), length_).starts_with(byteOrderMark))
        at_ = byteOrderMark.size();
    started_ = true;
    return at_ < length_ || (!ended_ && fill());
}

bool TextInput::getLine(std::string& line) {
    line.clear();
    if (peek() == End)
        return false;
    for (int byte = get(); byte != End && byte != '\n'; byte = get()) {
        if (line.size() == MaximumLength)
            throw Error(ErrorNumber::InvalidArgument, "a line is too long");
        line += static_cast<char>(byte);
    }
    if (line.ends_with('\r'))
        line.pop_back();
    return true;
}

} // namespace jet
