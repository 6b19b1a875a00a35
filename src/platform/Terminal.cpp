#include "platform/Terminal.h"

#include "platform/System.h"

#include <cstdio>

namespace tolvex::platform {

bool HasTerminal() {
    return InputIsTerminal();
}

bool ErrorsAreShown() {
    return ErrorsAreTerminal();
}

std::optional<QString> AskTerminal(const QString& prompt) {
    std::fputs(prompt.toLocal8Bit().constData(), stderr);
    std::fflush(stderr);
    QByteArray line;
    int c = 0;
    while ((c = std::getc(stdin)) != EOF && c != '\n')
        line += static_cast<char>(c);
    if (c == EOF && line.isEmpty())
        return std::nullopt;
    return QString::fromLocal8Bit(line);
}

} // namespace tolvex::platform
