#include "BatchOffice.h"

#include "ministry/PastClaims.h"
#include "reports/Report.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

using namespace brimsett;
using namespace brimsett::pastclaims;

namespace {

struct Line {
    QString code;
    const char* fee;
    QDate date;
    int status = 0;
    const char* paid = nullptr;
    QString errors = {};
    QString diag = QStringLiteral("401");
    QString facility = {};
};

Money money(const char* text) {
    return *Money::parse(QString::fromLatin1(text));
}

// Eight claims of three patients in every state: pending, submitted (one sent in two batches),
// rejected, paid, closed, direct and third party with invoices whose numbers are prefixes of
// one another, and codes, remittances and a facility holding quotes, "%" and "_".
struct PastOffice : test::BatchOffice {
    PastOffice() {
        addDoctor(QStringLiteral("AB"), QStringLiteral("0000"), QStringLiteral("123456"),
                  QStringLiteral("00"));
        addDoctor(QStringLiteral("CD"), QStringLiteral("0000"), QStringLiteral("654321"),
                  QStringLiteral("00"));
        db->exec(QStringLiteral(
            "Insert Into patients (PatientID, LName, FName) Values (1, 'Smith', 'Mary'),"
            " (2, 'Brown', 'Ann'), (3, 'Jones', 'Bob')"));
        db->exec(QStringLiteral("Insert Into DiagCodes (DiagCode) Values ('401'), ('250')"));
        db->exec(
            QStringLiteral("Insert Into Invoices (ID, InvoiceNum) Values (1, '10'),"
                           " (2, '104'), (3, '7'), (4, '55')"));
        db->exec(
            QStringLiteral("Insert Into servicecodes (ServiceCode, Description) Values"
                           " ('A007', 'Intermediate assessment')"));
        db->exec(
            QStringLiteral("Insert Into servicecodesdirect (ServiceCode, Description, Fee)"
                           " Values ('NOTE', 'Sick note', 500000)"));
        db->exec(
            QStringLiteral("Insert Into ExplCodes (ExplCode, Description) Values"
                           " ('EH', 'Service date is not valid'),"
                           " ('AD', 'Claim under review')"));

        const QString doc = QStringLiteral("AB");
        const QString general = QStringLiteral("General");
        add(1, doc, "HCP - P", kPendingBatch, 1, QDateTime(QDate(2026, 1, 11), QTime(9, 30)),
            {{"A007A", "33.70", QDate(2026, 1, 10), 0, nullptr, {}, "401", general},
             {"G365A", "10.00", QDate(2026, 1, 10)}});
        add(2, doc, "HCP - P", "202602000002", 2, QDateTime(QDate(2026, 2, 6), QTime(23, 59, 59)),
            {{"A007A", "33.70", QDate(2026, 2, 5), 0, nullptr, {}, "401", general},
             {"G365A", "10.00", QDate(2026, 2, 5), 0, nullptr, {}, "401", general}},
            [](ClaimRecord& c) {
                c.allBatches = QStringLiteral("202601000001!202602000002!");
                c.invoiceNum = QStringLiteral("55!");
                c.ra = QStringLiteral("PK777777.001 20261115!");
            });
        // A service date copied from an older database with its time.
        db->exec(QStringLiteral(
            "Update items Set ServiceDate='2026-02-05 10:00:00' Where ClaimID=2 And ItemID=2"));
        add(3, "CD", "HCP - P", "202603000003", 1, QDateTime(QDate(2026, 3, 2), QTime(8, 0)),
            {{"A007A", "33.70", QDate(2026, 3, 1), 2, "30.00", {}, "250"},
             {"K005A", "60.00", QDate(2026, 3, 1), 1, nullptr, "EH,AD", "250"},
             {"K013A", "40.00", QDate(2026, 3, 1), 1, nullptr, "EH"}},
            [](ClaimRecord& c) { c.ra = QStringLiteral("PK9AB.002 20261201!"); });
        add(4, {}, "Direct", kDirectBatch, 3, QDateTime(QDate(2026, 4, 2), QTime(8, 0)),
            {{"NOTE", "50.00", QDate(2026, 4, 1)}},
            [](ClaimRecord& c) { c.invoiceNum = QStringLiteral("10!"); });
        add(5, doc, "Third Party", kThirdPartyBatch, 3, QDateTime(QDate(2026, 5, 2), QTime(8, 0)),
            {{"TP01", "75.00", QDate(2026, 5, 1), 2, "70.00"}}, [](ClaimRecord& c) {
                c.thirdPartyId = 7;
                c.invoiceNum = QStringLiteral("104!");
            });
        add(6, {}, "Third Party", kThirdPartyBatch, 2, QDateTime(QDate(2026, 6, 2), QTime(8, 0)),
            {{"TP02", "20.00", QDate(2026, 6, 1)}, {"TP03", "5.00", QDate(2026, 6, 1)}},
            [](ClaimRecord& c) {
                c.thirdPartyId = 8;
                c.invoiceNum = QStringLiteral("7!10!");
            });
        // A claim without a doctor may hold an empty text rather than NULL.
        db->exec(QStringLiteral("Update claims Set DoctorID='' Where ClaimID=6"));
        const QString mikes = QStringLiteral("St. Mike's");
        add(7, doc, "HCP - P", "202607000007", 1, QDateTime(QDate(2026, 7, 2), QTime(8, 0)),
            {{"Z'%_A", "12.00", QDate(2026, 7, 1), 0, nullptr, {}, "401", mikes},
             {"Z'XYA", "13.00", QDate(2026, 7, 1), 0, nullptr, {}, "401", mikes}},
            [](ClaimRecord& c) {
                c.ra = QStringLiteral("PK123456.001 20261115!PK9_%.002 20261201!");
            });
        add(8, "CD", "HCP - P", "202601000001", 2, QDateTime(QDate(2026, 1, 20), QTime(8, 0)),
            {{"A007A", "33.70", QDate(2026, 1, 15), 3, nullptr, "EH"}},
            [](ClaimRecord& c) { c.allBatches = QStringLiteral("202601000001!"); });
    }

