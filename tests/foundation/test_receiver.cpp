#include "TestSupport.h"

#include "foundation/ActionRegistry.h"
#include "foundation/Backup.h"
#include "foundation/Clock.h"
#include "foundation/CommandReceiver.h"
#include "foundation/Database.h"
#include "foundation/OfficePaths.h"
#include "foundation/PrivateSocket.h"
#include "foundation/ReceiverClient.h"
#include "foundation/ServerAddress.h"
#include "foundation/ServerBackup.h"

#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <thread>

using namespace brimsett;
using test::row;

namespace {

const QDateTime kMoment(QDate(2026, 11, 22), QTime(14, 30, 5));

// The answer to one command line, or "<no answer: why>". The client blocks, so it runs on
// its own thread while this one serves the receiver.
QString ask(const OfficePaths& paths, const QString& line) {
    QString error;
    std::optional<QString> answer;
    std::atomic_bool done{false};
    std::thread client([&] {
        answer = sendCommand(paths, line, 3000, &error);
        done = true;
    });
    // Joining waits for the client anyway; its own time-out ends it.
    (void)QTest::qWaitFor([&] { return done.load(); }, 5000);
    client.join();
    return answer.value_or(QStringLiteral("<no answer: ") + error + QLatin1Char('>'));
}

// Empty when the receiver listens, else why not.
QString listenError(CommandReceiver& receiver) {
    QString error;
    return receiver.listen(&error) ? QString() : error + QStringLiteral(" (refused)");
}

// An office with a live database holding rows not yet checkpointed out of the WAL, and
// command handlers that note "WORD:arguments" in heard.
struct Office {
    test::TempOffice temp;
    std::unique_ptr<Database> db = temp.emptyDatabase();
    OfficePaths paths{temp.folder()};
    FixedClock clock{kMoment};
    ActionRegistry registry;
    CommandReceiver receiver{*db, paths, clock, registry};
    QStringList heard;

    Office() {
        db->exec(QStringLiteral("CREATE TABLE patients (id INTEGER, name TEXT)"));
        for (const char* name : {"Ames", "Boyd", "Cole"}) {
            addPatient(QString::fromLatin1(name));
        }
        handle("PATIENT", [](const QString&) { return QStringLiteral("OK"); });
        handle("doctor", [](const QString& a) { return QStringLiteral("SHOWN ") + a; });
        handle("SWIPE",
               [](const QString&) -> QString { throw std::runtime_error("card unreadable"); });
        handle("FINDAPPOINTMENT", [](const QString&) { return QStringLiteral("two\nlines"); });
    }
    void handle(const char* word, std::function<QString(const QString&)> reply) {
        registry.setCommand(QString::fromLatin1(word), [this, word, reply](const QString& a) {
            heard << QString::fromLatin1(word).toUpper() + QLatin1Char(':') + a;
            return reply(a);
        });
    }
    void addPatient(const QString& name) {
        db->exec(QStringLiteral("INSERT INTO patients (id, name) VALUES (?, ?)"),
                 {db->scalar(QStringLiteral("SELECT count(*) FROM patients")).toInt() + 1, name});
    }
    QString ask(const QString& line) const { return ::ask(paths, line); }
};

// The patients in a backup, a file or a server's dump (restored into a fresh database of
// the office); a backup without them fails the test by throwing.
QStringList namesIn(const test::TempOffice& temp, const QString& file) {
    std::unique_ptr<Database> db;
    if (file.endsWith(QLatin1String(kServerBackupEnding))) {
        db = temp.emptyDatabase(QStringLiteral("restored.mdb"));
        serverbackup::restore(*ServerAddress::parse(db->location(), nullptr), file);
    } else {
        auto opened = Database::openSqlite(file);
        if (!std::holds_alternative<std::unique_ptr<Database>>(opened)) {
            return {QStringLiteral("<cannot open>")};
        }
        db = std::move(std::get<std::unique_ptr<Database>>(opened));
    }
    return test::rowsOf(db->exec(QStringLiteral("SELECT name FROM patients ORDER BY id")));
}

// Byte 18 of an SQLite header is 1 for a rollback journal, 2 for WAL.
int fileFormatVersion(const QString& file) {
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.read(20).at(18) : -1;
}

// What a program that was killed leaves behind: a socket file nobody listens on.
int boundSocket(const QString& path) {
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray name = QFile::encodeName(path);
    std::strncpy(address.sun_path, name.constData(), sizeof(address.sun_path) - 1);
    if (::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
        ::close(fd);
        return -1;
    }
    return fd;
}

bool leaveStaleSocket(const QString& path) {
    const int fd = boundSocket(path);
    if (fd >= 0) {
        ::close(fd);
    }
    return fd >= 0;
}

// Sets an environment variable for one test and puts it back after.
struct ScopedEnv {
    QByteArray name;
    QByteArray before;
    bool had;
    ScopedEnv(const char* n, const QString& value)
        : name(n), before(qgetenv(n)), had(qEnvironmentVariableIsSet(n)) {
        qputenv(n, QFile::encodeName(value));
    }
    ~ScopedEnv() { had ? (void)qputenv(name, before) : (void)qunsetenv(name); }
};

}  // namespace

