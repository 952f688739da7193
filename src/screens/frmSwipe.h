#pragma once

#include "hcv/SwipeCard.h"
#include "screens/HcvScreens.h"

#include <QWidget>

#include <optional>

class QLabel;
class QLineEdit;
class QPushButton;
class QStackedWidget;

namespace brimsett {

class CardPicture;

// "Swipe Health Card": a card swiped through the reader (or its stripe typed in the box) is
// read by hcv::parseSwipe and matched to the register by hcv::SwipeMatch; the screen shows
// the card, what was done with the patient, and today's appointment. The reader's keys are
// taken wherever the focus is while the window is active (CardReaderKeys).
//
// Keys: Enter in the box takes its text; Alt+O opens the patient found, Alt+N starts a new
// one from the card, Alt+C clears, Esc closes.
class frmSwipe : public QWidget {
    Q_OBJECT

public:
    static inline const QString kTitle = QStringLiteral("Swipe Health Card");

    // The window belongs to parts.parent.
    explicit frmSwipe(const HcvScreenParts& parts);

    // Takes a card's stripe as the reader typed it. A stripe that is not a health card shows
    // what is wrong and changes nothing.
    hcv::SwipeResult swipe(const QString& text);
    // The register's patient of the card shown; none for a new one or no card.
    std::optional<qint64> patientId() const { return m_patientId; }

private:
    QWidget* buildFields();
    QWidget* buildWrongCard();
    void showCard(const hcv::SwipedCard& card);
    void showOutcome(const QStringList& lines, const QString& appointment);
    void showWrongCard(const QStringList& problem);
    void clear();
    void swipeTyped();
    void openPatient();
    void newPatient();
    void updateButtons();

    HcvScreenParts m_parts;  // its prompter is the window's own
    std::optional<hcv::SwipedCard> m_card;
    std::optional<qint64> m_patientId;

    QLineEdit* m_text = nullptr;
    CardPicture* m_picture = nullptr;
    QStackedWidget* m_pages = nullptr;
    QList<QLabel*> m_values;  // in the order of fieldsOf()
    QLabel* m_problem = nullptr;
    QLabel* m_outcome = nullptr;
    QLabel* m_appointment = nullptr;
    QPushButton* m_open = nullptr;
    QPushButton* m_new = nullptr;
};

}  // namespace brimsett
