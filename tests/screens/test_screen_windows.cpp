#include "OfficeFixture.h"

#include "foundation/AccessLevels.h"
#include "foundation/ActionRegistry.h"
#include "foundation/MenuModel.h"
#include "screens/CodeEditors.h"
#include "screens/MessageBoxPrompter.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"
#include "screens/WindowPlace.h"
#include "screens/frmBMain.h"
#include "screens/frmClaim.h"
#include "screens/frmDoctors.h"
#include "screens/frmDoctorsOther.h"
#include "screens/frmEDTSetup.h"
#include "screens/frmLogin.h"
#include "screens/frmManageCodes.h"
#include "screens/frmOHIPCodes.h"
#include "screens/frmOptions.h"
#include "screens/frmPasswords.h"
#include "screens/frmPatients.h"
#include "screens/frmPrepare.h"
#include "screens/frmReceive.h"
#include "screens/frmThirdParty.h"
#include "screens/frmViewBatchEdit.h"
#include "screens/frmViewError.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QTabWidget>
#include <QtTest>

#include <functional>

using namespace brimsett;

// What every window of the program shares: its access letters, Escape on a drop-down list,
// its size on a small screen, where it is kept, and how it speaks.
namespace {

struct Office : test::OfficeFixture {
    ActionRegistry registry;
    AccessLevels access{office.store()};
    Office() {
        db->exec(QStringLiteral(
            "Insert Into Doctors (DoctorID, LName, FName, ProviderNum, GroupNum, SpecCode)"
            " Values ('AB', 'Abbott', 'Alice', '111111', '0000', '00')"));
    }

    std::unique_ptr<QWidget> make(const QString& name) {
        const QString folder = office.folder();
        const std::map<QString, std::function<QWidget*()>> screens = {
            {"frmBMain", [&] { return new frmBMain(defaultMenu(), settings, registry, prompter); }},
            {"frmPatients", [&] { return new frmPatients(*db, settings, prompter, clock, log); }},
            {"frmClaim",
             [&] { return new frmClaim(*db, settings, {}, prompter, clock, log, {}, registry); }},
            {"frmDoctors", [&] { return new frmDoctors(*db, settings, log, prompter); }},
            {"frmDoctorsOther", [&] { return new frmDoctorsOther(*db, settings, log, prompter); }},
            {"frmThirdParty", [&] { return new frmThirdParty(*db, prompter, log); }},
            {"frmEDTSetup",
             [&] { return new frmEDTSetup(*db, settings, prompter, clock, log, folder); }},
            {"frmOptions", [&] { return new frmOptions(settings, office.store(), *db, prompter); }},
            {"frmLogin", [&] { return new frmLogin(access, prompter); }},
            {"frmPasswords", [&] { return new frmPasswords(access, prompter); }},
            {"frmPrepare",
             [&] {
                 return new frmPrepare(*db, settings, office.store(), prompter, clock, log, {},
                                       folder);
             }},
            {"frmReceive",
             [&] {
                 return new frmReceive(*db, settings, office.store(), prompter, clock, log, {},
                                       folder);
             }},
            {"frmCodes", [&] { return new frmCodes(*db, log, prompter, {}); }},
            {"frmDiagCodes", [&] { return new frmDiagCodes(*db, log, prompter, {}); }},
            {"frmExplCodes", [&] { return new frmExplCodes(*db, log, prompter, {}); }},
            {"frmOHIPCodes", [&] { return new frmOHIPCodes(*db, log, prompter, {}, folder); }},
            {"frmManageCodes",
             [&] {
                 return new frmManageCodes({"Service Codes", "Diagnostic Codes"});
             }},
            {"frmViewBatchEdit",
             [&] { return new frmViewBatchEdit({}, "b.txt", clock.today(), {}); }},
            {"frmViewError", [&] { return new frmViewError({}, "e.txt", clock.today(), {}, {}); }},
        };
        return std::unique_ptr<QWidget>(screens.at(name)());
    }
};

const QStringList kEveryScreen = {
    "frmBMain",      "frmPatients",    "frmClaim",         "frmDoctors",   "frmDoctorsOther",
    "frmThirdParty", "frmEDTSetup",    "frmOptions",       "frmLogin",     "frmPasswords",
    "frmPrepare",    "frmReceive",     "frmCodes",         "frmDiagCodes", "frmExplCodes",
    "frmOHIPCodes",  "frmManageCodes", "frmViewBatchEdit", "frmViewError"};

void everyScreen() {
    QTest::addColumn<QString>("screen");
    for (const QString& name : kEveryScreen) {
        QTest::newRow(qPrintable(name)) << name;
    }
}

// The access letter of a caption ("Pa&yers..." gives Y); none without one.
QChar accessLetter(const QString& text) {
    for (qsizetype i = text.indexOf(QLatin1Char('&')); i >= 0 && i + 1 < text.size();
         i = text.indexOf(QLatin1Char('&'), i + 2)) {
        if (text.at(i + 1) != QLatin1Char('&')) {
            return text.at(i + 1).toUpper();
        }
    }
    return {};
}

// Each access letter with the captions that use it, among the widgets the keys can reach now.
QMap<QChar, QStringList> lettersInSight(QWidget* window) {
    QMap<QChar, QStringList> letters;
    const auto add = [&](const QString& text) {
        if (const QChar letter = accessLetter(text); !letter.isNull()) {
            letters[letter] << text;
        }
    };
    for (QWidget* w : window->findChildren<QWidget*>()) {
        if (w->window() != window || !w->isVisibleTo(window)) {
            continue;
        }
        if (auto* label = qobject_cast<QLabel*>(w); label && label->buddy()) {
            add(label->text());
        } else if (auto* button = qobject_cast<QAbstractButton*>(w)) {
            add(button->text());
        } else if (auto* box = qobject_cast<QGroupBox*>(w); box && box->isCheckable()) {
            add(box->title());
        } else if (auto* tabs = qobject_cast<QTabWidget*>(w)) {
            for (int i = 0; i < tabs->count(); ++i) {
                add(tabs->tabText(i));
            }
        }
    }
    return letters;
}

// Runs check with each page of every tab widget of the window shown in turn.
void onEveryPage(QWidget* window, const std::function<void()>& check) {
    check();
    for (QTabWidget* tabs : window->findChildren<QTabWidget*>()) {
        for (int i = 0; i < tabs->count(); ++i) {
            tabs->setCurrentIndex(i);
            check();
        }
    }
}

// Closes the message box that opens next, once it is up, and notes the window it belongs to
// and the state of the window behind it.
struct BoxWatcher {
    QPointer<QWidget> owner;
    QWindow* transientParent = nullptr;  // the window the window manager goes back to
    bool seen = false;
    void arm() {
        QTimer::singleShot(0, [this] { poll(); });
    }
    void poll() {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            seen = true;
            owner = box->parentWidget();
            transientParent = box->windowHandle()->transientParent();
            box->accept();
        } else {
            QTimer::singleShot(10, [this] { poll(); });
        }
    }
};

}  // namespace

