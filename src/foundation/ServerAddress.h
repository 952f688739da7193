#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace brimsett {

// Where a shared office database lives on a PostgreSQL server: "postgresql://user@host:port/
// dbname" (host may be a socket folder, percent-encoded or as ?host=) or a libpq service
// ("service=office"). No password is ever part of it: libpq finds it in ~/.pgpass or the
// service file, so it never sits in the program's settings.
struct ServerAddress {
    QString host;
    int port = -1;
    QString user;
    QString database;
    QStringList options;  // further libpq "key=value" settings, service among them

    // Whether the database location names a server rather than a file.
    static bool names(const QString& location);
    // The address, or what is wrong with the text in `problem`.
    static std::optional<ServerAddress> parse(const QString& location, QString* problem);

    // The same place with another database on it (tests and the copy to a new server).
    QString withDatabase(const QString& name) const;
};

}  // namespace brimsett
