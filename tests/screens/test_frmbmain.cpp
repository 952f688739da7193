#include "TestSupport.h"

#include "foundation/ActionRegistry.h"
#include "foundation/AppSettings.h"
#include "foundation/RecordingPrompter.h"
#include "screens/frmBMain.h"

#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QSignalSpy>
#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

// A main window over the built-in menu whose actions only note that they ran; the actions
// in "missing" are not registered (10 never is: it is the menu's own Back and Exit).
struct Office {
    ActionRegistry actions;
    RecordingPrompter prompter;
    AppSettings settings;
    QList<int> ran;
    std::unique_ptr<frmBMain> window;

    explicit Office(const QList<int>& missing = {}) {
        for (int action = 1; action <= 40; ++action) {
            if (action != 10 && !missing.contains(action)) {
                actions.setAction(action, QString(), [this, action] { ran << action; });
            }
        }
        window = std::make_unique<frmBMain>(defaultMenu(), settings, actions, prompter);
        window->show();
        QApplication::setActiveWindow(window.get());
    }
    bool ready() { return QTest::qWaitForWindowActive(window.get()); }
    QPushButton* button(const QString& caption) const {
        for (auto* b : window->findChildren<QPushButton*>()) {
            if (b->text() == caption && b->isVisible()) {
                return b;
            }
        }
        return nullptr;
    }
    QWidget* focus() const { return QApplication::focusWidget(); }
};

const QStringList kMainMenu = {"&Claims", "&Patients", "&Appointments", "P&rint", "&More", "E&xit"};
const QStringList kPrintMenu = {"Today's &Appts",  "&Today's Claims", "&Past Claims",
                                "&Monthly Totals", "Print &Setup",    "Back"};

// Carries out gestures, one after the other: "click:<caption>", "close" (the window), or a
// key such as "Down" or "Ctrl+Alt+P" typed into whatever has the focus.
void perform(Office& office, const QString& gestures) {
    for (const QString& gesture : gestures.split(QLatin1Char(' '))) {
        if (gesture.startsWith(QLatin1String("click:"))) {
            QPushButton* button = office.button(gesture.mid(6));
            QVERIFY2(button, qPrintable(gesture));
            QTest::mouseClick(button, Qt::LeftButton);
        } else if (gesture == QLatin1String("close")) {
            office.window->close();
        } else {
            const QKeyCombination key = QKeySequence(gesture)[0];
            QTest::keyClick(office.focus(), key.key(), key.keyboardModifiers());
        }
    }
}

}  // namespace

class TestFrmBMain : public QObject {
    Q_OBJECT

private slots:
    // Claims (1), Appointments (3) and About (23) are not registered.
    void keyReachesItsEntry_data() {
        QTest::addColumn<QString>("key");
        QTest::addColumn<bool>("inPrintMenu");
        QTest::addColumn<bool>("inField");     // else a menu button has the focus
        QTest::addColumn<QString>("outcome");  // "ran N", or the title of "not available"
        row("F4 patients", "F4", false, true, "ran 2");
        row("Alt+F10 sql", "Alt+F10", false, true, "ran 26");
        row("F10 of the more menu", "F10", false, true, "ran 16");
        row("Ctrl+Alt+P setup", "Ctrl+Alt+P", false, true, "ran 8");
        row("Ctrl+Alt+Shift+C demo from the print menu", "Ctrl+Alt+Shift+C", true, true, "ran 30");
        row("F3 claims missing", "F3", false, false, "Claims");
        row("Shift+F10 hidden entry missing", "Shift+F10", false, true, "About Brimsett");
        row("letter of a missing entry", "A", false, false, "Appointments");
    }
    void keyReachesItsEntry() {
        QFETCH(bool, inPrintMenu);
        QFETCH(bool, inField);
        QFETCH(QString, outcome);
        Office office({1, 3, 23});
        QVERIFY(office.ready());
        if (inPrintMenu) {
            office.window->showSubMenu(1);
        }
        if (inField) {  // a field of some later screen inside the window
            auto* field = new QLineEdit(office.window->centralWidget());
            field->show();
            field->setFocus();
            QTRY_COMPARE(office.focus(), field);
        }
        QFETCH(QString, key);
        perform(office, key);
        if (outcome.startsWith(QLatin1String("ran "))) {
            QCOMPARE(office.ran, QList<int>{outcome.mid(4).toInt()});
            QVERIFY(office.prompter.messages().isEmpty());
        } else {
            QVERIFY(office.ran.isEmpty());
            QCOMPARE(office.prompter.messages().size(), 1);
            QCOMPARE(office.prompter.last().title, outcome);
            QCOMPARE(office.prompter.last().lines,
                     QStringList{"This part of Brimsett is not available yet."});
        }
        QVERIFY(office.window->isVisible());
    }

