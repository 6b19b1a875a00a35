#include "audio/search/LineFilter.h"

#include "platform/CodePage.h"

#include <string_view>

namespace tolvex {

namespace {

using Byte = unsigned char;

// The lines lie in the first 160 bytes, and in each line the character 20 stands far from the character 21.
constexpr int linesEnd = 160;
constexpr int heads[] = {0, 20, 40};
constexpr int headSize = 20;
constexpr int tails[] = {70, 100, 130};
constexpr int tailSize = CartLineLength - headSize;

// Letters of English from the rarest to the commonest; any other byte is rarer still.
constexpr std::string_view letters = "zqxjkvbpgfywmculdrhsnioate";

int commonness(char byte) {
    return static_cast<int>(letters.find(byte) + 1); // npos + 1 is 0
}

} // namespace

LineFilter::Letter LineFilter::letter(char lowerCase) {
    Letter letter{lowerCase, lowerCase};
    for (int byte = 0; byte < 256; ++byte)
        if (byte != static_cast<Byte>(lowerCase) &&
            platform::LowerCaseBytes[static_cast<std::size_t>(byte)] == static_cast<Byte>(lowerCase))
            letter.upper = static_cast<char>(byte);
    return letter;
}

LineFilter::LineFilter(const QByteArray& lowerCase) {
    int least = 2 * static_cast<int>(letters.size()) + 1;
    for (qsizetype i = 1; i < lowerCase.size(); ++i) {
        const char one = lowerCase[i - 1];
        const char two = lowerCase[i];
        const int common = commonness(one) + commonness(two);
        // Where lines are joined, blanks come and go.
        if (one == ' ' || two == ' ' || common >= least)
            continue;
        least = common;
        first_ = letter(one);
        second_ = letter(two);
        passesAll_ = false;
    }
}

bool LineFilter::mayHold(const CartListRecord& bytes) const {
    if (passesAll_)
        return true;
    const char* const text = bytes.data();
    // Bytes alone and no branch: the compiler then looks at 16 of them at once.
    Byte found = 0;
    for (int i = 0; i < linesEnd; ++i)
        found |= static_cast<Byte>(first_.is(text[i]) & second_.is(text[i + 1]));
    // From the head of a line to its tail; and from a line that is full to whatever comes next.
    for (int line = 0; line < 3; ++line) {
        const bool atHeadEnd = first_.is(text[heads[line] + headSize - 1]) & second_.is(text[tails[line]]);
        const bool atLineEnd = first_.is(text[tails[line] + tailSize - 1]);
        found |= static_cast<Byte>(atHeadEnd) | static_cast<Byte>(atLineEnd);
    }
    return found != 0;
}

} // namespace tolvex
