#include "OfficeFixture.h"

#include "foundation/ActionRegistry.h"
#include "screens/AppBookGrid.h"
#include "screens/AppBookScreen.h"
#include "screens/AppDetailsScreen.h"
#include "screens/ClaimScreens.h"
#include "screens/HourField.h"
#include "screens/frmAppBook.h"
#include "screens/frmAppBookFind.h"
#include "screens/frmAppDetails.h"
#include "screens/frmClaim.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPrintPreviewDialog>
#include <QTableWidget>
#include <QtTest>

using namespace brimsett;

namespace {

// Three doctors with their own colours of slot types, a Monday template for AB, and on
// Monday 2026-11-23: a double booking of AB at 9:00, JS's caller at 10:00, a cancelled one,
// and a lunch block (Type 1) that the month view does not count.
struct Office : test::OfficeFixture {
    ActionRegistry registry;
    QWidget main;
    frmAppBook* book = nullptr;
    QStringList overnightAsked;

    Office() {
        clock.set(QDateTime(QDate(2026, 11, 23), QTime(9, 40)));
        settings.lastDoctorApp = QStringLiteral("AB,JS,MK");
        db->exec(
            "Insert Into Doctors (DoctorID, LName, FName, ProviderNum, GroupNum, SpecCode) Values"
            " ('AB', 'Abbott', 'Alice', '111111', '0000', '00'),"
            " ('JS', 'Singh', 'Jaspreet', '222222', '0000', '00'),"
            " ('MK', 'Moreau', 'Karine', '333333', '0000', '00')");
        db->exec(
            "Insert Into apptimeslots (ID, Name, Color, Type, DefaultLength, DefaultServiceCode,"
            " DefaultDiagCode) Values (1,'Visit',16764057,0,15,'A007A','799'),"
            " (2,'Physical',10079385,0,30,'A003A','917'),"
            " (3,'Lunch',13421772,1,60,'',''),"
            " (4,'Urgent',10066431,0,15,'A001A','')");
        db->exec(
            "Insert Into apptemplates (AppTempID, DoctorID, Day, TemplateTime, TimeSlot) Values"
            " (1,'AB',2,480,1),(2,'AB',2,495,1),(3,'AB',2,510,2),(4,'AB',2,720,3),"
            " (5,'AB',2,600,4)");
        db->exec(
            "Insert Into patients (PatientID, LName, FName, HPhone, DOB, Province, HealthNum,"
            " VersionCode, Sex) Values"
            " (7,'Smith','Ann','555-1234','1980-05-17','ON','1234567897','AB','F'),"
            " (9,'Nguyen','Bao','555-7777','1975-03-02','ON','9876543225','','M')");
        db->exec(
            "Insert Into appointments (AppID, PatientName, PatientPhone, AppDate, AppTime,"
            " AppLength, SlotType, Notes, Status, ServiceCode, DiagCode, PatientID, DoctorID,"
            " Deleted) Values"
            " (1,'Smith, Ann','555-1234','2026-11-23',540,30,2,'annual',1,'A003A','917',7,'AB',0),"
            " (2,'Nguyen, Bao','555-7777','2026-11-23',540,15,1,'',2,'A007A','799',9,'AB',0),"
            " (3,'Walker, Jo','613-555-0100','2026-11-23',600,15,1,'new caller',1,'','',NULL,"
            "'JS',0),"
            " (4,'Gone, Al','','2026-11-23',630,15,1,'',7,'','',NULL,'MK',0),"
            " (5,'','','2026-11-23',720,60,3,'lunch',0,'','',NULL,'MK',0),"
            " (6,'Smith, Ann','555-1234','2026-11-25',660,15,1,'',1,'','',7,'AB',0)");
        db->exec(
            "Insert Into ServiceCodes (ServiceCode, FeeGeneral) Values ('A003', 850000),"
            " ('A007', 337000)");
        auto details =
            registerAppDetailsScreen(registry, *db, settings, office.store(), log, prompter, &main);
        auto bill = registerClaimScreen(registry, *db, settings, office.store(), prompter, clock,
                                        log, MoneyFormat{}, &main);
        registerAppBookScreen(registry, *db, settings, office.store(), log, prompter, clock,
                              details, bill, &main, [this](const QString& doctor, QDate day) {
                                  overnightAsked << doctor + ' ' + day.toString(Qt::ISODate);
                              });
        QVERIFY_THROWS_NO_EXCEPTION(registry.runAction(3));
        book = main.findChild<frmAppBook*>();
    }
    QString stored(qint64 appId, const QString& columns) {
        return test::rowsOf(db->exec(QStringLiteral("Select %1 From appointments Where AppID=%2")
                                         .arg(columns)
                                         .arg(appId)))
            .join(';');
    }
    void key(int k, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(book->grid(), Qt::Key(k), modifiers);
    }
    void text(const QString& typed) { QTest::keyClicks(book->grid(), typed); }
    void shoot(const QString& name) {
        for (const QSize& size : {QSize(1366, 768), QSize(1024, 600)}) {
            book->resize(size);
            QApplication::processEvents();
            book->refresh();
            QVERIFY(book->grab().save(
                QStringLiteral("/tmp/frmAppBook-%1-%2.png").arg(name).arg(size.width())));
        }
    }
};

template <typename Window>
Window* topLevel() {
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (auto* found = qobject_cast<Window*>(w); found && found->isVisible()) {
            return found;
        }
    }
    for (QWidget* w : QApplication::allWidgets()) {
        if (auto* found = qobject_cast<Window*>(w); found && found->isVisible()) {
            return found;
        }
    }
    return nullptr;
}

}  // namespace

