#include "OfficeFixture.h"

#include "ministry/EdtHostSettings.h"
#include "ministry/EdtParams.h"
#include "ministry/EdtPasswordSeal.h"

#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

struct Office : test::OfficeFixture {
    QString keyFile = office.file(EdtPasswordSeal::kKeyFileName);
    EdtParams params{*db, prompter, clock, log, keyFile};

    QStringList rows(const QString& where = QStringLiteral("1=1")) {
        return test::rowsOf(db->exec("Select ParamName, ParamValue From edtparams Where " + where +
                                     " Order By ParamName"));
    }
    bool saveLogin(const QString& user, std::optional<QString> password, const QString& mode = {}) {
        return params.save({std::nullopt, QStringLiteral("a"), user, std::move(password), mode});
    }
};

QByteArray rawBytes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

class TestEdtParams : public QObject {
    Q_OBJECT

private slots:
    void passwordRoundTrip_data() {
        QTest::addColumn<QString>("password");
        QTest::addColumn<bool>("kept");
        row("letters and digits", "Gonet2026x", true);
        row("quotes and the separator", "a'b|c\"d", true);
        row("the longest that fits", "0123456789012345678901234567", true);
        row("accented letters", QString::fromUtf8("\u00e9t\u00e9\u00e9t\u00e9"), true);
        row("one too long", "01234567890123456789012345678", false);
    }
    void passwordRoundTrip() {
        QFETCH(QString, password);
        QFETCH(bool, kept);
        Office o;
        o.log.setOn(true);
        QCOMPARE(o.saveLogin(" drsmith@example.ca ", password), kept);
        if (!kept) {
            QCOMPARE(o.prompter.last().text(), QStringLiteral("The password was not saved.\n"
                                                              "The password can be at most 28 "
                                                              "characters."));
            QCOMPARE(o.rows(), QStringList());
            return;
        }
        const EdtLogin login = o.params.login(QStringLiteral("A"));
        QCOMPARE(login.userId, QStringLiteral("drsmith@example.ca"));
        QCOMPARE(login.password, std::optional<QString>(password));
        QCOMPARE(login.changeMarker, QStringLiteral("1"));
        QCOMPARE(login.passwordChanged, QDate(2026, 11, 22));

        const QString stored =
            o.db->scalar("Select ParamValue From edtparams Where ParamName='A2'").toString();
        QVERIFY(stored.startsWith(QStringLiteral("s1:")));
        QVERIFY(stored.size() <= 60);
        QVERIFY(!stored.contains(password));
        QVERIFY(!test::readText(o.log.path()).contains(password));
        for (const char* file : {"medical.mdb", "medical.mdb-wal"}) {
            QVERIFY(!rawBytes(o.office.file(file)).contains(password.toUtf8()));
        }
        QCOMPARE(o.rows("ParamName<>'A2'"),
                 (QStringList{"-A|2026/11/22", "A1|drsmith@example.ca", "A3|1"}));

        // The same password sealed twice does not give the same text.
        QVERIFY(o.saveLogin("drsmith@example.ca", QStringLiteral("other")));
        QVERIFY(o.saveLogin("drsmith@example.ca", password));
        QVERIFY(o.db->scalar("Select ParamValue From edtparams Where ParamName='A2'").toString() !=
                stored);

        // Another computer's key cannot read it, and says so.
        test::TempOffice elsewhere;
        EdtParams other(*o.db, o.prompter, o.clock, o.log,
                        elsewhere.file(EdtPasswordSeal::kKeyFileName));
        QCOMPARE(other.login("A").password, std::nullopt);
        QVERIFY(other.login("A").passwordProblem.contains(QStringLiteral("is missing")));
    }

    void keyMismatchAndDamage_data() {
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<QString>("problem");
        // (QByteArray would pass through row() as text.)
        QTest::newRow("another computer's key")
            << QByteArray(32, 'k') << QString("saved with another key");
        QTest::newRow("a key file cut short") << QByteArray(31, 'k') << QString("is damaged");
    }
    void keyMismatchAndDamage() {
        QFETCH(QByteArray, key);
        QFETCH(QString, problem);
        Office o;
        QVERIFY(o.saveLogin("u1", QStringLiteral("secret")));
        test::writeText(o.keyFile, key);
        const EdtLogin login = o.params.login("a");
        QVERIFY(login.hasPassword);
        QCOMPARE(login.password, std::nullopt);
        QVERIFY2(login.passwordProblem.contains(problem), qPrintable(login.passwordProblem));
        // Saving the rest leaves the unreadable password as it is.
        const QStringList before = o.rows("ParamName='A2'");
        QVERIFY(o.saveLogin("u2", std::nullopt));
        QCOMPARE(o.rows("ParamName='A2'"), before);
    }

