#include "screens/frmOptions.h"

#include "foundation/OptionCaptions.h"
#include "screens/CardCheckOptionsPage.h"
#include "screens/ClaimOptionsPage.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace brimsett {

namespace {

using Field = OptionsEditor::Field;

const QStringList kEnvelopeStocks = {QStringLiteral("Avery 04014 (Dot Matrix)"),
                                     QStringLiteral("CoStar/Dymo LabelWriter"),
                                     QStringLiteral("Envelopes")};
const QStringList kChartStocks = {
    QStringLiteral("CoStar/Dymo LabelWriter"), QStringLiteral("Avery 04014 (Dot Matrix)"),
    QStringLiteral("Avery 05182 (Full Sheet)"), QStringLiteral("Avery 04013 (Dot Matrix)")};

// The settings keep "\r\n" between lines; the edit box works with "\n".
QString forEditing(QString text) {
    return text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
}
QString forSettings(QString text) {
    return text.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
}

QComboBox* choiceBox(const QStringList& choices, int chosen, QWidget* parent) {
    auto* box = new QComboBox(parent);
    box->addItems(choices);
    // A choice this screen does not know stays as it is until someone picks another.
    while (chosen >= box->count()) {
        box->addItem(QStringLiteral("Choice %1").arg(box->count()));
    }
    box->setCurrentIndex(std::max(0, chosen));
    return box;
}

}  // namespace

frmOptions::frmOptions(const AppSettings& settings, SettingsStore& store, Database& db,
                       Prompter& prompter, QWidget* parent)
    : QDialog(parent),
      m_editor(settings, db, ScreenPrompter::attach(prompter, this)),
      m_saved(settings),
      m_store(store) {
    setWindowTitle(QStringLiteral("Options"));
    auto* layout = new QVBoxLayout(this);
    m_tabs = new QTabWidget(this);
    m_tabs->addTab(switchesPage(), QStringLiteral("Options"));
    m_tabs->addTab(labelsPage(), QStringLiteral("Labels"));
    m_tabs->addTab(printingPage(), QStringLiteral("Printing"));
    m_claimPage = new ClaimOptionsPage(ClaimEntryOptions::read(m_store), this);
    m_tabs->addTab(m_claimPage, QStringLiteral("Claims"));
    m_cardPage = new CardCheckOptionsPage(hcv::HcvSettings::read(m_store), this);
    m_tabs->addTab(m_cardPage, QStringLiteral("Card Checks"));
    m_tabs->addTab(messagesPage(), QStringLiteral("Messages"));
    m_tabs->addTab(systemPage(), QStringLiteral("System"));
    layout->addWidget(m_tabs);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, guarded(this, &frmOptions::accept));
    connect(buttons, &QDialogButtonBox::rejected, this, guarded(this, &frmOptions::reject));
    layout->addWidget(buttons);
}

QWidget* frmOptions::switchesPage() {
    auto* page = new QWidget(this);
    auto* grid = new QGridLayout(page);
    const AppSettings& s = m_editor.settings();
    const int rows = (AppSettings::kSwitchCount + 1) / 2;
    for (int n = 1; n <= AppSettings::kSwitchCount; ++n) {
        auto* box = new QCheckBox(optionCaption(n), page);
        box->setChecked(s.option[n]);
        grid->addWidget(box, (n - 1) % rows, (n - 1) / rows);
        m_switches << box;
    }
    grid->setRowStretch(rows, 1);
    return page;
}

QWidget* frmOptions::labelsPage() {
    auto* page = new QWidget(this);
    auto* layout = new QHBoxLayout(page);
    const AppSettings& s = m_editor.settings();

    auto* switches = new QGroupBox(QStringLiteral("Chart and address labels"), page);
    auto* list = new QVBoxLayout(switches);
    for (int n = 1; n <= AppSettings::kLabelSwitchCount; ++n) {
        auto* box = new QCheckBox(chartLabelCaption(n), switches);
        box->setChecked(s.optionChartLabel[n]);
        list->addWidget(box);
        m_labelSwitches << box;
    }
    list->addStretch(1);
    layout->addWidget(switches, 3);

    auto* stock = new QGroupBox(QStringLiteral("Label stock"), page);
    auto* form = new QFormLayout(stock);
    m_envelopeStock = choiceBox(kEnvelopeStocks, s.printLabelEnvelope, stock);
    m_chartStock = choiceBox(kChartStocks, s.printLabelChart, stock);
    form->addRow(QStringLiteral("&Envelope labels:"), m_envelopeStock);
    form->addRow(QStringLiteral("C&hart labels:"), m_chartStock);
    form->addRow(QStringLiteral("&Number of chart labels:"), numberEdit(Field::PrintLabelCount));
    layout->addWidget(stock, 2, Qt::AlignTop);
    return page;
}

