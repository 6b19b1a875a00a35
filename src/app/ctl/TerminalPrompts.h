// The prompts of a shell: messages go to standard error, questions to the user at the terminal. Without a
// terminal, or with an option that answers, every question is answered at once.
#pragma once

#include "platform/Prompts.h"

namespace tolvex::ctl {

class TerminalPrompts : public platform::Prompts {
public:
    enum class Answers { Ask, Yes, No };
    // `quiet`: no progress and no notes.
    TerminalPrompts(Answers answers, bool quiet);

    platform::Answer ask(const platform::Message& message) override;
    std::optional<QString> pickFile(const platform::FileQuestion& question) override;
    std::optional<QString> pickFolder(const QString& prompt, const QString& start) override;
    std::optional<QString> askText(const QString& prompt, const QString& title,
                                   const QString& initial) override;
    std::optional<qint32> pickColour(qint32 initial) override;
    std::optional<platform::WaveFormat> pickWaveFormat(const platform::WaveFormat& initial) override;
    std::unique_ptr<platform::Progress> beginProgress(const QString& title, bool canStop) override;
    platform::Pointer pointer() const override { return pointer_; }
    void setPointer(platform::Pointer pointer) override { pointer_ = pointer; }
    void splash(const QString& status) override;
    void hideSplash() override {}
    void showUpdateNotice(const QString& file, const QString& caption) override;
    QString chooseConfigurationSet(const QString& registryKey, const QString& defaultIni) override;
    void openAddress(const QString& address) override;
    void processEvents() override;

    // The last message that was shown, except questions.
    const QString& lastMessage() const { return lastMessage_; }

private:
    bool mayAsk() const;
    std::optional<QString> path(const QString& prompt, const QString& start);

    Answers answers_;
    bool quiet_;
    QString lastMessage_;
    platform::Pointer pointer_ = platform::Pointer::Default;
};

} // namespace tolvex::ctl