    void add(qint64 id, const QString& doctor, const char* program, const QString& batch,
             qint64 patient, const QDateTime& created, const QList<Line>& lines,
             const std::function<void(ClaimRecord&)>& edit = {}) {
        static const QStringList names[] = {
            {}, {"Smith", "Mary"}, {"Brown", "Ann"}, {"Jones", "Bob"}};
        ClaimRecord c;
        c.claimId = id;
        c.batchId = batch;
        c.acctNum = QStringLiteral("%1").arg(id, 8, 10, QLatin1Char('0'));
        c.doctorId = doctor;
        c.payProg = QString::fromLatin1(program);
        c.patientId = patient;
        c.lName = names[patient].at(0);
        c.fName = names[patient].at(1);
        c.dateCreated = created;
        int next = 0;
        for (const Line& l : lines) {
            ItemRecord item;
            item.claimId = id;
            item.itemId = ++next;
            item.serviceCode = l.code;
            item.diagCode = l.diag;
            item.numServ = 1;
            item.feeSubm = money(l.fee);
            item.serviceDate = l.date;
            item.status = l.status;
            if (l.paid) {
                item.feePaid = money(l.paid);
            }
            item.errors = l.errors;
            item.facility = l.facility;
            c.items << item;
        }
        if (edit) {
            edit(c);
        }
        store.write(c);
    }

