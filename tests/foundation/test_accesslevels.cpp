#include "TestSupport.h"

#include "foundation/AccessLevels.h"
#include "foundation/PasswordActions.h"
#include "foundation/RecordingPrompter.h"

#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

const QString kGeneral = QStringLiteral("General");
// Quick hashes for tests that make many passwords; the full rounds have their own test.
constexpr int kFewRounds = 1000;

// The password of each level in these tests: "pw0".."pw4".
QString pw(int level) {
    return QStringLiteral("pw%1").arg(level);
}

void setLevels(AccessLevels& levels, const QList<int>& which) {
    for (int level : which) {
        QCOMPARE(levels.change(level, pw(level)), AccessLevels::ChangeResult::Changed);
    }
}

QList<int> levelsSet(const AccessLevels& levels) {
    QList<int> set;
    for (int level = 0; level < AccessLevels::kLevelCount; ++level) {
        if (levels.isSet(level)) {
            set << level;
        }
    }
    return set;
}

// "title|line|line" for each message, so whole conversations compare in one QCOMPARE.
QStringList conversation(const RecordingPrompter& prompter) {
    QStringList out;
    for (const auto& m : prompter.messages()) {
        out << (QStringList{m.title} + m.lines).join(QLatin1Char('|'));
    }
    return out;
}

}  // namespace

class TestAccessLevels : public QObject {
    Q_OBJECT

private slots:
    void whichFeaturesAreOpen_data() {
        QTest::addColumn<QList<int>>("set");
        QTest::addColumn<int>("loggedIn");  // -1: nobody
        QTest::addColumn<int>("feature");
        QTest::addColumn<QString>("refusedFor");  // the level named in the refusal; null: open
        using L = QList<int>;
        row("no password at all", L{}, -1, 0, nullptr);
        row("master only, master feature", L{0}, -1, 0, "Master");
        row("weaker level set guards stronger features", L{0, 4}, -1, 2, "Billing Secretary");
        row("secretary feature guarded", L{0, 4}, -1, 4, "Secretary");
        row("secretary may use own features", L{0, 4}, 4, 4, nullptr);
        row("secretary may not use stronger", L{0, 4}, 4, 3, "");
        row("billing may use weaker", L{0, 2}, 2, 3, nullptr);
        row("billing may not use level 1", L{0, 2}, 2, 1, "");
        row("nothing set at 3 and 4", L{0, 2}, -1, 3, nullptr);
    }
    void whichFeaturesAreOpen() {
        QFETCH(QList<int>, set);
        QFETCH(int, loggedIn);
        QFETCH(int, feature);
        QFETCH(QString, refusedFor);
        test::TempOffice office;
        AccessLevels levels(office.store(), kFewRounds);
        setLevels(levels, set);
        if (loggedIn >= 0) {
            QCOMPARE(levels.login(pw(loggedIn)), std::optional<int>(loggedIn));
        }
        RecordingPrompter prompter;
        QCOMPARE(levels.require(feature, prompter), refusedFor.isNull());
        if (refusedFor.isNull()) {
            QVERIFY(prompter.messages().isEmpty());
        } else {
            QCOMPARE(conversation(prompter),
                     QStringList{QStringLiteral("Brimsett|You cannot access this feature.||"
                                                "It requires the [%1] password")
                                     .arg(refusedFor)});
            QCOMPARE(prompter.last().icon, Icon::Critical);
        }
    }

    // A wrong password keeps the level logged in; removing a level logs out anyone at it.
    void removalTakesWeakerLevelsAndTheLoginAndIsKept() {
        test::TempOffice office;
        office.store().save(kGeneral, QStringLiteral("Open"), QStringLiteral("1"));
        AccessLevels levels(office.store(), kFewRounds);
        setLevels(levels, {0, 1, 2, 3, 4});
        QCOMPARE(levels.login(pw(3)), std::optional<int>(3));
        QVERIFY(!levels.login(QStringLiteral("wrong")).has_value());
        QCOMPARE(levels.currentLevel(), std::optional<int>(3));

        levels.remove(2);
        QVERIFY(!levels.currentLevel().has_value());
        QCOMPARE(levels.login(pw(0)), std::optional<int>(0));
        AccessLevels reloaded(office.store(), kFewRounds);
        for (AccessLevels* l : {&levels, &reloaded}) {
            QCOMPARE(levelsSet(*l), (QList<int>{0, 1}));
            QVERIFY(l->verify(1, pw(1)));
            QVERIFY(!l->verify(3, pw(3)));
        }
        QVERIFY(!office.store().contains(kGeneral, QStringLiteral("Open4")));
        QCOMPARE(office.store().get(kGeneral, QStringLiteral("Open")), QStringLiteral("1"));
    }

    void storedAsSaltedHash() {
        test::TempOffice office;
        AccessLevels levels(office.store(), kFewRounds);
        setLevels(levels, {0});
        const QString first = office.store().get(kGeneral, QStringLiteral("Open0"));
        QVERIFY(first.startsWith(QStringLiteral("pbkdf2-sha256$")));
        QVERIFY(!first.contains(pw(0)));

        levels.remove(0);
        setLevels(levels, {0});
        QVERIFY(office.store().get(kGeneral, QStringLiteral("Open0")) != first);

        // A different store read afresh still knows the password; a wrong one fails.
        SettingsStore copy(office.settingsFile());
        AccessLevels reread(copy, kFewRounds);
        QVERIFY(reread.verify(0, pw(0)));
        QVERIFY(!reread.verify(0, QStringLiteral("PW0")));
        QVERIFY(!reread.verify(0, QString()));

        // An entry not in the stored form keeps its level closed rather than open.
        office.store().save(kGeneral, QStringLiteral("Open1"), QStringLiteral("plain"));
        levels.load();
        QVERIFY(levels.isSet(1));
        QVERIFY(!levels.verify(1, QStringLiteral("plain")));
    }

