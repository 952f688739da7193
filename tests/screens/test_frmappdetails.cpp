#include "OfficeFixture.h"

#include "foundation/ActionRegistry.h"
#include "screens/AppDetailsScreen.h"
#include "screens/ProviderScreens.h"
#include "screens/frmAppDetails.h"
#include "screens/frmDoctors.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

// Two doctors, two slot types, an Ontario patient with a good number (7) and one with a bad
// number (8); appointment 1 is Ann Smith's, 2 a caller's, 3 the lab requisition program's.
struct Office : test::OfficeFixture {
    ActionRegistry registry;
    QWidget main;

    Office(bool enterSavesNotes = false) {
        settings.option[20] = enterSavesNotes;
        db->exec(
            "Insert Into Doctors (DoctorID, LName, FName, ProviderNum, GroupNum, SpecCode) Values"
            " ('AB', 'Abbott', 'Alice', '111111', '0000', '00'),"
            " ('JS', 'Singh', 'Jaspreet', '222222', '0000', '00')");
        db->exec(
            "Insert Into apptimeslots (ID, Name, Color, Type, DefaultLength, DefaultServiceCode,"
            " DefaultDiagCode) Values (1,'Visit',255,0,15,'A007A','799'),"
            " (2,'Physical',65280,0,30,'A003A','917')");
        db->exec(
            "Insert Into patients (PatientID, LName, FName, HPhone, DOB, Province, HealthNum,"
            " VersionCode) Values (7,'Smith','Ann','555-1234','1980-05-17','ON','1234567897','AB'),"
            " (8,'Bad','Card','','1970-01-01','ON','1234567890','')");
        db->exec(
            "Insert Into appointments (AppID, PatientName, PatientPhone, AppDate, AppTime,"
            " AppLength, SlotType, Notes, Status, ServiceCode, DiagCode, PatientID, DoctorID,"
            " Deleted) Values"
            " (1,'Smith, Ann','555-1234','2026-11-23',545,15,1,'flu "
            "shot',1,'A007A','799',7,'AB',0),"
            " (2,'Walker, Jo','613-555-0100','2026-11-23',600,30,2,'',2,'','',NULL,'JS',0),"
            " (3,'Smith, Ann','555-1234','2026-11-24',540,15,1,'blood work',1,'','',7,'AB',0)");
        db->exec("Insert Into realreqstage (apptid) Values ('3')");
        registerProviderScreens(registry, *db, settings, office.store(), log, prompter, &main);
        registerAppDetailsScreen(registry, *db, settings, office.store(), log, prompter, &main);
    }
    QString run(const QString& line) { return registry.runCommand(line).value_or("UNKNOWN"); }
    frmAppDetails* details() { return main.findChild<frmAppDetails*>(); }
    // The details open on an appointment, as the book asks for them.
    frmAppDetails* open(qint64 appId) {
        const QString answer = run(QStringLiteral("FROMAPPAPPOINTMENT %1").arg(appId));
        return answer == QLatin1String("OK") ? details() : nullptr;
    }
    QString stored(qint64 appId, const QString& columns) {
        return test::rowsOf(db->exec(QStringLiteral("Select %1 From appointments Where AppID=%2")
                                         .arg(columns)
                                         .arg(appId)))
            .join(';');
    }
};

// The screen's fields, found by the label that names them.
QWidget* field(QWidget* screen, const QString& caption) {
    for (QLabel* label : screen->findChildren<QLabel*>()) {
        if (label->text() == caption && label->buddy()) {
            return label->buddy();
        }
    }
    qFatal("no field %s", qPrintable(caption));
}
QLineEdit* line(QWidget* screen, const QString& caption) {
    return qobject_cast<QLineEdit*>(field(screen, caption));
}
QComboBox* box(QWidget* screen, const QString& caption) {
    return qobject_cast<QComboBox*>(field(screen, caption));
}
const char* const kShown[] = {
    "Patient &number:", "Na&me:", "P&hone:",  "&Doctor:", "D&ate:",         "&Time:",
    "&Length:",         "T&ype:", "Stat&us:", "N&otes:",  "Se&rvice code:", "Dia&gnostic code:"};

}  // namespace

