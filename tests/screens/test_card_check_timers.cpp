#include "OfficeFixture.h"

#include "screens/CardCheckTimers.h"

#include <QDir>
#include <QFile>
#include <QtTest>

using namespace brimsett;

namespace {

struct Front : test::OfficeFixture {
    QStringList answered;

    Front(bool polling) {
        office.store().save("General", "HX", "CLINIC7");
        office.store().save("Options", "TCP1", polling ? "1" : "0");
        db->exec(
            "Insert Into Patients (PatientID, HealthNum, VersionCode, LName, FName, Province)"
            " Values (4, '9876543225', 'AB', 'Doe', 'Jane', 'ON')");
    }
    std::unique_ptr<CardCheckTimers> timers() {
        return std::make_unique<CardCheckTimers>(*db, office.store(), clock, prompter, log,
                                                 office.folder(),
                                                 [this](const QString& hn) { answered << hn; });
    }
    QStringList requests() const {
        return QDir(office.folder() + "HCVOUT").entryList(QDir::Files, QDir::Name);
    }
    void answer(const QString& name, const QString& code) const {
        QDir().mkpath(office.folder() + "HCVIN");
        QFile file(office.folder() + "HCVIN/" + name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(("CLINIC7|RPVR0300 9876543225AB|" + code + "|x|AB|DOE|JANE|F|19800115|\r\n")
                       .toLatin1());
    }
};

}  // namespace

class TestCardCheckTimers : public QObject {
    Q_OBJECT

private slots:
    // Polling follows "TCP1"; a request starts the wait for its answer, and the answer stops
    // it and tells the patient window.
    void requestWaitsAndTheAnswerEndsTheWait() {
        Front off(false);
        QVERIFY(!off.timers()->polling());

        Front front(true);
        auto timers = front.timers();
        QVERIFY(timers->polling());
        timers->requestAsked("9876543225", "AB");
        QCOMPARE(front.requests().size(), 1);
        QVERIFY(timers->waiting());
        front.answer("a1.txt", "50");
        timers->pollNow();
        QVERIFY(!timers->waiting());
        QCOMPARE(front.answered, QStringList{"9876543225"});
        QCOMPARE(front.prompter.messages().last().title, QStringLiteral("TW HCV"));
    }

    // A card answered today goes again only when the desk says so.
    void answeredTodayIsSentAgainOnlyOnYes() {
        Front front(true);
        front.db->exec("Update Patients Set HNCheckDate='2026-11-22 08:00:00' Where PatientID=4");
        auto timers = front.timers();
        front.prompter.script({Answer::No});
        timers->requestAsked("9876543225", "AB");
        QVERIFY(front.requests().isEmpty());
        front.prompter.script({Answer::Yes});
        timers->requestAsked("9876543225", "AB");
        QCOMPARE(front.requests().size(), 1);
        QCOMPARE(front.prompter.messages().first().lines,
                 (QStringList{"This card was already checked today.", "Check it again?"}));
    }
};

QTEST_MAIN(TestCardCheckTimers)
#include "test_card_check_timers.moc"
