#include "OfficeFixture.h"

#include "foundation/AccessLevels.h"
#include "foundation/ActionRegistry.h"
#include "foundation/Money.h"
#include "screens/CodeScreens.h"
#include "screens/ThirdPartyScreens.h"
#include "screens/frmThirdParty.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalSpy>
#include <QTreeWidget>
#include <QtTest>

using namespace brimsett;

namespace {

struct Office : test::OfficeFixture {
    ActionRegistry registry;
    QWidget main;

    Office() {
        db->exec(
            "Insert Into thirdparty (ThirdPartyID, Name, Contact) Values (4, 'Zenith Life', "
            "'Ann Lee')");
        db->exec("Insert Into quickcitycodes Values ('OTT', 'Ottawa', '613')");
        registerThirdPartyScreen(registry, *db, prompter, log, &main);
    }
    frmThirdParty* screen() { return main.findChild<frmThirdParty*>(); }
};

// The field whose label begins with the text (access letters left out).
QLineEdit* field(QWidget* screen, const QString& label) {
    for (QLabel* l : screen->findChildren<QLabel*>()) {
        if (l->text().remove('&').startsWith(label)) {
            return qobject_cast<QLineEdit*>(l->buddy());
        }
    }
    return nullptr;
}

void type(QWidget* screen, const QString& label, const QString& text) {
    QLineEdit* line = field(screen, label);
    QVERIFY2(line, qPrintable(label));
    line->setFocus();
    QTest::keyClicks(line, text);
    QTest::keyClick(line, Qt::Key_Return);  // moves on, as the office types
}

}  // namespace

class TestFrmThirdParty : public QObject {
    Q_OBJECT

private slots:
    void typeAndSaveAPayer() {
        Office office;
        QVERIFY(office.registry.runAction(kActionThirdParty));
        frmThirdParty* screen = office.screen();
        QVERIFY(screen);
        QCOMPARE(screen->windowTitle(), QStringLiteral("Third Party"));
        QVERIFY(QTest::qWaitForWindowActive(screen));
        QSignalSpy changed(screen, &frmThirdParty::payersChanged);

        type(screen, "Company Name *", "Acme Insurance");
        type(screen, "Address *", "12 Bank St");
        type(screen, "City *", "ott");
        QCOMPARE(field(screen, "City")->text(), QStringLiteral("Ottawa"));
        type(screen, "Province *", "on");
        type(screen, "Postal Code *", "k1p5n2");
        type(screen, "Phone", "555-0100");
        QCOMPARE(field(screen, "Phone")->text(), QStringLiteral("(613) 555-0100"));
        QCOMPARE(field(screen, "Postal Code")->text(), QStringLiteral("K1P 5N2"));
        type(screen, "Country", "USA");
        QVERIFY(field(screen, "Postal Code:"));  // no longer marked mandatory abroad
        field(screen, "Country")->clear();
        screen->grab().save(QStringLiteral("/tmp/frmThirdParty.png"));

        QTest::keyClick(screen, Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(office.prompter.messages().size(), 0);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(screen->shownId(), 5);
        QCOMPARE(test::rowsOf(office.db->exec("Select * From thirdparty Where ThirdPartyID=5")),
                 QStringList{"5|Acme Insurance|<null>|12 Bank St|Ottawa|ON|K1P 5N2|<null>|"
                             "(613) 555-0100|<null>"});
        auto* list = screen->findChild<QTreeWidget*>();
        QCOMPARE(list->topLevelItemCount(), 2);
        QCOMPARE(list->currentItem()->text(1), QStringLiteral("Acme Insurance"));

        // An unsaved change is asked about on Esc; No drops it and closes.
        type(screen, "Contact Person", "Bob");
        office.prompter.script({Answer::No});
        QTest::keyClick(screen, Qt::Key_Escape);
        QCOMPARE(office.prompter.last().text(), QStringLiteral("Save changes?"));
        QTRY_VERIFY(!office.screen());
        QCOMPARE(changed.size(), 1);
    }

    void onTheManageCodesList() {
        Office office;
        AccessLevels access(office.office.store());
        registerCodeScreens(office.registry, *office.db, office.settings, office.log,
                            office.prompter, MoneyFormat{}, access, &office.main);
        office.registry.runAction(12);
        auto* list = office.main.findChild<QListWidget*>();
        QVERIFY(list);
        QCOMPARE(list->item(list->count() - 1)->text(), QStringLiteral("Appointment Setup"));
        list->setCurrentRow(list->count() - 2);
        QCOMPARE(list->currentItem()->text(), QStringLiteral("Third Party Payers"));
        QTest::keyClick(list, Qt::Key_Return);
        QVERIFY(office.screen() && office.screen()->isVisible());
    }
};

QTEST_MAIN(TestFrmThirdParty)
#include "test_frmthirdparty.moc"
