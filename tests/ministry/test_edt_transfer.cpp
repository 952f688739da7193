#include "BatchOffice.h"
#include "FakeModem.h"

#include "ministry/EdtDownload.h"
#include "ministry/EdtFileTransfer.h"
#include "ministry/EdtUpload.h"
#include "ministry/ModemSession.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <thread>

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace brimsett;
using test::FakeModem;
using namespace std::chrono_literals;

namespace {

// Long enough that sz and rz starting on a loaded machine never meet a limit meant for a
// stalled line; the time-out cases still end within seconds.
constexpr auto kSecond = 150ms;
constexpr int kTimeOut = 40;  // six seconds of waiting at kSecond
const QString kSpeed = QStringLiteral("57600,n,8,1");
const QByteArray kGoAhead = "\r\nPLEASE BEGIN YOUR UPLOAD NOW\r\n";
const QByteArray kPrompt = "\r\nMAIN MENU\r\nSELECTION:";

struct Events {
    QList<std::pair<EdtEvent, QString>> all;
    EdtEventSink sink() {
        return [this](EdtEvent kind, const QString& text) { all.append({kind, text}); };
    }
    QStringList of(EdtEvent kind) const {
        QStringList texts;
        for (const auto& [k, text] : all) {
            if (k == kind) {
                texts << text;
            }
        }
        return texts;
    }
};

// Runs an lrzsz program at the far end of the line, in `folder`; true when it succeeded.
// A sender's closing "OO" is flushed away on a pseudo-terminal (a serial line would have
// sent it), so a receiver that has `done` is ended shortly after instead of waiting for it.
bool farEnd(int fd, const QStringList& command, const QString& folder,
            const std::function<bool()>& done = {}) {
    QList<QByteArray> words;
    for (const QString& word : command) {
        words << word.toLocal8Bit();
    }
    std::vector<char*> argv;
    for (QByteArray& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    const QByteArray dir = QFile::encodeName(folder);
    const pid_t child = fork();
    if (child == 0) {
        if (dup2(fd, 0) < 0 || dup2(fd, 1) < 0 || chdir(dir.constData()) != 0) {
            _exit(126);
        }
        alarm(20);  // a transfer that hangs must not hang the test
        execvp(argv[0], argv.data());
        _exit(127);
    }
    if (child < 0) {
        return false;
    }
    QElapsedTimer since;
    int status = 0;
    for (;;) {
        const pid_t ended = waitpid(child, &status, WNOHANG);
        if (ended == child) {
            return WIFEXITED(status) && WEXITSTATUS(status) == 0;
        }
        if (ended < 0) {
            return false;
        }
        if (done && !since.isValid() && done()) {
            since.start();
        }
        if (since.isValid() && since.elapsed() > 200) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return true;
        }
        usleep(10000);
    }
}

// Reads what comes for `ms`; true when `text` was among it.
bool drain(int fd, int ms, const QByteArray& text = {}) {
    QByteArray seen;
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < ms) {
        pollfd line{fd, POLLIN, 0};
        if (poll(&line, 1, int(ms - timer.elapsed())) > 0) {
            char buffer[4096];
            const ssize_t count = read(fd, buffer, sizeof buffer);
            if (count <= 0) {
                break;
            }
            seen.append(buffer, count);
            if (!text.isEmpty() && seen.contains(text)) {
                return true;
            }
        }
    }
    return text.isEmpty();
}

// ZMODEM's cancel: the far end gives up.
const QByteArray kCancel = QByteArray(8, '\x18') + QByteArray(8, '\x08');

}  // namespace

class TestEdtTransfer : public QObject {
    Q_OBJECT

private slots:
    void init();
    void upload_data();
    void upload();
    void download_data();
    void download();
};

void TestEdtTransfer::init() {
    if (!EdtFileTransfer::installed()) {
        QSKIP("lrzsz (sz and rz) is not installed");
    }
}

