#include "screens/frmAppBookFind.h"

#include "foundation/Clock.h"
#include "foundation/DbError.h"
#include "foundation/Prompter.h"
#include "foundation/SettingsStore.h"
#include "reports/Report.h"
#include "screens/ReportPreview.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace brimsett {

using namespace appointments;

namespace {

const QString kOptions = QStringLiteral("Options");
const QString kSearchKey = QStringLiteral("AppSearch");

}  // namespace

frmAppBookFind::frmAppBookFind(Database& db, SettingsStore& store, Prompter& prompter,
                               const Clock& clock, const AppSettings& settings, QWidget* parent)
    : QDialog(parent),
      m_db(db),
      m_store(store),
      m_prompter(ScreenPrompter::attach(prompter, this)),
      m_clock(clock),
      m_settings(settings) {
    setWindowTitle(kTitle);
    m_text = new QLineEdit(this);
    m_text->setPlaceholderText(QStringLiteral("Patient number, Last, First or notes"));
    m_text->installEventFilter(this);
    auto* textLabel = new QLabel(QStringLiteral("F&ind:"), this);
    textLabel->setBuddy(m_text);
    m_by = new QComboBox(this);
    m_by->addItems({QStringLiteral("Patient"), QStringLiteral("Notes")});
    auto* byLabel = new QLabel(QStringLiteral("&By:"), this);
    byLabel->setBuddy(m_by);
    m_contains = new QCheckBox(QStringLiteral("&Contains"), this);
    m_contains->setChecked(store.readNumber(kOptions, kSearchKey) == 1);
    auto* searchButton = new QPushButton(QStringLiteral("&Search"), this);
    searchButton->setAutoDefault(false);
    connect(searchButton, &QPushButton::clicked, this, guarded(this, &frmAppBookFind::search));

    m_table = new QTableWidget(0, 7, this);
    m_table->setHorizontalHeaderLabels(foundCaptions());
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->verticalHeader()->hide();
    for (int c = 0; c < 6; ++c) {
        m_table->horizontalHeader()->setSectionResizeMode(c, QHeaderView::ResizeToContents);
    }
    m_table->horizontalHeader()->setSectionResizeMode(6, QHeaderView::Stretch);
    m_table->installEventFilter(this);
    connect(m_table, &QTableWidget::cellDoubleClicked, this,
            guarded(this, &frmAppBookFind::goToCurrent));

    m_count = new QLabel(this);
    auto* printButton = new QPushButton(QStringLiteral("&Print"), this);
    printButton->setAutoDefault(false);
    connect(printButton, &QPushButton::clicked, this, guarded(this, &frmAppBookFind::print));
    auto* goButton = new QPushButton(QStringLiteral("&Go to"), this);
    goButton->setAutoDefault(false);
    connect(goButton, &QPushButton::clicked, this, guarded(this, &frmAppBookFind::goToCurrent));
    auto* closeButton = new QPushButton(QStringLiteral("Close"), this);
    closeButton->setAutoDefault(false);
    connect(closeButton, &QPushButton::clicked, this, &QDialog::reject);

    auto* top = new QHBoxLayout;
    top->addWidget(textLabel);
    top->addWidget(m_text, 1);
    top->addWidget(byLabel);
    top->addWidget(m_by);
    top->addWidget(m_contains);
    top->addWidget(searchButton);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_count, 1);
    bottom->addWidget(goButton);
    bottom->addWidget(printButton);
    bottom->addWidget(closeButton);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(m_table, 1);
    layout->addLayout(bottom);
    resize(760, 420);
}

void frmAppBookFind::focusText() {
    m_text->setFocus();
    m_text->selectAll();
}

QString frmAppBookFind::countText() const {
    return m_count->text();
}

bool frmAppBookFind::search() {
    m_store.saveNumber(kOptions, kSearchKey, m_contains->isChecked() ? 1 : 0);
    const std::optional<QList<FoundAppointment>> found = findAppointments(
        m_db, m_prompter, m_text->text(),
        m_by->currentIndex() == 1 ? FindBy::Notes : FindBy::Patient, m_contains->isChecked());
    if (!found) {
        focusText();
        return false;
    }
    m_found = *found;
    m_table->setRowCount(int(m_found.size()));
    for (int r = 0; r < m_found.size(); ++r) {
        const QStringList cells = m_found.at(r).columns();
        for (int c = 0; c < cells.size(); ++c) {
            auto* item = new QTableWidgetItem(cells.at(c));
            if (c == 0 || c == 4) {
                item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            }
            m_table->setItem(r, c, item);
        }
    }
    m_count->setText(foundCountLine(m_found.size()));
    if (m_found.isEmpty()) {
        focusText();
    } else {
        m_table->setCurrentCell(0, 0);
        m_table->setFocus();
    }
    return true;
}

void frmAppBookFind::print() {
    if (m_found.isEmpty()) {
        m_prompter.tell(kTitle, {QStringLiteral("Nothing to print.")}, Icon::Information);
        return;
    }
    showReportPreview(foundListReport(m_found, m_clock.today()),
                      reports::ReportStyle::fromSettings(m_settings), this);
}

void frmAppBookFind::goToCurrent() {
    const int row = m_table->currentRow();
    if (row < 0 || row >= m_found.size()) {
        return;
    }
    emit chosen(m_found.at(row).appId);
}

bool frmAppBookFind::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            try {
                if (watched == m_text) {
                    search();
                    return true;
                }
                if (watched == m_table) {
                    goToCurrent();
                    return true;
                }
            } catch (const DbError& e) {
                reportRefusal(this, e);
                return true;
            }
        }
    }
    return QDialog::eventFilter(watched, event);
}

}  // namespace brimsett