QWidget* frmOptions::printingPage() {
    auto* page = new QWidget(this);
    auto* layout = new QHBoxLayout(page);
    const AppSettings& s = m_editor.settings();

    auto* choices = new QGroupBox(QStringLiteral("Invoices and receipts"), page);
    auto* choiceForm = new QFormLayout(choices);
    choiceForm->addRow(QStringLiteral("Print &invoice:"), numberEdit(Field::PrintInvoice));
    choiceForm->addRow(QStringLiteral("Print &receipt:"), numberEdit(Field::PrintReceipt));
    layout->addWidget(choices, 1, Qt::AlignTop);

    auto* codes = new QGroupBox(QStringLiteral("Dot-matrix printer"), page);
    auto* codeForm = new QFormLayout(codes);
    m_printerPort = textEdit(s.printerPort);
    m_wideOn = textEdit(s.wideOn);
    m_wideOff = textEdit(s.wideOff);
    m_boldOn = textEdit(s.boldOn);
    m_boldOff = textEdit(s.boldOff);
    codeForm->addRow(QStringLiteral("Printer &port:"), m_printerPort);
    codeForm->addRow(QStringLiteral("&Wide on:"), m_wideOn);
    codeForm->addRow(QStringLiteral("Wide o&ff:"), m_wideOff);
    codeForm->addRow(QStringLiteral("&Bold on:"), m_boldOn);
    codeForm->addRow(QStringLiteral("Bold off:"), m_boldOff);
    auto* note = new QLabel(QStringLiteral("\"#n\" stands for the character with code n."), codes);
    note->setEnabled(false);
    codeForm->addRow(note);
    layout->addWidget(codes, 1, Qt::AlignTop);
    return page;
}

QWidget* frmOptions::messagesPage() {
    auto* page = new QWidget(this);
    auto* form = new QFormLayout(page);
    const AppSettings& s = m_editor.settings();
    auto message = [page](const QString& text) {
        auto* edit = new QPlainTextEdit(forEditing(text), page);
        edit->setTabChangesFocus(true);
        edit->setMinimumHeight(70);
        return edit;
    };
    m_invoiceMessage = message(s.invoiceMessage);
    m_receiptMessage = message(s.receiptMessage);
    m_referralMessage = message(s.referralFormMessage);
    form->addRow(QStringLiteral("&Invoice message:"), m_invoiceMessage);
    form->addRow(QStringLiteral("&Receipt message:"), m_receiptMessage);
    form->addRow(QStringLiteral("Re&ferral form message:"), m_referralMessage);
    return page;
}

QWidget* frmOptions::systemPage() {
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    const AppSettings& s = m_editor.settings();

    auto* places = new QGroupBox(QStringLiteral("Database"), page);
    auto* placeForm = new QFormLayout(places);
    m_dbPath = textEdit(s.dbPath);
    m_dbPPath = textEdit(s.dbPPath);
    placeForm->addRow(QStringLiteral("&Main database path:"), pathRow(m_dbPath));
    placeForm->addRow(QStringLiteral("&Patient database path:"), pathRow(m_dbPPath));
    m_track0 = textEdit(s.track0);
    m_track0->setPlaceholderText(QStringLiteral("any text turns the SQL log on"));
    placeForm->addRow(QStringLiteral("S&QL log:"), m_track0);
    layout->addWidget(places);

    auto* ids = new QGroupBox(QStringLiteral("Numbers"), page);
    auto* idForm = new QFormLayout(ids);
    idForm->addRow(QStringLiteral("Next &ID under:"), numberEdit(Field::NextIDUnder));
    idForm->addRow(QStringLiteral("Next p&lacer ID:"), numberEdit(Field::PlacerID));
    layout->addWidget(ids);

    auto* menu = new QGroupBox(QStringLiteral("Main menu"), page);
    auto* menuForm = new QFormLayout(menu);
    m_menuFont = new QComboBox(menu);
    m_menuFont->setEditable(true);
    m_menuFont->setMaximumWidth(320);
    m_menuFont->addItems(QFontDatabase::families());
    m_menuFont->setCurrentText(s.menuFont);  // kept as typed, even when not installed here
    menuForm->addRow(QStringLiteral("Menu f&ont:"), m_menuFont);
    menuForm->addRow(QStringLiteral("Menu font si&ze:"), numberEdit(Field::MenuSize));
    menuForm->addRow(QStringLiteral("Menu &spacing:"), numberEdit(Field::MenuSkip));
    layout->addWidget(menu);

    // The level passwords are kept per computer like the options, so they are reached here.
    auto* passwords = new QPushButton(QStringLiteral("Pass&words..."), page);
    connect(passwords, &QPushButton::clicked, this, guarded(this, &frmOptions::passwordsRequested));
    layout->addWidget(passwords, 0, Qt::AlignLeft);
    layout->addStretch(1);
    return page;
}

