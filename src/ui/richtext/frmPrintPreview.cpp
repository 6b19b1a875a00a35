#include "ui/richtext/frmPrintPreview.h"

#include "core/report/ProblemReport.h"
#include "platform/CodePage.h"
#include "platform/Prompts.h"
#include "platform/files/Files.h"
#include "ui/richtext/RichText.h"
#include "ui/style/Monitors.h"
#include "ui/style/OpenForms.h"
#include "ui_frmPrintPreview.h"

#include <QKeyEvent>
#include <QPrinter>
#include <QScreen>
#include <QTextDocumentFragment>

#include <utility>

namespace tolvex {

namespace {

constexpr qint64 LongestFile = 32 << 20;

bool isPagingKey(int key) {
    switch (key) {
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_End:
    case Qt::Key_Home:
    case Qt::Key_Left:
    case Qt::Key_Up:
    case Qt::Key_Right:
    case Qt::Key_Down:
        return true;
    default:
        return false;
    }
}

} // namespace

frmPrintPreview::frmPrintPreview(QWidget* parent)
    : QDialog(parent)
    , ui_(std::make_unique<Ui::frmPrintPreview>()) {
    ui_->setupUi(this);
    EnterForm(this);
    HideFolder();
    for (QObject* child : findChildren<QWidget*>())
        child->installEventFilter(this);
    connect(ui_->cmdDone, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui_->cmdPrint, &QPushButton::clicked, this, &frmPrintPreview::print);
    connect(ui_->cmdSave, &QPushButton::clicked, this, &frmPrintPreview::save);
    connect(ui_->listFiles, &QListWidget::currentRowChanged, this, &frmPrintPreview::choose);
}

frmPrintPreview::~frmPrintPreview() = default;

void frmPrintPreview::DisplayFolder(const QString& folder, const QString& extension) {
    folder_ = folder;
    extension_ = extension;
    const QString ending = u'.' + extension;
    ui_->listFiles->clear();
    for (const QString& name : platform::FolderNames(folder))
        if (name.endsWith(ending, Qt::CaseInsensitive) && platform::FileExists(folder + u'\\' + name))
            ui_->listFiles->addItem(name.chopped(ending.size()));
    ui_->listFiles->setVisible(true);
    ui_->listFiles->setCurrentRow(0);
}

void frmPrintPreview::HideFolder() {
    ui_->listFiles->setVisible(false);
}

void frmPrintPreview::choose(int row) {
    if (row >= 0)
        LoadFile(folder_ + u'\\' + ui_->listFiles->item(row)->text() + u'.' + extension_);
}

void frmPrintPreview::SetTextDisplay(bool flag) {
    textDisplay_ = flag;
}

void frmPrintPreview::LoadFile(const QString& path) {
    fileName_ = path;
    if (path.isEmpty())
        return;
    ui_->rtfFile->clear();
    contents_ = platform::ReadWholeFile(path, LongestFile).value_or(QByteArray());
    if (!textDisplay_ && IsRichText(contents_)) {
        LoadRichText(contents_, *ui_->rtfFile->document());
        ui_->rtfFile->moveCursor(QTextCursor::Start);
    } else {
        ui_->rtfFile->setPlainText(platform::FromCodePage(contents_));
    }
}

void frmPrintPreview::ShowText(const QString& text) {
    fileName_.clear();
    contents_ = platform::ToCodePage(text);
    ui_->rtfFile->setPlainText(text);
}

void frmPrintPreview::print() {
    QPrinter printer;
    printer.setCopyCount(1);
    if (!platform::prompts().pickPrinter(printer, ui_->rtfFile->textCursor().hasSelection()))
        return;
    if (printer.printRange() != QPrinter::Selection)
        ui_->rtfFile->selectAll();
    const std::unique_ptr<QTextDocument> document(ui_->rtfFile->document()->clone());
    if (printer.printRange() == QPrinter::Selection) {
        document->clear();
        QTextCursor(document.get()).insertFragment(ui_->rtfFile->textCursor().selection());
    }
    document->setDefaultFont(QFont(QStringLiteral("Courier"), 10));
    document->print(&printer);
    if (printer.printerState() == QPrinter::Error || !printer.isValid())
        ProblemReport(QStringLiteral("while printing."), platform::DeviceIoError);
}

void frmPrintPreview::save() {
    platform::FileQuestion question;
    question.title = QStringLiteral("Select File to Save to");
    question.filter = QStringLiteral("All Files|*.*");
    question.fileName = QStringLiteral("*.*");
    question.mustExist = false;
    question.saving = true;
    const std::optional<QString> chosen = platform::prompts().pickFile(question);
    if (!chosen || chosen->trimmed().isEmpty())
        return;
    // The file's own bytes: a copy of rich text keeps all its formatting.
    if (const int error = platform::ReplaceWholeFile(chosen->trimmed(), contents_))
        ProblemReport(QStringLiteral("saving the file ") + chosen->trimmed(), error);
}

void frmPrintPreview::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (std::exchange(shown_, true))
        return;
    // Most of the screen's height unless a size was chosen, so that a notice needs little scrolling.
    if (!testAttribute(Qt::WA_Resized))
        resize(width(), screen()->availableGeometry().height() * 3 / 4);
    clsMonitors().CenterFormOnMonitor(this, parentWidget());
    if (contents_.isEmpty())
        LoadFile(fileName_);
    ui_->rtfFile->setFocus();
}

bool frmPrintPreview::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && watched != ui_->rtfFile && watched != ui_->rtfFile->viewport()) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (isPagingKey(key->key())) {
            QCoreApplication::sendEvent(ui_->rtfFile, key);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace tolvex