    void olderPlainPasswordIsReadAndSealedOnSave() {
        Office o;
        o.db->exec(
            "Insert Into edtparams Values ('A1', 'u1'), ('A2', 'oldpass'),"
            " ('-A', '2020/01/05')");
        QCOMPARE(o.params.login("A").password, std::optional<QString>("oldpass"));
        QVERIFY(o.saveLogin("u1", std::nullopt));
        QVERIFY(EdtPasswordSeal::isSealed(
            o.db->scalar("Select ParamValue From edtparams Where ParamName='A2'").toString()));
        const EdtLogin login = o.params.login("A");
        QCOMPARE(login.password, std::optional<QString>("oldpass"));
        QCOMPARE(login.passwordChanged, QDate(2020, 1, 5));  // not a change of password
        QCOMPARE(login.changeMarker, QString());
    }

    // The network's password among the general settings is kept sealed like the doctors'.
    void networkPassword_data() {
        QTest::addColumn<QString>("password");
        QTest::addColumn<bool>("kept");
        row("fits", "Nui'Secret|1", true);
        row("one too long", "01234567890123456789012345678", false);
    }
    void networkPassword() {
        QFETCH(QString, password);
        QFETCH(bool, kept);
        Office o;
        const QMap<QChar, QString> general{{edthost::kNui, "NUI123"},
                                           {edthost::kNuiPassword, password}};
        QCOMPARE(o.params.save({general, {}, {}, {}, {}}), kept);
        if (!kept) {
            QCOMPARE(o.prompter.last().text(),
                     QStringLiteral("The DataPac NUI Password was not saved.\n"
                                    "The password can be at most 28 characters."));
            QCOMPARE(o.rows(), QStringList());
            return;
        }
        const QString stored = o.params.general().value(edthost::kNuiPassword);
        QVERIFY(EdtPasswordSeal::isSealed(stored) && !stored.contains(password));
        QCOMPARE(o.params.generalSecret(edthost::kNuiPassword), std::optional<QString>(password));
        // Saved again as it reads, it is not sealed anew.
        QMap<QChar, QString> again = o.params.general();
        again.insert(edthost::kNuiPassword, password);
        QVERIFY(o.params.save({again, {}, {}, {}, {}}));
        QCOMPARE(o.params.general().value(edthost::kNuiPassword), stored);
    }

    void userIds_data() {
        QTest::addColumn<QString>("user");
        QTest::addColumn<bool>("fits");
        row("e-mail form", "dr.smith@example.ca", true);
        row("letters and digits", "AB12345", true);
        row("blank inside", "dr smith", false);
        row("folder separator", "dr/smith", false);
        row("backslash", "dr\\smith", false);
        row("wildcard", "dr*", false);
        row("tab", "dr\tsmith", false);
    }
    void userIds() {
        QFETCH(QString, user);
        QFETCH(bool, fits);
        Office o;
        QCOMPARE(o.saveLogin(user, std::nullopt), fits);
        QCOMPARE(o.params.userId("a"), fits ? user : QString());
        if (!fits) {
            QCOMPARE(
                o.prompter.last().text(),
                "The User ID '" + user +
                    "' cannot be used: it may hold no blanks and none of \\ / : * ? \" < > |.");
        }
    }

    void timeOut_data() {
        QTest::addColumn<QString>("seconds");
        QTest::addColumn<bool>("valid");
        row("lowest", "30", true);
        row("highest", " 120 ", true);
        row("below", "29", false);
        row("above", "121", false);
        row("not a number", "1O0", false);
        row("decimal", "45.5", false);
        row("empty", "", false);
    }
    void timeOut() {
        QFETCH(QString, seconds);
        QFETCH(bool, valid);
        Office o;
        o.db->exec("Insert Into edtparams Values ('X', 'kept'), ('N', '5551234'), ('A1', 'u')");
        QMap<QChar, QString> general = o.params.general();
        general.insert(EdtParams::kTimeOut, seconds);
        general.insert(EdtParams::kPhone, QString());
        general.insert(EdtParams::kSpeed, "9600,n,8,1");
        QCOMPARE(o.params.save({general, {}, {}, {}, {}}), valid);
        if (valid) {
            QCOMPARE(o.rows(),
                     (QStringList{"A1|u", "S|9600,n,8,1", "T|" + seconds.trimmed(), "X|kept"}));
        } else {
            QCOMPARE(o.prompter.last().title, QStringLiteral("Error"));
            QCOMPARE(o.prompter.last().lines, EdtParams::timeOutMessage());
            QCOMPARE(o.rows(), (QStringList{"A1|u", "N|5551234", "X|kept"}));
        }
    }
};

QTEST_GUILESS_MAIN(TestEdtParams)
#include "test_edt_params.moc"
