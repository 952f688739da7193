#include "screens/frmAppBook.h"

#include "appointments/AppColumns.h"
#include "appointments/AppointmentBook.h"
#include "appointments/AppointmentTime.h"
#include "appointments/BookQueries.h"
#include "appointments/SlotTypes.h"
#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "foundation/SettingsStore.h"
#include "patients/ProviderRegister.h"
#include "screens/AppBookGrid.h"
#include "screens/EnterMovesOn.h"
#include "screens/HourField.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"
#include "screens/frmAppBookFind.h"
#include "screens/frmAppDetails.h"

#include <QCalendarWidget>
#include <QComboBox>
#include <QDateEdit>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace brimsett {

using namespace appointments;

namespace {

constexpr int kRefreshMs = 60 * 1000;

QStringList splitIds(const QString& text) {
    static const QRegularExpression separators(QStringLiteral("[\\s,;]+"));
    QStringList ids;
    for (const QString& id : text.split(separators, Qt::SkipEmptyParts)) {
        if (!ids.contains(id.toUpper())) {
            ids << id.toUpper();
        }
    }
    return ids;
}

// The first day of the week shown: Monday, or Sunday when the week has seven days.
QDate weekStart(const QDate& date, bool sevenDays) {
    const int back = sevenDays ? date.dayOfWeek() % 7 : date.dayOfWeek() - 1;
    return date.addDays(-back);
}

}  // namespace

