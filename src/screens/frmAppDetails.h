#pragma once

#include "appointments/AppointmentDetails.h"

#include <QDialog>

class QComboBox;
class QLabel;
class QLineEdit;

namespace brimsett {

class Database;
class Prompter;
class SqlLog;
struct AppSettings;

// "Appointment Details": one appointment of the book, for a registered patient or a caller
// known by name and phone. The checks, the requisition guard and the double booking question
// are the book's (appointments::AppointmentBook); the screen only shows and gathers.
class frmAppDetails : public QDialog {
    Q_OBJECT

public:
    frmAppDetails(Database& db, AppSettings& settings, Prompter& prompter, const SqlLog& log,
                  QWidget* parent = nullptr);

    // Shows the stored appointment; false when there is none, or when the user chose to stay
    // on unsaved changes.
    bool showAppointment(qint64 appId);
    // A new appointment with what the book already knows (doctor, date, time, slot type).
    void startNew(const appointments::DetailsInput& preset);
    // The number of the appointment on screen; 0 for a new one.
    qint64 shownAppId() const { return m_shown.appId; }
    // True when the user may move on: nothing changed, the change saved, or thrown away.
    bool mayLeaveCurrent();
    // Where the health card check plugs in; nothing is asked without one.
    void setCardCheck(appointments::CardCheck card) { m_card = std::move(card); }

    bool save();
    void reject() override;

signals:
    void saved(qint64 appId);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* patientBox();
    QWidget* appointmentBox();
    void lineUpLabels();
    void fillLists();
    void showOnFields(const appointments::DetailsInput& input);
    appointments::DetailsInput fromFields() const;
    void showPatientLine();
    void slotTypeChosen(int index);
    bool changed() const;

    Database& m_db;
    AppSettings& m_settings;
    Prompter& m_prompter;
    const SqlLog& m_log;
    appointments::CardCheck m_card;
    appointments::DetailsInput m_shown;  // as stored, or as a new one began

    QLineEdit* m_patientId = nullptr;
    QLabel* m_patientLine = nullptr;
    QLineEdit* m_callerName = nullptr;
    QLineEdit* m_callerPhone = nullptr;
    QComboBox* m_doctor = nullptr;
    QLineEdit* m_date = nullptr;
    QLineEdit* m_time = nullptr;
    QLineEdit* m_length = nullptr;
    QComboBox* m_slotType = nullptr;
    QComboBox* m_status = nullptr;
    QLineEdit* m_notes = nullptr;
    QLineEdit* m_serviceCode = nullptr;
    QLineEdit* m_diagCode = nullptr;
    QLabel* m_readOnly = nullptr;
};

}  // namespace brimsett
