#include "OfficeFixture.h"
#include "appointments/BookBilling.h"

using namespace brimsett;
using namespace brimsett::appointments;

namespace {

const QStringList kNoPatient = {"This appointment has no registered patient.",
                                "Enter the patient's number in its details first, then bill it."};

// Patient 7 and appointment 5 of doctor "01" on 2026/11/25 at 9:00, its codes padded with
// blanks as an older office file may keep them.
struct Office : test::OfficeFixture {
    Office() {
        db->exec(
            QStringLiteral("Insert Into patients (PatientID, LName, FName) Values"
                           " (7,'Smith','Ann')"));
    }
    void book(const QVariant& patientId, int status, int deleted) {
        db->exec(QStringLiteral("Insert Into appointments (AppID, PatientID, PatientName,"
                                " DoctorID, AppDate, AppTime, AppLength, SlotType, Status,"
                                " ServiceCode, DiagCode, Deleted) Values"
                                " (5,?,'Walk In','01','2026-11-25',540,15,1,?,'A007A','799 ',?)"),
                 {patientId, status, deleted});
    }
    int status() {
        return db->scalar(QStringLiteral("Select Status From appointments Where AppID=5")).toInt();
    }
};

}  // namespace

class TestBookBilling : public QObject {
    Q_OBJECT

private slots:
    // Each appointment is started or refused; a billed or cancelled one only after Yes to its
    // own question, whose default is No. Nothing is written either way.
    void startBilling_data() {
        QTest::addColumn<QVariant>("patientId");  // null: a caller booked by name
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("deleted");
        QTest::addColumn<bool>("yes");  // the answer to a question; else its default
        QTest::addColumn<bool>("started");
        QTest::addColumn<QStringList>("message");  // the one message; empty: none
        const QStringList billed = {"This appointment is already marked as 'Billed'.",
                                    "Are you sure you want to bill it?"};
        const QStringList cancelled = {"This appointment is cancelled.",
                                       "Are you sure you want to bill it?"};
        const QVariant seven = qint64(7);
        test::row("booked", seven, 1, 0, false, true, QStringList());
        test::row("seen", seven, 4, 0, false, true, QStringList());
        test::row("billed, refused by default", seven, 6, 0, false, false, billed);
        test::row("billed, Yes", seven, 6, 0, true, true, billed);
        test::row("cancelled, refused by default", seven, 7, 0, false, false, cancelled);
        test::row("cancelled, Yes", seven, 7, 0, true, true, cancelled);
        test::row("caller without a patient", QVariant(), 6, 0, true, false, kNoPatient);
        test::row("patient number not on file", QVariant(qint64(99)), 1, 0, false, false,
                  kNoPatient);
        test::row("deleted", seven, 1, 1, false, false,
                  QStringList{"Appointment 5 is not on file."});
    }
    void startBilling() {
        QFETCH(QVariant, patientId);
        QFETCH(int, status);
        QFETCH(int, deleted);
        QFETCH(bool, yes);
        QFETCH(bool, started);
        QFETCH(QStringList, message);
        Office o;
        o.book(patientId, status, deleted);
        if (yes) {
            o.prompter.script({Answer::Yes});
        }
        const std::optional<BillingStart> start = appointments::startBilling(*o.db, o.prompter, 5);
        QCOMPARE(start.has_value(), started);
        QCOMPARE(o.prompter.messages().size(), message.isEmpty() ? 0 : 1);
        if (!message.isEmpty()) {
            const RecordingPrompter::Message& m = o.prompter.last();
            QCOMPARE(m.lines, message);
            QCOMPARE(m.title, QString("Brimsett"));
            QCOMPARE(m.question, message.last().endsWith('?'));
            if (m.question) {
                QCOMPARE(m.defaultAnswer, Answer::No);
            }
        }
        QCOMPARE(o.status(), status);
        if (start) {
            QCOMPARE(start->appId, 5);
            QCOMPARE(start->patientId, 7);
            QCOMPARE(start->doctorId, QString("01"));
            QCOMPARE(start->serviceDate, QDate(2026, 11, 25));
            QCOMPARE(start->serviceCode, QString("A007A"));
            QCOMPARE(start->diagCode, QString("799"));
        }
    }

    void unknownAppointmentIsTold() {
        Office o;
        QVERIFY(!appointments::startBilling(*o.db, o.prompter, 42));
        QCOMPARE(o.prompter.messages().size(), 1);
        QCOMPARE(o.prompter.last().lines, QStringList{"Appointment 42 is not on file."});
    }
};

QTEST_GUILESS_MAIN(TestBookBilling)
#include "test_book_billing.moc"
