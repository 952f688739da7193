#include "TestSupport.h"

#include "appointments/AppointmentTime.h"
#include "screens/AppBookGrid.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QtTest>

using namespace brimsett;
using namespace brimsett::appointments;

namespace {

const QDate kToday(2026, 11, 25);
constexpr int kRegular = 0x8fd18f;   // light green: dark text
constexpr int kPhysical = 0x1f3f8f;  // navy: white text
constexpr int kLunch = 0xc0c0c0;

DayLine slot(int time, int length, const QString& name, int colour) {
    DayLine line;
    line.time = time;
    line.length = length;
    line.slotName = name;
    line.color = colour;
    return line;
}

DayLine booking(qint64 appId, int time, int length, const QString& who, int colour,
                int status = 1) {
    DayLine line = slot(time, length, QStringLiteral("Regular"), colour);
    Appointment app;
    app.appId = appId;
    app.appTime = time;
    app.appLength = length;
    app.patientName = who;
    app.patientPhone = QStringLiteral("416-555-01%1").arg(appId, 2, 10, QLatin1Char('0'));
    app.status = status;
    app.notes = QStringLiteral("follow-up on blood work, bring the lab requisition");
    app.slotColor = colour;
    line.appointment = app;
    return line;
}

// Three providers on the pinned day, in the book's order (time, longer first): a double
// booking at 9:00 (2 beside 1), a cancelled booking at 10:00, an hour-long one at 11:00.
QList<BookColumn> threeProviders() {
    BookColumn adams{QStringLiteral("Dr. Adams"), QStringLiteral("1"), kToday, {}};
    adams.lines = {slot(8 * 60, 15, "Regular", kRegular),
                   slot(8 * 60 + 15, 15, "Regular", kRegular),
                   booking(2, 9 * 60, 30, "Baker, Anne", kRegular),
                   booking(1, 9 * 60, 15, "Cole, Ben", 0xf2c14e),
                   booking(3, 10 * 60, 15, "Dunn, Carl", kRegular, kStatusCancelled),
                   slot(10 * 60, 15, "Regular", kRegular),
                   booking(4, 11 * 60, 60, "Evans, Dora", kPhysical)};
    BookColumn baker{QStringLiteral("Dr. Baker"), QStringLiteral("2"), kToday, {}};
    baker.lines = {booking(5, 9 * 60 + 30, 30, "Fox, Eli", kPhysical),
                   slot(12 * 60, 60, "Lunch", kLunch)};
    BookColumn chen{QStringLiteral("Dr. Chen"), QStringLiteral("3"), kToday.addDays(1), {}};
    chen.lines = {booking(6, 14 * 60, 15, "Gray, Fay", 0xe07070)};
    return {adams, baker, chen};
}

// Keys a parent hears when the grid lets them go.
class Screen : public QWidget {
public:
    QList<QKeyCombination> heard;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const QList<int> modifiers{Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_Meta};
        if (!modifiers.contains(event->key())) {
            heard.append(event->keyCombination());
        }
    }
};

void sendMouse(QWidget* viewport, QEvent::Type type, QPoint pos, Qt::MouseButton button,
               Qt::MouseButtons buttons) {
    QMouseEvent event(type, pos, viewport->mapToGlobal(pos), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(viewport, &event);
}

QColor mostCommonColour(const QImage& image, const QRect& rect) {
    QHash<QRgb, int> counts;
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x) {
            ++counts[image.pixel(x, y)];
        }
    }
    QRgb best = 0;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it) {
        if (it.value() > counts.value(best)) {
            best = it.key();
        }
    }
    return QColor::fromRgb(best);
}

}  // namespace

class TestAppBookGrid : public QObject {
    Q_OBJECT

