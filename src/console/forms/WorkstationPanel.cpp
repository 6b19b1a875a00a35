#include "console/forms/WorkstationPanel.h"

#include "console/ConsoleJobs.h"
#include "console/WorkstationGlance.h"
#include "ui/style/Style.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tolvex {

namespace {

constexpr int PanelWidth = 272;

QLabel* makeLabel(const QString& text, const QColor& colour, bool wrap) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(wrap);
    label->setStyleSheet(QStringLiteral("color: %1;").arg(colour.name()));
    return label;
}

QString plainCaption(const ConsoleJob& job) {
    return QString::fromLatin1(job.caption).remove(u'&');
}

} // namespace

WorkstationPanel::WorkstationPanel(QWidget* parent)
    : QScrollArea(parent) {
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setFixedWidth(PanelWidth);
    setAccessibleName(QStringLiteral("This workstation"));
}

void WorkstationPanel::addHeading(const QString& text) {
    if (lines_->count() > 0)
        lines_->addSpacing(16);
    QLabel* heading = makeLabel(text, tokens().text, false);
    QFont font = heading->font();
    font.setPointSizeF(font.pointSizeF() * 1.1);
    font.setWeight(QFont::DemiBold);
    heading->setFont(font);
    lines_->addWidget(heading);
}

void WorkstationPanel::addFact(const QString& name, const QString& value, bool missing) {
    auto* row = new QHBoxLayout;
    row->addWidget(makeLabel(name, tokens().quiet, false));
    QLabel* text = makeLabel(value, missing ? tokens().error : tokens().text, true);
    text->setAlignment(Qt::AlignRight | Qt::AlignTop);
    row->addWidget(text, 1);
    lines_->addLayout(row);
}

void WorkstationPanel::addMark(const QString& text, const QColor& colour, const QString& sign) {
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    QLabel* mark = makeLabel(sign, colour, false);
    mark->setAlignment(Qt::AlignTop);
    row->addWidget(mark);
    row->addWidget(makeLabel(text, tokens().text, true), 1);
    lines_->addLayout(row);
}

void WorkstationPanel::showGlance(const WorkstationGlance& glance) {
    auto* content = new QWidget;
    content->setObjectName(QStringLiteral("pageGlance"));
    content->setStyleSheet(
        QStringLiteral("#pageGlance { background: %1; border-radius: 6px; }").arg(tokens().surface.name()));
    lines_ = new QVBoxLayout(content);
    lines_->setContentsMargins(16, 16, 16, 16);
    lines_->setSpacing(8);

    addHeading(QStringLiteral("This workstation"));
    for (const WorkstationGlance::Fact& fact : glance.facts)
        addFact(fact.name, fact.value, fact.missing);
    if (!glance.toDo.isEmpty()) {
        addHeading(QStringLiteral("Still to do"));
        for (const WorkstationGlance::ToDo& item : glance.toDo) {
            addMark(item.text, tokens().warningText, QStringLiteral("!"));
            const ConsoleJob* job = FindConsoleJob(item.control);
            if (!job)
                continue;
            auto* link = new QPushButton(plainCaption(*job) + QStringLiteral(" ›"));
            link->setFlat(true);
            link->setCursor(Qt::PointingHandCursor);
            link->setStyleSheet(
                QStringLiteral("QPushButton { color: %1; border: none; background: transparent;"
                               " text-align: left; padding: 2px 0 2px 14px; }"
                               "QPushButton:focus { text-decoration: underline; }")
                    .arg(tokens().accent.name()));
            connect(link, &QPushButton::clicked, this,
                    [this, control = item.control] { emit jobWanted(control); });
            lines_->addWidget(link);
        }
    }
    if (!glance.done.isEmpty()) {
        addHeading(QStringLiteral("Done"));
        for (const QString& text : glance.done)
            addMark(text, tokens().good, QStringLiteral("✓"));
    }
    lines_->addStretch(1);
    setWidget(content);
}

} // namespace tolvex