    // A hash of fewer rounds still opens its level, and the login at that level makes it
    // again with the full 600,000 rounds; a failed login and the other levels keep theirs.
    void oldHashesAreUpgradedAtLogin() {
        test::TempOffice office;
        AccessLevels old(office.store(), 20000);
        setLevels(old, {0, 2});
        const auto stored = [&](int level) {
            return office.store().get(kGeneral, QStringLiteral("Open%1").arg(level));
        };
        const QString master = stored(0);
        const QString billing = stored(2);
        QVERIFY(billing.startsWith(QStringLiteral("pbkdf2-sha256$20000$")));
        AccessLevels levels(office.store());
        QVERIFY(!levels.login(QStringLiteral("wrong")).has_value());
        QCOMPARE(stored(2), billing);
        QCOMPARE(levels.login(pw(2)), std::optional<int>(2));
        QCOMPARE(stored(0), master);
        QVERIFY2(stored(2).startsWith(QStringLiteral("pbkdf2-sha256$600000$")),
                 qPrintable(stored(2)));
        QVERIFY(AccessLevels(office.store(), kFewRounds).verify(2, pw(2)));
    }

    void masterPasswordComesFirst() {
        test::TempOffice office;
        AccessLevels levels(office.store(), kFewRounds);
        QCOMPARE(levels.change(2, pw(2)), AccessLevels::ChangeResult::MasterFirst);
        RecordingPrompter prompter;
        QVERIFY(!PasswordActions(levels, prompter).change(2, QString(), pw(2), pw(2)));
        QCOMPARE(conversation(prompter),
                 QStringList{QStringLiteral("Passwords|You must create a Master password|"
                                            "before creating any lower level passwords.")});
        QVERIFY(!AccessLevels(office.store()).anySet());
    }

    void screenConversations_data() {
        QTest::addColumn<QString>("action");
        QTest::addColumn<int>("level");
        QTest::addColumn<QStringList>("entries");
        QTest::addColumn<bool>("done");
        QTest::addColumn<QStringList>("said");
        QTest::addColumn<QList<int>>("setAfter");  // the office has 0, 2 and 4 before

        using L = QList<int>;
        const QString changed = QStringLiteral("Passwords|Password was successfully changed.");
        const QString invalid = QStringLiteral("Invalid|Invalid Password");
        const QString none = QStringLiteral("Passwords|No changes were made");
        const QString question = QStringLiteral(
            "Removing password|You are removing the 'Level 2' password.|"
            "This will also remove all lower level passwords.|Are you sure?");
        const QString removed = QStringLiteral("Passwords|Password was successfully removed.");
        const QString mismatch =
            QStringLiteral("Passwords|The new password and its confirmation do not match.");
        const QString inUse = QStringLiteral("Passwords|Another level already has this password.");
        // Entries are the current, new and confirmed password; login takes the first. Questions
        // are answered Yes, except by "remove, no".
        const auto row = [](const char* name, const char* action, int level, QStringList entries,
                            bool done, QStringList said, L after = {0, 2, 4}) {
            QTest::newRow(name) << QString::fromUtf8(action) << level << entries << done << said
                                << after;
        };
        row("change with own password", "change", 2, {"pw2", "new", "new"}, true, {changed});
        row("weaker password cannot change", "change", 2, {"pw4", "new", "new"}, false, {invalid});
        row("new level needs a stronger password", "change", 3, {"", "new", "new"}, false,
            {invalid});
        row("new level with master", "change", 3, {"pw0", "new", "new"}, true, {changed},
            {0, 2, 3, 4});
        row("confirmation differs", "change", 2, {"pw2", "new", "neW"}, false, {mismatch});
        row("same password again", "change", 2, {"pw2", "pw2", "pw2"}, false, {none});
        row("empty new password", "change", 3, {"pw0", "", ""}, false, {none});
        row("password of another level", "change", 2, {"pw2", "pw0", "pw0"}, false, {inUse});
        row("remove answered yes", "remove", 2, {"pw0"}, true, {question, removed}, {0});
        row("remove answered no", "remove, no", 2, {"pw2"}, false, {question});
        row("remove with weaker password", "remove", 2, {"pw4"}, false, {invalid});
        row("remove a level without password", "remove", 3, {"pw0"}, false, {none});
        row("login wrong", "login", 0, {"nope"}, false, {invalid});
        row("login right", "login", 0, {"pw4"}, true, {});
    }
    void screenConversations() {
        QFETCH(QString, action);
        QFETCH(int, level);
        QFETCH(QStringList, entries);
        test::TempOffice office;
        AccessLevels levels(office.store(), kFewRounds);
        setLevels(levels, {0, 2, 4});
        RecordingPrompter prompter;
        prompter.script({action == QLatin1String("remove, no") ? Answer::No : Answer::Yes});
        PasswordActions actions(levels, prompter);

        bool done = false;
        if (action == QLatin1String("change")) {
            done = actions.change(level, entries[0], entries[1], entries[2]);
        } else if (action.startsWith(QLatin1String("remove"))) {
            done = actions.remove(level, entries[0]);
        } else {
            done = actions.login(entries[0]);
        }
        QTEST(done, "done");
        QTEST(conversation(prompter), "said");
        QTEST(levelsSet(levels), "setAfter");
        if (action == QLatin1String("change") && done) {
            QVERIFY(AccessLevels(office.store(), kFewRounds).verify(level, entries[1]));
        }
    }
};

QTEST_GUILESS_MAIN(TestAccessLevels)
#include "test_accesslevels.moc"
