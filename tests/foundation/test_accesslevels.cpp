#include "TestSupport.h"

#include "foundation/AccessLevels.h"
#include "foundation/PasswordActions.h"
#include "foundation/RecordingPrompter.h"

#include <QtTest>

using namespace brimsett;

namespace {

const QString kGeneral = QStringLiteral("General");

// The password of each level in these tests: "pw0".."pw4".
QString pw(int level) {
    return QStringLiteral("pw%1").arg(level);
}

void setLevels(AccessLevels& levels, const QList<int>& which) {
    for (int level : which) {
        QCOMPARE(levels.change(level, pw(level)), AccessLevels::ChangeResult::Changed);
    }
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
    void noPasswordEverythingOpen();
    void whichFeaturesAreOpen_data();
    void whichFeaturesAreOpen();
    void refusalNamesTheLevel_data();
    void refusalNamesTheLevel();
    void removeTakesWeakerLevelsAndSurvivesReload();
    void storedAsSaltedHash();
    void loginPicksStrongestMatch();
    void changeRules();
    void screenConversations_data();
    void screenConversations();
};

void TestAccessLevels::noPasswordEverythingOpen() {
    test::TempOffice office;
    AccessLevels levels(office.store());
    RecordingPrompter prompter;
    QVERIFY(!levels.anySet());
    for (int level = 0; level < AccessLevels::kLevelCount; ++level) {
        QVERIFY(levels.require(level, prompter));
    }
    QVERIFY(prompter.messages().isEmpty());
}

void TestAccessLevels::whichFeaturesAreOpen_data() {
    QTest::addColumn<QList<int>>("set");
    QTest::addColumn<int>("loggedIn");  // -1: nobody
    QTest::addColumn<int>("feature");
    QTest::addColumn<bool>("open");

    using L = QList<int>;
    QTest::newRow("master only, secretary feature") << L{0} << -1 << 4 << true;
    QTest::newRow("master only, master feature") << L{0} << -1 << 0 << false;
    QTest::newRow("master only, level 1 feature") << L{0} << -1 << 1 << true;
    QTest::newRow("weaker level set guards stronger features") << L{0, 4} << -1 << 2 << false;
    QTest::newRow("secretary feature guarded") << L{0, 4} << -1 << 4 << false;
    QTest::newRow("secretary may use own features") << L{0, 4} << 4 << 4 << true;
    QTest::newRow("secretary may not use stronger") << L{0, 4} << 4 << 3 << false;
    QTest::newRow("billing may use weaker") << L{0, 2} << 2 << 3 << true;
    QTest::newRow("billing may not use level 1") << L{0, 2} << 2 << 1 << false;
    QTest::newRow("master may use everything") << L{0, 2, 4} << 0 << 1 << true;
    QTest::newRow("nothing set at 3 and 4") << L{0, 2} << -1 << 3 << true;
}

void TestAccessLevels::whichFeaturesAreOpen() {
    QFETCH(QList<int>, set);
    QFETCH(int, loggedIn);
    QFETCH(int, feature);
    QFETCH(bool, open);

    test::TempOffice office;
    AccessLevels levels(office.store());
    setLevels(levels, set);
    if (loggedIn >= 0) {
        QCOMPARE(levels.login(pw(loggedIn)), std::optional<int>(loggedIn));
    }
    RecordingPrompter prompter;
    QCOMPARE(levels.require(feature, prompter), open);
    QCOMPARE(prompter.messages().size(), open ? 0 : 1);
}

void TestAccessLevels::refusalNamesTheLevel_data() {
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("lastLine");

    QTest::newRow("0") << 0 << "It requires the [Master] password";
    QTest::newRow("1") << 1 << "It requires the [] password";
    QTest::newRow("2") << 2 << "It requires the [Billing Secretary] password";
    QTest::newRow("4") << 4 << "It requires the [Secretary] password";
}

void TestAccessLevels::refusalNamesTheLevel() {
    QFETCH(int, level);
    QFETCH(QString, lastLine);

    test::TempOffice office;
    AccessLevels levels(office.store());
    setLevels(levels, {0, 4});
    RecordingPrompter prompter;
    QVERIFY(!levels.require(level, prompter));
    QCOMPARE(prompter.messages().size(), 1);
    QCOMPARE(prompter.last().lines,
             (QStringList{QStringLiteral("You cannot access this feature."), QString(), lastLine}));
    QCOMPARE(prompter.last().icon, Icon::Critical);
}

void TestAccessLevels::removeTakesWeakerLevelsAndSurvivesReload() {
    test::TempOffice office;
    office.store().save(kGeneral, QStringLiteral("Open"), QStringLiteral("1"));
    AccessLevels levels(office.store());
    setLevels(levels, {0, 1, 2, 3, 4});
    QCOMPARE(levels.login(pw(3)), std::optional<int>(3));

    levels.remove(2);
    QVERIFY(!levels.currentLevel().has_value());

    AccessLevels reloaded(office.store());
    for (AccessLevels* l : {&levels, &reloaded}) {
        QVERIFY(l->isSet(0));
        QVERIFY(l->isSet(1));
        QVERIFY(!l->isSet(2));
        QVERIFY(!l->isSet(3));
        QVERIFY(!l->isSet(4));
        QVERIFY(l->verify(1, pw(1)));
        QVERIFY(!l->verify(3, pw(3)));
    }
    QVERIFY(!office.store().contains(kGeneral, QStringLiteral("Open4")));
    QCOMPARE(office.store().get(kGeneral, QStringLiteral("Open")), QStringLiteral("1"));
}

void TestAccessLevels::storedAsSaltedHash() {
    test::TempOffice office;
    AccessLevels levels(office.store());
    setLevels(levels, {0});
    const QString first = office.store().get(kGeneral, QStringLiteral("Open0"));
    QVERIFY(first.startsWith(QStringLiteral("pbkdf2-sha256$")));
    QVERIFY(!first.contains(pw(0)));

    levels.remove(0);
    setLevels(levels, {0});
    const QString second = office.store().get(kGeneral, QStringLiteral("Open0"));
    QVERIFY(second != first);

    // A different store read afresh still knows the password; a wrong one fails.
    SettingsStore copy(office.settingsFile());
    AccessLevels reread(copy);
    QVERIFY(reread.verify(0, pw(0)));
    QVERIFY(!reread.verify(0, QStringLiteral("PW0")));
    QVERIFY(!reread.verify(0, QString()));

    // An entry not in the stored form keeps its level closed rather than open.
    office.store().save(kGeneral, QStringLiteral("Open1"), QStringLiteral("plain"));
    levels.load();
    QVERIFY(levels.isSet(1));
    QVERIFY(!levels.verify(1, QStringLiteral("plain")));
}

void TestAccessLevels::loginPicksStrongestMatch() {
    test::TempOffice office;
    AccessLevels levels(office.store());
    setLevels(levels, {0, 2});
    QCOMPARE(levels.login(pw(2)), std::optional<int>(2));
    QVERIFY(!levels.login(QStringLiteral("wrong")).has_value());
    QCOMPARE(levels.currentLevel(), std::optional<int>(2));
    QCOMPARE(levels.login(pw(0)), std::optional<int>(0));
    QCOMPARE(levels.currentLevel(), std::optional<int>(0));
}

void TestAccessLevels::changeRules() {
    test::TempOffice office;
    AccessLevels levels(office.store());
    QCOMPARE(levels.change(2, pw(2)), AccessLevels::ChangeResult::MasterFirst);
    RecordingPrompter prompter;
    QVERIFY(!PasswordActions(levels, prompter).change(2, QString(), pw(2), pw(2)));
    QCOMPARE(conversation(prompter),
             QStringList{QStringLiteral("Passwords|You must create a Master password|"
                                        "before creating any lower level passwords.")});
    QVERIFY(!office.store().contains(kGeneral, QStringLiteral("Open2")));
    QVERIFY(!levels.anySet());

    setLevels(levels, {0});
    QCOMPARE(levels.change(0, pw(0)), AccessLevels::ChangeResult::Unchanged);
    QCOMPARE(levels.change(3, QString()), AccessLevels::ChangeResult::Unchanged);
    QCOMPARE(levels.change(3, pw(0)), AccessLevels::ChangeResult::InUse);
    QVERIFY(!levels.isSet(3));
}

void TestAccessLevels::screenConversations_data() {
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("level");
    QTest::addColumn<QStringList>("entries");
    QTest::addColumn<bool>("answerYes");
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
    // Entries are the current, new and confirmed password; login takes the first.
    const auto row = [](const char* name, const char* action, int level, QStringList entries,
                        bool yes, bool done, QStringList said, L after) {
        QTest::newRow(name) << QString::fromUtf8(action) << level << entries << yes << done << said
                            << after;
    };
    row("change with own password", "change", 2, {"pw2", "new", "new"}, false, true, {changed},
        {0, 2, 4});
    row("change with stronger password", "change", 4, {"pw0", "new", "new"}, false, true, {changed},
        {0, 2, 4});
    row("weaker password cannot change", "change", 2, {"pw4", "new", "new"}, false, false,
        {invalid}, {0, 2, 4});
    row("new level needs a stronger password", "change", 3, {"", "new", "new"}, false, false,
        {invalid}, {0, 2, 4});
    row("new level with master", "change", 3, {"pw0", "new", "new"}, false, true, {changed},
        {0, 2, 3, 4});
    row("confirmation differs", "change", 2, {"pw2", "new", "neW"}, false, false, {mismatch},
        {0, 2, 4});
    row("same password again", "change", 2, {"pw2", "pw2", "pw2"}, false, false, {none}, {0, 2, 4});
    row("remove answered yes", "remove", 2, {"pw0"}, true, true, {question, removed}, {0});
    row("remove answered no", "remove", 2, {"pw2"}, false, false, {question}, {0, 2, 4});
    row("remove with weaker password", "remove", 2, {"pw4"}, true, false, {invalid}, {0, 2, 4});
    row("remove a level without password", "remove", 3, {"pw0"}, true, false, {none}, {0, 2, 4});
    row("login wrong", "login", 0, {"nope"}, false, false, {invalid}, {0, 2, 4});
    row("login right", "login", 0, {"pw4"}, false, true, {}, {0, 2, 4});
}

void TestAccessLevels::screenConversations() {
    QFETCH(QString, action);
    QFETCH(int, level);
    QFETCH(QStringList, entries);
    QFETCH(bool, answerYes);
    QFETCH(bool, done);
    QFETCH(QStringList, said);
    QFETCH(QList<int>, setAfter);

    test::TempOffice office;
    AccessLevels levels(office.store());
    setLevels(levels, {0, 2, 4});
    RecordingPrompter prompter;
    prompter.script({answerYes ? Answer::Yes : Answer::No});
    PasswordActions actions(levels, prompter);

    bool result = false;
    if (action == QLatin1String("change")) {
        result = actions.change(level, entries[0], entries[1], entries[2]);
    } else if (action == QLatin1String("remove")) {
        result = actions.remove(level, entries[0]);
    } else {
        result = actions.login(entries[0]);
    }
    QCOMPARE(result, done);
    QCOMPARE(conversation(prompter), said);
    QList<int> setNow;
    for (int l = 0; l < AccessLevels::kLevelCount; ++l) {
        if (levels.isSet(l)) {
            setNow << l;
        }
    }
    QCOMPARE(setNow, setAfter);
    if (action == QLatin1String("change") && done) {
        QVERIFY(AccessLevels(office.store()).verify(level, entries[1]));
    }
}

QTEST_GUILESS_MAIN(TestAccessLevels)
#include "test_accesslevels.moc"