    // Another window of the program: its own shortcut keeps its key, a registered F-key runs
    // its action, and everything else (a missing action, a letter) stays with the field.
    void fKeysFromAnotherWindow_data() {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QList<int>>("ran");
        QTest::addColumn<QString>("typed");
        QTest::newRow("F4 patients") << int(Qt::Key_F4) << 0 << QList<int>{2} << "";
        QTest::newRow("Ctrl+Alt+F4 import")
            << int(Qt::Key_F4) << int(Qt::ControlModifier | Qt::AltModifier) << QList<int>{33}
            << "";
        QTest::newRow("own F3") << int(Qt::Key_F3) << 0 << QList<int>{} << "own";
        QTest::newRow("F5 missing") << int(Qt::Key_F5) << 0 << QList<int>{} << "";
        QTest::newRow("letter") << int(Qt::Key_C) << 0 << QList<int>{} << "c";
    }
    void fKeysFromAnotherWindow() {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(QList<int>, ran);
        QFETCH(QString, typed);
        Office office({3});
        QVERIFY(office.ready());
        QLineEdit other;
        auto* own = new QShortcut(QKeySequence(Qt::Key_F3), &other);
        connect(own, &QShortcut::activated, &other, [&other] { other.setText("own"); });
        other.show();
        QApplication::setActiveWindow(&other);
        QVERIFY(QTest::qWaitForWindowActive(&other));
        QTest::keyClick(&other, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(office.ran, ran);
        QCOMPARE(other.text(), typed);
        QVERIFY(office.prompter.messages().isEmpty());
    }

    void printMenuBackAndExit_data() {
        QTest::addColumn<QString>("open");
        QTest::addColumn<QString>("back");
        QTest::addColumn<QString>("exit");
        row("letter, Back clicked, letter x", "R", "click:Back", "X");
        row("Alt+letter, Escape, Exit clicked", "Alt+R", "Esc", "click:E&xit");
        row("arrows and Enter, End and Enter, window closed", "Down Down Down Return", "End Enter",
            "close");
        row("clicked, Back clicked, letter x", "click:P&rint", "click:Back", "X");
    }
    void printMenuBackAndExit() {
        Office office;
        QVERIFY(office.ready());
        QCOMPARE(office.window->visibleCaptions(), kMainMenu);
        QVERIFY(office.focus());
        QFETCH(QString, open);
        perform(office, open);
        QCOMPARE(office.window->currentSubMenu(), 1);
        QCOMPARE(office.window->visibleCaptions(), kPrintMenu);

        QFETCH(QString, back);
        perform(office, back);
        QCOMPARE(office.window->currentSubMenu(), 0);
        QCOMPARE(office.window->visibleCaptions(), kMainMenu);
        QVERIFY(office.window->isVisible());
        QVERIFY(office.ran.isEmpty());

        // Exit closes the window, and the program shuts down once however often it closes.
        QSignalSpy shutdown(office.window.get(), &frmBMain::shuttingDown);
        QFETCH(QString, exit);
        perform(office, exit);
        QVERIFY(!office.window->isVisible());
        office.window->close();
        QCOMPARE(shutdown.count(), 1);
    }
};

QTEST_MAIN(TestFrmBMain)
#include "test_frmbmain.moc"