class TestFrmAppDetails : public QObject {
    Q_OBJECT

private slots:
    // The book's appointment opens with every field filled; a caller's name and phone are
    // open to typing, and the requisition program's appointment says it is read only.
    void showsTheAppointment_data() {
        QTest::addColumn<qint64>("appId");
        QTest::addColumn<QString>("patientLine");
        QTest::addColumn<QString>("fields");  // as in kShown, joined by "|"
        QTest::addColumn<bool>("readOnly");
        row("registered patient", qint64(1), "Smith, Ann   555-1234   DOB: 1980/05/17",
            "7|Smith, Ann|555-1234|AB - Abbott, Alice|2026/11/23|9:05 am|15|Visit|Booked|flu "
            "shot|A007A|799",
            false);
        row("caller", qint64(2), "Caller not registered: name and phone",
            "|Walker, Jo|613-555-0100|JS - Singh, Jaspreet|2026/11/23|10:00 am|30|Physical|"
            "Confirmed|||",
            false);
        row("requisition's", qint64(3), "Smith, Ann   555-1234   DOB: 1980/05/17",
            "7|Smith, Ann|555-1234|AB - Abbott, Alice|2026/11/24|9:00 am|15|Visit|Booked|blood "
            "work||",
            true);
    }
    void showsTheAppointment() {
        QFETCH(qint64, appId);
        QFETCH(QString, patientLine);
        QFETCH(QString, fields);
        QFETCH(bool, readOnly);
        Office office;
        frmAppDetails* screen = office.open(appId);
        QVERIFY(screen && screen->isVisible());
        QCOMPARE(screen->windowTitle(), QStringLiteral("Appointment Details"));
        QCOMPARE(screen->shownAppId(), appId);
        QStringList shown;
        for (const char* caption : kShown) {
            QWidget* w = field(screen, caption);
            auto* combo = qobject_cast<QComboBox*>(w);
            shown << (combo ? combo->currentText() : qobject_cast<QLineEdit*>(w)->text());
        }
        QCOMPARE(shown.join('|'), fields);
        bool lineShown = false;
        bool noteShown = false;
        for (QLabel* label : screen->findChildren<QLabel*>()) {
            lineShown = lineShown || label->text() == patientLine;
            noteShown = noteShown || (label->isVisible() && label->text().contains("requisition"));
        }
        QVERIFY2(lineShown, qPrintable(patientLine));
        QCOMPARE(noteShown, readOnly);
        QCOMPARE(line(screen, "Na&me:")->isEnabled(), appId == 2);
        QVERIFY(office.prompter.messages().isEmpty());
        QVERIFY(QTest::qWaitForWindowExposed(screen));
        QVERIFY(screen->grab().save(QStringLiteral("/tmp/frmAppDetails-%1.png").arg(appId)));
    }