    // "claim.item" of every item with its status and what was paid.
    QStringList itemStates() {
        return test::rowsOf(db->exec(QStringLiteral(
            "Select ClaimID, ItemID, Status, FeeSubm, FeePaid From items Order By 1, 2")));
    }
};

QString numbers(const QList<PastItem>& items) {
    QStringList out;
    for (const PastItem& i : items) {
        out << QStringLiteral("%1.%2").arg(i.claimId).arg(i.itemId);
    }
    return out.join(QLatin1Char(' '));
}

QString sorted(const QString& list) {
    QStringList parts = list.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    std::sort(parts.begin(), parts.end());
    return parts.join(QLatin1Char(' '));
}

Filters filtersOf(const QString& typed) {
    // "key=value|key=value": the filters the desk typed or chose.
    Filters f;
    for (const QString& pair : typed.split(QLatin1Char('|'), Qt::SkipEmptyParts)) {
        const QString key = pair.section(QLatin1Char('='), 0, 0);
        const QString value = pair.section(QLatin1Char('='), 1);
        if (key == QLatin1String("doctor"))
            f.doctorId = value;
        else if (key == QLatin1String("nodoc"))
            f.includeNoDoctor = true;
        else if (key == QLatin1String("program"))
            f.payProg = value;
        else if (key == QLatin1String("payer"))
            f.thirdPartyId = value;
        else if (key == QLatin1String("billed"))
            f.dateBasis = DateBasis::BilledDate;
        else if (key == QLatin1String("from"))
            f.from = value;
        else if (key == QLatin1String("to"))
            f.to = value;
        else if (key == QLatin1String("diag"))
            f.diagCode = value;
        else if (key == QLatin1String("service"))
            f.servicePrefix = value;
        else if (key == QLatin1String("invoice"))
            f.invoiceNum = value;
        else if (key == QLatin1String("batch"))
            f.batchId = value;
        else if (key == QLatin1String("ra"))
            f.ra = value;
        else if (key == QLatin1String("facility"))
            f.facility = value;
        else if (key == QLatin1String("status")) {
            const QStringList names = {"all", "pending", "submitted", "rejected", "closed", "paid"};
            f.status = static_cast<StatusFilter>(names.indexOf(value));
        } else
            qFatal("unknown filter %s", qPrintable(key));
    }
    return f;
}

}  // namespace

class TestPastClaims : public QObject {
    Q_OBJECT

    std::unique_ptr<PastOffice> m_office;

private slots:
    void initTestCase() { m_office = std::make_unique<PastOffice>(); }
    void cleanupTestCase() { m_office.reset(); }

