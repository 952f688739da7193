#include "TestSupport.h"

#include "foundation/ActionRegistry.h"
#include "foundation/Clock.h"
#include "foundation/CommandReceiver.h"
#include "foundation/Database.h"
#include "foundation/OfficePaths.h"
#include "foundation/ReceiverClient.h"

#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QSqlQuery>
#include <QtTest>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <stdexcept>
#include <thread>

using namespace brimsett;

namespace {

const QDateTime kMoment(QDate(2026, 11, 22), QTime(14, 30, 5));

struct Reply {
    std::optional<QString> answer;
    QString error;
};

// The client blocks, so it runs on its own thread while this one serves the receiver.
Reply ask(const OfficePaths& paths, const QString& line) {
    Reply reply;
    std::atomic_bool done{false};
    std::thread client([&] {
        reply.answer = sendCommand(paths, line, 3000, &reply.error);
        done = true;
    });
    // Joining waits for the client anyway; its own time-out ends it.
    (void)QTest::qWaitFor([&] { return done.load(); }, 5000);
    client.join();
    return reply;
}

// An office with a live database holding rows not yet checkpointed out of the WAL.
struct Office {
    test::TempOffice temp;
    std::unique_ptr<Database> db = temp.emptyDatabase();
    OfficePaths paths{temp.folder()};
    FixedClock clock{kMoment};
    ActionRegistry registry;
    CommandReceiver receiver{*db, paths, clock, registry};

    Office() {
        db->exec(QStringLiteral("CREATE TABLE patients (id INTEGER, name TEXT)"));
        for (const char* name : {"Ames", "Boyd", "Cole"}) {
            addPatient(QString::fromLatin1(name));
        }
    }
    void addPatient(const QString& name) {
        db->exec(QStringLiteral("INSERT INTO patients (id, name) VALUES (?, ?)"),
                 {db->scalar(QStringLiteral("SELECT count(*) FROM patients")).toInt() + 1, name});
    }
};

QStringList namesIn(const QString& file) {
    auto opened = Database::openSqlite(file);
    auto* db = std::get_if<std::unique_ptr<Database>>(&opened);
    if (!db) {
        return {QStringLiteral("<cannot open>")};
    }
    QStringList names;
    try {
        QSqlQuery q = (*db)->exec(QStringLiteral("SELECT name FROM patients ORDER BY id"));
        while (q.next()) {
            names << q.value(0).toString();
        }
    } catch (const DbError& e) {
        names << e.message();
    }
    return names;
}

// Byte 18 of an SQLite header is 1 for a rollback journal, 2 for WAL.
int fileFormatVersion(const QString& file) {
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.read(20).at(18) : -1;
}

// What a program that was killed leaves behind: a socket file nobody listens on.
bool leaveStaleSocket(const QString& path) {
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray name = QFile::encodeName(path);
    std::strncpy(address.sun_path, name.constData(), sizeof(address.sun_path) - 1);
    const bool bound = ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0;
    ::close(fd);
    return bound;
}

}  // namespace

class TestReceiver : public QObject {
    Q_OBJECT
private slots:
    void backupCopiesTheLiveDatabaseUnderDatedNames();
    void backupFailureIsAnswered();
    void commandWordsReachTheirHandlers_data();
    void commandWordsReachTheirHandlers();
    void secondReceiverRefusesAndStaleSocketIsTakenOver();
    void serverNameFollowsTheCanonicalFolder();
    void brokenClientsDoNotStopTheReceiver();
};

