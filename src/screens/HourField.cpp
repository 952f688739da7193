#include "screens/HourField.h"

#include "appointments/AppointmentTime.h"
#include "appointments/BookHours.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QRegularExpressionValidator>

namespace brimsett {

HourField::HourField(QWidget* parent) : QWidget(parent) {
    m_hour = new QLineEdit(this);
    m_hour->setMaxLength(2);
    m_hour->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("\\d{0,2}")), m_hour));
    m_hour->setAlignment(Qt::AlignRight);
    m_hour->setFixedWidth(m_hour->fontMetrics().horizontalAdvance(QStringLiteral("000")) + 12);
    m_half = new QLineEdit(QStringLiteral("am"), this);
    m_half->setReadOnly(true);
    m_half->setFixedWidth(m_half->fontMetrics().horizontalAdvance(QStringLiteral("pmm")) + 12);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
    row->addWidget(m_hour);
    row->addWidget(m_half);
    m_hour->installEventFilter(this);
    m_half->installEventFilter(this);
    connect(m_hour, &QLineEdit::textEdited, this, [this](const QString& text) {
        const QString fixed = appointments::typedHour(text);
        if (fixed != text) {
            m_hour->setText(fixed);
        }
        emit edited();
    });
}

std::optional<int> HourField::hour() const {
    bool ok = false;
    const int hour = m_hour->text().trimmed().toInt(&ok);
    if (!ok || hour < 1 || hour > 12) {
        return std::nullopt;
    }
    return appointments::hour24(hour, m_half->text() == QLatin1String("pm"));
}

void HourField::setHour(int hour24) {
    m_hour->setText(appointments::Hour12(hour24));
    m_half->setText(appointments::AmPm(hour24));
}

void HourField::setPm(bool pm) {
    const QString half = pm ? QStringLiteral("pm") : QStringLiteral("am");
    if (m_half->text() != half) {
        m_half->setText(half);
        emit edited();
    }
}

bool HourField::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut && !m_hour->hasFocus() && !m_half->hasFocus()) {
        emit committed();
    }
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            emit committed();  // and Enter goes on, to move to the next field
        }
        const QString text = key->text();
        if (text.compare(QLatin1String("a"), Qt::CaseInsensitive) == 0) {
            setPm(false);
            return true;
        }
        if (text.compare(QLatin1String("p"), Qt::CaseInsensitive) == 0) {
            setPm(true);
            return true;
        }
        if (text == QLatin1String("+") || text == QLatin1String("-")) {
            setPm(m_half->text() != QLatin1String("pm"));
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace brimsett
