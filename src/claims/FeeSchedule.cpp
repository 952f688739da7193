#include "claims/FeeSchedule.h"

#include "foundation/Database.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlStatementBuilder.h"

#include <QHash>
#include <QSqlRecord>

namespace brimsett {

namespace {

Money moneyOf(const QSqlRecord& record, const char* column) {
    return Money::fromVariant(record.value(QLatin1String(column))).value_or(Money());
}

int unitsOf(const QSqlRecord& record, const char* column) {
    return record.value(QLatin1String(column)).toInt();
}

// Fees are taken by the fee code in front of the suffix letter.
QString feeCodeOf(const QString& itemCode) {
    const QString code = itemCode.trimmed();
    return code.size() < 2 ? QString() : code.left(code.size() - 1).toUpper();
}

QChar suffixOf(const QString& itemCode) {
    const QString code = itemCode.trimmed();
    return code.isEmpty() ? QChar() : code.back();
}

}  // namespace

ServiceFees ServiceFees::fromRecord(const QSqlRecord& record) {
    ServiceFees f;
    f.serviceCode = record.value(QStringLiteral("ServiceCode")).toString();
    f.feeGeneral = moneyOf(record, "FeeGeneral");
    f.feeAssistant = moneyOf(record, "FeeAssistant");
    f.feeSpecialist = moneyOf(record, "FeeSpecialist");
    f.feeAna = moneyOf(record, "FeeAna");
    f.feeNonAna = moneyOf(record, "FeeNonAna");
    f.unitsAssistant = unitsOf(record, "UnitsAssistant");
    f.unitsAna = unitsOf(record, "UnitsAna");
    f.unitsNonAna = unitsOf(record, "UnitsNonAna");
    return f;
}

namespace fees {

bool isGeneralPractice(const QString& specialty) {
    const QString text = specialty.trimmed();
    int digits = 0;
    while (digits < text.size() && text.at(digits).isDigit() && text.at(digits) <= '9') {
        ++digits;
    }
    bool ok = false;
    const int number = digits == 0 ? 0 : text.left(digits).toInt(&ok);
    return (digits == 0 || ok) && (number == 0 || number == 12);
}

std::optional<ItemFee> bySuffix(const ServiceFees& f, QChar suffix, const QString& specialty) {
    // A negative stored fee is the office's own amount, pinned against later imports: the
    // sign is the pin, the amount is what the office bills.
    const auto billed = [](Money fee, int units) {
        return ItemFee{fee < Money() ? -fee : fee, units};
    };
    switch (suffix.toUpper().unicode()) {
        case 'A': {
            const bool general = isGeneralPractice(specialty);
            const Money first = general ? f.feeGeneral : f.feeSpecialist;
            const Money second = general ? f.feeSpecialist : f.feeGeneral;
            return billed(first.isZero() ? second : first, 0);
        }
        case 'B':
            return billed(f.feeAssistant, f.unitsAssistant);
        case 'C':
            return f.feeAna.isZero() ? billed(f.feeNonAna, f.unitsNonAna)
                                     : billed(f.feeAna, f.unitsAna);
        default:
            return std::nullopt;
    }
}

}  // namespace fees

FeeSchedule::FeeSchedule(Database& db, const SqlLog& log) : m_db(db), m_log(log) {}

std::optional<ServiceFees> FeeSchedule::find(const QString& itemCode) {
    const QString code = feeCodeOf(itemCode);
    if (code.isEmpty()) {
        return std::nullopt;
    }
    // The import stores codes in capitals; a code typed by hand in another case or with
    // blanks is found by the slower comparison.
    for (const char* condition : {"ServiceCode=?", "Upper(Trim(ServiceCode))=?"}) {
        QSqlQuery q = m_db.exec(
            QStringLiteral("Select * From servicecodes Where ") + QLatin1String(condition), {code},
            QStringLiteral("looking up the fee of ") + code);
        if (q.next()) {
            return ServiceFees::fromRecord(q.record());
        }
    }
    return std::nullopt;
}

std::optional<ItemFee> FeeSchedule::itemFee(const QString& itemCode, const QString& specialty) {
    const std::optional<ServiceFees> row = find(itemCode);
    return row ? fees::bySuffix(*row, suffixOf(itemCode), specialty) : std::nullopt;
}

int FeeSchedule::repriceClaim(qint64 claimId) {
    int priced = 0;
    QStringList logged;
    {
        Transaction transaction(m_db, QStringLiteral("repricing claim %1").arg(claimId));
        QSqlQuery items = m_db.exec(
            QStringLiteral("Select ItemID, ServiceCode, FeeSubm From items Where ClaimID=? "
                           "Order By ItemID"),
            {claimId}, QStringLiteral("reading the items of claim %1").arg(claimId));
        struct Item {
            int itemId;
            QString code;
            std::optional<Money> fee;
        };
        QList<Item> list;
        while (items.next()) {
            list.append({items.value(0).toInt(), items.value(1).toString(),
                         Money::fromVariant(items.value(2))});
        }
        items.finish();
        QHash<QString, std::optional<ServiceFees>> rows;
        for (const auto& [itemId, code, stored] : std::as_const(list)) {
            const QString key = feeCodeOf(code);
            if (!rows.contains(key)) {
                rows.insert(key, find(code));
            }
            const std::optional<ServiceFees> row = rows.value(key);
            // General practice ("00") whatever the provider: the order lab-order claims use.
            const std::optional<ItemFee> fee =
                row ? fees::bySuffix(*row, suffixOf(code), QStringLiteral("00")) : std::nullopt;
            if (!fee) {
                continue;
            }
            ++priced;
            if (stored == fee->fee) {
                continue;
            }
            SqlStatementBuilder builder;
            builder.beginUpdate(QStringLiteral("items"));
            builder.addField(QStringLiteral("FeeSubm"), fee->fee.toVariant(),
                             SqlStatementBuilder::Kind::Number);
            const auto bound =
                builder.boundUpdate(QStringLiteral("ClaimID=? And ItemID=?"), {claimId, itemId});
            m_db.exec(bound.sql, bound.values,
                      QStringLiteral("repricing item %1 of claim %2").arg(itemId).arg(claimId));
            logged << builder.finishUpdate(
                QStringLiteral("ClaimID=%1 And ItemID=%2").arg(claimId).arg(itemId));
        }
        transaction.commit();
    }
    for (const QString& statement : std::as_const(logged)) {
        m_log.write(statement);
    }
    return priced;
}

}  // namespace brimsett