    Screen* m_screen = nullptr;
    AppBookGrid* m_grid = nullptr;
    QLineEdit* m_next = nullptr;

private slots:
    void init() {
        m_screen = new Screen;
        auto* layout = new QVBoxLayout(m_screen);
        m_grid = new AppBookGrid;
        m_next = new QLineEdit;
        layout->addWidget(m_grid);
        layout->addWidget(m_next);
        m_grid->setRange(8 * 60, 17 * 60, 15);
        m_grid->setColumns(threeProviders());
        m_grid->setNow(QDateTime(kToday, QTime(10, 20)));
        m_screen->resize(1024, 600);
        m_screen->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_screen));
        m_grid->setFocus();
    }
    void cleanup() { delete m_screen; }

    // Keys from a starting cell; the cell and appointment they end on (0: none).
    void keysMoveTheCurrentCell_data() {
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("minute");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<int>("endColumn");
        QTest::addColumn<int>("endMinute");
        QTest::addColumn<int>("appId");
        test::row("down to a double booking: first lane", 0, 510, "Down Down", 0, 540, 2);
        test::row("Tab to the one beside it", 0, 540, "Tab", 0, 540, 1);
        test::row("Tab goes round", 0, 540, "Tab Tab", 0, 540, 2);
        test::row("Shift+Tab backwards", 0, 540, "Backtab", 0, 540, 1);
        test::row("a row the picked one leaves", 0, 540, "Tab Down", 0, 555, 2);
        test::row("inside a long booking", 0, 660, "Down Down Down", 0, 705, 4);
        test::row("a cancelled booking is still picked", 0, 585, "Down", 0, 600, 3);
        test::row("right keeps the row", 0, 570, "Right", 1, 570, 5);
        test::row("right onto nothing", 0, 660, "Right Right", 2, 660, 0);
        test::row("no column left of the first", 0, 540, "Left", 0, 540, 2);
        test::row("no column right of the last", 2, 840, "Right", 2, 840, 6);
        test::row("no row above the first", 0, 480, "Up", 0, 480, 0);
        test::row("End and Home", 1, 600, "End", 1, 17 * 60, 0);
        test::row("Home", 1, 600, "Home", 1, 480, 0);
        test::row("a page down and back", 0, 540, "PageDown PageUp", 0, 540, 2);
        test::row("a page down moves several rows", 0, 480, "PageDown", 0, 0, -1);
    }
    void keysMoveTheCurrentCell() {
        QFETCH(int, column);
        QFETCH(int, minute);
        QFETCH(QString, keys);
        m_grid->setCurrent(column, minute);
        const qint64 startApp =
            m_grid->currentAppointment() ? m_grid->currentAppointment()->appId : 0;
        QSignalSpy changed(m_grid, &AppBookGrid::currentChanged);
        const QHash<QString, Qt::Key> names{
            {"Up", Qt::Key_Up},          {"Down", Qt::Key_Down},         {"Left", Qt::Key_Left},
            {"Right", Qt::Key_Right},    {"Home", Qt::Key_Home},         {"End", Qt::Key_End},
            {"PageUp", Qt::Key_PageUp},  {"PageDown", Qt::Key_PageDown}, {"Tab", Qt::Key_Tab},
            {"Backtab", Qt::Key_Backtab}};
        for (const QString& key : keys.split(QLatin1Char(' '))) {
            QTest::keyClick(m_grid, names.value(key),
                            key == "Backtab" ? Qt::ShiftModifier : Qt::NoModifier);
        }
        QVERIFY(m_grid->hasFocus());
        QVERIFY(m_screen->heard.isEmpty());
        QTEST(m_grid->currentColumn(), "endColumn");
        QFETCH(int, endMinute);
        QFETCH(int, appId);
        if (appId < 0) {  // a page: well past the start, inside the day
            QVERIFY(m_grid->currentMinute() >= minute + 4 * 15);
            QVERIFY(m_grid->currentMinute() < 17 * 60);
            return;
        }
        QCOMPARE(m_grid->currentMinute(), endMinute);
        QCOMPARE(m_grid->currentAppointment() ? m_grid->currentAppointment()->appId : 0,
                 qint64(appId));
        if (!keys.contains(QLatin1Char(' '))) {
            QCOMPARE(changed.isEmpty(),
                     endMinute == minute && column == m_grid->currentColumn() && appId == startApp);
        }
    }

    void otherKeysReachTheScreen_data() {
        QTest::addColumn<QKeyCombination>("key");
        QTest::newRow("+") << QKeyCombination(Qt::Key_Plus);
        QTest::newRow("-") << QKeyCombination(Qt::Key_Minus);
        QTest::newRow("a status letter") << QKeyCombination(Qt::Key_C);
        QTest::newRow("Insert") << QKeyCombination(Qt::Key_Insert);
        QTest::newRow("Delete") << QKeyCombination(Qt::Key_Delete);
        QTest::newRow("F5") << QKeyCombination(Qt::Key_F5);
        QTest::newRow("Escape") << QKeyCombination(Qt::Key_Escape);
        QTest::newRow("Ctrl+X") << QKeyCombination(Qt::ControlModifier, Qt::Key_X);
        QTest::newRow("Ctrl+V") << QKeyCombination(Qt::ControlModifier, Qt::Key_V);
        QTest::newRow("Ctrl+Down") << QKeyCombination(Qt::ControlModifier, Qt::Key_Down);
    }
    void otherKeysReachTheScreen() {
        QFETCH(QKeyCombination, key);
        m_grid->setCurrent(1, 570);
        QSignalSpy changed(m_grid, &AppBookGrid::currentChanged);
        QTest::keyClick(m_grid, key.key(), key.keyboardModifiers());
        QCOMPARE(m_screen->heard, QList<QKeyCombination>{key});
        QVERIFY(changed.isEmpty());
    }

    void enterAndDoubleClickActivate() {
        QSignalSpy activated(m_grid, &AppBookGrid::activated);
        m_grid->setCurrent(0, 540);
        QTest::keyClick(m_grid, Qt::Key_Return);
        QTest::keyClick(m_grid, Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(activated.size(), 2);
        QVERIFY(m_screen->heard.isEmpty());
        const QRect cell = m_grid->visualCellRect(1, 570);
        QTest::mouseDClick(m_grid->viewport(), Qt::LeftButton, {}, cell.center());
        QCOMPARE(activated.size(), 3);
        QCOMPARE(m_grid->currentAppointment()->appId, 5);
    }

    void tabLeavesACellWithoutADoubleBooking() {
        m_grid->setCurrent(1, 570);
        QTest::keyClick(m_grid, Qt::Key_Tab);
        QVERIFY(m_next->hasFocus());
    }

    void aClickPicksTheBlockUnderIt() {
        // The double booking's second lane is the right half of the cell.
        const QRect cell = m_grid->visualCellRect(0, 540);
        QTest::mouseClick(m_grid->viewport(), Qt::LeftButton, {},
                          QPoint(cell.right() - 10, cell.center().y()));
        QCOMPARE(m_grid->currentAppointment()->appId, 1);
        QTest::mouseClick(m_grid->viewport(), Qt::LeftButton, {},
                          QPoint(cell.left() + 10, cell.center().y()));
        QCOMPARE(m_grid->currentAppointment()->appId, 2);
    }

    // From the press on a block to the release: no move unless it reached another cell.
    void draggingABlockAsksToMoveIt_data() {
        QTest::addColumn<int>("toColumn");
        QTest::addColumn<int>("toMinute");
        QTest::addColumn<bool>("asked");
        test::row("another provider, later", 2, 615, true);
        test::row("same provider, earlier", 1, 480, true);
        test::row("dropped where it was", 1, 570, false);
    }
    void draggingABlockAsksToMoveIt() {
        QFETCH(int, toColumn);
        QFETCH(int, toMinute);
        QFETCH(bool, asked);
        QSignalSpy moved(m_grid, &AppBookGrid::moveRequested);
        QWidget* viewport = m_grid->viewport();
        const QPoint from = m_grid->visualCellRect(1, 570).center();
        const QPoint to = m_grid->visualCellRect(toColumn, toMinute).center();
        sendMouse(viewport, QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
        sendMouse(viewport, QEvent::MouseMove, (from + to) / 2 + QPoint(0, 20), Qt::NoButton,
                  Qt::LeftButton);
        sendMouse(viewport, QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
        sendMouse(viewport, QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
        QCOMPARE(moved.size(), asked ? 1 : 0);
        if (asked) {
            QCOMPARE(moved.first(), QVariantList({qint64(5), toColumn, toMinute}));
        }
    }

    void aClickWithoutMovingAsksNothing() {
        QSignalSpy moved(m_grid, &AppBookGrid::moveRequested);
        QTest::mouseClick(m_grid->viewport(), Qt::LeftButton, {},
                          m_grid->visualCellRect(1, 570).center());
        QVERIFY(moved.isEmpty());
        QCOMPARE(m_grid->currentColumn(), 1);
    }

    void newColumnsKeepTheCurrentProvider() {
        QVERIFY(m_grid->selectAppointment(5));
        QList<BookColumn> columns = threeProviders();
        columns.swapItemsAt(0, 1);
        m_grid->setColumns(columns);
        QCOMPARE(m_grid->currentColumn(), 0);
        QCOMPARE(m_grid->currentAppointment()->appId, 5);
        QVERIFY(!m_grid->selectAppointment(99));
    }

    // Columns wider than the screen and rows longer than it scroll to the current cell, also
    // when a scroll bar that appears afterwards narrows the view.
    void theCurrentCellStaysInView_data() {
        QTest::addColumn<int>("column");
        QTest::addColumn<Qt::Key>("key");
        QTest::newRow("last column, End") << 7 << Qt::Key_End;
        QTest::newRow("first column, Home") << 0 << Qt::Key_Home;
        QTest::newRow("a page down") << 4 << Qt::Key_PageDown;
        QTest::newRow("one to the right") << 5 << Qt::Key_Right;
    }
    void theCurrentCellStaysInView() {
        QFETCH(int, column);
        QFETCH(Qt::Key, key);
        m_grid->setRange(8 * 60, 9 * 60, 60);  // everything fits: no scroll bars yet
        QApplication::processEvents();
        QList<BookColumn> columns;
        for (int i = 0; i < 3; ++i) {
            columns += threeProviders();
        }
        m_grid->setColumns(columns);
        m_grid->setRange(8 * 60, 17 * 60 + 59, 10);
        m_grid->setCurrent(column, 600);
        QTest::keyClick(m_grid, key);
        QApplication::processEvents();
        const QRect cell = m_grid->visualCellRect(m_grid->currentColumn(), m_grid->currentMinute());
        QVERIFY2(m_grid->viewport()->rect().contains(cell), qPrintable(QStringLiteral("%1,%2 %3x%4")
                                                                           .arg(cell.x())
                                                                           .arg(cell.y())
                                                                           .arg(cell.width())
                                                                           .arg(cell.height())));
    }

    // What a glance at the grid shows, read from its pixels at both screen sizes.
    void paintsSlotsBookingsAndNow_data() {
        QTest::addColumn<QSize>("size");
        QTest::newRow("1366x768") << QSize(1366, 768);
        QTest::newRow("1024x600") << QSize(1024, 600);
    }
    void paintsSlotsBookingsAndNow() {
        QFETCH(QSize, size);
        m_screen->resize(size);
        m_grid->setCurrent(0, 540);
        QApplication::processEvents();
        const QImage image = m_grid->viewport()->grab().toImage();
        QVERIFY(m_grid->grab().save(QStringLiteral("/tmp/appbookgrid-%1.png").arg(size.width())));
        const auto colourAt = [&](int column, int minute) {
            return mostCommonColour(image,
                                    m_grid->visualCellRect(column, minute).adjusted(4, 4, -4, -4));
        };
        // A booking in its slot type's colour; empty slots and a cancelled booking paler, in
        // their type's hue.
        const QColor regular = QColor::fromRgb(kRegular);
        QCOMPARE(colourAt(1, 585), QColor::fromRgb(kPhysical));
        for (const QColor& pale : {colourAt(0, 8 * 60 + 15), colourAt(0, 600)}) {
            QVERIFY2(pale.lightness() > regular.lightness() + 20, qPrintable(pale.name()));
            QVERIFY2(std::abs(pale.hue() - regular.hue()) < 10, qPrintable(pale.name()));
        }
        QVERIFY(colourAt(1, 12 * 60 + 30) != colourAt(0, 8 * 60 + 15));
        // 10:20 is a third of the way down the 10:15 row, on today's columns only.
        const QRect row = m_grid->visualCellRect(1, 615);
        const int y = row.top() + row.height() / 3;
        const auto redAcross = [&](const QRect& cell) {
            int red = 0;
            for (int x = cell.left() + 10; x < cell.right() - 10; ++x) {
                red += image.pixelColor(x, y) == QColor(Qt::red) ||
                       image.pixelColor(x, y + 1) == QColor(Qt::red);
            }
            return red > (cell.width() - 20) * 9 / 10;
        };
        QVERIFY(redAcross(m_grid->visualCellRect(1, 615)));
        QVERIFY(!redAcross(m_grid->visualCellRect(2, 615)));
    }
};

QTEST_MAIN(TestAppBookGrid)
#include "test_app_book_grid.moc"
