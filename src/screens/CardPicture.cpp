#include "screens/CardPicture.h"

#include <QFontDatabase>
#include <QPainter>
#include <QPainterPath>

namespace brimsett {

namespace {

// Each look's colours: the card, its band, the band's text, and the caption under the card.
struct Colours {
    QColor card;
    QColor band;
    QColor bandText;
    QColor caption;
};

Colours coloursOf(CardPicture::Look look) {
    switch (look) {
        case CardPicture::Look::NoExpiry:
            return {Qt::white, QColor(0xc6, 0x28, 0x28), Qt::white, QColor(0x1a, 0x3c, 0x8c)};
        case CardPicture::Look::Valid:
            return {QColor(0xe3, 0xf2, 0xe0), QColor(0x2e, 0x7d, 0x32), Qt::white,
                    QColor(0x1b, 0x5e, 0x20)};
        case CardPicture::Look::Expired:
            return {QColor(0xee, 0xee, 0xe6), QColor(0x8d, 0x99, 0x8d), Qt::white,
                    QColor(0xb7, 0x1c, 0x1c)};
        case CardPicture::Look::Wrong:
            return {QColor(0xdd, 0xdd, 0xdd), QColor(0x9e, 0x9e, 0x9e), QColor(0xf5, 0xf5, 0xf5),
                    QColor(0x61, 0x61, 0x61)};
        case CardPicture::Look::Empty:
            break;
    }
    return {Qt::transparent, Qt::transparent, Qt::transparent, QColor(0x75, 0x75, 0x75)};
}

void drawStamp(QPainter& p, const QRectF& card) {
    p.save();
    p.translate(card.center());
    p.rotate(-18);
    QFont font = p.font();
    font.setBold(true);
    font.setPixelSize(qRound(card.height() * 0.2));
    p.setFont(font);
    const QString text = QStringLiteral("EXPIRED");
    const QRectF box = QFontMetricsF(font).boundingRect(text).adjusted(-10, -4, 10, 4);
    const QRectF stamp(-box.width() / 2, -box.height() / 2, box.width(), box.height());
    p.setPen(QPen(QColor(0xc6, 0x28, 0x28, 220), 3));
    p.setBrush(QColor(255, 255, 255, 150));
    p.drawRoundedRect(stamp, 4, 4);
    p.drawText(stamp, Qt::AlignCenter, text);
    p.restore();
}

}  // namespace

CardPicture::CardPicture(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    clear();
}

void CardPicture::showCard(Look look, const QString& number, const QString& name,
                           const QString& caption) {
    m_look = look;
    m_number = number;
    m_name = name;
    m_caption = caption;
    setAccessibleDescription(caption);
    update();
}

void CardPicture::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const Colours colours = coloursOf(m_look);

    // The caption's line below, the card above it in a health card's proportions.
    QFont captionFont = font();
    captionFont.setBold(m_look != Look::Empty);
    captionFont.setPointSizeF(captionFont.pointSizeF() * 1.1);
    const int captionHeight = QFontMetrics(captionFont).height() + 8;
    const QRectF room = QRectF(rect()).adjusted(4, 4, -4, -4 - captionHeight);
    const double width = std::min(room.width(), room.height() * 1.586);
    const QRectF card(room.left() + (room.width() - width) / 2, room.top(), width, width / 1.586);
    const double radius = card.height() * 0.07;

    p.setFont(captionFont);
    p.setPen(colours.caption);
    p.drawText(QRectF(rect().left(), card.bottom() + 4, rect().width(), captionHeight),
               Qt::AlignHCenter | Qt::AlignTop | Qt::TextSingleLine, m_caption);

    if (m_look == Look::Empty) {
        p.setPen(QPen(QColor(0x9e, 0x9e, 0x9e), 2, Qt::DashLine));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(card, radius, radius);
        return;
    }

    QPainterPath outline;
    outline.addRoundedRect(card, radius, radius);
    p.fillPath(outline, colours.card);
    p.save();
    p.setClipPath(outline);
    const QRectF band(card.left(), card.top(), card.width(), card.height() * 0.24);
    p.fillRect(band, colours.band);
    QFont bandFont = font();
    bandFont.setBold(true);
    bandFont.setPixelSize(qRound(band.height() * 0.45));
    p.setFont(bandFont);
    p.setPen(colours.bandText);
    p.drawText(
        band.adjusted(card.width() * 0.05, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
        m_look == Look::Wrong ? QStringLiteral("UNKNOWN CARD") : QStringLiteral("HEALTH CARD"));
    p.restore();
    p.setPen(QPen(colours.band.darker(120), 1.5));
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(card, radius, radius);

    const double left = card.left() + card.width() * 0.06;
    const double textWidth = card.width() * 0.88;
    const QColor ink = m_look == Look::Wrong ? QColor(0x75, 0x75, 0x75) : QColor(0x21, 0x21, 0x21);
    if (m_look == Look::Wrong) {
        QFont mark = font();
        mark.setBold(true);
        mark.setPixelSize(qRound(card.height() * 0.4));
        p.setFont(mark);
        p.setPen(QColor(0x9e, 0x9e, 0x9e));
        p.drawText(card.adjusted(0, band.height(), 0, 0), Qt::AlignCenter, QStringLiteral("?"));
        return;
    }

    QFont numberFont = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    numberFont.setBold(true);
    numberFont.setPixelSize(qRound(card.height() * 0.13));
    p.setFont(numberFont);
    p.setPen(ink);
    const QRectF numberLine(left, card.top() + card.height() * 0.36, textWidth,
                            card.height() * 0.18);
    p.drawText(numberLine, Qt::AlignLeft | Qt::AlignVCenter, m_number);

    QFont nameFont = font();
    nameFont.setPixelSize(qRound(card.height() * 0.1));
    p.setFont(nameFont);
    const QRectF nameLine(left, numberLine.bottom() + card.height() * 0.06, textWidth,
                          card.height() * 0.3);
    p.drawText(nameLine, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, m_name);

    if (m_look == Look::Expired) {
        drawStamp(p, card);
    }
}

}  // namespace brimsett
