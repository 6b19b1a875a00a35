// Questions in a shell: who answers them, and how.
#include "support/MachineFolder.h"

#include "app/ctl/TerminalPrompts.h"

#include <gtest/gtest.h>

#include <cstdio>

#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

using namespace tolvex::platform;
using tolvex::ctl::TerminalPrompts;
using tolvex::tests::TestMachine;
using Answers = TerminalPrompts::Answers;

namespace {

// Standard input during a test: a terminal on which `typed` was typed, or a file.
class Input {
public:
    Input()
        : Input(::open("/dev/null", O_RDONLY)) {}
    explicit Input(const char* typed) {
        int slave = -1;
        EXPECT_EQ(::openpty(&master_, &slave, nullptr, nullptr, nullptr), 0);
        EXPECT_GT(::write(master_, typed, std::char_traits<char>::length(typed)), 0);
        take(slave);
    }
    ~Input() {
        ::dup2(saved_, STDIN_FILENO);
        ::close(saved_);
        if (master_ >= 0)
            ::close(master_);
        std::clearerr(stdin);
    }
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

private:
    explicit Input(int descriptor) { take(descriptor); }
    void take(int descriptor) {
        saved_ = ::dup(STDIN_FILENO);
        ::dup2(descriptor, STDIN_FILENO);
        ::close(descriptor);
        std::clearerr(stdin);
    }
    int saved_ = -1;
    int master_ = -1;
};

Message question(Buttons buttons, std::optional<Answer> byDefault = {}) {
    return {
        .text = "Do you wish to?", .icon = Icon::Question, .buttons = buttons, .defaultAnswer = byDefault};
}

} // namespace

TEST(TerminalPrompts, WithNobodyThereTheOptionsOrTheDefaultAnswer) {
    const Input nobody;
    struct Case {
        Answers answers;
        Buttons buttons;
        std::optional<Answer> byDefault;
        Answer expected;
    };
    const Case cases[] = {
        {Answers::Yes, Buttons::YesNo, Answer::No, Answer::Yes},
        {Answers::Yes, Buttons::OkCancel, {}, Answer::Ok},
        {Answers::No, Buttons::YesNoCancel, {}, Answer::No},
        {Answers::No, Buttons::OkCancel, {}, Answer::Cancel},
        {Answers::No, Buttons::Ok, {}, Answer::Ok},
        {Answers::Ask, Buttons::YesNo, {}, Answer::Yes},
        {Answers::Ask, Buttons::YesNo, Answer::No, Answer::No},
    };
    for (const Case& one : cases) {
        TerminalPrompts prompts(one.answers, true);
        EXPECT_EQ(prompts.ask(question(one.buttons, one.byDefault)), one.expected);
        EXPECT_EQ(prompts.askText("Name", {}, "old"), std::nullopt);
        EXPECT_EQ(prompts.pickFolder("Folder", {}), std::nullopt);
    }
}

TEST(TerminalPrompts, AskWhoeverSitsAtTheTerminal) {
    TerminalPrompts prompts(Answers::Ask, true);
    {
        const Input somebody("perhaps\nn\n\nCAN\nC:\\X\n\n0xff0000\n");
        EXPECT_EQ(prompts.ask(question(Buttons::YesNo)), Answer::No); // asked again after an invalid word
        EXPECT_EQ(prompts.ask(question(Buttons::YesNo, Answer::No)), Answer::No);
        EXPECT_EQ(prompts.ask(question(Buttons::YesNoCancel)), Answer::Cancel);
        EXPECT_EQ(prompts.pickFolder("Folder", {}), "C:\\X");
        EXPECT_EQ(prompts.askText("Name", {}, "old"), "old");
        EXPECT_EQ(prompts.pickColour(0), 0xff0000);
    }
    {
        TestMachine machine;
        machine.write("C:\\EDIT.EXE", "program");
        FileQuestion question;
        question.fileName = "*.EXE"; // not a usable file name
        const Input somebody("C:\\GONE.EXE\nC:\\EDIT.EXE\n\n");
        EXPECT_EQ(prompts.pickFile(question), "C:\\EDIT.EXE");
        EXPECT_EQ(prompts.pickFile(question), std::nullopt);
    }
    const Input gone("\x04"); // end of input
    EXPECT_EQ(prompts.ask(question(Buttons::OkCancel)), Answer::Cancel);
}
