#include "screens/ProviderScreens.h"

#include "foundation/ActionRegistry.h"
#include "patients/HealthNumbers.h"
#include "patients/ProviderRegister.h"
#include "screens/ScreenOpener.h"
#include "screens/SlotGuard.h"
#include "screens/frmDoctors.h"
#include "screens/frmDoctorsOther.h"

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QPointer>

namespace brimsett {

namespace {

constexpr int kActionProviders = 11;

// Opens each provider screen once and brings it forward when it is asked for again.
class ProviderScreenOpener : public ScreenOpener {
public:
    using ScreenOpener::ScreenOpener;

    frmDoctors* doctors() {
        return bringForward(
            m_doctors,
            [this] {
                auto* screen = new frmDoctors(m_db, m_settings, m_log, m_prompter, m_parent);
                connect(screen, &frmDoctors::referringDoctorsRequested, this,
                        guarded(this, [this] { referringDoctors(); }));
                return screen;
            },
            QStringLiteral("frmDoctors"));
    }

    frmDoctorsOther* referringDoctors() {
        return bringForward(m_others, [this] {
            return new frmDoctorsOther(m_db, m_settings, m_log, m_prompter, m_parent);
        });
    }

    // The receiver's questions are answered from the database, whatever is on screen.
    std::optional<Provider> storedProvider(const QString& doctorId) {
        return ProviderRegister(m_db, m_settings, m_prompter, m_log).load(doctorId);
    }

private:
    QPointer<frmDoctors> m_doctors;
    QPointer<frmDoctorsOther> m_others;
};

const QString kNotFound = QStringLiteral("NOT FOUND");

}  // namespace

void registerProviderScreens(ActionRegistry& registry, Database& db, AppSettings& settings,
                             SettingsStore& store, const SqlLog& log, Prompter& prompter,
                             QWidget* parent) {
    auto* opener = new ProviderScreenOpener(db, settings, store, log, prompter, parent);
    registry.setAction(kActionProviders, QStringLiteral("Providers"),
                       [opener] { opener->doctors(); });
    const auto showDoctor = [opener](const QString& id) {
        if (id.isEmpty() || !opener->storedProvider(id)) {
            return kNotFound;
        }
        // The user may choose to stay on unsaved changes; the screen is forward either way.
        opener->doctors()->showProvider(id);
        return QStringLiteral("OK");
    };
    registry.setCommand(QStringLiteral("DOCTOR"), showDoctor);
    // The appointment book asks for the doctor of a column the same way.
    registry.setCommand(QStringLiteral("APPDOCTOR"), showDoctor);
    registry.setCommand(QStringLiteral("VDOC"), [opener](const QString& id) {
        const std::optional<Provider> provider =
            id.isEmpty() ? std::nullopt : opener->storedProvider(id);
        return provider ? providerSummaryLine(*provider) : kNotFound;
    });
    registry.setCommand(QStringLiteral("NOTPROVIDER"), [opener](const QString& number) {
        if (number.size() != 6 || !hn::allDigits(number)) {
            return QStringLiteral("BAD NUMBER");
        }
        opener->referringDoctors()->showNumber(number);
        return QStringLiteral("OK");
    });
}

namespace providerscreens {

void fillCodeBox(QComboBox* box, const QList<CodeChoice>& choices) {
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->clear();
    for (const CodeChoice& c : choices) {
        box->addItem(c.text(), c.code);
    }
}

void setBoxCode(QComboBox* box, const QString& code) {
    const int index = code.isEmpty() ? -1 : box->findData(code, Qt::UserRole, Qt::MatchFixedString);
    box->setCurrentIndex(index);
    if (index < 0) {
        box->setEditText(code);  // a code the office's list lacks is still shown as stored
    }
}

QString boxCode(const QComboBox* box) {
    return codeOfChoiceText(box->currentText());
}

}  // namespace providerscreens
}  // namespace brimsett
