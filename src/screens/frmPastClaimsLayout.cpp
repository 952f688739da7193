#include "screens/frmPastClaims.h"

#include "screens/SlotGuard.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>
#include <QVBoxLayout>

// The parts of the past-claims window and where they stand.
namespace brimsett {

namespace {

QPushButton* button(QWidget* parent, const QString& name, const QString& caption,
                    const QString& tip) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    b->setToolTip(tip);
    return b;
}

QLabel* labelFor(QWidget* field, const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setBuddy(field);
    return label;
}

QLineEdit* line(QWidget* parent, const QString& name, int maxLength, int widthInChars,
                const QString& placeholder = {}) {
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(name);
    edit->setMaxLength(maxLength);
    edit->setPlaceholderText(placeholder);
    edit->setFixedWidth(edit->fontMetrics().horizontalAdvance(QLatin1Char('0')) * widthInChars +
                        16);
    return edit;
}

QComboBox* choiceList(QWidget* parent, const QString& name, int minimumChars) {
    auto* box = new QComboBox(parent);
    box->setObjectName(name);
    box->setMinimumContentsLength(minimumChars);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    return box;
}

}  // namespace

QWidget* frmPastClaims::buildFilters() {
    auto* box = new QGroupBox(this);
    box->setObjectName(QStringLiteral("grpFilters"));
    m_doctor = choiceList(box, QStringLiteral("cboDoctor"), 22);
    m_program = choiceList(box, QStringLiteral("cboProgram"), 11);
    // The payer goes with "Third Party"; it takes the keys from the program when shown.
    m_payer = choiceList(box, QStringLiteral("cboThirdParty"), 18);
    m_status = choiceList(box, QStringLiteral("cboStatus"), 14);
    m_byService = new QRadioButton(QStringLiteral("By Ser&vice Date"), box);
    m_byService->setObjectName(QStringLiteral("optByService"));
    m_byService->setChecked(true);
    m_byBilled = new QRadioButton(QStringLiteral("By &Billed Date"), box);
    m_byBilled->setObjectName(QStringLiteral("optByBilled"));
    m_from = line(box, QStringLiteral("txtStart"), 10, 10, QStringLiteral("YYYY/MM/DD"));
    m_to = line(box, QStringLiteral("txtEnd"), 10, 10, QStringLiteral("YYYY/MM/DD"));
    m_batch = choiceList(box, QStringLiteral("cboBatch"), 14);
    m_diag = line(box, QStringLiteral("txtDiag"), 4, 5);
    m_service = line(box, QStringLiteral("txtService"), 5, 6);
    m_invoice = line(box, QStringLiteral("txtInvoice"), 12, 9);
    m_ra = choiceList(box, QStringLiteral("cboRA"), 18);
    m_facility = choiceList(box, QStringLiteral("cboFacility"), 14);
    connect(m_program, &QComboBox::currentIndexChanged, this,
            guarded(this, &frmPastClaims::programChanged));

    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(8, 6, 8, 6);
    grid->setVerticalSpacing(4);
    const auto pair = [](QWidget* a, QWidget* b, QWidget* c = nullptr) {
        auto* row = new QHBoxLayout;
        row->setSpacing(6);
        row->addWidget(a);
        row->addWidget(b);
        if (c != nullptr) {
            row->addWidget(c);
        }
        row->addStretch();
        return row;
    };
    grid->addWidget(labelFor(m_doctor, QStringLiteral("&Doctor:"), box), 0, 0);
    grid->addWidget(m_doctor, 0, 1);
    grid->addWidget(labelFor(m_program, QStringLiteral("P&rogram:"), box), 0, 2);
    grid->addLayout(pair(m_program, m_payer), 0, 3);
    auto* statusLabel = labelFor(m_status, QStringLiteral("&Status:"), box);
    grid->addWidget(statusLabel, 0, 4);
    grid->addWidget(m_status, 0, 5);

    grid->addLayout(pair(m_byService, m_byBilled), 1, 0, 1, 2);
    auto* dates = new QHBoxLayout;
    dates->setSpacing(6);
    dates->addWidget(labelFor(m_from, QStringLiteral("&From:"), box));
    dates->addWidget(m_from);
    dates->addSpacing(8);
    dates->addWidget(labelFor(m_to, QStringLiteral("&To:"), box));
    dates->addWidget(m_to);
    dates->addStretch();
    grid->addLayout(dates, 1, 2, 1, 2);
    grid->addWidget(labelFor(m_batch, QStringLiteral("Batc&h:"), box), 1, 4);
    grid->addWidget(m_batch, 1, 5);

    auto* codes = new QHBoxLayout;
    codes->setSpacing(6);
    codes->addWidget(labelFor(m_diag, QStringLiteral("Dia&g. code:"), box));
    codes->addWidget(m_diag);
    codes->addSpacing(8);
    codes->addWidget(labelFor(m_service, QStringLiteral("Service c&ode:"), box));
    codes->addWidget(m_service);
    codes->addStretch();
    grid->addLayout(codes, 2, 0, 1, 2);
    grid->addWidget(labelFor(m_invoice, QStringLiteral("&Invoice:"), box), 2, 2);
    auto* invoiceRow = new QHBoxLayout;
    invoiceRow->addWidget(m_invoice);
    auto* raLabel = labelFor(m_ra, QStringLiteral("R&A file:"), box);
    invoiceRow->addSpacing(8);
    invoiceRow->addWidget(raLabel);
    invoiceRow->addWidget(m_ra);
    invoiceRow->addStretch();
    grid->addLayout(invoiceRow, 2, 3);
    auto* facilityLabel = labelFor(m_facility, QStringLiteral("Facilit&y:"), box);
    grid->addWidget(facilityLabel, 2, 4);
    grid->addWidget(m_facility, 2, 5);
    grid->setColumnStretch(3, 1);

    // The filters the office has not switched on are not shown (and filter nothing).
    statusLabel->setVisible(m_options.status);
    m_status->setVisible(m_options.status);
    raLabel->setVisible(m_options.remittance);
    m_ra->setVisible(m_options.remittance);
    facilityLabel->setVisible(m_options.facility);
    m_facility->setVisible(m_options.facility);

    // Enter in any filter searches.
    for (QWidget* field : std::initializer_list<QWidget*>{
             m_doctor, m_program, m_payer, m_status, m_byService, m_byBilled, m_from, m_to, m_batch,
             m_diag, m_service, m_invoice, m_ra, m_facility}) {
        field->installEventFilter(this);
    }
    return box;
}

