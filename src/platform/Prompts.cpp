#include "platform/Prompts.h"

namespace tolvex::platform {

namespace {

class SilentProgress : public Progress {
public:
    bool step(qint64, qint64, const QString&) override { return true; }
};

Answer firstButton(Buttons buttons) {
    return buttons == Buttons::Ok || buttons == Buttons::OkCancel ? Answer::Ok : Answer::Yes;
}

// For unattended runs: every question gets its default and every chooser is cancelled.
class SilentPrompts : public Prompts {
public:
    Answer ask(const Message& message) override {
        return message.defaultAnswer.value_or(firstButton(message.buttons));
    }
    std::optional<QString> pickFile(const FileQuestion&) override { return std::nullopt; }
    std::optional<QString> pickFolder(const QString&, const QString&) override { return std::nullopt; }
    std::optional<QString> askText(const QString&, const QString&, const QString&) override {
        return std::nullopt;
    }
    std::optional<qint32> pickColour(qint32) override { return std::nullopt; }
    std::unique_ptr<Progress> beginProgress(const QString&, bool) override {
        return std::make_unique<SilentProgress>();
    }
    Pointer pointer() const override { return pointer_; }
    void setPointer(Pointer pointer) override { pointer_ = pointer; }
    void splash(const QString&) override {}
    void hideSplash() override {}
    void showUpdateNotice(const QString&, const QString&) override {}
    QString chooseConfigurationSet(const QString&, const QString& defaultIni) override { return defaultIni; }
    void openAddress(const QString&) override {}
    void processEvents() override {}

private:
    Pointer pointer_ = Pointer::Default;
};

SilentPrompts silent;
Prompts* installed = &silent;

} // namespace

Prompts& prompts() {
    return *installed;
}

Prompts* setPrompts(Prompts* prompts) {
    Prompts* before = installed;
    installed = prompts ? prompts : &silent;
    return before;
}

} // namespace tolvex::platform