    void filters_data() {
        QTest::addColumn<QString>("filters");
        QTest::addColumn<QString>("items");
        test::row("nothing chosen", "", "1.1 1.2 2.1 2.2 3.1 3.2 3.3 4.1 5.1 6.1 6.2 7.1 7.2 8.1");
        test::row("doctor, as typed in lower case", "doctor=ab", "1.1 1.2 2.1 2.2 5.1 7.1 7.2");
        test::row("doctor and claims without one (NULL or empty)", "doctor=AB|nodoc",
                  "1.1 1.2 2.1 2.2 4.1 5.1 6.1 6.2 7.1 7.2");
        test::row("program", "program=Direct", "4.1");
        test::row("third party of one payer", "program=Third Party|payer=8", "6.1 6.2");
        test::row("service dates", "from=2026/01/10|to=2026/02/05", "1.1 1.2 2.1 2.2 8.1");
        test::row("service dates from only", "from=2026/07/01", "7.1 7.2");
        test::row("billed on the end day up to its last second",
                  "billed|from=2026/02/06|to=2026/02/06", "2.1 2.2");
        test::row("billed before the day", "billed|from=2026/01/01|to=2026/02/05", "1.1 1.2 8.1");
        test::row("diagnostic code", "diag=250", "3.1 3.2");
        test::row("service code beginning, any case", "service=a007", "1.1 2.1 3.1 8.1");
        test::row("quote and percent typed match themselves", "service=Z'%", "7.1");
        test::row("underscore typed matches itself", "service=Z'_", "");
        test::row("star is the office's wildcard", "service=Z'*A", "7.1 7.2");
        test::row("invoice 10 is not found inside 104", "invoice=10", "4.1 6.1 6.2");
        test::row("invoice 104", "invoice=104", "5.1");
        test::row("pending", "status=pending", "1.1 1.2");
        test::row("submitted leaves pending claims out though their items are 0",
                  "status=submitted", "2.1 2.2 4.1 6.1 6.2 7.1 7.2");
        test::row("rejected", "status=rejected", "3.2 3.3");
        test::row("rejected closed", "status=closed", "8.1");
        test::row("paid", "status=paid", "3.1 5.1");
        test::row("earlier batch of a claim sent twice", "batch=202601000001", "2.1 2.2 8.1");
        test::row("later batch of a claim sent twice", "batch=202602000002", "2.1 2.2");
        test::row("remittance with underscore and percent", "ra=PK9_%", "7.1 7.2");
        test::row("remittance inside the list, any case", "ra=pk777777.001", "2.1 2.2");
        test::row("facility with a quote", "facility=St. Mike's", "7.1 7.2");
        test::row("every filter at once",
                  "doctor=AB|program=HCP - P|from=2026/02/01|to=2026/02/28|diag=401|service=A007"
                  "|invoice=55|status=submitted|batch=202601000001|ra=PK777777|facility=General",
                  "2.1");
        test::row("every filter at once, by billed date",
                  "doctor=AB|program=HCP - P|billed|from=2026/02/06|to=2026/02/06|diag=401"
                  "|service=A007|invoice=55|status=submitted|batch=202601000001|ra=PK777777"
                  "|facility=General",
                  "2.1");
    }
    void filters() {
        QFETCH(QString, filters);
        QFETCH(QString, items);
        PastOffice& o = *m_office;
        o.prompter.clear();
        const Condition c = buildCondition(*o.db, filtersOf(filters));
        QVERIFY2(c.problems.isEmpty(), qPrintable(c.problems.join(QLatin1Char('\n'))));
        // Nothing typed ever reaches the statement itself.
        for (const char* typed : {"Z'", "PK", "Mike", "2026", "AB", "55"}) {
            QVERIFY2(!c.sql.contains(QLatin1String(typed)), qPrintable(c.sql));
        }
        const std::optional<Found> found = findItems(*o.db, o.prompter, filtersOf(filters));
        QVERIFY(found);
        QCOMPARE(sorted(numbers(found->items)), items);
        QVERIFY(o.prompter.messages().isEmpty());
    }

    void problems_data() {
        QTest::addColumn<QString>("filters");
        QTest::addColumn<QStringList>("problems");
        test::row("unknown doctor", "doctor=ZZ", QStringList{"'ZZ' is not a valid doctor."});
        test::row("third party without a payer", "program=Third Party",
                  QStringList{"Please select a Third Party"});
        test::row("start date in another form", "from=2026-01-01",
                  QStringList{"Invalid Start Date."});
        test::row("no such end day", "to=2026/02/30", QStringList{"Invalid End Date."});
        test::row("diagnostic code not listed", "diag=999",
                  QStringList{"Invalid diagnostic code."});
        test::row("diagnostic code of the wrong form", "diag=4O1",
                  QStringList{"Invalid diagnostic code."});
        test::row("invoice not on file", "invoice=1", QStringList{"Invoice 1 was not found."});
        test::row("all at once, in order",
                  "doctor=ZZ|program=Third Party|billed|from=x|to=2026/13/01|diag=999|invoice=99",
                  QStringList{"'ZZ' is not a valid doctor.", "Please select a Third Party",
                              "Invalid Start Date.", "Invalid End Date.",
                              "Invalid diagnostic code.", "Invoice 99 was not found."});
    }
    void problems() {
        QFETCH(QString, filters);
        QFETCH(QStringList, problems);
        PastOffice& o = *m_office;
        QCOMPARE(buildCondition(*o.db, filtersOf(filters)).problems, problems);
        // Every search told them once, together, and found nothing.
        using Search = std::function<bool()>;
        const Filters f = filtersOf(filters);
        for (const Search& search :
             {Search([&] { return findItems(*o.db, o.prompter, f).has_value(); }),
              Search([&] { return patientList(*o.db, o.prompter, f).has_value(); }),
              Search([&] { return rejectedItems(*o.db, o.prompter, f).has_value(); })}) {
            o.prompter.clear();
            QVERIFY(!search());
            QCOMPARE(o.prompter.messages().size(), 1);
            QCOMPARE(o.prompter.last().title, QStringLiteral("Past Claims"));
            QCOMPARE(o.prompter.last().lines, problems);
        }
    }

