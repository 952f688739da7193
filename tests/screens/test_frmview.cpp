#include "ministry/AnswerReports.h"
#include "screens/AnswerGrid.h"
#include "screens/frmViewBatchEdit.h"
#include "screens/frmViewError.h"

#include <QDir>
#include <QPrintPreviewDialog>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

using namespace brimsett;

namespace {

const QDate kPrinted(2026, 11, 22);

batchedit::Row batch(const QString& number, bool rejected, const QString& message) {
    batchedit::Row row;
    row.batchNumber = number;
    row.operatorNumber = QStringLiteral("000000");
    row.createDate = QStringLiteral("20261120");
    row.sequence = QStringLiteral("0001");
    row.microStart = QStringLiteral("J2073157812");
    row.microEnd = QStringLiteral("57822");
    row.microType = QStringLiteral("HCP/WCB");
    row.group = QStringLiteral("0000");
    row.provider = QStringLiteral("123456");
    row.claims = QStringLiteral("9");
    row.records = QStringLiteral("38");
    row.processDate = QStringLiteral("20261121");
    row.rejected = rejected;
    row.message = message;
    return row;
}

// One doctor's two refused claims, three items in all; the messages only when asked.
errorreport::ErrorReport errorReport(bool withMessages) {
    errorreport::ErrorReport report;
    errorreport::ProviderSection section;
    section.group = QStringLiteral("0000");
    section.provider = QStringLiteral("123456");
    section.specialty = QStringLiteral("00");
    section.doctorName = QStringLiteral("Smith, John");
    for (const QString& acct : {QStringLiteral("ACCT0001"), QStringLiteral("ACCT0002")}) {
        errorreport::Claim claim;
        claim.healthNum = QStringLiteral("1234567897");
        claim.versionCode = QStringLiteral("AB");
        claim.acctNum = acct;
        claim.payProg = QStringLiteral("HCP");
        claim.patientName = QStringLiteral("Smith, Mary");
        claim.errors = QStringLiteral("VH5");
        for (int i = 0; i < (acct.endsWith('1') ? 2 : 1); ++i) {
            errorreport::Item item;
            item.serviceCode = i == 0 ? QStringLiteral("A007A") : QStringLiteral("G489A");
            item.fee = Money::fromCents(3370);
            item.numServ = 1;
            item.serviceDate = QDate(2026, 11, 10);
            item.serviceDateText = QStringLiteral("20261110");
            item.diagCode = QStringLiteral("401");
            item.errors = QStringLiteral("VJ5,V40,V42");
            item.outcome = errorreport::ItemOutcome::MarkedRejected;
            claim.items << item;
        }
        section.claims << claim;
    }
    report.providers << section;
    if (withMessages) {
        report.messages << errorreport::Message{0, QStringLiteral("VH5"),
                                                QStringLiteral("HEALTH NUMBER NOT ON FILE")}
                        << errorreport::Message{0, QStringLiteral("V40"),
                                                QStringLiteral("SERVICE DATE IS INVALID")};
    }
    return report;
}

QList<QStringList> gridRows(const QTableWidget* grid) {
    QList<QStringList> rows;
    for (int r = 0; r < grid->rowCount(); ++r) {
        rows << answergrid::rowText(grid, r);
    }
    return rows;
}

QPrintPreviewDialog* printFrom(QWidget* view) {
    QTest::mouseClick(view->findChild<QPushButton*>(QStringLiteral("cmdPrint")), Qt::LeftButton);
    return view->findChild<QPrintPreviewDialog*>(QStringLiteral("ReportPreview"));
}

QString shots() {
    return qEnvironmentVariable("BRIMSETT_SHOTS");
}

}  // namespace

class TestFrmView : public QObject {
    Q_OBJECT

private slots:
    // Every batch is a row as the report reads it; a rejected one stands out; Print
    // previews the printout.
    void batchEditShowsEveryBatch() {
        batchedit::Report report;
        report.rows << batch("00001", false, "***  BATCH TOTALS  ***")
                    << batch("00002", true, "(Rejected) INVALID PROVIDER NUMBER");
        frmViewBatchEdit view(report, "BE123456.001", kPrinted, {});
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QCOMPARE(view.windowTitle(), QString("Batch Edit Report"));
        QCOMPARE(gridRows(view.grid()),
                 QList<QStringList>({report.rows[0].cells(), report.rows[1].cells()}));
        QVERIFY(view.grid()->item(1, 0)->background() != view.grid()->item(0, 0)->background());
        for (int c = 0; c < view.grid()->columnCount(); ++c) {
            QVERIFY2(view.grid()->columnWidth(c) >= view.grid()->fontMetrics().horizontalAdvance(
                                                        view.grid()->item(0, c)->text()),
                     qPrintable(view.grid()->horizontalHeaderItem(c)->text()));
        }
        if (!shots().isEmpty()) {
            QDir().mkpath(shots());
            QVERIFY(view.grab().save(shots() + "/frmViewBatchEdit.png"));
        }
        QPrintPreviewDialog* preview = printFrom(&view);
        QVERIFY(preview);
        QCOMPARE(preview->windowTitle(),
                 answerreports::batchEditPrintout(report, "BE123456.001", kPrinted).title() +
                     " - Print Preview");
    }

    void errorReportShowsItemsAndMessages_data() {
        QTest::addColumn<bool>("withMessages");
        QTest::addColumn<QString>("messages");
        QTest::newRow("messages") << true
                                  << "VH5 - HEALTH NUMBER NOT ON FILE\n"
                                     "V40 - SERVICE DATE IS INVALID";
        QTest::newRow("none") << false << "This file contains no OHIP messages.";
    }
    void errorReportShowsItemsAndMessages() {
        QFETCH(bool, withMessages);
        QFETCH(QString, messages);
        const errorreport::ErrorReport report = errorReport(withMessages);
        frmViewError view(report, "EA123456.001", kPrinted, {}, {});
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QCOMPARE(gridRows(view.grid()), answerreports::errorGridRows(report, {}));
        QCOMPARE(view.totalText(), QString("Total Items: 3"));
        QCOMPARE(view.messagesText(), messages);
        if (withMessages && !shots().isEmpty()) {
            QDir().mkpath(shots());
            QVERIFY(view.grab().save(shots() + "/frmViewError.png"));
        }
        QPrintPreviewDialog* preview = printFrom(&view);
        QVERIFY(preview);
        QCOMPARE(preview->windowTitle(),
                 answerreports::errorReportPrintout(report, "EA123456.001", kPrinted, {}).title() +
                     " - Print Preview");
    }
};

QTEST_MAIN(TestFrmView)
#include "test_frmview.moc"
