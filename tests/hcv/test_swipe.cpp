#include "OfficeFixture.h"
#include "hcv/SwipeCard.h"
#include "hcv/SwipeMatch.h"

#include <QtTest>

using namespace brimsett;
using namespace brimsett::hcv;

namespace {

using Kind = SwipeResult::Kind;

// A whole first track: prefix, number, check character and separator, name field, then
// expiry 2612, three skipped, sex, birth date, version code, five skipped, card date.
const char* const kCard = "%B61005498765432250^DOE/JANE MARY^2612520119800115AB12345201215?";

QString fields(const SwipedCard& c) {
    return QStringList{c.healthNum, c.lastName, c.firstName,   c.middleName, c.expiry,
                       c.sex,       c.dob,      c.versionCode, c.cardDate}
        .join(QLatin1Char('|'));
}

SwipedCard card() {
    return parseSwipe(QString::fromLatin1(kCard)).card;
}

void addPatient(Database& db, qint64 id, const QString& first, const QString& last,
                const QVariant& healthNum, const QVariant& version = {},
                const QVariant& expiry = {}, const QVariant& dob = {}) {
    db.exec(QStringLiteral("Insert Into patients (PatientID, FName, LName, HealthNum, VersionCode,"
                           " ExpYear, DOB) Values(?, ?, ?, ?, ?, ?, ?)"),
            {id, first, last, healthNum, version, expiry, dob});
}

void addAppointment(Database& db, qint64 appId, const QVariant& patientId, const QString& name,
                    const QDate& date, int time, int status, int deleted, const QString& doctor) {
    db.exec(QStringLiteral("Insert Into appointments (AppID, PatientID, PatientName, AppDate,"
                           " AppTime, AppLength, Status, Deleted, DoctorID)"
                           " Values(?, ?, ?, ?, ?, 15, ?, ?, ?)"),
            {appId, patientId, name, date, time, status, deleted, doctor});
}

QStringList patientRows(Database& db) {
    return test::rowsOf(
        db.exec(QStringLiteral("Select PatientID, FName, LName, HealthNum, VersionCode, ExpYear,"
                               " DOB From patients Order By PatientID")));
}

}  // namespace