QWidget* frmPastClaims::buildList() {
    auto* panel = new QWidget(this);
    m_list = new QTreeWidget(panel);
    m_list->setObjectName(QStringLiteral("grdClaims"));
    m_list->setHeaderLabels(pastclaims::gridCaptions());
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAlternatingRowColors(true);
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->header()->setSectionsClickable(true);
    m_list->header()->setSortIndicatorShown(false);
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    m_list->headerItem()->setTextAlignment(FeeColumn, Qt::AlignRight | Qt::AlignVCenter);
    m_list->headerItem()->setTextAlignment(PaidColumn, Qt::AlignRight | Qt::AlignVCenter);
    connect(m_list->header(), &QHeaderView::sectionClicked, this,
            guarded(this, &frmPastClaims::headingClicked));
    connect(m_list, &QTreeWidget::currentItemChanged, this,
            guarded(this, &frmPastClaims::updateButtons));
    // Enter (or a double click) on a row opens its claim.
    connect(m_list, &QTreeWidget::itemActivated, this, guarded(this, &frmPastClaims::openClaim));

    m_statusLine = new QLabel(panel);
    m_statusLine->setObjectName(QStringLiteral("lblStatus"));
    m_totals = new QLabel(panel);
    m_totals->setObjectName(QStringLiteral("lblTotals"));
    m_totals->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    QFont bold = m_totals->font();
    bold.setBold(true);
    m_totals->setFont(bold);

    auto* below = new QHBoxLayout;
    below->addWidget(m_statusLine, 1);
    below->addWidget(m_totals);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list, 1);
    layout->addLayout(below);
    return panel;
}

