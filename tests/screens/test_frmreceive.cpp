#include "../ministry/BatchOffice.h"
#include "foundation/ActionRegistry.h"
#include "ministry/AnswerReader.h"
#include "ministry/AnswerReports.h"
#include "reports/ReportPrinter.h"
#include "screens/AnswerGrid.h"
#include "screens/TransferScreens.h"
#include "screens/frmReceive.h"
#include "screens/frmViewBatchEdit.h"
#include "screens/frmViewError.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QPrintPreviewDialog>
#include <QPushButton>
#include <QTableWidget>
#include <QTreeWidget>
#include <QtTest>

using namespace brimsett;
using L = QStringList;

namespace {

// A record of the given length with each text at its 1-based position.
QByteArray record(std::initializer_list<std::pair<int, const char*>> fields) {
    QByteArray line(79, ' ');
    for (const auto& [pos, text] : fields) {
        line.replace(pos - 1, qstrlen(text), text);
    }
    return line.left(79);
}

// Doctor 123456's payment of 2026/11/15 for claim ACCT0001's A007A, and one record of a
// type that does not exist (line 4).
QByteArray remittanceFile() {
    const QList<QByteArray> records = {
        record({{1, "HR1V030000012345600J120261115DR SMITH"}, {60, "000003370"}, {70, "99999999"}}),
        record({{1, "HR4J2093000060"},
                {15, "112345600ACCT0001SMITH"},
                {46, "MARY"},
                {51, "ON1234567897"},
                {65, "ABHCP"}}),
        record({{1, "HR5J2093000060120261110"}, {24, "01A007A"}, {32, "003370003370"}}),
        record({{1, "HR9"}})};
    return records.join("\r\n") + "\r\n";
}

struct Desk : test::BatchOffice {
    QWidget owner;
    ActionRegistry registry;
    frmReceive* window = nullptr;

    Desk() {
        addDoctor("JS", "0000", "123456", "00");
        addDoctor("KS", "0000", "654321", "00");
        settings.lastDoctorReconcile = "JS";
        claim(1, "ACCT0001", "JS", {{"A007A", Money::fromCents(3370), QDate(2026, 11, 10)}});
        put("PJ123456.001", remittanceFile());
    }
    QString download() const { return office.folder() + "Download/"; }
    void put(const QString& name, const QByteArray& bytes) const {
        QDir().mkpath(download());
        test::writeText(download() + name, bytes);
    }
    bool putSample(const QString& sample, const QString& name) const {
        const QString from = test::samplesFolder() + "/" + sample;
        QDir().mkpath(download());
        return QFile::exists(from) && QFile::copy(from, download() + name);
    }
    void open() {
        registerTransferScreens(registry, *db, settings, office.store(), prompter, clock, log, {},
                                office.folder(), &owner);
        QVERIFY(registry.runAction(kActionReconcile));
        window = owner.findChild<frmReceive*>();
        QVERIFY(window);
        QApplication::setActiveWindow(window);
        QVERIFY(QTest::qWaitForWindowActive(window));
    }
    template <typename T>
    T* child(const char* name) const {
        return window->findChild<T*>(QString::fromLatin1(name));
    }
    QStringList listed() const {
        QStringList rows;
        auto* list = child<QTreeWidget>("lstFiles");
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            rows << list->topLevelItem(i)->text(0) + "|" + list->topLevelItem(i)->text(1) + "|" +
                        list->topLevelItem(i)->text(2);
        }
        return rows;
    }
    QString reconcileLabel() const { return child<QCheckBox>("chkReconcile")->text().remove('&'); }
    void readByEnter() const {
        auto* list = child<QTreeWidget>("lstFiles");
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Return);
    }
    int itemStatus() { return count("Select Status From items Where ClaimID=1"); }
    QPrintPreviewDialog* preview() const {
        return window->findChild<QPrintPreviewDialog*>(QStringLiteral("ReportPreview"));
    }
    static QString shots() { return qEnvironmentVariable("BRIMSETT_SHOTS"); }
};

}  // namespace

class TestFrmReceive : public QObject {
    Q_OBJECT

private slots:
    // The Download folder's answer files are listed with provider and date; the doctor is
    // the last one reconciled, and a new choice is remembered. Receiving from a disk lists
    // the disk.
    void listsWaitingFiles() {
        Desk desk;
        desk.put("notes.txt", "Not from the ministry\r\n");
        desk.settings.submitMethod = 0;
        desk.open();
        QCOMPARE(desk.window->windowTitle(), QString("Reconcile"));
        QCOMPARE(desk.listed(), L{"PJ123456.001|123456|2026/11/15"});
        QCOMPARE(desk.window->listedFolder(), desk.download());
        auto* doctor = desk.child<QComboBox>("cboDoctor");
        QCOMPARE(doctor->currentData().toString(), QString("JS"));
        doctor->setCurrentIndex(doctor->findData("KS"));
        QCOMPARE(desk.settings.lastDoctorReconcile, QString("KS"));
        QCOMPARE(desk.office.store().get("General", "LastDoctorReconcile"), QString("KS"));

        QTemporaryDir disk;
        QVERIFY(QFile::copy(desk.download() + "PJ123456.001", disk.filePath("PJ123456.002")));
        desk.window->setDiskFolderChooser([&] { return disk.path(); });
        QTest::mouseClick(desk.child<QPushButton>("cmdReceive"), Qt::LeftButton);
        QCOMPARE(desk.window->listedFolder(), disk.path() + "/");
        QCOMPARE(desk.listed(), L{"PJ123456.002|123456|2026/11/15"});
    }

