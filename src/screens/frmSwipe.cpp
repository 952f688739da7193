#include "screens/frmSwipe.h"

#include "foundation/Clock.h"
#include "hcv/CardExchange.h"
#include "hcv/SwipeMatch.h"
#include "patients/PatientEntry.h"
#include "screens/CardPicture.h"
#include "screens/CardReaderKeys.h"
#include "screens/PatientScreens.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"
#include "screens/frmPatients.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace brimsett {

namespace {

const QString kNotAvailable = QStringLiteral("(n/a)");

// The card's values as the screen lists them, caption and text.
QList<std::pair<QString, QString>> fieldsOf(const hcv::SwipedCard& card) {
    return {{QStringLiteral("Health number:"), card.healthNum},
            {QStringLiteral("Version code:"), card.versionCode},
            {QStringLiteral("Last name:"), card.lastName},
            {QStringLiteral("First name:"), card.firstName},
            {QStringLiteral("Middle name:"), card.middleName},
            {QStringLiteral("Expiry:"), card.expiry},
            {QStringLiteral("Sex:"), card.sex},
            {QStringLiteral("Birth date:"), hcv::birthDateShown(card.dob)},
            {QStringLiteral("Card date:"), card.cardDate}};
}

// "1234-567-897 AB", grouped as printed on the card.
QString printedNumber(const hcv::SwipedCard& card) {
    const QString& n = card.healthNum;
    QString grouped = n.size() == 10
                          ? n.left(4) + QLatin1Char('-') + n.mid(4, 3) + QLatin1Char('-') + n.mid(7)
                          : n;
    if (!card.versionCode.isEmpty()) {
        grouped += QLatin1Char(' ') + card.versionCode;
    }
    return grouped;
}

QString nameOnCard(const hcv::SwipedCard& card) {
    QStringList given{card.firstName, card.middleName};
    given.removeAll(QString());
    const QString first = given.join(QLatin1Char(' '));
    return first.isEmpty() ? card.lastName : card.lastName + QStringLiteral(", ") + first;
}

QPushButton* actionButton(QWidget* parent, const char* name, const QString& caption) {
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(QString::fromLatin1(name));
    button->setAutoDefault(true);  // Enter presses the button that has the focus
    return button;
}

}  // namespace

frmSwipe::frmSwipe(const HcvScreenParts& parts)
    : QWidget(parts.parent, Qt::Window),
      m_parts{parts.db,
              parts.settings,
              parts.store,
              parts.log,
              ScreenPrompter::attach(parts.prompter, this),
              parts.clock,
              parts.exchange,
              parts.patients,
              parts.officeFolder,
              parts.parent} {
    setWindowTitle(kTitle);

    m_text = new QLineEdit(this);
    m_text->setObjectName(QStringLiteral("txtSwipe"));
    m_text->setPlaceholderText(QStringLiteral("%B6100541234567897^SMITH/MARY ANN^..."));
    auto* textLabel = new QLabel(QStringLiteral("S&wipe text:"), this);
    textLabel->setBuddy(m_text);
    auto* hint = new QLabel(
        QStringLiteral("Swipe the card anywhere in this window, or type its stripe and press "
                       "Enter."),
        this);
    hint->setStyleSheet(QStringLiteral("color: #555555"));
    connect(m_text, &QLineEdit::returnPressed, this, guarded(this, &frmSwipe::swipeTyped));

    m_picture = new CardPicture(this);
    m_picture->setObjectName(QStringLiteral("cardPicture"));
    m_pages = new QStackedWidget(this);
    m_pages->addWidget(buildFields());
    m_pages->addWidget(buildWrongCard());

    m_outcome = new QLabel(this);
    m_outcome->setObjectName(QStringLiteral("lblOutcome"));
    m_outcome->setWordWrap(true);
    m_outcome->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_appointment = new QLabel(this);
    m_appointment->setObjectName(QStringLiteral("lblAppointment"));
    m_appointment->setWordWrap(true);
    m_appointment->setStyleSheet(QStringLiteral("font-weight: bold"));

    m_open = actionButton(this, "cmdOpenPatient", QStringLiteral("&Open Patient"));
    m_new = actionButton(this, "cmdNewPatient", QStringLiteral("&New Patient"));
    auto* clearButton = actionButton(this, "cmdClear", QStringLiteral("&Clear"));
    auto* close = actionButton(this, "cmdClose", QStringLiteral("C&lose"));
    close->setToolTip(QStringLiteral("Esc"));
    connect(m_open, &QPushButton::clicked, this, guarded(this, &frmSwipe::openPatient));
    connect(m_new, &QPushButton::clicked, this, guarded(this, &frmSwipe::newPatient));
    connect(clearButton, &QPushButton::clicked, this, guarded(this, &frmSwipe::clear));
    connect(close, &QPushButton::clicked, this, guarded(this, &QWidget::close));
    connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this,
            guarded(this, &QWidget::close));

    auto* textRow = new QHBoxLayout;
    textRow->addWidget(textLabel);
    textRow->addWidget(m_text, 1);
    auto* cardRow = new QHBoxLayout;
    cardRow->addWidget(m_picture, 1);
    cardRow->addSpacing(12);
    cardRow->addWidget(m_pages, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_open);
    buttons->addWidget(m_new);
    buttons->addWidget(clearButton);
    buttons->addStretch();
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(textRow);
    layout->addWidget(hint);
    layout->addSpacing(6);
    layout->addLayout(cardRow, 1);
    layout->addSpacing(6);
    layout->addWidget(m_outcome);
    layout->addWidget(m_appointment);
    layout->addStretch();
    layout->addLayout(buttons);

    auto* reader =
        new CardReaderKeys(this, guarded(this, [this](const QString& burst) { swipe(burst); }));
    reader->leaveAlone(m_text);  // what is typed there is taken with Enter, as it is shown

    clear();
    resize(780, 460);
}

