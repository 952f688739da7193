#include "screens/frmEDTSetup.h"

#include "foundation/DateText.h"
#include "foundation/DbError.h"
#include "foundation/Prompter.h"
#include "foundation/UnsavedChanges.h"
#include "ministry/EdtHostSettings.h"
#include "ministry/EdtPasswordSeal.h"
#include "ministry/ModemPorts.h"
#include "patients/ProviderRegister.h"
#include "screens/EnterMovesOn.h"
#include "screens/RecordList.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace brimsett {

namespace {

QString dateOrNever(const QDate& day) {
    return day.isValid() ? datetext::slashed(day) : QStringLiteral("Never");
}

}  // namespace

frmEDTSetup::frmEDTSetup(Database& db, AppSettings& settings, Prompter& prompter,
                         const Clock& clock, const SqlLog& log, const QString& officeFolder,
                         QWidget* parent)
    : QDialog(parent),
      m_db(db),
      m_settings(settings),
      m_prompter(ScreenPrompter::attach(prompter, this)),
      m_log(log),
      m_params(db, m_prompter, clock, log, officeFolder + EdtPasswordSeal::kKeyFileName) {
    setWindowTitle(kTitle);
    auto* enter = new EnterMovesOn(this);

    m_list = recordlist::make(this, {"ID", "Provider", "User ID"}, 1);
    m_list->setMinimumWidth(360);
    connect(m_list, &QTreeWidget::currentItemChanged, this,
            guarded(this, [this](QTreeWidgetItem* current) { listRowChanged(current); }));

    QWidget* login = loginPanel();
    QWidget* general = generalPanel();
    QWidget* host = hostPanel();
    for (QLineEdit* line : {m_userId, m_password, m_mode, m_phone, m_timeOut}) {
        enter->watch(line);
    }
    for (const edthost::Setting& setting : edthost::settings()) {
        enter->watch(m_host.value(setting.key));
    }
    enter->watch(m_port);
    enter->watch(m_port->lineEdit());
    enter->watch(m_speed);

    auto* save = new QPushButton(QStringLiteral("&Save"), this);
    auto* close = new QPushButton(QStringLiteral("Close"), this);
    save->setToolTip(QStringLiteral("Ctrl+S"));
    close->setToolTip(QStringLiteral("Esc"));
    for (QPushButton* button : {save, close}) {
        button->setAutoDefault(false);
    }
    connect(save, &QPushButton::clicked, this, guarded(this, &frmEDTSetup::saveClicked));
    connect(close, &QPushButton::clicked, this, guarded(this, &frmEDTSetup::reject));
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_S), this), &QShortcut::activated, this,
            guarded(this, &frmEDTSetup::saveClicked));
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(save);
    buttons->addWidget(close);

    auto* top = new QHBoxLayout;
    top->addWidget(m_list, 1);
    top->addWidget(login);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(general);
    bottom->addWidget(host, 1);
    layout->addLayout(bottom);
    layout->addLayout(buttons);

    loadGeneral();
    try {
        for (const Provider& p : ProviderRegister(m_db, m_settings, m_prompter, m_log).list()) {
            auto* item = new QTreeWidgetItem(
                m_list, {p.doctorId, (p.lName + QStringLiteral(", ") + p.fName).trimmed(),
                         m_params.userId(p.doctorId)});
            item->setData(0, recordlist::kKeyRole, p.doctorId);
        }
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The providers could not be read."), e.message()});
    }
    m_list->resizeColumnToContents(0);
    if (m_list->topLevelItemCount() > 0) {
        showDoctor(m_list->topLevelItem(0)->text(0));
    } else {
        loadLogin();
    }
    m_list->setFocus();
}

QWidget* frmEDTSetup::loginPanel() {
    auto* box = new QGroupBox(QStringLiteral("Provider Login"), this);
    auto* form = new QFormLayout(box);
    m_userId = new QLineEdit(box);
    m_userId->setMaxLength(60);
    m_password = new QLineEdit(box);
    m_password->setEchoMode(QLineEdit::Password);
    m_password->setMaxLength(EdtPasswordSeal::kMaxPasswordBytes);
    m_passwordChanged = new QLabel(box);
    m_passwordChanged->setObjectName(QStringLiteral("passwordChanged"));
    m_mode = new QLineEdit(box);
    m_mode->setMaxLength(49);
    m_modeChanged = new QLabel(box);
    m_modeChanged->setObjectName(QStringLiteral("modeChanged"));
    form->addRow(QStringLiteral("&User ID:"), m_userId);
    form->addRow(QStringLiteral("&Password:"), m_password);
    form->addRow(QStringLiteral("Password changed:"), m_passwordChanged);
    form->addRow(QStringLiteral("&Mode:"), m_mode);
    form->addRow(QStringLiteral("Mode changed:"), m_modeChanged);
    box->setMinimumWidth(320);
    return box;
}

