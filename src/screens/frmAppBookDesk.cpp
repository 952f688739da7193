#include "screens/frmAppBook.h"

#include "appointments/AppointmentBook.h"
#include "appointments/AppointmentTime.h"
#include "appointments/BookQueries.h"
#include "appointments/SlotTypes.h"
#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "screens/AppBookGrid.h"
#include "screens/AppBookPrints.h"
#include "screens/SlotGuard.h"
#include "screens/frmAppBookFind.h"
#include "screens/frmAppDetails.h"

#include <QInputDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTableWidget>
#include <QTimer>

// The desk's keys and what they do to the appointment under the cursor.
namespace brimsett {

using namespace appointments;

// ---- keys ----

bool frmAppBook::handleDeskKey(QKeyEvent* event) {
    const QString text = event->text();
    if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) {
        if (event->modifiers() == Qt::ControlModifier && event->key() == Qt::Key_X) {
            cutCurrent();
            return true;
        }
        if (event->modifiers() == Qt::ControlModifier && event->key() == Qt::Key_V) {
            pasteHere();
            return true;
        }
        return false;
    }
    if (text == QLatin1String("+")) {
        showDate(m_date.addDays(1));
        return true;
    }
    if (text == QLatin1String("-")) {
        showDate(m_date.addDays(-1));
        return true;
    }
    if (m_view == View::Month) {
        return false;
    }
    switch (event->key()) {
        case Qt::Key_Insert:
            book();
            return true;
        case Qt::Key_Delete:
            cancelCurrent();
            return true;
        default:
            break;
    }
    if (text.size() == 1) {
        if (const std::optional<int> status = statusForLetter(text.at(0))) {
            setStatusOfCurrent(*status);
            return true;
        }
    }
    return false;
}

bool frmAppBook::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && (watched == m_grid || watched == m_month)) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (watched == m_month && (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)) {
            monthCellChosen();
            return true;
        }
        if (handleDeskKey(key)) {
            return true;
        }
        // Letters must not wander off as the table's keyboard search.
        if (watched == m_month && !key->text().isEmpty() && key->text().at(0).isPrint()) {
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void frmAppBook::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    m_tick->start();
    refresh();
}

void frmAppBook::closeEvent(QCloseEvent* event) {
    // The book stays loaded, so that it is there at once the next time.
    m_tick->stop();
    if (m_find) {
        m_find->hide();
    }
    QWidget::closeEvent(event);
}

// ---- the desk's actions ----

void frmAppBook::openOrBook() {
    if (const std::optional<qint64> appId = currentAppId()) {
        if (frmAppDetails* window = details()) {
            window->showAppointment(*appId);
        }
        return;
    }
    book();
}

void frmAppBook::book() {
    if (m_view == View::Month || m_grid->columns().isEmpty()) {
        return;
    }
    DetailsInput preset;
    preset.doctorId = currentDoctor();
    preset.date = datetext::slashed(currentDate());
    preset.time = TimeText(m_grid->currentMinute()).trimmed();
    preset.status = 1;
    // The template's slot under the cursor gives its type, length and codes.
    const BookColumn& column = m_grid->columns().at(m_grid->currentColumn());
    for (const DayLine& line : column.lines) {
        if (!line.appointment && line.time == m_grid->currentMinute()) {
            if (const std::optional<SlotType> type = slotTypeById(m_db, line.slotType)) {
                chooseSlotType(preset, *type);
            }
            break;
        }
    }
    if (m_settings.alwaysAskTime) {
        bool ok = false;
        const QString time =
            QInputDialog::getText(this, QStringLiteral("Book Appointment"), QStringLiteral("Time:"),
                                  QLineEdit::Normal, preset.time, &ok);
        if (!ok) {
            return;
        }
        preset.time = time.trimmed();
    }
    if (frmAppDetails* window = details()) {
        window->startNew(preset);
    }
}

void frmAppBook::cancelCurrent() {
    const std::optional<Appointment> a = m_grid->currentAppointment();
    if (!a) {
        return;
    }
    if (!m_prompter.confirm(QStringLiteral("Cancel Appointment"),
                            {QStringLiteral("Cancel the appointment of %1 at %2?")
                                 .arg(a->whoText(), TimeText(a->appTime).trimmed())})) {
        return;
    }
    try {
        if (AppointmentBook(m_db, m_prompter, m_log).cancel(a->appId)) {
            setStatus(QStringLiteral("Appointment %1 cancelled.").arg(a->appId));
        }
    } catch (const DbError& e) {
        m_prompter.error({e.message()});
    }
    refresh();
}

