#include "OfficeFixture.h"

#include "hcv/RejectedCards.h"
#include "hcv/ResponseCodes.h"

#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

// Patients of every answer class, seen on 2026/11/22 by doctors A, B and C; one has only a
// cancelled appointment, one is seen by A and B, one is seen only the day after.
struct Office : test::OfficeFixture {
    Office() {
        const QDate day(2026, 11, 22);
        int appId = 0;
        // "patient status code doctor cancelled days-after", "-" for NULL.
        for (const QString& text :
             {"1 1 50 A 0 0", "2 2 65 A 0 0", "3 5 98 B 0 0", "4 4 90 A 0 0", "5 - - A 0 0",
              "6 2 9C A 1 0", "7 2 70 C 0 0", "8 2 75 A 0 1", "9 5 95 A 0 0", "2 2 65 B 0 0"}) {
            const QStringList f = text.split(' ');
            const int id = f[0].toInt();
            const auto orNull = [](const QString& v) { return v == "-" ? QVariant() : v; };
            if (!db->scalar("Select Count(*) From patients Where PatientID=?", {id}).toInt()) {
                db->exec(
                    "Insert Into patients (PatientID, LName, FName, HealthNum, VersionCode, DOB,"
                    " HPhone, WPhone, Response, Status) Values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                    {id, "Last" + f[0], "First" + f[0], f[0] + "234567890",
                     id == 9 ? QVariant() : "AB", QDate(1950 + id, 1, 2), "416-555-000" + f[0],
                     id == 3 ? QVariant() : "905-555-000" + f[0], orNull(f[2]),
                     f[1] == "-" ? QVariant() : QVariant(f[1].toInt())});
            }
            db->exec(
                "Insert Into appointments (AppID, AppDate, PatientID, DoctorID, Deleted)"
                " Values (?, ?, ?, ?, ?)",
                {++appId, day.addDays(f[5].toInt()), id, f[3], f[4].toInt()});
        }
    }
};

}  // namespace

class TestRejectedCards : public QObject {
    Q_OBJECT

private slots:
    // Classes 2 and 5 of the day's patients of the chosen doctors, once each, as stored.
    void rejected_data() {
        QTest::addColumn<QStringList>("doctors");
        QTest::addColumn<QStringList>("rows");
        const QString two = "2|Last2, First2|2234567890 AB|1952/01/02|416-555-0002|905-555-0002|65";
        const QString six = "6|Last6, First6|6234567890 AB|1956/01/02|416-555-0006|905-555-0006|9C";
        const QString nine = "9|Last9, First9|9234567890 |1959/01/02|416-555-0009|905-555-0009|95";
        row("one doctor, a cancelled visit too", QStringList{"A"}, QStringList{two, six, nine});
        row("two doctors, a patient of both once", QStringList{"B", "A"},
            QStringList{two, "3|Last3, First3|3234567890 AB|1953/01/02|416-555-0003||98", six,
                        nine});
        row("a doctor with none", QStringList{"Z"}, QStringList{});
        row("no doctor", QStringList{}, QStringList{});
    }
    void rejected() {
        QFETCH(QStringList, doctors);
        QFETCH(QStringList, rows);
        Office o;
        const reports::Report report =
            hcv::rejectedCardsReport(hcv::rejectedCards(*o.db, QDate(2026, 11, 22), doctors),
                                     QDate(2026, 11, 22), doctors, QDate(2026, 11, 25));
        QCOMPARE(report.title(), "Rejected Patient HCN Validation List for " + doctors.join(", ") +
                                     " (2026/11/22) - Print Date: 2026/11/25");
        QStringList shown;
        for (const auto& block : report.blocks()) {
            if (const auto* table = std::get_if<reports::ReportTable>(&block)) {
                for (const reports::ReportColumn& c : table->columns) {
                    shown << c.caption;
                }
                for (const QStringList& r : table->rows) {
                    shown << r.join('|');
                }
            } else {
                shown << std::get<reports::Report::Paragraph>(block).text;
            }
        }
        QCOMPARE(shown, QStringList({"ID", "Name", "Health Card No.", "D.O.B", "Home Phone",
                                     "Work Phone", "Code"})
                            << rows << QString("%1 patients.").arg(rows.size()) << "Legend"
                            << hcv::legendLines().join('\n'));
    }
};

QTEST_GUILESS_MAIN(TestRejectedCards)
#include "test_rejected_cards.moc"
