#include "screens/TransferScreen.h"

#include "foundation/AppSettings.h"
#include "foundation/DbError.h"
#include "foundation/Prompter.h"
#include "foundation/SettingsStore.h"
#include "patients/ProviderRegister.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>

#include <algorithm>

namespace brimsett {

namespace {

// Where a disk usually shows up on this system.
QString mediaFolder() {
    const QString user = qEnvironmentVariable("USER");
    for (const QString& candidate :
         {QStringLiteral("/media/") + user, QStringLiteral("/run/media/") + user,
          QStringLiteral("/media"), QDir::homePath()}) {
        if (!candidate.isEmpty() && QDir(candidate).exists()) {
            return candidate;
        }
    }
    return QDir::homePath();
}

}  // namespace

TransferScreen::TransferScreen(Database& db, AppSettings& settings, SettingsStore& store,
                               Prompter& prompter, const Clock& clock, const SqlLog& log,
                               MoneyFormat money, QString officeFolder, QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_db(db),
      m_settings(settings),
      m_store(store),
      m_prompter(ScreenPrompter::attach(prompter, this)),
      m_clock(clock),
      m_log(log),
      m_money(money),
      m_folder(std::move(officeFolder)),
      m_statusWait([this](const QString& text) {
          m_status->setText(text);
          m_status->repaint();
      }) {
    if (!m_folder.isEmpty() && !m_folder.endsWith(QLatin1Char('/'))) {
        m_folder += QLatin1Char('/');
    }
    connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this,
            guarded(this, &QWidget::close));
}

QComboBox* TransferScreen::makeDoctorList(QWidget* parent) {
    m_doctor = new QComboBox(parent);
    m_doctor->setObjectName(QStringLiteral("cboDoctor"));
    m_doctor->setMinimumContentsLength(28);
    m_doctor->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    return m_doctor;
}

void TransferScreen::loadDoctors(const QString& lastDoctor,
                                 const std::function<QString(const Provider&)>& named) {
    QList<Provider> providers;
    try {
        providers = ProviderRegister(m_db, m_settings, m_prompter, m_log).list();
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The providers could not be read."), e.message()});
    }
    for (const Provider& p : std::as_const(providers)) {
        m_doctor->addItem(p.doctorId + QStringLiteral(" - ") + (named ? named(p) : p.displayName()),
                          p.doctorId);
    }
    int chosen = m_doctor->findData(lastDoctor, Qt::UserRole, Qt::MatchFixedString);
    if (chosen < 0 && m_doctor->count() == 1) {
        chosen = 0;
    }
    m_doctor->setCurrentIndex(chosen);
}

QString TransferScreen::doctorId() const {
    return m_doctor->currentIndex() >= 0 ? m_doctor->currentData().toString() : QString();
}

QComboBox* TransferScreen::makeMethodList(QWidget* parent) {
    m_method = new QComboBox(parent);
    m_method->setObjectName(QStringLiteral("cboMethod"));
    m_method->addItems(transferMethodNames());
    m_method->setCurrentIndex(std::clamp(m_settings.submitMethod, 0, 2));
    connect(m_method, &QComboBox::currentIndexChanged, this,
            guarded(this, &TransferScreen::methodChanged));
    return m_method;
}

TransferMethod TransferScreen::method() const {
    return static_cast<TransferMethod>(std::clamp(m_method->currentIndex(), 0, 2));
}

void TransferScreen::methodChanged(int index) {
    if (index < 0) {
        return;
    }
    m_settings.submitMethod = index;
    m_store.saveNumber(QStringLiteral("General"), QStringLiteral("SubmitMethod"), index);
    m_store.sync();
}

QLabel* TransferScreen::labelFor(QWidget* field, const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setBuddy(field);
    return label;
}

QPushButton* TransferScreen::button(QWidget* parent, const QString& name, const QString& caption,
                                    const QString& tip) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    b->setToolTip(tip);
    return b;
}

QLabel* TransferScreen::makeStatusLine() {
    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("lblStatus"));
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return m_status;
}

QString TransferScreen::statusLine() const {
    return m_status->text();
}

void TransferScreen::setStatus(const QString& text) {
    m_status->setText(text);
}

std::optional<TransferPlaces> TransferScreen::placesForTransfer(const QString& caption,
                                                                QString& lastFolder) {
    TransferPlaces places{m_folder, QString()};
    if (method() != TransferMethod::Disk) {
        return places;
    }
    if (m_chooseDiskFolder) {
        places.diskFolder = m_chooseDiskFolder();
    } else {
        places.diskFolder = QFileDialog::getExistingDirectory(
            this, caption, lastFolder.isEmpty() ? mediaFolder() : lastFolder);
        if (!places.diskFolder.isEmpty()) {
            lastFolder = places.diskFolder;
        }
    }
    if (places.diskFolder.isEmpty()) {
        return std::nullopt;
    }
    return places;
}

QString& TransferScreen::submitDiskFolder() {
    static QString folder;
    return folder;
}

ClaimTransfer TransferScreen::transferTo(const TransferPlaces& places) {
    return ClaimTransfer(m_db, m_store, m_clock, m_prompter, m_statusWait, m_log, places);
}

}  // namespace brimsett