void TestEdtTransfer::upload_data() {
    // Each file's host: "ok" confirms, "menu" confirms by showing its menu again, "missing"
    // (the file is not in the office), "drop" hangs up during
    // it, "silent" never gives the go-ahead, "mute" gives it and then takes nothing, "cancel"
    // is mute and the user cancels meanwhile.
    QTest::addColumn<QStringList>("hosts");
    QTest::addColumn<QStringList>("summary");
    QTest::addColumn<QStringList>("errors");
    QTest::addColumn<QList<bool>>("submitted");
    QTest::newRow("two files") << QStringList{"ok", "menu"}
                               << QStringList{"Both files were submitted successfully."}
                               << QStringList() << QList<bool>{true, true};
    QTest::newRow("one of three missing")
        << QStringList{"ok", "missing", "ok"}
        << QStringList{"2 files were submitted successfully,", "1 file was not submitted."}
        << QStringList{"The file to be submitted (HB000002.003) does not exist."}
        << QList<bool>{true, false, true};
    QTest::newRow("line dropped") << QStringList{"drop", "ok"}
                                  << QStringList{"No files were submitted."}
                                  << QStringList{"LOST CONNECTION", "Upload was not successful."}
                                  << QList<bool>{false, false};
    QTest::newRow("transfer past its time")
        << QStringList{"mute"} << QStringList{"No files were submitted."}
        << QStringList{"The file transfer took longer than 43 seconds.", "ABORTED",
                       "Time out error occurred."}
        << QList<bool>{false};
    QTest::newRow("cancelled") << QStringList{"cancel"} << QStringList{"No files were submitted."}
                               << QStringList{"ABORTED", "Upload was not successful."}
                               << QList<bool>{false};
    QTest::newRow("no go-ahead") << QStringList{"silent"} << QStringList{"No files were submitted."}
                                 << QStringList{"WaitFor Timed Out!", "Time out error occurred."}
                                 << QList<bool>{false};
}

