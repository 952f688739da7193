#include "screens/AppDetailsScreen.h"

#include "appointments/AppointmentStore.h"
#include "appointments/AppointmentTime.h"
#include "foundation/ActionRegistry.h"
#include "foundation/DateText.h"
#include "screens/WindowPlace.h"
#include "screens/frmAppDetails.h"

#include <QPointer>

namespace brimsett {

namespace {

const QString kNotFound = QStringLiteral("NOT FOUND");

// Opens the details once and brings them forward when they are asked for again.
class AppDetailsOpener : public QObject {
public:
    AppDetailsOpener(Database& db, AppSettings& settings, SettingsStore& store, const SqlLog& log,
                     Prompter& prompter, QWidget* parent)
        : QObject(parent),
          m_db(db),
          m_settings(settings),
          m_store(store),
          m_log(log),
          m_prompter(prompter),
          m_parent(parent) {}

    frmAppDetails* details() {
        if (!m_details) {
            m_details = new frmAppDetails(m_db, m_settings, m_prompter, m_log, m_parent);
            m_details->setAttribute(Qt::WA_DeleteOnClose);
            windowplace::remember(m_details, m_store, QStringLiteral("frmAppDetails"));
        }
        m_details->show();
        m_details->raise();
        m_details->activateWindow();
        return m_details;
    }

    // The receiver's questions are answered from the database, whatever is on screen.
    std::optional<appointments::Appointment> stored(const QString& argument) {
        bool ok = false;
        const qint64 id = argument.trimmed().toLongLong(&ok);
        return ok && id > 0 ? appointments::AppointmentStore(m_db).load(id) : std::nullopt;
    }

private:
    Database& m_db;
    AppSettings& m_settings;
    SettingsStore& m_store;
    const SqlLog& m_log;
    Prompter& m_prompter;
    QWidget* m_parent;
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

void registerAppDetailsScreen(ActionRegistry& registry, Database& db, AppSettings& settings,
                              SettingsStore& store, const SqlLog& log, Prompter& prompter,
                              QWidget* parent) {
    auto* opener = new AppDetailsOpener(db, settings, store, log, prompter, parent);
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
}

}  // namespace brimsett