    void gridRowsSortsAndTotals() {
        PastOffice& o = *m_office;
        o.prompter.clear();
        std::optional<Found> found = findItems(*o.db, o.prompter, {});
        QVERIFY(found);
        // Brown (claims 2, 6, 8), Jones (4, 5), Smith (1, 3, 7).
        QCOMPARE(numbers(found->items),
                 QStringLiteral("2.1 2.2 6.1 6.2 8.1 4.1 5.1 1.1 1.2 3.1 3.2 3.3 7.1 7.2"));
        QCOMPARE(found->fee, money("429.80"));
        QCOMPARE(found->paid, money("100.00"));
        const PastItem& first = found->items.at(7);
        QCOMPARE(first.claimId, qint64(1));
        QCOMPARE(first.doctorId, QStringLiteral("AB"));
        QCOMPARE(first.acctNum, QStringLiteral("00000001"));
        QCOMPARE(first.patientName, QStringLiteral("Smith, Mary"));
        QCOMPARE(first.payProg, QStringLiteral("HCP-P"));
        QCOMPARE(first.serviceDescription, QStringLiteral("Intermediate assessment"));
        QCOMPARE(first.serviceDate, QDate(2026, 1, 10));
        QCOMPARE(found->items.at(5).serviceDescription, QStringLiteral("Sick note"));
        QCOMPARE(found->items.at(6).payProg, QStringLiteral("3rd.P."));
        QCOMPARE(found->items.at(6).feePaid, money("70.00"));

        QCOMPARE(sortKeys().size(), gridCaptions().size());
        QCOMPARE(sortKeys().at(3), defaultSort());
        QCOMPARE(defaultSort(), QStringLiteral("LName,FName,C.ClaimID Asc,I.ItemID Asc"));
        for (const QString& key : sortKeys()) {
            found = findItems(*o.db, o.prompter, {}, key);
            QVERIFY2(found && found->items.size() == 14, qPrintable(key));
        }
        found = findItems(*o.db, o.prompter, {}, sortKeys().at(8));
        QCOMPARE(numbers(found->items).left(15), QStringLiteral("6.2 1.2 2.2 7.1"));
        QVERIFY(o.prompter.messages().isEmpty());

        QVERIFY(!findItems(*o.db, o.prompter, {}, QStringLiteral("1; Drop Table claims")));
        QCOMPARE(o.prompter.last().lines,
                 QStringList{"'1; Drop Table claims' is not a column to sort by."});
    }

