#include "OfficeFixture.h"
#include "claims/ServiceCodeCell.h"

#include <QtTest>

using namespace brimsett;

class TestServiceCodeCell : public QObject {
    Q_OBJECT

    test::OfficeFixture f;

    void sql(const QString& statement) { f.db->exec(statement); }

private slots:
    void initTestCase() {
        // Money is stored in ten-thousandths.
        sql("Insert Into servicecodes (ServiceCode, FeeGeneral, FeeSpecialist, FeeAssistant,"
            " FeeAna, FeeNonAna) Values ('A007', 337000, 400000, 120000, 0, 90000),"
            " ('G590', 91500, 0, 0, 0, 0), ('A008', 250000, 0, 0, 0, 0)");
        sql("Insert Into servicecodesdirect (ServiceCode, Fee) Values ('00007', 250000),"
            " ('A007', 200000)");
        sql("Insert Into quickservcodes (QuickCode, Code, DiagCode, FeePercent, NumServString,"
            " NumServ) Values ('FLU', 'G590A', '487', 0, '', NULL),"
            " ('HALF', 'A007A', NULL, 50, '2', NULL), ('SUN', 'A7', NULL, NULL, 'Sunday', 4),"
            " ('NSC', 'A007A', '', NULL, NULL, 3)");
    }

    void normalise_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("type");  // claim type, then the provider's specialty
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<QString>("date");
        // "code|diag|services|fee" (and "|percent%" when not 100), then the notes
        QTest::addColumn<QStringList>("rows");
        using L = QStringList;
        const char* sunday = "2026/11/22";
        test::row("letter and digit", "a7", "H 00", "", sunday, L{"A007A|799|1|33.70"});
        test::row("four chars, suffix A", "a007", "H 00", "A", sunday, L{"A007A|799|1|33.70"});
        test::row("four chars, suffix B", "A007", "H 00", "b", sunday, L{"A007B|799|1|12.00"});
        test::row("four chars, suffix C", "A007", "W 00", "C", sunday, L{"A007C|799|1|9.00"});
        test::row("several entries", "a7, ,flu,A8", "H 00", "", sunday,
                  L{"A007A|799|1|33.70", "G590A|487|1|9.15", "A008A|799|1|25.00"});
        test::row("direct digits padded", "7", "D 00", "", sunday, L{"00007|799|1|25.00"});
        test::row("third party, fee code", "a7", "T 00", "", sunday, L{"A007A|799|1|20.00"});
        test::row("unknown code", "b99", "H 00", "", sunday,
                  L{"B099A|799|1|", "No fee was found for service code 'B099A'."});
        test::row("quick code at half, 2 services", "half", "H 00", "", sunday,
                  L{"A007A|799|2|33.70|50%"});
        test::row("quick code's NumServ", "nsc", "H 00", "", sunday, L{"A007A|799|3|101.10"});
        test::row("weekday quick code on its day", "sun", "H 00", "B", sunday,
                  L{"A007B|799|1|12.00"});
        test::row("weekday quick code on another day", "sun,a8", "H 00", "", "2026/11/23",
                  L{"A008A|799|1|25.00",
                    "Quick code 'SUN' is only for services on a Sunday; it was left out."});
    }
    void normalise() {
        QFETCH(QString, typed);
        QFETCH(QString, type);
        QFETCH(QString, suffix);
        QFETCH(QString, date);
        QFETCH(QStringList, rows);
        ClaimEntryOptions options;
        options.defaultClaimSuffix = suffix;
        ServiceCodeCell cell(*f.db, options);
        const ItemEntry typedRow{"", "799", "", "1.00", date};
        const ServiceCodeCell::Result result =
            cell.normalise(typed, typedRow, type.at(0), type.mid(2));
        QStringList got;
        QCOMPARE(result.percents.size(), result.rows.size());
        for (int i = 0; i < result.rows.size(); ++i) {
            const ItemEntry& row = result.rows.at(i);
            QCOMPARE(row.serviceDate, date);
            got << QStringList{row.serviceCode, row.diagCode, row.numServ, row.fee}.join('|') +
                       (result.percents.at(i) != 100
                            ? QStringLiteral("|%1%").arg(result.percents.at(i))
                            : QString());
        }
        QCOMPARE(got + result.notes, rows);
    }
};

QTEST_GUILESS_MAIN(TestServiceCodeCell)
#include "test_service_code_cell.moc"
