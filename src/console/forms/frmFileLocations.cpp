#include "console/forms/frmFileLocations.h"

#include "console/StoreFileLocations.h"
#include "core/report/Folders.h"
#include "core/settings/SettingText.h"
#include "core/settings/Settings.h"
#include "core/system/Registry.h"
#include "core/text/PathNames.h"
#include "core/text/TextFields.h"
#include "platform/Prompts.h"
#include "platform/profile/ProfileFile.h"
#include "platform/registry/RegistryStore.h"
#include "ui/binding/EnableRules.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui/style/TextBoxes.h"
#include "ui_frmFileLocations.h"

namespace tolvex {

namespace {

constexpr int LongestLocation = 1024; // buffer of the reads
constexpr int RestMilliseconds = 300;

const SettingRow& cartsRow() {
    return RowOf<&Settings::CartPartTable, &CartPart::Location>();
}

} // namespace

frmFileLocations::frmFileLocations(Settings& settings, QWidget* parent)
    : QDialog(parent)
    , settings_(settings)
    , ui_(std::make_unique<Ui::frmFileLocations>())
    , iniFile_(settings.LocalIniFile) {
    ui_->setupUi(this);
    EnterForm(this);
    const auto prepare = [this](QLineEdit* line) {
        TypeInUpperCase(line);
        connect(line, &QLineEdit::textChanged, this, [this] { look_.start(); });
    };
    prepare(ui_->txtDataLocation);
    connect(ui_->cmdChangeDataLoc, &QPushButton::clicked, this, [this] { pick(ui_->txtDataLocation); });
    for (int part = 1; part <= CartPartCount; ++part) {
        prepare(box(part));
        connect(browse(part), &QPushButton::clicked, this, [this, part] { pick(box(part)); });
    }
    // The text is read again: the signal of a typed letter still carries it in lower case.
    const auto useOneLocation = [this] {
        if (ui_->chkUseOneCartLocation->isChecked())
            for (int part = 2; part <= CartPartCount; ++part)
                box(part)->setText(box(1)->text());
    };
    connect(box(1), &QLineEdit::textChanged, this, useOneLocation);
    connect(ui_->chkUseOneCartLocation, &QCheckBox::toggled, this, useOneLocation);
    QString boxes;
    QString buttonsAndLabels;
    for (int part = 2; part <= CartPartCount; ++part) {
        boxes += QStringLiteral("txtCartLocations_%1 ").arg(part);
        buttonsAndLabels += QStringLiteral("cmdChangeCartLocation_%1 lblCartLocations_%1 ").arg(part);
    }
    const QString oneForAll = QStringLiteral("All carts lie in the directory of carts 1 to 1000.");
    const auto eachHasOne = [this](const FormView&) { return !ui_->chkUseOneCartLocation->isChecked(); };
    new EnableRules(this, {{boxes, oneForAll, eachHasOne, EnableRule::Effect::Locks},
                           {buttonsAndLabels, oneForAll, eachHasOne}});
    connect(ui_->cmdDone, &QPushButton::clicked, this, &frmFileLocations::store);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    look_.setSingleShot(true);
    look_.setInterval(RestMilliseconds);
    connect(&look_, &QTimer::timeout, this, &frmFileLocations::lookAtFolders);

    fill(ui_->txtDataLocation, settings_.DataLocation);
    for (int part = 1; part <= CartPartCount; ++part)
        fill(box(part), settings_.CartPartTable[part].Location);
    lookAtFolders();
    platform::prompts().setPointer(platform::Pointer::Default);
}

frmFileLocations::~frmFileLocations() = default;

QLineEdit* frmFileLocations::box(int part) const {
    return findChild<QLineEdit*>(QStringLiteral("txtCartLocations_%1").arg(part));
}

QPushButton* frmFileLocations::browse(int part) const {
    return findChild<QPushButton*>(QStringLiteral("cmdChangeCartLocation_%1").arg(part));
}

void frmFileLocations::fill(QLineEdit* line, const QString& text) {
    line->setText(UpperCased(text.trimmed()));
}

void frmFileLocations::setIniFile(const QString& file) {
    iniFile_ = file;
    fill(ui_->txtDataLocation,
         SettingText(RowOf<&Settings::DataLocation>(), file, settings_.DataLocation, 0, LongestLocation));
    for (int part = 1; part <= CartPartCount; ++part)
        fill(box(part),
             SettingText(cartsRow(), file, settings_.CartPartTable[part].Location, part, LongestLocation));
    checkOneLocation();
}

void frmFileLocations::setReg_Path(const QString& key) {
    regPath_ = key;
    fill(ui_->txtDataLocation, ReadRegistryString(platform::LocalMachineHive, key,
                                                  QStringLiteral("DataLocation"), settings_.DataLocation));
    for (int part = 1; part <= CartPartCount; ++part)
        fill(box(part), ReadRegistryString(platform::LocalMachineHive, key,
                                           QLatin1String(cartsRow().valueName) + QString::number(part),
                                           settings_.CartPartTable[part].Location));
    checkOneLocation();
}

void frmFileLocations::checkOneLocation() {
    const QString first = UpperCased(box(1)->text().trimmed());
    for (int part = 2; part <= CartPartCount; ++part)
        if (UpperCased(box(part)->text().trimmed()) != first)
            return;
    ui_->chkUseOneCartLocation->setChecked(true);
}

void frmFileLocations::pick(QLineEdit* line) {
    const QString chosen =
        BrowseForFolder(QStringLiteral("Select the directory that the audio is stored in"), line->text());
    if (!chosen.isEmpty())
        fill(line, chosen);
}

// Shows on the form which folders do not exist yet; nothing is refused.
void frmFileLocations::lookAtFolders() {
    QStringList missing;
    const auto look = [&missing](QLineEdit* line) {
        const QString path = TidyLocation(line->text());
        const bool absent = !path.isEmpty() && !DirectoryExists(path);
        MarkBox(line, absent ? QStringLiteral("not found") : QString());
        if (absent && !missing.contains(path))
            missing.append(path);
    };
    look(ui_->txtDataLocation);
    for (int part = 1; part <= CartPartCount; ++part)
        look(box(part));
    ui_->lblFolders->setStyleSheet(QStringLiteral("color: %1;").arg(tokens().warningText.name()));
    ui_->lblFolders->setText(
        missing.isEmpty() ? QString()
        : missing.size() == 1
            ? QStringLiteral("%1 does not exist. It will be made when you click Done.").arg(missing.front())
            : QStringLiteral("%1 folders do not exist. They will be made when you click Done.")
                  .arg(missing.size()));
    ui_->lblFolders->setToolTip(missing.join(u'\n'));
}

void frmFileLocations::store() {
    QStringList carts;
    for (int part = 1; part <= CartPartCount; ++part)
        carts.append(box(part)->text());
    StoreFileLocations(settings_, ui_->txtDataLocation->text(), carts, iniFile_, regPath_);
    accept();
}

} // namespace tolvex
