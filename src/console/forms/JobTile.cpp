#include "console/forms/JobTile.h"

#include "ui/style/Style.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionButton>

namespace tolvex {

namespace {

constexpr int Padding = 16;
constexpr int Air = 8;    // above and below, more than the padding
constexpr int Badge = 48; // the square behind the icon
constexpr int IconSize = 24;
constexpr int Radius = 6;
constexpr int LineGap = 4;

} // namespace

JobTile::JobTile(QWidget* parent)
    : QPushButton(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    setAttribute(Qt::WA_Hover);
    setAutoDefault(false);
}

void JobTile::setAbout(const QString& about) {
    about_ = about;
    setAccessibleDescription(about);
    updateGeometry();
    update();
}

void JobTile::setAttention(bool attention) {
    attention_ = attention;
    update();
}

QFont JobTile::captionFont() const {
    QFont bold = font();
    bold.setPointSizeF(font().pointSizeF() * 1.1);
    bold.setWeight(QFont::DemiBold);
    return bold;
}

QSize JobTile::sizeHint() const {
    const QFontMetrics caption(captionFont());
    const QFontMetrics line(font());
    const int text =
        std::max(caption.size(Qt::TextShowMnemonic, this->text()).width(), line.horizontalAdvance(about_));
    const int height = std::max(Badge, caption.height() + LineGap + line.height());
    return {Padding * 3 + Badge + text, (Padding + Air) * 2 + height};
}

QSize JobTile::minimumSizeHint() const {
    // The caption must fit; the quiet line may be shortened.
    const QFontMetrics caption(captionFont());
    return {Padding * 3 + Badge + caption.size(Qt::TextShowMnemonic, text()).width(), sizeHint().height()};
}

void JobTile::paintEvent(QPaintEvent*) {
    const Tokens& t = tokens();
    const bool attention = attention_ && isEnabled();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);

    const QRectF card = QRectF(rect()).adjusted(1, 1, -1, -1);
    const QColor edge = attention ? t.warning : underMouse() && isEnabled() ? t.accent : t.line;
    painter.setPen(hasFocus() ? QPen(t.accent, 2) : QPen(edge, 1));
    painter.setBrush(attention     ? t.warningSoft
                     : isDown()    ? t.accentSoft
                     : isEnabled() ? t.surface
                                   : t.background);
    painter.drawRoundedRect(card, Radius, Radius);

    const QRect badge(Padding, (height() - Badge) / 2, Badge, Badge);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isEnabled() ? t.accentSoft : t.background);
    painter.drawRoundedRect(badge, Radius, Radius);
    const QRect picture(badge.center().x() - IconSize / 2 + 1, badge.center().y() - IconSize / 2 + 1,
                        IconSize, IconSize);
    icon().paint(&painter, picture, Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled);

    const QFontMetrics caption(captionFont());
    const QFontMetrics line(font());
    const int lines = caption.height() + LineGap + line.height();
    const int left = badge.right() + Padding;
    const QRect captionRect(left, (height() - lines) / 2, width() - left - Padding, caption.height());
    const QRect lineRect(left, captionRect.bottom() + 1 + LineGap, captionRect.width(), line.height());
    painter.setFont(captionFont());
    painter.setPen(isEnabled() ? t.text : t.quiet);
    painter.drawText(captionRect, Qt::AlignVCenter | Qt::TextShowMnemonic, text());
    painter.setFont(font());
    painter.setPen(attention ? t.warningText : t.quiet);
    painter.drawText(lineRect, Qt::AlignVCenter, line.elidedText(about_, Qt::ElideRight, lineRect.width()));
}

} // namespace tolvex
