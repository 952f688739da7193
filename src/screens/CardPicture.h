#pragma once

#include <QString>
#include <QWidget>

namespace brimsett {

// The card last swiped, drawn as the desk knows it: the red and white card that never
// expires, a photo card still valid, the same card expired (stamped), or something that is
// not a health card (greyed). Under it a caption in the look's colour says which.
class CardPicture : public QWidget {
public:
    enum class Look { Empty, NoExpiry, Valid, Expired, Wrong };

    explicit CardPicture(QWidget* parent = nullptr);

    // number is printed as on the card ("1234-567-897 AB"), name under it.
    void showCard(Look look, const QString& number, const QString& name, const QString& caption);
    void clear() { showCard(Look::Empty, {}, {}, QStringLiteral("Swipe a health card")); }

    Look look() const { return m_look; }
    QString caption() const { return m_caption; }

    QSize sizeHint() const override { return {340, 250}; }
    QSize minimumSizeHint() const override { return {260, 200}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Look m_look = Look::Empty;
    QString m_number;
    QString m_name;
    QString m_caption;
};

}  // namespace brimsett