QWidget* frmEDTSetup::generalPanel() {
    auto* box = new QGroupBox(QStringLiteral("General Settings"), this);
    auto* form = new QFormLayout(box);
    form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    m_phone = recordlist::sizedLine(box, 60, 20);
    m_port = new QComboBox(box);
    m_port->setEditable(true);
    m_port->setInsertPolicy(QComboBox::NoInsert);
    m_port->lineEdit()->setMaxLength(60);
    m_port->setMinimumContentsLength(20);
    m_port->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_portNote = new QLabel(box);
    m_portNote->setObjectName(QStringLiteral("portNote"));
    connect(m_port, &QComboBox::editTextChanged, this, [this] { describePort(); });
    auto* port = new QHBoxLayout;
    port->addWidget(m_port);
    port->addWidget(m_portNote, 1);
    m_speed = new QComboBox(box);
    m_speed->addItems(EdtParams::lineSpeeds());
    m_timeOut = recordlist::sizedLine(box, 3, 4);
    form->addRow(QStringLiteral("&Telephone Number:"), m_phone);
    form->addRow(QStringLiteral("Modem P&ort:"), port);
    qobject_cast<QLabel*>(form->labelForField(port))->setBuddy(m_port);
    form->addRow(QStringLiteral("&Line Speed:"), m_speed);
    form->addRow(QStringLiteral("T&ime-out (seconds):"), m_timeOut);
    return box;
}

QWidget* frmEDTSetup::hostPanel() {
    auto* box = new QGroupBox(QStringLiteral("DataPac and GONet (empty: the default)"), this);
    auto* grid = new QGridLayout(box);
    const QList<edthost::Setting>& all = edthost::settings();
    const qsizetype perColumn = (all.size() + 1) / 2;
    for (qsizetype i = 0; i < all.size(); ++i) {
        auto* line = new QLineEdit(box);
        line->setMaxLength(all[i].secret ? EdtPasswordSeal::kMaxPasswordBytes : 60);
        line->setPlaceholderText(all[i].fallback);
        line->setMinimumWidth(
            line->fontMetrics().horizontalAdvance(QStringLiteral("ENTER PASSWORD")) + 12);
        line->setToolTip(all[i].fallback.isEmpty() ? QString()
                                                   : QStringLiteral("Default: ") + all[i].fallback);
        if (all[i].secret) {
            line->setEchoMode(QLineEdit::Password);
        }
        auto* label = new QLabel(all[i].label + QLatin1Char(':'), box);
        label->setBuddy(line);
        const int row = int(i % perColumn);
        const int column = int(i / perColumn) * 2;
        grid->addWidget(label, row, column);
        grid->addWidget(line, row, column + 1);
        m_host.insert(all[i].key, line);
    }
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    return box;
}

void frmEDTSetup::loadGeneral() {
    try {
        m_general = m_params.general();
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The EDT settings could not be read."), e.message()});
    }
    m_phone->setText(m_general.value(EdtParams::kPhone));
    // An older office's " - COM n" shows as the device it means here, and is saved so.
    const QString port = modemports::device(m_general.value(EdtParams::kPort));
    m_port->clear();
    for (const modemports::Port& p :
         modemports::offered(modemports::available(), m_general.value(EdtParams::kPort))) {
        m_port->addItem(p.device);
        m_port->setItemData(m_port->count() - 1, p.description, Qt::ToolTipRole);
    }
    m_port->setEditText(port);
    describePort();
    const int speed = m_speed->findText(m_general.value(EdtParams::kSpeed));
    m_speed->setCurrentIndex(speed < 0 ? 0 : speed);
    m_timeOut->setText(
        m_general.value(EdtParams::kTimeOut, QString::number(EdtParams::kDefaultTimeOut)));
    for (const edthost::Setting& setting : edthost::settings()) {
        QLineEdit* line = m_host.value(setting.key);
        if (!setting.secret) {
            line->setText(m_general.value(setting.key));
            continue;
        }
        QString problem;
        std::optional<QString> secret;
        try {
            secret = m_params.generalSecret(setting.key, &problem);
        } catch (const DbError& e) {
            problem = e.message();
        }
        // One sealed with another computer's key is kept unless a new one is typed.
        m_secretShown = secret.value_or(QString());
        line->setText(m_secretShown);
        line->setPlaceholderText(secret ? QString()
                                        : QStringLiteral("(kept; cannot be read here)"));
        line->setToolTip(problem);
    }
    m_generalShown = generalFromFields();
}

