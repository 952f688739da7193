#pragma once

#include "OfficeFixture.h"
#include "claims/ClaimStore.h"
#include "ministry/BatchPreparation.h"

#include <QSqlQuery>

#include <functional>

namespace brimsett::test {

// An office with providers and pending claims written exactly as given, for preparing
// claim files.
struct BatchOffice : OfficeFixture {
    ClaimStore store{*db, clock, log};

    void addDoctor(const QString& id, const QString& group, const QString& provider,
                   const QString& specialty, const QString& location = {},
                   const QString& modifier = {}) {
        db->exec(QStringLiteral("Insert Into doctors (DoctorID, GroupNum, ProviderNum, SpecCode, "
                                "MOHOffice, LocationCode, Modifier, LName) "
                                "Values (?,?,?,?,'J',?,?,'Doe')"),
                 {id, group, provider, specialty, location, modifier});
    }

    // A pending Ontario claim of the doctor with one item per (code, fee, service date).
    ClaimRecord claim(qint64 id, const QString& acct, const QString& doctor,
                      const QList<std::tuple<QString, std::optional<Money>, QDate>>& items,
                      const QString& payProg = QStringLiteral("HCP - P"),
                      const std::function<void(ClaimRecord&)>& edit = {}) {
        ClaimRecord c;
        c.claimId = id;
        c.batchId = kPendingBatch;
        c.acctNum = acct;
        c.doctorId = doctor;
        c.payProg = payProg;
        c.patientId = 1;
        c.healthNum = QStringLiteral("1234567897");
        c.versionCode = QStringLiteral("AB");
        c.fName = QStringLiteral("Mary");
        c.lName = QStringLiteral("Smith");
        c.dob = QDate(1980, 5, 17);
        c.sex = QStringLiteral("F");
        c.province = QStringLiteral("ON");
        c.dateCreated = clock.now().addDays(-1);
        int itemId = 0;
        for (const auto& [code, fee, date] : items) {
            ItemRecord item;
            item.claimId = id;
            item.itemId = ++itemId;
            item.serviceCode = code;
            item.diagCode = QStringLiteral("401");
            item.numServ = 1;
            item.feeSubm = fee;
            item.serviceDate = date;
            c.items.append(item);
        }
        if (edit) {
            edit(c);
        }
        store.write(c);
        return c;
    }

    std::optional<PreparedFile> prepare(const PrepareRequest& request) {
        BatchPreparation preparation(*db, office.store(), settings, clock, prompter, log,
                                     office.folder());
        return preparation.prepare(request);
    }

    QString batchOf(qint64 claimId) {
        return db->scalar(QStringLiteral("Select BatchID From claims Where ClaimID=?"), {claimId})
            .toString();
    }
    int count(const QString& statement, const QVariantList& values = {}) {
        return db->scalar(statement, values).toInt();
    }
};

inline PrepareRequest requestFor(const QString& doctor, const QString& cutOff = {}) {
    PrepareRequest r;
    r.doctorId = doctor;
    r.cutOff = cutOff;
    return r;
}

}  // namespace brimsett::test
