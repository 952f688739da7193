#include "OfficeFixture.h"

#include "ministry/ThirdPartyRegister.h"

#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

ThirdParty payer(const QString& name) {
    ThirdParty t;
    t.name = name;
    t.contact = QStringLiteral("Claims Desk");
    t.address = QStringLiteral("1 King St W");
    t.city = QStringLiteral("Toronto");
    t.province = QStringLiteral("on");
    t.postalCode = QStringLiteral("m5h1a1");
    t.phone = QStringLiteral("(416) 555-0100");
    t.email = QStringLiteral("claims@example.ca");
    return t;
}

struct Office : test::OfficeFixture {
    ThirdPartyRegister payers{*db, prompter, log};

    QStringList rows(const char* sql) { return test::rowsOf(db->exec(QString::fromUtf8(sql))); }
    // Claims 101, 102 (paid) of payer 1 and 201 of payer 2, two items each.
    void addClaims() {
        db->exec("Insert Into thirdparty (ThirdPartyID, Name) Values (1, 'Acme'), (2, 'Zenith')");
        db->exec(
            "Insert Into claims (ClaimID, BatchID, AcctNum, PayProg, ThirdPartyID) Values"
            " (101, ' thirdparty ', '00000001', 'Third Party', 1),"
            " (102, '000000000012', '00000002', 'Third Party', 1),"
            " (201, ' thirdparty ', '00000003', 'Third Party', 2)");
        db->exec(
            "Insert Into items (ClaimID, ItemID, Status) Values (101, 1, 0), (101, 2, 0),"
            " (102, 1, 2), (102, 2, 2), (201, 1, 0), (201, 2, 0)");
    }
};

}  // namespace

class TestThirdParty : public QObject {
    Q_OBJECT

private slots:
    void saveNewAndExisting() {
        Office o;
        o.log.setOn(true);
        QCOMPARE(o.payers.save(payer("Acme Insurance")), std::optional<qint64>(1));
        QCOMPARE(o.payers.save(payer("Zenith Life")), std::optional<qint64>(2));
        std::optional<ThirdParty> stored = o.payers.load(1);
        QVERIFY(stored);
        QCOMPARE(stored->province, QStringLiteral("ON"));
        QCOMPARE(stored->postalCode, QStringLiteral("M5H 1A1"));

        stored->contact = QStringLiteral("Mary O'Neil");
        QCOMPARE(o.payers.save(*stored), std::optional<qint64>(1));
        QCOMPARE(o.payers.save(*stored), std::optional<qint64>(1));
        QCOMPARE(o.rows("Select ThirdPartyID, Name, Contact From thirdparty Order By 1"),
                 (QStringList{"1|Acme Insurance|Mary O'Neil", "2|Zenith Life|Claims Desk"}));
        QVERIFY(o.prompter.messages().isEmpty());

        const QStringList logged =
            test::readText(o.log.path()).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
        QCOMPARE(logged.size(), 8);
        QCOMPARE(logged.at(6), QStringLiteral("Delete From thirdparty Where ThirdPartyID=1"));
        QVERIFY(logged.at(7).startsWith(
            "Insert Into thirdparty (ThirdPartyID,Name,Contact,Address,City,Province,PostalCode,"
            "Country,Phone,Email) Values(1,'Acme Insurance','Mary O''Neil',"));

        // The next number follows the highest, gaps and all.
        o.db->exec("Insert Into thirdparty (ThirdPartyID, Name) Values (7, 'Old')");
        QCOMPARE(o.payers.save(payer("Third")), std::optional<qint64>(8));
        QCOMPARE(thirdPartyChoices(*o.db).last().text, QStringLiteral("2 - Zenith Life"));
        QCOMPARE(thirdPartyChoices(*o.db).first().text, QStringLiteral("1 - Acme Insurance"));
    }

