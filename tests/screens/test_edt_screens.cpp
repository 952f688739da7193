#include "OfficeFixture.h"

#include "ministry/EdtPasswordSeal.h"
#include "screens/EdtSetupScreens.h"
#include "screens/RepaintingWait.h"
#include "screens/frmEDTSetup.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <QTreeWidget>
#include <QtTest>

using namespace brimsett;

namespace {

struct Office : test::OfficeFixture {
    Office() {
        db->exec(
            "Insert Into doctors (DoctorID, FName, LName) Values ('JS', 'John', 'Smith'),"
            " ('MB', 'Mary', 'Brown')");
        db->exec(
            "Insert Into edtparams Values ('MB1', 'mbrown'), ('MB2', 'plainpw'),"
            " ('-MB', '2025/03/04'), ('T', '90'), ('Z', 'kept')");
    }
    QStringList rows() {
        return test::rowsOf(
            db->exec("Select ParamName, ParamValue From edtparams"
                     " Where ParamName Not In ('MB2', 'JS2') Order By 1"));
    }
    std::unique_ptr<frmEDTSetup> open() {
        return std::make_unique<frmEDTSetup>(*db, settings, prompter, clock, log, office.folder());
    }
};

// The field whose label begins with the text (access letters left out).
QWidget* field(QWidget* screen, const QString& label) {
    for (QLabel* l : screen->findChildren<QLabel*>()) {
        if (l->text().remove('&').startsWith(label)) {
            return l->buddy();
        }
    }
    return nullptr;
}
QLineEdit* line(QWidget* screen, const QString& label) {
    return qobject_cast<QLineEdit*>(field(screen, label));
}
QString passwordChanged(QWidget* screen) {
    return screen->findChild<QLabel*>("passwordChanged")->text();
}

void type(QWidget* screen, const QString& label, const QString& text) {
    QLineEdit* edit = line(screen, label);
    QVERIFY2(edit, qPrintable(label));
    edit->selectAll();
    edit->setFocus();
    QTest::keyClicks(edit, text);
}

}  // namespace

class TestEdtScreens : public QObject {
    Q_OBJECT

private slots:
    void setUpALogin() {
        Office o;
        auto screen = o.open();
        screen->show();
        QVERIFY(QTest::qWaitForWindowActive(screen.get()));
        QCOMPARE(screen->windowTitle(), QStringLiteral("EDT Setup"));
        QCOMPARE(screen->shownDoctor(), QStringLiteral("JS"));
        QCOMPARE(line(screen.get(), "Time-out")->text(), QStringLiteral("90"));
        QCOMPARE(line(screen.get(), "Password")->echoMode(), QLineEdit::Password);

        type(screen.get(), "User ID", "jsmith");
        type(screen.get(), "Password", "Secret9");
        type(screen.get(), "Telephone", "5550100");
        screen->grab().save(QStringLiteral("/tmp/frmEDTSetup.png"));
        QTest::keyClick(screen.get(), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(o.prompter.messages().size(), 0);
        QCOMPARE(o.rows(),
                 (QStringList{"-JS|2026/11/22", "-MB|2025/03/04", "JS1|jsmith", "JS3|1",
                              "MB1|mbrown", "N|5550100", "S|57600,n,8,1", "T|90", "Z|kept"}));
        QCOMPARE(passwordChanged(screen.get()), QStringLiteral("2026/11/22"));
        QCOMPARE(screen->findChild<QTreeWidget*>()->topLevelItem(0)->text(2),
                 QStringLiteral("jsmith"));

        // Another provider: the older plain-text password is shown (masked) as it is.
        QVERIFY(screen->showDoctor("mb"));
        QCOMPARE(line(screen.get(), "Password")->text(), QStringLiteral("plainpw"));
        QCOMPARE(passwordChanged(screen.get()), QStringLiteral("2025/03/04"));
    }

    // An older office's " - COM 2" shows as the device it means; any device may be typed.
    void modemPortIsAnEditableList() {
        Office o;
        o.db->exec("Insert Into edtparams Values ('P', ' - COM 2')");
        auto screen = o.open();
        screen->show();
        QVERIFY(QTest::qWaitForWindowActive(screen.get()));
        auto* port = qobject_cast<QComboBox*>(field(screen.get(), "Modem Port"));
        QVERIFY(port && port->isEditable());
        QCOMPARE(port->currentText(), QStringLiteral("/dev/ttyS1"));
        QVERIFY(port->findText("/dev/ttyS1") >= 0);
        QVERIFY(!screen->findChild<QLabel*>("portNote")->text().isEmpty());

        port->setFocus();
        port->lineEdit()->selectAll();
        QTest::keyClicks(port, "/dev/ttyUSB3");
        QTest::keyClick(port, Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), field(screen.get(), "Line Speed"));
        QCOMPARE(port->findText("/dev/ttyUSB3"), -1);  // typing adds no list entry
        QTest::keyClick(screen.get(), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(o.prompter.messages().size(), 0);
        QVERIFY(o.rows().contains("P|/dev/ttyUSB3"));
    }

    // The network's and host's settings show their defaults until typed; the network password
    // is kept sealed and an untouched one is not sealed anew.
    void hostSettings() {
        Office o;
        auto screen = o.open();
        screen->show();
        QVERIFY(QTest::qWaitForWindowActive(screen.get()));
        QCOMPARE(line(screen.get(), "GONet UserID Prompt:")->placeholderText(),
                 QStringLiteral("USERID"));
        QCOMPARE(line(screen.get(), "DataPac NUI Password:")->echoMode(), QLineEdit::Password);
        type(screen.get(), "DataPac NUI:", "NUI123");
        type(screen.get(), "DataPac NUI Password:", "NuiSecret");
        type(screen.get(), "GONet Main Menu:", "MENU:");
        QTest::keyClick(screen.get(), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(o.prompter.messages().size(), 0);
        const QStringList rows = o.rows();
        QVERIFY(rows.contains("U|NUI123") && rows.contains("M|MENU:"));
        const QString sealed =
            o.db->scalar("Select ParamValue From edtparams Where ParamName='W'").toString();
        QVERIFY2(EdtPasswordSeal::isSealed(sealed), qPrintable(sealed));

        screen = o.open();
        screen->show();
        QVERIFY(QTest::qWaitForWindowActive(screen.get()));
        QCOMPARE(line(screen.get(), "DataPac NUI Password:")->text(), QStringLiteral("NuiSecret"));
        type(screen.get(), "Telephone", "5550199");
        QTest::keyClick(screen.get(), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(o.prompter.messages().size(), 0);
        QVERIFY(o.rows().contains("N|5550199"));
        QCOMPARE(o.db->scalar("Select ParamValue From edtparams Where ParamName='W'").toString(),
                 sealed);
    }

    void waitingKeepsTheScreenAlive() {
        QStringList statuses;
        RepaintingWait wait([&statuses](const QString& text) { statuses << text; });
        bool ran = false;
        QTimer::singleShot(0, [&ran] { ran = true; });
        wait.status("Please Wait (3)");
        wait.pause(30);
        QVERIFY(ran);
        QCOMPARE(statuses, QStringList{"Please Wait (3)"});
    }
};

QTEST_MAIN(TestEdtScreens)
#include "test_edt_screens.moc"