    // Enter on the file reads it, reconciling or not as the box says; the faults are
    // listed and the remittance report opens in the preview.
    void readsTheChosenFile_data() {
        QTest::addColumn<bool>("reconcile");
        QTest::addColumn<QString>("label");
        QTest::addColumn<int>("status");
        QTest::newRow("reconciling") << true << "WILL reconcile" << 2;
        QTest::newRow("checking only") << false << "will NOT reconcile" << 0;
    }
    void readsTheChosenFile() {
        QFETCH(bool, reconcile);
        QFETCH(QString, label);
        QFETCH(int, status);
        Desk desk;
        desk.open();
        QCOMPARE(desk.reconcileLabel(), QString("WILL reconcile"));
        if (!reconcile) {
            QTest::keyClick(desk.window, Qt::Key_W, Qt::AltModifier);
        }
        QTRY_COMPARE(desk.reconcileLabel(), label);
        desk.readByEnter();
        QTRY_VERIFY(desk.preview());
        QVERIFY(desk.preview()->windowTitle().startsWith("Remittance Advice for "));
        QVERIFY2(desk.window->statusLine().endsWith("Finished"),
                 qPrintable(desk.window->statusLine()));
        QCOMPARE(desk.child<QLabel>("lblProgress")->text(), received::progressText(4, 4));
        auto* errors = desk.child<QTableWidget>("grdErrors");
        QCOMPARE(errors->rowCount(), 1);
        QCOMPARE(answergrid::rowText(errors, 0).mid(0, 2), L({"4", "Invalid Record Type"}));
        QCOMPARE(desk.itemStatus(), status);
    }

    // A batch edit report and an error report open in their own views.
    void eachReportOpensItsView_data() {
        QTest::addColumn<QString>("sample");
        QTest::addColumn<QString>("view");
        QTest::newRow("batch edit") << "moh_sample_batch_edit_HB1.txt"
                                    << "frmViewBatchEdit";
        QTest::newRow("error report") << "moh_sample_claims_error_report.txt"
                                      << "frmViewError";
    }
    void eachReportOpensItsView() {
        QFETCH(QString, sample);
        QFETCH(QString, view);
        Desk desk;
        QFile::remove(desk.download() + "PJ123456.001");
        if (!desk.putSample(sample, "ANSWER.001")) {
            QSKIP("The ministry's sample files are not beside the project");
        }
        desk.open();
        QTest::mouseClick(desk.child<QPushButton>("cmdRead"), Qt::LeftButton);
        QWidget* shown = view == "frmViewError"
                             ? static_cast<QWidget*>(desk.window->findChild<frmViewError*>())
                             : desk.window->findChild<frmViewBatchEdit*>();
        QVERIFY(shown);
        QVERIFY(shown->isVisible());
        QVERIFY(desk.window->statusLine().endsWith("Finished"));
    }

    // Delete asks first and deletes only on Yes; Edit hands the file to the editor.
    void deleteAndEdit() {
        Desk desk;
        desk.open();
        QString opened;
        desk.window->setFileOpener([&](const QString& path) {
            opened = path;
            return true;
        });
        QTest::mouseClick(desk.child<QPushButton>("cmdEdit"), Qt::LeftButton);
        QCOMPARE(opened, desk.download() + "PJ123456.001");

        auto* list = desk.child<QTreeWidget>("lstFiles");
        list->setFocus();
        desk.prompter.script({Answer::No});
        QTest::keyClick(list, Qt::Key_Delete);
        QCOMPARE(desk.prompter.last().lines.first(),
                 QString("Are you sure you want to delete this file?"));
        QVERIFY(QFile::exists(desk.download() + "PJ123456.001"));
        desk.prompter.script({Answer::Yes});
        QTest::keyClick(list, Qt::Key_Delete);
        QVERIFY(!QFile::exists(desk.download() + "PJ123456.001"));
        QVERIFY(desk.listed().isEmpty());
        QVERIFY(!desk.child<QPushButton>("cmdRead")->isEnabled());
    }

    // The screen after reading a remittance among other answers, and the report's first
    // page; pictures go to $BRIMSETT_SHOTS when it is set.
    void screenshots() {
        if (Desk::shots().isEmpty()) {
            QSKIP("BRIMSETT_SHOTS is not set");
        }
        Desk desk;
        desk.putSample("moh_sample_batch_edit_HB1.txt", "BE170332.001");
        desk.putSample("moh_sample_claims_error_report.txt", "EA170332.001");
        desk.open();
        QVERIFY(desk.window->selectFile("PJ123456.001"));
        desk.readByEnter();
        QTRY_VERIFY(desk.preview());
        desk.preview()->close();
        QDir().mkpath(Desk::shots());
        QVERIFY(desk.window->grab().save(Desk::shots() + "/frmReceive.png"));

        // The ministry's sample pays more items than the hand-written file.
        QFile file(test::samplesFolder() + "/moh_sample_ra_extract.txt");
        if (!file.exists()) {
            file.setFileName(desk.download() + "PJ123456.001");
        }
        QVERIFY(file.open(QIODevice::ReadOnly));
        const remittance::Remittance ra = remittance::read(received::splitLines(file.readAll()));
        const reports::ReportPrinter pages(
            answerreports::remittanceReport(*desk.db, ra, QFileInfo(file).fileName(),
                                            desk.clock.today(), {}),
            reports::ReportStyle::fromSettings(desk.settings));
        QVERIFY(pages.pageImage(0, 96).save(Desk::shots() + "/remittance-report.png"));
    }
};

QTEST_MAIN(TestFrmReceive)
#include "test_frmreceive.moc"