void frmAppBook::setStatusOfCurrent(int status) {
    const std::optional<qint64> appId = currentAppId();
    if (appId &&
        changeAppointment(*appId, [status](DetailsInput& input) { input.status = status; })) {
        setStatus(QStringLiteral("Appointment %1: %2").arg(*appId).arg(StatusName(status)));
    }
}

bool frmAppBook::changeAppointment(qint64 appId, const std::function<void(DetailsInput&)>& change) {
    bool saved = false;
    try {
        const std::optional<Appointment> stored = AppointmentStore(m_db).load(appId);
        if (!stored) {
            m_prompter.error({QStringLiteral("Appointment %1 is not in the book.").arg(appId)});
        } else {
            DetailsInput input = DetailsInput::of(*stored);
            change(input);
            // The book's save asks before a double booking and refuses what the checks
            // refuse; a change it refuses leaves the appointment as it was.
            saved = AppointmentBook(m_db, m_prompter, m_log).save(input).has_value();
        }
    } catch (const DbError& e) {
        m_prompter.error({e.message()});
    }
    refresh();
    m_grid->selectAppointment(appId);
    return saved;
}

void frmAppBook::cutCurrent() {
    m_cut = currentAppId();
    if (m_cut) {
        setStatus(QStringLiteral("Appointment %1 is cut: go to its new time and press Ctrl+V.")
                      .arg(*m_cut));
    }
}

void frmAppBook::pasteHere() {
    if (!m_cut || m_view == View::Month) {
        return;
    }
    if (moveAppointment(*m_cut, m_grid->currentColumn(), m_grid->currentMinute())) {
        m_cut.reset();
    }
}

bool frmAppBook::moveAppointment(qint64 appId, int column, int minute) {
    const QList<BookColumn>& columns = m_grid->columns();
    if (column < 0 || column >= columns.size()) {
        return false;
    }
    const BookColumn target = columns.at(column);
    const bool moved = changeAppointment(appId, [&target, minute](DetailsInput& input) {
        input.doctorId = target.doctorId;
        input.date = datetext::slashed(target.date);
        input.time = TimeText(minute).trimmed();
    });
    if (moved) {
        setStatus(QStringLiteral("Appointment %1 moved to %2 %3.")
                      .arg(appId)
                      .arg(datetext::slashed(target.date), TimeText(minute).trimmed()));
    }
    return moved;
}

void frmAppBook::countDay() {
    try {
        const int n = appointments::countDay(m_db, currentDate(), m_providers,
                                             m_hours.firstMinute(), m_hours.lastMinute());
        m_prompter.tell(QStringLiteral("Brimsett"), {countLine(n)}, Icon::Information);
    } catch (const DbError& e) {
        m_prompter.error({e.message()});
    }
}

void frmAppBook::billCurrent() {
    const std::optional<qint64> appId = currentAppId();
    if (!appId) {
        m_prompter.tell(QStringLiteral("Brimsett"),
                        {QStringLiteral("Please select an appointment.")}, Icon::Information);
        return;
    }
    try {
        const std::optional<BillingStart> start = startBilling(m_db, m_prompter, *appId);
        if (start && m_bill) {
            m_bill(*start);
        }
    } catch (const DbError& e) {
        m_prompter.error({e.message()});
    }
}

void frmAppBook::printDaySheet() {
    if (m_providers.isEmpty()) {
        return;
    }
    appbookprints::printDaySheet(this, m_db, m_settings, m_prompter, currentDoctor(), currentDate(),
                                 m_hours);
}

void frmAppBook::printTodaysAppointments() {
    if (m_providers.isEmpty()) {
        m_prompter.tell(QStringLiteral("Brimsett"),
                        {QStringLiteral("Please enter at least one provider.")}, Icon::Information);
        return;
    }
    appbookprints::printDaySheets(this, m_db, m_settings, m_prompter, m_providers, m_clock.today(),
                                  m_hours);
}

void frmAppBook::openFind() {
    if (!m_find) {
        m_find = new frmAppBookFind(m_db, m_store, m_prompter, m_clock, m_settings, this);
        connect(m_find, &frmAppBookFind::chosen, this,
                guarded(this, [this](qint64 appId) { findAppointment(appId); }));
    }
    m_find->show();
    m_find->raise();
    m_find->activateWindow();
    m_find->focusText();
}

}  // namespace brimsett
