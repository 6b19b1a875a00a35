#include "console/forms/FormTable.h"

#include "console/forms/frmDateTimeSetup.h"
#include "console/forms/frmDisplayOptions.h"
#include "console/forms/frmFileLocations.h"
#include "core/settings/Settings.h"
#include "hardware/forms/frmHardwareSettings.h"

#include <QFile>

// Resources of a static library must be asked for, outside any namespace.
static void initDesigns() {
    Q_INIT_RESOURCE(designs);
}

namespace tolvex {

namespace {

struct Row {
    const char* form;
    QDialog* (*make)(QWidget* owner);
};

const Row rows[] = {
    {"frmFileLocations",
     [](QWidget* owner) -> QDialog* {
         auto* form = new frmFileLocations(owner);
         form->setIniFile(settings().LocalIniFile);
         return form;
     }},
    {"frmDisplayOptions", [](QWidget* owner) -> QDialog* { return new frmDisplayOptions(owner); }},
    {"frmDateTimeSetup", [](QWidget* owner) -> QDialog* { return new frmDateTimeSetup({}, owner); }},
    {"frmHardwareSettings", [](QWidget* owner) -> QDialog* { return new frmHardwareSettings(owner); }},
};

const Row* find(const QString& form) {
    for (const Row& row : rows)
        if (form == QLatin1String(row.form))
            return &row;
    return nullptr;
}

} // namespace

bool FormExists(const QString& form) {
    return find(form) != nullptr;
}

QDialog* MakeForm(const QString& form, QWidget* owner) {
    const Row* row = find(form);
    return row ? row->make(owner) : nullptr;
}

QByteArray FormDesign(const QString& form) {
    initDesigns();
    QFile file(QStringLiteral(":/designs/%1.ui").arg(form));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace tolvex