QWidget* frmPastClaims::buildButtons() {
    auto* panel = new QWidget(this);
    m_cmdOpen = button(panel, QStringLiteral("cmdOpen"), QStringLiteral("Open clai&m"),
                       QStringLiteral("Opens the row's claim in Claims (Enter on the row)"));
    m_cmdResubmit = button(panel, QStringLiteral("cmdResubmit"), QStringLiteral("Res&ubmit"),
                           QStringLiteral("Puts the row's claim back to pending"));
    m_cmdCloseReject =
        button(panel, QStringLiteral("cmdCloseReject"), QStringLiteral("Close re&jection"),
               QStringLiteral("Closes the row's rejected item"));
    auto* rejected =
        button(panel, QStringLiteral("cmdShowReject"), QStringLiteral("Sho&w rejected"),
               QStringLiteral("The rejected items of the filters, with their codes"));
    auto* patients = button(panel, QStringLiteral("cmdPatients"), QStringLiteral("Patie&nt list"),
                            QStringLiteral("The patients of the filters, one line each"));
    auto* mark = button(panel, QStringLiteral("cmdMark"), QStringLiteral("Mar&k invoice paid"),
                        QStringLiteral("Every item of the invoice's claims becomes paid"));
    auto* print = button(panel, QStringLiteral("cmdPrint"), QStringLiteral("&Print"),
                         QStringLiteral("Prints the list"));
    // Its letter is the hint's Alt+E.
    auto* exportButton = button(panel, QStringLiteral("cmdExport"), QStringLiteral("&Export"),
                                QStringLiteral("Writes the list to a text file (Alt+E)"));
    auto* clearButton = button(panel, QStringLiteral("cmdClear"), QStringLiteral("&Clear"),
                               QStringLiteral("Every box back to all, the list emptied"));
    auto* close =
        button(panel, QStringLiteral("cmdClose"), QStringLiteral("C&lose"), QStringLiteral("Esc"));
    connect(m_cmdOpen, &QPushButton::clicked, this, guarded(this, &frmPastClaims::openClaim));
    connect(m_cmdResubmit, &QPushButton::clicked, this, guarded(this, &frmPastClaims::resubmit));
    connect(m_cmdCloseReject, &QPushButton::clicked, this,
            guarded(this, &frmPastClaims::closeRejection));
    connect(rejected, &QPushButton::clicked, this, guarded(this, &frmPastClaims::showRejected));
    connect(patients, &QPushButton::clicked, this, guarded(this, &frmPastClaims::showPatients));
    connect(mark, &QPushButton::clicked, this, guarded(this, &frmPastClaims::markInvoicePaid));
    connect(print, &QPushButton::clicked, this, guarded(this, &frmPastClaims::print));
    connect(exportButton, &QPushButton::clicked, this, guarded(this, &frmPastClaims::exportData));
    connect(clearButton, &QPushButton::clicked, this, guarded(this, &frmPastClaims::clear));
    connect(close, &QPushButton::clicked, this, guarded(this, &QWidget::close));

    auto* row = new QHBoxLayout(panel);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    for (QPushButton* b : {m_cmdOpen, m_cmdResubmit, m_cmdCloseReject, rejected}) {
        row->addWidget(b);
    }
    row->addSpacing(10);
    row->addWidget(patients);
    row->addWidget(mark);
    row->addSpacing(10);
    row->addWidget(print);
    row->addWidget(exportButton);
    row->addStretch();
    row->addWidget(clearButton);
    row->addWidget(close);
    return panel;
}

}  // namespace brimsett
