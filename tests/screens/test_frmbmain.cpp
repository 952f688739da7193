#include "foundation/ActionRegistry.h"
#include "foundation/AppSettings.h"
#include "foundation/RecordingPrompter.h"
#include "screens/frmBMain.h"

#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

using namespace brimsett;

namespace {

// A main window over the built-in menu whose registered actions only note that they ran.
struct Office {
    ActionRegistry actions;
    RecordingPrompter prompter;
    AppSettings settings;
    QList<int> ran;
    std::unique_ptr<frmBMain> window;

    explicit Office(const QList<int>& registered) {
        for (int action : registered) {
            actions.setAction(action, QString(), [this, action] { ran << action; });
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

QList<int> everyAction() {
    QList<int> all;
    for (int a = 1; a <= 40; ++a) {
        if (a != 10) {
            all << a;
        }
    }
    return all;
}

const QStringList kMainMenu = {"&Claims", "&Patients", "&Appointments", "P&rint", "&More", "E&xit"};
const QStringList kPrintMenu = {"Today's &Appts",  "&Today's Claims", "&Past Claims",
                                "&Monthly Totals", "Print &Setup",    "Back"};

}  // namespace

class TestFrmBMain : public QObject {
    Q_OBJECT

private slots:
    void keyRunsActionAnywhere_data() {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<bool>("inPrintMenu");
        QTest::addColumn<int>("action");
        const int none = Qt::NoModifier;
        const int ctrlAlt = Qt::ControlModifier | Qt::AltModifier;
        QTest::newRow("F3 claims") << int(Qt::Key_F3) << none << false << 1;
        QTest::newRow("F3 from print menu") << int(Qt::Key_F3) << none << true << 1;
        QTest::newRow("Shift+F10 about")
            << int(Qt::Key_F10) << int(Qt::ShiftModifier) << false << 23;
        QTest::newRow("Alt+F10 sql") << int(Qt::Key_F10) << int(Qt::AltModifier) << false << 26;
        QTest::newRow("F10 of the more menu") << int(Qt::Key_F10) << none << false << 16;
        QTest::newRow("Ctrl+Alt+P setup") << int(Qt::Key_P) << ctrlAlt << false << 8;
        QTest::newRow("Ctrl+Alt+Shift+C demo")
            << int(Qt::Key_C) << int(ctrlAlt | Qt::ShiftModifier) << true << 30;
        QTest::newRow("F12 login") << int(Qt::Key_F12) << none << false << 32;
    }

    void keyRunsActionAnywhere() {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(bool, inPrintMenu);
        QFETCH(int, action);
        Office office(everyAction());
        QVERIFY(office.ready());
        if (inPrintMenu) {
            office.window->showSubMenu(1);
        }
        // A field of some later screen inside the window holds the focus.
        auto* field = new QLineEdit(office.window->centralWidget());
        field->show();
        field->setFocus();
        QTRY_COMPARE(office.focus(), field);

        QTest::keyClick(field, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(office.ran, QList<int>{action});
        QVERIFY(office.prompter.messages().isEmpty());
    }

    void printMenuAndBack_data() {
        QTest::addColumn<QString>("open");
        QTest::addColumn<QString>("back");
        QTest::newRow("letter, Back clicked") << "letter"
                                              << "click";
        QTest::newRow("Alt+letter, Escape") << "alt"
                                            << "escape";
        QTest::newRow("arrows and Enter, End and Enter") << "arrows"
                                                         << "end";
        QTest::newRow("clicked, Back clicked") << "click"
                                               << "click";
    }

    void printMenuAndBack() {
        QFETCH(QString, open);
        QFETCH(QString, back);
        Office office({});
        QVERIFY(office.ready());
        QCOMPARE(office.window->visibleCaptions(), kMainMenu);
        QWidget* first = office.focus();
        QVERIFY(first);

        if (open == QLatin1String("letter")) {
            QTest::keyClick(first, Qt::Key_R);
        } else if (open == QLatin1String("alt")) {
            QTest::keyClick(first, Qt::Key_R, Qt::AltModifier);
        } else if (open == QLatin1String("arrows")) {
            for (int i = 0; i < 3; ++i) {
                QTest::keyClick(office.focus(), Qt::Key_Down);
            }
            QCOMPARE(qobject_cast<QPushButton*>(office.focus())->text(), QStringLiteral("P&rint"));
            QTest::keyClick(office.focus(), Qt::Key_Return);
        } else {
            QTest::mouseClick(office.button(QStringLiteral("P&rint")), Qt::LeftButton);
        }
        QCOMPARE(office.window->currentSubMenu(), 1);
        QCOMPARE(office.window->visibleCaptions(), kPrintMenu);
        QTRY_VERIFY(office.button(QStringLiteral("Back")));

        if (back == QLatin1String("click")) {
            QTest::mouseClick(office.button(QStringLiteral("Back")), Qt::LeftButton);
        } else if (back == QLatin1String("escape")) {
            QTest::keyClick(office.focus(), Qt::Key_Escape);
        } else {
            QTest::keyClick(office.focus(), Qt::Key_End);
            QTest::keyClick(office.focus(), Qt::Key_Enter);
        }
        QCOMPARE(office.window->currentSubMenu(), 0);
        QCOMPARE(office.window->visibleCaptions(), kMainMenu);
        QVERIFY(office.window->isVisible());
        QVERIFY(office.ran.isEmpty());
    }

    void unregisteredActionTellsPlainly_data() {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("title");
        QTest::newRow("claims") << int(Qt::Key_F3) << int(Qt::NoModifier) << "Claims";
        QTest::newRow("hidden entry")
            << int(Qt::Key_F10) << int(Qt::ShiftModifier) << "About Brimsett";
        QTest::newRow("letter in main menu")
            << int(Qt::Key_A) << int(Qt::NoModifier) << "Appointments";
    }

    void unregisteredActionTellsPlainly() {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        Office office({2});
        QVERIFY(office.ready());
        QTest::keyClick(office.focus(), Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(office.prompter.messages().size(), 1);
        QTEST(office.prompter.last().title, "title");
        QCOMPARE(office.prompter.last().lines,
                 QStringList{"This part of Brimsett is not available yet."});
        QVERIFY(office.ran.isEmpty());
        QVERIFY(office.window->isVisible());
    }

    void exitClosesOnce_data() {
        QTest::addColumn<QString>("how");
        QTest::newRow("letter x") << "x";
        QTest::newRow("Exit clicked") << "click";
        QTest::newRow("window closed") << "close";
    }

    void exitClosesOnce() {
        QFETCH(QString, how);
        Office office({});
        QVERIFY(office.ready());
        QSignalSpy shutdown(office.window.get(), &frmBMain::shuttingDown);
        if (how == QLatin1String("x")) {
            QTest::keyClick(office.focus(), Qt::Key_X);
        } else if (how == QLatin1String("click")) {
            QTest::mouseClick(office.button(QStringLiteral("E&xit")), Qt::LeftButton);
        } else {
            office.window->close();
        }
        QVERIFY(!office.window->isVisible());
        office.window->close();
        QCOMPARE(shutdown.count(), 1);
    }
};

QTEST_MAIN(TestFrmBMain)
#include "test_frmbmain.moc"