class TestReceiver : public QObject {
    Q_OBJECT
private slots:
    void backupCopiesTheLiveDatabaseUnderDatedNamesOrTellsWhyNot() {
        Office office;
        const bool server = office.db->onServer();
        const QString ending =
            server ? QString::fromLatin1(kServerBackupEnding) : QStringLiteral(".mdb");
        QCOMPARE(listenError(office.receiver), QString());
        QCOMPARE(office.ask(QStringLiteral("BACKUP")), QStringLiteral("BACKUPDONE!"));
        const QString first = office.temp.file(QStringLiteral("medical-20261122-143005") + ending);
        if (!server) {
            QCOMPARE(fileFormatVersion(first), 1);
        }
        QCOMPARE(namesIn(office.temp, first), QStringList({"Ames", "Boyd", "Cole"}));

        // Same second again: the first backup is kept and the next free second is used.
        office.addPatient(QStringLiteral("Dunn"));
        QCOMPARE(office.ask(QStringLiteral("backup now")), QStringLiteral("BACKUPDONE!"));
        QCOMPARE(namesIn(office.temp, first), QStringList({"Ames", "Boyd", "Cole"}));
        const QString second = office.temp.file(QStringLiteral("medical-20261122-143006") + ending);
        QCOMPARE(namesIn(office.temp, second), QStringList({"Ames", "Boyd", "Cole", "Dunn"}));

        if (server) {
            // pg_dump cannot reach a database that takes no more connections.
            const auto address = ServerAddress::parse(office.db->location(), nullptr);
            test::openAgain(address->withDatabase(QStringLiteral("postgres")))
                ->exec(QStringLiteral("ALTER DATABASE %1 ALLOW_CONNECTIONS false")
                           .arg(address->database));
        } else {
            office.db->close();
        }
        const QString failed = office.ask(QStringLiteral("BACKUP"));
        QVERIFY2(failed.startsWith(QStringLiteral("BACKUPFAILED ")), qPrintable(failed));
        QCOMPARE(
            QDir(office.temp.folder()).entryList({QStringLiteral("medical-*")}),
            QStringList({"medical-20261122-143005" + ending, "medical-20261122-143006" + ending}));
    }

