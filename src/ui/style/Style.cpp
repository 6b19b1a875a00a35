#include "ui/style/Style.h"

#include "ui/style/WheelGuard.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QStyleFactory>
#include <QSvgRenderer>

// Resources of a static library must be initialised explicitly, outside any namespace.
static void initIcons() {
    Q_INIT_RESOURCE(icons);
}

namespace tolvex {

namespace {

Scheme inForce = Scheme::Light;

const Tokens lightTokens = {
    QColor(0xf4f6f8), QColor(0xffffff), QColor(0xd6dbe1), QColor(0x7d8996), QColor(0x1f2933),
    QColor(0x5a6673), QColor(0x2a66d0), QColor(0xe9f0fd), QColor(0x237a47), QColor(0xe0a83a),
    QColor(0x8a5a00), QColor(0xfff8ec), QColor(0xb3261e),
};

const Tokens darkTokens = {
    QColor(0x171c22), QColor(0x20272f), QColor(0x3a444f), QColor(0x75818d), QColor(0xe6ebf0),
    QColor(0xa3afbb), QColor(0x82adff), QColor(0x26364f), QColor(0x6fd39a), QColor(0xe0a83a),
    QColor(0xf0c36a), QColor(0x33291a), QColor(0xff8f86),
};

QPalette paletteOf(const Tokens& t, Scheme scheme) {
    QPalette palette;
    palette.setColor(QPalette::Window, t.background);
    palette.setColor(QPalette::WindowText, t.text);
    palette.setColor(QPalette::Base, t.surface);
    palette.setColor(QPalette::AlternateBase, t.background);
    palette.setColor(QPalette::Text, t.text);
    palette.setColor(QPalette::PlaceholderText, t.quiet);
    palette.setColor(QPalette::Button, t.surface);
    palette.setColor(QPalette::ButtonText, t.text);
    palette.setColor(QPalette::BrightText, t.error);
    palette.setColor(QPalette::ToolTipBase, t.surface);
    palette.setColor(QPalette::ToolTipText, t.text);
    palette.setColor(QPalette::Highlight, scheme == Scheme::Light ? t.accent : QColor(0x2f5fae));
    palette.setColor(QPalette::HighlightedText, QColor(0xffffff));
    palette.setColor(QPalette::Link, t.accent);
    palette.setColor(QPalette::LinkVisited, t.accent);
    palette.setColor(QPalette::Light, t.surface);
    palette.setColor(QPalette::Midlight, t.background);
    palette.setColor(QPalette::Mid, t.line);
    palette.setColor(QPalette::Dark, t.line.darker(120));
    palette.setColor(QPalette::Shadow, t.line.darker(160));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, t.quiet);
    palette.setColor(QPalette::Disabled, QPalette::Base, t.background);
    palette.setColor(QPalette::Disabled, QPalette::Button, t.background);
    return palette;
}

// Sizes are in logical pixels and paddings in steps of 4; heights follow the font, so that larger text is
// never cut off.
constexpr const char* sheet = R"(
QDialogButtonBox { dialogbuttonbox-buttons-have-icons: 0; }
QPushButton { background: %surface%; color: %text%; border: 1px solid %line%; border-radius: 6px; padding: 5px 16px; }
QPushButton:hover { border-color: %accent%; }
QPushButton:focus { border: 2px solid %accent%; padding: 4px 15px; }
QPushButton:pressed { background: %accentSoft%; }
QPushButton:default { background: %button%; color: #ffffff; border-color: %button%; }
QPushButton:default:focus { border: 2px solid %text%; }
QPushButton:disabled { background: %background%; color: %quiet%; border-color: %line%; }
QLineEdit, QComboBox, QAbstractSpinBox { background: %surface%; color: %text%; border: 1px solid %line%;
    border-radius: 6px; padding: 5px 8px; selection-background-color: %selection%;
    selection-color: #ffffff; }
QLineEdit:focus, QComboBox:focus, QAbstractSpinBox:focus { border: 2px solid %accent%; padding: 4px 7px; }
QLineEdit:disabled, QLineEdit:read-only, QComboBox:disabled, QAbstractSpinBox:disabled {
    background: %background%; color: %quiet%; }
QLineEdit:disabled, QComboBox:disabled, QAbstractSpinBox:disabled { border: 1px dashed %edge%; }
QLineEdit[wrong="true"], QComboBox[wrong="true"], QAbstractSpinBox[wrong="true"], QPlainTextEdit[wrong="true"],
QAbstractItemView[wrong="true"], QPushButton[wrong="true"] { border: 2px solid %error%; }
QLineEdit[wrong="true"], QComboBox[wrong="true"], QAbstractSpinBox[wrong="true"] { padding: 4px 7px; }
QCheckBox[wrong="true"], QRadioButton[wrong="true"] { color: %error%; }
QCheckBox::indicator, QRadioButton::indicator { width: 1em; height: 1em; background: %surface%;
    border: 1px solid %edge%; }
QCheckBox::indicator { border-radius: 4px; }
QRadioButton::indicator { border-radius: 0.5em; }
QCheckBox::indicator:hover, QRadioButton::indicator:hover { border-color: %accent%; }
QCheckBox::indicator:checked { background: %button%; border-color: %button%; image: url(:/icons/check.svg); }
QRadioButton::indicator:checked { border-color: %button%;
    background: qradialgradient(cx: 0.5, cy: 0.5, radius: 0.5, fx: 0.5, fy: 0.5,
        stop: 0 #ffffff, stop: 0.4 #ffffff, stop: 0.5 %button%, stop: 1 %button%); }
QCheckBox::indicator:disabled, QRadioButton::indicator:disabled { background: %background%;
    border: 1px dashed %edge%; }
QCheckBox::indicator:checked:disabled { image: url(%checkOff%); }
QRadioButton::indicator:checked:disabled {
    background: qradialgradient(cx: 0.5, cy: 0.5, radius: 0.5, fx: 0.5, fy: 0.5,
        stop: 0 %quiet%, stop: 0.4 %quiet%, stop: 0.5 %background%, stop: 1 %background%); }
QCheckBox:disabled, QRadioButton:disabled, QLabel:disabled { color: %quiet%; }
QComboBox::drop-down { border: none; width: 24px; }
QComboBox::down-arrow { image: url(%chevron%); width: 12px; height: 12px; }
QAbstractItemView, QTextEdit, QPlainTextEdit, QTextBrowser { background: %surface%; color: %text%;
    border: 1px solid %line%; border-radius: 6px; selection-background-color: %selection%;
    selection-color: #ffffff; }
QAbstractItemView:focus, QTextEdit:focus, QPlainTextEdit:focus { border-color: %accent%; }
QGroupBox { border: none; margin-top: 8px; padding-top: 20px; }
QGroupBox::title { subcontrol-origin: margin; left: 0; top: 4px; color: %quiet%; }
QListView::item { padding: 4px 6px; }
QMenuBar { background: %background%; }
QMenuBar::item { padding: 6px 10px; border-radius: 6px; }
QMenuBar::item:selected { background: %accentSoft%; }
QMenu { background: %surface%; border: 1px solid %line%; padding: 4px; }
QMenu::item { padding: 6px 28px 6px 24px; border-radius: 4px; }
QMenu::item:selected { background: %accentSoft%; color: %text%; }
QMenu::item:disabled { color: %quiet%; }
QMenu::separator { height: 1px; background: %line%; margin: 4px 8px; }
QScrollArea { background: %surface%; border: 1px solid %line%; border-radius: 6px; }
QStatusBar { background: %background%; color: %quiet%; }
QStatusBar QLabel { color: %quiet%; padding: 4px 12px; }
QStatusBar::item { border: none; }
QToolTip { background: %surface%; color: %text%; border: 1px solid %line%; padding: 4px; }
QTabWidget::pane { border: 1px solid %line%; border-radius: 6px; background: %surface%; top: -1px; }
QTabBar::tab { padding: 8px 20px; color: %quiet%; border: 1px solid transparent;
    border-top-left-radius: 6px; border-top-right-radius: 6px; }
QTabBar::tab:selected { color: %accent%; background: %surface%; border-color: %line%;
    border-bottom-color: %surface%; }
QTabBar::tab:hover:!selected { color: %text%; }
QTabBar:focus { outline: none; }
QTabBar::tab:focus { border: 2px solid %accent%; }
QProgressBar { border: 1px solid %line%; border-radius: 6px; background: %surface%; text-align: center; }
QProgressBar::chunk { background: %accent%; border-radius: 5px; }
QHeaderView { border: none; }
QHeaderView::section { background: %background%; color: %quiet%; border: none;
    border-bottom: 1px solid %line%; padding: 6px 8px; }
)";

QString sheetFor(const Tokens& t, Scheme scheme) {
    const bool light = scheme == Scheme::Light;
    const QList<std::pair<QString, QString>> values = {
        {"%surface%", t.surface.name()},
        {"%background%", t.background.name()},
        {"%line%", t.line.name()},
        {"%edge%", t.edge.name()},
        {"%text%", t.text.name()},
        {"%quiet%", t.quiet.name()},
        {"%error%", t.error.name()},
        {"%accentSoft%", t.accentSoft.name()},
        {"%accent%", t.accent.name()},
        {"%button%", light ? t.accent.name() : QStringLiteral("#2f5fae")},
        {"%selection%", light ? t.accent.name() : QStringLiteral("#2f5fae")},
        {"%checkOff%", light ? QStringLiteral(":/icons/check-off-light.svg")
                             : QStringLiteral(":/icons/check-off-dark.svg")},
        {"%chevron%",
         light ? QStringLiteral(":/icons/chevron-light.svg") : QStringLiteral(":/icons/chevron-dark.svg")},
    };
    QString text = QString::fromLatin1(sheet);
    for (const auto& [name, value] : values)
        text.replace(name, value);
    return text;
}

class LineIconEngine : public QIconEngine {
public:
    LineIconEngine(QByteArray svg, QColor Tokens::*colour)
        : svg_(std::move(svg))
        , colour_(colour) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const QColor colour = mode == QIcon::Disabled   ? tokens().quiet
                              : mode == QIcon::Selected ? QColor(Qt::white)
                                                        : tokens().*colour_;
        QByteArray coloured = svg_;
        coloured.replace("currentColor", colour.name().toLatin1());
        QSvgRenderer(coloured).render(painter, rect);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return picture;
    }

    QIconEngine* clone() const override { return new LineIconEngine(*this); }

private:
    QByteArray svg_;
    QColor Tokens::*colour_;
};

} // namespace

const Tokens& TokensOf(Scheme scheme) {
    return scheme == Scheme::Light ? lightTokens : darkTokens;
}

const Tokens& tokens() {
    return TokensOf(inForce);
}

Scheme DesktopScheme(const QApplication& application) {
    const QPalette palette = application.palette();
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness()
               ? Scheme::Dark
               : Scheme::Light;
}

void ApplyStyle(QApplication& application, Scheme scheme) {
    initIcons();
    GuardWheel(application);
    inForce = scheme;
    application.setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    application.setPalette(paletteOf(TokensOf(scheme), scheme));
    QFont font = application.font();
    if (font.pointSizeF() < 10)
        font.setPointSizeF(10);
    application.setFont(font);
    application.setStyleSheet(sheetFor(TokensOf(scheme), scheme));
}

QIcon LineIcon(const QString& name, QColor Tokens::*colour) {
    initIcons();
    QFile file(QStringLiteral(":/icons/%1.svg").arg(name));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QIcon(new LineIconEngine(file.readAll(), colour));
}

} // namespace tolvex
