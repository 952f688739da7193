#include "cli/CliPassword.h"
#include "cli/CliSession.h"
#include "foundation/DateText.h"
#include "foundation/SqlLog.h"
#include "ministry/EdtHostSettings.h"
#include "ministry/EdtParams.h"
#include "ministry/EdtPasswordReminder.h"
#include "ministry/EdtPasswordSeal.h"
#include "ministry/ModemPorts.h"
#include "patients/ProviderRegister.h"

namespace brimsett {

namespace {

struct Opened {
    std::optional<SqlLog> log;
    std::optional<EdtParams> params;
    std::optional<Provider> provider;
};

// The database, the settings and, when a doctor is named, the provider; none (the reason
// printed) when one is missing.
bool open(CliSession& session, Opened& o, const QString& doctorId) {
    if (session.open() == nullptr) {
        return false;
    }
    o.log.emplace(session.paths(), session.settings().sqlLogOn());
    o.params.emplace(session.db(), session.prompter(), session.clock(), *o.log,
                     session.paths().file(EdtPasswordSeal::kKeyFileName));
    if (doctorId.isNull()) {
        return true;
    }
    o.provider = ProviderRegister(session.db(), session.settings(), session.prompter(), *o.log)
                     .load(doctorId);
    if (!o.provider) {
        fail(QStringLiteral("there is no provider %1").arg(doctorId));
        return false;
    }
    return true;
}

int setup(CliSession& session, const CliArgs& args) {
    const QString user = args.value(QStringLiteral("user")).trimmed();
    if (user.isEmpty()) {
        return args.usageError(QStringLiteral("missing --user ID"));
    }
    if (const QString problem = EdtParams::userIdProblem(user); !problem.isEmpty()) {
        return args.usageError(problem);
    }
    Opened o;
    if (!open(session, o, args.argument(0))) {
        return 1;
    }
    const EdtLogin stored = o.params->login(o.provider->doctorId);
    EdtSetupChange change;
    change.doctorId = o.provider->doctorId;
    change.userId = user;
    change.mode = stored.mode;  // kept as it is
    // One line of standard input, never an argument (every user could read it in the process
    // list) nor $BRIMSETT_PASSWORD (it opens the program's own levels). An empty line keeps
    // the stored password, as an untouched field of the setup screen does.
    if (const std::optional<QString> typed =
            readUnseenLine(QStringLiteral("EDT password (Enter keeps the stored one): "));
        typed && !typed->isEmpty()) {
        change.password = *typed;
    }
    if (!o.params->save(change)) {
        return 1;  // the reason went to standard error
    }
    session.out() << "EDT login of " << o.provider->doctorId << " saved"
                  << (change.password ? " with a new password" : "") << ".\n";
    return 0;
}

int general(CliSession& session, const CliArgs& args) {
    const QString port = args.value(QStringLiteral("port")).trimmed();
    const QString speed = args.value(QStringLiteral("speed")).trimmed();
    const QString phone = args.value(QStringLiteral("phone")).trimmed();
    const QString timeOut = args.value(QStringLiteral("timeout")).trimmed();
    if (port.isEmpty() && speed.isEmpty() && phone.isEmpty() && timeOut.isEmpty()) {
        return args.usageError(
            QStringLiteral("give at least one of --port, --speed, --phone, --timeout"));
    }
    QString lineSpeed;
    for (const QString& offered : EdtParams::lineSpeeds()) {
        if (!speed.isEmpty() && (offered == speed || offered.section(',', 0, 0) == speed)) {
            lineSpeed = offered;
        }
    }
    if (!speed.isEmpty() && lineSpeed.isEmpty()) {
        return args.usageError(QStringLiteral("--speed must be 57600 or 9600"));
    }
    Opened o;
    if (!open(session, o, {})) {
        return 1;
    }
    EdtSetupChange change;
    change.general = o.params->general();  // what is not given stays as stored
    const auto set = [&change](QChar key, const QString& value) {
        if (!value.isEmpty()) {
            change.general->insert(key, value);
        }
    };
    set(EdtParams::kPort, port);
    set(EdtParams::kSpeed, lineSpeed);
    set(EdtParams::kPhone, phone);
    set(EdtParams::kTimeOut, timeOut);
    if (!o.params->save(change)) {
        return 1;  // the setup screen's message went to standard error
    }
    session.out() << "EDT settings saved.\n";
    return 0;
}

QString dateOrNever(const QDate& day) {
    return day.isValid() ? datetext::slashed(day) : QStringLiteral("Never");
}

int show(CliSession& session, const CliArgs& args) {
    Opened o;
    if (!open(session, o, args.argument(0))) {
        return 1;
    }
    const Provider& p = *o.provider;
    const EdtLogin login = o.params->login(p.doctorId);
    const QMap<QChar, QString> general = o.params->general();
    QTextStream& out = session.out();
    out << "Provider: " << p.doctorId << " " << (p.lName + ", " + p.fName).trimmed() << "\n";
    out << "User ID: " << (login.userId.isEmpty() ? QStringLiteral("not set") : login.userId)
        << "\n";
    out << "Password: "
        << (!login.hasPassword ? QStringLiteral("not set")
            : login.password   ? QStringLiteral("set")
                               : QStringLiteral("set (cannot be read on this computer: ") +
                                   login.passwordProblem + ')')
        << "\n";
    out << "Password changed: " << dateOrNever(login.passwordChanged) << "\n";
    out << "Mode: " << login.mode << "\n";
    out << "Mode changed: " << dateOrNever(login.modeChanged) << "\n";
    out << "Telephone Number: " << general.value(EdtParams::kPhone) << "\n";
    const QString port = general.value(EdtParams::kPort);
    const QString device = modemports::device(port);
    out << "Modem Port: " << port << (device != port ? " (" + device + ")" : QString()) << "\n";
    out << "Line Speed: " << general.value(EdtParams::kSpeed) << "\n";
    out << "Time-out (seconds): "
        << general.value(EdtParams::kTimeOut, QString::number(EdtParams::kDefaultTimeOut)) << "\n";
    // The network's and host's settings an office changed from their defaults.
    for (const edthost::Setting& setting : edthost::settings()) {
        const QString value = general.value(setting.key).trimmed();
        if (!value.isEmpty()) {
            out << setting.label << ": " << (setting.secret ? QStringLiteral("set") : value)
                << "\n";
        }
    }
    if (const std::optional<QStringList> reminder = passwordReminder(
            session.settings().edtPasswordReminder, login, p.doctorId, session.clock().today())) {
        out << reminder->join(' ') << "\n";
    }
    return 0;
}

const CliArgument kDoctor{QStringLiteral("DOCTOR"), QStringLiteral("the provider's ID")};

[[maybe_unused]] const bool registeredSetup = cli::add({
    .name = QStringLiteral("edt setup"),
    .summary = QStringLiteral("store a doctor's EDT login; the password is read from standard "
                              "input"),
    .arguments = {kDoctor},
    .options = {{QStringLiteral("user"), QStringLiteral("ID"), QStringLiteral("the EDT user ID"),
                 true}},
    .details = {QStringLiteral("The password is one line of standard input (typed unseen at a "
                               "terminal); an empty line or none keeps the stored one."),
                QStringLiteral("A new password is kept sealed and its change date is today.")},
    .run = setup,
});

[[maybe_unused]] const bool registeredGeneral = cli::add({
    .name = QStringLiteral("edt general"),
    .summary = QStringLiteral("set the dial-up modem's port, line speed, number and time-out"),
    .options = {{QStringLiteral("port"), QStringLiteral("DEVICE"),
                 QStringLiteral("the modem's serial device, e.g. /dev/ttyUSB0")},
                {QStringLiteral("speed"), QStringLiteral("57600|9600"),
                 QStringLiteral("the line speed")},
                {QStringLiteral("phone"), QStringLiteral("NUMBER"),
                 QStringLiteral("the number dialled")},
                {QStringLiteral("timeout"), QStringLiteral("SECONDS"),
                 QStringLiteral("how long a dial or a wait may take, 30 to 120")}},
    .details = {QStringLiteral("Settings not given stay as they are.")},
    .run = general,
});

[[maybe_unused]] const bool registeredShow = cli::add({
    .name = QStringLiteral("edt show"),
    .summary = QStringLiteral("print a doctor's EDT login (never the password) and the dial-up "
                              "settings"),
    .arguments = {kDoctor},
    .run = show,
});

}  // namespace

}  // namespace brimsett