    // Each change is "Column=value".
    void saveRefused_data() {
        QTest::addColumn<QStringList>("changes");
        QTest::addColumn<QString>("message");
        const QString missing = ThirdPartyRegister::kMandatoryHeading + "\n";
        const QString faults = ThirdPartyRegister::kProblemsHeading + "\n";
        row("empty name", QStringList{"Name=  "}, missing + "Company Name");
        row("no postal code in Canada", QStringList{"PostalCode="}, missing + "Postal Code");
        row("none needed abroad", QStringList{"Country=USA", "Province=", "PostalCode="}, "");
        row("a dash in the postal code", QStringList{"PostalCode=M5H-1A1"}, "");
        row("postal code form", QStringList{"PostalCode=M5H 1AA"},
            faults + "Postal Code 'M5H 1AA' is not in the form A1A 1A1.");
        row("letter never used", QStringList{"PostalCode=M5D 1A1"},
            faults + "Postal Code 'M5D 1A1' is not in the form A1A 1A1.");
        row("postal code of another province", QStringList{"PostalCode=H2X 1Y4"},
            faults + "Postal Code 'H2X 1Y4' is not in ON.");
        row("province", QStringList{"Province=Ont"},
            faults +
                "Province 'ONT' is not a Canadian province or territory (AB, BC, MB, NB, NL, "
                "NS, NT, NU, ON, PE, QC, SK, YT).");
        row("too long", QStringList{"Name=" + QString(101, 'x')},
            faults + "Company Name can be at most 100 characters.");
        row("e-mail", QStringList{"Email=claims@example"},
            faults + "Email 'claims@example' is not an e-mail address.");
        row("area code alone", QStringList{"Phone=(416) "},
            faults + "Phone '(416)' needs at least 7 digits.");
        row("both lists", QStringList{"Address=", "City=", "Email=nobody"},
            missing + "Address\nCity\n\n" + faults + "Email 'nobody' is not an e-mail address.");
    }
    void saveRefused() {
        QFETCH(QStringList, changes);
        QFETCH(QString, message);
        Office o;
        ThirdParty t = payer("Acme");
        for (const QString& change : changes) {
            const QString name = change.section('=', 0, 0);
            for (const ThirdParty::Column& c : ThirdParty::columns()) {
                if (c.name == name) {
                    t.setValue(c.field, change.section('=', 1));
                }
            }
        }
        const std::optional<qint64> saved = o.payers.save(t);
        QCOMPARE(saved.has_value(), message.isEmpty());
        QCOMPARE(o.rows("Select Count(*) From thirdparty"),
                 QStringList{message.isEmpty() ? "1" : "0"});
        if (!message.isEmpty()) {
            QCOMPARE(o.prompter.messages().size(), 1);
            QCOMPARE(o.prompter.last().title, QStringLiteral("Error"));
            QCOMPARE(o.prompter.last().text(), message);
            QVERIFY(o.payers.badField());
        }
    }

    void deleteAsked_data() {
        QTest::addColumn<bool>("yes");
        row("No keeps everything", false);
        row("Yes deletes the payer's claims, pending and paid", true);
    }
    void deleteAsked() {
        QFETCH(bool, yes);
        Office o;
        o.addClaims();
        o.prompter.script({yes ? Answer::Yes : Answer::No});
        QCOMPARE(o.payers.remove(1), yes);

        const RecordingPrompter::Message& question = o.prompter.messages().first();
        QCOMPARE(question.title, QStringLiteral("Delete Third Party"));
        QCOMPARE(question.text(), QStringLiteral("This will delete the Third Party record.\n"
                                                 "2 claim(s) for this Third Party will also be "
                                                 "deleted.\nAre you sure?"));
        QCOMPARE(question.defaultAnswer, Answer::No);
        if (!yes) {
            QCOMPARE(o.prompter.messages().size(), 1);
            QCOMPARE(o.rows("Select Count(*) From items"), QStringList{"6"});
            QCOMPARE(o.rows("Select ThirdPartyID From thirdparty"), (QStringList{"1", "2"}));
            return;
        }
        QCOMPARE(o.prompter.last().title, QStringLiteral("Done"));
        QCOMPARE(o.prompter.last().text(), QStringLiteral("Deleted successfully."));
        QCOMPARE(o.rows("Select ThirdPartyID From thirdparty"), QStringList{"2"});
        QCOMPARE(o.rows("Select ClaimID From claims"), QStringList{"201"});
        QCOMPARE(o.rows("Select Distinct ClaimID From items"), QStringList{"201"});
    }

    void cityQuickCode() {
        Office o;
        o.db->exec("Insert Into quickcitycodes Values ('OTT', 'Ottawa', '613')");
        const std::optional<CityQuickCode> city = o.payers.cityQuickCode(" ott");
        QVERIFY(city);
        QCOMPARE(city->city, QStringLiteral("Ottawa"));
        QCOMPARE(city->phoneArea, QStringLiteral("613"));
        QVERIFY(!o.payers.cityQuickCode("Ottawa"));
    }
};

QTEST_GUILESS_MAIN(TestThirdParty)
#include "test_third_party.moc"
