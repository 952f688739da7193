#include "FakeModem.h"
#include "OfficeFixture.h"

#include "ministry/EdtHostSettings.h"
#include "ministry/EdtLog.h"
#include "ministry/EdtLogon.h"
#include "ministry/EdtParams.h"
#include "ministry/EdtPasswordSeal.h"
#include "ministry/ModemSession.h"
#include "ministry/NewPasswordAsker.h"

#include <QtTest>

using namespace brimsett;
using test::FakeModem;
using namespace std::chrono_literals;

namespace {

// A second of the session's clock; the shortest time-out setting (30) passes in about a second.
constexpr auto kSecond = 30ms;
const QString kCancel = QStringLiteral("<cancel>");

// Types what the test gives, in order; kCancel cancels.
struct ScriptedAsker : NewPasswordAsker {
    QStringList typed;
    std::optional<QString> ask(const QStringList&) override {
        if (typed.isEmpty() || typed.first() == kCancel) {
            return std::nullopt;
        }
        return typed.takeFirst();
    }
};

struct Office : test::OfficeFixture {
    QString keyFile = office.file(EdtPasswordSeal::kKeyFileName);
    EdtParams params{*db, prompter, clock, log, keyFile};

    Office(bool network) {
        db->exec("Insert Into edtparams Values ('JS3', '1'), ('-JS', '2026/01/05')");
        QMap<QChar, QString> general{{EdtParams::kTimeOut, "30"}};
        if (network) {
            general.insert(edthost::kNui, "NUI123");
            general.insert(edthost::kNuiPassword, "NuiSecret");
            general.insert(edthost::kAddress, "92100086");
        }
        const bool saved = params.save({general, "JS", "jsmith", std::nullopt, {}});
        db->exec("Insert Into edtparams Values ('JS2', ?)",
                 {*EdtPasswordSeal(keyFile).seal("OldPass9")});
        Q_ASSERT(saved);
    }
    QStringList rows() {
        return test::rowsOf(
            db->exec("Select ParamName, ParamValue From edtparams Where ParamName In ('JS3', '-JS')"
                     " Order By ParamName"));
    }
};

// The host's side: "> text" is awaited from the program, "< text" answered, "drop" hangs up.
void play(FakeModem& modem, const QStringList& script) {
    for (const QString& step : script) {
        if (step == QLatin1String("drop")) {
            modem.drop();
        } else if (step.startsWith(QLatin1String("> "))) {
            modem.expect(step.mid(2).toLatin1());
        } else {
            modem.answer(step.mid(2).toLatin1());
        }
    }
}

QByteArray expected(const QStringList& script) {
    QByteArray all;
    for (const QString& step : script) {
        if (step.startsWith(QLatin1String("> "))) {
            all += step.mid(2).toLatin1();
        }
    }
    return all;
}

const QStringList kDataPac{"> .\r",         "< \r\nNUI?",    "> NUI123\r",  "< \r\nPASSWORD",
                           "> NuiSecret\r", "< \r\nADDRESS", "> 92100086\r"};
const QStringList kConnected{"< \r\nDATAPAC: call connected to 9210 0086\r\n"};
const QStringList kLogin{"< WELCOME TO GONET\r\nUSERID: ", "> jsmith\r",
                         "< ENTER PASSWORD: ", "> OldPass9\r"};
const QStringList kMustChange{"< \r\nPASSWORD EXPIRED - MUST BE CHANGED\r\nENTER NEW PASSWORD: "};

// The host taking a new password (typed once and again) with `reply`.
QStringList offered(const QString& password, const QString& reply) {
    return {"> " + password + "\r", "< VERIFY NEW PASSWORD: ", "> " + password + "\r",
            "< " + reply};
}

}  // namespace

class TestEdtLogon : public QObject {
    Q_OBJECT

private slots:
    void logOn_data();
    void logOn();
};