class TestSwipe : public QObject {
    Q_OBJECT

private slots:
    void parse_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("expected");  // fields() of the card
        QTest::addColumn<QString>("problem");
        const QString whole =
            QStringLiteral("9876543225|Doe|Jane|Mary|2026/12/01|M|1980/01/15|AB|2020/12/15");
        const QString tail = QStringLiteral("2612520119800115AB12345201215?");
        test::row("whole card", kCard, int(Kind::Card), whole, "");
        test::row("caps lock", "%b61005498765432250^DOE/JANE MARY^2612520119800115AB12345201215?",
                  int(Kind::Card), whole, "");
        // Shift lost: "5" for "%", "^" for "6" in the prefix and "6" for "^", "?" for "/", small
        // letters.
        test::row("shift lost", "5b^1005498765432250^doe?jane mary62612520119800115ab12345201215/",
                  int(Kind::Card), whole, "");
        for (const char* prefix : {"%B^10054", "%b^10054", "5B610054", "5b610054", "5B^10054"}) {
            test::row(prefix, prefix + QString("98765432250^DOE/JANE MARY^") + tail,
                      int(Kind::Card), whole, "");
        }
        test::row("carriage returns",
                  "%B6100\r5498765432250^DOE/JANE MARY^\r2612520119800115AB12345201215?\r",
                  int(Kind::Card), whole, "");
        test::row("? between names", QString("%B61005498765432250^DOE?JANE^" + tail),
                  int(Kind::Card), "9876543225|Doe|Jane||2026/12/01|M|1980/01/15|AB|2020/12/15",
                  "");
        test::row("name without separator", QString("%B61005498765432250^DOE^" + tail),
                  int(Kind::Card), "9876543225|Doe|||2026/12/01|M|1980/01/15|AB|2020/12/15", "");
        // The "6" ends the name before the "^"; what follows is cut from after the "6".
        test::row("6 before ^", "%B61005498765432250^DOE/JANE62612520219800115B 12345301215^",
                  int(Kind::Card), "9876543225|Doe|Jane||2026/12/01|F|1980/01/15|B|1930/12/15", "");
        test::row("no expiry",
                  "%B61005498765432250^O'BRIEN/MARY ANN JO^0000520219991231A 12345291231?",
                  int(Kind::Card), "9876543225|O'Brien|Mary|Ann Jo||F|1999/12/31|A|2029/12/31", "");
        test::row("dates that are none",
                  "%B61005498765432250^DOE/JANE^1313520119801301AB12345260230?", int(Kind::Card),
                  "9876543225|Doe|Jane|||M||AB|", "");
        test::row("cut after the birth date", "%B61005498765432250^DOE/JANE^2612520119800115",
                  int(Kind::Card), "9876543225|Doe|Jane||2026/12/01|M|1980/01/15||", "");
        test::row("cut in the expiry", "%B61005498765432250^DOE/JANE^26", int(Kind::Card),
                  "9876543225|Doe|Jane||||||", "");
        test::row("cut in the name", "%B61005498765432250^DOE/JA", int(Kind::InvalidCard),
                  "9876543225||||||||", "Invalid Card");
        test::row("cut before the name", "%B6100549876543225", int(Kind::InvalidCard),
                  "9876543225||||||||", "Invalid Card");
        test::row("bad number", QString("%B61005498765432240^DOE/JANE^" + tail),
                  int(Kind::InvalidNumber), "9876543224||||||||",
                  "Invalid Health Card Number 9876543224");
        test::row("cut in the number", "%B6100549876", int(Kind::InvalidNumber), "9876||||||||",
                  "Invalid Health Card Number 9876");
        test::row("credit card", "%B4111111111111111^DOE/JANE^2612101000000000000?",
                  int(Kind::NotHealthCard), "||||||||", "This is not a health card.");
        test::row("other province", "%B6100559876543225", int(Kind::NotHealthCard), "||||||||",
                  "This is not a health card.");
        test::row("empty", "", int(Kind::NotHealthCard), "||||||||", "This is not a health card.");
    }
    void parse() {
        QFETCH(QString, text);
        QFETCH(int, kind);
        QFETCH(QString, expected);
        QFETCH(QString, problem);
        const SwipeResult result = parseSwipe(text);
        QCOMPARE(int(result.kind), kind);
        QCOMPARE(fields(result.card), expected);
        QCOMPARE(result.problem.join('\n'), problem);
    }

    void dates_data() {
        QTest::addColumn<QString>("yymmdd");
        QTest::addColumn<QString>("widened");
        test::row("last year of this century's window", "291231", "2029/12/31");
        test::row("first of the last century's", "300101", "1930/01/01");
        test::row("2000 is a leap year", "000229", "2000/02/29");
        test::row("1999", "991231", "1999/12/31");
        test::row("no such month", "261301", "");
        test::row("no such day", "270229", "");
        test::row("five digits", "26013", "");
        test::row("a letter", "2601a1", "");
    }
    void dates() {
        QFETCH(QString, yymmdd);
        QFETCH(QString, widened);
        QCOMPARE(widenShortDate(yymmdd), widened);
    }

    void cardStates_data() {
        QTest::addColumn<QString>("expiry");
        QTest::addColumn<int>("state");
        test::row("no expiry", "", int(CardState::NoExpiry));
        test::row("expired this month", "2026/11/01", int(CardState::Expired));
        test::row("expires today", "2026/11/22", int(CardState::Valid));
        test::row("next month", "2026/12/01", int(CardState::Valid));
    }
    void cardStates() {
        QFETCH(QString, expiry);
        QFETCH(int, state);
        SwipedCard c;
        c.expiry = expiry;
        QCOMPARE(int(cardState(c, QDate(2026, 11, 22))), state);
        QCOMPARE(birthDateShown(QStringLiteral("1980/01/15")),
                 QStringLiteral("YYYY 1980 MM 01 DD15"));
        QCOMPARE(birthDateShown(QString()), QStringLiteral("(n/a)"));
    }

    // The card's number is on file: what differs is written and named.
    void found_data() {
        QTest::addColumn<QVariant>("version");
        QTest::addColumn<QVariant>("expiry");
        QTest::addColumn<QVariant>("dob");
        QTest::addColumn<QString>("cardText");
        QTest::addColumn<QString>("updated");  // the second line; empty for none
        QTest::addColumn<QString>("after");
        const QVariant ab(QStringLiteral("AB"));
        const QVariant exp(QDate(2026, 12, 1));
        const QVariant dob(QDate(1980, 1, 15));
        const QString both = QStringLiteral("7|Jane|Doe|9876543225|AB|2026-12-01|1980-01-15");
        test::row("all three differ", QVariant(QStringLiteral("ZZ")), QVariant(QDate(2020, 1, 1)),
                  QVariant(QDate(1979, 1, 15)), kCard,
                  "Version code, Expity Date, Date of birth,  updated. (ID: 7)", both);
        test::row("none stored", QVariant(), QVariant(), QVariant(), kCard,
                  "Version code, Expity Date, Date of birth,  updated. (ID: 7)", both);
        test::row("version only", QVariant(QStringLiteral("ZZ")), exp, dob, kCard,
                  "Version code,  updated. (ID: 7)", both);
        test::row("birth date only", ab, exp, QVariant(QDate(1980, 1, 16)), kCard,
                  "Date of birth,  updated. (ID: 7)", both);
        test::row("unchanged", ab, exp, dob, kCard, "", both);
        // A card without expiry, or a short swipe, never clears what is stored.
        test::row("card without expiry", ab, QVariant(QDate(2020, 1, 1)), dob,
                  "%B61005498765432250^DOE/JANE MARY^0000520119800115AB12345201215?", "",
                  "7|Jane|Doe|9876543225|AB|2020-01-01|1980-01-15");
        test::row("short swipe", QVariant(QStringLiteral("ZZ")), exp, dob,
                  "%B61005498765432250^DOE/JANE MARY^", "",
                  "7|Jane|Doe|9876543225|ZZ|2026-12-01|1980-01-15");
    }
    void found() {
        QFETCH(QVariant, version);
        QFETCH(QVariant, expiry);
        QFETCH(QVariant, dob);
        QFETCH(QString, cardText);
        QFETCH(QString, updated);
        QFETCH(QString, after);
        test::OfficeFixture f;
        f.log.setOn(true);
        addPatient(*f.db, 7, "Jane", "Doe", "9876543225", version, expiry, dob);
        // A patient named as on the card but without the number is not asked about.
        addPatient(*f.db, 8, "Jane", "Doe", QVariant());
        const SwipeResult parsed = parseSwipe(cardText);
        QCOMPARE(parsed.kind, Kind::Card);

        const SwipeOutcome out =
            SwipeMatch(*f.db, f.settings, f.prompter, f.clock, f.log).match(parsed.card);
        QCOMPARE(out.patientId, std::optional<qint64>(7));
        QStringList lines{"This patient is already in the database. (ID: 7)"};
        if (!updated.isEmpty()) {
            lines << updated;
        }
        QCOMPARE(out.lines, lines);
        QVERIFY(f.prompter.messages().isEmpty());
        QCOMPARE(patientRows(*f.db).first(), after);
        const QString log = test::readText(f.log.path());
        QCOMPARE(log.isEmpty(), updated.isEmpty());
        QCOMPARE(log.count(QStringLiteral("Update patients Set")), updated.isEmpty() ? 0 : 1);
    }

    // No patient has the number: those without one, named as on the card in either order,
    // are offered one by one.
    void candidates_data() {
        QTest::addColumn<QList<int>>("answers");  // Answer values
        QTest::addColumn<bool>("keepNames");      // switch 21
        QTest::addColumn<int>("asked");
        QTest::addColumn<int>("taken");            // 0 for none
        QTest::addColumn<QStringList>("changed");  // rows of 7 and 8 afterwards
        const QString seven = "7|JANE|DOE|<null>|<null>|<null>|1980-01-15";
        const QString eight = "8|Doe|Jane||<null>|<null>|<null>";
        const QString written = "|9876543225|AB|2026-12-01|1980-01-15";
        test::row("yes to the first", QList<int>{int(Answer::Yes)}, false, 1, 7,
                  QStringList{"7|Jane|Doe" + written, eight});
        test::row("no, then yes", QList<int>{int(Answer::No), int(Answer::Yes)}, false, 2, 8,
                  QStringList{seven, "8|Jane|Doe" + written});
        test::row("switch 21 keeps the names", QList<int>{int(Answer::No), int(Answer::Yes)}, true,
                  2, 8, QStringList{seven, "8|Doe|Jane" + written});
        test::row("no to both", QList<int>{int(Answer::No), int(Answer::No)}, false, 2, 0,
                  QStringList{seven, eight});
        test::row("cancel is a new patient", QList<int>{int(Answer::Cancel)}, false, 1, 0,
                  QStringList{seven, eight});
    }
    void candidates() {
        QFETCH(QList<int>, answers);
        QFETCH(bool, keepNames);
        QFETCH(int, asked);
        QFETCH(int, taken);
        QFETCH(QStringList, changed);
        test::OfficeFixture f;
        f.settings.option[21] = keepNames;
        addPatient(*f.db, 7, "JANE", "DOE", QVariant(), {}, {}, QDate(1980, 1, 15));
        addPatient(*f.db, 8, "Doe", "Jane", QStringLiteral(""));  // typed the other way round
        addPatient(*f.db, 9, "Jane", "Doe", "1234567897");
        addPatient(*f.db, 10, "Janet", "Smith", QVariant());
        for (const int a : answers) {
            f.prompter.script({Answer(a)});
        }
        const QStringList others = patientRows(*f.db).mid(2);

        const SwipeOutcome out =
            SwipeMatch(*f.db, f.settings, f.prompter, f.clock, f.log).match(card());
        QCOMPARE(f.prompter.messages().size(), asked);
        const RecordingPrompter::Message& first = f.prompter.messages().first();
        QVERIFY(first.question);
        QCOMPARE(first.title, QStringLiteral("Possible Existing Patient"));
        QCOMPARE(first.buttons, Buttons::YesNoCancel);
        QCOMPARE(first.defaultAnswer, Answer::No);
        QCOMPARE(first.lines,
                 (QStringList{"Click 'Yes' to accept the following patient.",
                              "Click 'No' to reject the following patient.",
                              "Click 'Cancel' if this is a new patient.", "",
                              "This existing patient record", "from the database may be a match:",
                              "", "Name on card/name in database:", "[Doe, Jane] [DOE, JANE]",
                              "DOB on card/DOB in database:", "[1980/01/15] [1980/01/15]", "",
                              "Is this the same patient?"}));
        QCOMPARE(out.patientId.value_or(0), taken);
        QCOMPARE(out.lines.first(), QStringLiteral("New patient (not in database)."));
        QCOMPARE(out.lines.value(1),
                 taken ? QStringLiteral("The card was written into this patient's record. (ID: %1)")
                             .arg(taken)
                       : QStringLiteral("No Patient with this Health Card Number was found."));
        const QStringList rows = patientRows(*f.db);
        QCOMPARE(rows.mid(0, 2), changed);
        QCOMPARE(rows.mid(2), others);
    }

    void nobodyToOffer() {
        test::OfficeFixture f;
        addPatient(*f.db, 10, "Janet", "Smith", QVariant());
        const SwipeOutcome out =
            SwipeMatch(*f.db, f.settings, f.prompter, f.clock, f.log).match(card());
        QVERIFY(f.prompter.messages().isEmpty());
        QCOMPARE(out.lines, (QStringList{"New patient (not in database).",
                                         "No Patient with this Health Card Number was found."}));
        QCOMPARE(out.appointmentLine, QStringLiteral("No appointment for today."));
    }

    void appointmentToday_data() {
        QTest::addColumn<bool>("onFile");  // the card's patient is patient 7
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("doctor");
        QTest::addColumn<QList<int>>("times");   // today's appointments, at these minutes
        QTest::addColumn<QList<int>>("states");  // status, or -1 for a deleted row
        const QString none = QStringLiteral("No appointment for today.");
        test::row("booked", true, "Has an appointment for today at 9:30 am with Hj Vlaar.", "1",
                  QList<int>{570}, QList<int>{1});
        test::row("earliest of two", true, "Has an appointment for today at 1:05 pm with Hj Vlaar.",
                  "1", QList<int>{900, 785}, QList<int>{0, 4});
        test::row("cancelled", true, none, "1", QList<int>{570}, QList<int>{7});
        test::row("deleted", true, none, "1", QList<int>{570}, QList<int>{-1});
        test::row("cancelled before a live one", true,
                  "Has an appointment for today at 2:00 pm with Hj Vlaar.", "1",
                  QList<int>{540, 840}, QList<int>{7, 1});
        test::row("doctor not on file", true, "Has an appointment for today at 9:30 am with ZZ.",
                  "ZZ", QList<int>{570}, QList<int>{1});
        test::row("caller booked by name", false,
                  "Has an appointment for today at 12:00 pm with Hj Vlaar.", "1", QList<int>{720},
                  QList<int>{1});
    }
    void appointmentToday() {
        QFETCH(bool, onFile);
        QFETCH(QString, line);
        QFETCH(QString, doctor);
        QFETCH(QList<int>, times);
        QFETCH(QList<int>, states);
        test::OfficeFixture f;
        f.db->exec("Insert Into Doctors (DoctorID, FName, LName) Values('1', 'Hj', 'Vlaar')");
        if (onFile) {
            addPatient(*f.db, 7, "Jane", "Doe", "9876543225");
        }
        // Yesterday's and another patient's visits today never count.
        addAppointment(*f.db, 1, 7, "Doe, Jane", QDate(2026, 11, 21), 480, 1, 0, "1");
        addAppointment(*f.db, 2, 8, "Roe, Rick", QDate(2026, 11, 22), 450, 1, 0, "1");
        for (int i = 0; i < times.size(); ++i) {
            addAppointment(*f.db, 10 + i, onFile ? QVariant(7) : QVariant(),
                           onFile ? "Doe, Jane" : "DOE, JANE", f.clock.today(), times[i],
                           std::max(states[i], 0), states[i] < 0 ? 1 : 0, doctor);
        }
        QStringList requests;
        SwipeMatch match(*f.db, f.settings, f.prompter, f.clock, f.log, true,
                         [&](const QString& number, const QString& version) {
                             requests << number + " " + version;
                         });
        const SwipeOutcome out = match.match(card());
        QCOMPARE(out.appointmentLine, line);
        QVERIFY(out.checkRequested);
        QCOMPARE(requests, QStringList{"9876543225 AB"});

        // Polling off asks for no check.
        requests.clear();
        const SwipeOutcome quiet =
            SwipeMatch(*f.db, f.settings, f.prompter, f.clock, f.log, false,
                       [&](const QString& n, const QString&) { requests << n; })
                .match(card());
        QVERIFY(!quiet.checkRequested);
        QVERIFY(requests.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestSwipe)
#include "test_swipe.moc"
