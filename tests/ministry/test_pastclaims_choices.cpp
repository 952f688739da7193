#include "OfficeFixture.h"
#include "foundation/Database.h"
#include "foundation/SettingsStore.h"
#include "ministry/PastClaimsChoices.h"

#include <QtTest>

using namespace brimsett;

// What the past-claims filters offer, read from an office's batches, answers and items.
class TestPastClaimsChoices : public QObject {
    Q_OBJECT

private slots:
    // Each batch, remittance file and facility is offered once: a claim answered by two
    // files offers both, and empty values none.
    void listsEachChoiceOnce() {
        test::OfficeFixture o;
        o.db->exec("Insert Into batches (BatchID) Values ('202601050001'), ('202603010002')");
        o.db->exec(
            "Insert Into claims (ClaimID, BatchID, AcctNum, PayProg, RA) Values"
            " (1, 'b', '1', 'RMB', 'PK1.001 20260110!PK2.001 20260210!'),"
            " (2, 'b', '2', 'RMB', 'PK2.001 20260210!'), (3, 'b', '3', 'RMB', ''),"
            " (4, 'b', '4', 'RMB', NULL)");
        o.db->exec(
            "Insert Into items (ClaimID, ItemID, facility) Values (1, 1, 'North Wing'),"
            " (1, 2, 'Clinic'), (2, 1, 'Clinic'), (3, 1, NULL), (4, 1, '')");
        QCOMPARE(pastclaims::batchChoices(*o.db), QStringList({"202603010002", "202601050001"}));
        QCOMPARE(pastclaims::remittanceChoices(*o.db),
                 QStringList({"PK1.001 20260110", "PK2.001 20260210"}));
        QCOMPARE(pastclaims::facilityChoices(*o.db), QStringList({"Clinic", "North Wing"}));
    }

    // The filters' switches are on only at "1"; the switch for claims without a doctor is
    // read in either spelling the office may have written it in.
    void readsTheSwitches_data() {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QList<bool>>("on");  // status, remittance, facility, without doctor
        QTest::newRow("none") << ""
                              << "" << QList<bool>{false, false, false, false};
        QTest::newRow("status") << "EnablePCStatus"
                                << "1" << QList<bool>{true, false, false, false};
        QTest::newRow("not 1") << "EnableRA"
                               << "-1" << QList<bool>{false, false, false, false};
        QTest::newRow("facility") << "EnablePastFac"
                                  << "1" << QList<bool>{false, false, true, false};
        QTest::newRow("no doctor") << "OptPCNoDoc"
                                   << "1" << QList<bool>{false, false, false, true};
        QTest::newRow("no doctor, options screen") << "OptPCnoDoc"
                                                   << "1" << QList<bool>{false, false, false, true};
    }
    void readsTheSwitches() {
        QFETCH(QString, key);
        QFETCH(QString, value);
        QFETCH(QList<bool>, on);
        test::TempOffice office;
        if (!key.isEmpty()) {
            office.store().save("Options", key, value);
        }
        const auto o = pastclaims::ScreenOptions::read(office.store());
        QCOMPARE((QList<bool>{o.status, o.remittance, o.facility, o.withoutDoctor}), on);
    }
};

QTEST_MAIN(TestPastClaimsChoices)
#include "test_pastclaims_choices.moc"
