#include "OfficeFixture.h"

#include "patients/ProviderChecks.h"
#include "patients/ProviderRegister.h"

#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

// Two providers with appointments, templates and claims of each. JS has only submitted
// claims; AB has a pending one.
struct Office : test::OfficeFixture {
    ProviderRegister providers{*db, settings, prompter, log};

    Office() {
        log.setOn(true);
        for (const char* id : {"AB", "JS"}) {
            db->exec(QStringLiteral("Insert Into Doctors (DoctorID, LName, FName, ProviderNum, "
                                    "GroupNum, SpecCode, MOHOffice) "
                                    "Values (?, 'Smith', 'John', '123456', '0000', '00', 'G')"),
                     {QString::fromLatin1(id)});
        }
        const QList<QPair<int, QString>> rows = {{1, "JS"}, {2, "AB"}, {3, "JS"}};
        for (const auto& [id, doctor] : rows) {
            db->exec(QStringLiteral("Insert Into Appointments (AppID, DoctorID) Values (?, ?)"),
                     {id, doctor});
            db->exec(QStringLiteral("Insert Into AppTemplates (AppTempID, DoctorID) Values (?, ?)"),
                     {id, doctor});
            db->exec(QStringLiteral("Insert Into Claims (ClaimID, BatchID, AcctNum, DoctorID, "
                                    "PayProg) Values (?, ?, ?, ?, 'HCP - P')"),
                     {id, doctor == "AB" ? "000000000000" : "202611220001", QString::number(id),
                      doctor});
        }
        settings.lastDoctor = QStringLiteral("JS");
        settings.lastDoctorApp = QStringLiteral("AB");
    }

    // "doctors / appointments / templates / claims / LastDoctor,LastDoctorApp"
    QString state() {
        const auto column = [this](const QString& sql) {
            return test::rowsOf(db->exec(sql)).join(QLatin1Char(' '));
        };
        return QStringList{
            column("Select DoctorID From Doctors Order By DoctorID"),
            column("Select AppID || '=' || Coalesce(DoctorID, '-') From Appointments Order By 1"),
            column("Select AppTempID || '=' || Coalesce(DoctorID, '-') From AppTemplates "
                   "Order By 1"),
            column("Select ClaimID || '=' || DoctorID From Claims Order By 1"),
            settings.lastDoctor + QLatin1Char(',') + settings.lastDoctorApp}
            .join(QStringLiteral(" / "));
    }
    int loggedLines() const {
        const QString text = test::readText(log.path());
        return text.isEmpty() ? 0 : text.split(QStringLiteral("\r\n"), Qt::SkipEmptyParts).size();
    }
};

const QString kUntouched =
    QStringLiteral("AB JS / 1=JS 2=AB 3=JS / 1=JS 2=AB 3=JS / 1=JS 2=AB 3=JS / JS,AB");

}  // namespace

class TestProvider : public QObject {
    Q_OBJECT

private slots:
    // A new provider "NEW" made from a valid one by the changes; with `listed` the office
    // has specialties 00 and 08 and offices G and N.
    void checks_data() {
        QTest::addColumn<QString>("changes");
        QTest::addColumn<bool>("listed");
        QTest::addColumn<QStringList>("problems");  // empty: saved
        const QString longName(31, QLatin1Char('x'));
        row("valid without lists", "", false, QStringList{});
        row("valid with lists, lower-case office", "MOHOffice=g;SpecCode=08", true, QStringList{});
        row("letters in the group", "GroupNum=a1b2", false, QStringList{});
        row("no id and no last name", "DoctorID=;LName=", false,
            QStringList{"Doctor ID is required.", "Last name is required."});
        row("id too long", "DoctorID=ABCD", false,
            QStringList{"Doctor ID must be 1 to 3 letters or digits."});
        row("quote in the id", "DoctorID=J'S", false,
            QStringList{"Doctor ID must be 1 to 3 letters or digits."});
        row("id of another in other case", "DoctorID=js", false,
            QStringList{"Doctor ID JS is already used by another provider."});
        row("billing number of 5", "ProviderNum=12345", false,
            QStringList{"Billing number must be 6 digits."});
        row("letter in the billing number", "ProviderNum=12345A", false,
            QStringList{"Billing number must be 6 digits."});
        row("group of 3", "GroupNum=AB1", false,
            QStringList{
                "Group number must be 4 letters or digits (0000 for a solo practitioner)."});
        row("specialty of one digit", "SpecCode=8", true,
            QStringList{"Specialty must be 2 digits."});
        row("specialty not listed", "SpecCode=99", true,
            QStringList{"Specialty 99 is not in the list of specialties."});
        row("any 2 digits without a list", "SpecCode=99", false, QStringList{});
        row("office not listed", "MOHOffice=Z", true,
            QStringList{"Ministry office Z is not in the list of ministry offices."});
        row("office a digit", "MOHOffice=1", false,
            QStringList{"Ministry office must be one letter."});
        row("location and facility of 3", "LocationCode=123;FacilityNum=12-4", false,
            QStringList{"Location code must be empty or 4 digits.",
                        "Facility number must be empty or 4 letters or digits."});
        row("SLI too long", "SLI=HOSPX", false,
            QStringList{"SLI must be empty or at most 4 letters or digits."});
        row("long first name and modifier", ("Modifier=ABCD;FName=" + longName).toUtf8().data(),
            false,
            QStringList{"First name can be at most 30 characters.",
                        "Modifier can be at most 3 characters."});
        row("everything the claim file needs missing", "ProviderNum=;SpecCode=;MOHOffice=", true,
            QStringList{"Billing number must be 6 digits.", "Specialty is required.",
                        "Ministry office is required."});
    }
    void checks() {
        QFETCH(QString, changes);
        QFETCH(bool, listed);
        QFETCH(QStringList, problems);
        Office office;
        if (listed) {
            office.db->exec(
                "Insert Into speccodes Values ('00', 'Family Practice'), "
                "('08', 'Internal Medicine')");
            office.db->exec(
                "Insert Into mohoffices Values ('G', 'Y', 'Toronto'), "
                "('N', 'Y', 'Kingston')");
        }
        Provider p{.doctorId = "NEW",
                   .providerNum = "654321",
                   .specCode = "00",
                   .mohOffice = "G",
                   .fName = "Ann",
                   .lName = "Lee"};
        for (const QString& change : changes.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
            const QString name = change.section(QLatin1Char('='), 0, 0);
            for (const Provider::Column& c : Provider::columns()) {
                if (c.name == name) {
                    p.*c.member = change.section(QLatin1Char('='), 1);
                }
            }
        }
        const std::optional<Provider> saved = office.providers.save(p, QString());
        if (problems.isEmpty()) {
            QVERIFY(saved);
            QVERIFY(office.prompter.messages().isEmpty());
            const std::optional<Provider> stored = office.providers.load(saved->doctorId);
            QVERIFY(stored);
            QCOMPARE(*stored, *saved);
            QCOMPARE(stored->groupNum, p.groupNum.isEmpty() ? "0000" : p.groupNum.toUpper());
            QCOMPARE(stored->mohOffice, p.mohOffice.toUpper());
        } else {
            QVERIFY(!saved);
            QCOMPARE(office.prompter.messages().size(), 1);
            QCOMPARE(office.prompter.last().title, ProviderChecks::kTitle);
            QCOMPARE(office.prompter.last().lines,
                     QStringList{ProviderChecks::kHeading} + problems);
            QCOMPARE(office.state(), kUntouched);
        }
    }

