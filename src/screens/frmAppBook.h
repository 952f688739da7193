#pragma once

#include "appointments/AppointmentDetails.h"
#include "appointments/BookBilling.h"
#include "appointments/BookHours.h"

#include <QDate>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <optional>

class QCalendarWidget;
class QHBoxLayout;
class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QStackedWidget;
class QTableWidget;
class QTimer;

namespace brimsett {

class AppBookGrid;
class Clock;
class Database;
class HourField;
class Prompter;
class SettingsStore;
class SqlLog;
class frmAppBookFind;
class frmAppDetails;
struct AppSettings;

// The appointment book: the shown providers' day side by side, a provider's week, or the
// month's counts. The front desk works it from the keyboard: "+"/"-" a day, Ctrl+T today,
// Enter opens or books, Insert books, Delete cancels, the status letters " OCWSNB" set the
// status, Ctrl+X and Ctrl+V move an appointment (as dragging does); Ctrl+F finds, Ctrl+P
// prints the day sheet, Ctrl+B bills, Ctrl+K counts the day. It stays loaded all day:
// closing hides it.
class frmAppBook : public QWidget {
    Q_OBJECT

public:
    static inline const QString kTitle = QStringLiteral("Appointment Book");
    enum class View { Day, Week, Month };

    // Gives the one details window of the program, made or brought forward.
    using DetailsWindow = std::function<frmAppDetails*()>;
    // Opens claim entry on the appointment; false when claim entry stayed on its own work.
    using BillAppointment = std::function<bool(const appointments::BillingStart&)>;
    // Opens the overnight card validation on a provider and a day.
    using OvernightCheck = std::function<void(const QString& doctorId, const QDate& day)>;

    frmAppBook(Database& db, AppSettings& settings, SettingsStore& store, Prompter& prompter,
               const Clock& clock, const SqlLog& log, DetailsWindow details, BillAppointment bill,
               QWidget* parent = nullptr);
    ~frmAppBook() override;

    View view() const { return m_view; }
    void setView(View view);
    QDate shownDate() const { return m_date; }
    void showDate(const QDate& date);
    // The providers shown, side by side in the day view; refused (and told) when empty.
    bool setProviders(const QStringList& doctorIds);
    QStringList providers() const { return m_providers; }
    appointments::ShownHours shownHours() const { return m_hours; }
    void setShownHours(const appointments::ShownHours& hours);
    // Rereads the shown days, keeping the current cell.
    void refresh();
    // Shows the appointment's day with its provider and selects it; false when it is gone.
    bool findAppointment(qint64 appId);
    // Today's day sheets of the shown providers, in one preview.
    void printTodaysAppointments();

    // The desk's actions on the current cell.
    void openOrBook();
    void book();
    void cancelCurrent();
    void setStatusOfCurrent(int status);
    void cutCurrent();
    void pasteHere();
    bool moveAppointment(qint64 appId, int column, int minute);
    void countDay();
    void billCurrent();
    void printDaySheet();
    void openFind();
    // The shown providers' patients of the day whose card failed its last check.
    void printRejectedCards();
    void setOvernightCheck(OvernightCheck open) { m_overnight = std::move(open); }
    void openOvernightCheck();

    AppBookGrid* grid() const { return m_grid; }
    QTableWidget* monthTable() const { return m_month; }
    QString statusText() const;

signals:
    // The desk asks for the book's setup (slot types, templates, columns).
    void setupRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    QWidget* buildTop();
    QWidget* buildButtons();
    void addCardButton(QHBoxLayout* row);
    void addShortcuts();
    void loadProviderNames();
    void providersTyped();
    void hoursTyped();
    void reload();
    void reloadMonth();
    void monthCellChosen();
    bool handleDeskKey(QKeyEvent* event);
    // Loads the appointment, applies change and saves it through the book; the view is read
    // again with it selected. False when nothing was saved (told through the prompter).
    bool changeAppointment(qint64 appId,
                           const std::function<void(appointments::DetailsInput&)>& change);
    QString providerName(const QString& doctorId) const;
    QString currentDoctor() const;
    QDate currentDate() const;
    std::optional<qint64> currentAppId() const;
    frmAppDetails* details();
    void setStatus(const QString& text);

    Database& m_db;
    AppSettings& m_settings;
    SettingsStore& m_store;
    Prompter& m_prompter;
    const Clock& m_clock;
    const SqlLog& m_log;
    DetailsWindow m_details;
    BillAppointment m_bill;
    OvernightCheck m_overnight;

    View m_view = View::Day;
    QDate m_date;
    QStringList m_providers;
    QString m_weekProvider;
    appointments::ShownHours m_hours;
    std::optional<qint64> m_cut;
    QHash<QString, QString> m_providerNames;  // by the number in capitals
    QHash<QString, QString> m_providerIds;    // the register's own spelling

    QDateEdit* m_dateEdit = nullptr;
    QComboBox* m_viewBox = nullptr;
    QLineEdit* m_providerEdit = nullptr;
    HourField* m_from = nullptr;
    HourField* m_to = nullptr;
    QCalendarWidget* m_calendar = nullptr;
    QStackedWidget* m_stack = nullptr;
    AppBookGrid* m_grid = nullptr;
    QTableWidget* m_month = nullptr;
    QLabel* m_heading = nullptr;
    QLabel* m_status = nullptr;
    QTimer* m_tick = nullptr;
    QPointer<frmAppBookFind> m_find;
};

}  // namespace brimsett
