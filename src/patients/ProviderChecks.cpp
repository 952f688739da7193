#include "patients/ProviderChecks.h"

#include "foundation/Database.h"
#include "patients/HealthNumbers.h"
#include "patients/ProviderCodeLists.h"

namespace brimsett {

namespace {

using Field = Provider::Field;

bool listed(const QList<CodeChoice>& choices, const QString& code) {
    for (const CodeChoice& c : choices) {
        if (c.code.compare(code, Qt::CaseInsensitive) == 0) {
            return true;
        }
    }
    return false;
}

bool emptyOrDigits(const QString& text, int length) {
    return text.isEmpty() || (text.size() == length && hn::allDigits(text));
}

}  // namespace

QList<ProviderChecks::Problem> ProviderChecks::problems(const Provider& p,
                                                        const QString& savedId) const {
    QList<Problem> found;
    const auto add = [&found](Field field, const QString& text) { found << Problem{field, text}; };

    if (p.doctorId.isEmpty()) {
        add(Field::DoctorID, QStringLiteral("Doctor ID is required."));
    } else if (p.doctorId.size() > 3 || !hn::allLettersOrDigits(p.doctorId)) {
        // The code is written into statements and command lines: letters and digits only.
        add(Field::DoctorID, QStringLiteral("Doctor ID must be 1 to 3 letters or digits."));
    } else if (doctorIdTaken(p.doctorId, savedId)) {
        add(Field::DoctorID,
            QStringLiteral("Doctor ID %1 is already used by another provider.").arg(p.doctorId));
    }
    if (p.lName.isEmpty()) {
        add(Field::LName, QStringLiteral("Last name is required."));
    }
    if (p.providerNum.size() != 6 || !hn::allDigits(p.providerNum)) {
        add(Field::ProviderNum, QStringLiteral("Billing number must be 6 digits."));
    }
    if (p.groupNum.size() != 4 || !hn::allLettersOrDigits(p.groupNum)) {
        add(Field::GroupNum, QStringLiteral("Group number must be 4 letters or digits "
                                            "(0000 for a solo practitioner)."));
    }

    // The claim file writes both codes as they are stored, so the form is checked even when
    // the office's list is filled; the list then says which codes the office uses.
    if (p.specCode.isEmpty()) {
        add(Field::SpecCode, QStringLiteral("Specialty is required."));
    } else if (p.specCode.size() != 2 || !hn::allDigits(p.specCode)) {
        add(Field::SpecCode, QStringLiteral("Specialty must be 2 digits."));
    } else if (const auto list = specialtyChoices(m_db);
               !list.isEmpty() && !listed(list, p.specCode)) {
        add(Field::SpecCode,
            QStringLiteral("Specialty %1 is not in the list of specialties.").arg(p.specCode));
    }
    if (p.mohOffice.isEmpty()) {
        add(Field::MOHOffice, QStringLiteral("Ministry office is required."));
    } else if (p.mohOffice.size() != 1 || !hn::allLetters(p.mohOffice)) {
        add(Field::MOHOffice, QStringLiteral("Ministry office must be one letter."));
    } else if (const auto list = officeChoices(m_db);
               !list.isEmpty() && !listed(list, p.mohOffice)) {
        add(Field::MOHOffice,
            QStringLiteral("Ministry office %1 is not in the list of ministry offices.")
                .arg(p.mohOffice));
    }

    if (!emptyOrDigits(p.locationCode, 4)) {
        add(Field::LocationCode, QStringLiteral("Location code must be empty or 4 digits."));
    }
    // Facility numbers follow the patient's rule: four letters or digits.
    if (!p.facilityNum.isEmpty() &&
        (p.facilityNum.size() != 4 || !hn::allLettersOrDigits(p.facilityNum))) {
        add(Field::FacilityNum,
            QStringLiteral("Facility number must be empty or 4 letters or digits."));
    }
    if (!p.sli.isEmpty() && (p.sli.size() > 4 || !hn::allLettersOrDigits(p.sli))) {
        add(Field::SLI, QStringLiteral("SLI must be empty or at most 4 letters or digits."));
    }

    // Lengths of the free texts; the coded fields above have their own messages.
    for (Field field : {Field::FName, Field::LName, Field::Title, Field::Phone, Field::Fax,
                        Field::Email, Field::ExplCode, Field::Modifier}) {
        const Provider::Column& c = Provider::column(field);
        if (p.value(field).size() > c.maxLength) {
            add(field,
                QStringLiteral("%1 can be at most %2 characters.").arg(c.label).arg(c.maxLength));
        }
    }
    return found;
}

QStringList ProviderChecks::texts(const QList<Problem>& problems) {
    QStringList lines;
    for (const Problem& p : problems) {
        lines << p.text;
    }
    return lines;
}

bool ProviderChecks::doctorIdTaken(const QString& doctorId, const QString& savedId) const {
    // The old engine compared codes without regard to case, so "js" and "JS" are one code.
    QString statement = QStringLiteral("Select Count(*) From Doctors Where Upper(DoctorID)=?");
    QVariantList values{doctorId.toUpper()};
    if (!savedId.isEmpty()) {
        statement += QStringLiteral(" And DoctorID<>?");
        values << savedId;
    }
    return m_db.scalar(statement, values, QStringLiteral("looking for Doctor ID ") + doctorId)
               .toInt() > 0;
}

}  // namespace brimsett
