// The one interface through which the program asks and informs its user: the window program installs Qt
// dialogs, the command line a terminal, tests a script that answers and records. Logic below the windows also
// reports its progress and opens the few forms it needs here.
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

class QPrinter;

namespace tolvex::platform {

enum class Icon { None, Stop, Question, Exclamation, Information };
enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel };
enum class Answer { Ok, Cancel, Yes, No };
enum class Pointer { Default, Wait };

struct Message {
    QString text;
    Icon icon = Icon::None;
    Buttons buttons = Buttons::Ok;
    // What Enter answers, and what an unattended run answers. Unset: the first button.
    std::optional<Answer> defaultAnswer = std::nullopt;
    QString title = {};   // empty: the application's title
    QString toolTip = {}; // of the box, where there is a mouse
};

struct FileQuestion {
    QString title;
    QString filter; // "Programs|*.EXE;*.COM|All|*.*": pairs of name and patterns
    QString folder; // where to start; empty: the current folder
    QString fileName = {};
    QString defaultExtension = {};
    bool mustExist = true;
    bool saving = false;
};

// The first fields of the system's wave format record.
struct WaveFormat {
    qint16 tag = 1; // 1: plain PCM
    qint16 channels = 2;
    qint32 rate = 44100; // hertz
};

// Progress of a long job, shown until it is destroyed.
class Progress {
public:
    virtual ~Progress() = default;
    // `done` of `total` steps (bytes, files, ...); total 0: not known yet. False after the user pressed Stop.
    virtual bool step(qint64 done, qint64 total, const QString& what = {}) = 0;
};

class Prompts {
public:
    virtual ~Prompts() = default;

    // Shows a message and returns the answer. Closing the box by Escape answers Cancel, or No if there is no
    // Cancel.
    virtual Answer ask(const Message& message) = 0;
    // Nothing on Cancel. Paths are Windows paths.
    virtual std::optional<QString> pickFile(const FileQuestion& question) = 0;
    virtual std::optional<QString> pickFolder(const QString& prompt, const QString& start) = 0;
    virtual std::optional<QString> askText(const QString& prompt, const QString& title,
                                           const QString& initial) = 0;
    // Colours are blue-green-red integers.
    virtual std::optional<qint32> pickColour(qint32 initial) = 0;
    // The choosers of audio formats and printers are windows; without windows they are cancelled.
    virtual std::optional<WaveFormat> pickWaveFormat(const WaveFormat& /*initial*/) { return std::nullopt; }
    // Lets the user choose printer, copies and range. False on Cancel, and in programs without windows, which
    // never print.
    virtual bool pickPrinter(QPrinter& /*printer*/, bool /*withSelection*/) { return false; }
    virtual std::unique_ptr<Progress> beginProgress(const QString& title, bool canStop) = 0;

    virtual Pointer pointer() const = 0;
    virtual void setPointer(Pointer pointer) = 0;

    // The splash form: sets its status line (showing the form if hidden), and removes it.
    virtual void splash(const QString& status) = 0;
    virtual void hideSplash() = 0;
    // The update notice; returns after the user closed it.
    virtual void showUpdateNotice(const QString& file, const QString& caption) = 0;
    // The configuration set chooser: returns the chosen local ini file, empty on Cancel.
    virtual QString chooseConfigurationSet(const QString& registryKey, const QString& defaultIni) = 0;
    // Opens an address or document with the system's program for it.
    virtual void openAddress(const QString& address) = 0;

    // Lets pending events run; every wait calls it in its loop.
    virtual void processEvents() = 0;
};

// The installed prompts. Until others are installed they are silent: every question gets its default.
Prompts& prompts();
// Installs other prompts (not owned); null restores the silent ones. Returns those that were installed.
Prompts* setPrompts(Prompts* prompts);

// Restores the mouse pointer when it goes out of scope.
class PointerKeeper {
public:
    explicit PointerKeeper(Pointer pointer)
        : saved_(prompts().pointer()) {
        prompts().setPointer(pointer);
    }
    ~PointerKeeper() { prompts().setPointer(saved_); }
    PointerKeeper(const PointerKeeper&) = delete;
    PointerKeeper& operator=(const PointerKeeper&) = delete;

private:
    Pointer saved_;
};

} // namespace tolvex::platform
