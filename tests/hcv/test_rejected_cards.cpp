#include "OfficeFixture.h"

#include "hcv/RejectedCards.h"
#include "hcv/ResponseCodes.h"

#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

// Patients of every answer class, seen on 2026/11/22 by doctors A, B and C; one has only a
// cancelled appointment, one is seen twice, one is seen only the day after.
struct Office : test::OfficeFixture {
    Office() {
        struct Patient {
            int id;
            QVariant status;
            QString code;
            QString doctor;
            int deleted;
            QDate day;
        };
        const QDate day(2026, 11, 22);
        const QList<Patient> patients{
            {1, 1, "50", "A", 0, day},        {2, 2, "65", "A", 0, day},
            {3, 5, "98", "B", 0, day},        {4, 4, "90", "A", 0, day},
            {5, QVariant(), "", "A", 0, day}, {6, 2, "9C", "A", 1, day},
            {7, 2, "70", "C", 0, day},        {8, 2, "75", "A", 0, day.addDays(1)},
            {9, 5, "95", "A", 0, day}};
        int appId = 0;
        for (const Patient& p : patients) {
            db->exec(
                "Insert Into patients (PatientID, LName, FName, HealthNum, VersionCode, DOB,"
                " HPhone, WPhone, Response, Status) Values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                {p.id, QString("Last%1").arg(p.id), QString("First%1").arg(p.id),
                 QString::number(p.id) + "234567890", p.id == 9 ? QVariant() : "AB",
                 QDate(1950 + p.id, 1, 2), QString("416-555-000%1").arg(p.id),
                 p.id == 3 ? QVariant() : QString("905-555-000%1").arg(p.id),
                 p.code.isEmpty() ? QVariant() : p.code, p.status});
            db->exec(
                "Insert Into appointments (AppID, AppDate, PatientID, DoctorID, Deleted)"
                " Values (?, ?, ?, ?, ?)",
                {++appId, p.day, p.id, p.doctor, p.deleted});
        }
        db->exec(
            "Insert Into appointments (AppID, AppDate, PatientID, DoctorID)"
            " Values (100, ?, 2, 'B')",
            {day});
    }
};

}  // namespace

class TestRejectedCards : public QObject {
    Q_OBJECT

private slots:
    void rejected_data() {
        QTest::addColumn<QStringList>("doctors");
        QTest::addColumn<QList<qint64>>("patients");
        row("one doctor: classes 2 and 5, a cancelled visit too", QStringList{"A"},
            QList<qint64>{2, 6, 9});
        row("two doctors, a patient of both once", QStringList{"A", "B"},
            QList<qint64>{2, 3, 6, 9});
        row("a doctor with none", QStringList{"Z"}, QList<qint64>{});
        row("no doctor", QStringList{}, QList<qint64>{});
    }
    void rejected() {
        QFETCH(QStringList, doctors);
        QFETCH(QList<qint64>, patients);
        Office o;
        const QList<hcv::RejectedCard> cards =
            hcv::rejectedCards(*o.db, QDate(2026, 11, 22), doctors);
        QList<qint64> ids;
        for (const hcv::RejectedCard& card : cards) {
            ids << card.patientId;
        }
        QCOMPARE(ids, patients);
        const reports::Report report =
            hcv::rejectedCardsReport(cards, QDate(2026, 11, 22), doctors, QDate(2026, 11, 25));
        QCOMPARE(report.title(), "Rejected Patient HCN Validation List for " + doctors.join(", ") +
                                     " (2026/11/22) - Print Date: 2026/11/25");
        const auto* table = std::get_if<reports::ReportTable>(&report.blocks().at(0));
        QVERIFY(table);
        QStringList captions;
        for (const reports::ReportColumn& c : table->columns) {
            captions << c.caption;
        }
        QCOMPARE(captions, (QStringList{"ID", "Name", "Health Card No.", "D.O.B", "Home Phone",
                                        "Work Phone", "Code"}));
        QCOMPARE(table->rows.size(), patients.size());
        QStringList after;
        for (qsizetype i = 1; i < report.blocks().size(); ++i) {
            const auto* p = std::get_if<reports::Report::Paragraph>(&report.blocks().at(i));
            QVERIFY(p);
            after << p->text;
        }
        QCOMPARE(after, (QStringList{QString("%1 patients.").arg(patients.size()), "Legend",
                                     hcv::legendLines().join('\n')}));
    }

    // A row shows the register's values as stored.
    void rowFields() {
        Office o;
        const QList<hcv::RejectedCard> cards =
            hcv::rejectedCards(*o.db, QDate(2026, 11, 22), {"B", "A"});
        QCOMPARE(cards.size(), 4);
        const auto* table = std::get_if<reports::ReportTable>(
            &hcv::rejectedCardsReport(cards, QDate(2026, 11, 22), {"B", "A"}, QDate(2026, 11, 25))
                 .blocks()
                 .at(0));
        QVERIFY(table);
        QCOMPARE(table->rows.at(0),
                 (QStringList{"2", "Last2, First2", "2234567890 AB", "1952/01/02", "416-555-0002",
                              "905-555-0002", "65"}));
        QCOMPARE(table->rows.at(1), (QStringList{"3", "Last3, First3", "3234567890 AB",
                                                 "1953/01/02", "416-555-0003", "", "98"}));
        QCOMPARE(table->rows.at(3), (QStringList{"9", "Last9, First9", "9234567890 ", "1959/01/02",
                                                 "416-555-0009", "905-555-0009", "95"}));
    }
};

QTEST_GUILESS_MAIN(TestRejectedCards)
#include "test_rejected_cards.moc"
