// Prompts of a test: answer by script and record what was asked and shown. Installed while they live.
//
//     ScriptedPrompts prompts;
//     prompts.answers = {Answer::Yes, Answer::Cancel};
//     ...
//     EXPECT_EQ(prompts.texts(), QStringList{"Do you wish ..."});
//
// A question beyond the script fails the test and gets its default answer; a chooser beyond its script fails
// too, with Cancel. A plain message (only Ok) needs no answer.
#pragma once

#include "platform/Prompts.h"

#include <gtest/gtest.h>

#include <QList>

#include <deque>
#include <functional>

namespace tolvex::tests {

class ScriptedPrompts : public platform::Prompts {
public:
    ScriptedPrompts()
        : before_(platform::setPrompts(this)) {}
    ~ScriptedPrompts() override { platform::setPrompts(before_); }
    ScriptedPrompts(const ScriptedPrompts&) = delete;
    ScriptedPrompts& operator=(const ScriptedPrompts&) = delete;

    // The script. A chooser's entry without a value is Cancel.
    std::deque<platform::Answer> answers;
    std::deque<std::optional<QString>> files;
    std::deque<std::optional<QString>> folders;
    std::deque<std::optional<QString>> typed;
    std::deque<std::optional<qint32>> colours;
    std::deque<std::optional<platform::WaveFormat>> waveFormats;
    std::deque<QString> configurationSets;
    std::deque<bool> progressGoesOn;     // answers of steps; true when it runs out
    std::function<void()> whileWaiting;  // runs in each processEvents
    std::function<void()> beforeAnswers; // runs before each answer, like another program

    // What happened.
    QList<platform::Message> asked;
    QList<platform::FileQuestion> fileQuestions;
    QStringList folderPrompts;
    QStringList textPrompts;
    QList<qint32> colourInitials;
    QStringList progressTitles;
    QStringList splashes; // status lines; null when it was hidden
    QStringList notices;  // "<file>|<caption>"
    QStringList setChoices;
    QStringList addresses;
    QList<platform::Pointer> pointers;
    int processed = 0;

    // The texts of all messages and questions so far.
    QStringList texts() const {
        QStringList all;
        for (const platform::Message& message : asked)
            all += message.text;
        return all;
    }
    void forget() {
        asked.clear();
        splashes.clear();
        pointers.clear();
    }

    platform::Answer ask(const platform::Message& message) override {
        asked += message;
        if (beforeAnswers)
            beforeAnswers();
        if (message.buttons == platform::Buttons::Ok)
            return platform::Answer::Ok;
        const bool confirms = message.buttons == platform::Buttons::OkCancel;
        const auto fallback =
            message.defaultAnswer.value_or(confirms ? platform::Answer::Ok : platform::Answer::Yes);
        return next(answers, fallback, message.text);
    }
    std::optional<QString> pickFile(const platform::FileQuestion& question) override {
        fileQuestions += question;
        return next(files, {}, question.title);
    }
    std::optional<QString> pickFolder(const QString& prompt, const QString&) override {
        folderPrompts += prompt;
        return next(folders, {}, prompt);
    }
    std::optional<QString> askText(const QString& prompt, const QString&, const QString&) override {
        textPrompts += prompt;
        return next(typed, {}, prompt);
    }
    std::optional<qint32> pickColour(qint32 initial) override {
        colourInitials += initial;
        return next(colours, {}, QStringLiteral("a colour"));
    }
    std::optional<platform::WaveFormat> pickWaveFormat(const platform::WaveFormat&) override {
        return next(waveFormats, {}, QStringLiteral("a wave format"));
    }
    std::unique_ptr<platform::Progress> beginProgress(const QString& title, bool) override {
        progressTitles += title;
        return std::make_unique<Steps>(*this);
    }
    platform::Pointer pointer() const override { return pointer_; }
    void setPointer(platform::Pointer pointer) override {
        pointer_ = pointer;
        pointers += pointer;
    }
    void splash(const QString& status) override { splashes += status; }
    void hideSplash() override { splashes += QString(); }
    void showUpdateNotice(const QString& file, const QString& caption) override {
        notices += file + u'|' + caption;
    }
    QString chooseConfigurationSet(const QString& registryKey, const QString& defaultIni) override {
        setChoices += registryKey + u'|' + defaultIni;
        return next(configurationSets, {}, QStringLiteral("a configuration set"));
    }
    void openAddress(const QString& address) override { addresses += address; }
    void processEvents() override {
        ++processed;
        if (whileWaiting)
            whileWaiting();
    }

private:
    class Steps : public platform::Progress {
    public:
        explicit Steps(ScriptedPrompts& script)
            : script_(script) {}
        bool step(qint64, qint64, const QString&) override {
            if (script_.progressGoesOn.empty())
                return true;
            const bool goesOn = script_.progressGoesOn.front();
            script_.progressGoesOn.pop_front();
            return goesOn;
        }

    private:
        ScriptedPrompts& script_;
    };

    template<typename Value>
    Value next(std::deque<Value>& script, Value fallback, const QString& what) {
        if (script.empty()) {
            ADD_FAILURE() << "Asked beyond the script: " << what.toStdString();
            return fallback;
        }
        const Value value = script.front();
        script.pop_front();
        return value; // NOLINT(performance-no-automatic-move): the copy is small, and const keeps a false
                      // alarm away
    }

    platform::Prompts* before_;
    platform::Pointer pointer_ = platform::Pointer::Default;
};

} // namespace tolvex::tests
