#include "OfficeFixture.h"
#include "ScreenTestSupport.h"

#include "foundation/ActionRegistry.h"
#include "hcv/CardExchange.h"
#include "screens/CardPicture.h"
#include "screens/HcvScreens.h"
#include "screens/PatientScreens.h"
#include "screens/frmPatients.h"
#include "screens/frmSwipe.h"

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

using namespace brimsett;
using Look = CardPicture::Look;

namespace {

// Card 9876543225 of Jane Mary Doe, born 1980/01/15, version AB, expiring as given ("YYMM").
QString stripe(const QString& expiry = QStringLiteral("2612"),
               const QString& prefix = QStringLiteral("%B610054")) {
    return prefix + QStringLiteral("98765432250^DOE/JANE MARY^") + expiry +
           QStringLiteral("520119800115AB12345201215?");
}

// An office on 2026/11/22 with Dr. John Smith; the window is opened by menu action 13.
struct Desk : test::OfficeFixture {
    QWidget owner;
    ActionRegistry registry;
    PatientScreens patients{*db, settings, office.store(), prompter, clock, log, &owner};
    hcv::CardExchange exchange{*db, office.store(), clock, prompter, log, office.folder()};
    OpenCheckHealth openCheckHealth;
    frmSwipe* window = nullptr;

    Desk() {
        db->exec("Insert Into Doctors (DoctorID, LName, FName) Values ('JS', 'Smith', 'John')");
        openCheckHealth =
            registerHcvScreens(registry, {*db, settings, office.store(), log, prompter, clock,
                                          exchange, patients, office.folder(), &owner});
    }
    void addPatient(qint64 id, const QVariant& healthNum) {
        db->exec(
            "Insert Into Patients (PatientID, HealthNum, VersionCode, ExpYear, FName, LName,"
            " DOB, Sex, Province) Values (?, ?, 'AB', '2026-12-01', 'Jane', 'Doe',"
            " '1980-01-15', 'F', 'ON')",
            {id, healthNum});
    }
    void open() {
        QVERIFY(registry.runAction(13));
        window = owner.findChild<frmSwipe*>();
        QVERIFY(window);
        QApplication::setActiveWindow(window);
        QVERIFY(QTest::qWaitForWindowActive(window));
    }
    template <typename T>
    T* child(const char* name) const {
        return test::childNamed<T>(window, name);
    }
    QString shown(const char* name) const { return child<QLabel>(name)->text(); }
    CardPicture* picture() const { return child<CardPicture>("cardPicture"); }
    bool wrongCardShown() const { return child<QWidget>("wrongCard")->isVisibleTo(window); }
    // What a reader types: the stripe's characters, then Enter, to the focused widget.
    void read(const QString& text) const {
        QTest::keyClicks(QApplication::focusWidget(), text);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }
    QStringList patientRows() {
        return test::rowsOf(
            db->exec("Select PatientID, HealthNum, VersionCode, ExpYear, FName,"
                     " LName, DOB From Patients Order By PatientID"));
    }
    void shoot(const QString& name) const {
        if (const QString shots = qEnvironmentVariable("BRIMSETT_SHOTS"); !shots.isEmpty()) {
            QDir().mkpath(shots);
            QApplication::processEvents();  // the layout takes the new lines in
            QVERIFY(window->grab().save(shots + "/" + name + ".png"));
        }
    }
};

}  // namespace

class TestFrmSwipe : public QObject {
    Q_OBJECT

private slots:
    // The reader's keys are a swipe wherever the focus is; a field of the window gets back a
    // "5" that began no stripe; what is typed in the stripe box is taken with Enter.
    void readerKeys_data() {
        QTest::addColumn<QString>("focus");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("healthNum");  // shown after Enter; empty when none
        QTest::addColumn<QString>("fieldText");  // left in the focused field
        QTest::addColumn<int>("look");
        test::row("shift lost, on Close", "cmdClose", stripe("2612", "5b^10054"), "9876543225", "",
                  int(Look::Valid));
        test::row("reader on another field", "other", stripe(), "9876543225", "", int(Look::Valid));
        test::row("a street number", "other", "5 Main St", "", "5 Main St", int(Look::Empty));
        test::row("typed in the box", "txtSwipe", stripe(), "9876543225", stripe(),
                  int(Look::Valid));
        test::row("not a card, in the box", "txtSwipe", "%B999", "", "%B999", int(Look::Wrong));
    }
    void readerKeys() {
        QFETCH(QString, focus);
        QFETCH(QString, typed);
        QFETCH(QString, healthNum);
        QFETCH(QString, fieldText);
        QFETCH(int, look);
        Desk desk;
        desk.open();
        auto* other = new QLineEdit(desk.window);
        other->setObjectName("other");
        other->show();
        QWidget* target = desk.window->findChild<QWidget*>(focus);
        target->setFocus();
        QCOMPARE(QApplication::focusWidget(), target);
        desk.read(typed);
        QCOMPARE(desk.shown("lblHealthNum"), healthNum);
        if (auto* field = qobject_cast<QLineEdit*>(target)) {
            QCOMPARE(field->text(), fieldText);
        }
        QCOMPARE(int(desk.picture()->look()), look);

        // A reader's second track is dropped: its Enter presses no button.
        QWidget* focused = QApplication::focusWidget();
        desk.read(";9876543225=26125201198001?");
        QCOMPARE(QApplication::focusWidget(), focused);
        QCOMPARE(int(desk.picture()->look()), look);
        QTest::qWait(250);  // a button pressed would click after a flash
        QCOMPARE(desk.owner.findChild<frmPatients*>(), nullptr);
        if (auto* field = qobject_cast<QLineEdit*>(focused); field && field != other) {
            QVERIFY(field->text().endsWith("?"));  // the box takes what is typed in it
        }
    }