void TestReceiver::backupCopiesTheLiveDatabaseUnderDatedNames() {
    Office office;
    QString error;
    QVERIFY2(office.receiver.listen(&error), qPrintable(error));

    QCOMPARE(ask(office.paths, QStringLiteral("BACKUP")).answer, QStringLiteral("BACKUPDONE!"));
    const QString first = office.temp.file(QStringLiteral("medical-20261122-143005.mdb"));
    QCOMPARE(fileFormatVersion(first), 1);
    QCOMPARE(namesIn(first), QStringList({"Ames", "Boyd", "Cole"}));

    // Same second again: the first backup is kept and the next free second is used.
    office.addPatient(QStringLiteral("Dunn"));
    QCOMPARE(ask(office.paths, QStringLiteral("backup now")).answer, QStringLiteral("BACKUPDONE!"));
    QCOMPARE(namesIn(first), QStringList({"Ames", "Boyd", "Cole"}));
    const QString second = office.temp.file(QStringLiteral("medical-20261122-143006.mdb"));
    QCOMPARE(namesIn(second), QStringList({"Ames", "Boyd", "Cole", "Dunn"}));
}

void TestReceiver::backupFailureIsAnswered() {
    Office office;
    QString error;
    QVERIFY2(office.receiver.listen(&error), qPrintable(error));
    office.db->close();

    const Reply reply = ask(office.paths, QStringLiteral("BACKUP"));
    QVERIFY2(reply.answer && reply.answer->startsWith(QStringLiteral("BACKUPFAILED ")),
             qPrintable(reply.answer.value_or(reply.error)));
    QCOMPARE(QDir(office.temp.folder()).entryList({QStringLiteral("medical-*")}), QStringList());
}

void TestReceiver::commandWordsReachTheirHandlers_data() {
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("heard");

    QTest::newRow("word and argument") << "PATIENT 1234"
                                       << "OK"
                                       << "PATIENT:1234";
    QTest::newRow("lower-case word, two arguments") << "patient 1234 extra"
                                                    << "OK"
                                                    << "PATIENT:1234 extra";
    QTest::newRow("spaces around") << "  Doctor   77  "
                                   << "SHOWN 77"
                                   << "DOCTOR:77";
    QTest::newRow("handler throws") << "SWIPE ;123="
                                    << "SWIPEFAILED card unreadable"
                                    << "SWIPE:;123=";
    QTest::newRow("answer kept on one line") << "FINDAPPOINTMENT 5"
                                             << "two lines"
                                             << "FINDAPPOINTMENT:5";
    QTest::newRow("known word, no screen yet") << "VPAT 3"
                                               << "UNKNOWN VPAT"
                                               << "";
    QTest::newRow("unknown word") << "Nosuch 5"
                                  << "UNKNOWN Nosuch"
                                  << "";
    QTest::newRow("empty line") << ""
                                << "UNKNOWN"
                                << "";
}

void TestReceiver::commandWordsReachTheirHandlers() {
    QFETCH(QString, line);
    QFETCH(QString, answer);
    QFETCH(QString, heard);

    Office office;
    QString received;
    office.registry.setCommand(QStringLiteral("PATIENT"), [&](const QString& arguments) {
        received = QStringLiteral("PATIENT:") + arguments;
        return QStringLiteral("OK");
    });
    office.registry.setCommand(QStringLiteral("doctor"), [&](const QString& arguments) {
        received = QStringLiteral("DOCTOR:") + arguments;
        return QStringLiteral("SHOWN ") + arguments;
    });
    office.registry.setCommand(QStringLiteral("SWIPE"), [&](const QString& arguments) -> QString {
        received = QStringLiteral("SWIPE:") + arguments;
        throw std::runtime_error("card unreadable");
    });
    office.registry.setCommand(QStringLiteral("FINDAPPOINTMENT"), [&](const QString& arguments) {
        received = QStringLiteral("FINDAPPOINTMENT:") + arguments;
        return QStringLiteral("two\nlines");
    });
    QString error;
    QVERIFY2(office.receiver.listen(&error), qPrintable(error));

    const Reply reply = ask(office.paths, line);
    QCOMPARE(reply.answer, answer);
    QCOMPARE(received, heard);
}