frmAppBook::frmAppBook(Database& db, AppSettings& settings, SettingsStore& store,
                       Prompter& prompter, const Clock& clock, const SqlLog& log,
                       DetailsWindow details, BillAppointment bill, QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_db(db),
      m_settings(settings),
      m_store(store),
      m_prompter(ScreenPrompter::attach(prompter, this)),
      m_clock(clock),
      m_log(log),
      m_details(std::move(details)),
      m_bill(std::move(bill)),
      m_date(clock.today()),
      m_hours(readShownHours(store, settings)) {
    setWindowTitle(kTitle);
    setObjectName(QStringLiteral("frmAppBook"));

    m_grid = new AppBookGrid(this);
    m_grid->setLineHeight(settings.appLineHeight);
    m_grid->installEventFilter(this);
    m_month = new QTableWidget(6, 7, this);
    m_month->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_month->setSelectionMode(QAbstractItemView::SingleSelection);
    m_month->verticalHeader()->hide();
    m_month->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_month->verticalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_month->setWordWrap(true);
    m_month->installEventFilter(this);
    m_stack = new QStackedWidget(this);
    m_stack->addWidget(m_grid);
    m_stack->addWidget(m_month);

    m_calendar = new QCalendarWidget(this);
    m_calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    m_calendar->setFocusPolicy(Qt::ClickFocus);
    m_calendar->setVisible(false);
    connect(m_calendar, &QCalendarWidget::clicked, this,
            guarded(this, [this](const QDate& date) { showDate(date); }));

    m_heading = new QLabel(this);
    QFont bold = m_heading->font();
    bold.setBold(true);
    m_heading->setFont(bold);
    m_status = new QLabel(this);

    auto* middle = new QHBoxLayout;
    auto* side = new QVBoxLayout;
    side->addWidget(m_calendar);
    side->addStretch();
    middle->addLayout(side);
    middle->addWidget(m_stack, 1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(buildTop());
    layout->addWidget(m_heading);
    layout->addLayout(middle, 1);
    layout->addWidget(buildButtons());
    layout->addWidget(m_status);

    connect(m_grid, &AppBookGrid::activated, this, guarded(this, &frmAppBook::openOrBook));
    connect(m_grid, &AppBookGrid::moveRequested, this,
            guarded(this, [this](qint64 appId, int column, int minute) {
                moveAppointment(appId, column, minute);
            }));
    connect(m_month, &QTableWidget::cellDoubleClicked, this,
            guarded(this, &frmAppBook::monthCellChosen));
    connect(m_month, &QTableWidget::currentCellChanged, this,
            guarded(this, [this](int row, int column) {
                const QTableWidgetItem* item = m_month->item(row, column);
                if (item != nullptr && item->data(Qt::UserRole).toDate().isValid()) {
                    m_date = item->data(Qt::UserRole).toDate();
                    const QSignalBlocker block(m_dateEdit);
                    m_dateEdit->setDate(m_date);
                }
            }));
    addShortcuts();

    m_tick = new QTimer(this);
    m_tick->setInterval(kRefreshMs);
    connect(m_tick, &QTimer::timeout, this, guarded(this, &frmAppBook::refresh));

    loadProviderNames();
    QStringList shown;
    for (const QString& id : splitIds(settings.lastDoctorApp)) {
        // A provider removed since is no longer shown.
        if (m_providerIds.contains(id)) {
            shown << m_providerIds.value(id);
        }
    }
    if (shown.isEmpty() && !m_providerIds.isEmpty()) {
        QStringList all = m_providerIds.values();
        std::sort(all.begin(), all.end());
        shown << all.first();
    }
    m_providers = shown;
    m_providerEdit->setText(m_providers.join(QStringLiteral(", ")));
    m_from->setHour(m_hours.first);
    m_to->setHour(m_hours.last);
    const QSignalBlocker block(m_dateEdit);
    m_dateEdit->setDate(m_date);
    reload();
    resize(1000, 580);
    m_grid->setFocus();  // the desk starts in the day, not in a field
}

frmAppBook::~frmAppBook() = default;

QWidget* frmAppBook::buildTop() {
    auto* top = new QWidget(this);
    auto* row = new QHBoxLayout(top);
    row->setContentsMargins(0, 0, 0, 0);
    auto* enter = new EnterMovesOn(this);

    m_dateEdit = new QDateEdit(top);
    m_dateEdit->setDisplayFormat(QStringLiteral("ddd yyyy/MM/dd"));
    m_dateEdit->setCalendarPopup(true);
    m_dateEdit->setMinimumWidth(
        m_dateEdit->fontMetrics().horizontalAdvance(QStringLiteral("Wed 2026/12/31")) + 44);
    connect(m_dateEdit, &QDateEdit::dateChanged, this,
            guarded(this, [this](const QDate& date) { showDate(date); }));
    auto* dateLabel = new QLabel(QStringLiteral("&Date:"), top);
    dateLabel->setBuddy(m_dateEdit);

    m_viewBox = new QComboBox(top);
    m_viewBox->addItems({QStringLiteral("Day"), QStringLiteral("Week"), QStringLiteral("Month")});
    connect(m_viewBox, &QComboBox::activated, this,
            guarded(this, [this](int index) { setView(View(index)); }));
    auto* viewLabel = new QLabel(QStringLiteral("&View:"), top);
    viewLabel->setBuddy(m_viewBox);

    m_providerEdit = new QLineEdit(top);
    m_providerEdit->setToolTip(QStringLiteral("Provider numbers, separated by commas"));
    m_providerEdit->setMinimumWidth(90);
    connect(m_providerEdit, &QLineEdit::editingFinished, this,
            guarded(this, &frmAppBook::providersTyped));
    auto* providerLabel = new QLabel(QStringLiteral("P&roviders:"), top);
    providerLabel->setBuddy(m_providerEdit);

    m_from = new HourField(top);
    m_to = new HourField(top);
    auto* fromLabel = new QLabel(QStringLiteral("&Hours:"), top);
    fromLabel->setBuddy(m_from->hourBox());
    for (HourField* field : {m_from, m_to}) {
        enter->watch(field->hourBox());
        enter->watch(field->halfBox());
        connect(field, &HourField::committed, this, guarded(this, &frmAppBook::hoursTyped));
    }
    enter->watch(m_providerEdit);

    auto* hint = new QLabel(QStringLiteral(" +  = Forward 1 day\n  -  = Back 1 day"), top);
    QFont small = hint->font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    hint->setFont(small);

    row->addWidget(dateLabel);
    row->addWidget(m_dateEdit);
    row->addWidget(viewLabel);
    row->addWidget(m_viewBox);
    row->addWidget(providerLabel);
    row->addWidget(m_providerEdit, 1);
    row->addWidget(fromLabel);
    row->addWidget(m_from);
    row->addWidget(new QLabel(QStringLiteral("to"), top));
    row->addWidget(m_to);
    row->addWidget(hint);
    return top;
}

QWidget* frmAppBook::buildButtons() {
    auto* bar = new QWidget(this);
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const QString& caption, const QString& tip, auto slot) {
        auto* button = new QPushButton(caption, bar);
        button->setToolTip(tip);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, guarded(this, slot));
        row->addWidget(button);
        return button;
    };
    add(QStringLiteral("&Today"), QStringLiteral("Ctrl+T"), [this] { showDate(m_clock.today()); });
    add(QStringLiteral("&Book"), QStringLiteral("Insert"), &frmAppBook::book);
    add(QStringLiteral("&Find..."), QStringLiteral("Ctrl+F"), &frmAppBook::openFind);
    add(QStringLiteral("&Print..."), QStringLiteral("Ctrl+P"), &frmAppBook::printDaySheet);
    add(QStringLiteral("&Count"), QStringLiteral("Ctrl+K"), &frmAppBook::countDay);
    add(QStringLiteral("B&ill"), QStringLiteral("Ctrl+B"), &frmAppBook::billCurrent);
    add(QStringLiteral("R&efresh"), QStringLiteral("Ctrl+R"), &frmAppBook::refresh);
    row->addStretch();
    addCardButton(row);
    add(QStringLiteral("Set&up..."), QStringLiteral("Slot types, templates and columns"),
        [this] { emit setupRequested(); });
    add(QStringLiteral("Close"), QStringLiteral("Esc"), [this] { close(); });
    return bar;
}