void TestEdtLogon::logOn_data() {
    QTest::addColumn<bool>("network");        // through DataPac
    QTest::addColumn<QStringList>("script");  // the host's
    QTest::addColumn<QStringList>("typed");   // at the new password's questions
    QTest::addColumn<int>("outcome");
    QTest::addColumn<QStringList>("errors");  // told to the log
    QTest::addColumn<QStringList>("told");    // by the prompter
    QTest::addColumn<QString>("password");    // stored after
    QTest::addColumn<QStringList>("rows");    // the marker and the change date after
    const auto row = [](const char* tag, bool network, QStringList script, QStringList typed,
                        LogonOutcome outcome, QStringList errors, QStringList told,
                        QString password, QStringList rows) {
        QTest::newRow(tag) << network << script << typed << int(outcome) << errors << told
                           << password << rows;
    };
    const QStringList unchanged{"-JS|2026/01/05", "JS3|1"};
    const QStringList changedToday{"-JS|2026/11/22"};
    const QStringList demand{
        "The GONet password was accepted,\n"
        "but you must change your password now."};
    const QStringList gonetRefused{"Could not log on to GONet (USERID OR PASSWORD INVALID).",
                                   "Check the GONet UserID and password,", "or try again later."};
    const QString menu = "< \r\nMAIN MENU\r\n1 UPLOAD\r\n";

    row("direct line", false, kLogin + QStringList{menu}, {}, LogonOutcome::LoggedOn, {}, {},
        "OldPass9", {"-JS|2026/01/05", "JS3|"});
    row("through DataPac", true, kDataPac + kConnected + kLogin + QStringList{menu}, {},
        LogonOutcome::LoggedOn, {}, {}, "OldPass9", {"-JS|2026/01/05", "JS3|"});
    row("NUI rejected", true, kDataPac.mid(0, 3) + QStringList{"< \r\nNUI REJECTED\r\n"}, {},
        LogonOutcome::DataPacRejected, {"DataPac (NUI) UserID or password was rejected."}, {},
        "OldPass9", unchanged);
    row("call cleared", true,
        kDataPac + QStringList{"< \r\nDATAPAC: call cleared - address not in service\r\n"}, {},
        LogonOutcome::DataPacRefused,
        {"Could not log on to Bell DataPac.", "Reason: address not in service"}, {}, "OldPass9",
        unchanged);
    row("DataPac silent", true, {"> .\r"}, {}, LogonOutcome::DataPacTimeOut,
        {"WaitFor Timed Out!", "DataPac timeout error."}, {}, "OldPass9", unchanged);
    row("DataPac hangs up", true, kDataPac.mid(0, 5) + QStringList{"drop"}, {},
        LogonOutcome::DataPacDisconnected,
        {"LOST CONNECTION", "You were disconnected from DataPac."}, {}, "OldPass9", unchanged);
    row("GONet refuses", true,
        kDataPac + kConnected + kLogin + QStringList{"< \r\nUSERID OR PASSWORD INVALID\r\n"}, {},
        LogonOutcome::GoNetRefused, gonetRefused, {}, "OldPass9", unchanged);
    row("GONet silent", false, {}, {}, LogonOutcome::GoNetRefused,
        {"WaitFor Timed Out!", "Could not log on to GONet (GONet did not answer).",
         "Check the GONet UserID and password,", "or try again later."},
        {}, "OldPass9", unchanged);

    // The password change: each refusal as the host words it, and then the user's answer.
    row("change: too short, then taken", false,
        kLogin + kMustChange +
            offered("short", "\r\nNEW PASSWORD TOO SHORT\r\nENTER NEW PASSWORD: ") +
            offered("Longer2026", "\r\nPASSWORD CHANGED\r\n") + QStringList{menu},
        {"short", "short", "Longer2026", "Longer2026"}, LogonOutcome::LoggedOn,
        {"GONet did not accept 'short' as a new password",
         "because it is too short (should be at least 8 characters)."},
        demand + QStringList{"GONet did not accept 'short' as a new password\n"
                             "because it is too short (should be at least 8 characters)."},
        "Longer2026", changedToday);
    const QList<std::pair<const char*, QString>> refusals{
        {"PASSWORD PREVIOUSLY USED", "because it was used previously."},
        {"IDENTICAL CHARACTERS NOT ALLOWED", "because it has identical characters together."},
        {"PASSWORD SIMILAR TO USERID", "because it is too similar to your UserID."},
        {"PASSWORD TOO LONG", "because it is too long."}};
    for (const auto& [host, reason] : refusals) {
        const QString tag = QStringLiteral("change: %1, then cancelled").arg(host);
        row(qPrintable(tag), false,
            kLogin + kMustChange + offered("Jsmith2026", QString("\r\n") + host + "\r\n"),
            {"Jsmith2026", "Jsmith2026", kCancel}, LogonOutcome::Cancelled,
            {"GONet did not accept 'Jsmith2026' as a new password", reason,
             "The password change was cancelled."},
            demand + QStringList{"GONet did not accept 'Jsmith2026' as a new password\n" + reason},
            "OldPass9", unchanged);
    }
    row("change: typed differently twice", true,
        kDataPac + kConnected + kLogin + kMustChange +
            offered("Good2026x", "\r\nPASSWORD CHANGED\r\n") + QStringList{menu},
        {"Abcdefg1", "Abcdefg2", "Xyzabc12", "Xyzabc13", "Good2026x", "Good2026x"},
        LogonOutcome::LoggedOn, {},
        demand + QStringList{"The two passwords typed are not the same.",
                             "The two passwords typed are not the same."},
        "Good2026x", changedToday);
    row("change: cancelled at once", false, kLogin + kMustChange, {kCancel},
        LogonOutcome::Cancelled, {"The password change was cancelled."}, demand, "OldPass9",
        unchanged);
}

