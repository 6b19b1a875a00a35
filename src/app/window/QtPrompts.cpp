#include "app/window/QtPrompts.h"

#include "app/window/ProgressBox.h"
#include "audio/forms/frmChooseAudioFormat.h"
#include "console/forms/frmMultiConfig.h"
#include "console/forms/frmSplash.h"
#include "core/settings/Settings.h"
#include "core/system/Product.h"
#include "platform/paths/Paths.h"
#include "ui/forms/frmGoodInputBox.h"
#include "ui/richtext/frmPrintPreview.h"
#include "ui/style/Colours.h"
#include "ui/style/FitForm.h"
#include "ui/style/Monitors.h"
#include "ui/style/Style.h"

#include <QApplication>
#include <QColorDialog>
#include <QDesktopServices>
#include <QFileDialog>
#include <QLayout>
#include <QMessageBox>
#include <QPrintDialog>
#include <QUrl>

namespace tolvex {

namespace {

using platform::Answer;
using platform::Buttons;

struct ButtonRow {
    Buttons buttons;
    QMessageBox::StandardButtons shown;
};
const ButtonRow buttonRows[] = {
    {Buttons::Ok, QMessageBox::Ok},
    {Buttons::OkCancel, QMessageBox::Ok | QMessageBox::Cancel},
    {Buttons::YesNo, QMessageBox::Yes | QMessageBox::No},
    {Buttons::YesNoCancel, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel},
};

struct AnswerRow {
    Answer answer;
    QMessageBox::StandardButton button;
};
constexpr AnswerRow answerRows[] = {
    {Answer::Ok, QMessageBox::Ok},
    {Answer::Cancel, QMessageBox::Cancel},
    {Answer::Yes, QMessageBox::Yes},
    {Answer::No, QMessageBox::No},
};

constexpr int MarkSize = 36;
constexpr int BoxMargin = 16;

struct MarkRow {
    platform::Icon icon;
    const char* name;
    QColor Tokens::*colour;
};
constexpr MarkRow markRows[] = {
    {platform::Icon::Stop, "stop", &Tokens::error},
    {platform::Icon::Question, "question", &Tokens::accent},
    {platform::Icon::Exclamation, "exclamation", &Tokens::warning},
    {platform::Icon::Information, "information", &Tokens::accent},
};

// "Programs|*.EXE;*.COM|All|*.*" in the form of Qt's choosers; names match in either case.
QString filterOf(const QString& filter) {
    const QStringList parts = filter.split(u'|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QStringList patterns;
        for (const QString& pattern :
             QString(parts[i + 1]).replace(u' ', u';').split(u';', Qt::SkipEmptyParts)) {
            const QString each = pattern == u"*.*" ? QStringLiteral("*") : pattern;
            patterns.append(each);
            if (each != each.toLower())
                patterns.append(each.toLower());
        }
        filters.append(parts[i] + QStringLiteral(" (") + patterns.join(u' ') + u')');
    }
    return filters.join(QStringLiteral(";;"));
}

QString hostFolder(const QString& windowsPath) {
    const QString host = platform::HostPath(windowsPath.isEmpty() ? platform::CurrentFolder() : windowsPath);
    return host.isEmpty() ? platform::HostPath(QStringLiteral("C:\\")) : host;
}

} // namespace

QtPrompts::QtPrompts(const Settings& settings)
    : settings_(settings) {}

QtPrompts::~QtPrompts() {
    delete splash_;
}

Answer QtPrompts::ask(const platform::Message& message) {
    QMessageBox box(QApplication::activeWindow());
    box.setWindowTitle(message.title.isEmpty() ? QString::fromLatin1(ProductName) : message.title);
    box.setTextFormat(Qt::PlainText);
    box.setText(message.text);
    box.setToolTip(message.toolTip);
    for (const MarkRow& row : markRows)
        if (row.icon == message.icon)
            box.setIconPixmap(LineIcon(QLatin1String(row.name), row.colour).pixmap(MarkSize, MarkSize));
    for (const ButtonRow& row : buttonRows)
        if (row.buttons == message.buttons)
            box.setStandardButtons(row.shown);
    box.layout()->setContentsMargins(BoxMargin, BoxMargin, BoxMargin, BoxMargin);
    if (message.buttons == Buttons::YesNo)
        box.setEscapeButton(QMessageBox::No);
    for (const AnswerRow& row : answerRows)
        if (message.defaultAnswer == row.answer)
            box.setDefaultButton(row.button);
    // A wait pointer over a question would be misleading.
    const platform::PointerKeeper pointer(platform::Pointer::Default);
    const int pressed = box.exec();
    for (const AnswerRow& row : answerRows)
        if (pressed == row.button)
            return row.answer;
    return Answer::Cancel;
}

std::optional<QString> QtPrompts::pickFile(const platform::FileQuestion& question) {
    QFileDialog chooser(QApplication::activeWindow(), question.title, hostFolder(question.folder),
                        filterOf(question.filter));
    chooser.setOption(QFileDialog::DontUseNativeDialog);
    chooser.setAcceptMode(question.saving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    chooser.setFileMode(question.mustExist && !question.saving ? QFileDialog::ExistingFile
                                                               : QFileDialog::AnyFile);
    chooser.setDefaultSuffix(question.defaultExtension);
    if (!question.fileName.isEmpty() && !question.fileName.contains(u'*'))
        chooser.selectFile(question.fileName);
    const platform::PointerKeeper pointer(platform::Pointer::Default);
    if (chooser.exec() != QDialog::Accepted || chooser.selectedFiles().isEmpty())
        return std::nullopt;
    return platform::WindowsPath(chooser.selectedFiles().front());
}

std::optional<QString> QtPrompts::pickFolder(const QString& prompt, const QString& start) {
    const platform::PointerKeeper pointer(platform::Pointer::Default);
    const QString chosen =
        QFileDialog::getExistingDirectory(QApplication::activeWindow(), prompt, hostFolder(start),
                                          QFileDialog::ShowDirsOnly | QFileDialog::DontUseNativeDialog);
    if (chosen.isEmpty())
        return std::nullopt;
    return platform::WindowsPath(chosen);
}

std::optional<QString> QtPrompts::askText(const QString& prompt, const QString& title,
                                          const QString& initial) {
    QString answer;
    if (GoodInputBox(prompt, title, initial, 0, answer, QApplication::activeWindow()))
        return std::nullopt;
    return answer;
}

std::optional<qint32> QtPrompts::pickColour(qint32 initial) {
    const QColor chosen =
        QColorDialog::getColor(ToColor(initial, QApplication::palette()), QApplication::activeWindow(), {},
                               QColorDialog::DontUseNativeDialog);
    if (!chosen.isValid())
        return std::nullopt;
    return FromColor(chosen);
}

std::optional<platform::WaveFormat> QtPrompts::pickWaveFormat(const platform::WaveFormat& initial) {
    frmChooseAudioFormat chooser(quint16(initial.tag), initial.channels, initial.rate,
                                 QApplication::activeWindow());
    FitForm(&chooser);
    const platform::PointerKeeper pointer(platform::Pointer::Default);
    const bool accepted = chooser.exec() == QDialog::Accepted;
    const std::optional<platform::AudioFormat> chosen = chooser.chosen();
    if (!accepted || !chosen)
        return std::nullopt;
    return platform::WaveFormat{qint16(chosen->tag), qint16(chosen->channels), chosen->rate};
}

bool QtPrompts::pickPrinter(QPrinter& printer, bool withSelection) {
    QPrintDialog chooser(&printer, QApplication::activeWindow());
    chooser.setOption(QAbstractPrintDialog::PrintSelection, withSelection);
    chooser.setOption(QAbstractPrintDialog::PrintPageRange, false);
    return chooser.exec() == QDialog::Accepted;
}

std::unique_ptr<platform::Progress> QtPrompts::beginProgress(const QString& title, bool canStop) {
    return std::make_unique<ProgressBox>(title, canStop, QApplication::activeWindow());
}

void QtPrompts::setPointer(platform::Pointer pointer) {
    if (pointer == pointer_)
        return;
    pointer_ = pointer;
    if (pointer == platform::Pointer::Wait)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

void QtPrompts::splash(const QString& status) {
    if (!splash_) {
        splash_ = new frmSplash(settings_.OSVersion);
        FitForm(splash_);
        clsMonitors().CenterFormOnMonitor(splash_);
        splash_->show();
    }
    splash_->setCurrentAction(status);
    processEvents();
}

void QtPrompts::hideSplash() {
    delete splash_;
}

void QtPrompts::showUpdateNotice(const QString& file, const QString& caption) {
    frmPrintPreview notice;
    notice.setWindowTitle(caption);
    notice.LoadFile(file);
    const platform::PointerKeeper pointer(platform::Pointer::Default);
    notice.show();
    while (notice.isVisible())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

QString QtPrompts::chooseConfigurationSet(const QString& registryKey, const QString& defaultIni) {
    frmMultiConfig form(registryKey, defaultIni);
    form.exec();
    return form.chosen();
}

void QtPrompts::openAddress(const QString& address) {
    QDesktopServices::openUrl(QUrl(address));
}

void QtPrompts::processEvents() {
    QCoreApplication::processEvents();
}

} // namespace tolvex
