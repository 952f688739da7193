#include "OfficeFixture.h"

#include "claims/FeeSchedule.h"

#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

// X001 has every fee; X002 no general and no anaesthetist fee; X003 no specialist fee;
// W005 was typed by hand in lower case with a blank; P001 has the office's pinned fees.
struct Office : test::OfficeFixture {
    FeeSchedule schedule{*db, log};

    Office() {
        const QString insert = QStringLiteral(
            "Insert Into servicecodes (ServiceCode, FeeGeneral, FeeSpecialist, FeeAssistant,"
            " UnitsAssistant, FeeAna, UnitsAna, FeeNonAna, UnitsNonAna)"
            " Values (?, ?, ?, ?, ?, ?, ?, ?, ?)");
        db->exec(insert, {"X001", 300000, 450000, 240800, 2, 600400, 4, 450300, 3});
        db->exec(insert, {"X002", 0, 500000, 0, 0, 0, 0, 200000, 2});
        db->exec(insert, {"X003", 250000, 0, 0, 0, 0, 0, 0, 0});
        db->exec(insert, {" w005", 110000, 0, 0, 0, 0, 0, 0, 0});
        db->exec(insert, {"P001", -420000, 0, 0, 0, -150000, 1, 0, 0});
    }
};

QString shown(const std::optional<ItemFee>& fee) {
    return fee ? fee->fee.format() + QStringLiteral(" units ") + QString::number(fee->units)
               : QStringLiteral("none");
}

}  // namespace

class TestFeeSchedule : public QObject {
    Q_OBJECT

private slots:
    void feeBySuffixAndSpecialty_data() {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("specialty");
        QTest::addColumn<QString>("expected");
        row("A, general practice", "X001A", "00", "30.00 units 0");
        row("A, specialty 0 written short", "X001A", "0", "30.00 units 0");
        row("A, specialty 12 is priced as general", "X001A", "12", "30.00 units 0");
        row("A, specialist", "X001A", "08", "45.00 units 0");
        row("A, general without a general fee", "X002A", "00", "50.00 units 0");
        row("A, 12 without a general fee", "X002A", "12", "50.00 units 0");
        row("A, specialist without a specialist fee", "X003A", "08", "25.00 units 0");
        row("B, assistant with units", "X001B", "08", "24.08 units 2");
        row("C, anaesthetist", "X001C", "00", "60.04 units 4");
        row("C, no anaesthetist fee: non-anaesthetist", "X002C", "08", "20.00 units 2");
        row("lower case code", "x001a", "08", "45.00 units 0");
        row("code stored in lower case", "W005A", "00", "11.00 units 0");
        row("A, pinned general fee", "P001A", "00", "42.00 units 0");
        row("C, pinned anaesthetist fee", "P001C", "00", "15.00 units 1");
        row("other suffix keeps its own fee", "X001D", "00", "none");
        row("code not in the schedule", "Y999A", "00", "none");
        row("no suffix", "X", "00", "none");
    }
    void feeBySuffixAndSpecialty() {
        QFETCH(QString, code);
        QFETCH(QString, specialty);
        QFETCH(QString, expected);
        Office o;
        QCOMPARE(shown(o.schedule.itemFee(code, specialty)), expected);
    }

    // A specialist's claim is repriced in the general practitioner's order, with the fee of
    // one service; unknown codes and other suffixes keep their fees.
    void repricingTakesTheGeneralOrderForOneService() {
        Office o;
        o.log.setOn(true);
        o.db->exec("Insert Into Doctors (DoctorID, SpecCode) Values ('SP', '08')");
        o.db->exec(
            "Insert Into claims (ClaimID, BatchID, AcctNum, DoctorID, PayProg)"
            " Values (10000001, '000000000000', '00000001', 'SP', 'HCP - P')");
        const QString item = QStringLiteral(
            "Insert Into items (ClaimID, ItemID, ServiceCode, NumServ, FeeSubm, Status)"
            " Values (?, ?, ?, ?, ?, 0)");
        const QList<QVariantList> items = {
            {10000001, 1, "X001A", 3, 990000}, {10000001, 2, "Y999A", 1, 123400},
            {10000001, 3, "X001D", 1, 50000},  {10000001, 4, "X002A", 2, 500000},
            {10000002, 1, "X001A", 1, 10000},
        };
        for (const QVariantList& values : items) {
            o.db->exec(item, values);
        }

        QCOMPARE(o.schedule.repriceClaim(10000001), 2);
        QCOMPARE(test::rowsOf(o.db->exec(
                     "Select ClaimID, ItemID, FeeSubm From items Order By ClaimID, ItemID")),
                 QStringList({"10000001|1|300000", "10000001|2|123400", "10000001|3|50000",
                              "10000001|4|500000", "10000002|1|10000"}));
        // Only the fee that changed is written and logged.
        QCOMPARE(test::readText(o.log.path()),
                 QString("Update items Set FeeSubm=300000 Where ClaimID=10000001 And ItemID=1"
                         "\r\n"));
    }
};

QTEST_GUILESS_MAIN(TestFeeSchedule)
#include "test_fee_schedule.moc"
