#pragma once

#include "foundation/OptionsEditor.h"

#include <QDialog>
#include <QHash>
#include <QList>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QTabWidget;

namespace brimsett {

class CardCheckOptionsPage;
class ClaimOptionsPage;
class Database;
class Prompter;
class SettingsStore;

// The options screen: the numbered switches, label, printing and claim entry choices, the
// printed messages and the system settings. OK saves them all (and the next placer id) or, when a
// typed number is not one, says so and keeps the screen open with everything as typed.
class frmOptions : public QDialog {
    Q_OBJECT

public:
    frmOptions(const AppSettings& settings, SettingsStore& store, Database& db, Prompter& prompter,
               QWidget* parent = nullptr);

    // The settings as saved; the ones given when the screen was cancelled.
    const AppSettings& settings() const { return m_saved; }

    void accept() override;

signals:
    void passwordsRequested();

private:
    QWidget* switchesPage();
    QWidget* labelsPage();
    QWidget* printingPage();
    QWidget* messagesPage();
    QWidget* systemPage();
    QLineEdit* numberEdit(OptionsEditor::Field field);
    QLineEdit* textEdit(const QString& text);
    QWidget* pathRow(QLineEdit* edit);
    void toEditor();
    void showField(QWidget* widget);

    OptionsEditor m_editor;
    AppSettings m_saved;
    SettingsStore& m_store;
    QTabWidget* m_tabs = nullptr;
    QList<QCheckBox*> m_switches;       // switch n at n - 1
    QList<QCheckBox*> m_labelSwitches;  // label switch n at n - 1
    QHash<OptionsEditor::Field, QLineEdit*> m_numbers;
    QComboBox* m_envelopeStock = nullptr;
    QComboBox* m_chartStock = nullptr;
    QLineEdit* m_printerPort = nullptr;
    QLineEdit* m_wideOn = nullptr;
    QLineEdit* m_wideOff = nullptr;
    QLineEdit* m_boldOn = nullptr;
    QLineEdit* m_boldOff = nullptr;
    QPlainTextEdit* m_invoiceMessage = nullptr;
    QPlainTextEdit* m_receiptMessage = nullptr;
    QPlainTextEdit* m_referralMessage = nullptr;
    QLineEdit* m_dbPath = nullptr;
    QLineEdit* m_dbPPath = nullptr;
    QLineEdit* m_track0 = nullptr;
    QComboBox* m_menuFont = nullptr;
    ClaimOptionsPage* m_claimPage = nullptr;
    CardCheckOptionsPage* m_cardPage = nullptr;
};

}  // namespace brimsett
