#include "../ministry/BatchOffice.h"
#include "ScreenTestSupport.h"
#include "foundation/ActionRegistry.h"
#include "foundation/SettingsStore.h"
#include "screens/ClaimScreens.h"
#include "screens/PastClaimsScreens.h"
#include "screens/frmClaim.h"
#include "screens/frmPastClaims.h"
#include "screens/frmPastClaimsReject.h"

#include <QComboBox>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QtTest>

#include <algorithm>

using namespace brimsett;

namespace {

constexpr auto kBatch = "202602010001";
constexpr auto kLaterBatch = "202605040002";

// One item as the desk's office holds it, to tell what each search must find.
struct Made {
    qint64 claimId = 0;
    QString doctor;
    QString last;
    QString first;
    QDate date;
    QString code;
    QString diag;
    Money fee;
    std::optional<Money> paid;
    int status = 0;
    QString batch;
    QString allBatches;
    QString invoice;
    QString errors;
    QString payProg = "HCP - P";
};

// A year of an office's claims: two doctors, eight patients, every state of an item, a
// claim sent in two batches, and two invoices whose numbers share a beginning.
struct Desk : test::BatchOffice {
    QWidget owner;
    ActionRegistry registry;
    frmPastClaims* window = nullptr;
    QList<Made> made;
    QList<qint64> opened;  // claims the window asked claim entry to open

    Desk() {
        addDoctor("JS", "0000", "123456", "00");
        addDoctor("KS", "0000", "654321", "00");
        db->exec("Insert Into batches (BatchID, ProviderNum) Values (?, '123456')", {kBatch});
        db->exec("Insert Into batches (BatchID, ProviderNum) Values (?, '123456')", {kLaterBatch});
        db->exec("Insert Into Invoices (ID, InvoiceNum) Values (1, '10'), (2, '104')");
        db->exec(
            "Insert Into ExplCodes (ExplCode, Description) Values"
            " ('EH', 'Health number not eligible'), ('A2', 'Service date in the future')");
        db->exec(
            "Insert Into ServiceCodes (ServiceCode, Description) Values"
            " ('A007', 'Intermediate assessment'), ('A001', 'Minor assessment'),"
            " ('A003', 'General assessment'), ('K005', 'Primary mental health care'),"
            " ('K013', 'Counselling - individual care')");
        const QStringList lasts = {"Young",  "Abbott", "Nolan", "Baker",
                                   "Moreau", "Abbott", "Singh", "Chen"};
        const QStringList firsts = {"Zoe", "Ann", "Paul", "Carl", "Lise", "Bob", "Ravi", "Mei"};
        const QStringList codes = {"A007A", "A001A", "K005A", "A003A", "K013A"};
        for (int i = 0; i < 50; ++i) {
            Made m;
            m.claimId = 10000000 + i;
            m.doctor = i % 3 == 0 ? "KS" : "JS";
            m.last = lasts[i % 8];
            m.first = firsts[i % 8];
            m.date = QDate(2026, 1, 3).addDays(i * 7);
            m.code = codes[i % 5];
            m.diag = i % 4 == 0 ? "250" : "401";
            m.fee = Money::fromCents(2000 + 137 * i);
            m.status = i % 5 == 0 ? 0 : (i % 5) - 1;  // 0, 0, 1, 2, 3
            m.batch = i % 5 == 0 ? kPendingBatch : kBatch;
            m.allBatches = m.batch == kPendingBatch ? QString() : m.batch;
            if (m.status == 2) {
                m.paid = i % 2 ? m.fee : m.fee - Money::fromCents(500);
            }
            if (i == 7) {  // sent again in a later batch
                m.batch = kLaterBatch;
                m.allBatches = QString(kBatch) + "!" + kLaterBatch;
            }
            m.invoice = i == 11 ? "10!" : i == 12 ? "104!" : QString();
            if (i == 13) {  // billed to the patient, never to the ministry
                m.payProg = "Direct";
                m.batch = batchIdForProgram(m.payProg);
                m.allBatches.clear();
                m.status = 0;
            }
            m.errors = m.status == 1 ? (i % 2 ? "EH" : "A2") : QString();
            made << m;
            claim(m.claimId, QString::number(i + 1).rightJustified(8, '0'), m.doctor,
                  {{m.code, m.fee, m.date}}, m.payProg, [&](ClaimRecord& c) {
                      c.batchId = m.batch;
                      c.allBatches = m.allBatches;
                      c.patientId = i % 8 + 1;
                      c.lName = m.last;
                      c.fName = m.first;
                      c.invoiceNum = m.invoice;
                      c.items[0].diagCode = m.diag;
                      c.items[0].status = m.status;
                      c.items[0].feePaid = m.paid;
                      c.items[0].errors = m.errors;
                  });
        }
    }

