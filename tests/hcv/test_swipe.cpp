#include "OfficeFixture.h"
#include "hcv/SwipeCard.h"
#include "hcv/SwipeMatch.h"

#include <QtTest>

using namespace brimsett;
using namespace brimsett::hcv;

namespace {

using Kind = SwipeResult::Kind;

// Prefix, number, check character and separator, name, then expiry 2612, three skipped, sex,
// birth date, version code, five skipped, card date.
const char* const kCard = "%B61005498765432250^DOE/JANE MARY^2612520119800115AB12345201215?";
const char* const kNone = "||||||||";

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

QStringList patientRows(Database& db) {
    return test::rowsOf(
        db.exec(QStringLiteral("Select PatientID, FName, LName, HealthNum, VersionCode, ExpYear,"
                               " DOB From patients Order By PatientID")));
}

SwipeOutcome matchCard(test::OfficeFixture& f, const SwipedCard& c = card()) {
    return SwipeMatch(*f.db, f.settings, f.prompter, f.clock, f.log).match(c);
}

}  // namespace

class TestSwipe : public QObject {
    Q_OBJECT

private slots:
    void parse_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("state");         // on 2026/12/01
        QTest::addColumn<QString>("expected");  // fields() of the card
        QTest::addColumn<QString>("problem");
        const QString whole = "9876543225|Doe|Jane|Mary|2026/12/01|M|1980/01/15|AB|2020/12/15";
        const QString tail = "2612520119800115AB12345201215?";
        const int card = int(Kind::Card), valid = int(CardState::Valid);
        const int none = int(CardState::NoExpiry);
        test::row("whole card", kCard, card, valid, whole, "");
        test::row("caps lock", "%b61005498765432250^DOE/JANE MARY^2612520119800115AB12345201215?",
                  card, valid, whole, "");
        // Shift lost: "5" for "%", "^" for "6" and "6" for "^", "?" for "/", small letters.
        test::row("shift lost", "5b^1005498765432250^doe?jane mary62612520119800115ab12345201215/",
                  card, valid, whole, "");
        test::row("carriage returns",
                  "%B6100\r5498765432250^DOE/JANE MARY^\r2612520119800115AB12345201215?\r", card,
                  valid, whole, "");
        test::row("name without separator", "%B61005498765432250^DOE^" + tail, card, valid,
                  "9876543225|Doe|||2026/12/01|M|1980/01/15|AB|2020/12/15", "");
        // The "6" ends the name before the "^"; what follows is cut from after the "6".
        test::row("one-letter version",
                  "%B61005498765432250^DOE/JANE62611520219800115B 12345301215^", card,
                  int(CardState::Expired),
                  "9876543225|Doe|Jane||2026/11/01|F|1980/01/15|B|1930/12/15", "");
        test::row("no expiry",
                  "%B61005498765432250^O'BRIEN/MARY ANN JO^0000520219991231A 12345291231?", card,
                  none, "9876543225|O'Brien|Mary|Ann Jo||F|1999/12/31|A|2029/12/31", "");
        test::row("dates that are none",
                  "%B61005498765432250^DOE/JANE^1313520119801301AB12345260230?", card, none,
                  "9876543225|Doe|Jane|||M||AB|", "");
        test::row("cut after the birth date", "%B61005498765432250^DOE/JANE^2612520119800115", card,
                  valid, "9876543225|Doe|Jane||2026/12/01|M|1980/01/15||", "");
        test::row("cut in the name", "%B61005498765432250^DOE/JA", int(Kind::InvalidCard), none,
                  "9876543225||||||||", "Invalid Card");
        test::row("cut before the name", "%B6100549876543225", int(Kind::InvalidCard), none,
                  "9876543225||||||||", "Invalid Card");
        test::row("bad number", "%B61005498765432240^DOE/JANE^" + tail, int(Kind::InvalidNumber),
                  none, "9876543224||||||||", "Invalid Health Card Number 9876543224");
        test::row("credit card", "%B4111111111111111^DOE/JANE^2612101000000000000?",
                  int(Kind::NotHealthCard), none, kNone, "This is not a health card.");
        test::row("empty", "", int(Kind::NotHealthCard), none, kNone, "This is not a health card.");
    }
    void parse() {
        QFETCH(QString, text);
        QFETCH(int, kind);
        QFETCH(int, state);
        QFETCH(QString, expected);
        QFETCH(QString, problem);
        const SwipeResult result = parseSwipe(text);
        QCOMPARE(int(result.kind), kind);
        QCOMPARE(fields(result.card), expected);
        QCOMPARE(int(cardState(result.card, QDate(2026, 12, 1))), state);
        QCOMPARE(result.problem.join('\n'), problem);
    }

    void dates_data() {
        QTest::addColumn<QString>("yymmdd");
        QTest::addColumn<QString>("widened");
        QTest::addColumn<QString>("shown");  // as a birth date
        test::row("2000 is a leap year", "000229", "2000/02/29", "YYYY 2000 MM 02 DD29");
        test::row("no such day", "270229", "", "(n/a)");
        test::row("a letter", "2601a1", "", "(n/a)");
    }
    void dates() {
        QFETCH(QString, yymmdd);
        QFETCH(QString, widened);
        QFETCH(QString, shown);
        QCOMPARE(widenShortDate(yymmdd), widened);
        QCOMPARE(birthDateShown(widened), shown);
    }

    // The card's number is on file: what differs is written and named, in one statement.
    void found_data() {
        QTest::addColumn<QVariant>("version");
        QTest::addColumn<QVariant>("expiry");
        QTest::addColumn<QVariant>("dob");
        QTest::addColumn<QString>("cardText");
        QTest::addColumn<QString>("updated");  // the second line; empty for none
        QTest::addColumn<QString>("after");
        const QVariant ab("AB"), zz("ZZ"), exp(QDate(2026, 12, 1)), dob(QDate(1980, 1, 15));
        const QString all = "Version code, Expity Date, Date of birth,  updated. (ID: 7)";
        const QString both = "7|Jane|Doe|9876543225|AB|2026-12-01|1980-01-15";
        test::row("all three differ", zz, QVariant(QDate(2020, 1, 1)), QVariant(QDate(1979, 1, 15)),
                  kCard, all, both);
        test::row("none stored", QVariant(), QVariant(), QVariant(), kCard, all, both);
        test::row("version only", zz, exp, dob, kCard, "Version code,  updated. (ID: 7)", both);
        // A card without expiry, or a short swipe, never clears what is stored; what is left
        // unchanged is not written.
        test::row("card without expiry", ab, QVariant(QDate(2020, 1, 1)), dob,
                  "%B61005498765432250^DOE/JANE MARY^0000520119800115AB12345201215?", "",
                  "7|Jane|Doe|9876543225|AB|2020-01-01|1980-01-15");
        test::row("short swipe", zz, exp, dob, "%B61005498765432250^DOE/JANE MARY^", "",
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
        const SwipeOutcome out = matchCard(f, parseSwipe(cardText).card);
        QCOMPARE(out.patientId, std::optional<qint64>(7));
        QStringList lines{"This patient is already in the database. (ID: 7)"};
        if (!updated.isEmpty()) {
            lines << updated;
        }
        QCOMPARE(out.lines, lines);
        QVERIFY(f.prompter.messages().isEmpty());
        QCOMPARE(patientRows(*f.db).first(), after);
        const QString log = test::readText(f.log.path());
        QCOMPARE(log.count(QStringLiteral("Update patients Set")), updated.isEmpty() ? 0 : 1);
    }

    // No patient has the number: those without one, named as on the card in either order,
    // are offered one by one.
    void candidates_data() {
        QTest::addColumn<QList<int>>("answers");   // Answer values
        QTest::addColumn<bool>("keepNames");       // switch 21
        QTest::addColumn<int>("taken");            // 0 for none
        QTest::addColumn<QStringList>("changed");  // rows of 7 and 8 afterwards
        const QString seven = "7|JANE|DOE|<null>|<null>|<null>|1980-01-15";
        const QString eight = "8|Doe|Jane||<null>|<null>|<null>";
        const QString written = "|9876543225|AB|2026-12-01|1980-01-15";
        const int yes = int(Answer::Yes), no = int(Answer::No);
        test::row("yes to the first", QList<int>{yes}, false, 7,
                  QStringList{"7|Jane|Doe" + written, eight});
        test::row("no, then yes", QList<int>{no, yes}, false, 8,
                  QStringList{seven, "8|Jane|Doe" + written});
        test::row("switch 21 keeps the names", QList<int>{no, yes}, true, 8,
                  QStringList{seven, "8|Doe|Jane" + written});
        test::row("no to both", QList<int>{no, no}, false, 0, QStringList{seven, eight});
        test::row("cancel is a new patient", QList<int>{int(Answer::Cancel)}, false, 0,
                  QStringList{seven, eight});
    }
    void candidates() {
        QFETCH(QList<int>, answers);
        QFETCH(bool, keepNames);
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

        const SwipeOutcome out = matchCard(f);
        QCOMPARE(f.prompter.messages().size(), answers.size());
        const RecordingPrompter::Message& first = f.prompter.messages().first();
        QVERIFY(first.question);
        QCOMPARE(first.title, QStringLiteral("Possible Existing Patient"));
        QCOMPARE(first.buttons, Buttons::YesNoCancel);
        QCOMPARE(first.defaultAnswer, Answer::No);
        QCOMPARE(first.lines.mid(8, 3),
                 (QStringList{"[Doe, Jane] [DOE, JANE]",
                              "DOB on card/DOB in database:", "[1980/01/15] [1980/01/15]"}));
        QCOMPARE(out.patientId.value_or(0), taken);
        QCOMPARE(
            out.lines,
            (QStringList{"New patient (not in database).",
                         taken ? QString("The card was written into this patient's record."
                                         " (ID: %1)")
                                     .arg(taken)
                               : QString("No Patient with this Health Card Number was found.")}));
        const QStringList rows = patientRows(*f.db);
        QCOMPARE(rows.mid(0, 2), changed);
        QCOMPARE(rows.mid(2), others);
    }

    void appointmentToday_data() {
        QTest::addColumn<bool>("onFile");  // the card's patient is patient 7
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("doctor");
        QTest::addColumn<QList<int>>("times");   // today's appointments, at these minutes
        QTest::addColumn<QList<int>>("states");  // status, or -1 for a deleted row
        test::row("earliest live one", true,
                  "Has an appointment for today at 1:05 pm with Hj Vlaar.", "1",
                  QList<int>{900, 540, 785}, QList<int>{0, 7, 4});
        test::row("cancelled and deleted", true, "No appointment for today.", "1",
                  QList<int>{570, 600}, QList<int>{7, -1});
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
        const QString insert =
            "Insert Into appointments (AppID, PatientID, PatientName, AppDate,"
            " AppTime, AppLength, Status, Deleted, DoctorID)"
            " Values(?, ?, ?, ?, ?, 15, ?, ?, ?)";
        f.db->exec(insert, {1, 7, "Doe, Jane", QDate(2026, 11, 21), 480, 1, 0, "1"});
        f.db->exec(insert, {2, 8, "Roe, Rick", f.clock.today(), 450, 1, 0, "1"});
        for (int i = 0; i < times.size(); ++i) {
            f.db->exec(insert, {10 + i, onFile ? QVariant(7) : QVariant(),
                                onFile ? "Doe, Jane" : "DOE, JANE", f.clock.today(), times[i],
                                std::max(states[i], 0), states[i] < 0 ? 1 : 0, doctor});
        }
        QStringList requests;
        const SwipeOutcome out = SwipeMatch(*f.db, f.settings, f.prompter, f.clock, f.log, true,
                                            [&](const QString& number, const QString& version) {
                                                requests << number + " " + version;
                                            })
                                     .match(card());
        QCOMPARE(out.appointmentLine, line);
        QVERIFY(out.checkRequested);
        QCOMPARE(requests, QStringList{"9876543225 AB"});
        // A new patient is told so without a question when nobody is named as on the card.
        QCOMPARE(out.lines.first(), onFile ? QString("This patient is already in the database."
                                                     " (ID: 7)")
                                           : QString("New patient (not in database)."));
        QVERIFY(f.prompter.messages().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestSwipe)
#include "test_swipe.moc"