    // What is typed or chosen fills the rest and is saved with Ctrl+S: a slot type brings its
    // length and codes over what was typed, even chosen again; a registered patient's number
    // brings the name and phone; a letter in the status box picks the status at its place in
    // " OCWSNB" (from Confirmed, where the list's own search would land elsewhere).
    void typedOrChosenFillsAndSaves_data() {
        QTest::addColumn<qint64>("appId");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("columns");
        QTest::addColumn<QString>("stored");
        const char* fromType = "AppLength, SlotType, ServiceCode, DiagCode";
        row("another type", qint64(1), "T&ype:", "P", fromType, "30|2|A003A|917");
        row("the same type again", qint64(1), "T&ype:", "", fromType, "15|1|A007A|799");
        row("patient number", qint64(2), "Patient &number:", "7",
            "PatientID, PatientName, PatientPhone", "7|Smith, Ann|555-1234");
        row("status blank", qint64(2), "Stat&us:", " ", "Status", "0");
        row("status o", qint64(2), "Stat&us:", "o", "Status", "1");
        row("status S", qint64(2), "Stat&us:", "S", "Status", "4");
        row("letter of no status", qint64(2), "Stat&us:", "x", "Status", "2");
    }
    void typedOrChosenFillsAndSaves() {
        QFETCH(qint64, appId);
        QFETCH(QString, caption);
        QFETCH(QString, typed);
        QFETCH(QString, columns);
        QFETCH(QString, stored);
        Office office;
        frmAppDetails* screen = office.open(appId);
        QVERIFY(QTest::qWaitForWindowActive(screen));
        line(screen, "&Length:")->setText("45");
        line(screen, "Se&rvice code:")->setText("X");
        if (auto* types = qobject_cast<QComboBox*>(field(screen, caption)); typed.isEmpty()) {
            emit types->activated(types->currentIndex());  // chosen again from the list
        }
        QTest::keyClicks(field(screen, caption), typed);
        QTest::keyClick(field(screen, caption), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(office.stored(appId, columns), stored);
        QCOMPARE(office.prompter.messages().size(), 0);
    }

    // Every problem of the checks shows at once, the health number's last; nothing is written.
    void saveRefusedWithEveryProblem() {
        Office office;
        const QString before = office.stored(1, "*");
        frmAppDetails* screen = office.open(1);
        line(screen, "Patient &number:")->setText("8");
        box(screen, "&Doctor:")->setCurrentIndex(0);
        line(screen, "D&ate:")->setText("2026/02/30");
        line(screen, "&Length:")->setText("0");
        box(screen, "T&ype:")->setCurrentIndex(0);
        QVERIFY(!screen->save());
        QCOMPARE(office.prompter.messages().size(), 1);
        QCOMPARE(office.prompter.last().title, QStringLiteral("Error"));
        QCOMPARE(office.prompter.last().lines,
                 (QStringList{"Doctor ID must be entered.", "Invalid date.",
                              "Length must be greater than zero.", "Invalid type.",
                              "'1234567890' is not a valid health card number."}));
        QCOMPARE(office.stored(1, "*"), before);
    }

    // Every way out of an appointment: Esc closes an unchanged one at once and asks about a
    // changed one (Cancel the default) and obeys; the requisition program's is never written
    // whichever way; with switch 20 on, Enter in the notes saves, otherwise it moves on.
    void savingAndLeaving_data() {
        QTest::addColumn<qint64>("appId");
        QTest::addColumn<bool>("switch20");
        QTest::addColumn<QString>("how");  // the notes are changed first unless "Esc unchanged"
        QTest::addColumn<int>("answer");   // -1: nothing asked
        QTest::addColumn<QString>("told");
        QTest::addColumn<bool>("stays");
        QTest::addColumn<QString>("notes");
        const char* guard = "Unauthorized Access, Appointments made in Ostrel are read only.";
        const QString asked = QStringLiteral("Save changes?");
        row("unchanged, Esc closes", qint64(1), false, "Esc unchanged", -1, "", false, "flu shot");
        row("Esc, Cancel stays", qint64(1), false, "Esc", int(Answer::Cancel), asked, true,
            "flu shot");
        row("Esc, No forgets", qint64(1), false, "Esc", int(Answer::No), asked, false, "flu shot");
        row("Esc, Yes saves", qint64(1), false, "Esc", int(Answer::Yes), asked, false, "call back");
        row("requisition's, Esc and Yes", qint64(3), false, "Esc", int(Answer::Yes),
            asked + " / " + guard, true, "blood work");
        row("requisition's, Save", qint64(3), false, "Save", -1, guard, true, "blood work");
        row("switch 20 on, Enter saves", qint64(1), true, "Enter", -1, "", true, "call back");
        row("switch 20 off, Enter moves on", qint64(1), false, "Enter", -1, "", true, "flu shot");
    }
    void savingAndLeaving() {
        QFETCH(qint64, appId);
        QFETCH(bool, switch20);
        QFETCH(QString, how);
        QFETCH(int, answer);
        QFETCH(QString, told);
        QFETCH(bool, stays);
        QFETCH(QString, notes);
        Office office(switch20);
        const QPointer<frmAppDetails> screen(office.open(appId));
        QVERIFY(QTest::qWaitForWindowActive(screen));
        QLineEdit* notesLine = line(screen, "N&otes:");
        notesLine->setFocus();
        if (how != "Esc unchanged") {
            notesLine->setText("call back");
        }
        if (answer >= 0) {
            office.prompter.script({Answer(answer)});
        }
        if (how == "Save") {
            QVERIFY(!screen->save());
        } else if (how == "Enter") {
            QTest::keyClick(notesLine, Qt::Key_Return);
            QCOMPARE(QApplication::focusWidget() == notesLine, switch20);
        } else {
            QTest::keyClick(screen, Qt::Key_Escape);
        }
        QStringList texts;
        for (const RecordingPrompter::Message& m : office.prompter.messages()) {
            texts << m.text();
        }
        QCOMPARE(texts.join(" / "), told);
        if (answer >= 0) {
            QCOMPARE(office.prompter.messages().first().defaultAnswer, Answer::Cancel);
        }
        if (appId == 3) {
            QCOMPARE(office.prompter.last().icon, Icon::Critical);
        }
        QTRY_COMPARE(!screen.isNull() && screen->isVisible(), stays);
        QCOMPARE(office.stored(appId, "Notes"), notes);
    }

    // A new booking over appointment 1 is asked about, No the default, and written on Yes.
    void newBookingOverAnother_data() {
        QTest::addColumn<int>("answer");
        QTest::addColumn<int>("count");
        row("No books nothing", int(Answer::No), 3);
        row("Yes books it too", int(Answer::Yes), 4);
    }
    void newBookingOverAnother() {
        QFETCH(int, answer);
        QFETCH(int, count);
        Office office;
        frmAppDetails* screen = office.open(1);
        screen->startNew({.doctorId = "AB",
                          .date = "2026/11/23",
                          .time = "9:00 am",
                          .length = "15",
                          .slotType = "1"});
        QCOMPARE(screen->shownAppId(), 0);
        QCOMPARE(box(screen, "Stat&us:")->currentText(), QStringLiteral("Booked"));
        line(screen, "Na&me:")->setText("Lee, Kim");
        office.prompter.script({Answer(answer)});
        QCOMPARE(screen->save(), answer == int(Answer::Yes));
        QCOMPARE(office.prompter.messages().first().title, QStringLiteral("Double Booking"));
        QCOMPARE(office.prompter.messages().first().defaultAnswer, Answer::No);
        QCOMPARE(office.db->scalar("Select Count(*) From appointments").toInt(), count);
        QCOMPARE(screen->shownAppId(), answer == int(Answer::Yes) ? 4 : 0);
    }

    void receiverWords_data() {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("opened");  // the window that came forward, and on what
        row("details of none", "FROMAPPAPPOINTMENT 99", "NOT FOUND", "");
        row("fields of a caller's", "VAPP 2",
            "2|2026/11/23|10:00 am|30|JS||Walker, Jo|613-555-0100|2|2", "");
        row("fields of none", "VAPP 0", "NOT FOUND", "");
        row("doctor", "APPDOCTOR js", "OK", "doctors JS");
        row("doctor of none", "APPDOCTOR ZZ", "NOT FOUND", "");
    }
    void receiverWords() {
        QFETCH(QString, command);
        QFETCH(QString, answer);
        QFETCH(QString, opened);
        Office office;
        QCOMPARE(office.run(command), answer);
        QString forward;
        if (frmAppDetails* details = office.details(); details && details->isVisible()) {
            forward = QStringLiteral("details %1").arg(details->shownAppId());
        }
        if (auto* doctors = office.main.findChild<frmDoctors*>(); doctors && doctors->isVisible()) {
            forward = QStringLiteral("doctors ") + doctors->shownDoctorId();
        }
        QCOMPARE(forward, opened);
    }
};

QTEST_MAIN(TestFrmAppDetails)
#include "test_frmappdetails.moc"
