#include "audio/AudioEditorSearch.h"

#include "core/report/Folders.h"
#include "core/system/Registry.h"
#include "platform/paths/Paths.h"

namespace tolvex {

namespace {

constexpr int programFiles = 0x26;

// Editors that say in the registry where they were installed.
struct RegisteredEditor {
    const char* key;
    const char* value;
    const char* program;
};
constexpr RegisteredEditor registeredEditors[] = {
    {"Software\\Syntrillium\\CEPro", "MAINDIR", "\\COOLPRO.EXE"},
    {"Software\\Syntrillium\\CE2000", "MAINDIR", "\\COOL2000.EXE"},
    {"Software\\Syntrillium\\CE96\\MAINDIR", "", "\\COOL96.EXE"},
};

bool isFile(const QString& path) {
    return FileLength(path) > 0;
}

} // namespace

QString SearchSampleEditor(const QString& path) {
    if (isFile(path))
        return path;
    if (const QString folder = platform::SpecialFolderPath(programFiles); !folder.isEmpty()) {
        QString cutlane = folder + QStringLiteral("\\Norvane\\Cutlane v1\\Cutlane.exe");
        if (isFile(cutlane))
            return cutlane;
    }
    for (const RegisteredEditor& editor : registeredEditors) {
        const QString folder =
            ReadRegistryString(LocalMachineHive, QLatin1String(editor.key), QLatin1String(editor.value), {})
                .trimmed();
        if (QString program = folder + QLatin1String(editor.program); !folder.isEmpty() && isFile(program))
            return program;
    }
    return path;
}

} // namespace tolvex