    // Each card state has its picture and caption and the fields "(n/a)" where the card gives
    // nothing; with polling on the card is sent to be checked. A wrong card says what is wrong
    // (a bad number also in a box), forgets the card shown before and changes no patient.
    // Alt+O opens the card's patient, Alt+N starts one filled from the card, Alt+C clears.
    void swipes_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("registered");  // patient 7 has the card's number
        QTest::addColumn<bool>("polling");
        QTest::addColumn<int>("look");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("expiryShown");
        QTest::addColumn<QString>("told");   // in a box
        QTest::addColumn<QString>("opens");  // the patient window's title; empty to clear
        QTest::addColumn<QStringList>("filled");
        const QString bad = "Invalid Health Card Number 9876543224";
        test::row("no expiry", stripe("0000"), false, false, int(Look::NoExpiry), "No expiry date",
                  "(n/a)", "", "", QStringList());
        test::row("valid", stripe(), true, false, int(Look::Valid), "Valid to 2026/12/01",
                  "2026/12/01", "", "Patients - Jane Doe", QStringList{"7", "9876543225"});
        test::row(
            "expired", stripe("2410"), false, false, int(Look::Expired), "Expired 2024/10/01",
            "2024/10/01", "", "Patients - New Patient",
            QStringList{"9876543225", "AB", "2024/10/01", "Jane", "Doe", "1980/01/15", "M", "ON"});
        test::row("polling", stripe("2701"), true, true, int(Look::Valid), "Valid to 2027/01/01",
                  "2027/01/01", "", "", QStringList());
        test::row("wrong credit card", "%B4111111111111111^DOE/JANE^2612101000000000000?", true,
                  false, int(Look::Wrong), "This is not a health card.", "", "", "", QStringList());
        test::row("wrong bad number", "%B61005498765432240^DOE/JANE^2612520119800115AB12345201215?",
                  true, false, int(Look::Wrong), bad, "", "Error: " + bad, "", QStringList());
    }
    void swipes() {
        QFETCH(QString, text);
        QFETCH(bool, registered);
        QFETCH(bool, polling);
        QFETCH(int, look);
        QFETCH(QString, caption);
        QFETCH(QString, expiryShown);
        QFETCH(QString, told);
        QFETCH(QString, opens);
        QFETCH(QStringList, filled);
        const bool wrong = look == int(Look::Wrong);
        Desk desk;
        if (registered) {
            desk.addPatient(7, "9876543225");
            desk.db->exec(
                "Insert Into Appointments (AppID, PatientID, PatientName, AppDate,"
                " AppTime, AppLength, Status, DoctorID) Values (1, 7, 'Doe, Jane',"
                " '2026-11-22', 570, 15, 1, 'JS')");
        }
        if (wrong) {
            desk.addPatient(3, QVariant());  // a Jane Doe a misread number could be offered
        }
        const QStringList before = desk.patientRows();
        desk.exchange.setPollingOn(polling);
        desk.open();
        if (wrong) {
            desk.window->swipe(stripe());
            desk.prompter.clear();
            desk.prompter.script({Answer::Yes});
        }
        desk.window->swipe(text);

        QCOMPARE(int(desk.picture()->look()), look);
        QCOMPARE(desk.picture()->caption(), caption);
        QCOMPARE(desk.wrongCardShown(), wrong);
        QStringList messages;
        for (const RecordingPrompter::Message& m : desk.prompter.messages()) {
            QCOMPARE(m.icon, Icon::Warning);
            messages << m.title + ": " + m.text();
        }
        QCOMPARE(messages.join('\n'), told);
        const QString outcome = desk.shown("lblOutcome");
        QCOMPARE(outcome.isEmpty(), wrong);
        QCOMPARE(outcome.startsWith("This patient is already in the database."),
                 registered && !wrong);
        QCOMPARE(outcome.endsWith("The card was sent to be checked."), polling);
        QCOMPARE(desk.window->patientId(),
                 registered && !wrong ? std::optional<qint64>(7) : std::nullopt);
        QCOMPARE(desk.child<QPushButton>("cmdOpenPatient")->isEnabled(), registered && !wrong);
        QCOMPARE(desk.child<QPushButton>("cmdNewPatient")->isEnabled(), !registered && !wrong);
        QCOMPARE(QDir(desk.office.file("HCVOUT")).entryList(QDir::Files).size(), polling ? 1 : 0);
        if (wrong) {
            QCOMPARE(desk.shown("lblProblem"), caption);
            QCOMPARE(desk.patientRows(), before);
            QCOMPARE(desk.prompter.unusedAnswers(), 1);
        } else {
            QStringList values;
            for (const char* name :
                 {"lblHealthNum", "lblVersion", "lblLastName", "lblFirstName", "lblMiddleName",
                  "lblExpiry", "lblSex", "lblBirthDate", "lblCardDate"}) {
                values << desk.shown(name);
            }
            QCOMPARE(values, QStringList({"9876543225", "AB", "Doe", "Jane", "Mary", expiryShown,
                                          "M", "YYYY 1980 MM 01 DD15", "2020/12/15"}));
            QCOMPARE(desk.shown("lblAppointment"),
                     registered ? "Has an appointment for today at 9:30 am with John Smith."
                                : "No appointment for today.");
        }
        desk.shoot("frmSwipe-" + QString(QTest::currentDataTag()).replace(' ', '-'));

        if (opens.isEmpty()) {
            QTest::keyClick(desk.window, Qt::Key_C, Qt::AltModifier);
            QTRY_COMPARE(desk.picture()->look(), Look::Empty);
            QCOMPARE(desk.shown("lblHealthNum") + desk.shown("lblOutcome"), QString());
            QVERIFY(!desk.child<QPushButton>("cmdNewPatient")->isEnabled());
            return;
        }
        QTest::keyClick(desk.window, registered ? Qt::Key_O : Qt::Key_N, Qt::AltModifier);
        QTRY_VERIFY(desk.owner.findChild<frmPatients*>());
        auto* patients = desk.owner.findChild<frmPatients*>();
        QVERIFY(patients->isVisible());
        QCOMPARE(patients->windowTitle(), opens);
        QStringList texts;
        for (QLineEdit* field : patients->findChildren<QLineEdit*>()) {
            texts << field->text();
        }
        for (const QString& value : filled) {
            QVERIFY2(texts.contains(value), qPrintable(value));
        }
    }

    // Action 13 and "SWIPE" bring the one window forward ("SWIPE text" swipes it there);
    // "VSWIPE" opens nothing and answers the card's fields.
    void receiverWords_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<bool>("opens");
        test::row("swipe", "SWIPE", "OK", true);
        test::row("swipe a card", QString("SWIPE " + stripe()), "OK", true);
        test::row("swipe a bad number", "swipe %B6100549876543224",
                  "Invalid Health Card Number 9876543224", true);
        test::row("fields", QString("VSWIPE " + stripe("0000")),
                  "9876543225|AB|Doe|Jane|Mary||M|1980/01/15", false);
        test::row("fields of no card", "VSWIPE %B4111", "This is not a health card.", false);
    }
    void receiverWords() {
        QFETCH(QString, line);
        QFETCH(QString, answer);
        QFETCH(bool, opens);
        Desk desk;
        QCOMPARE(desk.registry.runCommand(line), std::optional<QString>(answer));
        auto* window = desk.owner.findChild<frmSwipe*>();
        QCOMPARE(window != nullptr, opens);
        if (opens) {
            QCOMPARE(window->windowTitle(), QString("Swipe Health Card"));
            QCOMPARE(window->findChild<QLabel*>("lblHealthNum")->text(),
                     answer == "OK" && line.contains(' ') ? QString("9876543225") : QString());
            QVERIFY(desk.registry.runAction(13));
            QCOMPARE(desk.owner.findChildren<frmSwipe*>().size(), 1);
        }
    }
};

QTEST_MAIN(TestFrmSwipe)
#include "test_frmswipe.moc"
