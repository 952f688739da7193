#include "patients/ProviderCodeLists.h"

#include "foundation/Database.h"

namespace brimsett {

namespace {

const QString kSeparator = QStringLiteral(" - ");

QList<CodeChoice> choices(Database& db, const QString& statement, const QString& doing) {
    QList<CodeChoice> list;
    QSqlQuery q = db.exec(statement, {}, doing);
    while (q.next()) {
        list << CodeChoice{q.value(0).toString().trimmed(), q.value(1).toString().trimmed()};
    }
    return list;
}

}  // namespace

QString CodeChoice::text() const {
    return description.isEmpty() ? code : code + kSeparator + description;
}

QList<CodeChoice> specialtyChoices(Database& db) {
    return choices(db,
                   QStringLiteral("Select SpecCode, Description From speccodes Order By SpecCode"),
                   QStringLiteral("reading the specialties"));
}

QList<CodeChoice> officeChoices(Database& db) {
    return choices(db, QStringLiteral("Select MOHOffice, City From mohoffices Order By MOHOffice"),
                   QStringLiteral("reading the ministry offices"));
}

QString codeOfChoiceText(const QString& text) {
    const qsizetype at = text.indexOf(kSeparator);
    return (at < 0 ? text : text.left(at)).trimmed();
}

}  // namespace brimsett
