#include "appointments/AppointmentBook.h"

#include "appointments/AppTemplates.h"
#include "appointments/AppointmentTime.h"
#include "appointments/SlotTypes.h"
#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "foundation/SqlLog.h"

#include <algorithm>

namespace brimsett::appointments {

namespace {

bool live(const Appointment& a) {
    return a.status != kStatusCancelled;
}

bool covers(const Appointment& a, int minute) {
    return live(a) && a.appTime <= minute && minute < a.endTime();
}

// One day's lines from what was read for all of them.
QList<DayLine> linesOf(const QList<Appointment>& booked, const QList<TemplateSlot>& pattern,
                       const QList<SlotType>& types) {
    QList<DayLine> lines;
    for (const Appointment& a : booked) {
        const std::optional<SlotType> type = findSlotType(types, a.slotType);
        lines << DayLine{a.appTime, a.appLength, a.slotType, a.slotName, type ? type->color : 0, a};
        lines.last().appointment->slotColor = lines.last().color;
    }
    for (const TemplateSlot& slot : pattern) {
        const bool taken = std::any_of(booked.begin(), booked.end(),
                                       [&](const Appointment& a) { return covers(a, slot.time); });
        if (!taken) {
            const std::optional<SlotType> type = findSlotType(types, slot.slotType);
            lines << DayLine{slot.time,
                             type ? type->defaultLength : 0,
                             slot.slotType,
                             type ? type->name : QString(),
                             type ? type->color : 0,
                             std::nullopt};
        }
    }
    // Appointments come in the book's order and slots by their time, so a stable sort on the
    // time, the length and appointments-first keeps both orders.
    std::stable_sort(lines.begin(), lines.end(), [](const DayLine& x, const DayLine& y) {
        if (x.time != y.time) {
            return x.time < y.time;
        }
        const bool xBooked = x.appointment.has_value();
        const bool yBooked = y.appointment.has_value();
        if (xBooked != yBooked) {
            return xBooked;
        }
        return x.length > y.length;
    });
    return lines;
}

}  // namespace

QList<QList<DayLine>> dayLinesOf(Database& db, const QList<DayKey>& keys) {
    if (keys.isEmpty()) {
        return {};
    }
    QStringList doctors;
    QList<int> days;
    QDate from = keys.first().date;
    QDate to = from;
    for (const DayKey& key : keys) {
        if (!doctors.contains(key.doctorId)) {
            doctors << key.doctorId;
        }
        if (!days.contains(templateDay(key.date))) {
            days << templateDay(key.date);
        }
        from = std::min(from, key.date);
        to = std::max(to, key.date);
    }
    const QList<Appointment> booked = AppointmentStore(db).days(doctors, from, to);
    const QList<TemplateSlot> patterns = templateRowsOf(db, doctors, days);
    const QList<SlotType> types =
        booked.isEmpty() && patterns.isEmpty() ? QList<SlotType>() : LoadSlotTypes(db);
    QList<QList<DayLine>> all;
    for (const DayKey& key : keys) {
        QList<Appointment> mine;
        for (const Appointment& a : booked) {
            if (a.appDate == key.date &&
                a.doctorId.compare(key.doctorId, Qt::CaseInsensitive) == 0) {
                mine << a;
            }
        }
        all << linesOf(mine, templateFrom(patterns, key.doctorId, templateDay(key.date)), types);
    }
    return all;
}

QList<DayLine> dayLines(Database& db, const QString& doctorId, const QDate& date) {
    return dayLinesOf(db, {{doctorId, date}}).first();
}

AppointmentBook::AppointmentBook(Database& db, Prompter& prompter, const SqlLog& log,
                                 CardCheck card)
    : m_db(db), m_prompter(prompter), m_log(log), m_card(std::move(card)), m_store(db) {}

QStringList AppointmentBook::overlapQuestion(const QList<Appointment>& others) {
    QStringList lines{QStringLiteral("This time is already booked for this doctor:")};
    for (const Appointment& o : others) {
        lines << QStringLiteral("%1 (%2 min) %3")
                     .arg(TimeText(o.appTime).trimmed())
                     .arg(o.appLength)
                     .arg(o.whoText());
    }
    lines << QString() << QStringLiteral("Book this appointment as well?");
    return lines;
}

bool AppointmentBook::refusedAsRequisition(qint64 appId) {
    if (!m_store.isRequisition(appId)) {
        return false;
    }
    m_prompter.tell(
        QStringLiteral("Error"),
        {QStringLiteral("Unauthorized Access, Appointments made in Ostrel are read only.")},
        Icon::Critical);
    return true;
}

std::optional<qint64> AppointmentBook::save(const DetailsInput& input) {
    std::optional<Appointment> stored;
    if (input.appId != 0) {
        stored = m_store.load(input.appId);
        if (!stored) {
            m_prompter.error(
                {QStringLiteral("Appointment %1 is not in the book.").arg(input.appId)});
            return std::nullopt;
        }
    }
    CheckedDetails checked = checkDetails(m_db, input);
    if (!checked.problems.isEmpty()) {
        m_prompter.error(checked.problems);
        return std::nullopt;
    }
    if (stored && refusedAsRequisition(stored->appId)) {
        return std::nullopt;
    }
    Appointment& a = checked.appointment;
    // Only a booking that takes time it did not hold before is asked about: a new one, a
    // move, a longer one, or a cancelled one made live again.
    const bool sameTime = stored && live(*stored) && stored->doctorId == a.doctorId &&
                          stored->appDate == a.appDate && stored->appTime == a.appTime &&
                          stored->appLength == a.appLength;
    const bool takesTime = live(a) && !sameTime;
    qsizetype asked = 0;
    if (takesTime) {
        const QList<Appointment> others =
            m_store.overlapping(a.doctorId, a.appDate, a.appTime, a.appLength, a.appId);
        if (!others.isEmpty() &&
            !m_prompter.confirm(QStringLiteral("Double Booking"), overlapQuestion(others))) {
            return std::nullopt;
        }
        asked = others.size();
    }
    QStringList logLines;
    {
        Transaction tx(m_db, QStringLiteral("saving an appointment"));
        // Another computer may have booked the same time while the question was open.
        if (takesTime &&
            m_store.overlapping(a.doctorId, a.appDate, a.appTime, a.appLength, a.appId).size() >
                asked) {
            m_prompter.error({QStringLiteral("Another appointment was just booked at this time."),
                              QStringLiteral("Nothing was saved; please look at the day again.")});
            return std::nullopt;
        }
        if (a.appId == 0) {
            a.appId = m_store.insert(a, logLines);
        } else {
            m_store.update(a, logLines);
        }
        tx.commit();
    }
    for (const QString& line : logLines) {
        m_log.write(line);
    }
    if (checked.card && m_card.pollingOn && m_card.request) {
        m_card.request(checked.card->healthNum, checked.card->versionCode);
    }
    return a.appId;
}

bool AppointmentBook::cancel(qint64 appId) {
    const std::optional<Appointment> stored = m_store.load(appId);
    if (!stored) {
        m_prompter.error({QStringLiteral("Appointment %1 is not in the book.").arg(appId)});
        return false;
    }
    DetailsInput input = DetailsInput::of(*stored);
    input.status = kStatusCancelled;
    return save(input).has_value();
}

}  // namespace brimsett::appointments
