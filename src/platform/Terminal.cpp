#include "platform/Terminal.h"

#include <cstdio>

#include <unistd.h>

namespace tolvex::platform {

bool HasTerminal() {
    return ::isatty(STDIN_FILENO) == 1;
}

bool ErrorsAreShown() {
    return ::isatty(STDERR_FILENO) == 1;
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
