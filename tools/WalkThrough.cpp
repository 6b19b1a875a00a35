#include "WalkThrough.h"

#include "app/window/ProgressBox.h"
#include "app/window/QtPrompts.h"
#include "console/AutoConfiguration.h"
#include "console/forms/frmConfigure.h"
#include "console/forms/frmSplash.h"
#include "platform/paths/Paths.h"
#include "station/Workstation.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>

using namespace tolvex;

namespace {

using platform::Answer;

// A question, by the start of its text, the picture of it (null: none), and the button to press.
struct Step {
    const char* text;
    const char* picture;
    QMessageBox::StandardButton button;
};
const Step steps[] = {
    {"The Configuration Wizard", "first-question", QMessageBox::Yes},
    {"Do you have a networked system", "first-network", QMessageBox::No},
    {"Do you want Tolvex to be configured", "first-folders", QMessageBox::Yes},
    {"Please select the program", nullptr, QMessageBox::Ok},
    {"Tolvex is now fully configured on this", "first-done", QMessageBox::Ok},
    {"Tolvex is now fully configured on your", nullptr, QMessageBox::No},
    {"Tolvex data has been found", "first-found", QMessageBox::No},
};

template<class Form>
Form* shown() {
    for (QWidget* window : QApplication::topLevelWidgets())
        if (auto* form = qobject_cast<Form*>(window); form && form->isVisible())
            return form;
    return nullptr;
}

class Walk : public QtPrompts {
public:
    Walk(const Settings& settings, const std::function<void(QWidget&, const char*)>& save)
        : QtPrompts(settings)
        , save_(save) {
        platform::setPrompts(this);
    }
    ~Walk() override { platform::setPrompts(nullptr); }

    Answer ask(const platform::Message& message) override {
        for (const Step& step : steps)
            if (message.text.startsWith(QLatin1String(step.text)))
                QTimer::singleShot(0, [this, &step] {
                    auto* box = shown<QMessageBox>();
                    if (step.picture)
                        save_(*box, step.picture);
                    box->button(step.button)->click();
                });
        return QtPrompts::ask(message);
    }
    std::optional<QString> pickFile(const platform::FileQuestion&) override { return std::nullopt; }
    void splash(const QString& status) override {
        QtPrompts::splash(status);
        if (status == QStringLiteral("Checking/Creating Files.."))
            save_(*shown<frmSplash>(), "first-splash");
    }

private:
    std::function<void(QWidget&, const char*)> save_;
};

// A file of some length on a network drive of its own.
void putOnNetwork(const char* drive, const char* name) {
    const QString folder = platform::MachineFolder() + QStringLiteral("/dosdevices/") + QLatin1String(drive);
    QDir().mkpath(folder);
    QFile file(folder + u'/' + QLatin1String(name));
    if (file.open(QIODevice::WriteOnly))
        file.write("[Station]\r\n");
    platform::SetTypeOfDrive(QLatin1Char(*drive), platform::DriveType::Remote);
}

} // namespace

void WalkThrough(const std::function<void(QWidget&, const char*)>& save) {
    const QTemporaryDir machine;
    platform::SetMachineFolder(machine.path());
    Workstation station;
    Walk walk(station.settings, save);

    frmConfigure console(station);
    if (console.load())
        save(console, "first-console");
    console.close();

    ProgressBox search(QStringLiteral("Looking for existing Tolvex Information"), true, nullptr);
    search.step(166, 207, QStringLiteral("Looking at M:, U:"));
    for (QWidget* window : QApplication::topLevelWidgets())
        if (auto* box = qobject_cast<QProgressDialog*>(window))
            save(*box, "first-search");

    putOnNetwork("m:", "TLVX_SYS.INI");
    putOnNetwork("u:", "Carts1.lst");
    ConfigureFromSearch(station, false);
}
