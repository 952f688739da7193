#pragma once

#include "foundation/Money.h"
#include "ministry/PastClaims.h"
#include "ministry/PastClaimsChoices.h"
#include "screens/frmPastClaimsReject.h"

#include <QPointer>
#include <QString>
#include <QWidget>

#include <functional>
#include <optional>

class QButtonGroup;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTreeWidget;

namespace brimsett {

class Clock;
class Database;
class Prompter;
class SettingsStore;
class SqlLog;
struct AppSettings;

// "Past Claims": claim items of any state found by the filters on top (Enter in any of them
// searches), listed with their fee and what was paid, and totalled. From the list: print,
// export (Alt+E), the patients behind it, its rejected items; from the current row: open the
// claim in claim entry, resubmit it, close its rejection; and an invoice's claims marked
// paid. The screen only wires pastclaims:: and ClaimStore; each action is one transaction
// there.
class frmPastClaims : public QWidget {
    Q_OBJECT

public:
    static inline const QString kTitle = QStringLiteral("Past Claims");
    static inline const QString kExportTitle = QStringLiteral("Export Data");
    static inline const QString kHint = QStringLiteral(
        "Fill out any or all boxes above and press enter. Hit Alt E to export data to a file.");

    frmPastClaims(Database& db, AppSettings& settings, SettingsStore& store, Prompter& prompter,
                  const Clock& clock, const SqlLog& log, MoneyFormat money,
                  QWidget* parent = nullptr);

    // How a claim is put on the claim entry screen; false when it was not (the entry screen
    // says why). Without one, "Open claim" is not offered.
    void setClaimOpener(std::function<bool(qint64 claimId)> open);
    // How the export's file is chosen; by default a save dialog. An empty answer cancels.
    void setExportFileChooser(std::function<QString()> choose) {
        m_chooseExportFile = std::move(choose);
    }

    // The filters as the boxes hold them now.
    pastclaims::Filters filters() const;
    // Runs the search of the boxes; false when the filters were refused (the list stays).
    bool search();
    const pastclaims::Found& found() const { return m_found; }
    // The item of the current row; none when no row is current.
    std::optional<pastclaims::PastItem> currentItem() const;
    QString totalsLine() const;
    QString statusLine() const;
    frmPastClaimsReject* rejectWindow() const { return m_rejectWindow; }

    void print();
    void exportData();
    void showPatients();
    void markInvoicePaid();
    void showRejected();
    void openClaim();
    void resubmit();
    void closeRejection();
    // Every box back to "all", the list emptied, the sort back to its default.
    void clear();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The grid's columns, in the captions' order.
    enum Column {
        DocColumn,
        AccountColumn,
        PatientColumn,
        NameColumn,
        ProgramColumn,
        ServiceColumn,
        DiagColumn,
        DateColumn,
        FeeColumn,
        PaidColumn
    };

    QWidget* buildFilters();
    QWidget* buildList();
    QWidget* buildButtons();
    void loadChoices();
    void programChanged();
    void doctorChanged(int index);
    void headingClicked(int column);
    void showFound(std::optional<std::pair<qint64, int>> keep = {});
    void updateButtons();
    void setStatus(const QString& text);
    // Searches again after a change, keeping the current row's item when it is still found.
    void refresh();
    QString doctorName() const;

    Database& m_db;
    AppSettings& m_settings;
    SettingsStore& m_store;
    Prompter& m_prompter;
    const Clock& m_clock;
    const SqlLog& m_log;
    MoneyFormat m_money;
    pastclaims::ScreenOptions m_options;
    std::function<bool(qint64)> m_openClaim;
    std::function<QString()> m_chooseExportFile;

    pastclaims::Filters m_shownFilters;  // the filters of the list shown
    pastclaims::Found m_found;
    QString m_sort;
    QPointer<frmPastClaimsReject> m_rejectWindow;

    QComboBox* m_doctor = nullptr;
    QComboBox* m_program = nullptr;
    QComboBox* m_payer = nullptr;
    QRadioButton* m_byService = nullptr;
    QRadioButton* m_byBilled = nullptr;
    QLineEdit* m_from = nullptr;
    QLineEdit* m_to = nullptr;
    QLineEdit* m_diag = nullptr;
    QLineEdit* m_service = nullptr;
    QLineEdit* m_invoice = nullptr;
    QComboBox* m_status = nullptr;
    QComboBox* m_batch = nullptr;
    QComboBox* m_ra = nullptr;
    QComboBox* m_facility = nullptr;
    QTreeWidget* m_list = nullptr;
    QLabel* m_totals = nullptr;
    QLabel* m_statusLine = nullptr;
    QPushButton* m_cmdOpen = nullptr;
    QPushButton* m_cmdResubmit = nullptr;
    QPushButton* m_cmdCloseReject = nullptr;
};

}  // namespace brimsett
