#include "app/ctl/TerminalPrompts.h"

#include "app/ctl/Command.h"
#include "platform/Terminal.h"
#include "platform/files/Files.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdio>

namespace tolvex::ctl {

using platform::Answer;
using platform::Buttons;

namespace {

struct Button {
    Answer answer;
    char letter;
    const char* word;
};

std::vector<Button> buttonsOf(Buttons buttons) {
    const Button ok{Answer::Ok, 'o', "OK"};
    const Button cancel{Answer::Cancel, 'c', "Cancel"};
    const Button yes{Answer::Yes, 'y', "Yes"};
    const Button no{Answer::No, 'n', "No"};
    switch (buttons) {
    case Buttons::Ok:
        return {ok};
    case Buttons::OkCancel:
        return {ok, cancel};
    case Buttons::YesNo:
        return {yes, no};
    case Buttons::YesNoCancel:
        return {yes, no, cancel};
    }
    return {ok};
}

void say(const QString& text) {
    std::fputs((text + u'\n').toLocal8Bit().constData(), stderr);
}

// One line that is overwritten, a few times a second.
class TerminalProgress : public platform::Progress {
public:
    explicit TerminalProgress(const QString& title)
        : title_(title)
        , shown_(platform::ErrorsAreShown()) {}
    ~TerminalProgress() override {
        if (drawn_)
            std::fputs("\r\x1B[K", stderr);
    }
    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;

    bool step(qint64 done, qint64 total, const QString& what) override {
        constexpr qint64 pause = 200; // milliseconds
        if (!shown_ || (drawn_ && since_.elapsed() < pause))
            return true;
        const QString amount =
            total > 0 ? QStringLiteral("%1 %").arg(done * 100 / total) : QString::number(done);
        std::fputs(QStringLiteral("\r\x1B[K%1: %2 %3").arg(title_, amount, what).toLocal8Bit().constData(),
                   stderr);
        drawn_ = true;
        since_.restart();
        return true;
    }

private:
    QString title_;
    bool shown_;
    bool drawn_ = false;
    QElapsedTimer since_;
};

class NoProgress : public platform::Progress {
public:
    bool step(qint64, qint64, const QString&) override { return true; }
};

} // namespace

TerminalPrompts::TerminalPrompts(Answers answers, bool quiet)
    : answers_(answers)
    , quiet_(quiet) {}

bool TerminalPrompts::mayAsk() const {
    return answers_ == Answers::Ask && platform::HasTerminal();
}

Answer TerminalPrompts::ask(const platform::Message& message) {
    const std::vector<Button> buttons = buttonsOf(message.buttons);
    say(message.text);
    if (buttons.size() == 1) {
        lastMessage_ = message.text;
        return buttons[0].answer;
    }
    // The second button means no, whether it is labelled No or Cancel.
    if (answers_ != Answers::Ask)
        return buttons[answers_ == Answers::Yes ? 0 : 1].answer;
    const Answer byDefault = message.defaultAnswer.value_or(buttons[0].answer);
    if (!mayAsk())
        return byDefault;
    QStringList words;
    for (const Button& button : buttons)
        words += QLatin1String(button.word) +
                 (button.answer == byDefault ? QLatin1String("*") : QLatin1String(""));
    for (;;) {
        const auto line = platform::AskTerminal(words.join(u'/') + QLatin1String("? "));
        if (!line)
            return buttons.back().answer; // like closing the box
        const QString given = line->trimmed().toLower();
        if (given.isEmpty())
            return byDefault;
        for (const Button& button : buttons)
            if (QString::fromLatin1(button.word).startsWith(given, Qt::CaseInsensitive))
                return button.answer;
    }
}

std::optional<QString> TerminalPrompts::path(const QString& prompt, const QString& start) {
    for (;;) {
        const std::optional<QString> given = askText(prompt, {}, start);
        if (!given || given->isEmpty())
            return std::nullopt;
        QString why;
        if (auto file = FileArgument(*given, BareFile::ShellFolder, &why))
            return file;
        say(why);
    }
}

std::optional<QString> TerminalPrompts::pickFile(const platform::FileQuestion& question) {
    // A pattern is not a proposal for a file name.
    const QString start = question.fileName.contains(u'*') ? QString() : question.fileName;
    std::optional<QString> given = path(question.title, start);
    while (given && question.mustExist && !platform::FileExists(*given)) {
        say(QStringLiteral("There is no file %1.").arg(*given));
        given = path(question.title, start);
    }
    return given;
}

std::optional<QString> TerminalPrompts::pickFolder(const QString& prompt, const QString& start) {
    return path(prompt, start);
}

std::optional<QString> TerminalPrompts::askText(const QString& prompt, const QString&,
                                                const QString& initial) {
    if (!mayAsk())
        return std::nullopt;
    const QString shown = initial.isEmpty() ? prompt : QStringLiteral("%1 [%2]").arg(prompt, initial);
    const std::optional<QString> line = platform::AskTerminal(shown + QLatin1String(": "));
    return line && line->isEmpty() ? std::optional(initial) : line;
}

std::optional<qint32> TerminalPrompts::pickColour(qint32 initial) {
    const QString shown = QStringLiteral("0x%1").arg(static_cast<quint32>(initial), 6, 16, QChar(u'0'));
    const std::optional<QString> line = askText(QStringLiteral("Colour, blue-green-red"), {}, shown);
    bool good = false;
    const quint32 colour = line.value_or(QString()).toUInt(&good, 0);
    return good ? std::optional(static_cast<qint32>(colour)) : std::nullopt;
}

// No command records audio; a station chooses its format where it can be heard.
std::optional<platform::WaveFormat> TerminalPrompts::pickWaveFormat(const platform::WaveFormat&) {
    return std::nullopt;
}

std::unique_ptr<platform::Progress> TerminalPrompts::beginProgress(const QString& title, bool) {
    if (quiet_)
        return std::make_unique<NoProgress>();
    return std::make_unique<TerminalProgress>(title);
}

void TerminalPrompts::splash(const QString& status) {
    if (!quiet_)
        say(status);
}

// The notice is for the user of the window, who has not seen it yet.
void TerminalPrompts::showUpdateNotice(const QString&, const QString&) {}

QString TerminalPrompts::chooseConfigurationSet(const QString&, const QString& defaultIni) {
    if (!quiet_)
        say(QStringLiteral(
                "This machine has several configurations; this is about %1. --ini names another one.")
                .arg(defaultIni));
    return defaultIni;
}

void TerminalPrompts::openAddress(const QString& address) {
    say(address);
}

void TerminalPrompts::processEvents() {
    QCoreApplication::processEvents();
}

} // namespace tolvex::ctl