    void patientListAndTotals() {
        PastOffice& o = *m_office;
        db()->exec(QStringLiteral("Update patients Set LName='Brown-Lee' Where PatientID=2"));
        const std::optional<QList<PatientLine>> lines = patientList(
            *o.db, o.prompter, filtersOf(QStringLiteral("from=2026/01/01|to=2026/06/30")));
        db()->exec(QStringLiteral("Update patients Set LName='Brown' Where PatientID=2"));
        QVERIFY(lines);
        QStringList shown;
        for (const PatientLine& l : *lines) {
            shown << QStringLiteral("%1|%2|%3|%4|%5|%6")
                         .arg(l.patientId)
                         .arg(l.name, l.lastService, l.lastDate.toString(Qt::ISODate),
                              l.fees.plain(), l.paid.plain());
        }
        // The register's name; the latest service of the period; claim 7 (July) left out.
        QCOMPARE(shown, (QStringList{"2|Brown-Lee, Ann|TP03|2026-06-01|102.40|0.00",
                                     "3|Jones, Bob|TP01|2026-05-01|125.00|70.00",
                                     "1|Smith, Mary|K013A|2026-03-01|177.40|30.00"}));
        QCOMPARE(patientListTotals(*lines),
                 (QStringList{"3 unique patients found.", "Grand Total: $404.80  Paid: $100.00"}));
    }

    void rejectedItemsWithTheirCodes() {
        PastOffice& o = *m_office;
        std::optional<QList<RejectedLine>> lines = rejectedItems(*o.db, o.prompter, {});
        QVERIFY(lines);
        QStringList shown;
        for (const RejectedLine& l : *lines) {
            shown << QStringLiteral("%1|%2|%3|%4")
                         .arg(l.errorCode)
                         .arg(l.items)
                         .arg(l.fee.plain(), l.description);
        }
        // Claim 8's closed rejection is no longer a rejection; item 3.2 counts under both.
        QCOMPARE(shown, (QStringList{"AD|1|60.00|Claim under review",
                                     "EH|2|100.00|Service date is not valid"}));
        // The other filters still narrow them; a status chosen gives way to "Rejected".
        lines = rejectedItems(*o.db, o.prompter, filtersOf(QStringLiteral("status=paid|diag=401")));
        QVERIFY(lines);
        QCOMPARE(lines->size(), 1);
        QCOMPARE(lines->at(0).errorCode, QStringLiteral("EH"));
        QCOMPARE(lines->at(0).fee, money("40.00"));
    }

    void markingAnInvoicePaid() {
        PastOffice o;
        o.log.setOn(true);
        const QStringList before = o.itemStates();

        for (const QString& refused : {QString(), QStringLiteral("99")}) {
            o.prompter.clear();
            QVERIFY(!markInvoicePaid(*o.db, o.prompter, o.log, refused));
            QCOMPARE(o.prompter.last().lines,
                     QStringList{refused.isEmpty() ? QStringLiteral("Please Select an Invoice.")
                                                   : QStringLiteral("Invoice 99 was not found.")});
        }
        // A refusal in the middle leaves every claim of the invoice as it was.
        test::refuseRows(*o.db, QStringLiteral("Update"), QStringLiteral("items"),
                         QStringLiteral("OLD.ClaimID=6"), QStringLiteral("disk full"));
        QVERIFY_THROWS_EXCEPTION(DbError,
                                 markInvoicePaid(*o.db, o.prompter, o.log, QStringLiteral("10")));
        QCOMPARE(o.itemStates(), before);
        QVERIFY(test::readText(o.log.path()).isEmpty());

        // 104 (already paid less) is settled in full; 10 does not touch 104's claim.
        QCOMPARE(markInvoicePaid(*o.db, o.prompter, o.log, QStringLiteral("104")),
                 std::optional<int>(1));
        QStringList expected = before;
        expected.replace(8, QStringLiteral("5|1|2|750000|750000"));
        QCOMPARE(o.itemStates(), expected);
        QCOMPARE(test::readText(o.log.path()),
                 QStringLiteral("Update items Set Status=2,FeePaid=FeeSubm Where ClaimID=5\r\n"));
    }

    void markingAnInvoiceOfTwoClaims() {
        PastOffice o;
        const QStringList before = o.itemStates();
        QCOMPARE(markInvoicePaid(*o.db, o.prompter, o.log, QStringLiteral(" 10 ")),
                 std::optional<int>(3));
        QStringList expected = before;
        expected.replace(7, QStringLiteral("4|1|2|500000|500000"));
        expected.replace(9, QStringLiteral("6|1|2|200000|200000"));
        expected.replace(10, QStringLiteral("6|2|2|50000|50000"));
        QCOMPARE(o.itemStates(), expected);
    }