QWidget* frmSwipe::buildFields() {
    auto* box = new QGroupBox(QStringLiteral("Card"), this);
    auto* form = new QFormLayout(box);
    form->setLabelAlignment(Qt::AlignRight);
    for (const auto& [caption, value] : fieldsOf({})) {
        auto* shown = new QLabel(box);
        shown->setTextInteractionFlags(Qt::TextSelectableByMouse);
        form->addRow(caption, shown);
        m_values << shown;
    }
    const QStringList names{"lblHealthNum", "lblVersion",    "lblLastName",
                            "lblFirstName", "lblMiddleName", "lblExpiry",
                            "lblSex",       "lblBirthDate",  "lblCardDate"};
    for (int i = 0; i < m_values.size(); ++i) {
        m_values[i]->setObjectName(names.value(i));
    }
    return box;
}

QWidget* frmSwipe::buildWrongCard() {
    auto* box = new QGroupBox(QStringLiteral("Not read"), this);
    box->setObjectName(QStringLiteral("wrongCard"));
    auto* layout = new QVBoxLayout(box);
    m_problem = new QLabel(box);
    m_problem->setObjectName(QStringLiteral("lblProblem"));
    m_problem->setWordWrap(true);
    m_problem->setStyleSheet(QStringLiteral("color: #b71c1c; font-weight: bold"));
    auto* again = new QLabel(
        QStringLiteral("Nothing was changed. Swipe the card again, or type its stripe above."),
        box);
    again->setWordWrap(true);
    layout->addWidget(m_problem);
    layout->addWidget(again);
    layout->addStretch();
    return box;
}

hcv::SwipeResult frmSwipe::swipe(const QString& text) {
    const hcv::SwipeResult read = hcv::parseSwipe(text);
    if (read.kind != hcv::SwipeResult::Kind::Card) {
        showWrongCard(read.problem);
        if (read.kind != hcv::SwipeResult::Kind::NotHealthCard) {
            m_parts.prompter.tell(QStringLiteral("Error"), read.problem, Icon::Warning);
        }
        return read;
    }
    showCard(read.card);

    // With polling on, the register is asked about the card as soon as it is read.
    std::optional<hcv::CardExchange::Outcome> sent;
    hcv::SwipeMatch match(
        m_parts.db, m_parts.settings, m_parts.prompter, m_parts.clock, m_parts.log,
        m_parts.exchange.pollingOn(),
        [this, &sent](const QString& healthNum, const QString& versionCode) {
            sent = m_parts.exchange.RequestCardCheck(healthNum, versionCode, false).outcome;
        });
    const hcv::SwipeOutcome outcome = match.match(read.card);
    m_patientId = outcome.patientId;
    QStringList lines = outcome.lines;
    if (sent == hcv::CardExchange::Outcome::Written) {
        lines << QStringLiteral("The card was sent to be checked.");
    } else if (sent == hcv::CardExchange::Outcome::AnsweredToday) {
        lines << QStringLiteral("The card was checked today already.");
    }
    showOutcome(lines, outcome.appointmentLine);
    updateButtons();
    (m_patientId ? m_open : m_new)->setFocus();
    return read;
}