    // The window as the menu opens it; claim entry is only watched unless asked for.
    void open(bool withClaimEntry = false) {
        registerPastClaimsScreen(registry, *db, settings, office.store(), prompter, clock, log, {},
                                 &owner);
        QVERIFY(registry.runAction(kActionPastClaims));
        QVERIFY(registry.runAction(kActionPastClaims));  // the same window again
        QCOMPARE(owner.findChildren<frmPastClaims*>().size(), 1);
        window = owner.findChild<frmPastClaims*>();
        if (withClaimEntry) {
            registerClaimScreen(registry, *db, settings, office.store(), prompter, clock, log, {},
                                &owner);
        } else {
            window->setClaimOpener([this](qint64 id) {
                opened << id;
                return true;
            });
        }
        QApplication::setActiveWindow(window);
        QVERIFY(QTest::qWaitForWindowActive(window));
    }
    template <typename T>
    T* child(const char* name) const {
        return test::childNamed<T>(window, name);
    }
    void type(const char* field, const QString& text) const {
        child<QLineEdit>(field)->setText(text);
    }
    void choose(const char* box, const QString& data) const {
        auto* combo = child<QComboBox>(box);
        combo->setCurrentIndex(combo->findData(data));
    }
    void enterIn(const char* field) const {
        QWidget* w = child<QWidget>(field);
        w->setFocus();
        QTest::keyClick(w, Qt::Key_Return);
    }
    void click(const char* button) const { child<QPushButton>(button)->click(); }
    QTreeWidget* grid() const { return child<QTreeWidget>("grdClaims"); }
    QStringList column(int c) const {
        QStringList texts;
        for (int r = 0; r < grid()->topLevelItemCount(); ++r) {
            texts << grid()->topLevelItem(r)->text(c);
        }
        return texts;
    }
    void selectClaim(qint64 claimId) const {
        for (int r = 0; r < grid()->topLevelItemCount(); ++r) {
            if (grid()->topLevelItem(r)->data(0, Qt::UserRole).toLongLong() == claimId) {
                grid()->setCurrentItem(grid()->topLevelItem(r));
                return;
            }
        }
        QFAIL("claim not listed");
    }
    int status(qint64 claimId) {
        return count("Select Status From items Where ClaimID=?", {claimId});
    }
};

// How each search of the table below fills the boxes, and which items it must find.
struct Case {
    std::function<void(Desk&)> fill;
    const char* enterIn;
    std::function<bool(const Made&)> finds;
};

const std::map<QString, Case>& cases() {
    static const std::map<QString, Case> all = {
        {"every item", {[](Desk&) {}, "txtDiag", [](const Made&) { return true; }}},
        {"one doctor",
         {[](Desk& d) { d.choose("cboDoctor", "KS"); }, "cboDoctor",
          [](const Made& m) { return m.doctor == "KS"; }}},
        {"a month of service dates",
         {[](Desk& d) {
              d.type("txtStart", "2026/03/01");
              d.type("txtEnd", "2026/03/31");
          },
          "txtEnd", [](const Made& m) { return m.date.month() == 3; }}},
        {"a service code prefix and a diagnostic code",
         {[](Desk& d) {
              d.type("txtService", "k0");
              d.type("txtDiag", "250");
          },
          "txtService", [](const Made& m) { return m.code.startsWith("K0") && m.diag == "250"; }}},
        {"an invoice that begins another",
         {[](Desk& d) { d.type("txtInvoice", "10"); }, "txtInvoice",
          [](const Made& m) { return m.invoice == "10!"; }}},
        {"an earlier batch of a claim sent twice",
         {[](Desk& d) { d.choose("cboBatch", kBatch); }, "cboBatch",
          [](const Made& m) { return m.allBatches.contains(kBatch); }}},
    };
    return all;
}

// The names in the order the list must show them: by last and first name, then claim.
QStringList namesInOrder(QList<Made> items) {
    std::sort(items.begin(), items.end(), [](const Made& a, const Made& b) {
        return std::tie(a.last, a.first, a.claimId) < std::tie(b.last, b.first, b.claimId);
    });
    QStringList names;
    for (const Made& m : items) {
        names << m.last + ", " + m.first;
    }
    return names;
}

QString shots() {
    return QDir::tempPath();
}

}  // namespace