    void closingARejection() {
        PastOffice o;
        o.log.setOn(true);
        o.store.closeRejection(3);
        QCOMPARE(test::rowsOf(o.db->exec(
                     QStringLiteral("Select ItemID, Status, Errors From items Where ClaimID=3 "
                                    "Order By ItemID"))),
                 (QStringList{"1|2|<null>", "2|3|EH,AD", "3|3|EH"}));
        QCOMPARE(test::readText(o.log.path()),
                 QStringLiteral("Update items Set Status=3 Where ClaimID=3 And Status=1\r\n"));
        const std::optional<Found> closed =
            findItems(*o.db, o.prompter, filtersOf(QStringLiteral("status=closed")));
        QCOMPARE(sorted(numbers(closed->items)), QStringLiteral("3.2 3.3 8.1"));
    }

    void exportFile() {
        PastOffice& o = *m_office;
        std::optional<Found> found =
            findItems(*o.db, o.prompter, filtersOf(QStringLiteral("invoice=104")));
        QVERIFY(found);
        found->items[0].patientName = QStringLiteral("Jones; Bob");
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("past.txt"));
        test::writeText(path, "old contents");
        QCOMPARE(exportItems(found->items, path), QString());
        QCOMPARE(test::readText(path),
                 QStringLiteral("Claim;Item;Doc.;Account;Pat.ID;Patient Name;Ch. To;Service;Diag;"
                                "Date;Fee;Paid;Status;Errors;Batch;Invoice\r\n"
                                "5;1;AB;00000005;3;Jones, Bob;3rd.P.;TP01;401;2026/05/01;75.00;"
                                "70.00;Paid;;thirdparty;104!\r\n"));
        QCOMPARE(QFile::permissions(path), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                               QFileDevice::ReadUser | QFileDevice::WriteUser);

        // A folder that is not there: the reason, and nothing written anywhere.
        const QString missing = dir.filePath(QStringLiteral("gone/past.txt"));
        QVERIFY(!exportItems(found->items, missing).isEmpty());
        QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList{"past.txt"});
        // A folder in the file's place cannot be written over.
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("taken")));
        QVERIFY(!exportItems(found->items, dir.filePath(QStringLiteral("taken"))).isEmpty());
        QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 (QStringList{"past.txt", "taken"}));
    }

    void printedList() {
        PastOffice& o = *m_office;
        const Filters f = filtersOf(QStringLiteral("doctor=AB|from=2026/01/01|batch=202601000001"));
        const std::optional<Found> found = findItems(*o.db, o.prompter, f);
        QVERIFY(found);
        const reports::Report report = pastClaimsReport(*found, f, QStringLiteral("Dr. Doe"));
        QCOMPARE(report.title(), QStringLiteral("Past Claims"));
        // The end left open reads from the latest service found.
        QCOMPARE(report.headings(),
                 (QStringList{"Claims for Dr. Doe",
                              "Claims from Thursday, January 1, 2026 to Thursday, February 5, 2026",
                              "(202601000001)"}));
        const reports::ReportTable table = report.tables().at(0);
        QCOMPARE(table.rows.size(), 2);
        QCOMPARE(table.rows.at(0).at(3), QStringLiteral("Brown, Ann"));
        QCOMPARE(table.totals.at(0).at(8), QStringLiteral("43.70"));
        QCOMPARE(pastClaimsReport(Found{}, {}, {}).headings(),
                 (QStringList{"Claims for All", "All Batch Files"}));
    }

private:
    Database* db() { return m_office->db.get(); }
};

QTEST_GUILESS_MAIN(TestPastClaims)
#include "test_past_claims.moc"