void frmSwipe::showCard(const hcv::SwipedCard& card) {
    m_card = card;
    m_patientId.reset();
    const QList<std::pair<QString, QString>> fields = fieldsOf(card);
    for (int i = 0; i < m_values.size(); ++i) {
        const QString value = fields.value(i).second;
        m_values[i]->setText(value.isEmpty() ? kNotAvailable : value);
    }
    switch (hcv::cardState(card, m_parts.clock.today())) {
        case hcv::CardState::NoExpiry:
            m_picture->showCard(CardPicture::Look::NoExpiry, printedNumber(card), nameOnCard(card),
                                QStringLiteral("No expiry date"));
            break;
        case hcv::CardState::Valid:
            m_picture->showCard(CardPicture::Look::Valid, printedNumber(card), nameOnCard(card),
                                QStringLiteral("Valid to ") + card.expiry);
            break;
        case hcv::CardState::Expired:
            m_picture->showCard(CardPicture::Look::Expired, printedNumber(card), nameOnCard(card),
                                QStringLiteral("Expired ") + card.expiry);
            break;
    }
    m_pages->setCurrentIndex(0);
    showOutcome({}, {});
    updateButtons();
}

void frmSwipe::showOutcome(const QStringList& lines, const QString& appointment) {
    m_outcome->setText(lines.join(QLatin1Char('\n')));
    m_appointment->setText(appointment);
}

void frmSwipe::showWrongCard(const QStringList& problem) {
    m_card.reset();
    m_patientId.reset();
    m_problem->setText(problem.join(QLatin1Char('\n')));
    m_picture->showCard(CardPicture::Look::Wrong, {}, {}, problem.value(0));
    m_pages->setCurrentIndex(1);
    showOutcome({}, {});
    updateButtons();
}

void frmSwipe::clear() {
    m_card.reset();
    m_patientId.reset();
    m_text->clear();
    for (QLabel* value : std::as_const(m_values)) {
        value->clear();
    }
    m_picture->clear();
    m_pages->setCurrentIndex(0);
    showOutcome({}, {});
    updateButtons();
    m_text->setFocus();
}

void frmSwipe::swipeTyped() {
    const QString typed = m_text->text().trimmed();
    if (typed.isEmpty()) {
        return;
    }
    swipe(typed);
    m_text->selectAll();  // the next card typed replaces it
}

void frmSwipe::openPatient() {
    if (!m_patientId) {
        return;
    }
    frmPatients& window = m_parts.patients.show();
    if (window.mayLeaveCurrent()) {
        window.showPatient(*m_patientId);
    }
}

void frmSwipe::newPatient() {
    if (!m_card || m_patientId) {
        return;
    }
    PatientEntry entry;
    entry.healthNum = m_card->healthNum;
    entry.versionCode = m_card->versionCode;
    entry.expYear = m_card->expiry;
    entry.lName = m_card->lastName;
    entry.fName = m_card->firstName;
    entry.dob = m_card->dob;
    entry.sex = m_card->sex;
    entry.province = QStringLiteral("ON");
    frmPatients& window = m_parts.patients.show();
    if (window.mayLeaveCurrent()) {
        window.startNew(entry);
    }
}

void frmSwipe::updateButtons() {
    m_open->setEnabled(m_patientId.has_value());
    m_new->setEnabled(m_card.has_value() && !m_patientId);
}

}  // namespace brimsett
