// The prompts of the window program: Qt's own dialogs, the splash form, the update notice, the chooser of
// sets.
#pragma once

#include "platform/Prompts.h"

#include <QPointer>

namespace tolvex {

class frmSplash;
struct Settings;

class QtPrompts : public platform::Prompts {
public:
    // The splash form shows information from the settings; they outlive the prompts.
    explicit QtPrompts(const Settings& settings);
    ~QtPrompts() override;

    platform::Answer ask(const platform::Message& message) override;
    std::optional<QString> pickFile(const platform::FileQuestion& question) override;
    std::optional<QString> pickFolder(const QString& prompt, const QString& start) override;
    std::optional<QString> askText(const QString& prompt, const QString& title,
                                   const QString& initial) override;
    std::optional<qint32> pickColour(qint32 initial) override;
    std::optional<platform::WaveFormat> pickWaveFormat(const platform::WaveFormat& initial) override;
    bool pickPrinter(QPrinter& printer, bool withSelection) override;
    std::unique_ptr<platform::Progress> beginProgress(const QString& title, bool canStop) override;
    platform::Pointer pointer() const override { return pointer_; }
    void setPointer(platform::Pointer pointer) override;
    void splash(const QString& status) override;
    void hideSplash() override;
    void showUpdateNotice(const QString& file, const QString& caption) override;
    QString chooseConfigurationSet(const QString& registryKey, const QString& defaultIni) override;
    void openAddress(const QString& address) override;
    void processEvents() override;

private:
    const Settings& settings_;
    QPointer<frmSplash> splash_;
    platform::Pointer pointer_ = platform::Pointer::Default;
};

} // namespace tolvex