void TestEdtTransfer::upload() {
    QFETCH(QStringList, hosts);
    QFETCH(QStringList, summary);
    QFETCH(QList<bool>, submitted);
    test::BatchOffice o;
    o.addDoctor("D1", "1234", "123456", "00");
    o.addDoctor("D2", "1234", "654321", "00");
    QTemporaryDir host;
    QStringList names;
    for (int i = 0; i < hosts.size(); ++i) {
        const QString name = QStringLiteral("HB%1.003").arg(i + 1, 6, 10, QLatin1Char('0'));
        names << name;
        o.db->exec(
            "Insert Into batches (BatchID, GroupNum, ProviderNum, SpecCode, FileName)"
            " Values (?, '1234', '123456', '00', ?)",
            {QStringLiteral("2026112200%1").arg(i + 1, 2, 10, QLatin1Char('0')), name});
        if (hosts[i] != QLatin1String("missing")) {
            QFile file(o.office.file(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
            // Bytes a careless line would change: line ends, controls, the top half.
            QByteArray bytes = "HEBV03" + name.toLatin1() + "\r\n";
            for (int n = 0; n < 3000 * (i + 1); ++n) {
                bytes += char(n * 7 % 256);
            }
            file.write(bytes);
        }
    }
    // Not this doctor's, or already sent: never offered.
    o.db->exec(
        "Insert Into batches (BatchID, GroupNum, ProviderNum, SpecCode, FileName)"
        " Values ('202611220099', '1234', '654321', '00', 'HB000099.003')");
    o.db->exec(
        "Insert Into batches (BatchID, GroupNum, ProviderNum, SpecCode, FileName, "
        "SubmitDate) Values ('202611210001', '1234', '123456', '00', 'HB000098.003', "
        "'2026-11-21')");

    FakeModem modem;
    QVERIFY2(!modem.device().isEmpty(), qPrintable(modem.problem()));
    const QString hostDir = host.path();
    for (int i = 0; i < hosts.size(); ++i) {
        const QString& behaviour = hosts[i];
        if (behaviour == QLatin1String("missing")) {
            continue;
        }
        modem.on("1\r", behaviour == QLatin1String("silent") ? QByteArray() : kGoAhead);
        if (behaviour == QLatin1String("ok") || behaviour == QLatin1String("menu")) {
            const QString path = host.filePath(names[i]);
            const qint64 size = QFileInfo(o.office.file(names[i])).size();
            modem.run([hostDir, path, size](int fd, QByteArray&) {
                return farEnd(fd, {"rz", "-b", "-e", "-q", "-u", "-y"}, hostDir,
                              [&] { return QFileInfo(path).size() == size; });
            });
            modem.answer(behaviour == QLatin1String("ok") ? "\r\nTRANSFER SUCCESSFUL\r\n" + kPrompt
                                                          : kPrompt);
        } else if (behaviour == QLatin1String("drop")) {
            modem.run([](int fd, QByteArray&) { return drain(fd, 5000, "rz\r"); }).drop();
        }
    }
    modem.start();

    Events events;
    ModemSession session(events.sink(), kSecond);
    QVERIFY(session.open(modem.device(), kSpeed));
    EdtFileTransfer transfer(session.line(), events.sink(), kSecond);
    EdtUpload upload(*o.db, o.prompter, o.clock, o.log, session, events.sink(), transfer,
                     o.office.folder(), kTimeOut, 57600);
    QCOMPARE(upload.unsubmitted("D1"), names);
    std::thread user;
    if (hosts.contains("cancel")) {
        user = std::thread([&transfer] {
            std::this_thread::sleep_for(300ms);
            transfer.cancel();
        });
    }
    QElapsedTimer took;
    took.start();
    const EdtUpload::Result result = upload.run("D1");
    if (user.joinable()) {
        user.join();
        // Well before the transfer's own limit (the time-out and the file's own time).
        QVERIFY2(took.elapsed() < kTimeOut * kSecond.count() / 2,
                 qPrintable(QString::number(took.elapsed())));
    }
    QCOMPARE(result.summary, summary);
    QCOMPARE(result.files, int(hosts.size()));
    QCOMPARE(result.sent, int(submitted.count(true)));
    QCOMPARE(result.lineLost, hosts.contains("drop"));
    QTEST(events.of(EdtEvent::Error), "errors");
    QStringList steps = events.of(EdtEvent::Step);
    QCOMPARE(steps.mid(steps.size() - summary.size()), summary);

    for (int i = 0; i < names.size(); ++i) {
        const QVariant date =
            o.db->scalar("Select SubmitDate From batches Where FileName=?", {names[i]});
        QCOMPARE(!date.isNull(), submitted[i]);
        QCOMPARE(steps.contains(QStringLiteral("Uploading '%1' ...").arg(names[i])),
                 !hosts.contains("drop") || i == 0);
        if (submitted[i]) {
            QCOMPARE(date.toDate(), o.clock.today());
            QFile sent(o.office.file(names[i]));
            QFile got(host.filePath(names[i]));
            QVERIFY(sent.open(QIODevice::ReadOnly) && got.open(QIODevice::ReadOnly));
            QCOMPARE(got.readAll(), sent.readAll());
        }
    }
    QCOMPARE(steps.count("File uploaded successfully!"), submitted.count(true));
    QCOMPARE(o.db->scalar("Select Count(*) From batches Where SubmitDate Is Null And "
                          "FileName In ('HB000099.003', 'HB000098.003')")
                 .toInt(),
             1);
    if (!hosts.contains("drop")) {
        // The line is the session's again, and still the same: it hangs up as ever.
        QVERIFY(session.line().check());
        QVERIFY(modem.finished(5000));
        QCOMPARE(modem.failure(), QString());
    }
}

void TestEdtTransfer::download_data() {
    // The host's files, each sent in its own transfer; "!" before a name: that transfer
    // fails. "none": the host has none.
    QTest::addColumn<QStringList>("waiting");
    QTest::addColumn<bool>("earlier");  // "Download" already holds PA123456.001, other bytes
    QTest::addColumn<QStringList>("message");
    QTest::addColumn<QStringList>("files");  // in "Download" afterwards
    const QStringList none = {"No files were", "available for download.",
                              "Please check again later."};
    QTest::newRow("two files") << QStringList{"PA123456.001", "EB123456.002"} << false
                               << QStringList{"Successfully downloaded 2 files."}
                               << QStringList{"EB123456.002", "PA123456.001"};
    QTest::newRow("an earlier file kept")
        << QStringList{"PA123456.001"} << true << QStringList{"Successfully downloaded 1 files."}
        << QStringList{"PA123456.001", "PA123456.001.20261122-100000"};
    QTest::newRow("none") << QStringList{"none"} << false << none << QStringList();
    QTest::newRow("empty list") << QStringList() << false << none << QStringList();
    QTest::newRow("second fails") << QStringList{"PA123456.001", "!EB123456.002"} << false
                                  << QStringList{"Could not download: the file transfer failed.",
                                                 "Try the reconciliation again."}
                                  << QStringList{"PA123456.001"};
}

void TestEdtTransfer::download() {
    QFETCH(QStringList, waiting);
    QFETCH(bool, earlier);
    QFETCH(QStringList, message);
    QFETCH(QStringList, files);
    test::OfficeFixture o;
    QTemporaryDir host;
    const QString download = o.office.folder() + QStringLiteral("Download/");
    if (earlier) {
        QVERIFY(QDir().mkpath(download));
        QFile old(download + "PA123456.001");
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write("an older remittance\r\n");
    }
    FakeModem modem;
    QVERIFY2(!modem.device().isEmpty(), qPrintable(modem.problem()));
    if (waiting == QStringList{"none"}) {
        modem.on("2\r", "\r\nTHERE ARE NO FILES WAITING\r\n" + kPrompt);
    } else {
        modem.on("2\r", "\r\nSelect the file(s) you wish to receive\r\nfor DOWNLOAD or X: ")
            .expect("A\r");
    }
    QMap<QString, QByteArray> contents;
    for (QString name : std::as_const(waiting)) {
        const bool fails = name.startsWith('!');
        name.remove('!');
        if (name == QLatin1String("none")) {
            continue;
        }
        QByteArray bytes = "HR4" + name.toLatin1() + "\r\n";
        for (int n = 0; n < 5000; ++n) {
            bytes += char(n * 13 % 256);
        }
        contents[name] = bytes;
        QFile file(host.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        modem.answer("\r\n*** Download Started\r\n");
        const QString hostDir = host.path();
        if (fails) {
            modem.run([](int fd, QByteArray&) {
                const bool started = drain(fd, 5000, "\x18");  // the receiver's first header
                return write(fd, kCancel.constData(), kCancel.size()) == kCancel.size() &&
                       drain(fd, 500) && started;
            });
        } else {
            modem.run([hostDir, name](int fd, QByteArray&) {
                // The sender's closing "OO" is flushed away on a pseudo-terminal, where a
                // serial line would have sent it: it is sent again.
                return farEnd(fd, {"sz", "-b", "-e", "-q", name}, hostDir) &&
                       write(fd, "OO", 2) == 2;
            });
        }
        modem.pause(100).answer("\r\n*** Download Finished - " + name.toLatin1() + "\r\n");
    }
    if (waiting != QStringList{"none"}) {
        modem.answer(kPrompt);
    }
    modem.start();

    Events events;
    ModemSession session(events.sink(), kSecond);
    QVERIFY(session.open(modem.device(), kSpeed));
    EdtFileTransfer transfer(session.line(), events.sink(), kSecond);
    const EdtDownload::Result result =
        EdtDownload(session, events.sink(), transfer, o.clock, o.office.folder(), kTimeOut).run();
    QCOMPARE(result.message, message);
    QCOMPARE(result.ok, !message.first().startsWith("Could not"));
    QCOMPARE(QDir(download).entryList(QDir::Files | QDir::Hidden, QDir::Name), files);
    QCOMPARE(QDir(download).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList());
    for (const QString& name : std::as_const(result.files)) {
        QFile got(download + name);
        QVERIFY(got.open(QIODevice::ReadOnly));
        QCOMPARE(got.readAll(), contents.value(name));
    }
    QCOMPARE(result.files.size(), result.ok ? files.size() - int(earlier) : 1);
    QVERIFY((result.ok ? events.of(EdtEvent::Step) : events.of(EdtEvent::Error))
                .join('\n')
                .endsWith(message.join('\n')));
    if (earlier) {
        QFile kept(download + files.last());
        QVERIFY(kept.open(QIODevice::ReadOnly));
        QCOMPARE(kept.readAll(), QByteArray("an older remittance\r\n"));
    }
}

QTEST_GUILESS_MAIN(TestEdtTransfer)
#include "test_edt_transfer.moc"
