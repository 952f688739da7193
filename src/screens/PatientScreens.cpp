#include "screens/PatientScreens.h"

#include "foundation/ActionRegistry.h"
#include "screens/WindowPlace.h"
#include "screens/frmPatients.h"

namespace brimsett {

namespace {

constexpr int kActionPatients = 2;
const QString kNotFound = QStringLiteral("NOT FOUND");

}  // namespace

PatientScreens::PatientScreens(Database& db, const AppSettings& settings, SettingsStore& store,
                               Prompter& prompter, const Clock& clock, const SqlLog& log,
                               QWidget* owner)
    : m_db(db),
      m_settings(settings),
      m_store(store),
      m_prompter(prompter),
      m_clock(clock),
      m_log(log),
      m_owner(owner) {}

PatientScreens::~PatientScreens() {
    delete m_window;
}

void PatientScreens::registerIn(ActionRegistry& registry) {
    registry.setAction(kActionPatients, QStringLiteral("Patients"), [this] { show(); });
    registry.setCommand(QStringLiteral("PATIENT"),
                        [this](const QString& argument) { return openOn(argument, false); });
    registry.setCommand(QStringLiteral("PATIENTFROMAPP"),
                        [this](const QString& argument) { return openOn(argument, true); });
    registry.setCommand(QStringLiteral("VPAT"),
                        [this](const QString& argument) { return describe(argument); });
}

frmPatients& PatientScreens::show() {
    if (m_window.isNull()) {
        // A top-level window of its own: the main menu stays usable beside it.
        m_window = new frmPatients(m_db, m_settings, m_prompter, m_clock, m_log, m_owner);
        m_window->setAttribute(Qt::WA_DeleteOnClose);
        windowplace::remember(m_window, m_store, QStringLiteral("frmPatients"));
        m_window->setCardCheck(m_cardCheck);
    }
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
    return *m_window;
}

void PatientScreens::setCardCheck(
    std::function<void(const QString& healthNum, const QString& versionCode)> check) {
    m_cardCheck = std::move(check);
    if (m_window) {
        m_window->setCardCheck(m_cardCheck);
    }
}

void PatientScreens::cardAnswered(const QString& healthNum) {
    if (m_window) {
        m_window->cardAnswered(healthNum);
    }
}

QString PatientScreens::openOn(const QString& argument, bool newWhenEmpty) {
    const QString typed = argument.trimmed();
    if (newWhenEmpty && (typed.isEmpty() || typed == QLatin1String("0"))) {
        frmPatients& window = show();
        if (window.mayLeaveCurrent()) {
            window.startNew();
        }
        return QStringLiteral("OK");
    }
    const std::optional<qint64> id = PatientRegister::readId(typed);
    PatientRegister reader(m_db, m_settings, m_prompter, m_clock, m_log);
    if (!id || !reader.exists(*id)) {
        return kNotFound;
    }
    frmPatients& window = show();
    if (window.mayLeaveCurrent()) {
        window.showPatient(*id);
    }
    return QStringLiteral("OK");
}

QString PatientScreens::describe(const QString& argument) {
    const std::optional<qint64> id = PatientRegister::readId(argument.trimmed());
    PatientRegister reader(m_db, m_settings, m_prompter, m_clock, m_log);
    const std::optional<PatientEntry> entry = id ? reader.load(*id) : std::nullopt;
    if (!entry) {
        return kNotFound;
    }
    return QStringList{QString::number(*id), entry->lName, entry->fName, entry->healthNum,
                       entry->versionCode,   entry->dob,   entry->sex}
        .join(QLatin1Char('|'));
}

}  // namespace brimsett