class TestScreenWindows : public QObject {
    Q_OBJECT

private slots:
    // Alt and a letter reach one field or button only, on every window.
    void accessLettersAreUnique_data() { everyScreen(); }
    void accessLettersAreUnique() {
        QFETCH(QString, screen);
        Office office;
        const std::unique_ptr<QWidget> window = office.make(screen);
        window->show();
        onEveryPage(window.get(), [&] {
            const QMap<QChar, QStringList> letters = lettersInSight(window.get());
            for (auto it = letters.cbegin(); it != letters.cend(); ++it) {
                QVERIFY2(it.value().size() == 1, qPrintable(it.value().join(" / ")));
            }
        });
    }

    // Escape on an open drop-down list closes the list; the window stays.
    void escapeOnOpenListClosesTheListOnly_data() { everyScreen(); }
    void escapeOnOpenListClosesTheListOnly() {
        QFETCH(QString, screen);
        Office office;
        const std::unique_ptr<QWidget> window = office.make(screen);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        onEveryPage(window.get(), [&] {
            for (QComboBox* box : window->findChildren<QComboBox*>()) {
                if (!box->isVisibleTo(window.get()) || !box->isEnabled() || box->count() == 0) {
                    continue;
                }
                box->setFocus();
                box->showPopup();
                QWidget* list = QApplication::activePopupWidget();
                QVERIFY2(list != nullptr, qPrintable(box->objectName()));
                QTest::keyClick(window->windowHandle(), Qt::Key_Escape);
                QTRY_VERIFY(QApplication::activePopupWidget() == nullptr);
                QVERIFY(window->isVisible());
            }
        });
    }

    // On a 1024x600 screen (less a title bar and a panel) the record windows show every
    // button whole, inside the window.
    void recordWindowsFitSmallScreen_data() {
        QTest::addColumn<QString>("screen");
        for (const char* name : {"frmPatients", "frmClaim", "frmDoctors"}) {
            QTest::newRow(name) << QString::fromLatin1(name);
        }
    }
    void recordWindowsFitSmallScreen() {
        QFETCH(QString, screen);
        const QSize small(1024, 600 - 40);
        Office office;
        const std::unique_ptr<QWidget> window = office.make(screen);
        window->resize(small);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        window->grab().save(QDir::tempPath() + "/" + screen + "-1024x600.png");
        QVERIFY2(window->minimumSizeHint().height() <= small.height(),
                 qPrintable(QString::number(window->minimumSizeHint().height())));
        QVERIFY(window->minimumSizeHint().width() <= small.width());
        QCOMPARE(window->size(), small);
        const QRect inside = window->rect();
        for (QAbstractButton* button : window->findChildren<QAbstractButton*>()) {
            if (!button->isVisibleTo(window.get()) || button->window() != window.get()) {
                continue;
            }
            const QRect place(button->mapTo(window.get(), QPoint(0, 0)), button->size());
            QVERIFY2(inside.contains(place), qPrintable(button->text()));
            QVERIFY2(button->width() >= button->minimumSizeHint().width(),
                     qPrintable(button->text()));
            QVERIFY2(button->height() >= button->minimumSizeHint().height(),
                     qPrintable(button->text()));
        }
        // Fields may scroll up and down, never sideways.
        for (QScrollArea* scroll : window->findChildren<QScrollArea*>()) {
            if (scroll->widget() != nullptr && scroll->isVisibleTo(window.get())) {
                QVERIFY2(scroll->widget()->width() <= scroll->viewport()->width(),
                         qPrintable(screen));
            }
        }
    }