void TestEdtLogon::logOn() {
    QFETCH(bool, network);
    QFETCH(QStringList, script);
    QFETCH(QStringList, typed);
    QFETCH(QStringList, errors);
    QFETCH(QStringList, told);
    QFETCH(QString, password);
    QFETCH(QStringList, rows);
    Office o(network);
    FakeModem modem;
    QVERIFY2(!modem.device().isEmpty(), qPrintable(modem.problem()));
    play(modem, script);

    EdtLog log(o.office.file(EdtLog::kFileName), o.clock);
    QVERIFY(log.start(o.params.general()));
    QStringList errorsTold;
    const EdtEventSink sink = [&](EdtEvent kind, const QString& text) {
        log.add(kind, text);
        if (kind == EdtEvent::Error) {
            errorsTold << text;
        }
    };
    ModemSession session(sink, kSecond);
    QVERIFY(session.open(modem.device(), "57600,n,8,1"));
    modem.start();  // opening the port forgets what came before
    ScriptedAsker asker;
    asker.typed = typed;
    EdtLogon logon(session, sink, o.params, o.prompter, asker,
                   [&log](const QString& secret) { log.conceal(secret); });
    QTEST(int(logon.logOn("JS")), "outcome");
    log.finish();

    QCOMPARE(errorsTold, errors);
    QStringList messages;
    for (const auto& m : o.prompter.messages()) {
        QCOMPARE(m.title, EdtLogon::kChangeTitle);
        messages << m.text();
    }
    QCOMPARE(messages, told);
    QCOMPARE(asker.typed.size(), typed.contains(kCancel) ? 1 : 0);
    // The host got exactly what it awaited: nothing more, nothing out of order.
    QTRY_COMPARE(modem.received(), expected(script));
    QCOMPARE(o.params.login("JS").password, std::optional<QString>(password));
    QCOMPARE(o.rows(), rows);

    const QString written = test::readText(log.path());
    QVERIFY(written.contains("Getting GONet login information from profile JS") ||
            !errors.filter("DataPac").isEmpty());
    for (const QString& secret : typed + QStringList{"OldPass9", "NuiSecret"}) {
        if (secret != kCancel) {
            QVERIFY2(!written.contains(secret), qPrintable(secret));
        }
    }
}

QTEST_GUILESS_MAIN(TestEdtLogon)
#include "test_edt_logon.moc"