void frmAppBook::addShortcuts() {
    const auto key = [this](const QKeySequence& sequence, auto slot) {
        auto* shortcut = new QShortcut(sequence, this);
        shortcut->setContext(Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, this, guarded(this, slot));
    };
    key(QKeySequence(Qt::CTRL | Qt::Key_T), [this] { showDate(m_clock.today()); });
    key(QKeySequence(Qt::CTRL | Qt::Key_R), &frmAppBook::refresh);
    key(QKeySequence(Qt::CTRL | Qt::Key_F), &frmAppBook::openFind);
    key(QKeySequence(Qt::CTRL | Qt::Key_P), &frmAppBook::printDaySheet);
    key(QKeySequence(Qt::CTRL | Qt::Key_K), &frmAppBook::countDay);
    key(QKeySequence(Qt::CTRL | Qt::Key_B), &frmAppBook::billCurrent);
    key(QKeySequence(Qt::CTRL | Qt::Key_1), [this] { setView(View::Day); });
    key(QKeySequence(Qt::CTRL | Qt::Key_2), [this] { setView(View::Week); });
    key(QKeySequence(Qt::CTRL | Qt::Key_3), [this] { setView(View::Month); });
    key(QKeySequence(Qt::CTRL | Qt::Key_J), &frmAppBook::printRejectedCards);
    key(QKeySequence(Qt::CTRL | Qt::Key_O), &frmAppBook::openOvernightCheck);
    key(QKeySequence(Qt::Key_Escape), [this] { close(); });
}

void frmAppBook::loadProviderNames() {
    m_providerNames.clear();
    m_providerIds.clear();
    try {
        for (const Provider& p : ProviderRegister(m_db, m_settings, m_prompter, m_log).list()) {
            m_providerNames.insert(p.doctorId.toUpper(), p.displayName());
            m_providerIds.insert(p.doctorId.toUpper(), p.doctorId);
        }
    } catch (const DbError& e) {
        setStatus(e.message());
    }
}

