#include "console/forms/frmSplash.h"

#include "console/PlatformText.h"
#include "core/report/Folders.h"
#include "core/system/Product.h"
#include "platform/files/Files.h"
#include "platform/paths/Paths.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui_frmSplash.h"

namespace tolvex {

namespace {

constexpr int LongestLogo = 16 << 20;
constexpr int MarkSize = 48;

} // namespace

frmSplash::frmSplash(const platform::SystemVersion& system, QWidget* parent)
    : QDialog(parent)
    , ui_(std::make_unique<Ui::frmSplash>()) {
    ui_->setupUi(this);
    EnterForm(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    ui_->lblVersion->setText(QStringLiteral("Version ") + ProductVersion());
    ui_->lblProductName->setText(QString::fromLatin1(ProductName));
    ui_->lblCompanyProduct->setText(QString::fromLatin1(CompanyName));
    ui_->lblCopyright->setText(QString::fromLatin1(Copyright));
    const QString platformText = PlatformText(system);
    if (!platformText.isEmpty())
        ui_->lblPlatform->setText(platformText);
    for (QLabel* quiet : {ui_->lblCompanyProduct, ui_->lblVersion, ui_->lblPlatform, ui_->lblCopyright})
        quiet->setStyleSheet(QStringLiteral("color: %1;").arg(tokens().quiet.name()));
    ui_->lblCurrentAction->setStyleSheet(QStringLiteral("color: %1;").arg(tokens().accent.name()));
    ui_->cmdOK->setVisible(false);
    ui_->imgLogo->setVisible(false);
    ui_->imgMark->setPixmap(LineIcon(QStringLiteral("speaker")).pixmap(MarkSize, MarkSize));
    connect(ui_->cmdOK, &QPushButton::clicked, this, [this] {
        ui_->cmdOK->setVisible(false);
        accept();
    });
    showLogo();
}

frmSplash::~frmSplash() = default;

// A station's own picture replaces the program's logo.
void frmSplash::showLogo() {
    const QString file = platform::ApplicationFile(QStringLiteral("LOGO.BMP"));
    if (FileLength(file) <= 0)
        return;
    QPixmap logo;
    if (!logo.loadFromData(platform::ReadWholeFile(file, LongestLogo).value_or(QByteArray())))
        return;
    ui_->pnlLogo->setVisible(false);
    ui_->imgLogo->setPixmap(logo);
    ui_->imgLogo->setVisible(true);
}

void frmSplash::setCurrentAction(const QString& text) {
    ui_->lblCurrentAction->setText(text);
}

void frmSplash::becomeAboutBox() {
    ui_->lblCurrentAction->setVisible(false);
    ui_->cmdOK->setVisible(true);
    setModal(true);
}

void frmSplash::setAlwaysOnTop(bool on) {
    setWindowFlag(Qt::WindowStaysOnTopHint, on);
}

} // namespace tolvex