    void commandWordsReachTheirHandlers_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("heard");
        row("word and argument", "PATIENT 1234", "OK", "PATIENT:1234");
        row("lower-case word, two arguments", "patient 1234 extra", "OK", "PATIENT:1234 extra");
        row("spaces around", "  Doctor   77  ", "SHOWN 77", "DOCTOR:77");
        row("handler throws", "SWIPE ;123=", "SWIPEFAILED card unreadable", "SWIPE:;123=");
        row("answer kept on one line", "FINDAPPOINTMENT 5", "two lines", "FINDAPPOINTMENT:5");
        row("unknown word", "Nosuch 5", "UNKNOWN Nosuch", "");
        row("empty line", "", "UNKNOWN", "");
    }
    void commandWordsReachTheirHandlers() {
        QFETCH(QString, line);
        Office office;
        QCOMPARE(listenError(office.receiver), QString());
        QTEST(office.ask(line), "answer");
        QTEST(office.heard.join(QLatin1Char(';')), "heard");
    }

    void secondReceiverRefusesAndStaleSocketIsTakenOver() {
        Office office;
        auto first = std::make_unique<CommandReceiver>(*office.db, office.paths, office.clock,
                                                       office.registry);
        QCOMPARE(listenError(*first), QString());
        const QString socketFile = first->fullServerName();

        CommandReceiver second(*office.db, OfficePaths(office.temp.folder() + QStringLiteral("./")),
                               office.clock, office.registry);
        const QString refused = listenError(second);
        QVERIFY2(refused.contains(QStringLiteral("Another Brimsett")), qPrintable(refused));
        QVERIFY(receiverRunning(office.paths));
        QCOMPARE(office.ask(QStringLiteral("DOCTOR 1")), QStringLiteral("SHOWN 1"));

        first.reset();
        QVERIFY(!receiverRunning(office.paths));
        const QString none = office.ask(QStringLiteral("DOCTOR 1"));
        QVERIFY2(none.startsWith(QStringLiteral("<no answer: ")) &&
                     none.contains(QStringLiteral("not running")),
                 qPrintable(none));

        QVERIFY(leaveStaleSocket(socketFile));
        QCOMPARE(listenError(office.receiver), QString());
        QCOMPARE(office.ask(QStringLiteral("DOCTOR 2")), QStringLiteral("SHOWN 2"));
    }

    void serverNameFollowsTheCanonicalFolder() {
        test::TempOffice one;
        test::TempOffice other;
        const QString folder = one.folder();
        QVERIFY(QFile::link(folder, other.file(QStringLiteral("link"))));

        const auto name = [](const QString& folder) {
            return CommandReceiver::serverName(OfficePaths(folder));
        };
        QVERIFY(QRegularExpression(QStringLiteral("/brimsett-[0-9a-f]{16}$"))
                    .match(name(folder))
                    .hasMatch());
        QVERIFY(privatesocket::isPrivateFolder(QFileInfo(name(folder)).absolutePath()));
        QVERIFY(name(folder) != name(other.folder()));
        QCOMPARE(name(folder + QStringLiteral("sub/../")), name(folder));
        QCOMPARE(name(other.file(QStringLiteral("link"))), name(folder));
    }

    // Another user could put a socket of their own where the office's receiver is looked for,
    // hear its commands and forge answers. The socket lives only in a folder of this user's
    // alone, and the program at its other end must run as this user.
    void forgedSocketsAreNotTrusted() {
        test::TempOffice office;
        const OfficePaths paths(office.folder());
        QTemporaryDir runtime;
        QTemporaryDir temp;
        ::chmod(QFile::encodeName(runtime.path()).constData(), 0777);
        const ScopedEnv xdg("XDG_RUNTIME_DIR", runtime.path());
        const ScopedEnv tmp("TMPDIR", temp.path());
        const QString own = temp.path() + QStringLiteral("/brimsett-%1").arg(::geteuid());

        // A runtime folder others may write to is passed over for one of this user's own.
        QCOMPARE(QFileInfo(CommandReceiver::serverName(paths)).absolutePath(), own);
        QVERIFY(privatesocket::isPrivateFolder(own));

        // That folder put there by someone else (here: a link, or opened to all) is refused.
        QVERIFY(QDir(own).removeRecursively());
        QVERIFY(QFile::link(runtime.path(), own));
        QString problem;
        QCOMPARE(CommandReceiver::serverName(paths, &problem), QString());
        QVERIFY2(problem.contains(own), qPrintable(problem));
        QString error;
        QVERIFY(!sendCommand(paths, QStringLiteral("PATIENT 1"), 1000, &error));
        QVERIFY2(error.startsWith(QStringLiteral("Cannot reach Brimsett: ")), qPrintable(error));
        QVERIFY(QFile::remove(own));
        QVERIFY(QDir().mkdir(own));
        ::chmod(QFile::encodeName(own).constData(), 0755);
        QCOMPARE(CommandReceiver::serverName(paths), QString());
        ::chmod(QFile::encodeName(own).constData(), 0700);

        // A server run by another user in the right place gets nothing sent.
        if (::geteuid() != 0) {
            QSKIP("only root can run a server as another user");
        }
        const QString name = CommandReceiver::serverName(paths);
        const pid_t child = ::fork();
        if (child == 0) {
            const int fd = boundSocket(name);
            if (fd < 0 || ::setgid(65534) != 0 || ::setuid(65534) != 0 || ::listen(fd, 1) != 0) {
                ::_exit(1);
            }
            const int client = ::accept(fd, nullptr, nullptr);
            (void)!::write(client, "OK\n", 3);
            ::sleep(1);
            ::_exit(0);
        }
        QVERIFY(QTest::qWaitFor([&] { return QFileInfo::exists(name); }, 3000));
        QTest::qWait(100);  // listening comes just after the name appears
        const std::optional<QString> forged =
            sendCommand(paths, QStringLiteral("PATIENT 1"), 2000, &error);
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        QVERIFY2(!forged, qPrintable(forged.value_or(QString())));
        QVERIFY2(error.contains(QStringLiteral("not trusted")), qPrintable(error));
    }

    void brokenClientsDoNotStopTheReceiver() {
        Office office;
        office.receiver.setIdleTimeout(300);
        QCOMPARE(listenError(office.receiver), QString());
        const auto connect = [&](QLocalSocket& s) {
            s.connectToServer(CommandReceiver::serverName(office.paths));
            return s.waitForConnected(1000);
        };
        const auto send = [](QLocalSocket& s, const char* bytes) {
            s.write(bytes);
            const bool written = s.waitForBytesWritten(1000);
            QCoreApplication::processEvents();
            return written;
        };

        QLocalSocket silent;
        QVERIFY(connect(silent));
        QCOMPARE(office.ask(QStringLiteral("PATIENT 1")), QStringLiteral("OK"));

        QLocalSocket quitter;
        QVERIFY(connect(quitter));
        QVERIFY(send(quitter, "PATIENT 2"));
        quitter.abort();
        QCOMPARE(office.ask(QStringLiteral("PATIENT 3")), QStringLiteral("OK"));

        QLocalSocket pieces;
        QVERIFY(connect(pieces));
        QVERIFY(send(pieces, "PATI"));
        QVERIFY(send(pieces, "ENT 4\r\n"));
        QVERIFY(QTest::qWaitFor([&] { return pieces.canReadLine(); }, 3000));
        QCOMPARE(pieces.readLine(), QByteArray("OK\n"));

        QCOMPARE(office.heard, QStringList({"PATIENT:1", "PATIENT:3", "PATIENT:4"}));
        QVERIFY(QTest::qWaitFor([&] { return silent.state() == QLocalSocket::UnconnectedState; },
                                3000));
    }
};

QTEST_GUILESS_MAIN(TestReceiver)
#include "test_receiver.moc"
