#include "screens/ClaimOptionsPage.h"

#include "claims/PayProgram.h"

#include <QComboBox>
#include <QFormLayout>
#include <QSpinBox>

namespace brimsett {

namespace {

// A print is never made, asked for ("...0") or made without asking ("...1").
enum PrintChoice { Never = 0, Ask = 1, Always = 2 };

QComboBox* printChoice(bool ask, bool always, QWidget* parent) {
    auto* box = new QComboBox(parent);
    box->addItems({QStringLiteral("Never"), QStringLiteral("Ask after saving"),
                   QStringLiteral("Always, without asking")});
    box->setCurrentIndex(always ? Always : ask ? Ask : Never);
    return box;
}

}  // namespace

ClaimOptionsPage::ClaimOptionsPage(const ClaimEntryOptions& options, QWidget* parent)
    : QWidget(parent), m_loaded(options) {
    auto* form = new QFormLayout(this);
    m_program = new QComboBox(this);
    m_program->addItems(payprog::storedForms());
    m_program->setCurrentIndex(payprog::indexOf(options.defClaim));
    m_suffix = new QComboBox(this);
    m_suffix->addItems({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    m_suffix->setCurrentText(options.suffix());
    m_receipts = printChoice(options.recPrint0, options.recPrint1, this);
    m_invoices = printChoice(options.invPrint0, options.invPrint1, this);
    m_copies = new QSpinBox(this);
    m_copies->setRange(1, 9);
    m_copies->setValue(options.lCopies);
    form->addRow(QStringLiteral("Default &payment program:"), m_program);
    form->addRow(QStringLiteral("&Suffix of four-character codes:"), m_suffix);
    form->addRow(QStringLiteral("&Receipts (direct claims):"), m_receipts);
    form->addRow(QStringLiteral("&Invoices (direct and third party):"), m_invoices);
    form->addRow(QStringLiteral("&Copies of each:"), m_copies);
}

ClaimEntryOptions ClaimOptionsPage::options() const {
    ClaimEntryOptions o = m_loaded;
    o.defClaim = m_program->currentText();
    o.defaultClaimSuffix = m_suffix->currentText();
    o.recPrint0 = m_receipts->currentIndex() == Ask;
    o.recPrint1 = m_receipts->currentIndex() == Always;
    o.invPrint0 = m_invoices->currentIndex() == Ask;
    o.invPrint1 = m_invoices->currentIndex() == Always;
    o.lCopies = m_copies->value();
    return o;
}

}  // namespace brimsett
