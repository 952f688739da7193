#include "foundation/ServerAddress.h"

#include <QRegularExpression>
#include <QUrl>

namespace brimsett {

namespace {

const QStringList kSchemes = {QStringLiteral("postgresql://"), QStringLiteral("postgres://")};

bool isOptionName(const QString& key) {
    static const QRegularExpression plain(QStringLiteral("^[a-z_]+$"));
    return plain.match(key).hasMatch();
}

std::optional<ServerAddress> fail(QString* problem, const QString& text) {
    if (problem != nullptr) {
        *problem = text;
    }
    return std::nullopt;
}

// "service=office sslmode=require": libpq's own keyword form.
std::optional<ServerAddress> parseKeywords(const QString& text, QString* problem) {
    ServerAddress address;
    for (const QString& part : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const qsizetype eq = part.indexOf(QLatin1Char('='));
        const QString key = part.left(eq).toLower();
        if (eq <= 0 || eq == part.size() - 1 || !isOptionName(key)) {
            return fail(
                problem,
                QStringLiteral("\"%1\" is not a setting of the form name=value.").arg(part));
        }
        if (key == QLatin1String("password")) {
            return fail(problem, QStringLiteral("A password may not be written in the database "
                                                "location; keep it in ~/.pgpass or the service "
                                                "file."));
        }
        address.options << key + QLatin1Char('=') + part.mid(eq + 1);
    }
    return address;
}

}  // namespace

bool ServerAddress::names(const QString& location) {
    const QString text = location.trimmed();
    for (const QString& scheme : kSchemes) {
        if (text.startsWith(scheme, Qt::CaseInsensitive)) {
            return true;
        }
    }
    return text.startsWith(QStringLiteral("service="), Qt::CaseInsensitive);
}

std::optional<ServerAddress> ServerAddress::parse(const QString& location, QString* problem) {
    const QString text = location.trimmed();
    QString rest;
    bool schemed = false;
    for (const QString& scheme : kSchemes) {
        if (text.startsWith(scheme, Qt::CaseInsensitive)) {
            rest = text.mid(scheme.size());
            schemed = true;
        }
    }
    if (!schemed) {
        if (text.startsWith(QStringLiteral("service="), Qt::CaseInsensitive)) {
            return parseKeywords(text, problem);
        }
        return fail(problem, QStringLiteral("The server address must begin with "
                                            "\"postgresql://\" or \"service=\"."));
    }
    ServerAddress address;
    QString query;
    if (const qsizetype q = rest.indexOf(QLatin1Char('?')); q >= 0) {
        query = rest.mid(q + 1);
        rest = rest.left(q);
    }
    QString authority = rest;
    if (const qsizetype slash = rest.indexOf(QLatin1Char('/')); slash >= 0) {
        authority = rest.left(slash);
        address.database = QUrl::fromPercentEncoding(rest.mid(slash + 1).toUtf8());
        if (address.database.contains(QLatin1Char('/'))) {
            return fail(problem,
                        QStringLiteral("\"%1\" is not a database name.").arg(address.database));
        }
    }
    if (const qsizetype at = authority.lastIndexOf(QLatin1Char('@')); at >= 0) {
        const QString userInfo = authority.left(at);
        authority = authority.mid(at + 1);
        if (userInfo.contains(QLatin1Char(':'))) {
            return fail(problem, QStringLiteral("A password may not be written in the database "
                                                "location; keep it in ~/.pgpass or the service "
                                                "file."));
        }
        address.user = QUrl::fromPercentEncoding(userInfo.toUtf8());
    }
    // An IPv6 host is written in brackets, its own colons apart from the port's.
    qsizetype colon = authority.lastIndexOf(QLatin1Char(':'));
    QString host = authority;
    if (authority.startsWith(QLatin1Char('['))) {
        const qsizetype close = authority.indexOf(QLatin1Char(']'));
        const QString after = close < 0 ? QString() : authority.mid(close + 1);
        if (close < 0 || !(after.isEmpty() || after.startsWith(QLatin1Char(':')))) {
            return fail(problem, QStringLiteral("\"%1\" is not a server's name.").arg(authority));
        }
        host = authority.mid(1, close - 1);
        colon = after.isEmpty() ? -1 : close + 1;
    } else if (colon >= 0) {
        host = authority.left(colon);
    }
    if (colon >= 0) {
        bool ok = false;
        const int port = authority.mid(colon + 1).toInt(&ok);
        if (!ok || port <= 0 || port > 65535) {
            return fail(
                problem,
                QStringLiteral("\"%1\" is not a port number.").arg(authority.mid(colon + 1)));
        }
        address.port = port;
    }
    address.host = QUrl::fromPercentEncoding(host.toUtf8());
    for (const QString& pair : query.split(QLatin1Char('&'), Qt::SkipEmptyParts)) {
        const qsizetype eq = pair.indexOf(QLatin1Char('='));
        const QString key = pair.left(eq).toLower();
        const QString value = QUrl::fromPercentEncoding(pair.mid(eq + 1).toUtf8());
        if (eq <= 0 || !isOptionName(key) || value.isEmpty()) {
            return fail(
                problem,
                QStringLiteral("\"%1\" is not a setting of the form name=value.").arg(pair));
        }
        if (key == QLatin1String("password")) {
            return fail(problem, QStringLiteral("A password may not be written in the database "
                                                "location; keep it in ~/.pgpass or the service "
                                                "file."));
        }
        if (key == QLatin1String("host")) {
            address.host = value;
        } else if (key == QLatin1String("user")) {
            address.user = value;
        } else if (key == QLatin1String("dbname")) {
            address.database = value;
        } else if (value.contains(QLatin1Char(' ')) || value.contains(QLatin1Char(';'))) {
            // The driver takes further settings as one "name=value;..." text, unquoted.
            return fail(
                problem,
                QStringLiteral("The setting \"%1\" may not hold a space or \";\".").arg(key));
        } else {
            address.options << key + QLatin1Char('=') + value;
        }
    }
    if (address.database.isEmpty()) {
        return fail(problem, QStringLiteral("The server address names no database: add "
                                            "\"/\" and the database's name after the server."));
    }
    return address;
}

QString ServerAddress::withDatabase(const QString& name) const {
    QString text = QStringLiteral("postgresql://");
    if (!user.isEmpty()) {
        text += QString::fromUtf8(QUrl::toPercentEncoding(user)) + QLatin1Char('@');
    }
    const bool socket = host.startsWith(QLatin1Char('/'));
    if (!socket && host.contains(QLatin1Char(':'))) {
        text += QLatin1Char('[') + host + QLatin1Char(']');
    } else if (!socket) {
        text += host;
    }
    if (port > 0) {
        text += QLatin1Char(':') + QString::number(port);
    }
    text += QLatin1Char('/') + QString::fromUtf8(QUrl::toPercentEncoding(name));
    // Values are read back percent-decoded, so a space or "&" in one survives the trip.
    const auto setting = [](const QString& key, const QString& value) {
        return key + QLatin1Char('=') + QString::fromUtf8(QUrl::toPercentEncoding(value, "/"));
    };
    QStringList query;
    if (socket) {
        query << setting(QStringLiteral("host"), host);
    }
    for (const QString& option : options) {
        const qsizetype eq = option.indexOf(QLatin1Char('='));
        query << setting(option.left(eq), option.mid(eq + 1));
    }
    if (!query.isEmpty()) {
        text += QLatin1Char('?') + query.join(QLatin1Char('&'));
    }
    return text;
}

}  // namespace brimsett
