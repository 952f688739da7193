#include "OfficeFixture.h"

#include "foundation/AccessLevels.h"
#include "foundation/ActionRegistry.h"
#include "foundation/MenuModel.h"
#include "hcv/CardExchange.h"
#include "screens/CodeEditors.h"
#include "screens/FrmCheckHealth.h"
#include "screens/MessageBoxPrompter.h"
#include "screens/PatientScreens.h"
#include "screens/WindowPlace.h"
#include "screens/frmAppBook.h"
#include "screens/frmAppBookFind.h"
#include "screens/frmAppDetails.h"
#include "screens/frmAppDoctors.h"
#include "screens/frmAppSetup.h"
#include "screens/frmAppTimeSlots.h"
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
#include "screens/frmPastClaims.h"
#include "screens/frmPastClaimsReject.h"
#include "screens/frmPatients.h"
#include "screens/frmPrepare.h"
#include "screens/frmReceive.h"
#include "screens/frmSwipe.h"
#include "screens/frmThirdParty.h"
#include "screens/frmViewBatchEdit.h"
#include "screens/frmViewError.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QScrollArea>
#include <QTabWidget>
#include <QTreeWidget>
#include <QtTest>

#include <functional>

using namespace brimsett;

// What every window of the program shares: its access letters, Escape on a drop-down list,
// its size on a small screen, where it is kept, and how it speaks.
namespace {

struct Office : test::OfficeFixture {
    ActionRegistry registry;
    AccessLevels access{office.store()};
    const QString folder = office.folder();
    PatientScreens patients{*db, settings, office.store(), prompter, clock, log, nullptr};
    hcv::CardExchange exchange{*db, office.store(), clock, prompter, log, folder};
    const std::map<QString, std::function<QWidget*()>> screens = {
        {"frmBMain", [&] { return new frmBMain(defaultMenu(), settings, registry, prompter); }},
        {"frmPatients", [&] { return new frmPatients(*db, settings, prompter, clock, log); }},
        {"frmClaim",
         [&] { return new frmClaim(*db, settings, {}, prompter, clock, log, {}, registry); }},
        {"frmDoctors", [&] { return new frmDoctors(*db, settings, log, prompter); }},
        {"frmAppDetails", [&] { return new frmAppDetails(*db, settings, prompter, log); }},
        {"frmDoctorsOther", [&] { return new frmDoctorsOther(*db, settings, log, prompter); }},
        {"frmThirdParty", [&] { return new frmThirdParty(*db, prompter, log); }},
        {"frmAppSetup", [&] { return new frmAppSetup(*db, prompter, log); }},
        {"frmAppTimeSlots", [&] { return new frmAppTimeSlots(*db, settings, prompter, log); }},
        {"frmAppDoctors", [&] { return new frmAppDoctors(*db, prompter, log); }},
        {"frmEDTSetup",
         [&] { return new frmEDTSetup(*db, settings, prompter, clock, log, folder); }},
        {"frmOptions", [&] { return new frmOptions(settings, office.store(), *db, prompter); }},
        {"frmLogin", [&] { return new frmLogin(access, prompter); }},
        {"frmPasswords", [&] { return new frmPasswords(access, prompter); }},
        {"frmPrepare",
         [&] {
             return new frmPrepare(*db, settings, office.store(), prompter, clock, log, {}, folder);
         }},
        {"frmReceive",
         [&] {
             return new frmReceive(*db, settings, office.store(), prompter, clock, log, {}, folder);
         }},
        {"frmSwipe",
         [&] {
             return new frmSwipe({*db, settings, office.store(), log, prompter, clock, exchange,
                                  patients, folder, nullptr});
         }},
        {"FrmCheckHealth",
         [&] {
             return new FrmCheckHealth(*db, settings, office.store(), prompter, clock, log, folder);
         }},
        {"frmCodes", [&] { return new frmCodes(*db, log, prompter, {}); }},
        {"frmDiagCodes", [&] { return new frmDiagCodes(*db, log, prompter, {}); }},
        {"frmExplCodes", [&] { return new frmExplCodes(*db, log, prompter, {}); }},
        {"frmOHIPCodes", [&] { return new frmOHIPCodes(*db, log, prompter, {}, folder); }},
        {"frmManageCodes",
         [&] {
             return new frmManageCodes({"Service Codes", "Diagnostic Codes"});
         }},
        {"frmViewBatchEdit", [&] { return new frmViewBatchEdit({}, "b.txt", clock.today(), {}); }},
        {"frmViewError", [&] { return new frmViewError({}, "e.txt", clock.today(), {}, {}); }},
        {"frmAppBook",
         [&] {
             return new frmAppBook(*db, settings, office.store(), prompter, clock, log, {}, {});
         }},
        {"frmAppBookFind",
         [&] { return new frmAppBookFind(*db, office.store(), prompter, clock, settings); }},
        {"frmPastClaims",
         [&] {
             // Every filter shown, so that all their letters are checked.
             for (const char* key : {"EnablePCStatus", "EnableRA", "EnablePastFac"}) {
                 office.store().save("Options", key, "1");
             }
             return new frmPastClaims(*db, settings, office.store(), prompter, clock, log, {});
         }},
        {"frmPastClaimsReject",
         [&] {
             return new frmPastClaimsReject({{"EH1", 2, Money::fromCents(7400), "Service date"}},
                                            {}, {});
         }},
    };
    Office() {
        db->exec(QStringLiteral(
            "Insert Into Doctors (DoctorID, LName, FName, ProviderNum, GroupNum, SpecCode)"
            " Values ('AB', 'Abbott', 'Alice', '111111', '0000', '00')"));
    }
    // The window shown, as the desk opens it.
    std::unique_ptr<QWidget> open(const QString& name) {
        std::unique_ptr<QWidget> window(screens.at(name)());
        window->show();
        return window;
    }
};

// Each access letter with the captions that use it, among the widgets the keys can reach now.
QMap<QKeySequence, QStringList> lettersInSight(QWidget* window) {
    QMap<QKeySequence, QStringList> letters;
    const auto add = [&](const QString& text) {
        if (const QKeySequence key = QKeySequence::mnemonic(text); !key.isEmpty()) {
            letters[key] << text;
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

}  // namespace

class TestScreenWindows : public QObject {
    Q_OBJECT

private slots:
    // On every page of every window, Alt and a letter reach one field or button only, and
    // Escape on an open drop-down list closes the list while the window stays.
    void keysOnEveryPage_data() {
        QTest::addColumn<QString>("screen");
        for (const auto& [name, make] : Office().screens) {
            QTest::newRow(qPrintable(name)) << name;
        }
    }
    void keysOnEveryPage() {
        QFETCH(QString, screen);
        Office office;
        const std::unique_ptr<QWidget> window = office.open(screen);
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        onEveryPage(window.get(), [&] {
            for (const QStringList& captions : lettersInSight(window.get())) {
                QVERIFY2(captions.size() == 1, qPrintable(captions.join(" / ")));
            }
            for (QComboBox* box : window->findChildren<QComboBox*>()) {
                if (!box->isVisibleTo(window.get()) || !box->isEnabled() || box->count() == 0) {
                    continue;
                }
                box->setFocus();
                box->showPopup();
                QVERIFY2(QApplication::activePopupWidget(), qPrintable(box->objectName()));
                QTest::keyClick(window->windowHandle(), Qt::Key_Escape);
                QTRY_VERIFY(QApplication::activePopupWidget() == nullptr);
                QVERIFY(window->isVisible());
            }
        });
    }

    // On a 1024x600 screen (less a title bar and a panel) the record windows show every
    // button whole, inside the window; fields scroll up and down, never sideways, and the
    // patients found show six at least.
    void recordWindowsFitSmallScreen_data() {
        QTest::addColumn<QString>("screen");
        for (const char* name : {"frmPatients", "frmClaim", "frmDoctors", "frmAppDetails",
                                 "frmAppBook", "frmPastClaims", "frmSwipe", "FrmCheckHealth"}) {
            QTest::newRow(name) << QString::fromLatin1(name);
        }
    }
    void recordWindowsFitSmallScreen() {
        QFETCH(QString, screen);
        const QSize small(1024, 600 - 40);
        Office office;
        office.db->exec(QStringLiteral(
            "Insert Into Patients (PatientID, LName, FName) With n(i) As (Select 1 Union All"
            " Select i + 1 From n Where i < 9) Select i, 'Smith', 'Ann' || i From n"));
        const std::unique_ptr<QWidget> window = office.open(screen);
        window->resize(small);
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        if (auto* patients = qobject_cast<frmPatients*>(window.get())) {
            window->findChild<QLineEdit*>("findText")->setText(QStringLiteral("smith"));
            patients->find();
            auto* found = window->findChild<QTreeWidget*>();
            QVERIFY(found->visualItemRect(found->topLevelItem(5)).bottom() <
                    found->viewport()->height());
        }
        window->grab().save(QDir::tempPath() + "/" + screen + "-1024x600.png");
        QCOMPARE(window->size(), small);  // a window is never smaller than its layout needs
        for (QAbstractButton* button : window->findChildren<QAbstractButton*>()) {
            if (button->isVisibleTo(window.get()) && button->window() == window.get()) {
                const QRect place(button->mapTo(window.get(), QPoint(0, 0)), button->size());
                QVERIFY2(window->rect().contains(place) &&
                             button->width() >= button->minimumSizeHint().width() &&
                             button->height() >= button->minimumSizeHint().height(),
                         qPrintable(button->text()));
            }
        }
        for (QScrollArea* scroll : window->findChildren<QScrollArea*>()) {
            if (scroll->widget() != nullptr && scroll->isVisibleTo(window.get())) {
                QVERIFY(scroll->widget()->width() <= scroll->viewport()->width());
            }
        }
    }

    // The place is kept as "left,top,width,height" and a window never opens off the screen
    // or larger than it.
    void placeIsClampedToTheScreen_data() {
        QTest::addColumn<QRect>("kept");
        QTest::addColumn<QRect>("opened");
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
        QWidget window;
        window.resize(5000, 5000);
        windowplace::remember(&window, office.store(), "frmDoctors");
        QCOMPARE(window.size(), QGuiApplication::primaryScreen()->availableSize());
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        window.setGeometry(40, 50, 600, 400);
        const QRect left = window.geometry();
        window.close();
        QCOMPARE(office.store().get(windowplace::kSection, "frmDoctors"),
                 QStringLiteral("%1,%2,600,400").arg(left.x()).arg(left.y()));
        QWidget again;
        windowplace::remember(&again, office.store(), "frmDoctors");
        QCOMPARE(again.geometry(), left);
    }

    // A message box a screen shows belongs to the screen, not to the main menu, so the keys
    // are back in the screen when it closes.
    void messageBoxBelongsToTheScreen() {
        Office office;
        frmBMain menu(defaultMenu(), office.settings, office.registry, office.prompter);
        MessageBoxPrompter boxes(&menu);
        menu.show();
        frmPatients window(*office.db, office.settings, boxes, office.clock, office.log, &menu);
        window.show();
        QApplication::setActiveWindow(&window);
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QPointer<QWidget> owner;
        QWindow* transientParent = nullptr;  // the window the window manager goes back to
        std::function<void()> closeBox = [&] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                owner = box->parentWidget();
                transientParent = box->windowHandle()->transientParent();
                box->accept();
            } else {
                QTimer::singleShot(10, closeBox);
            }
        };
        QTimer::singleShot(0, closeBox);
        window.findChild<QComboBox*>("findBy")->setCurrentText(QStringLiteral("Patient ID"));
        window.findChild<QLineEdit*>("findText")->setText(QStringLiteral("x"));
        window.find();  // "Invalid number."
        QCOMPARE(owner.data(), &window);
        QCOMPARE(transientParent, window.windowHandle());
    }
};

QTEST_MAIN(TestScreenWindows)
#include "test_screen_windows.moc"