QString frmAppBook::providerName(const QString& doctorId) const {
    const QString name = m_providerNames.value(doctorId.toUpper());
    return name.isEmpty() ? doctorId : name;
}

void frmAppBook::setStatus(const QString& text) {
    m_status->setText(text);
}

QString frmAppBook::statusText() const {
    return m_status->text();
}

frmAppDetails* frmAppBook::details() {
    frmAppDetails* window = m_details ? m_details() : nullptr;
    if (window != nullptr) {
        connect(window, &frmAppDetails::saved, this, &frmAppBook::refresh, Qt::UniqueConnection);
    }
    return window;
}

// ---- what is shown ----

void frmAppBook::setView(View view) {
    if (view == View::Week && m_view == View::Day) {
        m_weekProvider = currentDoctor();
    }
    m_view = view;
    m_viewBox->setCurrentIndex(int(view));
    reload();
    if (view == View::Month) {
        m_month->setFocus();
    } else {
        m_grid->setFocus();
    }
}

void frmAppBook::showDate(const QDate& date) {
    if (!date.isValid()) {
        return;
    }
    const bool sameMonth = date.year() == m_date.year() && date.month() == m_date.month();
    m_date = date;
    {
        const QSignalBlocker block(m_dateEdit);
        m_dateEdit->setDate(date);
    }
    if (m_view == View::Month && sameMonth) {
        // Moving within the month moves the current cell only.
        for (int r = 0; r < m_month->rowCount(); ++r) {
            for (int c = 0; c < m_month->columnCount(); ++c) {
                const QTableWidgetItem* item = m_month->item(r, c);
                if (item != nullptr && item->data(Qt::UserRole).toDate() == date) {
                    m_month->setCurrentCell(r, c);
                }
            }
        }
        return;
    }
    reload();
}

bool frmAppBook::setProviders(const QStringList& doctorIds) {
    if (doctorIds.isEmpty()) {
        m_prompter.tell(QStringLiteral("Brimsett"),
                        {QStringLiteral("Please enter at least one provider.")}, Icon::Information);
        m_providerEdit->setText(m_providers.join(QStringLiteral(", ")));
        return false;
    }
    QStringList unknown;
    for (const QString& id : doctorIds) {
        if (!m_providerNames.contains(id.toUpper())) {
            unknown << id;
        }
    }
    if (!unknown.isEmpty()) {
        loadProviderNames();  // a provider added since the book was loaded
        unknown.erase(std::remove_if(unknown.begin(), unknown.end(),
                                     [this](const QString& id) {
                                         return m_providerNames.contains(id.toUpper());
                                     }),
                      unknown.end());
    }
    if (!unknown.isEmpty()) {
        m_prompter.tell(QStringLiteral("Brimsett"),
                        {QStringLiteral("No provider has the number %1.")
                             .arg(unknown.join(QStringLiteral(", ")))},
                        Icon::Information);
        m_providerEdit->setText(m_providers.join(QStringLiteral(", ")));
        return false;
    }
    // Shown (and booked) as the register spells them, whatever case was typed.
    m_providers.clear();
    for (const QString& id : doctorIds) {
        m_providers << m_providerIds.value(id.toUpper(), id);
    }
    m_settings.lastDoctorApp = m_providers.join(QLatin1Char(','));
    m_providerEdit->setText(m_providers.join(QStringLiteral(", ")));
    if (!m_providers.contains(m_weekProvider)) {
        m_weekProvider = m_providers.first();
    }
    reload();
    return true;
}

void frmAppBook::providersTyped() {
    const QStringList typed = splitIds(m_providerEdit->text());
    if (typed.join(QLatin1Char(',')) != m_providers.join(QLatin1Char(',')).toUpper()) {
        setProviders(typed);
    }
}

void frmAppBook::setShownHours(const ShownHours& hours) {
    m_hours = hours;
    m_from->setHour(hours.first);
    m_to->setHour(hours.last);
    saveShownHours(m_store, hours);
    reload();
}