class TestFrmAppBook : public QObject {
    Q_OBJECT

private slots:
    // The front desk's day from the keyboard: book into a template slot, move the booking
    // with cut and paste, set a status by its letter, cancel, and bill.
    void bookMoveAndBillFromTheKeyboard() {
        Office office;
        frmAppBook* book = office.book;
        QVERIFY(book != nullptr);
        QVERIFY(QTest::qWaitForWindowActive(book));
        QCOMPARE(book->providers(), (QStringList{"AB", "JS", "MK"}));
        QCOMPARE(book->grid()->columns().size(), 3);
        office.shoot(QStringLiteral("day"));

        // Insert on AB's 8:15 slot books it with the slot type's defaults.
        book->grid()->setFocus();
        book->grid()->setCurrent(0, 8 * 60);
        office.key(Qt::Key_Down);
        QCOMPARE(book->grid()->currentMinute(), 8 * 60 + 15);
        office.key(Qt::Key_Insert);
        auto* details = topLevel<frmAppDetails>();
        QVERIFY(details != nullptr);
        QVERIFY(QTest::qWaitForWindowActive(details));
        QApplication::processEvents();  // the activation lands
        QLineEdit* patient = nullptr;
        for (QLabel* label : details->findChildren<QLabel*>()) {
            if (label->text() == QLatin1String("Patient &number:")) {
                patient = qobject_cast<QLineEdit*>(label->buddy());
            }
        }
        QVERIFY(patient != nullptr);
        QTest::keyClicks(patient, QStringLiteral("9"));
        QTest::keyClick(patient, Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(office.prompter.messages().size(), 0);
        QCOMPARE(office.stored(7, "AppTime, AppLength, SlotType, PatientID, DoctorID, Status"),
                 QStringLiteral("495|15|1|9|AB|1"));
        details->close();
        book->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(book));

        // The book shows it at once; cut, two rows down, paste: moved to 8:45.
        QVERIFY(book->grid()->selectAppointment(7));
        book->grid()->setFocus();
        office.key(Qt::Key_X, Qt::ControlModifier);
        office.key(Qt::Key_Down);
        office.key(Qt::Key_Down);
        office.key(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(office.stored(7, "AppTime, DoctorID"), QStringLiteral("525|AB"));
        // Onto JS's caller at 10:00: the double booking is asked, No leaves it where it was.
        office.key(Qt::Key_X, Qt::ControlModifier);
        book->grid()->setCurrent(1, 600);
        office.prompter.script({Answer::No});
        office.key(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(office.prompter.last().title, QStringLiteral("Double Booking"));
        QCOMPARE(office.stored(7, "AppTime, DoctorID"), QStringLiteral("525|AB"));

        // "c" confirms; Delete cancels after the question.
        QVERIFY(book->grid()->selectAppointment(7));
        office.text(QStringLiteral("c"));
        QCOMPARE(office.stored(7, "Status"), QStringLiteral("2"));
        QVERIFY(book->grid()->selectAppointment(3));
        office.prompter.script({Answer::Yes});
        office.key(Qt::Key_Delete);
        QCOMPARE(office.prompter.last().title, QStringLiteral("Cancel Appointment"));
        QCOMPARE(office.stored(3, "Status"), QStringLiteral("7"));

        // Ctrl+B on Ann Smith's physical opens claim entry on her; Ctrl+S there bills it.
        QVERIFY(book->grid()->selectAppointment(1));
        book->grid()->setFocus();
        office.key(Qt::Key_B, Qt::ControlModifier);
        auto* claims = topLevel<frmClaim>();
        QVERIFY(claims != nullptr);
        QVERIFY(QTest::qWaitForWindowActive(claims));
        QCOMPARE(claims->entryOnScreen().patientId, QStringLiteral("7"));
        QApplication::processEvents();
        QTest::keyClick(claims, Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(office.stored(1, "Status"), QStringLiteral("6"));
        QCOMPARE(db(office).scalar("Select Count(*) From claims").toInt(), 1);
    }

    // "+" and "-" move a day, the week shows one provider's days, the month counts only
    // appointments (not the lunch block), and an empty provider list is refused.
    void viewsAndProviders() {
        Office office;
        frmAppBook* book = office.book;
        QVERIFY(QTest::qWaitForWindowActive(book));
        book->grid()->setFocus();
        office.text(QStringLiteral("+"));
        QCOMPARE(book->shownDate(), QDate(2026, 11, 24));
        office.text(QStringLiteral("--"));
        QCOMPARE(book->shownDate(), QDate(2026, 11, 22));
        book->showDate(QDate(2026, 11, 23));

        book->setView(frmAppBook::View::Week);
        QCOMPARE(book->grid()->columns().size(), 5);
        QCOMPARE(book->grid()->columns().first().date, QDate(2026, 11, 23));
        QCOMPARE(book->grid()->columns().first().doctorId, QStringLiteral("AB"));
        office.shoot(QStringLiteral("week"));

        book->setView(frmAppBook::View::Month);
        office.shoot(QStringLiteral("month"));
        QString monday;
        QString tuesday;
        for (int r = 0; r < 6; ++r) {
            for (int c = 0; c < 7; ++c) {
                if (QTableWidgetItem* item = book->monthTable()->item(r, c)) {
                    if (item->data(Qt::UserRole).toDate() == QDate(2026, 11, 23)) {
                        monday = item->text();
                    }
                    if (item->data(Qt::UserRole).toDate() == QDate(2026, 11, 24)) {
                        tuesday = item->text();
                    }
                }
            }
        }
        QVERIFY2(monday.startsWith("23  Today\nAB (+2 "), qPrintable(monday));
        QVERIFY2(monday.contains("JS (+1 "), qPrintable(monday));
        // The cancelled visit counts as the day's query counts it; the lunch block does not.
        QVERIFY2(monday.contains("MK (+1 "), qPrintable(monday));
        QCOMPARE(tuesday, QStringLiteral("24"));
        QTest::keyClick(book->monthTable(), Qt::Key_Return);
        QCOMPARE(book->view(), frmAppBook::View::Day);

        office.prompter.clear();
        QVERIFY(!book->setProviders({}));
        QCOMPARE(office.prompter.last().title, QStringLiteral("Brimsett"));
        QCOMPARE(office.prompter.last().text(),
                 QStringLiteral("Please enter at least one provider."));
        QCOMPARE(book->providers().size(), 3);
        QVERIFY(!book->setProviders({"AB", "ZZ"}));
        QCOMPARE(office.prompter.last().text(), QStringLiteral("No provider has the number ZZ."));
        QVERIFY(book->setProviders({"js", "ab"}));  // as the register spells them
        QCOMPARE(book->providers(), (QStringList{"JS", "AB"}));

        // The first hour: 13 reads 12, "p" makes it pm, "+" turns it back; Enter moves on, and
        // once the keyboard leaves the field the range is this computer's from then on.
        HourField* from = book->findChildren<HourField*>().first();
        from->hourBox()->setFocus();
        from->hourBox()->clear();
        QTest::keyClicks(from->hourBox(), QStringLiteral("13p"));
        QCOMPARE(from->hourBox()->text(), QStringLiteral("12"));
        QCOMPARE(from->halfBox()->text(), QStringLiteral("pm"));
        QTest::keyClicks(from->hourBox(), QStringLiteral("+"));
        QCOMPARE(from->halfBox()->text(), QStringLiteral("am"));
        from->hourBox()->selectAll();
        QTest::keyClicks(from->hourBox(), QStringLiteral("7"));
        QTest::keyClick(from->hourBox(), Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), from->halfBox());
        QTest::keyClick(from->halfBox(), Qt::Key_Return);
        QCOMPARE(book->shownHours(), (appointments::ShownHours{7, 17}));
        QCOMPARE(office.office.store().get("Appointment", "HourS"), QStringLiteral("7"));
        QCOMPARE(book->grid()->columns().size(), 2);

        bool setup = false;
        office.registry.setAction(40, "Appointment Setup", [&setup] { setup = true; });
        QTest::keyClick(book->windowHandle(), Qt::Key_U, Qt::AltModifier);
        QTRY_VERIFY(setup);  // a button's letter clicks it after a flash

        QCOMPARE(office.registry.runCommand("FINDAPPOINTMENT 6"), QStringLiteral("OK"));
        QCOMPARE(book->shownDate(), QDate(2026, 11, 25));
        QCOMPARE(book->grid()->currentAppointment()->appId, qint64(6));
        QCOMPARE(office.registry.runCommand("FINDAPPOINTMENT 99"), QStringLiteral("NOT FOUND"));
    }

    // Ctrl+F finds by name; Enter on a found row shows its day with it selected. Today's
    // Appts previews the shown providers' sheets, or says there is nothing.
    void findAndTodaysSheets() {
        Office office;
        frmAppBook* book = office.book;
        QVERIFY(QTest::qWaitForWindowActive(book));
        book->showDate(QDate(2026, 12, 1));
        book->grid()->setFocus();
        office.key(Qt::Key_F, Qt::ControlModifier);
        auto* find = topLevel<frmAppBookFind>();
        QVERIFY(find != nullptr);
        QTest::keyClicks(find->textField(), QStringLiteral("smith, a"));
        QTest::keyClick(find->textField(), Qt::Key_Return);
        QCOMPARE(find->countText(), QStringLiteral("2 appointment(s) found."));
        QCOMPARE(find->table()->item(0, 0)->text(), QStringLiteral("6"));  // newest first
        QCOMPARE(office.office.store().readNumber("Options", "AppSearch"), 0);
        QVERIFY(find->grab().save(QStringLiteral("/tmp/frmAppBookFind.png")));
        QTest::keyClick(find->table(), Qt::Key_Down);
        QTest::keyClick(find->table(), Qt::Key_Return);
        QCOMPARE(book->shownDate(), QDate(2026, 11, 23));
        QCOMPARE(book->grid()->currentAppointment()->appId, qint64(1));

        office.registry.runAction(4);
        QTRY_VERIFY(book->findChild<QPrintPreviewDialog*>() != nullptr);
        office.clock.set(QDateTime(QDate(2026, 11, 24), QTime(8, 0)));
        office.registry.runAction(4);
        QCOMPARE(office.prompter.last().text(), QStringLiteral("No appointments to print."));
    }

    // Ctrl+J prints the day's rejected cards (or says there are none); Ctrl+O opens the
    // overnight validation on the current provider and day.
    void cardChecks() {
        Office office;
        frmAppBook* book = office.book;
        QVERIFY(QTest::qWaitForWindowActive(book));
        book->showDate(QDate(2026, 11, 23));
        book->grid()->setFocus();
        office.key(Qt::Key_J, Qt::ControlModifier);
        QCOMPARE(office.prompter.last().text(),
                 QStringLiteral("No patient of this day has a rejected card."));
        office.db->exec("Update patients Set Status=2, Response='65' Where PatientID=9");
        office.key(Qt::Key_J, Qt::ControlModifier);
        QTRY_VERIFY(book->findChild<QPrintPreviewDialog*>() != nullptr);
        office.key(Qt::Key_O, Qt::ControlModifier);
        QCOMPARE(office.overnightAsked, QStringList{"AB 2026-11-23"});
    }

private:
    static Database& db(Office& office) { return *office.db; }
};

QTEST_MAIN(TestFrmAppBook)
#include "test_frmappbook.moc"
