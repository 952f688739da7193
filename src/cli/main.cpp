#include "cli/CliSession.h"

#include <QCoreApplication>

#include <functional>
#include <map>

using namespace brimsett;

namespace {

const char* kUsage =
    "usage: brimsett-cli [--home DIR] [--settings FILE] [--yes] COMMAND ...\n"
    "commands:\n"
    "  init                      create or open the database, apply a restore, update it\n"
    "  sql STATEMENT             run one statement; a query prints tab-separated rows\n"
    "  settings get SECTION KEY  print a setting\n"
    "  settings set SECTION KEY VALUE\n"
    "  backup                    make a dated backup of the database\n"
    "  send WORD [ARGS]          send a command word to the running program\n"
    "  hn check PROVINCE NUMBER  \"valid\" (exit 0) or \"not valid\" (exit 1)\n"
    "  hn guess NUMBER           the province the number most likely belongs to\n"
    "  patient show ID           print the patient's fields, one per line\n"
    "  import-sob FILE           update the fee schedule from the ministry's master file\n"
    "  fee CODE SPECIALTY        the fee and units an item with that code would take\n"
    "  claim add --doctor ID --patient ID [--program PROG] ITEM...\n"
    "                            save a claim (ITEM: CODE:DIAG:NUMSERV:YYYY/MM/DD[:FEE]) and\n"
    "                            print its numbers; \"claim add\" alone lists its options\n"
    "  claim show ID             print a claim and its items\n"
    "  claim pending [DOCTOR]    print the pending items and their total\n"
    "  prepare DOCTOR [--cutoff YYYY/MM/DD] [--start YYYY/MM/DD] [--one-profile] [--by-created]\n"
    "                            write the doctor's pending claims into a claim file and print\n"
    "                            its name and each batch's number, claims, records and total\n"
    "  submit FILE [--method disk|folder] [--to DIR]\n"
    "                            hand a claim file of the office folder to the ministry (the\n"
    "                            \"SubmitMethod\" setting unless --method; --to: the disk folder)\n"
    "  fetch-answers DOCTOR [--method disk|folder] [--to DIR]\n"
    "                            fetch the ministry's answers and print the files' paths\n"
    "  receive FILE [--no-reconcile]\n"
    "                            read a remittance advice, batch edit or claims error report\n"
    "                            (a bare name is looked for in Download/ too), write what it\n"
    "                            answers into the claims, print its errors and totals\n";

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    QString home;
    QString settingsFile;
    bool yes = false;
    while (!args.isEmpty() && args.first().startsWith(QStringLiteral("--"))) {
        const QString option = args.takeFirst();
        if (option == QLatin1String("--yes")) {
            yes = true;
        } else if ((option == QLatin1String("--home") || option == QLatin1String("--settings")) &&
                   !args.isEmpty()) {
            (option == QLatin1String("--home") ? home : settingsFile) = args.takeFirst();
        } else if (option == QLatin1String("--help")) {
            QTextStream(stdout) << kUsage;
            return 0;
        } else {
            QTextStream(stderr) << "brimsett-cli: unknown option " << option << "\n" << kUsage;
            return 2;
        }
    }
    if (args.isEmpty()) {
        QTextStream(stderr) << kUsage;
        return 2;
    }
    const std::map<QString, std::function<int(CliSession&, const QStringList&)>> commands = {
        {QStringLiteral("init"), commandInit},
        {QStringLiteral("sql"), commandSql},
        {QStringLiteral("settings"), commandSettings},
        {QStringLiteral("backup"), commandBackup},
        {QStringLiteral("send"), commandSend},
        {QStringLiteral("hn"), commandHn},
        {QStringLiteral("patient"), commandPatient},
        {QStringLiteral("import-sob"), commandImportSob},
        {QStringLiteral("fee"), commandFee},
        {QStringLiteral("claim"), commandClaim},
        {QStringLiteral("prepare"), commandPrepare},
        {QStringLiteral("submit"), commandSubmit},
        {QStringLiteral("fetch-answers"), commandFetchAnswers},
        {QStringLiteral("receive"), commandReceive},
    };
    const QString word = args.takeFirst();
    const auto it = commands.find(word);
    if (it == commands.end()) {
        QTextStream(stderr) << "brimsett-cli: unknown command " << word << "\n" << kUsage;
        return 2;
    }
    CliSession session(home, settingsFile, yes);
    try {
        return it->second(session, args);
    } catch (const DbError& e) {
        return fail(e.message());
    }
}
