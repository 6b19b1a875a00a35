#include "ui/help/frmHelp.h"

#include "ui/help/HelpFile.h"
#include "ui/style/FitForm.h"
#include "ui/style/OpenForms.h"
#include "ui/style/Style.h"
#include "ui_frmHelp.h"

#include <QKeyEvent>
#include <QPointer>
#include <QTreeWidget>

namespace tolvex {

namespace {

QString pageSheet() {
    const Tokens& t = tokens();
    return QStringLiteral(
               "body { color: %1; } a { color: %2; } h1 { font-size: 16pt; } h2 { font-size: 12pt; }"
               " th { text-align: left; color: %3; } td, th { padding: 3px 12px 3px 0; }"
               " code { background: %4; }")
        .arg(t.text.name(), t.accent.name(), t.quiet.name(), t.background.name());
}

constexpr int PageRole = Qt::UserRole;

} // namespace

frmHelp::frmHelp(std::unique_ptr<HelpFile> file, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , file_(std::move(file))
    , ui_(std::make_unique<Ui::frmHelp>()) {
    ui_->setupUi(this);
    EnterForm(this);
    ui_->splitHelp->setStretchFactor(0, 1);
    ui_->splitHelp->setStretchFactor(1, 3);
    ui_->txtPage->setFile(file_.get());
    ui_->txtPage->document()->setDefaultStyleSheet(pageSheet());
    ui_->txtPage->document()->setDocumentMargin(16);
    ui_->txtPage->setOpenExternalLinks(false);
    fillContents();
    connect(ui_->cmdBack, &QPushButton::clicked, ui_->txtPage, &QTextBrowser::backward);
    connect(ui_->cmdForward, &QPushButton::clicked, ui_->txtPage, &QTextBrowser::forward);
    connect(ui_->txtPage, &QTextBrowser::backwardAvailable, ui_->cmdBack, &QPushButton::setEnabled);
    connect(ui_->txtPage, &QTextBrowser::forwardAvailable, ui_->cmdForward, &QPushButton::setEnabled);
    connect(ui_->txtPage, &QTextBrowser::sourceChanged, this, &frmHelp::markCurrent);
    connect(ui_->treeContents, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        if (item)
            ui_->txtPage->setSource(QUrl(item->data(0, PageRole).toString()));
    });
    connect(ui_->txtFind, &QLineEdit::textChanged, this, [this](const QString& words) {
        ui_->txtPage->moveCursor(QTextCursor::Start);
        ui_->txtPage->find(words);
    });
    connect(ui_->txtFind, &QLineEdit::returnPressed, this, [this] {
        if (!ui_->txtPage->find(ui_->txtFind->text())) {
            ui_->txtPage->moveCursor(QTextCursor::Start);
            ui_->txtPage->find(ui_->txtFind->text());
        }
    });
    ui_->cmdBack->setEnabled(false);
    ui_->cmdForward->setEnabled(false);
}

frmHelp::~frmHelp() = default;

void frmHelp::fillContents() {
    QList<QTreeWidgetItem*> branch;
    for (const HelpFile::Entry& entry : file_->contents()) {
        auto* item = new QTreeWidgetItem({entry.title});
        item->setData(0, PageRole, entry.page);
        while (branch.size() > entry.level)
            branch.removeLast();
        if (branch.isEmpty())
            ui_->treeContents->addTopLevelItem(item);
        else
            branch.last()->addChild(item);
        branch.append(item);
    }
    ui_->treeContents->expandAll();
}

void frmHelp::markCurrent(const QUrl& source) {
    const QString page = source.path();
    for (QTreeWidgetItemIterator it(ui_->treeContents); *it; ++it) {
        if ((*it)->data(0, PageRole).toString() == page) {
            const QSignalBlocker quiet(ui_->treeContents);
            ui_->treeContents->setCurrentItem(*it);
        }
    }
}

void frmHelp::showContext(int context) {
    ui_->txtPage->setSource(QUrl(file_->pageOf(context)));
    ui_->txtPage->setFocus();
}

void frmHelp::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

bool ShowHelp(const QString& helpFile, int context) {
    static QPointer<frmHelp> window;
    // Beside a modal form only a separate window can be used.
    QWidget* const owner = QApplication::activeModalWidget();
    if (window && window->parentWidget() != owner)
        delete window;
    if (!window) {
        std::unique_ptr<HelpFile> file = HelpFile::open(helpFile);
        if (!file)
            return false;
        window = new frmHelp(std::move(file), owner);
        window->setAttribute(Qt::WA_DeleteOnClose);
        FitForm(window);
    }
    window->showContext(context);
    window->show();
    window->raise();
    window->activateWindow();
    return true;
}

} // namespace tolvex