QLineEdit* frmOptions::numberEdit(OptionsEditor::Field field) {
    auto* edit = new QLineEdit(m_editor.text(field), this);
    edit->setMaximumWidth(160);
    m_numbers.insert(field, edit);
    return edit;
}

QLineEdit* frmOptions::textEdit(const QString& text) {
    return new QLineEdit(text, this);
}

QWidget* frmOptions::pathRow(QLineEdit* edit) {
    auto* row = new QWidget(this);
    row->setFocusProxy(edit);  // so the label's access letter reaches the path
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(edit, 1);
    auto* browse = new QPushButton(QStringLiteral("Browse..."), row);
    browse->setAutoDefault(false);
    connect(browse, &QPushButton::clicked, this, guarded(this, [this, edit] {
                const QString folder = QFileDialog::getExistingDirectory(
                    this, QStringLiteral("Database folder"), edit->text());
                if (!folder.isEmpty()) {
                    edit->setText(folder.endsWith(QLatin1Char('/')) ? folder
                                                                    : folder + QLatin1Char('/'));
                }
            }));
    layout->addWidget(browse);
    return row;
}

void frmOptions::toEditor() {
    AppSettings& s = m_editor.settings();
    for (int n = 1; n <= AppSettings::kSwitchCount; ++n) {
        s.option[n] = m_switches[n - 1]->isChecked();
    }
    for (int n = 1; n <= AppSettings::kLabelSwitchCount; ++n) {
        s.optionChartLabel[n] = m_labelSwitches[n - 1]->isChecked();
    }
    s.printLabelEnvelope = m_envelopeStock->currentIndex();
    s.printLabelChart = m_chartStock->currentIndex();
    s.printerPort = m_printerPort->text();
    s.wideOn = m_wideOn->text();
    s.wideOff = m_wideOff->text();
    s.boldOn = m_boldOn->text();
    s.boldOff = m_boldOff->text();
    s.invoiceMessage = forSettings(m_invoiceMessage->toPlainText());
    s.receiptMessage = forSettings(m_receiptMessage->toPlainText());
    s.referralFormMessage = forSettings(m_referralMessage->toPlainText());
    s.dbPath = m_dbPath->text().trimmed();
    s.dbPPath = m_dbPPath->text().trimmed();
    s.track0 = m_track0->text();
    s.menuFont = m_menuFont->currentText().trimmed();
    for (auto it = m_numbers.cbegin(); it != m_numbers.cend(); ++it) {
        m_editor.setText(it.key(), it.value()->text());
    }
}

void frmOptions::showField(QWidget* widget) {
    for (int i = 0; i < m_tabs->count(); ++i) {
        if (m_tabs->widget(i)->isAncestorOf(widget)) {
            m_tabs->setCurrentIndex(i);
            break;
        }
    }
    widget->setFocus(Qt::OtherFocusReason);
    if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
        edit->selectAll();
    }
}

void frmOptions::accept() {
    toEditor();
    if (!m_editor.save(m_store)) {
        if (const auto field = m_editor.badField()) {
            QWidget* widget = m_numbers.value(*field);
            if (*field == Field::DbPath) {
                widget = m_dbPath;
            } else if (*field == Field::DbPPath) {
                widget = m_dbPPath;
            }
            if (widget) {
                showField(widget);
            }
        }
        return;
    }
    m_claimPage->options().save(m_store);
    m_cardPage->settings().save(m_store);
    m_saved = m_editor.settings();
    QDialog::accept();
}

}  // namespace brimsett