void frmEDTSetup::loadLogin() {
    m_login = EdtLogin{};
    try {
        if (!m_doctorId.isEmpty()) {
            m_login = m_params.login(m_doctorId);
        }
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The EDT login could not be read."), e.message()});
    }
    for (QLineEdit* line : {m_userId, m_password, m_mode}) {
        line->setEnabled(!m_doctorId.isEmpty());
    }
    m_userId->setText(m_login.userId);
    m_password->setText(m_login.password.value_or(QString()));
    // A password saved with another computer's key is kept unless a new one is typed.
    m_password->setPlaceholderText(
        m_login.password ? QString() : QStringLiteral("(kept; cannot be read here)"));
    m_password->setToolTip(m_login.passwordProblem);
    m_passwordChanged->setText(dateOrNever(m_login.passwordChanged));
    m_mode->setText(m_login.mode);
    m_modeChanged->setText(dateOrNever(m_login.modeChanged));
}

bool frmEDTSetup::showDoctor(const QString& doctorId) {
    QTreeWidgetItem* found = nullptr;
    for (int i = 0; i < m_list->topLevelItemCount() && !found; ++i) {
        if (m_list->topLevelItem(i)->text(0).compare(doctorId, Qt::CaseInsensitive) == 0) {
            found = m_list->topLevelItem(i);
        }
    }
    if (found == nullptr || !leaveShown()) {
        recordlist::select(m_list, m_doctorId);
        return false;
    }
    m_doctorId = found->text(0);
    loadGeneral();  // typing the user chose to drop goes too
    loadLogin();
    recordlist::select(m_list, m_doctorId);
    return true;
}

void frmEDTSetup::listRowChanged(QTreeWidgetItem* current) {
    if (current == nullptr || current->text(0) == m_doctorId) {
        return;
    }
    // The question about unsaved changes must not be asked inside the list's own signal.
    const QString target = current->text(0);
    QTimer::singleShot(0, this, guarded(this, [this, target] { showDoctor(target); }));
}

QMap<QChar, QString> frmEDTSetup::generalFromFields() const {
    QMap<QChar, QString> general = m_general;  // settings this screen does not show are kept
    general.insert(EdtParams::kPhone, m_phone->text().trimmed());
    general.insert(EdtParams::kPort, m_port->currentText().trimmed());
    general.insert(EdtParams::kSpeed, m_speed->currentText());
    general.insert(EdtParams::kTimeOut, m_timeOut->text().trimmed());
    for (const edthost::Setting& setting : edthost::settings()) {
        const QString typed = m_host.value(setting.key)->text();
        if (!setting.secret) {
            general.insert(setting.key, typed.trimmed());
        } else if (typed != m_secretShown) {
            general.insert(setting.key, typed);  // sealed as it is saved; untouched stays
        }
    }
    return general;
}

void frmEDTSetup::describePort() {
    const QString device = modemports::device(m_port->currentText());
    const int found = m_port->findText(device);
    m_portNote->setText(device.isEmpty() ? QString()
                        : found < 0      ? modemports::kMissing
                                         : m_port->itemData(found, Qt::ToolTipRole).toString());
}

bool frmEDTSetup::changed() const {
    return generalFromFields() != m_generalShown || m_userId->text().trimmed() != m_login.userId ||
           m_password->text() != m_login.password.value_or(QString()) ||
           m_mode->text().trimmed() != m_login.mode;
}

bool frmEDTSetup::saveClicked() {
    EdtSetupChange change;
    change.general = generalFromFields();
    change.doctorId = m_doctorId;
    change.userId = m_userId->text();
    if (m_password->text() != m_login.password.value_or(QString())) {
        change.password = m_password->text();
    }
    change.mode = m_mode->text();
    if (!m_params.save(change)) {
        if (!EdtParams::readTimeOut(m_timeOut->text())) {
            m_timeOut->setFocus();
            m_timeOut->selectAll();
        }
        return false;
    }
    loadGeneral();
    loadLogin();
    if (QTreeWidgetItem* item = m_list->currentItem()) {
        item->setText(2, m_login.userId);
    }
    return true;
}

bool frmEDTSetup::leaveShown() {
    return mayLeaveChanges(m_prompter, kTitle, changed(), [this] { return saveClicked(); });
}

void frmEDTSetup::reject() {
    if (leaveShown()) {
        QDialog::reject();
    }
}

}  // namespace brimsett
