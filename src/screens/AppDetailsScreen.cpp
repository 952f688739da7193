#include "screens/AppDetailsScreen.h"

#include "appointments/AppointmentStore.h"
#include "appointments/AppointmentTime.h"
#include "foundation/ActionRegistry.h"
#include "foundation/DateText.h"
#include "screens/ScreenOpener.h"
#include "screens/frmAppDetails.h"

#include <QPointer>

namespace brimsett {

namespace {

const QString kNotFound = QStringLiteral("NOT FOUND");

// Opens the details once and brings them forward when they are asked for again.
class AppDetailsOpener : public ScreenOpener {
public:
    using ScreenOpener::ScreenOpener;

    appointments::CardCheck card;

    frmAppDetails* details() {
        return bringForward(
            m_details,
            [this] {
                auto* window = new frmAppDetails(m_db, m_settings, m_prompter, m_log, m_parent);
                window->setCardCheck(card);
                return window;
            },
            QStringLiteral("frmAppDetails"));
    }

    // The receiver's questions are answered from the database, whatever is on screen.
    std::optional<appointments::Appointment> stored(const QString& argument) {
        bool ok = false;
        const qint64 id = argument.trimmed().toLongLong(&ok);
        return ok && id > 0 ? appointments::AppointmentStore(m_db).load(id) : std::nullopt;
    }

private:
    QPointer<frmAppDetails> m_details;
};

QString summaryLine(const appointments::Appointment& a) {
    return QStringList{QString::number(a.appId),
                       datetext::slashed(a.appDate),
                       appointments::TimeText(a.appTime).trimmed(),
                       QString::number(a.appLength),
                       a.doctorId,
                       a.patientId ? QString::number(*a.patientId) : QString(),
                       a.patientName,
                       a.patientPhone,
                       QString::number(a.status),
                       QString::number(a.slotType)}
        .join(QLatin1Char('|'));
}

}  // namespace

std::function<frmAppDetails*()> registerAppDetailsScreen(ActionRegistry& registry, Database& db,
                                                         AppSettings& settings,
                                                         SettingsStore& store, const SqlLog& log,
                                                         Prompter& prompter, QWidget* parent,
                                                         appointments::CardCheck card) {
    auto* opener = new AppDetailsOpener(db, settings, store, log, prompter, parent);
    opener->card = std::move(card);
    registry.setCommand(QStringLiteral("FROMAPPAPPOINTMENT"), [opener](const QString& argument) {
        const std::optional<appointments::Appointment> a = opener->stored(argument);
        if (!a) {
            return kNotFound;
        }
        // The user may choose to stay on unsaved changes; the screen is forward either way.
        opener->details()->showAppointment(a->appId);
        return QStringLiteral("OK");
    });
    registry.setCommand(QStringLiteral("VAPP"), [opener](const QString& argument) {
        const std::optional<appointments::Appointment> a = opener->stored(argument);
        return a ? summaryLine(*a) : kNotFound;
    });
    return [opener] { return opener->details(); };
}

}  // namespace brimsett