void frmAppBook::hoursTyped() {
    const std::optional<int> first = m_from->hour();
    const std::optional<int> last = m_to->hour();
    if (!first || !last) {
        // Left without an hour of 1 to 12: the range stays as it was.
        m_from->setHour(m_hours.first);
        m_to->setHour(m_hours.last);
        return;
    }
    if (*last < *first) {
        m_prompter.tell(QStringLiteral("Brimsett"),
                        {QStringLiteral("The last hour shown comes before the first.")},
                        Icon::Information);
        m_from->setHour(m_hours.first);
        m_to->setHour(m_hours.last);
        return;
    }
    if (ShownHours{*first, *last} != m_hours) {
        setShownHours({*first, *last});
    }
}

void frmAppBook::reload() {
    m_stack->setCurrentWidget(m_view == View::Month ? static_cast<QWidget*>(m_month) : m_grid);
    // The day calendar serves the day view; the week needs the room, the month is one.
    m_calendar->setVisible(m_settings.dailyCalendar && m_view == View::Day);
    if (!m_calendar->isHidden()) {
        const QSignalBlocker block(m_calendar);
        m_calendar->setSelectedDate(m_date);
    }
    if (m_providers.isEmpty()) {
        m_heading->setText(QStringLiteral("Please enter at least one provider."));
        m_grid->setColumns({});
        return;
    }
    if (m_view == View::Month) {
        reloadMonth();
        return;
    }
    try {
        QList<BookColumn> columns;
        if (m_view == View::Day) {
            for (const QString& id : m_providers) {
                columns << BookColumn{providerName(id), id, m_date, {}};
            }
            m_heading->setText(datetext::longDate(m_date));
        } else {
            const QString id = m_weekProvider.isEmpty() ? m_providers.first() : m_weekProvider;
            const QDate first = weekStart(m_date, m_settings.sevenDayWeek);
            const int days = m_settings.sevenDayWeek ? 7 : 5;
            for (int d = 0; d < days; ++d) {
                const QDate day = first.addDays(d);
                columns << BookColumn{
                    QLocale().toString(day, QStringLiteral("ddd MM/dd")), id, day, {}};
            }
            m_heading->setText(QStringLiteral("Week of %1 for %2")
                                   .arg(datetext::longDate(first), providerName(id)));
        }
        // Every shown day in one reading: a server office pays for each statement.
        QList<DayKey> keys;
        for (const BookColumn& column : columns) {
            keys << DayKey{column.doctorId, column.date};
        }
        const QList<QList<DayLine>> lines = dayLinesOf(m_db, keys);
        for (qsizetype c = 0; c < columns.size(); ++c) {
            columns[c].lines = lines.at(c);
        }
        // The desk's column choice says what each booking shows.
        m_grid->setBlockFields(
            blockFields(LoadColumns(m_db), m_settings.columnServCode, m_settings.columnDiagCode));
        m_grid->setRange(m_hours.firstMinute(), m_hours.lastMinute(),
                         slotStepMinutes(m_settings.timeSlot));
        m_grid->setNow(m_clock.now());
        m_grid->setColumns(columns);
        if (m_view == View::Week) {
            const qsizetype day = columns.first().date.daysTo(m_date);
            if (day >= 0 && day < columns.size()) {
                m_grid->setCurrent(int(day), m_grid->currentMinute());
            }
        }
    } catch (const DbError& e) {
        // A failed reading leaves the view as it was.
        m_prompter.error({e.message()});
    }
}

