#pragma once

#include "hcv/OvernightBatch.h"
#include "screens/RepaintingWait.h"
#include "screens/TransferScreen.h"

#include <QDate>
#include <QList>
#include <QString>

class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;

namespace brimsett {

// "OBEC - Overnight Health Card Validation": the cards of a doctor's appointments on a day
// (Start), or one typed card (Send Card), go into the overnight files of hcv::OvernightBatch;
// the grid lists the cards of the batch prepared, which Submit hands over by the method of
// the list ("SubmitMethod"). Look Up shows what is stored of the last answer about the
// typed card.
//
// Keys: Enter moves on through the fields; every button has its Alt letter; Esc closes.
class FrmCheckHealth : public TransferScreen {
    Q_OBJECT

public:
    static inline const QString kTitle = QStringLiteral("OBEC - Overnight Health Card Validation");

    FrmCheckHealth(Database& db, AppSettings& settings, SettingsStore& store, Prompter& prompter,
                   const Clock& clock, const SqlLog& log, QString officeFolder,
                   QWidget* parent = nullptr);

    // Chooses the doctor and the day shown (an empty id or an invalid day keeps the field).
    void open(const QString& doctorId, const QDate& day);
    // The batch whose cards the grid lists; empty before one is prepared.
    QString batchId() const { return m_batchId; }

private:
    QWidget* buildDayPanel();
    QWidget* buildCardPanel();
    QWidget* buildGridPanel();
    void startClicked();
    void cardClicked();
    void lookUpClicked();
    void submitClicked();
    void showPrepared(const hcv::PreparedBatch& batch);
    void fillGrid();

    hcv::OvernightBatch m_batches;
    RepaintingWait m_wait;
    QString m_batchId;
    QList<hcv::OvernightCard> m_cards;  // as the grid lists them

    QLineEdit* m_day = nullptr;
    QLineEdit* m_healthNum = nullptr;
    QLineEdit* m_version = nullptr;
    QLabel* m_lookUp = nullptr;
    QTreeWidget* m_grid = nullptr;
    QLabel* m_gridCaption = nullptr;
    QPushButton* m_start = nullptr;
    QPushButton* m_card = nullptr;
    QPushButton* m_submit = nullptr;
};

}  // namespace brimsett