void TestReceiver::secondReceiverRefusesAndStaleSocketIsTakenOver() {
    Office office;
    office.registry.setCommand(QStringLiteral("DOCTOR"),
                               [](const QString&) { return QStringLiteral("OK"); });
    QString error;
    auto first =
        std::make_unique<CommandReceiver>(*office.db, office.paths, office.clock, office.registry);
    QVERIFY2(first->listen(&error), qPrintable(error));
    const QString socketFile = first->fullServerName();

    CommandReceiver second(*office.db, OfficePaths(office.temp.folder() + QStringLiteral("./")),
                           office.clock, office.registry);
    QVERIFY(!second.listen(&error));
    QVERIFY2(error.contains(QStringLiteral("Another Brimsett")), qPrintable(error));
    QVERIFY(receiverRunning(office.paths));
    QCOMPARE(ask(office.paths, QStringLiteral("DOCTOR 1")).answer, QStringLiteral("OK"));

    first.reset();
    QVERIFY(!receiverRunning(office.paths));
    const Reply none = ask(office.paths, QStringLiteral("DOCTOR 1"));
    QVERIFY(!none.answer);
    QVERIFY2(none.error.contains(QStringLiteral("not running")), qPrintable(none.error));

    QVERIFY(leaveStaleSocket(socketFile));
    QVERIFY2(office.receiver.listen(&error), qPrintable(error));
    QCOMPARE(ask(office.paths, QStringLiteral("DOCTOR 2")).answer, QStringLiteral("OK"));
}

void TestReceiver::serverNameFollowsTheCanonicalFolder() {
    test::TempOffice one;
    test::TempOffice other;
    const QString folder = one.folder();
    QVERIFY(QFile::link(folder, other.file(QStringLiteral("link"))));

    const QString name = CommandReceiver::serverName(OfficePaths(folder));
    QVERIFY(QRegularExpression(QStringLiteral("^brimsett-[0-9a-f]{16}$")).match(name).hasMatch());
    QVERIFY(name != CommandReceiver::serverName(OfficePaths(other.folder())));
    QCOMPARE(CommandReceiver::serverName(OfficePaths(folder + QStringLiteral("sub/../"))), name);
    QCOMPARE(CommandReceiver::serverName(OfficePaths(other.file(QStringLiteral("link")))), name);
}

void TestReceiver::brokenClientsDoNotStopTheReceiver() {
    Office office;
    QStringList heard;
    office.registry.setCommand(QStringLiteral("PATIENT"), [&](const QString& arguments) {
        heard << arguments;
        return QStringLiteral("OK");
    });
    office.receiver.setIdleTimeout(300);
    QString error;
    QVERIFY2(office.receiver.listen(&error), qPrintable(error));
    const QString name = CommandReceiver::serverName(office.paths);

    QLocalSocket silent;
    silent.connectToServer(name);
    QVERIFY(silent.waitForConnected(1000));
    QCOMPARE(ask(office.paths, QStringLiteral("PATIENT 1")).answer, QStringLiteral("OK"));

    QLocalSocket quitter;
    quitter.connectToServer(name);
    QVERIFY(quitter.waitForConnected(1000));
    quitter.write("PATIENT 2");
    QVERIFY(quitter.waitForBytesWritten(1000));
    QCoreApplication::processEvents();
    quitter.abort();
    QCOMPARE(ask(office.paths, QStringLiteral("PATIENT 3")).answer, QStringLiteral("OK"));

    QLocalSocket pieces;
    pieces.connectToServer(name);
    QVERIFY(pieces.waitForConnected(1000));
    pieces.write("PATI");
    QVERIFY(pieces.waitForBytesWritten(1000));
    QCoreApplication::processEvents();
    pieces.write("ENT 4\r\n");
    QVERIFY(pieces.waitForBytesWritten(1000));
    QVERIFY(QTest::qWaitFor([&] { return pieces.canReadLine(); }, 3000));
    QCOMPARE(pieces.readLine(), QByteArray("OK\n"));

    QCOMPARE(heard, QStringList({"1", "3", "4"}));
    QVERIFY(
        QTest::qWaitFor([&] { return silent.state() == QLocalSocket::UnconnectedState; }, 3000));
}

QTEST_GUILESS_MAIN(TestReceiver)
#include "test_receiver.moc"