    // One action, its answer and a table whose update fails in the middle of it.
    void removeAndRenumber_data() {
        QTest::addColumn<QString>("action");  // "remove ID" or "renumber ID NEW"
        QTest::addColumn<bool>("yes");
        QTest::addColumn<QString>("failOn");
        QTest::addColumn<QString>("state");
        QTest::addColumn<int>("logged");
        QTest::addColumn<QString>("lastTitle");  // empty: no message
        row("remove keeps appointments unassigned and claims", "remove JS", true, "",
            "AB / 1=- 2=AB 3=- / 1=- 2=AB 3=- / 1=JS 2=AB 3=JS / ,AB", 3, "Delete Provider");
        row("remove by lower-case id", "remove js", true, "",
            "AB / 1=- 2=AB 3=- / 1=- 2=AB 3=- / 1=JS 2=AB 3=JS / ,AB", 3, "Delete Provider");
        row("remove answered No", "remove JS", false, "", kUntouched, 0, "Delete Provider");
        row("remove with a pending claim", "remove AB", true, "", kUntouched, 0, "Delete Provider");
        row("remove failing on templates", "remove JS", true, "AppTemplates", kUntouched, 0,
            "Error");
        row("renumber moves all three", "renumber JS JM", true, "",
            "AB JM / 1=JM 2=AB 3=JM / 1=JM 2=AB 3=JM / 1=JM 2=AB 3=JM / JM,AB", 4,
            "Change Doctor ID");
        row("renumber answered No", "renumber AB XY", false, "", kUntouched, 0, "Change Doctor ID");
        row("renumber failing on claims", "renumber AB XY", true, "Claims", kUntouched, 0, "Error");
        row("renumber onto another provider", "renumber AB JS", true, "", kUntouched, 0, "Error");
    }
    void removeAndRenumber() {
        QFETCH(QString, action);
        QFETCH(bool, yes);
        QFETCH(QString, failOn);
        Office office;
        if (!failOn.isEmpty()) {
            test::refuseRows(*office.db, QStringLiteral("Update"), failOn, {},
                             QStringLiteral("disk full"));
        }
        office.prompter.script({yes ? Answer::Yes : Answer::No});
        const QStringList words = action.split(QLatin1Char(' '));
        if (words[0] == "remove") {
            QCOMPARE(office.providers.remove(words[1]),
                     failOn.isEmpty() && yes && words[1].toUpper() == "JS");
        } else {
            std::optional<Provider> p = office.providers.load(words[1]);
            QVERIFY(p);
            p->doctorId = words[2];
            const bool done = office.providers.save(*p, words[1]).has_value();
            QCOMPARE(done, words[2] == "JM");
        }
        QTEST(office.state(), "state");
        QTEST(office.loggedLines(), "logged");
        QFETCH(QString, lastTitle);
        QCOMPARE(office.prompter.messages().isEmpty() ? QString() : office.prompter.last().title,
                 lastTitle);
    }

    void summaryLine() {
        Provider p{.doctorId = "JS",
                   .groupNum = "0000",
                   .providerNum = "123456",
                   .specCode = "00",
                   .fName = "John|Paul",
                   .lName = "Smith"};
        QCOMPARE(providerSummaryLine(p), QStringLiteral("JS|Smith|John Paul|123456|0000|00"));
    }
};

QTEST_GUILESS_MAIN(TestProvider)
#include "test_provider.moc"