    // The place is kept as "left,top,width,height" and a window never opens off the screen
    // or larger than it.
    void placeIsClampedToTheScreen_data() {
        QTest::addColumn<QRect>("kept");
        QTest::addColumn<QRect>("opened");
        const QRect screen(0, 0, 1024, 600);
        QTest::newRow("inside") << QRect(10, 20, 800, 500) << QRect(10, 20, 800, 500);
        QTest::newRow("too large") << QRect(0, 0, 1280, 900) << QRect(0, 0, 1024, 600);
        QTest::newRow("off the right") << QRect(900, 100, 400, 300) << QRect(624, 100, 400, 300);
        QTest::newRow("above and left") << QRect(-50, -20, 400, 300) << QRect(0, 0, 400, 300);
    }
    void placeIsClampedToTheScreen() {
        QFETCH(QRect, kept);
        QTEST(windowplace::clamped(kept, QRect(0, 0, 1024, 600)), "opened");
    }

    // A record window opens no larger than the screen the first time, and where it was left
    // after that.
    void placeIsRememberedAcrossOpenings() {
        test::TempOffice office;
        QRect left;
        {
            QWidget window;
            window.resize(5000, 5000);
            windowplace::remember(&window, office.store(), "frmDoctors");
            QCOMPARE(window.size(), QGuiApplication::primaryScreen()->availableSize());
            window.show();
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            window.setGeometry(40, 50, 600, 400);
            left = window.geometry();
            window.close();
        }
        QCOMPARE(office.store().get(windowplace::kSection, "frmDoctors"),
                 QStringLiteral("%1,%2,600,400").arg(left.x()).arg(left.y()));
        QWidget again;
        windowplace::remember(&again, office.store(), "frmDoctors");
        QCOMPARE(again.geometry(), left);
    }

    // A message box a screen shows belongs to the screen, not to the main menu, and the
    // keys are back in the screen when it closes.
    void messageBoxBelongsToTheScreen() {
        Office office;
        frmBMain menu(defaultMenu(), office.settings, office.registry, office.prompter);
        MessageBoxPrompter boxes(&menu);
        menu.show();
        frmPatients window(*office.db, office.settings, boxes, office.clock, office.log, &menu);
        window.show();
        QApplication::setActiveWindow(&window);
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QLineEdit* idField = nullptr;
        for (auto* label : window.findChildren<QLabel*>()) {
            if (label->text() == QLatin1String("Patient &ID:")) {
                idField = qobject_cast<QLineEdit*>(label->buddy());
            }
        }
        QVERIFY(idField);
        idField->setFocus();
        idField->setText(QStringLiteral("99"));
        BoxWatcher watcher;
        watcher.arm();
        QTest::keyClick(idField, Qt::Key_Return);  // "No such patient"
        QVERIFY(watcher.seen);
        QCOMPARE(watcher.owner.data(), &window);
        QCOMPARE(watcher.transientParent, window.windowHandle());
    }

    // A database refusal inside a screen's action becomes a message over that screen; the
    // program goes on.
    void refusalInAnActionIsTold() {
        Office office;
        QWidget screen;
        screen.setWindowTitle(QStringLiteral("Claims"));
        ScreenPrompter::attach(office.prompter, &screen);
        QPushButton button(&screen);
        QObject::connect(&button, &QPushButton::clicked, &screen, guarded(&screen, [&] {
            office.db->exec(QStringLiteral("Select * From NoSuchTable"), {},
                            QStringLiteral("reading the claims"));
        }));
        button.click();
        QCOMPARE(office.prompter.messages().size(), 1);
        QCOMPARE(office.prompter.last().title, QStringLiteral("Claims"));
        QCOMPARE(
            office.prompter.last().lines.first(),
            QStringLiteral("The database refused a statement; nothing of this action was saved."));
        QVERIFY(office.prompter.last().lines.last().startsWith("reading the claims: "));
    }
};

QTEST_MAIN(TestScreenWindows)
#include "test_screen_windows.moc"