void frmAppBook::reloadMonth() {
    const QDate first(m_date.year(), m_date.month(), 1);
    // The doctors' counts by date; one line per provider when several are shown.
    QHash<QDate, QStringList> lines;
    const int cellWidth = m_month->viewport()->width() / 7;
    const bool wide =
        cellWidth > m_month->fontMetrics().horizontalAdvance(QStringLiteral("WWW (+99 appt's)"));
    try {
        for (const QString& id : m_providers) {
            for (const MonthDay& day : monthCounts(m_db, id, first)) {
                const QString count = monthCellCount(day.count, wide);
                lines[day.date] << (m_providers.size() > 1 ? id + QLatin1Char(' ') + count : count);
            }
        }
    } catch (const DbError& e) {
        m_prompter.error({e.message()});
        return;
    }
    m_heading->setText(QLocale().toString(first, QStringLiteral("MMMM yyyy")) +
                       QStringLiteral(" for ") + m_providers.join(QStringLiteral(", ")));
    QStringList captions;
    for (int d = 0; d < 7; ++d) {
        // Sunday first, as the office's wall calendar.
        captions << QLocale().dayName(d == 0 ? 7 : d, QLocale::ShortFormat);
    }
    m_month->setHorizontalHeaderLabels(captions);
    m_month->clearContents();
    const int lead = first.dayOfWeek() % 7;
    const QDate today = m_clock.today();
    for (int day = 1; day <= first.daysInMonth(); ++day) {
        const QDate date(first.year(), first.month(), day);
        const int cell = lead + day - 1;
        QString text = QString::number(day);
        if (date == today) {
            text += QStringLiteral("  Today");
        }
        for (const QString& line : lines.value(date)) {
            text += QLatin1Char('\n') + line;
        }
        auto* item = new QTableWidgetItem(text);
        item->setData(Qt::UserRole, date);
        item->setTextAlignment(Qt::AlignLeft | Qt::AlignTop);
        if (date == today) {
            QFont font = item->font();
            font.setBold(true);
            item->setFont(font);
            item->setBackground(QColor(0xff, 0xf3, 0xc4));
        }
        m_month->setItem(cell / 7, cell % 7, item);
    }
    const int cell = lead + m_date.day() - 1;
    const QSignalBlocker block(m_month);
    m_month->setCurrentCell(cell / 7, cell % 7);
}

void frmAppBook::monthCellChosen() {
    const QTableWidgetItem* item = m_month->currentItem();
    if (item == nullptr || !item->data(Qt::UserRole).toDate().isValid()) {
        return;
    }
    m_date = item->data(Qt::UserRole).toDate();
    setView(View::Day);
}

void frmAppBook::refresh() {
    if (m_view == View::Month) {
        reloadMonth();
        return;
    }
    reload();
}

QString frmAppBook::currentDoctor() const {
    const QList<BookColumn>& columns = m_grid->columns();
    const int c = m_grid->currentColumn();
    if (m_view != View::Month && c >= 0 && c < columns.size()) {
        return columns[c].doctorId;
    }
    return m_providers.isEmpty() ? QString() : m_providers.first();
}

QDate frmAppBook::currentDate() const {
    const QList<BookColumn>& columns = m_grid->columns();
    const int c = m_grid->currentColumn();
    if (m_view != View::Month && c >= 0 && c < columns.size()) {
        return columns[c].date;
    }
    return m_date;
}

std::optional<qint64> frmAppBook::currentAppId() const {
    if (m_view == View::Month) {
        return std::nullopt;
    }
    const std::optional<Appointment> a = m_grid->currentAppointment();
    return a ? std::optional<qint64>(a->appId) : std::nullopt;
}

bool frmAppBook::findAppointment(qint64 appId) {
    const std::optional<Appointment> a = AppointmentStore(m_db).load(appId);
    if (!a) {
        return false;
    }
    if (!a->doctorId.isEmpty() && !m_providers.contains(a->doctorId, Qt::CaseInsensitive)) {
        QStringList shown = m_providers;
        shown << a->doctorId;
        if (!setProviders(shown)) {
            return false;
        }
    }
    m_weekProvider = m_providerIds.value(a->doctorId.toUpper(), a->doctorId);
    if (m_view == View::Month) {
        m_view = View::Day;
        m_viewBox->setCurrentIndex(0);
    }
    m_date = QDate();
    showDate(a->appDate);
    // One outside the shown hours is on its day all the same, only not selected.
    m_grid->selectAppointment(appId);
    m_grid->setFocus();
    return true;
}

}  // namespace brimsett
