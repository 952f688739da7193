#include "OfficeFixture.h"

#include "patients/ReferringDoctorRegister.h"
#include "patients/ReferringDoctorSearch.h"

#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

struct Office : test::OfficeFixture {
    ReferringDoctorRegister doctors{*db, prompter, log};

    Office() {
        const QList<QStringList> rows = {
            {"550001", "Smith", "John"},  {"550002", "Smyth", "Anna"},
            {"550003", "O'Brien", "Pat"}, {"551234", "Smithers", "Ken"},
            {"123456", "Brown", "Sue"},   {"220000", "Smith%", "Odd"}};
        for (const QStringList& r : rows) {
            db->exec("Insert Into DoctorsOther (ProviderNum, LName, FName) Values (?, ?, ?)",
                     {r[0], r[1], r[2]});
        }
        // No first name: before the others of the same name, on either engine.
        db->exec("Insert Into DoctorsOther (ProviderNum, LName) Values ('550007', 'Smith')");
        db->exec(
            "Insert Into Patients (PatientID, RefDoc, FamDoc) Values "
            "(1, '550001', '123456'), (2, '123456', '550001'), (3, '550002', NULL)");
    }
    QStringList found(const QString& typed) {
        QStringList numbers;
        for (const ReferringDoctor& d : ReferringDoctorSearch(*db, settings).find(typed).rows) {
            numbers << d.providerNum;
        }
        return numbers;
    }
    QStringList patients() {
        return test::rowsOf(db->exec("Select PatientID, RefDoc, FamDoc From Patients Order By 1"));
    }
};

}  // namespace

class TestReferring : public QObject {
    Q_OBJECT

private slots:
    void search_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("wholeText");
        QTest::addColumn<QStringList>("numbers");
        row("name prefix, any case", "smith", false,
            QStringList{"550007", "550001", "220000", "551234"});
        row("whole name with switch 7", "Smith", true, QStringList{"550007", "550001"});
        row("one-character wildcard", "Sm?th", false, QStringList{"550007", "550001", "550002"});
        row("any-text wildcard", "Sm*s", false, QStringList{"551234"});
        row("last, first", "smith, k", false, QStringList{"551234"});
        row("last, first with a wildcard", "s*, ?nna", false, QStringList{"550002"});
        row("a quote in the name", "o'b", false, QStringList{"550003"});
        row("percent matches only itself", "smith%", false, QStringList{"220000"});
        row("number prefix, ordered by name", "55", false,
            QStringList{"550003", "550007", "550001", "551234", "550002"});
        row("number with a wildcard", "55?2*", false, QStringList{"551234"});
        row("whole number", "123456", true, QStringList{"123456"});
        row("nothing typed", "", false,
            QStringList{"123456", "550003", "550007", "550001", "220000", "551234", "550002"});
        row("nobody", "Zed", false, QStringList{});
    }
    void search() {
        QFETCH(QString, typed);
        QFETCH(bool, wholeText);
        Office office;
        office.settings.option[7] = wholeText;
        QTEST(office.found(typed), "numbers");
    }

    // Saving the doctor 550001 (or a new one when `savedNum` is empty) with changes.
    void save_data() {
        QTest::addColumn<QString>("savedNum");
        QTest::addColumn<QString>("providerNum");
        QTest::addColumn<QString>("lName");
        QTest::addColumn<QString>("province");
        QTest::addColumn<bool>("yes");
        QTest::addColumn<QStringList>("problems");
        QTest::addColumn<QStringList>("patients");
        const QStringList untouched{"1|550001|123456", "2|123456|550001", "3|550002|<null>"};
        row("new doctor", "", "660001", "Lee", "on", true, QStringList{}, untouched);
        row("five digits, no name, bad province", "", "12345", "", "O1", true,
            QStringList{"Billing number must be 6 digits.", "Last name is required.",
                        "Province must be empty or 2 letters."},
            untouched);
        row("number of another doctor", "550001", "550002", "Smith", "", true,
            QStringList{"Billing number 550002 already belongs to Smyth, Anna."}, untouched);
        row("corrected number moves the patients", "550001", "550009", "Smith", "", true,
            QStringList{}, QStringList{"1|550009|123456", "2|123456|550009", "3|550002|<null>"});
        row("correction answered No", "550001", "550009", "Smith", "", false, QStringList{},
            untouched);
    }
    void save() {
        QFETCH(QString, savedNum);
        QFETCH(QString, providerNum);
        QFETCH(QString, lName);
        QFETCH(QString, province);
        QFETCH(bool, yes);
        QFETCH(QStringList, problems);
        Office office;
        office.prompter.script({yes ? Answer::Yes : Answer::No});
        ReferringDoctor d = savedNum.isEmpty() ? ReferringDoctor{} : *office.doctors.load(savedNum);
        d.providerNum = providerNum;
        d.lName = lName;
        d.province = province;
        const bool saved = office.doctors.save(d, savedNum).has_value();
        QCOMPARE(saved, problems.isEmpty() && yes);
        if (!problems.isEmpty()) {
            QCOMPARE(office.prompter.last().lines,
                     QStringList{ReferringDoctorRegister::kHeading} + problems);
        }
        QCOMPARE(office.doctors.load(providerNum).has_value(), saved || providerNum == "550002");
        if (saved) {
            QCOMPARE(office.doctors.load(providerNum)->province, province.toUpper());
        }
        QTEST(office.patients(), "patients");
    }
};

QTEST_GUILESS_MAIN(TestReferring)
#include "test_referring.moc"
