#pragma once

#include "appointments/BookQueries.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QTableWidget;

namespace brimsett {

class Clock;
class Database;
class Prompter;
class SettingsStore;
struct AppSettings;

// "Find Appointments": by patient (a number, or a name "Last, First") or by notes; newest
// first. Enter in the text searches, Enter on a row goes to the appointment in the book,
// Alt+P prints the list. The contains choice is this computer's ("AppSearch").
class frmAppBookFind : public QDialog {
    Q_OBJECT

public:
    static inline const QString kTitle = QStringLiteral("Find Appointments");

    frmAppBookFind(Database& db, SettingsStore& store, Prompter& prompter, const Clock& clock,
                   const AppSettings& settings, QWidget* parent = nullptr);

    void focusText();
    // Runs the find as typed; false when it was refused.
    bool search();
    void print();
    const QList<appointments::FoundAppointment>& found() const { return m_found; }
    QLineEdit* textField() const { return m_text; }
    QTableWidget* table() const { return m_table; }
    QString countText() const;

signals:
    void chosen(qint64 appId);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void goToCurrent();

    Database& m_db;
    SettingsStore& m_store;
    Prompter& m_prompter;
    const Clock& m_clock;
    const AppSettings& m_settings;
    QList<appointments::FoundAppointment> m_found;

    QLineEdit* m_text = nullptr;
    QComboBox* m_by = nullptr;
    QCheckBox* m_contains = nullptr;
    QTableWidget* m_table = nullptr;
    QLabel* m_count = nullptr;
};

}  // namespace brimsett
