#include "console/forms/FormTable.h"

#include "audio/forms/frmAudioSetup.h"
#include "audio/forms/frmAudioWallSetup.h"
#include "audio/forms/frmOpalSetup.h"
#include "audio/forms/frmRippingSettings.h"
#include "automation/forms/frmKOVASetup.h"
#include "console/AutoConfiguration.h"
#include "console/forms/CompactDatabase.h"
#include "console/forms/FindCart.h"
#include "console/forms/frmDateTimeSetup.h"
#include "console/forms/frmDisplayOptions.h"
#include "console/forms/frmFileLocations.h"
#include "core/settings/SettingsLoader.h"
#include "core/settings/StoredSettings.h"
#include "hardware/forms/frmHardwareSettings.h"
#include "network/forms/frmCommandSetup.h"
#include "network/forms/frmLinkMeshSetup.h"
#include "station/LoadSettings.h"
#include "station/NetworkParts.h"
#include "station/Workstation.h"

#include <QFile>

// Resources of a static library must be initialised explicitly, outside any namespace.
static void initDesigns() {
    Q_INIT_RESOURCE(designs);
}

namespace tolvex {

namespace {

struct Row {
    const char* form;
    QDialog* (*make)(Workstation& station, QWidget* owner);
};

const Row rows[] = {
    {"frmFileLocations",
     [](Workstation& station, QWidget* owner) -> QDialog* {
         auto* form = new frmFileLocations(station.settings, owner);
         form->setIniFile(station.settings.LocalIniFile);
         return form;
     }},
    {"frmAudioSetup",
     [](Workstation& station, QWidget* owner) -> QDialog* {
         LoadLocalSettings(station);
         return new frmAudioSetup(station.settings, owner);
     }},
    {"frmAudioWallSetup",
     [](Workstation& station, QWidget* owner) -> QDialog* {
         LoadLocalSettings(station);
         auto* form = new frmAudioWallSetup(station.settings, owner);
         form->offerCarts(station.carts, station.picking);
         return form;
     }},
    {"frmDisplayOptions",
     [](Workstation& station, QWidget* owner) -> QDialog* {
         return new frmDisplayOptions(station.settings, owner);
     }},
    {"frmDateTimeSetup",
     [](Workstation& station, QWidget* owner) -> QDialog* {
         return new frmDateTimeSetup(station.settings, owner);
     }},
    {"frmHardwareSettings",
     [](Workstation& station, QWidget* owner) -> QDialog* {
         return new frmHardwareSettings(station.cards, station.settings, owner);
     }},
    {"frmCommandSetup",
     [](Workstation& station, QWidget* owner) -> QDialog* {
         return new frmCommandSetup(
             ServerSetupOf(station), [&station](const QString& name) { return UsesOfCommand(station, name); },
             owner);
     }},
    {"frmLinkMeshSetup",
     [](Workstation& station, QWidget* owner) -> QDialog* {
         return new frmLinkMeshSetup(station.terminals, station.settings, owner);
     }},
    {"frmRippingSettings",
     [](Workstation& station, QWidget* owner) -> QDialog* {
         return new frmRippingSettings(station.settings, owner);
     }},
    {"frmOpalSetup",
     [](Workstation& station, QWidget* owner) -> QDialog* {
         const QString file = FilesInForce(station.settings).system;
         auto* form = new frmOpalSetup(owner);
         form->setIniFile(file);
         QObject::connect(form, &QDialog::accepted, form,
                          [&station, file] { LoadRows(TransferRows, {file}, station.settings); });
         return form;
     }},
    {"frmKOVASetup",
     [](Workstation& station, QWidget* owner) -> QDialog* {
         return new frmKOVASetup(station.settings, station.automation, station.users, owner);
     }},
};

struct RoutineRow {
    const char* name;
    ConsoleRoutine run;
};

constexpr RoutineRow routines[] = {
    {"CompactDatabase",
     [](Workstation& station, QWidget* console) { return CompactDatabase(station, console), false; }},
    {"FindCart", [](Workstation& station, QWidget* console) { return FindCart(station, console), false; }},
    {"LocalSetup", [](Workstation& station, QWidget*) { return LocalSetup(station), false; }},
    {"LookForSetup", [](Workstation& station, QWidget*) { return LookForSetup(station); }},
    {"NetworkSetup", [](Workstation& station, QWidget*) { return NetworkSetup(station); }},
};

const Row* find(const QString& form) {
    for (const Row& row : rows)
        if (form == QLatin1String(row.form))
            return &row;
    return nullptr;
}

} // namespace

QDialog* MakeForm(const QString& form, Workstation& station, QWidget* owner) {
    const Row* row = find(form);
    return row ? row->make(station, owner) : nullptr;
}

ConsoleRoutine FindRoutine(const QString& name) {
    for (const RoutineRow& row : routines)
        if (name == QLatin1String(row.name))
            return row.run;
    return nullptr;
}

QByteArray FormDesign(const QString& form) {
    initDesigns();
    QFile file(QStringLiteral(":/designs/%1.ui").arg(form));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace tolvex