class TestFrmPastClaims : public QObject {
    Q_OBJECT

private slots:
    // Enter in a filter lists the items it finds in name order, with their fee and paid
    // totals under the list.
    void enterSearches_data() {
        QTest::addColumn<QString>("search");
        for (const auto& [name, c] : cases()) {
            QTest::newRow(qPrintable(name)) << name;
        }
    }
    void enterSearches() {
        QFETCH(QString, search);
        const Case& c = cases().at(search);
        Desk desk;
        desk.open();
        c.fill(desk);
        desk.enterIn(c.enterIn);
        QList<Made> expected;
        Money fee;
        Money paid;
        for (const Made& m : desk.made) {
            if (c.finds(m)) {
                expected << m;
                fee += m.fee;
                paid += m.paid.value_or(Money());
            }
        }
        QVERIFY(!expected.isEmpty());
        QCOMPARE(desk.prompter.messages().size(), 0);
        QCOMPARE(desk.column(3), namesInOrder(expected));
        const QString totals = desk.child<QLabel>("lblTotals")->text();
        QVERIFY2(totals.contains(fee.format()) && totals.contains(paid.format()),
                 qPrintable(totals));
    }

    // A filter the search refuses is told under the screen's title, and the list found
    // before stays; a heading sorts by its column.
    void refusedFilterKeepsTheList() {
        Desk desk;
        desk.open();
        desk.enterIn("txtDiag");
        const QStringList before = desk.column(1);
        QCOMPARE(before.size(), desk.made.size());
        desk.type("txtStart", "2026/02/30");
        desk.enterIn("txtStart");
        QCOMPARE(desk.prompter.last().title, frmPastClaims::kTitle);
        QVERIFY(desk.prompter.last().lines.contains("Invalid Start Date."));
        QCOMPARE(desk.column(1), before);

        QHeaderView* header = desk.grid()->header();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          QPoint(header->sectionViewportPosition(7) + 4, 4));
        QStringList dates = desk.column(7);
        QVERIFY(std::is_sorted(dates.begin(), dates.end()));
        QCOMPARE(dates.size(), desk.made.size());
    }

    // Alt+E asks, then writes the list with a header line and ";" between fields; a
    // folder that cannot be written says why and leaves no file; a No writes nothing.
    void exportWritesTheList_data() {
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("said");
        QTest::newRow("written") << Answer::Yes << "out"
                                 << "Successfully saved to text file.";
        QTest::newRow("folder missing") << Answer::Yes << "missing/deeper"
                                        << "Error: ";
        QTest::newRow("not wanted") << Answer::No << "out"
                                    << "";
    }
    void exportWritesTheList() {
        QFETCH(Answer, answer);
        QFETCH(QString, folder);
        QFETCH(QString, said);
        Desk desk;
        desk.open();
        QTemporaryDir temp;
        QDir(temp.path()).mkdir("out");
        const QString path = temp.path() + "/" + folder + "/claims.txt";
        int chosen = 0;
        desk.window->setExportFileChooser([&] {
            ++chosen;
            return path;
        });
        desk.choose("cboDoctor", "KS");
        desk.enterIn("cboDoctor");
        desk.prompter.script({answer});
        QTest::keyClick(desk.window, Qt::Key_E, Qt::AltModifier);
        // A button's letter clicks it after a flash.
        QTRY_COMPARE(desk.prompter.messages().size(), said.isEmpty() ? 1 : 2);
        QCOMPARE(desk.prompter.messages().first().title, frmPastClaims::kExportTitle);
        QCOMPARE(desk.prompter.messages().first().text(), QStringLiteral("Export Data?"));
        QCOMPARE(chosen, answer == Answer::Yes ? 1 : 0);
        if (said.isEmpty()) {
            QVERIFY(!QFile::exists(path));
            return;
        }
        QCOMPARE(desk.prompter.last().title, frmPastClaims::kExportTitle);
        QVERIFY2(desk.prompter.last().text().startsWith(said),
                 qPrintable(desk.prompter.last().text()));
        QFile file(path);
        if (!said.startsWith("Success")) {
            QVERIFY(desk.prompter.last().text().size() > said.size());  // the reason
            QVERIFY(!file.exists());
            return;
        }
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QStringList lines =
            QString::fromUtf8(file.readAll()).split("\r\n", Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), desk.grid()->topLevelItemCount() + 1);
        const int fields = lines.first().count(';');
        QVERIFY(fields >= 9);
        for (const QString& line : lines) {
            QCOMPARE(line.count(';'), fields);
        }
        QVERIFY(lines.mid(1).join("\n").contains(desk.column(3).first()));
    }

    // Marking an invoice paid wants the invoice typed, then pays every item of its claims
    // (an item paid a different amount too) and not those of an invoice it begins.
    void marksAnInvoicePaid() {
        Desk desk;
        desk.open();
        desk.click("cmdMark");
        QCOMPARE(desk.prompter.last().text(), QStringLiteral("Please Select an Invoice."));
        desk.db->exec("Update items Set Status=2, FeePaid=? Where ClaimID=10000011",
                      {Money::fromCents(100).toVariant()});
        desk.type("txtInvoice", "10");
        desk.enterIn("txtInvoice");
        QCOMPARE(desk.column(9), QStringList{Money::fromCents(100).format()});
        desk.click("cmdMark");
        QCOMPARE(desk.status(10000011), 2);
        QCOMPARE(desk.count("Select Count(*) From items Where ClaimID=10000011"
                            " And FeePaid=FeeSubm"),
                 1);
        QCOMPARE(desk.column(9), desk.column(8));  // the list shows it at once
        QCOMPARE(desk.status(10000012), desk.made[12].status);
        QVERIFY(desk.window->statusLine().contains("invoice 10"));
    }

    // From the current row: a rejected claim goes back to pending or its rejection is
    // closed, each only after a Yes; an answered claim is opened in claim entry only once
    // it is pending again, a pending one at once.
    void rowActions() {
        Desk desk;
        desk.open();
        desk.enterIn("txtDiag");
        const qint64 rejected = desk.made[2].claimId;  // status 1
        const qint64 another = desk.made[7].claimId;   // status 1, sent twice
        const qint64 pending = desk.made[5].claimId;

        desk.selectClaim(rejected);
        desk.prompter.script({Answer::No});
        desk.click("cmdResubmit");
        QCOMPARE(desk.batchOf(rejected), QString(kBatch));
        desk.prompter.script({Answer::Yes});
        desk.click("cmdResubmit");
        QCOMPARE(desk.batchOf(rejected), QString(kPendingBatch));
        QCOMPARE(desk.status(rejected), 0);
        QCOMPARE(desk.window->currentItem()->claimId, rejected);  // still the row
        QVERIFY(!desk.child<QPushButton>("cmdResubmit")->isEnabled());

        desk.selectClaim(another);
        desk.prompter.script({Answer::No});
        desk.click("cmdCloseReject");
        QCOMPARE(desk.status(another), 1);
        desk.prompter.script({Answer::Yes});
        desk.click("cmdCloseReject");
        QCOMPARE(desk.status(another), 3);
        QVERIFY(!desk.child<QPushButton>("cmdCloseReject")->isEnabled());

        desk.selectClaim(pending);
        QTest::keyClick(desk.grid(), Qt::Key_Return);
        desk.selectClaim(another);
        desk.prompter.script({Answer::No});
        desk.click("cmdOpen");
        QCOMPARE(desk.opened, QList<qint64>{pending});
        desk.prompter.script({Answer::Yes});
        desk.click("cmdOpen");
        QCOMPARE(desk.opened, (QList<qint64>{pending, another}));
        QCOMPARE(desk.batchOf(another), QString(kPendingBatch));

        const qint64 direct = desk.made[13].claimId;  // opened as it is, never resubmitted
        desk.selectClaim(direct);
        QVERIFY(!desk.child<QPushButton>("cmdResubmit")->isEnabled());
        const int asked = desk.prompter.messages().size();
        desk.click("cmdOpen");
        QCOMPARE(desk.opened.last(), direct);
        QCOMPARE(desk.prompter.messages().size(), asked);
        QCOMPARE(desk.batchOf(direct), desk.made[13].batch);
    }

    // A pending claim opens in the claim entry window the menu keeps.
    void opensTheClaimInClaimEntry() {
        Desk desk;
        desk.open(true);
        desk.enterIn("txtDiag");
        desk.selectClaim(desk.made[5].claimId);
        desk.click("cmdOpen");
        auto* claims = desk.owner.findChild<frmClaim*>();
        QVERIFY(claims && claims->isVisible());
        QCOMPARE(claims->entryOnScreen().claimId, desk.made[5].claimId);
        QCOMPARE(claims->entryOnScreen().lName, desk.made[5].last);
    }

    // "Show rejected" lists each code of the filters' rejected items with its text; the
    // patient list counts the patients and totals their fees.
    void rejectionsAndPatients() {
        Desk desk;
        desk.open();
        desk.choose("cboDoctor", "JS");
        desk.click("cmdShowReject");
        frmPastClaimsReject* reject = desk.window->rejectWindow();
        QVERIFY(reject);
        QTableWidget* grid = reject->grid();
        QMap<QString, int> items;
        QMap<QString, Money> fees;
        for (const Made& m : desk.made) {
            if (m.doctor == "JS" && m.status == 1) {
                ++items[m.errors];
                fees[m.errors] += m.fee;
            }
        }
        QCOMPARE(grid->rowCount(), items.size());
        for (int r = 0; r < grid->rowCount(); ++r) {
            const QString code = grid->item(r, 0)->text();
            QCOMPARE(grid->item(r, 1)->text(), QString::number(items.value(code)));
            QCOMPARE(grid->item(r, 2)->text(), fees.value(code).format());
            QCOMPARE(grid->item(r, 3)->text(), code == "EH"
                                                   ? QStringLiteral("Health number not eligible")
                                                   : QStringLiteral("Service date in the future"));
        }

        desk.click("cmdPatients");
        auto* patients = desk.window->findChild<QWidget*>("frmPastClaimsPatients");
        QVERIFY(patients);
        QSet<QString> names;
        for (const Made& m : desk.made) {
            if (m.doctor == "JS") {
                names << m.last + m.first;
            }
        }
        QCOMPARE(patients->findChild<QLabel*>("lblPatientsFound")->text(),
                 QString::number(names.size()) + " unique patients found.");
        QVERIFY(patients->findChild<QLabel*>("lblGrandTotal")->text().startsWith("Grand Total:"));
        QCOMPARE(patients->findChild<QTableWidget*>("lstPatients")->rowCount(), names.size());
    }

    // Pictures of a year's list and of its rejections on a large and a small screen.
    void screenshots() {
        Desk desk;
        for (const char* key : {"EnablePCStatus", "EnableRA", "EnablePastFac"}) {
            desk.office.store().save("Options", key, "1");
        }
        desk.open();
        desk.type("txtStart", "2026/01/01");
        desk.type("txtEnd", "2026/12/31");
        desk.enterIn("txtEnd");
        desk.click("cmdShowReject");
        for (const QSize size : {QSize(1366, 768), QSize(1024, 600)}) {
            const QString suffix =
                QStringLiteral("-%1x%2.png").arg(size.width()).arg(size.height());
            desk.window->resize(size.width(), size.height() - 40);
            QVERIFY(desk.window->grab().save(shots() + "/frmPastClaims" + suffix));
            QVERIFY(desk.window->rejectWindow()->grab().save(shots() + "/frmPastClaimsReject" +
                                                             suffix));
            QCOMPARE(desk.window->size(), QSize(size.width(), size.height() - 40));
        }
        desk.click("cmdPatients");
        auto* patients = desk.window->findChild<QWidget*>("frmPastClaimsPatients");
        QVERIFY(patients && patients->grab().save(shots() + "/frmPastClaimsPatients.png"));
    }
};

QTEST_MAIN(TestFrmPastClaims)
#include "test_frmpastclaims.moc"
