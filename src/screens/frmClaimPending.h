#pragma once

#include "claims/PendingClaims.h"
#include "foundation/Money.h"
#include "patients/Provider.h"

#include <QGroupBox>

#include <functional>
#include <optional>

class QComboBox;
class QLabel;
class QTreeWidget;

namespace brimsett {

// The lower half of claim entry: the claims to the ministry still waiting in the pending
// batch, of one provider or all, in the order chosen, with their total. Enter or a
// double-click opens a claim on the screen above; Delete deletes it (asked); "Split",
// "Reverse Split" and "Resubmit..." do what they say. The list is read again after each.
class frmClaimPending : public QGroupBox {
    Q_OBJECT

public:
    frmClaimPending(Database& db, AppSettings& settings, Prompter& prompter, const Clock& clock,
                    const SqlLog& log, MoneyFormat money, QWidget* parent = nullptr);

    void setProviders(const QList<Provider>& providers);
    // Asked before claims are split or joined again: the claim open for editing must leave
    // the screen first, or saving it would put back items that moved. False stops the action.
    void setLeaveOpenClaim(std::function<bool()> leave) { m_leaveOpenClaim = std::move(leave); }
    // Reads the list again, keeping the chosen claim chosen when it is still there.
    void reload();
    QTreeWidget* list() const { return m_list; }
    // The claim of the chosen line; none when no line is chosen.
    std::optional<qint64> chosenClaim() const;

    void deleteChosen();
    void splitChosen();
    void reverseSplits();
    void resubmit();

signals:
    void openRequested(qint64 claimId);
    void claimDeleted(qint64 claimId);
    // A line for the window's status line.
    void note(const QString& text);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QString chosenDoctor() const;
    void fail(const QString& doing, const QString& message);

    Database& m_db;
    AppSettings& m_settings;
    Prompter& m_prompter;
    const Clock& m_clock;
    const SqlLog& m_log;
    MoneyFormat m_money;
    QComboBox* m_doctor = nullptr;
    QComboBox* m_order = nullptr;
    QTreeWidget* m_list = nullptr;
    QLabel* m_total = nullptr;
    std::function<bool()> m_leaveOpenClaim = [] { return true; };
};

}  // namespace brimsett
